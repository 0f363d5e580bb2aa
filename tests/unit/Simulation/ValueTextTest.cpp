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

TEST(ValueTextTest, HexpandAndHexpress)
{
    const TextCase expanded[] = {
        {"A", "HLHL"},      {"a", "HLHL"},      {"LH3", "LHLLHH"}, {"U", "uuuu"},        {"u", "u"},
        {"Z0", "zzzzLLLL"}, {"N9", "nnnnHLLH"}, {"G", "G"},        {"f e", "HHHH HHHL"},
    };
    for (const auto& c : expanded)
        EXPECT_EQ(hexpand(c.in), c.out) << c.in;

    // Whole groups of four from the right; what is left over stays letters.
    const TextCase compressed[] = {
        {"HLHL", "A"}, {"HLLLL", "H0"},     {"zzzz", "Z"},    {"HzLL", "HzLL"},   {"HHzzHHHH", "HHzzF"},
        {"uuuu", "U"}, {"HLHL LLLL", "A0"}, {"zzzZ", "zzzZ"}, {"nnnnxxxx", "NX"}, {"LLHHHHHHHHHH", "3FF"},
    };
    for (const auto& c : compressed)
        EXPECT_EQ(hexpress(c.in), c.out) << c.in;

    for (unsigned n = 0; n < 256; ++n) {
        std::string bits;
        for (int b = 7; b >= 0; --b)
            bits += (n >> b) & 1 ? 'H' : 'L';
        EXPECT_EQ(hexpand(hexpress(bits)), bits) << bits;
    }
}

TEST(ValueTextTest, GroupsOfLettersFromTheRight)
{
    const TextCase groups[] = {
        {"HLHLHL", "HL HLHL"}, {"HLHL", "HLHL"}, {"HHHHLLLLHHHH", "HHHH LLLL HHHH"}, {"", ""}};
    for (const auto& c : groups)
        EXPECT_EQ(arrange_in_groups(c.in, 4), c.out) << c.in;
}
