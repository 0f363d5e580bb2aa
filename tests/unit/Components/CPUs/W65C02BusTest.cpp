// Bus cycles of the 65C02 core where they differ from the NMOS core, and the cycles of every opcode.
#include "W65C02Harness.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

struct BusCase
{
    const char* name;                                // what the row shows
    std::vector<uint8_t> code;                       // loaded at 0x0400
    uint8_t x, y, p;                                 // registers before the fetch
    std::vector<std::pair<uint16_t, uint8_t>> data;  // other memory
    const char* trace;                               // fetch, each cycle, the next fetch
};

constexpr uint8_t a_value = 0x55;  // A for every row; stores show it
constexpr uint8_t dec = 0x08;      // the D flag

// clang-format off
const BusCase bus_cases[] = {
    {"AbsoluteXSamePage", {0xBD, 0xF0, 0x12}, 0x0F, 0, 0, {}, "F0400 R0401 R0402 R12FF F0403"},
    {"AbsoluteXCrossingRereadsLastOperand", {0xBD, 0xF0, 0x12}, 0x10, 0, 0, {},
     "F0400 R0401 R0402 R0402 R1300 F0403"},
    {"AbsoluteYCrossingRereadsLastOperand", {0xB9, 0xFF, 0x12}, 0, 0x01, 0, {},
     "F0400 R0401 R0402 R0402 R1300 F0403"},
    {"IndirectYSamePage", {0xB1, 0x80}, 0, 1, 0, {{0x80, 0xF0}, {0x81, 0x12}}, "F0400 R0401 R0080 R0081 R12F1 F0402"},
    {"IndirectYCrossingRereadsPointerHigh", {0xB1, 0x80}, 0, 0x10, 0, {{0x80, 0xF0}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 R0081 R1300 F0402"},
    {"StoreIndirectYRereadsPointerHigh", {0x91, 0x80}, 0, 1, 0, {{0x80, 0xF0}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 R0081 W12F1=55 F0402"},
    {"StoreAbsoluteXAlwaysFixesUp", {0x9D, 0xF0, 0x12}, 1, 0, 0, {}, "F0400 R0401 R0402 R12F1 W12F1=55 F0403"},
    {"ZeroPageIndirect", {0xB2, 0xFF}, 0, 0, 0, {{0xFF, 0x34}, {0x00, 0x12}}, "F0400 R0401 R00FF R0000 R1234 F0402"},
    {"StoreZeroPageIndirect", {0x92, 0x80}, 0, 0, 0, {{0x80, 0x34}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 W1234=55 F0402"},
    {"ReadModifyWriteReadsTwice", {0xE6, 0x80}, 0, 0, 0, {{0x80, 0x7F}}, "F0400 R0401 R0080 R0080 W0080=80 F0402"},
    {"ShiftAbsoluteXSamePageTakesSix", {0x1E, 0x10, 0x12}, 0x20, 0, 0, {{0x1230, 0x41}},
     "F0400 R0401 R0402 R1230 R1230 W1230=82 F0403"},
    {"ShiftAbsoluteXCrossingTakesSeven", {0x1E, 0xF0, 0x12}, 0x20, 0, 0, {{0x1310, 0x41}},
     "F0400 R0401 R0402 R0402 R1310 R1310 W1310=82 F0403"},
    {"IncAbsoluteXAlwaysTakesSeven", {0xFE, 0x10, 0x12}, 0x20, 0, 0, {{0x1230, 0x41}},
     "F0400 R0401 R0402 R1230 R1230 R1230 W1230=42 F0403"},
    {"TsbZeroPage", {0x04, 0x80}, 0, 0, 0, {{0x80, 0x0A}}, "F0400 R0401 R0080 R0080 W0080=5F F0402"},
    {"TrbAbsolute", {0x1C, 0x34, 0x12}, 0, 0, 0, {{0x1234, 0xFF}}, "F0400 R0401 R0402 R1234 R1234 W1234=AA F0403"},
    {"Rmb3", {0x37, 0x80}, 0, 0, 0, {{0x80, 0xFF}}, "F0400 R0401 R0080 R0080 W0080=F7 F0402"},
    {"Smb7", {0xF7, 0x80}, 0, 0, 0, {{0x80, 0x01}}, "F0400 R0401 R0080 R0080 W0080=81 F0402"},
    {"StzAbsoluteX", {0x9E, 0xF0, 0x12}, 0x20, 0, 0, {}, "F0400 R0401 R0402 R1210 W1310=00 F0403"},
    {"StzZeroPageX", {0x74, 0x80}, 0x01, 0, 0, {}, "F0400 R0401 R0080 W0081=00 F0402"},
    {"JmpIndirectWithoutPageBug", {0x6C, 0xFF, 0x10}, 0, 0, 0, {{0x10FF, 0x34}, {0x1000, 0x56}, {0x1100, 0x12}},
     "F0400 R0401 R0402 R0402 R10FF R1100 F1234"},
    {"JmpAbsoluteXIndirect", {0x7C, 0xFF, 0x10}, 0x05, 0, 0, {{0x1104, 0x34}, {0x1105, 0x12}},
     "F0400 R0401 R0402 R0402 R1104 R1105 F1234"},
    {"Bra", {0x80, 0x10}, 0, 0, 0, {}, "F0400 R0401 R0402 F0412"},
    {"BraBackAcrossPage", {0x80, 0x80}, 0, 0, 0, {}, "F0400 R0401 R0402 R0482 F0382"},
    {"BbrNotTaken", {0x3F, 0x80, 0x10}, 0, 0, 0, {{0x80, 0x08}}, "F0400 R0401 R0080 R0080 R0402 F0403"},
    {"BbsTakenOffsetFromNextInstruction", {0xBF, 0x80, 0x10}, 0, 0, 0, {{0x80, 0x08}},
     "F0400 R0401 R0080 R0080 R0402 R0403 F0413"},
    {"BbsTakenBackAcrossPage", {0xBF, 0x80, 0xF0}, 0, 0, 0, {{0x80, 0x08}},
     "F0400 R0401 R0080 R0080 R0402 R0403 R0403 F03F3"},
    {"BbrTakenOnClearBit", {0x0F, 0x80, 0x02}, 0, 0, 0, {{0x80, 0xFE}}, "F0400 R0401 R0080 R0080 R0402 R0403 F0405"},
    {"AdcBinary", {0x69, 0x01}, 0, 0, 0, {}, "F0400 R0401 F0402"},
    {"AdcDecimalTakesOneMore", {0x69, 0x01}, 0, 0, dec, {}, "F0400 R0401 R0402 F0402"},
    {"SbcDecimalAbsoluteXCrossing", {0xFD, 0xF0, 0x12}, 0x10, 0, dec, {},
     "F0400 R0401 R0402 R0402 R1300 R0403 F0403"},
    {"PhxPushesX", {0xDA}, 0x3C, 0, 0, {}, "F0400 R0401 W01FD=3C F0401"},
    {"Ply", {0x7A}, 0, 0, 0, {}, "F0400 R0401 R01FD R01FE F0401"},
    {"OneByteNopIsOneFetch", {0x03}, 0, 0, 0, {}, "F0400 F0401"},
    {"TwoByteNop", {0x02, 0xEA}, 0, 0, 0, {}, "F0400 R0401 F0402"},
    {"NopZeroPageX", {0xD4, 0x80}, 0x01, 0, 0, {}, "F0400 R0401 R0080 R0081 F0402"},
    {"NopAbsoluteIgnoresX", {0xFC, 0xF0, 0x12}, 0x20, 0, 0, {}, "F0400 R0401 R0402 R12F0 F0403"},
    {"Nop5CWaitsThreeCycles", {0x5C, 0x34, 0x12}, 0, 0, 0, {},
     "F0400 R0401 R0402 RFF34 RFFFF RFFFF RFFFF RFFFF F0403"},
    {"BrkPushesDAndClearsIt", {0x00, 0xFF}, 0, 0, dec | 0x01, {{0xFFFE, 0x00}, {0xFFFF, 0x30}},
     "F0400 R0401 W01FD=04 W01FC=02 W01FB=39 RFFFE RFFFF F3000"},
};
// clang-format on

class W65C02BusTest : public testing::TestWithParam<BusCase>
{
};

TEST_P(W65C02BusTest, RunsCyclesInOrder)
{
    const BusCase& row = GetParam();
    W65C02Harness h;
    h.load_and_reset(row.code, row.data);
    h.set_registers(a_value, row.x, row.y, row.p | cpu65_bf | cpu65_xf);
    EXPECT_EQ(h.run_instruction(), row.trace);
}

INSTANTIATE_TEST_SUITE_P(AddressingModes, W65C02BusTest, testing::ValuesIn(bus_cases),
                         [](const testing::TestParamInfo<BusCase>& case_info) {
                             return case_info.param.name;
                         });

// Cycles per opcode with D clear and no page crossing: one table that catches a shape given to the
// wrong slot. WAI and STP (0) have their own tests.
// clang-format off
const int cycles_per_opcode[256] = {
//  0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F
    7, 6, 2, 1, 5, 3, 5, 5, 3, 2, 2, 1, 6, 4, 6, 6,  // 0
    3, 5, 5, 1, 5, 4, 6, 5, 2, 4, 2, 1, 6, 4, 6, 6,  // 1
    6, 6, 2, 1, 3, 3, 5, 5, 4, 2, 2, 1, 4, 4, 6, 6,  // 2
    2, 5, 5, 1, 4, 4, 6, 5, 2, 4, 2, 1, 4, 4, 6, 6,  // 3
    6, 6, 2, 1, 3, 3, 5, 5, 3, 2, 2, 1, 3, 4, 6, 6,  // 4
    3, 5, 5, 1, 4, 4, 6, 5, 2, 4, 3, 1, 8, 4, 6, 6,  // 5
    6, 6, 2, 1, 3, 3, 5, 5, 4, 2, 2, 1, 6, 4, 6, 6,  // 6
    2, 5, 5, 1, 4, 4, 6, 5, 2, 4, 4, 1, 6, 4, 6, 6,  // 7
    3, 6, 2, 1, 3, 3, 3, 5, 2, 2, 2, 1, 4, 4, 4, 5,  // 8
    3, 6, 5, 1, 4, 4, 4, 5, 2, 5, 2, 1, 4, 5, 5, 5,  // 9
    2, 6, 2, 1, 3, 3, 3, 5, 2, 2, 2, 1, 4, 4, 4, 5,  // A
    2, 5, 5, 1, 4, 4, 4, 5, 2, 4, 2, 1, 4, 4, 4, 5,  // B
    2, 6, 2, 1, 3, 3, 5, 5, 2, 2, 2, 0, 4, 4, 6, 5,  // C
    3, 5, 5, 1, 4, 4, 6, 5, 2, 4, 3, 0, 4, 4, 7, 5,  // D
    2, 6, 2, 1, 3, 3, 5, 5, 2, 2, 2, 1, 4, 4, 6, 5,  // E
    2, 5, 5, 1, 4, 4, 6, 5, 2, 4, 4, 1, 4, 4, 7, 5,  // F
};
// clang-format on

TEST(W65C02BusTest, EveryOpcodeTakesItsCycles)
{
    for (int op = 0; op < 256; op++) {
        if (cycles_per_opcode[op] == 0) {
            continue;
        }
        W65C02Harness h;
        // Operands 0x00 0x20: every pointer and address lands in RAM and no index crosses a page.
        // With flags all clear BPL, BVC, BCC, BNE and BRA are taken (3), and BBR n is taken (6) on
        // the zero byte at 0x00 while BBS n is not (5).
        h.load(0x0400, {static_cast<uint8_t>(op), 0x00, 0x20});
        h.reset_to(0x0400);
        w65c02_set_p(&h.cpu, 0x30);
        w65c02_set_s(&h.cpu, 0xF0);
        int ticks = 0;
        do {
            h.tick();
            ticks++;
        } while (!(h.pins & cpu65_pin_sync) && ticks < 10);
        EXPECT_EQ(ticks, cycles_per_opcode[op]) << "opcode " << std::hex << op;
    }
}

}  // namespace
