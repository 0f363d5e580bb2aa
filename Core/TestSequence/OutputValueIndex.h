// Answers TestSequence::get_output_value for a sequence that does not change while it is asked.
#ifndef MORVANE_CORE_TESTSEQUENCE_OUTPUTVALUEINDEX_H
#define MORVANE_CORE_TESTSEQUENCE_OUTPUTVALUEINDEX_H

#include <string>
#include <unordered_map>
#include <vector>

class TestSequence;

/// The verifier asks for every row and output; a plain walk over the rows per question makes long test
/// files quadratic. Where output times never decrease, a binary search finds the one row whose span
/// holds the time; otherwise the sequence's own walk decides.
class OutputValueIndex
{
public:
    explicit OutputValueIndex(const TestSequence& sequence);

    /// The same text as sequence.get_output_value(name, time).
    std::string get_output_value(const std::string& name, int time) const;

private:
    const TestSequence& _sequence;                    // the rows; must not change while indexed
    std::vector<int> _output_times;                   // ns, output time of each row
    bool _ascending = true;                           // output times never decrease
    std::unordered_map<std::string, int> _output_of;  // output name to its first column index
};

#endif  // MORVANE_CORE_TESTSEQUENCE_OUTPUTVALUEINDEX_H
