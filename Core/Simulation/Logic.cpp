#include "Core/Simulation/Logic.h"

#include "Core/Support/Error.h"

using Morvane::lower_letter;

namespace {

bool either_is(char a, char b, char wanted)
{
    return a == wanted || b == wanted;
}

bool low_and_high(char a, char b)
{
    return (a == 'l' && b == 'h') || (a == 'h' && b == 'l');
}

// Applies a two-input rule to every place; the rule sees lower-case letters.
template <typename Rule> Value combine(const Value& a, const Value& b, Rule rule)
{
    if (a.size() != b.size())
        throw Error("Mismatching value sizes. ");
    // Letters first, the value once: no fill that the rule would overwrite.
    char letters[256];
    const char* left = a.c_str();
    const char* right = b.c_str();
    unsigned width = a.size();
    for (unsigned i = 0; i < width; ++i)
        letters[i] = rule(lower_letter(left[i]), lower_letter(right[i]));
    return Value::from_letters(letters, width);
}

}  // namespace

Value Logic::And(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (either_is(x, y, 'l'))
            return 'L';
        return either_is(x, y, 'u') ? 'u' : 'H';
    });
}

Value Logic::Nand(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (either_is(x, y, 'l'))
            return 'H';
        return either_is(x, y, 'u') ? 'u' : 'L';
    });
}

Value Logic::Or(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (either_is(x, y, 'h'))
            return 'H';
        return either_is(x, y, 'u') ? 'u' : 'L';
    });
}

Value Logic::Nor(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (either_is(x, y, 'h'))
            return 'L';
        return either_is(x, y, 'u') ? 'u' : 'H';
    });
}

Value Logic::Xor(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (low_and_high(x, y))
            return 'H';
        return either_is(x, y, 'u') ? 'u' : 'L';
    });
}

Value Logic::Xnor(const Value& a, const Value& b)
{
    return combine(a, b, [](char x, char y) {
        if (low_and_high(x, y))
            return 'L';
        return either_is(x, y, 'u') ? 'u' : 'H';
    });
}

Value Logic::Inv(const Value& a)
{
    char letters[256];
    const char* bits = a.c_str();
    unsigned width = a.size();
    for (unsigned i = 0; i < width; ++i) {
        char l = lower_letter(bits[i]);
        letters[i] = l == 'l' ? 'H' : (l == 'u' ? 'u' : 'L');
    }
    return Value::from_letters(letters, width);
}
