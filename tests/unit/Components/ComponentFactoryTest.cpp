#include "Core/Components/ComponentFactory.h"

#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Basic/Gates.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(ComponentFactoryTest, TableKeepsItsOrder)
{
    // Every type the library will hold, in table order: the first match wins, so each part type
    // must sit in its own place whichever of them are built.
    const std::vector<std::string> all = {
        // clang-format off
        "High",
        "Low",
        "PullUp",
        "PullDown",
        "Step",
        "Delay",
        "Inv",
        "And",
        "Nand",
        "Xor",
        "Xnor",
        "Or",
        "Nor",
        "Oscillator",
        "D_flip_flop",
        "ThreeStateBuf",
        "BusBuffer",
        "Demux1to4",
        "Join",
        "Split",
        "Splice",
        "Const",
        "74LS00",
        "74LS04",
        "74LS08",
        "74LS32",
        "74x74",
        "74LS78A",
        "74LS125",
        "74LS137",
        "74LS139",
        "74LS154",
        "74x174",
        "74LS191",
        "74LS244",
        "74x273",
        "74LS283",
        "74LS374",
        "74x574",
        "74x688",
        "74AS867",
        "ATF22V10C",
        "HM62256B",
        "27C64",
        "IDT7132LA",
        "MOS6502",
        "W65C02",
        // clang-format on
    };
    std::vector<std::string> want;
    for (const std::string& name : all)
        if (ComponentFactory::handles_the_type(name))
            want.push_back(name);
    EXPECT_EQ(ComponentFactory::type_names(), want);
}

TEST(ComponentFactoryTest, CreatesWithMergedParameters)
{
    struct Row
    {
        const char* type;        // as in a Unit line
        const char* spec;        // instance specification
        const char* name;        // expected instance name
        const char* parameters;  // expected map
        int delay;               // ns, as applied
    };
    const Row rows[] = {
        {"And", "U1", "U1", "(delay=3)", 3},
        {"And", "U1(delay=7)", "U1", "(delay=7)", 7},
        {"Xor", "X(delay=0x10,note=hi)", "X", "(delay=0x10,note=hi)", 16},
        {"Inv", "", "", "(delay=3)", 3},
        {"Nor", "(delay=2)", "", "(delay=2)", 2},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* gate = dynamic_cast<Gate*>(factory.create(r.type, r.spec));
        ASSERT_NE(gate, nullptr) << r.type << " " << r.spec;
        EXPECT_EQ(gate->instance_name(), r.name);
        EXPECT_EQ(gate->type_name(), r.type);
        EXPECT_EQ(gate->get_parameter_string(), r.parameters);
        EXPECT_EQ(gate->delay(), r.delay) << r.spec;
    }
}

TEST(ComponentFactoryTest, UnknownTypesAreNoError)
{
    ComponentFactory factory;
    for (const char* type : {"Circuit", "and", "DM74LS00", "", "Probe"}) {
        EXPECT_EQ(factory.create(type, "U1"), nullptr) << type;
        EXPECT_FALSE(ComponentFactory::handles_the_type(type)) << type;
        EXPECT_EQ(ComponentFactory::default_parameters(type).size(), 0u);
        EXPECT_EQ(ComponentFactory::parameter_description(type), "");
    }
    EXPECT_TRUE(ComponentFactory::handles_the_type("Nand"));
    EXPECT_EQ(ComponentFactory::parameter_description("Nand"), "<b>delay</b> The gate delay in ns.");
}

TEST(ComponentFactoryTest, MalformedSpecificationsThrowEvenForUnknownTypes)
{
    ComponentFactory factory;
    for (const char* spec : {"U1(delay=7", "U1(a)b", "U1((", "U1(delay=7)x"}) {
        for (const char* type : {"And", "Unknown"}) {
            EXPECT_EQ(error_of([&] { factory.create(type, spec); }),
                      std::string("Parse error: trailing characters or unmatched paranthesis in "
                                  "instance specification '") +
                          spec + "'.");
        }
    }
}

TEST(ComponentFactoryTest, ExtractAppendsToBothOutputs)
{
    std::string name = "pre-";
    std::string params;
    ComponentFactory::extract_name_and_params("U7(delay=1)", name, params);
    EXPECT_EQ(name, "pre-U7");
    EXPECT_EQ(params, "(delay=1)");
    ComponentFactory::extract_name_and_params("", name, params);  // empty is fine
    EXPECT_EQ(name, "pre-U7");
    // Left-over parameters count: a spec that doesn't end in ')' is refused.
    EXPECT_THROW(ComponentFactory::extract_name_and_params("U8", name, params), Error);
    EXPECT_EQ(name, "pre-U7U8");
}

TEST(ComponentFactoryTest, DuplicateCopiesACircuitAndOwnsIt)
{
    Circuit top("top", nullptr);
    Circuit model("model", nullptr);
    model.make_pin(Morvane::Input, "a");
    ComponentFactory factory;
    Component* copy = factory.duplicate(&model, &top);
    ASSERT_NE(dynamic_cast<Circuit*>(copy), nullptr);
    EXPECT_EQ(copy->parent(), &top);
    EXPECT_EQ(copy->instance_name(), "model");
    EXPECT_EQ(copy->type_name(), "Circuit");
    ASSERT_EQ(copy->ports().size(), 1u);
    EXPECT_NE(copy->port("a"), model.port("a"));
}
