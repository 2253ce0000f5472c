#!/usr/bin/env python3
"""Holds the manual page to what the program says of itself."""

import os
import re
import subprocess
import unittest

PAGE = os.environ["MANUAL_PAGE"]
PROGRAM = os.environ["NETLISTDB"]


def answer(*arguments):
    return subprocess.run([PROGRAM, *arguments], check=True, capture_output=True, text=True).stdout


def options_of_program(text):
    """From each heading of a help text to its options, as sets of words: ("-o", "--output", "file")."""
    options = {}
    heading = None
    for line in text.splitlines():
        if re.fullmatch(r"\w+:", line):
            heading = options.setdefault(line[:-1], set())
        elif line.startswith("  -") and heading is not None:
            declaration = re.split(r" Excludes:|  +", line.strip())[0]
            words = re.split(r"[ ,|]", declaration)
            heading.add(tuple(word if word.startswith("-") else word.lower() for word in words))
    return options


def sections_of_page(text):
    """From each heading of the page to its text, and from each command to its text."""
    sections, commands = (
        {title.strip('"'): body for title, body in re.findall(rf"(?ms)^\.{macro} (.*?)$(.*?)(?=^\.S[hs] |\Z)", text)}
        for macro in ("Sh", "Ss")
    )
    return sections, commands


def options_of_section(text):
    options = set()
    for words in re.findall(r"(?m)^\.It Fl (.*)$", text):
        dashed = re.sub(r"(^|Fl )(?=[\w-])", r"\1-", words)
        options.add(tuple(word for word in re.split(r"[ ,]", dashed) if word not in ("", "|", "Fl", "Cm", "Ar")))
    return options


def commands_of_program():
    return re.findall(r"(?m)^  ([a-z-]+) +[A-Z]", answer("--help").split("Subcommands:")[1])


class ManualPage(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        with open(PAGE) as stream:
            self.text = stream.read()
        self.sections, self.commands = sections_of_page(self.text)

    def test_it_tells_of_every_command_in_the_order_of_the_program(self):
        self.assertEqual(list(self.commands), commands_of_program())

    def test_it_tells_of_the_options_without_command(self):
        self.assertEqual(options_of_section(self.sections["OPTIONS"]), options_of_program(answer("--help"))["Options"])

    def test_it_tells_of_every_option_of_every_command_and_of_no_other(self):
        for command in commands_of_program():
            with self.subTest(command):
                text = self.commands[command]
                told = options_of_section(text) | {("-h", "--help")}
                for section in re.findall(r"(?m)^\.Sx (.*? OPTIONS)", text):
                    told |= options_of_section(self.sections[section])
                left_out = set(re.findall(r"(?m)^but\n\.Fl (-[\w-]+)", text))
                told = {option for option in told if not left_out & {"-" + option[0].lstrip("-")}}
                options = options_of_program(answer(command, "--help"))
                self.assertEqual(told, set().union(*options.values()))
                self.assertIn("--help", [word for option in options["Options"] for word in option])

    def test_it_shows_what_each_command_is_given(self):
        for command in commands_of_program():
            usage = re.search(rf"(?m)^Usage: netlistdb {command} (.*) \[OPTIONS\]$", answer(command, "--help"))[1]
            shown = re.match(r"\n\.Nm\n\.Cm (\S+)\n((?:\.(?:Op )?Ar .*\n)+)\.Pp\n", self.commands[command])
            self.assertIsNotNone(shown, command)
            arguments = shown[2].replace(" ...", "...").replace(".Ar ", "")
            arguments = re.sub(r"(?m)^\.Op (.*)$", r"[\1]", arguments.replace(".Op Ar ", ".Op ")).split()
            self.assertEqual((shown[1], arguments), (command, usage.lower().split()))

    def test_it_tells_of_every_exit_status(self):
        told = re.findall(r"(?m)^\.It (\d+)$", self.sections["EXIT STATUS"])
        codes = re.search(r"(?s)Exit codes: (.*?)\n\n", answer("--help"))[1]
        self.assertEqual(told, re.findall(r"\d+", codes))

    def test_formatters_accept_it(self):
        for command in (["mandoc", "-T", "lint", "-W", "warning"], ["groff", "-mandoc", "-ww", "-z"]):
            result = subprocess.run([*command, PAGE], capture_output=True, text=True)
            self.assertEqual((result.stdout, result.stderr), ("", ""))
            self.assertEqual(result.returncode, 0)


if __name__ == "__main__":
    unittest.main()
