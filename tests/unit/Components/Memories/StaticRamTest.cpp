#include "tests/unit/Components/PartHarness.h"

#include "Core/Components/Memories/HM62256B.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

/// A RAM from the factory with a stimulus on each input and a net on "Dout".
struct RamBench
{
    explicit RamBench(const std::string& spec)
    {
        ram = dynamic_cast<HM62256B*>(h.part("HM62256B", spec));
        h.net("a", {a, ram->port("A")});
        h.net("din", {din, ram->port("Din")});
        h.net("we", {we, ram->port("_WE")});
        h.net("oe", {oe, ram->port("_OE")});
        h.net("cs", {cs, ram->port("_CS")});
        dout = h.net("dout", {ram->port("Dout")});
        simulator()->reset(10000);
    }
    /// All inputs at one time; an empty text leaves that input alone.
    /// A negative address leaves "A" alone too.
    void drive(int time, const char* cs_text, const char* we_text, const char* oe_text, int word,
               const char* din_text)
    {
        using Stimulus = std::pair<Port*, const char*>;
        for (auto [port, text] :
             {Stimulus{cs, cs_text}, Stimulus{we, we_text}, Stimulus{oe, oe_text}, Stimulus{din, din_text}}) {
            if (*text != '\0')
                port->set(Value(text), time);
        }
        if (word >= 0)
            a->set(number(word, 15), time);
    }

    PartHarness h;
    Port* a = h.source("a", 15);     // address stimulus
    Port* din = h.source("din", 8);  // data stimulus
    Port* we = h.source("we");       // "_WE" stimulus
    Port* oe = h.source("oe");       // "_OE" stimulus
    Port* cs = h.source("cs");       // "_CS" stimulus
    HM62256B* ram = nullptr;         // the part
    Net* dout = nullptr;             // on "Dout"
};

}  // namespace

TEST(StaticRamTest, TruthTable)
{
    struct Row
    {
        const char* cs;    // "_CS"
        const char* we;    // "_WE"
        const char* oe;    // "_OE"
        bool a_defined;    // address 5, or 5 with one bit u
        const char* dout;  // one delay later
        const char* cell;  // word 5 afterwards
    };
    const char* old_word = "HLHLHLHL";
    const char* new_word = "LLLLHHHU";  // "Din", stored as it is
    const Row rows[] = {
        {"H", "L", "L", true, "ZZZZZZZZ", old_word},  {"h", "u", "u", true, "ZZZZZZZZ", old_word},
        {"L", "H", "H", true, "ZZZZZZZZ", old_word},  {"L", "H", "L", true, old_word, old_word},
        {"l", "h", "l", false, "UUUUUUUU", old_word}, {"L", "u", "L", true, "UUUUUUUU", old_word},
        {"L", "z", "L", true, "UUUUUUUU", old_word},  {"L", "H", "u", true, "UUUUUUUU", old_word},
        {"L", "L", "L", true, "ZZZZZZZZ", new_word},  {"L", "L", "H", true, "ZZZZZZZZ", new_word},
        {"L", "L", "u", true, "UUUUUUUU", new_word},  {"L", "L", "L", false, "ZZZZZZZZ", old_word},
        {"u", "L", "L", true, "UUUUUUUU", old_word},  {"z", "H", "L", true, "UUUUUUUU", old_word},
    };
    for (const Row& r : rows) {
        HM62256B ram("r", 10);
        ram.set_value(5, 0, Value(old_word));
        // Unconnected inputs read their own records.
        ram.port("_CS")->set(Value(r.cs), 0);
        ram.port("_WE")->set(Value(r.we), 0);
        ram.port("_OE")->set(Value(r.oe), 0);
        ram.port("A")->set(r.a_defined ? number(5, 15) : Value("LLLLLLLLLLLLuLH"), 0);
        ram.port("Din")->set(Value(new_word), 0);
        ram.evaluate(10);
        std::string where = std::string(r.cs) + r.we + r.oe + (r.a_defined ? " 5" : " u");
        EXPECT_EQ(record_of(*ram.port("Dout")), std::string("10") + r.dout + " ") << where;
        EXPECT_EQ(ram.get_value(5, 100), r.cell) << where;
    }
}

TEST(StaticRamTest, WriteStoresOneDelayLaterAndReadsLookBack)
{
    struct Row
    {
        int delay;         // ns
        const char* dout;  // changes of "Dout"
    };
    // Writes 0x11 to word 5 from 0 and 0x22 from 200, reads it from 100, 240 and 410.
    const Row rows[] = {
        // The read at 240 comes before the store at 270 and sees the old word.
        {70, "70zzzzzzzz 170LLLHLLLH 270zzzzzzzz 310LLLHLLLH 470zzzzzzzz 480LLHLLLHL "},
        {0, "0zzzzzzzz 100LLLHLLLH 200zzzzzzzz 240LLHLLLHL 400zzzzzzzz 410LLHLLLHL "},
    };
    for (const Row& r : rows) {
        RamBench b("r(delay=" + std::to_string(r.delay) + ")");
        b.drive(0, "L", "L", "H", 5, "LLLHLLLH");
        b.drive(100, "", "H", "L", -1, "");
        b.drive(200, "", "L", "", -1, "LLHLLLHL");
        b.drive(240, "", "H", "", -1, "");
        b.drive(400, "", "", "H", -1, "");
        b.drive(410, "", "", "L", -1, "");
        simulator()->simulate(1000);
        EXPECT_EQ(changes_of(*b.dout), r.dout) << r.delay;
        EXPECT_EQ(b.ram->get_value(5, r.delay), "LLLHLLLH") << r.delay;
        EXPECT_EQ(b.ram->get_value(5, 199 + r.delay), "LLLHLLLH") << r.delay;
        EXPECT_EQ(b.ram->get_value(5, 200 + r.delay), "LLHLLLHL") << r.delay;
        EXPECT_EQ(b.ram->get_value(5, r.delay - 1), "uuuuuuuu") << r.delay;
    }
}

TEST(StaticRamTest, EveryChangeDuringAWritePulseWritesAgain)
{
    RamBench b("r(delay=10)");
    b.drive(0, "L", "L", "H", 1, "HHHHHHHH");
    b.drive(20, "", "", "", 2, "");            // the new address gets the same data
    b.drive(30, "", "", "", -1, "LLLLLLLL");   // and then new data
    b.drive(50, "", "H", "", -1, "HLHLHLHL");  // the pulse has ended: not stored
    simulator()->simulate(1000);
    EXPECT_EQ(b.ram->get_value(1, 1000), "HHHHHHHH");
    EXPECT_EQ(b.ram->get_value(2, 39), "HHHHHHHH");
    EXPECT_EQ(b.ram->get_value(2, 1000), "LLLLLLLL");
}
