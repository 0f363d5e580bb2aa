// The lookups of a test sequence's names in a built circuit.
#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/TestSequence/TestSequence.h"

void TestVectorHeader::resolve_signal_ids(Circuit* circuit)
{
    for (SignalData& input : _inputs) {
        if (Port* port = circuit->find_port(input.text))
            input.id = port->id();
    }
    for (SignalData& output : _outputs) {
        if (Port* port = circuit->find_port(output.text))
            output.id = port->id();
        else if (Net* net = circuit->find_net(output.text))
            output.id = net->id();
    }
}

void TestSequence::resolve_ids(Circuit* circuit)
{
    if (_header)
        _header->resolve_signal_ids(circuit);
    for (ComponentOptions* options : _component_options)
        options->resolve_component_id(circuit);
    for (PortAssignment* assignment : _port_assignments)
        assignment->resolve_port_id(circuit);
}
