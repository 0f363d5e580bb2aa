#include "CircuitHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Support/Error.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Input;
using Morvane::Output;
using Morvane::Outside;

namespace {

/// A half adder built by calls: pins a, b in, sum, carry out; Xor x, And g.
void fill_half_adder(Circuit& c)
{
    Pin* a = c.make_pin(Input, "a");
    Pin* b = c.make_pin(Input, "b");
    Pin* sum = c.make_pin(Output, "sum");
    Pin* carry = c.make_pin(Output, "carry");
    Component* x = c.add_component("Xor", "x");
    Component* g = c.add_component("And", "g");
    c.make_net("a", {a, x->port("a"), g->port("a")});
    c.make_net("b", {b, x->port("b"), g->port("b")});
    c.make_net("sum", {x->port("out"), sum});
    c.make_net("carry", {g->port("out"), carry});
}

std::vector<std::string> names_of(const std::vector<Component*>& parts)
{
    std::vector<std::string> names;
    for (const Component* c : parts)
        names.push_back(c->instance_name());
    return names;
}

/// A part the factory does not know, so a copy cannot remake it.
class Probe : public Component
{
public:
    explicit Probe(const std::string& name) : Component("Probe", name, static_cast<Circuit*>(nullptr)) {}
    void evaluate(int) override {}
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}
};

}  // namespace

TEST(CircuitHierarchyTest, CopyIsDeepWithItsOwnNets)
{
    Circuit inner("Inner", "inner", nullptr);
    inner.add_comment("inner block");
    Circuit model("Half", "model", nullptr);
    fill_half_adder(model);
    model.make_net("spare", {});
    model.find_component("x")->set_comment_text("the sum");
    model.add_meta_data("k", "v");
    model.add_comment("block");
    model.add_import_path("lib");
    model.add_copy_of_circuit_as_declaration(&inner);

    std::unique_ptr<Circuit> copy(model.copy_allocator(&model, nullptr));
    EXPECT_EQ(copy->type_name(), "Half");
    EXPECT_EQ(copy->instance_name(), "model");
    EXPECT_EQ(copy->id(), model.id());
    ASSERT_EQ(copy->ports().size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(copy->ports()[i]->name(), model.ports()[i]->name());
        EXPECT_EQ(copy->ports()[i]->id(), model.ports()[i]->id());
    }
    EXPECT_EQ(names_of(copy->components()), (std::vector<std::string>{"x", "g"}));
    EXPECT_EQ(copy->find_component("x")->type_name(), "Xor");
    EXPECT_EQ(copy->find_component("x")->comment_text(), "the sum");
    EXPECT_EQ(copy->find_component("x")->parent(), copy.get());

    std::vector<std::string> nets;
    for (const Net* n : copy->nets())
        nets.push_back(n->name());
    EXPECT_EQ(nets, (std::vector<std::string>{"a", "b", "sum", "carry", "spare"}));
    EXPECT_TRUE(copy->find_net("spare")->ports().empty());
    Net* a = copy->find_net("a");
    EXPECT_NE(a, model.find_net("a"));
    EXPECT_EQ(a->ports(),
              (std::vector<Port*>{copy->port("a"), copy->find_port("x.a"), copy->find_port("g.a")}));

    EXPECT_TRUE(copy->get_meta_data_keys().empty());
    ASSERT_EQ(copy->nof_comments(), 1);
    EXPECT_EQ(copy->get_comment(0)->text(), "block");
    EXPECT_EQ(copy->import_paths(), (std::set<std::string>{"./", "lib"}));
    ASSERT_EQ(copy->circuit_declarations().size(), 1u);
    Circuit* declared = copy->circuit_declarations()[0];
    EXPECT_NE(declared, model.circuit_declarations()[0]);
    EXPECT_EQ(declared->parent(), copy.get());
    EXPECT_EQ(declared->get_comment(0)->text(), "inner block");
}

TEST(CircuitHierarchyTest, CopyFailsWithItsMessages)
{
    Port loose(1, Input, "loose", nullptr);
    Probe probe("odd");
    Circuit with_probe("Odd", "m1", nullptr);
    with_probe.add(&probe, false);
    Circuit with_loose("Loose", "m2", nullptr);
    with_loose.make_net("n", {&loose});
    Circuit with_twins("Twins", "m3", nullptr);
    Circuit first("A", "first", nullptr);
    Circuit second("B", "second", nullptr);
    with_twins.add_copy_of_circuit_as_declaration(&first);
    with_twins.add_copy_of_circuit_as_declaration(&second);
    with_twins.circuit_declarations()[1]->set_type_name("A");

    const std::pair<const Circuit*, const char*> cases[] = {
        {&with_probe, "Cannot make a copy of component 'odd' in circuit 'm1'."},
        {&with_loose, "Cann't find port path '' in circuit 'm2'"},
        {&with_twins, "Ooops, already has that type pf declaration 'A'"},
    };
    for (const auto& [model, want] : cases)
        EXPECT_EQ(error_of([&] { delete model->copy_allocator(model, nullptr); }), want);
    EXPECT_EQ(error_of([&] { with_twins.add_copy_of_circuit_as_declaration(&first); }),
              "Ooops, already has that type pf declaration 'A'");
    with_loose.remove(with_loose.find_net("n"));
}

