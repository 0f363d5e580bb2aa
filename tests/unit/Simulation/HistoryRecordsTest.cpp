#include "Core/Simulation/HistoryRecords.h"

#include "Core/Simulation/ValueHistory.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// A long history crosses many pages of growing size; every lookup must see one sorted sequence.
TEST(HistoryRecordsTest, LookupsAcrossPagesOfEveryWidth)
{
    for (unsigned width : {0u, 1u, 8u, 9u, 32u, 255u}) {
        HistoryRecords records;
        records.set_width(width);
        std::string letters(width, 'H');
        for (int i = 0; i < 5000; ++i) {
            letters.assign(width, i % 2 ? 'H' : 'L');
            records.append(10 * i, letters.c_str());
        }
        ASSERT_EQ(records.size(), 5000u) << width;
        for (int i : {0, 1, 5, 6, 7, 100, 819, 820, 2500, 4998, 4999}) {
            EXPECT_EQ(records.time(static_cast<std::size_t>(i)), 10 * i) << width << " at " << i;
            if (width > 0) {
                EXPECT_EQ(records.letters(static_cast<std::size_t>(i))[width - 1], i % 2 ? 'H' : 'L');
            }
            EXPECT_EQ(records.upper_bound(10 * i), static_cast<std::size_t>(i + 1)) << width;
            EXPECT_EQ(records.upper_bound(10 * i - 1), static_cast<std::size_t>(i)) << width;
            EXPECT_EQ(records.lower_bound(10 * i), static_cast<std::size_t>(i)) << width;
            EXPECT_EQ(records.lower_bound(10 * i + 1), static_cast<std::size_t>(i + 1)) << width;
        }
        EXPECT_EQ(records.upper_bound(-1), 0u);
        EXPECT_EQ(records.upper_bound(1 << 30), 5000u);
        EXPECT_EQ(records.last_time(), 49990);
    }
}

TEST(HistoryRecordsTest, InsertsInOrderAndGivesPagesBackOnClear)
{
    std::size_t before = HistoryRecords::bytes_in_use();
    HistoryRecords records;
    records.set_width(1);
    for (int i = 0; i < 3000; ++i)
        records.append(2 * i, "L");
    // An odd time in the middle of the third page and one before all.
    records.insert(records.upper_bound(1001), 1001, "H");
    records.insert(0, -5, "u");
    ASSERT_EQ(records.size(), 3002u);
    EXPECT_EQ(records.time(0), -5);
    EXPECT_EQ(records.time(502), 1001);
    EXPECT_EQ(records.letters(502)[0], 'H');
    EXPECT_EQ(records.time(503), 1002);
    EXPECT_GT(HistoryRecords::bytes_in_use(), before);
    records.clear();
    EXPECT_EQ(records.size(), 0u);
    EXPECT_EQ(HistoryRecords::bytes_in_use(), before);
}

// The history on top of the records: the same answers whatever page an entry lies in.
TEST(HistoryRecordsTest, ValueHistoryReadsLongHistoriesLikeShortOnes)
{
    ValueHistory h(2);
    for (int i = 0; i < 4000; ++i)
        h.set(Value(i % 3 == 0 ? "HL" : "LH"), 5 * i);
    // Overwrite and insert deep inside.
    h.set(Value("uu"), 5 * 1234);
    h.set(Value("zz"), 5 * 2000 + 2);
    EXPECT_EQ(h.nof_values(), 4001u);
    EXPECT_STREQ(h.value(5 * 1234 + 1).c_str(), "uu");
    EXPECT_STREQ(h.value(5 * 2000 + 3).c_str(), "zz");
    EXPECT_STREQ(h.value(5 * 2000 + 1).c_str(), h.value(5 * 2000).c_str());
    EXPECT_STREQ(h.value(-1).c_str(), "uu");
    EXPECT_EQ(h.time_of_last_change(5 * 1234 + 4), 5 * 1234);
    EXPECT_TRUE(h.constant_between(5 * 1234, 5 * 1234 + 4));
    int previous = -1;
    std::size_t n = 0;
    for (const auto& entry : h.entries()) {
        EXPECT_GT(entry.time, previous);
        previous = entry.time;
        ++n;
    }
    EXPECT_EQ(n, 4001u);
    EXPECT_EQ(h.entries().back().time, 5 * 3999);
}

// A net sized by its first port after it recorded empty values keeps reading those as empty.
class SizedLater : public ValueHistory
{
public:
    SizedLater() : ValueHistory(0) {}
    void size_to(unsigned n) { _set_size(n); }
};

TEST(HistoryRecordsTest, EntriesOfAnUnsizedHistoryStayEmptyAfterSizing)
{
    SizedLater h;
    h.set(Value(0), 10);
    h.set(Value(0), 20);
    h.size_to(3);
    EXPECT_EQ(h.value(15).size(), 0u);
    h.set(Value("HLH"), 20);  // the same time: now a real value
    h.set(Value("LLL"), 30);
    EXPECT_EQ(h.value(10).size(), 0u);
    EXPECT_STREQ(h.value(25).c_str(), "HLH");
    EXPECT_STREQ(h.value(35).c_str(), "LLL");
    EXPECT_STREQ(h.value(5).c_str(), "uuu");
}

// One subscriber is kept in place, a second makes a list; both keep address order and the walk.
class Adder : public ValueChangeSubscriber
{
public:
    explicit Adder(std::vector<const Adder*>& heard) : _heard(heard) {}
    void value_changed(const ValueHistory* source, ValueChange&) override
    {
        _heard.push_back(this);
        if (to_add != nullptr) {
            const_cast<ValueHistory*>(source)->add_change_subscriber(to_add);
            to_add = nullptr;
        }
    }
    ValueChangeSubscriber* to_add = nullptr;  // subscribed while this one is told

private:
    std::vector<const Adder*>& _heard;  // shared log of who was told
};

TEST(HistoryRecordsTest, ASingleSubscriberThatAddsAnotherIsFollowedByTheWalk)
{
    std::vector<const Adder*> heard;
    Adder pair[2] = {Adder(heard), Adder(heard)};
    Adder* low = &pair[0];
    Adder* high = &pair[1];
    for (bool add_lower : {false, true}) {
        heard.clear();
        ValueHistory h(1);
        Adder* first = add_lower ? high : low;
        Adder* second = add_lower ? low : high;
        h.add_change_subscriber(first);
        first->to_add = second;
        h.set(Value("H"), 1);
        // A later address is told next; an earlier one pushes the first to index 1, told again.
        std::vector<const Adder*> want =
            add_lower ? std::vector<const Adder*>{high, high} : std::vector<const Adder*>{low, high};
        EXPECT_EQ(heard, want) << add_lower;
        EXPECT_TRUE(h.has_change_subscriber(low));
        EXPECT_TRUE(h.has_change_subscriber(high));
        h.remove_change_subscriber(low);
        EXPECT_FALSE(h.has_change_subscriber(low));
    }
}

}  // namespace
