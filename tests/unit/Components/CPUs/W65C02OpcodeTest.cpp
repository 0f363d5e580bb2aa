// Results of the 65C02's new instructions and of its decimal mode, where N and Z follow the result.
#include "W65C02Harness.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

struct OpcodeCase
{
    const char* name;                                // what the row shows
    std::vector<uint8_t> code;                       // loaded at 0x0400
    uint8_t a, x, y, s, p;                           // registers before
    std::vector<std::pair<uint16_t, uint8_t>> data;  // memory before
    uint8_t want_a, want_x, want_y, want_p;          // registers after
    uint16_t check_addr;                             // a byte to check after, 0 for none
    uint8_t check_value;                             // what it must hold
    bool bcd_disabled;                               // run with the D flag switched off
};

// clang-format off
const OpcodeCase opcode_cases[] = {
    {"TsbZFromAndWithA", {0x04, 0x80}, 0x0F, 0, 0, 0xFD, 0x30, {{0x80, 0xF0}}, 0x0F, 0, 0, 0x32, 0x80, 0xFF, false},
    {"TsbZClearOnCommonBit", {0x0C, 0x00, 0x12}, 0x01, 0, 0, 0xFD, 0x32, {{0x1200, 0x81}}, 0x01, 0, 0, 0x30,
     0x1200, 0x81, false},
    {"TrbClearsBitsOfA", {0x14, 0x80}, 0x81, 0, 0, 0xFD, 0xB0, {{0x80, 0xC3}}, 0x81, 0, 0, 0xB0, 0x80, 0x42, false},
    {"BitImmediateSetsOnlyZ", {0x89, 0xC0}, 0x01, 0, 0, 0xFD, 0x70, {}, 0x01, 0, 0, 0x72, 0, 0, false},
    {"BitZeroPageXTakesNAndV", {0x34, 0x7F}, 0xFF, 0x01, 0, 0xFD, 0x32, {{0x80, 0xC0}}, 0xFF, 0x01, 0, 0xF0, 0, 0, false},
    {"BitAbsoluteX", {0x3C, 0xFF, 0x11}, 0x00, 0x01, 0, 0xFD, 0x30, {{0x1200, 0x40}}, 0x00, 0x01, 0, 0x72, 0, 0, false},
    {"IncA", {0x1A}, 0xFF, 0, 0, 0xFD, 0x30, {}, 0x00, 0, 0, 0x32, 0, 0, false},
    {"DecA", {0x3A}, 0x00, 0, 0, 0xFD, 0x32, {}, 0xFF, 0, 0, 0xB0, 0, 0, false},
    {"StzZeroPage", {0x64, 0x80}, 0x55, 0, 0, 0xFD, 0x30, {{0x80, 0xAA}}, 0x55, 0, 0, 0x30, 0x80, 0x00, false},
    {"StzAbsolute", {0x9C, 0x00, 0x12}, 0x55, 0, 0, 0xFD, 0x30, {{0x1200, 0xAA}}, 0x55, 0, 0, 0x30, 0x1200, 0, false},
    {"PlxSetsFlags", {0xFA}, 0, 0x11, 0, 0xFC, 0x32, {{0x1FD, 0x80}}, 0, 0x80, 0, 0xB0, 0, 0, false},
    {"PlySetsFlags", {0x7A}, 0, 0, 0x11, 0xFC, 0x30, {{0x1FD, 0x00}}, 0, 0, 0x00, 0x32, 0, 0, false},
    {"PhyPushesY", {0x5A}, 0, 0, 0x5A, 0xFD, 0x30, {}, 0, 0, 0x5A, 0x30, 0x1FD, 0x5A, false},
    {"LdaZeroPageIndirect", {0xB2, 0x80}, 0, 0, 0, 0xFD, 0x30, {{0x80, 0x00}, {0x81, 0x12}, {0x1200, 0x80}},
     0x80, 0, 0, 0xB0, 0, 0, false},
    {"RmbTouchesNoFlags", {0x57, 0x80}, 0, 0, 0, 0xFD, 0xF3, {{0x80, 0x20}}, 0, 0, 0, 0xF3, 0x80, 0x00, false},
    {"SmbTouchesNoFlags", {0xE7, 0x80}, 0, 0, 0, 0xFD, 0x30, {{0x80, 0x00}}, 0, 0, 0, 0x30, 0x80, 0x40, false},
    {"OneByteNopChangesNothing", {0x5B}, 0x12, 0x34, 0x56, 0xFD, 0xF3, {}, 0x12, 0x34, 0x56, 0xF3, 0, 0, false},
    {"DecimalAdcZAndCFromResult", {0x69, 0x01}, 0x99, 0, 0, 0xFD, 0x38, {}, 0x00, 0, 0, 0x3B, 0, 0, false},
    {"DecimalAdcNFromResult", {0x69, 0x01}, 0x79, 0, 0, 0xFD, 0x38, {}, 0x80, 0, 0, 0xF8, 0, 0, false},
    {"DecimalAdcNAndZNotFromBinarySum", {0x69, 0x50}, 0x50, 0, 0, 0xFD, 0x38, {}, 0x00, 0, 0, 0x7B, 0, 0, false},
    {"DecimalSbcBorrows", {0xE9, 0x01}, 0x00, 0, 0, 0xFD, 0x39, {}, 0x99, 0, 0, 0xB8, 0, 0, false},
    {"DecimalSbcZFromResult", {0xE9, 0x01}, 0x10, 0, 0, 0xFD, 0x38, {}, 0x08, 0, 0, 0x39, 0, 0, false},
    {"DecimalOffAdcIsBinary", {0x69, 0x01}, 0x99, 0, 0, 0xFD, 0x38, {}, 0x9A, 0, 0, 0xB8, 0, 0, true},
    {"BrkClearsD", {0x00, 0x00}, 0, 0, 0, 0xFD, 0x3B, {}, 0, 0, 0, 0x37, 0x1FB, 0x3B, false},
};
// clang-format on

class W65C02OpcodeTest : public testing::TestWithParam<OpcodeCase>
{
};

TEST_P(W65C02OpcodeTest, ComputesResult)
{
    const OpcodeCase& row = GetParam();
    W65C02Harness h(row.bcd_disabled);
    h.load_and_reset(row.code, row.data);
    h.set_registers(row.a, row.x, row.y, row.p);
    w65c02_set_s(&h.cpu, row.s);
    h.run_instruction();
    EXPECT_EQ(w65c02_a(&h.cpu), row.want_a);
    EXPECT_EQ(w65c02_x(&h.cpu), row.want_x);
    EXPECT_EQ(w65c02_y(&h.cpu), row.want_y);
    EXPECT_EQ(w65c02_p(&h.cpu), row.want_p);
    if (row.check_addr) {
        EXPECT_EQ(h.mem(row.check_addr), row.check_value);
    }
}

INSTANTIATE_TEST_SUITE_P(Results, W65C02OpcodeTest, testing::ValuesIn(opcode_cases),
                         [](const testing::TestParamInfo<OpcodeCase>& case_info) {
                             return case_info.param.name;
                         });

// The extra decimal cycle follows the D flag, not whether decimal arithmetic is switched on.
TEST(W65C02OpcodeTest, DecimalCycleFollowsDFlagEvenWithBcdDisabled)
{
    W65C02Harness h(true);
    h.load(0x0400, {0xE9, 0x01});
    h.reset_to(0x0400);
    w65c02_set_p(&h.cpu, 0x39);
    EXPECT_EQ(h.run_instruction(), "F0400 R0401 R0402 F0402");
}

}  // namespace
