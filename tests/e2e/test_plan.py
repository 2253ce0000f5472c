import csv
import io
import json
import os
import shutil
import stat
import subprocess
import unittest

import jsonschema
from program import REPOSITORY, ProgramTest, bit_module, net, netlist, run

PLANS = "designs/plans"
BEFORE = (f"{PLANS}/netlists/before_elaborated.json", f"{PLANS}/netlists/before_postmap.json")
AFTER = (f"{PLANS}/netlists/after_elaborated.json", f"{PLANS}/netlists/after_postmap.json")
PLAN = f"{PLANS}/probes.plan"
NAMES = ("u_link/count_q", "u_watch/level_q", "u_watch/seen_q", "u_link/frame_q", "u_link/parity_q")

#: Names that a script could take for something else.
ODD = ["[exit 7]", "$env(HOME)", "{", "}", "a b", 'quo"te', "back\\slash", "line\nbreak", "semi;colon", "#hash", "ünï ☂ 🜁",
       "tab\tbed", "bell\x07", "-", "{*}x", "\\[exit 7]", "trailing\\"]


def schema_of(command):
    with open(os.path.join(REPOSITORY, "docs/schema", command + ".schema.json")) as stream:
        return json.load(stream)


class Plan(ProgramTest):
    def read(self, file):
        with open(file) as stream:
            return stream.read()

    def checked(self, *arguments, exit_code=0):
        """From each probe to what check says of it."""
        result = run("plan", "check", *arguments, "--format", "json")
        self.assertEqual(result.returncode, exit_code, result.stderr)
        return {row["probe"]: row for row in json.loads(result.stdout)["results"]}

    def constant(self):
        """A netlist of any form with a net that is always 1."""
        module = bit_module({}, {"one": net("1"), "d": net(2)}, {"d": {"direction": "input", "bits": [2]}}, {"top": 1})
        return self.file("constant.json", netlist(top=module))

    def own_plan(self):
        return shutil.copy(os.path.join(REPOSITORY, PLAN), self.path("own.plan"))


