// Reading a circuit file and building the circuit it describes, in one call.
#ifndef MORVANE_CORE_CIRCUIT_CIRCUITFILEREADER_H
#define MORVANE_CORE_CIRCUIT_CIRCUITFILEREADER_H

#include <set>
#include <string>

class Circuit;

/// Reads the whole file with its imports, then builds; the parsed file is gone when a call returns.
/// Failures of either pass throw Error.
class CircuitFileReader
{
public:
    CircuitFileReader() = default;
    CircuitFileReader(const CircuitFileReader&) = delete;
    CircuitFileReader& operator=(const CircuitFileReader&) = delete;
    /// Deletes every circuit that build_circuit made.
    virtual ~CircuitFileReader();

    /// Builds the file into `circuit`.
    static void read(const std::string& filename, Circuit* circuit);
    /// A new root circuit named after the file; the caller owns it.
    static Circuit* new_circuit(const std::string& filename);
    /// new_circuit, kept by this reader.
    Circuit* build_circuit(const std::string& filename);

private:
    std::set<Circuit*> _circuits;  // owned
};

#endif  // MORVANE_CORE_CIRCUIT_CIRCUITFILEREADER_H
