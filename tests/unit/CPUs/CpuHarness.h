// A bare processor core on 64 KiB of RAM: the caller's side of the pin word, for the core tests.
// `Core` names the core's state and descriptor types and its functions (see M6502Harness.h).
#ifndef MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

template <class Core> class CpuHarness
{
public:
    explicit CpuHarness(bool bcd_disabled = false) : _mem(0x10000, 0) { _desc.bcd_disabled = bcd_disabled; }

    typename Core::cpu_t cpu{};  // the core under test
    uint64_t pins{};             // pin word between ticks, inputs included

    uint8_t& mem(uint16_t addr) { return _mem[addr]; }
    std::vector<uint8_t>& memory() { return _mem; }

    void load(uint16_t addr, std::initializer_list<uint8_t> bytes)
    {
        for (uint8_t b : bytes) {
            _mem[addr++] = b;
        }
    }

    /// Runs init and the seven reset ticks; the next tick fetches the opcode at `start`.
    void reset_to(uint16_t start)
    {
        _mem[0xFFFC] = static_cast<uint8_t>(start);
        _mem[0xFFFD] = static_cast<uint8_t>(start >> 8);
        pins = Core::init(&cpu, &_desc);
        serve();
        for (int i = 0; i < 7; i++) {
            tick();
        }
    }

    /// Puts a fetch at `addr` on the pins, with pc to match, as if a jump had just ended there.
    void start_at(uint16_t addr)
    {
        Core::set_pc(&cpu, addr);
        pins = Core::set_addr(pins, addr) | Core::pin_sync | Core::pin_rw;
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
        const uint16_t addr = Core::get_addr(pins);
        if (!(pins & Core::pin_rw)) {
            std::snprintf(text, sizeof text, "W%04X=%02X", addr, Core::get_data(pins));
        } else {
            std::snprintf(text, sizeof text, "%c%04X", (pins & Core::pin_sync) ? 'F' : 'R', addr);
        }
        return text;
    }

    /// The cycles of one instruction: its fetch, each tick up to and including the next fetch.
    std::string run_instruction(int max_ticks = 16)
    {
        std::string trace = cycle();
        for (int i = 0; i < max_ticks; i++) {
            tick();
            trace += " " + cycle();
            if (pins & Core::pin_sync) {
                break;
            }
        }
        return trace;
    }

private:
    void serve()
    {
        const uint16_t addr = Core::get_addr(pins);
        if (pins & Core::pin_rw) {
            pins = Core::set_data(pins, _mem[addr]);
        } else {
            _mem[addr] = Core::get_data(pins);
        }
    }

    typename Core::desc_t _desc{};  // handed to the core's init
    std::vector<uint8_t> _mem;      // 64 KiB, the whole address space
};

#endif  // MORVANE_TESTS_UNIT_CPUS_CPUHARNESS_H
