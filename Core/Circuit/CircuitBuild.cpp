// Building a circuit from a parsed circuit file.
#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitSpec.h"
#include "Core/Circuit/Line.h"
#include "Core/Support/Error.h"

#include <memory>

using Morvane::Dir;

namespace {

/// False for a text that names no direction.
bool direction_of(const std::string& text, Dir& dir)
{
    if (text == "Input")
        dir = Morvane::Input;
    else if (text == "Output")
        dir = Morvane::Output;
    else if (text == "Inout")
        dir = Morvane::Inout;
    else
        return false;
    return true;
}

}  // namespace

void Circuit::add(Component* component, const UnitLine* line)
{
    if (line != nullptr && find_component(component->instance_name()) != nullptr)
        throw Error("Error in %s:%d: Duplicated component instance name: '%s'.", line->filename.c_str(),
                    line->line_number, component->instance_name().c_str());
    add(component, true);
}

// Parts cost a few kB each with their ports, nets and histories: this keeps a load within a
// gigabyte or so.
int Circuit::max_nof_parts = 200000;

void Circuit::build_from_spec(const CircuitSpec* spec)
{
    _circuit_spec = spec;
    _filename = spec->is_declared_locally() ? std::string() : spec->filename();
    set_instance_name(spec->name());
    _build(spec);
    // Every part has heard of its parent once already, when it was added; now the file stands whole.
    if (!spec->is_declared_locally())
        circuit_connect_callback(this);
}

void Circuit::forget_circuit_spec()
{
    _circuit_spec = nullptr;
    for (Circuit* d : _circuit_declarations)
        d->forget_circuit_spec();
    for (Component* c : components()) {
        if (auto* sub = dynamic_cast<Circuit*>(c))
            sub->forget_circuit_spec();
    }
}

Circuit* Circuit::spec_allocator(const CircuitSpec* spec, Circuit* parent) const
{
    auto declaration = std::make_unique<Circuit>(spec->name(), "spec-inst-name", parent);
    declaration->build_from_spec(spec);
    return declaration.release();
}

void Circuit::_build(const CircuitSpec* spec)
{
    // A fixed order, whatever the order in the file: a Unit may name a type declared below it and a
    // Net may name parts made below it.
    for (const CircuitSpec* child : spec->circuits())
        _add_circuit_declaration(child);
    for (const UnitLine& line : spec->units())
        _create_components(line);
    for (const PortLine& line : spec->ports())
        _add_circuit_port(line);
    for (const PinLine& line : spec->pins())
        _add_circuit_pin(line);
    for (const NetLine& line : spec->nets())
        _add_net(line);
    for (const MetaDataLine& line : spec->meta_data())
        _add_metadata(line);
    for (const std::string& path : spec->import_paths())
        add_import_path(path);
    for (const std::string& text : spec->file_comments())
        _comments.push_back(new Comment(text));
}

void Circuit::_add_circuit_declaration(const CircuitSpec* spec)
{
    if (ComponentFactory::handles_the_type(spec->name()))
        throw Error("Error: Circuit name '%s' (within '%s') identical to a component.", spec->name().c_str(),
                    instance_name().c_str());
    for (const Circuit* d : _circuit_declarations) {
        if (d->name() == spec->name())
            throw Error("Error: Duplicated sub-circuits '%s' within circuit '%s'.", spec->name().c_str(),
                        instance_name().c_str());
    }
    std::unique_ptr<Circuit> declaration(spec_allocator(spec, this));
    // Every copy of this circuit copies its declarations too, so they count as parts; the next Unit
    // line checks the sum.
    _nof_parts_within += 1 + declaration->_nof_parts_within;
    add_circuit_declaration(declaration.get());
    _allocated.push_back(std::move(declaration));
}

