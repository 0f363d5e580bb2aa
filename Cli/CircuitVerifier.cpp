#include "Cli/CircuitVerifier.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitSpec.h"
#include "Core/Components/ComponentOptions.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/OutputValueIndex.h"
#include "Core/TestSequence/TestSequence.h"
#include "Core/TestSequence/TestSequencePrinter.h"

#include <exception>
#include <memory>

namespace {

// A placeholder column that needs no port and gets no value.
const char* const example_column = "<example>";

}  // namespace

CircuitVerifier::CircuitVerifier(const std::string& ctc_file, const std::string& tv_file, int time)
{
    auto spec = std::make_unique<CircuitSpec>(ctc_file);
    auto sequence = std::make_unique<TestSequence>(tv_file);
    if (time == 0)
        time = sequence->max_time();
    auto circuit = std::make_unique<Circuit>(spec->name(), nullptr);
    circuit->build_from_spec(spec.get());
    // The spec dies here; nothing may reach it through the circuit afterwards.
    circuit->forget_circuit_spec();
    _test_sequence = sequence.release();
    _owns_test_sequence = true;
    _circuit = circuit.release();
    _owns_circuit = true;
    _check_outputs = true;
    try {
        _init(_circuit, time);
    } catch (...) {
        _release();
        throw;
    }
}

CircuitVerifier::CircuitVerifier(Circuit* circuit, TestSequence* sequence, bool check_outputs, int time)
    : _test_sequence(sequence),
      _check_outputs(check_outputs)
{
    if (time == 0)
        time = sequence->max_time();
    try {
        _init(circuit, time);
    } catch (...) {
        _release();
        throw;
    }
}

CircuitVerifier::~CircuitVerifier()
{
    _release();
}

void CircuitVerifier::_release()
{
    destroy_simulator();
    if (_owns_test_sequence)
        delete _test_sequence;
    _test_sequence = nullptr;
    // Nothing depends on when the circuit goes; freeing it keeps the leak checker quiet.
    if (_owns_circuit)
        delete _circuit;
    _circuit = nullptr;
}

void CircuitVerifier::_init(Circuit* circuit, int time)
{
    _circuit = circuit;
    if (simulator() != nullptr && simulator()->circuit() != circuit)
        destroy_simulator();
    simulator(circuit);
    _build_driver_pin_list();
    _simulation_time = time;
    simulator()->reset(time);
    for (const TestVector* vector : _test_sequence->vectors())
        _set_input_values(*vector);
    for (const PortAssignment* assignment : _test_sequence->port_assignments())
        _set_input_value(*assignment);
    _nof_issues = 0;
}

void CircuitVerifier::_build_driver_pin_list()
{
    const TestVectorHeader* header = _test_sequence->header();
    if (header != nullptr) {
        for (int i = 0; i < header->nof_inputs(); ++i) {
            if (header->input_name(i) != example_column)
                _put_driver_into_list(header->input_name(i));
        }
    }
    for (const PortAssignment* assignment : _test_sequence->port_assignments())
        _put_driver_into_list(assignment->port_name());
}

void CircuitVerifier::_put_driver_into_list(const std::string& name)
{
    Port* port = _circuit->find_port(name);
    if (port == nullptr)
        throw Error("Can't find port_name '%s'.", name.c_str());
    if (port->dir() != Morvane::Input && port->dir() != Morvane::Inout)
        throw Error("Can't use an output to drive the value of an internal net (port '%s')", name.c_str());
    _drivers[name] = port;
}

void CircuitVerifier::_set_input_values(const TestVector& vector)
{
    const TestVectorHeader* header = _test_sequence->header();
    for (int i = 0; i < vector.nof_inputs(); ++i) {
        const std::string& name = header->input_name(i);
        std::string prefix =
            fmt("Error when initializing input '%s' at time = %d (column %d in '%s'): ", name.c_str(),
                vector.time(), i + 2, _test_sequence->filename().c_str());
        if (name == example_column)
            continue;
        try {
            Port* port = _drivers[name];
            std::string text = vector.input(i).text;
            std::string conditioned = _condition_value(port, text);
            port->set(Value(conditioned), vector.time());
        } catch (const Error& e) {
            throw Error("%s%s", prefix.c_str(), e.message().c_str());
        } catch (const std::exception& e) {
            throw Error("%s%s", prefix.c_str(), e.what());
        } catch (const std::string& s) {
            throw Error("%s%s", prefix.c_str(), s.c_str());
        } catch (...) {
            throw Error("%s%s", prefix.c_str(), "Unknown exception thrown.");
        }
    }
}

