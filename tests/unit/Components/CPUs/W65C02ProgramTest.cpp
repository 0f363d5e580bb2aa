// Self-checking 65C02 test programs, run tick by tick on the bare core until they trap in a self-loop.
#include "W65C02Harness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// New opcodes and modes, BBR/BBS/RMB/SMB, the undefined opcodes as NOPs of their length, and decimal
// mode with N and Z from the result.
TEST(W65C02ProgramTest, PassesExtendedOpcodesTest)
{
    W65C02Harness h;
    ASSERT_TRUE(h.load_image("65C02_extended_opcodes_test.bin", 0x0000))
        << "can't read " << testdata_dir() << "65C02_extended_opcodes_test.bin";
    h.reset_to(0x0400);  // the image's own reset vector points at a trap
    const TrapResult result = h.run_to_trap(150'000'000);
    RecordProperty("ticks", std::to_string(result.ticks));
    EXPECT_EQ(result.trap, 0x24F1) << std::hex << "trapped at $" << result.trap << " after " << std::dec
                                   << result.ticks << " ticks; last instructions:\n"
                                   << result.recent;
}

// The documented NMOS instructions still behave as they did.
TEST(W65C02ProgramTest, PassesFunctionalTest)
{
    W65C02Harness h;
    ASSERT_TRUE(h.load_image("6502_functional_test.bin", 0x0000))
        << "can't read " << testdata_dir() << "6502_functional_test.bin";
    h.reset_to(0x0400);
    const TrapResult result = h.run_to_trap(200'000'000);
    EXPECT_EQ(result.trap, 0x3469) << std::hex << "trapped at $" << result.trap << "; last instructions:\n"
                                   << result.recent;
}

}  // namespace
