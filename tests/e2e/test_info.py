import json
import os
import unittest

from program import DESIGNS, ELABORATED, POST_MAP, REPOSITORY, ProgramTest, rows_of_csv


def read(design):
    with open(os.path.join(REPOSITORY, design)) as stream:
        return json.load(stream)


def stat_of(design):
    return read(design.replace(".json", ".stat.json"))


def bits_of(module):
    """The distinct nets of a module as yosys numbers them."""
    return {bit for name in module["netnames"].values() for bit in name["bits"] if isinstance(bit, int)}


class Info(ProgramTest):
    def test_counts_the_cells_of_each_module_as_yosys_does(self):
        for design in DESIGNS:
            with self.subTest(design):
                modules = {each["module"]: each for each in self.json("info", design)["module_list"]}
                for name, stat in stat_of(design)["modules"].items():
                    module = modules[name[1:] if name.startswith("\\") else name]
                    self.assertEqual(module["cells"], stat["num_cells"], name)
                    self.assertEqual(module["cells_by_type"], stat["num_cells_by_type"], name)

    def test_counts_the_cells_of_the_unfolded_design_as_yosys_does(self):
        for design in DESIGNS:
            with self.subTest(design):
                instances = {each["module"]: each["instances"] for each in self.json("info", design)["module_list"]}
                for cell, number in stat_of(design)["design"]["num_cells_by_type"].items():
                    self.assertEqual(instances[cell], number, cell)

    def test_counts_each_bit_of_a_module_as_one_net(self):
        for design in DESIGNS:
            netlist = read(design)["modules"]
            for module in self.json("info", design)["module_list"]:
                if module["cells"] == 0:
                    continue
                source = netlist[module["module"]]
                constants = {
                    bit
                    for cell in source["cells"].values()
                    for bits in cell["connections"].values()
                    for bit in bits
                    if isinstance(bit, str)
                } | {bit for name in source["netnames"].values() for bit in name["bits"] if isinstance(bit, str)}
                with self.subTest(design, module=module["module"]):
                    least = len(bits_of(source)) + len(source.get("memories", {}))
                    self.assertGreaterEqual(module["nets"]["total"], least)
                    self.assertLessEqual(module["nets"]["total"], least + len(constants))

    def test_tells_the_form_and_the_top(self):
        for design, form in ((ELABORATED, "elaborated"), (POST_MAP, "post-map")):
            answer = self.json("info", design)
            self.assertEqual((answer["top"], answer["form"]), ("soc_top", form))
            self.assertEqual(self.json("info", design, "--form", "elaborated")["form"], "elaborated")

    def test_adds_up(self):
        for design in DESIGNS:
            answer = self.json("info", design)
            levels = [level["instances"]["total"] for level in answer["levels"]]
            self.assertEqual([level["depth"] for level in answer["levels"]], list(range(len(levels))))
            self.assertEqual(levels[0], 1)
            self.assertEqual(sum(levels), answer["instances"]["total"])
            modules = answer["module_list"]
            self.assertEqual(sum(module["instances"] for module in modules), answer["instances"]["total"])
            self.assertEqual(sum(module["definitions"] for module in modules), answer["modules"]["total"])
            self.assertEqual(sum(module["nets"]["total"] for module in modules), answer["nets"]["total"])
            self.assertEqual(answer["clock_domains"], len(self.results("clocks", design)))

    def test_gives_the_figures_of_the_table_in_csv_too(self):
        answer = self.json("info", ELABORATED)
        rows = rows_of_csv(self.succeed("info", ELABORATED, "--format", "csv"))
        values = {(row["subject"], row["name"], row["figure"]): row["value"] for row in rows}
        self.assertEqual(values["design", "soc_top", "instances"], str(answer["instances"]["total"]))
        self.assertEqual(values["depth", "1", "instances"], str(answer["levels"][1]["instances"]["total"]))
        self.assertEqual(values["module", "uart_tx", "instances"], "2")
        table = self.succeed("info", ELABORATED)
        self.assertRegex(table, rf"\nInstances +{answer['instances']['total']} \(")
        self.assertRegex(table, r"\n +2 +\d+ +\d+ +\d+ +\d+  uart_tx\n")

    def test_another_top_is_another_design(self):
        answer = self.json("info", ELABORATED, "--top", "uart_tx")
        self.assertEqual(answer["top"], "uart_tx")
        self.assertEqual(answer["instances"]["total"], 1 + len(self.results("tree", ELABORATED, "--top", "uart_tx")) - 1)

    def test_an_empty_module_is_a_design(self):
        design = self.file("empty.json", json.dumps({"modules": {"nothing": {"ports": {}, "cells": {}, "netnames": {}}}}))
        answer = self.json("info", design)
        self.assertEqual((answer["top"], answer["instances"]["total"], answer["nets"]["total"]), ("nothing", 1, 0))


if __name__ == "__main__":
    unittest.main()
