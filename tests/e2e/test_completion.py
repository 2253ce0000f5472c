"""Completion in bash and zsh, asked as the shells ask it, against what the program's help tells."""

import os
import pty
import re
import select
import subprocess
import time
import unittest

from program import PROGRAM, REPOSITORY, ProgramTest, environment, run

COMPLETION = os.path.join(REPOSITORY, "tools/completion")
PATH = os.path.dirname(PROGRAM) + ":/usr/bin:/bin"


def commands():
    return re.findall(r"(?m)^  ([a-z-]+) +[A-Z]", run("--help").stdout.split("Subcommands:")[1])


def options(command):
    """From each name of an option to what it takes."""
    declarations = re.findall(r"(?m)^  (-\S+)(?: (?!Excludes:)(\S+))?", run(command, "--help").stdout)
    return {name: value for names, value in declarations for name in names.split(",")}


class Bash(ProgramTest):
    def complete(self, *words):
        """What bash offers for the last of the words."""
        script = f"""
            source '{COMPLETION}/netlistdb.bash'
            COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
            _netlistdb
            printf '%s\\n' "${{COMPREPLY[@]}}"
        """
        result = subprocess.run(["bash", "--norc", "-c", script, "bash", "netlistdb", *words], capture_output=True, text=True,
                                check=True, cwd=self.directory, env=environment(PATH=PATH))
        self.assertEqual(result.stderr, "")
        return result.stdout.split()

    def test_commands(self):
        self.assertEqual(set(self.complete("")), {*commands(), "help", "--help", "--version"})
        self.assertEqual(self.complete("sea"), ["search"])
        self.assertEqual(set(self.complete("help", "cl")), {"clocks", "clock-of"})

    def test_every_option_of_every_command(self):
        for command in commands():
            with self.subTest(command):
                self.assertEqual(set(self.complete(command, "-")), set(options(command)))
        self.assertEqual(self.complete("search", "x.json", "--lim"), ["--limit"])

    def test_values(self):
        for command in commands():
            for name, value in options(command).items():
                if "|" in value:
                    with self.subTest(command, option=name):
                        self.assertEqual(set(self.complete(command, name, "")), set(value.split("|")))
        self.assertEqual(self.complete("info", "--format", "js"), ["json", "jsonl"])
        self.assertEqual(self.complete("info", "--format", "=", "c"), ["csv"])
        self.assertEqual(self.complete("info", "--format", "="), ["table", "json", "jsonl", "csv"])
        self.assertEqual(set(self.complete("search", "--kind", "")), {"instance", "net", "bus"})
        self.assertEqual(self.complete("tree", "--depth", ""), [])

    def test_files(self):
        self.file("design.json", "")
        os.mkdir(self.path("directory"))
        for words in (("info", "d"), ("search", "-o", "d"), ("info", "-f", "d")):
            self.assertEqual(sorted(self.complete(*words)), ["design.json", "directory"])
        self.assertEqual(self.complete("info", "-I", "d"), ["directory"])

    def test_what_a_plan_can_be_asked_for(self):
        self.assertEqual(self.complete("plan", ""), ["add", "check", "update", "export"])
        self.assertEqual(self.complete("plan", "up"), ["update"])
        self.file("a.plan", "")
        self.assertEqual(self.complete("plan", "check", "a"), ["a.plan"])

    def test_it_is_registered(self):
        script = f"source '{COMPLETION}/netlistdb.bash'; complete -p netlistdb"
        result = subprocess.run(["bash", "--norc", "-c", script], capture_output=True, text=True, check=True)
        self.assertEqual(result.stdout, "complete -F _netlistdb netlistdb\n")


