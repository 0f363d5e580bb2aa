#include "Core/Simulation/ValueHistory.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Remembers what it heard, and what the history read at the change's time while it was told.
class Recorder : public ValueChangeSubscriber
{
public:
    void value_changed(const ValueHistory* source, ValueChange& change) override
    {
        heard.push_back(std::to_string(change.time) + ":" + change.old_value.c_str() + ">" +
                        change.new_value.c_str() + " read " + source->value(change.time).c_str());
        if (order != nullptr)
            order->push_back(this);
    }

    std::vector<std::string> heard;                              // one line per change
    std::vector<const ValueChangeSubscriber*>* order = nullptr;  // shared log of who was told when
};

using Entries = std::vector<std::pair<int, const char*>>;

void fill(ValueHistory& h, const Entries& entries)
{
    for (const auto& [time, letters] : entries)
        h.set(Value(letters), time);
}

}  // namespace

TEST(ValueHistoryTest, LooksUpBeforeAtAndBetweenEntries)
{
    ValueHistory h(4);
    h.set(Value("HHLL"), 10);
    h.set(Value("LLLL"), 20);
    h.set(Value("HLHL"), 30);
    struct Row
    {
        int time;          // ns
        const char* want;  // letters in force
    };
    const Row rows[] = {{INT_MIN, "uuuu"}, {9, "uuuu"},  {10, "HHLL"}, {15, "HHLL"},
                        {20, "LLLL"},      {29, "LLLL"}, {30, "HLHL"}, {INT_MAX, "HLHL"}};
    for (const Row& r : rows)
        EXPECT_STREQ(h.value(r.time).c_str(), r.want) << "at " << r.time;
    EXPECT_EQ(h.nof_values(), 3u);
}

TEST(ValueHistoryTest, EarlierTimesAreInsertedInPlaceAndSameTimeOverwrites)
{
    ValueHistory h(1);
    h.set(Value("H"), 50);
    h.set(Value("L"), 10);
    h.set(Value("H"), 30);
    h.set(Value("L"), 30);
    h.set(Value("u"), 60);
    ASSERT_EQ(h.nof_values(), 4u);
    std::string order;
    for (const auto& entry : h.entries())
        order += std::to_string(entry.time) + entry.value.c_str() + " ";
    EXPECT_EQ(order, "10L 30L 50H 60u ");
    EXPECT_STREQ(h.value(40).c_str(), "L");
}

TEST(ValueHistoryTest, FirstSetSizesAnUnsizedHistoryAndWidthMismatchThrows)
{
    ValueHistory h(0);
    h.set(Value("HLH"), 0);
    EXPECT_EQ(h.size(), 3u);
    // The value's width comes first, whatever the words say.
    EXPECT_EQ(error_of([&] { h.set(Value("HL"), 5); }),
              "ValueHistory: mismatching type width. ValueHistory width=2, but value width=3\n");
    EXPECT_EQ(h.nof_values(), 1u);
}

TEST(ValueHistoryTest, NotifiesBeforeStoringAndOnlyOnRealChanges)
{
    ValueHistory h(1);
    Recorder r;
    h.add_change_subscriber(&r);
    h.add_change_subscriber(&r);
    h.set(Value("H"), 10);
    h.set(Value("h"), 12);  // the same state in another case: no change
    h.set(Value("L"), 20);
    h.set(Value("H"), 20);  // overwrites at one time: heard again, against the value now in force
    h.set(Value("H"), 20);
    const std::vector<std::string> want = {"10:u>H read u", "20:h>L read h", "20:L>H read L"};
    EXPECT_EQ(r.heard, want);
    EXPECT_STREQ(h.value(20).c_str(), "H");
    EXPECT_EQ(h.nof_values(), 3u);  // unchanged values are stored all the same
    EXPECT_STREQ(h.value(12).c_str(), "h");
}

TEST(ValueHistoryTest, SubscribersAreToldInAddressOrderAndCanLeave)
{
    ValueHistory h(1);
    Recorder recorders[3];
    std::vector<const ValueChangeSubscriber*> order;
    for (Recorder& r : recorders)
        r.order = &order;
    h.add_change_subscriber(&recorders[2]);
    h.add_change_subscriber(&recorders[0]);
    h.add_change_subscriber(&recorders[1]);
    h.set(Value("H"), 1);
    const std::vector<const ValueChangeSubscriber*> want = {&recorders[0], &recorders[1], &recorders[2]};
    EXPECT_EQ(order, want);

    h.remove_change_subscriber(&recorders[1]);
    EXPECT_FALSE(h.has_change_subscriber(&recorders[1]));
    h.clear();
    EXPECT_EQ(h.nof_values(), 0u);
    h.set(Value("L"), 2);
    EXPECT_EQ(recorders[1].heard.size(), 1u);
    EXPECT_EQ(recorders[2].heard.size(), 2u);  // clear keeps the subscribers
}

TEST(ValueHistoryTest, FlanksAndChanges)
{
    ValueHistory bit(1);
    fill(bit, {{5, "L"}, {10, "H"}, {20, "L"}, {30, "u"}, {40, "H"}});
    ValueHistory wide(2);
    fill(wide, {{5, "LL"}, {10, "HH"}});
    EXPECT_TRUE(bit.positive_flank_at(10));
    EXPECT_FALSE(bit.positive_flank_at(11));
    EXPECT_TRUE(bit.negative_flank_at(20));
    EXPECT_FALSE(bit.positive_flank_at(40));  // from u: no flank
    EXPECT_FALSE(bit.positive_flank_at(5));
    EXPECT_FALSE(wide.positive_flank_at(10));
    EXPECT_TRUE(bit.changed_at(5));
    EXPECT_TRUE(bit.changed_at(30));
    EXPECT_FALSE(bit.changed_at(31));
    EXPECT_TRUE(wide.changed_at(10));
}

