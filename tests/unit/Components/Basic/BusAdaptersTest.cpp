#include "Core/Components/Basic/BusAdapters.h"

#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using Morvane::PortSpec;

namespace {

/// Drives each "name=letters" of `stimuli` from a source on a net of its own into the part's port of
/// that name at `time`, and puts a net on every other port. Returns the nets by port name.
std::map<std::string, Net*> wire_and_drive(PartHarness& h, Component* part, const std::string& stimuli,
                                           int time)
{
    std::map<std::string, Net*> nets;
    std::map<std::string, std::string> values;
    for (const std::string& item : split(stimuli, ' ')) {
        std::size_t eq = item.find('=');
        values[item.substr(0, eq)] = item.substr(eq + 1);
    }
    for (Port* p : part->ports()) {
        auto it = values.find(p->name());
        if (it == values.end()) {
            nets[p->name()] = h.net(p->name(), {p});
            continue;
        }
        Port* src = h.source(p->name() + " source", static_cast<int>(p->size()));
        nets[p->name()] = h.net(p->name(), {src, p});
        src->set(Value(it->second), time);
    }
    return nets;
}

/// "name=letters" for each port but the driven ones, read from their nets at `time`.
std::string read_back(Component* part, std::map<std::string, Net*>& nets, const std::string& stimuli,
                      int time)
{
    std::string text;
    for (Port* p : part->ports()) {
        if (stimuli.find(p->name() + "=") == 0 || stimuli.find(" " + p->name() + "=") != std::string::npos)
            continue;
        text += p->name() + "=" + nets[p->name()]->value(time).c_str() + " ";
    }
    return text;
}

}  // namespace

TEST(BusAdaptersTest, ReleasedBitsPassAsZ)
{
    // Only the outputs keep the translation of z.
    ComponentFactory factory;
    for (const char* spec : {"j(b=3:0,a=7:4)", "s(in=4,x=0,y=0)", "s(byte=7:0,hi=7:4,lo=3:0)"}) {
        Component* c = factory.create(*spec == 'j' ? "Join" : spec[2] == 'i' ? "Split" : "Splice", spec);
        for (Port* p : c->ports())
            EXPECT_EQ(p->z_translation(), p->dir() == Morvane::Output) << spec << " " << p->name();
    }
}

TEST(BusAdaptersTest, AdaptersMoveBitsWithinTheSameTime)
{
    struct Row
    {
        const char* type;   // Join, Split or Splice
        const char* spec;   // instance specification
        const char* drive;  // "port=letters ..." set at 20
        const char* want;   // every other port's net at 20, in port order
    };
    const Row rows[] = {
        {"Join", "j(out=8,a=7:4,b=3:0)", "a=HLLL b=LLLH", "out=HLLLLLLH "},
        {"Join", "j(out=8,a=3:0)", "a=HLHL", "out=uuuuHLHL "},
        {"Join", "j(out=8,a=7;3:1,b=0)", "a=HLHL b=H", "out=HuuuLHLH "},
        {"Join", "j(out=4,r=0:3)", "r=HHLL", "out=LLHH "},
        {"Join", "j(out=4,a=3:2,b=1:0)", "a=zH b=uL", "out=zHuL "},
        {"Split", "s(in=4,x=0,y=0)", "in=LLLH", "x=H y=H "},
        {"Split", "s(in=8,hi=7:4,lo=3:0)", "in=HLLLLLLH", "hi=HLLL lo=LLLH "},
        {"Split", "s(in=4,r=0:3)", "in=HHLL", "r=LLHH "},
        {"Split", "s(in=4,p=3;0)", "in=HLLL", "p=HL "},
        {"Split", "s(in=4,x=3:2)", "in=zHLL", "x=zH "},
        {"Splice", "s(byte=7:0,hi=7:4,lo=3:0)", "byte=HLLHLLHH", "hi=HLLH lo=LLHH "},
        {"Splice", "s(byte=7:0,hi=7:4,lo=3:0)", "hi=HHLL lo=LHzz", "byte=HHLLLHzz "},
        {"Splice", "s(normal=7:0,reverse=0:7)", "normal=HHHLLLLH", "reverse=HLLLLHHH "},
        {"Splice", "s(size=16,A=15:0,a15=15)", "A=HLLLLLLLLLLLLLLL", "a15=H "},
    };
    for (const Row& r : rows) {
        PartHarness h;
        Component* part = h.part(r.type, r.spec);
        simulator()->reset(100);
        std::map<std::string, Net*> nets = wire_and_drive(h, part, r.drive, 20);
        simulator()->simulate(100);
        EXPECT_EQ(read_back(part, nets, r.drive, 20), r.want) << r.spec << " " << r.drive;
        EXPECT_EQ(simulator()->time(), 20) << r.spec;
    }
}

TEST(BusAdaptersTest, MessagesForBadDeclarations)
{
    struct Row
    {
        std::function<void()> make;  // builds the part
        const char* message;         // what it throws
    };
    ComponentFactory factory;
    const Row rows[] = {
        {[] { Join("j", ParaMap(std::string("(a=3:0)"))); }, "A Join unit needs an 'out' parameter."},
        {[] { Split("s", ParaMap(std::string("(a=3:0)"))); }, "A Split unit needs an 'in' parameter."},
        {[] { Splice("s", ParaMap(std::string("(a=3:0)"))); }, "A Splice unit needs a 'size' parameter."},
        {[] {
             Join("j", 4, {{"a", "3"}, {"b", "1:3"}});
         },
         "BusJoin Overlap. Ports 'a' and 'b' both drive pin 3."},
        {[&] { factory.create("Splice", "s(size=8,x=8)"); }, "Port 'x' (8) is too big to fit into size 8."},
        {[&] { factory.create("Join", "j(out=8,a=x)"); }, "Invalid pin spec expression: 'x'."},
        // A fuzzer finding: a size beyond an int overflowed the fit check.
        {[&] { factory.create("Split", "s(in=2147483648,lo=3:0)"); },
         "The 'in' size 2147483648 is too large."},
        {[] {
             Splice("s", 8, {{"x", "4:x"}});
         },
         "Invalid pin spec expression: '4:x'."},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(error_of([&] { r.make(); }), r.message);
    }
    // Outputs may share a source bit.
    EXPECT_NO_THROW(factory.create("Split", "s(in=4,x=0,y=0:1)"));
}
