// The table of part types, and the factory that makes parts by type name.
#ifndef MORVANE_CORE_COMPONENTS_COMPONENTFACTORY_H
#define MORVANE_CORE_COMPONENTS_COMPONENTFACTORY_H

#include "Core/Components/ParaMap.h"

#include <string>
#include <vector>

class Circuit;
class Component;

/// Makes parts from a type name and an instance specification such as "U1(delay=7)", the type's
/// default parameters overridden and extended by the instance's own. Owns what it makes. The types
/// are the rows of one fixed table, searched in order; type names compare exactly.
class ComponentFactory
{
public:
    ComponentFactory() = default;
    ComponentFactory(const ComponentFactory&) = delete;
    ComponentFactory& operator=(const ComponentFactory&) = delete;
    /// Deletes every part made or duplicated here.
    ~ComponentFactory();

    /// Null for a type not in the table; a malformed specification throws Error first.
    Component* create(const std::string& type, const std::string& spec);
    /// A copy of the circuit by its own class's copy_allocator, kept here.
    Component* duplicate(const Circuit* source, Circuit* parent);

    static bool handles_the_type(const std::string& type);
    /// Empty for an unknown type.
    static ParaMap default_parameters(const std::string& type);
    /// Empty for an unknown type.
    static std::string parameter_description(const std::string& type);
    /// Appends the text before the first '(' to `name` and the rest to `params`; parameters that
    /// don't end in ')' throw Error.
    static void extract_name_and_params(const std::string& spec, std::string& name, std::string& params);
    /// The type names of the table, in table order.
    static std::vector<std::string> type_names();

private:
    std::vector<Component*> _components;  // owned, in order of making
};

#endif  // MORVANE_CORE_COMPONENTS_COMPONENTFACTORY_H
