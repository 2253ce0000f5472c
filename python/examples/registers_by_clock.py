#!/usr/bin/env python3
"""registers_by_clock.py DESIGN...: prints the clocks, and for each instance with instances the clocks of its nets."""

import sys

import netlistdb


def main(files: list[str]) -> int:
    def show(what: str, done: int, total: int) -> None:
        print(f"{what}: {done / total:.0%}" if total else what, file=sys.stderr)

    with netlistdb.load(*files, progress=show) as design:
        for clock in design.clocks:
            print(f"{clock.name}: {clock.registers} registers, {clock.edges}, from a {clock.root}")
        for instance in design.walk():
            if len(instance.children) > 0:
                names = sorted({clock.name for net in instance.nets for clock in net.clocks})
                print(f"{instance.path or '(top)'}: {', '.join(names) or 'no clock'}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
