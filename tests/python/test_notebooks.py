#!/usr/bin/env python3
"""Runs the code of the notebooks, cell by cell, and shows every result as a notebook would."""

import ast
import contextlib
import io
import json
import os
import unittest

from designs import REPOSITORY

NOTEBOOKS = REPOSITORY / "python/notebooks"


def run(source, names):
    """Runs a cell; returns the value of its last expression."""
    tree = ast.parse(source)
    last = tree.body.pop() if isinstance(tree.body[-1], ast.Expr) else None
    exec(compile(tree, "cell", "exec"), names)
    return None if last is None else eval(compile(ast.Expression(last.value), "cell", "eval"), names)


def shown(value):
    return value._repr_html_() if hasattr(value, "_repr_html_") else repr(value)


class Notebooks(unittest.TestCase):
    def cells(self, name):
        notebook = json.loads((NOTEBOOKS / f"{name}.ipynb").read_text(encoding="utf-8"))
        self.assertEqual((notebook["nbformat"], notebook["nbformat_minor"]), (4, 5))
        return ["".join(cell["source"]) for cell in notebook["cells"] if cell["cell_type"] == "code"]

    def test_every_cell_runs_and_shows_something(self):
        before = os.getcwd()
        self.addCleanup(os.chdir, before)
        os.chdir(NOTEBOOKS)
        names = sorted(file.stem for file in NOTEBOOKS.glob("*.ipynb"))
        self.assertEqual(names, ["clocks_and_crossings", "explore", "probes_and_plans"])
        for name in names:
            variables = {}
            for cell in self.cells(name):
                printed = io.StringIO()
                with self.subTest(notebook=name, cell=cell), contextlib.redirect_stdout(printed):
                    value = run(cell, variables)
                    if not cell.endswith(".close()"):
                        self.assertTrue(printed.getvalue() or shown(value) not in ("None", "[]", "()"))

    def test_checked_in_notebooks_hold_no_results(self):
        for file in NOTEBOOKS.glob("*.ipynb"):
            for cell in json.loads(file.read_text(encoding="utf-8"))["cells"]:
                self.assertEqual((cell.get("outputs", []), cell.get("execution_count")), ([], None), file)


if __name__ == "__main__":
    unittest.main()
