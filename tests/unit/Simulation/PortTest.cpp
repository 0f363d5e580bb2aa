#include "Core/Simulation/Port.h"

#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

TEST(PortTest, ValueDependsOnDirectionAndNets)
{
    struct Row
    {
        Morvane::Dir dir;     // of the port
        const char* own;      // recorded on the port, or null
        const char* inside;   // recorded on an inside net, or null for none
        const char* outside;  // recorded on an outside net, or null for none
        const char* want;     // what the owner reads
    };
    const Row rows[] = {
        {Input, nullptr, nullptr, nullptr, "uu"}, {Input, "zH", nullptr, nullptr, "zH"},
        {Input, "LL", nullptr, "zH", "UH"},       {Output, "zH", nullptr, nullptr, "zH"},
        {Output, "LL", "zH", nullptr, "UH"},      {Output, "LL", nullptr, "HH", "LL"},
        {Inout, "zH", nullptr, nullptr, "UH"},    {Inout, "LL", nullptr, "zH", "UH"},
        {Inout, "zH", "LL", nullptr, "zH"},       {Inout, nullptr, "zH", nullptr, "UH"},
        {Inout, "LL", "HL", "HL", "HL"},          {Inout, nullptr, "HL", "HH", "uu"},
        {Inout, nullptr, "zz", "zZ", "UU"},
    };
    for (const Row& r : rows) {
        Port port(2, r.dir, "p", nullptr);
        Net inside(2);
        Net outside(2);
        if (r.own != nullptr)
            port.ValueHistory::set(Value(r.own), 0);
        if (r.inside != nullptr) {
            inside.add(&port, Inside);
            inside.set(Value(r.inside), 0);
        }
        if (r.outside != nullptr) {
            outside.add(&port, Outside);
            outside.set(Value(r.outside), 0);
        }
        EXPECT_STREQ(port.value(5).c_str(), r.want)
            << "dir " << r.dir << " own " << (r.own ? r.own : "-") << " in " << (r.inside ? r.inside : "-")
            << " out " << (r.outside ? r.outside : "-");
        port.disconnect(Inside);
        port.disconnect(Outside);
    }
}

TEST(PortTest, OptionsSwitchZTranslationOnOutputsOnly)
{
    Port port(1, Output, "q", nullptr);
    Net inside(1);
    inside.add(&port, Inside);
    inside.set(Value("z"), 0);
    EXPECT_STREQ(port.value(0).c_str(), "U");
    ParaMap off("(ztr=off)");
    port.set_options(off);
    EXPECT_STREQ(port.value(0).c_str(), "z");
    port.disconnect(Inside);

    struct Row
    {
        Morvane::Dir dir;     // of the port
        const char* options;  // as in a file
        const char* want;     // Error text
    };
    const Row rows[] = {
        {Output, "(drive=on)", "Invalid Port option: 'drive'."},
        {Inout, "(ztr=on)", "Invalid Port ztr usage: the ztr can only be used in Outputs."},
        {Output, "(ztr=Off)", "Invalid Port option: 'ztr' only takes 'on' or 'off' as values."},
    };
    for (const Row& r : rows) {
        Port other(1, r.dir, "p", nullptr);
        ParaMap params(r.options);
        EXPECT_EQ(error_of([&] { other.set_options(params); }), r.want);
    }
}

TEST(PortTest, DrivesByDirectionAndSides)
{
    Net a(1);
    Net b(1);
    Port in(1, Input, "in", nullptr);
    Port out(1, Output, "out", nullptr);
    Port tie(1, Inout, "tie", nullptr);
    Port pad(1, Inout, "pad", nullptr);
    for (Port* p : {&in, &out, &tie}) {
        a.add(p, Inside);
        b.add(p, Outside);
    }
    a.add(&pad, Inside);
    const std::pair<bool, bool> drives[] = {
        {in.drives(&a), true},   {in.drives(&b), false},  {out.drives(&a), false}, {out.drives(&b), true},
        {tie.drives(&a), false}, {tie.drives(&b), false}, {pad.drives(&a), false}};  // no stimulus yet
    for (const auto& [got, want] : drives)
        EXPECT_EQ(got, want);
    pad.ValueHistory::set(Value("H"), 0);
    EXPECT_TRUE(pad.drives(&a));
}

TEST(PortTest, SetAsksTheNetItDrives)
{
    Circuit root("top", nullptr);
    simulator(&root);
    Net inside(1);
    Net outside(1);
    Net lone(1);
    Port out(1, Output, "out", nullptr);
    Port in(1, Input, "in", nullptr);
    Port tie(1, Inout, "tie", nullptr);
    Port pad(1, Inout, "pad", nullptr);
    outside.add(&out, Outside);
    outside.add(&in, Outside);
    inside.add(&tie, Inside);
    outside.add(&tie, Outside);
    lone.add(&pad, Inside);
    out.set(Value("H"), 10);
    in.set(Value("L"), 10);   // an input only records
    tie.set(Value("L"), 10);  // both nets: it only ties them
    pad.set(Value("L"), 20);
    simulator()->simulate(100);
    EXPECT_STREQ(outside.value(10).c_str(), "H");
    EXPECT_STREQ(inside.value(10).c_str(), "H");  // tied through the inout port
    EXPECT_STREQ(lone.value(20).c_str(), "L");
    EXPECT_EQ(outside.nof_values(), 1u);
    destroy_simulator();
}
