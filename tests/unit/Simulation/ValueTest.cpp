#include "Core/Simulation/Value.h"

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <typeinfo>

using Morvane::BitState;

namespace {

// True if the letters live inside the object, that is, no heap store is in use.
bool stored_in_object(const Value& v)
{
    auto object = reinterpret_cast<const char*>(&v);
    return v.c_str() >= object && v.c_str() < object + sizeof(Value);
}

struct BuildCase
{
    const char* what;              // the expression under test
    std::function<Value()> build;  // makes the value
    const char* letters;           // expected text
};

struct ThrowCase
{
    const char* what;              // the expression under test
    std::function<void()> action;  // must throw
    const char* message;           // exact what() text
};

template <typename Exception> void expect_throw_text(const ThrowCase& c)
{
    try {
        c.action();
        ADD_FAILURE() << c.what << ": nothing thrown";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), c.message) << c.what;
    }
}

}  // namespace

TEST(ValueTest, ConstructionSizesAndPads)
{
    const BuildCase cases[] = {
        {"Value(4)", [] { return Value(4); }, "uuuu"},
        {"Value('L', 4)", [] { return Value('L', 4); }, "LLLL"},
        {"Value('H', 4)", [] { return Value('H', 4); }, "LLLH"},
        {"Value('p', 3) pads u", [] { return Value('p', 3); }, "uup"},
        {"Value(High, 2)", [] { return Value(BitState::High, 2); }, "LH"},
        {"Value(\"HL\", 4)", [] { return Value("HL", 4); }, "LLHL"},
        {"Value(\"Hz\", 4)", [] { return Value("Hz", 4); }, "uuHz"},
        {"Value(\"hl\", 3) keeps case", [] { return Value(std::string("hl"), 3); }, "Lhl"},
        {"Value(\"\")", [] { return Value(""); }, ""},
        {"from_int(8)", [] { return Value::from_int(8); }, "HLLL"},
        {"from_int(255)", [] { return Value::from_int(255); }, "HHHHHHHH"},
        {"from_int(256)", [] { return Value::from_int(256); }, "HLLLLLLLL"},
        {"from_int(0)", [] { return Value::from_int(0); }, ""},
        {"from_int(-3)", [] { return Value::from_int(-3); }, ""},
    };
    for (const auto& c : cases) {
        Value v = c.build();
        EXPECT_STREQ(v.c_str(), c.letters) << c.what;
        EXPECT_EQ(v.size(), std::string(c.letters).size()) << c.what;
    }
}

TEST(ValueTest, WidthWrapsAt256)
{
    EXPECT_EQ(Value(300).size(), 44u);
    EXPECT_EQ(Value(256).size(), 0u);
    Value v(3);
    v.set_size(260);
    EXPECT_STREQ(v.c_str(), "uuuu");
}

