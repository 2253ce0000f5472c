#!/usr/bin/env python3
"""Runs netlistdb beside yosys, OpenSTA and grep on generated designs, and writes the page of benchmarks.

    bench/compare.py BUILD_DIRECTORY [--small] [--rounds N] [--older BUILD_DIRECTORY] [--data DIRECTORY] [--output FILE]

BUILD_DIRECTORY holds a release build with benchmarks. --small takes designs of a tenth of the size. The full size takes
about an hour, the first time, and needs about 20 GB of memory and 8 GB of disk. --older names a release build of an
older commit, with benchmarks, which this one is measured against.
"""

import argparse
import json
import os
import re
import shutil
import subprocess
import sys
import textwrap

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import against  # noqa: E402
import alone  # noqa: E402
import liberty  # noqa: E402
import page  # noqa: E402
from contest import (Contestant, clock_of_counts, clocks_counts, grep_count, info_counts,  # noqa: E402
                     measured_run, search_counts, side_by_side, sta_counts, tree_counts, yosys_stat)
from measure import alternate, median, run  # noqa: E402

CLOCKS = ("sys", "eth", "ddr", "adc")
PARAMETERS = ("C_INVERTED", "INIT", "RESET_VALUE", "R_ASYNC", "R_INVERTED")
SHAPES = ("flat", "hierarchical")
DEPTH = 20_000
CELLS_OF_MAPS = 1605  # post-map cells of one copy of all that many_maps.py copies
ADDED = "u_processor_0/insn_i"  # a bus of its first copy

INTRODUCTION = """# Benchmarks

Written by `scripts/compare.sh`; figures are of one run on one machine. Times are wall times of whole processes, medians
of {rounds} rounds in which all programs took turns; peaks are the largest resident size of any round. A ratio above 1
means that the program took more than the one in the first row of its table. Every answer was held against those of
the other programs in every round: the page is only written when all agree.

    scripts/compare.sh            # installs yosys, OpenSTA and GNU time, builds, measures, writes this page
    scripts/compare.sh --small    # the same on designs of a tenth of the size; writes build/release/compare/small.md

{machine}
## Ratios

{summary}
## Designs

From `bench/generator`, with fixed seeds, four clocks that enter at pads, and names as synthesis leaves them.

{designs}
*Flat* is a design after technology mapping: one module of device cells. *Hierarchical* is one after elaboration: four
levels of modules with word-level operators and registers as leaves. The commands below run in the directory of the
files, `build/release/compare`, with `build/release/tools/netlistdb` and `build/release/bench` in `PATH`. They were made
with:

{making}
OpenSTA reads Verilog, which yosys writes from the same JSON. Parameters (mostly the contents of look-up tables and
memories) are left out, because this release of OpenSTA does not read them: its file says less than the JSON. `kvr.lib`
has one constant delay on each arc, and is written by `bench/liberty.py`. The files are in the page cache: each is read
before the first round.
"""

DIFFERENCES = """## What is not comparable

- **yosys builds a netlist to be edited**: signals that may be joined and renamed, attributes and parameters as objects,
  hash tables for passes that transform. netlistdb reads its JSON into a netlist that can be edited too, but what it is
  optimised for is the read-only tree above. A program that goes on to transform the design needs what yosys builds.
- **OpenSTA links against timing libraries** and can go on to delays, slacks and constraints. Counting cells asks it for
  nothing of that; asking for the registers of a clock makes it build its timing graph, which is more than that question
  needs. Its clocks come from constraints and are pushed forward; those of netlistdb are found by
  walking back from a net and need no constraints. Both give the same clock for every register output of the flat
  design.
- **The saved netlist is our own form.** Only the rows that say JSON read the file that yosys reads; making the saved
  netlist once costs the rows "read JSON" and "save" of [Inside a program](#inside-a-program).
- **Lists of names**: `grep` reads names that somebody else has unfolded and written before; it knows no design. It
  counts lines, while netlistdb writes each hit with kind, width, module and source position.
- **Operators in OpenSTA**: it reads gate-level netlists only. There is no row for the hierarchical design.
- **Clock of a net in yosys**: no command asks that. There is no row.
- **Case and expressions in yosys**: patterns of `select` are globs; upper and lower case are written as sets of two
  letters; a regular expression has no counterpart.
- **Finding a name once**: the rows of *Find names* load the design for one question. A session that asks often loads
  once; [Inside a program](#inside-a-program) has the question alone.
"""


