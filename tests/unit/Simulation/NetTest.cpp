#include "Core/Simulation/Net.h"

#include "tests/unit/ErrorText.h"

#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

// An output on the outside of `net` that drives `letters` from time 0, without a simulator.
std::unique_ptr<Port> driver(Net& net, const char* letters, const std::string& name = "d")
{
    auto port = std::make_unique<Port>(static_cast<int>(std::string(letters).size()), Output, name, nullptr);
    port->ValueHistory::set(Value(letters), 0);
    net.add(port.get(), Outside);
    return port;
}

}  // namespace

TEST(NetTest, AttachmentChecks)
{
    Net a("a", 2);
    Net b("b", 2);
    Net sized(0);
    Port p(2, Input, "p", nullptr);
    Port q(2, Output, "q", nullptr);
    Port narrow(1, Input, "narrow", nullptr);

    sized.add(&narrow, Outside);
    EXPECT_EQ(sized.size(), 1u);  // the first port decides

    a.add(&p, Inside);
    b.add(&p, Outside);  // the other side is free
    b.add(&q, Outside);
    PinSpec two("1:0");
    struct Row
    {
        std::function<void()> action;  // an attachment that must fail
        const char* want;              // Error text
    };
    const Row rows[] = {
        {[&] { b.add(&p, Inside); },
         "The port 'p' already belongs to net 'a' (on the inside), and is being attempted to be added to net "
         "'b'."},
        {[&] { a.add(&p, Outside); }, "The port 'p' already belongs to net 'a' (on the outside), and is "
                                      "being attempted to be added to net "
                                      "'a'."},
        {[&] { a.add(&q, Outside); }, "The port 'q' already belongs to net 'b' (on the outside), and is "
                                      "being attempted to be added to net "
                                      "'a'."},
        {[&] { a.add(&narrow, Inside); },
         "The port 'narrow' has size 1, but is added to net 'a' with size 2."},
        {[&] { a.add(&p, &two, Outside); }, "The port 'p' already belongs to net 'a' (on the outside), and "
                                            "is being attempted to be added to net "
                                            "'a'."},
        {[&] { a.add(&narrow, &two, Inside); },
         "Port and pin-spec sizes does not match: 1 bits in port and 2 bits in pin-spec."},
    };
    for (const Row& r : rows)
        EXPECT_EQ(error_of(r.action), r.want);
    EXPECT_EQ(a.ports().size(), 1u);
    EXPECT_EQ(narrow.net(Inside), nullptr);
}

TEST(NetTest, ResolvesItsDrivers)
{
    struct Row
    {
        std::vector<const char*> drivers;  // letters of each output on the net
        const char* want;                  // recorded net value
    };
    const Row rows[] = {
        {{}, "zzzz"},
        {{"HLzp"}, "HLzH"},
        {{"HLzz", "zzHn"}, "HLHL"},
        {{"HHLL", "HLHL"}, "uuuu"},
        {{"uxQz", "zzzz"}, "uuuz"},
        {{"pppz", "nzLL"}, "uHLL"},
    };
    for (const Row& r : rows) {
        Net net(4);
        std::vector<std::unique_ptr<Port>> ports;
        for (const char* d : r.drivers)
            ports.push_back(driver(net, d));
        net.update(5, {});
        EXPECT_STREQ(net.value(5).c_str(), r.want);
        EXPECT_EQ(net.nof_values(), 1u);
    }
}

TEST(NetTest, UndrivenNetIsZButItsInputsReadU)
{
    Net net(2);
    Port in(2, Input, "in", nullptr);
    net.add(&in, Outside);
    net.update(0, {});
    EXPECT_STREQ(net.value(0).c_str(), "zz");
    EXPECT_STREQ(in.ValueHistory::value(0).c_str(), "zz");  // handed on as it is
    EXPECT_STREQ(in.value(0).c_str(), "UU");                // read as undefined
}

TEST(NetTest, UpdateSetsListenersOnly)
{
    Net net(1);
    auto out = driver(net, "H", "out");
    Port in(1, Input, "in", nullptr);
    Port sub_output(1, Output, "sub", nullptr);  // a sub-circuit's output hears its inside net
    Port reader(1, Inout, "r", nullptr);         // an inout pin without stimulus neither drives nor hears
    net.add(&in, Outside);
    net.add(&sub_output, Inside);
    net.add(&reader, Inside);
    net.update(7, {});
    EXPECT_STREQ(in.ValueHistory::value(7).c_str(), "H");
    EXPECT_EQ(out->nof_values(), 1u);
    EXPECT_EQ(reader.nof_values(), 0u);
    EXPECT_STREQ(reader.value(7).c_str(), "H");
    EXPECT_STREQ(sub_output.ValueHistory::value(7).c_str(), "H");
}

