#!/usr/bin/env python3
"""Writes the step table of the 65C02 core (w65c02_steps.inc) from addressing modes and operations.

Usage: w65c02_gen.py OUTPUT

Each opcode becomes up to eight cases of the switch in w65c02_tick, one per bus cycle. Step 0 runs in
the tick that fetches the opcode. A step sets the pins of the next cycle; it reads the data pins to get
what the cycle before fetched. "fetch" ends an instruction: address = pc with SYNC set. A step left
out (None) has no case: the tick takes the default path and the cycle only waits.
"""

import sys

FETCH = "fetch(c, pins);"

# Operations on the byte the last read brought in, carried out in parallel with the next fetch.
READ_OPS = {
    "ORA": "c->a |= data(pins); nz(c, c->a);",
    "AND": "c->a &= data(pins); nz(c, c->a);",
    "EOR": "c->a ^= data(pins); nz(c, c->a);",
    "ADC": "_w65c02_adc(c, data(pins));",
    "LDA": "c->a = data(pins); nz(c, c->a);",
    "CMP": "cmp(c, c->a, data(pins));",
    "SBC": "_w65c02_sbc(c, data(pins));",
    "LDX": "c->x = data(pins); nz(c, c->x);",
    "LDY": "c->y = data(pins); nz(c, c->y);",
    "CPX": "cmp(c, c->x, data(pins));",
    "CPY": "cmp(c, c->y, data(pins));",
    "BIT": "bit(c, data(pins));",
    "BIT imm": "set_flag(c, cpu65_zf, (c->a & data(pins)) == 0);",
    "NOP": "",
}

# ADC and SBC with D set take one more cycle, which puts N and Z right from the decimal result.
DECIMAL_OPS = ("ADC", "SBC")

# Stores: {addr} is the effective address.
WRITE_OPS = {
    "STA": "write_at(pins, {addr}, c->a);",
    "STX": "write_at(pins, {addr}, c->x);",
    "STY": "write_at(pins, {addr}, c->y);",
    "STZ": "write_at(pins, {addr}, 0);",
}

# Read-modify-write: the operation works on c->ad, which then goes out as the new value.
RMW_OPS = {
    "ASL": "c->ad = asl(c, c->ad);",
    "ROL": "c->ad = rol(c, c->ad);",
    "LSR": "c->ad = lsr(c, c->ad);",
    "ROR": "c->ad = ror(c, c->ad);",
    "DEC": "c->ad = dec(c, c->ad);",
    "INC": "c->ad = inc(c, c->ad);",
    "TSB": "test_bits(c, c->ad); c->ad |= c->a;",
    "TRB": "test_bits(c, c->ad); c->ad &= ~c->a;",
}
for _n in range(8):
    RMW_OPS[f"RMB{_n}"] = f"c->ad &= ~0x{1 << _n:02X};"
    RMW_OPS[f"SMB{_n}"] = f"c->ad |= 0x{1 << _n:02X};"

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
    "INC": "c->a = inc(c, c->a);",
    "DEC": "c->a = dec(c, c->a);",
}

# Condition under which each branch is taken.
BRANCH_CONDITIONS = {
    "BPL": "!(c->p & cpu65_nf)",
    "BMI": "(c->p & cpu65_nf)",
    "BVC": "!(c->p & cpu65_vf)",
    "BVS": "(c->p & cpu65_vf)",
    "BCC": "!(c->p & cpu65_cf)",
    "BCS": "(c->p & cpu65_cf)",
    "BNE": "!(c->p & cpu65_zf)",
    "BEQ": "(c->p & cpu65_zf)",
    "BRA": "true",
}

MODE_SYNTAX = {
    "imp": "", "acc": "A", "imm": "#", "zp": "zp", "zpx": "zp,X", "zpy": "zp,Y", "abs": "abs",
    "absx": "abs,X", "absy": "abs,Y", "indx": "(zp,X)", "indy": "(zp),Y", "zpi": "(zp)", "rel": "rel",
    "ind": "(abs)", "absxi": "(abs,X)", "zprel": "zp,rel",
}


