import unittest

from program import DESIGNS, ELABORATED, POST_MAP, ProgramTest, bit_module, net, netlist, rows_of_csv, run


class Probes(ProgramTest):
    def test_offers_user_declared_nets_outside_black_boxes(self):
        for design in DESIGNS:
            with self.subTest(design):
                rows = self.results("probes", design)
                self.assertTrue(rows)
                self.assertTrue(all(row["user_declared"] and row["file"] for row in rows))
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

    def test_protected_nets_are_no_probes(self):
        hidden = net(2)
        hidden["attributes"]["protected"] = "00000000000000000000000000000001"
        design = self.file("secret.json", netlist(top=bit_module({}, {"hidden": hidden, "open": net(3)})))
        self.assertEqual([row["path"] for row in self.results("probes", design)], ["open"])
        self.assertEqual([row["path"] for row in self.results("probes", design, "--all")], ["open"])

    def test_tells_width_clock_and_source_position(self):
        rows = {row["path"]: row for row in self.results("probes", ELABORATED)}
        row = rows["g_uart[0].u_uart/u_tx/left_q"]
        self.assertEqual((row["kind"], row["width"], row["clocks"]), ("bus", 4, ["clk_sys_i"]))
        self.assertTrue(row["file"].endswith("/designs/rtl/uart_tx.v"))
        self.assertEqual(rows["uart_rx_i"]["clocks"], [])
        table = self.succeed("probes", ELABORATED)
        self.assertRegex(table, r"(?m)^PATH +WIDTH  CLOCK +SOURCE$")
        self.assertRegex(table, r"(?m)^spi_cs_no +3  clk_sys_i +designs/rtl/soc_top.v:\d+$")

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


if __name__ == "__main__":
    unittest.main()
