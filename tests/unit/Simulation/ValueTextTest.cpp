#include "Core/Simulation/ValueText.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct TextCase
{
    const char* in;   // argument
    const char* out;  // expected result
};

}  // namespace

TEST(ValueTextTest, HexTableHoldsCapitalStatesOnly)
{
    const auto& table = hex_table();
    EXPECT_EQ(table.size(), 27u);
    for (char c : std::string("uzxpnLHlh"))
        EXPECT_EQ(table.count(c), 0u) << c;
    EXPECT_EQ(table.at('b'), "HLHH");
    EXPECT_EQ(table.at('N'), "nnnn");
}

TEST(ValueTextTest, Hexpand)
{
    const TextCase cases[] = {
        {"", ""},      {"A", "HLHL"},      {"a", "HLHL"}, {"LH3", "LHLLHH"},    {"U", "uuuu"},
        {"u", "u"},    {"X", "xxxx"},      {"x", "x"},    {"Z0", "zzzzLLLL"},   {"H0", "HLLLL"},
        {"P", "pppp"}, {"N9", "nnnnHLLH"}, {"G", "G"},    {"f e", "HHHH HHHL"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(hexpand(c.in), c.out) << c.in;
}

TEST(ValueTextTest, Hexpress)
{
    const TextCase cases[] = {
        {"HLHL", "A"},           {"HLLLL", "H0"},       {"zzzz", "Z"},      {"HzLL", "HzLL"},
        {"LLLLzzzz", "0Z"},      {"HHzzHHHH", "HHzzF"}, {"UUUU", "U"},      {"uuuu", "U"},
        {"hlhl", "A"},           {"HLHL LLLL", "A0"},   {"", ""},           {"pppppppp", "PP"},
        {"zzzZ", "zzzZ"},        {"LHLLHH", "LH3"},     {"nnnnxxxx", "NX"}, {"Hz", "Hz"},
        {"LLHHHHHHHHHH", "3FF"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(hexpress(c.in), c.out) << c.in;
}

TEST(ValueTextTest, RoundTripOfBinaryText)
{
    for (unsigned n = 0; n < 256; ++n) {
        std::string bits;
        for (int b = 7; b >= 0; --b)
            bits += (n >> b) & 1 ? 'H' : 'L';
        EXPECT_EQ(hexpand(hexpress(bits)), bits) << bits;
    }
    for (char c : std::string("0123456789ABCDEF"))
        EXPECT_EQ(hexpress(hexpand(std::string(1, c))), std::string(1, c)) << c;

    // Leftover bits stay letters, so they expand to themselves.
    EXPECT_EQ(hexpand(hexpress("HLLLL")), "HLLLL");
    // Case changes once: U becomes u, then stays.
    EXPECT_EQ(hexpand(hexpress("UUUU")), "uuuu");
    EXPECT_EQ(hexpand(hexpress("zzzz")), "zzzz");
}

TEST(ValueTextTest, AddBitsAndHexChar)
{
    struct Case
    {
        const char* from;  // source text
        int pos;           // first char
        unsigned count;    // number of chars
        const char* out;   // appended text
    };
    const Case cases[] = {
        {"HHzz", 0, 4, "zzHH"}, {"zzzz", 0, 4, "Z"}, {"abc", 0, 0, ""},
        {"HLz", 1, 2, "zL"},    {"uu", 0, 2, "uu"},
    };
    for (const auto& c : cases) {
        std::string to = ">";
        add_bits(c.from, to, c.pos, c.count);
        EXPECT_EQ(to, std::string(">") + c.out) << c.from;
    }

    std::string digits;
    for (unsigned d : {0u, 9u, 10u, 15u, 16u, 99u})
        add_hex_char(digits, d);
    EXPECT_EQ(digits, "09AF");
}

TEST(ValueTextTest, SmallTextFunctions)
{
    struct GroupCase
    {
        const char* in;   // text
        unsigned n;       // group size
        const char* out;  // grouped text
    };
    const GroupCase groups[] = {
        {"HLHLHL", 4, "HL HLHL"},
        {"HLHL", 4, "HLHL"},
        {"HL", 4, "HL"},
        {"HHHHLLLLHHHH", 4, "HHHH LLLL HHHH"},
        {"abcdefg", 2, "a bc de fg"},
        {"", 3, ""},
    };
    for (const auto& c : groups) {
        EXPECT_EQ(arrange_in_groups(c.in, c.n), c.out) << c.in;
        EXPECT_EQ(arrange_in_groups(std::string(c.in), c.n), c.out) << c.in;
    }

    std::string text = "lhLHzxu";
    canonize(text);
    EXPECT_EQ(text, "LHLHzxu");

    const TextCase mirrored[] = {{"", ""}, {"a", "a"}, {"abc", "cba"}, {"abcd", "dcba"}};
    for (const auto& c : mirrored) {
        std::string s = c.in;
        reverse(s);
        EXPECT_EQ(s, c.out) << c.in;
    }
}
