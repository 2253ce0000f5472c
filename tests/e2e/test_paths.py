import json
import unittest

from program import ELABORATED, ProgramTest, bit_module, net, netlist, run


def cell(module):
    return {"type": module, "parameters": {}, "attributes": {}, "port_directions": {}, "connections": {}}


class Paths(ProgramTest):
    def message(self, path, design=ELABORATED):
        return self.fail_with(2, "clock-of", design, path)

    def test_an_unknown_path_names_its_nearest_matches(self):
        two_clocks = ("; names like it have different clocks: 'u_clocks/clk_div_o' (u_clocks/u_divider/clk_div_o), "
                      "'u_clocks/clk_idle_o' (clk_sys_i)")
        for path, expected in (
            ("clk_sy", "; did you mean 'clk_sys' or 'clk_sys_i'?"),
            ("u_clocks/clk_dvi_o", two_clocks),
            ("u_clock/clk_div_o", "; did you mean 'u_clocks/clk_div_o'"),
            ("u_clokcs/clk_dvi_o", two_clocks),
            ("U_CLOCKS/clk_div_o", "; did you mean 'u_clocks/clk_div_o'"),
            ("g_uart/u_tx/ready_o", "; did you mean 'g_uart[0].u_uart/u_tx/ready_o', 'g_uart[1].u_uart/u_tx/ready_o'"),
            ("clk_shift", "; did you mean 'u_spi/clk_shift'?"),
            ("soc_top/u_clocks/clk_div_o", "; did you mean 'u_clocks/clk_div_o'?"),
            ("soc_top/u_clocks/clk_dvi_o", two_clocks),
        ):
            with self.subTest(path):
                message = self.message(path)
                self.assertTrue(message.startswith(f"{ELABORATED}: no net or bus '{path}'" + expected), message)

    def test_other_ways_to_write_a_path_name_the_one_that_is_taken(self):
        tx_ready = "g_uart[0].u_uart/tx_ready"
        for path, expected in (
            ("u_clocks.clk_div_o", "u_clocks/clk_div_o"),
            ("soc_top.u_clocks.clk_div_o", "u_clocks/clk_div_o"),
            ("soc_top.clk_div", "clk_div"),
            ("g_uart[0].u_uart.tx_ready", tx_ready),
            ("soc_top.g_uart[0].u_uart.tx_ready", tx_ready),
            (r"\g_uart[0].u_uart /tx_ready", tx_ready),
            (r"\g_uart[0].u_uart .tx_ready", tx_ready),
            (r"soc_top.\g_uart[0].u_uart .\tx_ready ", tx_ready),
            (r"\u_clocks /\clk_div_o ", "u_clocks/clk_div_o"),
            (r"\u_clocks.clk_div_o ", "u_clocks/clk_div_o"),
            ("u_dsp.u_fir.y_o[3]", "u_dsp/u_fir/y_o[3]"),
        ):
            with self.subTest(path):
                message = self.message(path)
                self.assertEqual(message, f"{ELABORATED}: no net or bus '{path}'; did you mean '{expected}'?")
                self.assertNotEqual(run("clock-of", ELABORATED, expected).returncode, 2)
        message = self.fail_with(2, "tree", ELABORATED, "--from", "soc_top.g_uart[0].u_uart.u_tx")
        self.assertTrue(message.endswith("; did you mean 'g_uart[0].u_uart/u_tx'?"), message)

    def test_nobody_is_sent_to_a_net_of_another_clock(self):
        message = self.message("clk_d_i", "designs/clocks/netlists/bridges_elaborated.json")
        self.assertTrue(message.endswith("; names like it have different clocks: 'clk_a_i' (clk_a_i), 'clk_b_i' (clk_b_i), "
                                         "'clk_c_i' (clk_c_i)"), message)

    def test_a_path_of_a_hundred_dots_is_answered(self):
        self.assertIn("no net or bus", self.message(".".join("x" * 101)))

    def test_a_wildcard_names_the_command_that_takes_it(self):
        message = self.message("u_spi/clk_*")
        self.assertEqual(message, f"{ELABORATED}: no net or bus 'u_spi/clk_*'; wildcards are for netlistdb search DESIGN "
                                  "'u_spi/clk_*' --glob --paths, which lists paths")
        result = run("search", ELABORATED, "u_spi/clk_*")
        self.assertEqual((result.returncode, result.stderr), (1, "netlistdb: no full name holds 'u_spi/clk_*'; --glob "
                                                                 "takes * and ? for wildcards\n"))
        for arguments in (("u_spi/clk_*", "--glob"), ("u_spi/clk_.*", "--regex")):
            self.assertEqual(run("search", ELABORATED, *arguments).stderr, "")
        message = run("search", ELABORATED, "clk_shift*", "--glob").stderr
        self.assertEqual(message, "netlistdb: no full name matches 'clk_shift*'; --glob matches whole names, and '**' any "
                                  "number of levels\n")
        message = run("search", ELABORATED, "u_spi.clk").stderr
        self.assertEqual(message, "netlistdb: no full name holds 'u_spi.clk'; levels are separated by '/'\n")

    def test_a_path_like_no_other_gets_no_proposal(self):
        self.assertEqual(self.message("qqqqqqqq"), f"{ELABORATED}: no net or bus 'qqqqqqqq'")

    def test_an_instance_is_told_from_a_net(self):
        self.assertIn("'u_clocks' is an instance, not a net", self.message("u_clocks"))
        message = self.fail_with(2, "search", ELABORATED, "x", "--from", "clk_sys_i")
        self.assertIn("'clk_sys_i' is a net, not an instance", message)

    def test_an_unknown_start_names_its_nearest_matches(self):
        message = self.fail_with(2, "search", ELABORATED, "x", "--from", "u_clock")
        self.assertEqual(message, f"{ELABORATED}: no instance 'u_clock'; did you mean 'u_clocks'?")

    def test_every_path_that_the_program_prints_is_one_it_takes(self):
        rows = self.results("search", ELABORATED, "", "--from", "u_dsp")
        paths = [row["path"] for row in rows if row["kind"] != "instance"]
        self.assertTrue(any("[" in path for path in paths))
        self.succeed("clock-of", ELABORATED, "-", stdin="\n".join(paths))

    def test_names_may_hold_slashes(self):
        inner = bit_module({}, {"a/b": net(2), "b": net(3)})
        top = bit_module({"u": cell("inner"), "u/v": cell("inner")}, {"u/b": net(4)})
        top["attributes"]["top"] = 1
        design = self.file("slashes.json", netlist(inner=inner, top=top))
        for path in ("u/a/b", "u/v/a/b", "u/v/b", "u/b"):
            self.assertEqual([row["net"] for row in self.answers(design, path)], [path])
        self.assertIn("no net or bus 'u/v/c'", self.message("u/v/c", design))

    def answers(self, design, path):
        """The answers for a net without clock."""
        return json.loads(run("clock-of", design, path, "--format", "json").stdout)["results"]


if __name__ == "__main__":
    unittest.main()
