"""What the program says about nets of two forms, against simulations of both: some hundred cycles here; the figures in
the documentation come from cross_probe_figures.py, which runs thousands."""

import collections
import tempfile
import unittest

from cross_probe_figures import figures_of
from side_by_side import designs

CYCLES = 300
PROVEN = ("exact: ", "register: ", "merged: ")


class CrossProbe(unittest.TestCase):
    def run_all(self, nameless):
        total = collections.Counter()
        for design in designs():
            with self.subTest(design.name), tempfile.TemporaryDirectory() as scratch:
                figures, wrong = figures_of(design, scratch, CYCLES, nameless)
                total += figures
                self.assertEqual([line for line in wrong if line.startswith(PROVEN)], [])
        return total

    def test_nets_that_match_have_the_same_waveform(self):
        total = self.run_all(nameless=False)
        self.assertGreater(total["compared exact"], 6000)
        self.assertLessEqual(total["wrong structural"], 0.001 * total["compared structural"])
        self.assertGreaterEqual(total["registers found"], 0.97 * total["registers there"])
        self.assertGreaterEqual(total["nets found"], 0.85 * total["nets there"])

    def test_names_are_not_needed(self):
        total = self.run_all(nameless=True)
        self.assertGreaterEqual(total["registers found"], 0.8 * total["registers there"])


if __name__ == "__main__":
    unittest.main()
