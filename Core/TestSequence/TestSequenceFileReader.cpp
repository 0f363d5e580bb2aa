#include "Core/TestSequence/TestSequenceFileReader.h"

#include "Core/Components/ComponentOptions.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/TestSequence.h"

#include <fstream>
#include <memory>

namespace {

bool is_word(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool is_word_or_dot(char c)
{
    return is_word(c) || c == '.';
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// \s in the classic locale, which is also what stream extraction splits at.
bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// End of the name that options and assignments begin with: [a-zA-Z0-9_][a-zA-Z0-9_.]*. The run must
// be taken whole, since the character that follows it in a match is never part of it.
size_t name_end(const std::string& line)
{
    if (line.empty() || !is_word(line[0]))
        return std::string::npos;
    size_t end = 1;
    while (end < line.size() && is_word_or_dot(line[end]))
        ++end;
    return end;
}

bool is_component_option(const std::string& line)
{
    size_t open = name_end(line);
    return open < line.size() && line[open] == '(' && line.find(')', open + 1) != std::string::npos;
}

bool is_static_port_assignment(const std::string& line)
{
    size_t i = name_end(line);
    if (i == std::string::npos)
        return false;
    while (i < line.size() && is_space(line[i]))
        ++i;
    if (i == line.size() || line[i] != '=')
        return false;
    ++i;
    while (i < line.size() && is_space(line[i]))
        ++i;
    return i < line.size() && is_word(line[i]);
}

bool is_test_vector(const std::string& line)
{
    size_t i = 0;
    while (i < line.size() && is_digit(line[i]))
        ++i;
    return i > 0 && i < line.size() && line[i] == ' ';
}

}  // namespace

void TestSequenceFileReader::read_sequence(const std::string& filename, TestSequence* sequence)
{
    _line_number = 0;
    _filename = filename;
    _sequence = sequence;
    _current_comment.clear();
    _reading_file_comment = true;
    sequence->clear_all();
    sequence->set_filename(filename);
    std::ifstream in(filename);
    if (!in)
        throw Error("File '%s'not found.", filename.c_str());
    std::string line;
    while (std::getline(in, line)) {
        remove_any_carrige_returns(line);
        _interpret(line);
    }
    _check_consistency();
}

std::string TestSequenceFileReader::get_current_comment() const
{
    if (!_current_comment.empty() && _current_comment.back() == '\n')
        return _current_comment.substr(0, _current_comment.size() - 1);
    return _current_comment;
}

TestSequenceFileReader::LineType TestSequenceFileReader::_categorize_line(const std::string& line)
{
    if (is_component_option(line))
        return ComponentOptionLine;
    if (is_static_port_assignment(line))
        return StaticPortAssignmentLine;
    if (line.starts_with("time"))
        return HeaderLine;
    if (is_test_vector(line))
        return TestVectorLine;
    if (line.empty())
        return EmptyLine;
    return UnknownLine;
}

void TestSequenceFileReader::_interpret(std::string& line)
{
    ++_line_number;
    std::string comment;
    if (preprocess_line(line, comment))
        _handle_comment(line, comment);
    else if (line.empty())
        _end_file_comment_reading();
    switch (_categorize_line(line)) {
    case ComponentOptionLine:
        _process_component_option(line);
        break;
    case StaticPortAssignmentLine:
        _process_static_port_assignment(line);
        break;
    case HeaderLine:
        _process_header(line);
        break;
    case TestVectorLine:
        _process_test_vector(line);
        break;
    case EmptyLine:
        break;
    case UnknownLine:
        throw Error("Syntax error on line %d in test file '%s': '%s'", _line_number, _filename.c_str(),
                    line.c_str());
    }
}

void TestSequenceFileReader::_handle_comment(const std::string& line, const std::string& comment)
{
    // A comment behind content belongs to that content, so whatever gathered before is the file's.
    if (!line.empty())
        _end_file_comment_reading();
    _current_comment += comment + "\n";
}

void TestSequenceFileReader::_end_file_comment_reading()
{
    if (!_reading_file_comment)
        return;
    _sequence->set_file_comment(get_current_comment());
    clear_current_comment();
    _reading_file_comment = false;
}

void TestSequenceFileReader::_process_component_option(const std::string& line)
{
    auto options = std::make_unique<ComponentOptions>(line, get_current_comment());
    clear_current_comment();
    _sequence->add_component_option(options.release());
}

void TestSequenceFileReader::_process_static_port_assignment(const std::string& line)
{
    auto assignment = std::make_unique<PortAssignment>(line, get_current_comment());
    clear_current_comment();
    _sequence->add_port_assignment(assignment.release());
}

void TestSequenceFileReader::_process_header(const std::string& line)
{
    std::vector<std::string> fields = _split(line);
    if (_sequence->header())
        throw Error(
            "A second header line was discovered in line %d in test file '%s'. There can only be one.",
            _line_number, _filename.c_str());
    auto header = std::make_unique<TestVectorHeader>(fields, _line_number, get_current_comment());
    _sequence->set_header(header.release());
    clear_current_comment();
}

void TestSequenceFileReader::_process_test_vector(const std::string& line)
{
    std::vector<std::string> fields = _split(line);
    if (!_sequence->header())
        throw Error("Test vector parse error on line %d in file '%s': a header must precede the test vectors",
                    _line_number, _filename.c_str());
    auto vector =
        std::make_unique<TestVector>(fields, _line_number, _sequence->header(), get_current_comment());
    clear_current_comment();
    _sequence->add_vector(vector.release());
}

void TestSequenceFileReader::_check_consistency() const
{
    if (!_sequence->header())
        throw Error("Test vector file ('%s') must at least contain a header.\n", _filename.c_str());
    const std::vector<TestVector*>& vectors = _sequence->vectors();
    for (size_t i = 1; i < vectors.size(); ++i) {
        if (vectors[i]->time() <= vectors[i - 1]->time())
            throw Error(
                "Time must move strictly forward in test file. In file '%s': %d cannot come after %d.",
                _filename.c_str(), vectors[i]->time(), vectors[i - 1]->time());
    }
}

std::vector<std::string> TestSequenceFileReader::_split(const std::string& line)
{
    std::vector<std::string> fields;
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && is_space(line[i]))
            ++i;
        size_t start = i;
        while (i < line.size() && !is_space(line[i]))
            ++i;
        if (i > start)
            fields.emplace_back(line, start, i - start);
    }
    return fields;
}
