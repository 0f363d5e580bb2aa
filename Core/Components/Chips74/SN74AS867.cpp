#include "Core/Components/Chips74/SN74AS867.h"

#include "Core/Support/TLog.h"

#include <map>
#include <stdexcept>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

namespace {

enum class Mode
{
    None,  // S1 or S0 undefined
    Clear,
    Down,
    Load,
    Up,
};

char lower(BitState s)
{
    return Morvane::lower_letter(Morvane::letter(s));
}

Mode mode_of(BitState s1, BitState s0)
{
    char hi = lower(s1);
    char lo = lower(s0);
    if (!Morvane::is_binary(hi) || !Morvane::is_binary(lo))
        return Mode::None;
    if (hi == 'l')
        return lo == 'l' ? Mode::Clear : Mode::Down;
    return lo == 'l' ? Mode::Load : Mode::Up;
}

}  // namespace

ParaMap SN74AS867::default_parameters()
{
    static const std::map<std::string, std::string> SN74AS867_default_params = {{"delay", "16"}};
    return ParaMap(SN74AS867_default_params);
}

std::string SN74AS867::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

SN74AS867::SN74AS867(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

SN74AS867::SN74AS867(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void SN74AS867::_init()
{
    // The count is a port only for its history: out of the port list it has no net, no subscriber,
    // and the circuit never sees it.
    _count = make_port(8, Output, "Unnamed");
    remove_port(_count);

    _s0 = make_pin(Input, "S0");
    _s1 = make_pin(Input, "S1");
    _ent = make_pin(Input, "_ENT");
    _enp = make_pin(Input, "_ENP");
    _clk = make_pin(Input, "CLK");
    _rco = make_pin(Output, "_RCO");
    _ha = make_port(8, Input, "HA");
    _qa = make_port(8, Output, "QA");
}

void SN74AS867::reset()
{
    _last_evaluation = 0;
    _count->clear();
    Component::reset();
}

void SN74AS867::evaluate(int time)
{
    int ti = time - delay();
    auto clk = static_cast<BitState>(_clk->value(ti));
    auto clk0 = static_cast<BitState>(_clk->value(_last_evaluation - delay()));
    auto s0 = static_cast<BitState>(_s0->value(ti));
    auto s1 = static_cast<BitState>(_s1->value(ti));
    auto ent = static_cast<BitState>(_ent->value(ti));
    auto enp = static_cast<BitState>(_enp->value(ti));
    Value ha = _ha->value(ti);

    Mode mode = mode_of(s1, s0);
    bool undefined = false;
    for (BitState s : {clk0, clk, s0, s1, ent, enp}) {
        if (!Morvane::is_binary(s))
            undefined = true;
    }
    // Clear needs no clock, so nothing else matters to it.
    if (mode == Mode::Clear)
        undefined = false;
    bool disabled = lower(ent) == 'h' || lower(enp) == 'h';

    // Undefined inputs don't spoil a load: without a clean edge it is simply not done.
    if (undefined && mode != Mode::Load) {
        TLog trace("867: some input is undefined at t=%d/it=%d: clk0=%c, clk1=%c, s0=%c, s1=%c, _ent=%c, "
                   "_enp=%c",
                   time, ti, Morvane::letter(clk0), Morvane::letter(clk), Morvane::letter(s0),
                   Morvane::letter(s1), Morvane::letter(ent), Morvane::letter(enp));
        _count->set(Value("UUUUUUUU"), time);
        _rco->set(Value("U"), time);
    } else {
        if (mode == Mode::Clear) {
            _count->set(Value("LLLLLLLL"), time);
            _rco->set(Value("H"), time);
        } else if (lower(clk0) == 'l' && lower(clk) == 'h') {
            if (mode == Mode::Down && !disabled)
                _decrement_counter(time);
            else if (mode == Mode::Up && !disabled)
                _increment_counter(time);
            else if (mode == Mode::Load)
                _count->set(ha, time);
        }

        Value count = _count->value(time);
        if (!count.is_integer()) {
            _rco->set(Value("U"), time);
        } else {
            bool at_end =
                (mode == Mode::Down && count.integer() == 0) || (mode == Mode::Up && count.integer() == 255);
            _rco->set(Value(at_end ? "L" : "H"), time);
        }
    }

    _qa->set(_count->value(time), time);
    _last_evaluation = time;
}

void SN74AS867::_increment_counter(int time)
{
    Value count = _count->value(time - 1);
    try {
        Value next(8);
        next.set_to((count.integer() + 1) % 256);
        _count->set(next, time);
    } catch (const std::domain_error&) {
        clog(error, time, "Evaluation error: trying to increment internal unknown value '%s'.\n",
             count.c_str());
    }
}

void SN74AS867::_decrement_counter(int time)
{
    Value count = _count->value(time - 1);
    try {
        Value next(8);
        next.set_to((count.integer() + 255) % 256);
        _count->set(next, time);
    } catch (const std::domain_error&) {
        clog(error, time, "Evaluation error: trying to decrement internal unknown value '%s'.\n",
             count.c_str());
    }
}