def address_steps(mode, kind):
    """Steps before the operand access, and the expression of the operand's address.

    The access itself happens in the step after the returned list. Reads (and the shifts, "rmw-skip")
    of the indexed absolute forms skip their fix-up cycle when no page is crossed, and on a crossing
    read the last operand byte again; stores and INC, DEC keep the fix-up read at the half-carried
    address.
    """
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
        if kind in ("read", "rmw-skip"):
            # pc moves on a step late, so that the extra cycle of a crossing reads at it again.
            return ["read_at(pins, c->pc++);",
                    "c->ad = data(pins); read_at(pins, c->pc);",
                    f"c->ad |= data(pins) << 8; c->pc++; if (((c->ad & 0xFF) + c->{index}) <= 0xFF) "
                    f"{{ read_at(pins, c->ad + c->{index}); c->ir++; }}"], \
                f"c->ad + c->{index}"
        return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                f"c->ad |= data(pins) << 8; read_at(pins, (c->ad & 0xFF00) | ((c->ad + c->{index}) & 0xFF));"], \
            f"c->ad + c->{index}"
    if mode == "indx":
        return ["read_at(pins, c->pc++);",
                "c->ad = data(pins); read_at(pins, c->ad);",
                "c->ad = (c->ad + c->x) & 0xFF; read_at(pins, c->ad);",
                "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins);"], \
            "(data(pins) << 8) | c->ad"
    if mode == "indy":
        # Y is added to the low byte as it arrives; a crossing reads the pointer's high byte again.
        fixup = "c->ad += data(pins) << 8;"
        if kind == "read":
            fixup = "if (c->ad <= 0xFF) { c->ir++; read_at(pins, c->ad + (data(pins) << 8)); } " + fixup
        return ["read_at(pins, c->pc++);",
                "c->ad = data(pins); read_at(pins, c->ad);",
                "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins) + c->y;",
                fixup], \
            "c->ad"
    if mode == "zpi":
        return ["read_at(pins, c->pc++);",
                "c->ad = data(pins); read_at(pins, c->ad);",
                "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins);"], \
            "(data(pins) << 8) | c->ad"
    raise ValueError(f"no address steps for mode {mode}")


def read_steps(name, mode):
    op = READ_OPS[name]
    if mode == "imm":
        pre = ["read_at(pins, c->pc++);"]
    else:
        pre, addr = address_steps(mode, "read")
        pre = pre + [f"read_at(pins, {addr});"]
    if name in DECIMAL_OPS:
        return pre + [join(op, f"if (c->p & cpu65_df) {{ read_at(pins, c->pc); }} else {{ {FETCH} }}"),
                      join("nz(c, c->a);", FETCH)]
    return pre + [join(op, FETCH)]


def write_steps(name, mode):
    pre, addr = address_steps(mode, "write")
    return pre + [WRITE_OPS[name].format(addr=addr), FETCH]


def rmw_steps(name, mode):
    # The shifts skip the fix-up cycle of absolute,X when no page is crossed; INC and DEC never do.
    kind = "rmw-skip" if name in ("ASL", "ROL", "LSR", "ROR") else "rmw"
    pre, addr = address_steps(mode, kind)
    return pre + [f"read_at(pins, {addr});",
                  "c->ad = data(pins);",  # the middle cycle reads the same address again
                  join(RMW_OPS[name], "write_data(pins, c->ad);"),
                  FETCH]


def implied_steps(name):
    return ["read_at(pins, c->pc);", join(IMPLIED_OPS[name], FETCH)]


def branch_steps(name):
    cond = BRANCH_CONDITIONS[name]
    if cond == "true":
        step1 = "c->ad = c->pc + static_cast<int8_t>(data(pins)); read_at(pins, c->pc);"
    else:
        step1 = (f"c->ad = c->pc + static_cast<int8_t>(data(pins)); read_at(pins, c->pc); "
                 f"if (!{cond}) {{ {FETCH} }}")
    return [
        "read_at(pins, c->pc++);",
        step1,
        "read_at(pins, (c->pc & 0xFF00) | (c->ad & 0x00FF)); if ((c->ad & 0xFF00) == (c->pc & 0xFF00)) "
        "{ c->pc = c->ad; " + FETCH + " }",
        join("c->pc = c->ad;", FETCH),
    ]


