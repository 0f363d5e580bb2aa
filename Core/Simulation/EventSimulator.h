// The global discrete-event scheduler over integer nanoseconds.
#ifndef MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H
#define MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H

#include "Core/Simulation/ActionQueue.h"
#include "Core/Simulation/EvalAction.h"

#include <climits>
#include <map>

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

    void request_evaluation(int time, Net* net, Port* port, const Value& value);
    void request_evaluation(int time, Component* component, Port* port);

    void _print_components_to_evaluate() const;

private:
    void _register();
    void _request(int time, EvalAction&& action);
    void _run_actions(const ActionQueue& slot);
    void _run_same_time_actions();

    static EventSimulator* instance;  // the global instance, or null

    Circuit* _circuit;                              // the root circuit
    std::map<int, ActionQueue> _actions;            // future queue by time; run slots stay until reset
    std::map<int, ActionQueue>::iterator _current;  // the slot being run
    ActionQueue _same_time_actions;                 // actions requested for the running time
    int _max_time = 0;                              // ns, last end time of simulate
    volatile bool* _stop_variable = nullptr;        // external stop request, polled per slot
    int _time = no_time;                            // ns, the time now running
};

EventSimulator* simulator();
EventSimulator* simulator(Circuit& circuit);
EventSimulator* simulator(Circuit* circuit);
void destroy_simulator();

#endif  // MORVANE_CORE_SIMULATION_EVENTSIMULATOR_H
