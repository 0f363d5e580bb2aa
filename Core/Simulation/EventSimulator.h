// The global discrete-event scheduler over integer nanoseconds.
#ifndef MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H
#define MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H

#include "Core/Simulation/ActionList.h"
#include "Core/Simulation/EvalAction.h"
#include "Core/Simulation/FarQueue.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

class Circuit;
class Component;
class Net;
class Port;
class Value;

/// The time that stands for "no time yet".
constexpr int no_time = INT_MIN;

/// One instance per process. Actions run by time; within a time in the order of their first
/// request; actions requested for the running time go to a same-time list that runs after the slot.
class EventSimulator
{
public:
    explicit EventSimulator(Circuit& circuit);
    explicit EventSimulator(Circuit* circuit);
    virtual ~EventSimulator();

    EventSimulator(const EventSimulator&) = delete;
    EventSimulator& operator=(const EventSimulator&) = delete;

    /// The instance, or null; nothing is created.
    static EventSimulator* get_instance() { return instance; }
    /// The instance if there is one (bound to its own circuit), otherwise a new one for this circuit.
    static EventSimulator* get_instance(Circuit& circuit);
    static EventSimulator* get_instance(Circuit* circuit);
    static void destroy();

    Circuit* circuit() const { return _circuit; }
    int time() const { return _time; }
    int max_time() const { return _max_time; }
    void set_stop_variable(volatile bool* stop) { _stop_variable = stop; }

    /// Clears both queues, then resets and initialises the circuit.
    void reset(int end_time);
    /// Runs every slot from the first up to and including end_time.
    void simulate(int end_time);
    /// Whether a slot stays once it has run, so that a second simulate replays the whole run: the
    /// default. A caller that simulates once says false, and each slot's storage is then reused as
    /// soon as it has run.
    void set_keep_finished_slots(bool keep)
    {
        _keep_finished_slots = keep;
        _kept.set_reuse(!keep);
    }
    bool keeps_finished_slots() const { return _keep_finished_slots; }

    void request_evaluation(int time, Net* net, Port* port, const Value& value)
    {
        _request(time, net, port, &value);
    }
    void request_evaluation(int time, Component* component, Port* port)
    {
        _request(time, component, port, nullptr);
    }

    /// Actions run since the simulator was made, and of those the component evaluations: a
    /// measure of the work of a run that costs nothing to keep.
    std::uint64_t nof_actions_run() const { return _nof_actions_run; }
    std::uint64_t nof_evaluations_run() const { return _nof_evaluations_run; }
    /// Actions kept in the future queue, and the bytes their store took from the system.
    std::size_t nof_actions_kept() const { return _kept.size(); }
    std::size_t bytes_of_actions_kept() const { return _kept.bytes(); }

    void _print_components_to_evaluate() const;

private:
    // A slot recently asked for; most requests go a few ns ahead of the running time.
    struct CachedSlot
    {
        int time;          // ns
        ActionList* slot;  // in _actions, or null
    };
    static constexpr std::size_t slot_cache_size = 64;  // a power of 2
    // A run that keeps no finished slot holds the next ns in a ring of slots by time, which costs no
    // search and no allocation; later ones wait in the map. A power of 2.
    static constexpr unsigned wheel_size = 1024;

