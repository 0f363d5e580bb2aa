// Interrupts, VP, RES on any cycle, RDY, WAI and STP of the 65C02 core.
#include "W65C02Harness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::string joined(const std::vector<std::string>& cycles)
{
    std::string text;
    for (const auto& c : cycles) {
        text += (text.empty() ? "" : " ") + c;
    }
    return text;
}

struct InterruptCase
{
    const char* name;           // what the row shows
    std::vector<uint8_t> code;  // at 0x0400, NOPs around it
    uint8_t p;                  // status before the first fetch
    uint64_t input;             // IRQ or NMI
    int from, to;               // ticks with the input on the pins
    int expected;               // fetch tick that the interrupt replaces, 0 for none
};

// clang-format off
const InterruptCase interrupt_cases[] = {
    {"IrqSeenTwoTicksBeforeFetch", {}, 0x30, cpu65_pin_irq, 1, 99, 3},
    {"IrqOneTickTooLateWaitsAnInstruction", {}, 0x30, cpu65_pin_irq, 2, 99, 5},
    {"IrqMaskedByI", {}, 0x34, cpu65_pin_irq, 1, 99, 0},
    {"TakenBranchInPageDoesNotDelayIrq", {0xD0, 0x00}, 0x30, cpu65_pin_irq, 2, 99, 4},
    {"BraInPageDoesNotDelayIrq", {0x80, 0x00}, 0x30, cpu65_pin_irq, 2, 99, 4},
    {"NmiPulseWaitsForNextFetch", {}, 0x34, cpu65_pin_nmi, 2, 3, 5},
    {"OneByteNopsFetchEveryTick", {0x03, 0x03, 0x03}, 0x30, cpu65_pin_irq, 1, 99, 3},
};
// clang-format on

class W65C02InterruptTest : public testing::TestWithParam<InterruptCase>
{
};

