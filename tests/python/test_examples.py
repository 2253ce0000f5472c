#!/usr/bin/env python3
"""Runs the examples, and checks their types and those of the package."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import netlistdb
from designs import BEFORE, ELABORATED, REPOSITORY

EXAMPLES = REPOSITORY / "python/examples"


class Examples(unittest.TestCase):
    def run_example(self, name, *arguments):
        return subprocess.run([sys.executable, "-W", "ignore", EXAMPLES / name, *map(str, arguments)], check=False,
                              capture_output=True, text=True, timeout=300)

    def test_unsafe_crossings_are_listed_and_counted(self):
        result = self.run_example("unsafe_crossings.py", ELABORATED)
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        self.assertIn("unsynchronized-reset: ", result.stdout)
        self.assertRegex(result.stdout, r"\n\S+ -> \S+: \d+ bits\n")

    def test_lost_nets_are_listed(self):
        result = self.run_example("lost_nets.py", *BEFORE, "**")
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, 1 if result.stdout else 0)

    def test_registers_are_listed_by_clock(self):
        result = self.run_example("registers_by_clock.py", ELABORATED)
        self.assertEqual(result.returncode, 0)
        self.assertIn("clk_sys_i: ", result.stdout)
        self.assertIn("\nu_cpu: ", result.stdout)
        self.assertIn("importing", result.stderr)


class Types(unittest.TestCase):
    def test_examples_and_package_pass_the_strict_checker(self):
        package = Path(netlistdb.__file__).parent
        environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        with tempfile.TemporaryDirectory() as cache:
            result = subprocess.run(["/usr/bin/mypy", "--strict", "--cache-dir", cache, "--ignore-missing-imports",
                                     *sorted(package.glob("*.py")), *sorted(EXAMPLES.glob("*.py"))],
                                    env={**environment, "MYPYPATH": str(package.parent)}, check=False,
                                    capture_output=True, text=True, timeout=300)
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)

    def test_the_stub_names_what_the_module_has(self):
        import ast
        from netlistdb import _native
        stub = ast.parse((Path(netlistdb.__file__).parent / "_native.pyi").read_text(encoding="utf-8"))
        described = {node.name: node for node in stub.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}
        hidden = {"Instances", "Nets", "Buses", "InstanceIterator", "NetIterator", "BusIterator", "Walk", "ProbeWalk"}
        public = {name for name in vars(_native) if not name.startswith("__")}
        self.assertEqual(public - hidden, set(described) - {"Items", "_Signal"})
        common = {node.name for node in described["_Signal"].body if isinstance(node, ast.FunctionDef)}
        for name in ("Instance", "Net", "Bus", "Clock", "Module", "Search"):
            told = {node.name for node in described[name].body if isinstance(node, ast.FunctionDef)}
            told |= common if name in ("Net", "Bus") else set()
            had = {member for member in vars(getattr(_native, name)) if not member.startswith("_")}
            self.assertEqual({member for member in told if not member.startswith("_")}, had, name)


if __name__ == "__main__":
    unittest.main()
