#include "Core/TestSequence/TestSequence.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"

#include <climits>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

std::unique_ptr<TestSequence> read(const TempDir& dir, const std::string& text)
{
    dir.write("main.tv", text);
    return std::make_unique<TestSequence>("main.tv");
}

}  // namespace

TEST(TestSequenceTest, FindsExpectedOutputValuesBetweenRows)
{
    TempDir dir;
    auto sequence = read(dir, "time a ==(dT)=> y\n"
                              "0   H 5 1\n"
                              "10  H 5 2\n"
                              "20  H 0 3\n"
                              "30  H 5 4\n");
    struct Case
    {
        const char* name;
        int time;
        const char* value;
    };
    const Case cases[] = {
        {"y", 4, "!"},     {"y", 5, "LLLH"},  {"y", 14, "LLLH"}, {"y", 15, "LLHL"},
        {"y", 20, "LLHH"}, {"y", 35, "LHLL"}, {"y", 36, "!"},    {"a", 5, "?"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sequence->get_output_value(c.name, c.time), c.value) << c.name << "@" << c.time;

    // A row overtaken by the next one's output time spans nothing and is passed over, even at its own
    // output time.
    auto overtaken = read(dir, "time a ==(dT)=> y\n0 H 50 1\n10 H 0 2\n60 H 0 3\n");
    EXPECT_EQ(overtaken->get_output_value("y", 5), "!");
    EXPECT_EQ(overtaken->get_output_value("y", 10), "LLHL");
    EXPECT_EQ(overtaken->get_output_value("y", 50), "LLHL");
    EXPECT_EQ(overtaken->get_output_value("y", 60), "LLHH");
}

TEST(TestSequenceTest, RowConvertsTimesAndDeltaTimes)
{
    TestVectorHeader header;  // has delta time and no signals
    std::vector<std::string> fields{"x", "5"};
    EXPECT_EQ(error_of([&] { TestVector(fields, 9, &header, ""); }),
              "Error on line 9: First column must be a number: 'x' is not.");
    std::vector<std::string> row{"12abc", "5x"};
    TestVector vector(row, 3, &header, "");
    EXPECT_EQ(vector.time(), 12);
    EXPECT_EQ(vector.delta_time(), 5);

    const std::pair<const char*, int> deltas[] = {{"7", 7}, {"007", 7}, {"4294967297", 1}, {"-3", -3}};
    for (const auto& [text, value] : deltas) {
        vector.set_delta_time(text);
        EXPECT_EQ(vector.delta_time(), value) << text;
    }
    vector.set_time(INT_MAX);
    vector.set_delta_time(1);
    EXPECT_EQ(vector.output_time(), INT_MIN);
    EXPECT_EQ(vector.input_time(), INT_MAX);
}
