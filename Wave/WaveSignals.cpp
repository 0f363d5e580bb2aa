#include "Wave/WaveSignals.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>

namespace {

/// Collects signals in order, once each, and keeps names apart within a scope.
class Selection
{
public:
    void add(const std::vector<std::string>& scope, const Port* port) { _add(scope, "", port->name(), port); }
    void add(const std::vector<std::string>& scope, const Net* net)
    {
        // The table titles nets this way; here only where a port of the scope has the name.
        bool taken = std::any_of(_signals.begin(), _signals.end(), [&](const WaveSignal& s) {
            return s.scope == scope && s.name == net->name();
        });
        _add(scope, taken ? "#" : "", net->name(), net);
    }
    /// All ports of a part, and all nets of a sub-circuit.
    void add_all(const std::vector<std::string>& scope, Component* component)
    {
        for (const Port* port : component->ports())
            add(scope, port);
        if (auto* circuit = dynamic_cast<Circuit*>(component)) {
            for (const Net* net : circuit->nets())
                add(scope, net);
        }
    }
    std::vector<WaveSignal> take() { return std::move(_signals); }

private:
    void _add(const std::vector<std::string>& scope, const std::string& mark, const std::string& name,
              const ValueHistory* history)
    {
        // A net no port ever sized carries nothing to show.
        bool known = std::any_of(_signals.begin(), _signals.end(),
                                 [&](const WaveSignal& s) { return s.history == history; });
        if (known || history->size() == 0)
            return;
        std::string path;
        for (const std::string& element : scope)
            path += element + ".";
        _signals.push_back(WaveSignal{scope, mark + name, mark + path + name, history});
    }

    std::vector<WaveSignal> _signals;  // in order of selection
};

}  // namespace

std::vector<WaveSignal> select_wave_signals(Circuit& root, const std::string& paths)
{
    Selection selection;
    std::vector<std::string> list = csv_string_to_vector(paths);
    if (list.empty())
        selection.add_all({}, &root);
    for (std::string& path : list) {
        bool net_only = !path.empty() && path[0] == '%';
        if (net_only)
            path.erase(0, 1);
        std::size_t dot = path.rfind('.');
        std::vector<std::string> scope =
            dot == std::string::npos ? std::vector<std::string>() : split(path.substr(0, dot), '.');
        if (Port* port = net_only ? nullptr : root.find_port(path)) {
            selection.add(scope, port);
        } else if (Net* net = root.find_net(path)) {
            selection.add(scope, net);
        } else if (Component* component = net_only ? nullptr : root.find_component_recursive(path)) {
            scope.push_back(component->instance_name());
            selection.add_all(scope, component);
        } else {
            throw Error("Error: signal '%s' cannot be found.", path.c_str());
        }
    }
    return selection.take();
}

char vcd_state(char letter)
{
    switch (letter) {
    case 'L':
    case 'l':
    case 'n':
    case 'N':
        return '0';
    case 'H':
    case 'h':
    case 'p':
    case 'P':
        return '1';
    case 'z':
    case 'Z':
        return 'z';
    default:
        return 'x';
    }
}
