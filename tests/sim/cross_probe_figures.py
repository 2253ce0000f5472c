#!/usr/bin/env python3
"""Holds what the program says about nets of two forms against simulations of both, and prints the figures: with the
names of the post-map netlists, without them, and each figure beside its target.

    NETLISTDB=... REPOSITORY=... cross_probe_figures.py [--cycles N] [--details] [DESIGN...]

Exits with 1 when a target is missed.
"""

import argparse
import collections
import concurrent.futures
import os
import sys
import tempfile

from side_by_side import KVR_MODELS, MODELS, designs, mapping, registers_of, simulate, without_names

#: Cycles after which registers without a reset have mostly been loaded. Waveforms are looked for from there on.
SETTLED = 64

GRADES = ("exact", "register", "structural", "merged", "gone", "unknown")
#: Grades of which no match may differ.
PROVEN = ("exact", "register", "merged")


class Comparison:
    """The waveforms of both forms of a design, and what the program says about its nets."""

    def __init__(self, design, scratch, cycles, nameless=False):
        post_map = design.post_map
        if nameless:
            post_map = os.path.join(scratch, "nameless.json")
            without_names(design.post_map, post_map)
        flow = design.name.partition(", ")[2]
        self.cycles = cycles
        self.elaborated = simulate(design.elaborated, design, [*KVR_MODELS, *design.extra], scratch, cycles)
        self.post_map = simulate(post_map, design, [*MODELS.get(flow, KVR_MODELS), *design.extra], scratch, cycles)
        self.rows = mapping(design.elaborated, post_map)
        self.registers = registers_of(design.elaborated, design.top)

    def figures(self, rows=None):
        """Counts of @p rows, by default those of the program, and a line for each that is wrong."""
        rows = self.rows if rows is None else rows
        figures = collections.Counter()
        wrong = []
        late = {row["net"]: self.after_start(self.elaborated.of(row["net"])) for row in rows}
        waves = self.post_map_waves()
        there = {net for net, wave in late.items() if self.occurs(net, waves.get(wave, ()))}
        often = collections.Counter(late[net] for net in there & self.registers)
        for row in rows:
            net, grade = row["net"], row["grade"]
            figures[f"bits {grade}"] += 1
            if row["match"]:
                wrong += self.compare(row, figures)
            if grade == "gone" and net in there:
                figures["gone, but there"] += 1
                wrong.append(f"gone ({row['reason']}), but there: {net}")
            if net in there:
                figures["nets there"] += 1
                figures["nets found"] += bool(row["match"])
                if net in self.registers and often[late[net]] == 1:
                    figures["registers there"] += 1
                    figures["registers found"] += bool(row["match"])
                    if not row["match"]:
                        wrong.append(f"register not found: {net} ({grade}: {row['evidence']})")
        return figures, wrong

    def compare(self, row, figures):
        net, grade = row["net"], row["grade"]
        left = self.elaborated.of(net)
        right = self.post_map.of(row["match"])
        if left is None or right is None:
            figures["not in the simulation"] += 1
            return []
        known = ~(left[1] | right[1]) & ((1 << self.cycles) - 1)
        differs = (left[0] ^ right[0] ^ (known if row["inverted"] else 0)) & known != 0
        figures[f"compared {grade}"] += 1
        figures["compared inverted"] += bool(row["inverted"])
        if not differs:
            return []
        figures[f"wrong {grade}"] += 1
        figures["wrong inverted"] += bool(row["inverted"])
        figures["wrong registers"] += net in self.registers
        return [f"{grade}: {net} is not {'~' if row['inverted'] else ''}{row['match']}"]

    def swapped(self):
        """The rows of nets that change, each two matches that follow one another and have different waveforms exchanged:
        all are wrong then, and are found to be but where a form does not know its value."""
        waves = {}
        for row in self.rows:
            wave = self.after_start(self.elaborated.of(row["net"])) if row["match"] else None
            if wave is not None:
                waves[row["net"]] = wave
        rows = [dict(row) for row in self.rows if row["net"] in waves]
        pairs = [(one, other) for one, other in zip(rows[::2], rows[1::2])
                 if waves[one["net"]] != waves[other["net"]] and one["inverted"] == other["inverted"]]
        for one, other in pairs:
            one["match"], other["match"] = other["match"], one["match"]
        return [row for pair in pairs for row in pair]

    def after_start(self, wave):
        """The ones of a waveform that is known from SETTLED on and changes; None for all others."""
        if wave is None or wave[1] >> SETTLED != 0:
            return None
        ones = wave[0] >> SETTLED
        return None if ones in (0, (1 << (self.cycles - SETTLED)) - 1) else ones

    def post_map_waves(self):
        """The whole waveforms of the post-map netlist, and their inverses, by what they are from SETTLED on."""
        waves = collections.defaultdict(list)
        whole = (1 << self.cycles) - 1
        # Below the top there is only what is inside the models of cells.
        for name in (name for name in self.post_map.names if "/" not in name):
            ones, unknown = self.post_map.of(name)
            for wave in ((ones, unknown), (~(ones | unknown) & whole, unknown)):
                late = self.after_start(wave)
                if late is not None:
                    waves[late].append(wave)
        return waves

    def occurs(self, net, waves):
        """Whether one of the waveforms has the values of a net before SETTLED, too, as far as both are known: a processor
        may end in a loop in which nets are equal that were not on the way."""
        ones, unknown = self.elaborated.of(net) or (0, 0)
        return any((ones ^ other) & ~(unknown | others) == 0 for other, others in waves)


