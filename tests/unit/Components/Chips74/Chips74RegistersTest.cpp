#include "Core/Components/Chips74/Chips74Registers.h"

#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Components/Chips74/Chips74FlipFlops.h"
#include "Core/Components/Basic/FlipFlop.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// The delay a part applies, whichever base it has.
int delay_of(Component* c)
{
    if (auto* single = dynamic_cast<SingleDelayComponent*>(c))
        return single->delay();
    if (auto* r374 = dynamic_cast<DM74LS374*>(c))
        return r374->delay();
    if (auto* r574 = dynamic_cast<DM74x574*>(c))
        return r574->delay();
    return -1;
}

}  // namespace

TEST(Chips74RegistersTest, FactoryRowsAndFamilyDelays)
{
    struct Row
    {
        const char* type;        // as a file names it
        const char* spec;        // instance specification
        const char* ports;       // in order, see port_list
        const char* parameters;  // the merged map
        int delay;               // ns, as applied
    };
    const char* p74 = "_SD1< _CD1< CP1< D1< Q1> _Q1> _SD2< _CD2< CP2< D2< Q2> _Q2> ";
    const char* p78 = "_CLR< _CLK< _1PRE< 1J< 1K< 1Q> _1Q> _2PRE< 2J< 2K< 2Q> _2Q> ";
    const char* p174 = "_CLR< CLK< 1Q> 1D< 2Q> 2D< 3Q> 3D< 4Q> 4D< 5Q> 5D< 6Q> 6D< ";
    const char* p273 = "_CLR< clk< D<8 Q>8 ";
    const char* p574 = "clk< _OE< Q>8 D<8 ";
    const Row rows[] = {
        {"74x74", "u", p74, "(family=LS)", 35},
        {"74x74", "u(family=F)", p74, "(family=F)", 11},
        {"74x74", "u(family=AS)", p74, "(family=AS)", 11},
        {"74x74", "u(family=ALS)", p74, "(family=ALS)", 18},
        {"74x74", "u(family=F,delay=4)", p74, "(delay=4,family=F)", 4},
        {"74LS78A", "u", p78, "(delay=20)", 20},
        {"74LS78A", "u(delay=6)", p78, "(delay=6)", 6},
        // Empty defaults: the factory applies nothing, the constructor settles on LS.
        {"74x174", "u", p174, "", 35},
        {"74x174", "u(family=F)", p174, "(family=F)", 14},
        {"74x174", "u(family=AS)", p174, "(family=AS)", 15},
        {"74x174", "u(family=ALS)", p174, "(family=ALS)", 30},
        {"74x174", "u(delay=9)", p174, "(delay=9)", 9},
        {"74x273", "u", p273, "(family=LS)", 27},
        {"74x273", "u(delay=12)", p273, "(delay=12,family=LS)", 12},
        {"74LS374", "u", p574, "(delay=28)", 28},
        {"74LS374", "u(delay=40)", p574, "(delay=40)", 40},
        // The default "delay" is merged into every instance and beats the family.
        {"74x574", "u", p574, "(delay=28,family=LS)", 28},
        {"74x574", "u(family=AS)", p574, "(delay=28,family=AS)", 28},
        {"74x574", "u(family=AS,delay=10)", p574, "(delay=10,family=AS)", 10},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* c = factory.create(r.type, r.spec);
        EXPECT_EQ(port_list(c), r.ports) << r.spec;
        EXPECT_EQ(c->get_parameter_string(), r.parameters) << r.spec;
        EXPECT_EQ(delay_of(c), r.delay) << r.type << " " << r.spec;
    }
    // Every flip-flop of the 374 takes the chip's delay.
    auto* r374 = dynamic_cast<Circuit*>(factory.create("74LS374", "r(delay=40)"));
    EXPECT_EQ(dynamic_cast<D_flip_flop*>(r374->find_component("dff[7]"))->delay(), 40);
}

