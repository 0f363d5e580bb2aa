#include "Core/Simulation/ActionList.h"

#include "Core/Simulation/Value.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Stand-ins for parts, nets and ports: the lists only keep and compare the addresses.
struct Targets
{
    void* target(int i) { return &storage[static_cast<std::size_t>(i)]; }
    Port* port(int i) { return reinterpret_cast<Port*>(&storage[static_cast<std::size_t>(i)]); }
    std::vector<long double> storage = std::vector<long double>(64);  // distinct addresses
};

std::vector<std::string> contents(const ActionStore& store, const ActionList& list, Targets& t)
{
    std::vector<std::string> seen;
    for (std::uint32_t id = list.first(); id != ActionRecord::none; id = store[id].next) {
        const ActionRecord& r = store[id];
        int which = static_cast<int>(static_cast<long double*>(r.target) - &t.storage[0]);
        seen.push_back(std::to_string(which) + (store.is_net_action(id) ? "n" : "c") +
                       store.value(id).c_str());
    }
    return seen;
}

// Short lists are scanned, long ones indexed; a list whose index was dropped builds it again.
// The answers must be the same in all three states.
TEST(ActionListTest, DropsEqualRequestsWhetherScannedIndexedOrReindexed)
{
    for (int length : {3, 40}) {
        Targets t;
        ActionStore store;
        ActionList list;
        const Value h("H");
        for (int i = 0; i < length; ++i) {
            EXPECT_TRUE(list.push(store, t.target(i), t.port(i), nullptr));
            EXPECT_TRUE(list.push(store, t.target(i), t.port(i), &h));
        }
        for (int pass = 0; pass < 2; ++pass) {
            for (int i = 0; i < length; ++i) {
                EXPECT_FALSE(list.push(store, t.target(i), t.port(i), nullptr)) << length << " " << pass;
                EXPECT_FALSE(list.push(store, t.target(i), t.port(i), &h)) << length << " " << pass;
                // Another port is another action, once.
                EXPECT_EQ(list.push(store, t.target(i), t.port(i + 1), nullptr), pass == 0) << length;
            }
            list.drop_index();
        }
        EXPECT_EQ(list.size(), static_cast<std::size_t>(3 * length));
        std::vector<std::string> seen = contents(store, list, t);
        EXPECT_EQ(seen[0], "0cQ");
        EXPECT_EQ(seen[1], "0nH");
        EXPECT_EQ(seen.back(), std::to_string(length - 1) + "cQ");
    }
}

// A net action's value compares as Value does: over the recorded width, ignoring case.
TEST(ActionListTest, NetValuesCompareOneSidedAndIgnoringCase)
{
    for (int filler : {0, 20}) {
        Targets t;
        ActionStore store;
        ActionList list;
        for (int i = 0; i < filler; ++i)
            list.push(store, t.target(10 + i % 40), t.port(i % 7), nullptr);
        const Value hl("HL");
        const Value hlh("HLH");
        const Value lower("hl");
        EXPECT_TRUE(list.push(store, t.target(1), t.port(1), &hl));
        EXPECT_FALSE(list.push(store, t.target(1), t.port(1), &lower));
        EXPECT_FALSE(list.push(store, t.target(1), t.port(1), &hlh));  // starts alike: equal
        EXPECT_TRUE(list.push(store, t.target(2), t.port(2), &hlh));
        EXPECT_TRUE(list.push(store, t.target(2), t.port(2), &hl));  // narrower than the recorded
        EXPECT_STREQ(store.value(list.first()).c_str(), filler == 0 ? "HL" : "Q");
    }
}

TEST(ActionListTest, AClearedStoreIsReusedAndKeepsRecordsInPlace)
{
    Targets t;
    ActionStore store;
    ActionList list;
    const Value wide("HLHLHLHLHLHLHLHLHLHL");
    for (int i = 0; i < 200000; ++i)
        list.push(store, t.target(i % 64), t.port(i % 61), i % 2 ? &wide : nullptr);
    std::size_t bytes = store.bytes();
    EXPECT_GT(store.size(), 1000u);
    const ActionRecord* first = &store[list.first()];
    EXPECT_EQ(first->target, t.target(0));
    list.clear();
    store.clear();
    EXPECT_EQ(store.size(), 0u);
    EXPECT_TRUE(list.push(store, t.target(3), t.port(3), &wide));
    EXPECT_EQ(store.bytes(), bytes);
    EXPECT_STREQ(store.value(list.first()).c_str(), "HLHLHLHLHLHLHLHLHLHL");
}

}  // namespace
