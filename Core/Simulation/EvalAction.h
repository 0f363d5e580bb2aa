// One scheduled action of the event engine: re-evaluate a component or recompute a net.
#ifndef MORVANE_CORE_SIMULATION_EVALACTION_H
#define MORVANE_CORE_SIMULATION_EVALACTION_H

#include "Core/Simulation/Value.h"

#include <cstddef>

class Component;
class EventSimulator;
class Net;
class Port;

class EvalAction
{
public:
    EvalAction(Net* n, Port* p, const Value& v) : net(n), port(p), value(v) {}
    EvalAction(Component* c, Port* p) : component(c), port(p), value(marker_value()) {}
    virtual ~EvalAction() = default;

    EvalAction(const EvalAction&) = default;
    EvalAction(EvalAction&&) = default;
    EvalAction& operator=(const EvalAction&) = default;
    EvalAction& operator=(EvalAction&&) = default;

    /// Equal requests are dropped; the value compares one-sided, as Value does.
    bool operator==(const EvalAction& other) const
    {
        return component == other.component && net == other.net && port == other.port && value == other.value;
    }

    /// Consistent with operator==: equal actions share their pointers.
    std::size_t hash() const;

    void run(EventSimulator* simulator) const;

    Component* component = nullptr;  // component to evaluate, or null
    Net* net = nullptr;              // net to update, or null
    Port* port = nullptr;            // the port that caused the action, or null
    Value value;                     // a net action: the driving value; a component action: Q

private:
    static const Value& marker_value();
};

#endif  // MORVANE_CORE_SIMULATION_EVALACTION_H
