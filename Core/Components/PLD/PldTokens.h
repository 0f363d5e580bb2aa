// What the first pass of the PLD compiler reads out of a source, and what the device keeps of it.
#ifndef MORVANE_CORE_COMPONENTS_PLD_PLDTOKENS_H
#define MORVANE_CORE_COMPONENTS_PLD_PLDTOKENS_H

#include <string>
#include <vector>

/// One line of an equation that is still being collected.
struct LinePart
{
    std::string text;  // white space removed
    int line;          // source line, from 1
};

/// An identifier, or one of the operators "*" and "+", of an equation's right side.
struct EquationSymbol
{
    std::string text;
    int line;  // source line it came from
};

struct Equation
{
    std::string name;                     // left side without suffix, "/" kept
    std::string suffix;                   // letters behind the ".", empty if none
    std::vector<EquationSymbol> symbols;  // right side in source order
    int line = 0;                         // the equation's first line
};

struct PldTokens
{
    virtual ~PldTokens() = default;

    std::string device_name;               // the device line as written
    std::string instance_name;             // the name line as written; nothing uses it
    std::vector<std::string> input_pins;   // the first pin list, pin 1 upward
    std::vector<std::string> output_pins;  // the second pin list
    std::vector<Equation> equations;
    std::string description;  // the lines behind "DESCRIPTION", joined with nothing between
};

/// The text parts of a compiled program.
struct PldProgram
{
    virtual ~PldProgram() = default;

    std::string device_name;
    std::string instance_name;  // the component's name, not the source's second line
    std::string description;
};

#endif  // MORVANE_CORE_COMPONENTS_PLD_PLDTOKENS_H
