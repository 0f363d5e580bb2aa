// A bare 6502 core on 64 KiB of RAM, for the core's tests.
#ifndef MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H
#define MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H

#include "tests/unit/Components/CPUs/CpuHarness.h"

#include "Core/Components/CPUs/MOS6502/m6502.h"

#include <cstdint>

/// The 6502 core's names, as the harness calls them.
struct M6502Core
{
    using cpu_t = m6502_t;
    using desc_t = m6502_desc_t;
    static uint64_t init(cpu_t* c, const desc_t* d) { return m6502_init(c, d); }
    static uint64_t tick(cpu_t* c, uint64_t pins) { return m6502_tick(c, pins); }
    static void set_pc(cpu_t* c, uint16_t pc) { m6502_set_pc(c, pc); }
    static void set_a(cpu_t* c, uint8_t v) { m6502_set_a(c, v); }
    static void set_x(cpu_t* c, uint8_t v) { m6502_set_x(c, v); }
    static void set_y(cpu_t* c, uint8_t v) { m6502_set_y(c, v); }
    static void set_p(cpu_t* c, uint8_t p) { m6502_set_p(c, p); }
};

using M6502Harness = CpuHarness<M6502Core>;

#endif  // MORVANE_TESTS_UNIT_CPUS_M6502HARNESS_H
