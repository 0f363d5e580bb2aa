#include "Core/TestSequence/TestVectorHeader.h"

#include "Core/Support/Error.h"

#include <utility>

TestVectorHeader::TestVectorHeader() : _has_delta_time(true), _line_number(0) {}

TestVectorHeader::TestVectorHeader(std::vector<std::string>& fields, int line, const std::string& comment)
    : CommentableObject(comment),
      _has_delta_time(false),
      _line_number(line)
{
    if (fields.empty() || fields[0] != "time")
        throw Error("Error on line %d: The header must start with the keyword 'time'.", line);
    fields.erase(fields.begin());
    bool reading_inputs = true;
    for (std::string field : fields) {
        // "%" must come before "~": "~%q" is a reversed port called "%q".
        bool is_net = !field.empty() && field[0] == '%';
        if (is_net)
            field.erase(0, 1);
        bool reversed = !field.empty() && field[0] == '~';
        if (reversed)
            field.erase(0, 1);
        if (field == _separator_name) {
            reading_inputs = false;
            continue;
        }
        if (field == _separator_name2) {
            _has_delta_time = true;
            reading_inputs = false;
            continue;
        }
        if (reading_inputs) {
            if (is_net)
                throw Error("Error on line %d: inputs can't be nets.", line);
            _inputs.push_back({field, reversed, "", false});
        } else {
            _outputs.push_back({field, reversed, "", is_net});
        }
    }
    if (line >= 0 && _inputs.empty())
        throw Error("Error on line %d: No inputs defined.", line);
}

bool TestVectorHeader::is_output_column(int column) const
{
    return column >= nof_inputs() + 2 && column <= nof_inputs() + nof_outputs() + 1;
}

std::string TestVectorHeader::column_name(int column) const
{
    if (is_time_column(column))
        return "Time";
    if (is_input_column(column))
        return input_name(column_to_input_index(column));
    if (column == delta_time_column())
        return _separator_name;
    if (is_output_column(column))
        return output_name(column_to_output_index(column));
    if (is_comment_column(column))
        return "Comment";
    return "";
}

bool TestVectorHeader::is_column_to_be_reversed(int column) const
{
    if (is_input_column(column))
        return _inputs[column_to_input_index(column)].reversed;
    if (is_output_column(column))
        return _outputs[column_to_output_index(column)].reversed;
    return false;
}

void TestVectorHeader::add_input(const std::string& name, const std::string& id)
{
    _inputs.push_back({name, false, id, false});
}

void TestVectorHeader::add_output(const std::string& name, const std::string& id, bool is_net)
{
    _outputs.push_back({name, false, id, is_net});
}

void TestVectorHeader::insert_input(int index, const std::string& name, const std::string& id)
{
    _inputs.insert(_inputs.begin() + index, {name, false, id, false});
}

void TestVectorHeader::insert_output(int index, const std::string& name, const std::string& id, bool is_net)
{
    _outputs.insert(_outputs.begin() + index, {name, false, id, is_net});
}

void TestVectorHeader::delete_input(int index)
{
    _inputs.erase(_inputs.begin() + index);
}

void TestVectorHeader::delete_output(int index)
{
    _outputs.erase(_outputs.begin() + index);
}

void TestVectorHeader::move_column_left(int column)
{
    if (is_input_column(column) && column > 1) {
        int i = column_to_input_index(column);
        std::swap(_inputs[i], _inputs[i - 1]);
    } else if (is_output_column(column) && column > nof_inputs() + 2) {
        int i = column_to_output_index(column);
        std::swap(_outputs[i], _outputs[i - 1]);
    }
}

void TestVectorHeader::move_column_right(int column)
{
    if (is_input_column(column) && column < nof_inputs()) {
        int i = column_to_input_index(column);
        std::swap(_inputs[i], _inputs[i + 1]);
    } else if (is_output_column(column) && column < nof_inputs() + nof_outputs() + 1) {
        int i = column_to_output_index(column);
        std::swap(_outputs[i], _outputs[i + 1]);
    }
}
