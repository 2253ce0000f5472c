"""What stands under a name that the program writes to is never lost. Both ways of writing: `-o` and `save`."""

import os
import resource
import signal
import stat
import subprocess
import tempfile
import threading
import unittest

from program import ELABORATED, PROGRAM, REPOSITORY, UNPRIVILEGED, ProgramTest, environment, run

WAYS = {
    "-o": lambda out: ("tree", ELABORATED, "-o", out),
    "save": lambda out: ("save", ELABORATED, out, "--force"),
}


class Writing(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.wanted = {}
        with tempfile.TemporaryDirectory() as directory:
            for way, words in WAYS.items():
                plain = os.path.join(directory, "wanted")
                run(*words(plain))
                with open(plain, "rb") as stream:
                    cls.wanted[way] = stream.read()

    def read(self, path):
        with open(path, "rb") as stream:
            return stream.read()

    def each_way(self):
        for way, words in WAYS.items():
            with self.subTest(way):
                yield way, words

    def test_a_pipe_is_written_through(self):
        for way, words in self.each_way():
            fifo = self.path("fifo" + way)
            os.mkfifo(fifo)
            got = []
            reader = threading.Thread(target=lambda: got.append(self.read(fifo)))
            reader.start()
            self.succeed(*words(fifo))
            reader.join()
            self.assertEqual(got, [self.wanted[way]])
            self.assertTrue(stat.S_ISFIFO(os.stat(fifo).st_mode))

    def test_a_terminal_is_written_through(self):
        leader, follower = os.openpty()
        name = os.ttyname(follower)
        link = self.path("terminal")
        os.symlink(name, link)
        process = subprocess.Popen([PROGRAM, *WAYS["-o"](link)], cwd=REPOSITORY)
        shown = b""
        while shown.count(b"\n") < self.wanted["-o"].count(b"\n"):
            shown += os.read(leader, 65536)
        self.assertEqual(process.wait(), 0)
        self.assertEqual(shown.replace(b"\r\n", b"\n"), self.wanted["-o"])
        self.assertTrue(os.path.islink(link))
        os.close(leader)
        os.close(follower)

    def test_a_symbolic_link_stays_and_its_target_is_written(self):
        for way, words in self.each_way():
            os.mkdir(self.path("below" + way))
            for name, content in (("there", b"old"), ("missing", None)):
                target = self.path(f"below{way}/{name}")
                if content is not None:
                    self.file(f"below{way}/{name}", content)
                first, second = self.path("first" + way + name), self.path("second" + way + name)
                os.symlink(f"below{way}/{name}", first)
                os.symlink(first, second)
                self.succeed(*words(second))
                self.assertEqual(self.read(target), self.wanted[way])
                self.assertTrue(os.path.islink(first) and os.path.islink(second))
            self.assertEqual(sorted(os.listdir(self.path("below" + way))), ["missing", "there"])

    def test_what_is_appended_to_stays_whole(self):
        for way, words in self.each_way():
            for name in ("/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"):
                log = self.file("log", b"old\n")
                with open(log, "ab") as stream:
                    subprocess.run([PROGRAM, *words(name)], stdout=stream, check=True, cwd=REPOSITORY)
                self.assertEqual(self.read(log), b"old\n" + self.wanted[way])

    def test_mode_and_owner_stay(self):
        for way, words in self.each_way():
            out = self.file("out", b"old")
            os.chmod(out, 0o4751)
            owner = (os.geteuid(), os.getegid())
            if UNPRIVILEGED:
                owner = (12345, 54321)
                os.chown(out, *owner)
                os.chmod(out, 0o4751)
            self.succeed(*words(out))
            status = os.stat(out)
            self.assertEqual((stat.S_IMODE(status.st_mode), status.st_uid, status.st_gid), (0o4751, *owner))
            self.assertEqual(self.read(out), self.wanted[way])

    def test_a_new_file_is_as_readable_as_any(self):
        for way, words in self.each_way():
            out = self.path("new" + way)
            result = subprocess.run(["/bin/sh", "-c", 'umask 027; "$0" "$@"', PROGRAM, *words(out)], cwd=REPOSITORY)
            self.assertEqual(result.returncode, 0)
            self.assertEqual(stat.S_IMODE(os.stat(out).st_mode), 0o640)

    def test_a_file_that_the_user_may_not_write_is_refused(self):
        for way, words in self.each_way():
            out = self.file("out", b"old")
            os.chmod(out, 0o444)
            message = self.fail_with(3, *words(out), through=UNPRIVILEGED)
            self.assertEqual(message, f"{out}: Permission denied")
            self.assertEqual(self.read(out), b"old")
            self.assertEqual(os.listdir(self.directory), ["out"])
            os.chmod(out, 0o644)

    def test_a_program_that_runs_is_refused_also_to_root(self):
        program = self.file("program", self.read("/bin/sleep"))
        os.chmod(program, 0o755)
        process = subprocess.Popen([program, "1000"])
        for _, words in self.each_way():
            self.assertEqual(self.fail_with(3, *words(program)), f"{program}: Text file busy")
        process.kill()
        process.wait()
        self.assertEqual(self.read(program), self.read("/bin/sleep"))

    def test_a_directory_that_the_user_may_not_write_is_refused(self):
        for _, words in self.each_way():
            os.makedirs(self.path("closed"), exist_ok=True)
            os.chmod(self.path("closed"), 0o555)
            out = self.path("closed/out")
            self.assertEqual(self.fail_with(3, *words(out), through=UNPRIVILEGED), f"{out}: Permission denied")
            os.chmod(self.path("closed"), 0o755)
            self.assertEqual(os.listdir(self.path("closed")), [])

    def test_what_is_read_is_never_written(self):
        design = self.path("design")
        self.succeed("save", ELABORATED, design)
        before = self.read(design)
        os.link(design, self.path("hard"))
        os.symlink(design, self.path("soft"))
        for name in ("design", "hard", "soft"):
            out = self.path(name)
            for words in (("info", design, "-o", out), ("save", design, out, "--force"), ("checksum", design, "-o", out)):
                self.assertEqual(self.fail_with(3, *words), f"{out}: is read by this run and cannot be its output")
        with open(design) as stream:
            result = subprocess.run([PROGRAM, "info", "-", "-o", design], stdin=stream, capture_output=True)
        self.assertEqual(result.returncode, 3)
        self.assertEqual(self.read(design), before)

    def test_saving_replaces_only_saved_netlists_unless_forced(self):
        for content in ("module b; endmodule\n", "{}", "\x8eNLDB", "\n"):
            out = self.file("b.v", content.encode("latin-1"))
            message = self.fail_with(3, "save", ELABORATED, out)
            self.assertEqual(message, f"{out}: is there and no saved netlist; --force replaces it")
            self.assertEqual(self.read(out), content.encode("latin-1"))
        self.succeed("save", ELABORATED, out, "--force")
        self.succeed("save", ELABORATED, out)
        empty = self.file("empty", "")
        self.succeed("save", ELABORATED, empty)
        self.assertEqual(self.read(empty), self.read(out))

    def test_two_sources_are_not_a_source_and_an_output(self):
        first, second = self.file("a.v", "module a; endmodule\n"), self.file("b.v", "module b; endmodule\n")
        self.fail_with(3, "save", first, second)
        self.assertEqual(self.read(second), b"module b; endmodule\n")

    def limited(self, size):
        return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

    def test_a_limit_on_the_size_of_files_leaves_the_old_file_whole(self):
        # Smaller than what either way writes, and met in its middle.
        for way, words in self.each_way():
            out = self.file("out", b"old")
            result = subprocess.run([PROGRAM, *words(out), "--progress", "never"], cwd=REPOSITORY, capture_output=True,
                                    text=True, preexec_fn=self.limited(len(self.wanted[way]) // 2))
            self.assertEqual((result.returncode, result.stdout), (3, ""))
            self.assertTrue(result.stderr.startswith(f"netlistdb: {out}: "), result.stderr)
            self.assertIn("File too large\n", result.stderr)
            self.assertEqual(self.read(out), b"old")
            self.assertEqual(os.listdir(self.directory), ["out"])

    def test_a_reader_of_a_pipe_that_goes_away_is_an_error(self):
        fifo = self.path("fifo")
        os.mkfifo(fifo)
        for _, words in self.each_way():
            reader = threading.Thread(target=lambda: os.close(os.open(fifo, os.O_RDONLY)))
            reader.start()
            message = self.fail_with(3, *words(fifo))
            reader.join()
            self.assertEqual(message, f"{fifo}: Broken pipe")

    def test_an_interrupted_run_leaves_the_old_file_whole(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for _, words in self.each_way():
                out = self.file("out", b"old")
                fifo = self.path("design.json")
                os.mkfifo(fifo)
                arguments = [word if word != ELABORATED else fifo for word in words(out)]
                process = subprocess.Popen([PROGRAM, *arguments], stderr=subprocess.PIPE, text=True, env=environment(),
                                           preexec_fn=lambda: [signal.signal(each, signal.SIG_DFL) for each in
                                                               (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)])
                with open(fifo, "w") as stream:
                    # The program reads, so the temporary file is there.
                    stream.write("{")
                    stream.flush()
                    process.send_signal(number)
                    _, message = process.communicate()
                self.assertEqual((process.returncode, message), (128 + number, "netlistdb: interrupted\n"))
                os.unlink(fifo)
                self.assertEqual(self.read(out), b"old")
                self.assertEqual(os.listdir(self.directory), ["out"])

    def test_a_signal_that_the_caller_ignores_stays_ignored(self):
        fifo = self.path("design.json")
        os.mkfifo(fifo)
        process = subprocess.Popen([PROGRAM, "tree", fifo], stdout=subprocess.PIPE, text=True,
                                   preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        with open(fifo, "wb") as stream:
            process.send_signal(signal.SIGHUP)
            stream.write(self.read(os.path.join(REPOSITORY, ELABORATED)))
        output, _ = process.communicate()
        self.assertEqual((process.returncode, output), (0, run("tree", ELABORATED).stdout))


if __name__ == "__main__":
    unittest.main()