def figures_of(design, cycles, nameless):
    """Figures of a design, the lines that are wrong, and the share of swapped matches that are found to be wrong."""
    with tempfile.TemporaryDirectory() as scratch:
        comparison = Comparison(design, scratch, cycles, nameless)
    figures, wrong = comparison.figures()
    swapped, _ = comparison.figures(comparison.swapped())
    figures["swapped"] = sum(swapped[f"compared {grade}"] for grade in GRADES)
    figures["swapped, and found wrong"] = sum(swapped[f"wrong {grade}"] for grade in GRADES)
    return figures, wrong


def share(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def print_head():
    print("| design | bits | exact | register | structural | merged | gone | unknown | wrong | registers | nets "
          "| gone, but there |")
    print("|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|")


def print_row(name, figures):
    bits = sum(figures[f"bits {grade}"] for grade in GRADES)
    wrong = sum(figures[f"wrong {grade}"] for grade in GRADES)
    print("|", " | ".join([
        name, str(bits), *(str(figures[f"bits {grade}"]) for grade in GRADES), str(wrong),
        share(figures["registers found"], figures["registers there"]),
        share(figures["nets found"], figures["nets there"]), share(figures["gone, but there"], figures["bits gone"]),
    ]), "|", flush=True)


def targets(named, nameless):
    """Each figure as (what, target, part, whole, whether it is met)."""
    proven = [sum(named[f"{kind} {grade}"] for grade in PROVEN) for kind in ("wrong", "compared")]
    structural = named["compared structural"]
    right = structural - named["wrong structural"]
    inverted = named["compared inverted"]

    def at_least(what, least, part, whole):
        return what, f"at least {least} %", part, whole, 100 * part >= least * whole > 0

    return [
        ("matched as exact, register or merged, but different", "none", *proven, proven[0] == 0 < proven[1]),
        at_least("matched as structural, and equal", 99.9, right, structural),
        ("matched as inverted, but not the inverse", "none", named["wrong inverted"], inverted,
         named["wrong inverted"] == 0 < inverted),
        at_least("registers found", 97, named["registers found"], named["registers there"]),
        at_least("declared nets found", 85, named["nets found"], named["nets there"]),
        ("called gone, but there", "at most 1 %", named["gone, but there"], named["bits gone"],
         100 * named["gone, but there"] <= named["bits gone"]),
        at_least("without names: registers found", 80, nameless["registers found"], nameless["registers there"]),
        ("without names: registers matched, but different", "none", nameless["wrong registers"],
         nameless["registers found"], nameless["wrong registers"] == 0 < nameless["registers found"]),
        at_least("self-check: matches swapped on purpose, and found to be different", 90,
                 named["swapped, and found wrong"], named["swapped"]),
    ]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cycles", type=int, default=4000)
    parser.add_argument("--details", action="store_true", help="name every net that is wrong")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("designs", nargs="*", help="the designs whose names begin so; default: all")
    options = parser.parse_args()
    chosen = [design for design in designs() if design.name.startswith(tuple(options.designs) or "")]
    totals = []
    with concurrent.futures.ProcessPoolExecutor(options.jobs) as pool:
        for nameless in (False, True):
            print("\nWithout names:\n" if nameless else "With names:\n")
            total = collections.Counter()
            totals.append(total)
            print_head()
            jobs = [pool.submit(figures_of, design, options.cycles, nameless) for design in chosen]
            for design, job in zip(chosen, jobs):
                figures, wrong = job.result()
                total += figures
                print_row(design.name, figures)
                for line in wrong if options.details else ():
                    print("   ", line, file=sys.stderr)
            print_row("all", total)
    print("\n| figure | target | measured | |\n|---|---|---|---|")
    checked = targets(*totals)
    for what, target, part, whole, met in checked:
        print(f"| {what} | {target} | {part} of {whole} ({share(part, whole)}) | {'met' if met else 'MISSED'} |")
    return 0 if all(met for *_, met in checked) else 1


if __name__ == "__main__":
    sys.exit(main())
