#!/usr/bin/env python3
"""Scalable benchmark circuits for morvane: a CTC file, a TV file and meta.json per case.

    gen_bench.py KIND N T [--out DIR] [--seed S]

Kinds:
  chain   an Oscillator gated by the root input en, then N inverters (3 ns) in a row
  mesh    N random two-input gates in 10 feed-forward layers under 8 oscillators
  fanout  one clock to N D_flip_flops, chained as a shift register fed by a data oscillator
  bus     N ThreeStateBufs on N/4 bus lines of 4 drivers each, enabled by 4 oscillators,
          with a PullUp on line 0

The last TV row is at T, so morvane simulates to T + 1. Every expected value is the don't-care
x: the cases measure, they don't check.

All sources change at time 0 and a part evaluated in some ns puts its net update on that ns's
same-time list, which holds at most 1001 actions. The generator therefore spreads delays and
slows clocks as N grows, so that no ns sees more than about 500 evaluations.
"""

import argparse
import json
import math
import os
import random
import struct

# A line of a Unit statement holds this many names.
NAMES_PER_LINE = 16
# Evaluations the generator allows in one ns.
EVALS_PER_NS = 500


def float_frequency(period):
    """The frequency text for a period in ns, checked to give the period back through a float."""
    frequency = 1e9 / period
    as_float = struct.unpack("f", struct.pack("f", frequency))[0]
    if int(1e9 / as_float) != period:
        raise SystemExit(f"no float frequency gives exactly {period} ns")
    text = repr(frequency)
    return text[:-2] if text.endswith(".0") else text


def clock_period(minimum):
    """The smallest of 100, 200, 250, 500, 1000, 2000, 2500, 5000, ... at or above `minimum`."""
    base = 100
    while True:
        for factor in (1, 2, 2.5, 5):
            period = int(base * factor)
            if period >= minimum:
                return period
        base *= 10


def units(kind, specs):
    """Unit lines for one part type, NAMES_PER_LINE names a line."""
    lines = []
    for i in range(0, len(specs), NAMES_PER_LINE):
        lines.append(f"Unit {kind} " + " ".join(specs[i:i + NAMES_PER_LINE]))
    return lines


