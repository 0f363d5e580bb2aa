// A signal value: a fixed-width string of bit letters, most significant bit first.
#ifndef MORVANE_CORE_SIMULATION_VALUE_H
#define MORVANE_CORE_SIMULATION_VALUE_H

#include "Core/Simulation/BitState.h"

#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string>
#include <utility>

/// The one signal type: width bits, each a letter of Morvane::BitState, kept as a C string so that a
/// value prints as itself. Letters compare ignoring case; storage keeps them as they came.
///
/// Widths are stored in 8 bits, so a requested width of 256 or more wraps. A width of 0 means not
/// sized yet: the first assignment sizes the value. Up to 22 bits (an address bus) live inside the
/// object, which then fills 32 bytes; wider values use the heap, and a heap store, once made, stays in
/// use after a truncation.
///
/// Failures throw standard exceptions, not Error: out_of_range (index, number), length_error
/// (initialiser), domain_error (integer of a non-binary bit), bad_cast (state of a multi-bit value).
class Value
{
public:
    /// width bits, all u.
    explicit Value(int width = 0) : _size(static_cast<std::uint8_t>(width))
    {
        // In line: every update of a net starts from one.
        if (_dynamic_alloc(_size)) {
            _init_after_size_change();
            return;
        }
        std::memset(_small_array, 'u', small_capacity);
        _small_array[_size] = '\0';
    }
    Value(const Value& other) : _size(other._size)
    {
        // A copy takes the store its width needs, whatever store the source kept after a truncation.
        // A small one is copied whole: a fixed-size copy is far cheaper than one of `_size` bytes.
        if (_dynamic_alloc(_size))
            _copy_to_heap(other);
        else
            std::memcpy(_small_array, other._store(), sizeof _small_array);
    }
    Value(Value&& other) noexcept;
    /// c at the least significant place; the high bits are L if c is binary, else u.
    Value(char c, int width);
    Value(Morvane::BitState state, int width);
    /// With width 0 the width is the length of the text; the high bits are padded as above.
    Value(const char* text, int width = 0);
    Value(const std::string& text, int width = 0);
    ~Value() { delete[] _dynamic_array; }

    /// Exactly `width` letters as they are, no padding; `width` must be below 256.
    static Value from_letters(const char* letters, unsigned width)
    {
        // Stores that keep bare letters hand them out at every lookup: no fill, no library call,
        // and one named result, so that it is built in place.
        Value v(_unfilled, width);
        char* store = v._store();
        Morvane::copy_letters(store, letters, width);
        store[width] = '\0';
        return v;
    }

    /// The fewest bits that hold x (8 gives 4 bits); 0 and negative numbers give an empty value.
    static Value from_int(int x);

    /// A width of 0 becomes 1; the other bits become u if the state is u, else L.
    Value operator=(char c);
    Value operator=(const Morvane::BitState& state);
    /// A width of 0 becomes the length of the text.
    Value operator=(const char* text);
    Value operator=(const std::string& text);
    /// A narrower source fills the low end in reversed bit order; the high end is padded with u if a
    /// copied bit is u, z or x, else with L. A wider source throws length_error.
    Value operator=(const Value& other);

    /// The single bit; throws bad_cast unless the width is 1.
    operator Morvane::BitState() const;
    operator std::string() const;
    const char* c_str() const { return _store(); }
    /// The letters in place, most significant first, size() of them.
    char* letters() { return _store(); }
    unsigned size() const { return _size; }
    void PrintTo(std::ostream* os) const;

    /// False unless the width is 1.
    bool operator==(char c) const;
    bool operator==(const Morvane::BitState& state) const { return *this == Morvane::letter(state); }
    bool operator!=(char c) const { return !(*this == c); }
    bool operator!=(const Morvane::BitState& state) const { return !(*this == state); }
    /// False unless the text has exactly the width.
    bool operator==(const char* text) const;
    bool operator==(const std::string& text) const;
    bool operator!=(const char* text) const { return !(*this == text); }
    bool operator!=(const std::string& text) const { return !(*this == text); }
    /// One-sided: compares this value's letters with the same places of the other, from the left.
    /// So an empty value equals every value, and a narrow one equals a wider one that starts alike.
    bool operator==(const Value& other) const
    {
        // The other's width is not looked at: a narrower other differs at its closing NUL.
        if (other._size < _size)
            return false;
        return Morvane::same_letters(_store(), other._store(), _size);
    }
    bool operator!=(const Value& other) const { return !(*this == other); }

