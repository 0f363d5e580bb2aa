// Cycle-stepped CMOS 65C02 (the W65C02S instruction set): one call of w65c02_tick is one bus cycle.
//
// The same idea as the NMOS core beside it: one 64-bit pin word in, one out, the caller serves the
// access the pins ask for. What differs: RES works on any tick and not only on a fetch, RDY halts
// reads and writes alike, VP marks the two vector reads, WAI and STP park the processor, and the
// undefined opcodes are NOPs of fixed length. ADC and SBC take one more cycle with D set, and their
// N and Z then follow the decimal result.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02_H
#define MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02_H

#include "Core/Components/CPUs/cpu65.h"

#include <cstdint>

// Beyond the layout both cores share. RDY halts reads and writes, and WAI sets it in the result.
constexpr uint64_t w65c02_pin_vp = 1ULL << 31;  // out: this cycle reads an interrupt vector

/// What w65c02_init is given.
struct w65c02_desc_t
{
    bool bcd_disabled;  // true: the D flag can be set but changes no arithmetic
};

/// The processor state. A plain record: the functions below are its only users.
struct w65c02_t
{
    uint16_t ir;          // switch key: opcode << 3 | step within the instruction
    uint16_t pc;          // program counter
    uint16_t ad;          // internal address latch
    uint8_t a;            // accumulator
    uint8_t x;            // index register X
    uint8_t y;            // index register Y
    uint8_t s;            // stack pointer into page 1
    uint8_t p;            // status, cpu65_cf ... cpu65_nf
    uint64_t pins;        // the pin word as last returned (and as last given, for the NMI edge)
    uint16_t irq_pip;     // IRQ pipeline, one bit per tick; bit 2 at a fetch takes it
    uint16_t nmi_pip;     // NMI pipeline, one bit per tick; any bit from 2 up at a fetch takes it
    uint8_t brk_flags;    // pending: cpu65_brk_irq, cpu65_brk_nmi, cpu65_brk_reset
    uint8_t bcd_enabled;  // non-zero: the D flag works
    uint8_t waiting;      // non-zero after WAI, until IRQ, NMI or RES shows on the pins
    uint8_t stopped;      // non-zero after STP, until RES shows on the pins
};

/// Clears the record and sets it up for the reset sequence, which then runs through w65c02_tick.
/// Returns the first pin word (RES, SYNC and RW set).
uint64_t w65c02_init(w65c02_t* c, const w65c02_desc_t* desc);

/// Runs one clock cycle. `pins` carries the inputs and, after a read, the data the caller put on the
/// bus; the result asks for the next cycle's access. After WAI the result has RDY set: hand it back
/// and the core stands still until IRQ, NMI or RES.
uint64_t w65c02_tick(w65c02_t* c, uint64_t pins);

void w65c02_set_a(w65c02_t* c, uint8_t v);
void w65c02_set_x(w65c02_t* c, uint8_t v);
void w65c02_set_y(w65c02_t* c, uint8_t v);
void w65c02_set_s(w65c02_t* c, uint8_t v);
void w65c02_set_p(w65c02_t* c, uint8_t v);
void w65c02_set_pc(w65c02_t* c, uint16_t v);
uint8_t w65c02_a(const w65c02_t* c);
uint8_t w65c02_x(const w65c02_t* c);
uint8_t w65c02_y(const w65c02_t* c);
uint8_t w65c02_s(const w65c02_t* c);
uint8_t w65c02_p(const w65c02_t* c);
uint16_t w65c02_pc(const w65c02_t* c);

#endif  // MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02_H
