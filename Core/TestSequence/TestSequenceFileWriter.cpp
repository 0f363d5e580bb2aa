#include "Core/TestSequence/TestSequenceFileWriter.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/TestSequence.h"

#include <algorithm>
#include <memory>

namespace {

struct FileCloser
{
    void operator()(FILE* file) const { fclose(file); }
};

}  // namespace

void TestSequenceFileWriter::write_sequence(TestSequence* sequence, const std::string& filename,
                                            bool with_delta_time)
{
    _sequence = sequence;
    _sequence->set_filename(filename);
    std::unique_ptr<FILE, FileCloser> file(fopen(filename.c_str(), "w"));
    if (!file)
        throw Error("File '%s' cannot be created.", filename.c_str());
    _write_file_comment(file.get());
    _write_component_options(file.get());
    _write_static_port_assignments(file.get());
    if (_sequence->header() == nullptr)
        return;
    _compute_field_widths();
    _write_header(with_delta_time, file.get());
    _write_test_vectors(with_delta_time, file.get());
}

void TestSequenceFileWriter::_write_file_comment(FILE* file) const
{
    std::string comment = _sequence->get_file_comment();
    if (comment.empty())
        return;
    bool line_start = true;
    for (char c : comment) {
        if (line_start)
            fputs(c == '\n' ? "#" : "# ", file);
        fputc(c, file);
        line_start = c == '\n';
    }
    if (comment.back() == '\n')
        fputc('#', file);
    // The empty line ends the file comment for the reader.
    fputs("\n\n", file);
}

void TestSequenceFileWriter::_write_pre_comment(const CommentableObject& object, FILE* file)
{
    if (object.has_blank_comment())
        return;
    std::vector<std::string> lines = split(object.comment_text(), '\n');
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        fprintf(file, "# %s\n", lines[i].c_str());
}

void TestSequenceFileWriter::_write_post_comment(const CommentableObject& object, FILE* file)
{
    if (object.has_blank_comment())
        return;
    std::vector<std::string> lines = split(object.comment_text(), '\n');
    if (!lines.empty())
        fprintf(file, " # %s", lines.back().c_str());
}

void TestSequenceFileWriter::_write_component_options(FILE* file) const
{
    for (const ComponentOptions* options : _sequence->component_options()) {
        _write_pre_comment(*options, file);
        fprintf(file, "%s(", options->name().c_str());
        const char* separator = "";
        for (const auto& [key, value] : options->options()) {
            fprintf(file, "%s%s=%s", separator, key.c_str(), value.c_str());
            separator = ", ";
        }
        fputc(')', file);
        _write_post_comment(*options, file);
        fputc('\n', file);
    }
    if (_sequence->nof_component_options() > 0)
        fputc('\n', file);
}

void TestSequenceFileWriter::_write_static_port_assignments(FILE* file) const
{
    for (const PortAssignment* assignment : _sequence->port_assignments()) {
        _write_pre_comment(*assignment, file);
        fprintf(file, "%s=%s", assignment->port_name().c_str(), assignment->value().c_str());
        _write_post_comment(*assignment, file);
        fputc('\n', file);
    }
    if (_sequence->nof_port_assignments() > 0)
        fputc('\n', file);
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

void TestSequenceFileWriter::_write_header(bool with_delta_time, FILE* file) const
{
    const TestVectorHeader* header = _sequence->header();
    _write_pre_comment(*header, file);
    fprintf(file, "time %*s", _widths[0] - 4, "");
    int field = 1;
    for (const SignalData& input : header->inputs()) {
        std::string name = (input.reversed ? "~" : "") + input.text;
        fprintf(file, "%*s ", _widths[static_cast<std::size_t>(field++)], name.c_str());
    }
    fputs(with_delta_time ? "==(dT)=> " : "=> ", file);
    for (const SignalData& output : header->outputs()) {
        std::string name = (output.is_net ? "%" : "") + output.text;
        if (output.reversed)
            name = "~" + name;
        fprintf(file, "%*s ", _widths[static_cast<std::size_t>(field++)], name.c_str());
    }
    _write_post_comment(*header, file);
    fputc('\n', file);
}

void TestSequenceFileWriter::_write_test_vectors(bool with_delta_time, FILE* file) const
{
    for (const TestVector* row : _sequence->vectors()) {
        _write_pre_comment(*row, file);
        // Zero-padded, so that the time column is all digits; the reader takes leading zeros.
        fprintf(file, "%0*d ", _widths[0], row->time());
        int field = 1;
        for (const SignalData& input : row->inputs())
            _output_valrev(input, field++, file);
        if (with_delta_time)
            fprintf(file, "%5d    ", row->delta_time());
        else
            fputs("   ", file);
        for (const SignalData& output : row->outputs())
            _output_valrev(output, field++, file);
        _write_post_comment(*row, file);
        fputc('\n', file);
    }
}

void TestSequenceFileWriter::_output_valrev(const SignalData& value, int field, FILE* file) const
{
    const TestVectorHeader* header = _sequence->header();
    // Outputs stand one column further right than their field: the separator has a column, no field.
    int column = field <= header->nof_inputs() ? field : field + 1;
    std::string text = value.text;
    if (value.reversed != header->is_column_to_be_reversed(column))
        std::reverse(text.begin(), text.end());
    text = hexpress(text);
    if (value.reversed)
        text = "~" + text;
    int width = field < static_cast<int>(_widths.size()) ? _widths[static_cast<std::size_t>(field)] : 0;
    fprintf(file, "%*s ", width, text.c_str());
}
