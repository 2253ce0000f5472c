"""Clocks of nets against simulation: while one clock alternates and all else stands still, every net that changes must
have that clock, or one made from it, among those that reach it."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

from netlist_simulation import simulate

REPOSITORY = os.environ["REPOSITORY"]
PROGRAM = os.environ["NETLISTDB"]
DESIGNS = os.path.join(REPOSITORY, "designs")
HERE = os.path.dirname(os.path.abspath(__file__))

TWO_CLOCKS = {"clk_a_i": "clk_a_i", "clk_b_i": "clk_b_i"}
SOC_CLOCKS = {"clk_sys_i": "clk_sys_i", "clk_adc_i": "clk_adc_i", "host_sclk_i": "host_sclk_i"}

#: Top, netlist, and what each clock of the test bench is called by the program.
NETLISTS = [
    *((design, f"clocks/netlists/{design}_{form}.json", TWO_CLOCKS)
      for design in ("trees", "bridges", "stores", "levels") for form in ("elaborated", "postmap")),
    ("soc_top", "soc_elaborated.json", {**SOC_CLOCKS, "pll": "u_clocks/clk_pll"}),
    ("soc_top", "soc_postmap.json", {**SOC_CLOCKS, "pll": "u_clocks.clk_pll"}),
]


def results(command, netlist, *arguments, stdin=None):
    result = subprocess.run([PROGRAM, command, netlist, *arguments, "--format", "json"], input=stdin, text=True,
                            capture_output=True, timeout=300, check=False)
    if result.returncode not in (0, 1):
        raise RuntimeError(result.stderr)
    return json.loads(result.stdout)["results"]


def made_from(clocks):
    """For each clock, itself and everything that it is made from."""
    parents = {row["clock"]: row["parents"] for row in clocks}
    result = {}
    for clock in parents:
        reached, waiting = set(), [clock]
        while waiting:
            each = waiting.pop()
            if each not in reached:
                reached.add(each)
                waiting.extend(parents[each])
        result[clock] = reached
    return result


def instances_with_contents(netlist, top):
    """Paths of all instances of modules that are more than pins."""
    with open(netlist) as stream:
        modules = json.load(stream)["modules"]
    paths, waiting = set(), [("", top)]
    while waiting:
        path, name = waiting.pop()
        module = modules.get(name, {"attributes": {"blackbox": 1}})
        if not {"blackbox", "whitebox"} & set(module["attributes"]):
            paths.add(path)
            waiting += [(f"{path}/{each}".strip("/"), cell["type"]) for each, cell in module["cells"].items()
                        if cell["type"] in modules]
    return paths


class OneClockAtATime(unittest.TestCase):
    def test_a_net_that_changes_with_a_clock_is_reached_by_it(self):
        checked = changed = with_loops = violations = 0
        for top, path, clocks in NETLISTS:
            with self.subTest(path):
                netlist = os.path.join(DESIGNS, path)
                reaching = self.reaching(netlist)
                listed = {row["clock"] for row in results("clocks", netlist)}
                self.assertLessEqual(set(clocks.values()), listed)
                instances = instances_with_contents(netlist, top)
                seen = {name: with_clocks for name, with_clocks in self.changes(top, netlist, clocks).items()
                        if name in reaching and name.rpartition("/")[0] in instances}
                self.assertGreater(len(seen), 20)
                wrong = []
                for name, with_clocks in seen.items():
                    allowed, ends_in_loop = reaching[name]
                    checked += 1
                    changed += bool(with_clocks)
                    if ends_in_loop:
                        # It may run without any clock.
                        with_loops += 1
                        continue
                    wrong += [(name, clock) for clock in with_clocks if clocks[clock] not in allowed]
                violations += len(wrong)
                self.assertEqual(wrong, [])
        print(f"nets checked: {checked}, of which changed: {changed}; left out, behind loops: {with_loops}; "
              f"violations: {violations}", file=sys.stderr)
        self.assertGreater(changed, 1500)

    def reaching(self, netlist):
        """For each net, the clocks it may change with, and whether a loop reaches it."""
        roots = made_from(results("clocks", netlist))
        names = subprocess.run([PROGRAM, "search", netlist, "", "--paths"], capture_output=True, text=True, timeout=300,
                               check=True).stdout
        return {
            row["net"]: (set().union(*(roots[clock] for clock in row["clocks"] + row["networks"])),
                         "loop" in row["reached_by"])
            for row in results("clock-of", netlist, "-", stdin=names)
        }

    def changes(self, top, netlist, clocks):
        models = [os.path.join(HERE, "generic_cells.v"), os.path.join(DESIGNS, "sim", "kvr_models.v")]
        if top == "soc_top":
            models.append(os.path.join(HERE, "analog_pll.v"))
        with open(netlist) as stream:
            inputs = json.load(stream)["modules"][top]["ports"]
        resets = {"rst_ni": 0} if "rst_ni" in inputs else {}
        with tempfile.TemporaryDirectory() as scratch:
            seen = simulate(netlist, top, clocks, resets, models, scratch, seed=1, rounds=10, cycles=60)
        return {name if bit is None else f"{name}[{bit}]": changed for (name, bit), changed in seen.items()}


if __name__ == "__main__":
    unittest.main()
