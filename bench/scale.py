#!/usr/bin/env python3
"""Measures the library against its scale targets, side by side with a bare JSON pass, yosys and grep.

    bench/scale.py BUILD_DIRECTORY [--small] [--cpu] [--rounds N] [--only read,import,…] [--data DIRECTORY]

BUILD_DIRECTORY holds a release build with benchmarks. Prints a table of targets and measured values; --small does the
same at a tenth of the size, for a first look; --cpu judges by processor time, which other work on the machine
disturbs less. Needs yosys for the comparisons with it, and for the full size about
15 GB of memory and 3 GB of disk.
"""

import argparse
import json
import os
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from designs import json_file, saved_file  # noqa: E402
from measure import alternate, median, peak  # noqa: E402


class Scale:
    def __init__(self, build, data, large, cpu, rounds):
        self.bench = os.path.join(build, "bench")
        self.data = data
        self.large = large
        self.small = large // 10
        self.drive = os.path.join(self.bench, "bench_drive")
        self.rows = []
        self.rounds = rounds
        self.long_rounds = min(rounds, 3)
        self.total = "cpu" if cpu else "wall"
        self.suffix = "_cpu_s" if cpu else "_s"

    # ---- generated files

    def json_file(self, shape, size):
        return json_file(self.bench, self.data, shape, size)

    def saved_file(self, shape, size):
        return saved_file(self.bench, self.json_file(shape, size), "from_json")

    # ---- the table

    def row(self, what, target, measured, met):
        self.rows.append((what, target, measured, "yes" if met else "NO"))
        print(f"  {what}: {measured} (target {target}) {'met' if met else 'NOT MET'}", flush=True)

    def ratio_row(self, what, ours, other, limit):
        ratio = ours / other
        self.row(what, f"<= {limit:g}x", f"{ratio:.2f}x ({ours:.2f} s to {other:.2f} s)", ratio <= limit)

    def fraction_row(self, what, ours, other, part):
        met = ours * part <= other
        self.row(what, f"<= 1/{part}", f"1/{other / ours:.1f} ({ours:.2f} s to {other:.2f} s)", met)

    def memory_row(self, what, used, limit):
        self.row(what, f"<= {limit / 1024:g} GiB", f"{used / 1024:.2f} GiB", used <= limit)

    def table(self):
        print("\n| what | target | measured | met |\n|---|---|---|---|")
        for row in self.rows:
            print("| " + " | ".join(row) + " |")

    # ---- the questions

    def read(self):
        """JSON into the netlist database, beside a bare pass over the same file."""
        path = self.json_file("flat", self.large)
        commands = {"pass": [self.drive, "json-pass", path], "read": [self.drive, "read-json", path]}
        runs = alternate(commands, self.rounds)
        self.ratio_row(f"read JSON, {self.large} leaves, to a bare pass", median(runs["read"], "read" + self.suffix),
                       median(runs["pass"], "pass" + self.suffix), 4)

    def importing(self):
        """A saved netlist into the item tree with kept sources, beside yosys reading the JSON."""
        saved = self.saved_file("flat", self.large)
        path = self.json_file("flat", self.large)
        runs = alternate({"ours": [self.drive, "restore-import", saved],
                          "yosys": ["yosys", "-q", "-p", f"read_json {path}"]}, self.long_rounds)
        what = f"restore and import, {self.large} leaves"
        self.fraction_row(what + ", to yosys read_json", median(runs["ours"], self.total),
                          median(runs["yosys"], self.total), 10)
        self.memory_row(f"{what}, peak (yosys {peak(runs['yosys']) / 1024:.2f} GiB)", peak(runs["ours"]), 2048)

    def unfold(self):
        """A saved hierarchical netlist into the unfolded tree, beside yosys flattening it."""
        saved = self.saved_file("hierarchical", self.large)
        path = self.json_file("hierarchical", self.large)
        runs = alternate({"ours": [self.drive, "restore-unfold", saved],
                          "yosys": ["yosys", "-q", "-p", f"read_json {path}; flatten"]}, self.long_rounds)
        what = f"unfold {self.large} leaves"
        self.fraction_row(what + ", to yosys read_json; flatten", median(runs["ours"], self.total),
                          median(runs["yosys"], self.total), 20)
        self.memory_row(f"{what}, peak (yosys {peak(runs['yosys']) / 1024:.2f} GiB)", peak(runs["ours"]), 512)

    def growth(self):
        """Time for each instance at the large size and at a tenth of it."""
        for name, shape, road, values, files in (
                ("read JSON", "flat", "read-json", ["read"], self.json_file),
                ("restore", "flat", "restore-import", ["restore"], self.saved_file),
                ("import", "flat", "restore-import", ["import"], self.saved_file),
                ("restore and unfold", "hierarchical", "restore-unfold", ["restore", "import"], self.saved_file)):
            commands = {size: [self.drive, road, files(shape, size)] for size in (self.small, self.large)}
            runs = alternate(commands, self.rounds)
            each = {size: sum(median(runs[size], value + self.suffix) for value in values) / size for size in runs}
            growth = each[self.large] / each[self.small]
            self.row(f"{name}: time for each instance, {self.small} to {self.large} leaves", "<= 1.25x",
                     f"{growth:.2f}x ({each[self.small] * 1e9:.0f} ns to {each[self.large] * 1e9:.0f} ns)",
                     growth <= 1.25)

    def clocks(self):
        """The clock of every net, one query each."""
        for form, shape in (("post-map", "flat"), ("elaborated", "hierarchical")):
            sizes = (self.large // 100, self.small, self.large)
            commands = {size: [self.drive, f"clocks-{form}", self.saved_file(shape, size)] for size in sizes}
            runs = alternate(commands, self.long_rounds)
            each = {size: median(measured, "clocks" + self.suffix) / median(measured, "nets") * 1e6
                    for size, measured in runs.items()}
            self.row(f"clock of every net, {form}, {self.large} leaves", "<= 2 us a net", f"{each[self.large]:.2f} us",
                     each[self.large] <= 2)
            growth = each[self.large] / each[sizes[0]]
            figures = ", ".join(f"{each[size]:.2f} us" for size in sizes)
            self.row(f"clock of every net, {form}, growth from {sizes[0]} leaves", "<= 1.5x",
                     f"{growth:.2f}x ({figures})", growth <= 1.5)

    def search(self):
        """First hit, whole walk beside grep, regular expression beside the bare strings."""
        program = os.path.join(self.bench, "bench_search")
        command = [program, f"--benchmark_filter=leaves:{self.large}/", "--benchmark_format=json",
                   "--benchmark_min_time=2"]
        environment = {**os.environ, "NETLISTDB_BENCH_DIR": self.data}
        output = subprocess.run(command, check=True, stdout=subprocess.PIPE, env=environment)
        for result in json.loads(output.stdout)["benchmarks"]:
            name = result["name"].split("/")[0]
            shape = "hierarchical" if "hierarchical:1" in result["name"] else "flat"
            if result.get("error_occurred"):
                self.row(f"{name}, {shape}", "", result["error_message"], False)
            elif name == "firstHit":
                milliseconds = result["real_time"]
                self.row(f"first hit, {shape}, {self.large} leaves", "<= 16 ms", f"{milliseconds:.3f} ms",
                         milliseconds <= 16)
            elif name == "plainBesideGrep":
                self.row(f"whole walk, {shape}, {result['names']:.0f} names, to grep -cF", "<= 15x",
                         f"{result['ratio']:.1f}x ({result['real_time']:.0f} ms to {result['grep_ms']:.0f} ms)",
                         result["ratio"] <= 15)
            elif name == "regexBesideBareStrings":
                self.row(f"regular expression, {shape}, to std::regex_search over bare strings", "<= 1.1x",
                         f"{result['ratio']:.2f}x ({result['real_time']:.0f} ms to {result['bare_ms']:.0f} ms)",
                         result["ratio"] <= 1.1)


def main():
    questions = {"read": Scale.read, "import": Scale.importing, "unfold": Scale.unfold, "growth": Scale.growth,
                 "clocks": Scale.clocks, "search": Scale.search}
    parser = argparse.ArgumentParser(description="Measures the library against its scale targets.")
    parser.add_argument("build", help="release build directory with benchmarks")
    parser.add_argument("--small", action="store_true", help="100,000 leaves instead of a million")
    parser.add_argument("--cpu", action="store_true", help="judge by processor time")
    parser.add_argument("--rounds", type=int, default=5, help="times to run each (long ones at most 3 times)")
    parser.add_argument("--only", help="questions to ask, with commas: " + ",".join(questions))
    parser.add_argument("--data", default=os.path.join(tempfile.gettempdir(), "netlistdb-scale"),
                        help="directory for generated files (default: %(default)s)")
    arguments = parser.parse_args()
    os.makedirs(arguments.data, exist_ok=True)
    scale = Scale(arguments.build, arguments.data, 100_000 if arguments.small else 1_000_000,
                  arguments.cpu, arguments.rounds)
    chosen = arguments.only.split(",") if arguments.only else questions
    for name in chosen:
        if name not in questions:
            parser.error(f"no question {name}")
        print(questions[name].__doc__, flush=True)
        questions[name](scale)
    scale.table()
    return 0 if all(row[3] == "yes" for row in scale.rows) else 1


if __name__ == "__main__":
    sys.exit(main())
