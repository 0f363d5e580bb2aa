#!/usr/bin/env python3
"""Writes the step table of the 6502 core (m6502_steps.inc) from addressing modes and operations.

Usage: m6502_gen.py OUTPUT

Each opcode becomes up to eight cases of the switch in m6502_tick, one per bus cycle. Step 0 runs in
the tick that fetches the opcode. A step sets the pins of the next cycle; it reads the data pins to get
what the cycle before fetched. "fetch" ends an instruction: address = pc with SYNC set.
"""

import sys

FETCH = "fetch(c, pins);"

# Operations on the byte the last read brought in, carried out in parallel with the next fetch.
READ_OPS = {
    "ORA": "c->a |= data(pins); nz(c, c->a);",
    "AND": "c->a &= data(pins); nz(c, c->a);",
    "EOR": "c->a ^= data(pins); nz(c, c->a);",
    "ADC": "_m6502_adc(c, data(pins));",
    "LDA": "c->a = data(pins); nz(c, c->a);",
    "CMP": "cmp(c, c->a, data(pins));",
    "SBC": "_m6502_sbc(c, data(pins));",
    "LDX": "c->x = data(pins); nz(c, c->x);",
    "LDY": "c->y = data(pins); nz(c, c->y);",
    "CPX": "cmp(c, c->x, data(pins));",
    "CPY": "cmp(c, c->y, data(pins));",
    "BIT": "bit(c, data(pins));",
    "NOP": "",
    "LAX": "c->a = c->x = data(pins); nz(c, c->a);",
    "LAS": "c->a = c->x = c->s = data(pins) & c->s; nz(c, c->a);",
    "ANC": "c->a &= data(pins); nz(c, c->a); set_flag(c, cpu65_cf, c->a & 0x80);",
    "ASR": "c->a &= data(pins); c->a = lsr(c, c->a);",
    "ARR": "arr(c, data(pins));",
    "ANE": "c->a = (c->a | 0xEE) & c->x & data(pins); nz(c, c->a);",
    "LXA": "c->a = c->x = (c->a | 0xEE) & data(pins); nz(c, c->a);",
    "SBX": "sbx(c, data(pins));",
}

# Stores: {addr} is the effective address; the SH* forms mix its high byte + 1 into the value.
WRITE_OPS = {
    "STA": "write_at(pins, {addr}, c->a);",
    "STX": "write_at(pins, {addr}, c->x);",
    "STY": "write_at(pins, {addr}, c->y);",
    "SAX": "write_at(pins, {addr}, c->a & c->x);",
    "SHA": "c->ad = {addr}; write_at(pins, c->ad, c->a & c->x & ((c->ad >> 8) + 1));",
    "SHS": "c->ad = {addr}; c->s = c->a & c->x; write_at(pins, c->ad, c->s & ((c->ad >> 8) + 1));",
    "SHY": "c->ad = {addr}; write_at(pins, c->ad, c->y & ((c->ad >> 8) + 1));",
    "SHX": "c->ad = {addr}; write_at(pins, c->ad, c->x & ((c->ad >> 8) + 1));",
}

# Read-modify-write: the operation works on c->ad, which then goes out as the new value.
RMW_OPS = {
    "ASL": "c->ad = asl(c, c->ad);",
    "ROL": "c->ad = rol(c, c->ad);",
    "LSR": "c->ad = lsr(c, c->ad);",
    "ROR": "c->ad = ror(c, c->ad);",
    "DEC": "c->ad = dec(c, c->ad);",
    "INC": "c->ad = inc(c, c->ad);",
    "SLO": "c->ad = asl(c, c->ad); c->a |= c->ad; nz(c, c->a);",
    "RLA": "c->ad = rol(c, c->ad); c->a &= c->ad; nz(c, c->a);",
    "SRE": "c->ad = lsr(c, c->ad); c->a ^= c->ad; nz(c, c->a);",
    "RRA": "c->ad = ror(c, c->ad); _m6502_adc(c, c->ad);",
    "DCP": "c->ad--; cmp(c, c->a, c->ad);",
    "ISB": "c->ad++; _m6502_sbc(c, c->ad);",
}

