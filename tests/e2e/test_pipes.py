"""Full names that one run prints and another reads."""

import unittest

from program import DESIGNS, ELABORATED, POST_MAP, ProgramTest, rows_of_csv, run


class Pipes(ProgramTest):
    def paths(self, *arguments):
        return self.succeed(*arguments, "--paths").splitlines()

    def test_paths_are_the_names_of_the_results_and_nothing_else(self):
        for design in DESIGNS:
            for command in (("search", design, "clk"), ("probes", design), ("tree", design)):
                with self.subTest(command):
                    rows = [row for row in self.results(*command) if row.get("verdict") != "no"]
                    self.assertEqual(self.paths(*command), [row["path"] or "." for row in rows])

    def test_paths_are_no_format(self):
        for command in (("search", ELABORATED, "x"), ("probes", ELABORATED), ("tree", ELABORATED)):
            self.assertIn("--format", self.fail_with(2, *command, "--paths", "--format", "json"))
        self.assertIn("unknown option '--paths'", self.fail_with(2, "clocks", ELABORATED, "--paths"))

    def test_what_a_search_prints_clock_of_reads(self):
        for design, pattern in ((ELABORATED, "u_dsp"), (POST_MAP, "heartbeat")):
            paths = self.succeed("search", design, pattern, "--paths")
            rows = self.results("search", design, pattern)
            nets = {row["path"] for row in rows if row["kind"] != "instance"}
            instances = sum(row["path"] not in nets for row in rows)
            result = run("clock-of", design, "-", "--format", "csv", stdin=paths)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertIn(f"netlistdb: {instances} of {len(rows)} paths are instances, which have no clock: left out\n",
                          result.stderr)
            answered = {row["net"] for row in rows_of_csv(result.stdout)}
            self.assertEqual({row["path"] for row in rows if row["kind"] == "net"} - answered, set())
            paths = self.succeed("search", design, pattern, "--paths", "--kind", "net,bus")
            result = run("clock-of", design, "-", "--format", "csv", stdin=paths)
            self.assertEqual({row["net"] for row in rows_of_csv(result.stdout)}, answered)
            self.assertNotIn("left out", result.stderr)

    def test_an_instance_among_the_arguments_is_still_an_error(self):
        self.assertIn("is an instance", self.fail_with(2, "clock-of", ELABORATED, "u_spi"))

    def test_kinds_can_be_chosen(self):
        for command in (("search", ELABORATED, "u_spi"), ("probes", ELABORATED)):
            rows = self.results(*command)
            kinds = {row["kind"] for row in rows}
            if "instance" not in kinds:
                self.assertIn("'instance' is none of net,bus", self.fail_with(2, *command, "--kind", "instance"))
            for wanted in ("net", "bus", "net,bus", "bus,net", *(kinds - {"net", "bus"})):
                with self.subTest(command, kinds=wanted):
                    self.assertEqual(self.results(*command, "--kind", wanted),
                                     [row for row in rows if row["kind"] in wanted.split(",")])
            self.assertIn("'wire' is none of", self.fail_with(2, *command, "--kind", "net,wire"))
            self.assertIn("'' is none of", self.fail_with(2, *command, "--kind", "net,,bus"))

    def test_a_limit_counts_what_is_shown(self):
        rows = self.results("search", ELABORATED, "u_", "--kind", "bus")
        self.assertEqual(self.results("search", ELABORATED, "u_", "--kind", "bus", "--limit", "2"), rows[:2])

    def below(self, rows, start):
        return [row for row in rows if (row["path"] + "/").startswith(start + "/")]

    def test_trees_and_probes_can_start_below_the_top(self):
        for start in ("u_dsp", "u_dsp/u_fir", "g_uart[0].u_uart"):
            tree = self.results("tree", ELABORATED, "--from", start)
            wanted = self.below(self.results("tree", ELABORATED), start)
            above = wanted[0]["depth"]
            self.assertEqual(tree, [{**row, "depth": row["depth"] - above} for row in wanted])
            probes = self.results("probes", ELABORATED, "--from", start)
            self.assertEqual(probes, self.below(self.results("probes", ELABORATED), start))
            self.assertGreater(len(probes), 3)
        for command in ("tree", "probes"):
            for top in (".", "/"):
                self.assertEqual(self.succeed(command, ELABORATED, "--from", top), self.succeed(command, ELABORATED))
            self.assertIn("did you mean 'u_dsp'?", self.fail_with(2, command, ELABORATED, "--from", "u_dps"))

    def test_a_tree_from_below_names_where_it_starts(self):
        table = self.succeed("tree", ELABORATED, "--from", "u_dsp/u_fir", "--depth", "0")
        self.assertEqual(table.splitlines()[1].split()[0], "u_dsp/u_fir")
        self.assertEqual(self.results("tree", ELABORATED, "--from", "u_dsp", "--depth", "1", "--user-modules")[1]["depth"], 1)


if __name__ == "__main__":
    unittest.main()
