#!/usr/bin/env python3
"""Asks for clocks and the paths between them: what the program says, on handles."""

import tempfile
import unittest
from pathlib import Path

import netlistdb
from designs import ELABORATED, program


class Clocks(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(ELABORATED)

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def test_clocks_are_those_of_the_program(self):
        rows = {row["clock"]: row for row in program("clocks", ELABORATED)["results"]}
        self.assertEqual({clock.name for clock in self.design.clocks}, set(rows))
        for clock in self.design.clocks:
            row = rows[clock.name]
            self.assertEqual((clock.root, clock.edges, clock.registers, [parent.name for parent in clock.parents]),
                             (row["root"], row["edges"], row["registers"], row["parents"]))

    def test_a_clock_is_found_by_each_of_its_names(self):
        for clock in self.design.clocks:
            for name in (clock.name, *clock.aliases):
                self.assertEqual(self.design.clock(name), clock)
        with self.assertRaises(netlistdb.NotFoundError):
            self.design.clock("no such clock")

    def test_clocks_of_nets_are_those_of_the_program(self):
        paths = [net.path for net in self.design["u_cpu"].nets][:40] + ["uart_rx_i[0]", "clk_sys_i"]
        for row in program("clock-of", ELABORATED, "--capture", *paths)["results"]:
            net = self.design[row["net"]]
            self.assertEqual([clock.name for clock in net.clocks], row["clocks"])
            self.assertEqual([clock.name for clock in net.networks], row["networks"])
            self.assertEqual(net.reached_by, row["reached_by"])
            self.assertEqual({capture.clock.name: ",".join(capture.roles) for capture in net.captures},
                             row["captured_by"])
            self.assertEqual(net.reaches, row["reaches"])
            self.assertEqual(net.clock, net.clocks[0] if net.clocks else None)

    def test_a_bus_has_the_clocks_of_its_bits(self):
        for bus in self.design["u_cpu"].buses:
            self.assertEqual(set(bus.clocks), {clock for bit in bus.bits for clock in bit.clocks})

    def test_why_proves_each_clock(self):
        net = next(net for net in self.design["u_cpu"].nets if net.clocks)
        why = net.why()
        self.assertEqual([chain["clock"] for chain in why.chains["clocks"]], [clock.name for clock in net.clocks])
        row = program("clock-of", ELABORATED, "--why", net.path)["results"][0]
        self.assertEqual(why.chains, row["why"])
        self.assertIn("clocked by", str(why))

    def test_crossings_are_those_of_the_program(self):
        for options, by_bit in (((), False), (("--bits",), True)):
            rows = program("crossings", ELABORATED, *options)["results"]
            found = [(each.severity, each.kind, each.launch and each.launch.name, each.capture.name, each.launched,
                      each.captured, each.bits, each.cells, each.stages, each.is_kept, each.captured_cell,
                      each.source and each.source.line) for each in self.design.crossings(by_bit=by_bit)]
            keys = ("severity", "class", "launch", "capture", "from", "to", "bits", "cells", "stages", "kept", "to_cell",
                    "line")
            self.assertEqual(found, [tuple(row[key] for key in keys) for row in rows])
            self.assertGreater(len(found), 10)

    def test_ends_of_crossings_are_nets_of_the_clocks(self):
        for crossing in self.design.crossings(by_bit=True):
            if crossing.launched_net is not None and crossing.launch is not None:
                self.assertIn(crossing.launch, crossing.launched_net.clocks)

    def test_rules_waive_and_say_what_they_have_in_vain(self):
        with tempfile.TemporaryDirectory() as folder:
            rules = Path(folder) / "rules"
            rules.write_text("waive ** ** looked at\nwaive nothing/at/all ** never\n")
            with self.assertWarnsRegex(netlistdb.NetlistWarning, "nothing/at/all"):
                crossings = self.design.crossings(rules)
            self.assertEqual({crossing.waived for crossing in crossings}, {"looked at"})
            rules.write_text("wave ** **\n")
            with self.assertRaisesRegex(netlistdb.Error, f"^{rules}:1: "):
                self.design.crossings(rules)

    def test_tables_show_names(self):
        self.assertIn(">clk_sys_i</td>", self.design.clocks._repr_html_())
        self.assertIn(">unsafe</td>", self.design.crossings()._repr_html_())


if __name__ == "__main__":
    unittest.main()
