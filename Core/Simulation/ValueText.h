// The compact text form of values: a hexadecimal digit for four binary bits, a capital state letter
// for four equal non-binary bits, any other letter for itself.
#ifndef MORVANE_CORE_SIMULATION_VALUETEXT_H
#define MORVANE_CORE_SIMULATION_VALUETEXT_H

#include <map>
#include <string>

/// Compact char to its four bit letters: 0-9, A-F in both cases, and capital U, P, N, Z, X.
/// Built on first use and never changed.
const std::map<char, std::string>& hex_table();

/// Compact form to bit text; chars that are no key of hex_table stay as they are. Never fails.
std::string hexpand(const std::string& in);
/// Bit text to compact form, groups of four counted from the right; blanks are dropped and leading
/// bits that don't fill a group stay letters. Never fails.
std::string hexpress(const std::string& in);

/// Appends from[pos + count - 1] down to from[pos] to the reversed output of hexpress; four equal
/// chars become their capital.
void add_bits(const std::string& from, std::string& to, int pos, unsigned count);
/// Appends 0-9 or A-F; any other digit appends nothing.
void add_hex_char(std::string& to, unsigned digit);

/// A blank between groups of group_size chars, counted from the right.
std::string arrange_in_groups(const std::string& text, unsigned group_size);
std::string arrange_in_groups(const char* text, unsigned group_size);

/// Small l and h become capitals; other letters stay.
void canonize(std::string& text);
/// Mirrors the text in place.
void reverse(std::string& text);

#endif  // MORVANE_CORE_SIMULATION_VALUETEXT_H
