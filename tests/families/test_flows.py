"""Netlists of every flow: the clocks of all register outputs against a reference from the JSON alone, and names and
source positions against the RTL.

Expectations are beside the netlists: designs/families/expected.json and designs/names/expected.json. With --write they
are made anew; review them then."""

import csv
import json
import os
import re
import sys
import unittest
from collections import Counter
from pathlib import Path

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../e2e"))

from names_rtl import declaration_of, rtl_declarations, rtl_lines  # noqa: E402
from program import DESIGNS, FLOW_FILES, REPOSITORY, run  # noqa: E402
from reference import Netlist  # noqa: E402

FLOWS = Path(REPOSITORY, "designs/families")
NAMES = Path(REPOSITORY, "designs/names")
ROUTED = "ice40_routed"  # place and route keeps the position of any name of a net
#: What the RTL calls the clocks of the modules that go through the flows.
CLOCKS = {"async_fifo": {"rclk", "wclk"}, "cpu_core": {"clk"}, "fir_filter": {"clk"}, "ram_tdp": {"clk_a", "clk_b"},
          "uart_rx": {"clk"}}
FAMILIES = {"ice40": "iCE40", "ecp5": "ECP5", "nexus": "Nexus", "machxo2": "MachXO2", "xilinx": "Xilinx",
            "gowin": "Gowin", "max10": "Intel", "cyclonev": "Intel", "quicklogic": "QuickLogic",
            "anlogic": "Anlogic", "gatemate": "GateMate"}


def results(command, path, *options):
    return json.loads(run(command, str(path), *options, "--format", "json").stdout)["results"]


def nameless_nets(design):
    """Paths of the nets that have no name in the netlist."""
    lines = run("search", design, "$bit$", "--kind", "net", "--format", "jsonl").stdout.splitlines()[1:-1]
    return [json.loads(line)["path"] for line in lines]


def clocks_of(design, nets):
    """The net and the clock that the program gives for each name."""
    result = run("clock-of", design, "-", "--format", "csv", stdin="\n".join(nets))
    rows = list(csv.DictReader(result.stdout.splitlines()))
    if len(rows) != len(nets):
        raise AssertionError(f"{design}: {len(rows)} nets for {len(nets)} names: {result.stderr}")
    return zip(nets, rows)


def compare(path):
    """(wrong answers, outputs compared, all outputs, outputs by clock)"""
    netlist = Netlist(path)
    wanted = netlist.register_outputs()
    wrong, seen = [], set()
    names = [*netlist.names, *nameless_nets(str(path))]
    names = [name for name in names if netlist.bit(name) in wanted]
    for name, row in clocks_of(str(path), names):
        bit = netlist.bit(name)
        seen.add(bit)
        answer = netlist.bit(row["clock"]) if row["clock"] else None
        if answer is None or netlist.root(answer) not in wanted[bit] or netlist.bit(row["net"]) != bit:
            wrong.append((name, row, wanted[bit]))
    by_clock = Counter()
    for clock in (clock for clocks in wanted.values() for clock in clocks):
        names = [name for name, bits in netlist.names.items() if clock in bits]
        by_clock[min(names, key=lambda name: (len(name), name))] += 1
    return wrong, len(seen), len(wanted), by_clock


def names_found(path):
    """What the program shows for each signal that the RTL of the small design declares and the netlist still holds:
    its best name and the line of that one."""
    held = {name.rpartition("[")[0] if name.endswith("]") else name for name in Netlist(path).names}
    asked = {}
    for signal in rtl_lines():
        local = signal.rpartition("/")[2]
        escaped = signal[:len(signal) - len(local)] + "\\" + local
        if held & {signal, signal.replace("/", "."), escaped}:
            asked[escaped if escaped in held else signal] = signal
    pattern = "^(" + "|".join(re.escape(name) for name in asked) + ")$"
    rows = results("search", path, pattern, "--regex")
    found = {}
    for name, signal in asked.items():
        shown = [row for row in rows if name in (row["path"], row["matched"], *row["aliases"])]
        # A vector whose bits have other names is shown whole.
        own = [row for row in shown if row["path"] == name]
        if shown:
            row = max(own or shown, key=lambda row: row["width"])
            found[signal] = [row["path"], row["line"]]
    return found


def flows():
    """The netlists of the flows by name."""
    return {path.stem: path for path in Path(REPOSITORY).glob(FLOW_FILES)}


