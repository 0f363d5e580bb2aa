#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/TempDir.h"

#include "Core/Components/Memories/IDT7132LA.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The changes of a waveform at or after `from`, as changes_of writes them.
std::string changes_from(const ValueHistory& history, int from)
{
    std::string all = changes_of(history);
    std::string text;
    std::size_t start = 0;
    while (start < all.size()) {
        std::size_t end = all.find(' ', start);
        std::string change = all.substr(start, end + 1 - start);
        if (std::stoi(change) >= from)
            text += change;
        start = end + 1;
    }
    return text;
}

/// The messages without their prefix up to the level, each once, in order of first appearance.
std::vector<std::string> distinct_texts(const std::vector<std::string>& lines)
{
    std::vector<std::string> texts;
    for (const std::string& line : lines) {
        std::string text = line.substr(line.find("WARNING] ") + 9);
        if (std::find(texts.begin(), texts.end(), text) == texts.end())
            texts.push_back(text);
    }
    return texts;
}

/// One side's stimuli.
struct SideStimuli
{
    Port* a;   // address
    Port* io;  // what the outside drives on the data bus; Z to let go
    Port* rw;  // "RW"
    Port* oe;  // "_OE"
    Port* ce;  // "_CE"
};

/// A RAM from the factory in a circuit with a log, a stimulus on every input of both sides, and a
/// net on each data bus that the RAM shares with the outside driver.
struct DualBench
{
    explicit DualBench(const std::string& spec)
    {
        h.root.set_simlog(&log);
        ram = dynamic_cast<IDT7132LA*>(h.part("IDT7132LA", spec));
        const char* suffix[2] = {"L", "R"};
        for (int side = 0; side < 2; ++side) {
            std::string s = suffix[side];
            SideStimuli& st = stimuli[side];
            st = SideStimuli{h.source("a" + s, 11), h.source("io" + s, 8), h.source("rw" + s),
                             h.source("oe" + s), h.source("ce" + s)};
            h.net("A" + s, {st.a, ram->port("A" + s)});
            io[side] = h.net("IO" + s, {st.io, ram->port("IO" + s)});
            h.net("RW" + s, {st.rw, ram->port("RW" + s)});
            h.net("_OE" + s, {st.oe, ram->port("_OE" + s)});
            h.net("_CE" + s, {st.ce, ram->port("_CE" + s)});
        }
        simulator()->reset(100000);
    }
    /// One side's inputs at one time; an empty text or a negative address leaves that input alone.
    void drive(int side, int time, const char* ce, const char* oe, const char* rw, int word, const char* data)
    {
        SideStimuli& st = stimuli[side];
        for (auto [port, text] :
             {std::pair<Port*, const char*>{st.ce, ce}, {st.oe, oe}, {st.rw, rw}, {st.io, data}}) {
            if (*text != '\0')
                port->set(Value(text), time);
        }
        if (word >= 0)
            st.a->set(number(word, 11), time);
    }
    /// Both sides disabled, reading, address 0, nothing driven from outside.
    void idle(int time)
    {
        for (int side = 0; side < 2; ++side)
            drive(side, time, "H", "H", "H", 0, "ZZZZZZZZ");
    }
    Port* busy(int side) { return ram->port(side == 0 ? "BUSYL" : "BUSYR"); }

    PartHarness h;
    LineLog log;                  // what the RAM reported
    IDT7132LA* ram = nullptr;     // the part
    SideStimuli stimuli[2] = {};  // left, right
    Net* io[2] = {};              // the data buses outside
};

const char* const side_name[2] = {"left", "right"};

}  // namespace

