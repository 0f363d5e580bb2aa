#include "Core/Components/CPUs/MOS6502/MOS6502.h"

#include "ProcessorBench.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using CpuBench = ProcessorBench<MOS6502>;

// The falls of 1000 to 11000 with a NOP on the bus: the reset sequence, then the slide from EAEA.
const char* const reset_then_nops = "0 100 1ff 1fe fffc fffd eaea eaeb eaeb eaec eaec ";

}  // namespace

TEST(MOS6502Test, FactoryRow)
{
    ComponentFactory factory;
    Component* cpu = factory.create("MOS6502", "cpu");
    ASSERT_NE(cpu, nullptr);
    EXPECT_EQ(port_list(cpu), "A>16 D=8 _R/W> _IRQ< _NMI< RDY< SYNC> PHI0< PHI1> PHI2> _SO< _RES< ");
    EXPECT_FALSE(cpu->port("D")->z_translation());
    EXPECT_EQ(cpu->get_parameter_string(), "(t_ads=200,t_ah=10,t_dhw=10,t_mds=25)");
    EXPECT_EQ(cpu->get_valid_param_keys(), (std::vector<std::string>{"t_ads", "t_ah", "t_mds", "t_dhw"}));
    EXPECT_EQ(ComponentFactory::parameter_description("MOS6502"),
              "<b>t_ads</b> The Address Setup Time, in ns. Time from negative clock flank until address, "
              "R/W, SYNC and _VP has stabilized. Default 30 ns.<p><b>t_ah</b> The Address Hold Time, in ns. "
              "The time the address, R/W, SYNC and _VP are stable after negative clock flank. Default 10 "
              "ns.<p><b>t_mds</b> The Write Delay Time, in ns. The time after positive clock flank that the "
              "(write) data becomes valid. Default 25 ns.<p><b>t_dhw</b> The Write Hold Time, in ns. The "
              "time after negative clock flank that the (write) data still is valid. Default 10 ns.<p>");
}

TEST(MOS6502Test, ResetSequenceThenNopsFromAHeldBus)
{
    CpuBench b(false);
    b.data->set(Value("HHHLHLHL"), 0);  // 0xEA, NOP: the vector is EAEA, and the slide goes on
    b.run(12);
    // No tick at 0, where the clock goes from u to L; then one cycle per falling flank.
    EXPECT_EQ(addresses(*b.a, 12000), reset_then_nops);
    EXPECT_EQ(wave(*b.sync, 0, 12000), "0:u 1200:L 2010:u 2200:L 3010:u 3200:L 4010:u 4200:L 5010:u "
                                       "5200:L 6010:u 6200:L 7010:u 7200:H 8010:u 8200:L 9010:u 9200:H "
                                       "10010:u 10200:L 11010:u 11200:H ");
    // The reset sequence reads where the stack cycles of an interrupt write.
    EXPECT_EQ(wave(*b.rw, 0, 3000), "0:u 1200:H 2010:u 2200:H ");
    EXPECT_FALSE(b.cpu->sr() & cpu65_vf);
}

TEST(MOS6502Test, ReadCycleTimingAndTheByteTakenAtTheFall)
{
    CpuBench b;
    b.program(0x0200, {0xA9, 0x42, 0x85, 0x10, 0x4C, 0x04, 0x02});  // LDA #$42, STA $10, JMP *
    b.run(14);
    // Cycle 7 fetches at 0200; address and R/W go undefined t_ah after the fall and valid after t_ads.
    EXPECT_EQ(wave(*b.a, 6000, 8300), "6010:uuuuuuuuuuuuuuuu 6200:fffd 7010:uuuuuuuuuuuuuuuu 7200:200 "
                                      "8010:uuuuuuuuuuuuuuuu 8200:201 ");
    // The memory answers at once; the byte read at the fall of 8000 is the opcode.
    EXPECT_EQ(wave(*b.d, 7000, 9300), "7010:zzzzzzzz 7200:a9 8010:zzzzzzzz 8200:42 9010:zzzzzzzz 9200:85 ");
    EXPECT_EQ(b.mem.bytes[0x10], 0x42);
}

TEST(MOS6502Test, WriteCycleDrivesDataFromTheRiseUntilAfterTheNextFall)
{
    CpuBench b;
    b.program(0x0200, {0xA9, 0x42, 0x8D, 0x00, 0x03, 0x4C, 0x05, 0x02});  // LDA #$42, STA $0300, JMP *
    b.run(16);
    // STA absolute writes in its fourth cycle, the one that starts at 12000.
    EXPECT_EQ(wave(*b.a, 12000, 13300), "12010:uuuuuuuuuuuuuuuu 12200:300 13010:uuuuuuuuuuuuuuuu 13200:205 ");
    EXPECT_EQ(wave(*b.rw, 11000, 13300), "11010:u 11200:H 12010:u 12200:L 13010:u 13200:H ");
    // Undefined from t_dhw after the fall until t_mds after the rise; released t_dhw after the next fall.
    EXPECT_EQ(wave(*b.d, 11000, 13300),
              "11010:zzzzzzzz 11200:3 12010:uuuuuuuu 12525:42 13010:zzzzzzzz 13200:4c ");
    EXPECT_EQ(b.mem.bytes[0x0300], 0x42);
}