TEST(NetTest, AWindowedNetPassesOnlyChangesToItsInputs)
{
    for (bool windowed : {false, true}) {
        Net net(1);
        auto out = driver(net, "H", "out");
        Port in(1, Input, "in", nullptr);
        Port sub_output(1, Output, "sub", nullptr);
        net.add(&in, Outside);
        net.add(&sub_output, Inside);
        if (windowed) {
            net.set_window(10);
            in.set_window(10);
        }
        net.update(3, {});
        net.update(5, {});  // nothing new
        out->ValueHistory::set(Value("L"), 8);
        net.update(8, {});
        // Full histories keep the repeat as it came; a window keeps the changes, and the sub-circuit's
        // output hears the repeat all the same, as it passes every update on.
        unsigned want = windowed ? 2u : 3u;
        EXPECT_EQ(net.nof_values(), want);
        EXPECT_EQ(in.nof_values(), want);
        EXPECT_EQ(sub_output.nof_values(), 3u);
        EXPECT_STREQ(in.value(6).c_str(), "H");
        EXPECT_STREQ(net.value(8).c_str(), "L");
    }
}

TEST(NetTest, OnePassTiedAndBitByBitResolutionAgree)
{
    // The same drivers on one net, and spread over two nets tied by an inout port: the one-pass
    // resolution, the pass over the tied group and the bit-by-bit walk must give the same letters.
    std::mt19937 random(7);
    const char letters[] = "HLzupnx";
    for (int round = 0; round < 200; ++round) {
        int width = 1 + static_cast<int>(random() % 12);
        int nof_drivers = static_cast<int>(random() % 4);
        Net single(width);
        Net outer(width);
        Net inner(width);
        Port tie(width, Inout, "tie", nullptr);
        outer.add(&tie, Outside);
        inner.add(&tie, Inside);
        std::vector<std::unique_ptr<Port>> ports;
        for (int d = 0; d < nof_drivers; ++d) {
            std::string text;
            for (int i = 0; i < width; ++i)
                text += letters[random() % 7];
            ports.push_back(driver(single, text.c_str()));
            ports.push_back(driver(random() % 2 ? outer : inner, text.c_str()));
        }
        Value one_pass(width);
        Value tied(width);
        single.compute_value(0, one_pass);
        outer.compute_value(0, tied);
        std::string walked;
        for (int bit = width - 1; bit >= 0; --bit)
            walked += Morvane::letter(outer._compute_bit_value(static_cast<unsigned>(bit), 0));
        EXPECT_STREQ(one_pass.c_str(), walked.c_str());
        EXPECT_STREQ(tied.c_str(), walked.c_str());
    }
}

TEST(NetTest, TooManyDriversFailsOnBothPaths)
{
    for (bool tied : {false, true}) {
        Net net(2);
        Port neutral(2, Inout, "neutral", nullptr);
        if (tied)
            net.add(&neutral, Inside);
        std::vector<std::unique_ptr<Port>> ports;
        for (int i = 0; i < 256; ++i)
            ports.push_back(driver(net, "zz"));
        EXPECT_EQ(error_of([&] { net.update(0, {}); }),
                  "*** ERROR: Maximum size of a a network is reached. Max 255 ports per net.");
        EXPECT_EQ(net.nof_values(), 0u);
    }
}

TEST(NetTest, InoutPortTiesTwoNetsIntoOneNode)
{
    Net outer("outer", 1);
    Net inner("inner", 1);
    Port tie(1, Inout, "tie", nullptr);
    outer.add(&tie, Outside);
    inner.add(&tie, Inside);
    auto strong = driver(inner, "L");
    auto weak = std::make_unique<Port>(1, Output, "pull", nullptr);
    weak->ValueHistory::set(Value("p"), 0);
    outer.add(weak.get(), Outside);
    Port listener(1, Input, "l", nullptr);
    outer.add(&listener, Outside);

    outer.update(3, {});
    EXPECT_STREQ(outer.value(3).c_str(), "L");  // the inner driver beats the outer pull
    EXPECT_STREQ(inner.value(3).c_str(), "L");
    EXPECT_STREQ(listener.ValueHistory::value(3).c_str(), "L");
    EXPECT_STREQ(tie.value(3).c_str(), "L");
    EXPECT_STREQ(outer.local_value(3, false).c_str(), "H");
    EXPECT_STREQ(outer.local_value(3, true).c_str(), "L");  // the inner L beats the outer pull
    EXPECT_STREQ(tie.local_net_value(3, Inside, false).c_str(), "L");

    std::set<Net*> connected;
    inner.collect_connected_nets(connected);
    EXPECT_EQ(connected, (std::set<Net*>{&outer, &inner}));

    // Untied, the outer net hears its own pull alone: the group it knew is found again.
    inner.remove(&tie);
    outer.update(4, {});
    EXPECT_STREQ(outer.value(4).c_str(), "H");
}