class Flows(unittest.TestCase):
    maxDiff = 4000

    def check(self, path, expected):
        wrong, seen, outputs, by_clock = compare(path)
        self.assertEqual(wrong, [])
        self.assertEqual(seen, outputs)
        self.assertEqual(dict(by_clock), expected)

    def test_every_register_output_has_its_clock_in_every_flow(self):
        expected = json.loads((FLOWS / "expected.json").read_text())
        self.assertEqual(sorted(path.stem for path in FLOWS.glob("*_*.json")), sorted(expected))
        for name, path in sorted(flows().items()):
            with self.subTest(name):
                self.check(path, expected[name])

    def test_register_outputs_names_and_positions_are_as_expected_in_every_flow_of_the_small_design(self):
        expected = json.loads((NAMES / "expected.json").read_text())
        files = {path.stem: path for path in (NAMES / "netlists").glob("*.json")}
        self.assertEqual(sorted(files), sorted(expected))
        lines = rtl_declarations()
        for name, path in sorted(files.items()):
            with self.subTest(name):
                self.check(path, expected[name]["registers"])
                found = names_found(path)
                self.assertEqual(found, expected[name]["names"])
                for shown, line in found.values():
                    if name != ROUTED:
                        self.assertIn(line, (None, lines[declaration_of(shown)]), shown)

    def test_every_register_output_of_the_whole_design_has_its_clock(self):
        for design in DESIGNS:
            with self.subTest(design):
                wrong, seen, outputs, _ = compare(Path(REPOSITORY, design))
                self.assertEqual(wrong, [])
                self.assertEqual(seen, outputs)
                self.assertGreater(outputs, 1500)

    def test_clocks_are_called_as_in_the_rtl_in_every_flow(self):
        for path in sorted(flows().values()):
            module = path.stem.rsplit("_", 1)[0]
            with self.subTest(path.stem):
                # An unused side of a memory has a clock pin that is tied to a constant.
                names = [clock["clock"] for clock in results("clocks", path) if clock["root"] != "constant"]
                if module in CLOCKS:
                    self.assertEqual(sorted(names), sorted(CLOCKS[module]))
                    continue
                # The gated clock has the name that the flow leaves of it.
                declared = Netlist(path).names
                shift = "clk_shift" if "clk_shift" in declared else "u_gate.clk_o"
                self.assertIn("clk", names)
                self.assertIn(shift, names)

    def test_the_names_of_one_clock_are_the_nets_of_its_wire(self):
        for path in sorted([*flows().values(), *(NAMES / "netlists").glob("*.json")]):
            with self.subTest(path.stem):
                netlist = Netlist(path)
                for clock in [clock for clock in results("clocks", path) if clock["root"] != "constant"]:
                    names = [clock["clock"], *clock["aliases"]]
                    self.assertEqual(len(names), len(set(names)))
                    bits = {netlist.root(netlist.bit(name)) for name in names if netlist.bit(name) is not None}
                    self.assertEqual(len(bits), 1, names)

    def test_nets_of_a_processor_have_the_clocks_that_they_have_before_mapping(self):
        before = {row["path"]: row["clocks"] for row in results("probes", FLOWS / "cpu_core_elaborated.json")}
        for flow in ("ice40", "ecp5", "xilinx", "gowin"):
            path = FLOWS / f"cpu_core_{flow}.json"
            netlist = Netlist(path)
            held = {name.rpartition("[")[0] or name for name in netlist.names}
            reached = netlist.reached_by_clocks()
            asked = [name for name in before if held & {name, name.replace("/", ".")}]
            self.assertGreater(len(asked), 25)
            for name in asked:
                # One net a run: where several clocks or inputs meet, the traces of a run share what they have found.
                bit_name = next(each for each in (f"{name}[4]", f"{name}[0]", f"{name}[12]", name)
                                if netlist.names.keys() & {each, each.replace("/", ".")})
                for _, row in clocks_of(str(path), [bit_name]):
                    bit = netlist.bit(row["net"])
                    with self.subTest(f"{flow} {bit_name}"):
                        if bit is not None:
                            self.assertEqual(row["clock"], "clk" if bit in reached else "")
                        self.assertIn(row["clock"], ["", *before[name]])

    def test_nothing_that_synthesis_named_is_a_probe_of_a_processor(self):
        declared = Netlist(FLOWS / "cpu_core_elaborated.json").names
        declared = {name.rpartition("[")[0] or name for name in declared}
        for flow in ("ice40", "ecp5", "xilinx", "gowin"):
            with self.subTest(flow):
                paths = [row["path"].replace(".", "/") for row in results("probes", FLOWS / f"cpu_core_{flow}.json")]
                # The words of a memory that became registers.
                probes = {path for path in paths if not re.fullmatch(r"u_regs/regs\[\d+\]", path)}
                self.assertEqual(probes - declared, set())

    def test_a_state_register_is_searched_and_probed_in_every_flow(self):
        for flow in ("elaborated", "ice40", "ecp5", "xilinx", "gowin"):
            with self.subTest(flow):
                path = FLOWS / f"cpu_core_{flow}.json"
                found = results("search", path, "state_q", "--kind", "bus")
                self.assertIn("state_q", [row["path"] for row in found])
                probes = results("probes", path)
                self.assertEqual([row["clocks"] for row in probes if row["path"] == "state_q"], [["clk"]])

    def test_info_names_the_family_and_no_cell_is_unknown(self):
        for path in sorted(flows().values()):
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
        found = {path.stem: {"registers": dict(compare(path)[3]), "names": names_found(path)}
                 for path in sorted((NAMES / "netlists").glob("*.json"))}
        (NAMES / "expected.json").write_text(json.dumps(found, indent=1, sort_keys=True) + "\n")
    else:
        unittest.main()
