import json
import os
import re
import shutil
import unittest

import jsonschema
from program import (DESIGNS, ELABORATED, POST_MAP, REPOSITORY, ProgramTest, bit_module, net, netlist, rows_of_csv,
                     run)


def forms(design):
    """Both forms of one of the small designs."""
    return tuple(f"designs/map/netlists/{design}_{form}.json" for form in ("elaborated", "postmap"))


class Probes(ProgramTest):
    def test_offers_user_declared_nets_outside_black_boxes(self):
        for design in DESIGNS:
            with self.subTest(design):
                rows = self.results("probes", design)
                self.assertTrue(rows)
                self.assertTrue(all(row["user_declared"] and (row["file"] or row["reasons"] == ["constant"]) for row in rows))
                declared = [row for row in self.results("search", design, "", "--user-nets") if row["kind"] != "instance"]
                order = {row["path"]: at for at, row in enumerate(declared)}
                places = [order[row["path"]] for row in rows if row["path"] in order]
                self.assertGreater(len(places), len(rows) * 0.9)
                self.assertEqual(places, sorted(places), "not in the order of the netlist")

    def test_the_pins_of_cells_are_no_probes(self):
        cells = {row["path"] for row in self.results("tree", POST_MAP) if row["depth"]}
        owners = {row["path"].rpartition("/")[0] for row in self.results("probes", POST_MAP, "--all")}
        self.assertFalse(cells & owners)

    def test_offers_generated_nets_when_told(self):
        offered = self.results("probes", ELABORATED)
        every = self.results("probes", ELABORATED, "--all")
        self.assertEqual([row["path"] for row in every if row["user_declared"]], [row["path"] for row in offered])
        self.assertGreater(len(every), len(offered))

    def test_protected_nets_may_not_be_probed(self):
        hidden = net(2)
        hidden["attributes"]["protected"] = "00000000000000000000000000000001"
        design = self.file("secret.json", netlist(top=bit_module({}, {"hidden": hidden, "open": net(3)},
                                                                 {"open": {"direction": "input", "bits": [3]}})))
        for more in ((), ("--all",)):
            rows = {row["path"]: (row["verdict"], row["reasons"]) for row in self.results("probes", design, *more)}
            self.assertEqual(rows, {"hidden": ("no", ["protected"]), "open": ("warning", ["unused", "no-clock"])})
        self.assertEqual(self.succeed("probes", design, "--paths"), "open\n")

    def test_what_is_tied_to_a_constant_is_there_without_a_net(self):
        rows = {row["path"]: row for row in self.results("probes", ELABORATED)}
        row = rows["u_dsp/u_fir/g_tap[0].sum_in"]
        self.assertEqual((row["kind"], row["width"], row["bits"], row["verdict"], row["reasons"]), ("bus", 40, 0, "no", ["constant"]))
        self.assertEqual(row["sources"], ["designs/rtl/fir_filter.v:34.32-34.38"])

    def test_tells_width_clock_and_source_position(self):
        rows = {row["path"]: row for row in self.results("probes", ELABORATED)}
        row = rows["g_uart[0].u_uart/u_tx/left_q"]
        self.assertEqual((row["kind"], row["width"], row["clocks"]), ("bus", 4, ["clk_sys_i"]))
        self.assertTrue(row["file"].endswith("/designs/rtl/uart_tx.v"))
        self.assertEqual(rows["uart_rx_i"]["clocks"], [])
        table = self.succeed("probes", ELABORATED)
        self.assertRegex(table, r"(?m)^PATH +WIDTH  BITS  VERDICT  CLOCK +EDGE  REASONS +SOURCE$")
        self.assertRegex(table, r"(?m)^spi_cs_no +3 +3  ok +clk_sys_i +rise +designs/rtl/soc_top.v:\d+$")

    def test_a_bus_of_several_domains_names_each_once(self):
        def register(clock, data):
            return {
                "type": "$_DFF_P_",
                "parameters": {},
                "attributes": {},
                "port_directions": {"C": "input", "D": "input", "Q": "output"},
                "connections": {"C": [clock], "D": [9], "Q": [data]},
            }

        cells = {"r0": register(2, 4), "r1": register(3, 5), "r2": register(2, 6)}
        nets = {"clk_a": net(2), "clk_b": net(3), "bus": net(4, 5, 6), "d": net(9)}
        ports = {name: {"direction": "input", "bits": nets[name]["bits"]} for name in ("clk_a", "clk_b", "d")}
        design = self.file("mixed.json", netlist(top=bit_module(cells, nets, ports)))
        clocks = {row["path"]: sorted(row["clocks"]) for row in self.results("probes", design)}
        self.assertEqual(clocks["bus"], ["clk_a", "clk_b"])
        row = [each for each in rows_of_csv(self.succeed("probes", design, "--format", "csv")) if each["path"] == "bus"]
        self.assertEqual(sorted(row[0]["clocks"].split()), ["clk_a", "clk_b"])

    def test_a_design_without_probes_is_nothing_found(self):
        design = self.file("bare.json", netlist(top=bit_module({}, {"$generated": net(2, src=None)})))
        self.assertEqual(run("probes", design).returncode, 1)
        self.assertEqual(run("probes", design, "--all").returncode, 0)


