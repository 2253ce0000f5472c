#!/usr/bin/env python3
"""unsafe_crossings.py DESIGN...: prints every unsafe path between clocks, and how many there are between each two."""

import sys
from collections import Counter

import netlistdb


def main(files: list[str]) -> int:
    with netlistdb.load(*files) as design:
        unsafe = [crossing for crossing in design.crossings() if crossing.severity == "unsafe"]
        pairs: Counter[tuple[str, str]] = Counter()
        for crossing in unsafe:
            launch = crossing.launch.name if crossing.launch else "(none)"
            pairs[launch, crossing.capture.name] += crossing.bits
            print(f"{crossing.kind}: {crossing.launched} -> {crossing.captured} {crossing.source or ''}")
        for (launch, capture), bits in pairs.most_common():
            print(f"{launch} -> {capture}: {bits} bits")
    return 1 if unsafe else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
