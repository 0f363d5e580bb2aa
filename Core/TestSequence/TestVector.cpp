#include "Core/TestSequence/TestVector.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <utility>

TestVector::TestVector(int time) : _time(time), _header(nullptr) {}

TestVector::TestVector(std::vector<std::string>& fields, int line, TestVectorHeader* header,
                       const std::string& comment)
    : CommentableObject(comment),
      _time(0),
      _line_number(line),
      _header(header)
{
    _check_field_consistency(fields);
    _get_time(fields);
    int nof_header_inputs = header->nof_inputs();
    _inputs.reserve(nof_header_inputs);
    _outputs.reserve(header->nof_outputs());
    for (int i = 1; i < static_cast<int>(fields.size()); ++i) {
        std::string value = hexpand(fields[i]);
        bool reversed = !value.empty() && value[0] == '~';
        if (reversed) {
            value.erase(0, 1);
            std::reverse(value.begin(), value.end());
        }
        // Past the inputs the column is counted one too far: with a delta field each output takes the
        // reversal of the output to its right. Files rely on this.
        int column = i <= nof_header_inputs ? i : i + 1;
        if (header->is_column_to_be_reversed(column))
            std::reverse(value.begin(), value.end());
        _check_value(value);
        if (i <= nof_header_inputs)
            _inputs.push_back({value, reversed, "", false});
        else if (header->has_delta_time() && i == nof_header_inputs + 1)
            set_delta_time(fields[i]);
        else
            _outputs.push_back({value, reversed, "", false});
    }
}

int TestVector::output_time() const
{
    return static_cast<int>(static_cast<uint32_t>(_time) + static_cast<uint32_t>(_delta_time));
}

void TestVector::set_delta_time(const std::string& text)
{
    try {
        _delta_time = static_cast<int>(std::stol(text));
    } catch (const std::exception&) {
        throw Error("Error on line %d: delta-time-specification not an integer: '%s'", _line_number,
                    text.c_str());
    }
}

void TestVector::_check_field_consistency(const std::vector<std::string>& fields) const
{
    int in_vector = static_cast<int>(fields.size()) - 1;
    int in_header = _header->nof_fields();
    if (in_vector < in_header)
        throw Error("Error on line %d: Missing fields: %d in header, %d in vector.", _line_number, in_header,
                    in_vector);
    if (in_vector > in_header)
        throw Error("Error on line %d: Extraneous fields: %d in header, %d in vector.", _line_number,
                    in_header, in_vector);
}

void TestVector::_get_time(const std::vector<std::string>& fields)
{
    const std::string text = fields.empty() ? "" : fields[0];
    try {
        _time = std::stoi(text);
    } catch (const std::invalid_argument&) {
        throw Error("Error on line %d: First column must be a number: '%s' is not.", _line_number,
                    text.c_str());
    }
}

void TestVector::_check_value(const std::string& value) const
{
    static const std::array<bool, 256> allowed = [] {
        std::array<bool, 256> table{};
        for (const char* c = "0123456789abcdefABCDEFhHlLxXzZuU"; *c; ++c)
            table[static_cast<unsigned char>(*c)] = true;
        return table;
    }();
    for (char c : value) {
        if (!allowed[static_cast<unsigned char>(c)])
            throw Error("Error on line %d: Illegal character in vector: '%c'.", _line_number, c);
    }
}

void TestVector::add_input(const std::string& value)
{
    _inputs.push_back({value, false, "", false});
}

void TestVector::add_output(const std::string& value, bool is_net)
{
    _outputs.push_back({value, false, "", is_net});
}

void TestVector::insert_input(int index, const std::string& value)
{
    _inputs.insert(_inputs.begin() + index, {value, false, "", false});
}

void TestVector::insert_output(int index, const std::string& value, bool is_net)
{
    _outputs.insert(_outputs.begin() + index, {value, false, "", is_net});
}

void TestVector::delete_input(int index)
{
    _inputs.erase(_inputs.begin() + index);
}

void TestVector::delete_output(int index)
{
    _outputs.erase(_outputs.begin() + index);
}

void TestVector::move_column_left(int column)
{
    int nof_in = nof_inputs();
    if (column >= 2 && column <= nof_in) {
        std::swap(_inputs[column - 1], _inputs[column - 2]);
    } else if (column >= nof_in + 3 && column <= nof_in + nof_outputs() + 1) {
        int i = column - nof_in - 2;
        std::swap(_outputs[i], _outputs[i - 1]);
    }
}

void TestVector::move_column_right(int column)
{
    int nof_in = nof_inputs();
    if (column >= 1 && column < nof_in) {
        std::swap(_inputs[column - 1], _inputs[column]);
    } else if (column >= nof_in + 2 && column < nof_in + nof_outputs() + 1) {
        int i = column - nof_in - 2;
        std::swap(_outputs[i], _outputs[i + 1]);
    }
}