# Implied and accumulator operations: step 0 reads at pc without moving on.
IMPLIED_OPS = {
    "CLC": "c->p &= ~cpu65_cf;",
    "SEC": "c->p |= cpu65_cf;",
    "CLI": "c->p &= ~cpu65_if;",
    "SEI": "c->p |= cpu65_if;",
    "CLV": "c->p &= ~cpu65_vf;",
    "CLD": "c->p &= ~cpu65_df;",
    "SED": "c->p |= cpu65_df;",
    "TAX": "c->x = c->a; nz(c, c->x);",
    "TXA": "c->a = c->x; nz(c, c->a);",
    "TAY": "c->y = c->a; nz(c, c->y);",
    "TYA": "c->a = c->y; nz(c, c->a);",
    "TSX": "c->x = c->s; nz(c, c->x);",
    "TXS": "c->s = c->x;",
    "INX": "c->x++; nz(c, c->x);",
    "INY": "c->y++; nz(c, c->y);",
    "DEX": "c->x--; nz(c, c->x);",
    "DEY": "c->y--; nz(c, c->y);",
    "NOP": "",
    "ASL": "c->a = asl(c, c->a);",
    "ROL": "c->a = rol(c, c->a);",
    "LSR": "c->a = lsr(c, c->a);",
    "ROR": "c->a = ror(c, c->a);",
}

# Flag tested by each branch, and whether the branch is taken when that flag is set.
BRANCH_CONDITIONS = {
    "BPL": ("cpu65_nf", False),
    "BMI": ("cpu65_nf", True),
    "BVC": ("cpu65_vf", False),
    "BVS": ("cpu65_vf", True),
    "BCC": ("cpu65_cf", False),
    "BCS": ("cpu65_cf", True),
    "BNE": ("cpu65_zf", False),
    "BEQ": ("cpu65_zf", True),
}

MODE_SYNTAX = {
    "imp": "", "acc": "A", "imm": "#", "zp": "zp", "zpx": "zp,X", "zpy": "zp,Y", "abs": "abs",
    "absx": "abs,X", "absy": "abs,Y", "indx": "(zp,X)", "indy": "(zp),Y", "rel": "rel", "ind": "(abs)",
}


def skip_unless_crossing(index):
    return f"if (((c->ad & 0xFF) + c->{index}) <= 0xFF) {{ c->ir++; }}"


def address_steps(mode, kind):
    """Steps before the operand access, and the expression of the operand's address.

    The access itself happens in the step after the returned list. Reads of the indexed absolute
    forms skip their fix-up cycle when no page is crossed; stores and read-modify-write never do.
    """
    skip = kind == "read"
    if mode == "zp":
        return ["read_at(pins, c->pc++);"], "data(pins)"
    if mode in ("zpx", "zpy"):
        index = mode[-1]
        return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->ad);"], \
            f"(c->ad + c->{index}) & 0xFF"
    if mode == "abs":
        return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);"], \
            "(data(pins) << 8) | c->ad"
    if mode in ("absx", "absy"):
        index = mode[-1]
        fixup = f"c->ad |= data(pins) << 8; read_at(pins, (c->ad & 0xFF00) | ((c->ad + c->{index}) & 0xFF));"
        if skip:
            fixup += " " + skip_unless_crossing(index)
        return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);", fixup], \
            f"c->ad + c->{index}"
    if mode == "indx":
        return ["read_at(pins, c->pc++);",
                "c->ad = data(pins); read_at(pins, c->ad);",
                "c->ad = (c->ad + c->x) & 0xFF; read_at(pins, c->ad);",
                "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins);"], \
            "(data(pins) << 8) | c->ad"
    if mode == "indy":
        fixup = "c->ad |= data(pins) << 8; read_at(pins, (c->ad & 0xFF00) | ((c->ad + c->y) & 0xFF));"
        if skip:
            fixup += " " + skip_unless_crossing("y")
        return ["read_at(pins, c->pc++);",
                "c->ad = data(pins); read_at(pins, c->ad);",
                "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins);",
                fixup], \
            "c->ad + c->y"
    raise ValueError(f"no address steps for mode {mode}")


def read_steps(name, mode):
    op = READ_OPS[name]
    if mode == "imm":
        return ["read_at(pins, c->pc++);", join(op, FETCH)]
    pre, addr = address_steps(mode, "read")
    return pre + [f"read_at(pins, {addr});", join(op, FETCH)]


def write_steps(name, mode):
    pre, addr = address_steps(mode, "write")
    return pre + [WRITE_OPS[name].format(addr=addr), FETCH]


def rmw_steps(name, mode):
    pre, addr = address_steps(mode, "rmw")
    return pre + [f"read_at(pins, {addr});",
                  "c->ad = data(pins); write_data(pins, c->ad);",
                  join(RMW_OPS[name], "write_data(pins, c->ad);"),
                  FETCH]


def implied_steps(name):
    return ["read_at(pins, c->pc);", join(IMPLIED_OPS[name], FETCH)]


