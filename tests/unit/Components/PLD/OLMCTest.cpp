#include "Core/Components/PLD/OLMC.h"

#include "tests/unit/Components/PartHarness.h"

#include "Core/Components/PLD/ATF22V10C.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Pins: Clk=1, A1..C1=2..4, Q1..Q3=14..16 declared as written; _Q4=17 active low.
const std::string head = "GAL22V10\n"
                         "name\n"
                         "Clk A1 B1 C1 NC NC NC NC NC NC NC GND\n"
                         "NC Q1 Q2 Q3 /Q4\n";

struct Stimulus
{
    const char* pin;
    const char* waveform;  // "time:letter ..."
};

struct Scenario
{
    const char* name;
    const char* equations;
    std::vector<Stimulus> stimuli;
    std::vector<Stimulus> want;  // the changes of each output pin, as changes_of gives them
};

/// Runs the program with delay 10 ns for 300 ns and gives the changes of the named pins.
std::vector<std::string> run(const Scenario& s)
{
    PartHarness h;
    std::string source = head + s.equations + "\nDESCRIPTION\n";
    Component* device =
        h.part("ATF22V10C", "u1(delay=10,program=" + ATF22V10C::_encode_hdl_string(source) + ")");
    std::vector<std::pair<Port*, std::string>> sources;
    for (const Stimulus& st : s.stimuli) {
        Port* src = h.source(st.pin);
        h.net(st.pin, {src, device->port(st.pin)});
        sources.emplace_back(src, st.waveform);
    }
    simulator()->reset(300);
    for (const auto& [src, waveform] : sources) {
        std::istringstream in(waveform);
        int time;
        char colon;
        std::string letter;
        while (in >> time >> colon >> letter)
            src->set(Value(letter), time);
    }
    simulator()->simulate(300);
    std::vector<std::string> changes;
    for (const Stimulus& w : s.want)
        changes.push_back(changes_of(*device->port(w.pin)));
    return changes;
}

}  // namespace

TEST(OLMCTest, Timelines)
{
    const Scenario scenarios[] = {
        {"transport delay, pulse shorter than it passes",
         "Q1 = A1 * B1",
         {{"A1", "0:H"}, {"B1", "0:L 50:H 52:L"}},
         {{"Q1", "-30L 0u 10L 60H 62L "}}},
        {"U to H is no edge; data changing with the edge is taken",
         "Q1.R = A1",
         {{"Clk", "0:L 20:H 40:L 60:u 80:H 100:L 120:H"}, {"A1", "0:H 120:L"}},
         {{"Q1", "-30L 30H 130L "}}},
        {"AR beats SP, acts without a clock and at U makes the register U; SP at U too",
         "AR = B1\nSP = C1\nQ1.R = A1",
         {{"Clk", "0:L 20:H 40:L 60:H 80:L 100:H 120:L 140:H 160:L 180:H 200:L 220:H"},
          {"A1", "0:L"},
          {"B1", "0:L 90:H 120:L 160:u 175:L"},
          {"C1", "0:L 50:H 175:u 200:L"}},
         {{"Q1", "-30L 0u 30L 70H 100L 150H 170u 230L "}}},
        {"tristate L floats and U undefines the pin; feedback keeps the logic value, a delay later",
         "Q1.T = A1\nQ1.E = B1\nQ2 = Q1",
         {{"A1", "0:H"}, {"B1", "0:H 30:L 60:u 90:H"}},
         {{"Q1", "-30L 0u 10H 40z 70u 100H "}, {"Q2", "-30L 0u 20H "}}},
        {"active-low pins start inverted; feedback reads ahead of the pin's inversion",
         "Q4 = A1\nQ3 = Q4\nQ1.R = A1",
         {{"Clk", "0:L"}, {"A1", "0:H 40:L"}},
         {{"_Q4", "-30H 0u 10L 50H "}, {"Q3", "-30L 0u 20H 60L "}, {"Q1", "-30L "}}},
    };
    for (const Scenario& s : scenarios) {
        std::vector<std::string> got = run(s);
        for (std::size_t i = 0; i < s.want.size(); ++i)
            EXPECT_EQ(got[i], s.want[i].waveform) << s.name << ": " << s.want[i].pin;
    }
}
