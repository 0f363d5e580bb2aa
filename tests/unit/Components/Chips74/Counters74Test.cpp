#include "tests/unit/Components/PartHarness.h"

#include "Core/Components/Chips74/DM74LS191.h"
#include "Core/Components/Chips74/SN74AS867.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

struct Stimulus
{
    int time;           // ns
    const char* port;   // input of the part
    const char* value;  // letters
};

// A counter from the factory with a delay of 10 ns, a stimulus on every input and a net on every
// output.
struct CounterBench
{
    CounterBench(const char* type, std::vector<const char*> inputs, std::vector<const char*> outputs)
    {
        part = h.part(type, "c(delay=10)");
        h.root.set_simlog(&log);
        for (const char* name : inputs) {
            Port* in = part->port(name);
            stimuli[name] = h.source(name, static_cast<int>(in->size()));
            h.net(name, {stimuli[name], in});
        }
        for (const char* name : outputs)
            nets[name] = h.net(name, {part->port(name)});
        simulator()->reset(1000);
    }

    void run(const std::vector<Stimulus>& list)
    {
        for (const Stimulus& s : list)
            stimuli.at(s.port)->set(Value(s.value), s.time);
        CaptureStdout();
        simulator()->simulate(1000);
        trace = GetCapturedStdout();
    }

    PartHarness h;
    LineLog log;                           // what the part logs
    Component* part = nullptr;             // the counter
    std::map<std::string, Port*> stimuli;  // by input name
    std::map<std::string, Net*> nets;      // by output name
    std::string trace;                     // standard output of the run
};

struct Case
{
    const char* what;                 // the behaviour
    std::vector<Stimulus> stimuli;    // applied before the run
    const char* count;                // changes of the count output
    const char* rco;                  // changes of "_RCO"
    std::vector<std::string> logged;  // lines of the sim log
    const char* trace;                // start of the trace on standard output; "" for none
};

}  // namespace

TEST(Counters74Test, SN74AS867Modes)
{
    // S1 S0: L L clear, L H down, H L load, H H up. Inputs at 0 are evaluated at 10, when the clock's
    // earlier level is read at -10 and is undefined. Later edges: CLK H at 20, 60, 100, 140.
    const std::vector<Stimulus> clock = {{0, "CLK", "L"},   {20, "CLK", "H"},  {40, "CLK", "L"},
                                         {60, "CLK", "H"},  {80, "CLK", "L"},  {100, "CLK", "H"},
                                         {120, "CLK", "L"}, {140, "CLK", "H"}, {160, "CLK", "L"}};
    auto with_clock = [&clock](std::vector<Stimulus> list) {
        list.insert(list.begin(), clock.begin(), clock.end());
        return list;
    };
    auto decrement_error = [](int t) {
        return "2 [c(74AS867) in top | T=" + std::to_string(t) +
               " ns | ERROR] Evaluation error: trying to decrement internal unknown value 'UUUUUUUU'.\n";
    };
    const char* down_first =
        "867: some input is undefined at t=10/it=0: clk0=u, clk1=L, s0=H, s1=L, _ent=L, _enp=L";
    // clang-format off
    const Case cases[] = {
        {"clear needs no clock", {{0, "S1", "L"}, {0, "S0", "L"}}, "10LLLLLLLL ", "10H ", {}, ""},
        {"load at an edge, then up through 255 to 0",
         with_clock({{0, "S1", "H"}, {0, "S0", "L"}, {0, "_ENT", "L"}, {0, "_ENP", "L"}, {0, "HA", "HHHHHHHL"},
                     {45, "S0", "H"}}),
         "10uuuuuuuu 30HHHHHHHL 70HHHHHHHH 110LLLLLLLL 150LLLLLLLH ", "10u 30H 70L 110H ", {}, ""},
        {"load, then down through 0 to 255",
         with_clock({{0, "S1", "H"}, {0, "S0", "L"}, {0, "_ENT", "L"}, {0, "_ENP", "L"}, {0, "HA", "LLLLLLLH"},
                     {45, "S1", "L"}, {45, "S0", "H"}}),
         "10uuuuuuuu 30LLLLLLLH 70LLLLLLLL 110HHHHHHHH 150HHHHHHHL ", "10u 30H 70L 110H ", {}, ""},
        {"load ignores the enables; counting waits for both; _RCO ignores them",
         with_clock({{0, "S1", "H"}, {0, "S0", "L"}, {0, "_ENT", "H"}, {0, "_ENP", "L"}, {0, "HA", "HHHHHHHH"},
                     {45, "S0", "H"}, {85, "_ENT", "L"}, {85, "_ENP", "H"}, {125, "_ENP", "L"}}),
         "10uuuuuuuu 30HHHHHHHH 150LLLLLLLL ", "10u 30H 55L 150H ", {}, ""},
        {"undefined inputs don't stop a load", with_clock({{0, "S1", "H"}, {0, "S0", "L"}, {0, "HA", "LHLHLHLH"}}),
         "10uuuuuuuu 30LHLHLHLH ", "10u 30H ", {}, ""},
        {"a count mode's first evaluation sees no earlier clock: undefined",
         with_clock({{0, "S1", "L"}, {0, "S0", "H"}, {0, "_ENT", "L"}, {0, "_ENP", "L"}}), "10uuuuuuuu ", "10u ",
         {decrement_error(30), decrement_error(70), decrement_error(110), decrement_error(150)}, down_first},
        {"an undefined enable destroys a cleared count; a clear mends it",
         with_clock({{0, "S1", "L"}, {0, "S0", "L"}, {0, "_ENT", "L"}, {45, "S0", "H"}, {90, "S0", "L"}}),
         "10LLLLLLLL 55uuuuuuuu 100LLLLLLLL ", "10H 55u 100H ", {},
         "867: some input is undefined at t=55/it=45: clk0=L, clk1=L, s0=H, s1=L, _ent=L, _enp=u"},
    };
    // clang-format on
    for (const Case& c : cases) {
        CounterBench b("74AS867", {"S0", "S1", "_ENT", "_ENP", "CLK", "HA"}, {"_RCO", "QA"});
        b.run(c.stimuli);
        EXPECT_EQ(changes_of(*b.nets["QA"]), c.count) << c.what;
        EXPECT_EQ(changes_of(*b.nets["_RCO"]), c.rco) << c.what;
        EXPECT_EQ(b.log.lines, c.logged) << c.what;
        EXPECT_EQ(b.trace.substr(0, std::string(c.trace).size()), c.trace) << c.what;
        EXPECT_EQ(b.trace.empty(), *c.trace == '\0') << c.what;
    }
}

