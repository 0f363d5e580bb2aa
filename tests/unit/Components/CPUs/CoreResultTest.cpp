// Results the self-checking programs leave out: the 6502's undocumented opcodes, its decimal flags
// over every operand (against a model of the NMOS ALU), the 65C02's decimal quirks, and D switched
// off. Then the programs themselves on both cores.
#include "CpuHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

struct OpcodeCase
{
    const char* name;                                // what the row shows
    const char* core;                                // N 6502, C 65C02; b: decimal arithmetic switched off
    std::vector<uint8_t> code;                       // loaded at 0x0400
    uint8_t a, x, y, s, p;                           // registers before
    std::vector<std::pair<uint16_t, uint8_t>> data;  // memory before
    const char* want;                                // A X Y S P after
    uint16_t check_addr;                             // a byte to check after, 0 for none
    uint8_t check_value;                             // what it must hold
};

// clang-format off
const OpcodeCase opcode_cases[] = {
    {"AncSetsCFromN", "N", {0x0B, 0x81}, 0xF0, 0x00, 0x00, 0xFD, 0x30, {}, "80 00 00 FD B1", 0, 0},
    {"AncClearsC", "N", {0x2B, 0x0F}, 0xF0, 0x00, 0x00, 0xFD, 0x31, {}, "00 00 00 FD 32", 0, 0},
    {"AsrAndsThenShifts", "N", {0x4B, 0xFF}, 0x03, 0x00, 0x00, 0xFD, 0x30, {}, "01 00 00 FD 31", 0, 0},
    {"ArrBinaryCFromBit6", "N", {0x6B, 0xFF}, 0xFF, 0x00, 0x00, 0xFD, 0x31, {}, "FF 00 00 FD B1", 0, 0},
    {"ArrBinaryVFromBits6And5", "N", {0x6B, 0xFF}, 0x40, 0x00, 0x00, 0xFD, 0x30, {}, "20 00 00 FD 70", 0, 0},
    {"ArrDecimalFixesBothDigits", "N", {0x6B, 0x57}, 0xFF, 0x00, 0x00, 0xFD, 0x38, {}, "81 00 00 FD 79", 0, 0},
    {"ArrDecimalOffIsBinary", "Nb", {0x6B, 0x57}, 0xFF, 0x00, 0x00, 0xFD, 0x38, {}, "2B 00 00 FD 78", 0, 0},
    {"Ane", "N", {0x8B, 0xFF}, 0x11, 0xF3, 0x00, 0xFD, 0x30, {}, "F3 F3 00 FD B0", 0, 0},
    {"LxaIsNotLaxImmediate", "N", {0xAB, 0x5A}, 0x00, 0x00, 0x00, 0xFD, 0x30, {}, "4A 4A 00 FD 30", 0, 0},
    {"SbxKeepsAAndV", "N", {0xCB, 0x10}, 0xF0, 0x3C, 0x00, 0xFD, 0x70, {}, "F0 20 00 FD 71", 0, 0},
    {"SbxBorrows", "N", {0xCB, 0x02}, 0xFF, 0x01, 0x00, 0xFD, 0x31, {}, "FF FF 00 FD B0", 0, 0},
    {"SbcEb", "N", {0xEB, 0x01}, 0x10, 0x00, 0x00, 0xFD, 0x31, {}, "0F 00 00 FD 31", 0, 0},
    {"Slo", "N", {0x07, 0x80}, 0x10, 0x00, 0x00, 0xFD, 0x30, {{0x80, 0x81}}, "12 00 00 FD 31", 0x80, 0x02},
    {"Rla", "N", {0x27, 0x80}, 0x0F, 0x00, 0x00, 0xFD, 0x31, {{0x80, 0x81}}, "03 00 00 FD 31", 0x80, 0x03},
    {"Sre", "N", {0x47, 0x80}, 0xFF, 0x00, 0x00, 0xFD, 0x30, {{0x80, 0x03}}, "FE 00 00 FD B1", 0x80, 0x01},
    {"Rra", "N", {0x67, 0x80}, 0x10, 0x00, 0x00, 0xFD, 0x31, {{0x80, 0x02}}, "91 00 00 FD B0", 0x80, 0x81},
    {"Sax", "N", {0x87, 0x80}, 0xF0, 0x3C, 0x00, 0xFD, 0x30, {}, "F0 3C 00 FD 30", 0x80, 0x30},
    {"Lax", "N", {0xA7, 0x80}, 0x00, 0x00, 0x00, 0xFD, 0x30, {{0x80, 0x80}}, "80 80 00 FD B0", 0, 0},
    {"Dcp", "N", {0xC7, 0x80}, 0x0F, 0x00, 0x00, 0xFD, 0x30, {{0x80, 0x10}}, "0F 00 00 FD 33", 0x80, 0x0F},
    {"Isb", "N", {0xE7, 0x80}, 0x20, 0x00, 0x00, 0xFD, 0x31, {{0x80, 0x0F}}, "10 00 00 FD 31", 0x80, 0x10},
    {"ShaAbsoluteYUsesHighByteOfSum", "N", {0x9F, 0xF0, 0x12}, 0xFF, 0xFF, 0x10, 0xFD, 0x30, {}, "FF FF 10 FD 30", 0x1300, 0x14},
    {"ShaIndirectY", "N", {0x93, 0x80}, 0x0F, 0xFF, 0x05, 0xFD, 0x30, {{0x80, 0x00}, {0x81, 0x12}}, "0F FF 05 FD 30", 0x1205, 0x03},
    {"ShsSetsS", "N", {0x9B, 0x00, 0x12}, 0xF7, 0x7F, 0x01, 0xFD, 0x30, {}, "F7 7F 01 77 30", 0x1201, 0x13},
    {"Shy", "N", {0x9C, 0x00, 0x12}, 0x00, 0x01, 0xFF, 0xFD, 0x30, {}, "00 01 FF FD 30", 0x1201, 0x13},
    {"Shx", "N", {0x9E, 0x00, 0x12}, 0x00, 0x03, 0x01, 0xFD, 0x30, {}, "00 03 01 FD 30", 0x1201, 0x03},
    {"Las", "N", {0xBB, 0x00, 0x12}, 0x00, 0x00, 0x01, 0x3F, 0x30, {{0x1201, 0xF0}}, "30 30 01 30 30", 0, 0},
    {"PlpDropsBit5AndSetsB", "N", {0x28}, 0x00, 0x00, 0x00, 0xFC, 0x30, {{0x1FD, 0xEF}}, "00 00 00 FD DF", 0, 0},
    {"DecimalAdcNAndZNotFromBinarySum", "C", {0x69, 0x50}, 0x50, 0x00, 0x00, 0xFD, 0x38, {}, "00 00 00 FD 7B", 0, 0},
    {"DecimalOffAdcIsBinary", "Cb", {0x69, 0x01}, 0x99, 0x00, 0x00, 0xFD, 0x38, {}, "9A 00 00 FD B8", 0, 0},
    {"BrkClearsD", "C", {0x00, 0x00}, 0x00, 0x00, 0x00, 0xFD, 0x3B, {}, "00 00 00 FA 37", 0x1FB, 0x3B},
};
// clang-format on

