// Reads a test vector file into a TestSequence.
#ifndef MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEREADER_H
#define MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEREADER_H

#include "Core/Circuit/FileParser.h"

#include <string>
#include <vector>

class TestSequence;

/// Each line, its comment cut off and trimmed, is of the first kind whose expression matches it whole
/// (ECMAScript):
///
///   1 component option        [a-zA-Z0-9_][a-zA-Z0-9_.]*[(].*[)].*
///   2 static port assignment  [a-zA-Z0-9_][a-zA-Z0-9_.]*\s*=\s*[a-zA-Z0-9_]+.*
///   3 header                  time.*
///   4 test vector             [0-9]+ .*
///   5 empty                   ^$
///
/// and anything else is a syntax error. The expressions are recognised by linear scans that give the
/// same answers: the library's matcher recurses once per character and runs out of stack on a line of a
/// few thousand characters.
///
/// Comment lines gather and go to the object of the next line, or of the line they stand on. The first
/// comment block ends as the file comment at the first empty line, or at the first line that has both
/// content and a comment.
class TestSequenceFileReader : public FileParser
{
public:
    enum LineType
    {
        ComponentOptionLine = 1,
        StaticPortAssignmentLine = 2,
        HeaderLine = 3,
        TestVectorLine = 4,
        EmptyLine = 5,
        UnknownLine = 6,
    };

    TestSequenceFileReader() = default;

    /// Clears `sequence` (its file comment survives unless the file has one), then fills it. Throws Error
    /// on the first fault and leaves the sequence partly filled; a row time beyond 32 bits throws
    /// std::out_of_range ("stoi").
    void read_sequence(const std::string& filename, TestSequence* sequence);

    const std::string& filename() const { return _filename; }
    /// The gathered comment lines without the last newline.
    std::string get_current_comment() const;
    void clear_current_comment() { _current_comment.clear(); }
    bool is_reading_file_comment() const { return _reading_file_comment; }
    void set_reading_file_comment(bool reading) { _reading_file_comment = reading; }

protected:
    static LineType _categorize_line(const std::string& line);

private:
    void _interpret(std::string& line);
    void _handle_comment(const std::string& line, const std::string& comment);
    void _end_file_comment_reading();
    void _process_component_option(const std::string& line);
    void _process_static_port_assignment(const std::string& line);
    void _process_header(const std::string& line);
    void _process_test_vector(const std::string& line);
    void _check_consistency() const;
    static std::vector<std::string> _split(const std::string& line);

    int _line_number = 0;               // 1-based line being read
    std::string _filename;              // as given, for messages
    TestSequence* _sequence = nullptr;  // being filled; not owned
    std::string _current_comment;       // gathered comment lines, each ended by a newline
    bool _reading_file_comment = true;  // still in the comment block at the head of the file
};

#endif  // MORVANE_CORE_TESTSEQUENCE_TESTSEQUENCEFILEREADER_H
