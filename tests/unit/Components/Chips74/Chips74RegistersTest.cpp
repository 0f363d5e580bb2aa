#include "Core/Components/Chips74/Chips74Registers.h"

#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Components/Basic/FlipFlop.h"
#include "Core/Components/Chips74/Chips74FlipFlops.h"

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

TEST(Chips74RegistersTest, DelaysByFamilyAndUnknownFamilies)
{
    struct Row
    {
        const char* type;  // as a file names it
        const char* spec;  // instance specification
        int delay;         // ns, as applied; 0: the family is refused
    };
    // clang-format off
    const Row rows[] = {
        {"74x74", "u", 35}, {"74x74", "u(family=F)", 11}, {"74x74", "u(family=AS)", 11},
        {"74x74", "u(family=ALS)", 18}, {"74x74", "u(family=F,delay=4)", 4}, {"74LS78A", "u", 20},
        {"74x174", "u", 35}, {"74x174", "u(family=F)", 14}, {"74x174", "u(family=AS)", 15},
        {"74x174", "u(family=ALS)", 30}, {"74x273", "u", 27}, {"74LS374", "u", 28},
        // The default "delay" is merged into every instance and beats the family.
        {"74x574", "u(family=AS)", 28}, {"74x574", "u(family=AS,delay=10)", 10}, {"74x74", "u(family=ls)", 0},
        {"74x174", "u(family=X)", 0}, {"74x273", "u(family=ALS)", 0}, {"74x574", "u(family=HC)", 0},
    };
    // clang-format on
    ComponentFactory factory;
    for (const Row& r : rows) {
        if (r.delay == 0) {
            EXPECT_NE(error_of([&] { factory.create(r.type, r.spec); }).find("device family of SN"),
                      std::string::npos)
                << r.spec;
            continue;
        }
        EXPECT_EQ(delay_of(factory.create(r.type, r.spec)), r.delay) << r.type << " " << r.spec;
    }
    // Every flip-flop of the 374 takes the chip's delay.
    auto* r374 = dynamic_cast<Circuit*>(factory.create("74LS374", "r(delay=40)"));
    EXPECT_EQ(dynamic_cast<D_flip_flop*>(r374->find_component("dff[7]"))->delay(), 40);
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
    // After the reset the store is undefined, and a clock from undefined to H is no edge.
    r273.port("_CLR")->set(Value("H"), 0);
    r574.port("_OE")->set(Value("L"), 0);
    for (Component* c : std::vector<Component*>{&r273, &r574}) {
        c->port("clk")->set(Value("H"), 0);
        c->port("D")->set(Value("HHHHLLLL"), 0);
        c->evaluate(20);
        EXPECT_EQ(written(c, "Q"), "uuuuuuuu") << c->type_name();
    }
}
