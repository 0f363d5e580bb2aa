// The base of everything that can be placed in a circuit, and of the parts with one delay.
#ifndef MORVANE_CORE_COMPONENTS_COMPONENT_H
#define MORVANE_CORE_COMPONENTS_COMPONENT_H

#include "Core/Circuit/BaseObject.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/ValueHistory.h"
#include "Core/Support/SimLog.h"

#include <climits>
#include <string>
#include <vector>

class Circuit;

/// Owns its ports and parameters and listens to its inputs: a port that is an Input when it is
/// added is subscribed to, so every change on it reaches port_changed_value. The event engine
/// calls evaluate (or evaluate_port) at the time the part asked for.
class Component : public ValueChangeSubscriber, public BaseObject, public CommentableObject
{
public:
    /// The type name is class_to_type_name(class_name).
    Component(const std::string& class_name, const std::string& instance_name, Circuit* parent);
    /// Parent null; the parameters are stored but not applied.
    Component(const std::string& class_name, const std::string& instance_name, const ParaMap& params);
    /// Name, id, comment, parent, parameters and type name; every port copied without nets or
    /// history, and the copied inputs subscribed to.
    explicit Component(const Component* other);
    /// Disconnects both sides of every port; the factory then frees them.
    ~Component() override;

    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;

    /// Tells the holding circuit, which finds its parts by name through an index. A part that
    /// overrides this calls it.
    void rename_callback(const std::string& old_name, const std::string& new_name) override;

    // The hooks, in the order parts override them.
    virtual void circuit_connect_callback(Circuit* circuit);
    /// Clears the history of every port; subscribers stay. A part with state rebuilds it here.
    virtual void reset();
    /// Where a part schedules its first events.
    virtual void init(int end_time);
    virtual void evaluate(int time) = 0;
    /// Ignores the port unless a part overrides this.
    virtual void evaluate_port(int time, Port* port);
    virtual void copy_callback(Component* source);
    virtual std::vector<std::string> get_valid_param_keys() = 0;
    /// Adds a pin made elsewhere; null throws Error.
    virtual void add_pin(Pin* pin);
    void value_changed(const ValueHistory* source, ValueChange& change) override;
    virtual void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time);
    /// Leaves the outside net of every port; the inside stays.
    virtual void disconnect();
    virtual void update_after_param_change() = 0;
    virtual Circuit* parent() { return _parent; }
    virtual const Circuit* parent() const { return _parent; }
    /// More for the result table; nothing here.
    virtual std::string aux_info_string();
    /// The parent's sink; null without a parent.
    virtual SimLog* sim_log() const;
    /// How far before the present, in ns, the part reads the histories of its ports and of the nets
    /// on them: what a run that forgets the rest must keep. A part that can't say is unbounded.
    virtual int history_reach() const { return unbounded_reach; }
    static constexpr int unbounded_reach = INT_MAX;

    /// Made by the own factory and added.
    Port* make_port(int size, Morvane::Dir dir, const std::string& name);
    /// The same for a pin; the virtual add_pin is not called.
    Pin* make_pin(Morvane::Dir dir, const std::string& name);
    /// Adds a port made elsewhere; null throws Error.
    void add_port(Port* port);
    void add_port_rename(Port* port, const std::string& name);
    void add_pin_rename(Pin* pin, const std::string& name);
    /// Disconnects it on both sides and forgets it; the factory still owns it.
    void remove_port(Port* port);
    void remove_all_ports();

    // Lookups give the first match, or null.
    Port* port(const std::string& name);
    const Port* port(const std::string& name) const;
    Port* port_by_id(const std::string& id);
    const Port* port_by_id(const std::string& id) const;
    /// Null also when the port of that name is no Pin.
    Pin* pin(const std::string& name);
    std::vector<Port*>& ports() { return _ports; }
    std::vector<Port*> ports() const { return _ports; }
    bool has_port(const Port* port) const;
    bool has_port(const std::string& name) const;
    bool has_port_with_id(const std::string& id) const;
    int count_ports_with_name(const std::string& name) const;
    int count_ports_with_id(const std::string& id) const;

    const std::string& instance_name() const { return name(); }
    void set_instance_name(const std::string& name) { set_name(name); }
    const std::string& type_name() const { return _type_name; }
    void set_type_name(const std::string& type_name) { _type_name = type_name; }
    /// The instance name and the parameters, as in "U1(delay=5)".
    std::string instance_spec() const;
    ParaMap& parameters() { return _parameters; }
    const ParaMap& parameters() const { return _parameters; }
    std::string parameter_description() const;
    std::string get_parameter_string() const { return _parameters.to_string(); }
    std::string get_diff_parameter_string(const ParaMap& other) const
    {
        return _parameters.diff_string(other);
    }
    /// Replaces the map, then applies it.
    void set_parameters(const ParaMap& params);

    /// Refreshes every input from its net.
    void update_inputs(int time);
    /// Refreshes every output from its net.
    void update_outputs(int time);
    /// To the simulator if there is one; nothing otherwise.
    void request_evaluation(int time, Component* component, Port* port);
    /// Stores the parent and tells the part through circuit_connect_callback.
    void set_parent(Circuit* parent);
    /// Warns of every input that has no outside net.
    void check_connections();

    [[gnu::format(printf, 3, 4)]] void log(LogLevel level, const char* format, ...);
    /// Prefixed with the instance, type, parent and level: "[U1(And) in top | WARNING] ". The whole
    /// line is once more taken as a format by the sink, so a '%' in it must be doubled twice.
    /// Needs a parent.
    [[gnu::format(printf, 3, 4)]] void clog(LogLevel level, const char* format, ...);
    /// The same with the time: "[U1(And) in top | T=10 ns | WARNING] "; the line reaches the sink as is.
    [[gnu::format(printf, 4, 5)]] void clog(LogLevel level, int time, const char* format, ...);

private:
    Circuit* _parent = nullptr;  // holding circuit; null at the root and until placed
    std::vector<Port*> _ports;   // in order of adding; not owned
    PortFactory _port_factory;   // owns the ports made here and the copies
    ParaMap _parameters;         // as the file or the factory gave them
    std::string _type_name;      // the name a file uses for the type
};

/// A part with one propagation delay: any change on an input asks for an evaluation that much later,
/// one per changed port, without looking at the values.
class SingleDelayComponent : public Component
{
public:
    /// The delay stays 0 until the parameters are applied.
    SingleDelayComponent(const std::string& class_name, const std::string& instance_name,
                         const ParaMap& params);
    /// The given delay and no parameters.
    SingleDelayComponent(const std::string& class_name, const std::string& instance_name, int delay);

    /// "delay"
    std::vector<std::string> get_valid_param_keys() override;
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    /// Reads "delay"; a missing key leaves the delay as it was.
    void update_after_param_change() override;

    int delay() const { return _delay; }
    /// The parameter map is not touched.
    void set_delay(int delay) { _delay = delay; }

private:
    int _delay = 0;  // ns, input change to evaluation
};

#endif  // MORVANE_CORE_COMPONENTS_COMPONENT_H
