// The delay of a chip that stands for a whole logic family ("74x..."), chosen by its "family".
#ifndef MORVANE_CORE_COMPONENTS_CHIPS74FAMILY_H
#define MORVANE_CORE_COMPONENTS_CHIPS74FAMILY_H

#include <initializer_list>
#include <string>

/// One family variant of a chip and its data-sheet delay.
struct FamilyDelay
{
    const char* family;  // as a file writes it, case counts
    int delay;           // ns, input to output
};

/// The delay of `family` in `table`; false, and `delay` untouched, for a family the chip lacks. The
/// caller reports the miss in its own words.
inline bool find_family_delay(std::initializer_list<FamilyDelay> table, const std::string& family, int& delay)
{
    for (const FamilyDelay& entry : table) {
        if (family == entry.family) {
            delay = entry.delay;
            return true;
        }
    }
    return false;
}

#endif  // MORVANE_CORE_COMPONENTS_CHIPS74FAMILY_H
