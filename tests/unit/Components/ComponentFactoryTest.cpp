#include "Core/Components/ComponentFactory.h"

#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Basic/Gates.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

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
