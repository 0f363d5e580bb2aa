#include "Core/Circuit/CircuitFileReader.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitSpec.h"

#include <memory>

CircuitFileReader::~CircuitFileReader()
{
    for (Circuit* c : _circuits)
        delete c;
}

void CircuitFileReader::read(const std::string& filename, Circuit* circuit)
{
    CircuitSpec spec(filename);
    try {
        circuit->build_from_spec(&spec);
    } catch (...) {
        // What was built stays; the spec it points at does not.
        circuit->forget_circuit_spec();
        throw;
    }
    circuit->forget_circuit_spec();
}

Circuit* CircuitFileReader::new_circuit(const std::string& filename)
{
    CircuitSpec spec(filename);
    auto circuit = std::make_unique<Circuit>(spec.name(), nullptr);
    circuit->build_from_spec(&spec);
    circuit->forget_circuit_spec();
    return circuit.release();
}

Circuit* CircuitFileReader::build_circuit(const std::string& filename)
{
    Circuit* circuit = new_circuit(filename);
    _circuits.insert(circuit);
    return circuit;
}
