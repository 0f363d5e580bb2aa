#include "Core/Components/CPUs/ProcessorPins.h"

#include "Core/Simulation/EventSimulator.h"

#include <algorithm>

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

void PlantedOutput::plant(const Value& value, int time)
{
    port->set(value, time);
    planted = std::max(planted, time);
}

void PlantedOutput::refresh(int time)
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

ProcessorPins::ProcessorPins(const char* class_name, const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
}

ProcessorPins::~ProcessorPins() = default;

std::string ProcessorPins::timing_description()
{
    return "<b>t_ads</b> The Address Setup Time, in ns. Time from negative clock flank until address, R/W, "
           "SYNC and _VP has stabilized. Default 30 ns.<p><b>t_ah</b> The Address Hold Time, in ns. The "
           "time the address, R/W, SYNC and _VP are stable after negative clock flank. Default 10 "
           "ns.<p><b>t_mds</b> The Write Delay Time, in ns. The time after positive clock flank that the "
           "(write) data becomes valid. Default 25 ns.<p><b>t_dhw</b> The Write Hold Time, in ns. The time "
           "after negative clock flank that the (write) data still is valid. Default 10 ns.<p>";
}

void ProcessorPins::_make_pins(const char* rw_name)
{
    _a.port = make_port(16, Output, "A");
    _d = make_port(8, Inout, "D");
    _d->disable_z_translation();

    _databus = std::make_unique<Net>("databus", 8);
    _d_read = std::make_unique<Port>(8, Input, "d_read", nullptr);
    _d_write = std::make_unique<Port>(8, Output, "d_write", nullptr);
    _write.port = _d_write.get();
    // Before it joins the net, so that no net update is asked of a simulator that may not exist yet.
    _write.plant(_floating_data, -1);
    _databus->add(_d, Inside);
    _databus->add(_d_read.get(), Outside);
    _databus->add(_d_write.get(), Outside);

    _rw.port = make_pin(Output, rw_name);
    _irq = make_pin(Input, "_IRQ");
    _nmi = make_pin(Input, "_NMI");
    _rdy = make_pin(Input, "RDY");
    _sync.port = make_pin(Output, "SYNC");
    _phi0 = make_pin(Input, "PHI0");
    _phi1 = make_pin(Output, "PHI1");
    _phi2 = make_pin(Output, "PHI2");
    _so = make_pin(Input, "_SO");
    _res = make_pin(Input, "_RES");
}

void ProcessorPins::_reset_pins()
{
    _last_time = -1;
    _last_clock = 'u';
    _databus->clear();
    _d_read->clear();
    _d_write->clear();
    for (PlantedOutput* line : {&_a, &_rw, &_sync, &_write})
        line->planted = no_time;
}

void ProcessorPins::init(int)
{
    _write.plant(_floating_data, -1);
}

std::vector<std::string> ProcessorPins::get_valid_param_keys()
{
    return {"t_ads", "t_ah", "t_mds", "t_dhw"};
}

void ProcessorPins::update_after_param_change()
{
    parameters().get_value("t_ads", _t_ads);
    parameters().get_value("t_ah", _t_ah);
    parameters().get_value("t_mds", _t_mds);
    parameters().get_value("t_dhw", _t_dhw);
}

void ProcessorPins::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time, this, port);
}

void ProcessorPins::_update_pin(Pin* pin, int time, BitState state, uint64_t mask)
{
    if (Morvane::lower_letter(pin->letter(time)) == Morvane::lower_letter(Morvane::letter(state)))
        _pins |= mask;
    else
        _pins &= ~mask;
}

void ProcessorPins::_read_control_pins(int time)
{
    // The core's bits mean asserted; the pins are active low, and RDY low means halt.
    _update_pin(_irq, time, BitState::Low, cpu65_pin_irq);
    _update_pin(_nmi, time, BitState::Low, cpu65_pin_nmi);
    _update_pin(_rdy, time, BitState::Low, cpu65_pin_rdy);
}

bool ProcessorPins::_negative_clk_flank(int time)
{
    return _last_clock == 'h' && _level(_phi0, time) == 'l';
}

bool ProcessorPins::_positive_clk_flank(int time)
{
    return _last_clock == 'l' && _level(_phi0, time) == 'h';
}

void ProcessorPins::_sample_data_bus(int time)
{
    if (!_is_a_read_cycle())
        return;
    // An undefined bus doesn't reach the core, which sees the byte of the last cycle again.
    Value bus = _d_read->value(time);
    if (bus.is_integer())
        _pins = cpu65_set_data(_pins, static_cast<uint8_t>(bus.integer()));
}

void ProcessorPins::_emit_data(int time)
{
    put_bits(_data, cpu65_get_data(_pins));
    _data_to->plant(_data, time + _t_mds);
}

void ProcessorPins::_tristate_data_bus(int time)
{
    _data_to->plant(_floating_data, time + _t_dhw);
}

void ProcessorPins::_set_data_undefined(int time)
{
    _data_to->plant(_undefined_data, time + _t_dhw);
}

void ProcessorPins::_emit_address(int flank)
{
    // With t_ads at or below t_ah the second set wins at its time: equal times replace, and a
    // shorter set-up is followed by the undefined value for the rest of the cycle.
    _address_to->plant(_undefined_address, flank + _t_ah);
    put_bits(_address, cpu65_get_addr(_pins));
    _address_to->plant(_address, flank + _t_ads);
}

void ProcessorPins::_emit_rw(int flank)
{
    _emit_bit(*_rw_to, _is_a_read_cycle(), flank);
}

void ProcessorPins::_emit_bit(PlantedOutput& line, bool high, int flank)
{
    line.plant(_undefined, flank + _t_ah);
    line.plant(high ? _high : _low, flank + _t_ads);
}

void ProcessorPins::_update_clocks(int time)
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
