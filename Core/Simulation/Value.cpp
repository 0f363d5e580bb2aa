#include "Core/Simulation/Value.h"

#include "Core/Simulation/ValueText.h"

#include <bit>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <typeinfo>
#include <utility>

using Morvane::BitState;
using Morvane::lower_letter;

namespace {

// Exception texts of any length, so that a long initialiser is quoted whole.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(n > 0 ? static_cast<std::size_t>(n) : 0, '\0');
    if (n > 0)
        std::vsnprintf(text.data(), text.size() + 1, format, args);
    va_end(args);
    return text;
}

// Widths live in 8 bits; larger requests wrap without a word.
std::uint8_t wrap_width(std::size_t width)
{
    return static_cast<std::uint8_t>(width);
}

bool is_undefined_like(char c)
{
    char l = lower_letter(c);
    return l == 'u' || l == 'z' || l == 'x';
}

}  // namespace

static_assert(sizeof(Value) == 32, "a value and its letters fill half a cache line");

void Value::_copy_to_heap(const Value& other)
{
    _dynamic_array = new char[_size + 1];
    std::memcpy(_dynamic_array, other._store(), _size + 1u);
}

Value::Value(Value&& other) noexcept : _dynamic_array(other._dynamic_array), _size(other._size)
{
    if (!_dynamic_array)
        std::memcpy(_small_array, other._small_array, sizeof _small_array);
    other._dynamic_array = nullptr;
    other._size = 0;
    other._small_array[0] = '\0';
}

Value::Value(char c, int width) : Value(width)
{
    _copy_to_array(&c, 1);
}

Value::Value(BitState state, int width) : Value(Morvane::letter(state), width) {}

Value::Value(const char* text, int width)
{
    std::size_t length = std::strlen(text);
    _size = wrap_width(width == 0 ? length : static_cast<std::size_t>(width));
    _init_after_size_change();
    // A text too long throws from here, and a constructor that throws runs no destructor.
    try {
        _copy_to_array(text, length);
    } catch (...) {
        delete[] _dynamic_array;
        throw;
    }
}

Value::Value(const std::string& text, int width)
{
    _size = wrap_width(width == 0 ? text.size() : static_cast<std::size_t>(width));
    _init_after_size_change();
    // A text too long throws from here, and a constructor that throws runs no destructor.
    try {
        _copy_to_array(text.c_str(), text.size());
    } catch (...) {
        delete[] _dynamic_array;
        throw;
    }
}

Value Value::from_int(int x)
{
    if (x <= 0)
        return Value(0);
    Value v(static_cast<int>(std::bit_width(static_cast<unsigned>(x))));
    v.set_to(x);
    return v;
}

Value Value::operator=(char c)
{
    _assure_array_allocation(1);
    _set_lsb_state(c);
    return *this;
}

Value Value::operator=(const BitState& state)
{
    return *this = Morvane::letter(state);
}

Value Value::operator=(const char* text)
{
    std::size_t length = std::strlen(text);
    _assure_array_allocation(static_cast<unsigned>(length));
    _copy_to_array(text, length);
    return *this;
}

Value Value::operator=(const std::string& text)
{
    _assure_array_allocation(static_cast<unsigned>(text.size()));
    _copy_to_array(text.c_str(), text.size());
    return *this;
}

Value Value::operator=(const Value& other)
{
    if (this == &other)
        return *this;
    _assure_array_allocation(other._size);
    if (other._size > _size)
        throw std::length_error(format_text("Initializer mismatch %d vs %d", other._size, _size));
    char* store = _store();
    const char* source = other._store();
    if (other._size == _size) {
        std::memcpy(store, source, _size);
        return *this;
    }
    // A narrower source lands in the low end with its bit 0 leftmost: its bits come out reversed.
    unsigned offset = _size - other._size;
    char pad = 'L';
    for (unsigned j = 0; j < other._size; ++j) {
        char c = source[other._size - 1 - j];
        store[offset + j] = c;
        if (is_undefined_like(c))
            pad = 'u';
    }
    std::memset(store, pad, offset);
    return *this;
}

Value::operator BitState() const
{
    if (_size != 1)
        throw std::bad_cast();
    return static_cast<BitState>(_store()[0]);
}

Value::operator std::string() const
{
    return std::string(_store(), _size);
}

void Value::PrintTo(std::ostream* os) const
{
    *os << c_str();
}

bool Value::operator==(char c) const
{
    return _size == 1 && lower_letter(_store()[0]) == lower_letter(c);
}

bool Value::operator==(const char* text) const
{
    const char* store = _store();
    unsigned i = 0;
    for (; i < _size; ++i) {
        if (text[i] == '\0' || lower_letter(text[i]) != lower_letter(store[i]))
            return false;
    }
    return text[i] == '\0';
}

bool Value::operator==(const std::string& text) const
{
    return text.size() == _size && *this == text.c_str();
}

bool Value::matches(char c) const
{
    return _size == 1 && (c == 'X' || lower_letter(_store()[0]) == lower_letter(c));
}

bool Value::matches(const Value& pattern) const
{
    if (pattern._size < _size)
        return false;
    return _pattern_matches_array(pattern._store());
}

bool Value::_test_matches(const char* pattern) const
{
    std::size_t length = std::strlen(pattern);
    if (length == 1 && lower_letter(pattern[0]) == 'x')
        return true;
    if (length != _size)
        return false;
    return _pattern_matches_array(pattern);
}

