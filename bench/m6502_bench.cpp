// Ticks per second of the bare 6502 core, the caller serving 64 KiB of RAM from the pins.
#include "Core/Components/CPUs/MOS6502/m6502.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr uint16_t success_trap = 0x3469;  // where the functional test loops when it has passed

// The image, or empty if it isn't beside the source tree (or, in a worktree, one level further up).
std::vector<uint8_t> load_functional_test()
{
    for (const char* dir : {MORVANE_SOURCE_DIR "/../shared/testdata/6502/",
                            MORVANE_SOURCE_DIR "/../../shared/testdata/6502/"}) {
        std::ifstream in(std::string(dir) + "6502_functional_test.bin", std::ios::binary);
        if (in) {
            return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        }
    }
    return {};
}

// Runs the functional test over and over: each pass restarts from a fresh image at 0x0400.
void BM_M6502FunctionalTest(benchmark::State& state)
{
    const std::vector<uint8_t> image = load_functional_test();
    if (image.size() != 0x10000) {
        state.SkipWithError("6502_functional_test.bin not found");
        return;
    }
    std::vector<uint8_t> mem;
    m6502_t cpu;
    m6502_desc_t desc{};
    uint64_t pins = 0;
    auto restart = [&] {
        mem = image;
        mem[0xFFFC] = 0x00;
        mem[0xFFFD] = 0x04;
        pins = m6502_init(&cpu, &desc);
    };
    restart();
    constexpr int batch = 1'000'000;  // ticks per iteration
    for (auto _ : state) {
        for (int i = 0; i < batch; i++) {
            const uint16_t addr = cpu65_get_addr(pins);
            if (pins & cpu65_pin_rw) {
                pins = cpu65_set_data(pins, mem[addr]);
            } else {
                mem[addr] = cpu65_get_data(pins);
            }
            pins = m6502_tick(&cpu, pins);
            if ((pins & cpu65_pin_sync) && cpu65_get_addr(pins) == success_trap) {
                restart();
            }
        }
        benchmark::DoNotOptimize(pins);
    }
    state.SetItemsProcessed(state.iterations() * batch);
    state.counters["ticks_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * batch, benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(BM_M6502FunctionalTest)->Unit(benchmark::kMillisecond);
