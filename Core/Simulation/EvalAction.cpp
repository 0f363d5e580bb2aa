#include "Core/Simulation/EvalAction.h"

#include "Core/Components/Component.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"

#include <functional>
#include <set>

std::size_t EvalAction::hash() const
{
    // The value stays out of the hash: its equality is one-sided by width.
    std::hash<const void*> h;
    std::size_t seed = h(component);
    seed ^= h(net) + 0x9e3779b97f4a7c15ull + (seed << 6) + (seed >> 2);
    seed ^= h(port) + 0x9e3779b97f4a7c15ull + (seed << 6) + (seed >> 2);
    // Spread the low bits, which pick the bucket.
    seed ^= seed >> 29;
    seed *= 0xbf58476d1ce4e5b9ull;
    seed ^= seed >> 32;
    return seed;
}

void EvalAction::run(EventSimulator* simulator) const
{
    // Read everything first: the action may be moved while the component requests new ones.
    int t = simulator->time();
    Component* c = component;
    Net* n = net;
    Port* p = port;
    if (c != nullptr) {
        if (p != nullptr)
            c->evaluate_port(t, p);
        else
            c->evaluate(t);
    }
    if (n != nullptr)
        n->update(t);
}

const Value& EvalAction::marker_value()
{
    static const Value marker("Q");
    return marker;
}
