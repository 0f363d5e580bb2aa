// A bare 65C02 core on 64 KiB of RAM, for the core's tests.
#ifndef MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H

#include "tests/unit/Components/CPUs/CpuHarness.h"

#include "Core/Components/CPUs/W65C02/w65c02.h"

#include <cstdint>

/// The 65C02 core's names, as the harness calls them.
struct W65C02Core
{
    using cpu_t = w65c02_t;
    using desc_t = w65c02_desc_t;
    static uint64_t init(cpu_t* c, const desc_t* d) { return w65c02_init(c, d); }
    static uint64_t tick(cpu_t* c, uint64_t pins) { return w65c02_tick(c, pins); }
    static void set_pc(cpu_t* c, uint16_t pc) { w65c02_set_pc(c, pc); }
    static void set_a(cpu_t* c, uint8_t v) { w65c02_set_a(c, v); }
    static void set_x(cpu_t* c, uint8_t v) { w65c02_set_x(c, v); }
    static void set_y(cpu_t* c, uint8_t v) { w65c02_set_y(c, v); }
    static void set_p(cpu_t* c, uint8_t p) { w65c02_set_p(c, p); }
};

using W65C02Harness = CpuHarness<W65C02Core>;

#endif  // MORVANE_TESTS_UNIT_CPUS_W65C02HARNESS_H