def is_current(path, *sources):
    """True when a file is there and no older than what it is made from: files, or programs of PATH."""
    return os.path.exists(path) and all(os.path.getmtime(path) >= os.path.getmtime(shutil.which(source) or source)
                                        for source in sources)


def thousands(value):
    return f"{value:,.0f}"


class Comparison:
    def __init__(self, large, medium, rounds, build, older):
        self.large = large
        self.build = build
        self.older = older
        self.medium = medium
        self.rounds = rounds
        self.making = []
        self.text = []
        self.question = ""
        self.summary = []  # a row for each program beside netlistdb
        self.info_of = {}  # `info` on the saved netlist of the large design, by shape

    # ---- files, made in the current directory

    def make(self, path, command, sources, shown=None):
        """Makes a file, unless it is current, by a command that writes to `path`.part."""
        self.making.append(shown or " ".join(command).replace(path + ".part", path))
        if not is_current(path, *sources):
            print(f"  making {path}", flush=True)
            run(command)
            os.rename(path + ".part", path)
        return path

    def json_file(self, shape, size):
        path = f"{shape}_{size}.json"
        return self.make(path, ["netlist_generator", shape, str(size), "-o", path + ".part"],
                         ["netlist_generator"], f"netlist_generator {shape} {size} -o {path}")

    def saved_file(self, shape, size):
        path = f"{shape}_{size}.netlist"
        source = self.json_file(shape, size)
        return self.make(path, ["netlistdb", "save", source, path + ".part"], ["netlistdb", source])

    def names_file(self, shape, size):
        path = f"{shape}_{size}.names"
        source = self.saved_file(shape, size)
        return self.make(path, ["bench_drive", "names", source, path + ".part", shape], [source])

    def verilog_file(self, size):
        path = f"flat_{size}.v"
        unset = " ".join(f"-unset {name}" for name in PARAMETERS)
        source = self.json_file("flat", size)
        script = f"read_json {source}; setparam {unset} */t:KVR_*; " \
                 f"write_verilog -noattr -norename {path}.part"
        return self.make(path, ["yosys", "-q", "-p", script], [source],
                         f'yosys -p "{script.replace(".part", "")}"')

    def tcl_file(self, name, size, lines):
        path = f"{name}_{size}.tcl"
        with open(path, "w", encoding="utf-8") as out:
            out.write("\n".join(["read_liberty kvr.lib", f"read_verilog {self.verilog_file(size)}",
                                 "link_design soc_top", *lines, ""]))
        return path

    # ---- the page

    def heading(self, text):
        print(text, flush=True)
        self.question = text
        self.text.append(f"\n## {text}\n")

    def say(self, text):
        """Adds a block, or a paragraph, which is wrapped."""
        block = text.startswith(("|", "`")) and "\n" in text.strip()
        self.text.append(text if block else textwrap.fill(text, 120, break_long_words=False,
                                                          break_on_hyphens=False) + "\n")

    def contest(self, title, contestants, scripts=()):
        """Measures the contestants, and writes table, check, commands and the scripts that they name."""
        print(title, flush=True)
        measured = side_by_side(contestants, self.rounds)
        self.summary += [(self.question, title, measured[0].name, other.name,
                          page.ratio(other.seconds / measured[0].seconds), page.ratio(other.peak / measured[0].peak))
                         for other in measured if not other.name.startswith("netlistdb")]
        self.text.append(f"\n### {title}\n")
        self.say(page.contest_table(measured))
        self.say(page.checked(measured))
        self.say(page.commands(contestants))
        for script in scripts:
            with open(script, encoding="utf-8") as stream:
                self.say(f"`{script}`:\n\n```tcl\n{stream.read()}```\n")
        return measured

    # ---- whole programs

    def load_and_count(self):
        self.heading("Load a design and count what it holds")
        self.say("Cells and nets bit by bit. `info` counts modules, buses, ports, levels and clock domains as well.")
        path, saved = self.json_file("flat", self.large), self.saved_file("flat", self.large)
        script = self.tcl_file("count", self.large, ['puts "cells [llength [get_cells *]]"',
                                                     'puts "bits [llength [get_nets *]]"'])
        measured = self.contest(f"Flat, {thousands(self.large)} cells", [
            self.info("JSON", path), self.info("saved netlist", saved),
            Contestant("yosys, JSON", ["yosys", "-p", f"read_json {path}; stat"], yosys_stat("cells", "bits")),
            Contestant("OpenSTA, Verilog", ["sta", "-exit", script], sta_counts("cells", "bits"))], [script])
        self.info_of["flat"] = measured[1]
        path, saved = (self.json_file("hierarchical", self.large), self.saved_file("hierarchical", self.large))
        measured = self.contest(f"Hierarchical, {thousands(self.large)} leaf cells", [
            self.info("JSON", path), self.info("saved netlist", saved),
            Contestant("yosys, JSON", ["yosys", "-p", f"read_json {path}; stat"], yosys_stat("cells", "bits"))])
        self.info_of["hierarchical"] = measured[1]
        self.say("Here yosys does less: `stat` multiplies the counts of each module, while `info` unfolds every "
                 "instance.")

    @staticmethod
    def info(source, path):
        out = f"info_{'json' if path.endswith('.json') else 'saved'}.out"
        return Contestant(f"netlistdb, {source}", ["netlistdb", "info", path, "--format", "json", "-o", out],
                          info_counts(out))

    def unfold(self):
        self.heading("Unfold the hierarchy")
        self.say("netlistdb writes a line for every instance of the unfolded tree; yosys flattens the design, copying "
                 "every cell and wire into the top.")
        path, saved = (self.json_file("hierarchical", self.large), self.saved_file("hierarchical", self.large))
        self.contest(f"Hierarchical, {thousands(self.large)} leaf cells", [
            *(Contestant(f"netlistdb, {source}", ["netlistdb", "tree", design, "--format", "csv", "-o", out],
                         tree_counts(out))
              for source, design, out in (("JSON", path, "tree_json.out"), ("saved netlist", saved, "tree_saved.out"))),
            Contestant("yosys, JSON", ["yosys", "-p", f"read_json {path}; flatten; stat"], yosys_stat("cells"))])

    def search_with(self, saved, pattern, options, *names):
        return Contestant("netlistdb, saved netlist",
                          ["netlistdb", "search", saved, pattern, *options, "--format", "csv", "-o", "search.out"],
                          search_counts("search.out", *names))

    @staticmethod
    def grep(names, pattern, options):
        return Contestant(f"grep {options}, list of names", ["grep", options, "-e", pattern, names], grep_count,
                          f"LC_ALL=C grep {options} -e '{pattern}' {names}")

    def find_names(self):
        self.heading("Find names")
        self.say("Names of nets and buses by their full name, from the file to the last hit. Other programs take the "
                 "bits of a bus for nets of their own or do not list the pins of cells, so *names* compares netlistdb "
                 "with grep, and *cells* and *bits* (of nets outside of cells) compare it with the others.")
        path, saved = self.json_file("flat", self.medium), self.saved_file("flat", self.medium)
        names = self.names_file("flat", self.medium)
        for title, pattern, options, grep_options, glob, nets in (
                ("plain", "alu_1", [], "-cF", "*alu_1*", "*alu_1*"),
                ("upper and lower case the same", "ALU_1", ["-i"], "-ciF", "*[aA][lL][uU]_1*",
                 "-regexp -nocase .*ALU_1.*"),
                ("regular expression", "alu_[0-9]+/(data|acc|state)_.*q", ["--regex"], "-cE", "",
                 "-regexp {.*alu_[0-9]+\\\\?/(data|acc|state)_.*q.*}")):
            script = self.tcl_file("find" + (options[0].replace("--", "_").replace("-", "_") if options else ""),
                                   self.medium, ["set start [clock microseconds]", f"set nets [get_nets {nets}]",
                                                 'puts "query_ms [expr ([clock microseconds] - $start) / 1000.0]"',
                                                 'puts "bits [llength $nets]"',
                                                 f'puts "cells [llength [get_cells {nets}]]"'])
            contestants = [self.search_with(saved, pattern, options, "names", "cells", "bits")]
            if glob:
                contestants.append(Contestant(
                    "yosys, JSON", ["yosys", "-p", f"read_json {path}; select w:{glob} c:{glob}; "
                                    "tee -q -o select.out select -list; stat"], yosys_stat("bits")))
            contestants.append(Contestant("OpenSTA, Verilog", ["sta", "-exit", script], sta_counts("bits", "cells"),
                                          note="query_ms"))
            contestants.append(self.grep(names, pattern, grep_options))
            measured = self.contest(f"Flat, {thousands(self.medium)} cells, {title}", contestants, [script])
            alone = next(one.values["query_ms"] for one in measured if one.values)
            self.say(f"`get_nets` alone, in the loaded design: {alone:.2f} ms.")

        path, saved = (self.json_file("hierarchical", self.medium), self.saved_file("hierarchical", self.medium))
        self.contest(f"Hierarchical, {thousands(self.medium)} leaf cells, plain", [
            self.search_with(saved, "alu_0", [], "names", "cells", "bits"),
            Contestant("yosys, JSON", ["yosys", "-p", f"read_json {path}; flatten; select w:*alu_0* c:*alu_0*; "
                                       "tee -q -o select.out select -list; stat"], yosys_stat("bits", "cells")),
            self.grep(self.names_file("hierarchical", self.medium), "alu_0", "-cF")])
        for shape, pattern in (("flat", "alu_1"), ("hierarchical", "alu_0")):
            self.contest(f"{shape.capitalize()}, {thousands(self.large)} leaf cells, plain", [
                self.search_with(self.saved_file(shape, self.large), pattern, [], "names"),
                self.grep(self.names_file(shape, self.large), pattern, "-cF")])

    def clocks(self):
        self.heading("Clocks")
        saved = self.saved_file("flat", self.large)
        declare = [f"create_clock -name {clock} -period 10 [get_ports clk_{clock}_i]" for clock in CLOCKS]
        nets, expected = self.register_outputs(declare)
        script = self.tcl_file("registers", self.large, declare + [
            f'puts "{clock} [llength [all_registers -clock {clock} -output_pins]]"' for clock in CLOCKS])
        self.say("Which clock drives each output of a register? OpenSTA is given the four clocks and asked for the "
                 "register outputs of each. netlistdb is given the names of the nets on all of these outputs, and "
                 "finds the clock of each: the same for every net.\n")
        self.contest(f"Flat, {thousands(self.large)} cells, register outputs", [
            Contestant("netlistdb, saved netlist", ["netlistdb", "clock-of", saved, "-", "--format", "csv", "-o",
                                                    "clock.out"], clock_of_counts("clock.out", expected), stdin=nets),
            Contestant("OpenSTA, Verilog", ["sta", "-exit", script], sta_counts(*CLOCKS))], [script])
        self.say("The clock of *every* net, behind logic too, has no counterpart in the other programs. Both answers "
                 "below come from the same design read from two files and are held against each other; `bench_clocks` "
                 "holds them against the generator. The large designs are in the table of growth under "
                 "[Limits](#limits).\n")
        for shape in SHAPES:
            self.contest(f"{shape.capitalize()}, {thousands(self.medium)} leaf cells, every net", [
                Contestant(f"netlistdb, {source}",
                           ["netlistdb", "clocks", design, "--format", "json", "-o", out], clocks_counts(out))
                for source, design, out in (("JSON", self.json_file(shape, self.medium), "clocks_json.out"),
                                            ("saved netlist", self.saved_file(shape, self.medium),
                                             "clocks_saved.out"))])

    def register_outputs(self, declare):
        """Files of the nets on all register outputs, and of the clock of each, line by line, as OpenSTA tells them."""
        listing = self.tcl_file("outputs", self.large, declare + [
            f"foreach pin [all_registers -clock {clock} -output_pins] {{ puts \"net {clock} [get_full_name "
            f"[get_nets -of_objects $pin]]\" }}" for clock in CLOCKS])
        nets, clocks = f"outputs_{self.large}.nets", f"outputs_{self.large}.clocks"
        self.making.append(f"sta -exit {listing} | sed -n 's/\\\\//g; s/^net [a-z]* //p' > {nets}")
        if not is_current(nets, self.verilog_file(self.large)):
            lines = [line.split(" ", 2)[1:] for line in run(["sta", "-exit", listing]).text.splitlines()
                     if line.startswith("net ")]
            with open(clocks, "w", encoding="utf-8") as out:
                out.writelines(clock + "\n" for clock, _ in lines)
            with open(nets + ".part", "w", encoding="utf-8") as out:
                out.writelines(name.replace("\\", "") + "\n" for _, name in lines)
            os.rename(nets + ".part", nets)
        return nets, clocks

    def each_command(self):
        self.heading("Each command of the program")
        self.say(f"From saved netlists of {thousands(self.large)} leaf cells, each command by itself; medians of "
                 f"{self.rounds} runs. `serve` starts, is asked what the design holds, and ends. `map` and `plan` have "
                 "a table of their own [below](#find-nets-of-the-rtl-in-the-device).")
        designs = [(self.saved_file(shape, self.large), pattern)
                   for shape, pattern in (("flat", "alu_1"), ("hierarchical", "alu_0"))]
        rows = []
        for what, (flat, flat_peak, hierarchical, hierarchical_peak) in alone.table(designs, self.rounds):
            rows.append((what, page.seconds(flat), f"{flat_peak:.0f}", page.seconds(hierarchical),
                         f"{hierarchical_peak:.0f}"))
        self.say(page.table(("command", "flat, s", "peak, MiB", "hierarchical, s", "peak, MiB"), rows))

    def against_older(self):
        self.heading("Against an older build")
        version = run([os.path.join(self.older, "tools", "netlistdb", "netlistdb"), "--version"]).text.strip()
        rounds = max(self.rounds, 5)
        self.say(f"This build and one of an older commit ({version}) in turns, medians of {rounds} rounds: "
                 "processor seconds (`_cpu_s`) of the phases of a road through the library, elapsed seconds (`s`) of "
                 "commands of the program.")
        os.makedirs("older", exist_ok=True)
        builds = {"this": self.build, "older": self.older}
        self.say(page.table(("road", "leaves", "figure", "older", "this", "ratio"),
                            list(against.compare(builds, self.large, rounds, "older"))))

    # ---- inside one process

    def google(self, program, size, repetitions):
        """Median of each benchmark of one size: by name and shape, times in milliseconds."""
        command = ["bench_" + program, f"--benchmark_filter=leaves:{size}/", "--benchmark_format=json",
                   f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.05"]
        print(f"  bench_{program}, {size}", flush=True)
        output = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        found = {}
        for result in json.loads(output.stdout)["benchmarks"]:
            if result.get("error_occurred"):
                raise SystemExit(f"{result['name']}: {result['error_message']}")
            if repetitions == 1 or result.get("aggregate_name") == "median":
                shape = SHAPES["hierarchical:1" in result["name"]]
                found[result["run_name"].split("/")[0], shape] = result
        return found

    def inside(self):
        self.heading("Inside a program")
        self.say(f"The benchmark programs of `bench/`, one process each, medians of {self.rounds} repetitions in "
                 f"milliseconds. Each result is held against the generator or another program before it is timed. "
                 "These designs come from the generator without a detour over JSON; the pins of their device cells are "
                 "no nets, so there are fewer names than in the files above. Regular "
                 "expressions are measured in processor time.")
        found = {}
        for program in ("read_json", "restore", "import", "walk", "clocks", "clockmap", "crossings"):
            found.update(self.google(program, self.medium, self.rounds))
        searches = {size: self.google("search", size, self.rounds) for size in (self.medium, self.large)}
        found.update(searches[self.medium])

        def cells(name, value):
            return [f"{value(found[name, shape]):.3g}" if (name, shape) in found else "" for shape in SHAPES]

        def time(result):
            return result["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1}[result["time_unit"]]

        rows = [("read JSON", "readJsonBesideBarePass", time),
                ("a bare pass over the same JSON (simdjson)", "readJsonBesideBarePass", lambda r: r["bare_pass_ms"]),
                ("restore a saved netlist", "restore", time), ("save", "save", time),
                ("import, sources kept", "importKeepingSources", time),
                ("import, sources not kept", "importWithoutSources", time),
                ("reset, sources kept", "importKeepingSources", lambda r: r["reset_ms"]),
                ("reset, sources not kept", "importWithoutSources", lambda r: r["reset_ms"]),
                ("visit every instance and bus", "walkTree", time),
                ("path of every instance", "pathOfEveryInstance", time),
                ("search, every net", "everyNet", time),
                ("search plain, to the first hit", "firstHit", time),
                ("search -i, to the first hit", "firstHitIgnoreCase", time),
                ("search --regex, to the first hit", "firstHitRegex", time),
                ("search plain, to the end", "plainBesideGrep", time),
                ("search -i, to the end", "ignoreCaseBesideGrep", time),
                ("search --regex, to the end", "regexBesideBareStrings", time),
                ("clock of every net, first time",
                 "clockOfEveryNet", lambda r: r["cold_ns_per_net"] * r["nets"] / 1e6),
                ("clock of every net, asked again",
                 "clockOfEveryNet", lambda r: r["warm_ns_per_net"] * r["nets"] / 1e6),
                ("`ClockMap`, build", "build", time),
                ("`ClockMap`, launching clocks of every net", "launch", time),
                ("`ClockMap`, capturing clocks of every net", "capture", time),
                ("`ClockMap`, count the nets of each clock", "countNets", time),
                ("`Crossings`, of a `ClockMap`", "crossings", time)]
        self.say(page.table(("operation", *(f"{shape}, {thousands(self.medium)}" for shape in SHAPES)),
                            [(what, *cells(name, value)) for what, name, value in rows]))
        self.say("The whole walk beside a `grep` process over the same names, and beside `std::regex_search` over bare "
                 "strings with the same expression:\n")
        rows = []
        for size, results in searches.items():
            for shape in SHAPES:
                for what, name, other in (("plain, grep -cF", "plainBesideGrep", "grep_ms"),
                                          ("-i, grep -cFi", "ignoreCaseBesideGrep", "grep_ms"),
                                          ("--regex, bare strings", "regexBesideBareStrings", "bare_ms")):
                    result = results[name, shape]
                    rows.append((f"{shape}, {thousands(size)}", what, thousands(result["hits"]),
                                 f"{result['real_time']:.1f}", f"{result[other]:.1f}", f"{1 / result['ratio']:.2f}"))
        self.say(page.table(("design", "search, beside", "hits", "search, ms", "other, ms", "other / search"), rows))

    # ---- limits

    def cross_probing(self):
        """The program alone: none of the others knows of nets of two forms that carry the same value."""
        self.heading("Find nets of the RTL in the device")
        many_maps = os.path.join(os.path.dirname(os.path.abspath(__file__)), "many_maps.py")
        rows = []
        for about in (self.medium, self.large):
            copies = about // CELLS_OF_MAPS
            forms = [f"maps_{copies}_{form}.json" for form in ("elaborated", "postmap")]
            self.making.append(f"many_maps.py {copies} {' '.join(forms)}")
            made = run([sys.executable, many_maps, str(copies), *forms])
            cells = int(made.text.split()[0])
            for what, command in (("map", ["map", *forms]), ("plan add", ["plan", "add", "maps.plan", *forms, ADDED])):
                runs = []
                for _ in range(self.rounds if about < 1_000_000 else 1):
                    if os.path.exists("maps.plan"):
                        os.remove("maps.plan")
                    runs.append(run(["netlistdb", *command, "--output", "maps.out"]))
                wall = median(runs, "wall")
                rows.append((what, thousands(cells), page.seconds(wall), f"{wall / cells * 1e6:.0f}",
                             f"{max(one.peak for one in runs):.0f}"))
        self.say("Copies of the designs in `designs/map` side by side, from JSON. `map` says of every net of the RTL "
                 "what it is in the device, and how sure that is; `plan add` does the same for one bus, and keeps "
                 "it. A pair of a million cells is measured once.\n")
        self.say(page.table(("command", "post-map cells", "median, s", "a cell, µs", "peak, MiB"), sorted(rows)))

    def limits(self):
        self.heading("Limits")
        self.growth()
        self.memory()
        self.deep()
        self.largest()
        self.say("What grows with what it is asked for: a full name takes the time of its length, a search that of the "
                 "names it passes and of their lengths (the 20,000 levels above), `reset` that of the items it frees.")

    def growth(self):
        rows = []
        measured = {}
        for what, shape, road, values, each in (
                ("read JSON", "flat", "read-json", ["read"], "cell"),
                ("restore", "flat", "restore-import", ["restore"], "cell"),
                ("import", "flat", "restore-import", ["import"], "cell"),
                ("restore and unfold", "hierarchical", "restore-unfold", ["restore", "import"], "leaf cell"),
                ("clock of every net", "flat", "clocks-post-map", ["clocks"], "net"),
                ("clock of every net", "hierarchical", "clocks-elaborated", ["clocks"], "net")):
            sizes = (self.medium, self.large)
            read = self.json_file if road == "read-json" else self.saved_file
            if road not in measured:
                measured[road] = alternate({size: ["bench_drive", road, read(shape, size)] for size in sizes},
                                           self.rounds)
            runs = measured[road]
            cost = {}
            for size in sizes:
                count = median(runs[size], "nets") if each == "net" else size
                cost[size] = sum(median(runs[size], value + "_s") for value in values) / count
            rows.append((f"{what}, {shape}", each, *(f"{cost[size] * 1e6:.2f}" for size in sizes),
                         f"{cost[self.large] / cost[self.medium]:.2f}"))
        self.say("Seconds for each million, and how that grows with the size of the design:\n")
        self.say(page.table(("operation", "million of", f"s, at {thousands(self.medium)}",
                             f"s, at {thousands(self.large)}", "growth"), rows))

    def memory(self):
        results = self.google("memory", self.large, 1)
        rows = []
        for what, name in (("netlist database, bytes a leaf cell", "netlist_bytes"),
                           ("item tree, bytes a leaf cell", "tree_bytes"),
                           ("item tree with kept sources, bytes a leaf cell", "kept_tree_bytes"),
                           ("item tree, bytes an item (instance, net, bus, port, …)", "tree_bytes_per_item"),
                           ("items", "items")):
            rows.append((what, *(thousands(results["memoryPerLeaf", shape][name]) for shape in SHAPES)))
        maps = self.google("clockmap", self.large, 1)
        rows.append(("`ClockMap`, bytes a net",
                     *(f"{maps['build', shape]['heap_bytes_per_net']:.3g}" for shape in SHAPES)))
        self.say(f"Bytes that the process holds (`bench_memory`, {thousands(self.large)} leaf cells):\n")
        self.say(page.table(("", *SHAPES), rows))

    @staticmethod
    def module(cells, nets):
        return {"attributes": {}, "ports": {}, "cells": cells,
                "netnames": {name: {"hide_name": 0, "bits": [bit], "attributes": {}}
                             for bit, name in enumerate(nets, 2)}}

    def deep(self):
        """One instance in each of many levels."""
        modules = {}
        for level in range(DEPTH):
            cell = {"hide_name": 0, "type": f"level_{level + 1}", "parameters": {}, "attributes": {},
                    "port_directions": {}, "connections": {}}
            modules[f"level_{level}"] = self.module({"u": cell}, ["n"])
        modules[f"level_{DEPTH}"] = self.module({}, ["deepest"])
        modules["level_0"]["attributes"]["top"] = "1"
        with open("deep.json", "w", encoding="utf-8") as out:
            json.dump({"creator": "compare", "modules": modules}, out)
        rows = []
        for command in (["netlistdb", "info", "deep.json", "--format", "json", "-o", "deep.out"],
                        ["netlistdb", "search", "deep.json", "deepest", "--format", "csv", "-o", "deep_search.out"],
                        ["netlistdb", "tree", "deep.json", "--format", "csv", "-o", "deep_tree.out"]):
            runs = [measured_run(command) for _ in range(self.rounds)]
            rows.append((f"`{' '.join(command[:3])}`", page.seconds(median(runs, "wall")),
                         f"{max(one.peak for one in runs):.0f}"))
        with open("deep.out", encoding="utf-8") as stream:
            levels = json.load(stream)["levels"]
        with open("deep_search.out", encoding="utf-8") as stream:
            hits = [line for line in stream if line.startswith("net,")]
        if len(levels) != DEPTH + 1 or len(hits) != 1 or hits[0].count("u/") != DEPTH:
            raise SystemExit(f"{len(levels)} levels, {len(hits)} hits in the deep design")
        self.say(f"{thousands(DEPTH)} levels of one instance each, with a net at the bottom whose full name has "
                 f"{thousands(len(hits[0].split(',')[2]))} characters:\n")
        self.say(page.table(("command", "median, s", "peak, MiB"), rows))

    def largest(self):
        size = self.large * 10
        hierarchical = self.saved_file("hierarchical", size)
        flat = f"flat_{size}.netlist"
        self.make(flat, ["netlist_generator", "flat", str(size), "--saved", flat + ".part"], ["netlist_generator"])
        rows = [("info", f"{shape}, saved netlist", thousands(self.large), page.seconds(found.seconds),
                 f"{found.peak:.0f}") for shape, found in self.info_of.items()]
        for shape, saved in (("hierarchical", hierarchical), ("flat", flat)):
            measured, = side_by_side([self.info("saved netlist", saved)], self.rounds)
            if measured.counts["cells"] != size:
                raise SystemExit(f"{saved}: {measured.counts['cells']} cells instead of {size}")
            rows.append(("info", f"{shape}, saved netlist", thousands(size), page.seconds(measured.seconds),
                         f"{measured.peak:.0f}"))
        for command in (["search", flat, "alu_1"], ["clocks", flat]):
            runs = [measured_run(["netlistdb", *command, "-o", "largest.out"]) for _ in range(min(self.rounds, 3))]
            rows.append((command[0], "flat, saved netlist", thousands(size), page.seconds(median(runs, "wall")),
                         f"{max(one.peak for one in runs):.0f}"))
        self.say("Largest designs measured:\n")
        self.say(page.table(("command", "design", "leaf cells", "median, s", "peak, MiB"), rows))

    # ---- all of it

    def designs(self):
        rows = []
        for shape in SHAPES:
            for size in (self.medium, self.large):
                path = f"{shape}_{size}.json"
                rows.append((path, *(f"{os.path.getsize(name) / (1 << 20):.1f}" if os.path.exists(name) else ""
                                     for name in (path, f"{shape}_{size}.netlist", f"{shape}_{size}.v"))))
        return page.table(("design", "JSON, MiB", "saved netlist, MiB", "Verilog, MiB"), rows)

    def write(self, output):
        machine = page.machine()
        liberty.write(self.json_file("flat", 10_000), "kvr.lib")
        questions = [self.load_and_count, self.unfold, self.find_names, self.clocks, self.each_command, self.inside,
                     self.cross_probing, self.limits]
        if self.older:
            questions.append(self.against_older)
        for question in questions:
            question()
        making = "```sh\n" + "\n".join(dict.fromkeys(self.making)) + "\n```\n"
        text = INTRODUCTION.format(rounds=self.rounds, machine=machine, designs=self.designs(), making=making,
                                   summary=page.table(("question", "design", "netlistdb from", "other program",
                                                       "other's time / netlistdb's", "other's peak / netlistdb's"),
                                                      [(question, title, first.replace("netlistdb, ", ""), *rest)
                                                       for question, title, first, *rest in self.summary]))
        with open(output + ".part", "w", encoding="utf-8") as out:
            out.write(re.sub(r"\n{3,}", "\n\n", text + "\n".join(self.text) + "\n" + DIFFERENCES))
        os.rename(output + ".part", output)
        print(f"written: {output}")


def main():
    repository = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description="Runs netlistdb beside yosys, OpenSTA and grep.")
    parser.add_argument("build", help="release build directory with benchmarks")
    parser.add_argument("--small", action="store_true", help="designs of a tenth of the size")
    parser.add_argument("--rounds", type=int, default=5, help="times to run each (default: %(default)s)")
    parser.add_argument("--older", help="release build directory of an older commit, to measure this one against")
    parser.add_argument("--data", help="directory for generated files (default: compare in the build directory)")
    parser.add_argument("--output", help="page to write (default: docs/benchmarks.md; with --small, small.md in the "
                        "directory for generated files)")
    arguments = parser.parse_args()
    build = os.path.abspath(arguments.build)
    older = os.path.abspath(arguments.older) if arguments.older else ""
    data = os.path.abspath(arguments.data or os.path.join(build, "compare"))
    output = arguments.output or (os.path.join(data, "small.md") if arguments.small
                                  else os.path.join(repository, "docs", "benchmarks.md"))
    output = os.path.abspath(output)
    bench = os.path.join(build, "bench")
    os.makedirs(data, exist_ok=True)
    os.environ["PATH"] = os.pathsep.join((os.path.join(build, "tools", "netlistdb"), bench,
                                          os.path.join(bench, "generator"), os.environ["PATH"]))
    os.environ["LC_ALL"] = "C"
    os.environ["NETLISTDB_BENCH_DIR"] = os.path.join(data, "bench")
    os.chdir(data)
    large, medium = (100_000, 10_000) if arguments.small else (1_000_000, 100_000)
    Comparison(large, medium, arguments.rounds, build, older).write(output)
    return 0


if __name__ == "__main__":
    sys.exit(main())