void Circuit::_create_components(const UnitLine& line)
{
    std::string comment = line.comment_text();
    for (const std::string& name : line.names) {
        Component* c = _component_factory.create(line.type, name);
        if (c == nullptr)
            c = _make_component_from_circuit(line, name);
        if (c == nullptr)
            throw Error("Error at %s:%d: Component type not found: '%s'.", line.filename.c_str(),
                        line.line_number, line.type.c_str());
        const auto* sub = dynamic_cast<const Circuit*>(c);
        int nof_parts = 1 + (sub != nullptr ? sub->_nof_parts_within : 0);
        _check_room_for_parts(line, nof_parts);
        _nof_parts_within += nof_parts;
        // Only the first instance of a line carries its comment.
        c->set_comment_text(comment);
        comment.clear();
        add(c, &line);
    }
}

void Circuit::_check_room_for_parts(const UnitLine& line, int nof_parts) const
{
    // Each level of instances multiplies the parts of the one below: a few lines can ask for more
    // parts than memory holds.
    if (nof_parts > max_nof_parts - _nof_parts_within)
        throw Error("Error at %s:%d: Circuit '%s' would hold more than %d parts.", line.filename.c_str(),
                    line.line_number, instance_name().c_str(), max_nof_parts);
}

Component* Circuit::_make_component_from_circuit(const UnitLine& line, const std::string& name)
{
    // Own declarations only: a type is visible in the scope that declares it and nowhere else.
    for (Circuit* d : _circuit_declarations) {
        if (d->type_name() != line.type)
            continue;
        // Checked before the copy is made, so that a refused copy takes no memory.
        _check_room_for_parts(line, 1 + d->_nof_parts_within);
        Circuit* instance = copy_allocator(d, this);
        _allocated.emplace_back(instance);
        instance->set_name(name);
        return instance;
    }
    return nullptr;
}

void Circuit::_add_circuit_port(const PortLine& line)
{
    int size = std::stoi(line.size);
    Dir dir;
    if (!direction_of(line.direction, dir))
        throw Error("Unsupported port direction '%s' on line %d.", line.direction.c_str(), line.line_number);
    std::string comment = line.comment_text();
    for (const std::string& name : line.names) {
        Port* port = _create_port(name, size, dir, line.filename, line.line_number);
        port->set_comment_text(comment);
        comment.clear();
    }
}

void Circuit::_add_circuit_pin(const PinLine& line)
{
    Dir dir;
    if (!direction_of(line.direction, dir))
        throw Error("Unsupported pin direction '%s' on line %d.", line.direction.c_str(), line.line_number);
    std::string comment = line.comment_text();
    for (const std::string& token : line.names) {
        // The token as written, options and all: "a" and "a(ztr=off)" do not collide here.
        if (find_port(token) != nullptr)
            throw Error("Error in %s:%d: pin/port name duplication '%s'.", line.filename.c_str(),
                        line.line_number, token.c_str());
        ParaMap params;
        std::string name = _parse_name_and_params(token, params);
        Pin* pin = make_pin(dir, name);
        try {
            pin->set_options(params);
        } catch (...) {
            remove_port(pin);
            throw;
        }
        pin->set_comment_text(comment);
        comment.clear();
    }
}

void Circuit::_add_net(const NetLine& line)
{
    try {
        std::vector<Port*> ports;
        for (const std::string& path : line.ports)
            ports.push_back(_get_port_with_diag(path, line));
        Net* net = make_net(line.name, ports);
        net->set_comment_text(line.comment_text());
    } catch (const ComponentNotFound& e) {
        throw Error("Error at %s:%d: Component not found: '%s'.", line.filename.c_str(), line.line_number,
                    e.name().c_str());
    }
}

void Circuit::_add_metadata(const MetaDataLine& line)
{
    add_meta_data(line.key, line.value);
}

Port* Circuit::_get_port_with_diag(const std::string& path, const Line& line)
{
    Port* port = find_port(path);
    if (port == nullptr)
        throw Error("Error at %s:%d: Port not found: '%s'.", line.filename.c_str(), line.line_number,
                    path.c_str());
    return port;
}
