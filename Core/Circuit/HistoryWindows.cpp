#include "Core/Circuit/HistoryWindows.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"

#include <algorithm>
#include <map>
#include <typeinfo>

namespace {

using Reaches = std::map<const Port*, int>;  // each owned port: how far back its owner reads

// A plain circuit reads its ports at the present only; its parts read the nets inside through their
// own ports. A chip built as a circuit has its own evaluation and says for itself.
int reach_of(const Component& part)
{
    return typeid(part) == typeid(Circuit) ? 0 : part.history_reach();
}

void collect(const Circuit& circuit, Reaches& reaches, std::set<Net*>& nets)
{
    for (Net* net : circuit.nets())
        nets.insert(net);
    for (Component* part : circuit.components()) {
        int reach = reach_of(*part);
        for (Port* port : part->ports()) {
            reaches[port] = reach;
            for (Net* net : {port->net(Morvane::Inside), port->net(Morvane::Outside)}) {
                if (net != nullptr)
                    nets.insert(net);
            }
        }
        if (const auto* inner = dynamic_cast<const Circuit*>(part))
            collect(*inner, reaches, nets);
    }
    for (Port* port : circuit.ports())
        reaches.emplace(port, 0);
}

// A margin of one ns over what the parts say: a flank is told by the ns before.
int window_for(int reach)
{
    return reach == Component::unbounded_reach ? ValueHistory::full_history : reach + 1;
}

}  // namespace

void window_histories(Circuit& circuit, const std::set<const ValueHistory*>& keep_full)
{
    Reaches reaches;
    std::set<Net*> nets;
    collect(circuit, reaches, nets);
    for (const auto& [port, reach] : reaches) {
        if (keep_full.count(port) == 0)
            const_cast<Port*>(port)->set_window(window_for(reach));
    }
    for (Net* net : nets) {
        // A port that no part lists is a part's inner connection, read with the reach of the part,
        // whose own port is on the same net; a net with none of those stays whole.
        int reach = 0;
        bool listed = false;
        bool unlisted = false;
        for (const Port* port : net->ports()) {
            auto known = reaches.find(port);
            if (known == reaches.end()) {
                unlisted = true;
                continue;
            }
            listed = true;
            reach = std::max(reach, known->second);
        }
        if (unlisted && !listed)
            reach = Component::unbounded_reach;
        int window = window_for(reach);
        if (keep_full.count(net) == 0)
            net->set_window(window);
        for (Port* port : net->ports()) {
            if (reaches.count(port) == 0 && keep_full.count(port) == 0)
                port->set_window(window);
        }
    }
}

void add_histories_read_through(const Port* port, std::set<const ValueHistory*>& histories)
{
    histories.insert(port);
    for (const Net* net : {port->net(Morvane::Inside), port->net(Morvane::Outside)}) {
        if (net != nullptr)
            histories.insert(net);
    }
}