class Verdicts(ProgramTest):
    """Which nets may be probed, and why not the others."""

    #: One net for each reason that a design has, with what the evidence names and what to probe instead.
    REASONS = {
        ELABORATED: {
            "clock-net": ("u_spi/clk_shift", "no", "u_spi/u_gate/clk_o", None),
            "excluded-memory": ("u_cpu/u_regs/regs", "no", None, None),
            "constant": ("u_dsp/u_trace/re_i", "no", "constant", None),
            "unused": ("u_dsp/u_fir/rounded", "warning", "synthesis may remove it", None),
            "several-clocks": ("attention_o", "warning", "clk_sys_i, u_clocks/clk_pll", None),
            "no-clock": ("uart_rx_i", "warning", "an input of the design", None),
        },
        POST_MAP: {
            "pad-side": ("spi_sclk_o", "no", "KVR_OBUF", "u_spi.sclk_o"),
            "undriven": ("s_addr[15]", "no", None, None),
            "hard-block-pin": ("$iopadmap$soc_top.heartbeat_o/I", "no", "KVR_OBUF", None),
        },
    }

    def counts(self, rows):
        return {verdict: sum(row["verdict"] == verdict for row in rows) for verdict in ("ok", "warning", "partly", "no")}

    def test_every_reason_of_a_design_is_found_and_explained(self):
        for design, reasons in self.REASONS.items():
            for reason, (path, verdict, evidence, instead) in reasons.items():
                with self.subTest(reason):
                    document = self.json("probes", design, "--why-not", path)
                    self.assertEqual((document["path"], document["verdict"]), (path, verdict))
                    found = [row for row in document["results"] if row["reason"] == reason]
                    self.assertTrue(found, document)
                    self.assertEqual(found[0]["effect"], "bars" if verdict == "no" else "warns")
                    self.assertIn(evidence or "", found[0]["evidence"] or "")
                    if instead is not None:
                        self.assertEqual(found[0]["instead"], instead)

    def test_a_listing_has_all_reasons_of_the_design(self):
        expected = {
            ELABORATED: {"clock-net", "no-clock", "unused", "constant", "excluded-memory", "several-clocks"},
            POST_MAP: {"no-clock", "pad-side", "unused", "undriven", "clock-net", "constant", "several-clocks"},
        }
        for design, reasons in expected.items():
            document = self.json("probes", design)
            rows = document["results"]
            self.assertEqual({reason for row in rows for reason in row["reasons"]}, reasons)
            self.assertEqual({verdict: document[verdict] for verdict in self.counts(rows)}, self.counts(rows))
            for row in rows:
                self.assertEqual(row["bits"] == 0, row["verdict"] == "no", row)
                self.assertEqual(row["verdict"] == "ok", not row["reasons"], row)
                self.assertLessEqual(row["bits"], row["width"])

    def test_groups_add_up_to_the_rows(self):
        document = self.json("probes", ELABORATED, "--from", "u_link")
        groups = {group["clock"]: group for group in document["groups"]}
        self.assertEqual(sum(group["bits"] for group in groups.values()), sum(row["bits"] for row in document["results"]))
        for clock in groups:
            rows = [row for row in document["results"] if row["clock"] == clock and row["bits"]]
            self.assertEqual(groups[clock]["signals"], len(rows))
            self.assertLessEqual(groups[clock]["wires"], groups[clock]["bits"])
        self.assertLess(groups["u_clocks/clk_pll"]["wires"], groups["u_clocks/clk_pll"]["bits"])
        self.assertEqual(groups["u_clocks/clk_pll"]["edges"], "both")

    def test_a_table_has_the_nets_of_one_clock_together_and_the_others_last(self):
        table, summary = self.succeed("probes", ELABORATED, "--from", "u_link").split("\n\n")
        verdicts = [re.search(r" (ok|warning|partly|no)  +(\S+)", line).groups() for line in table.splitlines()[1:]]
        clocks = [clock if verdict != "no" else "" for verdict, clock in verdicts if clock.startswith(("clk", "u_clocks"))]
        runs = [clock for at, clock in enumerate(clocks) if at == 0 or clocks[at - 1] != clock]
        self.assertEqual(len(runs), len(set(runs)))
        self.assertEqual(verdicts[-1][0], "no")
        self.assertEqual([line.split()[0] for line in summary.splitlines()], ["SAMPLING", *sorted(set(clocks) - {""}), "(none)"])

    def test_shows_the_verdicts_that_are_asked_for(self):
        rows = self.results("probes", ELABORATED)
        self.assertEqual(self.results("probes", ELABORATED, "--ok"), [row for row in rows if row["verdict"] != "no"])
        self.assertEqual(self.results("probes", ELABORATED, "--verdict", "partly,no"),
                         [row for row in rows if row["verdict"] in ("partly", "no")])
        barred = self.succeed("probes", ELABORATED, "--paths", "--verdict", "no").splitlines()
        self.assertEqual(barred, [row["path"] for row in rows if row["verdict"] == "no"])
        self.assertIn("'good' is none of ok,warning,partly,no", self.fail_with(2, "probes", ELABORATED, "--verdict", "good"))
        self.fail_with(2, "probes", ELABORATED, "--ok", "--verdict", "no")

    def test_nothing_against_a_net_is_nothing_found(self):
        result = run("probes", ELABORATED, "--why-not", "uart_tx_o")
        self.assertEqual((result.returncode, result.stdout), (1, "uart_tx_o may be probed: nothing is against it\n"))
        self.assertIn("no net or bus 'uart_tx'", self.fail_with(2, "probes", ELABORATED, "--why-not", "uart_tx"))
        text = self.succeed("probes", POST_MAP, "--why-not", "spi_cs_no")
        self.assertTrue(text.startswith("spi_cs_no may not be probed\n  pad-side (bars, spi_cs_no[0]): "), text)
        self.assertIn("\n      probe instead: u_spi.cs_no[2]\n", text)

    def test_answers_are_as_their_schemas_say(self):
        for words in (("--why-not", "clk_sys_i"), ("--why-not", "uart_tx_o")):
            result = run("probes", ELABORATED, *words, "--format", "json")
            self.validate("probes-why-not", json.loads(result.stdout))
        self.validate("probes", self.json("probes", *forms("processor")))

    def validate(self, name, document):
        with open(os.path.join(REPOSITORY, f"docs/schema/{name}.schema.json")) as stream:
            jsonschema.Draft202012Validator(json.load(stream)).validate(document)
        self.assertEqual(document["format"], "netlistdb-" + name)