class ZshSpecifications(ProgramTest):
    def offered(self, *words):
        """What the completion hands to zsh's own functions."""
        script = f"""
            _arguments() {{ print -l -- "$@" }}
            _describe() {{ print -l -- ${{(P)2}} }}
            compadd() {{ print -l -- ${{(P)2}} }}
            words=("$@") CURRENT=$#
            source '{COMPLETION}/_netlistdb'
        """
        result = subprocess.run(["zsh", "-f", "-c", script, "zsh", "netlistdb", *words], capture_output=True, text=True,
                                check=True, env=environment(PATH=PATH))
        self.assertEqual(result.stderr, "")
        return result.stdout.splitlines()

    def test_commands_stand_with_what_they_do(self):
        offered = dict(line.split(":", 1) for line in self.offered(""))
        self.assertEqual(set(offered), {*commands(), "help", "--help", "--version"})
        self.assertEqual(offered["tree"], "Show the instance tree")

    def test_what_a_plan_can_be_asked_for(self):
        self.assertEqual(self.offered("plan", ""), ["add", "check", "update", "export"])

    def test_every_option_of_every_command_stands_with_its_values(self):
        for command in commands():
            offered = {}
            for line in self.offered(command, "-"):
                found = re.fullmatch(r"\*(-[^=+\[]*)([=+]?)\[([^\[\]:]+)\](.*)", line)
                if found:
                    offered[found[1]] = (found[2], found[4])
            wanted = {}
            for name, value in options(command).items():
                separator = "" if not value else "=" if name.startswith("--") else "+"
                choices = re.sub("[|,]", " ", value)
                action = (":file:_files" if value in ("FILE", "LIST") else ":directory:_files -/" if value == "DIR" else
                          f":value:({choices})" if choices != value else f":{value}: " if value else "")
                wanted[name] = (separator, action)
            self.assertEqual(offered, wanted)


class Zsh(ProgramTest):
    """Types into a zsh on a terminal of its own."""

    def setUp(self):
        super().setUp()
        self.leader, follower = pty.openpty()
        self.shell = subprocess.Popen(["zsh", "-f", "-i"], stdin=follower, stdout=follower, stderr=follower,
                                      start_new_session=True, cwd=self.directory,
                                      env=environment(PATH=PATH, TERM="vt100", HOME=self.directory, PS1="", COLUMNS="200"))
        os.close(follower)
        self.addCleanup(os.close, self.leader)
        self.addCleanup(self.shell.wait)
        self.addCleanup(self.shell.kill)
        self.type(f"PS1=; fpath=('{COMPLETION}' $fpath); autoload -Uz compinit; compinit -u -D; print REA''DY\n", "READY\r\n")

    def type(self, text, wanted):
        """Types text and waits until the shell shows the wanted text."""
        os.write(self.leader, text.encode())
        shown = ""
        deadline = time.monotonic() + 60
        while wanted not in shown:
            ready, _, _ = select.select([self.leader], [], [], deadline - time.monotonic())
            self.assertTrue(ready, f"{text!r} showed {shown!r}")
            shown += os.read(self.leader, 65536).decode(errors="replace")
            shown = re.sub("\x1b\\[[0-9;?]*[a-zA-Z]|\0", "", shown)

    def test_a_command_is_completed(self):
        self.type("netlistdb sea\t", "netlistdb search")

    def test_options_and_values_are_completed(self):
        for typed, wanted in (
            ("netlistdb search --lim\t", "netlistdb search --limit"),
            ("netlistdb tree --cloc\t", "netlistdb tree --clocks"),
            ("netlistdb info --format c\t", "netlistdb info --format csv"),
            ("netlistdb info --color=al\t", "netlistdb info --color=always"),
            ("netlistdb search --kind inst\t", "netlistdb search --kind instance"),
            ("netlistdb help chec\t", "netlistdb help checksum"),
        ):
            with self.subTest(typed):
                self.type(typed, wanted)
                self.type("\x15print DO''NE\n", "DONE\r\n")

    def test_files_are_completed(self):
        self.file("design_of_mine.json", "")
        self.type("netlistdb info des\t", "netlistdb info design_of_mine.json")


if __name__ == "__main__":
    unittest.main()
