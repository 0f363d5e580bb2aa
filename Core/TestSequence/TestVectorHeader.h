// The header line of a test vector file: input columns, a separator, output columns.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTVECTORHEADER_H
#define MORVANE_CORE_TESTSEQUENCE_TESTVECTORHEADER_H

#include "Core/Circuit/BaseObject.h"

#include <string>
#include <vector>

class Circuit;

/// One column's text: a header's signal or a row's value.
struct SignalData
{
    std::string text;       // header: the signal's name; row: the value's bit letters, expanded
    bool reversed = false;  // written with "~": the bits run least significant first
    std::string id;         // header: the port's or net's id once resolved; row: ""
    bool is_net = false;    // header output written with "%": it names a net, not a port
};

/// "time <inputs> => <outputs>" or with "==(dT)=>", which adds a delta-time field to every row.
///
/// Columns, with I inputs and O outputs: 0 is the time, 1 to I the inputs, I+1 the separator (the
/// delta-time field in a row), I+2 to I+O+1 the outputs, I+O+2 the comment.
class TestVectorHeader : public CommentableObject
{
public:
    /// No signals, line 0, and has delta time.
    TestVectorHeader();
    /// Parses the fields of a header line and erases the first one, "time", from `fields`. A negative
    /// `line` allows a header without inputs. Throws Error.
    TestVectorHeader(std::vector<std::string>& fields, int line, const std::string& comment);

    int nof_inputs() const { return static_cast<int>(_inputs.size()); }
    int nof_outputs() const { return static_cast<int>(_outputs.size()); }
    const std::vector<SignalData>& inputs() const { return _inputs; }
    const std::vector<SignalData>& outputs() const { return _outputs; }
    const std::string& input_name(int i) const { return _inputs[i].text; }
    const std::string& output_name(int i) const { return _outputs[i].text; }
    void set_input_name(int i, const std::string& name) { _inputs[i].text = name; }
    void set_output_name(int i, const std::string& name) { _outputs[i].text = name; }
    const std::string& input_id(int i) const { return _inputs[i].id; }
    const std::string& output_id(int i) const { return _outputs[i].id; }
    bool is_input_reversed(int i) const { return _inputs[i].reversed; }
    bool is_output_reversed(int i) const { return _outputs[i].reversed; }
    bool is_output_net(int i) const { return _outputs[i].is_net; }
    void set_output_net(int i, bool is_net) { _outputs[i].is_net = is_net; }
    bool has_delta_time() const { return _has_delta_time; }
    int line_number() const { return _line_number; }
    static std::string separator_name() { return _separator_name; }
    static std::string separator_name_2() { return _separator_name2; }

    // The column model.
    int nof_columns() const { return nof_inputs() + nof_outputs() + 3; }
    /// Fields of a row after its time: one per signal, and the delta time if the header has it.
    int nof_fields() const { return nof_inputs() + nof_outputs() + (_has_delta_time ? 1 : 0); }
    bool is_time_column(int column) const { return column == 0; }
    bool is_input_column(int column) const { return column >= 1 && column <= nof_inputs(); }
    int delta_time_column() const { return nof_inputs() + 1; }
    bool is_output_column(int column) const;
    bool is_comment_column(int column) const { return column == nof_columns() - 1; }
    int column_to_input_index(int column) const { return column - 1; }
    int column_to_output_index(int column) const { return column - nof_inputs() - 2; }
    /// "Time", a signal's name, "=>" (whatever the file's separator), "Comment"; "" past the end.
    std::string column_name(int column) const;
    /// The signal's reversal flag; false for the other columns.
    bool is_column_to_be_reversed(int column) const;

    void add_input(const std::string& name, const std::string& id);
    void add_output(const std::string& name, const std::string& id, bool is_net);
    void insert_input(int index, const std::string& name, const std::string& id);
    void insert_output(int index, const std::string& name, const std::string& id, bool is_net);
    void delete_input(int index);
    void delete_output(int index);
    /// Swaps a signal with its neighbour on the same side of the separator; nothing at either end.
    void move_column_left(int column);
    void move_column_right(int column);

    /// Inputs take the ids of ports, outputs of ports or else nets; an unknown name leaves its id as it was.
    void resolve_signal_ids(Circuit* circuit);

private:
    static constexpr const char* _separator_name = "=>";         // between inputs and outputs
    static constexpr const char* _separator_name2 = "==(dT)=>";  // the same, with a delta-time field

    std::vector<SignalData> _inputs;   // stimulus columns, in file order
    std::vector<SignalData> _outputs;  // expected-value columns, in file order
    bool _has_delta_time;              // rows hold a delta time behind the inputs
    int _line_number;                  // 1-based line of the header in its file
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTVECTORHEADER_H
