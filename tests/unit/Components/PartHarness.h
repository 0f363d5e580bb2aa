// A circuit built by calls for the tests of the parts: parts from the factory, nets from a net factory,
// and free ports that stand in for stimuli and probes.
#ifndef MORVANE_TESTS_UNIT_COMPONENTS_PARTHARNESS_H
#define MORVANE_TESTS_UNIT_COMPONENTS_PARTHARNESS_H

#include "tests/unit/LineLog.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"

#include <cctype>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

class PartHarness
{
public:
    PartHarness() { simulator(&root); }
    ~PartHarness() { destroy_simulator(); }

    /// Made by the factory and placed in the root circuit, so the simulator's reset reaches it.
    Component* part(const std::string& type, const std::string& spec)
    {
        Component* c = parts.create(type, spec);
        root.add(c, false);
        return c;
    }
    /// A net of the ports' width, each port on its outside.
    Net* net(const std::string& name, std::initializer_list<Port*> ports)
    {
        Net* n = nets.create(name, 0);
        for (Port* p : ports)
            n->add(p, Morvane::Outside);
        return n;
    }
    /// An output port that belongs to no part: a stimulus.
    Port* source(const std::string& name, int width = 1)
    {
        free_ports.push_back(std::make_unique<Port>(width, Morvane::Output, name, nullptr));
        return free_ports.back().get();
    }

    NetFactory nets;                                // dies last: ports detach from living nets
    ComponentFactory parts;                         // owns the parts
    std::vector<std::unique_ptr<Port>> free_ports;  // stimuli
    Circuit root{"top", nullptr};                   // holds the parts
};

/// Every entry as "<time><letters> ".
inline std::string record_of(const ValueHistory& history)
{
    std::string text;
    for (const auto& entry : history.entries())
        text += std::to_string(entry.time) + entry.value.c_str() + " ";
    return text;
}

/// The entries that change the value, as "<time><letters> ": the waveform.
inline std::string changes_of(const ValueHistory& history)
{
    std::string text;
    std::string last;
    for (const auto& entry : history.entries()) {
        std::string letters = entry.value.c_str();
        if (!text.empty() && letters == last)
            continue;
        text += std::to_string(entry.time) + letters + " ";
        last = letters;
    }
    return text;
}

inline std::string lower(std::string text)
{
    for (char& ch : text)
        ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    return text;
}

/// The letters of the last value written to a port, in lower case; "-" if nothing was written.
inline std::string written(Component* c, const char* port)
{
    const Port* p = c->port(port);
    return p->nof_values() == 0 ? "-" : lower(p->entries().back().value.c_str());
}

/// A value of `width` bits holding `n`.
inline Value number(int n, int width)
{
    Value v(width);
    v.set_to(n);
    return v;
}

#endif  // MORVANE_TESTS_UNIT_COMPONENTS_PARTHARNESS_H
