#!/usr/bin/env python3
"""Writes the step table of the 6502 core (m6502_steps.inc): the shapes both cores share come from
../../gen/cpu65_gen.py, and this file adds the NMOS opcode map, its indexed modes, the dummy write of
read-modify-write, JMP indirect with its page bug, and the undocumented instructions.

Usage: m6502_gen.py OUTPUT
"""

import os
import sys

# The shared module is imported from the source tree; it leaves no bytecode there.
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "gen"))

from cpu65_gen import (BRK_ENTRY, FETCH, MODES01, RMW_OPS, SPECIAL_STEPS, WRITE_OPS, StepTable,  # noqa: E402
                       fields)


def skip_unless_crossing(index):
    return f"if (((c->ad & 0xFF) + c->{index}) <= 0xFF) {{ c->ir++; }}"


class M6502Steps(StepTable):
    core = "m6502"
    read_ops = {
        **StepTable.common_read_ops("m6502"),
        "LAX": "c->a = c->x = data(pins); nz(c, c->a);",
        "LAS": "c->a = c->x = c->s = data(pins) & c->s; nz(c, c->a);",
        "ANC": "c->a &= data(pins); nz(c, c->a); set_flag(c, cpu65_cf, c->a & 0x80);",
        "ASR": "c->a &= data(pins); c->a = lsr(c, c->a);",
        "ARR": "arr(c, data(pins));",
        "ANE": "c->a = (c->a | 0xEE) & c->x & data(pins); nz(c, c->a);",
        "LXA": "c->a = c->x = (c->a | 0xEE) & data(pins); nz(c, c->a);",
        "SBX": "sbx(c, data(pins));",
    }
    # The SH* stores mix the high byte of the address + 1 into the value.
    write_ops = {
        **WRITE_OPS,
        "SAX": "write_at(pins, {addr}, c->a & c->x);",
        "SHA": "c->ad = {addr}; write_at(pins, c->ad, c->a & c->x & ((c->ad >> 8) + 1));",
        "SHS": "c->ad = {addr}; c->s = c->a & c->x; write_at(pins, c->ad, c->s & ((c->ad >> 8) + 1));",
        "SHY": "c->ad = {addr}; write_at(pins, c->ad, c->y & ((c->ad >> 8) + 1));",
        "SHX": "c->ad = {addr}; write_at(pins, c->ad, c->x & ((c->ad >> 8) + 1));",
    }
    rmw_ops = {
        **RMW_OPS,
        "SLO": "c->ad = asl(c, c->ad); c->a |= c->ad; nz(c, c->a);",
        "RLA": "c->ad = rol(c, c->ad); c->a &= c->ad; nz(c, c->a);",
        "SRE": "c->ad = lsr(c, c->ad); c->a ^= c->ad; nz(c, c->a);",
        "RRA": "c->ad = ror(c, c->ad); _m6502_adc(c, c->ad);",
        "DCP": "c->ad--; cmp(c, c->a, c->ad);",
        "ISB": "c->ad++; _m6502_sbc(c, c->ad);",
    }
    # The memory sees the old value written back before the new one.
    rmw_middle = "c->ad = data(pins); write_data(pins, c->ad);"
    special_steps = {
        **SPECIAL_STEPS,
        "BRK": BRK_ENTRY + [
            "read_at(pins, c->ad++); c->p |= cpu65_if | cpu65_bf; c->brk_flags = 0;",
            "read_at(pins, c->ad); c->ad = data(pins);",
            "c->pc = (data(pins) << 8) | c->ad; " + FETCH,
        ],
        # The high byte of the target comes from the same page as the low byte.
        "JMP ind": ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);",
                    "c->ad |= data(pins) << 8; read_at(pins, c->ad);",
                    "read_at(pins, (c->ad & 0xFF00) | ((c->ad + 1) & 0x00FF)); c->ad = data(pins);",
                    "c->pc = (data(pins) << 8) | c->ad; " + FETCH],
        # The step repeats for ever; only a new init ends it.
        "JAM": ["read_at(pins, c->pc);",
                "pins = cpu65_set_data(cpu65_set_addr(pins, 0xFFFF), 0xFF); c->ir--;"],
    }

    def indexed_steps(self, mode, kind):
        """Reads of the indexed forms skip their fix-up cycle when no page is crossed; stores and
        read-modify-write never do."""
        skip = kind == "read"
        if mode in ("absx", "absy"):
            index = mode[-1]
            fixup = f"c->ad |= data(pins) << 8; read_at(pins, (c->ad & 0xFF00) | ((c->ad + c->{index}) & 0xFF));"
            if skip:
                fixup += " " + skip_unless_crossing(index)
            return ["read_at(pins, c->pc++);", "c->ad = data(pins); read_at(pins, c->pc++);", fixup], \
                f"c->ad + c->{index}"
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

    def branch_taken_in_page(self):
        # This tick's pipeline shift is cancelled: an interrupt waits one more instruction.
        return "c->pc = c->ad; c->irq_pip >>= 1; c->nmi_pip >>= 1;"

    def decode(self, op):
        """(mnemonic, mode, kind) of an opcode, from its aaabbbcc bits."""
        own = {0x89: ("NOP", "imm", "read"), 0xA2: ("LDX", "imm", "read"),
               0x9E: ("SHX", "absy", "write"), 0x9C: ("SHY", "absx", "write"),
               0x9A: ("TXS", "imp", "implied"), 0xBA: ("TSX", "imp", "implied")}
        if op in own:
            return own[op]
        shared = self.decode_shared(op)
        if shared is not None:
            return shared
        aaa, bbb, cc = fields(op)
        if cc == 2:
            if op in (0x82, 0xC2, 0xE2):
                return "NOP", "imm", "read"
            if bbb == 6:
                return "NOP", "imp", "implied"
            return "JAM", "imp", "special"  # bbb = 000 and 100
        if cc == 0:
            if bbb == 0:
                return ["NOP", "LDY", "CPY", "CPX"][aaa - 4], "imm", "read"
            mode = {1: "zp", 3: "abs", 5: "zpx", 7: "absx"}[bbb]
            name = ["NOP", "BIT", "NOP", "NOP", "STY", "LDY", "CPY", "CPX"][aaa]
            if bbb in (5, 7) and aaa not in (4, 5):
                name = "NOP"
            return name, mode, "write" if name == "STY" else "read"
        # cc == 3: the undocumented combinations.
        name = ["SLO", "RLA", "SRE", "RRA", "SAX", "LAX", "DCP", "ISB"][aaa]
        if bbb == 2:
            return ["ANC", "ANC", "ASR", "ARR", "ANE", "LXA", "SBX", "SBC"][aaa], "imm", "read"
        special = {0x93: ("SHA", "indy", "write"), 0x9B: ("SHS", "absy", "write"),
                   0x9F: ("SHA", "absy", "write"), 0xBB: ("LAS", "absy", "read")}
        if op in special:
            return special[op]
        mode = MODES01[bbb]
        if name == "SAX":
            return name, mode.replace("x", "y") if bbb == 5 else mode, "write"
        if name == "LAX":
            return name, {5: "zpy", 7: "absy"}.get(bbb, mode), "read"
        return name, mode, "rmw"

if __name__ == "__main__":
    M6502Steps().main()