TEST(Chips74RegistersTest, UnknownFamiliesThrowFromTheFactoryAndFromNewParameters)
{
    struct Row
    {
        const char* type;     // as a file names it
        const char* spec;     // instance specification
        const char* message;  // thrown
    };
    const Row rows[] = {
        {"74x74", "u(family=ls)", "Error: unknown device family of SN74x74: 'ls'."},
        {"74x74", "u(family=S,delay=3)", "Error: unknown device family of SN74x74: 'S'."},
        {"74x174", "u(family=X)", "Error: unknown device family of SN74x174: 'X'."},
        {"74x273", "u(family=ALS)", "Error: unknown/unsupported device family of SN74x273: 'ALS'."},
        {"74x574", "u(family=HC)", "Error: unknown device family of SN74x574: 'HC'."},
    };
    ComponentFactory factory;
    for (const Row& r : rows)
        EXPECT_EQ(error_of([&] { factory.create(r.type, r.spec); }), r.message) << r.spec;

    // A part that was made well fails the same way when it gets a bad family later.
    Component* ff = factory.create("74x74", "u");
    EXPECT_EQ(error_of([&] { ff->set_parameters(ParaMap(std::string("(family=X)"))); }),
              "Error: unknown device family of SN74x74: 'X'.");
}

TEST(Chips74RegistersTest, DualDFlipFlopTruthTable)
{
    struct Row
    {
        const char* cd;   // "_CD1"
        const char* sd;   // "_SD1"
        const char* cp0;  // "CP1" at the last evaluation
        const char* cp;   // "CP1" now
        const char* d;    // "D1"
        const char* q;    // "Q1" written, "-" for nothing
        const char* nq;   // "_Q1" written
    };
    const Row rows[] = {
        {"L", "H", "L", "H", "H", "l", "h"},  // clear beats the clock
        {"L", "L", "L", "L", "L", "h", "h"},  // set and clear together
        {"L", "u", "L", "L", "L", "u", "u"},  //
        {"H", "L", "L", "H", "L", "h", "l"},  // set beats the clock
        {"u", "H", "L", "H", "H", "u", "u"},  //
        {"H", "u", "L", "H", "H", "u", "u"},  //
        {"H", "H", "L", "H", "H", "h", "l"},  // rising edge
        {"H", "H", "L", "H", "L", "l", "h"},  //
        {"h", "h", "l", "h", "U", "u", "u"},  // undefined D on the edge
        {"H", "H", "H", "H", "L", "-", "-"},  // no edge: outputs hold
        {"H", "H", "H", "L", "L", "-", "-"},  //
        {"H", "H", "L", "L", "L", "-", "-"},  //
        {"H", "H", "u", "H", "L", "u", "u"},  // undefined clock before
        {"H", "H", "L", "z", "L", "u", "u"},  // undefined clock now
    };
    for (const Row& r : rows) {
        SN74x74 ff("ff", 10);
        ff.reset();  // the last evaluation at 0: the earlier clock is read at -10
        ff.port("_CD1")->set(Value(r.cd), -100);
        ff.port("_SD1")->set(Value(r.sd), -100);
        ff.port("D1")->set(Value(r.d), -100);
        ff.port("CP1")->set(Value(r.cp0), -100);
        ff.port("CP1")->set(Value(r.cp), 40);
        ff.evaluate(60);
        std::string row = std::string(r.cd) + r.sd + r.cp0 + r.cp + r.d;
        EXPECT_EQ(written(&ff, "Q1"), r.q) << row;
        EXPECT_EQ(written(&ff, "_Q1"), r.nq) << row;
        // The other flip-flop has nothing on its inputs.
        EXPECT_EQ(written(&ff, "Q2"), "u") << row;
    }
}

