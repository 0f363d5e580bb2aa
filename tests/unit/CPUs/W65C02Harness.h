// A bare 65C02 core on 64 KiB of RAM, for the core's tests.
#ifndef MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H

#include "tests/unit/CPUs/CpuHarness.h"

#include "Core/Components/CPUs/W65C02/w65c02.h"

#include <cstdint>

/// The 65C02 core's names, as the harness calls them.
struct W65C02Core
{
    using cpu_t = w65c02_t;
    using desc_t = w65c02_desc_t;
    static constexpr uint64_t pin_rw = cpu65_pin_rw;
    static constexpr uint64_t pin_sync = cpu65_pin_sync;
    static uint64_t init(cpu_t* c, const desc_t* d) { return w65c02_init(c, d); }
    static uint64_t tick(cpu_t* c, uint64_t pins) { return w65c02_tick(c, pins); }
    static void set_pc(cpu_t* c, uint16_t pc) { w65c02_set_pc(c, pc); }
    static uint16_t get_addr(uint64_t pins) { return cpu65_get_addr(pins); }
    static uint64_t set_addr(uint64_t pins, uint16_t addr) { return cpu65_set_addr(pins, addr); }
    static uint8_t get_data(uint64_t pins) { return cpu65_get_data(pins); }
    static uint64_t set_data(uint64_t pins, uint8_t data) { return cpu65_set_data(pins, data); }
};

using W65C02Harness = CpuHarness<W65C02Core>;

#endif  // MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H