def bit_branch_steps(bit, taken_when_set):
    test = f"(c->ad & 0x{1 << bit:02X})"
    not_taken = f"!{test}" if taken_when_set else test
    return [
        "read_at(pins, c->pc++);",
        "read_at(pins, data(pins));",
        "c->ad = data(pins);",  # the same read again
        "read_at(pins, c->pc++);",
        f"if ({not_taken}) {{ {FETCH} }} else {{ c->ad = c->pc + static_cast<int8_t>(data(pins)); "
        "read_at(pins, c->pc++); }",
        "if ((c->ad & 0xFF00) == (c->pc & 0xFF00)) { c->pc = c->ad; " + FETCH + " }",
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
        "read_at(pins, c->ad++); c->p = (c->p | cpu65_if | cpu65_bf) & ~cpu65_df; pins |= w65c02_pin_vp;",
        "read_at(pins, c->ad); c->ad = data(pins); pins |= w65c02_pin_vp;",
        "c->pc = (data(pins) << 8) | c->ad; c->brk_flags = 0; pins &= ~w65c02_pin_vp; " + FETCH,
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
    "PHX": ["read_at(pins, c->pc);", "push(c, pins, c->x);", FETCH],
    "PHY": ["read_at(pins, c->pc);", "push(c, pins, c->y);", FETCH],
    "PHP": ["read_at(pins, c->pc);", "push(c, pins, c->p | cpu65_xf);", FETCH],
    "PLA": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->a = data(pins); nz(c, c->a); " + FETCH],
    "PLX": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->x = data(pins); nz(c, c->x); " + FETCH],
    "PLY": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->y = data(pins); nz(c, c->y); " + FETCH],
    "PLP": ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            "c->p = (data(pins) & ~(cpu65_bf | cpu65_xf)) | cpu65_bf; " + FETCH],
    "JMP abs": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
    # The high byte of the target comes from the true next address, a page crossing included.
    "JMP ind": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc);",
                "c->ad |= data(pins) << 8; read_at(pins, c->pc++);",
                "read_at(pins, c->ad);",
                "read_at(pins, c->ad + 1); c->ad = data(pins);",
                "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
    "JMP absxi": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc);",
                  "c->ad = (c->ad | (data(pins) << 8)) + c->x; read_at(pins, c->pc++);",
                  "read_at(pins, c->ad);",
                  "read_at(pins, c->ad + 1); c->ad = data(pins);",
                  "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
    # Parks the core: RDY goes out with the pins and holds it at the head of the tick.
    "WAI": ["if (!(pins & (cpu65_pin_irq | cpu65_pin_nmi))) { c->waiting = 1; pins |= cpu65_pin_rdy; } "
            "read_at(pins, c->pc);",
            None,
            FETCH],
    "STP": ["c->stopped = 1; read_at(pins, c->pc);"],
    "NOP1": [FETCH],
    "NOP 5C": ["read_at(pins, c->pc++);", "read_at(pins, c->pc++); c->ad = 0xFF00 | data(pins);",
               "read_at(pins, c->ad);", "read_at(pins, 0xFFFF);", None, None, None, FETCH],
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
            return "BIT imm", "imm", "read"
        return name, modes01[bbb], "write" if name == "STA" else "read"
    if cc == 2:
        name = ["ASL", "ROL", "LSR", "ROR", "STX", "LDX", "DEC", "INC"][aaa]
        if bbb == 0:
            if op == 0xA2:
                return "LDX", "imm", "read"
            return "NOP", "imm", "read"
        if bbb == 2:
            return ["ASL", "ROL", "LSR", "ROR", "TXA", "TAX", "DEX", "NOP"][aaa], \
                "acc" if aaa < 4 else "imp", "implied"
        if bbb == 4:
            name = ["ORA", "AND", "EOR", "ADC", "STA", "LDA", "CMP", "SBC"][aaa]
            return name, "zpi", "write" if name == "STA" else "read"
        if bbb == 6:
            name = ["INC", "DEC", "PHY", "PLY", "TXS", "TSX", "PHX", "PLX"][aaa]
            if aaa < 2:
                return name, "acc", "implied"
            return name, "imp", "implied" if name in ("TXS", "TSX") else "special"
        mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
        if op == 0x9E:
            return "STZ", "absx", "write"
        if name in ("STX", "LDX"):
            mode = mode.replace("x", "y")
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
            if aaa == 4:
                return "BRA", "rel", "branch"
            return ["LDY", "CPY", "CPX"][aaa - 5], "imm", "read"
        if bbb == 2:
            name = ["PHP", "PLP", "PHA", "PLA", "DEY", "TAY", "INY", "INX"][aaa]
            return name, "imp", "special" if aaa < 4 else "implied"
        if bbb == 3 and aaa in (2, 3):
            return "JMP", "abs" if aaa == 2 else "ind", "special"
        if op == 0x7C:
            return "JMP", "absxi", "special"
        if op == 0x5C:
            return "NOP 5C", "abs", "special"
        mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
        names = {1: ["TSB", "BIT", "NOP", "STZ", "STY", "LDY", "CPY", "CPX"],
                 3: ["TSB", "BIT", None, None, "STY", "LDY", "CPY", "CPX"],
                 5: ["TRB", "BIT", "NOP", "STZ", "STY", "LDY", "NOP", "NOP"],
                 7: ["TRB", "BIT", None, None, "STZ", "LDY", "NOP", "NOP"]}
        name = names[bbb][aaa]
        if bbb == 7 and name == "STZ":
            mode = "abs"  # 0x9C: STZ absolute
        if name == "NOP" and bbb == 7:
            mode = "abs"  # 0xDC, 0xFC: 3 bytes, 4 cycles, no index
        if name in ("TSB", "TRB"):
            return name, "zp" if bbb in (1, 5) else "abs", "rmw"
        return name, mode, "write" if name in ("STY", "STZ") else "read"
    # cc == 3: the bit operations, WAI, STP, and one-cycle NOPs.
    n = (op >> 4) & 7  # bit number
    setting = op >= 0x80
    if bbb in (1, 5):
        return f"{'SMB' if setting else 'RMB'}{n}", "zp", "rmw"
    if bbb in (3, 7):
        return f"{'BBS' if setting else 'BBR'}{n}", "zprel", "bitbranch"
    if op == 0xCB:
        return "WAI", "imp", "special"
    if op == 0xDB:
        return "STP", "imp", "special"
    return "NOP1", "imp", "special"


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
    if kind == "bitbranch":
        return bit_branch_steps(int(name[3]), name.startswith("BBS"))
    if name == "JMP":
        return SPECIAL_STEPS[f"JMP {mode}"]
    return SPECIAL_STEPS[name]


def generate():
    lines = [
        "// Generated by gen/w65c02_gen.py: the steps of every opcode, one case per bus cycle.",
        "// Edit the generator, not this file; a unit test checks that the two agree.",
        "// clang-format off",
    ]
    for op in range(256):
        name, mode, _ = decode(op)
        steps = steps_of(op)
        assert 1 <= len(steps) <= 8, (hex(op), len(steps))
        syntax = MODE_SYNTAX[mode] if name != "NOP 5C" else "abs"
        label = name.split()[0].replace("NOP1", "NOP")
        lines.append(f"    // {op:02X} {label}{' ' + syntax if syntax else ''}")
        for step, code in enumerate(steps):
            if code is not None:
                lines.append(f"    case 0x{(op << 3) | step:03X}: {code} break;")
    lines.append("// clang-format on")
    return "\n".join(lines) + "\n"


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: w65c02_gen.py OUTPUT")
    with open(sys.argv[1], "w", encoding="ascii", newline="\n") as out:
        out.write(generate())


if __name__ == "__main__":
    main()