    /// False unless the width is 1; capital X matches any bit, small x only the bit x.
    bool matches(char c) const;
    /// Over this width from the left; x or X in the pattern matches any bit.
    bool matches(const Value& pattern) const;
    /// A one-letter pattern x or X matches every value; otherwise the lengths must agree.
    bool matches(const char* pattern) const { return _test_matches(pattern); }
    bool matches(const std::string& pattern) const { return _test_matches(pattern.c_str()); }

    /// False if some bit is z, p, n, x or u.
    bool is_integer() const { return is_integer(_store(), _size); }
    /// H is 1, everything else 0; throws domain_error for z, x and u, but takes p and n as 0.
    int integer() const { return integer(_store(), _size); }
    /// The same for `width` bare letters, most significant first.
    static bool is_integer(const char* letters, unsigned width);
    static int integer(const char* letters, unsigned width);
    /// Writes the low bits of x; throws out_of_range unless x is below 1 << width (shift modulo 32).
    void set_to(int x);
    /// Expands the compact text (hexadecimal digits, capital state letters) into this value.
    void set_to_hex(const char* text);
    void set_to_hex(const std::string& text) { set_to_hex(text.c_str()); }
    /// The integer in lower case hexadecimal, no prefix.
    std::string hex() const;
    /// hex() for a binary value, else the letters.
    std::string readable() const;

    /// Every z, in either case, becomes `replacement`.
    void replace_tristate(char replacement)
    {
        char* store = _store();
        for (unsigned i = 0; i < _size; ++i) {
            if (store[i] == 'z' || store[i] == 'Z')
                store[i] = replacement;
        }
    }
    void set_undefined() { array_set('u'); }
    void set_tristate() { array_set('z'); }
    void array_set(char c);
    bool all_bits_undefined() const;
    bool has_any(char c) const;
    /// Width n, all bits u.
    void set_size(unsigned n);
    /// Keeps the n least significant bits if n is below the width.
    void truncate_down_to(unsigned n);
    /// Grows to n bits; the old bits keep the low end, the new high bits are c.
    void pad_up_to(unsigned n, char c);
    /// Truncates or pads with L to n bits.
    void confine_to(unsigned n);

    /// Index 0 is the least significant (rightmost) bit; throws out_of_range past the width.
    char& operator[](unsigned i) { return const_cast<char&>(std::as_const(*this)[i]); }
    const char& operator[](unsigned i) const
    {
        if (i >= _size)
            _throw_index_error(i);
        return _store()[_size - 1 - i];
    }
    /// Index 0 is the leftmost bit; throws out_of_range past the width.
    char& left_indexed_bit(unsigned i) { return const_cast<char&>(std::as_const(*this).left_indexed_bit(i)); }
    const char& left_indexed_bit(unsigned i) const
    {
        if (i >= _size)
            _throw_index_error(i);
        return _store()[i];
    }

private:
    static constexpr unsigned small_capacity = 22;  // bits that fit in the object
    struct Unfilled
    {
    };
    static constexpr Unfilled _unfilled{};  // picks the constructor that leaves the letters to its caller

    /// A value whose letters the caller writes.
    Value(Unfilled, unsigned width) : _size(static_cast<std::uint8_t>(width))
    {
        if (_dynamic_alloc(_size))
            _dynamic_array = new char[_size + 1];
    }

    static bool _dynamic_alloc(unsigned width) { return width > small_capacity; }
    char* _store() { return _dynamic_array ? _dynamic_array : _small_array; }
    const char* _store() const { return _dynamic_array ? _dynamic_array : _small_array; }

    void _copy_to_heap(const Value& other);
    void _copy_to_array(const std::string& text) { _copy_to_array(text.c_str(), text.size()); }
    void _copy_to_array(const char* text, std::size_t length);
    void _set_lsb_state(char c);
    void _assure_array_allocation(unsigned n);
    void _init_after_size_change();
    bool _test_matches(const char* pattern) const;
    bool _pattern_matches_array(const char* pattern) const;
    [[noreturn]] void _throw_index_error(unsigned i) const;

    char* _dynamic_array = nullptr;  // owned heap store, made once the width exceeded 8; else null
    char _small_array[small_capacity + 1] = {};  // in-object store: up to 22 letters and the closing NUL
    std::uint8_t _size = 0;                      // bits
};

inline bool operator==(char c, const Value& v)
{
    return v == c;
}

inline bool operator==(const char* text, const Value& v)
{
    return v == text;
}

/// The one bit of a one-bit value as its lower-case letter; any other width throws bad_cast.
inline char state_letter(const Value& value)
{
    return Morvane::lower_letter(Morvane::letter(static_cast<Morvane::BitState>(value)));
}

/// Lets test frameworks print a value as its letters.
inline void PrintTo(const Value& v, std::ostream* os)
{
    v.PrintTo(os);
}

#endif  // MORVANE_CORE_SIMULATION_VALUE_H
