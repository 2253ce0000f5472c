#!/usr/bin/env python3
"""Keeps plans: what the program keeps, read and written from Python."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import netlistdb
from netlistdb import plan
from designs import AFTER, BEFORE, PLANS, program


class Plans(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1])

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.file = self.folder / "boot.plan"

    def test_a_plan_is_the_file_that_the_program_writes(self):
        signals = ["u_watch/seen_q", "u_link/count_q"]
        added = plan.add(self.file, self.design, [signals[0], self.design[signals[1]]])
        self.assertEqual([probe.name for probe in added], signals)
        other = self.folder / "other.plan"
        environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        subprocess.run([os.environ["NETLISTDB"], "plan", "add", other, *BEFORE, *signals], check=True,
                       capture_output=True, timeout=300, env=environment)
        self.assertEqual(self.file.read_text(), other.read_text())
        self.assertEqual(plan.read(self.file), added)

    def test_what_is_there_is_not_added_again(self):
        plan.add(self.file, self.design, "u_watch/seen_q")
        with self.assertWarnsRegex(netlistdb.NetlistWarning, "'u_watch/seen_q' is there already"):
            self.assertEqual(plan.add(self.file, self.design, "u_watch/seen_q"), [])

    def test_check_says_what_the_program_says_and_changes_nothing(self):
        self.file.write_text((PLANS / "probes.plan").read_text())
        with netlistdb.load(elaborated=AFTER[0], post_map=AFTER[1]) as design:
            checked = plan.check(self.file, design)
        rows = program("plan", "check", self.file, *AFTER)["results"]
        self.assertEqual([(each.name, each.verdict, each.findings[0].text) for each in checked],
                         [(row["probe"], row["verdict"], row["text"]) for row in rows])
        self.assertEqual([[bit._asdict() for bit in each.bits] for each in checked],
                         [[{("is_inverted" if key == "inverted" else key): value for key, value in bit.items()}
                           for bit in row["bits"]] for row in rows])
        self.assertGreater(len({each.verdict for each in checked}), 2)
        self.assertEqual(self.file.read_text(), (PLANS / "probes.plan").read_text())

    def test_update_writes_what_the_program_writes(self):
        other = self.folder / "other.plan"
        for file in (self.file, other):
            file.write_text((PLANS / "probes.plan").read_text())
        with netlistdb.load(elaborated=AFTER[0], post_map=AFTER[1]) as design:
            verdicts = [each.verdict for each in plan.update(self.file, design)]
            self.assertIn("renamed", verdicts)
            self.assertNotIn("renamed", [each.verdict for each in plan.check(self.file, design)])
        program("plan", "update", other, *AFTER)
        self.assertEqual(self.file.read_text(), other.read_text())

    def test_export_writes_what_the_program_writes(self):
        plan.add(self.file, self.design, ["u_watch/seen_q", "u_link/count_q"])
        environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        for form in ("csv", "json", "tcl"):
            output = self.folder / f"plan.{form}"
            plan.export(self.file, form, output)
            theirs = subprocess.run([os.environ["NETLISTDB"], "plan", "export", self.file, "--to", form], check=True,
                                    capture_output=True, timeout=300, env=environment).stdout
            self.assertEqual(output.read_bytes(), theirs)

    def test_faults_name_file_and_line(self):
        self.file.write_text("netlistdb-plan 1\nprobe\n")
        with self.assertRaisesRegex(netlistdb.Error, f"^{self.file}:2: "):
            plan.read(self.file)
        self.file.unlink()
        with self.assertRaisesRegex(netlistdb.Error, "No such file"):
            plan.check(self.file, self.design)
        with self.assertRaisesRegex(netlistdb.Error, "no net or bus 'u_watch/sen_q'; did you mean 'u_watch/seen_q'"):
            plan.add(self.file, self.design, "u_watch/sen_q")
        self.assertFalse(self.file.exists())
        with self.assertRaises(ValueError):
            plan.read("-")


if __name__ == "__main__":
    unittest.main()
