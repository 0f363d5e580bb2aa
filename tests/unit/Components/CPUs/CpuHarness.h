// A bare processor core on 64 KiB of RAM: the caller's side of the pin word, for the core tests.
// Both cores share the pin word's layout; M6502Core and W65C02Core give their functions one set of
// names, so that one test runs over both.
#ifndef MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H

#include "Core/Components/CPUs/MOS6502/m6502.h"
#include "Core/Components/CPUs/W65C02/w65c02.h"
#include "Core/Components/CPUs/cpu65.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

// clang-format off
/// One core's functions under the names the harness calls.
#define MORVANE_CPU_CORE(Core, prefix, text)                                                              \
    struct Core                                                                                           \
    {                                                                                                     \
        using cpu_t = prefix##_t;                                                                         \
        using desc_t = prefix##_desc_t;                                                                   \
        static constexpr const char* name = text;                                                         \
        static uint64_t init(cpu_t* c, const desc_t* d) { return prefix##_init(c, d); }                   \
        static uint64_t tick(cpu_t* c, uint64_t pins) { return prefix##_tick(c, pins); }                  \
        static void set(cpu_t* c, uint8_t a, uint8_t x, uint8_t y, uint8_t s, uint8_t p)                  \
        { prefix##_set_a(c, a); prefix##_set_x(c, x); prefix##_set_y(c, y); prefix##_set_s(c, s); prefix##_set_p(c, p); } \
        static void set_pc(cpu_t* c, uint16_t pc) { prefix##_set_pc(c, pc); }                             \
        static void set_p(cpu_t* c, uint8_t p) { prefix##_set_p(c, p); }                                  \
        static uint16_t pc(const cpu_t* c) { return prefix##_pc(c); }                                     \
        static uint8_t regs(const cpu_t* c, int i)                                                        \
        { return i == 0 ? prefix##_a(c) : i == 1 ? prefix##_x(c) : i == 2 ? prefix##_y(c) : i == 3 ? prefix##_s(c) : prefix##_p(c); } \
    };
MORVANE_CPU_CORE(M6502Core, m6502, "6502")
MORVANE_CPU_CORE(W65C02Core, w65c02, "65C02")
#undef MORVANE_CPU_CORE
// clang-format on

/// Where the self-checking test images lie: beside the source tree; a worktree one level deeper
/// finds them one level further up.
inline std::string testdata_dir()
{
    for (const char* dir : {MORVANE_SOURCE_DIR "/../shared/testdata/6502/",
                            MORVANE_SOURCE_DIR "/../../shared/testdata/6502/"}) {
        if (std::filesystem::is_directory(dir))
            return dir;
    }
    return MORVANE_SOURCE_DIR "/../shared/testdata/6502/";
}

/// Cycles as one text, separated by spaces.
inline std::string joined(const std::vector<std::string>& cycles)
{
    std::string text;
    for (const auto& c : cycles)
        text += (text.empty() ? "" : " ") + c;
    return text;
}

/// The fetch tick whose opcode an interrupt dropped (the tick before the first push), or 0, in the
/// cycles of CpuHarness::run.
inline int taken_at(const std::vector<std::string>& cycles)
{
    for (size_t i = 0; i < cycles.size(); i++) {
        if (cycles[i].rfind("W01", 0) == 0)
            return static_cast<int>(i);  // index i is tick i + 1; the fetch was the tick before
    }
    return 0;
}

template <class Core> class CpuHarness
{
public:
    using core = Core;
    explicit CpuHarness(bool bcd_disabled = false) : _mem(0x10000, 0) { _desc.bcd_disabled = bcd_disabled; }

    typename Core::cpu_t cpu{};  // the core under test
    uint64_t pins{};             // pin word between ticks, inputs included

    uint8_t& mem(uint16_t addr) { return _mem[addr]; }

    void load(uint16_t addr, std::initializer_list<uint8_t> bytes)
    {
        for (uint8_t b : bytes)
            _mem[addr++] = b;
    }

    /// Runs init and the seven reset ticks; the next tick fetches the opcode at `start`.
    void reset_to(uint16_t start)
    {
        _mem[0xFFFC] = static_cast<uint8_t>(start);
        _mem[0xFFFD] = static_cast<uint8_t>(start >> 8);
        pins = Core::init(&cpu, &_desc);
        serve();
        for (int i = 0; i < 7; i++)
            tick();
    }

    /// `code` at 0400 and the `data` bytes where they say, then init and the reset ticks up to the
    /// fetch at 0400.
    void load_and_reset(const std::vector<uint8_t>& code,
                        const std::vector<std::pair<uint16_t, uint8_t>>& data)
    {
        std::copy(code.begin(), code.end(), _mem.begin() + 0x0400);
        for (const auto& [where, value] : data)
            _mem[where] = value;
        reset_to(0x0400);
    }

    /// A, X, Y, S and P in hexadecimal, as "a x y s p".
    std::string registers() const
    {
        char text[24];
        std::snprintf(text, sizeof text, "%02X %02X %02X %02X %02X", Core::regs(&cpu, 0), Core::regs(&cpu, 1),
                      Core::regs(&cpu, 2), Core::regs(&cpu, 3), Core::regs(&cpu, 4));
        return text;
    }

    /// Puts a fetch at `addr` on the pins, with pc to match, as if a jump had just ended there.
    void start_at(uint16_t addr)
    {
        Core::set_pc(&cpu, addr);
        pins = cpu65_set_addr(pins, addr) | cpu65_pin_sync | cpu65_pin_rw;
        serve();
    }

    /// One tick, then the memory access it asks for.
    uint64_t tick()
    {
        pins = Core::tick(&cpu, pins);
        serve();
        return pins;
    }

    void set_input(uint64_t mask, bool on) { pins = on ? (pins | mask) : (pins & ~mask); }

    /// The bus cycle on the pins: F fetch, R read, W write with its data, e.g. "W01FD=04".
    std::string cycle() const
    {
        char text[16];
        const uint16_t addr = cpu65_get_addr(pins);
        if (!(pins & cpu65_pin_rw))
            std::snprintf(text, sizeof text, "W%04X=%02X", addr, cpu65_get_data(pins));
        else
            std::snprintf(text, sizeof text, "%c%04X", (pins & cpu65_pin_sync) ? 'F' : 'R', addr);
        return text;
    }

    /// The cycles of one instruction: its fetch, each tick up to and including the next fetch.
    std::string run_instruction(int max_ticks = 16)
    {
        std::string trace = cycle();
        for (int i = 0; i < max_ticks; i++) {
            tick();
            trace += " " + cycle();
            if (pins & cpu65_pin_sync)
                break;
        }
        return trace;
    }

    static constexpr uint16_t irq_handler = 0x3000;  // where the IRQ vector points
    static constexpr uint16_t nmi_handler = 0x3100;  // where the NMI vector points

    /// NOPs over the program area and both handlers, `code` at 0400, the interrupt vectors at the
    /// handlers, reset to 0400, and the status register set to `p`.
    void load_program(const std::vector<uint8_t>& code, uint8_t p = cpu65_bf | cpu65_xf)
    {
        std::fill(_mem.begin() + 0x0300, _mem.begin() + 0x0500, 0xEA);
        std::fill(_mem.begin() + irq_handler, _mem.begin() + nmi_handler + 0x100, 0xEA);
        std::copy(code.begin(), code.end(), _mem.begin() + 0x0400);
        load(0xFFFA, {static_cast<uint8_t>(nmi_handler), static_cast<uint8_t>(nmi_handler >> 8)});
        load(0xFFFE, {static_cast<uint8_t>(irq_handler), static_cast<uint8_t>(irq_handler >> 8)});
        reset_to(0x0400);
        Core::set_p(&cpu, p);
    }

    /// `ticks` ticks from the first fetch on, with `input` on the pins for the ticks from `from` up
    /// to `to` (tick 1 fetches): the cycles they ask for, one per tick.
    std::vector<std::string> run(uint64_t input, int from, int to, int ticks = 24)
    {
        std::vector<std::string> cycles;
        for (int t = 1; t <= ticks; t++) {
            set_input(input, t >= from && t < to);
            tick();
            cycles.push_back(cycle());
        }
        return cycles;
    }

    /// A test image from testdata_dir() at 0000; false if it can't be read.
    bool load_image(const std::string& name)
    {
        std::ifstream in(testdata_dir() + name, std::ios::binary);
        const std::vector<uint8_t> image((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
        std::copy_n(image.begin(), std::min<size_t>(image.size(), 0x10000), _mem.begin());
        return !image.empty();
    }

    /// Runs until an instruction fetches the next one at its own address (jmp *, bne * and the
    /// like); returns that address, 0 if none came within `max_ticks`. One-tick NOPs fetch on
    /// consecutive ticks too, so only a fetch at the same address counts.
    uint16_t run_to_trap(uint64_t max_ticks)
    {
        int prev_fetch = -1;
        for (uint64_t t = 0; t < max_ticks; t++) {
            tick();
            if (!(pins & cpu65_pin_sync))
                continue;
            const uint16_t addr = cpu65_get_addr(pins);
            if (addr == prev_fetch)
                return addr;
            prev_fetch = addr;
        }
        return 0;
    }

private:
    void serve()
    {
        const uint16_t addr = cpu65_get_addr(pins);
        if (pins & cpu65_pin_rw)
            pins = cpu65_set_data(pins, _mem[addr]);
        else
            _mem[addr] = cpu65_get_data(pins);
    }

    typename Core::desc_t _desc{};  // handed to the core's init
    std::vector<uint8_t> _mem;      // 64 KiB, the whole address space
};

using M6502Harness = CpuHarness<M6502Core>;
using W65C02Harness = CpuHarness<W65C02Core>;

#endif  // MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H
