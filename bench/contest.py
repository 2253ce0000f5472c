"""Programs that answer the same question, measured in turn, each answer held against the others."""

import csv
import json
import os
import re
import shlex
import tempfile
from dataclasses import dataclass
from typing import Callable

from measure import median, peak, run


@dataclass
class Contestant:
    name: str
    command: list
    counts: Callable  # from the text that the process printed to the counts of its answer, by name
    shown: str = ""  # as a person would type it; the command itself when empty
    stdin: str = ""  # path of a file to read from
    note: str = ""  # name of a printed value to show, too, in milliseconds


@dataclass
class Measured:
    """Median and peak of one contestant, and what it answered."""

    name: str
    seconds: float
    peak: float  # MiB
    counts: dict
    values: dict  # medians of the printed values that were asked for


class Disagreement(SystemExit):
    pass


def measured_run(command, stdin=""):
    """Runs a command below GNU time: a process that Python starts itself seems as large as Python at least."""
    with tempfile.NamedTemporaryFile("r") as report:
        wrapped = ["time", "--quiet", "-f", "%M", "-o", report.name, *command]
        if stdin:
            with open(stdin, "rb") as stream:
                result = run(wrapped, stdin=stream)
        else:
            result = run(wrapped)
        result.peak = int(report.read()) / 1024
    return result


def agree(answers):
    """Ends the program unless every count has the same value in all answers that hold it."""
    known = {}
    for name, counts in answers.items():
        for what, value in counts.items():
            other, expected = known.setdefault(what, (name, value))
            if value != expected:
                raise Disagreement(f"{what}: {value} says {name}, {expected} says {other}")


def warm(contestants):
    """Reads every file that the commands name, so that the first round finds them in memory like the others."""
    words = {word for c in contestants for word in re.split(r"[\s;]+", " ".join([*c.command, c.stdin]))}
    for path in words:
        if os.path.isfile(path):
            with open(path, "rb") as stream:
                while stream.read(1 << 20):
                    pass


def side_by_side(contestants, rounds):
    """Runs all once a round, in turn. The answers of each round must agree before its times count."""
    warm(contestants)
    runs = {contestant.name: [] for contestant in contestants}
    answers = {}
    for number in range(rounds):
        for contestant in contestants:
            result = measured_run(contestant.command, contestant.stdin)
            answers[contestant.name] = contestant.counts(result.text)
            result.text = ""
            runs[contestant.name].append(result)
            print(f"  {number + 1}/{rounds} {contestant.name}: {result.wall:.2f} s, {result.peak:.0f} MiB", flush=True)
        agree(answers)
    return [Measured(c.name, median(runs[c.name], "wall"), peak(runs[c.name]), answers[c.name],
                     {c.note: median(runs[c.name], c.note)} if c.note else {}) for c in contestants]


def shown(contestant):
    """The command line of a contestant."""
    text = contestant.shown or shlex.join(contestant.command)
    return f"{text} < {contestant.stdin}" if contestant.stdin else text


# ---- counts out of what the programs print


def number(pattern, text):
    """The last number that an expression with one group finds."""
    found = re.findall(pattern, text, re.MULTILINE)
    if not found:
        raise SystemExit(f"no '{pattern}' in:\n{text[-2000:]}")
    return int(found[-1])


def yosys_stat(*names):
    """Counts of the last statistics that yosys printed: those of the whole design or of the selection."""
    patterns = {"cells": r"Number of cells: +(\d+)", "bits": r"Number of wire bits: +(\d+)"}
    return lambda text: {name: number(patterns[name], text) for name in names}


def sta_counts(*names):
    """Lines of a count's name and value."""
    def read(text):
        faults = [line for line in text.splitlines() if line.startswith("Error")]
        if faults:
            raise SystemExit("OpenSTA: " + faults[0])
        return {name: number(rf"^{name} (\d+)$", text) for name in names}
    return read


def grep_count(text):
    return {"names": int(text)}


def is_leaf(module):
    """True for operators and device cells, which the other programs do not open."""
    return module.startswith(("$", "KVR_"))


def info_counts(path):
    """Leaf cells, and the nets of everything above them, from `info --format json`."""
    def read(_):
        with open(path, encoding="utf-8") as stream:
            modules = json.load(stream)["module_list"]
        return {"cells": sum(m["instances"] for m in modules if is_leaf(m["module"])),
                "bits": sum(m["instances"] * m["nets"]["total"] for m in modules if not is_leaf(m["module"]))}
    return read


def tree_counts(path):
    """Leaf cells from `tree --format csv`."""
    def read(_):
        with open(path, encoding="utf-8", newline="") as stream:
            return {"cells": sum(is_leaf(row["module"]) for row in csv.DictReader(stream))}
    return read


def search_counts(path, *names):
    """From `search --format csv`: names of nets and buses, leaf cells, and bits of nets that are no pins of them."""
    def read(_):
        cells, others = set(), []
        with open(path, encoding="utf-8", newline="") as stream:
            for row in csv.DictReader(stream):
                if row["kind"] == "instance":
                    if is_leaf(row["module"]):
                        cells.add(row["path"])
                else:
                    others.append((row["path"].rpartition("/")[0], int(row["width"])))
        counts = {"names": len(others), "cells": len(cells),
                  "bits": sum(width for owner, width in others if owner not in cells)}
        return {name: counts[name] for name in names}
    return read


def clock_of_counts(path, expected):
    """From `clock-of --format csv`: the number of nets for each clock, called by the second word of its name.

    The file of expected answers names the clock of the net in the same line of the nets that were asked for."""
    def read(_):
        counts = {}
        with open(path, encoding="utf-8", newline="") as answers, open(expected, encoding="utf-8") as clocks:
            for row, clock in zip(csv.DictReader(answers), clocks, strict=True):
                if row["clock"].rpartition("/")[2].split("_")[1:2] != [clock.strip()]:
                    raise Disagreement(f"clock of {row['net']}: {row['clock'] or 'none'} instead of {clock.strip()}")
                counts[clock.strip()] = counts.get(clock.strip(), 0) + 1
        return counts
    return read


def clocks_counts(path):
    """From `clocks --format json`: the domains, and the nets with and without one."""
    def read(_):
        with open(path, encoding="utf-8") as stream:
            answer = json.load(stream)
        return {"clock domains": len(answer["results"]), "nets with a clock": sum(r["nets"] for r in answer["results"]),
                "nets without": answer["nets_without_clock"]}
    return read