def branch_steps(name):
    flag, taken_when_set = BRANCH_CONDITIONS[name]
    not_taken = f"!(c->p & {flag})" if taken_when_set else f"(c->p & {flag})"
    return [
        "read_at(pins, c->pc++);",
        f"c->ad = c->pc + static_cast<int8_t>(data(pins)); read_at(pins, c->pc); "
        f"if ({not_taken}) {{ {FETCH} }}",
        # A taken branch within its page cancels this tick's pipeline shift: interrupts wait one more.
        "read_at(pins, (c->pc & 0xFF00) | (c->ad & 0x00FF)); if ((c->ad & 0xFF00) == (c->pc & 0xFF00)) "
        "{ c->pc = c->ad; c->irq_pip >>= 1; c->nmi_pip >>= 1; " + FETCH + " }",
        join("c->pc = c->ad;", FETCH),
    ]


SPECIAL_STEPS = {
    # Reset, NMI and IRQ enter at step 1, after the fetch that dropped their opcode.
    "BRK": [
        "read_at(pins, c->pc);",
        "if (!(c->brk_flags & (cpu65_brk_irq | cpu65_brk_nmi))) { c->pc++; } "
        "push(c, pins, c->pc >> 8); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; }",
        "push(c, pins, c->pc); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; }",
        "push(c, pins, c->p | cpu65_xf); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; } "
        "c->ad = (c->brk_flags & cpu65_brk_reset) ? 0xFFFC : (c->brk_flags & cpu65_brk_nmi) ? 0xFFFA : 0xFFFE;",
        "read_at(pins, c->ad++); c->p |= cpu65_if | cpu65_bf; c->brk_flags = 0;",
        "read_at(pins, c->ad); c->ad = data(pins);",
        "c->pc = (data(pins) << 8) | c->ad; " + FETCH,
    ],
    "JSR": [
        "read_at(pins, c->pc++);",
        "read_at(pins, stack(c)); c->ad = data(pins);",
        "push(c, pins, c->pc >> 8);",
        "push(c, pins, c->pc);",
        "read_at(pins, c->pc);",
        "c->pc = (data(pins) << 8) | c->ad; " + FETCH,
    ],
    "RTI": [
        "read_at(pins, c->pc);",
        "read_at(pins, stack(c)); c->s++;",
        "read_at(pins, stack(c)); c->s++;",
        "read_at(pins, stack(c)); c->s++; c->p = (data(pins) & ~(cpu65_bf | cpu65_xf)) | cpu65_bf;",
        "read_at(pins, stack(c)); c->ad = data(pins);",
        "c->pc = (data(pins) << 8) | c->ad; " + FETCH,
    ],
    "RTS": [
        "read_at(pins, c->pc);",
        "read_at(pins, stack(c)); c->s++;",
        "read_at(pins, stack(c)); c->s++;",
        "read_at(pins, stack(c)); c->ad = data(pins);",
        "c->pc = (data(pins) << 8) | c->ad; read_at(pins, c->pc++);",
        FETCH,
    ],
    "PHA": ["read_at(pins, c->pc);", "push(c, pins, c->a);", FETCH],
    "PHP": ["read_at(pins, c->pc);", "push(c, pins, c->p | cpu65_xf);", FETCH],
    "PLA": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->a = data(pins); nz(c, c->a); " + FETCH],
    "PLP": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->p = (data(pins) & ~(cpu65_bf | cpu65_xf)) | cpu65_bf; " + FETCH],
    "JMP abs": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
    # The high byte of the target comes from the same page as the low byte.
    "JMP ind": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                "c->ad |= data(pins) << 8; read_at(pins, c->ad);",
                "read_at(pins, (c->ad & 0xFF00) | ((c->ad + 1) & 0x00FF)); c->ad = data(pins);",
                "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
    # The step repeats for ever; only a new init ends it.
    "JAM": ["read_at(pins, c->pc);",
            "pins = cpu65_set_data(cpu65_set_addr(pins, 0xFFFF), 0xFF); c->ir--;"],
}


def join(*parts):
    return " ".join(p for p in parts if p)


