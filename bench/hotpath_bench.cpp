// The hot paths of a simulation, one at a time: values, histories, nets, the event queue, a gate.
// The last two cases run whole gate networks built by calls, to see how the pieces add up.
#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Components/Basic/Gates.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/HistoryRecords.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/Value.h"
#include "Core/Simulation/ValueHistory.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

using Morvane::Input;
using Morvane::Output;
using Morvane::Outside;

namespace {

constexpr unsigned history_cap = 1u << 20;  // entries a growing history may reach before it is cleared

// Names such as "i12"; appended, since "i" + std::to_string(12) sets off a false -Wrestrict in GCC 12.
std::string numbered(const char* prefix, int i)
{
    std::string name(prefix);
    name += std::to_string(i);
    return name;
}

// A binary value of `width` bits whose letters depend on `seed`.
Value binary_value(int width, unsigned seed)
{
    std::string letters;
    for (int i = 0; i < width; ++i)
        letters += ((seed >> (i % 31)) & 1u) ? 'H' : 'L';
    return Value(letters);
}

void BM_ValueCopy(benchmark::State& state)
{
    const Value source = binary_value(static_cast<int>(state.range(0)), 0x5a5a5a5a);
    for (auto _ : state) {
        Value copy(source);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_ValueCopy)->Arg(1)->Arg(8)->Arg(16)->Arg(32);

void BM_ValueCompare(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const Value a = binary_value(width, 0x5a5a5a5a);
    const Value b = binary_value(width, 0x5a5a5a5a);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        bool equal = a == b;
        benchmark::DoNotOptimize(equal);
    }
}
BENCHMARK(BM_ValueCompare)->Arg(1)->Arg(8)->Arg(16)->Arg(32);

// Appending at ascending times, the way a run records.
void BM_HistorySetAppend(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const Value values[2] = {binary_value(width, 0x0f0f0f0f), binary_value(width, 0x70707070)};
    ValueHistory history(static_cast<unsigned>(width));
    int time = 0;
    for (auto _ : state) {
        history.set(values[time & 1], time);
        if (++time == static_cast<int>(history_cap)) {
            state.PauseTiming();
            history.clear();
            time = 0;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_HistorySetAppend)->Arg(1)->Arg(8)->Arg(16)->Arg(32);

// A history of 4096 entries, 10 ns apart.
void fill_history(ValueHistory& history, int width)
{
    const Value values[2] = {binary_value(width, 0x0f0f0f0f), binary_value(width, 0x70707070)};
    for (int i = 0; i < 4096; ++i)
        history.set(values[i & 1], i * 10);
}

void BM_HistoryValueLatest(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    ValueHistory history(static_cast<unsigned>(width));
    fill_history(history, width);
    for (auto _ : state) {
        Value v = history.value(40955);
        benchmark::DoNotOptimize(v);
    }
}
BENCHMARK(BM_HistoryValueLatest)->Arg(1)->Arg(8)->Arg(32);

void BM_HistoryValueMiddle(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    ValueHistory history(static_cast<unsigned>(width));
    fill_history(history, width);
    std::mt19937 random(1);
    std::vector<int> times(1024);
    for (int& t : times)
        t = static_cast<int>(random() % 40960);
    std::size_t i = 0;
    for (auto _ : state) {
        Value v = history.value(times[i++ & 1023]);
        benchmark::DoNotOptimize(v);
    }
}
BENCHMARK(BM_HistoryValueMiddle)->Arg(1)->Arg(8)->Arg(32);

// One net, half of its ports drivers (all but one of them released), half listeners.
void BM_NetUpdate(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const int nof_ports = static_cast<int>(state.range(1));
    Net net("n", width);
    std::vector<std::unique_ptr<Port>> ports;
    for (int i = 0; i < nof_ports; ++i) {
        bool driver = i < nof_ports / 2;
        ports.push_back(std::make_unique<Port>(width, driver ? Output : Input, numbered("p", i), nullptr));
        net.add(ports.back().get(), Outside);
    }
    Value released(width);
    released.set_tristate();
    // No simulator: the drivers only record, they ask no net for an update.
    for (int i = 1; i < nof_ports / 2; ++i)
        ports[static_cast<std::size_t>(i)]->ValueHistory::set(released, 0);
    const Value values[2] = {binary_value(width, 0x0f0f0f0f), binary_value(width, 0x70707070)};
    int time = 0;
    for (auto _ : state) {
        // The driver changes every other update, so the listeners see changes and repeats.
        if ((time & 3) == 0)
            ports[0]->ValueHistory::set(values[(time >> 2) & 1], time);
        net.update(time, {});
        if (++time == static_cast<int>(history_cap) / 4) {
            state.PauseTiming();
            net.clear();
            for (auto& p : ports)
                p->clear();
            for (int i = 1; i < nof_ports / 2; ++i)
                ports[static_cast<std::size_t>(i)]->ValueHistory::set(released, 0);
            time = 0;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_NetUpdate)->ArgsProduct({{1, 8, 16, 32}, {2, 8}});

// Stand-ins for parts: the queue only stores and compares the pointers.
struct FakeTargets
{
    explicit FakeTargets(std::size_t n) : storage(n) {}
    Component* component(std::size_t i) { return reinterpret_cast<Component*>(&storage[i]); }
    Port* port(std::size_t i) { return reinterpret_cast<Port*>(&storage[i]); }
    std::vector<long double> storage;  // distinct addresses only
};

// Distinct component actions into one slot that grows to `range` entries, then a fresh queue.
void BM_RequestEvaluationDistinct(benchmark::State& state)
{
    const std::size_t slot_size = static_cast<std::size_t>(state.range(0));
    FakeTargets targets(slot_size);
    EventSimulator engine(static_cast<Circuit*>(nullptr));
    std::size_t i = 0;
    for (auto _ : state) {
        engine.request_evaluation(100, targets.component(i), targets.port(i));
        if (++i == slot_size) {
            state.PauseTiming();
            engine.reset(0);
            i = 0;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RequestEvaluationDistinct)->Arg(1000)->Arg(100000);

// Requests that are already in a slot of `range` entries: each is found and dropped.
void BM_RequestEvaluationDuplicate(benchmark::State& state)
{
    const std::size_t slot_size = static_cast<std::size_t>(state.range(0));
    FakeTargets targets(slot_size);
    EventSimulator engine(static_cast<Circuit*>(nullptr));
    for (std::size_t i = 0; i < slot_size; ++i)
        engine.request_evaluation(100, targets.component(i), targets.port(i));
    std::size_t i = 0;
    for (auto _ : state) {
        engine.request_evaluation(100, targets.component(i), targets.port(i));
        i = (i + 7919) % slot_size;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RequestEvaluationDuplicate)->Arg(1000)->Arg(100000);

// Net actions differ by value too: the same driver asks for its net with two values.
void BM_RequestNetUpdate(benchmark::State& state)
{
    const std::size_t slot_size = 1000;
    FakeTargets targets(slot_size);
    EventSimulator engine(static_cast<Circuit*>(nullptr));
    const Value values[2] = {Value("H"), Value("L")};
    std::size_t i = 0;
    for (auto _ : state) {
        engine.request_evaluation(100, reinterpret_cast<Net*>(targets.port(i / 2)), targets.port(i / 2),
                                  values[i & 1]);
        if (++i == slot_size) {
            state.PauseTiming();
            engine.reset(0);
            i = 0;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RequestNetUpdate);

// An input change answered by an evaluation that sets the output, for a gate with no nets.
void BM_GateEvaluation(benchmark::State& state)
{
    ComponentFactory factory;
    Circuit root("top", nullptr);
    EventSimulator engine(&root);
    Component* gate = factory.create("Nand", "g");
    root.add(gate, false);
    Port* a = gate->port("a");
    Port* b = gate->port("b");
    b->set(Value("H"), 0);
    const Value values[2] = {Value("H"), Value("L")};
    int time = 10;
    for (auto _ : state) {
        a->set(values[(time / 10) & 1], time);
        gate->evaluate(time + 3);
        time += 10;
        if (time >= 10 * static_cast<int>(history_cap)) {
            state.PauseTiming();
            engine.reset(0);
            b->set(Value("H"), 0);
            time = 10;
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GateEvaluation);

// A gate network built by calls, driven by output ports that stand in for sources.
class Network
{
public:
    Network() { simulator(&root); }
    ~Network() { destroy_simulator(); }

    Component* part(const std::string& type, const std::string& spec)
    {
        Component* c = parts.create(type, spec);
        root.add(c, false);
        return c;
    }
    Port* source(const std::string& name)
    {
        sources.push_back(std::make_unique<Port>(1, Output, name, nullptr));
        return sources.back().get();
    }
    void connect(Port* driver, const std::vector<Port*>& listeners)
    {
        Net* n = nets.create(numbered("n", static_cast<int>(nets.nets().size())), 1);
        n->add(driver, Outside);
        for (Port* p : listeners)
            n->add(p, Outside);
    }
    // A square wave on a source: L in the first half of each period, from `offset` on.
    static void clock(Port* source, int period, int offset, int end_time)
    {
        for (int t = offset; t <= end_time; t += period) {
            source->set(Value("L"), t);
            source->set(Value("H"), t + period / 2);
        }
    }
    // Entries of all histories of nets and ports.
    std::size_t history_entries() const
    {
        std::size_t entries = 0;
        for (const Net* n : nets.nets())
            entries += n->nof_values();
        for (const auto& p : sources)
            entries += p->nof_values();
        for (const Component* c : root.components()) {
            for (const Port* p : c->ports())
                entries += p->nof_values();
        }
        return entries;
    }
    // Changes of value over all nets: the events of a run.
    std::size_t net_changes() const
    {
        std::size_t changes = 0;
        for (const Net* n : nets.nets()) {
            // Before the first entry a net reads all u.
            Value previous(static_cast<int>(n->size()));
            for (const auto& entry : n->entries()) {
                changes += entry.value != previous;
                previous = entry.value;
            }
        }
        return changes;
    }

    NetFactory nets;                             // dies last
    ComponentFactory parts;                      // the gates
    std::vector<std::unique_ptr<Port>> sources;  // stimulus drivers
    Circuit root{"top", nullptr};                // holds the gates
};

// A clock into a chain of N inverters, 3 ns each; the clock is slow enough that about 2N/P
// inverters switch per ns.
// What a whole-circuit run did and kept, read after the run and reported as counters.
struct RunFigures
{
    std::size_t events = 0;         // net value changes
    std::uint64_t actions = 0;      // engine actions run
    std::uint64_t evaluations = 0;  // component actions among them
    std::size_t entries = 0;        // history entries of nets and ports
    std::size_t history_bytes = 0;  // pages of all histories
    std::size_t kept = 0;           // actions kept in the future queue
    std::size_t kept_bytes = 0;     // chunks holding them

    void collect(const Network& network)
    {
        events = network.net_changes();
        entries = network.history_entries();
        history_bytes = HistoryRecords::bytes_in_use();
        kept = simulator()->nof_actions_kept();
        kept_bytes = simulator()->bytes_of_actions_kept();
        actions = simulator()->nof_actions_run();
        evaluations = simulator()->nof_evaluations_run();
    }

    void report(benchmark::State& state) const
    {
        state.counters["events"] = static_cast<double>(events);
        state.counters["actions"] = static_cast<double>(actions);
        state.counters["evaluations"] = static_cast<double>(evaluations);
        // Pages of all histories against the entries of nets and ports; the chunks of kept actions
        // against the actions kept.
        state.counters["B_per_entry"] = static_cast<double>(history_bytes) / static_cast<double>(entries);
        state.counters["B_per_kept_action"] = static_cast<double>(kept_bytes) / static_cast<double>(kept);
        state.counters["events_per_s"] =
            benchmark::Counter(static_cast<double>(events), benchmark::Counter::kIsIterationInvariantRate);
    }
};

void BM_InverterChain(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const int end_time = static_cast<int>(state.range(1));
    const int period = n <= 12500 ? 100 : 1000;
    RunFigures figures;
    for (auto _ : state) {
        state.PauseTiming();
        auto network = std::make_unique<Network>();
        Port* clk = network->source("clk");
        std::vector<Component*> chain;
        for (int i = 0; i < n; ++i)
            chain.push_back(network->part("Inv", numbered("i", i)));
        network->connect(clk, {chain[0]->port("in")});
        for (int i = 0; i + 1 < n; ++i)
            network->connect(chain[static_cast<std::size_t>(i)]->port("out"),
                             {chain[static_cast<std::size_t>(i) + 1]->port("in")});
        simulator()->reset(end_time);
        Network::clock(clk, period, 0, end_time);
        state.ResumeTiming();
        simulator()->simulate(end_time + 1);
        state.PauseTiming();
        figures.collect(*network);
        network.reset();
        state.ResumeTiming();
    }
    figures.report(state);
}
BENCHMARK(BM_InverterChain)->Args({1000, 100000})->Args({10000, 10000})->Unit(benchmark::kMillisecond);

// N random two-input gates in 10 feed-forward layers under 8 clocks of different periods.
void BM_GateMesh(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const int end_time = static_cast<int>(state.range(1));
    const int scale = n >= 10000 ? 20 : 2;
    const char* types[] = {"And", "Or", "Nand", "Nor", "And", "Or", "Nand", "Nor", "Xor", "Xnor"};
    RunFigures figures;
    for (auto _ : state) {
        state.PauseTiming();
        auto network = std::make_unique<Network>();
        std::mt19937 random(1);
        std::vector<Port*> clocks;
        const int periods[] = {40, 50, 64, 80, 100, 125, 128, 160};
        for (int i = 0; i < 8; ++i)
            clocks.push_back(network->source(numbered("clk", i)));
        const int width = n / 10;
        std::vector<std::vector<Port*>> listeners_of_clock(8);
        std::vector<Component*> previous;
        std::vector<std::vector<Port*>> listeners_of_previous;
        for (int layer = 0; layer < 10; ++layer) {
            std::vector<Component*> current;
            std::vector<std::vector<Port*>> listeners_of_current(static_cast<std::size_t>(width));
            for (int g = 0; g < width; ++g) {
                bool from_clock = layer == 0 || random() % 10 == 0;
                int delay = 1 + static_cast<int>(random() % (from_clock ? std::max(5, width / 20) : 5));
                std::string spec = numbered("g", layer * width + g);
                spec += "(delay=";
                spec += std::to_string(delay);
                spec += ")";
                Component* gate = network->part(types[random() % 10], spec);
                Port* a = gate->port("a");
                Port* b = gate->port("b");
                if (layer == 0)
                    listeners_of_clock[random() % 8].push_back(a);
                else
                    listeners_of_previous[random() % previous.size()].push_back(a);
                if (from_clock)
                    listeners_of_clock[random() % 8].push_back(b);
                else
                    listeners_of_previous[random() % previous.size()].push_back(b);
                current.push_back(gate);
            }
            for (std::size_t g = 0; g < previous.size(); ++g) {
                if (!listeners_of_previous[g].empty())
                    network->connect(previous[g]->port("out"), listeners_of_previous[g]);
            }
            previous = current;
            listeners_of_previous = std::move(listeners_of_current);
        }
        for (int i = 0; i < 8; ++i)
            network->connect(clocks[static_cast<std::size_t>(i)],
                             listeners_of_clock[static_cast<std::size_t>(i)]);
        simulator()->reset(end_time);
        for (int i = 0; i < 8; ++i)
            Network::clock(clocks[static_cast<std::size_t>(i)], periods[i] * scale,
                           static_cast<int>(random() % static_cast<unsigned>(periods[i] * scale)), end_time);
        state.ResumeTiming();
        simulator()->simulate(end_time + 1);
        state.PauseTiming();
        figures.collect(*network);
        network.reset();
        state.ResumeTiming();
    }
    figures.report(state);
}
BENCHMARK(BM_GateMesh)->Args({1000, 100000})->Args({10000, 20000})->Unit(benchmark::kMillisecond);

}  // namespace
