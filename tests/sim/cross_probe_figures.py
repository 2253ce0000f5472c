#!/usr/bin/env python3
"""Holds what the program says about nets of two forms against simulations of both, and prints the figures.

    NETLISTDB=... REPOSITORY=... cross_probe_figures.py [--cycles N] [--nameless] [DESIGN...]
"""

import argparse
import collections
import os
import sys
import tempfile

from side_by_side import KVR_MODELS, MODELS, designs, mapping, registers_of, simulate, without_names


#: Cycles after which registers without a reset have mostly been loaded. Waveforms are looked for from there on.
SETTLED = 64


def same(left, right, inverted, cycles):
    """Whether two waveforms agree wherever both are known."""
    known = ~(left[1] | right[1]) & ((1 << cycles) - 1)
    value = right[0] ^ (known if inverted else 0)
    return (left[0] ^ value) & known == 0


def figures_of(design, scratch, cycles, nameless):
    if nameless:
        renamed = os.path.join(scratch, "nameless.json")
        without_names(design.post_map, renamed)
        design.post_map = renamed
    flow = design.name.partition(", ")[2]
    elaborated = simulate(design.elaborated, design, [*KVR_MODELS, *design.extra], scratch, cycles)
    post_map = simulate(design.post_map, design, [*MODELS.get(flow, KVR_MODELS), *design.extra], scratch, cycles)
    figures = collections.Counter()
    wrong = []
    rows = mapping(design.elaborated, design.post_map)
    whole = (1 << cycles) - 1
    present = set()
    # Below the top there is only what is inside the models of cells.
    for name in (name for name in post_map.names if "/" not in name):
        ones, unknown = post_map.of(name)
        if unknown >> SETTLED == 0:
            present.add(ones >> SETTLED)
            present.add((ones ^ whole) >> SETTLED)
    registers = registers_of(design.elaborated, design.top)
    waves = {row["net"]: elaborated.of(row["net"]) for row in rows}
    late = {net: wave[0] >> SETTLED for net, wave in waves.items() if wave and wave[1] >> SETTLED == 0}
    half = (1 << (cycles - SETTLED)) - 1
    changing = {net: wave for net, wave in late.items() if wave not in (0, half)}
    often = collections.Counter(changing[net] for net in changing if net in registers)
    for row in rows:
        net, grade = row["net"], row["grade"]
        figures[f"bits {grade}"] += 1
        left = waves[net]
        if row["match"]:
            right = post_map.of(row["match"])
            if left is None or right is None:
                figures["not in the simulation"] += 1
                continue
            figures[f"compared {grade}"] += 1
            if not same(left, right, row["inverted"], cycles):
                figures[f"wrong {grade}"] += 1
                wrong.append(f"{grade}: {net} is not {row['match']}")
        there = net in changing and changing[net] in present
        if grade == "gone":
            figures["gone"] += 1
            if there:
                figures["gone, but there"] += 1
                wrong.append(f"gone ({row['reason']}), but there: {net}")
        if there:
            figures["nets there"] += 1
            figures["nets found"] += bool(row["match"])
            if net in registers and often[changing[net]] == 1:
                figures["registers there"] += 1
                figures["registers found"] += bool(row["match"])
                if not row["match"]:
                    wrong.append(f"register not found: {net} ({grade}: {row['evidence']})")
    return figures, wrong


def share(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cycles", type=int, default=4000)
    parser.add_argument("--details", action="store_true", help="name every net that is wrong")
    parser.add_argument("--nameless", action="store_true", help="take all names but those of ports away first")
    parser.add_argument("designs", nargs="*")
    options = parser.parse_args()
    total = collections.Counter()
    print("| design | bits | exact | register | structural | merged | gone | unknown | wrong | registers | nets | gone, but there |")
    print("|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|")
    for design in designs():
        if options.designs and not any(design.name.startswith(name) for name in options.designs):
            continue
        with tempfile.TemporaryDirectory() as scratch:
            figures, wrong = figures_of(design, scratch, options.cycles, options.nameless)
        total += figures
        print_row(design.name, figures)
        for line in wrong if options.details else ():
            print("   ", line, file=sys.stderr)
    print_row("all", total)
    return total


def print_row(name, figures):
    grades = ("exact", "register", "structural", "merged", "gone", "unknown")
    bits = sum(figures[f"bits {grade}"] for grade in grades)
    wrong = sum(figures[f"wrong {grade}"] for grade in grades)
    print("|", " | ".join([
        name, str(bits), *(str(figures[f"bits {grade}"]) for grade in grades), str(wrong),
        share(figures["registers found"], figures["registers there"]),
        share(figures["nets found"], figures["nets there"]), share(figures["gone, but there"], figures["gone"]),
    ]), "|", flush=True)


if __name__ == "__main__":
    main()
