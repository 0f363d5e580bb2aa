#include "Core/Components/Memories/HM62256B.h"

#include "Core/Support/TLog.h"

#include <map>

using Morvane::Input;
using Morvane::Output;

ParaMap HM62256B::default_parameters()
{
    static const std::map<std::string, std::string> HM62256B_default_params = {{"delay", "70"}};
    return ParaMap(HM62256B_default_params);
}

std::string HM62256B::parameter_description()
{
    return "<b>delay</b> The access time in ns; the time from address, _OE and _CS stabilization to data "
           "stabilization.<p>" +
           GenericMemory::loader_parameter_description(false);
}

HM62256B::HM62256B(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay),
      GenericMemory(this)
{
    _init();
}

HM62256B::HM62256B(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params),
      GenericMemory(this)
{
    _init();
    _parse_params(parent());
}

void HM62256B::_init()
{
    _cells = std::make_unique<ByteCells>(nof_words);
    _a = make_port(15, Input, "A");
    _din = make_port(8, Input, "Din");
    _dout = make_port(8, Output, "Dout");
    _we = make_pin(Input, "_WE");
    _oe = make_pin(Input, "_OE");
    _cs = make_pin(Input, "_CS");
}

void HM62256B::_parse_params(Circuit* circuit)
{
    SingleDelayComponent::update_after_param_change();
    if (circuit != nullptr)
        init_cells_from_params(circuit, parameters());
}

void HM62256B::circuit_connect_callback(Circuit* circuit)
{
    _parse_params(circuit);
}

void HM62256B::reset()
{
    // Emptying each history forgets as much as a new row would, without making 32768 objects again.
    for (ByteCell& cell : *_cells)
        cell.clear();
    Component::reset();
}

void HM62256B::init(int /*end_time*/)
{
    _parse_params(parent());
}

void HM62256B::update_after_param_change()
{
    _parse_params(parent());
}

std::vector<std::string> HM62256B::get_valid_param_keys()
{
    std::vector<std::string> keys = SingleDelayComponent::get_valid_param_keys();
    keys.insert(keys.end(), {"cells", "cbmfile", "rawfile", "rawaddress"});
    return keys;
}

void HM62256B::evaluate(int time)
{
    // Every decision uses the inputs of the change that caused this evaluation, one delay back.
    int ti = time - delay();
    char cs = Morvane::lower_letter(_cs->letter(ti));
    if (cs == 'h') {
        _dout->set(released_byte(), time);
        return;
    }
    if (cs != 'l') {
        _dout->set(undefined_byte(), time);
        return;
    }
    char we = Morvane::lower_letter(_we->letter(ti));
    char oe = Morvane::lower_letter(_oe->letter(ti));
    bool oe_known = oe == 'h' || oe == 'l';
    if (we == 'h') {
        if (oe == 'h') {
            _dout->set(released_byte(), time);
        } else if (oe == 'l') {
            int address = 0;
            _dout->set(binary_address(_a, ti, address) ? _cells->at(address).value(ti) : undefined_byte(),
                       time);
        } else {
            _dout->set(undefined_byte(), time);
        }
    } else if (we == 'l') {
        _dout->set(oe_known ? released_byte() : undefined_byte(), time);
        _write(ti, time);
    } else {
        _dout->set(undefined_byte(), time);
    }
}

void HM62256B::_write(int input_time, int time)
{
    int address = 0;
    if (!binary_address(_a, input_time, address)) {
        TLog("*** WARNING: writing to memory '%s' ('%s') with unstable address at time=%d!!",
             instance_name().c_str(), type_name().c_str(), time);
        return;
    }
    _cells->at(address).set(_din->value(input_time), time);
}
