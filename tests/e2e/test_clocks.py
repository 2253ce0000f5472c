import csv
import json
import os
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
    def first_clocks_of(self, design, paths):
        text = self.succeed("clock-of", design, "-", "--first", "--format", "csv", stdin="\n".join(paths))
        return {row["net"]: row["clock"] or None for row in rows_of_csv(text)}

    def rows_of(self, design, paths):
        result = run("clock-of", design, "-", "--format", "json", stdin="\n".join(paths))
        return json.loads(result.stdout)["results"]

    def clocks_of(self, design, paths):
        text = self.succeed("clock-of", design, "-", "--format", "csv", stdin="\n".join(paths))
        return {row["net"]: row["clocks"].split() for row in rows_of_csv(text)}

    def aliases(self, design):
        """From every name of a clock to the one that it is listed by."""
        return {name: row["clock"] for row in self.results("clocks", design) for name in [row["clock"], *row["aliases"]]}

    def test_the_clock_of_each_net_is_what_a_reader_of_the_rtl_expects(self):
        for design in DESIGNS:
            with self.subTest(design):
                expected = expectations(design)
                self.assertGreater(len(expected), 50)
                names = self.aliases(design)
                wanted = {path: names.get(clock) for path, clock in expected.items()}
                first = {path: names.get(clock) for path, clock in self.first_clocks_of(design, expected).items()}
                self.assertEqual(first, wanted)
                for row in self.rows_of(design, expected):
                    # The trace goes through black boxes of a mapped netlist.
                    if wanted[row["net"]] is not None and "black-box" not in row["reached_by"]:
                        self.assertIn(wanted[row["net"]], row["clocks"], row)

    def test_one_query_at_a_time_finds_the_same(self):
        for path in ("u_clocks/clk_div_o", "spi_cs_no[0]", "u_cpu/pc_o[0]"):
            result = run("clock-of", ELABORATED, path, "--first", "--format", "csv")
            self.assertEqual(rows_of_csv(result.stdout), [{"net": path, "clock": "clk_sys_i"}], path)
            self.assertEqual(self.clocks_of(ELABORATED, [path]), {path: ["clk_sys_i"]})

    def test_lists_every_clock_with_its_nets_and_registers(self):
        for design in DESIGNS:
            with self.subTest(design):
                document = self.json("clocks", design)
                clocks = {row["clock"]: row for row in document["results"]}
                self.assertEqual(len(clocks), len(document["results"]))
                names = self.aliases(design)
                self.assertTrue({names[clock] for clock in expectations(design).values() if clock} <= set(clocks))
                self.assertTrue(all(row["registers"] > 0 for row in clocks.values()))
                self.assertGreaterEqual(sum(row["nets"] for row in clocks.values()),
                                        document["nets"] - document["nets_without_clock"])

    def test_counts_what_clock_of_shows(self):
        design = POST_MAP
        paths = [row["path"] for row in self.results("search", design, "") if row["kind"] != "instance"]
        cells = {row["path"] for row in self.results("tree", design) if row["depth"]}
        clocks = self.clocks_of(design, [path for path in paths if path.rpartition("/")[0] not in cells])
        for tied in tied_names(design):
            clocks.pop(tied, None)
        document = self.json("clocks", design)
        for row in document["results"]:
            self.assertEqual(row["nets"], sum(row["clock"] in each for each in clocks.values()), row["clock"])
        self.assertEqual(document["nets_without_clock"], sum(not each for each in clocks.values()))
        self.assertEqual(document["nets"], len(clocks))

    def test_clocks_stand_in_one_order(self):
        roots = [row["clock"] for row in self.results("clocks", ELABORATED) if not row["parents"]]
        self.assertEqual(roots, sorted(roots))
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
        answers = self.first_clocks_of(POST_MAP, pins + list(expected))
        self.assertEqual({path: answers[path] for path in expected}, expected)

    def test_a_net_without_clock_is_nothing_found(self):
        result = run("clock-of", ELABORATED, "clk_sys_i", "--format", "csv", "--first")
        self.assertEqual((result.returncode, result.stdout), (1, "net,clock\nclk_sys_i,\n"))
        result = run("clock-of", ELABORATED, "clk_sys_i")
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"^NET +CLOCKS +ALSO\nclk_sys_i +\(none\) +input-port clock:clk_sys_i\n$")

    def test_a_design_without_registers_has_no_clocks(self):
        design = self.file("wires.json", netlist(top=bit_module({}, {"a": net(2)})))
        self.assertEqual(run("clocks", design).returncode, 1)

    def test_says_how_many_nets_no_clock_drives(self):
        document = self.json("clocks", ELABORATED)
        notes = run("clocks", ELABORATED).stderr.splitlines()
        self.assertIn(f"netlistdb: {document['nets_without_clock']} of {document['nets']} nets are reached by no clock", notes)
        self.assertNotIn("reached by no clock", run("clocks", ELABORATED, "--format", "csv").stderr)

    def test_cells_that_nobody_knows_are_counted(self):
        for design in DESIGNS:
            for command in (["info"], ["clocks"], ["clock-of", "--", "rst_ni"], ["probes"]):
                note = run(command[0], design, *command[1:]).stderr
                self.assertIn(f"netlistdb: 1 cell of the unknown type analog_pll: no clock is followed through it; --cells adds it\n", note)
        self.assertEqual(run("search", ELABORATED, "rst_ni").stderr, "")

    def test_own_cells_are_told_by_a_table_or_by_models(self):
        netlist = self.netlist_of_own_cells()
        self.assertIn("3 cells of 2 unknown types, MY_FF first: no clock is followed through them; --cells adds them",
                      run("clocks", netlist, "--form", "post-map").stderr)
        table = self.file("mine.json", json.dumps({"format": "netlistdb-cells", "version": 1, "family": "Mine", "cells": {
            "MY_FF": {"kind": "flip-flop", "clocks": [{"pin": "CK", "outputs": "Q"}]},
            "MY_INV": {"kind": "logic"}}}))
        models = self.file("mine.v", "module MY_FF(input CK, D, output reg Q); always @(posedge CK) Q <= D; endmodule\n"
                                     "module MY_INV(input A, output Y); assign Y = ~A; endmodule\n")
        for cells in (table, models):
            result = run("clock-of", netlist, "q", "--cells", cells, "--first", "--format", "csv")
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
