#include "Core/Simulation/Logic.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

TEST(LogicTest, TwoInputTruthTables)
{
    struct Row
    {
        const char* a;     // first input bit
        const char* b;     // second input bit
        const char* want;  // And Nand Or Nor Xor Xnor
    };
    const Row rows[] = {
        {"L", "L", "LHLHLH"}, {"L", "H", "LHHLHL"}, {"H", "L", "LHHLHL"}, {"H", "H", "HLHLLH"},
        {"u", "L", "LHuuuu"}, {"u", "H", "uuHLuu"}, {"u", "u", "uuuuuu"}, {"U", "H", "uuHLuu"},
        {"z", "H", "HLHLLH"}, {"z", "L", "LHLHLH"}, {"H", "z", "HLHLLH"}, {"z", "z", "HLLHLH"},
        {"p", "L", "LHLHLH"}, {"n", "H", "HLHLLH"}, {"x", "u", "uuuuuu"}, {"l", "h", "LHHLHL"},
        {"Z", "u", "uuuuuu"}, {"p", "n", "HLLHLH"},
    };
    using Op = std::function<Value(const Value&, const Value&)>;
    const Op ops[] = {Logic::And, Logic::Nand, Logic::Or, Logic::Nor, Logic::Xor, Logic::Xnor};
    const char* names[] = {"And", "Nand", "Or", "Nor", "Xor", "Xnor"};
    for (const auto& r : rows) {
        for (int i = 0; i < 6; ++i) {
            Value result = ops[i](Value(r.a), Value(r.b));
            EXPECT_STREQ(result.c_str(), std::string(1, r.want[i]).c_str())
                << names[i] << "(" << r.a << ", " << r.b << ")";
        }
    }
}

TEST(LogicTest, InverterAndWideValues)
{
    EXPECT_STREQ(Logic::Inv(Value("LlHhuUzpnx")).c_str(), "HHLLuuLLLL");
    EXPECT_STREQ(Logic::And(Value("HLuzH"), Value("HHHHu")).c_str(), "HLuHu");
    EXPECT_STREQ(Logic::Xor(Value("HLHLHLHLHL"), Value("HHLLHHLLuz")).c_str(), "LHHLLHHLuL");
    EXPECT_EQ(Logic::Or(Value(0), Value(0)).size(), 0u);
    EXPECT_EQ(Logic::Inv(Value(0)).size(), 0u);
}

TEST(LogicTest, WidthMismatchThrowsError)
{
    using Op = std::function<Value(const Value&, const Value&)>;
    const Op ops[] = {Logic::And, Logic::Nand, Logic::Or, Logic::Nor, Logic::Xor, Logic::Xnor};
    for (const auto& op : ops) {
        EXPECT_EQ(error_of([&] { op(Value("HL"), Value("H")); }), "Mismatching value sizes. ");
    }
}
