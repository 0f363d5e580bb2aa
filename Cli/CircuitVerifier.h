// The run of one test: read a circuit and its test vectors, load every stimulus, simulate, compare.
#ifndef MORVANE_CLI_CIRCUITVERIFIER_H
#define MORVANE_CLI_CIRCUITVERIFIER_H

#include "Core/Components/ParaMap.h"
#include "Core/Simulation/Value.h"

#include <functional>
#include <map>
#include <string>

class Circuit;
class Component;
class Net;
class OutputValueIndex;
class Port;
class PortAssignment;
class TestSequence;
class TestVector;

/// All stimuli stand in the ports' histories and the future queue before the run starts; expected
/// outputs are compared with the recorded histories after it.
class CircuitVerifier
{
public:
    /// Builds from files; a `time` of 0 runs to the last output time of the test.
    CircuitVerifier(const std::string& ctc_file, const std::string& tv_file, int time);
    /// Over existing objects, which stay the caller's.
    CircuitVerifier(Circuit* circuit, TestSequence* sequence, bool check_outputs, int time);
    virtual ~CircuitVerifier();

    CircuitVerifier(const CircuitVerifier&) = delete;
    CircuitVerifier& operator=(const CircuitVerifier&) = delete;

    /// Reports one failed comparison.
    virtual void issue(int time, std::string name, Value expected, Value got) = 0;

    Circuit* circuit() const { return _circuit; }
    int nof_issues() const { return _nof_issues; }
    int simulation_time() const { return _simulation_time; }
    void set_simulation_time(int time) { _simulation_time = time; }

    /// Warns of every unconnected input, through the circuit's log.
    void check_circuit();
    /// A run without comparison.
    void simulate();
    /// Told `true` as the engine starts a run and `false` as it ends, for a display of progress.
    void set_run_listener(std::function<void(bool running)> listener) { _run_listener = std::move(listener); }
    /// A run with comparison; true when nothing mismatched.
    bool verify();
    void print(int time_step, const std::string& pins, const std::string& nets, bool hex);

    /// Component options are in force during a run only.
    void set_component_options_from_test_sequence();
    void restore_component_options_from_test_sequence();

private:
    void _init(Circuit* circuit, int time);
    void _release();
    void _build_driver_pin_list();
    void _put_driver_into_list(const std::string& name);
    void _set_input_values(const TestVector& vector);
    void _set_input_value(const PortAssignment& assignment);
    std::string _condition_value(const Port* port, std::string text) const;
    void _check();
    void _check_port_output(const std::string& name, const TestVector& vector,
                            const OutputValueIndex& expected);
    void _check_net_output(const std::string& name, const TestVector& vector,
                           const OutputValueIndex& expected);
    void _compare(const Value& actual, int time, const std::string& name, const OutputValueIndex& expected);

    int _simulation_time = 0;                         // ns; the run goes one ns beyond
    int _nof_issues = 0;                              // failed comparisons of the last verify
    Circuit* _circuit = nullptr;                      // root circuit, never freed here
    TestSequence* _test_sequence = nullptr;           // owned if _owns_test_sequence
    std::map<std::string, Port*> _drivers;            // stimulus column name to its port
    bool _owns_circuit = false;                       // built from a file name
    bool _owns_test_sequence = false;                 // read from a file name
    bool _check_outputs = true;                       // whether verify compares
    std::map<Component*, ParaMap> _saved_parameters;  // parameters to bring back after a run
    std::function<void(bool)> _run_listener;          // may be empty
};

/// Prints each mismatch on standard output as it is found.
class CliCircuitVerifier : public CircuitVerifier
{
public:
    CliCircuitVerifier(const std::string& ctc_file, const std::string& tv_file, int time)
        : CircuitVerifier(ctc_file, tv_file, time)
    {
    }

    void issue(int time, std::string name, Value expected, Value got) override;
};

#endif  // MORVANE_CLI_CIRCUITVERIFIER_H
