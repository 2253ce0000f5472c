import unittest

from program import DESIGNS, ELABORATED, POST_MAP, ProgramTest


class Tree(ProgramTest):
    def test_begins_with_the_top(self):
        for design in DESIGNS:
            first = self.results("tree", design, "--depth", "0")
            self.assertEqual([(row["depth"], row["path"], row["module"]) for row in first], [(0, "", "soc_top")])

    def test_shows_every_instance_once(self):
        for design in DESIGNS:
            paths = [row["path"] for row in self.results("tree", design)]
            self.assertEqual(len(paths), len(set(paths)))
            self.assertEqual(len(paths), self.json("info", design)["instances"]["total"])

    def test_shows_owners_before_what_they_own(self):
        seen = {""}
        for row in self.results("tree", ELABORATED):
            if row["depth"] > 0:
                self.assertTrue(row["path"].endswith(row["name"]))
                owner = row["path"][: -len(row["name"]) - 1]
                self.assertIn(owner, seen)
            seen.add(row["path"])

    def test_stops_at_the_depth_asked_for(self):
        every = self.results("tree", ELABORATED)
        for depth in range(4):
            expected = [row for row in every if row["depth"] <= depth]
            self.assertEqual(self.results("tree", ELABORATED, "--depth", str(depth)), expected)

    def test_leaves_out_what_no_user_declared(self):
        expected = [row for row in self.results("tree", ELABORATED) if row["user_declared"]]
        self.assertEqual(self.results("tree", ELABORATED, "--user-modules"), expected)

    def test_shows_where_clocks_begin(self):
        rows = self.results("tree", ELABORATED, "--clocks")
        begun = [(f"{row['path']}/" if row["path"] else "") + clock for row in rows for clock in row["clocks"]]
        self.assertEqual(sorted(begun), sorted(row["clock"] for row in self.results("clocks", ELABORATED)))
        self.assertIn("u_spi/u_gate/clk_o", begun)
        self.assertNotIn("clocks", self.results("tree", ELABORATED)[0])

    def test_draws_the_tree(self):
        lines = self.succeed("tree", ELABORATED, "--user-modules", "--depth", "2").splitlines()
        self.assertRegex(lines[0], r"^INSTANCE +MODULE +LIBRARY$")
        self.assertRegex(lines[1], r"^soc_top +soc_top +work$")
        self.assertRegex(lines[2], r"^├─ g_uart\[0\]\.u_uart +uart +work$")
        self.assertRegex(lines[3], r"^│  ├─ u_rx +uart_rx +work$")
        self.assertRegex(lines[-1], r"^   └─ g_free\[2\]\.u_stage +ring_stage +work$")
        columns = {line.rindex("work") for line in lines[1:]}
        self.assertEqual(len(columns), 1, "the columns are not aligned")

    def test_a_post_map_tree_is_flat(self):
        rows = self.results("tree", POST_MAP)
        self.assertEqual({row["depth"] for row in rows}, {0, 1})


if __name__ == "__main__":
    unittest.main()
