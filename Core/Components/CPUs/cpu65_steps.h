// The helpers that the generated step tables of both cores call, and the parts of a tick that the
// two cores run alike. Each works on a core record `Cpu` (m6502_t or w65c02_t) and on the pin word of
// the running tick. Only the core sources include this.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_CPU65_STEPS_H
#define MORVANE_CORE_COMPONENTS_CPUS_CPU65_STEPS_H

#include "Core/Components/CPUs/cpu65.h"

#include <cstdint>

namespace cpu65_steps {

inline uint8_t data(uint64_t pins)
{
    return cpu65_get_data(pins);
}

inline void read_at(uint64_t& pins, uint16_t addr)
{
    pins = cpu65_set_addr(pins, addr);
}

inline void write_at(uint64_t& pins, uint16_t addr, uint8_t value)
{
    pins = cpu65_set_data(cpu65_set_addr(pins, addr), value) & ~cpu65_pin_rw;
}

// The address stays on the pins from the read before: read-modify-write cycles reuse it.
inline void write_data(uint64_t& pins, uint8_t value)
{
    pins = cpu65_set_data(pins, value) & ~cpu65_pin_rw;
}

template <class Cpu> inline void fetch(const Cpu* c, uint64_t& pins)
{
    pins = cpu65_set_addr(pins, c->pc) | cpu65_pin_sync;
}

template <class Cpu> inline uint16_t stack(const Cpu* c)
{
    return static_cast<uint16_t>(0x0100 | c->s);
}

template <class Cpu> inline void push(Cpu* c, uint64_t& pins, uint8_t value)
{
    write_at(pins, stack(c), value);
    c->s--;
}

template <class Cpu> inline void set_flag(Cpu* c, uint8_t flag, bool on)
{
    c->p = static_cast<uint8_t>(on ? (c->p | flag) : (c->p & ~flag));
}

template <class Cpu> inline void nz(Cpu* c, uint8_t v)
{
    c->p = static_cast<uint8_t>((c->p & ~(cpu65_nf | cpu65_zf)) | (v & cpu65_nf) | (v ? 0 : cpu65_zf));
}

template <class Cpu> inline bool decimal(const Cpu* c)
{
    return (c->p & cpu65_df) && c->bcd_enabled;
}

// In decimal mode N, V and Z follow the binary sum and the uncorrected high digit, as on the NMOS
// chip; the CMOS core puts N and Z right in a step of its own.
template <class Cpu> void adc(Cpu* c, uint8_t value)
{
    const int carry = c->p & cpu65_cf;
    const int sum = c->a + value + carry;
    uint8_t p = c->p & (cpu65_if | cpu65_df | cpu65_bf | cpu65_xf);
    if (!decimal(c)) {
        const uint8_t result = static_cast<uint8_t>(sum);
        p |= result & cpu65_nf;
        p |= result ? 0 : cpu65_zf;
        p |= (sum >> 8) & cpu65_cf;
        p |= (~(c->a ^ value) & (c->a ^ result) & 0x80) ? cpu65_vf : 0;
        c->a = result;
        c->p = p;
        return;
    }
    int low = (c->a & 15) + (value & 15) + carry;
    if (low > 9) {
        low += 6;
    }
    int high = (c->a >> 4) + (value >> 4) + (low > 15 ? 1 : 0);
    p |= (sum & 0xFF) ? 0 : cpu65_zf;
    p |= (high & 8) ? cpu65_nf : 0;
    p |= (~(c->a ^ value) & (c->a ^ (high << 4)) & 0x80) ? cpu65_vf : 0;
    if (high > 9) {
        high += 6;
        p |= cpu65_cf;
    }
    c->a = static_cast<uint8_t>((low & 15) | (high << 4));
    c->p = p;
}

// Flags always come from the binary difference; decimal mode only changes the digits of A.
template <class Cpu> void sbc(Cpu* c, uint8_t value)
{
    const int borrow = (c->p & cpu65_cf) ? 0 : 1;
    const int diff = c->a - value - borrow;
    const uint8_t result = static_cast<uint8_t>(diff);
    uint8_t p = c->p & (cpu65_if | cpu65_df | cpu65_bf | cpu65_xf);
    p |= result & cpu65_nf;
    p |= result ? 0 : cpu65_zf;
    p |= (diff & 0xFF00) ? 0 : cpu65_cf;
    p |= ((c->a ^ value) & (c->a ^ result) & 0x80) ? cpu65_vf : 0;
    c->p = p;
    if (!decimal(c)) {
        c->a = result;
        return;
    }
    int low = (c->a & 15) - (value & 15) - borrow;
    const bool low_borrow = low < 0;
    if (low_borrow) {
        low -= 6;
    }
    int high = (c->a >> 4) - (value >> 4) - (low_borrow ? 1 : 0);
    if (high < 0) {
        high -= 6;
    }
    c->a = static_cast<uint8_t>((high << 4) | (low & 15));
}

template <class Cpu> inline void cmp(Cpu* c, uint8_t reg, uint8_t value)
{
    nz(c, static_cast<uint8_t>(reg - value));
    set_flag(c, cpu65_cf, reg >= value);
}

template <class Cpu> inline void bit(Cpu* c, uint8_t value)
{
    c->p = static_cast<uint8_t>((c->p & ~(cpu65_nf | cpu65_vf | cpu65_zf)) | (value & (cpu65_nf | cpu65_vf)) |
                                ((c->a & value) ? 0 : cpu65_zf));
}

template <class Cpu> inline uint8_t asl(Cpu* c, uint8_t v)
{
    set_flag(c, cpu65_cf, v & 0x80);
    v = static_cast<uint8_t>(v << 1);
    nz(c, v);
    return v;
}

template <class Cpu> inline uint8_t lsr(Cpu* c, uint8_t v)
{
    set_flag(c, cpu65_cf, v & 0x01);
    v = static_cast<uint8_t>(v >> 1);
    nz(c, v);
    return v;
}

template <class Cpu> inline uint8_t rol(Cpu* c, uint8_t v)
{
    const uint8_t carry = c->p & cpu65_cf;
    set_flag(c, cpu65_cf, v & 0x80);
    v = static_cast<uint8_t>((v << 1) | carry);
    nz(c, v);
    return v;
}

template <class Cpu> inline uint8_t ror(Cpu* c, uint8_t v)
{
    const uint8_t carry = c->p & cpu65_cf;
    set_flag(c, cpu65_cf, v & 0x01);
    v = static_cast<uint8_t>((v >> 1) | (carry << 7));
    nz(c, v);
    return v;
}

template <class Cpu> inline uint8_t inc(Cpu* c, uint8_t v)
{
    v++;
    nz(c, v);
    return v;
}

template <class Cpu> inline uint8_t dec(Cpu* c, uint8_t v)
{
    v--;
    nz(c, v);
    return v;
}

// The NMI edge and an IRQ that the I flag lets through go into their pipelines.
template <class Cpu> inline void latch_interrupts(Cpu* c, uint64_t pins)
{
    if ((pins & ~c->pins) & cpu65_pin_nmi) {
        c->nmi_pip |= 1;
    }
    if ((pins & cpu65_pin_irq) && !(c->p & cpu65_if)) {
        c->irq_pip |= 1;
    }
}

// The opcode on the data pins is being fetched. Returns true when a pending reset, NMI or IRQ drops
// it instead: the core then enters BRK at step 1, with pc unchanged, and `pins` ask for that step.
template <class Cpu> inline bool take_opcode(Cpu* c, uint64_t& pins)
{
    c->ir = static_cast<uint16_t>(cpu65_get_data(pins) << 3);
    if (c->irq_pip & 4) {
        c->brk_flags |= cpu65_brk_irq;
    }
    if (c->nmi_pip > 3) {
        c->brk_flags |= cpu65_brk_nmi;
    }
    c->nmi_pip &= 3;
    if (pins & cpu65_pin_res) {
        c->brk_flags |= cpu65_brk_reset;
    }
    c->irq_pip &= 3;
    if (c->brk_flags) {
        c->p &= static_cast<uint8_t>(~cpu65_bf);
        pins &= ~(cpu65_pin_res | cpu65_pin_sync);
        c->ir = 1;
        pins = cpu65_set_addr(pins, c->pc) | cpu65_pin_rw;
        return true;
    }
    pins &= ~cpu65_pin_sync;
    c->pc++;
    return false;
}

// The pipelines move on at the end of every tick.
template <class Cpu> inline void shift_pipelines(Cpu* c)
{
    c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
    c->nmi_pip = static_cast<uint16_t>(c->nmi_pip << 1);
}

}  // namespace cpu65_steps

#endif  // MORVANE_CORE_COMPONENTS_CPUS_CPU65_STEPS_H
