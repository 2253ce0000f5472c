import os
import pty
import resource
import signal
import subprocess
import unittest

from program import ELABORATED, POST_MAP, PROGRAM, SANITIZED, ProgramTest, bit_module, netlist


def instance(module):
    return {"type": module, "parameters": {}, "attributes": {}, "port_directions": {}, "connections": {}}


def doubling(levels):
    """A netlist whose top unfolds to 2 ** (levels + 1) - 1 instances."""
    modules = {"m0": bit_module({}, {})}
    for level in range(1, levels + 1):
        modules[f"m{level}"] = bit_module({name: instance(f"m{level - 1}") for name in "ab"}, {})
    modules[f"m{levels}"]["attributes"]["top"] = 1
    return netlist(**modules)


class InstanceLimit(ProgramTest):
    def test_a_design_beyond_the_limit_is_refused_before_it_is_unfolded(self):
        for levels, number in ((26, "134217727"), (40, "2199023255551"), (100, "more than 18446744073709551615")):
            bomb = self.file("bomb.json", doubling(levels))
            for command in (("info",), ("tree",), ("search", "x"), ("clocks",), ("clock-of", "x"), ("probes",)):
                message = self.fail_with(3, command[0], bomb, *command[1:])
                self.assertEqual(message, f"{bomb}: module 'm{levels}' unfolds to {number} instances, beyond the limit of "
                                          "50000000; --top chooses a smaller part, --max-instances raises the limit")

    def test_the_number_is_that_of_the_import(self):
        top = netlist(top=bit_module({"n": {**instance("$not"), "parameters": {"A_WIDTH": 1, "Y_WIDTH": 1},
                                            "port_directions": {"A": "input", "Y": "output"},
                                            "connections": {"A": [2], "Y": [3]}},
                                      "box": instance("box"), "u": instance("inner")}, {}, attributes={"top": 1}),
                      inner=bit_module({"box": instance("box")}, {}),
                      box=bit_module({"v": instance("leaf"), "w": instance("leaf")}, {}, attributes={"whitebox": 1}),
                      leaf=bit_module({}, {}))
        for design in (ELABORATED, POST_MAP, self.file("boxes.json", top)):
            number = self.json("info", design)["instances"]["total"]
            self.assertGreater(number, 3)
            self.succeed("info", design, "--max-instances", str(number))
            message = self.fail_with(3, "info", design, "--max-instances", str(number - 1))
            self.assertIn(f" unfolds to {number} instances, beyond the limit of {number - 1};", message)

    def test_a_smaller_part_can_be_chosen_and_the_whole_saved(self):
        bomb = self.file("bomb.json", doubling(60))
        self.assertEqual(self.json("info", bomb, "--top", "m3")["instances"]["total"], 15)
        saved = self.path("saved")
        self.succeed("save", bomb, saved)
        self.assertIn("'m60' unfolds to 2305843009213693951 instances", self.fail_with(3, "info", saved))

    def test_the_limit_is_a_number(self):
        for text in ("0", "-1", "many"):
            self.assertIn("--max-instances", self.fail_with(2, "info", ELABORATED, "--max-instances", text))

    def test_the_import_can_be_interrupted_in_its_middle(self):
        # Nothing could import this to its end.
        bomb = self.file("bomb.json", doubling(22 if SANITIZED else 40))
        out = self.path("out")

        def prepare():
            signal.signal(signal.SIGINT, signal.SIG_DFL)
            if not SANITIZED:
                resource.setrlimit(resource.RLIMIT_AS, (1 << 32, 1 << 32))

        leader, follower = pty.openpty()
        process = subprocess.Popen([PROGRAM, "info", bomb, "-o", out, "--max-instances", str(1 << 62)], stderr=follower,
                                   preexec_fn=prepare)
        os.close(follower)
        shown = b""
        while b"importing" not in shown:
            shown += os.read(leader, 1000)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        shown += os.read(leader, 1000)
        os.close(leader)
        self.assertTrue(shown.endswith(b"interrupted\r\n"), shown)
        self.assertEqual(os.listdir(self.directory), ["bomb.json"])


if __name__ == "__main__":
    unittest.main()
