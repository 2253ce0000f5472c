#!/usr/bin/env python3
"""Loads designs of every kind, one and several at a time, and closes them."""

import gc
import gzip
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import netlistdb
from designs import ELABORATED, POST_MAP, REPOSITORY

SMALL = """{"modules": {"%s": {"attributes": {"top": "1"}, "ports": {"a": {"direction": "input", "bits": [2]}},
"cells": {}, "netnames": {"a": {"bits": [2], "hide_name": 0, "attributes": {"src": "rtl/%s.v:7"}}}}}}"""


class Load(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def small(self, name):
        file = self.folder / f"{name}.json"
        file.write_text(SMALL % (name, name))
        return file

    def test_a_design_tells_its_file_its_top_and_its_form(self):
        with netlistdb.load(ELABORATED) as design:
            self.assertEqual(design.name, str(ELABORATED))
            self.assertEqual(design.top.module.name, "soc_top")
            self.assertEqual(design.form, "elaborated")
            self.assertIsNone(design.device)
            self.assertIn("analog_pll", design.notes[0])
            self.assertIn("soc_top, elaborated", repr(design))

    def test_notes_of_the_reader_are_warnings(self):
        with self.assertWarnsRegex(netlistdb.NetlistWarning, "analog_pll"):
            netlistdb.load(ELABORATED)

    def test_both_forms_are_one_design(self):
        with netlistdb.load(elaborated=ELABORATED, post_map=POST_MAP) as design:
            self.assertEqual((design.form, design.device.form), ("elaborated", "post-map"))
            self.assertEqual(design.device, design.device)
            self.assertNotEqual(design, design.device)
            self.assertNotEqual(design.top, design.device.top)
        with self.assertRaises(netlistdb.ClosedError):
            design.device.top.path

    def test_compressed_and_saved_netlists_are_the_same_design(self):
        packed = self.folder / "packed.json.gz"
        packed.write_bytes(gzip.compress(ELABORATED.read_bytes()))
        saved = self.folder / "design.netlist"
        environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        subprocess.run([os.environ["NETLISTDB"], "save", ELABORATED, saved], check=True, timeout=120,
                       env=environment, capture_output=True)
        with netlistdb.load(ELABORATED) as design:
            paths = [instance.path for instance in design.walk()]
        for file in (packed, saved):
            with netlistdb.load(file) as design:
                self.assertEqual([instance.path for instance in design.walk()], paths)

    @unittest.skipUnless(shutil.which("yosys"), "needs yosys")
    def test_verilog_sources_lists_and_macros_are_read(self):
        (self.folder / "top.v").write_text("`include \"width.vh\"\nmodule top(input [`WIDTH-1:0] a, output b);\n"
                                           "  assign b = ^a;\nendmodule\n")
        (self.folder / "width.vh").write_text("`ifndef WIDTH\n`define WIDTH 2\n`endif\n")
        (self.folder / "files.f").write_text("top.v\n")
        with netlistdb.load(self.folder / "top.v", include_dirs=self.folder, defines=["WIDTH=5"]) as design:
            self.assertEqual(design["a"].width, 5)
        with netlistdb.load(file_lists=self.folder / "files.f", include_dirs=self.folder) as design:
            self.assertEqual(design["a"].width, 2)

    def test_a_relative_source_begins_where_it_is_told(self):
        with netlistdb.load(self.small("one"), source_root="/somewhere") as design:
            self.assertEqual(str(design["a"].source), "/somewhere/rtl/one.v:7")

    def test_designs_side_by_side_know_nothing_of_each_other(self):
        files = {name: self.small(name) for name in ("one", "two", "three")}
        designs = {name: netlistdb.load(file, source_root=f"/{name}") for name, file in files.items()}
        again = netlistdb.load(files["one"], source_root="/again")
        designs.pop("two").close()
        with self.assertRaisesRegex(netlistdb.Error, "no module"):
            netlistdb.load(files["three"], top="one")
        for name, design in designs.items():
            self.assertEqual(str(design["a"].source), f"/{name}/rtl/{name}.v:7")
            self.assertEqual(design.top.module.name, name)
        self.assertNotEqual(designs["one"]["a"], again["a"])
        self.assertEqual(str(again["a"].source), "/again/rtl/one.v:7")

    def test_a_refused_design_leaves_the_others_alone(self):
        design = netlistdb.load(ELABORATED)
        with self.assertRaisesRegex(netlistdb.Error, "unfolds to 1491 instances, beyond the limit of 3"):
            netlistdb.load(ELABORATED, max_instances=3)
        self.assertEqual(design["adc_valid_i"].source.line, netlistdb.load(ELABORATED)["adc_valid_i"].source.line)
        self.assertGreater(len(design.clocks), 3)

    def test_what_nobody_holds_is_closed(self):
        for _ in range(3):
            net = netlistdb.load(ELABORATED).top.nets[0]
            gc.collect()
            self.assertTrue(net.path)
            del net

    def test_errors_are_those_of_the_program(self):
        broken = self.folder / "broken.json"
        broken.write_text('{"modules": {')
        faults = {("nowhere.json",): "^nowhere.json: No such file or directory$",
                  (str(broken),): f"^{broken}: .*",
                  (REPOSITORY / "README.md",): "neither a Yosys JSON netlist nor an undamaged saved netlist",
                  (ELABORATED, POST_MAP): "a design is one; several files are Verilog sources",
                  (): "^no design given$"}
        for files, message in faults.items():
            with self.assertRaisesRegex(netlistdb.Error, message):
                netlistdb.load(*files)
        with self.assertRaisesRegex(netlistdb.Error, "no module 'soc'.*did you mean 'soc_top'"):
            netlistdb.load(ELABORATED, top="soc")
        with self.assertRaisesRegex(ValueError, "none of elaborated, post-map"):
            netlistdb.load(ELABORATED, form="mapped")


if __name__ == "__main__":
    unittest.main()
