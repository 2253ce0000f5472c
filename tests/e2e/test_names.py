"""Every name that a netlist still holds is found, means the right bits, and stands where the RTL declares it.

The reference is the JSON itself and the RTL, read here on their own."""

import csv
import glob
import io
import json
import os
import re
import unittest

from names_rtl import declaration_of, rtl_declarations
from program import DESIGNS, ELABORATED, FLOW_FILES, REPOSITORY, SANITIZED, ProgramTest, bit_module, net, netlist, run

NAMES = "designs/names"
FLOWS = sorted(
    os.path.relpath(path, REPOSITORY) for path in glob.glob(os.path.join(REPOSITORY, NAMES, "netlists", "*.json"))
)
FAMILIES = sorted(
    os.path.relpath(path, REPOSITORY) for path in glob.glob(os.path.join(REPOSITORY, FLOW_FILES))
)
ROUTED = f"{NAMES}/netlists/ice40_routed.json"


def load(design):
    with open(os.path.join(REPOSITORY, design)) as stream:
        return json.load(stream)["modules"]


def is_set(value):
    return "1" in str(value)


def boxed(module):
    return any(is_set(module["attributes"].get(key, 0)) for key in ("blackbox", "whitebox"))


def instances(modules):
    """Path and module of the top and everything below it."""
    top = next(name for name, module in modules.items() if is_set(module["attributes"].get("top", 0)))
    waiting = [("", top)]
    for path, name in waiting:
        yield path, modules[name]
        for cell, fields in modules[name]["cells"].items():
            if fields["type"] in modules and not boxed(modules[fields["type"]]):
                waiting.append((path + cell + "/", fields["type"]))


def index_of(fields, position):
    offset = fields.get("offset", 0)
    return offset + (len(fields["bits"]) - 1 - position if fields.get("upto") else position)


def is_vector(name, fields):
    """A bit of a vector that was split keeps the offset, and has it in its name."""
    offset = fields.get("offset", 0)
    return len(fields["bits"]) != 1 or (offset != 0 and not name.endswith(f"[{offset}]"))


def bits_by_name(module):
    """What each bit-level name of a module means: the number of a bit."""
    named = {}
    for name, fields in [*module["ports"].items(), *module["netnames"].items()]:
        for position, bit in enumerate(fields["bits"]):
            full = f"{name}[{index_of(fields, position)}]" if is_vector(name, fields) else name
            named.setdefault(full, bit)
    return named


def from_left_to_right(fields):
    return list(reversed(fields["bits"]))


def declared(module):
    """Names that are not hidden, with their bits. Wires without bits are none."""
    return {name: fields for name, fields in module["netnames"].items() if not fields["hide_name"] and fields["bits"]}


