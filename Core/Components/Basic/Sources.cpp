#include "Core/Components/Basic/Sources.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"

#include <climits>
#include <cstdint>
#include <map>

using Morvane::Output;

// LevelSource

LevelSource::LevelSource(const char* class_name, const std::string& instance_name, char level)
    : Component(class_name, instance_name, nullptr),
      _level(level)
{
    _out = make_pin(Output, "out");
}

LevelSource::LevelSource(const char* class_name, const std::string& instance_name, const ParaMap& params,
                         char level)
    : Component(class_name, instance_name, params),
      _level(level)
{
    _out = make_pin(Output, "out");
}

void LevelSource::init(int)
{
    _out->set(Value(_level, 1), 0);
}

ParaMap High::default_parameters()
{
    static const std::map<std::string, std::string> High_default_params;
    return ParaMap(High_default_params);
}

ParaMap Low::default_parameters()
{
    static const std::map<std::string, std::string> Low_default_params;
    return ParaMap(Low_default_params);
}

ParaMap PullUp::default_parameters()
{
    static const std::map<std::string, std::string> PullUp_default_params;
    return ParaMap(PullUp_default_params);
}

ParaMap PullDown::default_parameters()
{
    static const std::map<std::string, std::string> PullDown_default_params;
    return ParaMap(PullDown_default_params);
}

// Const

ParaMap Const::default_parameters()
{
    static const std::map<std::string, std::string> Const_default_params = {{"size", "8"}, {"value", "ff"}};
    return ParaMap(Const_default_params);
}

std::string Const::parameter_description()
{
    return "<b>size</b> The bit width of the constant.<p><b>value</b> The value of the constant (will be "
           "truncated to fit within 2^size-1).";
}

Const::Const(const std::string& instance_name, unsigned size, Value value)
    : Component(class_name, instance_name, nullptr),
      _size(size)
{
    value.truncate_down_to(size);
    _value.set_size(value.size());
    _value = value;
    _init();
}

Const::Const(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _parse_parameters();
    _init();
}

void Const::_init()
{
    _out = make_port(static_cast<int>(_size), Output, "out");
    _out->set(_value, 0);
}

void Const::_parse_parameters()
{
    _size = 0;
    const ParaMap& params = parameters();
    if (!params.has_key("size"))
        throw Error("A Const unit needs a 'size' parameter.");
    _size = static_cast<unsigned>(str_to_number(params["size"]));
    if (!params.has_key("value"))
        throw Error("A Const unit needs a 'value' parameter.");
    Value value(hexpand(params["value"]));
    value.confine_to(_size);
    // Values assign only into their own width, so the stored one takes the new width first.
    _value.set_size(value.size());
    _value = value;
}

void Const::reset()
{
    _out->clear();
}

void Const::init(int)
{
    _out->set(_value, 0);
}

void Const::evaluate(int)
{
    _out->set(_value, 0);
}

void Const::update_after_param_change()
{
    _parse_parameters();
}

// Step

ParaMap Step::default_parameters()
{
    static const std::map<std::string, std::string> Step_default_params = {{"delay", "100"},
                                                                           {"inverted", "0"}};
    return ParaMap(Step_default_params);
}

std::string Step::parameter_description()
{
    return "<b>delay</b> The time (in ns) before the step is taken.<p><b>inverted</b> If 0, the step is "
           "L->H, if 1 the step is H->L,";
}

Step::Step(const std::string& instance_name, int delay, bool inverted)
    : Component(class_name, instance_name, nullptr),
      _delay(delay),
      _inverted(inverted)
{
    _out = make_pin(Output, "out");
}

Step::Step(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _out = make_pin(Output, "out");
    Step::update_after_param_change();
}

void Step::update_after_param_change()
{
    parameters().get_value("delay", _delay);
    int inverted = 0;
    parameters().get_value("inverted", inverted);
    _inverted = inverted > 0;
}

void Step::init(int end_time)
{
    _out->set(Value(_inverted ? 'H' : 'L', 1), 0);
    _out->set(Value(_inverted ? 'L' : 'H', 1), _delay);
    // Does nothing when it runs, but the run lasts at least that long.
    request_evaluation(end_time, this, nullptr);
}

// Oscillator

ParaMap Oscillator::default_parameters()
{
    static const std::map<std::string, std::string> Oscillator_default_params = {{"frequency", "1000000"},
                                                                                 {"offset", "0"}};
    return ParaMap(Oscillator_default_params);
}

std::string Oscillator::parameter_description()
{
    return "<b>frequency</b> The frequency of the oscillator, in Hz.<p><b>offset</b> The time (in ns) until "
           "the oscillator makes its first positive flank.";
}

Oscillator::Oscillator(const std::string& instance_name, float frequency, int offset)
    : Component(class_name, instance_name, nullptr),
      _frequency(frequency),
      _offset(offset)
{
    _out = make_pin(Output, "out");
}

Oscillator::Oscillator(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _out = make_pin(Output, "out");
    Oscillator::update_after_param_change();
}

void Oscillator::update_after_param_change()
{
    parameters().get_value("frequency", _frequency);
    parameters().get_value("offset", _offset);
}

void Oscillator::init(int end_time)
{
    // The float is widened before the division, so 1000000 gives exactly 1000.
    double exact_period = 1e9 / static_cast<double>(_frequency);
    // Also false for NaN; the upper bound keeps the conversion defined, and such a period has no
    // second edge within any run anyway.
    if (!(exact_period >= 1.0 && exact_period < 9.0e18))
        throw Error("Oscillator '%s': a frequency of %g Hz gives no period of 1 ns or more.",
                    instance_name().c_str(), static_cast<double>(_frequency));
    std::int64_t period = static_cast<std::int64_t>(exact_period);
    std::int64_t count = end_time / period;
    std::int64_t half = period / 2;

    const Value low('L', 1);
    const Value high('H', 1);
    _out->set(low, 0);
    // Times only grow from here, so each write appends to the history.
    for (std::int64_t i = 0; i <= count; ++i) {
        std::int64_t rise = _offset + i * period;
        std::int64_t fall = rise + half;
        // A time no run can reach ends the waveform rather than wrap around.
        if (rise > INT_MAX)
            break;
        _out->set(high, static_cast<int>(rise));
        if (fall > INT_MAX)
            break;
        _out->set(low, static_cast<int>(fall));
    }
    request_evaluation(end_time, this, nullptr);
}
