#include "Core/Components/Memories/MC27C64.h"

#include "Core/Components/Memories/MemoryCells.h"

#include <map>

using Morvane::Input;
using Morvane::Output;

ParaMap MC27C64::default_parameters()
{
    static const std::map<std::string, std::string> MC27C64_default_params = {{"delay", "120"}};
    return ParaMap(MC27C64_default_params);
}

std::string MC27C64::parameter_description()
{
    return "<b>delay</b> The access time in ns; the time from address, _OE and _CS stabilization to data "
           "stabilization.<p>" +
           GenericMemory::loader_parameter_description(true);
}

MC27C64::MC27C64(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay),
      GenericMemory(this)
{
    _init();
}

MC27C64::MC27C64(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params),
      GenericMemory(this)
{
    _init();
    _parse_params(parent());
}

void MC27C64::_init()
{
    for (Value& cell : _cells)
        cell.set_size(8);
    _a = make_port(13, Input, "A");
    _d = make_port(8, Output, "D");
    _oe = make_pin(Input, "_OE");
    _cs = make_pin(Input, "_CS");
}

void MC27C64::_parse_params(Circuit* circuit)
{
    SingleDelayComponent::update_after_param_change();
    if (circuit != nullptr)
        init_cells_from_params(circuit, parameters());
}

void MC27C64::circuit_connect_callback(Circuit* circuit)
{
    _parse_params(circuit);
}

void MC27C64::reset()
{
    for (Value& cell : _cells)
        cell.set_size(8);
    Component::reset();
}

void MC27C64::init(int /*end_time*/)
{
    _parse_params(parent());
}

void MC27C64::update_after_param_change()
{
    _parse_params(parent());
}

std::vector<std::string> MC27C64::get_valid_param_keys()
{
    std::vector<std::string> keys = SingleDelayComponent::get_valid_param_keys();
    keys.insert(keys.end(), {"cells", "cbmfile", "rawfile", "rawaddress"});
    return keys;
}

void MC27C64::evaluate(int time)
{
    int ti = time - delay();
    char cs = Morvane::lower_letter(_cs->letter(ti));
    if (cs == 'h') {
        _d->set(released_byte(), time);
        return;
    }
    if (cs != 'l') {
        _d->set(undefined_byte(), time);
        return;
    }
    char oe = Morvane::lower_letter(_oe->letter(ti));
    if (oe == 'l') {
        int address = 0;
        _d->set(binary_address(_a, ti, address) ? read(address) : undefined_byte(), time);
    } else if (oe == 'h') {
        _d->set(released_byte(), time);
    } else {
        _d->set(undefined_byte(), time);
    }
}
