#include "Core/Circuit/Circuit.h"

#include "CircuitHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"
#include "Core/Support/Regex.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::Outside;

TEST(CircuitTest, PartsAreFoundByInstanceNameFirstMatchFirst)
{
    OpenCircuit top("top", nullptr);
    Component* first = top.add_component("And", "g");
    Component* second = top.add_component("Or", "g");  // no check on this path
    top.add_component("Inv", "i");
    EXPECT_EQ(top.nof_components(), 3);
    EXPECT_EQ(top.find_component("g"), first);
    EXPECT_EQ(top.count_components_with_instance_name("g"), 2);

    // Renames are seen, and taking out the first of a name shows the next one.
    first->set_name("h");
    EXPECT_EQ(top.find_component("g"), second);
    EXPECT_EQ(top.find_component("h"), first);
    second->set_name("h");
    EXPECT_EQ(top.find_component("h"), first);
    top.remove(first);
    EXPECT_EQ(top.find_component("h"), second);
    EXPECT_EQ(top.nof_components(), 2);
}

TEST(CircuitTest, AddingPartsFailsWithItsMessages)
{
    OpenCircuit other("other", nullptr);  // owns f, so it must outlive top
    OpenCircuit top("top", nullptr);
    top.add(top.create_factory_component("And", "g"), false);
    Component* foreign = other.add_component("Or", "f");
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { top.add(top.create_factory_component("Or", "g"), false); },
         "Error: Duplicated component instance name: 'g'."},
        {[&] { top.add(foreign, false); },
         "Component 'f' already belongs to parent circuit 'other', cannot be added to circuit 'top'"},
        {[&] { top.create_component("Latch", "u1"); },
         "Error: Cannot create component 'u1' of type 'Latch'."},
    };
    for (const auto& [action, want] : cases)
        EXPECT_EQ(error_of(action), want);
}

TEST(CircuitTest, MakeNetAttachesOwnPortsInsideAndPartsOutside)
{
    OpenCircuit top("top", nullptr);
    Pin* a = top.make_pin(Input, "a");
    Component* g = top.add_component("And", "g");
    Net* n = top.make_net("n", {a, g->port("a")});
    EXPECT_EQ(a->net(Inside), n);
    EXPECT_EQ(a->net(Outside), nullptr);
    EXPECT_EQ(g->port("a")->net(Outside), n);
    EXPECT_EQ(n->size(), 1u);
    Net* named = top.make_net({g->port("b")});
    EXPECT_EQ(named->name(), "b");
    EXPECT_EQ(top.nets(), (std::vector<Net*>{n, named}));
}

TEST(CircuitTest, MakeNetMergesOnlyNetsThatAreNotListed)
{
    OpenCircuit top("top", nullptr);
    Component* g = top.add_component("And", "g");
    Component* h = top.add_component("Or", "h");
    NetFactory loose;
    Net* x = loose.create("x", 1);
    Net* y = loose.create("y", 1);
    x->add(g->port("out"), Outside);
    y->add(h->port("a"), Outside);
    Net* merged = top.make_net("m", {g->port("out"), h->port("a"), h->port("b")});
    // The survivor is the net of the lower address.
    EXPECT_EQ(merged, std::min(x, y));
    EXPECT_EQ(merged->name(), "m");
    EXPECT_EQ(merged->ports().size(), 3u);
    EXPECT_EQ(h->port("a")->net(Outside), merged);
    top.remove(merged);
    EXPECT_TRUE(top.nets().empty());

    // Ports that hang on a net of this circuit already: the survivor is found under the new name.
    Net* n = top.make_net("n", {g->port("a"), h->port("out")});
    EXPECT_EQ(error_of([&] { top.make_net("n2", {g->port("a")}); }),
              "Error: There is already a net called 'n2' in circuit 'Circuit'/'top'. ");
    EXPECT_EQ(n->name(), "n2");
    EXPECT_EQ(error_of([&] { top.make_net("n2", {g->port("b")}); }),
              "Duplicate net names: 'n2', in circuit 'top'.");
}

