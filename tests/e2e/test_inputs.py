"""Designs from standard input, from pipes, and compressed."""

import gzip
import os
import threading
import unittest

from program import ELABORATED, REPOSITORY, ProgramTest, bit_module, environment, net, netlist, run


class Inputs(ProgramTest):
    @classmethod
    def setUpClass(cls):
        with open(os.path.join(REPOSITORY, ELABORATED), "rb") as stream:
            cls.json_text = stream.read()
        cls.wanted = run("clocks", ELABORATED).stdout.encode()

    def saved(self):
        path = self.path("saved")
        if not os.path.exists(path):
            self.succeed("save", ELABORATED, path)
        with open(path, "rb") as stream:
            return stream.read()

    def contents(self):
        return {"JSON": self.json_text, "saved": self.saved()}.items()

    def answer(self, design, content=b""):
        result = run("clocks", design, stdin=content, text=False)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def test_standard_input(self):
        for kind, content in self.contents():
            with self.subTest(kind):
                self.assertEqual(self.answer("-", content), self.wanted)
                self.assertEqual(self.answer("-", gzip.compress(content)), self.wanted)

    def test_a_pipe(self):
        for kind, content in self.contents():
            with self.subTest(kind):
                fifo = self.path("fifo" + kind)
                os.mkfifo(fifo)

                def write():
                    with open(fifo, "wb") as stream:
                        stream.write(content)

                writer = threading.Thread(target=write)
                writer.start()
                self.assertEqual(self.answer(fifo), self.wanted)
                writer.join()

    def test_compressed_files_are_known_by_their_content(self):
        for kind, content in self.contents():
            for name in ("design.json.gz", "design", "design.json"):
                if kind == "saved" and "json" in name:
                    continue
                with self.subTest(kind, name=name):
                    self.assertEqual(self.answer(self.file(name, gzip.compress(content))), self.wanted)

    def test_compressed_files_may_have_several_members(self):
        half = len(self.json_text) // 2
        parts = gzip.compress(self.json_text[:half]) + gzip.compress(self.json_text[half:])
        self.assertEqual(self.answer(self.file("parts.json.gz", parts)), self.wanted)

    def test_damaged_compressed_files_are_refused(self):
        whole = gzip.compress(self.json_text)
        cut = self.file("cut.json.gz", whole[: len(whole) // 2])
        self.assertEqual(self.fail_with(3, "info", cut), f"{cut}: the compressed data ends too early")
        damaged = bytearray(whole)
        damaged[len(whole) // 2] ^= 0x55
        path = self.file("damaged.json.gz", bytes(damaged))
        self.assertRegex(self.fail_with(3, "info", path), f"^{path}: the compressed data (is damaged|ends too early)$")

    def test_messages_name_where_the_design_came_from(self):
        for content, fault in ((b"", "is empty"), (b"garbage", "neither a Yosys JSON netlist nor an undamaged saved netlist"),
                               (gzip.compress(b""), "is empty")):
            result = run("info", "-", stdin=content, text=False)
            self.assertEqual((result.returncode, result.stderr.decode()), (3, f"netlistdb: standard input: {fault}\n"))
        result = run("info", "-", stdin=b'{"modules": 3}', text=False)
        self.assertTrue(result.stderr.startswith(b"netlistdb: standard input: "), result.stderr)
        path = self.file("broken.json.gz", gzip.compress(b'{"modules": 3}'))
        self.assertTrue(self.fail_with(3, "info", path).startswith(path + ": "))

    def test_standard_input_is_read_once(self):
        message = self.fail_with(2, "clock-of", "-", "-", stdin="{}")
        self.assertEqual(message, "clock-of: '-' is the design; it cannot give the paths, too")

    def test_nothing_is_left_in_the_temporary_directory(self):
        os.mkdir(self.path("tmp"))
        result = run("info", "-", stdin=self.saved(), text=False, env=environment(TMPDIR=self.path("tmp")))
        self.assertEqual(result.returncode, 0)
        self.assertEqual(os.listdir(self.path("tmp")), [])

    def test_a_mapped_netlist_with_hierarchy_says_what_is_left_out(self):
        cell = {"type": "KVR_FF", "parameters": {}, "attributes": {"KVR_ATTRIBUTE_CELL_NAME": "KVR_FF"},
                "port_directions": {"Q": "output"}, "connections": {"Q": [2]}}
        below = {"type": "below", "parameters": {}, "attributes": {}, "port_directions": {}, "connections": {}}
        flat = bit_module({"ff": cell}, {"q": net(2)})
        top = bit_module({"ff": cell, "u": below}, {"q": net(2)}, attributes={"top": 1})
        design = self.file("mapped.json", netlist(top=top, below=flat))
        self.assertEqual(run("tree", design).stderr,
                         "netlistdb: a post-map netlist is looked at on its top level only: what is inside 1 instance with "
                         "contents is left out (u first); flatten the netlist to see it\n")
        self.assertEqual(run("tree", self.file("flat.json", netlist(top=flat))).stderr, "")


if __name__ == "__main__":
    unittest.main()
