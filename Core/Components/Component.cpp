#include "Core/Components/Component.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

namespace {

constexpr std::size_t log_buffer_size = 2048;  // bytes of one clog line, prefix included

const char* level_name(LogLevel level)
{
    switch (level) {
    case information:
        return "INFO";
    case warning:
        return "WARNING";
    default:
        return "ERROR";
    }
}

// The sinks take the composed line of the untimed clog as a format once more.
void log_line_as_format(SimLog* sink, LogLevel level, const char* line, ...)
{
    va_list args;
    va_start(args, line);
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wformat-nonliteral"
#endif
    sink->log(level, line, args);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif
    va_end(args);
}

}  // namespace

Component::Component(const std::string& class_name, const std::string& instance_name, Circuit* parent)
    : BaseObject(instance_name),
      _parent(parent),
      _type_name(class_to_type_name(class_name))
{
}

Component::Component(const std::string& class_name, const std::string& instance_name, const ParaMap& params)
    : BaseObject(instance_name),
      _parameters(params),
      _type_name(class_to_type_name(class_name))
{
}

Component::Component(const Component* other)
    : BaseObject(other),
      CommentableObject(other->comment_text()),
      _parent(other->_parent),
      _parameters(other->_parameters),
      _type_name(other->_type_name)
{
    for (Port* source : other->_ports)
        add_port(_port_factory.copy(source));
}

Component::~Component()
{
    for (Port* p : _ports) {
        p->disconnect(Outside);
        p->disconnect(Inside);
        // A port made elsewhere may outlive this part.
        p->remove_change_subscriber(this);
    }
    _ports.clear();
}

void Component::rename_callback(const std::string&, const std::string&)
{
    if (_parent != nullptr)
        _parent->_component_renamed(this);
}

void Component::circuit_connect_callback(Circuit*) {}

void Component::reset()
{
    for (Port* p : _ports)
        p->clear();
}

void Component::init(int) {}

void Component::evaluate_port(int time, Port*)
{
    evaluate(time);
}

void Component::copy_callback(Component*) {}

void Component::add_pin(Pin* pin)
{
    add_port(pin);
}

void Component::value_changed(const ValueHistory* source, ValueChange& change)
{
    // Every Port marks its history, which spares a dynamic_cast per change.
    Port* p = source != nullptr && source->is_port() ? static_cast<Port*>(const_cast<ValueHistory*>(source))
                                                     : nullptr;
    port_changed_value(p, change.old_value, change.new_value, change.time);
}

void Component::port_changed_value(Port*, const Value&, const Value&, int) {}

void Component::disconnect()
{
    for (Port* p : _ports)
        p->disconnect(Outside);
}

std::string Component::aux_info_string()
{
    return "";
}

SimLog* Component::sim_log() const
{
    return _parent != nullptr ? _parent->sim_log() : nullptr;
}

Port* Component::make_port(int size, Morvane::Dir dir, const std::string& name)
{
    Port* p = _port_factory.create(size, dir, name);
    add_port(p);
    return p;
}

Pin* Component::make_pin(Morvane::Dir dir, const std::string& name)
{
    Pin* p = _port_factory.create_pin(dir, name);
    add_port(p);
    return p;
}

void Component::add_port(Port* port)
{
    if (port == nullptr)
        throw Error("Internal error: port is NULL in ../Core/Components/Component:128");
    _ports.push_back(port);
    // Only what is an input now is listened to; a later change of direction doesn't change that.
    if (port->dir() == Input)
        port->add_change_subscriber(this);
}

void Component::add_port_rename(Port* port, const std::string& name)
{
    if (port == nullptr)
        throw Error("Internal error: port is NULL in ../Core/Components/Component:128");
    port->set_name(name);
    add_port(port);
}

void Component::add_pin_rename(Pin* pin, const std::string& name)
{
    if (pin == nullptr)
        throw Error("Internal error: port is NULL in ../Core/Components/Component:128");
    pin->set_name(name);
    add_pin(pin);
}

void Component::remove_port(Port* port)
{
    port->disconnect(Outside);
    port->disconnect(Inside);
    std::erase(_ports, port);
    if (port->dir() == Input)
        port->remove_change_subscriber(this);
}

void Component::remove_all_ports()
{
    for (Port* p : _ports) {
        p->disconnect(Outside);
        p->disconnect(Inside);
    }
    _ports.clear();
}

Port* Component::port(const std::string& name)
{
    for (Port* p : _ports) {
        if (p->name() == name)
            return p;
    }
    return nullptr;
}

const Port* Component::port(const std::string& name) const
{
    return const_cast<Component*>(this)->port(name);
}