bool Value::_pattern_matches_array(const char* pattern) const
{
    const char* store = _store();
    for (unsigned i = 0; i < _size; ++i) {
        char p = lower_letter(pattern[i]);
        if (p != 'x' && p != lower_letter(store[i]))
            return false;
    }
    return true;
}

bool Value::is_integer(const char* store, unsigned width)
{
    for (unsigned i = 0; i < width; ++i) {
        char l = lower_letter(store[i]);
        if (l == 'z' || l == 'p' || l == 'n' || l == 'x' || l == 'u')
            return false;
    }
    return true;
}

int Value::integer(const char* store, unsigned width)
{
    unsigned result = 0;  // unsigned so that widths past 31 bits wrap instead of overflowing
    for (unsigned i = 0; i < width; ++i) {
        char l = lower_letter(store[i]);
        if (l == 'z' || l == 'x' || l == 'u')
            throw std::domain_error(format_text("Cannot interpret '%c' as a binary digit.", store[i]));
        result = (result << 1) | (l == 'h' ? 1u : 0u);
    }
    return static_cast<int>(result);
}

void Value::set_to(int x)
{
    // The limit is a signed 32-bit shift: at width 31 it is negative, at width 32 it is 1.
    auto limit = static_cast<std::int32_t>(1u << (_size & 31u));
    if (limit <= x)
        throw std::out_of_range("Number cannot be represented in value");
    char* store = _store();
    for (unsigned i = 0; i < _size; ++i) {
        store[_size - 1 - i] = (x & 1) ? 'H' : 'L';
        x >>= 1;
    }
}

void Value::set_to_hex(const char* text)
{
    _copy_to_array(hexpand(text));
}

std::string Value::hex() const
{
    char buffer[16];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<unsigned>(integer()), 16);
    return std::string(buffer, result.ptr);
}

std::string Value::readable() const
{
    return is_integer() ? hex() : std::string(*this);
}

void Value::array_set(char c)
{
    std::memset(_store(), c, _size);
}

bool Value::all_bits_undefined() const
{
    const char* store = _store();
    for (unsigned i = 0; i < _size; ++i) {
        if (lower_letter(store[i]) != 'u')
            return false;
    }
    return true;
}

bool Value::has_any(char c) const
{
    const char* store = _store();
    char wanted = lower_letter(c);
    for (unsigned i = 0; i < _size; ++i) {
        if (lower_letter(store[i]) == wanted)
            return true;
    }
    return false;
}

void Value::set_size(unsigned n)
{
    _size = wrap_width(n);
    _init_after_size_change();
}

void Value::truncate_down_to(unsigned n)
{
    if (n >= _size)
        return;
    // The store stays where it is, heap or not; only the letters move to its start.
    char* store = _store();
    std::memmove(store, store + (_size - n), n);
    store[n] = '\0';
    _size = wrap_width(n);
}

void Value::pad_up_to(unsigned n, char c)
{
    std::uint8_t width = wrap_width(n);
    if (width <= _size)
        return;
    unsigned grow = width - _size;
    if (_dynamic_alloc(width)) {
        char* fresh = new char[width + 1];
        std::memcpy(fresh + grow, _store(), _size);
        delete[] _dynamic_array;
        _dynamic_array = fresh;
    } else {
        // A heap store kept after a truncation once held more than the small store, so it has the room.
        std::memmove(_store() + grow, _store(), _size);
    }
    char* store = _store();
    std::memset(store, c, grow);
    store[width] = '\0';
    _size = width;
}

void Value::confine_to(unsigned n)
{
    if (n < _size)
        truncate_down_to(n);
    else if (n > _size)
        pad_up_to(n, 'L');
}

void Value::_throw_index_error(unsigned i) const
{
    throw std::out_of_range(format_text("Value: Index %d larger than size %d", static_cast<int>(i), _size));
}

void Value::_copy_to_array(const char* text, std::size_t length)
{
    if (length > _size) {
        std::string quoted(text, length);
        throw std::length_error(
            format_text("Initializer '%s' too long for type (Value %d).", quoted.c_str(), _size));
    }
    char* store = _store();
    std::size_t offset = _size - length;
    std::memcpy(store + offset, text, length);
    // Binary text is padded with L; anything else leaves the high bits undefined.
    char pad = 'L';
    for (std::size_t i = 0; i < length; ++i) {
        if (!Morvane::is_binary(text[i]))
            pad = 'u';
    }
    std::memset(store, pad, offset);
    store[_size] = '\0';
}

void Value::_set_lsb_state(char c)
{
    char* store = _store();
    char l = lower_letter(c);
    std::memset(store, l == 'u' ? 'u' : 'L', _size);
    store[_size - 1] = c;
}

void Value::_assure_array_allocation(unsigned n)
{
    if (_size != 0)
        return;
    _size = wrap_width(n);
    _init_after_size_change();
}

void Value::_init_after_size_change()
{
    delete[] _dynamic_array;
    if (_dynamic_alloc(_size)) {
        _dynamic_array = new char[_size + 1];
        std::memset(_dynamic_array, 'u', _size);
        _dynamic_array[_size] = '\0';
        return;
    }
    // All of the small store at once, then the end: cheaper than a fill of `_size` bytes.
    _dynamic_array = nullptr;
    std::memset(_small_array, 'u', small_capacity);
    _small_array[_size] = '\0';
}
