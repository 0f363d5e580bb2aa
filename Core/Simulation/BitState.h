// One bit of a signal, stored as its letter.
#ifndef MORVANE_CORE_SIMULATION_BITSTATE_H
#define MORVANE_CORE_SIMULATION_BITSTATE_H

namespace Morvane {

/// The underlying value is the letter; tests on states ignore case, storage keeps it as it came.
enum class BitState : char
{
    Low = 'L',           // driven low
    High = 'H',          // driven high
    Undefined = 'u',     // initial state, also a conflict
    UndefinedCap = 'U',  // from z translation and from widened stimuli
    Tristate = 'z',      // a released output
    DontCare = 'x',      // matches any bit in an expected value
    PullUp = 'p',        // weak high
    PullDown = 'n',      // weak low
    Marker = 'Q',        // the value of an event that re-evaluates a component
};

constexpr char lower_letter(char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char letter(BitState s)
{
    return static_cast<char>(s);
}

/// Whether n letters are the same, case and all; a loop, since most values are a letter or a few.
inline bool identical_letters(const char* a, const char* b, unsigned n)
{
    for (unsigned i = 0; i < n; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}

/// Whether n letters agree, ignoring case.
inline bool same_letters(const char* a, const char* b, unsigned n)
{
    for (unsigned i = 0; i < n; ++i) {
        if (a[i] != b[i] && lower_letter(a[i]) != lower_letter(b[i]))
            return false;
    }
    return true;
}

/// True for L and H in either case.
constexpr bool is_binary(char c)
{
    char l = lower_letter(c);
    return l == 'l' || l == 'h';
}

constexpr bool is_binary(const BitState& s)
{
    return is_binary(letter(s));
}

}  // namespace Morvane

#endif  // MORVANE_CORE_SIMULATION_BITSTATE_H
