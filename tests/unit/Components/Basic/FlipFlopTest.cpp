#include "Core/Components/Basic/FlipFlop.h"

#include "tests/unit/Components/PartHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

// A flip-flop from the factory with a stimulus on each input and a net on each output.
struct FlipFlopBench
{
    FlipFlopBench()
    {
        ff = h.part("D_flip_flop", "ff");
        h.net("d", {d, ff->port("D")});
        h.net("clk", {clk, ff->port("clk")});
        h.net("oe", {oe, ff->port("_OE")});
        q = h.net("q", {ff->port("Q")});
        q_inv = h.net("q_inv", {ff->port("_Q")});
        simulator()->reset(1000);
    }

    PartHarness h;
    Port* d = h.source("d");      // data stimulus
    Port* clk = h.source("clk");  // clock stimulus
    Port* oe = h.source("oe");    // output enable stimulus
    Component* ff = nullptr;      // the part
    Net* q = nullptr;             // on "Q"
    Net* q_inv = nullptr;         // on "_Q"
};

}  // namespace

TEST(FlipFlopTest, RisingEdgesStoreDAndTheOutputsFollowOneDelayLater)
{
    FlipFlopBench b;
    b.oe->set(Value("L"), 0);
    b.d->set(Value("H"), 0);
    b.clk->set(Value("L"), 0);
    b.clk->set(Value("H"), 50);   // stores H
    b.d->set(Value("L"), 70);     // no edge: kept
    b.clk->set(Value("L"), 100);  // falling: kept
    b.clk->set(Value("H"), 150);  // stores L
    b.clk->set(Value("u"), 200);  // H to u and u to H are no edges
    b.d->set(Value("H"), 205);
    b.clk->set(Value("H"), 210);
    simulator()->simulate(1000);
    EXPECT_EQ(changes_of(*b.q), "10u 60H 160L ");
    EXPECT_EQ(changes_of(*b.q_inv), "10u 60L 160H ");

    auto* ff = dynamic_cast<D_flip_flop*>(b.ff);
    EXPECT_EQ(ff->state(59), 'u');
    EXPECT_EQ(ff->state(60), 'H');
    EXPECT_EQ(ff->state(160), 'L');
    EXPECT_EQ(ff->state(900), 'L');
}

TEST(FlipFlopTest, EdgeAtTheSameTimeAsDTakesTheNewD)
{
    // The evaluation D asks for at 55 reads the clock at 45, before its edge.
    for (int d_time : {50, 45}) {
        FlipFlopBench b;
        b.oe->set(Value("L"), 0);
        b.d->set(Value("H"), 0);
        b.clk->set(Value("L"), 0);
        b.clk->set(Value("H"), 50);
        b.d->set(Value("L"), d_time);
        simulator()->simulate(1000);
        EXPECT_EQ(changes_of(*b.q), "10u 60L ") << d_time;
        EXPECT_EQ(changes_of(*b.q_inv), "10u 60H ") << d_time;
    }
}

TEST(FlipFlopTest, OutputEnableReleasesAndShowsTheKeptState)
{
    FlipFlopBench b;
    b.oe->set(Value("H"), 0);
    b.d->set(Value("H"), 0);
    b.clk->set(Value("L"), 0);
    b.clk->set(Value("H"), 50);  // stored while the outputs are released
    b.oe->set(Value("L"), 100);  // shown by the evaluation the enable asks for
    b.oe->set(Value("u"), 200);
    b.oe->set(Value("z"), 300);  // reads as U through the net: undefined outputs
    simulator()->simulate(1000);
    EXPECT_EQ(changes_of(*b.q), "10z 110H 210u ");
    EXPECT_EQ(changes_of(*b.q_inv), "10z 110L 210u ");
}

TEST(FlipFlopTest, ResetForgetsTheStateAndLooksBackFromZero)
{
    struct Row
    {
        bool reset;       // reset() before the stimuli
        const char* out;  // Q after evaluate(10)
    };
    const Row rows[] = {{false, "10u "}, {true, "10H "}};
    for (const Row& r : rows) {
        D_flip_flop ff("ff", 10);
        if (r.reset)
            ff.reset();
        // The clock at -10 is read only from a last evaluation at 0.
        ff.port("clk")->set(Value("L"), -10);
        ff.port("clk")->set(Value("H"), 0);
        ff.port("D")->set(Value("H"), 0);
        ff.port("_OE")->set(Value("L"), -10);
        ff.evaluate(10);
        EXPECT_EQ(record_of(*ff.port("Q")), r.out) << (r.reset ? "after reset" : "fresh");
        ff.reset();
        EXPECT_EQ(ff.state(10), 'u');
        EXPECT_EQ(ff.port("Q")->nof_values(), 0u);
    }
}
