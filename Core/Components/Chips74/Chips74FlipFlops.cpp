#include "Core/Components/Chips74/Chips74FlipFlops.h"

#include "Core/Components/Chips74/Chips74Family.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <map>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

namespace {

const Value undefined_bit('U', 1);  // what the 74 writes for anything it can't decide

Value bit(char letter)
{
    return Value(letter, 1);
}

}  // namespace

// SN74x74

ParaMap SN74x74::default_parameters()
{
    static const std::map<std::string, std::string> SN74x74_default_params = {{"family", "LS"}};
    return ParaMap(SN74x74_default_params);
}

std::string SN74x74::parameter_description()
{
    return "<b>family</b> Which device family variant to be considered. Supported values are: LS, AS and "
           "ALS. It affects the timing behaviour.<p><b>delay</b> The gate delay in ns.<p>If both "
           "parameters are specified, the <b>delay</b> parameter overrides <b>family<b>";
}

SN74x74::SN74x74(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    _set_delay_from_family(params);
}

SN74x74::SN74x74(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void SN74x74::_init()
{
    for (int n = 1; n <= 2; ++n) {
        FlipFlop& ff = _ff[n - 1];
        ff.set = make_pin(Input, fmt("_SD%d", n));
        ff.clear = make_pin(Input, fmt("_CD%d", n));
        ff.clock = make_pin(Input, fmt("CP%d", n));
        ff.d = make_pin(Input, fmt("D%d", n));
        ff.q = make_pin(Output, fmt("Q%d", n));
        ff.q_inv = make_pin(Output, fmt("_Q%d", n));
    }
}

void SN74x74::_set_delay_from_family(const ParaMap& params)
{
    int delay = 35;  // LS, for a map without either key
    if (params.has_key("family") &&
        !find_family_delay({{"F", 11}, {"AS", 11}, {"ALS", 18}, {"LS", 35}}, params["family"], delay))
        throw Error("Error: unknown device family of SN74x74: '%s'.", params["family"].c_str());
    params.get_value("delay", delay);
    set_delay(delay);
}

void SN74x74::update_after_param_change()
{
    _set_delay_from_family(parameters());
}

std::vector<std::string> SN74x74::get_valid_param_keys()
{
    return {"delay", "family"};
}

std::string SN74x74::aux_info_string()
{
    return fmt("<br>Delay: <i>%d</i>", delay());
}

void SN74x74::reset()
{
    _last_evaluation = 0;
    Component::reset();
}

void SN74x74::evaluate(int time)
{
    for (FlipFlop& ff : _ff)
        _evaluate_flip_flop(ff, time);
    // One time for both: the second flip-flop must look back as far as the first.
    _last_evaluation = time;
}

void SN74x74::_evaluate_flip_flop(FlipFlop& ff, int time)
{
    int input_time = time - delay();
    char clear = state_letter(ff.clear->value(input_time));
    char set = state_letter(ff.set->value(input_time));

    if (clear == 'l') {
        // Set and clear low together drive both outputs high, as the data sheet's non-stable state.
        if (set == 'h') {
            ff.q->set(bit('L'), time);
            ff.q_inv->set(bit('H'), time);
        } else if (set == 'l') {
            ff.q->set(bit('H'), time);
            ff.q_inv->set(bit('H'), time);
        } else {
            ff.q->set(undefined_bit, time);
            ff.q_inv->set(undefined_bit, time);
        }
        return;
    }
    if (clear == 'h' && set == 'l') {
        ff.q->set(bit('H'), time);
        ff.q_inv->set(bit('L'), time);
        return;
    }
    if (clear != 'h' || set != 'h') {
        ff.q->set(undefined_bit, time);
        ff.q_inv->set(undefined_bit, time);
        return;
    }

    char before = state_letter(ff.clock->value(_last_evaluation - delay()));
    char now = state_letter(ff.clock->value(input_time));
    if (!Morvane::is_binary(before) || !Morvane::is_binary(now)) {
        ff.q->set(undefined_bit, time);
        ff.q_inv->set(undefined_bit, time);
    } else if (before == 'l' && now == 'h') {
        Value d = ff.d->value(input_time);
        char letter = state_letter(d);
        ff.q->set(d, time);
        ff.q_inv->set(letter == 'l' ? bit('H') : (letter == 'h' ? bit('L') : undefined_bit), time);
    }
}

// DM74LS78A

ParaMap DM74LS78A::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS78A_default_params = {{"delay", "20"}};
    return ParaMap(DM74LS78A_default_params);
}

