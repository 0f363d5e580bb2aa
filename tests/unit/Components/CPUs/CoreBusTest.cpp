// Bus cycles of both cores: the dummy reads and writes, RDY stalls, the reset sequence and the
// length of every opcode, which the self-checking programs cannot see.
#include "CpuHarness.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

struct BusCase
{
    const char* name;                                // what the row shows
    std::vector<uint8_t> code;                       // loaded at 0x0400
    uint8_t x, y, s, p;                              // registers before the fetch; A is 55
    std::vector<std::pair<uint16_t, uint8_t>> data;  // other memory
    const char* nmos;                                // fetch, each cycle, the next fetch; null: not run
    const char* cmos;                                // the same on the 65C02; "=" as on the 6502
};

constexpr uint8_t dec = 0x08;  // the D flag
const std::vector<std::pair<uint16_t, uint8_t>> ptr12f0 = {{0x80, 0xF0}, {0x81, 0x12}};

// clang-format off
const BusCase bus_cases[] = {
    {"ImpliedReadsNextByte", {0xEA}, 0, 0, 0xFD, 0, {}, "F0400 R0401 F0401", nullptr},
    {"ZeroPageXReadsBaseAndWraps", {0xB5, 0xFF}, 2, 0, 0xFD, 0, {}, "F0400 R0401 R00FF R0001 F0402", nullptr},
    {"AbsoluteXSamePage", {0xBD, 0xF0, 0x12}, 0x0F, 0, 0xFD, 0, {}, "F0400 R0401 R0402 R12FF F0403", "="},
    {"AbsoluteXCrossing", {0xBD, 0xF0, 0x12}, 0x10, 0, 0xFD, 0, {},
     "F0400 R0401 R0402 R1200 R1300 F0403", "F0400 R0401 R0402 R0402 R1300 F0403"},
    {"IndirectXPointerWraps", {0xA1, 0xFE}, 1, 0, 0xFD, 0, {{0xFF, 0x34}, {0x00, 0x12}},
     "F0400 R0401 R00FE R00FF R0000 R1234 F0402", nullptr},
    {"IndirectYSamePage", {0xB1, 0x80}, 0, 1, 0xFD, 0, ptr12f0, "F0400 R0401 R0080 R0081 R12F1 F0402", "="},
    {"IndirectYCrossing", {0xB1, 0x80}, 0, 0x10, 0xFD, 0, ptr12f0,
     "F0400 R0401 R0080 R0081 R1200 R1300 F0402", "F0400 R0401 R0080 R0081 R0081 R1300 F0402"},
    {"StoreAbsoluteXAlwaysFixesUp", {0x9D, 0xF0, 0x12}, 1, 0, 0xFD, 0, {},
     "F0400 R0401 R0402 R12F1 W12F1=55 F0403", "="},
    {"StoreIndirectYAlwaysFixesUp", {0x91, 0x80}, 0, 1, 0xFD, 0, ptr12f0,
     "F0400 R0401 R0080 R0081 R12F1 W12F1=55 F0402", "F0400 R0401 R0080 R0081 R0081 W12F1=55 F0402"},
    {"ReadModifyWrite", {0xE6, 0x80}, 0, 0, 0xFD, 0, {{0x80, 0x7F}},
     "F0400 R0401 R0080 W0080=7F W0080=80 F0402", "F0400 R0401 R0080 R0080 W0080=80 F0402"},
    {"ShiftAbsoluteXSamePage", {0x1E, 0x10, 0x12}, 0x20, 0, 0xFD, 0, {{0x1230, 0x41}},
     "F0400 R0401 R0402 R1230 R1230 W1230=41 W1230=82 F0403", "F0400 R0401 R0402 R1230 R1230 W1230=82 F0403"},
    {"ShiftAbsoluteXCrossing", {0x1E, 0xF0, 0x12}, 0x20, 0, 0xFD, 0, {{0x1310, 0x41}},
     "F0400 R0401 R0402 R1210 R1310 W1310=41 W1310=82 F0403",
     "F0400 R0401 R0402 R0402 R1310 R1310 W1310=82 F0403"},
    {"IncAbsoluteXAlwaysTakesSeven", {0xFE, 0x10, 0x12}, 0x20, 0, 0xFD, 0, {{0x1230, 0x41}}, nullptr,
     "F0400 R0401 R0402 R1230 R1230 R1230 W1230=42 F0403"},
    {"IllegalReadModifyWriteIndirectY", {0xD3, 0x80}, 0, 1, 0xFD, 0, {{0x80, 0xF0}, {0x81, 0x12}, {0x12F1, 9}},
     "F0400 R0401 R0080 R0081 R12F1 R12F1 W12F1=09 W12F1=08 F0402", nullptr},
    {"SaxZeroPageY", {0x97, 0x80}, 0x0F, 2, 0xFD, 0, {}, "F0400 R0401 R0080 W0082=05 F0402", nullptr},
    {"StzAbsoluteX", {0x9E, 0xF0, 0x12}, 0x20, 0, 0xFD, 0, {}, nullptr, "F0400 R0401 R0402 R1210 W1310=00 F0403"},
    {"BranchTakenBackAcrossPage", {0xD0, 0x80}, 0, 0, 0xFD, 0, {}, "F0400 R0401 R0402 R0482 F0382", nullptr},
    {"BraBackAcrossPage", {0x80, 0x80}, 0, 0, 0xFD, 0, {}, nullptr, "F0400 R0401 R0402 R0482 F0382"},
    {"BbsTakenBackAcrossPage", {0xBF, 0x80, 0xF0}, 0, 0, 0xFD, 0, {{0x80, 0x08}}, nullptr,
     "F0400 R0401 R0080 R0080 R0402 R0403 R0403 F03F3"},
    {"JmpIndirect", {0x6C, 0xFF, 0x10}, 0, 0, 0xFD, 0, {{0x10FF, 0x34}, {0x1000, 0x12}, {0x1100, 0x56}},
     "F0400 R0401 R0402 R10FF R1000 F1234", "F0400 R0401 R0402 R0402 R10FF R1100 F5634"},
    {"JmpAbsoluteXIndirect", {0x7C, 0xFF, 0x10}, 0x05, 0, 0xFD, 0, {{0x1104, 0x34}, {0x1105, 0x12}}, nullptr,
     "F0400 R0401 R0402 R0402 R1104 R1105 F1234"},
    {"Jsr", {0x20, 0x00, 0x20}, 0, 0, 0xFD, 0, {}, "F0400 R0401 R01FD W01FD=04 W01FC=02 R0402 F2000", nullptr},
    {"Rts", {0x60}, 0, 0, 0xFB, 0, {{0x1FC, 0x02}, {0x1FD, 0x20}}, "F0400 R0401 R01FB R01FC R01FD R2002 F2003",
     nullptr},
    {"Rti", {0x40}, 0, 0, 0xFA, 0, {{0x1FB, 0xC3}, {0x1FC, 0x02}, {0x1FD, 0x20}},
     "F0400 R0401 R01FA R01FB R01FC R01FD F2002", nullptr},
    {"PhpPushesBAndBit5", {0x08}, 0, 0, 0xFD, 0x01, {}, "F0400 R0401 W01FD=31 F0401", nullptr},
    {"Pla", {0x68}, 0, 0, 0xFC, 0, {}, "F0400 R0401 R01FC R01FD F0401", nullptr},
    {"BrkPushesPcPlusTwoAndB", {0x00, 0xFF}, 0, 0, 0xFD, dec | 0x01, {{0xFFFE, 0x00}, {0xFFFF, 0x30}},
     "F0400 R0401 W01FD=04 W01FC=02 W01FB=39 RFFFE RFFFF F3000", "="},
    {"DecimalAdcTakesOneMore", {0x69, 0x01}, 0, 0, 0xFD, dec, {}, "F0400 R0401 F0402", "F0400 R0401 R0402 F0402"},
    {"DecimalSbcAbsoluteXCrossing", {0xFD, 0xF0, 0x12}, 0x10, 0, 0xFD, dec, {}, nullptr,
     "F0400 R0401 R0402 R0402 R1300 R0403 F0403"},
    {"NopAbsoluteIgnoresX", {0xFC, 0xF0, 0x12}, 0x20, 0, 0xFD, 0, {}, nullptr, "F0400 R0401 R0402 R12F0 F0403"},
    {"Nop5CWaitsThreeCycles", {0x5C, 0x34, 0x12}, 0, 0, 0xFD, 0, {}, nullptr,
     "F0400 R0401 R0402 RFF34 RFFFF RFFFF RFFFF RFFFF F0403"},
};
// clang-format on

