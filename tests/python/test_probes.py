#!/usr/bin/env python3
"""Asks what may be probed, and what nets are in the device: what the program says, on handles."""

import unittest

import netlistdb
from designs import BEFORE, ELABORATED, program


class Probes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1])

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def test_probes_are_those_of_the_program(self):
        rows = program("probes", *BEFORE)["results"]
        probes = list(self.design.probes())
        self.assertEqual([(probe.item.path, probe.verdict, probe.reasons, probe.clock and probe.clock.name)
                          for probe in probes],
                         [(row["path"], row["verdict"], row["reasons"], row["clock"]) for row in rows])
        self.assertGreater(len({probe.verdict for probe in probes}), 1)

    def test_a_net_says_the_same_as_the_list(self):
        for probe in self.design.probes():
            self.assertEqual(probe.item.probe, probe)
            self.assertEqual(probe.ok, probe.verdict in ("ok", "warning"))
            self.assertEqual(len(probe.bits), probe.item.width)

    def test_one_form_tells_what_that_netlist_shows(self):
        with netlistdb.load(ELABORATED) as design:
            rows = program("probes", ELABORATED, "--from", "u_cpu")["results"]
            self.assertEqual([(probe.item.path, probe.verdict) for probe in design.probes(below="u_cpu")],
                             [(row["path"], row["verdict"]) for row in rows])
            with self.assertRaisesRegex(netlistdb.Error, "the post-map form is not loaded"):
                design.map(design.top.nets[0])

    def test_matches_are_those_of_the_program(self):
        for row in program("map", *BEFORE)["results"]:
            match = self.design.map(row["net"])
            self.assertEqual((match.grade, match.reason, match.net and match.net.path, match.cell, match.evidence),
                             (row["grade"], row["reason"], row["match"], row["cell"], row["evidence"]))

    def test_a_match_leads_there_and_back(self):
        nets = [net for net in self.design.top.nets if net.is_user_declared]
        there = [(net, self.design.map(net).net) for net in nets]
        pairs = [(net, device) for net, device in there if device is not None]
        self.assertGreater(len(pairs), 10)
        for net, device in pairs:
            back = self.design.map(device)
            self.assertIn(net.path.split("[")[0], [target.net.path.split("[")[0] for target in back.targets])

    def test_a_bus_is_matched_bit_by_bit(self):
        bus = self.design["u_link/count_q"]
        self.assertEqual(self.design.map(bus), [self.design.map(bit) for bit in bus.bits])
        with self.assertRaises(TypeError):
            self.design.map("u_link")

    def test_nets_of_the_device_are_not_asked_for_their_probe(self):
        with self.assertRaisesRegex(ValueError, "elaborated form"):
            self.design.device.top.nets[0].probe

    def test_nets_of_another_design_are_refused(self):
        with netlistdb.load(ELABORATED) as other:
            for item in (other["clk_sys_i"], other["u_cpu/pc_o"], other["u_cpu/pc_o[1:0]"]):
                with self.assertRaisesRegex(ValueError, "is not part of <Design"):
                    self.design.map(item)
            for below in (other["u_cpu"], self.design.device.top):
                with self.assertRaisesRegex(ValueError, "is not part of <Design"):
                    self.design.probes(below=below)


if __name__ == "__main__":
    unittest.main()
