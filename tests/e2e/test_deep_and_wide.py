import json
import os
import resource
import subprocess
import unittest

from program import PROGRAM, ProgramTest, environment

LEVELS = int(os.environ["DEEP_LEVELS"])
CLOCKED_LEVELS = 1_000  # each query goes through all of them
SEARCHED_LEVELS = 1_000  # the lowest, where each full name holds those of all levels above
INSTANCES = int(os.environ["WIDE_INSTANCES"])
SMALL_STACK = 512 * 1024  # too small for anything that takes a frame for each level

PORTS = (("C", "input"), ("D", "input"), ("Q", "output"))


def ports():
    return {name: {"direction": direction, "bits": [at + 2]} for at, (name, direction) in enumerate(PORTS)}


def netnames():
    return {name: {"hide_name": 0, "bits": [at + 2], "attributes": {"src": "a.v:1.1"}} for at, (name, _) in enumerate(PORTS)}


def module(cell, **attributes):
    """A module with one cell on the nets of its ports."""
    return {"attributes": attributes, "ports": ports(), "cells": {"u": cell}, "netnames": netnames()}


def deep_netlist(levels):
    """A register below as many modules as there are levels."""
    connections = {name: [at + 2] for at, (name, _) in enumerate(PORTS)}
    register = {
        "type": "$dff",
        "parameters": {"WIDTH": 1, "CLK_POLARITY": 1},
        "port_directions": {"CLK": "input", "D": "input", "Q": "output"},
        "connections": {"CLK": [2], "D": [3], "Q": [4]},
    }
    modules = {"m0": module(register, src="a.v:1.1")}
    modules["m0"]["netnames"]["bottom"] = {"bits": [5]}
    for level in range(1, levels):
        modules[f"m{level}"] = module({"type": f"m{level - 1}", "connections": connections}, src="a.v:1.1")
    return json.dumps({"modules": modules})


def write_wide_netlist(path):
    """A module of registers side by side, all on the nets C and D."""
    with open(path, "w") as stream:
        stream.write('{"modules": {"top": {"ports": {"C": {"direction": "input", "bits": [2]}, ')
        stream.write('"D": {"direction": "input", "bits": [3]}}, "cells": {')
        stream.write(
            ",".join(
                f'"f{at}": {{"type": "$_DFF_P_", "port_directions": {{"C": "input", "D": "input", "Q": "output"}}, '
                f'"connections": {{"C": [2], "D": [3], "Q": [{at + 4}]}}}}'
                for at in range(INSTANCES)
            )
        )
        stream.write('}, "netnames": {"C": {"bits": [2]}, "D": {"bits": [3]}, ')
        stream.write(f'"first": {{"bits": [4]}}, "last": {{"bits": [{INSTANCES + 3}]}}}}}}}}}}')


class DeepAndWide(ProgramTest):
    def run_with_small_stack(self, *arguments):
        result = subprocess.run(
            [PROGRAM, *arguments],
            capture_output=True,
            text=True,
            env=environment(),
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_STACK, (SMALL_STACK, resource.RLIM_INFINITY)),
        )
        self.assertEqual(result.returncode, 0, result.stderr[-1000:])
        return result.stdout

    def document(self, *arguments):
        return json.loads(self.run_with_small_stack(*arguments, "--format", "json"))

    def answers(self, *arguments):
        return self.document(*arguments)["results"]

    def test_a_hierarchy_of_many_levels(self):
        design = self.file("deep.json", deep_netlist(LEVELS))
        saved = self.path("deep.netlist")
        deepest = "u/" * (LEVELS - 1) + "Q"
        self.run_with_small_stack("save", design, saved)
        self.assertEqual(self.run_with_small_stack("info", design), self.run_with_small_stack("info", saved))
        self.assertEqual(self.document("info", saved)["levels"][-1]["depth"], LEVELS)
        self.assertEqual(len(self.answers("tree", saved, "--depth", "3")), 4)
        start = "/".join("u" * (LEVELS - SEARCHED_LEVELS))
        found = [row["path"] for row in self.answers("search", saved, "bottom", "--from", start)]
        self.assertEqual(found, [deepest.replace("Q", "bottom")])
        self.assertEqual([row["clock"] for row in self.answers("clock-of", saved, deepest)], ["C"])

    def test_the_clocks_of_all_nets_of_many_levels(self):
        design = self.file("deep.json", deep_netlist(CLOCKED_LEVELS))
        self.assertEqual([(row["clock"], row["nets"]) for row in self.answers("clocks", design)], [("C", CLOCKED_LEVELS)])

    def test_a_module_of_many_instances_on_one_net(self):
        design = self.path("wide.json")
        write_wide_netlist(design)
        saved = self.path("wide.netlist")
        self.run_with_small_stack("save", design, saved)
        os.remove(design)
        last = f"f{INSTANCES - 1}"
        self.assertEqual([row["path"] for row in self.answers("search", saved, last)], [last])
        self.assertEqual([row["clock"] for row in self.answers("clock-of", saved, "first", "last")], ["C", "C"])


if __name__ == "__main__":
    unittest.main()
