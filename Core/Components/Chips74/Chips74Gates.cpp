#include "Core/Components/Chips74/Chips74Gates.h"

#include "Core/Components/Basic/Buffers.h"
#include "Core/Components/Basic/Gates.h"
#include "Core/Support/StringUtils.h"

#include <map>

namespace {

// Inner delays at making; a parameter update replaces them by the chip's own.
constexpr int nand_delay = 10;    // ns, DM74LS00
constexpr int inv_delay = 10;     // ns, DM74LS04
constexpr int and_delay = 13;     // ns, DM74LS08
constexpr int or_delay = 3;       // ns, DM74LS32
constexpr int buffer_delay = 25;  // ns, DM74LS125
constexpr int demux_delay = 38;   // ns, DM74LS139

}  // namespace

// InnerPartsChip

std::string InnerPartsChip::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

InnerPartsChip::~InnerPartsChip()
{
    // The inner parts own the pins and free them before the base destructor would reach them.
    for (Port* p : ports())
        p->remove_change_subscriber(this);
    remove_all_ports();
}

void InnerPartsChip::evaluate(int time)
{
    for (const auto& part : _parts)
        part->evaluate(time);
}

void InnerPartsChip::update_after_param_change()
{
    SingleDelayComponent::update_after_param_change();
    _set_delay_of_gates(delay());
}

void InnerPartsChip::reset()
{
    for (const auto& part : _parts)
        part->reset();
    Component::reset();
}

void InnerPartsChip::_set_delay_of_gates(int delay)
{
    for (const auto& part : _parts)
        part->set_delay(delay);
}

void InnerPartsChip::_take_pins(Component* part,
                                std::initializer_list<std::pair<const char*, std::string>> names, int n)
{
    for (const auto& [inner, outer] : names)
        add_pin_rename(part->pin(inner), outer + std::to_string(n));
}

// DM74LS00

ParaMap DM74LS00::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS00_default_params = {{"delay", "10"}};
    return ParaMap(DM74LS00_default_params);
}

DM74LS00::DM74LS00(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    // The inner parts keep their own delay until the parameters are applied.
    SingleDelayComponent::update_after_param_change();
}

DM74LS00::DM74LS00(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS00::_init()
{
    for (int n = 1; n <= 4; ++n) {
        Nand* gate = _adopt(new Nand("", nand_delay));
        _take_pins(gate, {{"a", "A"}, {"b", "B"}, {"out", "Y"}}, n);
    }
}

// DM74LS04

ParaMap DM74LS04::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS04_default_params = {{"delay", "10"}};
    return ParaMap(DM74LS04_default_params);
}

DM74LS04::DM74LS04(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS04::DM74LS04(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS04::_init()
{
    for (int n = 1; n <= 6; ++n) {
        Inv* gate = _adopt(new Inv("", inv_delay));
        _take_pins(gate, {{"in", "A"}, {"out", "Y"}}, n);
    }
}

// DM74LS08

ParaMap DM74LS08::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS08_default_params = {{"delay", "13"}};
    return ParaMap(DM74LS08_default_params);
}

DM74LS08::DM74LS08(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS08::DM74LS08(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS08::_init()
{
    for (int n = 1; n <= 4; ++n) {
        And* gate = _adopt(new And("", and_delay));
        Pin* a = gate->pin("a");
        Pin* b = gate->pin("b");
        Pin* out = gate->pin("out");
        // Named first, then added: the same as a rename on adding.
        a->set_name(fmt("A%d", n));
        add_port(a);
        b->set_name(fmt("B%d", n));
        add_port(b);
        out->set_name(fmt("Y%d", n));
        add_port(out);
    }
}

// DM74LS32

ParaMap DM74LS32::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS32_default_params = {{"delay", "14"}};
    return ParaMap(DM74LS32_default_params);
}

DM74LS32::DM74LS32(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS32::DM74LS32(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS32::_init()
{
    for (int n = 1; n <= 4; ++n) {
        Or* gate = _adopt(new Or("", or_delay));
        _take_pins(gate, {{"a", "A"}, {"b", "B"}, {"out", "Y"}}, n);
    }
}

// DM74LS125

ParaMap DM74LS125::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS125_default_params = {{"delay", "25"}};
    return ParaMap(DM74LS125_default_params);
}

DM74LS125::DM74LS125(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS125::DM74LS125(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS125::_init()
{
    for (int n = 1; n <= 4; ++n) {
        ThreeStateBuf* buffer = _adopt(new ThreeStateBuf("", buffer_delay));
        _take_pins(buffer, {{"in", "A"}, {"_g", "C"}, {"out", "Y"}}, n);
    }
}

// DM74LS139

ParaMap DM74LS139::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS139_default_params = {{"delay", "38"}};
    return ParaMap(DM74LS139_default_params);
}

DM74LS139::DM74LS139(const std::string& instance_name, const ParaMap& params)
    : InnerPartsChip(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS139::DM74LS139(const std::string& instance_name, int delay)
    : InnerPartsChip(class_name, instance_name, delay)
{
    _init();
    _set_delay_of_gates(delay);
}

void DM74LS139::_init()
{
    for (int n = 1; n <= 2; ++n) {
        Demux1to4* demux = _adopt(new Demux1to4("", demux_delay, true));
        Pin* x = demux->pin("x");
        Port* s = demux->port("S");
        Port* y = demux->port("Y");
        add_pin_rename(x, fmt("E%d", n));
        add_port_rename(s, fmt("A%d", n));
        add_port_rename(y, fmt("O%d", n));
    }
}
