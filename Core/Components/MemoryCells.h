// The words of a RAM, each with its own history, so that a read sees a word as it stood back then.
#ifndef MORVANE_CORE_COMPONENTS_MEMORYCELLS_H
#define MORVANE_CORE_COMPONENTS_MEMORYCELLS_H

#include "Core/Simulation/ValueHistory.h"

#include <vector>

/// One 8-bit word by time: "uuuuuuuu" until the first write. An unwritten cell costs its empty history
/// and nothing more; a write appends at the tail.
class ByteCell : public ValueHistory
{
public:
    ByteCell() : ValueHistory(8) {}
};

/// A RAM's row of words, made whole at once. Reach them with at(), whose out_of_range an address past
/// the end raises.
using ByteCells = std::vector<ByteCell>;

#endif  // MORVANE_CORE_COMPONENTS_MEMORYCELLS_H
