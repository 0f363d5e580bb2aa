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

namespace detail {

template <typename Word> inline Word load(const char* p)
{
    Word w;
    __builtin_memcpy(&w, p, sizeof w);
    return w;
}

template <typename Word> inline void store(char* p, Word w)
{
    __builtin_memcpy(p, &w, sizeof w);
}

}  // namespace detail

/// Whether n letters are the same, case and all. Whole words, the last one overlapping the one
/// before, so that every read stays within the n letters: a byte loop costs a branch per letter.
inline bool identical_letters(const char* a, const char* b, unsigned n)
{
    using detail::load;
    // Most signals are one bit.
    if (n == 1)
        return a[0] == b[0];
    if (n >= 8) {
        for (unsigned i = 0; i + 8 < n; i += 8) {
            if (load<unsigned long long>(a + i) != load<unsigned long long>(b + i))
                return false;
        }
        return load<unsigned long long>(a + n - 8) == load<unsigned long long>(b + n - 8);
    }
    if (n >= 4)
        return load<unsigned>(a) == load<unsigned>(b) &&
               load<unsigned>(a + n - 4) == load<unsigned>(b + n - 4);
    if (n >= 2)
        return load<unsigned short>(a) == load<unsigned short>(b) &&
               load<unsigned short>(a + n - 2) == load<unsigned short>(b + n - 2);
    return true;
}

/// Copies n letters in whole words as above; the two places don't overlap.
inline void copy_letters(char* to, const char* from, unsigned n)
{
    using detail::load;
    using detail::store;
    if (n == 1) {
        to[0] = from[0];
    } else if (n >= 8) {
        for (unsigned i = 0; i + 8 < n; i += 8)
            store(to + i, load<unsigned long long>(from + i));
        store(to + n - 8, load<unsigned long long>(from + n - 8));
    } else if (n >= 4) {
        unsigned head = load<unsigned>(from);
        unsigned tail = load<unsigned>(from + n - 4);
        store(to, head);
        store(to + n - 4, tail);
    } else if (n >= 2) {
        unsigned short head = load<unsigned short>(from);
        unsigned short tail = load<unsigned short>(from + n - 2);
        store(to, head);
        store(to + n - 2, tail);
    }
}

/// Whether n letters agree, ignoring case.
inline bool same_letters(const char* a, const char* b, unsigned n)
{
    if (identical_letters(a, b, n))
        return true;
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
