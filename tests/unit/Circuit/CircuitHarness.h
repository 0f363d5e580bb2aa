// Shared by the circuit tests: a circuit with its protected steps open, the sink that keeps its lines,
// and the text of a value history.
#ifndef MORVANE_TESTS_UNIT_CIRCUIT_CIRCUITHARNESS_H
#define MORVANE_TESTS_UNIT_CIRCUIT_CIRCUITHARNESS_H

#include "tests/unit/LineLog.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/ValueHistory.h"
#include "Core/Support/SimLog.h"

#include <string>
#include <vector>

/// A circuit whose protected steps the tests call directly.
class OpenCircuit : public Circuit
{
public:
    using Circuit::_parse_name_and_params;
    using Circuit::Circuit;
};

/// The simulator is global: one per test, gone at the end.
struct SimulatorGuard
{
    explicit SimulatorGuard(Circuit& root) { simulator(&root); }
    ~SimulatorGuard() { destroy_simulator(); }
};

/// "time value " for every recorded change.
inline std::string record_of(const ValueHistory& history)
{
    std::string text;
    for (const auto& entry : history.entries())
        text += std::to_string(entry.time) + entry.value.c_str() + " ";
    return text;
}

#endif  // MORVANE_TESTS_UNIT_CIRCUIT_CIRCUITHARNESS_H
