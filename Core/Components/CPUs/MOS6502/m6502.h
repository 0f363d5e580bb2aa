// Cycle-stepped NMOS 6502 (with the I/O port of the 6510): one call of m6502_tick is one bus cycle.
//
// The whole interface is one 64-bit pin word. The caller hands in the pins as they stand, the core
// advances by one clock cycle and hands back the pins for the next cycle; the caller then serves the
// access they ask for (on a read it puts the byte on the data pins before the next tick). Every bus
// cycle of the chip occurs, in its order, dummy reads and dummy writes included.
//
// A set bit in the pin word means the signal is asserted, whatever the polarity of the chip's pin.
// Priority at each tick: RDY on a read cycle stalls everything; on an opcode fetch a pending reset
// wins over NMI, and NMI over IRQ. IRQ must be seen two ticks before the fetch that takes it; NMI is
// an edge, held or not. The core knows nothing of the simulator and keeps no globals.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_MOS6502_M6502_H
#define MORVANE_CORE_COMPONENTS_CPUS_MOS6502_M6502_H

#include "Core/Components/CPUs/cpu65.h"

#include <cstdint>

// Beyond the layout both cores share: the 6510 port. RDY halts read cycles only.
constexpr uint64_t m6502_pin_port = 0x3FULL << 32;  // P0-P5, out: the 6510 port's pin state
constexpr int m6502_pin_port_shift = 32;            // bit of P0

inline uint8_t m6502_get_port(uint64_t pins)
{
    return static_cast<uint8_t>((pins & m6502_pin_port) >> m6502_pin_port_shift);
}

/// Reads the 6510 port's input pins.
using m6510_in_t = uint8_t (*)(void* user_data);
/// Drives the 6510 port's output pins.
using m6510_out_t = void (*)(uint8_t data, void* user_data);

/// What m6502_init is given.
struct m6502_desc_t
{
    bool bcd_disabled;      // true: the D flag can be set but changes no arithmetic
    m6510_in_t in_cb;       // reads the 6510 port; null if there is no port
    m6510_out_t out_cb;     // writes the 6510 port; null if there is no port
    void* user_data;        // handed to the callbacks
    uint8_t port_pullup;    // port bits pulled high when not driven
    uint8_t port_floating;  // port bits that keep their last driven level when not driven
};

/// The processor state. A plain record: the functions below are its only users.
struct m6502_t
{
    uint16_t ir;             // switch key: opcode << 3 | step within the instruction
    uint16_t pc;             // program counter
    uint16_t ad;             // internal address latch
    uint8_t a;               // accumulator
    uint8_t x;               // index register X
    uint8_t y;               // index register Y
    uint8_t s;               // stack pointer into page 1
    uint8_t p;               // status, cpu65_cf ... cpu65_nf
    uint64_t pins;           // the pin word as last returned (and as last given, for the NMI edge)
    uint16_t irq_pip;        // IRQ pipeline, one bit per tick; bit 2 at a fetch takes it
    uint16_t nmi_pip;        // NMI pipeline, one bit per tick; any bit from 2 up at a fetch takes it
    uint8_t brk_flags;       // pending: cpu65_brk_irq, cpu65_brk_nmi, cpu65_brk_reset
    uint8_t bcd_enabled;     // non-zero: the D flag works
    void* user_data;         // handed to the callbacks
    m6510_in_t in_cb;        // reads the 6510 port
    m6510_out_t out_cb;      // writes the 6510 port
    uint8_t port_direction;  // 6510 data direction register, 1 = output
    uint8_t port_input;      // last byte read from in_cb
    uint8_t port_output;     // 6510 output register
    uint8_t port_pins;       // the port's pin state as it shows on P0-P5
    uint8_t port_pullup;     // bits pulled high when not driven
    uint8_t port_floating;   // bits that keep their driven level when not driven
    uint8_t port_drive;      // last level driven on each bit
};

/// Clears the record and sets it up for the reset sequence, which then runs through m6502_tick.
/// Returns the first pin word (RES, SYNC and RW set).
uint64_t m6502_init(m6502_t* c, const m6502_desc_t* desc);

/// Runs one clock cycle. `pins` carries the inputs and, after a read, the data the caller put on the
/// bus; the result asks for the next cycle's access.
uint64_t m6502_tick(m6502_t* c, uint64_t pins);

/// Serves an access to address 0 or 1 of the 6510 port in place of a memory access; fills the data
/// pins on a read. Both callbacks must be set.
uint64_t m6510_iorq(m6502_t* c, uint64_t pins);

void m6502_set_a(m6502_t* c, uint8_t v);
void m6502_set_x(m6502_t* c, uint8_t v);
void m6502_set_y(m6502_t* c, uint8_t v);
void m6502_set_s(m6502_t* c, uint8_t v);
void m6502_set_p(m6502_t* c, uint8_t v);
void m6502_set_pc(m6502_t* c, uint16_t v);
uint8_t m6502_a(const m6502_t* c);
uint8_t m6502_x(const m6502_t* c);
uint8_t m6502_y(const m6502_t* c);
uint8_t m6502_s(const m6502_t* c);
uint8_t m6502_p(const m6502_t* c);
uint16_t m6502_pc(const m6502_t* c);

#endif  // MORVANE_CORE_COMPONENTS_CPUS_MOS6502_M6502_H