    void _register();
    /// A net action (value given) or a component action (value null), as the engine keeps them.
    void _request(int time, void* target, Port* port, const Value* value)
    {
        // Equal requests are dropped; the same-time list remembers what already ran at this time.
        if (time == _time) {
            _same_time_actions.push(_same_time_store, target, port, value);
        } else if (_wheel_running && _in_wheel(time)) {
            unsigned bucket = static_cast<unsigned>(time) & (wheel_size - 1);
            _wheel[bucket].push(_kept, target, port, value);
            _wheel_bits[bucket / 64] |= std::uint64_t{1} << (bucket % 64);
        } else if (_far_open && _far_takes(time)) {
            _far.push(time, _kept.add(target, port, value));
        } else {
            _slot(time).push(_kept, target, port, value);
        }
    }
    /// Whether a request for `time` may wait in the far queue: whatever the map holds for that time
    /// was then asked for later, so that a slot takes the far queue's requests first.
    bool _far_takes(int time) const
    {
        if (!_far.empty())
            return _far.takes(time);
        return _actions.empty() || time > _actions.rbegin()->first;
    }
    /// Moves the far queue's requests into the map, each slot's ahead of what the map held for it.
    void _far_to_map();
    /// Appends the records linked from `first` on to `slot`, dropping those equal to one in it.
    void _relink(std::uint32_t first, ActionList& slot);
    bool _in_wheel(int time) const
    {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(time) - _wheel_base) < wheel_size;
    }
    ActionList& _slot(int time)
    {
        CachedSlot& cached = _slot_cache[static_cast<unsigned>(time) & (slot_cache_size - 1)];
        if (cached.slot == nullptr || cached.time != time)
            cached = CachedSlot{time, &_find_slot(time)};
        return *cached.slot;
    }
    ActionList& _find_slot(int time);
    /// simulate for a caller that keeps no finished slot: the near future in the wheel.
    void _simulate_once(int end_time);
    /// Moves the requests of the far queue and the slots of the map that the wheel now covers into
    /// it; drops those before it, which were asked for a time already past and would never run.
    void _fill_wheel();
    /// _fill_wheel where the far queue or the map holds a time the wheel now covers; most steps of
    /// a run find neither.
    void _fill_wheel_if_due()
    {
        std::int64_t limit = _wheel_base + wheel_size;
        if ((!_far.empty() && _far.front().time < limit) ||
            (!_actions.empty() && _actions.begin()->first < limit))
            _fill_wheel();
    }
    /// The earliest time of the map and the far queue, or false when both are empty.
    bool _earliest_time(int& time) const;
    /// The earliest time in the wheel, or false when it is empty.
    bool _next_wheel_time(int& time) const;
    bool _wheel_bits_empty() const
    {
        for (std::uint64_t word : _wheel_bits) {
            if (word != 0)
                return false;
        }
        return true;
    }
    /// Puts the wheel's slots back into the map, as they were before the run took them.
    void _empty_wheel();
    void _run(const ActionStore& store, std::uint32_t id);
    void _run_actions(ActionList& slot);
    void _run_same_time_actions();
    /// Drops the slot that has just run and steps _current to the next.
    void _drop_current_slot();

    static EventSimulator* instance;  // the global instance, or null

    Circuit* _circuit;                                // the root circuit
    std::map<int, ActionList> _actions;               // future queue by time; run slots stay unless dropped
    std::map<int, ActionList>::iterator _current;     // the slot being run
    ActionStore _kept;                                // the actions of all slots, the far queue's too
    FarQueue _far;                                    // requests in ascending time not yet in a slot
    bool _far_open = true;                            // requests may go to _far; not while a kept run runs
    ActionStore _same_time_store;                     // the actions of the same-time list
    ActionList _same_time_actions;                    // actions requested for the running time
    CachedSlot _slot_cache[slot_cache_size] = {};     // by time modulo the size
    std::unique_ptr<ActionList[]> _wheel;             // wheel_size slots by time modulo the size
    std::uint64_t _wheel_bits[wheel_size / 64] = {};  // the slots of the wheel that hold actions
    std::int64_t _wheel_base = 0;                     // ns, the wheel holds the times from here on
    bool _wheel_running = false;                      // requests in reach of the wheel go there
    int _max_time = 0;                                // ns, last end time of simulate
    bool _keep_finished_slots = true;                 // a run slot stays for a second simulate
    volatile bool* _stop_variable = nullptr;          // external stop request, polled per slot
    int _time = no_time;                              // ns, the time now running
    std::uint64_t _nof_actions_run = 0;               // since the simulator was made
    std::uint64_t _nof_evaluations_run = 0;           // component actions among them
};

inline EventSimulator* simulator()
{
    return EventSimulator::get_instance();
}
EventSimulator* simulator(Circuit& circuit);
EventSimulator* simulator(Circuit* circuit);
void destroy_simulator();

#endif  // MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H
