#include "CircuitHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentOptions.h"
#include "Core/Support/Error.h"
#include "Core/Support/Regex.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Input;
using Morvane::Output;
using Morvane::Outside;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

/// top: pin a, And g1, sub-circuit s (And g, sub-circuit t (pins p, q, Inv i)), then sub-circuit u (Inv k).
/// Inner circuits are owned here and outlive top, which disconnects them when it dies.
class Tree : public testing::Test
{
protected:
    Tree()
    {
        t->make_pin(Input, "p");
        t->make_pin(Input, "q");  // left open
        i = t->add_component("Inv", "i");
        tn = t->make_net("tn", {t->port("p"), i->port("in")});
        g = s->add_component("And", "g");
        s->add(t.get(), false);
        sn = s->make_net("sn", {g->port("out"), s->find_port("t.p")});
        k = u->add_component("Inv", "k");
        top.make_pin(Input, "a");
        g1 = top.add_component("And", "g1");
        top.add(s.get(), false);
        top.add(u.get(), false);
        n1 = top.make_net("n1", {top.port("a"), g1->port("a")});
        n2 = top.make_net("n2", {g1->port("out"), top.find_port("s.g.a")});
    }

    std::unique_ptr<OpenCircuit> t = std::make_unique<OpenCircuit>("Deep", "t", nullptr);
    std::unique_ptr<OpenCircuit> s = std::make_unique<OpenCircuit>("Sub", "s", nullptr);
    std::unique_ptr<OpenCircuit> u = std::make_unique<OpenCircuit>("Other", "u", nullptr);
    OpenCircuit top{"top", nullptr};
    Component* g1 = nullptr;  // in top
    Component* g = nullptr;   // in s
    Component* i = nullptr;   // in t
    Component* k = nullptr;   // in u
    Net* n1 = nullptr;        // a to g1.a
    Net* n2 = nullptr;        // g1.out to s.g.a
    Net* sn = nullptr;        // in s: g.out to t.p
    Net* tn = nullptr;        // in t: p to i.in
};

}  // namespace

TEST(CircuitPathsSplitTest, CutsAtEveryDot)
{
    struct Row
    {
        const char* path;                   // as given
        std::vector<std::string> elements;  // before the last dot
        const char* last;                   // after it
    };
    const Row rows[] = {
        {"", {}, ""}, {"a", {}, "a"}, {"a.b", {"a"}, "b"}, {"a..b", {"a", ""}, "b"}, {"a.", {"a"}, ""},
    };
    for (const Row& r : rows) {
        auto [elements, last] = OpenCircuit::_split_port_path(r.path);
        EXPECT_EQ(elements, r.elements) << r.path;
        EXPECT_EQ(last, r.last) << r.path;
        std::vector<std::string> all = r.elements;
        all.push_back(r.last);
        EXPECT_EQ(OpenCircuit::_split_path(r.path), all) << r.path;
    }
}

TEST_F(Tree, FindsPortsPartsAndNetsByPath)
{
    const std::pair<const char*, Port*> ports[] = {
        {"a", top.port("a")},
        {"g1.a", g1->port("a")},
        {"s.g.out", g->port("out")},
        {"s.t.i.in", i->port("in")},
        {"s.t.p", t->port("p")},
        {"g1.x.a", nullptr},
        {"nope.a", nullptr},
        {"g1.", nullptr},
        {"", nullptr},
        {"s.t", nullptr},
    };
    for (const auto& [path, want] : ports)
        EXPECT_EQ(top.find_port(path), want) << path;

    const std::pair<const char*, Component*> parts[] = {
        {"s.t.i", i},      {"s.t", t.get()}, {"s", s.get()},    {"g1", g1},
        {"g1.x", nullptr}, {"", nullptr},    {"nope", nullptr},
    };
    for (const auto& [path, want] : parts)
        EXPECT_EQ(top.find_component_recursive(path), want) << path;

    const std::pair<const char*, Net*> nets[] = {
        {"n1", n1}, {"s.sn", sn}, {"s.t.tn", tn}, {"g1.n1", nullptr}, {"nope.n1", nullptr}, {"s.n1", nullptr},
    };
    for (const auto& [path, want] : nets)
        EXPECT_EQ(top.find_net(path), want) << path;
    EXPECT_TRUE(top.has_net("s.t.tn"));
    EXPECT_EQ(s->find_port("t.i.out"), i->port("out"));
}

TEST_F(Tree, LastNetOfANameWins)
{
    top.rename_net(n1, "n2");
    EXPECT_EQ(top.find_net("n2"), n2);
    top.rename_net(n2, "x");
    EXPECT_EQ(top.find_net("n2"), n1);
    NetLookup lookup = top._find_net("s.t.tn");
    EXPECT_EQ(lookup.circuit_name, "t");
    EXPECT_EQ(lookup.net_name, "tn");
    EXPECT_EQ(lookup.circuit, t.get());
    EXPECT_EQ(lookup.net, tn);
}

