// Bus cycles of the 6502 core: every addressing mode's sequence, with its dummy reads and writes.
#include "M6502Harness.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

struct BusCase
{
    const char* name;                                // what the row shows
    std::vector<uint8_t> code;                       // loaded at 0x0400
    uint8_t x, y, s, p;                              // registers before the fetch
    std::vector<std::pair<uint16_t, uint8_t>> data;  // other memory
    const char* trace;                               // fetch, each cycle, the next fetch
};

constexpr uint8_t a_value = 0x55;  // A for every row; stores show it

// clang-format off
const BusCase bus_cases[] = {
    {"ImpliedReadsNextByte", {0xEA}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 F0401"},
    {"AccumulatorReadsNextByte", {0x0A}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 F0401"},
    {"Immediate", {0xA9, 0x42}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 F0402"},
    {"ZeroPage", {0xA5, 0x80}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 R0080 F0402"},
    {"ZeroPageXWrapsInPageZero", {0xB5, 0xFF}, 2, 0, 0xFD, 0x20, {}, "F0400 R0401 R00FF R0001 F0402"},
    {"ZeroPageY", {0xB6, 0x10}, 0, 3, 0xFD, 0x20, {}, "F0400 R0401 R0010 R0013 F0402"},
    {"Absolute", {0xAD, 0x34, 0x12}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 R0402 R1234 F0403"},
    {"AbsoluteXSamePage", {0xBD, 0xF0, 0x12}, 0x0F, 0, 0xFD, 0x20, {}, "F0400 R0401 R0402 R12FF F0403"},
    {"AbsoluteXCrossesPage", {0xBD, 0xF0, 0x12}, 0x10, 0, 0xFD, 0x20, {},
     "F0400 R0401 R0402 R1200 R1300 F0403"},
    {"AbsoluteYCrossesPage", {0xB9, 0xFF, 0x12}, 0, 0x01, 0xFD, 0x20, {},
     "F0400 R0401 R0402 R1200 R1300 F0403"},
    {"IndirectX", {0xA1, 0x80}, 4, 0, 0xFD, 0x20, {{0x84, 0x34}, {0x85, 0x12}},
     "F0400 R0401 R0080 R0084 R0085 R1234 F0402"},
    {"IndirectXPointerWraps", {0xA1, 0xFE}, 1, 0, 0xFD, 0x20, {{0xFF, 0x34}, {0x00, 0x12}},
     "F0400 R0401 R00FE R00FF R0000 R1234 F0402"},
    {"IndirectYSamePage", {0xB1, 0x80}, 0, 1, 0xFD, 0x20, {{0x80, 0xF0}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 R12F1 F0402"},
    {"IndirectYCrossesPage", {0xB1, 0x80}, 0, 0x10, 0xFD, 0x20, {{0x80, 0xF0}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 R1200 R1300 F0402"},
    {"StoreZeroPage", {0x85, 0x80}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 W0080=55 F0402"},
    {"StoreAbsoluteXAlwaysFixesUp", {0x9D, 0xF0, 0x12}, 1, 0, 0xFD, 0x20, {},
     "F0400 R0401 R0402 R12F1 W12F1=55 F0403"},
    {"StoreIndirectYAlwaysFixesUp", {0x91, 0x80}, 0, 1, 0xFD, 0x20, {{0x80, 0xF0}, {0x81, 0x12}},
     "F0400 R0401 R0080 R0081 R12F1 W12F1=55 F0402"},
    {"StoreIndirectX", {0x81, 0x80}, 4, 0, 0xFD, 0x20, {{0x84, 0x34}, {0x85, 0x12}},
     "F0400 R0401 R0080 R0084 R0085 W1234=55 F0402"},
    {"ReadModifyWriteZeroPageWritesOldValueFirst", {0xE6, 0x80}, 0, 0, 0xFD, 0x20, {{0x80, 0x7F}},
     "F0400 R0401 R0080 W0080=7F W0080=80 F0402"},
    {"ReadModifyWriteAbsoluteX", {0x1E, 0x10, 0x12}, 0x20, 0, 0xFD, 0x20, {{0x1230, 0x41}},
     "F0400 R0401 R0402 R1230 R1230 W1230=41 W1230=82 F0403"},
    {"ReadModifyWriteAbsoluteXCrossesPage", {0x1E, 0xF0, 0x12}, 0x20, 0, 0xFD, 0x20, {{0x1310, 0x41}},
     "F0400 R0401 R0402 R1210 R1310 W1310=41 W1310=82 F0403"},
    {"ReadModifyWriteIndirectY", {0xD3, 0x80}, 0, 1, 0xFD, 0x20, {{0x80, 0xF0}, {0x81, 0x12}, {0x12F1, 9}},
     "F0400 R0401 R0080 R0081 R12F1 R12F1 W12F1=09 W12F1=08 F0402"},
    {"ReadModifyWriteIndirectX", {0x03, 0x80}, 4, 0, 0xFD, 0x20, {{0x84, 0x34}, {0x85, 0x12}, {0x1234, 1}},
     "F0400 R0401 R0080 R0084 R0085 R1234 W1234=01 W1234=02 F0402"},
    {"NopAbsoluteXReadsAndCrosses", {0x1C, 0xF0, 0x12}, 0x10, 0, 0xFD, 0x20, {},
     "F0400 R0401 R0402 R1200 R1300 F0403"},
    {"NopZeroPageX", {0x14, 0x80}, 1, 0, 0xFD, 0x20, {}, "F0400 R0401 R0080 R0081 F0402"},
    {"LaxAbsoluteYSamePage", {0xBF, 0x00, 0x12}, 0, 1, 0xFD, 0x20, {}, "F0400 R0401 R0402 R1201 F0403"},
    {"SaxZeroPageY", {0x97, 0x80}, 0x0F, 2, 0xFD, 0x20, {}, "F0400 R0401 R0080 W0082=05 F0402"},
    {"BranchNotTaken", {0xD0, 0x10}, 0, 0, 0xFD, 0x22, {}, "F0400 R0401 F0402"},
    {"BranchTakenSamePage", {0xD0, 0x10}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 R0402 F0412"},
    {"BranchTakenBackAcrossPage", {0xD0, 0x80}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 R0402 R0482 F0382"},
    {"JmpAbsolute", {0x4C, 0x00, 0x20}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 R0402 F2000"},
    {"JmpIndirectKeepsPage", {0x6C, 0xFF, 0x10}, 0, 0, 0xFD, 0x20,
     {{0x10FF, 0x34}, {0x1000, 0x12}, {0x1100, 0x56}}, "F0400 R0401 R0402 R10FF R1000 F1234"},
    {"Jsr", {0x20, 0x00, 0x20}, 0, 0, 0xFD, 0x20, {},
     "F0400 R0401 R01FD W01FD=04 W01FC=02 R0402 F2000"},
    {"Rts", {0x60}, 0, 0, 0xFB, 0x20, {{0x1FC, 0x02}, {0x1FD, 0x20}},
     "F0400 R0401 R01FB R01FC R01FD R2002 F2003"},
    {"Rti", {0x40}, 0, 0, 0xFA, 0x20, {{0x1FB, 0xC3}, {0x1FC, 0x02}, {0x1FD, 0x20}},
     "F0400 R0401 R01FA R01FB R01FC R01FD F2002"},
    {"Pha", {0x48}, 0, 0, 0xFD, 0x20, {}, "F0400 R0401 W01FD=55 F0401"},
    {"PhpPushesBAndBit5", {0x08}, 0, 0, 0xFD, 0x01, {}, "F0400 R0401 W01FD=31 F0401"},
    {"Pla", {0x68}, 0, 0, 0xFC, 0x20, {}, "F0400 R0401 R01FC R01FD F0401"},
    {"BrkPushesPcPlusTwoAndB", {0x00, 0xFF}, 0, 0, 0xFD, 0x01, {{0xFFFE, 0x00}, {0xFFFF, 0x30}},
     "F0400 R0401 W01FD=04 W01FC=02 W01FB=31 RFFFE RFFFF F3000"},
};
// clang-format on

class M6502BusTest : public testing::TestWithParam<BusCase>
{
};

TEST_P(M6502BusTest, RunsCyclesInOrder)
{
    const BusCase& row = GetParam();
    M6502Harness h;
    h.load_and_reset(row.code, row.data);
    h.set_registers(a_value, row.x, row.y, row.p | cpu65_bf);
    m6502_set_s(&h.cpu, row.s);
    EXPECT_EQ(h.run_instruction(), row.trace);
}

INSTANTIATE_TEST_SUITE_P(AddressingModes, M6502BusTest, testing::ValuesIn(bus_cases),
                         [](const testing::TestParamInfo<BusCase>& case_info) {
                             return case_info.param.name;
                         });

TEST(M6502BusTest, RtiDropsBAndBit5FromStackAndSetsB)
{
    M6502Harness h;
    h.load(0x0400, {0x40});
    h.load(0x01FB, {0xEF, 0x02, 0x20});
    h.reset_to(0x0400);
    m6502_set_s(&h.cpu, 0xFA);
    h.run_instruction();
    EXPECT_EQ(m6502_p(&h.cpu), 0xDF);
    EXPECT_EQ(m6502_s(&h.cpu), 0xFD);
}

TEST(M6502BusTest, JamRepeatsForEverAtFfff)
{
    M6502Harness h;
    h.load(0x0400, {0x02});
    h.reset_to(0x0400);
    h.tick();
    EXPECT_EQ(h.cycle(), "R0401");
    for (int i = 0; i < 20; i++) {
        h.pins = m6502_tick(&h.cpu, h.pins);
        EXPECT_EQ(h.cycle(), "RFFFF");
        EXPECT_EQ(cpu65_get_data(h.pins), 0xFF);
    }
    // A reset on the pins doesn't help: only a fetch looks at RES.
    h.set_input(cpu65_pin_res, true);
    h.tick();
    EXPECT_EQ(h.cycle(), "RFFFF");
}

}  // namespace
