"""Measures each command of the program by itself."""

import json
import os

from contest import measured_run
from measure import median, peak, run

QUESTIONS = (
    {"method": "initialize", "params": {"protocolVersion": "2025-06-18", "capabilities": {},
                                        "clientInfo": {"name": "bench", "version": "1"}}},
    {"method": "tools/call", "params": {"name": "info", "arguments": {}}},
)


def write_questions(path):
    """Writes what a client of the server asks."""
    with open(path, "w", encoding="utf-8") as out:
        for number, question in enumerate(QUESTIONS):
            out.write(json.dumps({"jsonrpc": "2.0", "id": number, **question}) + "\n")


def commands(design, pattern):
    """The commands by what they are called, with the input of those that read it. pattern is a part of a name."""
    net = run(["netlistdb", "search", design, pattern, "--kind", "net", "--limit", "1", "--paths"]).text.splitlines()[0]
    output = ["--output", "alone.out"]
    page = ["--output", "alone.html"]
    return {
        "info": (["netlistdb", "info", design, *output], ""),
        "tree": (["netlistdb", "tree", design, *output], ""),
        "search": (["netlistdb", "search", design, pattern, *output], ""),
        "clocks": (["netlistdb", "clocks", design, *output], ""),
        "clock-of NET": (["netlistdb", "clock-of", design, net, *output], ""),
        "crossings": (["netlistdb", "crossings", design, *output], ""),
        "probes": (["netlistdb", "probes", design, *output], ""),
        "html": (["netlistdb", "html", design, *page], ""),
        "serve, two questions": (["netlistdb", "serve", design], "alone.in"),
        "save": (["netlistdb", "save", design, "alone.netlist"], ""),
        "checksum": (["netlistdb", "checksum", design], ""),
    }


def table(designs, rounds):
    """Yields for each command its name, and median seconds and peak in MiB on each of some designs: pairs of a saved
    netlist and a part of a name."""
    write_questions("alone.in")
    asked = [commands(design, pattern) for design, pattern in designs]
    for what in asked[0]:
        cells = []
        for command, questions in (each[what] for each in asked):
            runs = [measured_run(command, questions) for _ in range(rounds)]
            cells += [median(runs, "wall"), peak(runs)]
        yield what, cells
    for made in ("alone.in", "alone.out", "alone.html", "alone.netlist"):
        os.remove(made)
