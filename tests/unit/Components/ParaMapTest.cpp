#include "Core/Components/ParaMap.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

using Pairs = std::map<std::string, std::string>;

TEST(ParaMapTest, ParsesPairsWithAsymmetricTrimming)
{
    struct Case
    {
        const char* text;
        Pairs pairs;
    };
    const Case cases[] = {
        {"(a=1,b=2)", {{"a", "1"}, {"b", "2"}}},
        // Only the last pair keeps its blanks.
        {"( a = 1 , b = 2 )", {{"a", "1"}, {" b ", " 2 "}}},
        {"(s=\"x, y\",t=1)", {{"s", "\"x, y\""}, {"t", "1"}}},
        {"(a)", {{"a", ""}}},
        {"( a ,b=1)", {{"a", ""}, {"b", "1"}}},
        {"(a=1,)", {{"a", "1"}, {"", ""}}},
        {"(a=b=c)", {{"a", "b=c"}}},
        {"(a=1,a=2)", {{"a", "2"}}},
        {"()", {}},
        {"", {}},
        {"[k=v]", {{"k", "v"}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ParaMap(c.text).data(), c.pairs) << c.text;
}

TEST(ParaMapTest, AddParamsMergesAndRejectsAnOpenQuote)
{
    ParaMap p("(a=1,b=2)");
    p.add_params("(b=3,c)");
    EXPECT_EQ(p.data(), (Pairs{{"a", "1"}, {"b", "3"}, {"c", ""}}));
    EXPECT_EQ(error_of([&] { p.add_params("(d=\"open,e=1)"); }),
              "Parameters malformed: '(d=\"open,e=1)': unterminated string.");
}

TEST(ParaMapTest, GetValueReadsNumbers)
{
    ParaMap p(Pairs{{"hex", "0x10"},
                    {"dollar", "$10"},
                    {"bin", "0b11"},
                    {"dec", "12"},
                    {"none", "fast"},
                    {"f", "2.5e3"},
                    {"bad", "x"}});
    const std::pair<const char*, int> ints[] = {
        {"hex", 16}, {"dollar", 16}, {"bin", 3}, {"dec", 12}, {"none", -1}, {"missing", 77},
    };
    for (const auto& [key, expected] : ints) {
        int value = 77;
        p.get_value(key, value);
        EXPECT_EQ(value, expected) << key;
    }
    float f = 1;
    p.get_value("f", f);
    EXPECT_EQ(f, 2500.0f);
    p.get_value("bad", f);
    EXPECT_EQ(f, 0.0f);
    p.get_value("missing", f);
    EXPECT_EQ(f, 0.0f);
}

TEST(ParaMapTest, GetValueReadsBools)
{
    const std::pair<const char*, int> cases[] = {
        {"YES", 1}, {"True", 1}, {" 1\t", 1}, {"no", 0}, {"FALSE", 0}, {"0", 0}, {"on", -1}, {"", -1},
    };
    for (const auto& [text, expected] : cases) {
        ParaMap p(Pairs{{"k", text}});
        for (bool start : {false, true}) {
            bool value = start;
            p.get_value("k", value);
            EXPECT_EQ(value, expected < 0 ? start : expected == 1) << "'" << text << "'";
        }
    }
    bool untouched = true;
    ParaMap().get_value("k", untouched);
    EXPECT_TRUE(untouched);
}

TEST(ParaMapTest, TextForms)
{
    ParaMap p("(a=1,b=2)");
    EXPECT_EQ(p.to_string(), "(a=1,b=2)");
    EXPECT_EQ(ParaMap().to_string(), "");
    EXPECT_EQ(p.get_keys(), (std::vector<std::string>{"a", "b"}));

    ParaMap other("(b=3,c=4)");
    EXPECT_EQ(p.diff_string(other), "(a=1,b=2)");
    EXPECT_EQ(p.diff_string(ParaMap("(a=1,b=2,c=4)")), "");
    EXPECT_EQ(p.diff_string(ParaMap("(a=1,b=9)")), "(b=2)");
}
