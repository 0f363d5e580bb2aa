"""What the generators of the two step tables share: the operations, the addressing steps and the
instruction shapes that the NMOS and the CMOS core run alike, and the writing of the table.

A core's generator derives from StepTable and overrides what differs: its opcode map (decode), the
indexed addressing modes, the end of a read and the middle cycle of a read-modify-write, and its own
special instructions.

Each opcode becomes up to eight cases of the switch in the core's tick, one per bus cycle. Step 0
runs in the tick that fetches the opcode. A step sets the pins of the next cycle; it reads the data
pins to get what the cycle before fetched. "fetch" ends an instruction: address = pc with SYNC set.
A step left out (None) has no case.
"""

import sys

FETCH = "fetch(c, pins);"


def join(*parts):
    return " ".join(p for p in parts if p)


# Stores: {addr} is the effective address.
WRITE_OPS = {
    "STA": "write_at(pins, {addr}, c->a);",
    "STX": "write_at(pins, {addr}, c->x);",
    "STY": "write_at(pins, {addr}, c->y);",
}

# Read-modify-write: the operation works on c->ad, which then goes out as the new value.
RMW_OPS = {
    "ASL": "c->ad = asl(c, c->ad);",
    "ROL": "c->ad = rol(c, c->ad);",
    "LSR": "c->ad = lsr(c, c->ad);",
    "ROR": "c->ad = ror(c, c->ad);",
    "DEC": "c->ad = dec(c, c->ad);",
    "INC": "c->ad = inc(c, c->ad);",
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

# Flag tested by each branch, and whether the branch is taken when that flag is set; None: always.
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

# The regular part of the opcode map, aaabbbcc in bits: group cc = 01 and cc = 10 by aaa, the modes
# of group 01 by bbb, and rows of group 00 by aaa.
GROUP01 = ["ORA", "AND", "EOR", "ADC", "STA", "LDA", "CMP", "SBC"]
GROUP10 = ["ASL", "ROL", "LSR", "ROR", "STX", "LDX", "DEC", "INC"]
MODES01 = ["indx", "zp", "imm", "abs", "indy", "zpx", "absy", "absx"]
ACCUMULATOR_ROW = ["ASL", "ROL", "LSR", "ROR", "TXA", "TAX", "DEX", "NOP"]  # cc = 10, bbb = 010
BRANCH_ROW = ["BPL", "BMI", "BVC", "BVS", "BCC", "BCS", "BNE", "BEQ"]  # cc = 00, bbb = 100
FLAG_ROW = ["CLC", "SEC", "CLI", "SEI", "TYA", "CLV", "CLD", "SED"]  # cc = 00, bbb = 110
STACK_ROW = ["PHP", "PLP", "PHA", "PLA", "DEY", "TAY", "INY", "INX"]  # cc = 00, bbb = 010


def fields(op):
    """aaa, bbb and cc of an opcode."""
    return op >> 5, (op >> 2) & 7, op & 3


# The first steps of BRK: reset, NMI and IRQ enter at step 1, after the fetch that dropped their
# opcode, and a reset reads where the others push. What reads the vector is the core's own.
BRK_ENTRY = [
    "read_at(pins, c->pc);",
    "if (!(c->brk_flags & (cpu65_brk_irq | cpu65_brk_nmi))) { c->pc++; } "
    "push(c, pins, c->pc >> 8); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; }",
    "push(c, pins, c->pc); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; }",
    "push(c, pins, c->p | cpu65_xf); if (c->brk_flags & cpu65_brk_reset) { pins |= cpu65_pin_rw; } "
    "c->ad = (c->brk_flags & cpu65_brk_reset) ? 0xFFFC : (c->brk_flags & cpu65_brk_nmi) ? 0xFFFA : 0xFFFE;",
]


def push_steps(value):
    return ["read_at(pins, c->pc);", f"push(c, pins, {value});", FETCH]


def pull_steps(operation):
    return ["read_at(pins, c->pc);", "read_at(pins, stack(c)); c->s++;", "read_at(pins, stack(c));",
            join(operation, FETCH)]


SPECIAL_STEPS = {
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
    "PHA": push_steps("c->a"),
    "PHP": push_steps("c->p | cpu65_xf"),
    "PLA": pull_steps("c->a = data(pins); nz(c, c->a);"),
    "PLP": pull_steps("c->p = (data(pins) & ~(cpu65_bf | cpu65_xf)) | cpu65_bf;"),
    "JMP abs": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
}


class StepTable:
    """The step table of one core. Subclasses set the tables and override the hooks."""

    core = ""  # the prefix of the core's functions, such as "m6502"
    read_ops = {}
    write_ops = WRITE_OPS
    rmw_ops = RMW_OPS
    implied_ops = IMPLIED_OPS
    branch_conditions = BRANCH_CONDITIONS
    mode_syntax = MODE_SYNTAX
    special_steps = SPECIAL_STEPS
    # The middle cycle of a read-modify-write, after the read of the old value.
    rmw_middle = ""

    @classmethod
    def common_read_ops(cls, core):
        """Operations on the byte the last read brought in, carried out in parallel with the next
        fetch."""
        return {
            "ORA": "c->a |= data(pins); nz(c, c->a);",
            "AND": "c->a &= data(pins); nz(c, c->a);",
            "EOR": "c->a ^= data(pins); nz(c, c->a);",
            "ADC": f"_{core}_adc(c, data(pins));",
            "LDA": "c->a = data(pins); nz(c, c->a);",
            "CMP": "cmp(c, c->a, data(pins));",
            "SBC": f"_{core}_sbc(c, data(pins));",
            "LDX": "c->x = data(pins); nz(c, c->x);",
            "LDY": "c->y = data(pins); nz(c, c->y);",
            "CPX": "cmp(c, c->x, data(pins));",
            "CPY": "cmp(c, c->y, data(pins));",
            "BIT": "bit(c, data(pins));",
            "NOP": "",
        }

    def decode(self, op):
        """(mnemonic, mode, kind) of an opcode."""
        raise NotImplementedError

    @staticmethod
    def decode_shared(op):
        """(mnemonic, mode, kind) of an opcode in the rows that both maps agree on, None elsewhere. A
        core's decode settles its own exceptions in these rows before it asks."""
        aaa, bbb, cc = fields(op)
        if cc == 1:
            name = GROUP01[aaa]
            return name, MODES01[bbb], "write" if name == "STA" else "read"
        if cc == 2 and bbb == 2:
            return ACCUMULATOR_ROW[aaa], "acc" if aaa < 4 else "imp", "implied"
        if cc == 2 and bbb in (1, 3, 5, 7):
            name = GROUP10[aaa]
            mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
            if name in ("STX", "LDX"):
                mode = mode.replace("x", "y")
            return name, mode, {"STX": "write", "LDX": "read"}.get(name, "rmw")
        if cc != 0:
            return None
        if bbb == 4:
            return BRANCH_ROW[aaa], "rel", "branch"
        if bbb == 6:
            return FLAG_ROW[aaa], "imp", "implied"
        if bbb == 0 and aaa < 4:
            return ["BRK", "JSR", "RTI", "RTS"][aaa], "imp" if aaa != 1 else "abs", "special"
        if bbb == 2:
            return STACK_ROW[aaa], "imp", "special" if aaa < 4 else "implied"
        if bbb == 3 and aaa in (2, 3):
            return "JMP", "abs" if aaa == 2 else "ind", "special"
        return None

    def indexed_steps(self, mode, kind):
        """Steps and operand address of absolute,X and Y and of (indirect),Y."""
        raise NotImplementedError

    def address_steps(self, mode, kind):
        """Steps before the operand access, and the expression of the operand's address. The access
        itself happens in the step after the returned list."""
        if mode == "zp":
            return ["read_at(pins, c->pc++);"], "data(pins)"
        if mode in ("zpx", "zpy"):
            index = mode[-1]
            return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->ad);"], \
                f"(c->ad + c->{index}) & 0xFF"
        if mode == "abs":
            return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);"], \
                "(data(pins) << 8) | c->ad"
        if mode == "indx":
            return ["read_at(pins, c->pc++);",
                    "c->ad = data(pins); read_at(pins, c->ad);",
                    "c->ad = (c->ad + c->x) & 0xFF; read_at(pins, c->ad);",
                    "read_at(pins, (c->ad + 1) & 0xFF); c->ad = data(pins);"], \
                "(data(pins) << 8) | c->ad"
        return self.indexed_steps(mode, kind)

    def read_end(self, name, op):
        """The last steps of a read: the operation, and the fetch."""
        return [join(op, FETCH)]

    def read_steps(self, name, mode):
        op = self.read_ops[name]
        if mode == "imm":
            return ["read_at(pins, c->pc++);"] + self.read_end(name, op)
        pre, addr = self.address_steps(mode, "read")
        return pre + [f"read_at(pins, {addr});"] + self.read_end(name, op)

    def write_steps(self, name, mode):
        pre, addr = self.address_steps(mode, "write")
        return pre + [self.write_ops[name].format(addr=addr), FETCH]

    def rmw_kind(self, name):
        return "rmw"

    def rmw_steps(self, name, mode):
        pre, addr = self.address_steps(mode, self.rmw_kind(name))
        return pre + [f"read_at(pins, {addr});",
                      self.rmw_middle,
                      join(self.rmw_ops[name], "write_data(pins, c->ad);"),
                      FETCH]

    def implied_steps(self, name):
        return ["read_at(pins, c->pc);", join(self.implied_ops[name], FETCH)]

    def branch_taken_in_page(self):
        """What step 2 of a taken branch does when it stays in its page, besides the fetch."""
        return "c->pc = c->ad;"

    def branch_steps(self, name):
        step1 = "c->ad = c->pc + static_cast<int8_t>(data(pins)); read_at(pins, c->pc);"
        condition = self.branch_conditions[name]
        if condition is not None:
            flag, taken_when_set = condition
            not_taken = f"!(c->p & {flag})" if taken_when_set else f"(c->p & {flag})"
            step1 += f" if ({not_taken}) {{ {FETCH} }}"
        return [
            "read_at(pins, c->pc++);",
            step1,
            "read_at(pins, (c->pc & 0xFF00) | (c->ad & 0x00FF)); if ((c->ad & 0xFF00) == (c->pc & 0xFF00)) "
            "{ " + join(self.branch_taken_in_page(), FETCH) + " }",
            join("c->pc = c->ad;", FETCH),
        ]

    def steps_of(self, op):
        name, mode, kind = self.decode(op)
        if kind == "read":
            return self.read_steps(name, mode)
        if kind == "write":
            return self.write_steps(name, mode)
        if kind == "rmw":
            return self.rmw_steps(name, mode)
        if kind == "implied":
            return self.implied_steps(name)
        if kind == "branch":
            return self.branch_steps(name)
        if name == "JMP":
            return self.special_steps[f"JMP {mode}"]
        return self.special_steps[name]

    def comment(self, op):
        """The comment over an opcode's cases: its number, mnemonic and addressing syntax."""
        name, mode, _ = self.decode(op)
        syntax = self.mode_syntax[mode]
        return f"// {op:02X} {name}{' ' + syntax if syntax else ''}"

    def generate(self):
        lines = [
            f"// Generated by gen/{self.core}_gen.py: the steps of every opcode, one case per bus cycle.",
            "// Edit the generator, not this file; a unit test checks that the two agree.",
            "// clang-format off",
        ]
        for op in range(256):
            steps = self.steps_of(op)
            assert 1 <= len(steps) <= 8, (hex(op), len(steps))
            lines.append("    " + self.comment(op))
            for step, code in enumerate(steps):
                if code is not None:
                    lines.append(f"    case 0x{(op << 3) | step:03X}: {code} break;")
        lines.append("// clang-format on")
        return "\n".join(lines) + "\n"

    def main(self):
        if len(sys.argv) != 2:
            sys.exit(f"usage: {self.core}_gen.py OUTPUT")
        with open(sys.argv[1], "w", encoding="ascii", newline="\n") as out:
            out.write(self.generate())
