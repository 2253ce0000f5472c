import os
import socket
import unittest

from program import ELABORATED, REPOSITORY, UNPRIVILEGED, ProgramTest, bit_module, net, netlist, run


class RefusedInput(ProgramTest):
    def refused(self, path, *options):
        """What is wrong with the file, which the message names first."""
        message = self.fail_with(3, "info", path, *options)
        self.assertTrue(message.startswith(path + ": "), message)
        return message[len(path) + 2 :]

    def test_a_missing_file(self):
        for name in ("missing.json", "missing.netlist", "missing.v"):
            self.assertEqual(self.refused(self.path(name)), "No such file or directory")

    def test_a_directory(self):
        self.assertEqual(self.refused(self.directory), "Is a directory")

    def test_what_is_neither_a_file_nor_a_pipe(self):
        path = self.path("socket.json")
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(path)
            self.assertEqual(self.refused(path), "is neither a regular file nor a pipe")

    def test_a_file_that_may_not_be_read(self):
        for name in ("secret.json", "secret.netlist", "secret.v"):
            path = self.file(name, "secret")
            os.chmod(path, 0)
            message = self.fail_with(3, "info", path, through=UNPRIVILEGED)
            self.assertEqual(message, f"{path}: Permission denied")

    def test_an_empty_file(self):
        for name in ("empty.json", "empty.netlist", "empty.v"):
            self.assertEqual(self.refused(self.file(name, "")), "is empty")

    def test_a_path_that_leads_nowhere(self):
        self.assertEqual(self.refused(self.file("file", "x") + "/soc.json"), "Not a directory")
        loop = self.path("loop.json")
        os.symlink(loop, loop)
        self.assertEqual(self.refused(loop), "Too many levels of symbolic links")

    def test_garbage(self):
        for name in ("garbage", "garbage.netlist"):
            self.assertIn("neither a Yosys JSON netlist nor", self.refused(self.file(name, b"\x00\x01garbage\xff" * 50)))
        self.refused(self.file("garbage.json", b"\x00\x01garbage\xff" * 50))

    def test_json_that_is_no_netlist(self):
        for text in ("{", "[]", "{}", '{"modules": 3}', '{"modules": {}}', '"text"', "{}}", "nothing"):
            with self.subTest(text):
                self.refused(self.file("not.json", text))

    def test_json_is_recognised_by_its_content_too(self):
        path = self.file("netlist", " \n" + netlist(top=bit_module({}, {"a": net(2)})))
        self.assertEqual(self.json("info", path)["top"], "top")

    def test_a_truncated_json_file(self):
        with open(os.path.join(REPOSITORY, ELABORATED), "rb") as stream:
            content = stream.read()
        for length in (1, 100, len(content) // 2, len(content) - 3):
            with self.subTest(length):
                self.refused(self.file("cut.json", content[:length]))

    def test_a_truncated_saved_netlist(self):
        saved = self.path("whole")
        self.succeed("save", ELABORATED, saved)
        with open(saved, "rb") as stream:
            content = stream.read()
        for length in (1, 7, 64, len(content) // 2, len(content) - 1):
            with self.subTest(length):
                self.assertIn("saved netlist", self.refused(self.file("cut", content[:length])))

    def test_a_corrupted_saved_netlist(self):
        saved = self.path("whole")
        self.succeed("save", ELABORATED, saved)
        with open(saved, "rb") as stream:
            content = stream.read()
        for at in range(0, len(content), len(content) // 40):
            with self.subTest(at):
                damaged = bytearray(content)
                damaged[at] ^= 0x10
                self.refused(self.file("damaged", bytes(damaged)))

    def test_a_top_that_is_not_there(self):
        self.assertIn("'qqqqqqqq'", self.refused(ELABORATED, "--top", "qqqqqqqq"))
        self.assertRegex(self.refused(ELABORATED, "--top", "uart_xr"), "'uart_xr'.*; did you mean 'uart_[rt]x'")

    def test_a_subscript_that_no_bus_can_have(self):
        path = self.file("wide.json", netlist(top=bit_module({}, {"a[99999999999]": net(2)})))
        self.assertEqual(self.refused(path), "the name of some net ends in a bit subscript beyond 32 bits")

    def test_messages_stay_on_one_line_whatever_the_name_of_the_file(self):
        result = run("info", self.path("line\nbreak.json"))
        self.assertEqual(result.returncode, 3)
        self.assertEqual(result.stderr.count("\n"), 1)
        self.assertIn("line\\nbreak.json", result.stderr)


if __name__ == "__main__":
    unittest.main()
