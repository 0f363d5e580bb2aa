// Nets of a circuit and its own ports.
#include "Core/Circuit/Circuit.h"
#include "Core/Support/Error.h"
#include "Core/Support/Regex.h"

using Morvane::Inside;
using Morvane::Outside;

Net* Circuit::make_net(const std::string& name, const std::vector<Port*>& ports)
{
    if (_find_net(name).net != nullptr)
        throw Error("Duplicate net names: '%s', in circuit '%s'.", name.c_str(), instance_name().c_str());
    std::set<Net*> joined = _find_nets_of_ports(ports);
    Net* net = joined.empty() ? _net_factory.create(name, 0) : _merge_nets(name, joined);
    for (Port* p : ports) {
        // A port that hangs on a net on its side already stays there.
        if (has_port(p)) {
            if (p->net(Inside) == nullptr)
                net->add(p, Inside);
        } else if (p->net(Outside) == nullptr) {
            net->add(p, Outside);
        }
    }
    _add_net(net, name);
    return net;
}

Net* Circuit::make_net(const std::vector<Port*>& ports)
{
    if (ports.empty())
        return nullptr;
    return make_net(ports.front()->name(), ports);
}

std::set<Net*> Circuit::_find_nets_of_ports(const std::vector<Port*>& ports) const
{
    std::set<Net*> found;
    for (Port* p : ports) {
        Net* net = p->net(has_port(p) ? Inside : Outside);
        if (net != nullptr)
            found.insert(net);
    }
    return found;
}

Net* Circuit::_merge_nets(const std::string& name, const std::set<Net*>& nets)
{
    Net* survivor = *nets.begin();
    if (_nets.contains(survivor))
        _nets.invalidate();
    survivor->set_name(name);
    for (Net* other : nets) {
        if (other != survivor)
            survivor->steal_all_ports(other);
    }
    return survivor;
}

void Circuit::_add_net(Net* net, const std::string& name)
{
    if (net == nullptr)
        throw Error("Internal error: net is NULL in ../Core/Circuit/Circuit:335");
    const std::string& use = name.empty() ? net->name() : name;
    if (_find_net(use).net != nullptr)
        throw Error("Error: There is already a net called '%s' in circuit '%s'/'%s'. ", use.c_str(),
                    type_name().c_str(), instance_name().c_str());
    if (_nets.contains(net))
        return;
    _nets.append(net);
    // A net freed by a garbage collection leaves the list with it.
    net->set_destruction_callback([this](Net* dead) { _forget_net(dead); });
}

void Circuit::_forget_net(Net* net)
{
    _nets.erase(net);
    net->set_destruction_callback(nullptr);
}

void Circuit::rename_net(Net* net, const std::string& name)
{
    if (net == nullptr)
        throw Error("Internal error: net is NULL in ../Core/Circuit/Circuit:972");
    if (_nets.contains(net))
        _nets.invalidate();
    net->set_name(name);
}

void Circuit::replace_net(Net* old_net, Net* new_net)
{
    if (old_net == nullptr)
        throw Error("Internal error: old_net is NULL in ../Core/Circuit/Circuit:990");
    if (new_net == nullptr)
        throw Error("Internal error: new_net is NULL in ../Core/Circuit/Circuit:991");
    std::string name = old_net->name();
    if (_nets.contains(old_net))
        _forget_net(old_net);
    _nets.append(new_net);
    _nets.invalidate();
    new_net->set_destruction_callback([this](Net* dead) { _forget_net(dead); });
    new_net->set_name(name);
}

void Circuit::remove(Net* net)
{
    net->disconnect_ports();
    if (_nets.contains(net))
        _forget_net(net);
}

void Circuit::remove_nets_with_fewer_ports_than(unsigned n)
{
    _nets.erase_if([n](Net* net) {
        if (net->ports().size() >= n)
            return false;
        // Copied: leaving the net shortens its list.
        std::vector<Port*> attached = net->ports();
        for (Port* p : attached)
            p->disconnect(p->net(Inside) == net ? Inside : Outside);
        net->set_destruction_callback(nullptr);
        return true;
    });
    for (Component* c : components()) {
        if (auto* sub = dynamic_cast<Circuit*>(c))
            sub->remove_nets_with_fewer_ports_than(n);
    }
    _net_factory.garbage_collect();
}

std::string Circuit::_parse_name_and_params(const std::string& spec, ParaMap& params)
{
    // In the second class "+-/" is a range: + , - . /
    static const std::regex pattern(R"(([a-zA-Z0-9=<>\[\]_]+)([(][a-zA-Z0-9=.+-/#%,:]+[)])?)",
                                    std::regex::ECMAScript);
    std::smatch match;
    if (!std::regex_match(spec, match, pattern))
        return "";
    params.add_params(match[2].str());
    return match[1].str();
}

Port* Circuit::_create_port(const std::string& name_spec, int size, Morvane::Dir dir, const std::string& file,
                            int line)
{
    ParaMap params;
    std::string name = _parse_name_and_params(name_spec, params);
    if (find_port(name) != nullptr)
        throw Error("Error in %s:%d: pin/port name duplication '%s'.", file.c_str(), line, name.c_str());
    Port* port = make_port(size, dir, name);
    try {
        port->set_options(params);
    } catch (...) {
        // A port whose options fail is not kept.
        remove_port(port);
        throw;
    }
    return port;
}
