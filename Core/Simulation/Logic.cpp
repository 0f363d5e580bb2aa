#include "Core/Simulation/Logic.h"

#include "Core/Support/Error.h"

namespace {

// Applies a two-input rule to every place.
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
        letters[i] = rule(left[i], right[i]);
    return Value::from_letters(letters, width);
}

}  // namespace

Value Logic::And(const Value& a, const Value& b)
{
    return combine(a, b, and_letter);
}

Value Logic::Nand(const Value& a, const Value& b)
{
    return combine(a, b, nand_letter);
}

Value Logic::Or(const Value& a, const Value& b)
{
    return combine(a, b, or_letter);
}

Value Logic::Nor(const Value& a, const Value& b)
{
    return combine(a, b, nor_letter);
}

Value Logic::Xor(const Value& a, const Value& b)
{
    return combine(a, b, xor_letter);
}

Value Logic::Xnor(const Value& a, const Value& b)
{
    return combine(a, b, xnor_letter);
}

Value Logic::Inv(const Value& a)
{
    char letters[256];
    const char* bits = a.c_str();
    unsigned width = a.size();
    for (unsigned i = 0; i < width; ++i)
        letters[i] = inv_letter(bits[i]);
    return Value::from_letters(letters, width);
}
