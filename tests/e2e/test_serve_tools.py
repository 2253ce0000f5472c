#!/usr/bin/env python3
"""The tools of the server say what the commands of the program say, page by page."""

import json
import os
import unittest

from jsonschema import Draft202012Validator
from mcp import Server
from program import ELABORATED, POST_MAP, REPOSITORY, ProgramTest


# What the tool has besides the columns of the command.
PINS = {"drivers", "loads", "load_count"}


def pages(server, tool, rows="results", **arguments):
    """All rows of a tool, and the number of pages that they came in."""
    found, number, cursor = [], 0, {}
    while True:
        page = server.ask(tool, **arguments, **cursor)
        found += page[rows]
        number += 1
        if page["ending"] == "complete":
            assert "next_cursor" not in page
            return found, number
        assert page["ending"] == "limit"
        cursor = {"cursor": page["next_cursor"]}


class OneForm(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.server = Server(ELABORATED)
        cls.server.initialize()
        cls.schemas = {tool["name"]: tool for tool in cls.server.request("tools/list")["result"]["tools"]}

    @classmethod
    def tearDownClass(cls):
        with cls.server:
            pass

    def check(self, tool, command, rows="results", **arguments):
        """Asks the tool in pages of several sizes for what the command line says; returns the rows."""
        expected = self.json(*command)
        for more in ({"limit": 100_000, "max_bytes": 1 << 28}, {"limit": 97 + len(expected[rows]) // 10}):
            found, _ = pages(self.server, tool, rows, **arguments, **more)
            self.assertEqual(found, expected[rows], (tool, more))
        page = self.server.ask(tool, limit=3, **arguments)
        Draft202012Validator(self.schemas[tool]["outputSchema"]).validate(page)
        self.assertEqual((page["format"], page["version"]), (expected["format"], 1))
        self.assertEqual(page["design"], "soc_elaborated")
        for fact in ("top", "form"):
            self.assertEqual(page[fact], expected[fact])
        properties = self.schemas[tool]["outputSchema"]["properties"][rows]["items"]["properties"]
        self.assertLessEqual({key for row in found for key in row}, set(properties))
        self.assertTrue(found)
        return found, expected

    def test_info(self):
        _, expected = self.check("info", ["info", ELABORATED], rows="module_list")
        page = self.server.ask("info")
        for key, value in expected.items():
            if key != "module_list":
                self.assertEqual(page[key], value, key)

    def test_search(self):
        for options, arguments in (
            ([], {"pattern": "clk"}),
            (["-i", "--user-nets"], {"pattern": "CLK", "ignore_case": True, "user_nets": True}),
            (["--glob"], {"pattern": "u_cpu/**", "mode": "glob"}),
            (["--regex", "--kind", "bus,instance"], {"pattern": "_q$|^u_", "mode": "regex", "kinds": ["bus", "instance"]}),
            (["--from", "u_cpu", "--user-modules"], {"pattern": "", "from": "u_cpu", "user_modules": True}),
        ):
            self.check("search", ["search", ELABORATED, arguments["pattern"], *options], **arguments)

    def test_children(self):
        for options, arguments in (
            ([], {}),
            (["--depth", "3", "--clocks"], {"depth": 3, "clocks": True}),
            (["--from", "u_cpu", "--user-modules"], {"path": "u_cpu", "user_modules": True}),
        ):
            depth = arguments.get("depth", 1)
            command = ["tree", ELABORATED, *options, *(() if "depth" in arguments else ("--depth", "1"))]
            below = self.results(*command)[1:]
            found, _ = pages(self.server, "children", limit=5, **arguments)
            self.assertEqual(found, below)
            self.assertLessEqual({row["depth"] for row in found}, set(range(1, depth + 1)))

    def test_clocks(self):
        _, expected = self.check("clocks", ["clocks", ELABORATED])
        page = self.server.ask("clocks")
        for fact in ("nets", "nets_without_clock"):
            self.assertEqual(page[fact], expected[fact])

    def test_net(self):
        reports = [row for row in self.results("probes", ELABORATED, "--all") if row["clocks"] and not row["aliases"]]
        for path in (next(row["path"] for row in reports if row["kind"] == kind) for kind in ("net", "bus")):
            expected = self.json("clock-of", ELABORATED, path, "--capture")
            found, _ = pages(self.server, "net", path=path, limit=3)
            self.assertEqual([{key: value for key, value in row.items() if key not in PINS} for row in found],
                             expected["results"])
            self.assertTrue(all(PINS <= row.keys() for row in found))
            page = self.server.ask("net", path=path)
            hit = next(row for row in self.results("search", ELABORATED, "") if row["path"] == path)
            self.assertEqual(page["path"], path)
            self.assertEqual(page["full_name"], path)
            for key in ("kind", "width", "user_declared", "file", "line", "attributes"):
                self.assertEqual(page[key], hit[key], key)
            self.assertEqual(page["width"], len(found))

    def test_a_part_of_a_bus_is_no_item(self):
        bus = next(row for row in self.results("search", ELABORATED, "", "--kind", "bus") if row["width"] > 2)
        bit, next_bit = [row["net"] for row in self.results("clock-of", ELABORATED, bus["path"])[:2]]
        page = self.server.ask("net", path=bit)
        self.assertEqual((page["kind"], page["width"], page["full_name"]), ("net", 1, bit))
        part = self.server.ask("net", path=f"{bit[:-1]}:{next_bit[:-1].rsplit('[', 1)[1]}]")
        self.assertEqual(part["width"], 2)
        self.assertNotIn("kind", part)

    def test_why(self):
        path = self.results("crossings", ELABORATED)[0]["to"]
        found, _ = self.check("why", ["clock-of", ELABORATED, path, "--why"], path=path)
        self.assertTrue(all("why" in row for row in found))

    def test_crossings(self):
        for options, arguments in (
            ([], {}),
            (["--severity", "unsafe", "--bits"], {"severities": ["unsafe"], "bits": True}),
            (["--all-classes"], {"all_classes": True}),
        ):
            self.check("crossings", ["crossings", ELABORATED, *options], **arguments)
        first = self.results("crossings", ELABORATED)[0]
        self.check("crossings", ["crossings", ELABORATED, "--class", first["class"], "--to", first["capture"]],
                   classes=[first["class"]], to=first["capture"])

    def test_a_summary_of_crossings(self):
        found, _ = pages(self.server, "crossings", summary=True, limit=2)
        self.assertEqual(found, self.json("crossings", ELABORATED)["summary"])

    def test_probes(self):
        for options, arguments in (
            ([], {}),
            (["--from", "u_cpu", "--all", "--kind", "bus"], {"from": "u_cpu", "all": True, "kinds": ["bus"]}),
            (["--verdict", "no,partly"], {"verdicts": ["no", "partly"]}),
        ):
            self.check("probes", ["probes", ELABORATED, *options], **arguments)
        groups, _ = pages(self.server, "probes", groups=True)
        self.assertEqual(groups, self.json("probes", ELABORATED)["groups"])

    def test_why_a_net_may_not_be_probed(self):
        path = self.results("probes", ELABORATED, "--verdict", "no")[0]["path"]
        found, expected = self.check("probes", ["probes", ELABORATED, "--why-not", path], path=path)
        page = self.server.ask("probes", path=path)
        for fact in ("path", "verdict", "width", "bits"):
            self.assertEqual(page[fact], expected[fact])

    def test_rows_keep_to_the_schemas_of_the_program(self):
        for tool, command, arguments in (
            ("search", "search", {"pattern": "clk"}), ("children", "tree", {}), ("clocks", "clocks", {}),
            ("why", "clock-of", {"path": "clk_adc"}), ("crossings", "crossings", {}), ("probes", "probes", {}),
        ):
            with open(os.path.join(REPOSITORY, f"docs/schema/{command}.schema.json")) as file:
                schema = json.load(file)
            validator = Draft202012Validator({"$ref": "#/$defs/result", "$defs": schema["$defs"]})
            for row in self.server.ask(tool, **arguments)["results"]:
                validator.validate(row)

    def test_hints_are_about_tools(self):
        instance = self.results("tree", ELABORATED, "--depth", "1")[1]["path"]
        self.assertIn("search with from", self.server.refusal("net", path=instance))
        self.assertIn("search with mode glob", self.server.refusal("net", path="u_*/x"))

    def test_any_page_is_found_again(self):
        first = self.server.ask("search", pattern="", limit=50)
        second = self.server.ask("search", pattern="", limit=50, cursor=first["next_cursor"])
        # Other questions push the one that was kept out.
        for number in range(20):
            self.server.ask("search", pattern=f"u_{number % 10}", limit=1)
            self.server.ask("search", pattern="clk", limit=1 + number)
        self.assertEqual(self.server.ask("search", pattern="", limit=50, cursor=first["next_cursor"]), second)
        other = self.server.ask("search", pattern="", limit=10, cursor=first["next_cursor"])
        self.assertEqual(other["results"], second["results"][:10])

    def test_a_cursor_belongs_to_its_question(self):
        cursor = self.server.ask("search", pattern="clk", limit=1)["next_cursor"]
        for tool, arguments in (("search", {"pattern": "rst"}), ("search", {"pattern": "clk", "user_nets": True}),
                                ("children", {}), ("search", {"pattern": "clk", "mode": "glob"})):
            self.assertIn("cursor", self.server.refusal(tool, cursor=cursor, **arguments))
        for wrong in ("", "1", "x" * 10000, cursor + "0", "-" + cursor, cursor[:-1]):
            self.assertIn("cursor", self.server.refusal("search", pattern="clk", cursor=wrong))
        self.assertTrue(self.server.ask("search", mode="plain", limit=5, cursor=cursor, pattern="clk")["results"])

    def test_an_answer_keeps_within_its_bytes(self):
        for most in (None, 4096, 20_000):
            arguments = {"pattern": "", "limit": 100_000, **({"max_bytes": most} if most else {})}
            self.server.send({"jsonrpc": "2.0", "id": "size", "method": "tools/call",
                              "params": {"name": "search", "arguments": arguments}})
            line = self.server.lines.get(timeout=60)
            self.assertLessEqual(len(line), most or 65536)
            self.assertGreater(len(line), (most or 65536) // 2)
        found, number = pages(self.server, "search", pattern="", limit=100_000, max_bytes=100_000)
        self.assertGreater(number, 2)
        self.assertEqual(found, self.results("search", ELABORATED, ""))

    def test_a_row_that_does_not_fit_is_not_cut(self):
        text = self.server.refusal("info", max_bytes=4096)
        bytes_needed = int(text.split("takes ")[1].split()[0])
        self.assertTrue(self.server.ask("info", max_bytes=bytes_needed)["module_list"])
        self.assertIn("max_bytes allows", self.server.refusal("info", max_bytes=bytes_needed - 1))


class BothForms(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.server = Server("soc=" + ELABORATED, "--post-map", POST_MAP)
        cls.server.initialize()

    @classmethod
    def tearDownClass(cls):
        with cls.server:
            pass

    def test_map(self):
        for options, arguments in (
            ([], {}),
            (["--grade", "gone,unknown"], {"grades": ["gone", "unknown"]}),
            (["--reverse", "--all"], {"reverse": True, "all": True}),
        ):
            expected = self.json("map", ELABORATED, POST_MAP, *options)
            found, _ = pages(self.server, "map", limit=1000, **arguments)
            self.assertEqual(found, expected["results"])
        expected = self.results("map", ELABORATED, POST_MAP, "u_cpu", "clk_adc")
        found, _ = pages(self.server, "map", paths=["u_cpu", "clk_adc"])
        self.assertEqual(found, expected)

    def test_probes_know_the_device(self):
        found, _ = pages(self.server, "probes", limit=1000)
        self.assertEqual(found, self.results("probes", ELABORATED, POST_MAP))

    def test_each_form_can_be_asked(self):
        for form, design in (("elaborated", ELABORATED), ("post-map", POST_MAP)):
            page = self.server.ask("clocks", form=form)
            self.assertEqual(page["form"], form)
            self.assertEqual(page["results"], self.results("clocks", design))
            found, _ = pages(self.server, "search", form=form, pattern="u_cpu", limit=10_000)
            self.assertEqual(found, self.results("search", design, "u_cpu", "--form", form))
        self.assertEqual(self.server.ask("clocks")["form"], "elaborated")


class SeveralDesigns(ProgramTest):
    def test_each_is_asked_by_its_name(self):
        with Server("a=" + ELABORATED, POST_MAP, "b=" + ELABORATED) as server:
            server.initialize()
            tools = server.request("tools/list")["result"]["tools"]
            for tool in tools:
                self.assertEqual(tool["inputSchema"]["properties"]["design"]["enum"], ["a", "soc_postmap", "b"])
                self.assertIn("design", tool["inputSchema"]["required"])
            self.assertIn("design: missing", server.refusal("clocks"))
            for name, design in (("b", ELABORATED), ("soc_postmap", POST_MAP), ("a", ELABORATED)):
                page = server.ask("clocks", design=name)
                self.assertEqual(page["design"], name)
                self.assertEqual(page["results"], self.results("clocks", design))
                found, _ = pages(server, "search", design=name, pattern="_q", limit=5000)
                self.assertEqual(found, self.results("search", design, "_q"))

    def test_a_cursor_belongs_to_its_design(self):
        with Server("a=" + ELABORATED, "b=" + ELABORATED) as server:
            server.initialize()
            cursor = server.ask("search", design="a", pattern="clk", limit=1)["next_cursor"]
            self.assertIn("cursor", server.refusal("search", design="b", pattern="clk", cursor=cursor))


class Waivers(ProgramTest):
    def test_rules_hold_for_crossings(self):
        rules = self.file("rules", "waive ** ** looked at\n")
        with Server(ELABORATED, "--waivers", rules) as server:
            server.initialize()
            self.assertEqual(server.ask("crossings")["results"], [])
            found, _ = pages(server, "crossings", waived=True)
            self.assertEqual(found, self.results("crossings", ELABORATED, "--waivers", rules, "--waived"))


class CommandLines(ProgramTest):
    def test_wrong_ones_are_refused(self):
        for arguments, text in (
            ([], "no design given"),
            (["-"], "standard input is for messages"),
            ([ELABORATED, ELABORATED], "two designs are called 'soc_elaborated'"),
            (["a=" + ELABORATED, "b=" + POST_MAP, "--post-map", POST_MAP], "of which design"),
            (["a=" + ELABORATED, "--post-map", "b=" + POST_MAP], "no design 'b'"),
            ([ELABORATED, "--post-map", POST_MAP, "--post-map", POST_MAP], "two post-map forms"),
            (["=x.json"], "is not NAME=DESIGN"),
            (["x="], "is not NAME=DESIGN"),
            ([ELABORATED, "--top", "x", "b=" + POST_MAP], "--top goes with one design"),
            ([ELABORATED, "--form", "elaborated", "--post-map", POST_MAP], "--form"),
            ([ELABORATED, "-I", "."], "-I, -D and -f"),
        ):
            self.assertIn(text, self.fail_with(2, "serve", *arguments))

    def test_files_that_are_not_there_are_refused_before_anything_is_read(self):
        for arguments in (["missing.json"], [ELABORATED, "--post-map", "missing.json"],
                          [ELABORATED, "--waivers", "missing.json"]):
            self.assertIn("missing.json", self.fail_with(3, "serve", *arguments))


if __name__ == "__main__":
    unittest.main()
