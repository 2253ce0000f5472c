"""The tables of device cells against what the manuals say, and their own form."""

import json
import os
import re
import unittest
from pathlib import Path

from manuals import CELLS, REVIEWED_KINDS

FAMILIES = Path(os.environ["REPOSITORY"], "families")
TABLES = {path.stem: json.loads(path.read_text()) for path in sorted(FAMILIES.glob("*.json"))}


def matches(patterns, pin):
    regexes = [re.escape(each).replace(r"\#", r"\d+").replace(r"\*", ".*") for each in patterns.split()]
    return any(re.fullmatch(regex, pin) for regex in regexes)


def clocking(cell, output):
    return {clock["pin"] for clock in cell.get("clocks", []) if matches(clock["outputs"], output)}


class Tables(unittest.TestCase):
    maxDiff = 4000

    def test_registers_memories_and_dsp_blocks_are_clocked_as_their_manuals_say(self):
        for family, table in TABLES.items():
            for name, cell in table["cells"].items():
                if cell["kind"] in REVIEWED_KINDS:
                    with self.subTest(f"{family} {name}"):
                        self.review(family, name, cell)

    def review(self, family, name, cell):
        rows = [clocks for where, names, clocks in CELLS if where == family and re.fullmatch(names, name)]
        self.assertEqual(len(rows), 1, "rows of manuals.py that have this cell")
        pins = {clock["pin"] for clock in cell.get("clocks", [])}
        wanted = {pin: next((each for each in pins if each == pin or re.fullmatch(pin, each)), pin) for pin in rows[0]}
        self.assertEqual(pins, set(wanted.values()))
        for pin, outputs in rows[0].items():
            for output in outputs.split():
                several = output.startswith("*")
                choices = output.lstrip("*").split("|")
                found = [clocking(cell, choice) for choice in choices]
                if several:
                    self.assertIn(wanted[pin], found[0], output)
                else:
                    self.assertIn({wanted[pin]}, found, output)

    def test_every_row_of_the_manuals_has_a_cell(self):
        for family, names, _ in CELLS:
            self.assertTrue(any(re.fullmatch(names, name) for name in TABLES[family]["cells"]), f"{family} {names}")

    def test_memories_that_read_at_once_name_what_they_are_read_with(self):
        for family, table in TABLES.items():
            for name, cell in table["cells"].items():
                clocked = any(clock["outputs"] for clock in cell.get("clocks", []))
                if cell["kind"] == "memory" and not clocked and cell["by"] != "ports":
                    # Of the KVR memory the pins' letters say it.
                    with self.subTest(f"{family} {name}"):
                        self.assertIn("read", cell)

    def test_clock_buffers_name_the_pins_that_the_clock_goes_through(self):
        for family, table in TABLES.items():
            for name, cell in table["cells"].items():
                with self.subTest(f"{family} {name}"):
                    is_buffer = cell["kind"] in ("clock-buffer", "clock-gate")
                    self.assertEqual("input" in cell, is_buffer)
                    self.assertEqual(bool(cell.get("outputs")), is_buffer)

    def test_cells_stand_in_order_one_a_line(self):
        for path in FAMILIES.glob("*.json"):
            with self.subTest(path.name):
                names = re.findall(r'(?m)^"([^"]+)": \{"kind"', path.read_text())
                self.assertEqual(names, sorted(TABLES[path.stem]["cells"]))


if __name__ == "__main__":
    unittest.main()
