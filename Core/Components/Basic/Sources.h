// The parts without inputs: fixed levels, pulls, constants, a step and a clock oscillator.
//
// None of them reacts to anything. Each writes the whole waveform of its output in init(), with
// future times, before the first event of a run; the changes then travel as ordinary port changes.
// reset() clears the output and init() writes it again, so nothing carries over between runs.
//
// - High, Low: a strong H or L from time 0.
// - PullUp, PullDown: the weak p or n from time 0, which any driver on the net overrides.
// - Const: a value of `size` bits from time 0; it stands in the port from construction on.
// - Step: L until `delay` ns, then H (or H, then L with `inverted`).
// - Oscillator: L at 0, then a period of 1e9/`frequency` ns whose first rising edge is at `offset` ns;
//   the high phase is the shorter one when the period is odd, and pulses are written up to and
//   including the period that holds the end of the run.
#ifndef MORVANE_CORE_COMPONENTS_SOURCES_H
#define MORVANE_CORE_COMPONENTS_SOURCES_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <string>
#include <vector>

/// What High, Low, PullUp and PullDown share: one output pin that holds one letter from time 0.
class LevelSource : public Component
{
public:
    /// No parameters, so no help text.
    static std::string parameter_description() { return ""; }

    /// Writes the level at time 0.
    void init(int end_time) override;
    void evaluate(int) override {}
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

protected:
    LevelSource(const char* class_name, const std::string& instance_name, char level);
    LevelSource(const char* class_name, const std::string& instance_name, const ParaMap& params, char level);

private:
    Pin* _out = nullptr;  // the one output
    char _level;          // the bit state letter it holds
};

/// A strong H on "out".
class High : public LevelSource
{
public:
    static constexpr const char* class_name = "High";
    static ParaMap default_parameters();

    explicit High(const std::string& instance_name) : LevelSource(class_name, instance_name, 'H') {}
    High(const std::string& instance_name, const ParaMap& params)
        : LevelSource(class_name, instance_name, params, 'H')
    {
    }
};

/// A strong L on "out".
class Low : public LevelSource
{
public:
    static constexpr const char* class_name = "Low";
    static ParaMap default_parameters();

    explicit Low(const std::string& instance_name) : LevelSource(class_name, instance_name, 'L') {}
    Low(const std::string& instance_name, const ParaMap& params)
        : LevelSource(class_name, instance_name, params, 'L')
    {
    }
};

/// A weak high (p) on "out": the net reads H unless something drives it.
class PullUp : public LevelSource
{
public:
    static constexpr const char* class_name = "PullUp";
    static ParaMap default_parameters();

    explicit PullUp(const std::string& instance_name) : LevelSource(class_name, instance_name, 'p') {}
    PullUp(const std::string& instance_name, const ParaMap& params)
        : LevelSource(class_name, instance_name, params, 'p')
    {
    }
};

/// A weak low (n) on "out": the net reads L unless something drives it.
class PullDown : public LevelSource
{
public:
    static constexpr const char* class_name = "PullDown";
    static ParaMap default_parameters();

    explicit PullDown(const std::string& instance_name) : LevelSource(class_name, instance_name, 'n') {}
    PullDown(const std::string& instance_name, const ParaMap& params)
        : LevelSource(class_name, instance_name, params, 'n')
    {
    }
};

/// A constant of `size` bits on port "out". The text of "value" is the compact form ("ff", "3Z"),
/// cut or filled with L to the size. A changed parameter map changes the value but not the port.
class Const : public Component
{
public:
    static constexpr const char* class_name = "Const";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// The value is cut to `size` bits; a narrower one fails when it is written.
    Const(const std::string& instance_name, unsigned size, Value value);
    /// Without "size" or "value" throws Error.
    Const(const std::string& instance_name, const ParaMap& params);

    /// Clears the port only.
    void reset() override;
    /// Writes the value at time 0, whatever the time given.
    void init(int end_time) override;
    /// Writes the value at time 0, whatever the time given.
    void evaluate(int time) override;
    std::vector<std::string> get_valid_param_keys() override { return {"size", "value"}; }
    /// Reads "size" and "value" again; the port keeps its width.
    void update_after_param_change() override;
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

    unsigned size() const { return _size; }
    const Value& value() const { return _value; }

private:
    void _parse_parameters();
    void _init();

    unsigned _size = 0;    // bits
    Value _value;          // what "out" holds
    Port* _out = nullptr;  // the one output, `size` bits
};

/// One edge on "out": L from 0 and H from `delay` on, or the reverse with `inverted`.
class Step : public Component
{
public:
    static constexpr const char* class_name = "Step";
    static ParaMap default_parameters();
    static std::string parameter_description();

    Step(const std::string& instance_name, int delay, bool inverted);
    Step(const std::string& instance_name, const ParaMap& params);

    /// Writes both levels, and keeps an event at the end of the run.
    void init(int end_time) override;
    void evaluate(int) override {}
    std::vector<std::string> get_valid_param_keys() override { return {"delay", "inverted"}; }
    /// "inverted" is a number; above 0 inverts, and a missing key means not inverted.
    void update_after_param_change() override;
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

    int delay() const { return _delay; }
    bool inverted() const { return _inverted; }

private:
    Pin* _out = nullptr;     // the one output
    int _delay = 0;          // ns, time of the edge
    bool _inverted = false;  // H->L instead of L->H
};

/// A clock on "out", written for the whole run at once.
class Oscillator : public Component
{
public:
    static constexpr const char* class_name = "Oscillator";
    static ParaMap default_parameters();
    static std::string parameter_description();

    Oscillator(const std::string& instance_name, float frequency, int offset);
    Oscillator(const std::string& instance_name, const ParaMap& params);

    /// Writes every pulse up to the one that holds `end_time`, and keeps an event at the end of the
    /// run. A frequency whose period is no whole ns (above 1 GHz, or not above 0) throws Error.
    void init(int end_time) override;
    void evaluate(int) override {}
    std::vector<std::string> get_valid_param_keys() override { return {"frequency", "offset"}; }
    void update_after_param_change() override;
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

    float frequency() const { return _frequency; }
    int offset() const { return _offset; }

private:
    Pin* _out = nullptr;      // the one output
    float _frequency = 0.0f;  // Hz
    int _offset = 0;          // ns, time of the first rising edge
};

#endif  // MORVANE_CORE_COMPONENTS_SOURCES_H
