import json
import re
import unittest

from program import DESIGNS, ELABORATED, POST_MAP, ProgramTest, bit_module, net, netlist, run


class Search(ProgramTest):
    def paths(self, *arguments):
        return [row["path"] for row in self.results("search", *arguments)]

    def paths_by_own_name(self, *arguments):
        return [row["path"] for row in self.results("search", *arguments) if row["matched"] is None]

    def everything(self, design):
        return self.results("search", design, "")

    def test_finds_plain_text_anywhere_in_a_full_name(self):
        for design in DESIGNS:
            expected = [row for row in self.everything(design) if "u_dsp" in row["path"]]
            self.assertTrue(expected)
            rows = self.results("search", design, "u_dsp")
            self.assertEqual([row for row in rows if row["matched"] is None], expected)
            self.assertTrue(all("u_dsp" in row["matched"] for row in rows if row["matched"] is not None))

    def test_lists_instances_as_the_tree_does(self):
        found = {row["path"] for row in self.everything(ELABORATED) if row["kind"] == "instance"}
        self.assertEqual(found, {row["path"] for row in self.results("tree", ELABORATED) if row["depth"] > 0})

    def test_instances_that_only_lead_to_a_hit_are_no_results(self):
        rows = self.results("search", ELABORATED, "u_tx/ready_o")
        self.assertEqual([row["kind"] for row in rows], ["net", "net"])

    def test_ignores_case_when_told(self):
        self.assertEqual(run("search", ELABORATED, "U_DSP").returncode, 1)
        self.assertEqual(self.paths(ELABORATED, "U_DSP", "-i"), self.paths(ELABORATED, "u_dsp"))
        self.assertEqual(
            self.paths(ELABORATED, "U_DSP/.*_Q$", "-i", "--regex"), self.paths(ELABORATED, "u_dsp/.*_q$", "--regex")
        )

    def test_a_regular_expression_is_searched_for(self):
        for design in DESIGNS:
            expected = [row["path"] for row in self.everything(design) if re.search("(rx|tx)_[a-z]+$", row["path"])]
            self.assertTrue(expected)
            self.assertEqual(self.paths(design, "(rx|tx)_[a-z]+$", "--regex"), expected)

    def test_says_what_is_wrong_with_an_expression(self):
        for expression, fault in (
            ("(", "unmatched parenthesis"),
            ("a)", "unmatched parenthesis"),
            ("[a", "unmatched '['"),
            ("[z-a]", "bad character class or range"),
            ("*", "nothing to repeat"),
            ("a{2,1}", "bad range"),
            ("a{1001}", "at most 1000"),
            ("a\\", "trailing backslash"),
            ("(a)\\1", "no back-references"),
            ("a(?=b)", "no lookahead"),
            ("a(?!b)", "no lookahead"),
            ("(?<=a)b", "no lookahead and no lookbehind"),
            ("\\cJ", "unknown escape"),
            ("((a{1000}){1000}){1000}", "bad range"),
        ):
            message = self.fail_with(2, "search", ELABORATED, expression, "--regex")
            self.assertIn(f"'{expression}'", message)
            self.assertIn(fault, message)

    def test_a_star_stays_within_a_level(self):
        paths = self.paths(ELABORATED, "u_dsp/*/*_q", "--glob")
        self.assertTrue(paths)
        expected = [
            row["path"] for row in self.everything(ELABORATED) if re.fullmatch("u_dsp/[^/]*/[^/]*_q", row["path"])
        ]
        self.assertEqual(paths, expected)

    def test_two_stars_cross_levels(self):
        expected = [row["path"] for row in self.everything(ELABORATED) if re.fullmatch("u_dsp/.*_q", row["path"])]
        self.assertEqual(self.paths_by_own_name(ELABORATED, "u_dsp/**_q", "--glob"), expected)

    def test_a_question_mark_is_one_character_and_brackets_are_themselves(self):
        self.assertEqual(
            self.paths(ELABORATED, "g_uart[?].u_uart", "--glob"), ["g_uart[0].u_uart", "g_uart[1].u_uart"]
        )
        self.assertEqual(run("search", ELABORATED, "g_uart[01].u_uart", "--glob").returncode, 1)
        self.assertEqual(run("search", ELABORATED, "g_uart?.u_uart", "--glob").returncode, 1)

    def test_a_wildcard_matches_whole_names_and_nothing_else_is_special(self):
        design = self.file("odd.json", netlist(top=bit_module({}, {"a+b": net(2), "xa+b": net(3), "aab": net(4)})))
        self.assertEqual(self.paths(design, "a+b", "--glob"), ["a+b"])

    def test_a_backslash_takes_the_meaning_of_a_wildcard_away(self):
        design = self.file("stars.json", netlist(top=bit_module({}, {"a*": net(2), "ab": net(3), "a\\b": net(4)})))
        self.assertEqual(self.paths(design, "a\\*", "--glob"), ["a*"])
        self.assertEqual(self.paths(design, "a\\b", "--glob"), ["a\\b"])
        self.assertEqual(self.paths(design, "a?", "--glob"), ["a*", "ab"])

    def test_leaves_out_what_no_user_declared(self):
        rows = self.results("search", ELABORATED, "", "--user-nets")
        expected = [row for row in self.everything(ELABORATED) if row["kind"] == "instance" or row["user_declared"]]
        self.assertEqual(rows, expected)
        rows = self.results("search", ELABORATED, "", "--user-modules")
        self.assertTrue(all(row["user_declared"] for row in rows if row["kind"] == "instance"))
        self.assertTrue(any(not row["user_declared"] for row in rows if row["kind"] != "instance"))

    def test_names_and_patterns_may_be_long(self):
        name = "a" * 100_000
        design = self.file("long.json", netlist(top=bit_module({}, {name: net(2)})))
        for pattern in (("(a|b)*$", "--regex"), ("a*", "--glob"), ("A*", "--glob", "-i"), (name[:20_000], "--regex")):
            self.assertEqual(self.paths(design, *pattern), [name])

    def test_no_expression_takes_more_time_than_the_names_are_long(self):
        design = self.file("long.json", netlist(top=bit_module({}, {"a" * 5000: net(2)})))
        for expression in ("(a*)*b", "(a|aa)+$b", "(" * 500 + "a" + ")*" * 500 + "b"):
            self.assertEqual(run("search", design, expression, "--regex").returncode, 1)

    def test_reads_names_as_characters(self):
        design = self.file("utf8.json", netlist(top=bit_module({}, {"größe": net(2), "GRÖSSE": net(3), "gr__e": net(4)})))
        self.assertEqual(self.paths(design, "gr?ße", "--glob"), ["größe"])
        self.assertEqual(self.paths(design, "^gr.{2}e$", "--regex"), ["größe", "gr__e"])
        self.assertEqual(self.paths(design, "GRÖ", "-i"), ["größe", "GRÖSSE"])
        self.assertEqual(self.paths(design, "grö*", "-i", "--glob"), ["größe", "GRÖSSE"])
        self.assertEqual(self.paths(design, "RÖS", "-i", "--regex"), ["GRÖSSE"])

    def test_starts_where_told(self):
        below = [row for row in self.everything(ELABORATED) if re.match("u_dsp(/|$)", row["path"])]
        self.assertEqual(self.results("search", ELABORATED, "", "--from", "u_dsp"), below)
        self.assertEqual(self.results("search", ELABORATED, "", "--from", "."), self.everything(ELABORATED))

    def test_stops_at_the_limit(self):
        document = self.json("search", ELABORATED, "_q", "--limit", "3")
        self.assertEqual(document["results"], self.results("search", ELABORATED, "_q")[:3])
        self.assertEqual(document["ending"], "limit")
        self.assertEqual(self.json("search", ELABORATED, "u_tx/ready_o")["ending"], "complete")

    def test_sorts_the_nets_of_an_instance(self):
        names = ("a10", "B1", "a2", "a1")
        nets = {name: net(at + 2) for at, name in enumerate(names)}
        nets.update({"wide": net(20, 21, 22), "narrow": net(30, 31)})
        design = self.file("sort.json", netlist(top=bit_module({}, nets)))
        by_name = self.paths(design, "", "--sort", "name")
        self.assertEqual(by_name, ["a1", "a2", "a10", "B1", "narrow", "wide"])
        by_width = [row["width"] for row in self.results("search", design, "", "--sort", "width")]
        self.assertEqual(by_width, [1, 1, 1, 1, 2, 3])
        self.assertNotEqual(self.paths(design, ""), by_name)

    def test_tells_width_and_source_position(self):
        row = self.results("search", ELABORATED, "g_uart[0].u_uart/u_tx/left_q", "--glob")[0]
        self.assertEqual((row["kind"], row["width"], row["user_declared"]), ("bus", 4, True))
        self.assertTrue(row["file"].endswith("/designs/rtl/uart_tx.v"))
        self.assertGreater(row["line"], 0)

    def test_answers_nothing_found_by_its_exit_code(self):
        result = run("search", ELABORATED, "no such thing")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertEqual(result.stderr, "netlistdb: no full name holds 'no such thing'\n")
        result = run("search", ELABORATED, "u_spi", "--kind", "net", "--from", "u_dsp")
        self.assertEqual(result.stderr, "netlistdb: no full name of that kind holds 'u_spi'\n")
        result = run("search", ELABORATED, "no such thing", "--format", "json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(json.loads(result.stdout)["results"], [])

    def test_a_pattern_may_look_like_anything(self):
        design = self.file("odd.json", netlist(top=bit_module({}, {"[1,2]": net(2), "-x": net(3), "info": net(4)})))
        self.assertEqual(self.paths(design, "[1,2]"), ["[1,2]"])
        self.assertEqual(self.paths(design, "info"), ["info"])
        self.assertEqual(json.loads(self.succeed("search", "--format=json", "--", design, "-x"))["results"][0]["path"], "-x")

    def test_gives_the_same_answer_each_time(self):
        for design in DESIGNS:
            self.assertEqual(self.succeed("search", design, ""), self.succeed("search", design, ""))

    def test_finds_cells_of_a_post_map_netlist_by_instance(self):
        rows = self.results("search", POST_MAP, "u_pll", "--regex")
        self.assertIn(("instance", "analog_pll"), {(row["kind"], row["module"]) for row in rows})


if __name__ == "__main__":
    unittest.main()