template <class Harness> std::string trace_of(const BusCase& row, bool bcd_disabled = false)
{
    Harness h(bcd_disabled);
    h.load_and_reset(row.code, row.data);
    Harness::core::set(&h.cpu, 0x55, row.x, row.y, row.s, row.p | cpu65_bf | cpu65_xf);
    return h.run_instruction();
}

class CoreBusTest : public testing::TestWithParam<BusCase>
{
};

TEST_P(CoreBusTest, RunsCyclesInOrder)
{
    const BusCase& row = GetParam();
    if (row.nmos != nullptr) {
        EXPECT_EQ(trace_of<M6502Harness>(row), row.nmos) << "6502";
    }
    if (row.cmos != nullptr) {
        EXPECT_EQ(trace_of<W65C02Harness>(row), std::string(row.cmos) == "=" ? row.nmos : row.cmos)
            << "65C02";
    }
}

INSTANTIATE_TEST_SUITE_P(AddressingModes, CoreBusTest, testing::ValuesIn(bus_cases),
                         [](const testing::TestParamInfo<BusCase>& row) { return row.param.name; });

// The extra decimal cycle follows the D flag, not whether decimal arithmetic is switched on.
TEST(CoreBusTest, DecimalCycleFollowsDFlagEvenWithBcdDisabled)
{
    EXPECT_EQ(trace_of<W65C02Harness>({"", {0xE9, 0x01}, 0, 0, 0xFD, 0x39, {}, nullptr, nullptr}, true),
              "F0400 R0401 R0402 F0402");
}

