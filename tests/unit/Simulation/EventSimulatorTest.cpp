#include "Core/Simulation/EventSimulator.h"

#include "tests/unit/ErrorText.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

// Writes "name@time" (or "name.port@time") into a shared log and may then act.
class Probe : public Component
{
public:
    Probe(const std::string& name, std::vector<std::string>& log)
        : Component("Probe", name, static_cast<Circuit*>(nullptr)),
          _log(log)
    {
    }

    void evaluate(int time) override
    {
        _log.push_back(instance_name() + "@" + std::to_string(time));
        if (on_evaluate)
            on_evaluate(time);
    }
    void evaluate_port(int time, Port* port) override
    {
        _log.push_back(instance_name() + "." + port->name() + "@" + std::to_string(time));
        if (on_evaluate)
            on_evaluate(time);
    }
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}

    std::function<void(int)> on_evaluate;  // runs after the log line

private:
    std::vector<std::string>& _log;  // shared by all probes of a test
};

class EventSimulatorTest : public testing::Test
{
protected:
    void SetUp() override { sim = simulator(&root); }
    void TearDown() override { destroy_simulator(); }

    Probe* probe(const std::string& name)
    {
        probes.push_back(std::make_unique<Probe>(name, log));
        return probes.back().get();
    }

    Circuit root{"top", nullptr};                // the simulator's circuit
    EventSimulator* sim = nullptr;               // the global instance
    std::vector<std::string> log;                // what the probes saw, in order
    std::vector<std::unique_ptr<Probe>> probes;  // owned here
};

using Log = std::vector<std::string>;

}  // namespace

TEST_F(EventSimulatorTest, RunsSlotsByTimeFirstInFirstOutAndSameTimeRequestsAfterTheSlot)
{
    Probe* a = probe("a");
    Probe* b = probe("b");
    Probe* c = probe("c");
    Probe* d = probe("d");
    a->on_evaluate = [&](int t) {
        if (t != 10)
            return;
        sim->request_evaluation(t, d, nullptr);
        sim->request_evaluation(t + 5, d, nullptr);
    };
    d->on_evaluate = [&](int t) { sim->request_evaluation(t, c, nullptr); };
    sim->request_evaluation(30, a, nullptr);
    sim->request_evaluation(10, c, nullptr);
    sim->request_evaluation(10, a, nullptr);
    sim->request_evaluation(20, b, nullptr);
    sim->request_evaluation(10, b, nullptr);
    sim->simulate(100);
    EXPECT_EQ(log, (Log{"c@10", "a@10", "b@10", "d@10", "c@10", "d@15", "c@15", "b@20", "a@30"}));
    EXPECT_EQ(sim->time(), 30);
}

TEST_F(EventSimulatorTest, DropsEqualRequestsInSmallAndLargeSlotsAndInTheSameTimeList)
{
    Probe* a = probe("a");
    Port p(1, Morvane::Input, "p", nullptr);
    Port q(1, Morvane::Input, "q", nullptr);
    sim->request_evaluation(10, a, &p);
    sim->request_evaluation(10, a, &q);
    sim->request_evaluation(10, a, &p);
    sim->request_evaluation(10, a, nullptr);
    // Runs three times at 10; the list keeps what ran, so only the first request gets in.
    a->on_evaluate = [&](int t) { sim->request_evaluation(t, a, &q); };
    sim->simulate(10);
    EXPECT_EQ(log, (Log{"a.p@10", "a.q@10", "a@10", "a.q@10"}));

    // Past a few actions a slot indexes its entries; order and duplicate dropping must not change.
    sim->reset(100);
    log.clear();
    std::vector<Probe*> many;
    for (int i = 0; i < 40; ++i)
        many.push_back(probe("p" + std::to_string(i)));
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 40; ++i)
            sim->request_evaluation(17, many[static_cast<std::size_t>(i * 7 % 40)], nullptr);
    }
    sim->simulate(17);
    ASSERT_EQ(log.size(), 40u);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(log[static_cast<std::size_t>(i)], "p" + std::to_string(i * 7 % 40) + "@17");
}

TEST_F(EventSimulatorTest, EndTimeIsInclusiveAndSecondRunStartsOver)
{
    Probe* a = probe("a");
    sim->request_evaluation(20, a, nullptr);
    sim->request_evaluation(21, a, nullptr);
    sim->simulate(20);
    EXPECT_EQ(log, (Log{"a@20"}));
    EXPECT_EQ(sim->time(), 21);  // stopped at the slot it did not run
    sim->simulate(21);
    EXPECT_EQ(log, (Log{"a@20", "a@20", "a@21"}));
}