TEST(DualPortRamTest, WriteOnOneSideReadOnEither)
{
    struct Row
    {
        int writer;  // side
        int reader;  // side
    };
    const Row rows[] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};
    for (const Row& r : rows) {
        std::string where = std::string(side_name[r.writer]) + " to " + side_name[r.reader];
        DualBench b("ram");
        b.idle(0);
        // Above 0x3ff: all eleven address bits count.
        b.drive(r.writer, 100, "L", "", "L", 0x405, "HLHLLHLH");
        b.drive(r.writer, 300, "H", "", "H", -1, "ZZZZZZZZ");
        b.drive(r.reader, 400, "L", "L", "", 0x405, "");
        simulator()->simulate(1000);
        // Stored tAW after address and enable, and again at each later evaluation of the pulse.
        EXPECT_EQ(b.ram->get_value(0x405, 189), "uuuuuuuu") << where;
        EXPECT_EQ(b.ram->get_value(0x405, 190), "HLHLLHLH") << where;
        // Out of high impedance after tLZ, undefined data until the word at tAA.
        EXPECT_EQ(changes_from(*b.io[r.reader], 400), "405uuuuuuuu 500HLHLLHLH ") << where;
        EXPECT_TRUE(b.log.lines.empty()) << where;
    }
}

TEST(DualPortRamTest, OutputStageFollowsOutputAndChipEnable)
{
    struct Row
    {
        const char* spec;  // instance
        const char* oe;    // "_OE" from 200 on, with "_CE" L from 200 to 400
        const char* g;     // changes of the output stage's enable
        const char* io;    // changes of the bus from 200 on
    };
    // Out of high impedance after tLZ with no data yet, enabled at tAOE and again at tAA, when the
    // word is there; released tHZ after "_CE" rises. The bus shows U and u alike as u.
    const Row rows[] = {
        {"ram(cells=1:81)", "L", "40H 205u 240L 440H ", "205uuuuuuuu 300HLLLLLLH 440zzzzzzzz "},
        // A name that isn't a grade means the fastest, LA20. tLZ is 0: the first step runs at the
        // time of the change itself.
        {"ram(device=la100,cells=1:81)", "L", "10H 200u 211L 410H ", "200uuuuuuuu 220HLLLLLLH 410zzzzzzzz "},
        // An undefined output enable moves nothing; the bus stays released.
        {"ram(cells=1:81)", "u", "40H ", ""},
    };
    for (const Row& r : rows) {
        DualBench b(r.spec);
        b.idle(0);
        b.drive(0, 0, "", "", "", 1, "");
        b.drive(0, 200, "L", r.oe, "", -1, "");
        b.drive(0, 400, "H", "", "", -1, "");
        simulator()->simulate(1000);
        EXPECT_EQ(changes_of(*b.ram->output_stage(0)->port("_g")), r.g) << r.spec << " " << r.oe;
        EXPECT_EQ(changes_from(*b.io[0], 200), r.io) << r.spec << " " << r.oe;
    }
}

TEST(DualPortRamTest, WritePulseMustLastTheWritePulseWidth)
{
    struct Row
    {
        int width;           // ns of "RW" L
        const char* stored;  // word 3 afterwards
    };
    const Row rows[] = {{54, "uuuuuuuu"}, {55, "uuuuuuuu"}, {56, "HHLLHHLL"}};
    for (const Row& r : rows) {
        DualBench b("ram");
        b.idle(0);
        b.drive(1, 0, "L", "", "", 3, "HHLLHHLL");
        b.drive(1, 200, "", "", "L", -1, "");
        b.drive(1, 200 + r.width, "", "", "H", -1, "");
        simulator()->simulate(1000);
        EXPECT_EQ(b.ram->get_value(3, 1000), r.stored) << r.width;
    }
}