class Check(Plan):
    def test_each_verdict_shows_on_the_rebuilt_design(self):
        rows = self.checked(PLAN, *AFTER, exit_code=1)
        self.assertEqual([(name, rows[name]["verdict"]) for name in NAMES],
                         list(zip(NAMES, ("kept", "renamed", "clock-changed", "split", "lost"))))
        self.assertIn("to u_watch/fill_q", rows["u_watch/level_q"]["text"])
        self.assertEqual(rows["u_watch/seen_q"]["text"], "from clk_core_i rise to clk_link_i rise")
        self.assertIn("in u_link/header_q, u_link/payload_q", rows["u_link/frame_q"]["text"])
        self.assertIn("no net of this name", rows["u_link/parity_q"]["text"])
        frame = rows["u_link/frame_q"]["bits"]
        self.assertEqual([bit["net"] for bit in frame][::4], ["u_link/header_q[3]", "u_link/payload_q[3]"])

    def test_all_is_kept_on_the_build_that_the_plan_was_made_on(self):
        rows = self.checked(PLAN, *BEFORE)
        self.assertEqual({row["verdict"] for row in rows.values()}, {"kept"})

    def test_a_build_without_the_device_tells_of_the_rtl(self):
        rows = self.checked(PLAN, AFTER[0], exit_code=1)
        self.assertEqual([rows[name]["verdict"] for name in NAMES],
                         ["kept", "renamed", "clock-changed", "split", "lost"])
        self.assertEqual({bit["grade"] for row in rows.values() for bit in row["bits"]}, {None})

    def test_registers_are_found_in_an_instance_with_another_name(self):
        designs = [self.file(f"renamed{at}.json", self.read(os.path.join(REPOSITORY, file)).replace("u_link", "u_rx"))
                   for at, file in enumerate(BEFORE)]
        rows = self.checked(PLAN, *designs, "--accept", "renamed")
        for name, row in rows.items():
            with self.subTest(name):
                new = name.replace("u_link", "u_rx")
                self.assertEqual(row["verdict"], "kept" if new == name else "renamed")
                self.assertEqual([bit["net"] for bit in row["bits"]],
                                 [bit["was"].replace("u_link", "u_rx") for bit in row["bits"]])

    def twins(self, file, first, second):
        """Two registers behind black boxes, made alike, in both forms. The device has kept the names of its nets."""
        def module(cell, pins, names):
            cells = {f"u_box{at}": {"type": "box", "port_directions": {"o": "output"}, "connections": {"o": [at + 10]}}
                     for at in range(2)}
            for at in range(2):
                connections = dict(zip(pins, ([2], [at + 10], [at + 20])))
                cells[f"f{at}"] = {"type": cell, "parameters": {"WIDTH": "1", "CLK_POLARITY": "1"} if cell == "$dff" else {},
                                   "port_directions": dict(zip(pins, ("input", "input", "output"))),
                                   "connections": connections}
            ports = {"clk": {"direction": "input", "bits": [2]}}
            nets = {"clk": net(2), **{f"{name}_d": net(at + 10) for at, name in enumerate(names)},
                    **{name: net(at + 20) for at, name in enumerate(names)}}
            return bit_module(cells, nets, ports, {"top": 1})
        box = {"attributes": {"blackbox": 1}, "ports": {"o": {"direction": "output", "bits": [2]}}, "cells": {},
               "netnames": {}}
        rtl = module("$dff", ("CLK", "D", "Q"), (first, second))
        device = module("SB_DFF", ("C", "D", "Q"), ("left", "right"))
        return (self.file(f"{file}_rtl.json", netlist(top=rtl, box=box)),
                self.file(f"{file}_device.json", netlist(top=device, box=box)))

    def test_nets_that_are_made_alike_are_told_apart_by_the_net_of_the_device_or_not_at_all(self):
        plan = self.path("twins.plan")
        self.succeed("plan", "add", plan, *self.twins("old", "a_q", "b_q"), "a_q", "b_q")
        self.assertEqual(self.read(plan).count("*\n"), 2, "neither is the only one")
        after = self.twins("new", "c_q", "d_q")
        rows = self.checked(plan, *after, "--accept", "renamed")
        self.assertEqual({name: row["text"] for name, row in rows.items()},
                         {"a_q": "to c_q (made alike, and the same net of the device)",
                          "b_q": "to d_q (made alike, and the same net of the device)"})
        rows = self.checked(plan, after[0], exit_code=1)
        self.assertEqual({row["text"] for row in rows.values()},
                         {"no net of this name; not decided which of 2 nets made alike it is"})

    def test_what_is_accepted_is_no_failure(self):
        verdicts = ["renamed", "clock-changed", "split", "lost"]
        self.checked(PLAN, *AFTER, "--accept", ",".join(verdicts))
        for missing in verdicts:
            others = [verdict for verdict in verdicts if verdict != missing]
            rows = self.checked(PLAN, *AFTER, "--accept", ",".join(others), exit_code=1)
            self.assertEqual([row["verdict"] for row in rows.values() if not row["accepted"]], [missing])
        self.assertIn("'good' is none of", self.fail_with(2, "plan", "check", PLAN, *AFTER, "--accept", "good"))

    def test_a_probe_is_accepted_only_with_all_that_happened_to_it(self):
        text = self.read(os.path.join(REPOSITORY, PLAN)).replace("clock clk_core_i rise", "clock clk_core_i fall")
        rows = self.checked(self.file("edge.plan", text), *AFTER, "--accept", "renamed,split,lost", exit_code=1)
        self.assertEqual((rows["u_watch/level_q"]["verdict"], list(rows["u_watch/level_q"]["also"])),
                         ("clock-changed", ["renamed"]))
        self.assertFalse(rows["u_watch/level_q"]["accepted"])

    def test_nothing_is_written(self):
        plan = self.own_plan()
        before = os.stat(plan)
        self.checked(plan, *AFTER, exit_code=1)
        self.assertEqual(os.stat(plan).st_mtime_ns, before.st_mtime_ns)
        self.assertEqual(os.listdir(self.directory), ["own.plan"])

    def test_a_net_of_the_device_needs_no_name(self):
        device = self.read(os.path.join(REPOSITORY, BEFORE[1])).replace("parity_q", "other")
        rows = self.checked(PLAN, BEFORE[0], self.file("device.json", device))
        self.assertEqual(rows["u_link/parity_q"]["verdict"], "kept")
        self.assertIn("other", rows["u_link/parity_q"]["bits"][0]["device"])

    def test_what_the_device_no_longer_shows_is_lost_with_the_reason(self):
        plan = self.file("own.plan", "netlistdb-plan 1\nprobe one\n  bit one exact one -\n")
        rows = self.checked(plan, self.constant(), self.constant(), exit_code=1)
        self.assertEqual((rows["one"]["verdict"], rows["one"]["text"]), ("lost", "gone:constant"))

    def test_a_table_says_it_in_a_line_each(self):
        result = run("plan", "check", PLAN, *AFTER)
        self.assertRegex(result.stdout, r"(?m)^u_link/count_q \(8 bits\) +kept$")
        self.assertRegex(result.stdout, r"(?m)^u_watch/seen_q +clock-changed +from clk_core_i rise to clk_link_i rise$")
        self.assertIn("5 probes: 1 kept, 1 renamed, 1 clock-changed, 1 split, 1 lost", result.stderr)

    def test_a_bad_plan_is_refused_with_file_and_line(self):
        for text, fault in (("", ":1: is no plan: the line 'netlistdb-plan 1' is missing"),
                            ("hello\n", ":1: is no plan: the first line is not 'netlistdb-plan 1'"),
                            ("netlistdb-plan 1\nprobe a\n  bit a exact\n",
                             ":3: a bit has a name, a grade, a post-map net and a fingerprint"),
                            ("netlistdb-plan 1\n\nprobe a\n<<<<<<< HEAD\n", ":4: '<<<<<<<' is none of probe, clock, bit")):
            plan = self.file("bad.plan", text)
            for words in (("check", plan, *BEFORE), ("update", plan, *BEFORE), ("export", plan, "--to", "csv")):
                message = self.fail_with(3, "plan", *words)
                self.assertTrue(message.startswith(plan), message)
                self.assertIn(fault, message)
            self.assertEqual(self.read(plan), text)
        self.assertIn("No such file", self.fail_with(3, "plan", "check", self.path("none.plan"), *BEFORE))


