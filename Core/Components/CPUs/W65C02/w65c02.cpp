#include "Core/Components/CPUs/W65C02/w65c02.h"

#include <cassert>
#include <cstring>

namespace {

// Step helpers used by the generated step table. Each works on the pin word of the running tick.

inline uint8_t data(uint64_t pins)
{
    return w65c02_get_data(pins);
}

inline void read_at(uint64_t& pins, uint16_t addr)
{
    pins = w65c02_set_addr(pins, addr);
}

inline void write_at(uint64_t& pins, uint16_t addr, uint8_t value)
{
    pins = w65c02_set_data(w65c02_set_addr(pins, addr), value) & ~w65c02_pin_rw;
}

// The address stays on the pins from the read before: read-modify-write cycles reuse it.
inline void write_data(uint64_t& pins, uint8_t value)
{
    pins = w65c02_set_data(pins, value) & ~w65c02_pin_rw;
}

inline void fetch(const w65c02_t* c, uint64_t& pins)
{
    pins = w65c02_set_addr(pins, c->pc) | w65c02_pin_sync;
}

inline uint16_t stack(const w65c02_t* c)
{
    return static_cast<uint16_t>(0x0100 | c->s);
}

inline void push(w65c02_t* c, uint64_t& pins, uint8_t value)
{
    write_at(pins, stack(c), value);
    c->s--;
}

inline void set_flag(w65c02_t* c, uint8_t flag, bool on)
{
    c->p = static_cast<uint8_t>(on ? (c->p | flag) : (c->p & ~flag));
}

inline void nz(w65c02_t* c, uint8_t v)
{
    c->p = static_cast<uint8_t>((c->p & ~(w65c02_nf | w65c02_zf)) | (v & w65c02_nf) | (v ? 0 : w65c02_zf));
}

inline bool decimal(const w65c02_t* c)
{
    return (c->p & w65c02_df) && c->bcd_enabled;
}

// The NMOS rules; with D set the step after this one puts N and Z right from the decimal result.
void _w65c02_adc(w65c02_t* c, uint8_t value)
{
    const int carry = c->p & w65c02_cf;
    const int sum = c->a + value + carry;
    uint8_t p = c->p & (w65c02_if | w65c02_df | w65c02_bf | w65c02_xf);
    if (!decimal(c)) {
        const uint8_t result = static_cast<uint8_t>(sum);
        p |= result & w65c02_nf;
        p |= result ? 0 : w65c02_zf;
        p |= (sum >> 8) & w65c02_cf;
        p |= (~(c->a ^ value) & (c->a ^ result) & 0x80) ? w65c02_vf : 0;
        c->a = result;
        c->p = p;
        return;
    }
    int low = (c->a & 15) + (value & 15) + carry;
    if (low > 9) {
        low += 6;
    }
    int high = (c->a >> 4) + (value >> 4) + (low > 15 ? 1 : 0);
    p |= (sum & 0xFF) ? 0 : w65c02_zf;
    p |= (high & 8) ? w65c02_nf : 0;
    p |= (~(c->a ^ value) & (c->a ^ (high << 4)) & 0x80) ? w65c02_vf : 0;
    if (high > 9) {
        high += 6;
        p |= w65c02_cf;
    }
    c->a = static_cast<uint8_t>((low & 15) | (high << 4));
    c->p = p;
}

// Flags come from the binary difference; decimal mode only changes the digits of A.
void _w65c02_sbc(w65c02_t* c, uint8_t value)
{
    const int borrow = (c->p & w65c02_cf) ? 0 : 1;
    const int diff = c->a - value - borrow;
    const uint8_t result = static_cast<uint8_t>(diff);
    uint8_t p = c->p & (w65c02_if | w65c02_df | w65c02_bf | w65c02_xf);
    p |= result & w65c02_nf;
    p |= result ? 0 : w65c02_zf;
    p |= (diff & 0xFF00) ? 0 : w65c02_cf;
    p |= ((c->a ^ value) & (c->a ^ result) & 0x80) ? w65c02_vf : 0;
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

inline void cmp(w65c02_t* c, uint8_t reg, uint8_t value)
{
    nz(c, static_cast<uint8_t>(reg - value));
    set_flag(c, w65c02_cf, reg >= value);
}

inline void bit(w65c02_t* c, uint8_t value)
{
    c->p = static_cast<uint8_t>((c->p & ~(w65c02_nf | w65c02_vf | w65c02_zf)) |
                                (value & (w65c02_nf | w65c02_vf)) | ((c->a & value) ? 0 : w65c02_zf));
}

inline uint8_t asl(w65c02_t* c, uint8_t v)
{
    set_flag(c, w65c02_cf, v & 0x80);
    v = static_cast<uint8_t>(v << 1);
    nz(c, v);
    return v;
}

inline uint8_t lsr(w65c02_t* c, uint8_t v)
{
    set_flag(c, w65c02_cf, v & 0x01);
    v = static_cast<uint8_t>(v >> 1);
    nz(c, v);
    return v;
}

inline uint8_t rol(w65c02_t* c, uint8_t v)
{
    const uint8_t carry = c->p & w65c02_cf;
    set_flag(c, w65c02_cf, v & 0x80);
    v = static_cast<uint8_t>((v << 1) | carry);
    nz(c, v);
    return v;
}

inline uint8_t ror(w65c02_t* c, uint8_t v)
{
    const uint8_t carry = c->p & w65c02_cf;
    set_flag(c, w65c02_cf, v & 0x01);
    v = static_cast<uint8_t>((v >> 1) | (carry << 7));
    nz(c, v);
    return v;
}

inline uint8_t inc(w65c02_t* c, uint8_t v)
{
    v++;
    nz(c, v);
    return v;
}

inline uint8_t dec(w65c02_t* c, uint8_t v)
{
    v--;
    nz(c, v);
    return v;
}

// TSB and TRB: Z tells whether A and the old value share a bit.
inline void test_bits(w65c02_t* c, uint8_t v)
{
    set_flag(c, w65c02_zf, (c->a & v) == 0);
}

inline uint64_t end_tick(w65c02_t* c, uint64_t pins)
{
    c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
    c->nmi_pip = static_cast<uint16_t>(c->nmi_pip << 1);
    c->pins = pins;
    return pins;
}

}  // namespace

uint64_t w65c02_init(w65c02_t* c, const w65c02_desc_t* desc)
{
    assert(c && desc);
    std::memset(c, 0, sizeof(*c));
    c->p = w65c02_zf;
    c->pins = w65c02_pin_res | w65c02_pin_sync | w65c02_pin_rw;
    c->bcd_enabled = !desc->bcd_disabled;
    return c->pins;
}

uint64_t w65c02_tick(w65c02_t* c, uint64_t pins)
{
    // After STP nothing moves, the pipelines included, until RES comes.
    if (c->stopped) {
        if (!(pins & w65c02_pin_res)) {
            return pins;
        }
        c->stopped = 0;
    }
    if (pins & w65c02_pin_res) {
        // RES works on any cycle: the word it came in is thrown away and the sequence starts over.
        pins = w65c02_pin_res | w65c02_pin_sync | w65c02_pin_rw;
        c->pins = pins;
        c->waiting = 0;
    } else if (pins & (w65c02_pin_sync | w65c02_pin_irq | w65c02_pin_nmi | w65c02_pin_rdy)) {
        if ((pins & ~c->pins) & w65c02_pin_nmi) {
            c->nmi_pip |= 1;
        }
        if ((pins & w65c02_pin_irq) && !(c->p & w65c02_if)) {
            c->irq_pip |= 1;
        }
        // Any interrupt line ends WAI, a masked IRQ too; the step after WAI then runs.
        if (c->waiting && (pins & (w65c02_pin_irq | w65c02_pin_nmi))) {
            c->waiting = 0;
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            pins &= ~w65c02_pin_rdy;
            c->pins = pins;
            return pins;
        }
        // Reads and writes alike stall; the same step runs again at the next tick.
        if (pins & w65c02_pin_rdy) {
            c->pins = pins;
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            return pins;
        }
    }
    if (pins & w65c02_pin_sync) {
        c->ir = static_cast<uint16_t>(w65c02_get_data(pins) << 3);
        if (c->irq_pip & 4) {
            c->brk_flags |= w65c02_brk_irq;
        }
        if (c->nmi_pip > 3) {
            c->brk_flags |= w65c02_brk_nmi;
        }
        c->nmi_pip &= 3;
        if (pins & w65c02_pin_res) {
            c->brk_flags |= w65c02_brk_reset;
        }
        c->irq_pip &= 3;
        // An interrupt drops the fetched opcode and enters BRK at step 1, with pc unchanged.
        if (c->brk_flags) {
            c->p &= static_cast<uint8_t>(~w65c02_bf);
            pins &= ~(w65c02_pin_res | w65c02_pin_sync);
            c->ir = 1;
            pins = w65c02_set_addr(pins, c->pc) | w65c02_pin_rw;
            return end_tick(c, pins);
        }
        pins &= ~w65c02_pin_sync;
        c->pc++;
    }
    pins |= w65c02_pin_rw;
    // Keys with no case are wait cycles: the pins keep the address of the cycle before.
    switch (c->ir++) {
#include "Core/Components/CPUs/W65C02/w65c02_steps.inc"
    default:
        break;
    }
    return end_tick(c, pins);
}

void w65c02_set_a(w65c02_t* c, uint8_t v)
{
    c->a = v;
}

void w65c02_set_x(w65c02_t* c, uint8_t v)
{
    c->x = v;
}

void w65c02_set_y(w65c02_t* c, uint8_t v)
{
    c->y = v;
}

void w65c02_set_s(w65c02_t* c, uint8_t v)
{
    c->s = v;
}

void w65c02_set_p(w65c02_t* c, uint8_t v)
{
    c->p = v;
}

void w65c02_set_pc(w65c02_t* c, uint16_t v)
{
    c->pc = v;
}

uint8_t w65c02_a(const w65c02_t* c)
{
    return c->a;
}

uint8_t w65c02_x(const w65c02_t* c)
{
    return c->x;
}

uint8_t w65c02_y(const w65c02_t* c)
{
    return c->y;
}

uint8_t w65c02_s(const w65c02_t* c)
{
    return c->s;
}

uint8_t w65c02_p(const w65c02_t* c)
{
    return c->p;
}

uint16_t w65c02_pc(const w65c02_t* c)
{
    return c->pc;
}
