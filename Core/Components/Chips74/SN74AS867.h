// 8-bit synchronous up/down binary counter with four modes, S1 and S0 selecting.
//
// In order of priority:
// - S1 S0 = L L clears the count at once, without a clock and whatever the other inputs are;
// - any other undefined input (S1, S0, _ENT, _ENP, CLK now or at the last evaluation) makes the count
//   and "_RCO" U, with a line on the trace log; in load mode undefined inputs are not looked at;
// - on a rising CLK (L at the last evaluation, H now): H L loads "HA" regardless of the enables;
//   L H counts down and H H counts up, both only while "_ENT" and "_ENP" are L, wrapping at 0/255;
// - "_RCO" is L while counting down at 0 or up at 255, H otherwise, U for an undefined count. It
//   follows the mode at once and is not gated by the enables.
// "QA" shows the count. The count starts undefined; only a clear or a load defines it, and counting
// from an undefined count logs an error and leaves it as it is.
//
// Timing parameter: delay, ns from an input change to the outputs, 16 by default. Inputs are read
// one delay back; the clock's earlier level one delay before the last evaluation.
#ifndef MORVANE_CORE_COMPONENTS_SN74AS867_H
#define MORVANE_CORE_COMPONENTS_SN74AS867_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <string>

/// The 74AS867: 8-bit counter with clear, load, count up and count down.
class SN74AS867 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "SN74AS867";
    static ParaMap default_parameters();
    static std::string parameter_description();

    SN74AS867(const std::string& instance_name, const ParaMap& params);
    SN74AS867(const std::string& instance_name, int delay);

    /// Forgets the count and the ports' histories; the last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;

    /// The count at `time`; U before the first clear or load.
    Value count(int time) const { return _count->value(time); }

private:
    void _init();
    /// From the count at `time` - 1 into the count at `time`; an undefined count is logged and kept.
    void _increment_counter(int time);
    void _decrement_counter(int time);

    Port* _count = nullptr;     // the count by time; owned by the port factory, in no port list
    Pin* _s0 = nullptr;         // mode select, low bit
    Pin* _s1 = nullptr;         // mode select, high bit
    Pin* _ent = nullptr;        // count enable "_ENT", active low
    Pin* _enp = nullptr;        // count enable "_ENP", active low
    Pin* _clk = nullptr;        // clock, rising edge
    Pin* _rco = nullptr;        // ripple carry out "_RCO", active low
    Port* _ha = nullptr;        // 8-bit load data "HA"
    Port* _qa = nullptr;        // 8-bit count output "QA"
    int _last_evaluation = -1;  // ns; the clock's earlier level is read one delay before this
};

#endif  // MORVANE_CORE_COMPONENTS_SN74AS867_H
