#include "Core/Circuit/BaseObject.h"

#include <cstdio>
#include <cstdlib>

BaseObject::BaseObject(const std::string& name) : _name(name)
{
    generate_random_id();
}

BaseObject::BaseObject(const BaseObject* other) : Dict(other), _name(other->_name), _id(other->_id) {}

void BaseObject::rename_callback(const std::string&, const std::string&) {}

void BaseObject::set_name(const std::string& name)
{
    // The callback still sees the old name in the object.
    rename_callback(_name, name);
    _name = name;
}

void BaseObject::generate_random_id()
{
    // Two separate statements fix the order of the calls.
    unsigned first = static_cast<unsigned>(rand());
    unsigned second = static_cast<unsigned>(rand());
    char buffer[100];
    snprintf(buffer, sizeof buffer, "%x%x", second, first);
    _id = buffer;
}
