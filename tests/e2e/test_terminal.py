import os
import pty
import re
import subprocess
import unittest

from program import ELABORATED, PROGRAM, REPOSITORY, ProgramTest, environment

ESCAPE = "\x1b["


def on_terminal(*arguments, stdout=False, stderr=False, **variables):
    """Runs the program with the given streams on one terminal; answers what the terminal got, and the other stream."""
    leader, follower = pty.openpty()
    process = subprocess.Popen(
        [PROGRAM, *arguments],
        stdin=subprocess.DEVNULL,
        stdout=follower if stdout else subprocess.PIPE,
        stderr=follower if stderr else subprocess.DEVNULL,
        cwd=REPOSITORY,
        env=environment(**{"TERM": "xterm", **variables}),
    )
    os.close(follower)
    shown = b""
    while True:
        try:
            part = os.read(leader, 65536)
        except OSError:
            break
        if not part:
            break
        shown += part
    os.close(leader)
    other = b""
    if process.stdout:
        other = process.stdout.read()
        process.stdout.close()
    process.wait()
    return shown.decode(), other.decode()


class Terminal(ProgramTest):
    def test_shows_progress_and_takes_it_away_again(self):
        shown, output = on_terminal("tree", ELABORATED, "--depth", "0", stderr=True)
        self.assertIn(f"reading {ELABORATED}", shown)
        self.assertIn(f"importing {ELABORATED}", shown)
        self.assertTrue(shown.endswith("\r" + ESCAPE + "K"), repr(shown))
        self.assertEqual(output, self.succeed("tree", ELABORATED, "--depth", "0"))

    def test_shows_no_progress_when_told(self):
        shown, _ = on_terminal("tree", ELABORATED, "--depth", "0", "--progress", "never", stderr=True)
        self.assertEqual(shown, "")

    def test_shows_no_progress_on_a_terminal_that_knows_nothing_but_text(self):
        shown, _ = on_terminal("tree", ELABORATED, "--depth", "0", stderr=True, TERM="dumb")
        self.assertEqual(shown, "")

    def test_shows_no_progress_elsewhere(self):
        result = subprocess.run([PROGRAM, "tree", ELABORATED], capture_output=True, cwd=REPOSITORY)
        self.assertEqual(result.stderr, b"")

    def test_colours_tables_on_a_terminal(self):
        shown, _ = on_terminal("tree", ELABORATED, "--depth", "0", stdout=True)
        self.assertIn(ESCAPE + "1mINSTANCE", shown)

    def test_colours_can_be_turned_off_and_on(self):
        words = ("tree", ELABORATED, "--depth", "0")
        for options, variables, colored in (
            ((), {"NO_COLOR": "1"}, False),
            ((), {"NO_COLOR": ""}, True),
            ((), {"TERM": "dumb"}, False),
            (("--color", "never"), {}, False),
            (("--color", "always"), {"NO_COLOR": "1"}, True),
        ):
            with self.subTest(options, **variables):
                shown, _ = on_terminal(*words, *options, stdout=True, **variables)
                self.assertEqual(ESCAPE in shown, colored)

    def test_there_are_no_colours_elsewhere_unless_told(self):
        self.assertNotIn(ESCAPE, self.succeed("tree", ELABORATED, "--depth", "0"))
        colored = self.succeed("tree", ELABORATED, "--depth", "0", "--color", "always")
        self.assertIn(ESCAPE, colored)
        out = self.path("out")
        self.succeed("tree", ELABORATED, "--depth", "0", "-o", out)
        with open(out) as stream:
            self.assertNotIn(ESCAPE, stream.read())

    def test_only_tables_have_colours(self):
        for form in ("json", "jsonl", "csv"):
            self.assertNotIn(ESCAPE, self.succeed("tree", ELABORATED, "--depth", "0", "--color", "always", "--format", form))

    def test_colours_leave_the_columns_aligned(self):
        colored = self.succeed("tree", ELABORATED, "--depth", "0", "--color", "always")
        self.assertEqual(re.sub("\x1b\\[[0-9]*m", "", colored), self.succeed("tree", ELABORATED, "--depth", "0"))

    def test_messages_are_the_same_on_a_terminal_but_for_colours(self):
        shown, _ = on_terminal("info", self.path("missing.json"), stderr=True, NO_COLOR="1")
        self.assertEqual(shown.replace("\r\n", "\n").split("K")[-1], f"netlistdb: {self.path('missing.json')}: No such file or directory\n")


if __name__ == "__main__":
    unittest.main()
