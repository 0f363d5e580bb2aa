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

std::string record_of(const ValueHistory& h)
{
    std::string text;
    for (const auto& entry : h.entries())
        text += std::to_string(entry.time) + entry.value.c_str() + " ";
    return text;
}

}  // namespace

TEST(ValueHistoryTest, StoresInTimeOrderAndLooksUpBetweenEntries)
{
    ValueHistory h(1);
    fill(h, {{50, "H"}, {10, "L"}, {30, "H"}, {30, "L"}, {60, "u"}});
    EXPECT_EQ(record_of(h), "10L 30L 50H 60u ");
    const std::pair<int, const char*> reads[] = {
        {INT_MIN, "u"}, {9, "u"}, {10, "L"}, {49, "L"}, {INT_MAX, "u"}};
    for (const auto& [time, want] : reads)
        EXPECT_STREQ(h.value(time).c_str(), want) << time;

    // A long history, overwritten and inserted into deep inside, reads like a short one.
    ValueHistory longer(2);
    for (int i = 0; i < 4000; ++i)
        longer.set(Value(i % 3 == 0 ? "HL" : "LH"), 5 * i);
    longer.set(Value("uu"), 5 * 1234);
    longer.set(Value("zz"), 5 * 2000 + 2);
    EXPECT_EQ(longer.nof_values(), 4001u);
    EXPECT_STREQ(longer.value(5 * 1234 + 1).c_str(), "uu");
    EXPECT_STREQ(longer.value(5 * 2000 + 3).c_str(), "zz");
    EXPECT_STREQ(longer.value(5 * 2000 + 1).c_str(), "LH");

    ValueHistory unsized(0);
    unsized.set(Value("HLH"), 0);
    EXPECT_EQ(unsized.size(), 3u);
    EXPECT_EQ(error_of([&] { unsized.set(Value("HL"), 5); }),
              "ValueHistory: mismatching type width. ValueHistory width=2, but value width=3\n");
}

TEST(ValueHistoryTest, SubscribersHearRealChangesBeforeTheyAreStored)
{
    ValueHistory h(1);
    Recorder recorders[3];
    std::vector<const ValueChangeSubscriber*> order;
    for (Recorder& r : recorders)
        r.order = &order;
    h.add_change_subscriber(&recorders[2]);
    h.add_change_subscriber(&recorders[0]);
    h.add_change_subscriber(&recorders[0]);
    h.set(Value("H"), 10);
    h.set(Value("h"), 12);  // the same state in another case: no change
    h.set(Value("L"), 20);
    h.set(Value("H"), 20);  // overwrites at one time: heard against the value now in force
    const std::vector<std::string> want = {"10:u>H read u", "20:h>L read h", "20:L>H read L"};
    EXPECT_EQ(recorders[0].heard, want);
    EXPECT_EQ(order[0], &recorders[0]);  // in address order
    EXPECT_EQ(order.size(), 6u);
    h.remove_change_subscriber(&recorders[0]);
    h.set(Value("L"), 30);
    EXPECT_EQ(recorders[0].heard.size(), 3u);
    EXPECT_EQ(recorders[2].heard.size(), 4u);
}

TEST(ValueHistoryTest, FlanksChangesAndConstantStretches)
{
    ValueHistory bit(1);
    fill(bit, {{5, "L"}, {10, "H"}, {20, "L"}, {30, "u"}, {40, "H"}});
    ValueHistory wide(2);
    fill(wide, {{5, "LL"}, {10, "HH"}});
    EXPECT_TRUE(bit.positive_flank_at(10));
    EXPECT_FALSE(bit.positive_flank_at(11));
    EXPECT_TRUE(bit.negative_flank_at(20));
    EXPECT_FALSE(bit.positive_flank_at(40));  // from u: no flank
    EXPECT_FALSE(wide.positive_flank_at(10));
    EXPECT_TRUE(bit.changed_at(30));

    ValueHistory h(1);
    fill(h, {{10, "H"}, {15, "H"}, {20, "L"}});
    EXPECT_TRUE(h.constant_between(19, 10));
    EXPECT_FALSE(h.constant_between(0, 10));
    EXPECT_FALSE(h.constant_between(12, 19, Value("L")));

    struct Row
    {
        Entries entries;  // the record
        int time;         // asked at
        int want;         // ns, or INT_MIN for never
    };
    const Row rows[] = {
        {{{5, "H"}, {9, "H"}}, 20, 5},
        {{{5, "H"}, {9, "L"}, {12, "L"}}, 20, 9},
        {{{5, "H"}}, 4, INT_MIN},
        {{{5, "u"}, {9, "u"}}, 20, INT_MIN},
    };
    for (const Row& r : rows) {
        ValueHistory history(1);
        fill(history, r.entries);
        EXPECT_EQ(history.time_of_last_change(r.time), r.want) << "at " << r.time;
    }
}

TEST(ValueHistoryTest, AWindowKeepsChangesAndForgetsWhatLiesBehindIt)
{
    ValueHistory h(4);
    h.set_window(10);
    Recorder recorder;
    h.add_change_subscriber(&recorder);
    fill(h, {{0, "HLHL"}, {5, "HLHL"}, {7, "LLLL"}, {7, "HLHL"}, {8, "uuuu"}, {9, "UUUU"}});
    // The repeat at 5 and the change undone at 7 leave no entry; u and U differ in print.
    EXPECT_EQ(record_of(h), "0HLHL 8uuuu 9UUUU ");
    EXPECT_EQ(recorder.heard.size(), 4u);

    int present = INT_MIN;
    ValueHistory::set_present(&present);
    ValueHistory clock(1);
    clock.set_window(50);
    // Before the run, as a source plants its waveform, nothing is forgotten.
    for (int t = -40000; t < 0; t += 10)
        clock.set(Value(t % 20 == 0 ? "L" : "H"), t);
    EXPECT_EQ(clock.nof_values(), 4000u);
    for (present = 0; present < 30000; present += 10)
        clock.set(Value(present % 20 == 0 ? "L" : "H"), present);
    EXPECT_LT(clock.nof_values(), 2000u);
    EXPECT_STREQ(clock.value(present - 60).c_str(), "L");
    EXPECT_STREQ(clock.value(present - 50).c_str(), "H");
    ValueHistory::set_present(nullptr);
}

TEST(ValueHistoryTest, AcceptsTestVectorCellsThatFitItsWidth)
{
    EXPECT_EQ(ValueHistory(4).max_unsigned_value(), 15u);
    EXPECT_EQ(ValueHistory(32).max_unsigned_value(), 0u);  // the shift count wraps
    struct Row
    {
        unsigned width;    // bits
        const char* text;  // the cell
        Morvane::Dir dir;  // of the port
        bool want;         // accepted
    };
    const Row rows[] = {
        {4, "f", Morvane::Input, true},     {4, "10", Morvane::Input, false},
        {8, "ff", Morvane::Output, true},   {4, "HLzu", Morvane::Input, true},
        {4, "HLxu", Morvane::Input, false}, {4, "HLxu", Morvane::Inout, true},
        {2, "HLH", Morvane::Input, false},  {4, "Z", Morvane::Input, true},
        {3, "Z", Morvane::Input, false},    {4, "HLq", Morvane::Output, false},
    };
    for (const Row& r : rows)
        EXPECT_EQ(ValueHistory(r.width).can_accept_value(r.text, r.dir), r.want) << r.text << " " << r.width;
}
