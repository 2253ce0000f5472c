#!/usr/bin/env python3
"""Reads the includes of every source and holds the order of the layers: a folder includes from itself and from below."""

import os
import re
import unittest
from pathlib import Path

ROOT = Path(os.environ["SOURCE_ROOT"])

# From each folder to the folders that it may include from besides itself and besides the public interfaces.
LAYERS = {
    "platform/names": set(),
    "memory": set(),
    "platform/verific": {"memory"},
    "include": set(),
    "src/netlist": {"platform/verific"},
    "src/model": {"memory", "platform/verific", "src/netlist"},
    "src/clock": {"platform/verific", "src/netlist", "src/model"},
    "src/search": {"memory", "src/model"},
    "src/database": {"platform/verific", "src/netlist", "src/model", "src/clock", "src/search"},
    "analysis": {"platform/names", "platform/verific", "library"},
    "frontend/yosys": {"memory", "platform/names", "platform/verific"},
    "tools/netlistdb/base": {"memory"},
    "tools/netlistdb/output": {"tools/netlistdb/base"},
    "tools/netlistdb/design": {"tools/netlistdb/base", "tools/netlistdb/output", "library", "analysis",
                               "platform/names", "platform/verific", "frontend/yosys"},
    "tools/netlistdb/page": {"tools/netlistdb/base", "tools/netlistdb/output", "tools/netlistdb/design", "library",
                             "analysis", "platform/verific"},
    "tools/netlistdb/serve": {"tools/netlistdb/base", "tools/netlistdb/output", "tools/netlistdb/design", "library",
                              "analysis"},
    "tools/netlistdb/commands": {"tools/netlistdb/base", "tools/netlistdb/output", "tools/netlistdb/design",
                                 "tools/netlistdb/page", "tools/netlistdb/serve", "library", "analysis",
                                 "platform/verific"},
    "tools/netlistdb/app": {"tools/netlistdb/base", "tools/netlistdb/output", "tools/netlistdb/design",
                            "tools/netlistdb/commands"},
    "python/src": {"tools/netlistdb/base", "tools/netlistdb/output", "tools/netlistdb/design", "library", "analysis",
                   "platform/verific"},
}
# The netlist database is included by bare names, as a commercial one would be.
VERIFIC_HEADERS = {path.name for path in (ROOT / "platform/verific").rglob("*.h")}
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.M)


def sources(folder):
    return sorted(path for path in (ROOT / folder).rglob("*") if path.suffix in (".h", ".cpp"))


def home_of_public_header(name):
    """A public class belongs to the folder that implements it; what has no source of its own is an interface."""
    for folder in LAYERS:
        if folder.startswith("src/") and (ROOT / folder / (Path(name).stem + ".cpp")).exists():
            return folder
    return "include"


def folder_of(path):
    relative = path.relative_to(ROOT).as_posix()
    if relative.startswith("include/netlistdb/analysis/"):
        return "analysis"
    if relative.startswith("include/"):
        return home_of_public_header(path.name)
    return next((folder for folder in LAYERS if relative.startswith(folder + "/")), None)


def target_of(path, quote, name):
    """The folder that an include leads to, or None for the standard library and other people's libraries."""
    if name.startswith("netlistdb/analysis/"):
        return "analysis"
    if name.startswith("netlistdb/"):
        return home_of_public_header(name)
    if (path.parent / name).exists():
        return folder_of(path)
    for base in (ROOT, ROOT / "src", ROOT / "tools/netlistdb"):
        if (base / name).exists():
            return folder_of(base / name)
    return "platform/verific" if name in VERIFIC_HEADERS else None


def wrong_includes(layers, files):
    """netlistdb.h, which includes every public header, belongs to no layer."""
    wrong = []
    for path in files:
        home = folder_of(path)
        for quote, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            target = target_of(path, quote, name)
            if target is None or home is None or target in (home, "include") or path.name == "netlistdb.h":
                continue
            allowed = layers[home]
            if target in allowed or ("library" in allowed and target.startswith("src/") and name.startswith("netlistdb/")):
                continue
            wrong.append(f"{path.relative_to(ROOT)} includes {name} of {target}")
    return wrong


class Layers(unittest.TestCase):
    def test_every_source_folder_is_a_layer(self):
        roots = ("platform", "src", "tools/netlistdb", "frontend", "python")
        folders = {f"{root}/{entry.name}" for root in roots for entry in (ROOT / root).iterdir()
                   if entry.is_dir() and sources(f"{root}/{entry.name}")}
        self.assertEqual(folders - set(LAYERS), set())

    def test_includes_point_downwards(self):
        files = [path for root in ("src", "include", "analysis", "platform", "frontend", "tools", "python") for path in sources(root)]
        self.assertGreater(len(files), 200)
        self.assertEqual(wrong_includes(LAYERS, files), [])

    def test_no_layer_stands_above_itself(self):
        def below(folder, path):
            self.assertNotIn(folder, path)
            for lower in LAYERS.get(folder, ()):
                below(lower, path + [folder])
        for folder in LAYERS:
            below(folder, [])

    def test_an_include_from_above_is_found(self):
        nothing_allowed = {folder: set() for folder in LAYERS}
        found = wrong_includes(nothing_allowed, sources("src/model"))
        self.assertTrue(any("netlist/verific_queries.h of src/netlist" in line for line in found), found)

    def test_public_headers_include_no_netlist_database(self):
        for path in sources("include"):
            for quote, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
                self.assertTrue(quote == "<" and "." not in Path(name).name or name.startswith("netlistdb/"),
                                f"{path.name} includes {name}")


if __name__ == "__main__":
    unittest.main()
