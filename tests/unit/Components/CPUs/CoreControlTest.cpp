// Interrupts, reset on the pins, WAI and STP, and the 6510 port of the cores.
#include "CpuHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

struct InterruptCase
{
    const char* name;           // what the row shows
    std::vector<uint8_t> code;  // at 0x0400, NOPs around it
    uint8_t p;                  // status before the first fetch
    uint64_t input;             // IRQ or NMI
    int from, to;               // ticks with the input on the pins
    int nmos, cmos;             // fetch tick that the interrupt replaces, 0 for none, -1: not run
};

// clang-format off
const InterruptCase interrupt_cases[] = {
    {"IrqSeenTwoTicksBeforeFetch", {}, 0x30, cpu65_pin_irq, 1, 99, 3, 3},
    {"IrqOneTickTooLateWaitsAnInstruction", {}, 0x30, cpu65_pin_irq, 2, 99, 5, 5},
    {"IrqOnFetchTick", {}, 0x30, cpu65_pin_irq, 3, 99, 5, -1},
    {"IrqPulseTwoTicksBeforeFetchIsTaken", {}, 0x30, cpu65_pin_irq, 1, 2, 3, -1},
    {"IrqPulseThreeTicksBeforeFetchIsLost", {}, 0x30, cpu65_pin_irq, 2, 3, 0, -1},
    {"IrqMaskedByI", {}, 0x34, cpu65_pin_irq, 1, 99, 0, 0},
    {"IrqAfterCliWaitsAnInstruction", {0x58}, 0x34, cpu65_pin_irq, 1, 99, 5, -1},
    {"IrqLatchedBeforeSeiIsTaken", {0x78}, 0x30, cpu65_pin_irq, 1, 99, 3, -1},
    {"TakenBranchInPage", {0xD0, 0x00}, 0x30, cpu65_pin_irq, 2, 99, 6, 4},
    {"BraInPageDoesNotDelayIrq", {0x80, 0x00}, 0x30, cpu65_pin_irq, 2, 99, -1, 4},
    {"TakenBranchAcrossPageDoesNotDelay", {0xD0, 0x80}, 0x30, cpu65_pin_irq, 2, 99, 5, -1},
    {"UntakenBranchDoesNotDelay", {0xF0, 0x00}, 0x30, cpu65_pin_irq, 1, 99, 3, -1},
    {"OneByteNopsFetchEveryTick", {0x03, 0x03, 0x03}, 0x30, cpu65_pin_irq, 1, 99, -1, 3},
    {"NmiPulseTwoTicksBeforeFetch", {}, 0x34, cpu65_pin_nmi, 1, 2, 3, -1},
    {"NmiPulseWaitsForNextFetch", {}, 0x34, cpu65_pin_nmi, 2, 3, 5, 5},
    {"NmiHeldIsOneEdge", {}, 0x34, cpu65_pin_nmi, 2, 99, 5, -1},
};
// clang-format on

template <class Harness> int taken(const InterruptCase& row)
{
    Harness h;
    h.load_program(row.code, row.p);
    return taken_at(h.run(row.input, row.from, row.to));
}

class CoreInterruptTest : public testing::TestWithParam<InterruptCase>
{
};

TEST_P(CoreInterruptTest, TakesInterruptAtFetch)
{
    const InterruptCase& row = GetParam();
    if (row.nmos >= 0) {
        EXPECT_EQ(taken<M6502Harness>(row), row.nmos) << "6502";
    }
    if (row.cmos >= 0) {
        EXPECT_EQ(taken<W65C02Harness>(row), row.cmos) << "65C02";
    }
}

INSTANTIATE_TEST_SUITE_P(Timing, CoreInterruptTest, testing::ValuesIn(interrupt_cases),
                         [](const testing::TestParamInfo<InterruptCase>& row) { return row.param.name; });

