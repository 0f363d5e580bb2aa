#include "Core/Support/StringUtils.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

TEST(StringUtilsTest, InPlaceEdits)
{
    std::string s = "\t\v a b \f\r\n";
    EXPECT_EQ(trim(s), "a b");
    std::string xs = "xxaxx";
    EXPECT_EQ(ltrim(xs, "x"), "axx");

    // Blanks only; a tab stays.
    std::string spaced = " a\tb c ";
    EXPECT_EQ(remove_spaces(spaced), "a\tbc");

    std::string twice = "a-b-c";
    EXPECT_TRUE(replace(twice, "-", "+"));
    EXPECT_EQ(twice, "a+b-c");
    EXPECT_FALSE(replace(twice, "x", "y"));
}

TEST(StringUtilsTest, SplitFollowsLineReading)
{
    struct Case
    {
        const char* text;
        std::vector<std::string> pieces;
    };
    const Case cases[] = {
        {"a,,b", {"a", "", "b"}}, {"a,b,", {"a", "b"}}, {",a", {"", "a"}}, {"abc", {"abc"}}, {"", {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(split(c.text, ','), c.pieces) << c.text;
    EXPECT_EQ(csv_string_to_vector(" a , b\t,c "), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(StringUtilsTest, FmtHandlesTextsBeyondTheFirstBuffer)
{
    EXPECT_EQ(fmt("%s=%d", "x", 5), "x=5");
    std::string long_text(3000, 'y');
    EXPECT_EQ(fmt("<%s>", long_text.c_str()), "<" + long_text + ">");
}

TEST(StringUtilsTest, ExtractNumberSuffix)
{
    struct Case
    {
        const char* text;
        const char* rest;
        int number;
    };
    const Case cases[] = {
        {"data12", "data", 12},
        {"data", "data", 1},
        {"a1b007", "a1b", 7},
        {"x0", "x", 0},
    };
    for (const Case& c : cases) {
        std::string rest;
        int number = -5;
        extract_number_suffix(c.text, rest, number);
        EXPECT_EQ(rest, c.rest) << c.text;
        EXPECT_EQ(number, c.number) << c.text;
    }
    std::string rest;
    int number = 0;
    EXPECT_THROW(extract_number_suffix("123", rest, number), std::out_of_range);
    EXPECT_THROW(extract_number_suffix("a99999999999", rest, number), std::out_of_range);
}

TEST(StringUtilsTest, EscapeString)
{
    struct Case
    {
        std::string text;
        std::string escaped;
    };
    const Case cases[] = {
        {"", "\"\""},
        {"plain ~text", "\"plain ~text\""},
        {"a\"b\\c", "\"a\\\"b\\\\c\""},
        {"\t\n\r", "\"\\t\\n\\r\""},
        {std::string("\x01\x1f\x7f", 3), "\"\\x01\\x1F\\x7F\""},
        {std::string(1, '\0'), "\"\\x00\""},
        {"\x80\x81\xff", "\"\\x80\x81\xff\""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(escape_string(c.text), c.escaped);
}

TEST(StringUtilsTest, ClassToTypeName)
{
    const std::pair<const char*, const char*> cases[] = {
        {"MC27C64", "27C64"},     {"DM74LS00", "74LS00"}, {"SN74x74", "74x74"}, {"SN74", "74"},
        {"HM62256B", "HM62256B"}, {"74LS00", "74LS00"},   {"And", "And"},       {"", ""},
    };
    for (const auto& [name, type] : cases) {
        EXPECT_EQ(class_to_type_name(name), type);
        EXPECT_EQ(class_to_type_name(std::string(name)), type);
    }
}
