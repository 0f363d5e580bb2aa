#include "Core/Circuit/Circuit.h"

#include "Core/Support/Error.h"

Circuit::Circuit(const std::string& class_name, const std::string& instance_name, Circuit* parent)
    : Component(class_name, instance_name, parent)
{
}

Circuit::Circuit(const std::string& instance_name, Circuit* parent)
    : Circuit("Circuit", instance_name, parent)
{
}

Circuit::Circuit(const Circuit* other, Circuit* parent) : Component(other)
{
    set_parent(parent);
}

void Circuit::reset()
{
    Component::reset();
    for (Component* c : _components)
        c->reset();
}

void Circuit::init(int end_time)
{
    Component::init(end_time);
    for (Component* c : _components)
        c->init(end_time);
}

void Circuit::evaluate(int) {}

void Circuit::evaluate_port(int time, Port*)
{
    evaluate(time);
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

void Circuit::add(Component* component, bool)
{
    if (find_component(component->instance_name()) != nullptr)
        throw Error("Error: Duplicated component instance name: '%s'.", component->instance_name().c_str());
    if (component->parent() != nullptr && component->parent() != this)
        throw Error("Component '%s' already belongs to parent circuit '%s', cannot be added to circuit '%s'",
                    component->name().c_str(), component->parent()->name().c_str(), name().c_str());
    component->set_parent(this);
    _components.push_back(component);
}

void Circuit::add_component(Component* component)
{
    _components.push_back(component);
    component->set_parent(this);
}

Component* Circuit::find_component(const std::string& name) const
{
    for (Component* c : _components) {
        if (c->instance_name() == name)
            return c;
    }
    return nullptr;
}
