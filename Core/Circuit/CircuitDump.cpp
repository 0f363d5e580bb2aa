// The connection check and the printed dump of a circuit.
#include "Core/Circuit/Circuit.h"
#include "Core/Support/TLog.h"

void Circuit::check_connections()
{
    for (Component* c : components()) {
        c->Component::check_connections();
        if (auto* sub = dynamic_cast<Circuit*>(c))
            sub->check_connections();
    }
}

void Circuit::print(bool recursive)
{
    // "%p" brings its own "0x": addresses print with two, as the format always had them.
    TLog circuit_level("Circuit: '%s' / '%s' (0x%p) file: '%s'", instance_name().c_str(), type_name().c_str(),
                       static_cast<const void*>(this), _filename.c_str());
    {
        TLog section("Components [%d]:", nof_components());
        {
            TLog entries;
            int index = 0;
            for (Component* c : components()) {
                entries("[%d]: '%s' : '%s'  (0x%p)", index++, c->type_name().c_str(),
                        c->instance_name().c_str(), static_cast<const void*>(c));
                auto* sub = dynamic_cast<Circuit*>(c);
                if (recursive && sub != nullptr)
                    sub->print(true);
            }
        }
        section("Declarations [%d]:", static_cast<int>(_circuit_declarations.size()));
        {
            TLog entries;
            int index = 0;
            for (Circuit* d : _circuit_declarations) {
                entries("[%d]: '%s' '%s'  (0x%p)", index++, d->type_name().c_str(),
                        d->instance_name().c_str(), static_cast<const void*>(d));
                if (recursive)
                    d->print(true);
            }
        }
        section("Ports [%d]:", static_cast<int>(ports().size()));
        for (const Port* p : ports())
            p->print();
        section("Nets [%d]:", static_cast<int>(_nets.size()));
        for (const Net* net : nets())
            net->print();
    }
    Dict::print();
}
