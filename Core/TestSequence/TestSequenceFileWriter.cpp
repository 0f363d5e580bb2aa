#include "Core/TestSequence/TestSequenceFileWriter.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/TestSequence.h"

#include <algorithm>
#include <cstdio>

namespace {

/// `text` right-aligned in `width` chars and a blank; a longer text pushes the rest to the right.
std::string field(const std::string& text, int width)
{
    return std::string(static_cast<std::size_t>(std::max(0, width - static_cast<int>(text.size()))), ' ') +
           text + " ";
}

}  // namespace

void TestSequenceFileWriter::write_sequence(TestSequence* sequence, const std::string& filename,
                                            bool with_delta_time)
{
    _sequence = sequence;
    _sequence->set_filename(filename);
    FILE* file = fopen(filename.c_str(), "w");
    if (file == nullptr)
        throw Error("File '%s' cannot be created.", filename.c_str());
    // Built as a whole and written byte for byte, so that no text stops at a NUL.
    std::string text;
    _write_file_comment(text);
    _write_component_options(text);
    _write_static_port_assignments(text);
    if (_sequence->header() != nullptr) {
        _compute_field_widths();
        _write_header(with_delta_time, text);
        _write_test_vectors(with_delta_time, text);
    }
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
}

void TestSequenceFileWriter::_write_file_comment(std::string& text) const
{
    std::string comment = _sequence->get_file_comment();
    if (comment.empty())
        return;
    bool line_start = true;
    for (char c : comment) {
        if (line_start)
            text += c == '\n' ? "#" : "# ";
        text += c;
        line_start = c == '\n';
    }
    if (comment.back() == '\n')
        text += '#';
    // The empty line ends the file comment for the reader.
    text += "\n\n";
}

void TestSequenceFileWriter::_write_pre_comment(const CommentableObject& object, std::string& text)
{
    if (object.has_blank_comment())
        return;
    std::vector<std::string> lines = split(object.comment_text(), '\n');
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        text += "# " + lines[i] + "\n";
}

void TestSequenceFileWriter::_write_post_comment(const CommentableObject& object, std::string& text)
{
    if (object.has_blank_comment())
        return;
    std::vector<std::string> lines = split(object.comment_text(), '\n');
    if (!lines.empty())
        text += " # " + lines.back();
}

void TestSequenceFileWriter::_write_component_options(std::string& text) const
{
    for (const ComponentOptions* options : _sequence->component_options()) {
        _write_pre_comment(*options, text);
        text += options->name() + "(";
        const char* separator = "";
        for (const auto& [key, value] : options->options()) {
            text += separator + key + "=" + value;
            separator = ", ";
        }
        text += ")";
        _write_post_comment(*options, text);
        text += "\n";
    }
    if (_sequence->nof_component_options() > 0)
        text += "\n";
}

void TestSequenceFileWriter::_write_static_port_assignments(std::string& text) const
{
    for (const PortAssignment* assignment : _sequence->port_assignments()) {
        _write_pre_comment(*assignment, text);
        text += assignment->port_name() + "=" + assignment->value();
        _write_post_comment(*assignment, text);
        text += "\n";
    }
    if (_sequence->nof_port_assignments() > 0)
        text += "\n";
}

void TestSequenceFileWriter::_compute_field_widths()
{
    const TestVectorHeader* header = _sequence->header();
    _widths.clear();
    int time_width = 4;
    for (const TestVector* row : _sequence->vectors())
        time_width = std::max(time_width, static_cast<int>(std::to_string(row->time()).size()));
    _widths.push_back(time_width);

    // Measured on the expanded text, so columns come out wider than the compact values need. The comment
    // column gets a width too, which nothing uses.
    for (int column = 1; column < header->nof_columns(); ++column) {
        if (column == header->delta_time_column())
            continue;
        bool input = header->is_input_column(column);
        bool output = header->is_output_column(column);
        int index = input ? header->column_to_input_index(column) : header->column_to_output_index(column);
        int width = static_cast<int>(header->column_name(column).size()) +
                    (header->is_column_to_be_reversed(column) ? 1 : 0) +
                    (output && header->is_output_net(index) ? 1 : 0);
        for (const TestVector* row : _sequence->vectors()) {
            if (!input && !output)
                break;
            const std::vector<SignalData>& values = input ? row->inputs() : row->outputs();
            if (index < static_cast<int>(values.size())) {
                const SignalData& value = values[static_cast<std::size_t>(index)];
                width = std::max(width, static_cast<int>(value.text.size()) + (value.reversed ? 1 : 0));
            }
        }
        _widths.push_back(width);
    }
}

void TestSequenceFileWriter::_write_header(bool with_delta_time, std::string& text) const
{
    const TestVectorHeader* header = _sequence->header();
    _write_pre_comment(*header, text);
    text += "time " + std::string(static_cast<std::size_t>(_widths[0] - 4), ' ');
    std::size_t i = 1;
    for (const SignalData& input : header->inputs())
        text += field((input.reversed ? "~" : "") + input.text, _widths[i++]);
    text += with_delta_time ? "==(dT)=> " : "=> ";
    for (const SignalData& output : header->outputs()) {
        std::string name = (output.is_net ? "%" : "") + output.text;
        text += field((output.reversed ? "~" : "") + name, _widths[i++]);
    }
    _write_post_comment(*header, text);
    text += "\n";
}

void TestSequenceFileWriter::_write_test_vectors(bool with_delta_time, std::string& text) const
{
    for (const TestVector* row : _sequence->vectors()) {
        _write_pre_comment(*row, text);
        // Zero-padded, so that the time column is all digits; the reader takes leading zeros.
        text += fmt("%0*d ", _widths[0], row->time());
        int i = 1;
        for (const SignalData& input : row->inputs())
            _output_valrev(input, i++, text);
        text += with_delta_time ? fmt("%5d    ", row->delta_time()) : "   ";
        for (const SignalData& output : row->outputs())
            _output_valrev(output, i++, text);
        _write_post_comment(*row, text);
        text += "\n";
    }
}

void TestSequenceFileWriter::_output_valrev(const SignalData& value, int i, std::string& text) const
{
    const TestVectorHeader* header = _sequence->header();
    // Outputs stand one column further right than their field: the separator has a column, no field.
    int column = i <= header->nof_inputs() ? i : i + 1;
    std::string bits = value.text;
    if (value.reversed != header->is_column_to_be_reversed(column))
        std::reverse(bits.begin(), bits.end());
    bits = hexpress(bits);
    int width = i < static_cast<int>(_widths.size()) ? _widths[static_cast<std::size_t>(i)] : 0;
    text += field((value.reversed ? "~" : "") + bits, width);
}
