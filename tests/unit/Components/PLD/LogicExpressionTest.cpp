#include "Core/Components/PLD/LogicExpression.h"

#include "tests/unit/ErrorText.h"

#include "Core/Simulation/Port.h"

#include <gtest/gtest.h>
#include <string>

TEST(LogicExpressionTest, ValuesOfHandBuiltTrees)
{
    Pin a(Morvane::Input, "A1");
    a.set(Value("H"), 0);
    a.set(Value("u"), 10);
    Vcc vcc;
    Gnd gnd;
    InputPort in(&a, false);
    InputPort in_low(&a, true);  // declared active low
    using E = CompositeExpr;
    E and_empty(E::And, {});
    E or_empty(E::Or, {});
    E low_and_u(E::And, {&gnd, &in});
    E high_or_u(E::Or, {&in, &vcc});
    E inv(E::Invert, {&in});
    E inv_two(E::Invert, {&in, &vcc});
    E ident_none(E::Identity, {});
    E invalid(E::Invalid, {&vcc});
    struct Row
    {
        LogicExpression* e;
        int time;
        const char* want;
    };
    const Row rows[] = {
        {&and_empty, 0, "H"},  {&or_empty, 0, "L"}, {&in, 0, "H"},  {&in_low, 0, "L"},
        {&in, 10, "u"},        {&in_low, 10, "u"},  {&inv, 0, "L"}, {&low_and_u, 10, "L"},
        {&high_or_u, 10, "H"}, {&invalid, 0, ""},
    };
    for (const Row& r : rows)
        EXPECT_EQ(std::string(r.e->value(r.time).c_str()), r.want) << r.time;
    EXPECT_EQ(error_of([&] { inv_two.value(0); }),
              "Malformed Invert CompositeExpr: expecting 1 argument, not 2.");
    EXPECT_EQ(error_of([&] { ident_none.value(0); }),
              "Malformed Identity CompositeExpr: expecting 1 argument, not 0.");
}

TEST(LogicExpressionTest, ConstantsTermsAndNullChildren)
{
    Pin a(Morvane::Input, "A1");
    Vcc vcc;
    Gnd gnd;
    InputPort in(&a, false);
    CompositeExpr consts(CompositeExpr::And, {&vcc, &gnd});
    CompositeExpr mixed(CompositeExpr::Or, {&consts, &in});
    EXPECT_TRUE(consts.is_constant());
    EXPECT_FALSE(mixed.is_constant());
    EXPECT_EQ(mixed.count_product_terms(), 2);  // a product under an Or is one term
    mixed.add_child(nullptr);
    EXPECT_EQ(mixed.children().size(), 2u);
    EXPECT_EQ(error_of([] { InputPort(nullptr, false).check(); }), "No port is defined in InputPort");
    EXPECT_EQ(error_of([] { OLMCFeedback("Q1").check(); }), "OLMC feedback for 'Q1' is unresolved.");
}
