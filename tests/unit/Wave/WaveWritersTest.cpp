#include "Wave/Progress.h"
#include "Wave/VcdWriter.h"
#include "Wave/WaveJsonWriter.h"
#include "Wave/WaveSignals.h"
#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Simulation/ValueHistory.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// A history from "time:letters" pairs.
std::unique_ptr<ValueHistory> history(unsigned width, const std::vector<std::pair<int, const char*>>& entries)
{
    auto h = std::make_unique<ValueHistory>(width);
    for (const auto& [time, letters] : entries)
        h->set(Value(letters), time);
    return h;
}

TEST(WaveSignals, BitStatesMapOntoTheFourOfAValueChangeDump)
{
    std::string letters = "LlHhnNpPzZuUxX";
    std::string states;
    for (char c : letters)
        states += vcd_state(c);
    EXPECT_EQ(states, "00110011zzxxxx");
}

TEST(VcdWriter, ScopesVectorsAndOnlyTheChangesOfTheRun)
{
    // Before 0 folds into the value at 0; a repeated value and one after the end are not changes.
    auto clk = history(1, {{-1, "L"}, {10, "H"}, {20, "H"}, {30, "p"}, {40, "z"}, {90, "L"}});
    auto bus = history(4, {{0, "uuuu"}, {10, "LHzH"}, {30, "LHZH"}});
    std::vector<WaveSignal> signals = {{{}, "clk", "clk", clk.get()},
                                       {{"u1", "in"}, "bus", "u1.in.bus", bus.get()}};
    std::ostringstream out;
    write_vcd(out, "top", signals, 50);
    EXPECT_EQ(out.str(), "$version morvane-wave $end\n"
                         "$timescale 1 ns $end\n"
                         "$scope module top $end\n"
                         "$var wire 1 ! clk $end\n"
                         "$scope module u1 $end\n"
                         "$scope module in $end\n"
                         "$var wire 4 \" bus [3:0] $end\n"
                         "$upscope $end\n"
                         "$upscope $end\n"
                         "$upscope $end\n"
                         "$enddefinitions $end\n"
                         "#0\n$dumpvars\n0!\nbxxxx \"\n$end\n"
                         "#10\n1!\nb01z1 \"\n"
                         "#40\nz!\n"
                         "#50\n");
}

TEST(WaveJsonWriter, SamplesBitsAndBusesOverTheWindow)
{
    auto bit = history(1, {{0, "L"}, {20, "H"}, {40, "n"}, {50, "p"}, {60, "z"}, {70, "u"}});
    auto bus = history(12, {{0, "zzzzzzzzzzzz"},
                            {20, "LLLLHHHHLLHL"},
                            {40, "LLLLHHHHLLHL"},
                            {50, "LLLLLLLLLLLL"},
                            {60, "LLLLLLLLLLLu"}});
    std::vector<WaveSignal> signals = {{{}, "b", "b", bit.get()}, {{"u1"}, "q", "u1.q", bus.get()}};
    std::ostringstream out;
    write_wavejson(out, "top", signals, WaveWindow{0, 70, 10});
    EXPECT_EQ(out.str(), "{\"signal\": [\n"
                         "  {\"name\": \"b\", \"wave\": \"0.1.duzx\"},\n"
                         "  {\"name\": \"u1.q\", \"wave\": \"z.=..=x.\", \"data\": [\"f2\", \"0\"]}\n"
                         "],\n \"head\": {\"text\": \"top, 0 to 70 ns, 10 ns a period\"}}\n");
}

TEST(WaveJsonWriter, WindowsAreFromToAndAStepAboveZero)
{
    struct Case
    {
        const char* text;
        bool valid;
    };
    for (const Case& c :
         {Case{"0:100:10", true}, Case{"5:5:1", true}, Case{"10:5:1", false}, Case{"0:10:0", false},
          Case{"-1:5:1", false}, Case{"0:10:1ns", false}, Case{"0:10", false}, Case{"a:b:c", false}}) {
        WaveWindow window;
        EXPECT_EQ(window.parse(c.text), c.valid) << c.text;
    }
}

class WaveSignalsOfACircuit : public ::testing::Test
{
protected:
    void SetUp() override
    {
        dir.write("half.ctc",
                  "Pin Input a b\nPin Output s\nUnit Xor x\nNet a a x.a\nNet b b x.b\nNet s x.out s\n");
        dir.write("main.ctc", "Circuit Half \"half.ctc\"\n"
                              "Pin Input a b\nPin Output s\nUnit Half h\n"
                              "Net a a h.a\nNet b b h.b\nNet s h.s s\n");
        root.reset(CircuitFileReader::new_circuit("main.ctc"));
    }

    std::string names(const std::string& paths)
    {
        std::string text;
        for (const WaveSignal& signal : select_wave_signals(*root, paths)) {
            for (const std::string& scope : signal.scope)
                text += scope + "/";
            text += signal.name + " ";
        }
        return text;
    }

    TempDir dir;
    std::unique_ptr<Circuit> root;
};

TEST_F(WaveSignalsOfACircuit, PathsNamePortsNetsAndParts)
{
    // A net sharing its scope with a port of its name is marked as the table marks nets.
    EXPECT_EQ(names(""), "a b s #a #b #s ");
    EXPECT_EQ(names("h.s, %h.s, s, s"), "h/s h/#s s ");
    EXPECT_EQ(names("h.x"), "h/x/a h/x/b h/x/out ");
    EXPECT_EQ(names("h"), "h/a h/b h/s h/#a h/#b h/#s ");
    EXPECT_EQ(error_of([&] { names("a,h.nothing"); }), "Error: signal 'h.nothing' cannot be found.");
    EXPECT_EQ(error_of([&] { names("%h.x"); }), "Error: signal 'h.x' cannot be found.");
}

TEST(Progress, LineShowsTheTimeReachedAndItsShare)
{
    char line[64];
    std::size_t length = Progress::format(line, sizeof line, 1500, 6000);
    EXPECT_EQ(std::string(line, length), "\rSimulated 1500 of 6000 ns (25%)\033[K");
    Progress::format(line, sizeof line, -2147483647 - 1, 6000);
    EXPECT_STREQ(line, "\rSimulated 0 of 6000 ns (0%)\033[K");
}

}  // namespace
