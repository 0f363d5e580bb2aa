#include "Core/Components/CPUs/MOS6502/m6502.h"

#include "Core/Components/CPUs/cpu65_steps.h"

#include <cassert>
#include <cstring>

namespace {

using namespace cpu65_steps;

// The arithmetic by the names the step table uses.
inline void _m6502_adc(m6502_t* c, uint8_t value)
{
    adc(c, value);
}

inline void _m6502_sbc(m6502_t* c, uint8_t value)
{
    sbc(c, value);
}

// ARR: an AND, then a rotate right through C, with the ALU's decimal fix-up when D works.
void arr(m6502_t* c, uint8_t value)
{
    const uint8_t v = c->a & value;
    const bool old_carry = c->p & cpu65_cf;
    uint8_t r = static_cast<uint8_t>((v >> 1) | (old_carry ? 0x80 : 0));
    if (decimal(c)) {
        set_flag(c, cpu65_nf, old_carry);
        set_flag(c, cpu65_zf, r == 0);
        set_flag(c, cpu65_vf, (v ^ r) & 0x40);
        if ((v & 0x0F) > 4) {
            r = static_cast<uint8_t>((r & 0xF0) | ((r + 6) & 0x0F));
        }
        const bool high_fix = (v & 0xF0) > 0x4F;
        if (high_fix) {
            r = static_cast<uint8_t>(r + 0x60);
        }
        set_flag(c, cpu65_cf, high_fix);
        c->a = r;
        return;
    }
    c->a = r;
    nz(c, r);
    set_flag(c, cpu65_cf, r & 0x40);
    set_flag(c, cpu65_vf, ((r >> 6) ^ (r >> 5)) & 1);
}

inline void sbx(m6502_t* c, uint8_t value)
{
    const int diff = (c->a & c->x) - value;
    c->x = static_cast<uint8_t>(diff);
    nz(c, c->x);
    set_flag(c, cpu65_cf, diff >= 0);
}

// The 6510 port shows on P0-P5 at the end of every tick.
inline uint64_t show_port(m6502_t* c, uint64_t pins)
{
    pins = (pins & ~m6502_pin_port) |
           ((static_cast<uint64_t>(c->port_pins) << m6502_pin_port_shift) & m6502_pin_port);
    c->pins = pins;
    return pins;
}

inline uint64_t end_tick(m6502_t* c, uint64_t pins)
{
    shift_pipelines(c);
    return show_port(c, pins);
}

}  // namespace

uint64_t m6502_init(m6502_t* c, const m6502_desc_t* desc)
{
    assert(c && desc);
    std::memset(c, 0, sizeof(*c));
    c->p = cpu65_zf;
    c->pins = cpu65_pin_res | cpu65_pin_sync | cpu65_pin_rw;
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
    if (pins & (cpu65_pin_sync | cpu65_pin_irq | cpu65_pin_nmi | cpu65_pin_rdy | cpu65_pin_res)) {
        latch_interrupts(c, pins);
        // Only read cycles stall; the same step runs again at the next tick.
        if ((pins & (cpu65_pin_rdy | cpu65_pin_rw)) == (cpu65_pin_rdy | cpu65_pin_rw)) {
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            return show_port(c, pins);
        }
        if (pins & cpu65_pin_sync) {
            if (pins & cpu65_pin_res) {
                c->port_direction = 0;
                c->port_input = 0;
                c->port_output = 0;
                c->port_pins = 0;
            }
            if (take_opcode(c, pins)) {
                return end_tick(c, pins);
            }
        }
    }
    pins |= cpu65_pin_rw;
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
    const bool read = pins & cpu65_pin_rw;
    const uint8_t d = cpu65_get_data(pins);
    if ((pins & 1) == 0) {
        if (read) {
            return cpu65_set_data(pins, c->port_direction);
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
        pins = cpu65_set_data(pins, v);
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
