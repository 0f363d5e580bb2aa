#include "Core/Components/Component.h"

#include "PartHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

namespace {

// A part with one delay that records what it was told.
class Part : public SingleDelayComponent
{
public:
    explicit Part(const std::string& name, int delay = 0) : SingleDelayComponent("DM74LS00", name, delay) {}

    void evaluate(int time) override { evaluations.push_back(time); }
    void circuit_connect_callback(Circuit* circuit) override { connected_to = circuit; }

    std::vector<int> evaluations;     // ns, times evaluated
    Circuit* connected_to = nullptr;  // last argument of the callback
};

// A copy through the base class's copy constructor.
class Copyable : public Component
{
public:
    explicit Copyable(const std::string& name) : Component("Copyable", name, static_cast<Circuit*>(nullptr))
    {
    }
    explicit Copyable(const Copyable* other) : Component(other) {}

    void evaluate(int) override {}
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}
    void port_changed_value(Port* port, const Value&, const Value& new_value, int time) override
    {
        heard.push_back(port->name() + "=" + new_value.c_str() + "@" + std::to_string(time));
    }

    std::vector<std::string> heard;  // one line per change of a subscribed port
};

}  // namespace

TEST(ComponentTest, InputsAreSubscribedWhenAdded)
{
    Copyable c("c");
    Port* in = c.make_port(4, Input, "in");
    Port* out = c.make_port(4, Output, "out");
    Pin* late = c.make_pin(Output, "late");
    Port foreign(1, Input, "foreign", nullptr);
    c.add_port(&foreign);
    late->set_dir(Input);  // subscriptions are made when adding, not later
    in->set(Value("HHLL"), 5);
    out->set(Value("HHLL"), 5);
    late->set(Value("H"), 5);
    foreign.set(Value("L"), 6);
    EXPECT_EQ(c.heard, (std::vector<std::string>{"in=HHLL@5", "foreign=L@6"}));

    c.remove_port(&foreign);
    foreign.set(Value("H"), 7);
    EXPECT_EQ(c.heard.size(), 2u);
    EXPECT_FALSE(c.has_port(&foreign));

    c.reset();
    EXPECT_EQ(in->nof_values(), 0u);
    in->set(Value("LLLL"), 1);  // still subscribed after the reset
    EXPECT_EQ(c.heard.back(), "in=LLLL@1");
}

TEST(ComponentTest, DelayedAndZeroDelayEvaluations)
{
    Circuit top("top", nullptr);
    simulator(&top);
    Part slow("slow", 7);
    Part fast("fast", 0);
    Port* a = slow.make_pin(Input, "a");
    Port* b = slow.make_pin(Input, "b");
    Port* c = fast.make_pin(Input, "c");
    Port source(1, Output, "s", nullptr);
    Net net(1);
    net.add(&source, Outside);
    net.add(c, Outside);
    a->set(Value("H"), 10);
    b->set(Value("H"), 10);
    b->set(Value("H"), 11);  // no change, no evaluation
    source.set(Value("L"), 12);
    simulator()->simulate(100);
    EXPECT_EQ(slow.evaluations, (std::vector<int>{17, 17}));  // one per changed port
    EXPECT_EQ(fast.evaluations, (std::vector<int>{12}));      // through the same-time list
    destroy_simulator();
}

TEST(ComponentTest, ClogPrefixesAndConnectionWarnings)
{
    LineLog sink;
    Part part("U1");  // outlives the circuit, which disconnects it when it dies
    Circuit top("top", nullptr);
    part.make_pin(Input, "a");
    part.make_pin(Input, "b%%");
    Port* connected = part.make_pin(Input, "c");
    part.make_pin(Output, "y");
    Net net(1);
    net.add(connected, Outside);

    part.clog(warning, "unheard");  // no parent, no sink
    part.log(error, "unheard");
    top.add(&part, false);
    part.clog(information, "no sink yet");
    top.set_simlog(&sink);

    part.clog(warning, "at %d%%%%", 50);
    part.clog(error, 1500, "at %d%%", 50);
    part.clog(information, 999, "x");
    part.log(warning, "plain %s", "text");
    part.check_connections();
    const std::vector<std::string> want = {
        "1 [U1(74LS00) in top | WARNING] at 50%",
        "2 [U1(74LS00) in top | T=1.5 us | ERROR] at 50%",
        "0 [U1(74LS00) in top | T=999 ns | INFO] x",
        "1 plain text",
        "1 [U1(74LS00) in top | WARNING] Input port 'a' of component '74LS00'/'U1' is not connected.",
        // The composed line is a format once more: the doubled percent sign comes out single.
        "1 [U1(74LS00) in top | WARNING] Input port 'b%' of component '74LS00'/'U1' is not connected.",
    };
    EXPECT_EQ(sink.lines, want);
}

TEST(ComponentTest, SinkNearestTheRootWins)
{
    LineLog root_sink;
    LineLog sub_sink;
    // Inner first: a circuit disconnects its parts when it dies.
    Part part("U1");
    Circuit sub("sub", nullptr);
    Circuit top("top", nullptr);
    top.add(&sub, false);
    sub.set_simlog(&sub_sink);
    EXPECT_EQ(sub.sim_log(), &sub_sink);
    top.set_simlog(&root_sink);
    EXPECT_EQ(sub.sim_log(), &root_sink);
    sub.add(&part, false);
    EXPECT_EQ(part.sim_log(), &root_sink);
    part.clog(warning, "deep");
    EXPECT_EQ(root_sink.lines, std::vector<std::string>{"1 [U1(74LS00) in sub | WARNING] deep"});
}
