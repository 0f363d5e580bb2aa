// Self-checking 6502 test programs, run tick by tick on the bare core until they trap in a self-loop.
#include "M6502Harness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(M6502ProgramTest, PassesFunctionalTest)
{
    M6502Harness h;
    ASSERT_TRUE(h.load_image("6502_functional_test.bin", 0x0000))
        << "can't read " << testdata_dir() << "6502_functional_test.bin";
    h.reset_to(0x0400);  // the image's own reset vector points at a trap
    const TrapResult result = h.run_to_trap(200'000'000);
    RecordProperty("ticks", std::to_string(result.ticks));
    EXPECT_EQ(result.trap, 0x3469) << std::hex << "trapped at $" << result.trap << " after " << std::dec
                                   << result.ticks << " ticks; last instructions:\n"
                                   << result.recent;
}

// All 256 x 256 operands in decimal mode, invalid digits included, all flags checked.
TEST(M6502ProgramTest, PassesDecimalTest)
{
    M6502Harness h;
    if (!h.load_image("6502_decimal_test_nmos.bin", 0x0200)) {
        GTEST_SKIP() << "no 6502_decimal_test_nmos.bin in " << testdata_dir();
    }
    h.reset_to(0x0200);
    const TrapResult result = h.run_to_trap(100'000'000);
    EXPECT_EQ(result.trap, 0x024B) << std::hex << "trapped at $" << result.trap << "; last instructions:\n"
                                   << result.recent;
    EXPECT_EQ(h.mem(0x000B), 0) << std::hex << "first failing case: N1=" << int(h.mem(0x00))
                                << " N2=" << int(h.mem(0x01)) << " carry in Y=" << int(m6502_y(&h.cpu));
}

}  // namespace