TEST(DualPortRamTest, CollisionsRefuseTheWriteAndTheLaterSideGetsBusy)
{
    struct Row
    {
        const char* what;      // the case
        const char* left_rw;   // "RWL"
        int left_at;           // ns, left address and enable
        int left_word;         // address
        const char* right_rw;  // "RWR"
        int right_at;          // ns
        int right_word;        // address
        const char* word7;     // afterwards
        const char* busy_l;    // changes of "BUSYL"
        const char* busy_r;    // changes of "BUSYR"
        int reported_at;       // ns, the first collision report; 0 for none
    };
    const Row rows[] = {
        // The write is tested tAW after its inputs: one that began before the other side came is stored.
        {"left writes later", "L", 110, 7, "H", 100, 7, "LLHHHHLL", "60H 160L ", "60H ", 200},
        {"right writes earlier", "H", 110, 7, "L", 100, 7, "HHHHLLLL", "60H 160L ", "60H ", 200},
        {"on a tie the right side loses", "L", 100, 7, "H", 100, 7, "LLHHHHLL", "60H ", "60H 150L ", 190},
        {"both read", "H", 100, 7, "H", 110, 7, "LLHHHHLL", "60H ", "60H ", 0},
        {"other address", "L", 110, 7, "H", 100, 8, "HHHHLLLL", "60H ", "60H ", 0},
    };
    for (const Row& r : rows) {
        DualBench b("ram(cells=7:3c;8:99)");
        b.idle(0);
        // A writer keeps its output stage closed.
        bool left_writes = *r.left_rw == 'L';
        bool right_writes = *r.right_rw == 'L';
        b.drive(0, r.left_at, "L", left_writes ? "H" : "L", r.left_rw, r.left_word,
                left_writes ? "HHHHLLLL" : "");
        b.drive(1, r.right_at, "L", right_writes ? "H" : "L", r.right_rw, r.right_word,
                right_writes ? "HHHHLLLL" : "");
        simulator()->simulate(1000);
        EXPECT_EQ(b.ram->get_value(7, 1000), r.word7) << r.what;
        EXPECT_EQ(changes_of(*b.busy(0)), r.busy_l) << r.what;
        EXPECT_EQ(changes_of(*b.busy(1)), r.busy_r) << r.what;
        EXPECT_EQ(distinct_texts(b.log.lines),
                  r.reported_at != 0 ? std::vector<std::string>{"Access collision at address LLLLLLLLHHH"}
                                     : std::vector<std::string>{})
            << r.what;
        if (r.reported_at != 0) {
            EXPECT_NE(b.log.lines.front().find("T=" + std::to_string(r.reported_at) + " ns"),
                      std::string::npos);
        }
    }
}

TEST(DualPortRamTest, LoadersResetAndRange)
{
    TempDir dir;
    dir.write("image.prg", std::string("\x10\x00\x11\x22", 4));
    dir.write("big.bin", "\x01\x02\x03");
    PartHarness h;
    LineLog log;
    h.root.set_simlog(&log);
    auto* ram = dynamic_cast<IDT7132LA*>(h.part("IDT7132LA", "d(cbmfile=image.prg,cells=11:33;800:1)"));
    EXPECT_EQ(ram->get_value(0x10, 0), "LLLHLLLH");
    EXPECT_EQ(ram->get_value(0x11, 0), "LLHHLLHH");
    ASSERT_EQ(log.lines.size(), 2u);
    EXPECT_NE(log.lines[1].find("combination '800:1'"), std::string::npos);

    ram->set_value(0x10, 5, Value("HHHHHHHH"));
    ram->set_value(0x20, 5, Value("HHHHHHHH"));
    simulator()->reset(100);
    EXPECT_EQ(ram->get_value(0x10, 50), "LLLHLLLH");
    EXPECT_EQ(ram->get_value(0x20, 50), "uuuuuuuu");

    EXPECT_THROW(ram->get_value(2048, 0), std::out_of_range);
    EXPECT_THROW(ram->read_word(-1, 0), std::out_of_range);
    EXPECT_THROW(ram->set_value(2048, 0, Value("LLLLLLLL")), std::out_of_range);
    ParaMap params{std::string("(rawaddress=0x7fe,rawfile=big.bin)")};
    EXPECT_THROW(ram->init_cells_from_params(&h.root, params), std::out_of_range);
    EXPECT_EQ(ram->get_value(0x7ff, 0), "LLLLLLHL");
}
