import unittest

from program import DESIGNS, ELABORATED, ProgramTest


class Save(ProgramTest):
    def test_a_saved_netlist_gives_every_answer_of_its_source(self):
        commands = [
            ("info",),
            ("tree", "--clocks"),
            ("search", ""),
            ("clocks",),
            ("probes", "--all"),
        ]
        for design in DESIGNS:
            saved = self.path("design.netlist")
            self.assertEqual(self.succeed("save", design, saved), "")
            for command, *options in commands:
                with self.subTest(design, command=command):
                    answers = [self.succeed(command, source, *options, "--format", "json") for source in (design, saved)]
                    self.assertEqual(*answers)

    def test_saving_a_saved_netlist_changes_nothing(self):
        first, second = self.path("first"), self.path("second")
        self.succeed("save", ELABORATED, first)
        self.succeed("save", first, second)
        self.assertEqual(self.succeed("info", first), self.succeed("info", second))

    def test_a_module_can_be_saved_as_the_top(self):
        saved = self.path("uart.netlist")
        self.succeed("save", ELABORATED, saved, "--top", "uart")
        self.assertEqual(self.succeed("info", saved), self.succeed("info", ELABORATED, "--top", "uart"))

    def test_a_saved_netlist_may_have_any_name(self):
        saved = self.path("netlist")
        self.succeed("save", ELABORATED, saved)
        self.assertEqual(self.succeed("info", saved), self.succeed("info", ELABORATED))

    def test_a_module_of_a_saved_netlist_can_be_the_top(self):
        saved = self.path("soc.netlist")
        self.succeed("save", ELABORATED, saved)
        self.assertEqual(self.succeed("tree", saved, "--top", "uart"), self.succeed("tree", ELABORATED, "--top", "uart"))
        message = self.fail_with(3, "tree", saved, "--top", "uarf")
        self.assertEqual(message.split(";")[0], f"{saved}: no module 'uarf', which was asked for as the top")
        self.assertIn("'uart'", message)

    def test_a_file_that_cannot_be_written_is_an_error(self):
        message = self.fail_with(3, "save", ELABORATED, self.path("missing/out"))
        self.assertEqual(message, self.path("missing/out") + ": No such file or directory")

    def test_a_failed_save_leaves_the_old_file_alone(self):
        saved = self.file("out", "old")
        self.fail_with(3, "save", self.path("missing.json"), saved)
        with open(saved) as stream:
            self.assertEqual(stream.read(), "old")

    def test_needs_a_place_to_write_to(self):
        self.assertIn("usage: netlistdb save", self.fail_with(2, "save", ELABORATED))


if __name__ == "__main__":
    unittest.main()
