import os
import stat
import subprocess
import unittest

from program import ELABORATED, PROGRAM, REPOSITORY, ProgramTest, environment, large_netlist, run


class Output(ProgramTest):
    def read(self, path):
        with open(path) as stream:
            return stream.read()

    def test_goes_to_a_file_when_told(self):
        path = self.path("out.json")
        self.assertEqual(self.succeed("tree", ELABORATED, "--format", "json", "-o", path), "")
        self.assertEqual(self.read(path), self.succeed("tree", ELABORATED, "--format", "json"))
        self.assertEqual(os.listdir(self.directory), ["out.json"])

    def test_a_file_is_as_readable_as_any_new_file(self):
        path = self.path("out")
        self.succeed("tree", ELABORATED, "-o", path)
        plain = self.file("plain", "")
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), stat.S_IMODE(os.stat(plain).st_mode))

    def test_replaces_a_file_and_keeps_its_mode_and_links(self):
        path = self.file("out", "old")
        os.chmod(path, 0o640)
        link = self.path("link")
        os.symlink(path, link)
        self.succeed("tree", ELABORATED, "-o", link)
        self.assertTrue(os.path.islink(link))
        self.assertEqual(self.read(path), self.succeed("tree", ELABORATED))
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o640)

    def test_a_failed_run_leaves_the_old_file_alone(self):
        path = self.file("out", "old")
        self.fail_with(3, "tree", self.path("missing.json"), "-o", path)
        self.fail_with(2, "clock-of", ELABORATED, "no_such_net", "-o", path)
        self.assertEqual(self.read(path), "old")
        self.assertEqual(os.listdir(self.directory), ["out"])

    def test_a_place_that_cannot_be_written_is_found_out_before_reading(self):
        for path, fault in (
            (self.path("missing/out"), "No such file or directory"),
            (self.directory, "Is a directory"),
        ):
            self.assertEqual(self.fail_with(3, "tree", self.path("no.json"), "-o", path), f"{path}: {fault}")

    def test_a_full_device_is_an_error(self):
        with open("/dev/full", "w") as full:
            result = subprocess.run([PROGRAM, "tree", ELABORATED], stdout=full, stderr=subprocess.PIPE, text=True,
                                    cwd=REPOSITORY)
            helped = subprocess.run([PROGRAM, "tree", "--help"], stdout=full, stderr=subprocess.PIPE, text=True)
        for failed in (result, helped):
            self.assertEqual(failed.returncode, 3)
            self.assertEqual(failed.stderr, "netlistdb: standard output: No space left on device\n")

    def test_a_standard_error_that_fails_changes_no_exit_code(self):
        for arguments, code in (
            (("info", ELABORATED, "--stats"), 0),
            (("search", ELABORATED, "qqqqqqqq"), 1),
            (("serach",), 2),
            ((), 2),
            (("info", self.path("missing.json")), 3),
        ):
            for stream in ("2>/dev/full", "2>&-", "2</dev/null"):
                with self.subTest(arguments, stream=stream):
                    result = subprocess.run(["/bin/sh", "-c", f'"$0" "$@" {stream}', PROGRAM, *arguments],
                                            stdout=subprocess.DEVNULL, cwd=REPOSITORY)
                    self.assertEqual(result.returncode, code)

    def test_a_reader_that_goes_away_is_no_error(self):
        design = self.file("large.json", large_netlist(20000))
        for form in ("table", "json", "jsonl", "csv"):
            with self.subTest(form):
                process = subprocess.Popen([PROGRAM, "search", design, "", "--format", form], stdout=subprocess.PIPE,
                                           stderr=subprocess.PIPE, text=True, env=environment())
                process.stdout.readline()
                process.stdout.close()
                self.assertEqual(process.stderr.read(), "")
                process.stderr.close()
                self.assertEqual(process.wait(), 0)

    def test_a_closed_standard_output_is_an_error(self):
        result = subprocess.run(["/bin/sh", "-c", '"$0" tree "$1" >&-', PROGRAM, ELABORATED], stderr=subprocess.PIPE,
                                text=True, cwd=REPOSITORY)
        self.assertEqual((result.returncode, result.stderr), (3, "netlistdb: standard output: Bad file descriptor\n"))

    def test_a_dash_is_standard_output(self):
        self.assertEqual(self.succeed("tree", ELABORATED, "-o", "-"), self.succeed("tree", ELABORATED))
        self.assertEqual(run("tree", ELABORATED, "-o", "-").returncode, 0)


if __name__ == "__main__":
    unittest.main()