Port* Component::port_by_id(const std::string& id)
{
    for (Port* p : _ports) {
        if (p->id() == id)
            return p;
    }
    return nullptr;
}

const Port* Component::port_by_id(const std::string& id) const
{
    return const_cast<Component*>(this)->port_by_id(id);
}

Pin* Component::pin(const std::string& name)
{
    return dynamic_cast<Pin*>(port(name));
}

bool Component::has_port(const Port* port) const
{
    return std::find(_ports.begin(), _ports.end(), port) != _ports.end();
}

bool Component::has_port(const std::string& name) const
{
    return port(name) != nullptr;
}

bool Component::has_port_with_id(const std::string& id) const
{
    return port_by_id(id) != nullptr;
}

int Component::count_ports_with_name(const std::string& name) const
{
    return static_cast<int>(
        std::count_if(_ports.begin(), _ports.end(), [&name](const Port* p) { return p->name() == name; }));
}

int Component::count_ports_with_id(const std::string& id) const
{
    return static_cast<int>(
        std::count_if(_ports.begin(), _ports.end(), [&id](const Port* p) { return p->id() == id; }));
}

std::string Component::instance_spec() const
{
    return instance_name() + _parameters.to_string();
}

std::string Component::parameter_description() const
{
    return ComponentFactory::parameter_description(_type_name);
}

void Component::set_parameters(const ParaMap& params)
{
    _parameters = params;
    update_after_param_change();
}

void Component::update_inputs(int time)
{
    for (Port* p : _ports) {
        if (p->dir() == Input)
            p->update(time);
    }
}

void Component::update_outputs(int time)
{
    for (Port* p : _ports) {
        if (p->dir() == Output)
            p->update(time);
    }
}

void Component::request_evaluation(int time, Component* component, Port* port)
{
    if (simulator() != nullptr)
        simulator()->request_evaluation(time, component, port);
}

void Component::set_parent(Circuit* parent)
{
    _parent = parent;
    circuit_connect_callback(parent);
}

void Component::check_connections()
{
    for (Port* p : _ports) {
        if (p->dir() == Input && p->net(Outside) == nullptr)
            clog(warning, "Input port '%s' of component '%s'/'%s' is not connected.", p->name().c_str(),
                 _type_name.c_str(), instance_name().c_str());
    }
}

void Component::log(LogLevel level, const char* format, ...)
{
    SimLog* sink = sim_log();
    if (sink == nullptr)
        return;
    va_list args;
    va_start(args, format);
    sink->log(level, format, args);
    va_end(args);
}

void Component::clog(LogLevel level, const char* format, ...)
{
    SimLog* sink = sim_log();
    if (sink == nullptr)
        return;
    char line[log_buffer_size];
    const char* parent_name = _parent != nullptr ? _parent->instance_name().c_str() : "";
    int n = snprintf(line, sizeof line, "[%s(%s) in %s | %s] ", instance_name().c_str(), _type_name.c_str(),
                     parent_name, level_name(level));
    std::size_t used = std::min(static_cast<std::size_t>(n > 0 ? n : 0), sizeof line - 1);
    va_list args;
    va_start(args, format);
    vsnprintf(line + used, sizeof line - used, format, args);
    va_end(args);
    log_line_as_format(sink, level, line);
}

void Component::clog(LogLevel level, int time, const char* format, ...)
{
    SimLog* sink = sim_log();
    if (sink == nullptr)
        return;
    char line[log_buffer_size];
    const char* parent_name = _parent != nullptr ? _parent->instance_name().c_str() : "";
    int n = snprintf(line, sizeof line, "[%s(%s) in %s | T=%s | %s] ", instance_name().c_str(),
                     _type_name.c_str(), parent_name, time_to_str(time, 0).c_str(), level_name(level));
    std::size_t used = std::min(static_cast<std::size_t>(n > 0 ? n : 0), sizeof line - 1);
    va_list args;
    va_start(args, format);
    vsnprintf(line + used, sizeof line - used, format, args);
    va_end(args);
    sink->log(level, "%s", line);
}

SingleDelayComponent::SingleDelayComponent(const std::string& class_name, const std::string& instance_name,
                                           const ParaMap& params)
    : Component(class_name, instance_name, params)
{
}

SingleDelayComponent::SingleDelayComponent(const std::string& class_name, const std::string& instance_name,
                                           int delay)
    : Component(class_name, instance_name, static_cast<Circuit*>(nullptr)),
      _delay(delay)
{
}

std::vector<std::string> SingleDelayComponent::get_valid_param_keys()
{
    return {"delay"};
}

void SingleDelayComponent::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time + _delay, this, port);
}

void SingleDelayComponent::update_after_param_change()
{
    parameters().get_value("delay", _delay);
}
