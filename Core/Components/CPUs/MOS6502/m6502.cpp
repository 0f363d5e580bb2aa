#include "Core/Components/CPUs/MOS6502/m6502.h"

#include <cassert>
#include <cstring>

namespace {

// Step helpers used by the generated step table. Each works on the pin word of the running tick.

inline uint8_t data(uint64_t pins)
{
    return m6502_get_data(pins);
}

inline void read_at(uint64_t& pins, uint16_t addr)
{
    pins = m6502_set_addr(pins, addr);
}

inline void write_at(uint64_t& pins, uint16_t addr, uint8_t value)
{
    pins = m6502_set_data(m6502_set_addr(pins, addr), value) & ~m6502_pin_rw;
}

// The address stays on the pins from the read before: read-modify-write cycles reuse it.
inline void write_data(uint64_t& pins, uint8_t value)
{
    pins = m6502_set_data(pins, value) & ~m6502_pin_rw;
}

inline void fetch(const m6502_t* c, uint64_t& pins)
{
    pins = m6502_set_addr(pins, c->pc) | m6502_pin_sync;
}

inline uint16_t stack(const m6502_t* c)
{
    return static_cast<uint16_t>(0x0100 | c->s);
}

inline void push(m6502_t* c, uint64_t& pins, uint8_t value)
{
    write_at(pins, stack(c), value);
    c->s--;
}

inline void set_flag(m6502_t* c, uint8_t flag, bool on)
{
    c->p = static_cast<uint8_t>(on ? (c->p | flag) : (c->p & ~flag));
}

inline void nz(m6502_t* c, uint8_t v)
{
    c->p = static_cast<uint8_t>((c->p & ~(m6502_nf | m6502_zf)) | (v & m6502_nf) | (v ? 0 : m6502_zf));
}

inline bool decimal(const m6502_t* c)
{
    return (c->p & m6502_df) && c->bcd_enabled;
}

// N, V and Z follow the binary sum and the uncorrected high digit, as on the NMOS chip.
void _m6502_adc(m6502_t* c, uint8_t value)
{
    const int carry = c->p & m6502_cf;
    const int sum = c->a + value + carry;
    uint8_t p = c->p & (m6502_if | m6502_df | m6502_bf | m6502_xf);
    if (!decimal(c)) {
        const uint8_t result = static_cast<uint8_t>(sum);
        p |= result & m6502_nf;
        p |= result ? 0 : m6502_zf;
        p |= (sum >> 8) & m6502_cf;
        p |= (~(c->a ^ value) & (c->a ^ result) & 0x80) ? m6502_vf : 0;
        c->a = result;
        c->p = p;
        return;
    }
    int low = (c->a & 15) + (value & 15) + carry;
    if (low > 9) {
        low += 6;
    }
    int high = (c->a >> 4) + (value >> 4) + (low > 15 ? 1 : 0);
    p |= (sum & 0xFF) ? 0 : m6502_zf;
    p |= (high & 8) ? m6502_nf : 0;
    p |= (~(c->a ^ value) & (c->a ^ (high << 4)) & 0x80) ? m6502_vf : 0;
    if (high > 9) {
        high += 6;
        p |= m6502_cf;
    }
    c->a = static_cast<uint8_t>((low & 15) | (high << 4));
    c->p = p;
}

// Flags always come from the binary difference; decimal mode only changes the digits of A.
void _m6502_sbc(m6502_t* c, uint8_t value)
{
    const int borrow = (c->p & m6502_cf) ? 0 : 1;
    const int diff = c->a - value - borrow;
    const uint8_t result = static_cast<uint8_t>(diff);
    uint8_t p = c->p & (m6502_if | m6502_df | m6502_bf | m6502_xf);
    p |= result & m6502_nf;
    p |= result ? 0 : m6502_zf;
    p |= (diff & 0xFF00) ? 0 : m6502_cf;
    p |= ((c->a ^ value) & (c->a ^ result) & 0x80) ? m6502_vf : 0;
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

inline void cmp(m6502_t* c, uint8_t reg, uint8_t value)
{
    nz(c, static_cast<uint8_t>(reg - value));
    set_flag(c, m6502_cf, reg >= value);
}

inline void bit(m6502_t* c, uint8_t value)
{
    c->p = static_cast<uint8_t>((c->p & ~(m6502_nf | m6502_vf | m6502_zf)) | (value & (m6502_nf | m6502_vf)) |
                                ((c->a & value) ? 0 : m6502_zf));
}

inline uint8_t asl(m6502_t* c, uint8_t v)
{
    set_flag(c, m6502_cf, v & 0x80);
    v = static_cast<uint8_t>(v << 1);
    nz(c, v);
    return v;
}

inline uint8_t lsr(m6502_t* c, uint8_t v)
{
    set_flag(c, m6502_cf, v & 0x01);
    v = static_cast<uint8_t>(v >> 1);
    nz(c, v);
    return v;
}

inline uint8_t rol(m6502_t* c, uint8_t v)
{
    const uint8_t carry = c->p & m6502_cf;
    set_flag(c, m6502_cf, v & 0x80);
    v = static_cast<uint8_t>((v << 1) | carry);
    nz(c, v);
    return v;
}

inline uint8_t ror(m6502_t* c, uint8_t v)
{
    const uint8_t carry = c->p & m6502_cf;
    set_flag(c, m6502_cf, v & 0x01);
    v = static_cast<uint8_t>((v >> 1) | (carry << 7));
    nz(c, v);
    return v;
}

inline uint8_t inc(m6502_t* c, uint8_t v)
{
    v++;
    nz(c, v);
    return v;
}

inline uint8_t dec(m6502_t* c, uint8_t v)
{
    v--;
    nz(c, v);
    return v;
}

// ARR: an AND, then a rotate right through C, with the ALU's decimal fix-up when D works.
void arr(m6502_t* c, uint8_t value)
{
    const uint8_t v = c->a & value;
    const bool old_carry = c->p & m6502_cf;
    uint8_t r = static_cast<uint8_t>((v >> 1) | (old_carry ? 0x80 : 0));
    if (decimal(c)) {
        set_flag(c, m6502_nf, old_carry);
        set_flag(c, m6502_zf, r == 0);
        set_flag(c, m6502_vf, (v ^ r) & 0x40);
        if ((v & 0x0F) > 4) {
            r = static_cast<uint8_t>((r & 0xF0) | ((r + 6) & 0x0F));
        }
        const bool high_fix = (v & 0xF0) > 0x4F;
        if (high_fix) {
            r = static_cast<uint8_t>(r + 0x60);
        }
        set_flag(c, m6502_cf, high_fix);
        c->a = r;
        return;
    }
    c->a = r;
    nz(c, r);
    set_flag(c, m6502_cf, r & 0x40);
    set_flag(c, m6502_vf, ((r >> 6) ^ (r >> 5)) & 1);
}

inline void sbx(m6502_t* c, uint8_t value)
{
    const int diff = (c->a & c->x) - value;
    c->x = static_cast<uint8_t>(diff);
    nz(c, c->x);
    set_flag(c, m6502_cf, diff >= 0);
}

// The pipelines move on and the 6510 port shows on P0-P5 at the end of every tick.
inline uint64_t end_tick(m6502_t* c, uint64_t pins)
{
    c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
    c->nmi_pip = static_cast<uint16_t>(c->nmi_pip << 1);
    pins = (pins & ~m6502_pin_port) |
           ((static_cast<uint64_t>(c->port_pins) << m6502_pin_port_shift) & m6502_pin_port);
    c->pins = pins;
    return pins;
}

}  // namespace

uint64_t m6502_init(m6502_t* c, const m6502_desc_t* desc)
{
    assert(c && desc);
    std::memset(c, 0, sizeof(*c));
    c->p = m6502_zf;
    c->pins = m6502_pin_res | m6502_pin_sync | m6502_pin_rw;
    c->bcd_enabled = !desc->bcd_disabled;
    c->in_cb = desc->in_cb;
    c->out_cb = desc->out_cb;
    c->user_data = desc->user_data;
    c->port_pullup = desc->port_pullup;
    c->port_floating = desc->port_floating;
    return c->pins;
}

uint64_t m6502_tick(m6502_t* c, uint64_t pins)
{
    // One test keeps the common case fast: nothing to look at but the step table.
    if (pins & (m6502_pin_sync | m6502_pin_irq | m6502_pin_nmi | m6502_pin_rdy | m6502_pin_res)) {
        if ((pins & ~c->pins) & m6502_pin_nmi) {
            c->nmi_pip |= 1;
        }
        if ((pins & m6502_pin_irq) && !(c->p & m6502_if)) {
            c->irq_pip |= 1;
        }
        // Only read cycles stall; the same step runs again at the next tick.
        if ((pins & (m6502_pin_rdy | m6502_pin_rw)) == (m6502_pin_rdy | m6502_pin_rw)) {
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            pins = (pins & ~m6502_pin_port) |
                   ((static_cast<uint64_t>(c->port_pins) << m6502_pin_port_shift) & m6502_pin_port);
            c->pins = pins;
            return pins;
        }
        if (pins & m6502_pin_sync) {
            c->ir = static_cast<uint16_t>(m6502_get_data(pins) << 3);
            if (c->irq_pip & 4) {
                c->brk_flags |= m6502_brk_irq;
            }
            if (c->nmi_pip > 3) {
                c->brk_flags |= m6502_brk_nmi;
            }
            c->nmi_pip &= 3;
            if (pins & m6502_pin_res) {
                c->brk_flags |= m6502_brk_reset;
                c->port_direction = 0;
                c->port_input = 0;
                c->port_output = 0;
                c->port_pins = 0;
            }
            c->irq_pip &= 3;
            // An interrupt drops the fetched opcode and enters BRK at step 1, with pc unchanged.
            if (c->brk_flags) {
                c->p &= static_cast<uint8_t>(~m6502_bf);
                pins &= ~(m6502_pin_res | m6502_pin_sync);
                c->ir = 1;
                pins = m6502_set_addr(pins, c->pc) | m6502_pin_rw;
                return end_tick(c, pins);
            }
            pins &= ~m6502_pin_sync;
            c->pc++;
        }
    }
    pins |= m6502_pin_rw;
    switch (c->ir++) {
#include "Core/Components/CPUs/MOS6502/m6502_steps.inc"
    default:
        assert(false);
        break;
    }
    return end_tick(c, pins);
}

uint64_t m6510_iorq(m6502_t* c, uint64_t pins)
{
    assert(c->in_cb && c->out_cb);
    const bool read = pins & m6502_pin_rw;
    const uint8_t d = m6502_get_data(pins);
    if ((pins & 1) == 0) {
        if (read) {
            return m6502_set_data(pins, c->port_direction);
        }
        c->port_direction = d;
        const uint8_t v = c->port_output & d;
        c->out_cb(static_cast<uint8_t>(v | (c->port_pullup & ~d)), c->user_data);
        c->port_drive = static_cast<uint8_t>((c->port_drive & ~d) | v);
    } else if (read) {
        c->port_input = c->in_cb(c->user_data);
        const uint8_t v =
            static_cast<uint8_t>((((c->port_floating & c->port_drive) | c->port_input) & ~c->port_direction) |
                                 (c->port_direction & c->port_output));
        pins = m6502_set_data(pins, v);
    } else {
        c->port_output = d;
        const uint8_t v = d & c->port_direction;
        c->out_cb(static_cast<uint8_t>(v | (c->port_pullup & ~c->port_direction)), c->user_data);
        c->port_drive = static_cast<uint8_t>((c->port_drive & ~c->port_direction) | v);
    }
    c->port_pins =
        static_cast<uint8_t>((c->port_input & ~c->port_direction) | (c->port_direction & c->port_output));
    return pins;
}

void m6502_set_a(m6502_t* c, uint8_t v)
{
    c->a = v;
}

void m6502_set_x(m6502_t* c, uint8_t v)
{
    c->x = v;
}

void m6502_set_y(m6502_t* c, uint8_t v)
{
    c->y = v;
}

void m6502_set_s(m6502_t* c, uint8_t v)
{
    c->s = v;
}

void m6502_set_p(m6502_t* c, uint8_t v)
{
    c->p = v;
}

void m6502_set_pc(m6502_t* c, uint16_t v)
{
    c->pc = v;
}

uint8_t m6502_a(const m6502_t* c)
{
    return c->a;
}

uint8_t m6502_x(const m6502_t* c)
{
    return c->x;
}

uint8_t m6502_y(const m6502_t* c)
{
    return c->y;
}

uint8_t m6502_s(const m6502_t* c)
{
    return c->s;
}

uint8_t m6502_p(const m6502_t* c)
{
    return c->p;
}

uint16_t m6502_pc(const m6502_t* c)
{
    return c->pc;
}
