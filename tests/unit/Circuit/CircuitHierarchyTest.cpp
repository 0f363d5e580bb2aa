#include "CircuitHarness.h"

#include "Core/Circuit/Circuit.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using Morvane::Input;
using Morvane::Output;

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

}  // namespace

TEST(CircuitHierarchyTest, CopyIsDeepWithItsOwnNets)
{
    Circuit inner("Inner", "inner", nullptr);
    Circuit model("Half", "model", nullptr);
    fill_half_adder(model);
    model.make_net("spare", {});
    model.add_meta_data("k", "v");
    model.add_import_path("lib");
    model.add_copy_of_circuit_as_declaration(&inner);

    std::unique_ptr<Circuit> copy(model.copy_allocator(&model, nullptr));
    EXPECT_EQ(names_of(copy->components()), (std::vector<std::string>{"x", "g"}));
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
    EXPECT_EQ(copy->import_paths(), (std::set<std::string>{"./", "lib"}));
    ASSERT_EQ(copy->circuit_declarations().size(), 1u);
    Circuit* declared = copy->circuit_declarations()[0];
    EXPECT_NE(declared, model.circuit_declarations()[0]);
    EXPECT_EQ(declared->parent(), copy.get());
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

    // A file is found beside the file of the nearest circuit that came from a file.
    EXPECT_EQ(inner->file_circuit(), x);
    EXPECT_EQ(here->file_circuit(), &top);
    EXPECT_EQ(inner->get_circuit_hierarchy_path(), (std::vector<std::string>{"x", "inner"}));
    EXPECT_EQ(x->filepath(), "top/sub/x.ctc");
    EXPECT_EQ(inner->hierachical_filepath("rom.hex"), "top/sub/rom.hex");
    EXPECT_EQ(here->hierachical_filepath("rom.hex"), "top/rom.hex");
    EXPECT_EQ(inner->hierachical_filepath("/data/rom.hex"), "/data/rom.hex");
    x->set_filename("/abs/x.ctc");
    EXPECT_EQ(inner->hierachical_filepath("rom.hex"), "/abs/rom.hex");
    // A holder in the working directory leaves a lone slash in front.
    top.set_filename("y.ctc");
    x->set_filename("x.ctc");
    EXPECT_EQ(x->filepath(), "/x.ctc");
}
