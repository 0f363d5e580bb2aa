// D-type flip-flop, rising-edge triggered, with three-state outputs.
//
// In order of priority:
// - on a rising "clk" (L at the last evaluation, H now) the state takes "D"; any other pair of clock
//   levels, u to H included, leaves it;
// - "_OE" H releases "Q" and "_Q" (z); "_OE" u makes both u; "_OE" L drives "Q" with the state and
//   "_Q" with its inverse, both u while the state is neither H nor L. "_OE" in another state writes
//   nothing.
// The state is stored at each edge with its time, so it is kept while the outputs are released and
// shows once "_OE" goes L again.
//
// Timing parameter: delay, ns from an input change to the outputs, 10 by default. "clk", "D" and
// "_OE" are read one delay back, so a D that changes at the very time of the edge is taken.
#ifndef MORVANE_CORE_COMPONENTS_FLIPFLOP_H
#define MORVANE_CORE_COMPONENTS_FLIPFLOP_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/ValueHistory.h"

#include <string>

/// One D flip-flop with outputs "Q" and "_Q"; chips build theirs with the (name, delay) form.
class D_flip_flop : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "D_flip_flop";
    static ParaMap default_parameters();
    static std::string parameter_description();

    D_flip_flop(const std::string& instance_name, const ParaMap& params);
    D_flip_flop(const std::string& instance_name, int delay);

    /// Forgets the state and the ports' histories; the last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;

    /// The stored state at `time`; u before the first edge.
    Value state(int time) const { return _state.value(time); }

private:
    void _init();

    Pin* _q = nullptr;          // output
    Pin* _q_inv = nullptr;      // inverted output "_Q"
    Pin* _d = nullptr;          // data input
    Pin* _clk = nullptr;        // clock input, rising edge
    Pin* _oe = nullptr;         // output enable "_OE", active low
    ValueHistory _state{1};     // stored bit by time of the edge that stored it
    int _last_evaluation = -1;  // ns; the clock's earlier level is read one delay before this
};

#endif  // MORVANE_CORE_COMPONENTS_FLIPFLOP_H
