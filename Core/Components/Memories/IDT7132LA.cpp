#include "Core/Components/Memories/IDT7132LA.h"

#include "Core/Simulation/Logic.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

namespace {

const Value& low()
{
    static const Value l("L");
    return l;
}

const Value& high()
{
    static const Value h("H");
    return h;
}

const Value& undefined_word()
{
    static const Value u("UUUUUUUU");
    return u;
}

/// The later of two times; no_time loses against any other.
int later(int a, int b)
{
    return std::max(a, b);
}

}  // namespace

ParaMap IDT7132LA::default_parameters()
{
    static const std::map<std::string, std::string> IDT7132LA_default_params = {{"device", "LA100"}};
    return ParaMap(IDT7132LA_default_params);
}

std::string IDT7132LA::parameter_description()
{
    return "<b>device</b> The version of the device. It determines the timing parameters. Valid values are: "
           "LA20, LA25, LA35, LA55 and LA100.<p>" +
           GenericMemory::loader_parameter_description(false);
}

std::map<std::string, IDT7132DeviceType>& IDT7132LA::device_name_table()
{
    static std::map<std::string, IDT7132DeviceType> table = {
        {"LA20", LA20}, {"LA25", LA25}, {"LA35", LA35}, {"LA55", LA55}, {"LA100", LA100},
    };
    return table;
}

IDT7132LA::IDT7132LA(const std::string& instance_name, IDT7132DeviceType device)
    : Component(class_name, instance_name, ParaMap()),
      GenericMemory(this),
      _device(device)
{
    _init();
}

IDT7132LA::IDT7132LA(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params),
      GenericMemory(this)
{
    _init();
    _parse_params(parent());
}

void IDT7132LA::_init()
{
    _cells = std::make_unique<ByteCells>(nof_words);
    // Pairs, the left port first.
    _side[0].a = make_port(11, Input, "AL");
    _side[1].a = make_port(11, Input, "AR");
    _side[0].io = make_port(8, Inout, "IOL");
    _side[1].io = make_port(8, Inout, "IOR");
    _side[0].busy = make_pin(Output, "BUSYL");
    _side[1].busy = make_pin(Output, "BUSYR");
    _side[0].rw = make_pin(Input, "RWL");
    _side[1].rw = make_pin(Input, "RWR");
    _side[0].oe = make_pin(Input, "_OEL");
    _side[1].oe = make_pin(Input, "_OER");
    _side[0].ce = make_pin(Input, "_CEL");
    _side[1].ce = make_pin(Input, "_CER");

    const char* side_names[2] = {"left", "right"};
    for (int side = 0; side < 2; ++side) {
        Side& s = _side[side];
        s.io->disable_z_translation();
        s.bus = std::make_unique<Net>(std::string("IDT7132LA databus net ") + side_names[side], 8);
        s.dbuf = std::make_unique<BusBuffer>(std::string("dbuf ") + side_names[side], 0, 8);
        s.dbuf_in = s.dbuf->port("in");
        s.dbuf_g = s.dbuf->pin("_g");
        // Only this part sets the buffer's inputs, and it runs the buffer itself right after.
        s.dbuf_in->remove_change_subscriber(s.dbuf.get());
        s.dbuf_g->remove_change_subscriber(s.dbuf.get());
        s.bus->add(s.dbuf->port("out"), Outside);
        s.bus->add(s.io, Inside);
    }
}

void IDT7132LA::_parse_params(Circuit* circuit)
{
    // The constructor that takes a grade has no "device" to read.
    if (parameters().has_key("device"))
        _device = device_name_table()[parameters()["device"]];
    if (circuit != nullptr)
        init_cells_from_params(circuit, parameters());
}

void IDT7132LA::circuit_connect_callback(Circuit* circuit)
{
    _parse_params(circuit);
}

void IDT7132LA::init(int /*end_time*/)
{
    _parse_params(parent());
}

void IDT7132LA::update_after_param_change()
{
    _parse_params(parent());
}

