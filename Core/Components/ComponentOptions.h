// Settings a test vector file makes for the time of a run: part parameters and constant inputs.
#ifndef MORVANE_CORE_COMPONENTS_COMPONENTOPTIONS_H
#define MORVANE_CORE_COMPONENTS_COMPONENTOPTIONS_H

#include "Core/Circuit/BaseObject.h"

#include <map>
#include <string>

class Circuit;

/// name(key=value,flag,...): parameters for one component, found by its dotted path. A key without a
/// value stands for "true". No quoting: a value cannot hold a comma.
class ComponentOptions : public CommentableObject
{
public:
    /// Throws Error without a "(" or a ")", or on an item with two "=".
    ComponentOptions(const std::string& text, const std::string& comment);

    const std::string& name() const { return _name; }
    void set_name(const std::string& name) { _name = name; }
    std::string id() const { return _id; }
    int nof_options() const { return static_cast<int>(_options.size()); }
    const std::map<std::string, std::string>& options() const { return _options; }

    /// The key or value at place i in key order; "" past the end.
    std::string get_key(int i) const;
    std::string get_value(int i) const;
    /// "" for a missing key.
    std::string get_value(const std::string& key) const;
    void set(const std::string& key, const std::string& value) { _options[key] = value; }
    void remove_key(const std::string& key) { _options.erase(key); }
    /// "key=value" in key order, joined by commas.
    std::string get_options_string() const;

    /// Takes the id of the component that the path leads to; leaves it as it was if there is none.
    void resolve_component_id(Circuit* circuit);

private:
    void _parse_options(const std::string& text);

    std::string _name;                            // dotted component path as written, untrimmed
    std::string _id;                              // the component's id once resolved, else ""
    std::map<std::string, std::string> _options;  // key to value, both trimmed
};

/// port=value: a constant stimulus on an input from time 0.
class PortAssignment : public CommentableObject
{
public:
    /// Throws Error unless the text holds exactly one "=".
    PortAssignment(const std::string& text, const std::string& comment);

    const std::string& port_name() const { return _port_name; }
    void set_port_name(const std::string& name) { _port_name = name; }
    std::string port_id() const { return _port_id; }
    const std::string& value() const { return _value; }
    void set_value(const std::string& value) { _value = value; }

    /// Takes the id of the port that the path leads to; leaves it as it was if there is none.
    void resolve_port_id(Circuit* circuit);

private:
    std::string _port_name;  // dotted port path, trimmed
    std::string _port_id;    // the port's id once resolved, else ""
    std::string _value;      // compact value text, trimmed
};

#endif  // MORVANE_CORE_COMPONENTS_COMPONENTOPTIONS_H