class Names(ProgramTest):
    def rows_of(self, design, paths):
        """Answers of clock-of for all paths at once, cut into one list for each number of bits asked for."""
        result = run("clock-of", design, "-", "--format", "csv", stdin="\n".join(path for path, _ in paths))
        self.assertIn(result.returncode, (0, 1), result.stderr)
        rows = [row["net"] for row in csv.DictReader(io.StringIO(result.stdout))]
        self.assertEqual(len(rows), sum(width for _, width in paths))
        at = 0
        for path, width in paths:
            yield path, rows[at : at + width]
            at += width

    def check_bits(self, design, wanted):
        """Asks for names; @p wanted maps a path to the path of its instance, the module and the bits expected."""
        asked = [(path, len(bits)) for path, (_, _, bits) in wanted.items()]
        named = {}
        for path, nets in self.rows_of(design, asked):
            prefix, module, bits = wanted[path]
            if id(module) not in named:
                named[id(module)] = bits_by_name(module)
            for row, bit in zip(nets, bits):
                self.assertTrue(row.startswith(prefix), (path, row))
                if isinstance(bit, int):
                    answer = named[id(module)].get(row[len(prefix) :])
                    self.assertEqual(answer, bit, f"{design}: {path} answered by {row}")

    def test_every_declared_name_is_found_and_means_its_bits(self):
        self.assertGreater(len(FLOWS), 10)
        self.assertGreaterEqual(len(FAMILIES), 10 if SANITIZED else 41)
        for design in (*DESIGNS, *FLOWS, *FAMILIES):
            with self.subTest(design):
                wanted = {}
                for prefix, module in instances(load(design)):
                    for name, fields in declared(module).items():
                        wanted[prefix + name] = (prefix, module, from_left_to_right(fields))
                self.assertGreater(len(wanted), 10)
                self.check_bits(design, wanted)

    def test_every_bit_and_range_of_a_vector_is_found(self):
        for design in FLOWS:
            with self.subTest(design):
                wanted = {}
                for prefix, module in instances(load(design)):
                    for name, fields in declared(module).items():
                        if is_vector(name, fields):
                            left = index_of(fields, len(fields["bits"]) - 1)
                            right = index_of(fields, 0)
                            bits = from_left_to_right(fields)
                            wanted[f"{prefix}{name}[{left}:{right}]"] = (prefix, module, bits)
                            wanted[f"{prefix}{name}[{left}]"] = (prefix, module, bits[:1])
                            wanted[f"{prefix}{name}[{right}:{right}]"] = (prefix, module, bits[-1:])
                if wanted:
                    self.check_bits(design, wanted)

    def test_flattened_names_are_found_by_their_hierarchical_path(self):
        for design in (*DESIGNS, *FLOWS):
            with self.subTest(design):
                wanted = {}
                for prefix, module in instances(load(design)):
                    for name, fields in declared(module).items():
                        path = fields["attributes"].get("hdlname", "").replace(" ", "/")
                        if path and path.replace("/", ".") == name:
                            wanted[prefix + path] = (prefix, module, from_left_to_right(fields))
                if wanted:
                    self.check_bits(design, wanted)

    def test_a_search_finds_a_net_by_each_of_its_names(self):
        for design in [flow for flow in FLOWS if re.search("proc|prep_flatten|ice40.json|routed|splitnets", flow)]:
            for prefix, module in list(instances(load(design)))[:1]:
                for name in declared(module):
                    with self.subTest(f"{design} {name}"):
                        rows = self.results("search", design, prefix + name.replace("\\", "\\\\"), "--glob")
                        names = {row["matched"] or row["path"] for row in rows}
                        self.assertTrue(prefix + name in names or name.removeprefix("\\") in names, names)
                        for row in rows:
                            self.assertTrue(row["matched"] is None or row["matched"] in row["aliases"], row)

    def test_a_hit_by_another_name_shows_both(self):
        text = netlist(top=bit_module({}, {"best": net(2), "another_name": net(2)}))
        design = self.file("two.json", text)
        self.assertEqual(self.succeed("search", design, "another").split()[-3:], ["best", "(=", "another_name)"])
        row = self.results("search", design, "another")[0]
        self.assertEqual((row["path"], row["matched"], row["aliases"]), ("best", "another_name", ["another_name"]))
        row = self.results("search", design, "best")[0]
        self.assertEqual((row["path"], row["matched"], row["aliases"]), ("best", None, ["another_name"]))

    def test_positions_are_those_of_the_declarations(self):
        lines = rtl_declarations()
        self.assertGreater(len(lines), 20)
        for design in FLOWS:
            if design == ROUTED:
                continue  # place and route keeps the position of any name of a net
            with self.subTest(design):
                checked = 0
                for row in self.results("probes", design, "--source-root", NAMES):
                    declaration = declaration_of(row["path"])
                    self.assertIn(declaration, lines, row)
                    if row["file"] is not None:
                        self.assertEqual(row["file"], os.path.join(REPOSITORY, NAMES, "names.v"))
                        self.assertEqual(row["line"], lines[declaration], row)
                        checked += 1
                self.assertGreater(checked, 8)

    def test_probes_offer_every_bit_that_the_rtl_declares(self):
        lines = rtl_declarations()
        for design in (*DESIGNS, *FLOWS):
            with self.subTest(design):
                rows = [row for row in self.results("probes", design) if row["reasons"] != ["excluded-memory"]]
                offered = {}
                modules = dict(instances(load(design)))
                for row in rows:
                    prefix = max((each for each in modules if row["path"].startswith(each)), key=len)
                    name = row["path"][len(prefix) :]
                    module = modules[prefix]
                    fields = module["netnames"].get(name) or module["ports"].get(name)
                    if fields is None:  # a vector that the netlist knows bit by bit
                        bits = [each["bits"][0] for other, each in module["netnames"].items()
                                if re.fullmatch(re.escape(name) + r"\[\d+\]", other)]
                    else:
                        bits = fields["bits"]
                    self.assertTrue(bits, row)
                    offered.setdefault(prefix, set()).update(bits)
                missing = []
                for prefix, module in modules.items():
                    for name, fields in declared(module).items():
                        written = design in DESIGNS or declaration_of(prefix + name) in lines
                        if written and "src" in fields["attributes"]:
                            missing += [(prefix + name, bit) for bit in fields["bits"]
                                        if isinstance(bit, int) and bit not in offered.get(prefix, ())]
                self.assertEqual(missing, [])

    def test_probes_show_vectors_whole(self):
        for design in FLOWS:
            rows = {row["path"]: row["width"] for row in self.results("probes", design)}
            with self.subTest(design):
                for path, width in (("count", 8), ("value_o", 4), ("sync_q", 2)):
                    if design == ROUTED and path == "value_o":
                        continue
                    self.assertEqual(rows.get(path), width, sorted(rows))

    def test_a_state_register_is_found_under_its_name_in_every_flow(self):
        for design in FLOWS:
            with self.subTest(design):
                self.assertTrue(any("main_state" in row["path"] for row in self.results("probes", design)))
                self.assertIn(run("clock-of", design, "main_state").returncode, (0, 1))

    def test_escaped_names_may_be_asked_for_with_and_without_backslash(self):
        for path in ("$odd", "\\$odd", "\\$odd ", "go.now", "\\go.now", "\\go.now "):
            self.assertIn(run("clock-of", f"{NAMES}/netlists/proc.json", path).returncode, (0, 1), path)

    def test_modules_show_what_the_user_wrote(self):
        tree = self.succeed("tree", f"{NAMES}/netlists/proc.json", "--user-modules")
        self.assertIn("names_stage(WIDTH=4)", tree)
        self.assertIn("names_stage(STEP=3,WIDTH=4)", tree)
        self.assertIn("cdc_sync(WIDTH=2)", self.succeed("info", ELABORATED))
        message = self.fail_with(3, "tree", f"{NAMES}/netlists/proc.json", "--top", "names_stage")
        self.assertIn("'names_stage(WIDTH=4)'", message)
        self.assertIn("'names_stage(STEP=3,WIDTH=4)'", message)
        top = self.json("tree", f"{NAMES}/netlists/proc.json", "--top", "names_stage(WIDTH=4)")["top"]
        self.assertEqual(top, "names_stage(WIDTH=4)")

    def test_a_saved_netlist_takes_what_the_user_calls_a_module_for_its_top(self):
        design = f"{NAMES}/netlists/proc.json"
        saved = self.path("saved.netlist")
        self.succeed("save", design, saved)
        for file in (design, saved):
            with self.subTest(file):
                message = self.fail_with(3, "tree", file, "--top", "names_stage")
                self.assertEqual(message, f"{file}: several modules were made from 'names_stage', which was asked for as the "
                                          "top: 'names_stage(STEP=3,WIDTH=4)', 'names_stage(WIDTH=4)'")
                self.assertEqual(self.json("tree", file, "--top", "names_stage(WIDTH=4)")["top"], "names_stage(WIDTH=4)")
                message = self.fail_with(3, "tree", file, "--top", "names_stag(WIDTH=4)")
                self.assertIn("; did you mean 'names_stage(WIDTH=4)'", message)
        module = bit_module({}, {"a": net(2)})
        once = json.loads(netlist(**{"$paramod\\fifo\\DEPTH=s32'00000000000000000000000000000100": module}))
        self.succeed("save", self.file("once.json", json.dumps(once)), saved, "--force")
        for name in ("fifo", "fifo(DEPTH=4)"):
            self.assertEqual(self.json("info", saved, "--top", name)["top"], "fifo(DEPTH=4)")

    def test_placement_shows_in_the_result_of_a_search(self):
        rows = self.results("search", ROUTED, "")
        placed = [row for row in rows if row["kind"] == "instance" and "NEXTPNR_BEL" in row["attributes"]]
        cells = next(module["cells"] for module in load(ROUTED).values() if module["cells"])
        self.assertEqual({row["path"]: row["attributes"]["NEXTPNR_BEL"] for row in placed},
                         {name: cell["attributes"]["NEXTPNR_BEL"] for name, cell in cells.items()})

    def test_a_saved_netlist_knows_every_name_and_nothing_of_the_folder(self):
        saved = []
        for folder in (self.directory, REPOSITORY):
            out = self.path(f"saved{len(saved)}.netlist")
            self.assertEqual(run("save", os.path.join(REPOSITORY, ELABORATED), out, cwd=folder).returncode, 0)
            with open(out, "rb") as stream:
                saved.append(stream.read())
        self.assertEqual(saved[0], saved[1])
        self.assertNotIn(REPOSITORY.encode(), saved[0])
        self.assertEqual(self.results("search", out, ""), self.results("search", ELABORATED, ""))
        self.assertEqual(self.results("probes", out), self.results("probes", ELABORATED))

    def test_source_root_says_where_the_paths_of_the_netlist_begin(self):
        path = "designs/rtl/soc_top.v"
        row = self.results("search", ELABORATED, "clk_sys_i", "--source-root", "/somewhere/else")[0]
        self.assertEqual((row["file"], row["sources"][0].split(":")[0]), (f"/somewhere/else/{path}", path))
        self.assertIn(f"/somewhere/else/{path}:", self.succeed("clocks", ELABORATED, "--source-root", "/somewhere/else"))
        self.assertNotIn("/somewhere", self.succeed("clocks", ELABORATED))


if __name__ == "__main__":
    unittest.main()