template <class Harness> void expect_result(const OpcodeCase& row)
{
    Harness h(row.core[1] == 'b');
    h.load_and_reset(row.code, row.data);
    Harness::core::set(&h.cpu, row.a, row.x, row.y, row.s, row.p);
    h.run_instruction();
    EXPECT_EQ(h.registers(), row.want);
    if (row.check_addr) {
        EXPECT_EQ(h.mem(row.check_addr), row.check_value);
    }
}

class CoreOpcodeTest : public testing::TestWithParam<OpcodeCase>
{
};

TEST_P(CoreOpcodeTest, ComputesResult)
{
    if (*GetParam().core == 'N')
        expect_result<M6502Harness>(GetParam());
    else
        expect_result<W65C02Harness>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Results, CoreOpcodeTest, testing::ValuesIn(opcode_cases),
                         [](const testing::TestParamInfo<OpcodeCase>& row) {
                             return std::string(row.param.name) + "_" + row.param.core;
                         });

/// A and P after ADC (or SBC) on the NMOS ALU; I, D, B and bit 5 of `p` stay.
std::pair<uint8_t, uint8_t> model(bool sbc, uint8_t a, uint8_t m, uint8_t p, bool decimal)
{
    const int c = p & 1;
    const int binary = sbc ? a - m - (1 - c) : a + m + c;
    uint8_t result = static_cast<uint8_t>(binary);
    bool carry = sbc ? binary >= 0 : binary > 255;
    bool negative = result & 0x80;
    const bool same_signs = ((a ^ m) & 0x80) == 0;
    bool overflow = (same_signs != sbc) && ((result ^ a) & 0x80);
    if (decimal && !sbc) {
        int low = (a & 0x0F) + (m & 0x0F) + c;
        low = low > 9 ? low + 6 : low;
        int high = (a >> 4) + (m >> 4) + (low > 15);
        // N and V come from the high digit before its correction, Z from the binary sum.
        negative = (high << 4) & 0x80;
        overflow = same_signs && (((high << 4) ^ a) & 0x80);
        carry = high > 9;
        result = static_cast<uint8_t>(((carry ? high + 6 : high) << 4) + (low & 0x0F));
    } else if (decimal) {
        int low = (a & 0x0F) - (m & 0x0F) - (1 - c);
        const int low_borrow = low < 0;
        int high = (a >> 4) - (m >> 4) - low_borrow;
        result =
            static_cast<uint8_t>(((high < 0 ? high - 6 : high) << 4) | ((low_borrow ? low - 6 : low) & 0x0F));
    }
    const bool zero = (binary & 0xFF) == 0;
    return {result,
            static_cast<uint8_t>((p & 0x3C) | (negative << 7) | (overflow << 6) | (zero << 1) | carry)};
}

