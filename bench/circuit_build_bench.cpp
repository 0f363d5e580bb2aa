// Building large flat circuits: from a circuit file, and by calls, as wall time per circuit.
#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Support/StringUtils.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

// A chain of gates, each And fed by the one before and by the common input: every gate has its own
// net, so the build does as many name lookups as there are parts.
std::string chain_file(int gates)
{
    std::string text = "Pin Input in en\nPin Output out\nUnit And g[" + std::to_string(gates) + "]\n";
    text += "Net n0 in g[0].a\nNet ne en";
    for (int i = 0; i < gates; ++i)
        text += " g[" + std::to_string(i) + "].b";
    text += "\n";
    for (int i = 0; i + 1 < gates; ++i)
        text += "Net n" + std::to_string(i + 1) + " g[" + std::to_string(i) + "].out g[" +
                std::to_string(i + 1) + "].a\n";
    text += "Net nout g[" + std::to_string(gates - 1) + "].out out\n";
    return text;
}

void BM_BuildFromFile(benchmark::State& state)
{
    const int gates = static_cast<int>(state.range(0));
    const std::string path = (std::filesystem::temp_directory_path() / "morvane_chain_bench.ctc").string();
    std::ofstream(path) << chain_file(gates);
    for (auto _ : state) {
        Circuit* circuit = CircuitFileReader::new_circuit(path);
        benchmark::DoNotOptimize(circuit);
        state.PauseTiming();
        delete circuit;
        state.ResumeTiming();
    }
    std::remove(path.c_str());
    state.SetItemsProcessed(state.iterations() * gates);
}
BENCHMARK(BM_BuildFromFile)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_BuildByCalls(benchmark::State& state)
{
    const int gates = static_cast<int>(state.range(0));
    std::vector<std::string> part_names;
    std::vector<std::string> net_names;
    for (int i = 0; i < gates; ++i) {
        part_names.push_back(fmt("g%d", i));
        net_names.push_back(fmt("n%d", i));
    }
    for (auto _ : state) {
        auto top = std::make_unique<Circuit>("top", nullptr);
        Port* previous = top->make_pin(Morvane::Input, "in");
        for (int i = 0; i < gates; ++i) {
            Component* g = top->add_component("And", part_names[i]);
            top->make_net(net_names[i], {previous, g->port("a")});
            previous = g->port("out");
        }
        benchmark::DoNotOptimize(top->find_port(part_names.back() + ".out"));
        // Tear-down is not part of the build.
        state.PauseTiming();
        top.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * gates);
}
BENCHMARK(BM_BuildByCalls)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
