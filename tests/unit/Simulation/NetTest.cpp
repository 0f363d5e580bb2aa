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

namespace {

// An output on the outside of `net` that drives `letters` from time 0, without a simulator.
std::unique_ptr<Port> driver(Net& net, const char* letters)
{
    auto port = std::make_unique<Port>(static_cast<int>(std::string(letters).size()), Output, "d", nullptr);
    port->ValueHistory::set(Value(letters), 0);
    net.add(port.get(), Outside);
    return port;
}

// Two one-bit nets tied by an inout port, and an output that drives one of them.
struct TiedPair
{
    explicit TiedPair(bool source_outside)
    {
        outer.add(&tie, Outside);
        inner.add(&tie, Inside);
        (source_outside ? outer : inner).add(&source, Outside);
    }

    Net outer{1};
    Net inner{1};
    Port tie{1, Inout, "tie", nullptr};
    Port source{1, Output, "source", nullptr};
};

}  // namespace

TEST(NetTest, AttachmentChecks)
{
    Net a("a", 2);
    Net b("b", 2);
    Port p(2, Input, "p", nullptr);
    Port narrow(1, Input, "narrow", nullptr);
    a.add(&p, Inside);
    b.add(&p, Outside);  // the other side is free
    PinSpec two("1:0");
    EXPECT_EQ(error_of([&] { b.add(&p, Inside); }),
              "The port 'p' already belongs to net 'a' (on the inside), and "
              "is being attempted to be added to net 'b'.");
    EXPECT_EQ(error_of([&] { a.add(&narrow, Inside); }),
              "The port 'narrow' has size 1, but is added to net 'a' with size 2.");
    EXPECT_EQ(error_of([&] { a.add(&narrow, &two, Inside); }),
              "Port and pin-spec sizes does not match: 1 bits in port and 2 bits in pin-spec.");
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
        // Drivers of z alone, in either case, around the one that drives.
        {{"ZZZZ", "pHzL", "zzzz"}, "HHzL"},
        {{"zZzZ", "ZzZz"}, "zzzz"},
        {{"zzzz", "HzzL", "ZZZZ", "zLzL"}, "HLzu"},
    };
    for (const Row& r : rows) {
        Net net(4);
        std::vector<std::unique_ptr<Port>> ports;
        for (const char* d : r.drivers)
            ports.push_back(driver(net, d));
        net.update(5, {});
        EXPECT_STREQ(net.value(5).c_str(), r.want);
    }
}

TEST(NetTest, AtMost255DriversOnANetWhetherTiedOrNot)
{
    for (int count : {255, 256}) {
        for (bool tied : {false, true}) {
            Net net(2);
            Port neutral(2, Inout, "neutral", nullptr);
            if (tied)
                net.add(&neutral, Inside);
            std::vector<std::unique_ptr<Port>> ports;
            for (int i = 0; i < count; ++i)
                ports.push_back(driver(net, "zz"));
            EXPECT_EQ(error_of([&] { net.update(0, {}); }),
                      count == 255
                          ? "no error"
                          : "*** ERROR: Maximum size of a a network is reached. Max 255 ports per net.")
                << count << " tied " << tied;
        }
    }
}

TEST(NetTest, UpdateSetsListenersOnly)
{
    Net net(1);
    auto out = driver(net, "H");
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

// The same drivers on one net, and spread over two nets tied by an inout port, give the same letters.
TEST(NetTest, TiedNetsResolveAsOne)
{
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
        single.update(0, {});
        outer.update(0, {});
        EXPECT_STREQ(inner.value(0).c_str(), single.value(0).c_str());
        EXPECT_STREQ(outer.value(0).c_str(), single.value(0).c_str());
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
    auto weak = driver(outer, "p");
    Port listener(1, Input, "l", nullptr);
    outer.add(&listener, Outside);

    outer.update(3, {});
    EXPECT_STREQ(outer.value(3).c_str(), "L");  // the inner driver beats the outer pull
    EXPECT_STREQ(inner.value(3).c_str(), "L");
    EXPECT_STREQ(listener.ValueHistory::value(3).c_str(), "L");
    EXPECT_STREQ(outer.local_value(3, false).c_str(), "H");
    std::set<Net*> connected;
    inner.collect_connected_nets(connected);
    EXPECT_EQ(connected, (std::set<Net*>{&outer, &inner}));

    // Untied, the outer net hears its own pull alone.
    inner.remove(&tie);
    outer.update(4, {});
    EXPECT_STREQ(outer.value(4).c_str(), "H");

    // Three nets tied in a ring: the update ends, and each net records the same value.
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
}

// With windows, an update that repeats the letters of a tied group stops at its first net, as the
// others hold them already; a change crosses, and an output inside a net of the group hears repeats.
TEST(NetTest, WindowedTiedNetsPassOnChangesAndTellOutputsEveryUpdate)
{
    TiedPair pair(true);
    Net& outer = pair.outer;
    Net& inner = pair.inner;
    Port& source = pair.source;
    Port listener(1, Input, "listener", nullptr);
    inner.add(&listener, Outside);
    outer.set_window(5);
    inner.set_window(5);
    source.ValueHistory::set(Value("H"), 10);
    outer.update(10, {});
    outer.update(11, {});
    source.ValueHistory::set(Value("L"), 12);
    outer.update(12, {});
    EXPECT_STREQ(listener.ValueHistory::value(11).c_str(), "H");
    EXPECT_STREQ(listener.ValueHistory::value(12).c_str(), "L");
    EXPECT_EQ(inner.nof_values(), 2u);

    Port relay(1, Output, "relay", nullptr);
    inner.add(&relay, Inside);
    outer.update(13, {});
    ASSERT_EQ(relay.nof_values(), 1u);
    EXPECT_STREQ(relay.ValueHistory::value(13).c_str(), "L");
}

// A tied group takes its last resolution again while its drivers hold what they held; a change, a
// value set ahead of the resolution, a direct set of the net and a cleared history all count.
TEST(NetTest, TiedGroupResolvesAgainAfterAnyChangeOfItsDrivers)
{
    TiedPair pair(false);
    Net& outer = pair.outer;
    Port& source = pair.source;
    source.ValueHistory::set(Value("H"), 10);
    source.ValueHistory::set(Value("L"), 50);
    std::string seen;
    auto at = [&](int t) {
        outer.update(t, {});
        seen += outer.value(t).c_str();
    };
    at(10);
    at(20);
    at(60);  // the L set ahead
    source.ValueHistory::set(Value("H"), 70);
    at(70);
    at(80);
    outer.set(Value("z"), 90);
    at(90);
    source.clear();
    at(100);
    EXPECT_EQ(seen, "HHLHHHu");
}

TEST(NetTest, PinSpecsSelectBits)
{
    Net bus("bus", 4);
    Port high(2, Output, "high", nullptr);
    Port low(2, Inout, "low", nullptr);  // reads its bits, drives none
    high.ValueHistory::set(Value("HL"), 0);
    bus.add(&high, 3, 2, Outside);
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

    // The local bit index is not reset between ports: a full-width driver after a port with a spec is
    // read at the spec's dense index, so bit 3 reads full's bit 0 (L) instead of its bit 3 (H).
    Net odd(4);
    Port upper(1, Output, "upper", nullptr);
    upper.ValueHistory::set(Value("z"), 0);
    odd.add(&upper, 3, 3, Outside);
    auto full = driver(odd, "HLLL");
    odd.update(0, {});
    EXPECT_STREQ(odd.value(0).c_str(), "LLLL");
}
