#include "Core/Components/CPUs/MOS6502/MOS6502.h"

#include "Core/Simulation/EventSimulator.h"

#include <algorithm>
#include <map>

using Morvane::BitState;
using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

namespace {

// Writes the low bits of `bits` into the letters of `value`, most significant first, with no
// allocation: the value keeps its store from one cycle to the next.
void put_bits(Value& value, unsigned bits)
{
    unsigned width = value.size();
    for (unsigned i = 0; i < width; ++i)
        value.left_indexed_bit(i) = ((bits >> (width - 1 - i)) & 1u) != 0 ? 'H' : 'L';
}

}  // namespace

ParaMap MOS6502::default_parameters()
{
    static const std::map<std::string, std::string> MOS6502_default_params = {
        {"t_ads", "200"}, {"t_ah", "10"}, {"t_mds", "25"}, {"t_dhw", "10"}};
    return ParaMap(MOS6502_default_params);
}

std::string MOS6502::parameter_description()
{
    return "<b>t_ads</b> The Address Setup Time, in ns. Time from negative clock flank until address, R/W, "
           "SYNC and _VP has stabilized. Default 30 ns.<p><b>t_ah</b> The Address Hold Time, in ns. The "
           "time the address, R/W, SYNC and _VP are stable after negative clock flank. Default 10 "
           "ns.<p><b>t_mds</b> The Write Delay Time, in ns. The time after positive clock flank that the "
           "(write) data becomes valid. Default 25 ns.<p><b>t_dhw</b> The Write Hold Time, in ns. The time "
           "after negative clock flank that the (write) data still is valid. Default 10 ns.<p>";
}

MOS6502::MOS6502(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _init();
    MOS6502::update_after_param_change();
    _reset_init();
}

MOS6502::~MOS6502() = default;

void MOS6502::_init()
{
    _a = make_port(16, Output, "A");
    _d = make_port(8, Inout, "D");
    _d->disable_z_translation();

    _databus = std::make_unique<Net>("databus", 8);
    _d_read = std::make_unique<Port>(8, Input, "d_read", nullptr);
    _d_write = std::make_unique<Port>(8, Output, "d_write", nullptr);
    // Before it joins the net, so that no net update is asked of a simulator that may not exist yet.
    _d_write->set(_floating_data, -1);
    _write_planted = -1;
    _databus->add(_d, Inside);
    _databus->add(_d_read.get(), Outside);
    _databus->add(_d_write.get(), Outside);

    _rw = make_pin(Output, "_R/W");
    _irq = make_pin(Input, "_IRQ");
    _nmi = make_pin(Input, "_NMI");
    _rdy = make_pin(Input, "RDY");
    _sync = make_pin(Output, "SYNC");
    _phi0 = make_pin(Input, "PHI0");
    _phi1 = make_pin(Output, "PHI1");
    _phi2 = make_pin(Output, "PHI2");
    _so = make_pin(Input, "_SO");
    _res = make_pin(Input, "_RES");
}

void MOS6502::reset()
{
    _last_time = -1;
    _last_clock = 'u';
    _reset_init();
    _databus->clear();
    _d_read->clear();
    _d_write->clear();
    _a_planted = no_time;
    _rw_planted = no_time;
    _sync_planted = no_time;
    _write_planted = no_time;
    Component::reset();
}

void MOS6502::init(int)
{
    _plant(_d_write.get(), _floating_data, -1, _write_planted);
}

std::vector<std::string> MOS6502::get_valid_param_keys()
{
    return {"t_ads", "t_ah", "t_mds", "t_dhw"};
}

void MOS6502::update_after_param_change()
{
    parameters().get_value("t_ads", _t_ads);
    parameters().get_value("t_ah", _t_ah);
    parameters().get_value("t_mds", _t_mds);
    parameters().get_value("t_dhw", _t_dhw);
}

void MOS6502::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time, this, port);
}

void MOS6502::evaluate_port(int time, Port* port)
{
    _update_inputs(time);
    // On every evaluation for this pin while it is low, not on its edge alone.
    if (port == _so && _so->value(time) == 'L')
        m6502_set_p(&_core, m6502_p(&_core) | m6502_vf);
    char res = _level(_res, time);
    if (port == _phi0) {
        if (_phi0->negative_flank_at(time))
            _falling_step(res, time, time);
        else if (_phi0->positive_flank_at(time) && res == 'h' && _is_a_write_cycle())
            _emit_data(time);
    }
    _update_outputs(time);
}

void MOS6502::evaluate(int time)
{
    _update_inputs(time);
    // The flank fell somewhere since the last call; halfway is the best guess of when.
    int mid = (_last_time + time + 1) / 2;
    if (_so->value(time) == 'L')
        m6502_set_p(&_core, m6502_p(&_core) | m6502_vf);
    char res = _level(_res, time);
    if (_negative_clk_flank(time))
        _falling_step(res, time, mid);
    if (_positive_clk_flank(time) && res == 'h' && _is_a_write_cycle())
        _emit_data(mid);
    _last_time = time;
    _last_clock = _level(_phi0, time);
    _update_outputs(time);
}

