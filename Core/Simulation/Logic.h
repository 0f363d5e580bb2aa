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
};

#endif  // MORVANE_CORE_SIMULATION_LOGIC_H
