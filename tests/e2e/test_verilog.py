import os
import stat
import unittest

from program import ProgramTest, environment, run

COUNTER = """
module counter(input clk, input reset, output reg [7:0] count);
    always @(posedge clk)
        if (reset) count <= 0;
        else count <= count + 1;
endmodule
"""
PAIR = """
module pair(input clk_a, clk_b, reset, output [7:0] a, b);
    counter u_a(.clk(clk_a), .reset(reset), .count(a));
    counter u_b(.clk(clk_b), .reset(reset), .count(b));
endmodule
"""


class Verilog(ProgramTest):
    def test_sources_are_elaborated_and_read(self):
        sources = [self.file("pair.v", PAIR), self.file("counter.sv", COUNTER)]
        self.assertEqual(self.json("info", *sources)["top"], "pair")
        tree = [row["path"] for row in self.results("tree", *sources, "--user-modules")]
        self.assertEqual(tree, ["", "u_a", "u_b"])
        clocks = {row["net"]: row["clock"] for row in self.results("clock-of", *sources, "u_a/count", "b[3]")}
        self.assertEqual(clocks["u_a/count[0]"], "clk_a")
        self.assertEqual(clocks["b[3]"], "clk_b")

    def test_source_positions_are_those_of_the_sources(self):
        source = self.file("counter.v", COUNTER)
        rows = {row["path"]: row for row in self.results("probes", source)}
        self.assertEqual((rows["count"]["file"], rows["count"]["line"]), (source, 2))

    def test_the_top_can_be_chosen(self):
        sources = [self.file("pair.v", PAIR), self.file("counter.v", COUNTER)]
        self.assertEqual(self.json("info", *sources, "--top", "counter")["top"], "counter")
        self.assertIn("yosys: ", self.fail_with(3, "info", *sources, "--top", "missing"))
        self.assertIn("--top", self.fail_with(2, "info", *sources, "--top", "counter; shell touch x"))

    def test_what_yosys_finds_wrong_is_passed_on(self):
        source = self.file("broken.v", "module broken(;\nendmodule\n")
        message = self.fail_with(3, "info", source)
        self.assertTrue(message.startswith(f"{source}: yosys: {source}:1: ERROR: syntax error"), message)
        source = self.file("open.v", PAIR)
        self.assertIn("counter", self.fail_with(3, "info", source))

    def test_odd_file_names_reach_yosys_whole(self):
        for name in ("two words.v", "semi;colon.v", 'quo"te.v', "-dash.v", "do$llar.v"):
            with self.subTest(name):
                self.file(name, COUNTER)
                arguments = ("--", name) if name.startswith("-") else (name,)
                result = run("info", "--format", "csv", *arguments, cwd=self.directory)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertIn("design,counter,form,elaborated\n", result.stdout)

    def test_a_pattern_may_look_like_a_source(self):
        source = self.file("counter.v", COUNTER)
        self.assertEqual(run("search", source, "x.v").returncode, 1)

    def test_sources_can_be_saved(self):
        sources = [self.file("pair.v", PAIR), self.file("counter.v", COUNTER)]
        saved = self.path("pair.netlist")
        self.succeed("save", *sources, saved)
        self.assertEqual(self.succeed("probes", saved), self.succeed("probes", *sources))

    def test_a_missing_yosys_is_told(self):
        source = self.file("counter.v", COUNTER)
        message = self.fail_with(3, "info", source, env=environment(PATH=self.directory))
        self.assertEqual(message, f"{source}: Verilog is read with yosys, which is not installed (Debian package yosys)")

    def test_a_yosys_that_writes_no_netlist_is_told(self):
        source = self.file("counter.v", COUNTER)
        for script, fault in (("exit 3", "stopped without saying why"), ("echo no licence >&2; exit 1", "no licence")):
            yosys = self.file("yosys", "#!/bin/sh\n" + script + "\n")
            os.chmod(yosys, stat.S_IRWXU)
            message = self.fail_with(3, "info", source, env=environment(PATH=self.directory + ":/usr/bin:/bin"))
            self.assertEqual(message, f"{source}: yosys: {fault}")

    def test_nothing_stays_in_the_temporary_directory(self):
        temporary = self.path("tmp")
        os.mkdir(temporary)
        good, bad = self.file("counter.v", COUNTER), self.file("broken.v", "module")
        self.assertEqual(run("info", good, env=environment(TMPDIR=temporary)).returncode, 0)
        self.assertEqual(run("info", bad, env=environment(TMPDIR=temporary)).returncode, 3)
        self.assertEqual(os.listdir(temporary), [])


if __name__ == "__main__":
    unittest.main()