TEST(Chips74RegistersTest, DualJKFlipFlopTruthTable)
{
    struct Row
    {
        const char* start;  // state before: "u" fresh, "H" preset, "L" cleared
        const char* clr;    // "_CLR"
        const char* pre;    // "_1PRE"
        const char* clk;    // "_CLK" now; it was H at the last evaluation
        const char* j;      // "1J"
        const char* k;      // "1K"
        const char* q;      // "1Q" and "_1Q" written
    };
    const Row rows[] = {
        {"u", "H", "H", "L", "H", "H", "uu"},  // toggle of an undefined state
        {"H", "H", "H", "L", "H", "H", "lh"},  // toggle
        {"L", "H", "H", "L", "H", "H", "hl"},  //
        {"H", "H", "H", "L", "L", "L", "hl"},  // hold
        {"H", "H", "H", "L", "L", "H", "lh"},  // reset
        {"L", "H", "H", "L", "H", "L", "hl"},  // set
        {"L", "H", "H", "L", "u", "L", "uu"},  //
        {"H", "H", "H", "L", "H", "z", "uu"},  //
        {"H", "H", "H", "H", "L", "H", "hl"},  // no falling edge: hold
        {"L", "H", "H", "u", "H", "L", "lh"},  //
        {"L", "H", "L", "H", "L", "L", "hl"},  // preset
        {"u", "H", "u", "L", "H", "L", "uu"},  //
        {"H", "L", "H", "L", "H", "L", "lh"},  // clear beats the clock
        {"H", "L", "L", "H", "L", "L", "uu"},  // clear and preset together
        {"H", "u", "H", "L", "H", "L", "uu"},  //
    };
    for (const Row& r : rows) {
        DM74LS78A jk("jk", 10);
        // Set up the start state at 100, then the row's inputs at 150, evaluated at 200.
        std::string start = r.start;
        jk.port("_CLR")->set(Value(start == "L" ? "L" : "H"), 0);
        jk.port("_1PRE")->set(Value(start == "H" ? "L" : "H"), 0);
        jk.port("_CLK")->set(Value("H"), 0);
        jk.evaluate(100);
        jk.port("_CLR")->set(Value(r.clr), 150);
        jk.port("_1PRE")->set(Value(r.pre), 150);
        jk.port("1J")->set(Value(r.j), 150);
        jk.port("1K")->set(Value(r.k), 150);
        jk.port("_CLK")->set(Value(r.clk), 150);
        jk.evaluate(200);
        std::string row = start + r.clr + r.pre + r.clk + r.j + r.k;
        EXPECT_EQ(written(&jk, "1Q") + written(&jk, "_1Q"), r.q) << row;
        // All four pins are written on every evaluation, changed or not.
        EXPECT_EQ(record_of(*jk.port("_2Q")), "100u 200u ") << row;
    }
}

TEST(Chips74RegistersTest, JKResetForgetsTheStateButNotTheLastEvaluation)
{
    DM74LS78A jk("jk", 10);
    jk.port("_CLR")->set(Value("H"), 0);
    jk.port("_1PRE")->set(Value("L"), 0);
    jk.evaluate(200);
    EXPECT_EQ(written(&jk, "1Q") + written(&jk, "_1Q"), "hl");
    jk.reset();
    EXPECT_EQ(jk.port("1Q")->nof_values(), 0u);

    // Preset released and no clock: the state is held, and the reset made it undefined.
    jk.port("_CLR")->set(Value("H"), 0);
    jk.port("_1PRE")->set(Value("H"), 0);
    jk.evaluate(100);
    EXPECT_EQ(written(&jk, "1Q") + written(&jk, "_1Q"), "uu");

    // The clock is read back from the last evaluation before the reset, at 90, where it is H.
    jk.reset();
    jk.port("_CLR")->set(Value("H"), 0);
    jk.port("_1PRE")->set(Value("H"), 0);
    jk.port("1J")->set(Value("H"), 0);
    jk.port("1K")->set(Value("L"), 0);
    jk.port("_CLK")->set(Value("H"), 0);
    jk.port("_CLK")->set(Value("L"), 150);
    jk.evaluate(200);
    EXPECT_EQ(written(&jk, "1Q") + written(&jk, "_1Q"), "hl");
}

TEST(Chips74RegistersTest, HexDFlipFlopTruthTable)
{
    struct Row
    {
        const char* clr;  // "_CLR"
        const char* c0;   // "CLK" at the last evaluation
        const char* c1;   // "CLK" now
        const char* q;    // "1Q" to "6Q" written, "-" each for nothing
    };
    const Row rows[] = {
        {"L", "L", "H", "llllll"},  // clear beats the clock
        {"u", "L", "H", "uuuuuu"},  //
        {"z", "H", "H", "uuuuuu"},  // any clear but L and H
        {"H", "L", "H", "hluuuu"},  // each Q takes its own D; 3D to 6D are open
        {"H", "H", "H", "------"},  // no edge: nothing written
        {"H", "H", "L", "------"},  //
        {"H", "u", "H", "uuuuuu"},  // an undefined clock before, as in the first evaluation
        {"H", "L", "u", "uuuuuu"},  //
    };
    for (const Row& r : rows) {
        SN74x174 ff("ff", 10);
        ff.reset();
        ff.port("_CLR")->set(Value(r.clr), -100);
        ff.port("1D")->set(Value("H"), -100);
        ff.port("2D")->set(Value("L"), -100);
        ff.port("CLK")->set(Value(r.c0), -100);
        ff.port("CLK")->set(Value(r.c1), 40);
        ff.evaluate(60);
        std::string q;
        for (int n = 1; n <= 6; ++n)
            q += written(&ff, (std::to_string(n) + "Q").c_str());
        EXPECT_EQ(q, r.q) << r.clr << r.c0 << r.c1;
    }
}

