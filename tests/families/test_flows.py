"""Netlists of every device flow: the program's clocks of all register outputs against a reference from the JSON alone."""

import csv
import json
import os
import sys
import unittest
from collections import Counter
from pathlib import Path

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../e2e"))

from program import REPOSITORY, run  # noqa: E402
from reference import Netlist  # noqa: E402

FLOWS = Path(REPOSITORY, "designs/families")
FAMILIES = {"ice40": "iCE40", "ecp5": "ECP5", "nexus": "Nexus", "machxo2": "MachXO2", "xilinx": "Xilinx",
            "gowin": "Gowin", "max10": "Intel", "cyclonev": "Intel", "quicklogic": "QuickLogic",
            "anlogic": "Anlogic", "gatemate": "GateMate"}


def nets_of(design, netlist):
    """Every net of a flat netlist, bit by bit."""
    nets = []
    for line in run("search", design, "", "--format", "jsonl").stdout.splitlines()[1:]:
        found = json.loads(line)
        if found.get("kind") == "bus":
            # A bus of some bits of a vector has the lowest ones.
            bits = [name for name in netlist.names if name.rpartition("[")[0] == found["path"]]
            nets += sorted(bits, key=lambda name: int(name.rpartition("[")[2][:-1]))[:found["width"]]
        elif found.get("kind") == "net":
            nets.append(found["path"])
    return nets


def clocks_of(design, nets):
    answers = {}
    for start in range(0, len(nets), 1000):
        result = run("clock-of", design, "--format", "csv", "--", *nets[start:start + 1000])
        answers.update((row["net"], row["clock"]) for row in csv.DictReader(result.stdout.splitlines()))
    return answers


def compare(path):
    """(wrong answers, outputs compared, all outputs, outputs by clock)"""
    netlist = Netlist(path)
    wanted = netlist.register_outputs()
    wrong, seen = [], set()
    nets = [name for name in nets_of(str(path), netlist) if netlist.bit(name) in wanted]
    for name, clock in clocks_of(str(path), nets).items():
        bit = netlist.bit(name)
        seen.add(bit)
        answer = netlist.bit(clock) if clock else None
        if answer is None or netlist.root(answer) != wanted[bit]:
            wrong.append((name, clock, wanted[bit]))
    by_clock = Counter()
    for clock in wanted.values():
        names = [name for name, bits in netlist.names.items() if clock in bits]
        by_clock[min(names, key=lambda name: (len(name), name))] += 1
    return wrong, len(seen), len(wanted), by_clock


class Flows(unittest.TestCase):
    maxDiff = 4000

    def test_every_register_output_has_its_clock_in_every_flow(self):
        expected = json.loads((FLOWS / "expected.json").read_text())
        files = {path.stem: path for path in FLOWS.glob("*_*.json")}
        self.assertEqual(sorted(files), sorted(expected))
        for name, path in sorted(files.items()):
            with self.subTest(name):
                wrong, seen, outputs, by_clock = compare(path)
                self.assertEqual(wrong, [])
                self.assertEqual(seen, outputs)
                self.assertEqual(dict(by_clock), expected[name])

    def test_a_processor_has_the_same_clocks_in_every_flow_as_before_mapping(self):
        for flow in ("elaborated", "ice40", "ecp5", "xilinx", "gowin"):
            with self.subTest(flow):
                path = FLOWS / f"cpu_core_{flow}.json"
                netlist = Netlist(path)
                clocks = json.loads(run("clocks", str(path), "--format", "json").stdout)["results"]
                used = {clock["clock"] for clock in clocks if clock["nets"] > 0}
                self.assertEqual({netlist.root(netlist.bit(clock)) for clock in used}, netlist.names["clk"])

    def test_info_names_the_family_and_no_cell_is_unknown(self):
        for path in sorted(FLOWS.glob("*_*.json")):
            flow = path.stem.rsplit("_", 1)[1]
            if flow not in FAMILIES:
                continue
            with self.subTest(path.stem):
                info = run("info", str(path), "--format", "json")
                answer = json.loads(info.stdout)
                self.assertIn(FAMILIES[flow], answer["family"].split(" or "))
                self.assertEqual(answer["unknown_cells"], [])
                self.assertEqual(info.stderr, "")


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        found = {path.stem: dict(compare(path)[3]) for path in sorted(FLOWS.glob("*_*.json"))}
        (FLOWS / "expected.json").write_text(json.dumps(found, indent=1, sort_keys=True) + "\n")
    else:
        unittest.main()