// Hand-worked cases pin the model down: {ADC 0 or SBC 1, a, m, p, a after, p after}.
const int spot_cases[][6] = {
    {0, 0x99, 0x01, 0x38, 0x00, 0xB9},  // Z from the binary sum 9A; N from the high digit 10
    {0, 0x58, 0x46, 0x39, 0x05, 0xF9},  // 58 + 46 + 1 = 105; N and V from the high digit 10
    {0, 0x0F, 0x0F, 0x38, 0x14, 0x38},  // invalid digits: F + F = 1E, + 6 = 24
    {1, 0x00, 0x01, 0x39, 0x99, 0xB8},  // 0 - 1 = 99 with borrow
    {1, 0x40, 0x13, 0x39, 0x27, 0x39},  //
    {0, 0x7F, 0x01, 0x30, 0x80, 0xF0},  // binary overflow
    {1, 0x80, 0x01, 0x31, 0x7F, 0x71},  //
};

TEST(CoreArithmeticTest, AdcAndSbcMatchTheModelOverAllOperands)
{
    for (const auto& row : spot_cases) {
        const auto [a, p] =
            model(row[0], uint8_t(row[1]), uint8_t(row[2]), uint8_t(row[3]), row[3] & cpu65_df);
        EXPECT_EQ(a, row[4]) << std::hex << row[1] << " " << row[2];
        EXPECT_EQ(p, row[5]) << std::hex << row[1] << " " << row[2];
    }
    // Every A, operand and carry, binary and decimal, with decimal arithmetic working and switched
    // off. N, V and Z start set on half the cases so that clearing them is checked too.
    int failures = 0;
    for (bool bcd_disabled : {false, true}) {
        M6502Harness h(bcd_disabled);
        h.reset_to(0x0400);
        for (int n = 0; n < 4 * 256 * 256 * 2 && failures < 10; n++) {
            const bool sbc = n & 1, d = n & 2, c = n & 4;
            const int m = (n >> 3) & 0xFF, a = n >> 11;
            const uint8_t p =
                static_cast<uint8_t>(0x30 | (d ? cpu65_df : 0) | c | (((a ^ m) & 1) ? 0xC2 : 0));
            h.load(0x0400, {uint8_t(sbc ? 0xE9 : 0x69), uint8_t(m)});
            h.start_at(0x0400);
            M6502Core::set(&h.cpu, uint8_t(a), 0, 0, 0xFD, p);
            h.tick();
            h.tick();
            const auto want = model(sbc, uint8_t(a), uint8_t(m), p, d && !bcd_disabled);
            const std::pair<uint8_t, uint8_t> got{M6502Core::regs(&h.cpu, 0), M6502Core::regs(&h.cpu, 4)};
            if (got != want && ++failures) {
                ADD_FAILURE() << (sbc ? "SBC" : "ADC") << std::hex << " a=" << a << " m=" << m
                              << " p=" << int(p) << " bcd_disabled=" << bcd_disabled << ": got "
                              << int(got.first) << " " << int(got.second) << ", want " << int(want.first)
                              << " " << int(want.second);
            }
        }
    }
}

// The programs trap in a self-loop: at the success address, or where a check failed.
template <class Harness> void expect_program(const char* image, uint16_t success)
{
    Harness h;
    ASSERT_TRUE(h.load_image(image)) << "can't read " << testdata_dir() << image;
    h.reset_to(0x0400);  // the image's own reset vector points at a trap
    EXPECT_EQ(h.run_to_trap(200'000'000), success) << Harness::core::name << " " << image;
}

// Three tests, so that they can run side by side.
TEST(CoreProgramTest, NmosPassesTheFunctionalTest)
{
    expect_program<M6502Harness>("6502_functional_test.bin", 0x3469);
}

TEST(CoreProgramTest, CmosPassesTheFunctionalTest)
{
    expect_program<W65C02Harness>("6502_functional_test.bin", 0x3469);
}

TEST(CoreProgramTest, CmosPassesTheExtendedOpcodesTest)
{
    expect_program<W65C02Harness>("65C02_extended_opcodes_test.bin", 0x24F1);
}

}  // namespace