TEST(Chips74RegistersTest, OctalFlipFlopWithClearKeepsItsStoreThroughAnUndefinedClear)
{
    PartHarness h;
    Component* reg = h.part("74x273", "r(delay=10)");
    Port* clr = h.source("clr");
    Port* clk = h.source("clk");
    Port* d = h.source("d", 8);
    h.net("clr", {clr, reg->port("_CLR")});
    h.net("clk", {clk, reg->port("clk")});
    h.net("d", {d, reg->port("D")});
    Net* q = h.net("q", {reg->port("Q")});
    simulator()->reset(1000);
    clr->set(Value("H"), 0);
    clk->set(Value("L"), 0);
    d->set(Value("LHLHHLHL"), 0);
    clk->set(Value("H"), 50);  // stores
    clr->set(Value("u"), 100);
    clk->set(Value("L"), 120);
    clk->set(Value("H"), 150);  // stores while the outputs are undefined
    d->set(Value("LLLLHHHH"), 150);
    clr->set(Value("H"), 200);  // the store shows again
    clr->set(Value("L"), 300);  // and is cleared for good
    clr->set(Value("H"), 400);
    simulator()->simulate(1000);
    EXPECT_EQ(changes_of(*q), "10uuuuuuuu 60LHLHHLHL 110uuuuuuuu 210LLLLHHHH 310LLLLLLLL ");
}

TEST(Chips74RegistersTest, ResetForgetsStoresAndLastEvaluations)
{
    // The octal registers forget their store.
    SN74x273 r273("a", 10);
    DM74x574 r574("b", 10);
    r273.port("_CLR")->set(Value("H"), -100);
    r574.port("_OE")->set(Value("L"), -100);
    for (Component* c : std::vector<Component*>{&r273, &r574}) {
        c->port("clk")->set(Value("L"), -100);
        c->port("clk")->set(Value("H"), 0);
        c->port("D")->set(Value("HHHHLLLL"), 0);
        c->evaluate(20);  // the last evaluation at 0 after construction: the clock is read at -10
        EXPECT_EQ(written(c, "Q"), "hhhhllll") << c->type_name();
        c->reset();
        EXPECT_EQ(c->port("Q")->nof_values(), 0u);
    }
    r273.port("_CLR")->set(Value("H"), 0);
    r574.port("_OE")->set(Value("L"), 0);
    for (Component* c : std::vector<Component*>{&r273, &r574}) {
        c->evaluate(20);
        EXPECT_EQ(written(c, "Q"), "uuuuuuuu") << c->type_name();
    }

    // A new 74 or 174 looks back from -1, one that was reset from 0.
    for (bool reset : {false, true}) {
        SN74x74 d74("c", 10);
        SN74x174 d174("d", 10);
        if (reset) {
            d74.reset();
            d174.reset();
        }
        d74.port("_CD1")->set(Value("H"), -100);
        d74.port("_SD1")->set(Value("H"), -100);
        d174.port("_CLR")->set(Value("H"), -100);
        d74.port("D1")->set(Value("H"), -100);
        d174.port("1D")->set(Value("H"), -100);
        d74.port("CP1")->set(Value("L"), -10);
        d74.port("CP1")->set(Value("H"), -5);
        d174.port("CLK")->set(Value("L"), -10);
        d174.port("CLK")->set(Value("H"), -5);
        d74.evaluate(10);
        d174.evaluate(10);
        EXPECT_EQ(written(&d74, "Q1"), reset ? "h" : "u");
        EXPECT_EQ(written(&d174, "1Q"), reset ? "h" : "u");
    }
}
