#include "Core/Components/CPUs/W65C02/w65c02.h"

#include "Core/Components/CPUs/cpu65_steps.h"

#include <cassert>
#include <cstring>

namespace {

using namespace cpu65_steps;

// The arithmetic by the names the step table uses.
inline void _w65c02_adc(w65c02_t* c, uint8_t value)
{
    adc(c, value);
}

inline void _w65c02_sbc(w65c02_t* c, uint8_t value)
{
    sbc(c, value);
}

// TSB and TRB: Z tells whether A and the old value share a bit.
inline void test_bits(w65c02_t* c, uint8_t v)
{
    set_flag(c, cpu65_zf, (c->a & v) == 0);
}

inline uint64_t end_tick(w65c02_t* c, uint64_t pins)
{
    shift_pipelines(c);
    c->pins = pins;
    return pins;
}

}  // namespace

uint64_t w65c02_init(w65c02_t* c, const w65c02_desc_t* desc)
{
    assert(c && desc);
    std::memset(c, 0, sizeof(*c));
    c->p = cpu65_zf;
    c->pins = cpu65_pin_res | cpu65_pin_sync | cpu65_pin_rw;
    c->bcd_enabled = !desc->bcd_disabled;
    return c->pins;
}

uint64_t w65c02_tick(w65c02_t* c, uint64_t pins)
{
    // After STP nothing moves, the pipelines included, until RES comes.
    if (c->stopped) {
        if (!(pins & cpu65_pin_res)) {
            return pins;
        }
        c->stopped = 0;
    }
    if (pins & cpu65_pin_res) {
        // RES works on any cycle: the word it came in is thrown away and the sequence starts over.
        pins = cpu65_pin_res | cpu65_pin_sync | cpu65_pin_rw;
        c->pins = pins;
        c->waiting = 0;
    } else if (pins & (cpu65_pin_sync | cpu65_pin_irq | cpu65_pin_nmi | cpu65_pin_rdy)) {
        latch_interrupts(c, pins);
        // Any interrupt line ends WAI, a masked IRQ too; the step after WAI then runs.
        if (c->waiting && (pins & (cpu65_pin_irq | cpu65_pin_nmi))) {
            c->waiting = 0;
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            pins &= ~cpu65_pin_rdy;
            c->pins = pins;
            return pins;
        }
        // Reads and writes alike stall; the same step runs again at the next tick.
        if (pins & cpu65_pin_rdy) {
            c->pins = pins;
            c->irq_pip = static_cast<uint16_t>(c->irq_pip << 1);
            return pins;
        }
    }
    if ((pins & cpu65_pin_sync) && take_opcode(c, pins)) {
        return end_tick(c, pins);
    }
    pins |= cpu65_pin_rw;
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