// The pushes of an IRQ, with D set: the 65C02 clears it in the handler and shows the vector reads on VP.
TEST(CoreControlTest, IrqPushesPcOfDroppedOpcodeAndBClear)
{
    const char* pushes = "R0401 F0401 R0401 W01FD=04 W01FC=01 W01FB=29 RFFFE RFFFF F3000";
    const uint8_t p = cpu65_bf | cpu65_df | cpu65_cf;
    M6502Harness n;
    n.load_program({}, p);
    EXPECT_EQ(joined(n.run(cpu65_pin_irq, 1, 99, 9)), pushes);
    EXPECT_EQ(n.registers().substr(12), "1D");
    W65C02Harness c;
    c.load_program({}, p);
    std::vector<std::string> cycles;
    std::string vp;
    for (int t = 1; t <= 9; t++) {
        c.set_input(cpu65_pin_irq, true);
        c.tick();
        cycles.push_back(c.cycle());
        vp += (c.pins & w65c02_pin_vp) ? '1' : '0';
    }
    EXPECT_EQ(joined(cycles), pushes);
    EXPECT_EQ(vp, "000000110");
    EXPECT_EQ(c.registers().substr(12), "15");
}

TEST(CoreControlTest, NmiHeldHighTriggersOnceAndAgainAfterFalling)
{
    M6502Harness h;
    h.load_program({});
    int vector_reads = 0;
    for (int t = 1; t <= 120; t++) {
        h.set_input(cpu65_pin_nmi, t < 50 || t >= 60);
        h.tick();
        vector_reads += h.cycle() == "RFFFA";
    }
    EXPECT_EQ(vector_reads, 2);
}

TEST(CoreControlTest, NmiWinsOverIrq)
{
    M6502Harness h;
    h.load_program({});
    EXPECT_EQ(h.run(cpu65_pin_irq | cpu65_pin_nmi, 1, 99, 8)[6], "RFFFA");
}

// The 6502 looks at RES on a fetch only; the 65C02 restarts at once, in the middle of a write.
TEST(CoreControlTest, ResOnTheNextFetchOrAtOnce)
{
    M6502Harness n;
    n.load_program({});
    n.cpu.port_direction = 0x3F;
    n.cpu.port_output = 0x15;
    n.tick();
    n.tick();
    n.set_input(cpu65_pin_res, true);
    n.tick();
    EXPECT_EQ(n.cycle(), "R0401");
    EXPECT_EQ(n.cpu.port_direction | n.cpu.port_output, 0);  // the 6510 port is cleared

    W65C02Harness c;
    c.load_program({0x8D, 0x34, 0x12});  // STA abs: RES comes on its write cycle
    c.run(0, 1, 1, 3);
    EXPECT_EQ(c.cycle(), "W1234=00");
    c.set_input(cpu65_pin_res, true);
    c.tick();
    c.set_input(cpu65_pin_res, false);
    EXPECT_EQ(c.cycle(), "R0403");  // pc stays until the vector loads

    n.load(0xFFFC, {0x00, 0x20});
    EXPECT_EQ(n.run(0, 1, 1, 6).back(), "F2000");
    EXPECT_EQ(n.registers().substr(9, 2), "FA");
    c.load(0xFFFC, {0x00, 0x20});
    EXPECT_EQ(c.run(0, 1, 1, 6).back(), "F2000");
    EXPECT_EQ(c.registers().substr(9, 2), "FA");
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
    {"MaskedIrqGoesOnAtNextInstruction", 0x34, cpu65_pin_irq, "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0402 F0402"},
    {"IrqWakesIntoHandler", 0x30, cpu65_pin_irq, "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0401 W01FD=04"},
    {"NmiWakesIntoHandler", 0x34, cpu65_pin_nmi, "R0401 R0401 R0401 R0401 R0401 R0401 F0401 R0401 W01FD=04"},
};
// clang-format on

class CoreWaiTest : public testing::TestWithParam<WaiCase>
{
};