void IDT7132LA::reset()
{
    // Emptying each history forgets as much as a new row would, without making the objects again.
    for (ByteCell& cell : *_cells)
        cell.clear();
    for (Side& s : _side) {
        s.bus->clear();
        s.dbuf_stale = true;
    }
    Component::reset();
}

std::vector<std::string> IDT7132LA::get_valid_param_keys()
{
    return {"device", "cells", "cbmfile", "rawfile", "rawaddress"};
}

std::string IDT7132LA::aux_info_string()
{
    return fmt("<br>Access time: <i>%d ns</i>", _tAA());
}

void IDT7132LA::evaluate(int /*time*/) {}

void IDT7132LA::port_changed_value(Port* port, const Value& /*old_value*/, const Value& new_value, int time)
{
    auto request = [&](std::initializer_list<int> delays) {
        for (int d : delays)
            request_evaluation(time + d, this, port);
    };
    for (const Side& s : _side) {
        if (port == s.oe) {
            if (new_value == 'L')
                request({_tLZ(), _tAOE()});
            else if (new_value == 'H')
                request({_tHZ()});
        } else if (port == s.ce) {
            if (new_value == 'L')
                request({_tLZ(), _tAA(), _tAW(), _tBAA()});
            else if (new_value == 'H')
                request({_tHZ(), _tBAA()});
        } else if (port == s.a) {
            request({_tOH(), _tAA(), _tAW(), _tBAA()});
        } else if (port == s.rw) {
            request({_tAA(), _tWP(), _tWZ()});
        }
    }
}

void IDT7132LA::evaluate_port(int time, Port* port)
{
    for (int side = 0; side < 2; ++side) {
        Side& s = _side[side];
        if (port == s.a)
            _handle_a_transition(time, side);
        else if (port == s.oe || port == s.ce)
            _handle_oe_ce_transitions(time, side);
        else if (port == s.rw)
            _handle_rw_transitions(time, side);
        _run_buffer(s, time);
    }
}

void IDT7132LA::_handle_a_transition(int time, int side)
{
    Side& s = _side[side];
    // The old word is held for tOH after the address moves, then the output is undefined.
    if (s.a->changed_at(time - _tOH()))
        _set_buffer_in(s, undefined_word(), time);
    bool write_ok = s.rw->constant_between(time - _tWP(), time, low());
    bool read_ok = s.rw->constant_between(time - _tAA(), time, high());
    _assert_busy_if_necessary(time);
    if (read_ok)
        _handle_possible_read_from_memory(time, side);
    else if (write_ok)
        _handle_possible_write_to_memory(time, side);
}

void IDT7132LA::_handle_rw_transitions(int time, int side)
{
    _assert_busy_if_necessary(time);
    _handle_possible_write_to_memory(time, side);
    _handle_possible_read_from_memory(time, side);
}

Value IDT7132LA::_active(int side, int time)
{
    Side& s = _side[side];
    return Logic::Or(s.oe->value(time), s.ce->value(time));
}

void IDT7132LA::_handle_oe_ce_transitions(int time, int side)
{
    Side& s = _side[side];
    // Each test looks for the moment, one of the data sheet's times ago, at which the enable began.
    auto began_low = [&](int after) {
        return _active(side, time - after - 1) != 'L' && _active(side, time - after) == 'L';
    };
    if (began_low(_tLZ()))
        _set_buffer_g(s, 'u', time);  // out of high impedance, no valid data yet
    if (began_low(_tAOE()))
        _set_buffer_g(s, 'L', time);
    if (began_low(_tAA()))
        _set_buffer_g(s, 'L', time);
    if (_active(side, time - _tHZ() - 1) != 'H' && _active(side, time - _tHZ()) == 'H')
        _set_buffer_g(s, 'H', time);
    _assert_busy_if_necessary(time);
    _handle_possible_write_to_memory(time, side);
    _handle_possible_read_from_memory(time, side);
}

