// The composite component: a part that holds other parts.
#ifndef MORVANE_CORE_CIRCUIT_CIRCUIT_H
#define MORVANE_CORE_CIRCUIT_CIRCUIT_H

#include "Core/Components/Component.h"
#include "Core/Support/SimLog.h"

#include <string>
#include <vector>

/// Holds its parts in the order they were added, runs reset and init over them, and is the report
/// sink for everything below it. Only what the engine and the parts need so far: nets, declarations
/// and the building from files come with the full container.
class Circuit : public Component
{
public:
    /// For classes that derive from Circuit: the type name follows from the class name.
    Circuit(const std::string& class_name, const std::string& instance_name, Circuit* parent);
    /// A plain circuit, of type "Circuit".
    Circuit(const std::string& instance_name, Circuit* parent);
    /// A copy of the component part of `other`, placed under `parent`.
    Circuit(const Circuit* other, Circuit* parent);
    ~Circuit() override = default;

    /// Resets the own ports, then every part in order.
    void reset() override;
    /// Initialises every part in order.
    void init(int end_time) override;
    void evaluate(int time) override;
    void evaluate_port(int time, Port* port) override;
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}
    /// With a parent, the parent's sink if it has one; the sink nearest the root wins.
    SimLog* sim_log() const override;

    /// What ComponentFactory::duplicate calls to copy a circuit of this class.
    virtual Circuit* copy_allocator(const Circuit* source, Circuit* parent) const;

    /// Appends and places the part here. A part of the same instance name, or one that belongs to
    /// another circuit, throws Error.
    void add(Component* component, bool update_declarations);
    /// Appends and places the part here, with no checks.
    void add_component(Component* component);
    std::vector<Component*>& components() { return _components; }
    const std::vector<Component*>& components() const { return _components; }
    /// The first part of that instance name, or null.
    Component* find_component(const std::string& name) const;

    /// Kept at the root only, after the load.
    void set_simlog(SimLog* log) { _sim_log = log; }

private:
    std::vector<Component*> _components;  // in order of adding; not owned
    SimLog* _sim_log = nullptr;           // report sink; not owned
};

#endif  // MORVANE_CORE_CIRCUIT_CIRCUIT_H
