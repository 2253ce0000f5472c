import glob
import os
import stat
import unittest

from program import ELABORATED, REPOSITORY, ProgramTest, environment, run

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
        self.assertEqual(self.fail_with(3, "info", *sources, "--top", "countre"),
                         f"{sources[0]}, {sources[1]}: has no module 'countre'; did you mean 'counter'?")
        self.assertIn("--top", self.fail_with(2, "info", *sources, "--top", "counter; shell touch x"))

    def test_what_yosys_finds_wrong_names_the_file_that_is_at_fault(self):
        good = self.file("counter.v", COUNTER)
        broken = self.file("broken.v", "\nmodule broken(;\nendmodule\n")
        pair = self.file("pair.v", PAIR)
        lost = self.file("lost.v", "module lost #(parameter W = 1)(); nothing u(); endmodule\n")
        user = self.file("user.v", "// module lost\nmodule user; lost #(.W(3)) u(); endmodule\n")
        include = self.file("include.v", "`include \"missing.vh\"\n")
        for sources, place, fault in (
            ((broken,), broken + ":2", "syntax error"),
            ((good, broken), broken + ":2", "syntax error"),
            ((broken, good), broken + ":2", "syntax error"),
            ((user, lost), lost, "`\\nothing'"),
            ((pair,), pair, "`\\counter'"),
            ((good, include), "", "missing.vh"),
        ):
            with self.subTest(sources):
                message = self.fail_with(3, "info", *sources)
                self.assertTrue(message.startswith(f"{place}: yosys: " if place else f"{good}, {include}: yosys: "), message)
                self.assertIn(fault, message)
                self.assertNotIn("ERROR", message)

    def test_several_possible_tops_are_an_error_that_lists_them(self):
        sources = [self.file("pair.v", PAIR), self.file("counter.v", COUNTER), self.file("b.v", "module b(input a, output c); assign c = a; endmodule\n")]
        message = self.fail_with(3, "info", *sources)
        self.assertEqual(message, f"{sources[0]} and 2 more: several modules are instantiated by no other: 'b', 'pair'; "
                                  "--top chooses one")
        self.assertEqual(self.json("info", *sources, "--top", "b")["top"], "b")

    def test_boxes_and_what_some_parameters_instantiate_are_no_tops(self):
        source = self.file("top.v", """
            (* blackbox *) module unused_box(input a); endmodule
            module leaf(input a, output b); assign b = ~a; endmodule
            module array_leaf(input a, output b); assign b = a; endmodule
            module middle #(parameter HAS_LEAF = 0)(input a, output b);
                if (HAS_LEAF) leaf u(.a(a), .b(b)); else assign b = a;
            endmodule
            module top(input a, output b, output [3:0] c);
                middle #(.HAS_LEAF(1)) u(.a(a), .b(b));
                array_leaf v[3:0](.a(a), .b(c));
            endmodule
        """)
        self.assertEqual(self.json("info", source)["top"], "top")

    def test_the_sources_of_the_checked_in_design_are_read(self):
        sources = sorted(glob.glob(os.path.join(REPOSITORY, "designs/rtl/*.v")))
        sources.append(os.path.join(REPOSITORY, "designs/kvr/cells.v"))
        self.assertGreater(len(sources), 30)
        clocks = lambda *design: [(row["nets"], row["clock"]) for row in self.results("clocks", *design)]
        self.assertEqual(clocks(*sources), clocks(ELABORATED))

    INCLUDING = "`include \"width.vh\"\nmodule top(input [`WIDTH-1:0] a, output [`WIDTH-1:0] b); assign b = ~a; endmodule\n"

    def width(self, *arguments):
        rows = self.results("probes", *arguments)
        return {row["path"]: row["width"] for row in rows}["a"]

    def test_macros_and_directories_of_includes_can_be_given(self):
        source = self.file("top.v", self.INCLUDING)
        os.mkdir(self.path("inc"))
        self.file("inc/width.vh", "`ifndef WIDTH\n`define WIDTH 4\n`endif\n")
        self.assertEqual(self.width(source, "-I", self.path("inc")), 4)
        self.assertEqual(self.width(source, "-I" + self.path("inc"), "-D", "WIDTH=7"), 7)
        self.assertEqual(self.width("-I", self.path("missing"), "-I", self.path("inc"), "-DWIDTH=7", "-DX", source), 7)

    def test_a_value_that_yosys_cannot_take_is_refused(self):
        source = self.file("top.v", COUNTER)
        self.assertIn("'two words' has a blank", self.fail_with(2, "info", source, "-I", "two words"))
        self.assertIn("'A=1 2' has a blank", self.fail_with(2, "info", source, "-D", "A=1 2"))

    def test_options_of_verilog_go_with_nothing_else(self):
        for option in ("-I", "-D", "-f"):
            lists = self.file("list.f", "") if option == "-f" else "X"
            message = self.fail_with(2, "info", ELABORATED, option, lists)
            self.assertIn("-I, -D and -f go with Verilog sources" if option != "-f" else "too many", message)

    def test_file_lists_name_sources_and_options(self):
        os.makedirs(self.path("lists/rtl/inc"))
        self.file("lists/rtl/top one.v", self.INCLUDING.replace("assign b = ~a", "sub u(a[0])"))
        self.file("lists/sub.v", "module sub(input a); endmodule\n")
        self.file("lists/rtl/inc/width.vh", "")
        self.file("lists/rtl/nested.f", "+incdir+inc\n+define+WIDTH=`W+W=9\n\"top one.v\" # and blanks\n")
        top = self.file("lists/top.f", "// the top\n-f rtl/nested.f /* not\n missing.v */ ${SUBMODULE}.v // $NOT_SET\n-sv\n")
        for directory in (REPOSITORY, self.directory, self.path("lists")):
            result = run("probes", "-f", os.path.relpath(top, directory), "--format", "csv", cwd=directory,
                         env=environment(SUBMODULE="sub"))
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertIn("bus,a,9,", result.stdout)

    def test_paths_of_a_list_may_start_in_the_working_directory(self):
        os.mkdir(self.path("lists"))
        self.file("lists/top.f", "rtl/counter.v")
        os.mkdir(self.path("rtl"))
        self.file("rtl/counter.v", COUNTER)
        result = run("info", "-f", "lists/top.f", cwd=self.directory)
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_arguments_stay_arguments_behind_a_file_list(self):
        self.file("counter.v", COUNTER)
        self.file("pair.v", PAIR)
        one, both = self.file("one.f", "counter.v"), self.file("both.f", "counter.v pair.v")
        self.assertIn("count", {row["path"] for row in self.results("search", "-f", one, "count")})
        self.assertEqual(self.json("info", "-f", one, self.path("pair.v"))["top"], "pair")
        self.assertEqual(self.json("info", "-f", both, "--top", "pair")["top"], "pair")
        self.assertIn("clk_a", self.succeed("clock-of", "-f", both, "a", "b"))
        self.succeed("save", "-f", both, self.path("saved"))
        self.assertIn("an argument is missing", self.fail_with(2, "search", "-f", one))

    def test_what_is_wrong_with_a_list_names_its_line(self):
        self.file("itself.f", "\n-f itself.f")
        for content, fault in (
            ("a.v\n", ":1: there is no 'a.v' beside the list or in the working directory"),
            ("\n\n-y lib", ":3: '-y' is no option of a file list; there are -I, +incdir+, -D, +define+ and -f"),
            ("+libext+.v", ":1: '+libext+.v' is no option of a file list; there are -I, +incdir+, -D, +define+ and -f"),
            ("\n-I", ":2: nothing follows '-I'"),
            ("/* open", ":1: a comment that begins here does not end"),
            ('\n"open', ":2: a quote that begins here does not end"),
            ("$NOT_SET/a.v", ":1: the variable 'NOT_SET' is not set"),
            ("// nothing", ": names no source"),
        ):
            with self.subTest(content):
                path = self.file("list.f", content)
                self.assertEqual(self.fail_with(3, "info", "-f", path), path + fault)
        itself = self.path("itself.f")
        self.assertEqual(self.fail_with(3, "info", "-f", itself), f"{itself}: is a file list that names itself")
        missing = self.path("missing.f")
        self.assertEqual(self.fail_with(3, "info", "-f", missing), f"{missing}: No such file or directory")

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
