#!/usr/bin/env python3
"""Derives the cell tables from the cell models that the installed yosys ships.

    families/derive.py [FAMILY...]        rewrites families/FAMILY.json; all families when none is named
    families/derive.py --models TABLE FILE.v...
                                          writes a table for Verilog models of one's own

Each cell with a body is elaborated alone, with a time limit; what its flip-flops and memories hang on says which pin
clocks which output, and which pins enable, set and reset. A cell without a body has its ports alone: its clock pins are
those that the model marks with `clkbuf_sink`. Entries marked "by": "hand" are left as they stand in the table.
"""

import argparse
import json
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import models
from model_clocks import describe

HERE = Path(__file__).resolve().parent
CELL_SECONDS = 20
LIBRARY_SECONDS = 120


def run_yosys(commands, seconds):
    """None when yosys did it, otherwise what went wrong, in one line."""
    try:
        done = subprocess.run(["yosys", "-q", "-p", commands], timeout=seconds, text=True, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    except subprocess.TimeoutExpired:
        return "took longer than %d seconds" % seconds
    return None if done.returncode == 0 else (done.stderr.strip().splitlines() or ["failed"])[0]


def read_commands(library, options, files):
    includes = "".join(" -I" + str(folder) for folder in library.include_folders)
    return "".join("read_verilog %s -overwrite%s %s; " % (options, includes, path) for path in files)


def ports_of_all(library, folder):
    """The modules of the library as black boxes: ports, attributes, defaults of parameters."""
    out = Path(folder) / "ports.json"
    fault = run_yosys(read_commands(library, "-lib -nowb", library.port_files + library.files) +
                      "write_json %s" % out, LIBRARY_SECONDS)
    if fault:
        raise SystemExit("derive.py: %s: %s" % (library.name, fault))
    return json.loads(out.read_text())["modules"]


def elaborate(library, cell, folder):
    """The model of one cell, flattened to registers, memories and word-level cells; a text that says why when that
    fails."""
    out = Path(folder) / (re.sub(r"\W", "_", cell) + ".json")
    fault = run_yosys(read_commands(library, "-defer", library.files) +
                      "hierarchy -top %s; proc; flatten; opt_expr; opt_dff; opt_clean; "
                      "memory_dff; memory_collect; opt_clean; write_json %s" % (cell, out), CELL_SECONDS)
    if fault:
        return fault
    return json.loads(out.read_text())["modules"][cell]


def table_of(library, kept, progress=True):
    """Cells of the library by name; those in @p kept as they stand there."""
    cells = dict(kept)
    with tempfile.TemporaryDirectory() as folder:
        modules = {name: module for name, module in ports_of_all(library, folder).items()
                   if "$" not in name and not re.fullmatch(library.skip or "(?!)", name)}

        bodies = library.names_with_bodies()

        def one(name):
            return name, elaborate(library, name, folder) if name in bodies else None

        wanted = [name for name in modules if name not in kept]
        with ThreadPoolExecutor(2) as pool:
            for name, body in pool.map(one, wanted):
                if isinstance(body, str):
                    if progress:
                        print("%s: %s: %s" % (library.name, name, body), file=sys.stderr)
                    body = None
                cells[name] = describe(library, name, modules[name], body)
    return cells


def write_table(path, head, cells):
    """One cell a line, sorted by name, so that a change of one cell is a change of one line."""
    lines = ["{"]
    lines += ["%s: %s," % (json.dumps(key), json.dumps(value)) for key, value in head.items()]
    lines.append('"cells": {')
    lines.append(",\n".join("%s: %s" % (json.dumps(name), json.dumps(cells[name]))
                            for name in sorted(cells)))
    lines += ["}", "}"]
    path.write_text("\n".join(lines) + "\n")


def derive_family(library):
    path = HERE / (library.name + ".json")
    old = json.loads(path.read_text()) if path.exists() else {"cells": {}}
    kept = {name: cell for name, cell in old["cells"].items() if cell.get("by") == "hand"}
    head = {key: value for key, value in old.items() if key != "cells"} or models.head(library.family)
    write_table(path, head, table_of(library, kept))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--models", metavar="TABLE", help="write a table for Verilog models of one's own")
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    if arguments.models:
        library = models.Library("models", "user", [Path(name) for name in arguments.names])
        write_table(Path(arguments.models), models.head("user"), table_of(library, {}))
        return
    for library in models.LIBRARIES:
        if not arguments.names or library.name in arguments.names:
            derive_family(library)


if __name__ == "__main__":
    main()
