// The D registers: SN74x174 (hex, with clear), SN74x273 (octal, with clear), DM74LS374 (octal,
// three-state, built of eight D flip-flops) and DM74x574 (the same function, computed directly).
//
// All take "D" on a rising clock: L at the last evaluation's time minus the delay, H one delay before
// this evaluation. The types with "x" stand for a logic family, whose "family" picks the delay; a
// "delay" overrides it.
#ifndef MORVANE_CORE_COMPONENTS_CHIPS74REGISTERS_H
#define MORVANE_CORE_COMPONENTS_CHIPS74REGISTERS_H

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/BitState.h"
#include "Core/Simulation/Value.h"

#include <string>
#include <vector>

class D_flip_flop;
class Join;
class Split;

/// Hex D flip-flop with active-low clear, type "74x174". In priority:
/// - "_CLR" L: every Q L; "_CLR" undefined: every Q u;
/// - on a rising "CLK" each Q takes its own D; a clock that stays or falls writes nothing; a clock
///   undefined now or at the last evaluation makes every Q u.
/// Timing: family F 14 ns, AS 15, ALS 30, LS 35; "delay" overrides; 35 without either.
class SN74x174 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "SN74x174";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// An unknown family throws Error.
    SN74x174(const std::string& instance_name, const ParaMap& params);
    /// The delay as given; no family is read.
    SN74x174(const std::string& instance_name, int delay);

    /// The last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;
    /// "delay" and "family"
    std::vector<std::string> get_valid_param_keys() override;
    /// The family's delay, or "delay" if given; an unknown family throws Error.
    void update_after_param_change() override;
    std::string aux_info_string() override;

private:
    void _init();
    void _set_delay_from_family(const ParaMap& params);
    void _set_all_q(int time, Morvane::BitState state);
    void _move_d_to_q(int read_time, int write_time);

    Pin* _clear = nullptr;      // "_CLR", active low
    Pin* _clock = nullptr;      // "CLK", rising edge
    Pin* _q[6] = {};            // "1Q" to "6Q"
    Pin* _d[6] = {};            // "1D" to "6D"
    int _last_evaluation = -1;  // ns; the clock's earlier level is read one delay before this
};

/// Octal D flip-flop with active-low clear, type "74x273". A rising "clk" stores "D"; then "_CLR" L
/// clears the store and drives "Q" L, "_CLR" H drives the store, and an undefined "_CLR" drives U
/// while the store stays. Timing: family LS only, 27 ns, also without a family; "delay" overrides.
class SN74x273 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "SN74x273";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// A family other than LS throws Error.
    SN74x273(const std::string& instance_name, const ParaMap& params);
    /// The delay as given; no family is read.
    SN74x273(const std::string& instance_name, int delay);

    /// Forgets the store; the last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;
    /// "delay" and "family"
    std::vector<std::string> get_valid_param_keys() override;
    /// The family's delay, then "delay" if given; a family other than LS throws Error.
    void update_after_param_change() override;
    std::string aux_info_string() override;

private:
    void _init();
    void _set_delay_from_family(const ParaMap& params);

    Pin* _clear = nullptr;      // "_CLR", active low
    Pin* _clock = nullptr;      // "clk", rising edge
    Port* _d = nullptr;         // "D", 8 bits
    Port* _q = nullptr;         // "Q", 8 bits
    Value _stored{"UUUUUUUU"};  // the last value clocked in
    int _last_evaluation = 0;   // ns; the clock's earlier level is read one delay before this
};

/// Octal D flip-flop with three-state outputs, type "74LS374", assembled of eight D_flip_flop parts
/// between a Split of "D" and a Join onto "Q". The chip adds no time of its own: each flip-flop
/// stores on a rising "clk" and drives its bit of "Q" one delay later, released (z) while "_OE" is H
/// and u while it is undefined. Timing: delay, 28 ns by default, handed to every flip-flop.
class DM74LS374 : public Circuit
{
public:
    static constexpr const char* class_name = "DM74LS374";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS374(const std::string& instance_name, const ParaMap& params);
    /// Every flip-flop gets `delay`; no parameters.
    DM74LS374(const std::string& instance_name, int delay);

    /// Resets the split, the flip-flops and the join, then the own ports; the inner nets keep their
    /// histories.
    void reset() override;
    /// Hands "delay" to every flip-flop.
    void update_after_param_change() override;

    int delay() const { return _delay; }

private:
    void _init();
    /// Made by the own factory and placed here, so the circuit owns and frees it.
    Component* _make_part(const std::string& type, const std::string& spec);

    int _delay = 28;           // ns, clock or enable to "Q"
    Split* _split = nullptr;   // "D" out to the flip-flops
    Join* _join = nullptr;     // the flip-flops onto "Q"
    D_flip_flop* _ff[8] = {};  // bit i of the register
};

/// Octal D flip-flop with three-state outputs, type "74x574": a circuit in class only, holding no
/// parts. A rising "clk" stores "D"; "_OE" H releases "Q" (Z), U drives U, L drives the store, any
/// other state writes nothing. Timing: family F 13 ns, AS 10, ALS 18, LS 28; "delay" overrides.
/// The defaults hold a "delay" that every instance from the factory gets, so there a family alone
/// changes nothing.
class DM74x574 : public Circuit
{
public:
    static constexpr const char* class_name = "DM74x574";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// Applies the parameters before the ports are made; an unknown family throws Error.
    DM74x574(const std::string& instance_name, const ParaMap& params);
    /// The delay as given; no family is read.
    DM74x574(const std::string& instance_name, int delay);

    /// Forgets the store; the last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;
    /// Asks for an evaluation one delay later, like a single-delay part.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    /// The family's delay, or "delay" if given; an unknown family throws Error.
    void update_after_param_change() override;
    /// Inputs one delay back, and the clock as it stood before the change that asked for this run.
    int history_reach() const override { return _delay + 1; }
    std::string aux_info_string() override;

    int delay() const { return _delay; }

private:
    void _init();
    void _set_delay_from_family(const ParaMap& params);

    int _delay = 28;            // ns, clock or enable to "Q"
    Pin* _clock = nullptr;      // "clk", rising edge
    Pin* _oe = nullptr;         // "_OE", active low
    Port* _q = nullptr;         // "Q", 8 bits
    Port* _d = nullptr;         // "D", 8 bits
    Value _stored{"UUUUUUUU"};  // the last value clocked in
    int _last_evaluation = 0;   // ns; the clock's earlier level is read one delay before this
};

#endif  // MORVANE_CORE_COMPONENTS_CHIPS74REGISTERS_H
