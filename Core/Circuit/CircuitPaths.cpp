// Dotted paths into the hierarchy, in both directions.
#include "Core/Circuit/Circuit.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

std::pair<std::vector<std::string>, std::string> Circuit::_split_port_path(const std::string& path)
{
    std::vector<std::string> elements;
    std::size_t start = 0;
    for (std::size_t dot = path.find('.'); dot != std::string::npos; dot = path.find('.', start)) {
        elements.push_back(path.substr(start, dot - start));
        start = dot + 1;
    }
    return {elements, path.substr(start)};
}

std::vector<std::string> Circuit::_split_path(const std::string& path)
{
    auto [elements, last] = _split_port_path(path);
    elements.push_back(last);
    return elements;
}

Port* Circuit::find_port(const std::string& path)
{
    auto [elements, last] = _split_port_path(path);
    Circuit* walking = this;
    Component* found = nullptr;
    for (const std::string& element : elements) {
        if (walking == nullptr)
            return nullptr;
        found = walking->find_component(element);
        walking = dynamic_cast<Circuit*>(found);
    }
    if (walking != nullptr)
        return walking->port(last);
    // The last element named a plain part: its port.
    return found != nullptr ? found->port(last) : nullptr;
}

Component* Circuit::find_component_recursive(const std::string& path)
{
    Circuit* walking = this;
    Component* found = nullptr;
    for (const std::string& element : _split_path(path)) {
        if (walking == nullptr)
            return nullptr;
        found = walking->find_component(element);
        walking = dynamic_cast<Circuit*>(found);
    }
    return found;
}

NetLookup Circuit::_find_net(const std::string& path)
{
    auto [elements, last] = _split_port_path(path);
    NetLookup result;
    Circuit* walking = this;
    for (const std::string& element : elements) {
        walking = dynamic_cast<Circuit*>(walking->find_component(element));
        if (walking == nullptr)
            return NetLookup();
        result.circuit_name = element;
    }
    result.net_name = last;
    result.circuit = walking;
    result.net = walking->_nets.find(last);
    return result;
}

Net* Circuit::find_net(const std::string& path)
{
    return _find_net(path).net;
}

Net* Circuit::find_net_throw_error(const std::string& path, const std::string& file, int line)
{
    NetLookup lookup = _find_net(path);
    if (lookup.net != nullptr)
        return lookup.net;
    std::string text = file.empty() ? fmt("Error: cannot find net '%s'.\n", lookup.net_name.c_str())
                                    : fmt("Error in %s:%d: cannot find net '%s'.\n", file.c_str(), line,
                                          lookup.net_name.c_str());
    if (lookup.circuit != nullptr) {
        text += "Available nets:\n";
        for (const Net* net : lookup.circuit->nets())
            text += "  - '" + net->name() + "'\n";
    } else {
        text += "Can't find a circuit named '" + lookup.circuit_name + "'.";
    }
    throw Error("%s", text.c_str());
}

std::string Circuit::find_port_path(Port* port) const
{
    if (has_port(port))
        return port->name();
    for (const Component* c : components()) {
        if (const auto* sub = dynamic_cast<const Circuit*>(c)) {
            std::string inner = sub->find_port_path(port);
            if (!inner.empty())
                return c->instance_name() + "." + inner;
        } else if (c->has_port(port)) {
            return c->instance_name() + "." + port->name();
        }
    }
    return "";
}

void Circuit::_collect_port_paths(const std::string& prefix,
                                  std::unordered_map<const Port*, std::string>& paths) const
{
    // The walk of find_port_path, all ports at once; the first path found for a port stands.
    for (const Port* p : ports())
        paths.try_emplace(p, prefix + p->name());
    for (const Component* c : components()) {
        if (const auto* sub = dynamic_cast<const Circuit*>(c)) {
            sub->_collect_port_paths(prefix + c->instance_name() + ".", paths);
            continue;
        }
        for (const Port* p : c->ports())
            paths.try_emplace(p, prefix + c->instance_name() + "." + p->name());
    }
}

std::string Circuit::find_net_path(Net* net) const
{
    if (_nets.contains(net))
        return net->name();
    for (const Component* c : components()) {
        const auto* sub = dynamic_cast<const Circuit*>(c);
        if (sub == nullptr)
            continue;
        std::string inner = sub->find_net_path(net);
        if (!inner.empty())
            return c->instance_name() + "." + inner;
    }
    return "";
}

std::string Circuit::find_port_path_by_id(const std::string& id) const
{
    if (const Port* own = port_by_id(id))
        return own->name();
    for (const Component* c : components()) {
        if (const auto* sub = dynamic_cast<const Circuit*>(c)) {
            std::string inner = sub->find_port_path_by_id(id);
            if (!inner.empty())
                return c->instance_name() + "." + inner;
        } else if (c->has_port_with_id(id)) {
            return c->instance_name() + "." + c->port_by_id(id)->name();
        }
    }
    return "";
}

std::string Circuit::find_net_path_by_id(const std::string& id) const
{
    for (const Net* net : nets()) {
        if (net->id() == id)
            return net->name();
    }
    for (const Component* c : components()) {
        const auto* sub = dynamic_cast<const Circuit*>(c);
        if (sub == nullptr)
            continue;
        std::string inner = sub->find_net_path_by_id(id);
        if (!inner.empty())
            return c->instance_name() + "." + inner;
    }
    return "";
}

std::string Circuit::get_component_path_by_id(const std::string& id)
{
    for (Component* c : components()) {
        if (c->id() == id)
            return c->instance_name();
        if (auto* sub = dynamic_cast<Circuit*>(c)) {
            std::string inner = sub->get_component_path_by_id(id);
            if (!inner.empty())
                return c->instance_name() + "." + inner;
        }
    }
    return "";
}

std::vector<std::string> Circuit::find_component_path(Component* component)
{
    if (this == component)
        return {instance_name()};
    for (Component* c : components()) {
        if (auto* sub = dynamic_cast<Circuit*>(c)) {
            std::vector<std::string> inner = sub->find_component_path(component);
            if (!inner.empty()) {
                inner.insert(inner.begin(), sub->instance_name());
                return inner;
            }
        } else if (c == component) {
            return {c->instance_name()};
        }
    }
    return {};
}

std::vector<std::string> Circuit::find_component_path(Circuit* circuit)
{
    if (this == circuit)
        return {instance_name()};
    for (Component* c : components()) {
        auto* sub = dynamic_cast<Circuit*>(c);
        if (sub == nullptr)
            continue;
        // Only the first sub-circuit of a level is looked into.
        std::vector<std::string> inner = sub->find_component_path(circuit);
        if (!inner.empty())
            inner.insert(inner.begin(), sub->instance_name());
        return inner;
    }
    return {};
}
