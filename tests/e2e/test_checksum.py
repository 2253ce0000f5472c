import hashlib
import os
import subprocess
import unittest

from program import ELABORATED, REPOSITORY, ProgramTest, rows_of_csv


class Checksum(ProgramTest):
    def test_is_the_sha_256_of_the_bytes(self):
        for size in (0, 1, 4095, 4096, 4097, 1000000):
            content = os.urandom(size)
            path = self.file("data", content)
            self.assertEqual(self.results("checksum", path), [{"file": path, "sha256": hashlib.sha256(content).hexdigest()}])

    def test_sha256sum_can_check_it(self):
        table = self.succeed("checksum", ELABORATED, "designs/README.md")
        check = subprocess.run(["sha256sum", "--check", "-"], input=table, text=True, cwd=REPOSITORY, capture_output=True)
        self.assertEqual(check.returncode, 0, check.stderr)

    def test_takes_several_files(self):
        rows = rows_of_csv(self.succeed("checksum", ELABORATED, ELABORATED, "--format", "csv"))
        self.assertEqual(len(rows), 2)
        self.assertEqual(rows[0], rows[1])

    def test_a_file_that_cannot_be_read_is_an_error(self):
        missing = self.path("missing")
        self.assertEqual(self.fail_with(3, "checksum", missing), f"{missing}: No such file or directory")
        self.assertEqual(self.fail_with(3, "checksum", self.directory), f"{self.directory}: Is a directory")
        self.assertIn("no file given", self.fail_with(2, "checksum"))


if __name__ == "__main__":
    unittest.main()