void IDT7132LA::_handle_possible_read_from_memory(int time, int side)
{
    Side& s = _side[side];
    int ti = time - _tAA();
    // The output enable acts through the buffer alone; the second test is on "_CE" again.
    if (!s.a->constant_between(ti, time) || !s.rw->constant_between(ti, time, high()) ||
        !s.ce->constant_between(ti, time, low()) || !s.ce->constant_between(time - _tAOE(), time, low()))
        return;
    Value a = s.a->value(ti);
    if (a.is_integer())
        _set_buffer_in(s, _cells->at(a.integer() & 0x7FF).value(ti), time);
    else
        _set_buffer_in(s, undefined_word(), time);
}

void IDT7132LA::_handle_possible_write_to_memory(int time, int side)
{
    Side& s = _side[side];
    int ti = time - _tAW();
    if (_access_collision(ti)) {
        clog(warning, time, "Access collision at address %s", s.a->value(ti).c_str());
        return;
    }
    if (!s.a->constant_between(ti, time) || !s.rw->constant_between(time - _tWP(), time, low()))
        return;
    if (!s.ce->constant_between(ti, time, low()))
        return;
    Value a = s.a->value(ti);
    if (!a.is_integer()) {
        clog(warning, time, "Attempt to write to SRAM with undefined address %s", a.c_str());
        return;
    }
    _cells->at(a.integer() & 0x7FF).set(s.io->value(time), time);
}

bool IDT7132LA::_access_collision(int time)
{
    // The one-bit tests first: most of the time a chip is disabled or both sides read.
    const Side& l = _side[0];
    const Side& r = _side[1];
    if (l.ce->value(time) != 'L' || r.ce->value(time) != 'L')
        return false;
    if (l.rw->value(time) != 'L' && r.rw->value(time) != 'L')
        return false;
    return l.a->value(time) == r.a->value(time);
}

void IDT7132LA::_assert_busy_if_necessary(int time)
{
    if (!_access_collision(time)) {
        _set_output(_side[0].busy, high(), time + _tBAA());
        _set_output(_side[1].busy, high(), time + _tBAA());
        return;
    }
    int last_change[2];
    for (int side = 0; side < 2; ++side) {
        const Side& s = _side[side];
        last_change[side] = later(s.ce->time_of_last_change(time), s.a->time_of_last_change(time));
    }
    // The side that came last loses; on a tie, the right one.
    int loser = last_change[0] > last_change[1] ? 0 : 1;
    Side& lost = _side[loser];
    Side& won = _side[_other_side(loser)];
    _set_output(
        lost.busy, low(),
        later(lost.a->time_of_last_change(time) + _tBAA(), lost.ce->time_of_last_change(time) + _tBAA()));
    _set_output(won.busy, high(), won.a->time_of_last_change(time));
}

bool IDT7132LA::_set_output(Port* port, const Value& value, int time)
{
    // Setting the value in force once more, at or after its last entry, would only make the net
    // recompute what it holds: the common case, since each evaluation sets BUSY and most reads repeat.
    if (port->nof_values() != 0) {
        ValueHistory::Entry last = port->entries().back();
        // Letter for letter: u and U print differently.
        if (last.time <= time && std::strcmp(last.value.c_str(), value.c_str()) == 0)
            return false;
    }
    port->set(value, time);
    return true;
}

void IDT7132LA::_set_buffer_in(Side& s, const Value& value, int time)
{
    if (_set_output(s.dbuf_in, value, time))
        s.dbuf_stale = true;
}

void IDT7132LA::_set_buffer_g(Side& s, char state, int time)
{
    if (_set_output(s.dbuf_g, Value(state, 1), time))
        s.dbuf_stale = true;
}

void IDT7132LA::_run_buffer(Side& s, int time)
{
    // Run again on unchanged inputs, the buffer would only write its output once more.
    if (!s.dbuf_stale)
        return;
    s.dbuf->evaluate(time);
    s.dbuf_stale = false;
}