def decode(op):
    """(mnemonic, mode, kind) of an opcode, from its aaabbbcc bits."""
    aaa, bbb, cc = op >> 5, (op >> 2) & 7, op & 3
    modes01 = ["indx", "zp", "imm", "abs", "indy", "zpx", "absy", "absx"]
    if cc == 1:
        name = ["ORA", "AND", "EOR", "ADC", "STA", "LDA", "CMP", "SBC"][aaa]
        if op == 0x89:
            return "NOP", "imm", "read"
        return name, modes01[bbb], "write" if name == "STA" else "read"
    if cc == 2:
        name = ["ASL", "ROL", "LSR", "ROR", "STX", "LDX", "DEC", "INC"][aaa]
        if bbb == 0:
            if op == 0xA2:
                return "LDX", "imm", "read"
            if op in (0x82, 0xC2, 0xE2):
                return "NOP", "imm", "read"
            return "JAM", "imp", "special"
        if bbb == 2:
            return ["ASL", "ROL", "LSR", "ROR", "TXA", "TAX", "DEX", "NOP"][aaa], \
                "acc" if aaa < 4 else "imp", "implied"
        if bbb == 4:
            return "JAM", "imp", "special"
        if bbb == 6:
            return {0x9A: "TXS", 0xBA: "TSX"}.get(op, "NOP"), "imp", "implied"
        mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
        if name in ("STX", "LDX"):
            mode = mode.replace("x", "y")
        if op == 0x9E:
            return "SHX", "absy", "write"
        kind = {"STX": "write", "LDX": "read"}.get(name, "rmw")
        return name, mode, kind
    if cc == 0:
        if bbb == 4:
            return ["BPL", "BMI", "BVC", "BVS", "BCC", "BCS", "BNE", "BEQ"][aaa], "rel", "branch"
        if bbb == 6:
            return ["CLC", "SEC", "CLI", "SEI", "TYA", "CLV", "CLD", "SED"][aaa], "imp", "implied"
        if bbb == 0:
            if aaa < 4:
                return ["BRK", "JSR", "RTI", "RTS"][aaa], "imp" if aaa != 1 else "abs", "special"
            return ["NOP", "LDY", "CPY", "CPX"][aaa - 4], "imm", "read"
        if bbb == 2:
            name = ["PHP", "PLP", "PHA", "PLA", "DEY", "TAY", "INY", "INX"][aaa]
            return name, "imp", "special" if aaa < 4 else "implied"
        if bbb == 3 and aaa in (2, 3):
            return "JMP", "abs" if aaa == 2 else "ind", "special"
        mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
        name = ["NOP", "BIT", "NOP", "NOP", "STY", "LDY", "CPY", "CPX"][aaa]
        if bbb in (5, 7) and aaa not in (4, 5):
            name = "NOP"
        if op == 0x9C:
            return "SHY", "absx", "write"
        return name, mode, "write" if name == "STY" else "read"
    # cc == 3: the undocumented combinations.
    name = ["SLO", "RLA", "SRE", "RRA", "SAX", "LAX", "DCP", "ISB"][aaa]
    if bbb == 2:
        return ["ANC", "ANC", "ASR", "ARR", "ANE", "LXA", "SBX", "SBC"][aaa], "imm", "read"
    special = {0x93: ("SHA", "indy", "write"), 0x9B: ("SHS", "absy", "write"),
               0x9F: ("SHA", "absy", "write"), 0xBB: ("LAS", "absy", "read")}
    if op in special:
        return special[op]
    mode = modes01[bbb]
    if name == "SAX":
        return name, mode.replace("x", "y") if bbb == 5 else mode, "write"
    if name == "LAX":
        return name, {5: "zpy", 7: "absy"}.get(bbb, mode), "read"
    return name, mode, "rmw"


def steps_of(op):
    name, mode, kind = decode(op)
    if kind == "read":
        return read_steps(name, mode)
    if kind == "write":
        return write_steps(name, mode)
    if kind == "rmw":
        return rmw_steps(name, mode)
    if kind == "implied":
        return implied_steps(name)
    if kind == "branch":
        return branch_steps(name)
    if name == "JMP":
        return SPECIAL_STEPS[f"JMP {mode}"]
    return SPECIAL_STEPS[name]


def generate():
    lines = [
        "// Generated by gen/m6502_gen.py: the steps of every opcode, one case per bus cycle.",
        "// Edit the generator, not this file; a unit test checks that the two agree.",
        "// clang-format off",
    ]
    for op in range(256):
        name, mode, _ = decode(op)
        steps = steps_of(op)
        assert 1 <= len(steps) <= 8, (hex(op), len(steps))
        syntax = MODE_SYNTAX[mode]
        lines.append(f"    // {op:02X} {name}{' ' + syntax if syntax else ''}")
        for step, code in enumerate(steps):
            lines.append(f"    case 0x{(op << 3) | step:03X}: {code} break;")
    lines.append("// clang-format on")
    return "\n".join(lines) + "\n"


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: m6502_gen.py OUTPUT")
    with open(sys.argv[1], "w", encoding="ascii", newline="\n") as out:
        out.write(generate())


if __name__ == "__main__":
    main()
