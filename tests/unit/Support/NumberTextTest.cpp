#include "Core/Support/NumberText.h"

#include "Core/Support/Regex.h"

#include <climits>
#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

// The scanners read as these searches do, short of their recursion.
TEST(NumberTextTest, ScannersAgreeWithThePatterns)
{
    const std::regex hex("^[0-9a-fA-F]+$"), has_hex("[0-9a-fA-F]+"), input_bits("^[HLUZhluz]+$"),
        output_bits("^[HLUZXhluzx]+$"), time("^[0-9., ]+[num]?s?$");
    const char* texts[] = {"",     "ms",   "1s",    "1nss", "5m",     "5 us", "1.2.3", " ",
                           "ns",   "1sn",  "HL\n",  "x",    "Fg",     "0x",   "0X1g",  "$ff",
                           "$",    "0b2",  "0B101", "a0x1", "00x10",  "1 0",  "0b0x1", "1aF",
                           "zz 1", "HLuz", "HLx",   "10",   "1.5 ms", "3ns",  "10 kHz"};
    auto search = [](const char* text, const std::regex& re) { return std::regex_search(text, re); };
    for (const char* text : texts) {
        EXPECT_EQ(is_hex(text), search(text, hex)) << text;
        EXPECT_EQ(contains_hex(text), search(text, has_hex)) << text;
        EXPECT_EQ(is_input_bit_stream(text), search(text, input_bits)) << text;
        EXPECT_EQ(is_output_bit_stream(text), search(text, output_bits)) << text;
        EXPECT_EQ(is_time_str(text), search(text, time)) << text;
    }
    const std::pair<const char*, uint64_t> numbers[] = {{"0X1g", 1},  {"$ff", 255},        {"0B101", 5},
                                                        {"a0x1", 1},  {"00x10", 16},       {"1 0", 1},
                                                        {"0b0x1", 1}, {"$", ~uint64_t{0}}, {"0b2", 0}};
    for (const auto& [text, number] : numbers)
        EXPECT_EQ(str_to_number(text), number) << text;
}

// A cell of a test vector file may be as long as its line.
TEST(NumberTextTest, LongTextsDoNotExhaustTheStack)
{
    const std::string hex(1000000, 'F');
    EXPECT_TRUE(is_hex(hex));
    EXPECT_TRUE(contains_hex(std::string(1000000, 'z') + "1"));
    EXPECT_TRUE(is_input_bit_stream(std::string(1000000, 'L')));
    EXPECT_TRUE(is_output_bit_stream(std::string(1000000, 'x')));
    EXPECT_TRUE(is_time_str(std::string(1000000, '1') + "ns"));
    EXPECT_EQ(str_to_number("0x" + std::string(1000000, '0') + "1"), 1u);
    EXPECT_EQ(str_to_number(std::string(1000000, '0') + "7"), 7u);
}

TEST(NumberTextTest, IsADecimalNumber)
{
    const std::pair<std::string, bool> cases[] = {
        {"8", true}, {"-1", true}, {"", true}, {"8x", false}, {"0x10", false}, {" 12", true},
    };
    for (auto [text, expected] : cases)
        EXPECT_EQ(is_a_decimal_number(text), expected) << text;
}

TEST(NumberTextTest, StrToNumberTriesTheFormsInOrder)
{
    const uint64_t all_ones = ~uint64_t{0};
    const std::pair<const char*, uint64_t> cases[] = {
        {"0x10", 16},
        {"0X1f", 31},
        {"$ff", 255},
        {"0b101", 5},
        {"12", 12},
        {"hello", all_ones},
        {"0b102", 2},
        {"abc12", 12},
        {"10ns", 10},
        {"a$10 0x2", 2},
        {"0xffffffffffffffff", all_ones},
    };
    for (const auto& [text, number] : cases)
        EXPECT_EQ(str_to_number(text), number) << text;
    EXPECT_EQ(static_cast<int>(str_to_number("none")), -1);
    try {
        str_to_number("0x10000000000000000");
        FAIL() << "no exception";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "stoul");
    }
}

TEST(NumberTextTest, StrToTime)
{
    const std::pair<const char*, int> cases[] = {
        {"10 us", 10000}, {"1.5ms", 1500000}, {"2 s", 2000000000}, {"3", 3},        {"xyz", 0},
        {"10ns", 10},     {"7 n s", 7},       {"2.9", 2},          {"-4us", -4000}, {"5 s", INT_MIN},
    };
    for (const auto& [text, ns] : cases)
        EXPECT_EQ(str_to_time(text), ns) << text;
}

TEST(NumberTextTest, TimeToStrPicksTheUnitAndPrecision)
{
    struct Case
    {
        long long ns;
        int decimals;
        const char* text;
    };
    const Case cases[] = {
        {0, 0, "0 ns"},
        {999, 0, "999 ns"},
        {100, 0, "100 ns"},
        {1000, 0, "1 us"},
        {1500, 0, "1.5 us"},
        {2500000, 0, "2.5 ms"},
        {1000000000, 0, "1 s"},
        {1234567891, 0, "1.234567891 s"},
        {-5, 0, "-5 ns"},
        {1500, 1, "1.5 us"},
        {1000, 1, "1.0 us"},
        {5, 1, "5.0 ns"},
        {1234567, 3, "   1.235 ms"},
        {20000, 2, "20.00 us"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(time_to_str(c.ns, c.decimals), c.text) << c.ns << " " << c.decimals;
}
