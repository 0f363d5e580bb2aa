#!/usr/bin/env python3
"""Writes the step table of the 65C02 core (w65c02_steps.inc): the shapes both cores share come from
../../gen/cpu65_gen.py, and this file adds the CMOS opcode map, its indexed modes and (zp), the
extra decimal cycle of ADC and SBC, the read in the middle of read-modify-write, the vector pull of
BRK, and the instructions the NMOS chip doesn't have. A step left out (None) has no case: the tick
takes the default path and the cycle only waits.

Usage: w65c02_gen.py OUTPUT
"""

import os
import sys

# The shared module is imported from the source tree; it leaves no bytecode there.
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "gen"))

from cpu65_gen import (BRANCH_CONDITIONS, BRK_ENTRY, FETCH, GROUP01, IMPLIED_OPS,  # noqa: E402
                       MODE_SYNTAX, RMW_OPS, SPECIAL_STEPS, WRITE_OPS, StepTable, fields, join,
                       pull_steps, push_steps)

# ADC and SBC with D set take one more cycle, which puts N and Z right from the decimal result.
DECIMAL_OPS = ("ADC", "SBC")


class W65C02Steps(StepTable):
    core = "w65c02"
    read_ops = {
        **StepTable.common_read_ops("w65c02"),
        "BIT imm": "set_flag(c, cpu65_zf, (c->a & data(pins)) == 0);",
    }
    write_ops = {**WRITE_OPS, "STZ": "write_at(pins, {addr}, 0);"}
    rmw_ops = {
        **RMW_OPS,
        "TSB": "test_bits(c, c->ad); c->ad |= c->a;",
        "TRB": "test_bits(c, c->ad); c->ad &= ~c->a;",
        **{f"RMB{n}": f"c->ad &= ~0x{1 << n:02X};" for n in range(8)},
        **{f"SMB{n}": f"c->ad |= 0x{1 << n:02X};" for n in range(8)},
    }
    implied_ops = {**IMPLIED_OPS, "INC": "c->a = inc(c, c->a);", "DEC": "c->a = dec(c, c->a);"}
    branch_conditions = {**BRANCH_CONDITIONS, "BRA": None}
    mode_syntax = {**MODE_SYNTAX, "zpi": "(zp)", "absxi": "(abs,X)", "zprel": "zp,rel"}
    # The middle cycle reads the same address again.
    rmw_middle = "c->ad = data(pins);"
    special_steps = {
        **SPECIAL_STEPS,
        "BRK": BRK_ENTRY + [
            "read_at(pins, c->ad++); c->p = (c->p | cpu65_if | cpu65_bf) & ~cpu65_df; pins |= w65c02_pin_vp;",
            "read_at(pins, c->ad); c->ad = data(pins); pins |= w65c02_pin_vp;",
            "c->pc = (data(pins) << 8) | c->ad; c->brk_flags = 0; pins &= ~w65c02_pin_vp; " + FETCH,
        ],
        "PHX": push_steps("c->x"),
        "PHY": push_steps("c->y"),
        "PLX": pull_steps("c->x = data(pins); nz(c, c->x);"),
        "PLY": pull_steps("c->y = data(pins); nz(c, c->y);"),
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

    def indexed_steps(self, mode, kind):
        """Reads (and the shifts, "rmw-skip") of the indexed absolute forms skip their fix-up cycle when
        no page is crossed, and on a crossing read the last operand byte again; stores and INC, DEC
        keep the fix-up read at the half-carried address."""
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

    def read_end(self, name, op):
        if name in DECIMAL_OPS:
            return [join(op, f"if (c->p & cpu65_df) {{ read_at(pins, c->pc); }} else {{ {FETCH} }}"),
                    join("nz(c, c->a);", FETCH)]
        return [join(op, FETCH)]

    def rmw_kind(self, name):
        # The shifts skip the fix-up cycle of absolute,X when no page is crossed; INC and DEC never do.
        return "rmw-skip" if name in ("ASL", "ROL", "LSR", "ROR") else "rmw"

    def bit_branch_steps(self, bit, taken_when_set):
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

    def steps_of(self, op):
        name, mode, kind = self.decode(op)
        if kind == "bitbranch":
            return self.bit_branch_steps(int(name[3]), name.startswith("BBS"))
        return super().steps_of(op)

    def comment(self, op):
        name, mode, _ = self.decode(op)
        syntax = self.mode_syntax[mode] if name != "NOP 5C" else "abs"
        label = name.split()[0].replace("NOP1", "NOP")
        return f"// {op:02X} {label}{' ' + syntax if syntax else ''}"

    def decode(self, op):
        """(mnemonic, mode, kind) of an opcode, from its aaabbbcc bits."""
        own = {0x89: ("BIT imm", "imm", "read"), 0xA2: ("LDX", "imm", "read"), 0x9E: ("STZ", "absx", "write"),
               0x80: ("BRA", "rel", "branch"), 0x7C: ("JMP", "absxi", "special"),
               0x5C: ("NOP 5C", "abs", "special"), 0xCB: ("WAI", "imp", "special"),
               0xDB: ("STP", "imp", "special")}
        if op in own:
            return own[op]
        shared = self.decode_shared(op)
        if shared is not None:
            return shared
        aaa, bbb, cc = fields(op)
        if cc == 2:
            if bbb == 0:
                return "NOP", "imm", "read"
            if bbb == 4:
                name = GROUP01[aaa]
                return name, "zpi", "write" if name == "STA" else "read"
            name = ["INC", "DEC", "PHY", "PLY", "TXS", "TSX", "PHX", "PLX"][aaa]  # bbb = 110
            if aaa < 2:
                return name, "acc", "implied"
            return name, "imp", "implied" if name in ("TXS", "TSX") else "special"
        if cc == 0:
            if bbb == 0:
                return ["LDY", "CPY", "CPX"][aaa - 5], "imm", "read"
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
        return "NOP1", "imp", "special"


if __name__ == "__main__":
    W65C02Steps().main()
