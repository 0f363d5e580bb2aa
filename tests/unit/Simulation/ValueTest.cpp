#include "Core/Simulation/Value.h"

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

struct BuildCase
{
    const char* what;              // the expression under test
    std::function<Value()> build;  // makes the value
    const char* letters;           // expected text
};

template <typename Exception>
void expect_throw_text(const char* what, const std::function<void()>& action, const char* message)
{
    try {
        action();
        ADD_FAILURE() << what << ": nothing thrown";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), message) << what;
    }
}

Value changed(Value v, const std::function<void(Value&)>& change)
{
    change(v);
    return v;
}

}  // namespace

TEST(ValueTest, BuildsAssignsAndResizes)
{
    const BuildCase cases[] = {
        {"Value(4)", [] { return Value(4); }, "uuuu"},
        {"Value('H', 4)", [] { return Value('H', 4); }, "LLLH"},
        {"Value('p', 3) pads u", [] { return Value('p', 3); }, "uup"},
        {"Value(\"Hz\", 4)", [] { return Value("Hz", 4); }, "uuHz"},
        {"from_int(256)", [] { return Value::from_int(256); }, "HLLLLLLLL"},
        {"from_int(0)", [] { return Value::from_int(0); }, ""},
        {"width wraps at 256", [] { return changed(Value(3), [](Value& v) { v.set_size(260); }); }, "uuuu"},
        {"Value(4) = \"Hz\"", [] { return Value(4) = "Hz"; }, "uuHz"},
        {"narrower value reverses", [] { return Value(4) = Value("HL"); }, "LLLH"},
        {"narrower value pads u", [] { return Value(4) = Value("Hz"); }, "uuzH"},
        {"narrower pull pads L", [] { return Value(4) = Value("pL"); }, "LLLp"},
        {"Value(4) = 'u'", [] { return Value(4) = 'u'; }, "uuuu"},
        {"Value(4) = 'z'", [] { return Value(4) = 'z'; }, "LLLz"},
        {"Value(0) = 'z'", [] { return Value(0) = 'z'; }, "z"},
        {"pad to heap", [] { return changed(Value("Hz"), [](Value& v) { v.pad_up_to(9, 'z'); }); },
         "zzzzzzzHz"},
        {"truncate, pad from the kept store",
         [] {
             return changed(Value("HHHHLLLLHzHL"), [](Value& v) {
                 v.truncate_down_to(4);
                 v.pad_up_to(6, 'p');
             });
         },
         "ppHzHL"},
        {"assign after truncate to 0",
         [] {
             return changed(Value(20), [](Value& v) {
                 v.truncate_down_to(0);
                 v = Value("HLHLHLHLHLHL");
             });
         },
         "HLHLHLHLHLHL"},
        {"set_to_hex Z", [] { return changed(Value(8), [](Value& v) { v.set_to_hex("Z"); }); }, "uuuuzzzz"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(c.build().c_str(), c.letters) << c.what;
    EXPECT_EQ(Value(300).size(), 44u);
}

TEST(ValueTest, FailuresThrowStandardExceptionsWithExactTexts)
{
    expect_throw_text<std::length_error>(
        "five into four", [] { Value(4) = "HLHLH"; }, "Initializer 'HLHLH' too long for type (Value 4).");
    // The store of a wide value was left behind when its constructor threw.
    expect_throw_text<std::length_error>(
        "wide text", [] { Value(std::string(20, 'H'), 12); },
        "Initializer 'HHHHHHHHHHHHHHHHHHHH' too long for type (Value 12).");
    expect_throw_text<std::out_of_range>(
        "index at width", [] { (void)Value(4)[4]; }, "Value: Index 4 larger than size 4");
    expect_throw_text<std::out_of_range>(
        "set_to too big", [] { Value(4).set_to(16); }, "Number cannot be represented in value");
    expect_throw_text<std::domain_error>(
        "U keeps case", [] { (void)Value("HU").integer(); }, "Cannot interpret 'U' as a binary digit.");
}

TEST(ValueTest, IndexOrdersComparisonAndMatching)
{
    Value v("HLzu");
    EXPECT_EQ(v[0], 'u');
    EXPECT_EQ(v.left_indexed_bit(0), 'H');
    v[1] = 'p';
    v.left_indexed_bit(1) = 'n';
    EXPECT_STREQ(v.c_str(), "Hnpu");

    // Comparison ignores case and reads over this value's width only.
    struct Case
    {
        const char* left;   // this object
        const char* right;  // the other value, or the pattern
        bool want;          // expected == or matches
    };
    const Case equal[] = {{"HL", "HLLL", true}, {"HLLL", "HL", false}, {"", "HLz", true},
                          {"hl", "HL", true},   {"Hz", "HZ", true},    {"HL", "HH", false}};
    for (const auto& c : equal) {
        EXPECT_EQ(Value(c.left) == Value(c.right), c.want) << c.left << " == " << c.right;
        EXPECT_EQ(Value(c.left) != Value(c.right), !c.want) << c.left << " != " << c.right;
    }
    EXPECT_FALSE(Value("HL") == "HLL");
    EXPECT_TRUE(Value("u") == 'U');

    // X matches anything, x only x; a pattern text must not be wider than the value.
    const Case match[] = {{"u", "X", true},     {"HL", "X", true},     {"HL", "xxx", false},
                          {"HzL", "xZl", true}, {"HzL", "xHl", false}, {"HLH", "H", false}};
    for (const auto& c : match)
        EXPECT_EQ(Value(c.left).matches(c.right), c.want) << c.left << " ~ " << c.right;
    EXPECT_FALSE(Value("u").matches('x'));  // a letter x is no wildcard
    EXPECT_TRUE(Value("HL").matches(Value("xLL")));
    EXPECT_FALSE(Value("HLL").matches(Value("xL")));
}

TEST(ValueTest, NumbersInAndOut)
{
    struct Case
    {
        const char* letters;   // value
        bool is_integer;       // expected is_integer()
        int integer;           // expected integer()
        const char* readable;  // expected readable()
    };
    const Case cases[] = {
        {"", true, 0, "0"},
        {"hl", true, 2, "2"},
        {"HpL", false, 4, "HpL"},
        {"HLHLHLHLHLHL", true, 0xaaa, "aaa"},
    };
    for (const auto& c : cases) {
        Value v(c.letters);
        EXPECT_EQ(v.is_integer(), c.is_integer) << c.letters;
        EXPECT_EQ(v.integer(), c.integer) << c.letters;
        EXPECT_EQ(v.readable(), c.readable) << c.letters;
    }
    EXPECT_EQ(Value(std::string(32, 'H')).hex(), "ffffffff");

    struct SetCase
    {
        int width;            // bits
        int x;                // number written
        const char* letters;  // expected letters, or null if it throws
    };
    const std::string h31_l = std::string(31, 'H') + "L";
    const SetCase set_cases[] = {
        {4, 15, "HHHH"},         {4, 16, nullptr},
        {4, -1, "HHHH"},         {0, 1, nullptr},
        {31, 0, nullptr},  // the limit is negative
        {32, 1, nullptr},  // the limit is 1
        {32, -2, h31_l.c_str()}, {33, 1, "LLLLLLLLLLLLLLLLLLLLLLLLLLLLLLLLH"},
    };
    for (const auto& c : set_cases) {
        Value v(c.width);
        if (c.letters == nullptr) {
            EXPECT_THROW(v.set_to(c.x), std::out_of_range) << c.width << " " << c.x;
            continue;
        }
        v.set_to(c.x);
        EXPECT_STREQ(v.c_str(), c.letters) << c.width << " " << c.x;
    }
}