TEST(ValueHistoryTest, ConstantBetween)
{
    ValueHistory h(1);
    fill(h, {{10, "H"}, {15, "H"}, {20, "L"}});
    EXPECT_TRUE(h.constant_between(10, 19));
    EXPECT_TRUE(h.constant_between(19, 10));
    EXPECT_FALSE(h.constant_between(10, 20));
    EXPECT_TRUE(h.constant_between(0, 9));
    EXPECT_FALSE(h.constant_between(0, 10));
    EXPECT_TRUE(h.constant_between(12, 19, Value("H")));
    EXPECT_FALSE(h.constant_between(12, 19, Value("L")));
    EXPECT_TRUE(h.constant_between(20, 100, Value("L")));
}

TEST(ValueHistoryTest, TimeOfLastChange)
{
    struct Row
    {
        Entries entries;  // the record
        int time;         // asked at
        int want;         // ns, or INT_MIN for never
    };
    const Row rows[] = {
        {{{5, "H"}, {9, "H"}}, 20, 5},
        {{{5, "H"}, {9, "L"}, {12, "L"}}, 20, 9},
        {{{5, "H"}, {9, "L"}}, 8, 5},
        {{{5, "H"}}, 4, INT_MIN},
        {{{5, "u"}, {9, "u"}}, 20, INT_MIN},
        {{{5, "u"}, {9, "H"}}, 20, 9},
        {{}, 20, INT_MIN},
    };
    for (const Row& r : rows) {
        ValueHistory h(1);
        fill(h, r.entries);
        EXPECT_EQ(h.time_of_last_change(r.time), r.want) << "at " << r.time;
    }
}

TEST(ValueHistoryTest, AWindowKeepsChangesOnlyAndTakesBackAChangeUndone)
{
    ValueHistory h(4);
    h.set_window(10);
    Recorder recorder;
    h.add_change_subscriber(&recorder);
    fill(h, {{0, "HLHL"}, {5, "HLHL"}, {7, "LLLL"}, {7, "HLHL"}, {8, "uuuu"}, {9, "UUUU"}});
    // The repeat at 5 and the change undone at 7 leave no entry; u and U differ in print.
    EXPECT_EQ(h.nof_values(), 3u);
    EXPECT_STREQ(h.value(7).c_str(), "HLHL");
    EXPECT_STREQ(h.value(9).c_str(), "UUUU");
    EXPECT_EQ(recorder.heard, (std::vector<std::string>{"0:uuuu>HLHL read uuuu", "7:HLHL>LLLL read HLHL",
                                                        "7:LLLL>HLHL read LLLL", "8:HLHL>uuuu read HLHL"}));
}

TEST(ValueHistoryTest, AWindowForgetsWhatLiesBehindIt)
{
    int present = INT_MIN;
    ValueHistory::set_present(&present);
    ValueHistory h(1);
    h.set_window(50);
    // Before the run, as a source plants its waveform, nothing is forgotten.
    for (int t = -40000; t < 0; t += 10)
        h.set(Value(t % 20 == 0 ? "L" : "H"), t);
    EXPECT_EQ(h.nof_values(), 4000u);
    for (present = 0; present < 30000; present += 10)
        h.set(Value(present % 20 == 0 ? "L" : "H"), present);
    EXPECT_LT(h.nof_values(), 2000u);
    EXPECT_STREQ(h.value(present - 60).c_str(), "L");
    EXPECT_STREQ(h.value(present - 50).c_str(), "H");
    EXPECT_EQ(h.time_of_last_change(present - 55), present - 60);
    ValueHistory::set_present(nullptr);
}

TEST(ValueHistoryTest, MaxUnsignedValueAndAcceptedCells)
{
    EXPECT_EQ(ValueHistory(4).max_unsigned_value(), 15u);
    EXPECT_EQ(ValueHistory(31).max_unsigned_value(), 0x7fffffffu);
    EXPECT_EQ(ValueHistory(32).max_unsigned_value(), 0u);  // the shift count wraps
    struct Row
    {
        unsigned width;    // bits
        const char* text;  // the TV cell
        Morvane::Dir dir;  // of the port
        bool want;         // accepted
    };
    const Row rows[] = {
        {4, "f", Morvane::Input, true},     {4, "10", Morvane::Input, false},
        {8, "ff", Morvane::Output, true},   {4, "HLzu", Morvane::Input, true},
        {4, "HLxu", Morvane::Input, false}, {4, "HLxu", Morvane::Output, true},
        {4, "HLxu", Morvane::Inout, true},  {2, "HLH", Morvane::Input, false},
        {4, "Z", Morvane::Input, true},     {3, "Z", Morvane::Input, false},
        {4, "HLq", Morvane::Output, false}, {4, "HL", static_cast<Morvane::Dir>(3), false},
    };
    for (const Row& r : rows)
        EXPECT_EQ(ValueHistory(r.width).can_accept_value(r.text, r.dir), r.want) << r.text << " " << r.width;
}
