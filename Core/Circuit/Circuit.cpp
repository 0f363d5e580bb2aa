#include "Core/Circuit/Circuit.h"

#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"

#include <algorithm>

using Morvane::Input;
using Morvane::Inside;
using Morvane::Outside;

ComponentNotFound::ComponentNotFound(const std::string& name)
    : Error("Component not found: '%s'.", name.c_str()),
      _name(name)
{
}

Circuit::Circuit(const std::string& class_name, const std::string& instance_name, Circuit* parent)
    : Component(class_name, instance_name, parent)
{
    _add_default_import_path();
}

Circuit::Circuit(const std::string& instance_name, Circuit* parent)
    : Circuit("Circuit", instance_name, parent)
{
}

Circuit::~Circuit()
{
    _tear_down();
}

void Circuit::_tear_down()
{
    // Nets die with the factory below; they must not report back to a list that is going away.
    // Emptied at once, so that parts leaving them one port at a time don't cost a scan each.
    for (Net* net : _nets.items()) {
        net->set_destruction_callback(nullptr);
        net->disconnect_ports();
    }
    _nets.clear();
    for (Port* p : ports()) {
        p->disconnect(Inside);
        p->disconnect(Outside);
    }
    for (Component* c : _components.items())
        c->disconnect();
    for (Comment* comment : _comments)
        delete comment;
    _comments.clear();
    _components.clear();
    _net_factory.garbage_collect();
}

void Circuit::circuit_connect_callback(Circuit*)
{
    for (Component* c : _components.items())
        c->circuit_connect_callback(this);
}

void Circuit::reset()
{
    Component::reset();
    for (Net* net : _nets.items())
        net->clear();
    for (Component* c : _components.items())
        c->reset();
}

void Circuit::init(int end_time)
{
    Component::init(end_time);
    for (Component* c : _components.items())
        c->init(end_time);
}

void Circuit::evaluate(int time)
{
    for (Port* p : ports()) {
        if (p->dir() != Input)
            continue;
        Net* inside = p->net(Inside);
        if (inside == nullptr || simulator() == nullptr)
            continue;
        simulator()->request_evaluation(time, inside, p, p->value(time));
    }
}

void Circuit::evaluate_port(int time, Port*)
{
    evaluate(time);
}

void Circuit::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    if (simulator() != nullptr)
        simulator()->request_evaluation(time, this, port);
}

void Circuit::disconnect()
{
    for (Component* c : _components.items())
        c->disconnect();
    Component::disconnect();
    _net_factory.garbage_collect();
}

SimLog* Circuit::sim_log() const
{
    if (parent() == nullptr)
        return _sim_log;
    SimLog* above = parent()->sim_log();
    return above != nullptr ? above : _sim_log;
}

Circuit* Circuit::copy_allocator(const Circuit* source, Circuit* parent) const
{
    return new Circuit(source, parent);
}

Component* Circuit::find_component(const std::string& name) const
{
    return _components.find(name);
}

int Circuit::count_components_with_instance_name(const std::string& name) const
{
    const auto& all = _components.items();
    return static_cast<int>(std::count_if(
        all.begin(), all.end(), [&name](const Component* c) { return c->instance_name() == name; }));
}

Component* Circuit::create_factory_component(const std::string& type, const std::string& name)
{
    return _component_factory.create(type, name);
}

Component* Circuit::create_component(const std::string& type, const std::string& name)
{
    if (ComponentFactory::handles_the_type(type))
        return _component_factory.create(type, name);
    if (find_circuit_declaration(type) != nullptr)
        return copy_circuit_declaration(type, name);
    throw Error("Error: Cannot create component '%s' of type '%s'.", name.c_str(), type.c_str());
}

Component* Circuit::add_component(const std::string& type, const std::string& name)
{
    Component* c = create_component(type, name);
    _components.append(c);
    c->set_parent(this);
    return c;
}

void Circuit::add(Component* component, bool update_declarations)
{
    if (find_component(component->instance_name()) != nullptr)
        throw Error("Error: Duplicated component instance name: '%s'.", component->instance_name().c_str());
    if (component->parent() != nullptr && component->parent() != this)
        throw Error("Component '%s' already belongs to parent circuit '%s', cannot be added to circuit '%s'",
                    component->name().c_str(), component->parent()->name().c_str(), name().c_str());
    component->set_parent(this);
    _components.append(component);
    if (update_declarations) {
        if (auto* circuit = dynamic_cast<Circuit*>(component))
            update_circuit_declarations(circuit);
    }
}

void Circuit::adopt(Component* component)
{
    if (component->parent() != nullptr) {
        component->parent()->remove(component);
        component->set_parent(nullptr);
    }
    add(component, static_cast<const UnitLine*>(nullptr));
}

void Circuit::remove(Component* component)
{
    component->disconnect();
    _components.erase(component);
    _net_factory.garbage_collect();
}

void Circuit::_component_renamed(Component* component)
{
    if (_components.contains(component))
        _components.invalidate();
}

void Circuit::add_meta_data(const std::string& key, const std::string& value)
{
    _meta_data[key].push_back(value);
}

void Circuit::set_meta_data(const std::string& key, const std::string& value)
{
    _meta_data[key] = {value};
}

void Circuit::remove_meta_data(const std::string& key)
{
    _meta_data.erase(key);
}

std::string Circuit::get_meta_data_string(const std::string& key) const
{
    auto it = _meta_data.find(key);
    if (it == _meta_data.end() || it->second.empty())
        return "";
    return it->second.front();
}

std::vector<std::string> Circuit::get_meta_data_vector(const std::string& key) const
{
    auto it = _meta_data.find(key);
    return it != _meta_data.end() ? it->second : std::vector<std::string>();
}

std::vector<std::string> Circuit::get_meta_data_keys() const
{
    std::vector<std::string> keys;
    for (const auto& entry : _meta_data)
        keys.push_back(entry.first);
    return keys;
}

Comment* Circuit::add_comment(const std::string& text)
{
    auto* comment = new Comment(text);
    _comments.push_back(comment);
    return comment;
}

void Circuit::remove_comment(Comment* comment)
{
    if (comment == nullptr)
        return;
    std::erase(_comments, comment);
    delete comment;
}

void Circuit::set_comment_text(int index, const std::string& text)
{
    _comments[static_cast<std::size_t>(index)]->set_text(text);
}

void Circuit::add_import_path(const std::string& path)
{
    if (_is_relative_to_circuit_path(path))
        _import_paths.insert(_strip_to_be_circuit_relative(path));
    else
        _import_paths.insert(path);
}