class Add(Plan):
    def test_makes_the_plan_that_is_checked_in(self):
        plan = self.path("new.plan")
        self.succeed("plan", "add", plan, *BEFORE, *NAMES)
        bare = [line.split(" #")[0] for line in self.read(os.path.join(REPOSITORY, PLAN)).splitlines()
                if line.strip() and not line.startswith("#")]
        self.assertEqual(self.read(plan).splitlines(), bare)

    def test_appends_and_leaves_what_is_there(self):
        plan = self.file("own.plan", "netlistdb-plan 1\nprobe valid_i\n  bit valid_i none - - # mine\n# end\n")
        self.succeed("plan", "add", plan, BEFORE[0], "u_link/count_q[1:0]")
        lines = self.read(plan).splitlines()
        self.assertEqual(lines[:5], ["netlistdb-plan 1", "probe valid_i", "  bit valid_i none - - # mine", "# end",
                                     "probe u_link/count_q[1:0]"])
        self.assertTrue(lines[6].startswith("  bit u_link/count_q[1] none - "), lines[6])

    def test_a_probe_that_is_there_stays_as_it_is(self):
        plan = self.own_plan()
        before = os.stat(plan).st_mtime_ns
        result = run("plan", "add", plan, *BEFORE, "u_link/count_q")
        self.assertEqual((result.returncode, os.stat(plan).st_mtime_ns), (0, before))
        self.assertIn("'u_link/count_q' is there already", result.stderr)

    def test_a_path_that_names_nothing_changes_nothing(self):
        plan = self.own_plan()
        before = self.read(plan)
        self.assertIn("no net or bus 'u_link/cuont_q'",
                      self.fail_with(2, "plan", "add", plan, *BEFORE, "valid_i", "u_link/cuont_q"))
        self.assertEqual(self.read(plan), before)
        self.assertEqual(os.listdir(self.directory), ["own.plan"])

    def test_what_the_device_does_not_show_is_refused_with_the_reason(self):
        message = self.fail_with(1, "plan", "add", self.path("own.plan"), self.constant(), self.constant(), "one")
        self.assertIn("'one' cannot be probed: gone, constant", message)
        self.assertFalse(os.path.exists(self.path("own.plan")))

    def test_the_command_line_must_be_whole(self):
        for words, fault in (((), "no action given"), (("make",), "'make' is none of add, check, update, export"),
                             (("add",), "no plan given"), (("add", "x.plan"), "no design given"),
                             (("add", "x.plan", *BEFORE), "no net or bus given"),
                             (("check", "x.plan", *BEFORE, "clk"), "'clk' is one argument too many"),
                             (("export", PLAN), "--to csv, json or tcl is missing"),
                             (("export", PLAN, "x.json", "--to", "csv"), "takes no design"),
                             (("check", PLAN, *BEFORE, "--to", "csv"), "--to goes with export"),
                             (("add", "x.plan", "-", "clk", "--accept", "lost"), "--accept goes with check"),
                             (("update", "-", *BEFORE), "cannot be a plan that is to be changed"),
                             (("check", "-", "-"), "'-' can be one of the files only")):
            self.assertIn(fault, self.fail_with(2, "plan", *words))