std::string CircuitVerifier::_condition_value(const Port* port, std::string text) const
{
    trim(text, white_space);
    if (contains_hex(text))
        text = hexpand(text);
    std::size_t width = port->size();
    if (text.size() > width)
        return text.substr(text.size() - width);
    if (text.size() < width) {
        Value value(text);
        char pad = value.is_integer() ? 'L' : 'U';
        text.insert(0, width - text.size(), pad);
    }
    return text;
}

void CircuitVerifier::_set_input_value(const PortAssignment& assignment)
{
    Port* port = _drivers[assignment.port_name()];
    Value value(static_cast<int>(port->size()));
    value.set_to_hex(assignment.value());
    port->set(value, 0);
}

void CircuitVerifier::check_circuit()
{
    _circuit->check_connections();
}

void CircuitVerifier::simulate()
{
    set_component_options_from_test_sequence();
    if (_run_listener)
        _run_listener(true);
    simulator()->simulate(_simulation_time + 1);
    if (_run_listener)
        _run_listener(false);
    restore_component_options_from_test_sequence();
}

bool CircuitVerifier::verify()
{
    simulate();
    _nof_issues = 0;
    if (!_check_outputs)
        return true;
    _check();
    return _nof_issues == 0;
}

void CircuitVerifier::print(int time_step, const std::string& pins, const std::string& nets, bool hex)
{
    TestSequencePrinter printer(_test_sequence, _circuit, simulator()->max_time(), hex);
    printer.print(time_step, pins, nets);
}

void CircuitVerifier::set_component_options_from_test_sequence()
{
    for (const ComponentOptions* options : _test_sequence->component_options()) {
        Component* component = _circuit->find_component_recursive(options->name());
        if (component == nullptr)
            throw Error("Erroneous component option: can't find component '%s'.", options->name().c_str());
        _saved_parameters[component] = component->parameters();
        for (const auto& [key, value] : options->options())
            component->parameters()[key] = value;
        component->update_after_param_change();
    }
}

void CircuitVerifier::restore_component_options_from_test_sequence()
{
    for (auto& [component, parameters] : _saved_parameters) {
        component->parameters() = parameters;
        component->update_after_param_change();
    }
}

void CircuitVerifier::_check()
{
    // The sequence stands still while it is checked, so its expected values can be indexed.
    OutputValueIndex expected(*_test_sequence);
    const TestVectorHeader* header = _test_sequence->header();
    for (const TestVector* vector : _test_sequence->vectors()) {
        for (int i = 0; i < vector->nof_outputs(); ++i) {
            const std::string& name = header->output_name(i);
            if (header->is_output_net(i))
                _check_net_output(name, *vector, expected);
            else
                _check_port_output(name, *vector, expected);
        }
    }
}

void CircuitVerifier::_check_port_output(const std::string& name, const TestVector& vector,
                                         const OutputValueIndex& expected)
{
    Port* port = simulator()->circuit()->find_port(name);
    if (port == nullptr)
        throw Error("Error in test sequence: no such port in circuit: '%s'", name.c_str());
    int time = vector.output_time();
    _compare(port->value(time), time, name, expected);
}

void CircuitVerifier::_check_net_output(const std::string& name, const TestVector& vector,
                                        const OutputValueIndex& expected)
{
    Net* net = simulator()->circuit()->find_net(name);
    if (net == nullptr)
        throw Error("Error in test sequence: no such net in circuit: '%s'", name.c_str());
    int time = vector.output_time();
    _compare(net->value(time, nullptr), time, name, expected);
}

void CircuitVerifier::_compare(const Value& actual, int time, const std::string& name,
                               const OutputValueIndex& expected_values)
{
    std::string expected = hexpand(expected_values.get_output_value(name, time));
    if (expected.size() > actual.size())
        expected = expected.substr(expected.size() - actual.size());
    if (actual.matches(expected))
        return;
    ++_nof_issues;
    issue(time, name, Value(expected), actual);
}

void CliCircuitVerifier::issue(int time, std::string name, Value expected, Value got)
{
    printf("Value mismatch at t=%d for '%s': expected %s, got %s\n", time, name.c_str(), expected.c_str(),
           got.c_str());
}
