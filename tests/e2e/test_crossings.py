import csv
import json
import os
import unittest

from program import DESIGNS, ELABORATED, POST_MAP, REPOSITORY, ProgramTest, rows_of_csv, run

BRIDGES = "designs/clocks/netlists/bridges_elaborated.json"
COLUMNS = ("class", "launch", "capture", "from", "to", "pin", "bits")
FORMS = {"elaborated": "elaborated", "post-map": "postmap"}


def table(path):
    with open(os.path.join(REPOSITORY, path)) as stream:
        return list(csv.DictReader(stream))


def only(columns, rows):
    return [tuple(row[column] for column in columns) for row in rows]


class Crossings(ProgramTest):
    def crossings(self, design, *options):
        return rows_of_csv(run("crossings", design, *options, "--format", "csv").stdout)

    def test_lists_exactly_the_crossings_of_the_rtl(self):
        expected = table("designs/soc_crossings.csv")
        for form, design in zip(FORMS, DESIGNS):
            with self.subTest(form):
                of_form = [row for row in expected if row["form"] == form]
                self.assertEqual(only(COLUMNS, self.crossings(design)), only(COLUMNS, of_form))

    def test_knows_every_way_of_crossing(self):
        expected = table("designs/clocks/crossings.csv")
        for name, form in sorted({(row["design"], row["form"]) for row in expected}):
            with self.subTest(name, form=form):
                of_design = [row for row in expected if (row["design"], row["form"]) == (name, form)]
                design = f"designs/clocks/netlists/{name}_{FORMS[form]}.json"
                self.assertEqual(only(COLUMNS, self.crossings(design)), only(COLUMNS, of_design))

    def test_the_example_holds_every_class(self):
        held = {row["class"] for design in (BRIDGES, BRIDGES.replace("elaborated", "postmap"))
                for row in self.crossings(design)}
        with open(os.path.join(REPOSITORY, "docs/schema/crossings.schema.json")) as stream:
            classes = json.load(stream)["$defs"]["result"]["properties"]["class"]["enum"]
        self.assertEqual(held, set(classes))

    def test_the_summary_counts_bits(self):
        document = self.json("crossings", BRIDGES)
        for line in document["summary"]:
            rows = [row for row in document["results"]
                    if (row["launch"], row["capture"]) == (line["launch"], line["capture"])]
            for severity in ("safe", "warning", "unsafe"):
                self.assertEqual(line[severity], sum(row["bits"] for row in rows if row["severity"] == severity))
        lines = self.succeed("crossings", BRIDGES).splitlines()
        summary = lines[lines.index("") + 1 :]
        self.assertEqual(summary[0].split(), ["LAUNCH", "CAPTURE", "SAFE", "WARNING", "UNSAFE", "WAIVED"])
        self.assertEqual(len(summary) - 1, len(document["summary"]))

    def test_bits_stand_by_themselves_on_request(self):
        rows = [row for row in self.crossings(BRIDGES, "--bits") if row["class"] == "gray-bus"]
        self.assertEqual(only(("from", "to", "pin", "bits"), rows),
                         [(f"gray_q[{bit}]", f"u_gray/first_q[{bit}]", f"D[{bit}]", "1") for bit in range(3)])

    def test_all_classes_of_a_crossing_are_shown_on_request(self):
        rows = [row for row in self.crossings(BRIDGES, "--all-classes") if row["to"] == "u_left/first_q"]
        self.assertEqual([row["class"] for row in rows], ["reconvergence", "synchronized-bit"])
        self.assertEqual({row["meets"] for row in rows}, {"pair_o"})

    def test_clocks_choose_crossings(self):
        rows = self.crossings(BRIDGES, "--from", "clk_c_i")
        self.assertEqual(only(("launch", "to"), rows), [("clk_c_i", "u_mixed/first_q")])
        rows = self.crossings(BRIDGES, "--from", "(none)", "--to", "clk_?_i")
        self.assertEqual([row["to"] for row in rows], ["u_rst_a/chain_q", "rst_b_q", "stray_o"])
        message = self.fail_with(2, "crossings", BRIDGES, "--from", "clk_d_i")
        self.assertIn("no clock 'clk_d_i'; did you mean 'clk_a_i'", message)

    def test_classes_and_severities_choose_crossings(self):
        rows = self.crossings(BRIDGES, "--class", "gray-bus,fan-out")
        self.assertEqual({row["class"] for row in rows}, {"gray-bus", "fan-out"})
        rows = self.crossings(BRIDGES, "--severity", "safe")
        self.assertEqual({row["severity"] for row in rows}, {"safe"})
        message = self.fail_with(2, "crossings", BRIDGES, "--class", "fanout")
        self.assertIn("'fanout' is no class; did you mean 'fan-out'", message)
        self.fail_with(2, "crossings", BRIDGES, "--severity", "critical")

    def test_a_crossing_can_fail_the_run(self):
        for failures, chosen, code in (("unsafe", [], 1), ("gray-bus", [], 1), ("safe", ["--class", "gray-bus"], 1),
                                       ("unsafe", ["--class", "gray-bus"], 0), ("warning", ["--severity", "unsafe"], 1),
                                       ("warning", ["--severity", "safe"], 0), ("fan-out,memory", [], 1)):
            with self.subTest(failures, chosen=chosen):
                self.assertEqual(run("crossings", BRIDGES, "--fail-on", failures, *chosen).returncode, code)

    def test_nothing_found_is_told_unless_a_run_is_to_fail_on_something(self):
        wires = self.file("wires.json", '{"modules": {"top": {"netnames": {"a": {"bits": [2]}}}}}')
        self.assertEqual(run("crossings", wires).returncode, 1)
        self.assertEqual(run("crossings", wires, "--fail-on", "unsafe").returncode, 0)

    def test_waivers_take_crossings_out(self):
        waivers = self.file("waivers", "# looked at\nwaive split_q u_split/* the pulse is long enough\n"
                                       'waive "torn_q" ** class=unsynchronized-bus written once  # at start\n'
                                       "waive clock:(none) clock:clk_c_i held in reset by software\n"
                                       "waive bare_q no/such/register gone\n")
        result = run("crossings", BRIDGES, "--waivers", waivers, "--format", "csv")
        shown = {row["to"] for row in rows_of_csv(result.stdout)}
        self.assertFalse(shown & {"u_split/first_q", "torn_o[3:0]", "stray_o"})
        self.assertTrue({"split_o", "bare_o"} <= shown)
        self.assertIn(f"netlistdb: {waivers}:5: no crossing matches 'waive bare_q no/such/register'\n", result.stderr)
        self.assertIn("netlistdb: 6 crossings are waived\n", result.stderr)
        rows = self.crossings(BRIDGES, "--waivers", waivers, "--waived")
        self.assertEqual({row["to"]: row["waived"] for row in rows if row["waived"]},
                         {"u_split/first_q": "the pulse is long enough", "torn_o[3:0]": "written once",
                          "stray_o": "held in reset by software"})

    def test_waived_crossings_do_not_fail_the_run(self):
        waivers = self.file("waivers", "waive split_q u_split/first_q fine\n")
        arguments = ("crossings", BRIDGES, "--class", "fan-out", "--fail-on", "fan-out")
        self.assertEqual(run(*arguments).returncode, 1)
        self.assertEqual(run(*arguments, "--waivers", waivers).returncode, 0)
        self.assertEqual(run(*arguments, "--waivers", waivers, "--waived").returncode, 0)

    def test_groups_say_which_clocks_are_related(self):
        def classes(text):
            rows = self.crossings(BRIDGES, "--waivers", self.file("groups", text))
            return {row["to"]: row["class"] for row in rows}

        asynchronous = classes("clock_groups clk_a_i , half_q\n")
        self.assertEqual(asynchronous["near_o"], "unsynchronized-bit")
        related = classes("clock_groups -asynchronous clk_a_i clk_b_i, clk_c_i\n")
        self.assertEqual((related["bare_o"], related["u_hazard/first_q"]), ("related-clocks", "related-clocks"))
        exclusive = classes("clock_groups -exclusive clk_?_i, half_q\n")
        self.assertNotIn("near_o", exclusive)

    def test_a_group_of_unknown_clocks_is_told(self):
        groups = self.file("groups", "\nclock_groups clk_a_i , clk_x\n")
        self.assertIn(f"netlistdb: {groups}:2: no clock matches 'clk_x'\n",
                      run("crossings", BRIDGES, "--waivers", groups).stderr)

    def test_bad_rules_are_refused_with_file_and_line(self):
        for text, fault in (("wave a b c\n", "'wave' is neither clock_groups nor waive"),
                            ("waive a\n", "waive needs FROM, TO and a reason"),
                            ("waive a b\n", "the waiver gives no reason"),
                            ("waive a b class=fan-out\n", "the waiver gives no reason"),
                            ("waive a b class=fan,memory why\n", "'fan' is no class of crossings"),
                            ('waive "a b c\n', "a quotation mark is missing"),
                            ("clock_groups a , \n", "a group holds no clock"),
                            ("clock_groups -async a , b\n", "'-async' is neither -asynchronous nor -exclusive")):
            with self.subTest(text):
                rules = self.file("rules", "# first line\n" + text)
                self.assertEqual(self.fail_with(3, "crossings", BRIDGES, "--waivers", rules), f"{rules}:2: {fault}")
        self.fail_with(3, "crossings", BRIDGES, "--waivers", self.path("missing"))

    def test_two_runs_show_the_same(self):
        for design in (POST_MAP, ELABORATED):
            self.assertEqual(self.succeed("crossings", design, "--all-classes", "--bits"),
                             self.succeed("crossings", design, "--all-classes", "--bits"))


if __name__ == "__main__":
    unittest.main()
