#!/usr/bin/env python3
"""lost_nets.py ELABORATED POSTMAP PATTERN: prints nets of the RTL that no net of the device carries, and why."""

import sys

import netlistdb
from netlistdb import Net


def main(elaborated: str, post_map: str, pattern: str) -> int:
    lost = 0
    with netlistdb.load(elaborated=elaborated, post_map=post_map) as design:
        for item in design.find(pattern, kind=["net", "bus"]):
            for net in [item] if isinstance(item, Net) else item.bits if isinstance(item, netlistdb.Bus) else []:
                match = design.map(net)
                if isinstance(match, netlistdb.Match) and match.grade == "gone":
                    lost += 1
                    print(f"{net.path}: {match.reason} {match.cell or ''}".rstrip())
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