void MOS6502::_falling_step(char res, int time, int flank)
{
    if (res == 'h') {
        // Two low flanks at least make a reset; it starts at the first flank after "_RES" rose.
        if (_reset_low_cycles > 1)
            _reset_init();
        _reset_low_cycles = 0;
    }
    if (res == 'l') {
        // Held: no tick, and the data bus stays as it is.
        ++_reset_low_cycles;
    } else {
        _sample_data_bus(flank);
        _pins = m6502_tick(&_core, _pins);
        // The old cycle's write data hold for t_dhw; a new write is undefined until t_mds after the rise.
        if (_is_a_read_cycle())
            _tristate_data_bus(time);
        else
            _set_data_undefined(time);
    }
    _emit_address(flank);
    _emit_rw(flank);
    _emit_sync(flank);
}

void MOS6502::_skip_ahead(int n)
{
    for (int i = 0; i < n; ++i)
        _pins = m6502_tick(&_core, _pins);
}

void MOS6502::_reset_init()
{
    m6502_desc_t desc{};
    desc.bcd_disabled = false;
    _pins = m6502_init(&_core, &desc);
}

void MOS6502::_update_pin(Pin* pin, int time, BitState state, uint64_t mask)
{
    if (pin->value(time) == state)
        _pins |= mask;
    else
        _pins &= ~mask;
}

void MOS6502::_update_inputs(int time)
{
    // The core's bits mean asserted; the pins are active low, and RDY low means halt.
    _update_pin(_irq, time, BitState::Low, m6502_pin_irq);
    _update_pin(_nmi, time, BitState::Low, m6502_pin_nmi);
    _update_pin(_rdy, time, BitState::Low, m6502_pin_rdy);
}

bool MOS6502::_negative_clk_flank(int time)
{
    return _last_clock == 'h' && _phi0->value(time) == 'L';
}

bool MOS6502::_positive_clk_flank(int time)
{
    return _last_clock == 'l' && _phi0->value(time) == 'H';
}

void MOS6502::_sample_data_bus(int time)
{
    if (!_is_a_read_cycle())
        return;
    // An undefined bus doesn't reach the core, which sees the byte of the last cycle again.
    Value bus = _d_read->value(time);
    if (bus.is_integer())
        _pins = m6502_set_data(_pins, static_cast<uint8_t>(bus.integer()));
}

void MOS6502::_emit_data(int time)
{
    put_bits(_data, m6502_get_data(_pins));
    _plant(_d_write.get(), _data, time + _t_mds, _write_planted);
}

void MOS6502::_tristate_data_bus(int time)
{
    _plant(_d_write.get(), _floating_data, time + _t_dhw, _write_planted);
}

void MOS6502::_set_data_undefined(int time)
{
    _plant(_d_write.get(), _undefined_data, time + _t_dhw, _write_planted);
}

void MOS6502::_emit_address(int flank)
{
    // With t_ads at or below t_ah the second set wins at its time: equal times replace, and a
    // shorter set-up is followed by the undefined value for the rest of the cycle.
    _plant(_a, _undefined_address, flank + _t_ah, _a_planted);
    put_bits(_address, m6502_get_addr(_pins));
    _plant(_a, _address, flank + _t_ads, _a_planted);
}

void MOS6502::_emit_rw(int flank)
{
    _plant(_rw, _undefined, flank + _t_ah, _rw_planted);
    _plant(_rw, _is_a_read_cycle() ? _high : _low, flank + _t_ads, _rw_planted);
}

void MOS6502::_emit_sync(int flank)
{
    _plant(_sync, _undefined, flank + _t_ah, _sync_planted);
    _plant(_sync, _is_fetching_opcode() ? _high : _low, flank + _t_ads, _sync_planted);
}

void MOS6502::_update_clocks(int time)
{
    switch (_level(_phi0, time)) {
    case 'l':
        _phi1->set(_high, time);
        _phi2->set(_low, time);
        break;
    case 'h':
        _phi1->set(_low, time);
        _phi2->set(_high, time);
        break;
    default:
        _phi1->set(_undefined, time);
        _phi2->set(_undefined, time);
        break;
    }
}

void MOS6502::_update_outputs(int time)
{
    _update_clocks(time);
    _refresh(_a, _a_planted, time);
    _refresh(_d_write.get(), _write_planted, time);
    _refresh(_rw, _rw_planted, time);
    _refresh(_sync, _sync_planted, time);
    _phi1->update(time);
    _phi2->update(time);
}

void MOS6502::_plant(Port* port, const Value& value, int time, int& planted)
{
    port->set(value, time);
    planted = std::max(planted, time);
}

void MOS6502::_refresh(Port* port, int planted, int time)
{
    if (planted <= time || simulator() == nullptr) {
        port->update(time);
        return;
    }
    // The history already holds values ahead of `time`. Storing the value in force at `time` among
    // them changes no value the port reads at any time, but would rebuild the history's pages on every
    // clock flank; the net is asked to recompute all the same.
    Net* net = port->net(Outside);
    if (net != nullptr)
        simulator()->request_evaluation(time, net, port, port->value(time));
}
