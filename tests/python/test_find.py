#!/usr/bin/env python3
"""Searches by name: what the program finds, lazily."""

import itertools
import unittest

import netlistdb
from designs import ELABORATED, program

WAYS = {"glob": ("--glob",), "regex": ("--regex",), "plain": ()}


class Find(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(ELABORATED)

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def found(self, pattern, **options):
        return [(type(item).__name__.lower(), item.path) for item in self.design.find(pattern, **options)]

    def test_it_finds_what_the_program_finds(self):
        for way, pattern in (("glob", "**/*_q[?]"), ("glob", "**"), ("regex", "(rx|tx)_valid$"), ("plain", "count"),
                             ("glob", "u_cpu/*"), ("plain", "clk"), ("regex", "^u_dma/.*[[]3[]]$"), ("plain", "x[0]")):
            rows = program("search", ELABORATED, pattern, *WAYS[way])["results"]
            options = {way: True} if way != "glob" else {}
            self.assertEqual(self.found(pattern, **options), [(row["kind"], row["path"]) for row in rows], pattern)

    def test_kinds_case_and_place_narrow_it(self):
        self.assertEqual({kind for kind, _ in self.found("**", kind="bus")}, {"bus"})
        self.assertEqual({kind for kind, _ in self.found("**", kind=["net", "instance"])}, {"net", "instance"})
        self.assertEqual(self.found("**CLK_SYS_I"), [])
        self.assertIn(("net", "clk_sys_i"), self.found("**CLK_SYS_I", ignore_case=True))
        below = self.found("**", below="u_cpu")
        self.assertTrue(below and all(path.startswith("u_cpu") for _, path in below))
        self.assertEqual(below, self.found("**", below=self.design["u_cpu"]))

    def test_instances_of_another_design_are_refused(self):
        with netlistdb.load(ELABORATED) as other:
            with self.assertRaisesRegex(ValueError, "^<Instance u_cpu.*> is not part of <Design .*soc_elaborated.json: "):
                self.design.find("**", below=other["u_cpu"])
            self.assertEqual(self.found("**", below="u_cpu")[:3],
                             [(type(item).__name__.lower(), item.path) for item in other.find("**", below="u_cpu")][:3])

    def test_it_ends_at_the_limit(self):
        everything = self.found("**")
        for limit in (0, 1, 7, len(everything), len(everything) + 1):
            self.assertEqual(self.found("**", limit=limit), everything[:limit])

    def test_it_is_lazy_and_ends_when_it_is_closed(self):
        search = self.design.find("**")
        self.assertEqual(len(list(itertools.islice(search, 5))), 5)
        search.close()
        self.assertEqual(list(search), [])
        search.close()

    def test_searches_go_side_by_side(self):
        pairs = zip(self.design.find("**", kind="net"), self.design.find("**", kind="net"))
        self.assertTrue(all(first == second for first, second in pairs))

    def test_wrong_questions_are_refused(self):
        with self.assertRaisesRegex(netlistdb.Error, "unmatched"):
            self.design.find("(", regex=True)
        for wrong in ({"kind": "port"}, {"regex": True, "plain": True}):
            with self.assertRaises(ValueError):
                self.design.find("x", **wrong)
        for wrong in ({"limit": -1}, {"limit": 2**64}, {"kind": 3}, {"below": self.design.top.nets[0]}):
            with self.assertRaises(TypeError):
                self.design.find("x", **wrong)

    def test_a_table_of_the_results_goes_to_pandas(self):
        table = self.design.find("**clk*", limit=4).table()
        self.assertEqual(len(table), 4)
        self.assertIn(">clk_sys_i</td>", table._repr_html_())
        try:
            import pandas
        except ImportError:
            with self.assertRaisesRegex(ImportError, "needs pandas"):
                table.to_pandas()
        else:
            self.assertEqual(list(table.to_pandas()["path"]), [row.path for row in table])
            self.assertIsInstance(table.to_pandas(), pandas.DataFrame)


if __name__ == "__main__":
    unittest.main()