std::string DM74LS78A::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS78A::DM74LS78A(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS78A::DM74LS78A(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void DM74LS78A::_init()
{
    _clear = make_pin(Input, "_CLR");
    _clock = make_pin(Input, "_CLK");
    for (int n = 1; n <= 2; ++n) {
        _pre[n - 1] = make_pin(Input, fmt("_%dPRE", n));
        _j[n - 1] = make_pin(Input, fmt("%dJ", n));
        _k[n - 1] = make_pin(Input, fmt("%dK", n));
        _q[n - 1] = make_pin(Output, fmt("%dQ", n));
        _q_inv[n - 1] = make_pin(Output, fmt("_%dQ", n));
    }
}

void DM74LS78A::reset()
{
    for (int i = 0; i < 2; ++i)
        _set_q(i, BitState::Undefined, BitState::Undefined);
    Component::reset();
}

void DM74LS78A::evaluate(int time)
{
    BitState clear = BitState::Undefined;
    bool falling = false;
    BitState pre[2];
    BitState j[2];
    BitState k[2];
    _read_inputs(time, clear, falling, pre, j, k);

    char clear_letter = Morvane::lower_letter(Morvane::letter(clear));
    if (clear_letter == 'h') {
        _handle_flip_flops(falling, pre, j, k);
    } else if (clear_letter == 'l') {
        _handle_clear(pre);
    } else {
        for (int i = 0; i < 2; ++i)
            _set_q(i, BitState::Undefined, BitState::Undefined);
    }

    // Written every time, changed or not.
    for (int i = 0; i < 2; ++i) {
        _q[i]->set(Value(_q_state[i], 1), time);
        _q_inv[i]->set(Value(_q_inv_state[i], 1), time);
    }
    _last_evaluation = time;
}

void DM74LS78A::_read_inputs(int time, BitState& clear, bool& falling, BitState* pre, BitState* j,
                             BitState* k)
{
    int input_time = time - delay();
    clear = static_cast<BitState>(_clear->value(input_time));
    char before = state_letter(_clock->value(_last_evaluation - delay()));
    char now = state_letter(_clock->value(input_time));
    falling = before == 'h' && now == 'l';
    for (int i = 0; i < 2; ++i) {
        pre[i] = static_cast<BitState>(_pre[i]->value(input_time));
        j[i] = static_cast<BitState>(_j[i]->value(input_time));
        k[i] = static_cast<BitState>(_k[i]->value(input_time));
    }
}

void DM74LS78A::_handle_clear(BitState* pre)
{
    for (int i = 0; i < 2; ++i) {
        if (Morvane::lower_letter(Morvane::letter(pre[i])) == 'h')
            _set_q(i, BitState::Low, BitState::High);
        else
            _set_q(i, BitState::Undefined, BitState::Undefined);
    }
}

void DM74LS78A::_handle_flip_flops(bool falling, BitState* pre, BitState* j, BitState* k)
{
    for (int i = 0; i < 2; ++i) {
        char p = Morvane::lower_letter(Morvane::letter(pre[i]));
        if (p == 'h') {
            if (falling)
                _handle_jk_op(falling, i, j[i], k[i]);
        } else if (p == 'l') {
            _set_q(i, BitState::High, BitState::Low);
        } else {
            _set_q(i, BitState::Undefined, BitState::Undefined);
        }
    }
}

void DM74LS78A::_handle_jk_op(bool, int index, BitState j, BitState k)
{
    char jl = Morvane::lower_letter(Morvane::letter(j));
    char kl = Morvane::lower_letter(Morvane::letter(k));
    if (jl == 'l' && kl == 'l')
        return;
    if (jl == 'l' && kl == 'h')
        _set_q(index, BitState::Low, BitState::High);
    else if (jl == 'h' && kl == 'l')
        _set_q(index, BitState::High, BitState::Low);
    else if (jl == 'h' && kl == 'h')
        // Each output on its own: from an undefined state both stay undefined.
        _set_q(index, _toggle(_q_state[index]), _toggle(_q_inv_state[index]));
    else
        _set_q(index, BitState::Undefined, BitState::Undefined);
}

void DM74LS78A::_set_q(int index, BitState q, BitState nq)
{
    _q_state[index] = q;
    _q_inv_state[index] = nq;
}

BitState DM74LS78A::_toggle(BitState state)
{
    char l = Morvane::lower_letter(Morvane::letter(state));
    if (l == 'h')
        return BitState::Low;
    if (l == 'l')
        return BitState::High;
    return BitState::Undefined;
}
