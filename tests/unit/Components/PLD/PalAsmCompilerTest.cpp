#include "Core/Components/PLD/PalAsmCompiler.h"

#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/PLD/LogicExpression.h"
#include "Core/Components/PLD/OLMC.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// Lines 1 to 4: pins Clk=1, A1..D1=2..5, /OE=13, Q1..Q3=14..16, Q4=23. Equations start on line 5.
const std::string head = "GAL22V10\n"
                         "name\n"
                         "Clk A1 B1 C1 D1 NC NC NC NC NC NC GND\n"
                         "/OE Q1 Q2 Q3 NC NC NC NC NC NC Q4 VCC\n";

/// The text of the failure, positioned or not, of compiling `source` into a fresh device.
std::string compile_error(const std::string& source)
{
    ATF22V10C device("u1", 10);
    try {
        PalAsmCompiler(device).compile(source);
    } catch (const ErrorWithPos& e) {
        return e.pos_message();
    } catch (const Error& e) {
        return "(plain) " + e.message();
    }
    return "no error";
}

}  // namespace

TEST(PalAsmCompilerTest, MessagesWithTheirLines)
{
    struct Row
    {
        std::string source;
        std::string want;
    };
    const Row rows[] = {
        // Pin lists. The first list is reported one line above the second, wherever it stood.
        {"d\nn\nClk A\n", "Syntax error on line 3: Pin name 'A' too short. Must be at least two characters."},
        {"d\nn\nClk clock\n; c\n\nQ1 Q2\n", "Error on line 5: The clock must be on pin 1."},
        {"d\nn\nA1 CLK\nQ1\n", "Error on line 3: The clock must be on pin 1."},
        {"d\nn\nA1 A2 A3 A4 A5 A6 A7 A8 A9 B1 B2 B3\nQ1\n",
         "Error on line 3: 'GND' is a reserved name for pin 12."},
        {"d\nn\nA1 GND\nQ1\n", "Error on line 3: 'GND' is a reserved name for pin 12."},
        {"d\nn\nA1 A2 A3 A4 A5 A6 A7 A8 A9 B1 B2 GND\nNC NC NC NC NC NC NC NC NC NC NC Q1\n",
         "Error on line 4: 'VCC' is a reserved name for pin 24."},
        {"d\nn\nA1 A2 A3 A4 A5 A6 A7 A8 A9 B1 B2 NC\nNC NC NC NC NC NC NC NC NC NC NC NC\n", "no error"},
        {"d\nn\nA1 vcc\nQ1\n", "Error on line 3: 'VCC' is a reserved name for pin 24."},
        // The order of the checks: VCC before GND, the clock before duplicates.
        {"d\nn\nA1 A2 A3 A4 A5 A6 A7 A8 A9 B1 B2 GND\nNC NC NC NC NC NC NC NC NC NC NC GND\n",
         "Error on line 4: 'VCC' is a reserved name for pin 24."},
        {"d\nn\nClk Clk\nQ1\n", "Error on line 3: The clock must be on pin 1."},
        {"d\nn\nA1 B1\nQ1 B1\n", "Error on line 4: Duplicate pin: 'B1'."},
        {"d\nn\nA1 a1 /A1 NC NC\nQ1\n", "no error"},
        // Left sides.
        {head + "Q1 A1\nQ1 = B1\nDESCRIPTION", "no error"},  // text ahead of the first '=' is dropped
        {head + "= A1\nDESCRIPTION",
         "Syntax error on line 5: identifiers required to be at least two characters long."},
        {head + "Q = A1\nDESCRIPTION",
         "Syntax error on line 5: identifiers required to be at least two characters long."},
        {head + "1Q = A1\nDESCRIPTION",
         "Syntax error on line 5: Illegal or misplaced character on line: '1'"},
        {head + "Q1.R1 = A1\nDESCRIPTION",
         "Syntax error on line 5: Illegal or misplaced character on line: '1'"},
        {head + "Q1 =\nDESCRIPTION", "Syntax error on line 5: empty expression on the right hand side."},
        // Right sides; a fault on a continuation line is reported on the equation's first line.
        {head + "Q1 = /A1 * B1 +\nDESCRIPTION",
         "Syntax error on line 5: An equation cannot end with an operator."},
        {head + "Q1 = A1 +\n\n; c\nB1 +\nDESCRIPTION",
         "Syntax error on line 8: An equation cannot end with an operator."},
        {head + "Q1 = (A1 + B1)\nDESCRIPTION", "Syntax error on line 5: Illegal or misplaced character: '('"},
        {head + "Q1 = A1 +\nB1 * C1)\nDESCRIPTION",
         "Syntax error on line 5: Illegal or misplaced character: ')'"},
        {head + "Q1 = A * B1\nDESCRIPTION", "Syntax error on line 5: Identifier 'A' to short"},
        {head + "Q1 = A1 ++ B1\nDESCRIPTION", "Syntax error on line 5: Identifier '' to short"},
        {head + "Q1 = A1\n\nQ2 = A1 * B\n", "no error"},  // the last equation is lost
        {head + "Q1 = A1\nQ2 = A1 * B\nDESCRIPTION",
         "Error on line 6: Cannot make sense of expression 'B' on Maybe a missing pin declaration?"},
        {head + "Q1 = A1 +\nZZ9\nDESCRIPTION",
         "Error on line 6: Cannot make sense of expression 'ZZ9' on Maybe a missing pin declaration?"},
        {head + "Q1 = A1\ndescription\nDESCRIPTION", "Error on line 6: Cannot make sense of expression "
                                                     "'A1description' on Maybe a missing pin declaration?"},
        // The device's checks.
        {head + "Q1.X = A1\nDESCRIPTION", "Error on line 5: Unknown suffix 'Q1' for signal 'X'"},
        {head + "Q1.R.X = A1\nDESCRIPTION", "Error on line 5: Unknown suffix 'Q1' for signal 'RX'"},
        {head + "Q1 = A1\nQ1.X = A1\nDESCRIPTION", "Error on line 6: Unknown suffix 'X' for signal 'Q1'"},
        {head + "Q1.E = A1\nDESCRIPTION",
         "Error on line 5: Tristate expression precedes signal expression for output 'Q1'"},
        {head + "Q1 = A1\nQ1.E = B1\nDESCRIPTION", "Error on line 6: signal 'Q1' does not have a tristate "
                                                   "configuration, i.e. lacks a .T or .R suffix."},
        {head + "Q1.T = A1\nQ1.E = B1 + C1\nDESCRIPTION",
         "Error on line 6: tristate expression for pin 'Q1' has too many terms. Only one is allowed."},
        {head + "Q1.T = A1\n/Q1.E = B1\nDESCRIPTION",
         "Error on line 6: 'inverted' tristate expressions for output '/Q1' are not allowed."},
        {head + "A1 = B1\nDESCRIPTION", "Error on line 5: Pin 'A1' cannot be used as an output."},
        {head + "OE = B1\nDESCRIPTION", "Error on line 5: Pin 'OE' cannot be used as an output."},
        {head + "ZZ = B1\nDESCRIPTION", "Error on line 5: Cannot find port 'ZZ'. There is a equation that "
                                        "refers to it. Check that it exits."},
        {head + "Q1 = A1+B1+C1+D1+A1+B1+C1+D1+A1+B1\nDESCRIPTION",
         "Error on line 5: too many product terms (10) for pin 'Q1' (pin 14 on device). Maximum capacity for "
         "this "
         "pin is 9."},
        {head + "Q1 = A1+B1+C1+D1+A1+B1+C1+D1+A1\nQ4 = A1+B1+C1+D1+A1+B1+C1+D1+A1+B1\nDESCRIPTION",
         "Error on line 6: too many product terms (10) for pin 'Q4' (pin 23 on device). Maximum capacity for "
         "this "
         "pin is 9."},
        {head + "AR = A1 + B1\nDESCRIPTION",
         "(plain) Error on line 5: AR expressions cannot have multiple terms."},
        {head + "SP = A1 + B1\nDESCRIPTION",
         "(plain) Error on line 5: SP expressions cannot have multiple terms."},
        {"d\nn\nA1 B1 C1 D1 E1 F1 G1 H1 I1 J1 K1 GND\nL1 Q1\nQ1.R = A1\nDESCRIPTION",
         "(plain) Registered PLD outputs are defined but pin 1 is not defined as an clock input"},
        {"d\nn\n/CLK B1 C1 D1 E1 F1 G1 H1 I1 J1 K1 GND\nL1 Q1\nQ1.R = B1\nDESCRIPTION",
         "(plain) Registered PLD outputs are defined but pin 1 is not defined as an clock input"},
        {head + "Q1 = Q2\nDESCRIPTION", "(plain) OLMC feedback for 'Q2' is unresolved."},
        {head + "Q1 = A1 * /ZZ\nDESCRIPTION",
         "Error on line 5: Cannot make sense of expression '/ZZ' on Maybe a missing pin declaration?"},
        {head + "Q1 = A1 * B1 + /ZZ\nDESCRIPTION", "no error"},  // a lone last term is dropped unread
    };
    for (const Row& row : rows)
        EXPECT_EQ(compile_error(row.source), row.want) << row.source;
}

TEST(PalAsmCompilerTest, ProductTermsCountedOnTheTreeThatRemains)
{
    struct Row
    {
        const char* right_side;
        int terms;
    };
    const Row rows[] = {{"A1*B1*C1", 1}, {"A1+B1", 2},    {"A1*B1+C1*D1", 2}, {"VCC", 1},
                        {"/A1+B1", 2},   {"A1*B1+C1", 1}, {"C1+A1*B1", 2},    {"A1+B1+C1*D1", 3}};
    for (const Row& row : rows) {
        ATF22V10C device("u1", 10);
        PalAsmCompiler(device).compile(head + "Q1 = " + row.right_side + "\nDESCRIPTION");
        ASSERT_EQ(device.combinatorial_olmcs().size(), 1u);
        EXPECT_EQ(device.combinatorial_olmcs()[0]->input_expression()->count_product_terms(), row.terms)
            << row.right_side;
    }
}
