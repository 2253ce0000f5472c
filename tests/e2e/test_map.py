import json
import os
import unittest

import jsonschema
from program import ELABORATED, POST_MAP, REPOSITORY, ProgramTest, rows_of_csv

NETLISTS = "designs/map/netlists"


def forms(design, flow="postmap"):
    return f"{NETLISTS}/{design}_elaborated.json", f"{NETLISTS}/{design}_{flow}.json"


class Map(ProgramTest):
    def rows(self, *arguments):
        return {row["net"]: row for row in self.json("map", *arguments)["results"]}

    def test_a_net_of_the_same_name_is_exact(self):
        rows = self.rows(*forms("processor"), "pc_o")
        self.assertEqual({row["grade"] for row in rows.values()}, {"exact"})
        self.assertEqual(rows["pc_o[3]"]["match"], "pc_o[3]")

    def test_levels_of_the_hierarchy_may_be_joined_otherwise(self):
        row = self.rows(*forms("counters"), "g_timer[2].u_timer/count_q[5]")["g_timer[2].u_timer/count_q[5]"]
        self.assertEqual((row["grade"], row["match"]), ("exact", "g_timer[2].u_timer.count_q[5]"))

    def test_logic_is_found_without_a_name_and_said_to_be_inverted(self):
        row = self.rows(*forms("processor"), "u_unit/y_o[3]")["u_unit/y_o[3]"]
        self.assertEqual((row["grade"], row["inverted"]), ("structural", True))
        self.assertIsNotNone(row["match"])

    def test_states_that_are_encoded_anew_have_no_match(self):
        rows = self.rows(*forms("machines"), "u_lights/phase_q")
        self.assertEqual({(row["grade"], row["reason"]) for row in rows.values()}, {("gone", "retimed")})

    def test_a_stage_of_a_shift_register_is_inside_it(self):
        row = self.rows(*forms("buffers"), "u_move/line_q[2]")["u_move/line_q[2]"]
        self.assertEqual((row["grade"], row["reason"]), ("gone", "in-shift-register"))
        with open(os.path.join(REPOSITORY, NETLISTS, "buffers_postmap.json")) as stream:
            cells = json.load(stream)["modules"]["buffers"]["cells"]
        self.assertEqual(cells[row["cell"]]["type"], "KVR_SRL16")

    def test_what_a_cell_has_taken_in_names_the_cell(self):
        gone = [row for row in self.rows(*forms("processor"), "--grade", "gone").values()]
        self.assertTrue(gone)
        with open(os.path.join(REPOSITORY, NETLISTS, "processor_postmap.json")) as stream:
            cells = json.load(stream)["modules"]["processor"]["cells"]
        for row in gone:
            self.assertEqual(row["reason"], "in-logic")
            self.assertTrue(cells[row["cell"]]["type"].startswith("KVR_LUT"), row)

    def test_shared_logic_is_merged(self):
        grades = {row["grade"] for row in self.rows(*forms("filter")).values()}
        self.assertLessEqual({"exact", "gone"}, grades)
        self.assertIn("merged", {row["grade"] for row in self.rows(*forms("machines")).values()})

    def test_other_devices_are_understood(self):
        for flow in ("ice40", "xilinx"):
            with self.subTest(flow):
                document = self.json("map", *forms("counters", flow))
                self.assertEqual(document["unknown"] + document["gone"], 0)

    def test_the_other_way_round_are_the_same_pairs(self):
        there = self.rows(*forms("checksums"))
        back = self.rows(*forms("checksums"), "--reverse")
        self.assertGreater(len(back), 100)
        for net, row in back.items():
            if row["match"] in there:
                answer = there[row["match"]]
                self.assertIn(net, (answer["match"], *(each.lstrip("~") for each in answer["also"])))

    def test_shows_the_grades_that_are_asked_for(self):
        rows = self.rows(*forms("machines"), "--grade", "register,gone")
        self.assertEqual({row["grade"] for row in rows.values()}, {"register", "gone"})
        self.assertIn("none of", self.fail_with(2, "map", *forms("machines"), "--grade", "good"))

    def test_a_table_shows_buses_and_sums_up(self):
        text = self.succeed("map", *forms("processor"), "pc_o")
        self.assertRegex(text, r"(?m)^pc_o\[9:0\] +exact +pc_o\[9:0\]")

    def test_json_fits_its_schema_and_csv_says_the_same(self):
        document = self.json("map", ELABORATED, POST_MAP, "u_cpu")
        with open(os.path.join(REPOSITORY, "docs/schema/map.schema.json")) as stream:
            jsonschema.Draft202012Validator(json.load(stream)).validate(document)
        rows = rows_of_csv(self.succeed("map", ELABORATED, POST_MAP, "u_cpu", "--format", "csv"))
        self.assertEqual([(row["net"], row["grade"], row["match"]) for row in rows],
                         [(row["net"], row["grade"], row["match"] or "") for row in document["results"]])

    def test_two_netlists_are_needed(self):
        self.assertIn("post-map netlist is missing", self.fail_with(2, "map", ELABORATED))
        self.assertIn("no net or bus 'no_such_net'", self.fail_with(2, "map", ELABORATED, POST_MAP, "no_such_net"))

    def test_two_runs_answer_the_same(self):
        self.assertEqual(self.succeed("map", *forms("machines"), "--format", "csv"),
                         self.succeed("map", *forms("machines"), "--format", "csv"))


if __name__ == "__main__":
    unittest.main()