TEST(MOS6502Test, ProgramRunsAgainstMemory)
{
    CpuBench b;
    // Sums 10 + 9 + ... + 1 through a zero page cell, then adds in decimal mode, pushes and pulls
    // through a subroutine, and stores everything.
    b.program(0x0200, {
                          0xA9, 0x00,        // 0200 LDA #0
                          0xA2, 0x0A,        // 0202 LDX #10
                          0x86, 0x10,        // 0204 STX $10
                          0x18,              // 0206 CLC
                          0x65, 0x10,        // 0207 ADC $10
                          0xCA,              // 0209 DEX
                          0xD0, 0xF8,        // 020A BNE 0204
                          0x8D, 0x00, 0x03,  // 020C STA $0300   55 = $37
                          0x20, 0x30, 0x02,  // 020F JSR $0230
                          0x8D, 0x01, 0x03,  // 0212 STA $0301
                          0x4C, 0x15, 0x02,  // 0215 JMP *
                      });
    b.mem.load(0x0230, {
                           0xF8,        // 0230 SED
                           0x18,        // 0231 CLC
                           0x69, 0x45,  // 0232 ADC #$45   37 + 45 = 82 in decimal
                           0xD8,        // 0234 CLD
                           0x48,        // 0235 PHA
                           0x68,        // 0236 PLA
                           0x60,        // 0237 RTS
                       });
    b.run(250);
    EXPECT_EQ(b.mem.bytes[0x0300], 0x37);
    EXPECT_EQ(b.mem.bytes[0x0301], 0x82);
    EXPECT_EQ(b.mem.bytes[0x0010], 0x01);
    // JSR pushed the address of its last byte, 0211.
    EXPECT_EQ(b.mem.bytes[0x01FD], 0x02);
    EXPECT_EQ(b.mem.bytes[0x01FC], 0x11);
    EXPECT_EQ(b.cpu->sr() & (cpu65_df | cpu65_cf), 0);
}

TEST(MOS6502Test, InterruptPins)
{
    struct Row
    {
        const char* name;  // what the row shows
        bool cli;          // the program allows IRQ
        const char* irq;   // "_IRQ" from 30 us on
        const char* nmi;   // "_NMI" from 30 us on
        uint8_t by_irq;    // what the IRQ handler stored, 0 if it didn't run
        uint8_t by_nmi;    // what the NMI handler stored
    };
    const Row rows[] = {
        {"IRQ low, allowed", true, "L", "H", 0x5A, 0},
        {"IRQ low, masked", false, "L", "H", 0, 0},
        {"IRQ undefined is inactive", true, "u", "H", 0, 0},
        {"IRQ floating is inactive", true, "z", "H", 0, 0},
        {"NMI falls, masked or not", false, "H", "L", 0, 0xA5},
        {"NMI undefined is inactive", true, "H", "u", 0, 0},
    };
    for (const Row& r : rows) {
        CpuBench b;
        b.program(0x0200, {r.cli ? uint8_t(0x58) : uint8_t(0xEA), 0x4C, 0x01, 0x02});  // CLI or NOP, JMP *
        b.mem.load(0x0300, {0xA9, 0x5A, 0x8D, 0x00, 0x04, 0x40});  // IRQ: LDA #$5A, STA $0400, RTI
        b.mem.load(0x0310, {0xA9, 0xA5, 0x8D, 0x01, 0x04, 0x40});  // NMI: LDA #$A5, STA $0401, RTI
        b.mem.load(0xFFFA, {0x10, 0x03, 0x00, 0x02, 0x00, 0x03});
        b.irq->set(Value(r.irq), 30000);
        b.nmi->set(Value(r.nmi), 30000);
        b.run(60);
        EXPECT_EQ(b.mem.bytes[0x0400], r.by_irq) << r.name;
        EXPECT_EQ(b.mem.bytes[0x0401], r.by_nmi) << r.name;
    }
}

