#!/usr/bin/env python3
"""Measures this build against an older one, figure by figure, on the designs of bench/scale.py.

    bench/against.py BUILD_DIRECTORY OLDER_BUILD_DIRECTORY [--small] [--rounds N] [--only road,…] [--data DIRECTORY]

Both directories hold a release build with bench_drive. The builds take turns in every round; each restores netlists
that it saved itself, from the same JSON. Prints processor seconds and peak memory, medians, and the ratio of this build
to the older one.
"""

import argparse
import os
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from designs import json_file, saved_file  # noqa: E402
from measure import alternate, median  # noqa: E402

ROADS = {
    "read-json": ("flat", []),
    "restore-import": ("flat", []),
    "restore-unfold": ("hierarchical", []),
    "clocks-post-map": ("flat", []),
    "clocks-elaborated": ("hierarchical", []),
    "search-flat": ("flat", ["flat", "fifo"]),
    "search-hierarchical": ("hierarchical", ["hierarchical", "fifo"]),
}


def file_for(road, build, shape, size, data):
    """The file that a road begins with, made when it is not there; saved netlists are made by the build itself."""
    made = json_file(build["this"], data, shape, size)
    if road == "read-json":
        return dict.fromkeys(build, made)
    return {name: saved_file(directory, made, name) for name, directory in build.items()}


def figures(runs):
    """Names of what the runs of one road printed that has a time, and the peak."""
    printed = runs["this"][0].values
    return [name for name in printed if name.endswith("_cpu_s")] + ["peak_mib"]


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
    build = {name: os.path.join(path, "bench") for name, path in (("this", arguments.build), ("older", arguments.older))}
    with tempfile.TemporaryDirectory() as temporary:
        data = arguments.data or temporary
        os.makedirs(data, exist_ok=True)
        print(f"| road, {size} leaves | figure | older | this | ratio |\n|---|---|---|---|---|")
        for road in arguments.only.split(","):
            if road not in ROADS:
                parser.error(f"no road {road}")
            shape, more = ROADS[road]
            files = file_for(road, build, shape, size, data)
            word = "search" if road.startswith("search-") else road
            commands = {name: [os.path.join(build[name], "bench_drive"), word, files[name], *more] for name in build}
            runs = alternate(commands, arguments.rounds)
            for figure in figures(runs):
                older, this = (median(runs[name], figure) for name in ("older", "this"))
                ratio = f"{this / older:.2f}" if older > 0 else "-"
                print(f"| {road} | {figure} | {older:.4g} | {this:.4g} | {ratio} |", flush=True)


if __name__ == "__main__":
    main()