TEST(ValueTest, AssignmentSizesPadsAndReversesNarrowerValues)
{
    const BuildCase cases[] = {
        {"Value(4) = \"Hz\"", [] { return Value(4) = "Hz"; }, "uuHz"},
        {"Value(0) = \"HzL\"", [] { return Value(0) = std::string("HzL"); }, "HzL"},
        {"Value(4) = Value(HL) reverses", [] { return Value(4) = Value("HL"); }, "LLLH"},
        {"Value(4) = Value(Hz) pads u", [] { return Value(4) = Value("Hz"); }, "uuzH"},
        {"Value(4) = Value(pL) pads L", [] { return Value(4) = Value("pL"); }, "LLLp"},
        {"Value(4) = Value(xH) pads u", [] { return Value(4) = Value("xH"); }, "uuHx"},
        {"Value(0) = Value(HzL)", [] { return Value(0) = Value("HzL"); }, "HzL"},
        {"equal widths copy", [] { return Value("LLLL") = Value("Hzpn"); }, "Hzpn"},
        {"Value(4) = 'H'", [] { return Value(4) = 'H'; }, "LLLH"},
        {"Value(4) = 'u'", [] { return Value(4) = 'u'; }, "uuuu"},
        {"Value(4) = 'z'", [] { return Value(4) = 'z'; }, "LLLz"},
        {"Value(0) = 'z'", [] { return Value(0) = 'z'; }, "z"},
        {"Value(3) = PullUp", [] { return Value(3) = BitState::PullUp; }, "LLp"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(c.build().c_str(), c.letters) << c.what;
}

TEST(ValueTest, FailuresThrowStandardExceptionsWithExactTexts)
{
    const ThrowCase length_errors[] = {
        {"five letters into four", [] { Value(4) = "HLHLH"; },
         "Initializer 'HLHLH' too long for type (Value 4)."},
        {"char into width 0", [] { Value('H', 0); }, "Initializer 'H' too long for type (Value 0)."},
        {"text wider than given", [] { Value("HLH", 2); }, "Initializer 'HLH' too long for type (Value 2)."},
        {"wider value", [] { Value(2) = Value(3); }, "Initializer mismatch 3 vs 2"},
        // The store of a wide value was left behind when its constructor threw.
        {"wide text, width given", [] { Value(std::string(20, 'H'), 12); },
         "Initializer 'HHHHHHHHHHHHHHHHHHHH' too long for type (Value 12)."},
    };
    for (const auto& c : length_errors)
        expect_throw_text<std::length_error>(c);
    // A text past 255 letters wraps the width and no longer fits.
    EXPECT_THROW(Value(std::string(270, 'L').c_str()), std::length_error);

    const ThrowCase out_of_range_errors[] = {
        {"index at width", [] { (void)Value(4)[4]; }, "Value: Index 4 larger than size 4"},
        {"left index past width", [] { (void)Value(4).left_indexed_bit(7); },
         "Value: Index 7 larger than size 4"},
        {"index of empty", [] { (void)Value(0)[0]; }, "Value: Index 0 larger than size 0"},
        {"set_to too big", [] { Value(4).set_to(16); }, "Number cannot be represented in value"},
    };
    for (const auto& c : out_of_range_errors)
        expect_throw_text<std::out_of_range>(c);

    const ThrowCase domain_errors[] = {
        {"z", [] { (void)Value("HzL").integer(); }, "Cannot interpret 'z' as a binary digit."},
        {"U keeps case", [] { (void)Value("HU").integer(); }, "Cannot interpret 'U' as a binary digit."},
    };
    for (const auto& c : domain_errors)
        expect_throw_text<std::domain_error>(c);

    EXPECT_THROW((void)static_cast<BitState>(Value("HL")), std::bad_cast);
    EXPECT_THROW((void)static_cast<BitState>(Value(0)), std::bad_cast);
    EXPECT_EQ(static_cast<BitState>(Value("p")), BitState::PullUp);
}

TEST(ValueTest, BothIndexOrders)
{
    Value v("HLzu");
    EXPECT_EQ(v[0], 'u');
    EXPECT_EQ(v[3], 'H');
    EXPECT_EQ(v.left_indexed_bit(0), 'H');
    EXPECT_EQ(v.left_indexed_bit(3), 'u');
    v[1] = 'p';
    v.left_indexed_bit(1) = 'n';
    EXPECT_STREQ(v.c_str(), "Hnpu");
}

TEST(ValueTest, ComparisonIgnoresCaseAndIsOneSided)
{
    struct ValueCase
    {
        const char* left;   // this object
        const char* right;  // the other
        bool equal;         // expected ==
    };
    const ValueCase value_cases[] = {
        {"HL", "HLLL", true}, {"HLLL", "HL", false}, {"", "HLz", true}, {"hl", "HL", true},
        {"HL", "HH", false},  {"Hz", "HZ", true},    {"", "", true},    {"HLHLHLHLH", "HLHLHLHLH", true},
    };
    for (const auto& c : value_cases) {
        EXPECT_EQ(Value(c.left) == Value(c.right), c.equal) << c.left << " == " << c.right;
        EXPECT_EQ(Value(c.left) != Value(c.right), !c.equal) << c.left << " != " << c.right;
    }

    const ValueCase text_cases[] = {
        {"HL", "hl", true}, {"HL", "HLL", false}, {"HL", "H", false}, {"", "", true}, {"", "H", false},
    };
    for (const auto& c : text_cases) {
        EXPECT_EQ(Value(c.left) == c.right, c.equal) << c.left << " == \"" << c.right << '"';
        EXPECT_EQ(Value(c.left) == std::string(c.right), c.equal) << c.left;
        EXPECT_EQ(Value(c.left) != c.right, !c.equal) << c.left;
        EXPECT_EQ(c.right == Value(c.left), c.equal) << c.left;
    }

    struct CharCase
    {
        const char* left;  // this object
        char right;        // the letter
        bool equal;        // expected ==
    };
    const CharCase char_cases[] = {
        {"H", 'h', true}, {"HH", 'H', false}, {"u", 'U', true}, {"L", 'H', false}, {"", 'L', false},
    };
    for (const auto& c : char_cases) {
        EXPECT_EQ(Value(c.left) == c.right, c.equal) << c.left << " == " << c.right;
        EXPECT_EQ(Value(c.left) != c.right, !c.equal) << c.left;
        EXPECT_EQ(c.right == Value(c.left), c.equal) << c.left;
    }
    EXPECT_TRUE(Value("h") == BitState::High);
    EXPECT_FALSE(Value("hh") == BitState::High);
}

TEST(ValueTest, Matching)
{
    struct CharCase
    {
        const char* value;  // letters
        char pattern;       // one letter
        bool matches;       // expected
    };
    const CharCase char_cases[] = {
        {"u", 'X', true}, {"u", 'x', false}, {"x", 'x', true}, {"H", 'h', true}, {"HH", 'X', false},
    };
    for (const auto& c : char_cases)
        EXPECT_EQ(Value(c.value).matches(c.pattern), c.matches) << c.value << " ~ " << c.pattern;

    struct TextCase
    {
        const char* value;    // letters
        const char* pattern;  // pattern text or pattern value
        bool matches;         // expected
    };
    const TextCase text_cases[] = {
        {"HL", "x", true},   {"HL", "xx", true},     {"HL", "xxx", false}, {"HL", "X", true},
        {"", "", true},      {"", "x", true},        {"HzL", "xZl", true}, {"HzL", "xHl", false},
        {"HLH", "H", false}, {"uuuu", "XXXX", true},
    };
    for (const auto& c : text_cases) {
        EXPECT_EQ(Value(c.value).matches(c.pattern), c.matches) << c.value << " ~ " << c.pattern;
        EXPECT_EQ(Value(c.value).matches(std::string(c.pattern)), c.matches) << c.value;
    }

    // A pattern value is read over this value's width only.
    const TextCase value_cases[] = {
        {"HL", "xX", true}, {"HL", "xLL", true}, {"HLL", "xL", false}, {"Hz", "hZ", true}, {"", "L", true},
    };
    for (const auto& c : value_cases)
        EXPECT_EQ(Value(c.value).matches(Value(c.pattern)), c.matches) << c.value << " ~ " << c.pattern;
}

TEST(ValueTest, IntegerConversion)
{
    struct Case
    {
        const char* letters;   // value
        bool is_integer;       // expected is_integer()
        int integer;           // expected integer()
        const char* readable;  // expected readable()
    };
    const Case cases[] = {
        {"", true, 0, "0"},     {"HLLH", true, 9, "9"},
        {"hl", true, 2, "2"},   {"HHHHHHHH", true, 255, "ff"},
        {"LLLL", true, 0, "0"}, {"HpL", false, 4, "HpL"},
        {"nH", false, 1, "nH"}, {"HLHLHLHLHLHL", true, 0xaaa, "aaa"},
    };
    for (const auto& c : cases) {
        Value v(c.letters);
        EXPECT_EQ(v.is_integer(), c.is_integer) << c.letters;
        EXPECT_EQ(v.integer(), c.integer) << c.letters;
        EXPECT_EQ(v.readable(), c.readable) << c.letters;
    }
    EXPECT_FALSE(Value("HzL").is_integer());
    EXPECT_EQ(Value("HzL").readable(), "HzL");
    EXPECT_EQ(Value(std::string(32, 'H')).hex(), "ffffffff");
}

TEST(ValueTest, SetToChecksTheShiftedLimit)
{
    struct Case
    {
        int width;            // bits
        int x;                // number written
        const char* letters;  // expected letters, or null if it throws
    };
    const std::string h31_l = std::string(31, 'H') + "L";
    const Case cases[] = {
        {4, 9, "HLLH"},
        {4, 15, "HHHH"},
        {4, 16, nullptr},
        {4, -1, "HHHH"},
        {0, 0, ""},
        {0, 1, nullptr},
        {31, 0, nullptr},  // the limit is negative
        {32, 1, nullptr},  // the limit is 1
        {32, -2, h31_l.c_str()},
        {33, 1, "LLLLLLLLLLLLLLLLLLLLLLLLLLLLLLLLH"},
        {33, 2, nullptr},
    };
    for (const auto& c : cases) {
        Value v(c.width);
        if (c.letters == nullptr) {
            EXPECT_THROW(v.set_to(c.x), std::out_of_range) << c.width << " " << c.x;
            continue;
        }
        v.set_to(c.x);
        EXPECT_STREQ(v.c_str(), c.letters) << c.width << " " << c.x;
    }
    Value wide(40);
    wide.set_to(-1);
    EXPECT_EQ(wide, Value(std::string(40, 'H')));
}

TEST(ValueTest, SmallValuesStayInTheObjectAndHeapStoresSurviveTruncation)
{
    Value small(8);
    EXPECT_TRUE(stored_in_object(small));
    Value copy(small);
    EXPECT_TRUE(stored_in_object(copy));
    copy = Value("HL");
    EXPECT_TRUE(stored_in_object(copy));

    Value wide("HHHHLLLLHHHHLLLLHHHHHzHL");
    EXPECT_FALSE(stored_in_object(wide));
    wide.truncate_down_to(4);
    EXPECT_FALSE(stored_in_object(wide));
    EXPECT_STREQ(wide.c_str(), "HzHL");
    EXPECT_EQ(wide.size(), 4u);

    // The kept heap store is still the one written and read.
    wide.pad_up_to(6, 'p');
    EXPECT_STREQ(wide.c_str(), "ppHzHL");
    wide.pad_up_to(10, 'L');
    EXPECT_STREQ(wide.c_str(), "LLLLppHzHL");

    Value deep(wide);
    wide.set_undefined();
    EXPECT_STREQ(deep.c_str(), "LLLLppHzHL");
}

TEST(ValueTest, SizeOperations)
{
    struct Case
    {
        const char* what;                     // the operation
        Value start;                          // value before
        std::function<void(Value&)> operate;  // changes the value
        const char* letters;                  // expected text
    };
    const Case cases[] = {
        {"pad to 6", Value("HLHz"), [](Value& v) { v.pad_up_to(6, 'L'); }, "LLHLHz"},
        {"pad small to heap", Value("Hz"), [](Value& v) { v.pad_up_to(9, 'z'); }, "zzzzzzzHz"},
        {"confine wider", Value("HLH"), [](Value& v) { v.confine_to(5); }, "LLHLH"},
        {"confine narrower", Value("HLH"), [](Value& v) { v.confine_to(2); }, "LH"},
        {"truncate to wider", Value("HLH"), [](Value& v) { v.truncate_down_to(5); }, "HLH"},
        {"set_size", Value("HLH"), [](Value& v) { v.set_size(12); }, "uuuuuuuuuuuu"},
        {"set_size after truncate", Value(12),
         [](Value& v) {
             v.truncate_down_to(2);
             v.set_size(5);
         },
         "uuuuu"},
        {"assign after truncate to 0", Value(20),
         [](Value& v) {
             v.truncate_down_to(0);
             v = Value("HLHLHLHLHLHL");
         },
         "HLHLHLHLHLHL"},
        {"array_set", Value(3), [](Value& v) { v.array_set('n'); }, "nnn"},
        {"set_to_hex F", Value(8), [](Value& v) { v.set_to_hex(std::string("F")); }, "LLLLHHHH"},
        {"set_to_hex Z", Value(8), [](Value& v) { v.set_to_hex("Z"); }, "uuuuzzzz"},
    };
    for (const auto& c : cases) {
        Value v = c.start;
        c.operate(v);
        EXPECT_STREQ(v.c_str(), c.letters) << c.what;
    }

    expect_throw_text<std::length_error>({"set_to_hex too long", [] { Value(8).set_to_hex("FFF"); },
                                          "Initializer 'HHHHHHHHHHHH' too long for type (Value 8)."});
}

TEST(ValueTest, BitQueries)
{
    EXPECT_TRUE(Value(0).all_bits_undefined());
    EXPECT_TRUE(Value("uU").all_bits_undefined());
    EXPECT_FALSE(Value("uz").all_bits_undefined());
    EXPECT_TRUE(Value("HzL").has_any('Z'));
    EXPECT_FALSE(Value("HzL").has_any('u'));
    EXPECT_FALSE(Value(0).has_any('u'));
}
