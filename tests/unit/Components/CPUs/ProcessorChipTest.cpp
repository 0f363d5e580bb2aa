// The processor chips on their pins: levels the cores never see, bus timing and its parameters.
#include "ProcessorBench.h"

#include "Core/Components/CPUs/MOS6502/MOS6502.h"
#include "Core/Components/CPUs/W65C02/W65C02Chip.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using CpuBench = ProcessorBench<MOS6502>;
using CmosBench = ProcessorBench<W65C02>;

// The falls of 1000 to 11000 with a NOP on the bus: the reset sequence, then the slide from EAEA.
const char* const reset_then_nops = "0 100 1ff 1fe fffc fffd eaea eaeb eaeb eaec eaec ";

// LDA #$42, STA $0300, JMP $0202: the store writes in the cycles from 12000, 19000 and so on.
const std::vector<uint8_t> store_loop = {0xA9, 0x42, 0x8D, 0x00, 0x03, 0x4C, 0x02, 0x02};

}  // namespace

TEST(ProcessorChipTest, InterruptPins)
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

TEST(ProcessorChipTest, ResetRdySetOverflowAndDataPins)
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

TEST(ProcessorChipTest, AddressTimingParameters)
{
    struct Row
    {
        const char* spec;  // instance with parameters
        const char* wave;  // "A" over the second cycle
    };
    const Row rows[] = {
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

TEST(ProcessorChipTest, WriteCycleDrivesDataFromTheRiseUntilAfterTheNextFall)
{
    CpuBench b;
    b.program(0x0200, store_loop);
    b.run(14);
    EXPECT_EQ(wave(*b.rw, 11000, 13300), "11010:u 11200:H 12010:u 12200:L 13010:u 13200:H ");
    // Undefined from t_dhw after the fall until t_mds after the rise; released t_dhw after the next fall.
    EXPECT_EQ(wave(*b.d, 11000, 13300),
              "11010:zzzzzzzz 11200:3 12010:uuuuuuuu 12525:42 13010:zzzzzzzz 13200:4c ");
    EXPECT_EQ(b.mem.bytes[0x0300], 0x42);
}

TEST(ProcessorChipTest, CmosResetLowInAWriteReleasesTheDataBus)
{
    CmosBench b;
    b.program(0x0200, store_loop);
    b.res->set(Value("L"), 12700);
    b.run(16);
    // Released at the next fall, where a held MOS6502 would go on driving its last write.
    EXPECT_EQ(wave(*b.d, 12000, 16000), "12010:uuuuuuuu 12525:42 13010:zzzzzzzz ");
}

TEST(ProcessorChipTest, CmosWaiWithRdyHighGoesOn)
{
    CmosBench b;
    b.program(0x0200, {0xCB, 0xE8, 0x8E, 0x00, 0x03, 0x4C, 0x05, 0x02});  // WAI, INX, STX $0300, JMP *
    b.run(30);
    EXPECT_EQ(b.mem.bytes[0x0300], 0x01);
}
