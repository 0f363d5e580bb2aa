// 4-bit synchronous up/down binary counter with asynchronous load.
//
// In order of priority:
// - "_LOAD" L makes the count follow "DCBA" at every evaluation, whatever the clock does;
// - else on a rising CLK (L one ns before the read time, H at it) with "_CTEN" L: "D_U" L counts up,
//   H counts down, wrapping at 15/0; any other "D_U" makes the count U;
// - "MAXMIN" is H at 15 counting up or at 0 counting down, else L; U for an undefined "D_U" or count;
// - "_RCO" is L while "MAXMIN" is H and both CLK and "_CTEN" are L, U if any of the three is U,
//   else H.
// "QDCBA" shows the count. The count starts undefined and only a load defines it; counting from an
// undefined count logs a warning and leaves it undefined.
//
// Timing parameter: delay, ns from an input change to the outputs, 52 by default. Inputs are read
// one delay back.
#ifndef MORVANE_CORE_COMPONENTS_DM74LS191_H
#define MORVANE_CORE_COMPONENTS_DM74LS191_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <string>

/// The 74LS191: 4-bit counter with load, up/down, max/min and ripple carry outputs.
class DM74LS191 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "DM74LS191";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS191(const std::string& instance_name, const ParaMap& params);
    DM74LS191(const std::string& instance_name, int delay);

    /// Forgets the count and the ports' histories.
    void reset() override;
    void evaluate(int time) override;

    /// The count at `time`; U before the first load.
    Value count(int time) const { return _count->value(time); }

private:
    void _init();
    /// From the count at `time` - 1 into the count at `time`; an undefined count is logged and kept.
    void _increment_counter(int time);
    void _decrement_counter(int time);
    /// "MAXMIN" for the count at `time` counting in the direction `d_u` gives.
    Morvane::BitState _compute_max_min(Morvane::BitState d_u, int time);
    Morvane::BitState _compute_rco(Morvane::BitState max_min, Morvane::BitState cten, Morvane::BitState clk);

    Port* _count = nullptr;   // the count by time; owned by the port factory, in no port list
    Pin* _cten = nullptr;     // count enable "_CTEN", active low
    Pin* _d_u = nullptr;      // direction "D_U": L up, H down
    Pin* _clk = nullptr;      // clock, rising edge
    Pin* _load = nullptr;     // asynchronous load "_LOAD", active low
    Pin* _max_min = nullptr;  // "MAXMIN", H at the end of the count
    Pin* _rco = nullptr;      // ripple clock out "_RCO", active low
    Port* _dcba = nullptr;    // 4-bit load data "DCBA"
    Port* _qdcba = nullptr;   // 4-bit count output "QDCBA"
};

#endif  // MORVANE_CORE_COMPONENTS_DM74LS191_H