TEST(Counters74Test, DM74LS191Modes)
{
    // Edges: CLK H at 20, 60, 100; "_RCO" may go L only while CLK is L (40, 80, 120 on).
    const std::vector<Stimulus> clock = {{0, "CLK", "L"},  {20, "CLK", "H"}, {40, "CLK", "L"},
                                         {60, "CLK", "H"}, {80, "CLK", "L"}, {100, "CLK", "H"},
                                         {120, "CLK", "L"}};
    auto with_clock = [&clock](std::vector<Stimulus> list) {
        list.insert(list.begin(), clock.begin(), clock.end());
        return list;
    };
    auto undefined_at = [](int t, const char* step) {
        return "1 [c(74LS191) in top | T=" + std::to_string(t) +
               " ns | WARNING] the internal counter state is UNDEFINED when a counter " + step +
               " is attempted.";
    };
    struct Case191
    {
        const char* what;                 // the behaviour
        std::vector<Stimulus> stimuli;    // applied before the run
        const char* count;                // changes of "QDCBA"
        const char* max_min;              // changes of "MAXMIN"
        const char* rco;                  // changes of "_RCO"
        std::vector<std::string> logged;  // lines of the sim log
    };
    // clang-format off
    const Case191 cases[] = {
        {"load follows DCBA, whatever the clock",
         with_clock({{0, "_LOAD", "L"}, {0, "_CTEN", "L"}, {0, "D_U", "L"}, {0, "DCBA", "LHLH"}, {50, "DCBA", "HHHH"}}),
         "10LHLH 60HHHH ", "10L 60H ", "10H 60L 70H 90L 110H 130L ", {}},
        {"up through 15 to 0",
         with_clock({{0, "_LOAD", "L"}, {0, "_CTEN", "L"}, {0, "D_U", "L"}, {0, "DCBA", "HHHL"}, {10, "_LOAD", "H"}}),
         "10HHHL 30HHHH 70LLLL 110LLLH ", "10L 30H 70L ", "10H 50L 70H ", {}},
        {"down through 0 to 15, which is no end counting down",
         with_clock({{0, "_LOAD", "L"}, {0, "_CTEN", "L"}, {0, "D_U", "H"}, {0, "DCBA", "LLLH"}, {10, "_LOAD", "H"}}),
         "10LLLH 30LLLL 70HHHH 110HHHL ", "10L 30H 70L ", "10H 50L 70H ", {}},
        {"_CTEN H holds the count and _RCO",
         with_clock({{0, "_LOAD", "L"}, {0, "_CTEN", "H"}, {0, "D_U", "L"}, {0, "DCBA", "HHHH"}, {10, "_LOAD", "H"}}),
         "10HHHH ", "10H ", "10H ", {}},
        {"D_U undefined at an edge destroys the count",
         with_clock({{0, "_LOAD", "L"}, {0, "_CTEN", "L"}, {0, "D_U", "L"}, {0, "DCBA", "LHLH"}, {10, "_LOAD", "H"},
                     {55, "D_U", "u"}, {65, "D_U", "L"}}),
         "10LHLH 30LHHL 70uuuu ", "10L 65u ", "10H 65u ", {undefined_at(109, "increment")}},
        {"counting down from the undefined start",
         {{0, "_LOAD", "H"}, {0, "_CTEN", "L"}, {0, "D_U", "H"}, {0, "CLK", "L"}, {20, "CLK", "H"}},
         "10uuuu ", "10u ", "10u ", {undefined_at(29, "decrement")}},
    };
    // clang-format on
    for (const Case191& c : cases) {
        CounterBench b("74LS191", {"_CTEN", "D_U", "CLK", "_LOAD", "DCBA"}, {"MAXMIN", "_RCO", "QDCBA"});
        b.run(c.stimuli);
        EXPECT_EQ(changes_of(*b.nets["QDCBA"]), c.count) << c.what;
        EXPECT_EQ(changes_of(*b.nets["MAXMIN"]), c.max_min) << c.what;
        EXPECT_EQ(changes_of(*b.nets["_RCO"]), c.rco) << c.what;
        EXPECT_EQ(b.log.lines, c.logged) << c.what;
        EXPECT_EQ(b.trace, "") << c.what;
    }
}