def tv_rows(inputs, outputs, end_time, rows=10):
    """A header and rows spread over (0, end_time], the last one at end_time; inputs stay H."""
    text = ["time " + " ".join(inputs) + " => " + " ".join(outputs)]
    times = sorted({0} | {end_time * k // rows for k in range(1, rows)} | {end_time})
    for t in times:
        text.append(f"{t} " + " ".join("H" for _ in inputs) + " " + " ".join("x" for _ in outputs))
    return "\n".join(text) + "\n"


def gen_chain(n, end_time, rng):
    # About 2N/P inverters switch per ns.
    period = clock_period(max(100, 2 * n / EVALS_PER_NS * 2))
    ctc = [
        f"# {n} inverters (3 ns each) behind an oscillator of {period} ns gated by en.",
        "Pin Input en",
        "Pin Output out",
        f"Unit Oscillator osc(frequency={float_frequency(period)})",
        "Unit And gate(delay=3)",
        f"Unit Inv inv[{n}]",
        "Net clk osc.out gate.a",
        "Net en_net en gate.b",
        "Net n0 gate.out inv[0].in",
    ]
    for i in range(1, n):
        ctc.append(f"Net n{i} inv[{i - 1}].out inv[{i}].in")
    ctc.append(f"Net n{n} inv[{n - 1}].out out")
    return ctc, tv_rows(["en"], ["out"], end_time), {"period": period}


def gen_mesh(n, end_time, rng):
    layers = 10
    width = max(1, n // layers)
    # Slower clocks and a wider delay range for source-fed gates as N grows.
    scale = 1
    while scale < n / 500:
        scale = next(s for s in (2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000) if s > scale)
    periods = [p * scale for p in (40, 50, 64, 80, 100, 125, 128, 160)]
    source_delay = max(5, width // 20)
    kinds = ["And"] * 3 + ["Or"] * 3 + ["Nand"] * 3 + ["Nor"] * 3 + ["Xor", "Xnor"]
    ctc = [f"# {n} random two-input gates in {layers} layers under 8 oscillators (x{scale}).",
           "Pin Input en"]
    outputs = [f"o{i}" for i in range(min(8, width))]
    ctc += [f"Pin Output {o}" for o in outputs]
    oscillators = [f"osc{i}(frequency={float_frequency(p)},offset={rng.randrange(p)})"
                   for i, p in enumerate(periods)]
    ctc += units("Oscillator", oscillators)
    ctc.append("Unit And gate_en(delay=1)")
    listeners = {f"osc{i}.out": [] for i in range(8)}
    listeners["gate_en.out"] = []
    by_kind = {}
    previous = []
    for layer in range(layers):
        current = []
        for g in range(width):
            name = f"g{layer * width + g}"
            from_source = layer == 0 or rng.random() < 0.1
            delay = rng.randint(1, source_delay if from_source else 5)
            by_kind.setdefault(rng.choice(kinds), []).append(f"{name}(delay={delay})")
            a_source = f"osc{rng.randrange(8)}.out" if layer == 0 else rng.choice(previous)
            b_source = (f"osc{rng.randrange(8)}.out" if from_source else rng.choice(previous))
            if layer == 0 and g == 0:
                b_source = "gate_en.out"
            listeners.setdefault(a_source, []).append(f"{name}.a")
            listeners.setdefault(b_source, []).append(f"{name}.b")
            current.append(f"{name}.out")
        previous = current
    for kind in sorted(by_kind):
        ctc += units(kind, by_kind[kind])
    ctc.append("Net en_net en gate_en.a")
    listeners["osc0.out"].append("gate_en.b")
    for i, out in enumerate(previous[:len(outputs)]):
        listeners.setdefault(out, []).append(outputs[i])
    for k, (driver, ports) in enumerate(listeners.items()):
        if ports:
            ctc.append(f"Net n{k} {driver} " + " ".join(ports))
    return ctc, tv_rows(["en"], outputs, end_time), {"periods": periods, "scale": scale}


def gen_fanout(n, end_time, rng):
    # Stage i has the delay 10 + i mod spread, so that at most EVALS_PER_NS stages run per ns.
    spread = math.ceil(n / EVALS_PER_NS)
    period = clock_period(4 * (10 + spread))
    ctc = [
        f"# One clock of {period} ns to {n} D_flip_flops in a shift register, delays 10..{9 + spread} ns.",
        "Pin Input en",
        "Pin Output q",
        f"Unit Oscillator clk_osc(frequency={float_frequency(period)},offset={period // 2})",
        f"Unit Oscillator data(frequency={float_frequency(period * 5)})",
        "Unit And gate(delay=1)",
        "Unit Low oe",
    ]
    ctc += units("D_flip_flop", [f"dff{i}(delay={10 + i % spread})" for i in range(n)])
    ctc += [
        "Net en_net en gate.b",
        "Net osc_net clk_osc.out gate.a",
        "Net clk gate.out " + " ".join(f"dff{i}.clk" for i in range(n)),
        "Net oe_net oe.out " + " ".join(f"dff{i}._OE" for i in range(n)),
        "Net d0 data.out dff0.D",
    ]
    for i in range(1, n):
        ctc.append(f"Net d{i} dff{i - 1}.Q dff{i}.D")
    ctc.append(f"Net d{n} dff{n - 1}.Q q")
    return ctc, tv_rows(["en"], ["q"], end_time), {"period": period, "spread": spread}


def gen_bus(n, end_time, rng):
    drivers = 4
    lines = max(1, n // drivers)
    # Every source changes at 0: all N buffers would run in one ns without the spread of delays.
    spread = math.ceil(n / EVALS_PER_NS)
    scale = clock_period(4 * (3 + spread)) // 100
    enable_periods = [p * scale for p in (100, 125, 160, 200)]
    data_periods = [p * scale for p in (40, 50, 64, 80, 100, 125, 128, 160)]
    ctc = [f"# {lines} bus lines of {drivers} ThreeStateBufs each, delays 3..{2 + spread} ns, "
           "a PullUp on line 0.", "Pin Input en"]
    outputs = [f"b{j}" for j in range(min(4, lines))]
    ctc += [f"Pin Output {o}" for o in outputs]
    ctc += units("Oscillator", [f"sel{k}(frequency={float_frequency(p)},offset={rng.randrange(p)})"
                                for k, p in enumerate(enable_periods)])
    ctc += units("Oscillator", [f"data{k}(frequency={float_frequency(p)},offset={rng.randrange(p)})"
                                for k, p in enumerate(data_periods)])
    ctc.append("Unit And gate(delay=1)")
    ctc.append("Unit PullUp pull")
    ctc += units("ThreeStateBuf", [f"buf{j}_{k}(delay={3 + (j * drivers + k) % spread})"
                                   for j in range(lines) for k in range(drivers)])
    enables = {k: [] for k in range(drivers)}
    data = {k: [] for k in range(8)}
    for j in range(lines):
        for k in range(drivers):
            enables[k].append(f"buf{j}_{k}._g")
            data[(j + k) % 8].append(f"buf{j}_{k}.in")
    ctc.append("Net en_net en gate.b")
    ctc.append("Net sel0_raw sel0.out gate.a")
    ctc.append("Net sel_0 gate.out " + " ".join(enables[0]))
    for k in range(1, drivers):
        ctc.append(f"Net sel_{k} sel{k}.out " + " ".join(enables[k]))
    for k in range(8):
        if data[k]:
            ctc.append(f"Net data_{k} data{k}.out " + " ".join(data[k]))
    for j in range(lines):
        ports = [f"buf{j}_{k}.out" for k in range(drivers)]
        if j == 0:
            ports.append("pull.out")
        if j < len(outputs):
            ports.append(outputs[j])
        ctc.append(f"Net line{j} " + " ".join(ports))
    return ctc, tv_rows(["en"], outputs, end_time), {"spread": spread, "scale": scale}


GENERATORS = {"chain": gen_chain, "mesh": gen_mesh, "fanout": gen_fanout, "bus": gen_bus}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("kind", choices=sorted(GENERATORS))
    parser.add_argument("n", type=int, help="number of parts")
    parser.add_argument("t", type=int, help="time of the last TV row, ns")
    parser.add_argument("--out", help="case directory (default KIND_N<N>_T<T>)")
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()
    out = args.out or f"{args.kind}_N{args.n}_T{args.t}"
    os.makedirs(out, exist_ok=True)
    ctc, tv, meta = GENERATORS[args.kind](args.n, args.t, random.Random(args.seed))
    with open(os.path.join(out, "circuit.ctc"), "w") as f:
        f.write("\n".join(ctc) + "\n")
    with open(os.path.join(out, "test.tv"), "w") as f:
        f.write(tv)
    meta.update(kind=args.kind, n=args.n, t=args.t, seed=args.seed)
    with open(os.path.join(out, "meta.json"), "w") as f:
        json.dump(meta, f, indent=1)
    print(out)


if __name__ == "__main__":
    main()