TEST(CircuitHierarchyTest, DeclarationsAreCopiedIntoInstances)
{
    Circuit model("Half", "half", nullptr);
    fill_half_adder(model);
    OpenCircuit top("top", nullptr);
    top.add_copy_of_circuit_as_declaration(&model);
    EXPECT_TRUE(top.has_circuit_declaration("Half"));
    EXPECT_TRUE(top.has_circuit_declaration(top.circuit_declarations()[0]));
    EXPECT_FALSE(top.has_circuit_declaration(&model));
    EXPECT_EQ(top.copy_circuit_declaration("Full", "f"), nullptr);
    Circuit* named = top.copy_circuit_declaration("Half", "h");
    EXPECT_EQ(named->instance_name(), "h");
    EXPECT_EQ(named->parent(), nullptr);
    EXPECT_EQ(top.copy_circuit_declaration("Half", "")->instance_name(), "half_copy");

    Component* h1 = top.add_component("Half", "h1");
    EXPECT_EQ(h1->type_name(), "Half");
    EXPECT_EQ(top.find_port("h1.sum"), h1->port("sum"));
    EXPECT_NE(top.find_net("h1.a"), top.circuit_declarations()[0]->find_net("a"));
    top.remove_circuit_declaration(top.circuit_declarations()[0]);
    EXPECT_FALSE(top.has_circuit_declaration("Half"));
}

TEST(CircuitHierarchyTest, AddingACircuitOfANewTypeDeclaresIt)
{
    auto outsider = std::make_unique<Circuit>("Full", "f1", nullptr);
    fill_half_adder(*outsider);
    outsider->set_filename("lib/full.ctc");
    OpenCircuit top("top", nullptr);
    top.add(outsider.get(), true);
    EXPECT_EQ(outsider->filename(), "");
    ASSERT_TRUE(top.has_circuit_declaration("Full"));
    EXPECT_EQ(top.find_circuit_declaration("Full")->filename(), "");
    Component* second = top.add_component("Full", "f2");
    EXPECT_EQ(second->ports().size(), 4u);
    top.add(top.create_factory_component("And", "g"), true);  // a factory type is no declaration
    EXPECT_EQ(top.circuit_declarations().size(), 1u);
    Circuit lone("Lone", "lone", nullptr);
    EXPECT_EQ(error_of([&] { top._update_instances_of(&lone); }),
              "Can't find a declaration of circuit of type 'Lone'.");
}

TEST(CircuitHierarchyTest, OtherInstancesOfATypeAreReplaced)
{
    Circuit model("Half", "half", nullptr);
    fill_half_adder(model);
    OpenCircuit top("top", nullptr);
    top.add_copy_of_circuit_as_declaration(&model);
    Pin* a = top.make_pin(Input, "a");
    Component* h1 = top.add_component("Half", "h1");
    Component* gate = top.add_component("Inv", "between");
    auto* h2 = dynamic_cast<Circuit*>(top.add_component("Half", "h2"));
    top.add_component("Half", "h3");
    top.make_net("na", {a, top.find_port("h1.a"), top.find_port("h2.a"), top.find_port("h3.a")});
    top.make_net("c1", {top.find_port("h1.carry"), gate->port("in")});
    h1->port("a")->set_id("kept-id");

    h2->add_component("Inv", "extra");
    top.update_other_instances_of_same_type(h2);
    EXPECT_EQ(names_of(top.components()), (std::vector<std::string>{"between", "h2", "h1", "h3"}));
    EXPECT_EQ(top.components()[1], h2);
    Component* new_h1 = top.find_component("h1");
    EXPECT_NE(new_h1, h1);
    EXPECT_NE(top.find_component_recursive("h1.extra"), nullptr);
    EXPECT_NE(top.find_component_recursive("h3.extra"), nullptr);
    EXPECT_EQ(top.find_net("na")->ports().size(), 4u);
    EXPECT_EQ(new_h1->port("a")->net(Outside), top.find_net("na"));
    EXPECT_EQ(new_h1->port("a")->id(), "kept-id");
    EXPECT_EQ(gate->port("in")->net(Outside), new_h1->port("carry")->net(Outside));
    EXPECT_EQ(h1->port("a")->net(Outside), nullptr);
}

