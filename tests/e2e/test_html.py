"""The page that the program writes: one file, whole, with data that a browser can take apart."""

import base64
import gzip
import json
import os
import pty
import re
import subprocess
import unittest

from program import ELABORATED, POST_MAP, PROGRAM, REPOSITORY, ProgramTest, environment, run

PART = re.compile(rb'<script type="application/gzip" id="(\w+)">([A-Za-z0-9+/=]*)</script>')


class Html(ProgramTest):
    known = {}

    def page(self, *arguments):
        """The page of a design, which is written once for all tests."""
        if arguments not in self.known:
            self.succeed("html", *arguments, "-o", self.path("page.html"))
            with open(self.path("page.html"), "rb") as stream:
                self.known[arguments] = stream.read()
        return self.known[arguments]

    def parts(self, *arguments):
        """The data of a page, part by part, as text."""
        return {name.decode(): gzip.decompress(base64.b64decode(data, validate=True)).decode()
                for name, data in PART.findall(self.page(*arguments))}

    def test_is_one_file_that_refers_to_no_other(self):
        page = self.page(ELABORATED)
        without_data = PART.sub(b"", page)
        self.assertTrue(page.startswith(b"<!doctype html>"))
        self.assertTrue(page.endswith(b"</html>\n"))
        self.assertEqual(re.findall(rb"(?i)<(?:link|img|iframe|script[^>]*src)", without_data), [])
        self.assertEqual(set(re.findall(rb"https?://[^\"\'` )]*", without_data)), {b"http://www.w3.org/2000/svg"})
        self.assertIn(b"default-src 'none'", page)

    def test_is_the_same_on_every_run_and_on_standard_output(self):
        result = run("html", ELABORATED, text=False)
        self.assertEqual(result.returncode, 0)
        self.assertTrue(result.stdout == self.page(ELABORATED))

    def test_holds_every_module_once_with_names_and_source(self):
        parts = self.parts(ELABORATED)
        head = json.loads(parts["head"])
        self.assertEqual((head["format"], head["top"], head["form"]), ("netlistdb-html", "soc_top", "elaborated"))
        top = head["modules"][-1]
        self.assertEqual((top["name"], head["files"][top["place"][0]]), ("soc_top", "designs/rtl/soc_top.v"))
        tree = self.results("tree", ELABORATED, "--depth", "1")
        with_contents = {sub[0] for sub in top["subs"]}
        self.assertIn("u_cpu", with_contents)
        self.assertLessEqual(with_contents, {row["name"] for row in tree})
        end = 0
        for module in head["modules"]:
            self.assertEqual(module["at"], end)
            end += module["bytes"]
            body = json.loads(parts["modules"].encode()[module["at"]:end])
            self.assertEqual(len(body["nets"]), module["nets"])
            self.assertEqual(len(body["launch"]), module["nets"])
            self.assertEqual(len(body["signals"]), module["signals"])
            self.assertEqual(len(body["cells"]), module["cells"] + len(module["subs"]))
            self.assertEqual(len(body["ports"]), module["ports"])
        self.assertEqual(end, len(parts["modules"].encode()))

    def test_clocks_and_crossings_are_those_of_the_other_commands(self):
        parts = self.parts(ELABORATED)
        head = json.loads(parts["head"])
        clocks = {clock["name"]: (clock["root"], clock["edges"], clock["registers"], clock["nets"])
                  for clock in head["clocks"]["list"]}
        rows = self.results("clocks", ELABORATED)
        self.assertEqual(clocks, {row["clock"]: (row["root"], row["edges"], row["registers"], row["nets"]) for row in rows})
        crossings = json.loads(parts["crossings"])
        wanted = self.results("crossings", ELABORATED)
        key = lambda row: (row["class"], row["severity"], row["from"], row["to"], row["pin"], row["bits"], row["cells"])
        self.assertEqual([key(row) for row in crossings], [key(row) for row in wanted])

    def test_details_are_those_of_the_other_commands(self):
        details = json.loads(self.parts(ELABORATED, "--post-map", POST_MAP)["details"])
        parts = self.parts(ELABORATED)
        head = json.loads(parts["head"])
        spi = next(module for module in head["modules"] if module["name"].startswith("spi_master"))
        body = json.loads(parts["modules"].encode()[spi["at"]:spi["at"] + spi["bytes"]])
        select = next(each for each in details["u_spi"] if body["signals"][each["signal"]] == "select_q")
        row = next(row for row in self.results("probes", ELABORATED, POST_MAP) if row["path"] == "u_spi/select_q")
        self.assertEqual((select["verdict"], select["probeable"]), (row["verdict"], row["bits"]))
        self.assertEqual(head["clocks"]["list"][select["clock"]]["name"], row["clock"])
        mapped = self.results("map", ELABORATED, POST_MAP, "u_spi/select_q")
        self.assertEqual([(match[0], match[2][0]) for match in select["matches"]], [(each["grade"], each["match"]) for each in mapped])
        proof = select["why"]["clocks"][0]
        self.assertEqual((proof["clock"], proof["clock_to_root"][-1]["net"]), ("clk_sys_i", "clk_sys_i"))

    def test_details_of_the_first_nets_only_when_asked_so(self):
        parts = self.parts(ELABORATED, "--details", "10")
        counts = json.loads(parts["head"])["details"]
        self.assertEqual((counts["verdicts"], counts["chains"]), (10, 10))
        self.assertGreater(counts["signals"], 500)
        self.assertEqual(sum(map(len, json.loads(parts["details"]).values())), 10)
        self.assertEqual(json.loads(self.parts(ELABORATED, "--details", "0")["details"]), {})

    def test_takes_every_kind_of_design(self):
        self.succeed("save", POST_MAP, self.path("soc.netlist"))
        head = json.loads(self.parts(self.path("soc.netlist"))["head"])
        self.assertEqual((head["form"], head["top"]), ("post-map", "soc_top"))
        verilog = self.file("counter.v", "module counter(input clk, output reg [3:0] n); always @(posedge clk) n <= n + 1; endmodule\n")
        head = json.loads(self.parts(verilog)["head"])
        self.assertEqual([clock["name"] for clock in head["clocks"]["list"]], ["clk"])
        self.assertEqual(head["command"], verilog)

    def test_names_do_not_get_out_of_the_data(self):
        name = "</script><script>window.broken = 1</script>"
        design = {"modules": {name: {"attributes": {"top": "1"}, "ports": {}, "cells": {},
                                     "netnames": {name: {"bits": [2], "attributes": {}}}}}}
        page = self.page(self.file("hostile.json", json.dumps(design)))
        self.assertFalse(b"broken" in page)
        self.assertEqual(page.count(b"</script>"), len(PART.findall(page)) + 1)

    def test_wrong_usage_is_refused(self):
        def fault(*arguments, code=2):
            result = run("html", *arguments)
            self.assertEqual((result.returncode, result.stdout), (code, ""), result.stderr)
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
            return result.stderr

        self.assertIn("--form goes with one netlist", fault(ELABORATED, "--post-map", POST_MAP, "--form", "elaborated"))
        self.assertIn("'-' can be one of the two", fault("-", "--post-map", "-"))
        self.assertIn("--details", fault(ELABORATED, "--details", "-1"))
        design = self.file("design.json", "{}")
        self.assertIn("design.json", fault(design, "-o", design, code=3))
        self.assertIn("missing.json", fault(ELABORATED, "--post-map", self.path("missing.json"), "-o", self.path("page.html"), code=3))
        self.assertFalse(os.path.exists(self.path("page.html")))

    def test_a_page_is_not_written_to_a_terminal(self):
        master, terminal = pty.openpty()
        self.addCleanup(os.close, master)
        result = subprocess.run([PROGRAM, "html", ELABORATED], stdout=terminal, stderr=subprocess.PIPE, text=True, cwd=REPOSITORY,
                                env=environment())
        os.close(terminal)
        self.assertEqual(result.returncode, 2)
        self.assertIn("-o FILE", result.stderr)


if __name__ == "__main__":
    unittest.main()