TEST(NetTest, RingOfTiedNetsEndsAndDiamondsRepeatHarmlessly)
{
    // Three nets tied in a ring: every update must end, and each net records the same value.
    Net n0(1);
    Net n1(1);
    Net n2(1);
    Port t01(1, Inout, "t01", nullptr);
    Port t12(1, Inout, "t12", nullptr);
    Port t20(1, Inout, "t20", nullptr);
    n0.add(&t01, Outside);
    n1.add(&t01, Inside);
    n1.add(&t12, Outside);
    n2.add(&t12, Inside);
    n2.add(&t20, Outside);
    n0.add(&t20, Inside);
    auto d = driver(n2, "H");
    n0.update(1, {});
    for (Net* n : {&n0, &n1, &n2})
        EXPECT_STREQ(n->value(1).c_str(), "H");
    EXPECT_GE(n1.nof_values(), 1u);
}

TEST(NetTest, PinSpecsSelectBits)
{
    Net bus("bus", 4);
    Port high(2, Output, "high", nullptr);
    Port low(2, Inout, "low", nullptr);  // reads its bits, drives none
    high.ValueHistory::set(Value("HL"), 0);
    bus.add(&high, 3, 2, Outside);  // owned spec "3:2"
    PinSpec low_bits("1:0");
    bus.add(&low, &low_bits, Inside);
    auto rest = std::make_unique<Port>(2, Output, "rest", nullptr);
    rest->ValueHistory::set(Value("LH"), 0);
    PinSpec rest_bits("0;1");  // mirrored: its bit 0 is net bit 1
    bus.add(rest.get(), &rest_bits, Outside);
    bus.update(0, {});
    EXPECT_STREQ(bus.value(0).c_str(), "HLHL");
    EXPECT_STREQ(bus.value(0, &high).c_str(), "HL");
    EXPECT_STREQ(bus.value(0, &low).c_str(), "HL");
    EXPECT_STREQ(bus.value(0, nullptr).c_str(), "HLHL");
    EXPECT_EQ(bus._pin_spec(&high)->expression(), "3:2");
    EXPECT_THROW(bus._pin_spec(nullptr), std::out_of_range);
}

TEST(NetTest, PortWithoutSpecReadsWhereTheLastSpecPointed)
{
    // The local bit index is not reset between ports: the full-width driver after a spec'd port is
    // read at the spec's dense index, not at the net's bit.
    Net bus(4);
    Port upper(1, Output, "upper", nullptr);
    upper.ValueHistory::set(Value("z"), 0);
    bus.add(&upper, 3, 3, Outside);
    auto full = driver(bus, "HLLL");
    Value out(4);
    bus.compute_value(0, out);
    // Bit 3 reads full's bit 0 (L) instead of its bit 3 (H); the other bits read in place.
    EXPECT_STREQ(out.c_str(), "LLLL");
}

TEST(NetTest, StealAllPortsMovesPortsButNotPinSpecs)
{
    Net keeper("keeper", 1);
    Net other("other", 1);
    Port a(1, Input, "a", nullptr);
    Port b(1, Inout, "b", nullptr);
    Port c(1, Output, "c", nullptr);
    Port d(1, Input, "d", nullptr);
    other.add(&a, Outside);
    other.add(&b, Inside);
    other.add(&b, Outside);
    keeper.add(&c, 0, 0, Outside);
    keeper.steal_all_ports(&other);
    EXPECT_EQ(keeper.ports(), (std::vector<Port*>{&c, &a, &b, &b}));
    EXPECT_TRUE(other.ports().empty());
    EXPECT_EQ(b.net(Inside), &keeper);
    EXPECT_EQ(b.net(Outside), &keeper);
    EXPECT_THROW(keeper._pin_spec(&c), std::out_of_range);  // handed to the other net
    EXPECT_EQ(other._pin_spec(&c)->expression(), "0:0");
    keeper.remove(&b);
    EXPECT_EQ(b.net(Inside), nullptr);
    EXPECT_EQ(b.net(Outside), &keeper);  // only one side is cleared
    b.set_net(nullptr, Outside);
    keeper.disconnect_port(&d, Outside);
    keeper.disconnect_ports();
    EXPECT_TRUE(keeper.ports().empty());
    EXPECT_EQ(a.net(Outside), nullptr);
}

TEST(NetTest, DestructionDetachesAndFactoryCollectsEmptyNets)
{
    Port p(1, Input, "p", nullptr);
    std::string told;
    {
        Net net("gone", 1);
        net.set_destruction_callback([&told](Net* n) { told = n->name(); });
        net.add(&p, Outside);
    }
    EXPECT_EQ(told, "gone");
    EXPECT_EQ(p.net(Outside), nullptr);

    NetFactory factory;
    Net* used = factory.create("used", 1);
    factory.create(1);
    factory.create("empty", 2);
    used->add(&p, Outside);
    factory.garbage_collect();
    EXPECT_EQ(factory.nets(), (std::vector<Net*>{used}));
    {
        Port q(1, Input, "q", nullptr);
        used->add(&q, Inside);
    }
    EXPECT_EQ(used->ports(), (std::vector<Port*>{&p}));  // a dying port leaves its nets
    p.disconnect(Outside);
}
