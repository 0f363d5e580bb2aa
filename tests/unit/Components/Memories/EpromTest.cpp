#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/TempDir.h"

#include "Core/Components/Memories/MC27C64.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

TEST(EpromTest, TruthTable)
{
    struct Row
    {
        const char* cs;  // "_CS"
        const char* oe;  // "_OE"
        bool a_defined;  // address 0x1234, or the same with one bit u
        const char* d;   // one delay later
    };
    const Row rows[] = {
        {"H", "L", true, "ZZZZZZZZ"},  {"h", "u", true, "ZZZZZZZZ"}, {"L", "L", true, "HLHLLHLH"},
        {"l", "l", false, "UUUUUUUU"}, {"L", "H", true, "ZZZZZZZZ"}, {"L", "u", true, "UUUUUUUU"},
        {"L", "z", true, "UUUUUUUU"},  {"u", "L", true, "UUUUUUUU"}, {"z", "H", true, "UUUUUUUU"},
    };
    for (const Row& r : rows) {
        // 8192 words in the object: too large for the stack.
        auto rom = std::make_unique<MC27C64>("rom", 10);
        rom->write(0x1234, Value("HLHLLHLH"));
        // Unconnected inputs read their own records.
        rom->port("_CS")->set(Value(r.cs), 0);
        rom->port("_OE")->set(Value(r.oe), 0);
        rom->port("A")->set(r.a_defined ? number(0x1234, 13) : Value("HLLHLLLHHLHLu"), 0);
        rom->evaluate(10);
        EXPECT_EQ(record_of(*rom->port("D")), std::string("10") + r.d + " ") << r.cs << r.oe << r.a_defined;
        // A word nothing has loaded.
        EXPECT_EQ(rom->read_word(7, 0), "uuuuuuuu");
    }
}

TEST(EpromTest, AddressesWrapAtTheEndOfTheChip)
{
    struct Row
    {
        const char* parameters;  // of the part
        int size;                // bytes of the raw file, see byte_at
        int address;             // where the file's last byte lands
        const char* message;     // logged by the load
    };
    // Not periodic in 256, so that the first and the last byte of 8193 differ.
    auto byte_at = [](int i) { return (i + i / 256) & 0xff; };
    const Row rows[] = {
        {"rom(rawfile=r.bin)", 8193, 0,
         "0 [rom(27C64) in top | INFO] Loaded 8193 bytes from file 'r.bin' into address 0x0000 in 'rom'."},
        {"rom(rawfile=r.bin,rawaddress=0x2005)", 2, 6,
         "0 [rom(27C64) in top | INFO] Loaded 2 bytes from file 'r.bin' into address 0x2005 in 'rom'."},
    };
    for (const Row& r : rows) {
        TempDir dir;
        std::string content;
        for (int i = 0; i < r.size; ++i)
            content += static_cast<char>(byte_at(i));
        dir.write("r.bin", content);
        PartHarness h;
        LineLog log;
        h.root.set_simlog(&log);
        auto* rom = dynamic_cast<MC27C64*>(h.part("27C64", r.parameters));
        Value last(8);
        last.set_to(byte_at(r.size - 1));
        EXPECT_EQ(rom->read(r.address), last) << r.parameters;
        ASSERT_EQ(log.lines.size(), 1u) << r.parameters;
        EXPECT_EQ(log.lines[0], r.message) << r.parameters;
        h.root.set_simlog(nullptr);
    }
}

TEST(EpromTest, AddressPulseShorterThanTheAccessTimeReachesTheOutputWhole)
{
    PartHarness h;
    auto* rom = dynamic_cast<MC27C64*>(h.part("27C64", "rom(cells=1:11;2:22)"));
    Port* a = h.source("a", 13);
    Port* oe = h.source("oe");
    Port* cs = h.source("cs");
    h.net("a", {a, rom->port("A")});
    h.net("oe", {oe, rom->port("_OE")});
    h.net("cs", {cs, rom->port("_CS")});
    Net* d = h.net("d", {rom->port("D")});
    simulator()->reset(1000);
    cs->set(Value("L"), 0);
    oe->set(Value("L"), 0);
    a->set(number(1, 13), 0);
    a->set(number(2, 13), 200);
    a->set(number(1, 13), 230);
    simulator()->simulate(1000);
    EXPECT_EQ(changes_of(*d), "120LLLHLLLH 320LLHLLLHL 350LLLHLLLH ");
}