TEST_F(Tree, MissingNetMessagesListWhatIsThere)
{
    EXPECT_EQ(top.find_net_throw_error("s.sn", "f.ctc", 3), sn);
    EXPECT_EQ(error_of([&] { top.find_net_throw_error("zz", "f.ctc", 7); }),
              "Error in f.ctc:7: cannot find net 'zz'.\nAvailable nets:\n  - 'n1'\n  - 'n2'\n");
    EXPECT_EQ(error_of([&] { top.find_net_throw_error("s.zz", "", 7); }),
              "Error: cannot find net 'zz'.\nAvailable nets:\n  - 'sn'\n");
    // A walk that fails keeps no names.
    EXPECT_EQ(error_of([&] { top.find_net_throw_error("nope.zz", "", 0); }),
              "Error: cannot find net ''.\nCan't find a circuit named ''.");
}

TEST_F(Tree, ObjectsGiveTheirPaths)
{
    Net foreign_net(1);
    Port foreign_port(1, Input, "x", nullptr);
    EXPECT_EQ(top.find_port_path(i->port("in")), "s.t.i.in");
    EXPECT_EQ(s->find_port_path(i->port("in")), "t.i.in");
    EXPECT_EQ(top.find_port_path(t->port("p")), "s.t.p");
    EXPECT_EQ(top.find_port_path(top.port("a")), "a");
    EXPECT_EQ(top.find_port_path(&foreign_port), "");
    EXPECT_EQ(top.find_net_path(tn), "s.t.tn");
    EXPECT_EQ(top.find_net_path(n2), "n2");
    EXPECT_EQ(top.find_net_path(&foreign_net), "");

    i->port("out")->set_id("port-id");
    tn->set_id("net-id");
    k->set_id("part-id");
    EXPECT_EQ(top.find_port_path_by_id("port-id"), "s.t.i.out");
    EXPECT_EQ(top.find_net_path_by_id("net-id"), "s.t.tn");
    EXPECT_EQ(top.get_component_path_by_id("part-id"), "u.k");
    EXPECT_EQ(top.find_port_path_by_id("none"), "");

    EXPECT_EQ(top.find_component_path(static_cast<Component*>(i)), (std::vector<std::string>{"s", "t", "i"}));
    EXPECT_EQ(top.find_component_path(&top), std::vector<std::string>{"top"});
    // A circuit comes out with its own name twice; the circuit form looks into s only.
    EXPECT_EQ(top.find_component_path(static_cast<Component*>(u.get())),
              (std::vector<std::string>{"u", "u"}));
    EXPECT_EQ(top.find_component_path(u.get()), std::vector<std::string>{});
    EXPECT_EQ(top.find_component_path(t.get()), (std::vector<std::string>{"s", "t", "t"}));
}

TEST_F(Tree, OptionsAndAssignmentsTakeTheIdsTheirPathsReach)
{
    ComponentOptions options("s.t.i(delay=7)", "");
    options.resolve_component_id(&top);
    EXPECT_EQ(options.id(), i->id());
    PortAssignment assignment("s.t.p = H", "");
    assignment.resolve_port_id(&top);
    EXPECT_EQ(assignment.port_id(), t->port("p")->id());
    PortAssignment missing("s.x.p = H", "");
    missing.resolve_port_id(&top);
    EXPECT_EQ(missing.port_id(), "");
}

TEST_F(Tree, UnconnectedInputsAreReportedAtEveryLevel)
{
    LineLog sink;
    top.check_connections();  // no sink yet: nothing to hear it
    top.set_simlog(&sink);
    top.check_connections();
    const std::vector<std::string> want = {
        "1 [g1(And) in top | WARNING] Input port 'b' of component 'And'/'g1' is not connected.",
        "1 [g(And) in s | WARNING] Input port 'b' of component 'And'/'g' is not connected.",
        "1 [t(Deep) in s | WARNING] Input port 'q' of component 'Deep'/'t' is not connected.",
        "1 [k(Inv) in u | WARNING] Input port 'in' of component 'Inv'/'k' is not connected.",
    };
    EXPECT_EQ(sink.lines, want);
}

TEST(CircuitDumpTest, PrintsPartsDeclarationsPortsAndNets)
{
    OpenCircuit top("top", nullptr);
    top.set_filename("top.ctc");
    Pin* a = top.make_pin(Input, "a");
    Component* g = top.add_component("And", "g");
    top.make_net("n", {a, g->port("a")});
    auto* model = new OpenCircuit("Half", "half", nullptr);
    top.add_copy_of_circuit_as_declaration(model);
    delete model;

    CaptureStdout();
    top.print(false);
    const std::string text = std::regex_replace(GetCapturedStdout(), std::regex("(0x)+[0-9a-f]+"), "@");
    EXPECT_EQ(text, "Circuit: 'top' / 'Circuit' (@) file: 'top.ctc'\n"
                    "   Components [1]:\n"
                    "      [0]: 'And' : 'g'  (@)\n"
                    "   Declarations [1]:\n"
                    "      [0]: 'Half' 'half'  (@)\n"
                    "   Ports [1]:\n"
                    "      'a' (@) (net 'n' @)\n"
                    "   Nets [1]:\n"
                    "      Net 'n' @:  a a \n");
}
