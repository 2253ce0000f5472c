import json
import os
import pty
import signal
import stat
import subprocess
import time
import unittest

from program import PROGRAM, ProgramTest, environment, large_netlist

#: More results than pipes hold: a program that writes them to a pipe cannot end before somebody reads.
MANY = 150000


class Interrupt(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.content = large_netlist(MANY)

    def setUp(self):
        super().setUp()
        self.design = self.file("large.json", self.content)

    def start(self, *arguments, **options):
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        # A test that runs in the background may have been told to ignore what is sent here.
        process = subprocess.Popen(
            [PROGRAM, *arguments],
            text=True,
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
            **options,
        )
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def interrupt_after_first_result(self, *arguments, number=signal.SIGINT):
        process = self.start(*arguments)
        text = ""
        while "some_net_0" not in text:
            text += process.stdout.readline()
        process.send_signal(number)
        text += process.stdout.read()
        message = process.stderr.read()
        process.stdout.close()
        process.stderr.close()
        return process.wait(), text, message

    def test_a_search_ends_with_what_was_found(self):
        code, output, message = self.interrupt_after_first_result("search", self.design, "some", "--format", "jsonl")
        self.assertEqual(code, 130)
        self.assertEqual(message, "netlistdb: interrupted: the result is partial\n")
        lines = [json.loads(line) for line in output.splitlines()]
        self.assertEqual(lines[-1], {"ending": "interrupted"})
        self.assertEqual(lines[1]["path"], "some_net_0")
        self.assertLess(len(lines), MANY)

    def test_a_partial_json_document_is_still_one(self):
        for pattern in (("some",), ("so.e", "--regex"), ("some*", "--glob")):
            code, output, _ = self.interrupt_after_first_result("search", self.design, *pattern, "--format", "json")
            document = json.loads(output)
            self.assertEqual((code, document["ending"]), (130, "interrupted"))
            self.assertLess(len(document["results"]), MANY)

    def test_listing_probes_can_be_interrupted(self):
        code, output, message = self.interrupt_after_first_result("probes", self.design, "--format", "jsonl")
        self.assertEqual(code, 130)
        self.assertIn("partial", message)
        self.assertEqual(json.loads(output.splitlines()[-1]), {"ending": "interrupted"})

    def test_a_request_to_terminate_is_heeded_likewise(self):
        code, output, message = self.interrupt_after_first_result(
            "search", self.design, "some", "--format", "jsonl", number=signal.SIGTERM
        )
        self.assertEqual(code, 143)
        self.assertIn("partial", message)

    def test_a_second_interrupt_ends_the_program_at_once(self):
        process = self.start("search", self.design, "some")
        process.stdout.readline()
        # The pipe is full and nobody reads: the program cannot end of itself.
        while process.poll() is None:
            process.send_signal(signal.SIGINT)
        self.assertEqual(process.returncode, 130)
        process.stdout.close()
        process.stderr.close()

    def test_a_second_interrupt_takes_temporary_files_away(self):
        out = self.file("out", "old")
        process = self.start("search", self.design, "some", "-o", out)
        while not any(name.startswith(".netlistdb") for name in os.listdir(self.directory)):
            self.assertIsNone(process.poll())
        while process.poll() is None:
            process.send_signal(signal.SIGINT)
        process.stdout.close()
        process.stderr.close()
        self.assertEqual(process.returncode, 130)
        self.assertEqual(sorted(os.listdir(self.directory)), ["large.json", "out"])

    def test_reading_can_be_interrupted(self):
        leader, follower = pty.openpty()
        out = self.path("out")
        process = self.start("info", self.design, "-o", out, stderr=follower)
        os.close(follower)
        shown = b""
        while b"reading" not in shown:
            shown += os.read(leader, 1000)
        process.send_signal(signal.SIGINT)
        process.stdout.close()
        while True:
            try:
                part = os.read(leader, 1000)
            except OSError:
                break
            shown += part
        os.close(leader)
        self.assertEqual(process.wait(), 130)
        self.assertTrue(shown.decode().rstrip().endswith("interrupted"), shown)
        self.assertEqual(sorted(os.listdir(self.directory)), ["large.json"])

    def test_yosys_goes_when_it_is_interrupted(self):
        # This yosys says who it and its child are and then waits for somebody to stop it; neither heeds a request.
        fifo = self.path("started")
        os.mkfifo(fifo)
        yosys = self.file("yosys", f"#!/bin/sh\ntrap '' TERM INT\nsleep 1000 &\necho $$ $! > '{fifo}'\nwait\n")
        os.chmod(yosys, stat.S_IRWXU)
        source = self.file("a.v", "module a; endmodule\n")
        process = self.start("info", source, env=environment(PATH=self.directory + ":/usr/bin:/bin"))
        with open(fifo) as stream:
            children = [int(word) for word in stream.read().split()]
        process.send_signal(signal.SIGINT)
        output, message = process.communicate()
        self.assertEqual((process.returncode, output, message), (130, "", "netlistdb: interrupted\n"))
        self.assertEqual(len(children), 2)
        deadline = time.monotonic() + 20
        for child in children:
            # A killed process runs on until the kernel gets to it, and stays a zombie until it is adopted.
            while self.state_of(child) not in ("Z", None):
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.01)

    @staticmethod
    def state_of(process):
        """The letter of /proc/PID/stat; None when there is no such process."""
        try:
            with open(f"/proc/{process}/stat") as status:
                return status.read().rsplit(")", 1)[1].split()[0]
        except (FileNotFoundError, ProcessLookupError):
            return None


if __name__ == "__main__":
    unittest.main()
