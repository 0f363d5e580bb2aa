#include "ProcessorBench.h"

#include "Core/Components/CPUs/W65C02/W65C02Chip.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using CpuBench = ProcessorBench<W65C02>;

// LDA #$42, STA $0300, JMP $0202: the store writes in the cycles from 12000, 19000, 26000 and so on.
const std::vector<uint8_t> store_loop = {0xA9, 0x42, 0x8D, 0x00, 0x03, 0x4C, 0x02, 0x02};

}  // namespace

TEST(W65C02Test, FactoryRow)
{
    ComponentFactory factory;
    Component* cpu = factory.create("W65C02", "cpu");
    ASSERT_NE(cpu, nullptr);
    EXPECT_EQ(port_list(cpu), "A>16 D=8 R/W> _IRQ< _NMI< RDY< SYNC> PHI0< PHI1> PHI2> _SO< _RES< _VP> BE< ");
    EXPECT_FALSE(cpu->port("D")->z_translation());
    EXPECT_EQ(cpu->get_parameter_string(), "(t_ads=30,t_ah=10,t_bvd=25,t_dhw=10,t_mds=25)");
    EXPECT_EQ(cpu->get_valid_param_keys(),
              (std::vector<std::string>{"t_ads", "t_ah", "t_mds", "t_dhw", "t_bvd"}));
}

TEST(W65C02Test, BusEnable)
{
    struct Row
    {
        const char* name;  // what the row shows
        const char* be;    // "BE" from 11600 to 13600
        const char* a;     // "A" from 11000 to 14100
        const char* rw;    // "R/W" over the same time
        const char* d;     // the data bus net, where the memory listens
        uint8_t stored;    // what the store of 12000 left in the memory
    };
    const Row rows[] = {
        {"enabled", "H",
         "11010:UUUUUUUUUUUUUUUU 11030:204 12010:UUUUUUUUUUUUUUUU 12030:300 13010:UUUUUUUUUUUUUUUU 13030:205 "
         "14010:UUUUUUUUUUUUUUUU 14030:206 ",
         "11010:u 11030:H 12010:u 12030:L 13010:u 13030:H 14010:u 14030:H ",
         "11010:zzzzzzzz 11030:3 12010:uuuuuuuu 12525:42 13010:zzzzzzzz 13030:4c 14010:zzzzzzzz 14030:2 ",
         0x42},
        // Floating from 11625 while the core goes on; at 13625 the lines show the cycle under way.
        {"low", "L",
         "11010:UUUUUUUUUUUUUUUU 11030:204 11625:ZZZZZZZZZZZZZZZZ 13625:205 14010:UUUUUUUUUUUUUUUU "
         "14030:206 ",
         "11010:u 11030:H 11625:Z 13625:H 14010:u 14030:H ",
         "11010:zzzzzzzz 11030:3 11625:zzzzzzzz 13625:4c 14010:zzzzzzzz 14030:2 ", 0x00},
        {"undefined", "u",
         "11010:UUUUUUUUUUUUUUUU 11030:204 11625:UUUUUUUUUUUUUUUU 13625:205 14010:UUUUUUUUUUUUUUUU "
         "14030:206 ",
         "11010:u 11030:H 11625:U 13625:H 14010:u 14030:H ",
         "11010:zzzzzzzz 11030:3 11625:uuuuuuuu 13625:4c 14010:zzzzzzzz 14030:2 ", 0x00},
    };
    for (const Row& r : rows) {
        CpuBench b;
        b.program(0x0200, store_loop);
        b.be->set(Value(r.be), 11600);
        b.be->set(Value("H"), 13600);
        b.run(18);
        EXPECT_EQ(wave(*b.cpu->port("A"), 11000, 14100), r.a) << r.name;
        EXPECT_EQ(wave(*b.cpu->port("R/W"), 11000, 14100), r.rw) << r.name;
        EXPECT_EQ(wave(*b.d, 11000, 14100), r.d) << r.name;
        EXPECT_EQ(b.mem.bytes[0x0300], r.stored) << r.name;
    }
}

TEST(W65C02Test, ResetLowInAWriteReleasesTheDataBus)
{
    CpuBench b;
    b.program(0x0200, store_loop);
    b.res->set(Value("L"), 12700);
    b.run(16);
    // Released at the next fall, where a held MOS6502 would go on driving its last write.
    EXPECT_EQ(wave(*b.d, 12000, 16000), "12010:uuuuuuuu 12525:42 13010:zzzzzzzz ");
}

TEST(W65C02Test, WaiWithRdyHighGoesOn)
{
    CpuBench b;
    b.program(0x0200, {0xCB, 0xE8, 0x8E, 0x00, 0x03, 0x4C, 0x05, 0x02});  // WAI, INX, STX $0300, JMP *
    b.run(30);
    EXPECT_EQ(b.mem.bytes[0x0300], 0x01);
}

TEST(W65C02Test, VectorPullAndSync)
{
    CpuBench b;
    b.program(0x0200, {0x00, 0x00});         // BRK
    b.mem.load(0x0300, {0x4C, 0x00, 0x03});  // JMP *
    b.mem.load(0xFFFE, {0x00, 0x03});        // to 0300
    b.run(30);
    // "_VP" is low in the cycles that read a vector, the reset's and BRK's, and in no others.
    std::string pulled;
    for (int t = 500; t < 30000; t += period) {
        if (b.vp->value(t) == 'L')
            pulled += b.a->value(t).readable() + " ";
    }
    EXPECT_EQ(pulled, "fffc fffd fffe ffff ");
    // SYNC is never undefined: L from before the first event, then straight to each new level.
    std::string sync = changes_of(*b.cpu->port("SYNC"));
    EXPECT_EQ(sync.substr(0, 4), "-1L ");
    EXPECT_EQ(sync.find('u'), std::string::npos) << sync;
}