TEST(CircuitHierarchyTest, SubstitutionMovesSameNamedPortsAndDropsLoneNets)
{
    Circuit model("Half", "half", nullptr);
    fill_half_adder(model);
    auto narrow = std::make_unique<Circuit>("Narrow", "n", nullptr);
    narrow->make_pin(Input, "a");
    narrow->make_pin(Output, "sum");
    Component* lone = narrow->add_component("Inv", "lone");
    narrow->make_net("single", {lone->port("in")});
    OpenCircuit top("top", nullptr);
    top.add_copy_of_circuit_as_declaration(&model);
    Pin* a = top.make_pin(Input, "a");
    Pin* b = top.make_pin(Input, "b");
    Component* h = top.add_component("Half", "h");
    Component* after = top.add_component("Inv", "after");
    Net* na = top.make_net("na", {a, h->port("a")});
    top.make_net("nb", {b, h->port("b")});
    Net* ns = top.make_net("ns", {h->port("sum"), after->port("in")});

    top.substitute_component(h, narrow.get());
    EXPECT_EQ(names_of(top.components()), (std::vector<std::string>{"after", "n"}));
    EXPECT_EQ(narrow->parent(), &top);
    EXPECT_EQ(na->ports(), (std::vector<Port*>{a, narrow->port("a")}));
    EXPECT_EQ(ns->ports(), (std::vector<Port*>{after->port("in"), narrow->port("sum")}));
    // b lost its partner, and the single-port net inside went too.
    EXPECT_EQ(top.nets(), (std::vector<Net*>{na, ns}));
    EXPECT_EQ(b->net(Morvane::Inside), nullptr);
    EXPECT_TRUE(narrow->nets().empty());
}

TEST(CircuitHierarchyTest, PlaceInTheTreeAndInTheFiles)
{
    Circuit file_model("X", "x", nullptr);
    file_model.set_filename("sub/x.ctc");
    Circuit local_model("Local", "local", nullptr);
    OpenCircuit top("top/y.ctc", nullptr);
    top.set_filename("top/y.ctc");
    top.add_copy_of_circuit_as_declaration(&file_model);
    top.add_copy_of_circuit_as_declaration(&local_model);
    auto* x = dynamic_cast<Circuit*>(top.add_component("X", "x"));
    x->add_copy_of_circuit_as_declaration(&local_model);
    auto* inner = dynamic_cast<Circuit*>(x->add_component("Local", "inner"));
    auto* here = dynamic_cast<Circuit*>(top.add_component("Local", "here"));

    EXPECT_TRUE(top.is_root());
    EXPECT_FALSE(x->is_root());
    EXPECT_TRUE(inner->is_decendent_of(inner));
    EXPECT_TRUE(inner->is_decendent_of(&top));
    EXPECT_FALSE(top.is_decendent_of(inner));
    struct Row
    {
        const Circuit* c;  // circuit asked
        bool local, import_root, imported;
        const Circuit* file;  // file_circuit()
        std::vector<std::string> hierarchy;
    };
    const Row rows[] = {
        {&top, false, false, false, &top, {}},
        {x, false, true, true, x, {"x"}},
        {inner, true, false, true, x, {"x", "inner"}},
        {here, true, false, false, &top, {"here"}},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.c->is_parent_defined_subcircuit(), r.local) << r.c->instance_name();
        EXPECT_EQ(r.c->is_an_import_root(), r.import_root) << r.c->instance_name();
        EXPECT_EQ(r.c->is_imported(), r.imported) << r.c->instance_name();
        EXPECT_EQ(r.c->file_circuit(), r.file) << r.c->instance_name();
        EXPECT_EQ(r.c->get_circuit_hierarchy_path(), r.hierarchy) << r.c->instance_name();
    }

    EXPECT_EQ(x->filepath(), "top/sub/x.ctc");
    EXPECT_EQ(inner->find_file_path("rom.hex"), "top/sub/rom.hex");
    EXPECT_EQ(inner->hierachical_filepath("rom.hex"), "top/sub/rom.hex");
    EXPECT_EQ(here->hierachical_filepath("rom.hex"), "top/rom.hex");
    EXPECT_EQ(inner->hierachical_filepath("/data/rom.hex"), "/data/rom.hex");
    x->set_filename("/abs/x.ctc");
    EXPECT_EQ(inner->hierachical_filepath("rom.hex"), "/abs/rom.hex");
    // A holder in the working directory leaves a lone slash in front.
    top.set_filename("y.ctc");
    x->set_filename("x.ctc");
    EXPECT_EQ(x->filepath(), "/x.ctc");

    top.set_filename("top/y.ctc");
    top.update_circuit_declaration_paths("moved/deeper/y.ctc");
    EXPECT_EQ(top.find_circuit_declaration("X")->filename(), "../../top/sub/x.ctc");
    EXPECT_EQ(top.find_circuit_declaration("Local")->filename(), "");
}
