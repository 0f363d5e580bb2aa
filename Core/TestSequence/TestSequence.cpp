#include "Core/TestSequence/TestSequence.h"

#include "Core/TestSequence/TestSequenceFileReader.h"

#include <algorithm>
#include <cstdint>

TestSequence::TestSequence(TSInitType type)
{
    if (type != TSInitExample)
        return;
    std::vector<std::string> fields = {"time", "<example>", "==(dT)=>", "<example>"};
    _header = new TestVectorHeader(fields, -1, "New test sequence");
    auto* vector = new TestVector(0);
    vector->add_input("U");
    vector->add_output("U", false);
    vector->set_header(_header);
    _vectors.push_back(vector);
}

TestSequence::TestSequence(const std::string& filename)
{
    TestSequenceFileReader reader;
    try {
        reader.read_sequence(filename, this);
    } catch (...) {
        clear_all();
        throw;
    }
}

TestSequence::~TestSequence()
{
    clear_all();
}

int TestSequence::max_stimulus_time() const
{
    return _vectors.empty() ? 0 : _vectors.back()->input_time();
}

int TestSequence::max_time() const
{
    return _vectors.empty() ? 0 : _vectors.back()->output_time();
}

std::string TestSequence::get_output_value(const std::string& name, int time) const
{
    int output = -1;
    for (int i = 0; _header && i < _header->nof_outputs(); ++i) {
        if (_header->output_name(i) == name) {
            output = i;
            break;
        }
    }
    if (output < 0)
        return "?";
    // Rows whose output times overtake each other are passed over: the first pair that spans `time` wins.
    for (size_t i = 0; i + 1 < _vectors.size(); ++i) {
        if (time >= _vectors[i]->output_time() && time < _vectors[i + 1]->output_time())
            return _vectors[i]->output(output).text;
    }
    if (!_vectors.empty() && time == _vectors.back()->output_time())
        return _vectors.back()->output(output).text;
    return "!";
}

void TestSequence::set_header(TestVectorHeader* header)
{
    if (header != _header)
        delete _header;
    _header = header;
}

void TestSequence::insert_vector_before(int index, TestVector* vector)
{
    vector->set_header(_header);
    _vectors.insert(_vectors.begin() + index, vector);
}

void TestSequence::remove_vector(int index)
{
    delete _vectors[index];
    _vectors.erase(_vectors.begin() + index);
}

void TestSequence::insert_component_options_before(int index, ComponentOptions* options)
{
    _component_options.insert(_component_options.begin() + index, options);
}

void TestSequence::remove_component_option(ComponentOptions* options)
{
    auto it = std::find(_component_options.begin(), _component_options.end(), options);
    if (it == _component_options.end())
        return;
    _component_options.erase(it);
    delete options;
}

void TestSequence::insert_port_assignment_before(int index, PortAssignment* assignment)
{
    _port_assignments.insert(_port_assignments.begin() + index, assignment);
}

void TestSequence::remove_port_assignment(int index)
{
    delete _port_assignments[index];
    _port_assignments.erase(_port_assignments.begin() + index);
}

void TestSequence::time_translate(int index, int delta)
{
    if (index < 0)
        return;
    for (int i = index; i < nof_vectors(); ++i) {
        TestVector* vector = _vectors[i];
        vector->set_time(
            static_cast<int>(static_cast<uint32_t>(vector->time()) + static_cast<uint32_t>(delta)));
    }
}

void TestSequence::insert_signal_before(int column, const std::string& name, const std::string& id,
                                        bool is_net)
{
    if (_header->is_input_column(column) || column == _header->delta_time_column()) {
        int index = column - 1;
        _header->insert_input(index, name, id);
        for (TestVector* vector : _vectors)
            vector->insert_input(index, "U");
    }
    // Counted again: a new input moves the output columns one place on.
    if (_header->is_output_column(column) || column == _header->nof_columns() - 1) {
        int index = _header->column_to_output_index(column);
        _header->insert_output(index, name, id, is_net);
        for (TestVector* vector : _vectors)
            vector->insert_output(index, "U", is_net);
    }
}

void TestSequence::delete_signal(int column)
{
    if (_header->is_input_column(column)) {
        int index = column - 1;
        _header->delete_input(index);
        for (TestVector* vector : _vectors)
            vector->delete_input(index);
    }
    if (_header->is_output_column(column)) {
        int index = _header->column_to_output_index(column);
        _header->delete_output(index);
        for (TestVector* vector : _vectors)
            vector->delete_output(index);
    }
}

void TestSequence::move_column_left(int column)
{
    _header->move_column_left(column);
    for (TestVector* vector : _vectors)
        vector->move_column_left(column);
}

void TestSequence::move_column_right(int column)
{
    _header->move_column_right(column);
    for (TestVector* vector : _vectors)
        vector->move_column_right(column);
}

void TestSequence::append_to_header_comment(const std::string& text)
{
    if (!_header_comment.empty())
        _header_comment += "\n";
    _header_comment += text;
}

void TestSequence::clear_all()
{
    delete _header;
    _header = nullptr;
    for (TestVector* vector : _vectors)
        delete vector;
    _vectors.clear();
    for (ComponentOptions* options : _component_options)
        delete options;
    _component_options.clear();
    for (PortAssignment* assignment : _port_assignments)
        delete assignment;
    _port_assignments.clear();
    _header_comment.clear();
}
