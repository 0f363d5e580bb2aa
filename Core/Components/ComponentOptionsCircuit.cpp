// The lookups of component options and port assignments in a built circuit.
#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Components/ComponentOptions.h"
#include "Core/Simulation/Port.h"

void ComponentOptions::resolve_component_id(Circuit* circuit)
{
    if (Component* component = circuit->find_component_recursive(_name))
        _id = component->id();
}

void PortAssignment::resolve_port_id(Circuit* circuit)
{
    if (Port* port = circuit->find_port(_port_name))
        _port_id = port->id();
}