TEST(MOS6502Test, ResetRdySetOverflowAndDataPins)
{
    struct Row
    {
        const char* name;       // what the row shows
        Port* CpuBench::*pin;   // the stimulus
        int from;               // ns, the pin takes `level` here
        const char* level;      // letters
        int to;                 // ns, and H again here; 0 for never
        const char* addresses;  // valid addresses of the cycles up to 11000
        bool overflow;          // V at the end
    };
    const Row rows[] = {
        // One low flank: the tick of 7000 is lost, the cycle repeats, and there is no reset.
        {"_RES low over one flank", &CpuBench::res, 6900, "L", 7100,
         "0 100 1ff 1fe fffc fffd fffd eaea eaeb eaeb eaec ", false},
        // Two low flanks: the emitted word stays, then the sequence starts over at the next fall.
        {"_RES low over two flanks", &CpuBench::res, 6900, "L", 8100,
         "0 100 1ff 1fe fffc fffd fffd fffd 0 100 1ff ", false},
        {"_RES undefined runs", &CpuBench::res, 6900, "u", 8100, reset_then_nops, false},
        // RDY low halts the read cycles: the address holds.
        {"RDY low", &CpuBench::rdy, 7500, "L", 9500, "0 100 1ff 1fe fffc fffd eaea eaea eaea eaeb eaeb ",
         false},
        {"RDY undefined runs", &CpuBench::rdy, 7500, "u", 9500, reset_then_nops, false},
        {"_SO low sets V", &CpuBench::so, 7500, "L", 8500, reset_then_nops, true},
        {"_SO undefined", &CpuBench::so, 7500, "u", 8500, reset_then_nops, false},
        // A floating bus (or a memory too slow for the clock) leaves every fetch the NOP of before.
        {"data bus floats", &CpuBench::data, 6500, "ZZZZZZZZ", 0, reset_then_nops, false},
    };
    for (const Row& r : rows) {
        CpuBench b(false);
        b.data->set(Value("HHHLHLHL"), 0);
        Port* pin = b.*r.pin;
        pin->set(Value(r.level), r.from);
        if (r.to != 0)
            pin->set(Value("H"), r.to);
        b.run(12);
        EXPECT_EQ(addresses(*b.a, 12000), r.addresses) << r.name;
        EXPECT_EQ((b.cpu->sr() & cpu65_vf) != 0, r.overflow) << r.name;
    }
}

TEST(MOS6502Test, AddressTimingParameters)
{
    struct Row
    {
        const char* spec;  // instance with parameters
        const char* wave;  // "A" over the second cycle
    };
    const Row rows[] = {
        {"cpu", "2010:UUUUUUUUUUUUUUUU 2200:100 "},
        {"cpu(t_ads=50,t_ah=20)", "2020:UUUUUUUUUUUUUUUU 2050:100 "},
        // Equal times: the second set replaces the first.
        {"cpu(t_ads=10,t_ah=10)", "2010:100 "},
        // Set-up shorter than hold: the address is followed by u for the rest of the cycle.
        {"cpu(t_ads=5,t_ah=10)", "2005:100 2010:UUUUUUUUUUUUUUUU "},
    };
    for (const Row& r : rows) {
        CpuBench b(false, r.spec);
        b.data->set(Value("HHHLHLHL"), 0);
        b.run(4);
        EXPECT_EQ(wave(*b.cpu->port("A"), 2000, 2999), r.wave) << r.spec;
    }
}

TEST(MOS6502Test, ClockOutputsFollowAtOnceAndUndefinedClockStopsTheCore)
{
    CpuBench b(false);
    b.data->set(Value("HHHLHLHL"), 0);
    b.clock(4);
    b.clk->set(Value("u"), 4000);
    b.clk->set(Value("L"), 5000);  // u to L is no flank
    b.clk->set(Value("H"), 5500);
    b.clk->set(Value("L"), 6000);
    simulator()->simulate(7000);
    EXPECT_EQ(wave(*b.phi1, 3000, 7000), "3000:H 3500:L 4000:u 5000:H 5500:L 6000:H ");
    EXPECT_EQ(wave(*b.phi2, 3000, 7000), "3000:L 3500:H 4000:u 5000:L 5500:H 6000:L ");
    EXPECT_EQ(addresses(*b.a, 7000), "0 100 1ff 1fe ");
}

TEST(MOS6502Test, EvaluateWithoutPortTimesFromTheMiddleOfTheFlank)
{
    // Stand-alone: no nets, the part called by hand. Its outputs keep their histories.
    PartHarness h;
    auto* cpu = dynamic_cast<MOS6502*>(h.part("MOS6502", "cpu"));
    for (const char* pin : {"_RES", "_IRQ", "_NMI", "RDY", "_SO"})
        cpu->port(pin)->set(Value("H"), 0);
    Port* clk = cpu->port("PHI0");
    clk->set(Value("H"), 0);
    cpu->evaluate(100);  // remembers H at 100
    clk->set(Value("L"), 300);
    cpu->evaluate(301);  // the fall is put at (100 + 301 + 1) / 2 = 201
    EXPECT_EQ(wave(*cpu->port("A"), 0, 1000), "100:uuuuuuuuuuuuuuuu 211:UUUUUUUUUUUUUUUU 401:0 ");
    EXPECT_EQ(wave(*cpu->port("SYNC"), 0, 1000), "100:u 401:L ");
    EXPECT_EQ(wave(*cpu->port("PHI2"), 0, 1000), "100:H 301:L ");
}