TEST_P(W65C02InterruptTest, TakesInterruptAtFetch)
{
    const InterruptCase& row = GetParam();
    W65C02Harness h;
    h.load_program(row.code, row.p);
    EXPECT_EQ(taken_at(h.run(row.input, row.from, row.to)), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Timing, W65C02InterruptTest, testing::ValuesIn(interrupt_cases),
                         [](const testing::TestParamInfo<InterruptCase>& case_info) {
                             return case_info.param.name;
                         });

TEST(W65C02ControlTest, IrqClearsDInHandlerAndSetsVpOnVectorReadsOnly)
{
    W65C02Harness h;
    h.load_program({}, cpu65_bf | cpu65_df | cpu65_cf);
    std::string trace;
    std::string vp;
    for (int t = 1; t <= 10; t++) {
        h.set_input(cpu65_pin_irq, true);
        h.tick();
        trace += (t > 1 ? " " : "") + h.cycle();
        vp += (h.pins & w65c02_pin_vp) ? '1' : '0';
    }
    EXPECT_EQ(trace, "R0401 F0401 R0401 W01FD=04 W01FC=01 W01FB=29 RFFFE RFFFF F3000 R3001");
    EXPECT_EQ(vp, "0000001100");
    EXPECT_EQ(w65c02_p(&h.cpu), cpu65_bf | cpu65_if | cpu65_cf);
}

TEST(W65C02ControlTest, InitThenSevenTicksRunTheResetSequence)
{
    W65C02Harness h;
    h.load(0xFFFC, {0x34, 0x12});
    w65c02_desc_t desc{};
    h.pins = w65c02_init(&h.cpu, &desc);
    EXPECT_EQ(h.pins, 0x43000000u);
    std::string trace;
    for (int t = 0; t < 7; t++) {
        h.tick();
        trace += (t ? " " : "") + h.cycle();
    }
    EXPECT_EQ(trace, "R0000 R0100 R01FF R01FE RFFFC RFFFD F1234");
    EXPECT_EQ(w65c02_pc(&h.cpu), 0x1234);
    EXPECT_EQ(w65c02_s(&h.cpu), 0xFD);
    EXPECT_EQ(w65c02_p(&h.cpu), 0x16);
}

TEST(W65C02ControlTest, ResInMidInstructionRestartsAtOnce)
{
    W65C02Harness h;
    h.load_program({0x8D, 0x34, 0x12});  // STA abs: RES comes on its write cycle
    h.load(0xFFFC, {0x00, 0x20});
    h.tick();
    h.tick();
    h.tick();
    EXPECT_EQ(h.cycle(), "W1234=00");
    h.set_input(cpu65_pin_res, true);
    h.tick();
    h.set_input(cpu65_pin_res, false);
    EXPECT_EQ(h.cycle(), "R0403");  // pc stays until the vector loads
    for (int t = 0; t < 6; t++) {
        h.tick();
    }
    EXPECT_EQ(h.cycle(), "F2000");
    EXPECT_EQ(w65c02_s(&h.cpu), 0xFA);
}

TEST(W65C02ControlTest, RdyStallsWriteCycles)
{
    W65C02Harness h;
    h.load_program({0x85, 0x80});
    w65c02_set_a(&h.cpu, 0x55);
    EXPECT_EQ(joined(h.run(cpu65_pin_rdy, 3, 5, 5)), "R0401 W0080=55 W0080=55 W0080=55 F0402");
}

struct WaiCase
{
    const char* name;   // what the row shows
    uint8_t p;          // status before WAI
    uint64_t input;     // the line that wakes it, 0 for none
    const char* trace;  // cycles of ticks 1 to 9; IRQ or NMI from tick 5 on
};

// clang-format off
const WaiCase wai_cases[] = {
    {"WaitsWithRdyHeld", 0x30, 0, "R0401 R0401 R0401 R0401 R0401 R0401 R0401 R0401 R0401"},
    {"MaskedIrqGoesOnAtNextInstruction", 0x34, cpu65_pin_irq,
     "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0402 F0402"},
    {"IrqWakesIntoHandler", 0x30, cpu65_pin_irq,
     "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0401 W01FD=04"},
    {"NmiWakesIntoHandler", 0x34, cpu65_pin_nmi,
     "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0401 W01FD=04"},
};
// clang-format on

class W65C02WaiTest : public testing::TestWithParam<WaiCase>
{
};

TEST_P(W65C02WaiTest, WaitsForAnInterruptLine)
{
    const WaiCase& row = GetParam();
    W65C02Harness h;
    h.load_program({0xCB}, row.p);
    std::vector<std::string> cycles;
    for (int t = 1; t <= 9; t++) {
        h.set_input(row.input, t >= 5);
        h.tick();
        cycles.push_back(h.cycle());
        if (t == 1) {
            EXPECT_TRUE(h.pins & cpu65_pin_rdy) << "WAI hands out RDY";
        }
    }
    EXPECT_EQ(joined(cycles), row.trace);
}

INSTANTIATE_TEST_SUITE_P(Wai, W65C02WaiTest, testing::ValuesIn(wai_cases),
                         [](const testing::TestParamInfo<WaiCase>& case_info) {
                             return case_info.param.name;
                         });

TEST(W65C02ControlTest, WaiWithIrqAlreadyOnDoesNotWait)
{
    W65C02Harness h;
    h.load_program({0xCB}, 0x34);
    EXPECT_EQ(joined(h.run(cpu65_pin_irq, 1, 99, 4)), "R0401 R0401 F0401 R0402");
}

TEST(W65C02ControlTest, StpHandsBackPinsUntilRes)
{
    W65C02Harness h;
    h.load_program({0xDB});
    h.load(0xFFFC, {0x00, 0x20});
    h.tick();
    EXPECT_EQ(h.cycle(), "R0401");
    const w65c02_t before = h.cpu;
    for (uint64_t input : {uint64_t{0}, cpu65_pin_irq, cpu65_pin_nmi, cpu65_pin_irq | cpu65_pin_rdy}) {
        const uint64_t given = h.pins | input | 0x12345ULL;
        EXPECT_EQ(w65c02_tick(&h.cpu, given), given);
    }
    EXPECT_EQ(h.cpu.irq_pip, before.irq_pip);
    EXPECT_EQ(h.cpu.nmi_pip, before.nmi_pip);
    EXPECT_EQ(h.cpu.ir, before.ir);
    h.set_input(cpu65_pin_res, true);
    h.tick();
    h.set_input(cpu65_pin_res, false);
    for (int t = 0; t < 6; t++) {
        h.tick();
    }
    EXPECT_EQ(h.cycle(), "F2000");
    EXPECT_EQ(h.cpu.stopped, 0);
}

}  // namespace
