import re
import unittest

from program import ELABORATED, ProgramTest, run

COMMANDS = ("info", "tree", "search", "clocks", "clock-of", "probes", "map", "html", "serve", "save", "checksum")


class CommandLine(ProgramTest):
    def test_without_a_command_it_shows_how_it_is_used(self):
        result = run()
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("Usage: netlistdb COMMAND", result.stderr)

    def test_help_lists_every_command(self):
        for arguments in (("--help",), ("-h",), ("help",)):
            text = self.succeed(*arguments)
            for command in COMMANDS:
                self.assertRegex(text, rf"(?m)^  {command} +[A-Z]")

    def test_every_command_has_help_with_examples(self):
        for command in COMMANDS:
            text = self.succeed(command, "--help")
            self.assertIn(f"Usage: netlistdb {command} ", text)
            self.assertRegex(text, rf"Examples:\n  netlistdb {command} ")
            self.assertEqual(text, self.succeed("help", command))

    def test_tells_its_version(self):
        self.assertTrue(re.fullmatch(r"netlistdb \d+\.\d+\.\d+\n", self.succeed("--version")))

    def test_an_unknown_command_names_the_nearest(self):
        self.assertIn("unknown command 'serach'; did you mean 'search'?", self.fail_with(2, "serach", ELABORATED, "x"))
        self.assertIn("unknown command 'clock'; did you mean 'clocks'", self.fail_with(2, "clock", ELABORATED))
        self.assertIn("unknown command ''", self.fail_with(2, ""))

    def test_an_unknown_option_names_the_nearest(self):
        self.assertIn("unknown option '--formt'; did you mean", self.fail_with(2, "info", ELABORATED, "--formt", "json"))
        self.assertIn("'--limit'", self.fail_with(2, "search", ELABORATED, "x", "--limti=3"))

    def test_a_value_that_cannot_be_is_refused(self):
        for arguments in (
            ("tree", ELABORATED, "--depth", "-1"),
            ("tree", ELABORATED, "--depth", "many"),
            ("search", ELABORATED, "x", "--limit", "0"),
            ("search", ELABORATED, "x", "--limit", "-3"),
            ("search", ELABORATED, "x", "--limit", "99999999999999999999"),
            ("search", ELABORATED, "x", "--sort", "age"),
            ("search", ELABORATED, "x", "--glob", "--regex"),
            ("info", ELABORATED, "--form", "mapped"),
            ("info", ELABORATED, "--top"),
            ("info", ELABORATED, "--color", "sometimes"),
            ("info", ELABORATED, "--progress", "always"),
        ):
            with self.subTest(arguments):
                message = self.fail_with(2, *arguments)
                self.assertTrue(message.startswith(arguments[0] + ": "), message)
                self.assertIn(arguments[2] if len(arguments) == 3 or arguments[2] != "x" else arguments[3], message)

    def test_missing_and_surplus_arguments_are_refused(self):
        for command in COMMANDS:
            self.assertIn(f"usage: netlistdb {command} ", self.fail_with(2, command))
        for arguments in (("info", "a.json", "b.json"), ("search", "a.json", "x", "y"), ("save", "a.json", "b", "c")):
            self.assertIn("one argument too many", self.fail_with(2, *arguments))
        for command in ("search", "clock-of", "save"):
            self.assertIn("an argument is missing", self.fail_with(2, command, ELABORATED))

    def test_statistics_go_to_standard_error(self):
        plain = run("clocks", ELABORATED, "--format", "json")
        result = run("clocks", ELABORATED, "--format", "json", "--stats")
        self.assertEqual(result.stdout, plain.stdout)
        lines = [line for line in result.stderr.splitlines() if not line.startswith("netlistdb: ")]
        self.assertEqual([line.split()[0] for line in lines], ["read", "import", "trace", "total"])
        for line in lines:
            self.assertRegex(line, r"^\w+ +\d+\.\d{3} s +\d+\.\d MiB$")


if __name__ == "__main__":
    unittest.main()
