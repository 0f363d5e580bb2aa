#include "Core/Components/Basic/FlipFlop.h"

#include <map>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

ParaMap D_flip_flop::default_parameters()
{
    static const std::map<std::string, std::string> D_flip_flop_default_params = {{"delay", "10"}};
    return ParaMap(D_flip_flop_default_params);
}

std::string D_flip_flop::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

D_flip_flop::D_flip_flop(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

D_flip_flop::D_flip_flop(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void D_flip_flop::_init()
{
    _q = make_pin(Output, "Q");
    _q_inv = make_pin(Output, "_Q");
    _d = make_pin(Input, "D");
    _clk = make_pin(Input, "clk");
    _oe = make_pin(Input, "_OE");
}

void D_flip_flop::reset()
{
    _state.clear();
    _last_evaluation = 0;
    Component::reset();
}

void D_flip_flop::evaluate(int time)
{
    int d = delay();
    char oe = state_letter(_oe->value(time - d));
    char c0 = state_letter(_clk->value(_last_evaluation - d));
    char c1 = state_letter(_clk->value(time - d));
    BitState x = static_cast<BitState>(_d->value(time - d));

    // The edge may have come at any time since the last evaluation, not only one delay ago.
    if (c0 == 'l' && c1 == 'h')
        _state.set(Value(x, 1), time);

    if (oe == 'h') {
        _q->set(Value('z', 1), time);
        _q_inv->set(Value('z', 1), time);
    } else if (oe == 'u') {
        _q->set(Value('u', 1), time);
        _q_inv->set(Value('u', 1), time);
    } else if (oe == 'l') {
        char s = state_letter(_state.value(time));
        bool known = s == 'h' || s == 'l';
        _q->set(Value(known ? (s == 'h' ? 'H' : 'L') : 'u', 1), time);
        _q_inv->set(Value(known ? (s == 'h' ? 'L' : 'H') : 'u', 1), time);
    }
    _last_evaluation = time;
}
