#!/usr/bin/env python3
"""Measures this build against an older one, figure by figure, on the designs of bench/scale.py.

    bench/against.py BUILD_DIRECTORY OLDER_BUILD_DIRECTORY [--small] [--rounds N] [--only road,…] [--data DIRECTORY]

Both directories hold a release build with bench_drive and the program. The builds take turns in every round; each
restores netlists that it saved itself, from the same JSON. Prints seconds and peak memory, medians, and the ratio of
this build to the older one. Roads through the library count processor time, which other work disturbs less; those of
the whole program elapsed time.
"""

import argparse
import os
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from designs import json_file, saved_file  # noqa: E402
from contest import measured_run  # noqa: E402
from measure import alternate, median  # noqa: E402

# Road, or command of the program: what of, times the size that is asked for, and further arguments.
ROADS = {
    "read-json": ("flat", 1, []),
    "restore-import": ("flat", 1, []),
    "restore-unfold": ("hierarchical", 1, []),
    "restore-unfold-10": ("hierarchical", 10, []),
    "clocks-post-map": ("flat", 1, []),
    "clocks-elaborated": ("hierarchical", 1, []),
    "search-flat": ("flat", 1, ["flat", "fifo"]),
    "search-hierarchical": ("hierarchical", 1, ["hierarchical", "fifo"]),
    "netlistdb-info-json": ("flat", 1, []),
    "netlistdb-info-flat": ("flat", 1, []),
    "netlistdb-info-hierarchical": ("hierarchical", 1, []),
    "netlistdb-info-hierarchical-10": ("hierarchical", 10, []),
    "netlistdb-clocks-flat": ("flat", 1, []),
    "netlistdb-search-flat": ("flat", 1, ["fifo"]),
    "netlistdb-tree-hierarchical": ("hierarchical", 1, []),
}


def file_for(road, builds, shape, size, data):
    """The file that a road begins with, made when it is not there; saved netlists are made by the build itself."""
    bench = {name: os.path.join(build, "bench") for name, build in builds.items()}
    made = json_file(bench["this"], data, shape, size)
    if road.endswith("-json"):
        return dict.fromkeys(builds, made)
    return {name: saved_file(directory, made, name) for name, directory in bench.items()}


def command_for(road, build, file, more):
    """The command of a road."""
    if road.startswith("netlistdb-"):
        program = os.path.join(build, "tools", "netlistdb", "netlistdb")
        return [program, road.split("-")[1], file, *more, "--output", "/dev/null"]
    word = road.removesuffix("-10")
    return [os.path.join(build, "bench", "bench_drive"), "search" if word.startswith("search-") else word, file, *more]


def figures(road, runs):
    """Names of what the runs of one road have: times that it printed or took, and the peak."""
    if road.startswith("netlistdb-"):
        return ["wall", "peak"]
    printed = runs["this"][0].values
    return [name for name in printed if name.endswith("_cpu_s")] + ["peak_mib"]


def compare(builds, size, rounds, data, only=tuple(ROADS)):
    """Yields a row for each figure of each road: road, leaves, figure, older, this, ratio."""
    for road in only:
        shape, times, more = ROADS[road]
        files = file_for(road, builds, shape, size * times, data)
        commands = {name: command_for(road, build, files[name], more) for name, build in builds.items()}
        runs = alternate(commands, rounds, measured_run)
        for figure in figures(road, runs):
            older, this = (median(runs[name], figure) for name in ("older", "this"))
            ratio = f"{this / older:.2f}" if older > 0 else "-"
            unit = {"wall": "s", "peak": "peak_mib"}.get(figure, figure)
            yield road, f"{size * times:,}", unit, f"{older:.4g}", f"{this:.4g}", ratio


def main():
    parser = argparse.ArgumentParser(description="Measures this build against an older one.")
    parser.add_argument("build", help="release build directory with benchmarks")
    parser.add_argument("older", help="the same of an older commit")
    parser.add_argument("--small", action="store_true", help="100,000 leaves instead of a million")
    parser.add_argument("--rounds", type=int, default=5, help="times to run each")
    parser.add_argument("--only", default=",".join(ROADS), help="roads to take, with commas: %(default)s")
    parser.add_argument("--data", help="directory for generated files (default: a temporary one that is removed)")
    arguments = parser.parse_args()
    size = 100_000 if arguments.small else 1_000_000
    builds = {"this": arguments.build, "older": arguments.older}
    only = arguments.only.split(",")
    for road in only:
        if road not in ROADS:
            parser.error(f"no road {road}")
    with tempfile.TemporaryDirectory() as temporary:
        data = arguments.data or temporary
        os.makedirs(data, exist_ok=True)
        print("| road | leaves | figure | older | this | ratio |\n|---|---|---|---|---|---|")
        for row in compare(builds, size, arguments.rounds, data, only):
            print("| " + " | ".join(row) + " |", flush=True)


if __name__ == "__main__":
    main()