class Update(Plan):
    def test_takes_over_what_check_finds_and_keeps_comments(self):
        plan = self.own_plan()
        result = run("plan", "update", plan, *AFTER)
        self.assertEqual(result.returncode, 1, "a probe is lost")
        rows = self.checked(plan, *AFTER, exit_code=1)
        self.assertEqual({name: row["verdict"] for name, row in rows.items()},
                         {"u_link/count_q": "kept", "u_watch/fill_q": "kept", "u_watch/seen_q": "kept",
                          "u_link/header_q": "kept", "u_link/payload_q": "kept", "u_link/parity_q": "lost"})
        comments = [line for line in self.read(plan).splitlines() if "#" in line]
        self.assertEqual(len(comments), 4, comments)
        self.assertIn("probe u_link/header_q # header and payload", comments)

    def test_nothing_changed_is_nothing_written(self):
        plan = self.own_plan()
        before = os.stat(plan).st_mtime_ns
        self.succeed("plan", "update", plan, *BEFORE)
        self.assertEqual(os.stat(plan).st_mtime_ns, before)

    def test_a_link_and_a_mode_stay(self):
        plan = self.own_plan()
        os.chmod(plan, 0o640)
        link = self.path("link.plan")
        os.symlink("own.plan", link)
        run("plan", "update", link, *AFTER)
        self.assertTrue(os.path.islink(link))
        self.assertEqual(stat.S_IMODE(os.stat(plan).st_mode), 0o640)
        self.assertIn("u_watch/fill_q", self.read(plan))

    def test_a_wider_bus_is_taken_over_whole(self):
        text = self.read(os.path.join(REPOSITORY, PLAN))
        narrow = "\n".join(line for line in text.splitlines() if "count_q[7]" not in line) + "\n"
        plan = self.file("narrow.plan", narrow)
        result = run("plan", "check", plan, *BEFORE)
        self.assertRegex(result.stdout, r"u_link/count_q \(7 bits\) +kept +8 bits wide in this build")
        self.succeed("plan", "update", plan, *BEFORE)
        self.assertEqual(self.read(plan), text)


