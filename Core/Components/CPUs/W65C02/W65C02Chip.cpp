#include "Core/Components/CPUs/W65C02/W65C02Chip.h"

#include <map>

using Morvane::Input;
using Morvane::Output;

ParaMap W65C02::default_parameters()
{
    static const std::map<std::string, std::string> W65C02_default_params = {
        {"t_ads", "30"}, {"t_ah", "10"}, {"t_mds", "25"}, {"t_dhw", "10"}, {"t_bvd", "25"}};
    return ParaMap(W65C02_default_params);
}

std::string W65C02::parameter_description()
{
    return timing_description() +
           "<b>t_bvd</b> The BE to Valida Data time, in ns. The time from positive BE flank until address, "
           "R/W and data lines are valid. Default is 25 ns. The data sheet provides no value for the "
           "negative flank until invalid data, but states that it probably is the same, and that is the "
           "value used in this model.";
}

W65C02::W65C02(const std::string& instance_name, const ParaMap& params)
    : ProcessorPart(class_name, instance_name, params)
{
    _make_pins("R/W");
    _bus_address = std::make_unique<Port>(16, Output, "", nullptr);
    _bus_data = std::make_unique<Port>(8, Output, "", nullptr);
    _bus_rw = std::make_unique<Port>(1, Output, "", nullptr);
    _address_in.port = _bus_address.get();
    _data_in.port = _bus_data.get();
    _rw_in.port = _bus_rw.get();
    // The clock step works on the inner ports; the pins follow them as "BE" allows.
    _address_to = &_address_in;
    _data_to = &_data_in;
    _rw_to = &_rw_in;
    _vp = make_pin(Output, "_VP");
    _vp_line.port = _vp;
    _be = make_pin(Input, "BE");
    W65C02::update_after_param_change();
    _reset_init();
}

W65C02::~W65C02() = default;

void W65C02::reset()
{
    _reset_pins();
    _clock_time = no_time;
    for (PlantedOutput* line : {&_address_in, &_data_in, &_rw_in})
        line->port->clear();
    for (PlantedOutput* line : {&_vp_line, &_address_in, &_data_in, &_rw_in})
        line->planted = no_time;
    _reset_init();
    Component::reset();
}

void W65C02::init(int end_time)
{
    ProcessorPins::init(end_time);
    _sync.plant(_low, -1);
}

std::vector<std::string> W65C02::get_valid_param_keys()
{
    std::vector<std::string> keys = ProcessorPins::get_valid_param_keys();
    keys.push_back("t_bvd");
    return keys;
}

void W65C02::update_after_param_change()
{
    ProcessorPins::update_after_param_change();
    parameters().get_value("t_bvd", _t_bvd);
}

void W65C02::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(port == _be ? time + _t_bvd : time, this, port);
}

void W65C02::evaluate_port(int time, Port* port)
{
    _evaluate_inputs_and_clock(time, port);
    if (port == _phi0)
        _update_outputs(time);
    if (port == _be)
        _handle_be_change(time);
}

void W65C02::_update_inputs(int time)
{
    for (Port* input : {_d_read.get(), static_cast<Port*>(_irq), static_cast<Port*>(_nmi),
                        static_cast<Port*>(_rdy), static_cast<Port*>(_phi0), static_cast<Port*>(_so)})
        input->update(time);
    _read_control_pins(time);
}

char W65C02::_handle_reset_signal(int time)
{
    char res = _level(_res, time);
    if (res == 'l') {
        Value held = _bus_data->value(time);
        if (held != _floating_data) {
            _data_in.plant(_floating_data, time + _t_dhw);
            _write.plant(held, time);
        }
    }
    return res;
}

void W65C02::_emit_status(int flank)
{
    _emit_vp(flank);
    // No undefined phase here, unlike "_VP".
    _sync.plant(_is_fetching_opcode() ? _high : _low, flank + _t_ads);
}

void W65C02::_emit_vp(int flank)
{
    _emit_bit(_vp_line, !_is_fetching_vectors(), flank);
}

void W65C02::_update_outputs(int time)
{
    _clock_time = time;
    if (_be->value(time - _t_bvd) == 'H') {
        // Each at its own time: the clock step planted an undefined phase and then the new value.
        _a.copy(_address_in, time + _t_ah);
        _a.copy(_address_in, time + _t_ads);
        _write.copy(_data_in, time + _t_dhw);
        _write.copy(_data_in, time + _t_mds);
        _rw.copy(_rw_in, time + _t_ah);
        _rw.copy(_rw_in, time + _t_ads);
    }
    _update_clocks(time);
    _a.refresh(time);
    _rw.refresh(time);
    _vp_line.refresh(time);
    _sync.refresh(time);
    _phi1->update(time);
    _phi2->update(time);
}

void W65C02::_handle_be_change(int time)
{
    char be = _level(_be, time - _t_bvd);
    _drive_bus_lines(be, time);
    // What the last clock change planted on the lines ahead of `time` follows "BE" too: floated lines
    // stay floating, and enabled ones get the rest of the cycle under way.
    for (int delay : {_t_ah, _t_ads, _t_dhw, _t_mds}) {
        int at = _clock_time + delay;
        if (at > time)
            _drive_bus_lines(be, at);
    }
}

void W65C02::_drive_bus_lines(char be, int time)
{
    switch (be) {
    case 'l':
        _a.plant(_floating_address, time);
        _write.plant(_floating_data, time);
        _rw.plant(_floating, time);
        break;
    case 'h':
        _a.copy(_address_in, time);
        _write.copy(_data_in, time);
        _rw.copy(_rw_in, time);
        break;
    default:
        _a.plant(_undefined_address, time);
        _write.plant(_undefined_data, time);
        _rw.plant(_undefined_level, time);
        break;
    }
}
