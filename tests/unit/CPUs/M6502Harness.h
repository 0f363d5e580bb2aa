// A bare 6502 core on 64 KiB of RAM, for the core's tests.
#ifndef MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H

#include "tests/unit/CPUs/CpuHarness.h"

#include "Core/Components/CPUs/MOS6502/m6502.h"

#include <cstdint>

/// The 6502 core's names, as the harness calls them.
struct M6502Core
{
    using cpu_t = m6502_t;
    using desc_t = m6502_desc_t;
    static constexpr uint64_t pin_rw = cpu65_pin_rw;
    static constexpr uint64_t pin_sync = cpu65_pin_sync;
    static uint64_t init(cpu_t* c, const desc_t* d) { return m6502_init(c, d); }
    static uint64_t tick(cpu_t* c, uint64_t pins) { return m6502_tick(c, pins); }
    static void set_pc(cpu_t* c, uint16_t pc) { m6502_set_pc(c, pc); }
    static uint16_t get_addr(uint64_t pins) { return cpu65_get_addr(pins); }
    static uint64_t set_addr(uint64_t pins, uint16_t addr) { return cpu65_set_addr(pins, addr); }
    static uint8_t get_data(uint64_t pins) { return cpu65_get_data(pins); }
    static uint64_t set_data(uint64_t pins, uint8_t data) { return cpu65_set_data(pins, data); }
};

using M6502Harness = CpuHarness<M6502Core>;

#endif  // MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H
