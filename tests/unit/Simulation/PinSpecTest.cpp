#include "Core/Simulation/PinSpec.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(PinSpecTest, ExpressionsGiveIndicesWithDenseZeroLast)
{
    struct Case
    {
        const char* expression;
        std::vector<int> indices;
        int highest;
    };
    const Case cases[] =
        {
            {"7:4", {4, 5, 6, 7}, 7}, {"0:3", {3, 2, 1, 0}, 3}, {"5;1:0;9", {9, 0, 1, 5}, 9},
            {"1;", {1}, 1},           {" 2: 1", {1, 2}, 2},     {"3:0,7", {0, 1, 2, 3}, 3},
            {"254", {254}, 254},  // the highest bit of the widest value
        };
    for (const Case& c : cases) {
        PinSpec spec(c.expression);
        EXPECT_EQ(spec.indices(), c.indices) << c.expression;
        EXPECT_EQ(spec.highest_bit(), c.highest) << c.expression;
    }
    EXPECT_EQ(PinSpec("254:0").size(), 255);
    EXPECT_EQ(PinSpec(0, 3).indices(), PinSpec("0:3").indices());

    for (const char* expression : {"-1", "4:x", "1;;2", ":3", "2 :1",
                                   // Beyond the widest value: a range up to these would only fill memory.
                                   "255", "0:2147483647", "2147483647:0"}) {
        EXPECT_EQ(error_of([&] { PinSpec spec(expression); }),
                  std::string("Invalid pin spec expression: '") + expression + "'.");
    }
}

TEST(PinSpecTest, MapsBetweenDenseAndSparse)
{
    PinSpec spec("7:4");
    EXPECT_EQ(spec.dense_to_sparse(0), 4);
    EXPECT_EQ(spec.sparse_to_dense(6), 2);
    EXPECT_FALSE(spec.includes_bit(3));
    EXPECT_EQ(error_of([&] { spec.sparse_to_dense(3); }), "Cannot find bit 3 in PinSpec.");

    // The empty expression is the identity.
    PinSpec identity("");
    EXPECT_EQ(identity.size(), 0);
    EXPECT_TRUE(identity.includes_bit(1000));
    EXPECT_EQ(identity.sparse_to_dense(12), 12);
}
