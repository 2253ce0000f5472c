import csv
import json
import os
import json
import unittest

from program import DESIGNS, ELABORATED, POST_MAP, REPOSITORY, ProgramTest, bit_module, net, netlist, run, rows_of_csv


def expectations(design):
    """What a reader of the RTL expects: clocks by net, None where there is none."""
    with open(os.path.join(REPOSITORY, design.replace(".json", ".clocks.csv"))) as stream:
        return {row["path"]: None if row["clock"] == "-" else row["clock"] for row in csv.DictReader(stream)}


def tied_names(design):
    """Bits of names that are tied to constants: no nets."""
    with open(os.path.join(REPOSITORY, design)) as stream:
        modules = json.load(stream)["modules"]
    return {
        each
        for name, fields in modules["soc_top"]["netnames"].items()
        for position, bit in enumerate(fields["bits"])
        for path in (name, fields["attributes"].get("hdlname", name).replace(" ", "/"))
        for index in (position, len(fields["bits"]) - 1 - position)[fields.get("upto", 0) :][:1]
        for each in (path, f"{path}[{fields.get('offset', 0) + index}]")
        if isinstance(bit, str)
    }


class Clocks(ProgramTest):
    def clocks_of(self, design, paths):
        text = self.succeed("clock-of", design, "-", "--format", "csv", stdin="\n".join(paths))
        return {row["net"]: row["clock"] or None for row in rows_of_csv(text)}

    def test_the_clock_of_each_net_is_what_a_reader_of_the_rtl_expects(self):
        for design in DESIGNS:
            with self.subTest(design):
                expected = expectations(design)
                self.assertGreater(len(expected), 50)
                self.assertEqual(self.clocks_of(design, expected), expected)

    def test_one_query_at_a_time_answers_the_same(self):
        for path in ("u_clocks/clk_div_o", "spi_cs_no[0]", "u_cpu/pc_o[0]"):
            result = run("clock-of", ELABORATED, path, "--format", "csv")
            self.assertEqual(rows_of_csv(result.stdout), [{"net": path, "clock": "clk_sys_i"}], path)

    def test_lists_every_domain_with_the_nets_it_drives(self):
        for design in DESIGNS:
            with self.subTest(design):
                document = self.json("clocks", design)
                driven = {row["clock"]: row["nets"] for row in document["results"]}
                self.assertEqual(len(driven), len(document["results"]))
                self.assertTrue({clock for clock in expectations(design).values() if clock} <= set(driven))
                self.assertEqual(sum(driven.values()) + document["nets_without_clock"], document["nets"])

    def test_counts_what_clock_of_answers(self):
        design = POST_MAP
        paths = [row["path"] for row in self.results("search", design, "") if row["kind"] != "instance"]
        cells = {row["path"] for row in self.results("tree", design) if row["depth"]}
        paths = [path for path in paths if path.rpartition("/")[0] not in cells]
        counted = {}
        answers = self.clocks_of(design, paths)
        for clock in [clock for net, clock in answers.items() if net not in tied_names(design)]:
            counted[clock] = counted.get(clock, 0) + 1
        document = self.json("clocks", design)
        self.assertEqual({row["clock"]: row["nets"] for row in document["results"] if row["nets"]},
                         {clock: number for clock, number in counted.items() if clock})
        self.assertEqual(document["nets_without_clock"], counted[None])

    def test_domains_stand_in_the_order_of_the_netlist(self):
        rows = self.results("clocks", ELABORATED)
        instances = [row["path"] for row in self.results("tree", ELABORATED)]
        nets = [row["path"] for row in self.results("search", ELABORATED, "")]
        expected = sorted(rows, key=lambda row: (instances.index(row["instance"]), nets.index(row["clock"])))
        self.assertEqual(rows, expected)
        self.assertEqual(self.succeed("clocks", ELABORATED), self.succeed("clocks", ELABORATED))

    def test_a_bus_answers_for_each_of_its_bits(self):
        rows = self.results("clock-of", ELABORATED, "spi_cs_no")
        self.assertEqual([row["net"] for row in rows], ["spi_cs_no[0]", "spi_cs_no[1]", "spi_cs_no[2]"])
        self.assertEqual({row["clock"] for row in rows}, {"clk_sys_i"})

    def test_bits_of_a_bus_go_by_their_index_in_the_bus(self):
        rows = self.results("clock-of", ELABORATED, "g_uart[0].u_uart/u_tx/left_q[3]")
        self.assertEqual([row["net"] for row in rows], ["g_uart[0].u_uart/u_tx/left_q[3]"])
        self.fail_with(2, "clock-of", ELABORATED, "g_uart[0].u_uart/u_tx/left_q[4]")

    def test_asking_for_pins_of_cells_as_well_changes_no_answer(self):
        expected = expectations(POST_MAP)
        pins = [row["path"] for row in self.results("search", POST_MAP, "/I0") if row["kind"] == "net"]
        self.assertTrue(pins)
        answers = self.clocks_of(POST_MAP, pins + list(expected))
        self.assertEqual({path: answers[path] for path in expected}, expected)

    def test_a_net_without_clock_is_nothing_found(self):
        result = run("clock-of", ELABORATED, "clk_sys_i", "--format", "csv")
        self.assertEqual((result.returncode, result.stdout), (1, "net,clock\nclk_sys_i,\n"))
        result = run("clock-of", ELABORATED, "clk_sys_i")
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"^NET +CLOCK\nclk_sys_i +\(none\)\n$")

    def test_a_design_without_registers_has_no_clocks(self):
        design = self.file("wires.json", netlist(top=bit_module({}, {"a": net(2)})))
        self.assertEqual(run("clocks", design).returncode, 1)

    def test_says_how_many_nets_no_clock_drives(self):
        document = self.json("clocks", ELABORATED)
        notes = run("clocks", ELABORATED).stderr.splitlines()
        self.assertIn(f"netlistdb: {document['nets_without_clock']} of {document['nets']} nets are driven by no clock", notes)
        self.assertNotIn("driven by no clock", run("clocks", ELABORATED, "--format", "csv").stderr)

    def test_cells_that_nobody_knows_are_counted(self):
        for design, end in ((ELABORATED, "no clock is followed further back"), (POST_MAP, "taken for combinational")):
            for command in (["info"], ["clocks"], ["clock-of", "--", "rst_ni"], ["probes"]):
                note = run(command[0], design, *command[1:]).stderr
                self.assertIn(f"netlistdb: 1 cell of the unknown type analog_pll: {end}; --cells adds it\n", note)
        self.assertEqual(run("search", ELABORATED, "rst_ni").stderr, "")

    def test_own_cells_are_told_by_a_table_or_by_models(self):
        netlist = self.netlist_of_own_cells()
        self.assertIn("3 cells of 2 unknown types, MY_FF first: taken for combinational; --cells adds them",
                      run("clocks", netlist, "--form", "post-map").stderr)
        table = self.file("mine.json", json.dumps({"format": "netlistdb-cells", "version": 1, "family": "Mine", "cells": {
            "MY_FF": {"kind": "flip-flop", "clocks": [{"pin": "CK", "outputs": "Q"}]},
            "MY_INV": {"kind": "logic"}}}))
        models = self.file("mine.v", "module MY_FF(input CK, D, output reg Q); always @(posedge CK) Q <= D; endmodule\n"
                                     "module MY_INV(input A, output Y); assign Y = ~A; endmodule\n")
        for cells in (table, models):
            result = run("clock-of", netlist, "q", "--cells", cells, "--format", "csv")
            self.assertEqual((result.stdout, result.stderr), ("net,clock\nq,clk\n", ""))
        self.assertEqual(json.loads(run("info", netlist, "--cells", table, "--format", "json").stdout)["family"], "Mine")

    def test_broken_tables_and_models_are_refused(self):
        netlist = self.netlist_of_own_cells()
        for name, content, fault in (("none.json", "{", "not valid JSON"), ("none.v", "module (", "syntax error"),
                                     ("kind.json", '{"format": "netlistdb-cells"}', '"version" must be 1')):
            self.assertIn(fault, self.fail_with(3, "clocks", netlist, "--cells", self.file(name, content)))

    def netlist_of_own_cells(self):
        def cell(kind, **pins):
            return {"type": kind, "port_directions": {pin: "output" if pin in "QY" else "input" for pin in pins},
                    "connections": {pin: [bit] for pin, bit in pins.items()}}

        return self.file("own.json", json.dumps({"modules": {"top": {
            "ports": {"clk": {"direction": "input", "bits": [2]}, "q": {"direction": "output", "bits": [5]}},
            "cells": {"a": cell("MY_FF", CK=2, D=5, Q=3), "b": cell("MY_FF", CK=2, D=3, Q=4),
                      "c": cell("MY_INV", A=4, Y=5)}}}}))


if __name__ == "__main__":
    unittest.main()
