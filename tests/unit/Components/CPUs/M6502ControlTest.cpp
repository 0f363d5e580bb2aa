// Interrupt timing, RDY stalls, reset and the 6510 port of the 6502 core.
#include "M6502Harness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

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
    {"IrqOnFetchTick", {}, 0x30, cpu65_pin_irq, 3, 99, 5},
    {"IrqPulseTwoTicksBeforeFetchIsTaken", {}, 0x30, cpu65_pin_irq, 1, 2, 3},
    {"IrqPulseThreeTicksBeforeFetchIsLost", {}, 0x30, cpu65_pin_irq, 2, 3, 0},
    {"IrqMaskedByI", {}, 0x34, cpu65_pin_irq, 1, 99, 0},
    {"IrqAfterCliWaitsAnInstruction", {0x58}, 0x34, cpu65_pin_irq, 1, 99, 5},
    {"IrqLatchedBeforeSeiIsTaken", {0x78}, 0x30, cpu65_pin_irq, 1, 99, 3},
    {"TakenBranchInPageDelaysIrq", {0xD0, 0x00}, 0x30, cpu65_pin_irq, 2, 99, 6},
    {"TakenBranchAcrossPageDoesNotDelay", {0xD0, 0x80}, 0x30, cpu65_pin_irq, 2, 99, 5},
    {"UntakenBranchDoesNotDelay", {0xF0, 0x00}, 0x30, cpu65_pin_irq, 1, 99, 3},
    {"NmiPulseTwoTicksBeforeFetch", {}, 0x34, cpu65_pin_nmi, 1, 2, 3},
    {"NmiPulseWaitsForNextFetch", {}, 0x34, cpu65_pin_nmi, 2, 3, 5},
    {"NmiHeldIsOneEdge", {}, 0x34, cpu65_pin_nmi, 2, 99, 5},
};
// clang-format on

class M6502InterruptTest : public testing::TestWithParam<InterruptCase>
{
};

