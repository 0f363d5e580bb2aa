// The two-level logic gates And, Or, Nand, Nor, Xor, Xnor and Inv.
//
// The gates are the smallest complete parts, and the pattern every part of the library follows:
// - one static `class_name`, from which the type name a file uses follows;
// - static default_parameters() (a function-local map, so nothing depends on the order of static
//   start-up) and parameter_description(), which the factory table points at;
// - a constructor from an instance name and a ParaMap for the factory, which makes the pins and
//   applies the map at once; chips build inner gates with the (name, delay) form instead;
// - pins made with make_pin in the order the circuit sees them, inputs first;
// - a change on any input asks for an evaluation one delay later (SingleDelayComponent), and the
//   evaluation reads the inputs as they stood one delay earlier: a pure transport delay, so every
//   change is answered on its own, a pulse shorter than the delay passes, and nothing is cancelled.
//
// Results bit by bit, the dominant input first: L into And or Nand, and H into Or or Nor, decide
// even against an undefined other input; then any u (or the U a floating input reads as) gives u;
// a z that reaches a gate (z translation off) falls through to the last rule. The output reads u
// until the first input change has been answered: a gate computes nothing by itself at start.
//
// Timing parameter: delay, ns from an input change to the output, 3 by default.
#ifndef MORVANE_CORE_COMPONENTS_GATES_H
#define MORVANE_CORE_COMPONENTS_GATES_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <string>

/// What the seven gates share: the output pin and the evaluation that sets it from the inputs read
/// one delay back.
class Gate : public SingleDelayComponent
{
public:
    /// The same help text for every gate.
    static std::string parameter_description();

    /// Sets "out" at `time` from the inputs as they stood at `time` - delay.
    void evaluate(int time) override;
    /// The inputs are read one delay back.
    int history_reach() const override { return delay(); }

protected:
    Gate(const char* class_name, const std::string& instance_name, const ParaMap& params)
        : SingleDelayComponent(class_name, instance_name, params)
    {
    }
    Gate(const char* class_name, const std::string& instance_name, int delay)
        : SingleDelayComponent(class_name, instance_name, delay)
    {
    }

    /// The gate's function of its inputs read at `input_time`: the letter of the one output bit.
    virtual char _logic(int input_time) = 0;

    Pin* _out = nullptr;  // the one output, made after the inputs
};

/// Output H only while both inputs are H; any L input gives L.
class And : public Gate
{
public:
    static constexpr const char* class_name = "And";
    static ParaMap default_parameters();

    And(const std::string& instance_name, const ParaMap& params);
    And(const std::string& instance_name, int delay);

private:
    void _init();
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output H if either input is H.
class Or : public Gate
{
public:
    static constexpr const char* class_name = "Or";
    static ParaMap default_parameters();

    Or(const std::string& instance_name, const ParaMap& params);
    Or(const std::string& instance_name, int delay);

private:
    void _init();
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output L only while both inputs are H; any L input gives H.
class Nand : public Gate
{
public:
    static constexpr const char* class_name = "Nand";
    static ParaMap default_parameters();

    Nand(const std::string& instance_name, const ParaMap& params);
    Nand(const std::string& instance_name, int delay);

private:
    void _init();
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output L if either input is H.
class Nor : public Gate
{
public:
    static constexpr const char* class_name = "Nor";
    static ParaMap default_parameters();

    Nor(const std::string& instance_name, const ParaMap& params);
    Nor(const std::string& instance_name, int delay);

private:
    void _init();
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output H when the inputs differ (one H, one L). Each input is read as a single bit state and
/// made a fresh one-bit value first, so anything but one bit throws std::bad_cast.
class Xor : public Gate
{
public:
    static constexpr const char* class_name = "Xor";
    static ParaMap default_parameters();

    Xor(const std::string& instance_name, const ParaMap& params);

private:
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output L when the inputs differ (one H, one L).
class Xnor : public Gate
{
public:
    static constexpr const char* class_name = "Xnor";
    static ParaMap default_parameters();

    Xnor(const std::string& instance_name, const ParaMap& params);

private:
    char _logic(int input_time) override;

    Pin* _a = nullptr;  // input
    Pin* _b = nullptr;  // input
};

/// Output H for L in, L for H in.
class Inv : public Gate
{
public:
    static constexpr const char* class_name = "Inv";
    static ParaMap default_parameters();

    Inv(const std::string& instance_name, const ParaMap& params);
    Inv(const std::string& instance_name, int delay);

private:
    void _init();
    char _logic(int input_time) override;

    Pin* _in = nullptr;  // input
};

#endif  // MORVANE_CORE_COMPONENTS_GATES_H
