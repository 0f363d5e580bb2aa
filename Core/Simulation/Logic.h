// Bit-wise logic on values, the algebra the gates are built from.
#ifndef MORVANE_CORE_SIMULATION_LOGIC_H
#define MORVANE_CORE_SIMULATION_LOGIC_H

#include "Core/Simulation/Value.h"

/// Each result bit depends on the bits of the same place only, letters ignoring case. A dominating
/// bit wins over u (L and u is L, H or u is H); then u gives u; any other letter (z, x, p, n) falls
/// through to the last rule, so it counts as true for And and Nand and as false for Or, Nor and Inv.
/// Results are H, L and u. Operands of different widths throw Error.
class Logic
{
public:
    Logic() = default;
    virtual ~Logic() = default;

    /// L if a bit is L; u if a bit is u; else H.
    static Value And(const Value& a, const Value& b);
    /// H if a bit is L; u if a bit is u; else L.
    static Value Nand(const Value& a, const Value& b);
    /// H if a bit is H; u if a bit is u; else L.
    static Value Or(const Value& a, const Value& b);
    /// L if a bit is H; u if a bit is u; else H.
    static Value Nor(const Value& a, const Value& b);
    /// H for H and L in either order; u if a bit is u; else L.
    static Value Xor(const Value& a, const Value& b);
    /// L for H and L in either order; u if a bit is u; else H.
    static Value Xnor(const Value& a, const Value& b);
    /// H for L; u for u; else L.
    static Value Inv(const Value& a);

    // The same rules for one place, on letters of either case: the functions above apply them to
    // every place, and a gate of one bit applies them to the letters it reads.
    static char and_letter(char a, char b)
    {
        return either_is(a, b, 'l') ? 'L' : (either_is(a, b, 'u') ? 'u' : 'H');
    }
    static char nand_letter(char a, char b)
    {
        return either_is(a, b, 'l') ? 'H' : (either_is(a, b, 'u') ? 'u' : 'L');
    }
    static char or_letter(char a, char b)
    {
        return either_is(a, b, 'h') ? 'H' : (either_is(a, b, 'u') ? 'u' : 'L');
    }
    static char nor_letter(char a, char b)
    {
        return either_is(a, b, 'h') ? 'L' : (either_is(a, b, 'u') ? 'u' : 'H');
    }
    static char xor_letter(char a, char b)
    {
        return low_and_high(a, b) ? 'H' : (either_is(a, b, 'u') ? 'u' : 'L');
    }
    static char xnor_letter(char a, char b)
    {
        return low_and_high(a, b) ? 'L' : (either_is(a, b, 'u') ? 'u' : 'H');
    }
    static char inv_letter(char a)
    {
        char l = Morvane::lower_letter(a);
        return l == 'l' ? 'H' : (l == 'u' ? 'u' : 'L');
    }

private:
    /// Whether either letter is `wanted`, a lower-case one, ignoring case.
    static bool either_is(char a, char b, char wanted)
    {
        return Morvane::lower_letter(a) == wanted || Morvane::lower_letter(b) == wanted;
    }
    static bool low_and_high(char a, char b)
    {
        char x = Morvane::lower_letter(a);
        char y = Morvane::lower_letter(b);
        return (x == 'l' && y == 'h') || (x == 'h' && y == 'l');
    }
};

#endif  // MORVANE_CORE_SIMULATION_LOGIC_H
