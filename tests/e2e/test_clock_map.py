"""Clocks of nets: the same whatever was asked before, proven by chains, and in step with the library's trace."""

import csv
import glob
import io
import json
import os
import random
import unittest

from program import DESIGNS, ELABORATED, POST_MAP, REPOSITORY, ProgramTest, run

#: Every netlist in the repository.
NETLISTS = sorted(
    path for pattern in ("*.json", "families/*.json", "names/netlists/*.json", "clocks/netlists/*.json")
    for path in glob.glob(os.path.join(REPOSITORY, "designs", pattern))
    if not path.endswith((".stat.json", "expected.json")))


class ClockMap(ProgramTest):
    def names_in(self, design):
        return self.succeed("search", design, "", "--paths").splitlines()

    def clocks_of(self, design, names, *options):
        result = run("clock-of", design, "-", "--format", "json", *options, stdin="\n".join(names))
        self.assertIn(result.returncode, (0, 1), result.stderr)
        return json.loads(result.stdout)["results"]

    def aliases(self, design):
        """From every name of a clock to the one that it is listed by."""
        return {name: row["clock"] for row in json.loads(run("clocks", design, "--format", "json").stdout)["results"]
                for name in [row["clock"], *row["aliases"]]}

    def test_the_order_of_questions_changes_nothing(self):
        for design in DESIGNS:
            names = self.names_in(design)
            first = {row["net"]: row for row in self.clocks_of(design, names, "--capture")}
            random.Random(1).shuffle(names)
            self.assertEqual({row["net"]: row for row in self.clocks_of(design, names, "--capture")}, first)
            alone = random.Random(2).sample(sorted(first), 10)
            for name in alone:
                rows = {row["net"]: row for row in self.clocks_of(design, [name], "--capture")}
                self.assertEqual(rows[name], first[name])

    def test_where_one_clock_and_nothing_else_reaches_a_net_the_trace_of_a_fresh_database_finds_it(self):
        exceptions = []
        compared = 0
        for design in NETLISTS:
            aliases = self.aliases(design)
            certain = [row for row in self.clocks_of(design, self.names_in(design))
                       if len(row["clocks"]) == 1 and not row["networks"] and not row["reached_by"]]
            for row in random.Random(1).sample(certain, min(len(certain), 8)):
                text = run("clock-of", design, "--first", "--format", "csv", "--", row["net"]).stdout
                [first] = [each for each in csv.DictReader(io.StringIO(text)) if each["net"] == row["net"]]
                compared += 1
                if aliases.get(first["clock"], first["clock"]) != row["clock"]:
                    exceptions.append((design, row["net"], first["clock"], row["clock"]))
        self.assertGreater(compared, 300)
        # The one rule by which they differ: a trace stops at a memory that reads without a clock.
        for design, net, first, _ in exceptions:
            [row] = self.clocks_of(design, [net], "--why")
            steps = row["why"]["clocks"][0]["data"]
            self.assertEqual(first, "", (design, net))
            self.assertTrue(any(step.get("type", "").startswith("KVR_RAMD") for step in steps), (design, net))

    def test_every_chain_leads_from_the_net_to_where_its_clock_begins(self):
        for design in DESIGNS:
            names = random.Random(4).sample(self.names_in(design), 300)
            for row in self.clocks_of(design, names, "--why"):
                if row["why"] is None:
                    continue
                chains = row["why"]["clocks"] + row["why"]["networks"]
                self.assertEqual([chain["clock"] for chain in row["why"]["clocks"]], row["clocks"])
                self.assertEqual([chain["clock"] for chain in row["why"]["networks"]], row["networks"])
                self.assertEqual([chain["end"] for chain in row["why"]["ends"]], row["reached_by"])
                for chain in chains:
                    self.assertEqual(chain["data"][0]["net"], row["net"])
                    self.assertEqual((chain["clock_to_root"] or chain["data"])[-1]["net"], chain["clock"])

    def test_the_picture_names_net_register_and_clock(self):
        text = self.succeed("clock-of", ELABORATED, "u_spi/select_q[0]", "--why")
        self.assertTrue(text.startswith("u_spi/select_q[0]\n  clk_sys_i: 0 cells\n"), text)
        self.assertIn("register", text)
        self.assertIn("designs/rtl/spi_master.v", text)
        self.assertEqual(text.rstrip().splitlines()[-1].split()[0], "clk_sys_i")

    def test_says_what_captures_a_net_and_as_what(self):
        [row] = self.clocks_of(ELABORATED, ["u_clocks/u_rst_adc/rst_async_ni"], "--capture")
        self.assertEqual(row["captured_by"]["clk_adc_i"], "set-reset")
        self.assertIn("CAPTURED BY", run("clock-of", ELABORATED, "rst_ni", "--capture").stdout)

    def test_clocks_stand_below_those_that_they_are_made_from(self):
        rows = {row["clock"]: row for row in self.results("clocks", ELABORATED)}
        divided = [row for row in rows.values() if row["root"] == "register"]
        self.assertEqual([row["parents"] for row in divided], [["clk_sys_i"]])
        self.assertIn("clk_div", divided[0]["aliases"] + [divided[0]["clock"]])
        [gated] = [row for row in rows.values() if row["root"] == "logic"]
        self.assertEqual((gated["clock"], gated["parents"]), ("u_spi/u_gate/clk_o", ["clk_sys_i"]))
        self.assertEqual(rows["clk_sys_i"]["root"], "port")
        table = self.succeed("clocks", POST_MAP).splitlines()
        parent = next(number for number, line in enumerate(table) if line.startswith("clk_sys_i "))
        self.assertRegex(table[parent + 1], "^[├└]─ ")

    def test_first_excludes_what_only_the_map_knows(self):
        for option in ("--why", "--capture"):
            self.fail_with(2, "clock-of", ELABORATED, "rst_ni", "--first", option)


if __name__ == "__main__":
    unittest.main()