class BothForms(ProgramTest):
    """The RTL with the device that became of it."""

    def test_nets_are_those_of_the_rtl_with_the_nets_of_the_device(self):
        rtl, device = forms("processor")
        rows = self.results("probes", rtl, device)
        self.assertEqual([row["path"] for row in rows], [row["path"] for row in self.results("probes", rtl)])
        matches = {row["net"]: row for row in self.results("map", rtl, device)}
        known = {row["path"] for row in self.results("search", device, "", "--kind", "net,bus")}
        sampled = 0
        for row in rows:
            if row["reasons"] == ["excluded-memory"]:
                continue
            names = [row["path"]] if row["kind"] == "net" else [f"{row['path']}[{bit}]" for bit in reversed(range(row["width"]))]
            self.assertEqual(len(row["post_map"]), len(names))
            for name, target in zip(names, row["post_map"]):
                match = matches[name]
                self.assertIn(match["grade"], row["grades"])
                self.assertEqual(target == "", match["match"] is None, name)
                if target:
                    self.assertIn(target.lstrip("~"), (match["match"], *(each.lstrip("~") for each in match["also"])))
                    self.assertTrue(known & {target.lstrip("~"), target.lstrip("~").rpartition("[")[0]}, target)
                    sampled += 1
        self.assertGreater(sampled, 200)

    def test_what_no_net_carries_may_not_be_probed(self):
        rtl, device = forms("processor")
        self.assertEqual({row["path"]: row["verdict"] for row in self.results("probes", rtl)}["carry"], "ok")
        document = self.json("probes", rtl, device, "--why-not", "carry")
        self.assertEqual((document["verdict"], document["bits"]), ("no", 0))
        row = document["results"][0]
        self.assertEqual((row["reason"], row["effect"], row["instead"]), ("absorbed", "bars", "carry_q"))
        self.assertIn("inside a cell of logic", row["evidence"])

    def test_what_is_not_decided_may_not_be_probed(self):
        document = self.json("probes", *forms("buffers"), "--why-not", "large_full")
        self.assertEqual([(row["reason"], row["effect"]) for row in document["results"]], [("unmatched", "bars")])

    def test_the_inside_of_an_io_cell_is_what_is_sampled(self):
        row = {row["path"]: row for row in self.results("probes", *forms("processor"))}["rst_ni"]
        self.assertEqual((row["verdict"], row["post_map"]), ("warning", ["$iopadmap$rst_ni"]))

    def test_wires_are_counted_in_the_device(self):
        document = self.json("probes", *forms("machines"))
        group = next(group for group in document["groups"] if group["clock"] == "clk_i")
        targets = {target.lstrip("~") for row in document["results"] if row["clock"] == "clk_i" for target in row["post_map"]}
        self.assertLess(group["wires"], group["bits"])
        self.assertLessEqual(group["wires"], len(targets - {""}))

    def test_the_rtl_may_be_sources(self):
        if shutil.which("yosys") is None:
            self.skipTest("no yosys")
        rows = self.results("probes", "designs/map/machines.v", forms("machines")[1], "--top", "machines")
        self.assertIn("exact", {grade for row in rows for grade in row["grades"]})

    def test_refuses_what_makes_no_sense(self):
        rtl, device = forms("processor")
        self.assertIn("--form goes with one netlist", self.fail_with(2, "probes", rtl, device, "--form", "elaborated"))
        self.assertIn("one of the two netlists only", self.fail_with(2, "probes", "-", "-"))
        self.assertIn("one argument too many", self.fail_with(2, "probes", rtl, device, device))
        self.assertIn("no_such.json", self.fail_with(3, "probes", rtl, "no_such.json"))
        self.assertIn(device, self.fail_with(3, "probes", rtl, device, "-o", device))


if __name__ == "__main__":
    unittest.main()
