// One row of a test vector file: a time, the stimuli, and the outputs expected then.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTVECTOR_H
#define MORVANE_CORE_TESTSEQUENCE_TESTVECTOR_H

#include "Core/Circuit/BaseObject.h"
#include "Core/TestSequence/TestVectorHeader.h"

#include <string>
#include <vector>

/// Inputs are applied at time(); outputs are compared at time() plus the delta time. Values are kept
/// expanded to bit letters, most significant first, reversed already where the file asked for it.
class TestVector : public CommentableObject
{
public:
    /// An empty row with no header.
    explicit TestVector(int time);
    /// Parses the fields of a row line against `header`, which must outlive the row. Throws Error; a time
    /// beyond 32 bits throws std::out_of_range ("stoi").
    TestVector(std::vector<std::string>& fields, int line, TestVectorHeader* header,
               const std::string& comment);

    int time() const { return _time; }
    int input_time() const { return _time; }
    /// time() plus the delta time, wrapping at 32 bits.
    int output_time() const;
    int delta_time() const { return _delta_time; }
    void set_time(int time) { _time = time; }
    void set_delta_time(int delta_time) { _delta_time = delta_time; }
    /// Reads leading decimal digits as by std::stol, cut to 32 bits; throws Error on anything else.
    void set_delta_time(const std::string& text);
    int line_number() const { return _line_number; }
    TestVectorHeader* header() const { return _header; }
    void set_header(TestVectorHeader* header) { _header = header; }

    int nof_inputs() const { return static_cast<int>(_inputs.size()); }
    int nof_outputs() const { return static_cast<int>(_outputs.size()); }
    SignalData input(int i) const { return _inputs[i]; }
    SignalData output(int i) const { return _outputs[i]; }
    const std::vector<SignalData>& inputs() const { return _inputs; }
    const std::vector<SignalData>& outputs() const { return _outputs; }
    void set_input(int i, const std::string& value) { _inputs[i].text = value; }
    void set_output(int i, const std::string& value) { _outputs[i].text = value; }
    void add_input(const std::string& value);
    void add_output(const std::string& value, bool is_net);
    void insert_input(int index, const std::string& value);
    void insert_output(int index, const std::string& value, bool is_net);
    void delete_input(int index);
    void delete_output(int index);
    /// Columns as in the header, counted with this row's own signals.
    void move_column_left(int column);
    void move_column_right(int column);

private:
    void _check_field_consistency(const std::vector<std::string>& fields) const;
    void _get_time(const std::vector<std::string>& fields);
    void _check_value(const std::string& value) const;

    int _time;                         // ns, when the inputs are applied
    int _delta_time = 0;               // ns from the inputs to the output comparison
    std::vector<SignalData> _inputs;   // stimulus values, in header order
    std::vector<SignalData> _outputs;  // expected values, in header order
    int _line_number = 0;              // 1-based line in the file; 0 for a row made in code
    TestVectorHeader* _header;         // not owned; the sequence's header
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTVECTOR_H
