#include "Core/TestSequence/TestSequencePrinter.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/ValueHistory.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/TestSequence.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr int header_repeat = 50;  // rows between two headers

}  // namespace

TestSequencePrinter::TestSequencePrinter(TestSequence* sequence, Circuit* circuit, int max_time,
                                         bool hexadecimal)
    : _sequence(sequence),
      _circuit(circuit),
      _max_time(max_time),
      _hexadecimal(hexadecimal)
{
}

void TestSequencePrinter::print(int time_step, const std::string& ports, const std::string& nets)
{
    print(time_step, csv_string_to_vector(ports), csv_string_to_vector(nets));
}

void TestSequencePrinter::print(int time_step, const std::vector<std::string>& ports,
                                const std::vector<std::string>& nets)
{
    const TestVectorHeader* header = _sequence->header();
    Columns inputs = _find_inputs(header);
    Columns outputs = _find_outputs(header);
    _add_ports(outputs, ports);
    _add_nets(outputs, nets);
    _compute_column_widths(inputs, outputs);
    if (time_step > 0)
        _print_periodically(time_step, inputs, outputs);
    else
        _print_at_vector_times(inputs, outputs);
}

TestSequencePrinter::Columns TestSequencePrinter::_find_inputs(const TestVectorHeader* header) const
{
    Columns columns;
    if (header == nullptr)
        return columns;
    for (int i = 0; i < header->nof_inputs(); ++i) {
        const std::string& name = header->input_name(i);
        columns.push_back({_circuit->find_port(name), name});
    }
    return columns;
}

TestSequencePrinter::Columns TestSequencePrinter::_find_outputs(const TestVectorHeader* header) const
{
    Columns columns;
    if (header == nullptr)
        return columns;
    for (int i = 0; i < header->nof_outputs(); ++i) {
        const std::string& name = header->output_name(i);
        if (header->is_output_net(i))
            columns.push_back({_circuit->find_net(name), "#" + name});
        else
            columns.push_back({_circuit->find_port(name), name});
    }
    return columns;
}

void TestSequencePrinter::_add_ports(Columns& outputs, const std::vector<std::string>& ports) const
{
    for (const std::string& name : ports) {
        Port* port = _circuit->find_port(name);
        if (port == nullptr)
            throw Error("Error: port '%s' cannot be found.", name.c_str());
        outputs.push_back({port, name});
    }
}

void TestSequencePrinter::_add_nets(Columns& outputs, const std::vector<std::string>& nets) const
{
    for (const std::string& name : nets) {
        Net* net = _circuit->find_net(name);
        if (net == nullptr)
            throw Error("Error: net '%s' cannot be found.", name.c_str());
        outputs.push_back({net, "#" + name});
    }
}

void TestSequencePrinter::_compute_column_widths(const Columns& inputs, const Columns& outputs)
{
    // Widths look at titles and bit counts only, never at the contents.
    auto width = [](const NamedHistory& column) {
        int bits = column.history != nullptr ? static_cast<int>(column.history->size()) : 0;
        return std::max(static_cast<int>(column.title.size()), bits);
    };
    _input_widths.clear();
    _output_widths.clear();
    for (const NamedHistory& column : inputs)
        _input_widths.push_back(width(column));
    for (const NamedHistory& column : outputs)
        _output_widths.push_back(width(column));
    // A maximum time of 0 has no logarithm; it gets the width of a one-digit time.
    double digits = _max_time > 0 ? std::log10(static_cast<double>(_max_time)) : 0.0;
    _time_width = static_cast<int>(digits + 2.0);
}

void TestSequencePrinter::_print_periodically(int step, const Columns& inputs, const Columns& outputs)
{
    std::vector<int> times;
    for (long long t = 0; t <= _max_time; t += step)
        times.push_back(static_cast<int>(t));
    _print_at_times(times, inputs, outputs);
}

void TestSequencePrinter::_print_at_vector_times(const Columns& inputs, const Columns& outputs)
{
    std::vector<int> times;
    times.reserve(_sequence->vectors().size());
    for (const TestVector* vector : _sequence->vectors())
        times.push_back(vector->time());
    _print_at_times(times, inputs, outputs);
}

void TestSequencePrinter::_print_at_times(const std::vector<int>& times, const Columns& inputs,
                                          const Columns& outputs)
{
    _row_counter = 0;
    for (int time : times)
        _print_simulated_time(time, inputs, outputs);
}

void TestSequencePrinter::_print_simulated_time(int time, const Columns& inputs, const Columns& outputs)
{
    if (_row_counter % header_repeat == 0)
        _print_header(inputs, outputs);
    ++_row_counter;
    _print_vector(time, inputs, outputs);
}

void TestSequencePrinter::_print_header(const Columns& inputs, const Columns& outputs) const
{
    printf("%*s  ", _time_width, "Time");
    for (std::size_t i = 0; i < inputs.size(); ++i)
        printf("%*s ", _input_widths[i], inputs[i].title.c_str());
    printf(" => ");
    for (std::size_t i = 0; i < outputs.size(); ++i)
        printf("%*s ", _output_widths[i], outputs[i].title.c_str());
    printf("\n");
}

void TestSequencePrinter::_print_vector(int time, const Columns& inputs, const Columns& outputs) const
{
    printf("% *d: ", _time_width, time);
    for (std::size_t i = 0; i < inputs.size(); ++i)
        printf("%*s ", _input_widths[i], _value(time, inputs[i].history).c_str());
    printf("    ");
    for (std::size_t i = 0; i < outputs.size(); ++i)
        printf("%*s ", _output_widths[i], _value(time, outputs[i].history).c_str());
    printf("\n");
}

std::string TestSequencePrinter::_value(int time, const ValueHistory* history) const
{
    // A name that resolved to nothing has no history; its cell stays empty.
    if (history == nullptr)
        return std::string();
    Value value = history->value(time);
    if (_hexadecimal)
        return value.readable();
    return value.c_str();
}
