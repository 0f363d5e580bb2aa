// What the two cycle-stepped cores share: the layout of their 64-bit pin word, the status bits and
// the flags of the BRK sequence.
//
// A set bit in the pin word means the signal is asserted, whatever the polarity of the chip's pin.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_CPU65_H
#define MORVANE_CORE_COMPONENTS_CPUS_CPU65_H

#include <cstdint>

// Pin word layout.
constexpr uint64_t cpu65_pin_addr = 0xFFFFULL;      // A0-A15, out
constexpr uint64_t cpu65_pin_data = 0xFFULL << 16;  // D0-D7, both ways
constexpr uint64_t cpu65_pin_rw = 1ULL << 24;       // out: 1 read, 0 write
constexpr uint64_t cpu65_pin_sync = 1ULL << 25;     // out: this cycle fetches an opcode
constexpr uint64_t cpu65_pin_irq = 1ULL << 26;      // in: interrupt request, level
constexpr uint64_t cpu65_pin_nmi = 1ULL << 27;      // in: non-maskable interrupt, rising edge
constexpr uint64_t cpu65_pin_rdy = 1ULL << 28;      // in: halt
constexpr uint64_t cpu65_pin_res = 1ULL << 30;      // both: reset pending
constexpr int cpu65_pin_data_shift = 16;            // bit of D0

// Status register bits.
constexpr uint8_t cpu65_cf = 0x01;  // carry
constexpr uint8_t cpu65_zf = 0x02;  // zero
constexpr uint8_t cpu65_if = 0x04;  // interrupts disabled
constexpr uint8_t cpu65_df = 0x08;  // decimal mode
constexpr uint8_t cpu65_bf = 0x10;  // break: 1 except while a hardware interrupt enters
constexpr uint8_t cpu65_xf = 0x20;  // unused, always pushed as 1
constexpr uint8_t cpu65_vf = 0x40;  // overflow
constexpr uint8_t cpu65_nf = 0x80;  // negative

// Bits of brk_flags: what the BRK sequence is serving.
constexpr uint8_t cpu65_brk_irq = 0x01;    // an IRQ was accepted
constexpr uint8_t cpu65_brk_nmi = 0x02;    // an NMI was accepted
constexpr uint8_t cpu65_brk_reset = 0x04;  // a reset was accepted; wins over both

inline uint16_t cpu65_get_addr(uint64_t pins)
{
    return static_cast<uint16_t>(pins & cpu65_pin_addr);
}

inline uint64_t cpu65_set_addr(uint64_t pins, uint16_t addr)
{
    return (pins & ~cpu65_pin_addr) | addr;
}

inline uint8_t cpu65_get_data(uint64_t pins)
{
    return static_cast<uint8_t>(pins >> cpu65_pin_data_shift);
}

inline uint64_t cpu65_set_data(uint64_t pins, uint8_t data)
{
    return (pins & ~cpu65_pin_data) | (static_cast<uint64_t>(data) << cpu65_pin_data_shift);
}

#endif  // MORVANE_CORE_COMPONENTS_CPUS_CPU65_H
