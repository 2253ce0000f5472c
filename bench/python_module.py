#!/usr/bin/env python3
"""Measures the Python module against the program, on one generated design after the other.

    bench/python_module.py BUILD_DIRECTORY DESIGN...

BUILD_DIRECTORY holds a release build with the Python module. For each pattern a search is timed from its start to its
end, in Python and in the program (its phase "search", results thrown away); and a walk over a million objects in Python
alone. The best of some rounds counts: other work on the machine only adds.
"""

import argparse
import gc
import itertools
import os
import re
import subprocess
import sys
import time

ROUNDS = 5
PATTERNS = (("no hit", "no such name at all"), ("some hits", "99"), ("many hits", "a"))
MOST_SEARCH = 1.3
MOST_WALK_S = 1.0
OBJECTS = 1_000_000


def best(measure):
    times = []
    for _ in range(ROUNDS):
        gc.collect()
        times.append(measure())
    return min(times)


def program_search(program, design, pattern):
    """Seconds of the phase."""
    result = subprocess.run([program, "search", design, pattern, "--stats", "--paths"], check=False,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, timeout=600)
    return float(re.search(r"^search\s+([0-9.]+)", result.stderr, re.M).group(1))


def timed(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def walk_nets(design):
    """Reads the names of a million nets."""
    for net in itertools.islice((net for instance in design.walk() for net in instance.nets), OBJECTS):
        net.name


def walk_instances(design):
    """Reads the names of a million instances."""
    for instance in itertools.islice(design.walk(), OBJECTS):
        instance.name


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("designs", nargs="+")
    options = parser.parse_args()
    sys.path.insert(0, os.path.join(options.build, "python"))
    import netlistdb
    program = os.path.join(options.build, "tools/netlistdb/netlistdb")
    met = True
    for file in options.designs:
        with netlistdb.load(file) as design:
            print(f"{file}:")
            for name, pattern in PATTERNS:
                count = sum(1 for _ in design.find(pattern, plain=True))
                ours = best(lambda: timed(lambda: [None for _ in design.find(pattern, plain=True)]))
                theirs = best(lambda: program_search(program, file, pattern))
                ratio = ours / theirs
                met = met and ratio <= MOST_SEARCH
                print(f"  find, {name} ({count}): {ratio:.2f}x ({ours:.3f} s to {theirs:.3f} s; at most "
                      f"{MOST_SEARCH}x)")
            for walk in (walk_instances, walk_nets):
                seconds = best(lambda: timed(lambda: walk(design)))
                met = met and seconds <= MOST_WALK_S
                print(f"  {walk.__name__}: {seconds:.2f} s (at most {MOST_WALK_S} s)")
    return 0 if met else 1


if __name__ == "__main__":
    sys.exit(main())
