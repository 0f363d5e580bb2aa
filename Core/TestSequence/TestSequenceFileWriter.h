// Writing a test sequence back as a test vector file.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEWRITER_H
#define MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEWRITER_H

#include <string>
#include <vector>

class CommentableObject;
class TestSequence;
struct SignalData;

/// Aligned columns, values in compact hexadecimal form, times zero-padded. What it writes reads back,
/// except a reversed net output ("~%q" reads as a reversed port "%q") and the reversal of outputs
/// behind a delta-time field, which the reader takes from the column to the right.
class TestSequenceFileWriter
{
public:
    TestSequenceFileWriter() = default;

    /// Also names the file in the sequence. `with_delta_time` should be the sequence's has_delta_time().
    /// A file that cannot be made throws Error; a failed write is not noticed.
    void write_sequence(TestSequence* sequence, const std::string& filename, bool with_delta_time);

private:
    // Each step appends to the text of the file.
    void _write_file_comment(std::string& text) const;
    /// All lines of a comment but the last, each on a line of its own ahead of the object.
    static void _write_pre_comment(const CommentableObject& object, std::string& text);
    /// The last line of a comment, behind the object on its line.
    static void _write_post_comment(const CommentableObject& object, std::string& text);
    void _write_component_options(std::string& text) const;
    void _write_static_port_assignments(std::string& text) const;
    void _compute_field_widths();
    void _write_header(bool with_delta_time, std::string& text) const;
    void _write_test_vectors(bool with_delta_time, std::string& text) const;
    /// The value of field `i` as the file had it, compact, "~" ahead if reversed, in the field's width.
    void _output_valrev(const SignalData& value, int i, std::string& text) const;

    TestSequence* _sequence = nullptr;  // the one being written; not owned
    std::vector<int> _widths;           // chars of the time and of each signal column, no delta field
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEWRITER_H
