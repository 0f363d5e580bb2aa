#include "Core/Simulation/EventSimulator.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

EventSimulator* EventSimulator::instance = nullptr;

EventSimulator::EventSimulator(Circuit& circuit) : _circuit(&circuit)
{
    _register();
}

EventSimulator::EventSimulator(Circuit* circuit) : _circuit(circuit)
{
    _register();
}

void EventSimulator::_register()
{
    if (instance != nullptr)
        throw Error("Simulator already created!\n");
    instance = this;
    _current = _actions.end();
}

EventSimulator::~EventSimulator()
{
    if (instance == this)
        instance = nullptr;
}

EventSimulator* EventSimulator::get_instance(Circuit& circuit)
{
    return get_instance(&circuit);
}

EventSimulator* EventSimulator::get_instance(Circuit* circuit)
{
    if (instance == nullptr)
        new EventSimulator(circuit);
    return instance;
}

void EventSimulator::destroy()
{
    delete instance;
    instance = nullptr;
}

void EventSimulator::reset(int end_time)
{
    _actions.clear();
    _current = _actions.end();
    _same_time_actions.clear();
    _time = no_time;
    if (_circuit != nullptr) {
        _circuit->reset();
        _circuit->init(end_time);
    }
}

void EventSimulator::simulate(int end_time)
{
    _max_time = end_time;
    if (_stop_variable != nullptr)
        *_stop_variable = false;

    // Slots stay in the map once run, so a second call starts from the first again. The map may
    // grow behind the running slot; map iterators survive that.
    for (_current = _actions.begin(); _current != _actions.end(); ++_current) {
        _time = _current->first;
        if (_time > end_time)
            return;
        if (_stop_variable != nullptr && *_stop_variable)
            return;
        _run_actions(_current->second);
        _run_same_time_actions();
    }
}

void EventSimulator::_run_actions(const ActionQueue& slot)
{
    // Nothing can join a slot while it runs: requests for the running time go to the same-time list.
    for (std::size_t i = 0; i < slot.size(); ++i)
        slot[i].run(this);
}

void EventSimulator::_run_same_time_actions()
{
    // The list grows while it runs; a zero-delay loop would never end, so the step is bounded.
    int countdown = 1002;
    for (std::size_t i = 0; i < _same_time_actions.size(); ++i) {
        _same_time_actions[i].run(this);
        if (--countdown == 0)
            throw Error(
                "1000 iterations in same time-event loop: probably a circuit/net circular dependency");
    }
    _same_time_actions.clear();
}

void EventSimulator::request_evaluation(int time, Net* net, Port* port, const Value& value)
{
    _request(time, EvalAction(net, port, value));
}

void EventSimulator::request_evaluation(int time, Component* component, Port* port)
{
    _request(time, EvalAction(component, port));
}

void EventSimulator::_request(int time, EvalAction&& action)
{
    // Equal requests are dropped; the same-time list remembers what already ran at this time.
    if (time == _time)
        _same_time_actions.push(std::move(action));
    else
        _actions[time].push(std::move(action));
}

void EventSimulator::_print_components_to_evaluate() const
{
    TLog log("Event Simulator Status for t=%d", _time);
    // One literal format, so the compiler checks it; only the indentation differs.
    auto print_action = [&log](const char* indent, const EvalAction& action) {
        log("%sC=%s N=%s P=%s V=%s", indent,
            action.component != nullptr ? action.component->instance_name().c_str() : "-",
            action.net != nullptr ? action.net->name().c_str() : "-",
            action.port != nullptr ? action.port->name().c_str() : "-", action.value.c_str());
    };
    log("- Same time actions:");
    for (const EvalAction& action : _same_time_actions)
        print_action("  ", action);
    log("- Future actions:");
    for (const auto& [time, slot] : _actions) {
        log("  t=%d:", time);
        for (const EvalAction& action : slot)
            print_action("    ", action);
    }
}

EventSimulator* simulator()
{
    return EventSimulator::get_instance();
}

EventSimulator* simulator(Circuit& circuit)
{
    return EventSimulator::get_instance(circuit);
}

EventSimulator* simulator(Circuit* circuit)
{
    return EventSimulator::get_instance(circuit);
}

void destroy_simulator()
{
    EventSimulator::destroy();
}