TEST_P(M6502InterruptTest, TakesInterruptAtFetch)
{
    const InterruptCase& row = GetParam();
    M6502Harness h;
    h.load_program(row.code, row.p);
    EXPECT_EQ(taken_at(h.run(row.input, row.from, row.to)), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Timing, M6502InterruptTest, testing::ValuesIn(interrupt_cases),
                         [](const testing::TestParamInfo<InterruptCase>& case_info) {
                             return case_info.param.name;
                         });

TEST(M6502ControlTest, IrqPushesPcOfDroppedOpcodeAndBClear)
{
    M6502Harness h;
    h.load_program({});
    m6502_set_p(&h.cpu, cpu65_bf | cpu65_cf);
    const auto cycles = h.run(cpu65_pin_irq, 1, 99, 10);
    // Tick 3 would have fetched the opcode at 0x0401.
    EXPECT_EQ(cycles[2], "R0401");
    EXPECT_EQ(cycles[3], "W01FD=04");
    EXPECT_EQ(cycles[4], "W01FC=01");
    EXPECT_EQ(cycles[5], "W01FB=21");
    EXPECT_EQ(cycles[6], "RFFFE");
    EXPECT_EQ(cycles[7], "RFFFF");
    EXPECT_EQ(cycles[8], "F3000");
    EXPECT_EQ(m6502_p(&h.cpu), cpu65_bf | cpu65_if | cpu65_cf);
}

TEST(M6502ControlTest, NmiHeldHighTriggersOnceAndAgainAfterFalling)
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

TEST(M6502ControlTest, NmiWinsOverIrqAndResetWinsOverBoth)
{
    M6502Harness h;
    h.load_program({});
    const auto cycles = h.run(cpu65_pin_irq | cpu65_pin_nmi, 1, 99, 8);
    EXPECT_EQ(cycles[6], "RFFFA");

    M6502Harness r;
    r.load_program({});
    r.set_input(cpu65_pin_irq | cpu65_pin_nmi, true);
    r.tick();
    r.tick();
    r.set_input(cpu65_pin_res, true);
    std::vector<std::string> reset_cycles;
    for (int t = 0; t < 7; t++) {
        r.tick();
        reset_cycles.push_back(r.cycle());
    }
    EXPECT_EQ(reset_cycles[1], "R01FD");  // a reset reads where the others push
    EXPECT_EQ(reset_cycles[4], "RFFFC");
}

struct RdyCase
{
    const char* name;           // what the row shows
    std::vector<uint8_t> code;  // at 0x0400, NOPs after it
    int from, to;               // ticks with RDY on the pins
    const char* trace;          // the cycles the ticks ask for
};

// clang-format off
const RdyCase rdy_cases[] = {
    {"ReadCycleHoldsAddress", {0xAD, 0x34, 0x12}, 2, 5,
     "R0401 R0401 R0401 R0401 R0402 R1234 F0403 R0404"},
    {"WriteCycleRunsAndNextReadStalls", {0x85, 0x80}, 3, 6,
     "R0401 W0080=55 F0402 F0402 F0402 R0403 F0403 R0404"},
    {"FetchStalls", {}, 3, 5, "R0401 F0401 F0401 F0401 R0402 F0402 R0403 F0403"},
};
// clang-format on

class M6502RdyTest : public testing::TestWithParam<RdyCase>
{
};

TEST_P(M6502RdyTest, StallsOnlyOnReads)
{
    const RdyCase& row = GetParam();
    M6502Harness h;
    h.load_program(row.code);
    m6502_set_a(&h.cpu, 0x55);
    std::string trace;
    for (const auto& c : h.run(cpu65_pin_rdy, row.from, row.to, 8)) {
        trace += (trace.empty() ? "" : " ") + c;
    }
    EXPECT_EQ(trace, row.trace);
}

INSTANTIATE_TEST_SUITE_P(Stalls, M6502RdyTest, testing::ValuesIn(rdy_cases),
                         [](const testing::TestParamInfo<RdyCase>& case_info) {
                             return case_info.param.name;
                         });

TEST(M6502ControlTest, InitThenSevenTicksRunTheResetSequence)
{
    M6502Harness h;
    h.load(0xFFFC, {0x34, 0x12});
    m6502_desc_t desc{};
    h.pins = m6502_init(&h.cpu, &desc);
    EXPECT_EQ(h.pins, 0x43000000u);
    std::string trace;
    for (int t = 0; t < 7; t++) {
        h.tick();
        trace += (t ? " " : "") + h.cycle();
    }
    EXPECT_EQ(trace, "R0000 R0100 R01FF R01FE RFFFC RFFFD F1234");
    EXPECT_EQ(m6502_pc(&h.cpu), 0x1234);
    EXPECT_EQ(m6502_s(&h.cpu), 0xFD);
    EXPECT_EQ(m6502_p(&h.cpu), 0x16);
    EXPECT_FALSE(h.pins & cpu65_pin_res);
}

TEST(M6502ControlTest, ResOnFetchRestartsAndClearsPort)
{
    M6502Harness h;
    h.load_program({});
    h.cpu.port_direction = 0x3F;
    h.cpu.port_output = 0x15;
    h.cpu.port_pins = 0x15;
    h.tick();
    EXPECT_EQ(m6502_get_port(h.pins), 0x15);
    h.tick();
    h.set_input(cpu65_pin_res, true);  // on the next fetch
    h.tick();
    EXPECT_EQ(h.cycle(), "R0401");
    EXPECT_FALSE(h.pins & cpu65_pin_res);
    EXPECT_EQ(m6502_get_port(h.pins), 0);
    EXPECT_EQ(h.cpu.port_direction, 0);
    EXPECT_EQ(h.cpu.port_output, 0);
    for (int t = 0; t < 6; t++) {
        h.tick();
    }
    EXPECT_EQ(h.cycle(), "F0400");
    EXPECT_EQ(m6502_s(&h.cpu), 0xFA);
}

// The 6510 port: callbacks record what the port drives and answer reads.
struct PortWorld
{
    std::vector<uint8_t> driven;  // every byte given to out_cb
    uint8_t input = 0;            // what in_cb answers
};

uint8_t port_in(void* user_data)
{
    return static_cast<PortWorld*>(user_data)->input;
}

void port_out(uint8_t data, void* user_data)
{
    static_cast<PortWorld*>(user_data)->driven.push_back(data);
}

uint64_t port_access(m6502_t* c, uint16_t addr, bool read, uint8_t data = 0)
{
    uint64_t pins = cpu65_set_data(cpu65_set_addr(0, addr), data);
    return m6510_iorq(c, read ? pins | cpu65_pin_rw : pins);
}

TEST(M6502ControlTest, PortDrivesOutputsPullsUpAndKeepsFloatingBits)
{
    PortWorld world;
    m6502_desc_t desc{};
    desc.in_cb = port_in;
    desc.out_cb = port_out;
    desc.user_data = &world;
    desc.port_pullup = 0xC0;
    desc.port_floating = 0x30;
    m6502_t cpu;
    m6502_init(&cpu, &desc);

    port_access(&cpu, 0, false, 0x0F);
    port_access(&cpu, 1, false, 0x35);
    port_access(&cpu, 0, false, 0x3F);
    port_access(&cpu, 0, false, 0x0F);
    EXPECT_EQ(world.driven, (std::vector<uint8_t>{0xC0, 0xC5, 0xF5, 0xC5}));
    EXPECT_EQ(cpu.port_drive, 0x35);

    world.input = 0x80;
    // Inputs: bits 4 and 5 float at their last driven level, bit 7 comes from outside.
    EXPECT_EQ(cpu65_get_data(port_access(&cpu, 1, true)), 0xB5);
    EXPECT_EQ(cpu65_get_data(port_access(&cpu, 0, true)), 0x0F);
    EXPECT_EQ(cpu.port_pins, 0x85);

    // P0 to P5 show on the pins after every tick.
    const uint64_t pins = m6502_tick(&cpu, cpu65_pin_rw | 0x1234);
    EXPECT_EQ(m6502_get_port(pins), 0x05);
}

}  // namespace
