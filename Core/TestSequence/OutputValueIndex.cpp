#include "Core/TestSequence/OutputValueIndex.h"

#include "Core/TestSequence/TestSequence.h"

#include <algorithm>

OutputValueIndex::OutputValueIndex(const TestSequence& sequence) : _sequence(sequence)
{
    _output_times.reserve(sequence.vectors().size());
    for (const TestVector* vector : sequence.vectors()) {
        if (!_output_times.empty() && vector->output_time() < _output_times.back())
            _ascending = false;
        _output_times.push_back(vector->output_time());
    }
    const TestVectorHeader* header = sequence.header();
    for (int i = 0; header != nullptr && i < header->nof_outputs(); ++i)
        _output_of.emplace(header->output_name(i), i);
}

std::string OutputValueIndex::get_output_value(const std::string& name, int time) const
{
    if (!_ascending)
        return _sequence.get_output_value(name, time);
    auto output = _output_of.find(name);
    if (output == _output_of.end())
        return "?";
    // With ascending output times at most one pair of neighbours spans the time: the row just before
    // the first later output time.
    std::size_t n = _output_times.size();
    auto later = std::upper_bound(_output_times.begin(), _output_times.end(), time);
    std::size_t next = static_cast<std::size_t>(later - _output_times.begin());
    if (next > 0 && next < n)
        return _sequence.get_vector(static_cast<int>(next - 1))->output(output->second).text;
    if (n > 0 && time == _output_times.back())
        return _sequence.get_vector(static_cast<int>(n - 1))->output(output->second).text;
    return "!";
}
