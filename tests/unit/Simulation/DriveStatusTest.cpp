#include "Core/Simulation/DriveStatus.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>

namespace {

const char* too_many = "*** ERROR: Maximum size of a a network is reached. Max 255 ports per net.";

char resolve(const std::string& drivers)
{
    PinDriveStatus status;
    for (char c : drivers)
        status.record_value(c);
    return Morvane::letter(status.resulting_value());
}

}  // namespace

TEST(DriveStatusTest, ResolvesEveryRowOfTheTable)
{
    struct Row
    {
        const char* drivers;  // one letter per driver of the bit
        char want;            // resolved state
    };
    const Row rows[] = {
        {"", 'z'},   {"z", 'z'},  {"zZz", 'z'}, {"H", 'H'},  {"Hzz", 'H'}, {"h", 'H'},   {"L", 'L'},
        {"zl", 'L'}, {"HH", 'u'}, {"LL", 'u'},  {"HL", 'u'}, {"u", 'u'},   {"uz", 'u'},  {"uH", 'u'},
        {"Hu", 'u'}, {"p", 'H'},  {"ppp", 'H'}, {"n", 'L'},  {"NN", 'L'},  {"pz", 'H'},  {"nz", 'L'},
        {"Lp", 'L'}, {"pL", 'L'}, {"Hn", 'H'},  {"Hp", 'H'}, {"pn", 'u'},  {"pnH", 'u'}, {"pnz", 'u'},
        {"x", 'u'},  {"Hx", 'u'}, {"Q", 'u'},   {"zQ", 'u'}, {"pQ", 'u'},  {"U", 'u'},   {"HLp", 'u'},
    };
    for (const Row& r : rows)
        EXPECT_EQ(resolve(r.drivers), r.want) << "drivers '" << r.drivers << "'";
}

TEST(DriveStatusTest, CountsEachKindAndUnknownStatesAsDriversOnly)
{
    PinDriveStatus status;
    for (char c : std::string("HhLzZpPnNuxQ"))
        status.record_value(c);
    status.record_value(Morvane::BitState::High);
    EXPECT_EQ(status.nof_output_ports(), 13u);
    EXPECT_EQ(status.nof_highs(), 3u);
    EXPECT_EQ(status.nof_lows(), 1u);
    EXPECT_EQ(status.nof_tri_states(), 2u);
    EXPECT_EQ(status.nof_pull_ups(), 2u);
    EXPECT_EQ(status.nof_pull_downs(), 2u);
}

TEST(DriveStatusTest, AcceptsAtMost255DriversPerBit)
{
    PinDriveStatus status;
    for (int i = 0; i < 255; ++i)
        status.record_value('z');
    EXPECT_EQ(status.nof_output_ports(), 255u);
    EXPECT_EQ(error_of([&] { status.record_value('z'); }), too_many);

    PinDriveStatus a(127, 127);
    a += PinDriveStatus(128, 0, 128);
    EXPECT_EQ(a.nof_output_ports(), 255u);
    EXPECT_EQ(Morvane::letter(a.resulting_value()), 'u');
    PinDriveStatus b(128);
    EXPECT_EQ(error_of([&] { b += PinDriveStatus(128); }), too_many);
    EXPECT_EQ(b.nof_output_ports(), 128u);
}

TEST(DriveStatusTest, SumReturnsTheNewCounts)
{
    PinDriveStatus a(1, 1);
    PinDriveStatus sum = (a += PinDriveStatus(2, 0, 0, 1, 1));
    EXPECT_EQ(sum.nof_output_ports(), 3u);
    EXPECT_EQ(a.nof_pull_ups(), 1u);
    EXPECT_EQ(Morvane::letter(a.resulting_value()), 'H');
}

TEST(DriveStatusTest, PortStatusResolvesEachBit)
{
    for (int width : {4, 8, 12}) {
        std::string first(static_cast<std::size_t>(width), 'z');
        std::string second(static_cast<std::size_t>(width), 'z');
        first.replace(0, 4, "HLzp");
        second.replace(0, 4, "zzLn");
        PortDriveStatus status(width);
        status.record_value(Value(first));
        PortDriveStatus other(width);
        other.record_value(Value(second));
        status += other;
        std::string want(static_cast<std::size_t>(width), 'z');
        want.replace(0, 4, "HLLu");
        EXPECT_STREQ(status.resulting_value().c_str(), want.c_str()) << width << " bits";
        EXPECT_EQ(status.pin(width - 1).nof_highs(), 1u);  // bit 0 is the rightmost letter
        PortDriveStatus copy(status);
        EXPECT_STREQ(copy.resulting_value().c_str(), want.c_str());
    }
}

TEST(DriveStatusTest, PortStatusRefusesOtherWidths)
{
    PortDriveStatus status(4);
    EXPECT_EQ(error_of([&] { status.record_value(Value("HL")); }),
              "*** ERROR: mismatch between Port and PortDriveStatus sizes; 2 vs 4");
    EXPECT_EQ(error_of([&] { status += PortDriveStatus(9); }),
              "*** ERROR: mismatch between PortDriveStatus sizes; 4 vs 9");
}
