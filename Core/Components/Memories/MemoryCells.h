// The words of a RAM, each with its own history, so that a read sees a word as it stood back then,
// and the two fixed bytes the memories put on their data outputs.
#ifndef MORVANE_CORE_COMPONENTS_MEMORYCELLS_H
#define MORVANE_CORE_COMPONENTS_MEMORYCELLS_H

#include "Core/Simulation/Port.h"
#include "Core/Simulation/Value.h"
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

/// What a memory's data outputs show when released, and when their state is not known; made once.
inline const Value& released_byte()
{
    static const Value z("ZZZZZZZZ");
    return z;
}
inline const Value& undefined_byte()
{
    static const Value u("UUUUUUUU");
    return u;
}

/// The address on `a` at `time` into `address`; false where some bit is no binary digit. Read in
/// place where it can be: z translation makes no number of a z either.
inline bool binary_address(Port* a, int time, int& address)
{
    if (const char* letters = a->net_letters(time)) {
        if (!Value::is_integer(letters, a->size()))
            return false;
        address = Value::integer(letters, a->size());
        return true;
    }
    Value value = a->value(time);
    if (!value.is_integer())
        return false;
    address = value.integer();
    return true;
}

#endif  // MORVANE_CORE_COMPONENTS_MEMORYCELLS_H
