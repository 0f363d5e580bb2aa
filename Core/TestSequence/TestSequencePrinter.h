// The result table of a finished simulation: one row per vector time or per time step.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEPRINTER_H
#define MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEPRINTER_H

#include <string>
#include <vector>

class Circuit;
class TestSequence;
class TestVectorHeader;
class ValueHistory;

/// One column of the table.
struct NamedHistory
{
    ValueHistory* history;  // of a port or net; null if the name was not found
    std::string title;      // the column's title
};

/// Reads the histories left by a run and prints them as a fixed-width table on standard output.
class TestSequencePrinter
{
public:
    TestSequencePrinter(TestSequence* sequence, Circuit* circuit, int max_time, bool hexadecimal);

    /// `ports` and `nets` are comma lists of further columns, printed right of the outputs.
    void print(int time_step, const std::string& ports, const std::string& nets);
    void print(int time_step, const std::vector<std::string>& ports, const std::vector<std::string>& nets);

private:
    using Columns = std::vector<NamedHistory>;

    Columns _find_inputs(const TestVectorHeader* header) const;
    Columns _find_outputs(const TestVectorHeader* header) const;
    void _add_ports(Columns& outputs, const std::vector<std::string>& ports) const;
    void _add_nets(Columns& outputs, const std::vector<std::string>& nets) const;
    void _compute_column_widths(const Columns& inputs, const Columns& outputs);
    void _print_periodically(int step, const Columns& inputs, const Columns& outputs);
    void _print_at_vector_times(const Columns& inputs, const Columns& outputs);
    void _print_at_times(const std::vector<int>& times, const Columns& inputs, const Columns& outputs);
    void _print_simulated_time(int time, const Columns& inputs, const Columns& outputs);
    void _print_header(const Columns& inputs, const Columns& outputs) const;
    void _print_vector(int time, const Columns& inputs, const Columns& outputs) const;
    std::string _value(int time, const ValueHistory* history) const;

    TestSequence* _sequence;          // the rows and the header; not owned
    Circuit* _circuit;                // where the columns are looked up; not owned
    int _max_time;                    // ns, the last time the run reached
    int _row_counter = 0;             // rows printed in this listing; the header repeats every 50
    std::vector<int> _input_widths;   // chars per input column
    std::vector<int> _output_widths;  // chars per output column, extra ports and nets included
    int _time_width = 0;              // chars of the time column
    bool _hexadecimal;                // print integers in hexadecimal where all bits are binary
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEPRINTER_H