TEST_F(EventSimulatorTest, FinishedSlotsDroppedRunAsKeptOnesAndReuseTheirStore)
{
    sim->set_keep_finished_slots(false);
    Probe* a = probe("a");
    Probe* b = probe("b");
    Net net(4);
    Port p(4, Morvane::Output, "p", nullptr);
    // Every slot asks for two more ahead, one of them a net action of a new width each time, every
    // other one too wide to lie in its record.
    a->on_evaluate = [&](int t) {
        if (t >= 60)
            return;
        sim->request_evaluation(t + 2, b, nullptr);
        sim->request_evaluation(t + 3, &net, &p, Value(t % 2 == 0 ? "HLHLHLHLHLHL" : "L"));
        sim->request_evaluation(t + 3, a, nullptr);
        sim->request_evaluation(t + 3, a, nullptr);
    };
    sim->request_evaluation(0, a, nullptr);
    sim->simulate(100);
    ASSERT_EQ(log.size(), 41u);
    EXPECT_EQ(log[1], "b@2");
    EXPECT_EQ(log.back(), "a@60");
    EXPECT_EQ(sim->nof_actions_kept(), 0u);
    // A second run replays nothing: the slots are gone.
    sim->simulate(100);
    EXPECT_EQ(log.size(), 41u);
}

TEST_F(EventSimulatorTest, SingleRunsReachSlotsFarAheadInTheOrderOfKeptRuns)
{
    // Slots far beyond the near window, slots asked for from there, an equal request, a request for
    // a time already past, and a run that stops and goes on: the order is that of a kept run. Before
    // the run, requests in ascending time wait in a queue of their own, the others in slots.
    Probe* a = probe("a");
    Probe* b = probe("b");
    Probe* c = probe("c");
    a->on_evaluate = [&](int t) {
        if (t == 5000 || t == 9000)
            return;
        sim->request_evaluation(t + 1500, a, nullptr);
        sim->request_evaluation(t + 1, b, nullptr);
        sim->request_evaluation(t + 1, b, nullptr);
        sim->request_evaluation(t - 1, b, nullptr);
    };
    auto run = [&](bool keep) {
        sim->reset(0);
        log.clear();
        sim->set_keep_finished_slots(keep);
        for (auto [t, p] : std::vector<std::pair<int, Probe*>>{
                 {3, a}, {9000, a}, {9000, b}, {12000, a}, {9000, c}, {9000, a}, {2000, a}, {5000, a}})
            sim->request_evaluation(t, p, nullptr);
        // A kept run would replay the first part in a second call; a single run goes on.
        if (!keep)
            sim->simulate(3503);
        sim->simulate(20000);
        return log;
    };
    Log kept = run(true);
    auto at_9000 = std::find(kept.begin(), kept.end(), "a@9000");
    ASSERT_GE(std::distance(at_9000, kept.end()), 3);
    EXPECT_EQ(Log(at_9000, at_9000 + 3), (Log{"a@9000", "b@9000", "c@9000"}));
    EXPECT_EQ(kept.back(), "b@19504");
    EXPECT_EQ(std::count(kept.begin(), kept.end(), "b@2"), 0);
    EXPECT_EQ(run(false), kept);
}

TEST_F(EventSimulatorTest, EmptyQueueResetAndStopFlag)
{
    sim->simulate(100);
    EXPECT_EQ(sim->time(), no_time);
    Probe* a = probe("a");
    sim->request_evaluation(5, a, nullptr);
    sim->reset(100);
    sim->simulate(100);
    EXPECT_TRUE(log.empty());

    // The flag is cleared at the start and polled once a slot.
    volatile bool stop = true;
    sim->set_stop_variable(&stop);
    a->on_evaluate = [&](int) { stop = true; };
    sim->request_evaluation(1, a, nullptr);
    sim->request_evaluation(2, a, nullptr);
    sim->simulate(10);
    EXPECT_EQ(log, (Log{"a@1"}));
    sim->set_stop_variable(nullptr);
}

TEST_F(EventSimulatorTest, The1002ndSameTimeActionRaisesTheError)
{
    std::vector<Probe*> chain;
    for (int i = 0; i < 1100; ++i)
        chain.push_back(probe("c" + std::to_string(i)));
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
        Probe* next = chain[i + 1];
        chain[i]->on_evaluate = [this, next](int t) { sim->request_evaluation(t, next, nullptr); };
    }
    sim->request_evaluation(5, chain[0], nullptr);
    EXPECT_EQ(error_of([&] { sim->simulate(10); }),
              "1000 iterations in same time-event loop: probably a circuit/net circular dependency");
    // The slot's action and 1002 from the list ran.
    EXPECT_EQ(log.size(), 1003u);
    EXPECT_EQ(log.back(), "c1002@5");
    EXPECT_EQ(sim->time(), 5);
}