TEST(CircuitTest, ImportPathsAreKeptRelativeToTheCircuit)
{
    OpenCircuit top("top", nullptr);

    // Under the circuit's own directory a path is kept relative to it; an empty directory takes all.
    top.set_filename("proj/top.ctc");
    const std::pair<const char*, const char*> stored[] = {
        {"proj/lib", "lib"}, {"proj", "./"}, {"projx/a", "x/a"}, {"other/lib", "other/lib"}};
    for (const auto& [given, want] : stored) {
        top.add_import_path(given);
        EXPECT_TRUE(top.import_paths().count(want)) << given;
    }
    OpenCircuit here("here", nullptr);
    here.set_filename("top.ctc");
    here.add_import_path("/usr/lib/parts");
    EXPECT_TRUE(here.import_paths().count("usr/lib/parts"));
}

// Names are scanned by hand as the pattern reads them, so that a long name cannot exhaust the stack.
TEST(CircuitTest, PortNamesSplitAsThePatternSplitsThem)
{
    const std::regex pattern(R"(([a-zA-Z0-9=<>\[\]_]+)([(][a-zA-Z0-9=.+-/#%,:]+[)])?)");
    const char* specs[] = {"a",       "a(x=1)",   "a()",     "(x=1)", "a(x=1",
                           "a(x=1)b", "a(x=(1))", "a[2](p)", "<>=_",  "a(+,-./#%:)",
                           "a(x y)",  "a b",      "a(x=1))", "",      "a(*)"};
    for (const char* spec : specs) {
        std::cmatch match;
        bool whole = std::regex_match(spec, match, pattern);
        ParaMap params;
        EXPECT_EQ(OpenCircuit::_parse_name_and_params(spec, params), whole ? match[1].str() : "") << spec;
        EXPECT_EQ(params.to_string(), whole ? ParaMap(match[2].str()).to_string() : ParaMap().to_string())
            << spec;
    }
    const std::string long_name(1000000, 'a');
    ParaMap params;
    EXPECT_EQ(OpenCircuit::_parse_name_and_params(long_name + "(x=1)", params), long_name);
}

// Values cross the ports of a sub-circuit without time; an inout port joins the nets on both sides.
TEST(CircuitTest, ValuesCrossSubCircuitPortsWithoutTime)
{
    auto owned = std::make_unique<OpenCircuit>("Buffer", "s", nullptr);
    OpenCircuit top("top", nullptr);
    Circuit* sub = owned.get();
    Pin* x = sub->make_pin(Input, "x");
    Pin* z = sub->make_pin(Output, "z");
    Port* io = sub->make_port(1, Inout, "io");
    Component* i = sub->add_component("Inv", "i");
    Component* reader = sub->add_component("Inv", "r");
    sub->make_net("in", {x, i->port("in")});
    sub->make_net("out", {i->port("out"), z});
    Net* inner = sub->make_net("inner", {io, reader->port("in")});
    top.add(sub, false);
    Pin* a = top.make_pin(Input, "a");
    Component* driver = top.add_component("Inv", "d");
    top.make_net("na", {a, top.find_port("s.x"), driver->port("in")});
    Net* outer = top.make_net("bus", {driver->port("out"), top.find_port("s.io")});
    EXPECT_EQ(x->net(Outside), top.find_net("na"));
    EXPECT_EQ(x->net(Inside), top.find_net("s.in"));

    SimulatorGuard guard(top);
    simulator()->reset(100);
    a->set(Value("H"), 10);
    a->set(Value("L"), 20);
    simulator()->simulate(40);
    EXPECT_EQ(record_of(*top.find_net("s.in")), "10H 20L ");
    EXPECT_EQ(record_of(*z), "13L 23H ");
    EXPECT_EQ(record_of(*outer), "13L 23H ");
    EXPECT_EQ(record_of(*inner), "13L 23H ");
    EXPECT_EQ(record_of(*reader->port("out")), "16H 26L ");

    // A second run starts from cleared histories.
    simulator()->reset(100);
    EXPECT_TRUE(z->entries().empty());
}
