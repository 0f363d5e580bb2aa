// The dual flip-flops: SN74x74 (D, rising edge, with set and clear) and DM74LS78A (JK, falling
// edge, with preset and a shared clear and clock).
//
// Both read their inputs one delay back and write at their own time, like every single-delay part.
// The clock's earlier level is read one delay before the last evaluation, so an edge anywhere since
// then counts; the first evaluation of a new part looks back from -1 and sees no edge.
#ifndef MORVANE_CORE_COMPONENTS_CHIPS74FLIPFLOPS_H
#define MORVANE_CORE_COMPONENTS_CHIPS74FLIPFLOPS_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/BitState.h"

#include <string>
#include <vector>

/// Dual D flip-flop with active-low set and clear, type "74x74". Per flip-flop n, in priority:
/// - "_CDn" L: with "_SDn" H, Q L and _Q H; with "_SDn" L too, both H; with "_SDn" undefined, both U;
/// - "_CDn" H and "_SDn" L: Q H, _Q L;
/// - both H: on a rising "CPn" Q takes "Dn" and _Q its inverse (U for an undefined D); a clock that
///   stays or falls writes nothing; a clock undefined now or at the last evaluation gives U, U;
/// - "_CDn" undefined, or H with "_SDn" undefined: U, U.
/// Timing: family F 11 ns, AS 11, ALS 18, LS 35 (the default); "delay" overrides.
class SN74x74 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "SN74x74";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// An unknown family throws Error.
    SN74x74(const std::string& instance_name, const ParaMap& params);
    /// The delay as given; no family is read.
    SN74x74(const std::string& instance_name, int delay);

    /// The last evaluation counts as at time 0.
    void reset() override;
    void evaluate(int time) override;
    /// "delay" and "family"
    std::vector<std::string> get_valid_param_keys() override;
    /// The family's delay, or "delay" if given; an unknown family throws Error.
    void update_after_param_change() override;
    std::string aux_info_string() override;

private:
    /// The pins of one of the two flip-flops.
    struct FlipFlop
    {
        Pin* set = nullptr;    // "_SDn", active low
        Pin* clear = nullptr;  // "_CDn", active low
        Pin* clock = nullptr;  // "CPn", rising edge
        Pin* d = nullptr;      // "Dn"
        Pin* q = nullptr;      // "Qn"
        Pin* q_inv = nullptr;  // "_Qn"
    };

    void _init();
    void _set_delay_from_family(const ParaMap& params);
    void _evaluate_flip_flop(FlipFlop& ff, int time);

    FlipFlop _ff[2];            // flip-flops 1 and 2
    int _last_evaluation = -1;  // ns; the clocks' earlier levels are read one delay before this
};

/// Dual JK flip-flop, negative-edge triggered, with active-low preset per flip-flop and shared
/// active-low clear and clock, type "74LS78A". In priority:
/// - "_CLR" L: Q L and _Q H where "_nPRE" is H, both u where it is not (so clear and preset low
///   together give u);
/// - "_CLR" H and "_nPRE" L: Q H, _Q L; "_nPRE" undefined: both u;
/// - "_CLR" and "_nPRE" H: on a falling "_CLK" J, K = L, L hold; L, H clear; H, L set; H, H toggle
///   Q and _Q each on its own (an undefined state toggles to u); any undefined J or K gives u, u.
///   Without a falling edge the state holds.
/// - "_CLR" undefined: all four outputs u.
/// Every evaluation writes all four outputs, also when nothing changed. Timing: delay, 20 ns by
/// default.
class DM74LS78A : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "DM74LS78A";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS78A(const std::string& instance_name, const ParaMap& params);
    DM74LS78A(const std::string& instance_name, int delay);

    /// Forgets the states; the time of the last evaluation stays, so the first evaluation of the
    /// next run looks back from the old run's last one.
    void reset() override;
    void evaluate(int time) override;

private:
    void _init();
    /// Reads everything at `time` - delay; `falling` tells of a falling clock since the last evaluation.
    void _read_inputs(int time, Morvane::BitState& clear, bool& falling, Morvane::BitState* pre,
                      Morvane::BitState* j, Morvane::BitState* k);
    void _handle_clear(Morvane::BitState* pre);
    void _handle_flip_flops(bool falling, Morvane::BitState* pre, Morvane::BitState* j, Morvane::BitState* k);
    void _handle_jk_op(bool falling, int index, Morvane::BitState j, Morvane::BitState k);
    void _set_q(int index, Morvane::BitState q, Morvane::BitState nq);
    static Morvane::BitState _toggle(Morvane::BitState state);

    Pin* _clear = nullptr;  // "_CLR", active low, both flip-flops
    Pin* _clock = nullptr;  // "_CLK", falling edge, both flip-flops
    Pin* _pre[2] = {};      // "_1PRE", "_2PRE", active low
    Pin* _j[2] = {};        // "1J", "2J"
    Pin* _k[2] = {};        // "1K", "2K"
    Pin* _q[2] = {};        // "1Q", "2Q"
    Pin* _q_inv[2] = {};    // "_1Q", "_2Q"
    Morvane::BitState _q_state[2] = {Morvane::BitState::Undefined,
                                     Morvane::BitState::Undefined};  // Q of each flip-flop
    Morvane::BitState _q_inv_state[2] = {Morvane::BitState::Undefined,
                                         Morvane::BitState::Undefined};  // _Q of each flip-flop
    int _last_evaluation = -1;  // ns; the clock's earlier level is read one delay before this
};

#endif  // MORVANE_CORE_COMPONENTS_CHIPS74FLIPFLOPS_H
