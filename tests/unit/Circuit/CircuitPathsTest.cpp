#include "CircuitHarness.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentOptions.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Input;

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

TEST_F(Tree, ObjectsGiveTheirPaths)
{
    Net foreign_net(1);
    Port foreign_port(1, Input, "x", nullptr);
    EXPECT_EQ(top.find_port_path(i->port("in")), "s.t.i.in");
    EXPECT_EQ(s->find_port_path(i->port("in")), "t.i.in");
    EXPECT_EQ(top.find_port_path(top.port("a")), "a");
    EXPECT_EQ(top.find_port_path(&foreign_port), "");
    EXPECT_EQ(top.find_net_path(tn), "s.t.tn");
    EXPECT_EQ(top.find_net_path(n2), "n2");
    EXPECT_EQ(top.find_net_path(&foreign_net), "");
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