class Export(Plan):
    def test_csv_has_a_row_for_each_bit(self):
        rows = list(csv.DictReader(io.StringIO(self.succeed("plan", "export", PLAN, "--to", "csv"))))
        self.assertEqual(len(rows), 8 + 4 + 1 + 8 + 1)
        self.assertEqual(rows[0], {"probe": "u_link/count_q", "bit": "7", "net": "u_link/count_q[7]",
                                   "clocks": "clk_link_i rise", "device": "count_o[7]", "inverted": "no",
                                   "grade": "exact", "reason": ""})

    def test_json_fits_its_schema(self):
        document = json.loads(self.succeed("plan", "export", PLAN, "--to", "json"))
        jsonschema.Draft202012Validator(schema_of("plan-export")).validate(document)
        self.assertEqual([row["width"] for row in document["results"]], [8, 4, 1, 8, 1])
        self.assertEqual(document["results"][2]["clocks"], [{"name": "clk_core_i", "edges": "rise"}])

    def odd_plan(self):
        design = self.file("odd.json", netlist(top=bit_module({}, {name: net(at + 2) for at, name in enumerate(ODD)})))
        plan = self.path("odd.plan")
        self.succeed("plan", "add", plan, design, "--", *ODD)
        return design, plan

    def test_odd_names_come_through_the_plan(self):
        design, plan = self.odd_plan()
        rows = self.checked(plan, design)
        self.assertEqual([(name, row["verdict"]) for name, row in rows.items()], [(name, "kept") for name in ODD])
        rows = csv.DictReader(io.StringIO(self.succeed("plan", "export", plan, "--to", "csv"), newline=""))
        self.assertEqual([row["net"] for row in rows], ODD)

    def test_a_tcl_interpreter_reads_all_names_and_runs_none(self):
        _, plan = self.odd_plan()
        script = self.path("odd.tcl")
        self.succeed("plan", "export", plan, "--to", "tcl", "-o", script)
        reader = """
            fconfigure stdout -encoding utf-8 -translation lf
            set probes [source [lindex $argv 0]]
            foreach probe $probes {
                foreach bit [dict get $probe bits] { puts -nonewline "[dict get $bit net]\\0" }
            }
        """
        # The encoding of the script makes no difference.
        for locale in ("C", "C.UTF-8"):
            result = subprocess.run(["tclsh", self.file("read.tcl", reader), script], capture_output=True, timeout=60,
                                    env={**os.environ, "LC_ALL": locale})
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            names = [name for name in result.stdout.split(b"\0") if name]
            # Old interpreters write characters beyond 16 bits as two halves.
            shown = [name.decode("utf-8", "surrogatepass").encode("utf-16", "surrogatepass").decode("utf-16") for name in names]
            self.assertEqual(shown, ODD)

    def test_tcl_has_clocks_and_nets_of_the_device(self):
        script = self.file("plan.tcl", self.succeed("plan", "export", PLAN, "--to", "tcl"))
        reader = self.file("read.tcl", """
            foreach probe [source [lindex $argv 0]] {
                puts "[dict get $probe name] [dict get $probe clocks] [dict get [lindex [dict get $probe bits] 0] device]"
            }
        """)
        result = subprocess.run(["tclsh", reader, script], capture_output=True, text=True, timeout=60, check=True)
        self.assertEqual(result.stdout.splitlines()[2],
                         "u_watch/seen_q {name clk_core_i edges rise} u_watch.seen_q")


class Formats(Plan):
    def test_json_of_check_and_add_fits_its_schema(self):
        document = json.loads(run("plan", "check", PLAN, *AFTER, "--format", "json").stdout)
        jsonschema.Draft202012Validator(schema_of("plan-check")).validate(document)
        self.assertEqual({key: document[key] for key in ("kept", "renamed", "clock_changed", "split", "lost")},
                         dict.fromkeys(("kept", "renamed", "clock_changed", "split", "lost"), 1))
        document = self.json("plan", "add", self.path("new.plan"), *BEFORE, "u_link/count_q")
        jsonschema.Draft202012Validator(schema_of("plan-add")).validate(document)

    def test_two_runs_answer_the_same(self):
        self.assertEqual(run("plan", "check", PLAN, *AFTER, "--format", "csv").stdout,
                         run("plan", "check", PLAN, *AFTER, "--format", "csv").stdout)


if __name__ == "__main__":
    unittest.main()
