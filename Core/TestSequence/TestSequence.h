// A test vector file in memory: header, rows in time order, static settings and comments.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCE_H
#define MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCE_H

#include "Core/Components/ComponentOptions.h"
#include "Core/TestSequence/TestVector.h"
#include "Core/TestSequence/TestVectorHeader.h"

#include <string>
#include <vector>

class Circuit;

/// What the TestSequence(TSInitType) constructor starts from.
enum TSInitType
{
    TSInitEmpty = 0,    // no header, no rows
    TSInitExample = 1,  // one "<example>" input and output with delta time, one row at time 0
};

/// Owns its header, rows, component options and port assignments. Editing keeps the header and every
/// row in step. Indices are not checked: passing one outside its list is the caller's fault.
class TestSequence
{
public:
    explicit TestSequence(TSInitType type);
    /// Reads the file; every failure of reading passes out as the reader's Error.
    explicit TestSequence(const std::string& filename);
    virtual ~TestSequence();
    TestSequence(const TestSequence&) = delete;
    TestSequence& operator=(const TestSequence&) = delete;

    /// Null until a header has been read or set.
    TestVectorHeader* header() const { return _header; }
    int nof_vectors() const { return static_cast<int>(_vectors.size()); }
    TestVector* get_vector(int i) const { return _vectors[i]; }
    const std::vector<TestVector*>& vectors() const { return _vectors; }
    int nof_component_options() const { return static_cast<int>(_component_options.size()); }
    ComponentOptions* get_component_options(int i) const { return _component_options[i]; }
    const std::vector<ComponentOptions*>& component_options() const { return _component_options; }
    int nof_port_assignments() const { return static_cast<int>(_port_assignments.size()); }
    PortAssignment* get_port_assignment(int i) const { return _port_assignments[i]; }
    const std::vector<PortAssignment*>& port_assignments() const { return _port_assignments; }

    /// input_time() of the last row; 0 with no rows.
    int max_stimulus_time() const;
    /// output_time() of the last row alone; 0 with no rows.
    int max_time() const;
    /// The header's flag; false with no header.
    bool has_delta_time() const { return _header && _header->has_delta_time(); }
    std::string filename() const { return _filename; }
    std::string get_file_comment() const { return _file_comment; }
    std::string get_header_comment() const { return _header_comment; }

    /// The value that the rows expect of output `name` at `time`: a row's value holds from its output
    /// time up to the next row's, the last row's at its output time alone. "?" for an unknown output,
    /// "!" for a time that no row covers.
    std::string get_output_value(const std::string& name, int time) const;

    /// Destroys the old header; rows keep pointing at whatever header they had.
    void set_header(TestVectorHeader* header);
    void add_vector(TestVector* vector) { _vectors.push_back(vector); }
    /// Also points the row at this sequence's header.
    void insert_vector_before(int index, TestVector* vector);
    void remove_vector(int index);
    void add_component_option(ComponentOptions* options) { _component_options.push_back(options); }
    void insert_component_options_before(int index, ComponentOptions* options);
    /// Destroys `options` if it is one of this sequence's.
    void remove_component_option(ComponentOptions* options);
    void add_port_assignment(PortAssignment* assignment) { _port_assignments.push_back(assignment); }
    void insert_port_assignment_before(int index, PortAssignment* assignment);
    void remove_port_assignment(int index);
    /// Adds `delta` ns to the time of the row at `index` and of every row behind it.
    void time_translate(int index, int delta);

    /// A new signal at `column`: the separator column means behind the last input, the comment column
    /// behind the last output. Every row takes the value "U" there.
    void insert_signal_before(int column, const std::string& name, const std::string& id, bool is_net);
    /// Removes the signal at `column`, which must be an input or output column.
    void delete_signal(int column);
    void move_column_left(int column);
    void move_column_right(int column);

    void set_file_comment(const std::string& text) { _file_comment = text; }
    void clear_file_comment() { _file_comment.clear(); }
    void clear_header_comment() { _header_comment.clear(); }
    /// Joins with a newline unless the header comment is empty.
    void append_to_header_comment(const std::string& text);
    void set_filename(const std::string& filename) { _filename = filename; }

    /// Resolves the ids of the header's signals, the options' components and the assignments' ports.
    void resolve_ids(Circuit* circuit);
    /// Destroys header, rows, options and assignments and empties the header comment; the file comment
    /// and the file name stay.
    void clear_all();

private:
    TestVectorHeader* _header = nullptr;                // owned; null until read or set
    std::vector<TestVector*> _vectors;                  // owned rows, in file order
    std::vector<ComponentOptions*> _component_options;  // owned, in file order
    std::vector<PortAssignment*> _port_assignments;     // owned, in file order
    std::string _file_comment;                          // the comment block at the head of the file
    std::string _header_comment;                        // built up by append_to_header_comment
    std::string _filename;                              // as given to the reader or set
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCE_H