TEST_P(CoreWaiTest, WaitsForAnInterruptLine)
{
    const WaiCase& row = GetParam();
    W65C02Harness h;
    h.load_program({0xCB}, row.p);
    EXPECT_EQ(joined(h.run(row.input, 5, 99, 9)), row.trace);
    EXPECT_EQ(row.input != 0, !(h.pins & cpu65_pin_rdy)) << "WAI hands out RDY while it waits";
}

INSTANTIATE_TEST_SUITE_P(Wai, CoreWaiTest, testing::ValuesIn(wai_cases),
                         [](const testing::TestParamInfo<WaiCase>& row) { return row.param.name; });

TEST(CoreControlTest, WaiWithIrqAlreadyOnDoesNotWait)
{
    W65C02Harness h;
    h.load_program({0xCB}, 0x34);
    EXPECT_EQ(joined(h.run(cpu65_pin_irq, 1, 99, 4)), "R0401 R0401 F0401 R0402");
}

TEST(CoreControlTest, StpHandsBackPinsUntilRes)
{
    W65C02Harness h;
    h.load_program({0xDB});
    h.load(0xFFFC, {0x00, 0x20});
    h.tick();
    const w65c02_t before = h.cpu;
    for (uint64_t input : {uint64_t{0}, cpu65_pin_irq, cpu65_pin_nmi, cpu65_pin_irq | cpu65_pin_rdy}) {
        const uint64_t given = h.pins | input | 0x12345ULL;
        EXPECT_EQ(w65c02_tick(&h.cpu, given), given);
    }
    EXPECT_EQ(h.cpu.irq_pip | h.cpu.nmi_pip, before.irq_pip | before.nmi_pip);
    h.set_input(cpu65_pin_res, true);
    h.tick();
    EXPECT_EQ(h.run(0, 1, 1, 6).back(), "F2000");
}

// The 6510 port: callbacks record what the port drives and answer reads.
struct PortWorld
{
    std::vector<uint8_t> driven;  // every byte given to out_cb
    uint8_t input = 0;            // what in_cb answers
};

uint64_t port_access(m6502_t* c, uint16_t addr, bool read, uint8_t data = 0)
{
    uint64_t pins = cpu65_set_data(cpu65_set_addr(0, addr), data);
    return m6510_iorq(c, read ? pins | cpu65_pin_rw : pins);
}

TEST(CoreControlTest, PortDrivesOutputsPullsUpAndKeepsFloatingBits)
{
    PortWorld world;
    m6502_desc_t desc{};
    desc.in_cb = [](void* user) { return static_cast<PortWorld*>(user)->input; };
    desc.out_cb = [](uint8_t data, void* user) { static_cast<PortWorld*>(user)->driven.push_back(data); };
    desc.user_data = &world;
    desc.port_pullup = 0xC0;
    desc.port_floating = 0x30;
    m6502_t cpu;
    m6502_init(&cpu, &desc);

    const std::pair<uint16_t, uint8_t> writes[] = {{0, 0x0F}, {1, 0x35}, {0, 0x3F}, {0, 0x0F}};
    for (auto [addr, data] : writes)
        port_access(&cpu, addr, false, data);
    EXPECT_EQ(world.driven, (std::vector<uint8_t>{0xC0, 0xC5, 0xF5, 0xC5}));

    world.input = 0x80;
    // Inputs: bits 4 and 5 float at their last driven level, bit 7 comes from outside.
    EXPECT_EQ(cpu65_get_data(port_access(&cpu, 1, true)), 0xB5);
    EXPECT_EQ(cpu65_get_data(port_access(&cpu, 0, true)), 0x0F);
    // P0 to P5 show on the pins after every tick.
    EXPECT_EQ(m6502_get_port(m6502_tick(&cpu, cpu65_pin_rw | 0x1234)), 0x05);
}

}  // namespace