// Cycles per opcode with D clear and no page crossing: one table per core that catches a shape given
// to the wrong slot. 0: JAM on the 6502, which never fetches again; WAI and STP on the 65C02.
// clang-format off
const int nmos_cycles[256] = {
//  0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F
    7, 6, 0, 8, 3, 3, 5, 5, 3, 2, 2, 2, 4, 4, 6, 6,  // 0
    3, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // 1
    6, 6, 0, 8, 3, 3, 5, 5, 4, 2, 2, 2, 4, 4, 6, 6,  // 2
    2, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // 3
    6, 6, 0, 8, 3, 3, 5, 5, 3, 2, 2, 2, 3, 4, 6, 6,  // 4
    3, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // 5
    6, 6, 0, 8, 3, 3, 5, 5, 4, 2, 2, 2, 5, 4, 6, 6,  // 6
    2, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // 7
    2, 6, 2, 6, 3, 3, 3, 3, 2, 2, 2, 2, 4, 4, 4, 4,  // 8
    3, 6, 0, 6, 4, 4, 4, 4, 2, 5, 2, 5, 5, 5, 5, 5,  // 9
    2, 6, 2, 6, 3, 3, 3, 3, 2, 2, 2, 2, 4, 4, 4, 4,  // A
    2, 5, 0, 5, 4, 4, 4, 4, 2, 4, 2, 4, 4, 4, 4, 4,  // B
    2, 6, 2, 8, 3, 3, 5, 5, 2, 2, 2, 2, 4, 4, 6, 6,  // C
    3, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // D
    2, 6, 2, 8, 3, 3, 5, 5, 2, 2, 2, 2, 4, 4, 6, 6,  // E
    2, 5, 0, 8, 4, 4, 6, 6, 2, 4, 2, 7, 4, 4, 7, 7,  // F
};
const int cmos_cycles[256] = {
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

template <class Harness> void expect_cycles(const int (&table)[256])
{
    for (int op = 0; op < 256; op++) {
        if (table[op] == 0)
            continue;
        Harness h;
        // Operands 00 20: every pointer and address lands in RAM and no index crosses a page. With the
        // flags clear BPL, BVC, BCC, BNE and BRA are taken (3), and BBR n is taken (6) on the zero byte
        // at 00 while BBS n is not (5).
        h.load(0x0400, {static_cast<uint8_t>(op), 0x00, 0x20});
        h.reset_to(0x0400);
        Harness::core::set(&h.cpu, 0, 0, 0, 0xF0, 0x30);
        int ticks = 0;
        do {
            h.tick();
            ticks++;
        } while (!(h.pins & cpu65_pin_sync) && ticks < 10);
        EXPECT_EQ(ticks, table[op]) << Harness::core::name << " opcode " << std::hex << op;
    }
}

TEST(CoreBusTest, EveryOpcodeTakesItsCycles)
{
    expect_cycles<M6502Harness>(nmos_cycles);
    expect_cycles<W65C02Harness>(cmos_cycles);
}

template <class Harness> void expect_reset_sequence()
{
    Harness h;
    h.load(0xFFFC, {0x34, 0x12});
    typename Harness::core::desc_t desc{};
    h.pins = Harness::core::init(&h.cpu, &desc);
    EXPECT_EQ(h.pins, 0x43000000u);
    std::vector<std::string> cycles;
    for (int t = 0; t < 7; t++) {
        h.tick();
        cycles.push_back(h.cycle());
    }
    // It reads where an interrupt pushes.
    EXPECT_EQ(joined(cycles), "R0000 R0100 R01FF R01FE RFFFC RFFFD F1234") << Harness::core::name;
    EXPECT_EQ(Harness::core::pc(&h.cpu), 0x1234);
    EXPECT_EQ(h.registers().substr(9), "FD 16") << Harness::core::name;
}

TEST(CoreBusTest, InitThenSevenTicksRunTheResetSequence)
{
    expect_reset_sequence<M6502Harness>();
    expect_reset_sequence<W65C02Harness>();
}

struct RdyCase
{
    const char* name;           // what the row shows
    std::vector<uint8_t> code;  // at 0x0400, NOPs after it
    int from, to;               // ticks with RDY on the pins
    const char* nmos;           // the cycles of eight ticks; null: not run
    const char* cmos;           // the same on the 65C02
};

// clang-format off
const RdyCase rdy_cases[] = {
    {"ReadCycleHoldsAddress", {0xAD, 0x34, 0x12}, 2, 5, "R0401 R0401 R0401 R0401 R0402 R1234 F0403 R0404", nullptr},
    {"WriteCycle", {0x85, 0x80}, 3, 6, "R0401 W0080=55 F0402 F0402 F0402 R0403 F0403 R0404",
     "R0401 W0080=55 W0080=55 W0080=55 W0080=55 F0402 R0403 F0403"},
    {"FetchStalls", {}, 3, 5, "R0401 F0401 F0401 F0401 R0402 F0402 R0403 F0403", nullptr},
};
// clang-format on

template <class Harness> std::string rdy_trace(const RdyCase& row)
{
    Harness h;
    h.load_program(row.code);
    Harness::core::set(&h.cpu, 0x55, 0, 0, 0xFD, cpu65_bf | cpu65_xf);
    return joined(h.run(cpu65_pin_rdy, row.from, row.to, 8));
}

class CoreRdyTest : public testing::TestWithParam<RdyCase>
{
};

TEST_P(CoreRdyTest, StallsTheCycle)
{
    const RdyCase& row = GetParam();
    if (row.nmos != nullptr) {
        EXPECT_EQ(rdy_trace<M6502Harness>(row), row.nmos) << "6502";
    }
    if (row.cmos != nullptr) {
        EXPECT_EQ(rdy_trace<W65C02Harness>(row), row.cmos) << "65C02";
    }
}

INSTANTIATE_TEST_SUITE_P(Stalls, CoreRdyTest, testing::ValuesIn(rdy_cases),
                         [](const testing::TestParamInfo<RdyCase>& row) { return row.param.name; });

TEST(CoreBusTest, JamRepeatsForEverAtFfffEvenThroughReset)
{
    M6502Harness h;
    h.load(0x0400, {0x02});
    h.reset_to(0x0400);
    h.tick();
    EXPECT_EQ(h.cycle(), "R0401");
    // Only a fetch looks at RES.
    for (int i = 0; i < 20; i++) {
        h.set_input(cpu65_pin_res, i > 10);
        h.tick();
        EXPECT_EQ(h.cycle(), "RFFFF");
    }
}

}  // namespace
