#include "Core/Components/Chips74/DM74LS191.h"

#include <map>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

namespace {

char lower(BitState s)
{
    return Morvane::lower_letter(Morvane::letter(s));
}

}  // namespace

ParaMap DM74LS191::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS191_default_params = {{"delay", "52"}};
    return ParaMap(DM74LS191_default_params);
}

std::string DM74LS191::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS191::DM74LS191(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS191::DM74LS191(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void DM74LS191::_init()
{
    // The count is a port only for its history: out of the port list it has no net, no subscriber,
    // and the circuit never sees it.
    _count = make_port(4, Output, "Unnamed");
    remove_port(_count);

    _cten = make_pin(Input, "_CTEN");
    _d_u = make_pin(Input, "D_U");
    _clk = make_pin(Input, "CLK");
    _load = make_pin(Input, "_LOAD");
    _max_min = make_pin(Output, "MAXMIN");
    _rco = make_pin(Output, "_RCO");
    _dcba = make_port(4, Input, "DCBA");
    _qdcba = make_port(4, Output, "QDCBA");
}

void DM74LS191::reset()
{
    _count->clear();
    Component::reset();
}

void DM74LS191::evaluate(int time)
{
    int ti = time - delay();
    auto clk = static_cast<BitState>(_clk->value(ti));
    // No memory of the last evaluation: an edge is a change within the last ns before the read time.
    auto clk0 = static_cast<BitState>(_clk->value(ti - 1));
    auto cten = static_cast<BitState>(_cten->value(ti));
    auto d_u = static_cast<BitState>(_d_u->value(ti));

    // Start from the count before this time, so that a second evaluation at the same time counts
    // the edge once, not twice.
    _count->set(_count->value(time - 1), time);

    if (lower(static_cast<BitState>(_load->value(ti))) == 'l') {
        _count->set(_dcba->value(ti), time);
    } else if (lower(cten) == 'l' && lower(clk0) == 'l' && lower(clk) == 'h') {
        if (lower(d_u) == 'l')
            _increment_counter(time);
        else if (lower(d_u) == 'h')
            _decrement_counter(time);
        else
            _count->set(Value("UUUU"), time);
    }

    BitState mm = _compute_max_min(d_u, time);
    _max_min->set(Value(mm, 1), time);
    _rco->set(Value(_compute_rco(mm, cten, clk), 1), time);
    _qdcba->set(_count->value(time), time);
}

void DM74LS191::_increment_counter(int time)
{
    Value count = _count->value(time - 1);
    if (!count.is_integer()) {
        clog(warning, time - 1,
             "the internal counter state is UNDEFINED when a counter increment is attempted.");
        return;
    }
    Value next(4);
    next.set_to((count.integer() + 1) % 16);
    _count->set(next, time);
}

void DM74LS191::_decrement_counter(int time)
{
    Value count = _count->value(time - 1);
    if (!count.is_integer()) {
        clog(warning, time - 1,
             "the internal counter state is UNDEFINED when a counter decrement is attempted.");
        return;
    }
    Value next(4);
    next.set_to((count.integer() + 15) % 16);
    _count->set(next, time);
}

BitState DM74LS191::_compute_max_min(BitState d_u, int time)
{
    if (lower(d_u) == 'u')
        return BitState::UndefinedCap;
    Value count = _count->value(time);
    // z and x can't stand in a count read through the ports; taken as undefined all the same.
    if (count.has_any('u') || count.has_any('z') || count.has_any('x'))
        return BitState::UndefinedCap;
    int n = count.integer();
    bool at_end = (n == 15 && lower(d_u) == 'l') || (n == 0 && lower(d_u) == 'h');
    return at_end ? BitState::High : BitState::Low;
}

BitState DM74LS191::_compute_rco(BitState max_min, BitState cten, BitState clk)
{
    if (lower(max_min) == 'u' || lower(cten) == 'u' || lower(clk) == 'u')
        return BitState::UndefinedCap;
    if (lower(max_min) == 'h' && lower(cten) == 'l' && lower(clk) == 'l')
        return BitState::Low;
    return BitState::High;
}
