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
        {"z", "H", "HLHLLH"}, {"z", "L", "LHLHLH"}, {"z", "z", "HLLHLH"}, {"p", "L", "LHLHLH"},
        {"n", "H", "HLHLLH"}, {"x", "u", "uuuuuu"}, {"l", "h", "LHHLHL"}, {"p", "n", "HLLHLH"},
    };
    using Op = std::function<Value(const Value&, const Value&)>;
    const Op ops[] = {Logic::And, Logic::Nand, Logic::Or, Logic::Nor, Logic::Xor, Logic::Xnor};
    for (const auto& r : rows) {
        for (int i = 0; i < 6; ++i) {
            EXPECT_STREQ(ops[i](Value(r.a), Value(r.b)).c_str(), std::string(1, r.want[i]).c_str())
                << i << "(" << r.a << ", " << r.b << ")";
        }
    }
    EXPECT_STREQ(Logic::Inv(Value("LlHhuUzpnx")).c_str(), "HHLLuuLLLL");
    EXPECT_STREQ(Logic::Xor(Value("HLHLHLHLHL"), Value("HHLLHHLLuz")).c_str(), "LHHLLHHLuL");
    EXPECT_EQ(error_of([&] { Logic::Nor(Value("HL"), Value("H")); }), "Mismatching value sizes. ");
}
