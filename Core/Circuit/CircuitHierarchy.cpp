// Declarations of sub-circuit types, the deep copy that makes an instance, and swapping instances.
#include "Core/Circuit/Circuit.h"
#include "Core/Support/Error.h"

#include <algorithm>

using Morvane::Outside;

Circuit::Circuit(const Circuit* other, Circuit* parent) : Component(other)
{
    _add_default_import_path();
    _import_paths.insert(other->_import_paths.begin(), other->_import_paths.end());
    _filename = other->_filename;
    set_parent(parent);
    try {
        for (const Component* c : other->components()) {
            Component* copy = nullptr;
            if (ComponentFactory::handles_the_type(c->type_name())) {
                copy = _component_factory.create(c->type_name(), c->instance_spec());
                if (copy != nullptr)
                    copy->copy_callback(const_cast<Component*>(c));
            } else if (const auto* sub = dynamic_cast<const Circuit*>(c)) {
                copy = _component_factory.duplicate(sub, this);
            }
            if (copy == nullptr)
                throw Error("Cannot make a copy of component '%s' in circuit '%s'.", c->name().c_str(),
                            instance_name().c_str());
            copy->set_comment_text(c->comment_text());
            add(copy, false);
        }

        // The wiring is rebuilt by path, not by pointer.
        std::unordered_map<const Port*, std::string> paths;
        other->_collect_port_paths("", paths);
        for (const Net* net : other->nets()) {
            std::vector<Port*> ports_here;
            for (const Port* p : net->ports()) {
                auto it = paths.find(p);
                const std::string path = it != paths.end() ? it->second : std::string();
                Port* here = find_port(path);
                if (here == nullptr)
                    throw Error("Cann't find port path '%s' in circuit '%s'", path.c_str(),
                                instance_name().c_str());
                ports_here.push_back(here);
            }
            Net* copy = make_net(net->name(), ports_here);
            copy->set_comment_text(net->comment_text());
        }

        for (const Circuit* d : other->_circuit_declarations) {
            auto* copy = dynamic_cast<Circuit*>(_component_factory.duplicate(d, this));
            if (copy == nullptr)
                throw Error("Cannot make a copy of circuit declaration '%s' in circuit '%s'.",
                            d->name().c_str(), instance_name().c_str());
            for (int i = 0; i < d->nof_comments(); ++i)
                copy->set_comment_text(i, d->get_comment(i)->text());
            if (find_circuit_declaration(copy->type_name()) != nullptr)
                throw Error("Ooops, already has that type pf declaration '%s'", copy->type_name().c_str());
            copy->set_parent(this);
            _circuit_declarations.push_back(copy);
        }

        for (const Comment* comment : other->_comments)
            _comments.push_back(new Comment(comment->text()));
    } catch (...) {
        _tear_down();
        throw;
    }
}

Circuit* Circuit::find_circuit_declaration(const std::string& type) const
{
    for (Circuit* d : _circuit_declarations) {
        if (d->type_name() == type)
            return d;
    }
    return nullptr;
}

bool Circuit::has_circuit_declaration(const Circuit* declaration) const
{
    return std::find(_circuit_declarations.begin(), _circuit_declarations.end(), declaration) !=
           _circuit_declarations.end();
}

void Circuit::add_circuit_declaration(Circuit* declaration)
{
    if (has_circuit_declaration(declaration->type_name()))
        throw Error("Ooops, already has that type pf declaration '%s'", declaration->type_name().c_str());
    declaration->set_parent(this);
    _circuit_declarations.push_back(declaration);
}

void Circuit::remove_circuit_declaration(Circuit* declaration)
{
    std::erase(_circuit_declarations, declaration);
}

void Circuit::add_copy_of_circuit_as_declaration(Circuit* circuit)
{
    add_circuit_declaration(static_cast<Circuit*>(_component_factory.duplicate(circuit, this)));
}

Circuit* Circuit::copy_circuit_declaration(const std::string& type, const std::string& name)
{
    Circuit* declaration = find_circuit_declaration(type);
    if (declaration == nullptr)
        return nullptr;
    auto* copy = static_cast<Circuit*>(_component_factory.duplicate(declaration, nullptr));
    copy->set_name(name.empty() ? declaration->instance_name() + "_copy" : name);
    return copy;
}

void Circuit::update_circuit_declarations(Circuit* circuit)
{
    if (circuit == nullptr || ComponentFactory::handles_the_type(circuit->type_name()))
        return;
    if (has_circuit_declaration(circuit->type_name()))
        return;
    // Emptied first, so that the copy is a local declaration as well.
    circuit->_filename.clear();
    add_circuit_declaration(static_cast<Circuit*>(_component_factory.duplicate(circuit, this)));
}

void Circuit::update_other_instances_of_same_type(Circuit* circuit)
{
    _replace_declaration_with_copy_of(circuit);
    _update_instances_of(circuit);
}

void Circuit::_replace_declaration_with_copy_of(Circuit* circuit)
{
    if (Circuit* old = find_circuit_declaration(circuit->type_name()))
        remove_circuit_declaration(old);
    add_circuit_declaration(static_cast<Circuit*>(_component_factory.duplicate(circuit, this)));
}

void Circuit::_update_instances_of(Circuit* circuit)
{
    Circuit* declaration = find_circuit_declaration(circuit->type_name());
    if (declaration == nullptr)
        throw Error("Can't find a declaration of circuit of type '%s'.", circuit->type_name().c_str());
    std::vector<Circuit*> instances;
    for (Component* c : components()) {
        auto* sub = dynamic_cast<Circuit*>(c);
        if (sub != nullptr && sub != circuit && sub->type_name() == circuit->type_name())
            instances.push_back(sub);
    }
    for (Circuit* instance : instances)
        replace_subcircuit_with_copy(instance, declaration);
}

Circuit* Circuit::replace_subcircuit_with_copy(Circuit* old_instance, const Circuit* model)
{
    auto* copy = static_cast<Circuit*>(_component_factory.duplicate(model, nullptr));
    // A name that no instance can have, so that adding the copy beside the old one passes.
    copy->set_name("qocksiKUTMCNSAL923859kkdjOLDHGj348fnSkdfj");
    substitute_component(old_instance, copy);
    copy->set_name(old_instance->instance_name());
    return copy;
}

void Circuit::substitute_component(Component* old_component, Component* new_component)
{
    for (Port* old_port : old_component->ports()) {
        Port* new_port = new_component->port(old_port->name());
        Net* net = old_port->net(Outside);
        if (net == nullptr)
            continue;
        if (new_port != nullptr) {
            new_port->set_id(old_port->id());
            net->add(new_port, Outside);
        }
        net->remove(old_port);
    }
    _components.erase(old_component);
    add(new_component, static_cast<const UnitLine*>(nullptr));
    remove_nets_with_fewer_ports_than(2);
}
