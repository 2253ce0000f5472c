"""Runs the examples of the manual. `test_manual.py --update` writes what they answer into the manual."""

import os
import re
import subprocess
import sys
import unittest

from program import PROGRAM, REPOSITORY, environment

MANUAL = os.path.join(REPOSITORY, "docs/cli.md")


def answer(command):
    """What a terminal shows of a command that is run in the repository."""
    path = os.path.dirname(PROGRAM) + ":" + os.environ["PATH"]
    result = subprocess.run(command, shell=True, text=True, cwd=REPOSITORY, env=environment(PATH=path),
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return result.stdout.replace(REPOSITORY + "/", "/home/me/soc/")


def renewed(text):
    """The manual with the answers of this program. Commands go on in the next line after a backslash."""

    def renew(block):
        lines = []
        for command in re.findall(r"(?m)^\$ ((?:.*\\\n)*.*)$", block.group(1)):
            lines.append(f"$ {command}\n{answer(command)}")
        return "```console\n" + "".join(lines) + "```\n"

    return re.sub(r"(?ms)^```console\n(.*?)^```\n", renew, text)


class Manual(unittest.TestCase):
    maxDiff = 4000

    def test_its_examples_show_what_the_program_answers(self):
        with open(MANUAL) as stream:
            text = stream.read()
        self.assertGreater(text.count("\n$ netlistdb "), 10)
        self.assertEqual(renewed(text), text)

    def test_it_tells_of_every_command_and_option(self):
        with open(MANUAL) as stream:
            text = stream.read()
        for command in re.findall(r"(?m)^  ([a-z-]+) +[A-Z]", answer("netlistdb --help").split("Subcommands:")[1]):
            self.assertIn(f"\n## `{command}`", text)
            for option in {"--help"} ^ set(re.findall(r"(?m)^  (?:-\w,)?(--[a-z-]+)", answer(f"netlistdb {command} --help"))):
                self.assertTrue(re.search(rf"`(-\w, )?{option}[ `]", text), option)


if __name__ == "__main__":
    if "--update" in sys.argv:
        with open(MANUAL) as manual:
            new = renewed(manual.read())
        with open(MANUAL, "w") as manual:
            manual.write(new)
    else:
        unittest.main()
