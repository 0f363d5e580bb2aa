#!/usr/bin/env python3
"""Reads the waveform files of one morvane-wave case back as users' tools read them, and compares
every value with the table that morvane prints for the same run.

Arguments: the morvane program, the morvane-wave program, the case folder. The case's cmd gives the
arguments of morvane-wave (a file name of - is replaced by a file here), its table.cmd those of
morvane. A VCD file goes through vcd2fst and back through fst2vcd when GTKWave is installed; a
WaveJSON file goes through Python's JSON parser.
"""
import json
import os
import shlex
import shutil
import subprocess
import sys
import tempfile

LOW, HIGH = "LlnN", "HhpP"


def vcd_state(letter):
    if letter in LOW:
        return "0"
    if letter in HIGH:
        return "1"
    return "z" if letter in "zZ" else "x"


def wavejson_sample(cell):
    """The wave character and the data of one table cell, as a diagram shows it."""
    if len(cell) == 1:
        return {"n": "d", "N": "d", "p": "u", "P": "u"}.get(cell, vcd_state(cell)), None
    states = "".join(vcd_state(c) for c in cell)
    if set(states) <= set("01"):
        return "=", format(int(states, 2), "x")
    return ("z" if set(states) == {"z"} else "x"), None


def read_table(morvane, case_dir):
    with open(os.path.join(case_dir, "table.cmd")) as f:
        args = shlex.split(f.read())
    out = subprocess.run([morvane] + args, cwd=case_dir, capture_output=True, text=True).stdout
    titles, rows = None, {}
    for line in out.splitlines():
        tokens = line.split()
        if tokens and tokens[0] == "Time":
            titles = [t for t in tokens[1:] if t != "=>"]
        elif tokens and tokens[0].endswith(":") and titles is not None:
            rows[int(tokens[0][:-1])] = dict(zip(titles, tokens[1:]))
    if not rows:
        sys.exit("morvane printed no table:\n" + out)
    return rows


def column(rows, path):
    """The table's title of a signal: its path, or the path marked as a net's."""
    first = next(iter(rows.values()))
    for title in (path, "#" + path, "#" + path.replace(".#", ".")):
        if title in first:
            return title
    sys.exit("no column of the table for '%s'; the table has %s" % (path, sorted(first)))


def read_vcd(text):
    """Variables as {code: [(path, width)]} and the value changes as {code: [(time, states)]}."""
    tokens = text.split()
    variables, changes, scopes = {}, {}, []
    time, i = 0, 0
    timescale = None
    while i < len(tokens):
        token = tokens[i]
        if token == "$scope":
            scopes.append(tokens[i + 2])
            i += 4
        elif token == "$upscope":
            scopes.pop()
            i += 2
        elif token == "$var":
            end = tokens.index("$end", i)
            width, code, name = int(tokens[i + 2]), tokens[i + 3], tokens[i + 4]
            variables.setdefault(code, []).append((".".join(scopes[1:] + [name]), width))
            i = end + 1
        elif token == "$timescale":
            end = tokens.index("$end", i)
            timescale = "".join(tokens[i + 1:end])
            i = end + 1
        elif token in ("$date", "$version", "$comment"):
            i = tokens.index("$end", i) + 1
        elif token.startswith("#"):
            time = int(token[1:])
            i += 1
        elif token[0] in "bB":
            changes.setdefault(tokens[i + 1], []).append((time, token[1:].lower()))
            i += 2
        elif token[0] in "01xXzZ":
            changes.setdefault(token[1:], []).append((time, token[0].lower()))
            i += 1
        else:
            i += 1
    if timescale != "1ns":
        sys.exit("timescale is %s, not 1ns" % timescale)
    return variables, changes


def widen(states, width):
    """A vector value written shorter than its width is extended to the left."""
    fill = states[0] if states[0] in "xz" else "0"
    return fill * (width - len(states)) + states


def compare_vcd(text, rows, what):
    variables, changes = read_vcd(text)
    if not variables:
        sys.exit(what + ": no variables")
    failures = []
    for code, names in variables.items():
        for path, width in names:
            title = column(rows, path)
            events = sorted(changes.get(code, []), key=lambda change: change[0])
            value, k = None, 0
            for t in sorted(rows):
                while k < len(events) and events[k][0] <= t:
                    value = widen(events[k][1], width)
                    k += 1
                expected = "".join(vcd_state(c) for c in rows[t][title])
                if value != expected:
                    failures.append("%s: %s at %d ns is %s, the table says %s" %
                                    (what, path, t, value, rows[t][title]))
                    break
    return failures


def compare_wavejson(path, rows, window):
    with open(path) as f:
        diagram = json.load(f)
    start, stop, step = window
    failures = []
    for signal in diagram["signal"]:
        title = column(rows, signal["name"])
        data = iter(signal.get("data", []))
        sample = None
        times = range(start, stop + 1, step)
        if len(signal["wave"]) != len(times):
            failures.append("%s: %d periods for %d samples" % (signal["name"], len(signal["wave"]), len(times)))
            continue
        for t, char in zip(times, signal["wave"]):
            if char != ".":
                sample = (char, next(data) if char == "=" else None)
            expected = wavejson_sample(rows[t][title])
            if sample != expected:
                failures.append("%s at %d ns is %s, the table says %s" % (signal["name"], t, sample, rows[t][title]))
                break
    return failures


def main():
    morvane, wave, case_dir = sys.argv[1:4]
    with open(os.path.join(case_dir, "cmd")) as f:
        args = shlex.split(f.read())
    scratch = tempfile.mkdtemp(prefix="morvane_wave_")
    try:
        files = {}
        for i, arg in enumerate(args[:-1]):
            if arg in ("-o", "-j"):
                files[arg] = args[i + 1] = os.path.join(scratch, "wave" + arg)
        subprocess.run([wave] + args, cwd=case_dir, capture_output=True)
        rows = read_table(morvane, case_dir)
        failures, notices = [], []
        if "-o" in files:
            with open(files["-o"]) as f:
                failures += compare_vcd(f.read(), rows, "VCD")
            if shutil.which("vcd2fst") and shutil.which("fst2vcd"):
                fst = os.path.join(scratch, "wave.fst")
                subprocess.run(["vcd2fst", files["-o"], fst], check=True, capture_output=True)
                back = subprocess.run(["fst2vcd", fst], check=True, capture_output=True, text=True).stdout
                failures += compare_vcd(back, rows, "VCD through FST")
            else:
                notices.append("Notice: vcd2fst and fst2vcd (Debian package gtkwave) are not installed; "
                               "the round trip through FST is skipped.")
        if "-j" in files:
            window = [int(n) for n in args[args.index("-w") + 1].split(":")]
            failures += compare_wavejson(files["-j"], rows, window)
    finally:
        shutil.rmtree(scratch)
    for line in failures + notices:
        print(line)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
