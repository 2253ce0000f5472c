"""Runs the program and looks at what it answers. Shared by the tests beside it."""

import csv
import json
import os
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["NETLISTDB"]
REPOSITORY = os.path.realpath(os.environ["REPOSITORY"])
ELABORATED = "designs/soc_elaborated.json"
POST_MAP = "designs/soc_postmap.json"
DESIGNS = (ELABORATED, POST_MAP)
SANITIZED = bool(os.environ.get("SANITIZED"))
#: Netlists of every device flow. Sanitizers, which are slow, see one module of each.
FLOW_FILES = "designs/families/" + ("uart_rx_*.json" if SANITIZED else "*_*.json")


def environment(**changes):
    """The test's own environment, without what changes the program's answers; None takes a variable away."""
    result = dict(os.environ)
    for name in ("NO_COLOR", "TMPDIR"):
        result.pop(name, None)
    for name, value in changes.items():
        if value is None:
            result.pop(name, None)
        else:
            result[name] = value
    return result


#: Puts a user in front of whom file modes hold: root is let through by its capabilities.
UNPRIVILEGED = ("setpriv", "--bounding-set=-all", "--inh-caps=-all") if os.geteuid() == 0 else ()


def run(*arguments, stdin=None, env=None, cwd=REPOSITORY, text=True, through=()):
    """Runs the program with source positions and designs relative to the repository; through are words that start it."""
    return subprocess.run(
        [*through, PROGRAM, *arguments],
        input=stdin,
        stdin=subprocess.DEVNULL if stdin is None else None,
        capture_output=True,
        text=text,
        env=env or environment(),
        cwd=cwd,
    )


def rows_of_csv(text):
    return list(csv.DictReader(text.splitlines()))


class ProgramTest(unittest.TestCase):
    """A test case with a directory of its own."""

    maxDiff = 4000

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def path(self, name):
        return os.path.join(self.directory, name)

    def file(self, name, content):
        path = self.path(name)
        with open(path, "wb" if isinstance(content, bytes) else "w") as stream:
            stream.write(content)
        return path

    def succeed(self, *arguments, **options):
        """Standard output of a run that finds something."""
        result = run(*arguments, **options)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def json(self, *arguments):
        return json.loads(self.succeed(*arguments, "--format", "json"))

    def results(self, *arguments):
        return self.json(*arguments)["results"]

    def fail_with(self, exit_code, *arguments, **options):
        """The message of a run that fails: one line that begins with the name of the program."""
        result = run(*arguments, **options)
        self.assertEqual(result.returncode, exit_code, result.stdout + result.stderr)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("netlistdb: "), result.stderr)
        return result.stderr[len("netlistdb: ") : -1]


def bit_module(cells, netnames, ports=None, attributes=None):
    return {"attributes": attributes or {}, "ports": ports or {}, "cells": cells, "netnames": netnames}


def net(*bits, src="a.v:1.1-1.2"):
    return {"hide_name": 0, "bits": list(bits), "attributes": {"src": src} if src else {}}


def netlist(**modules):
    """A Yosys JSON netlist."""
    return json.dumps({"creator": "a test", "modules": modules})


def large_netlist(nets):
    """A netlist of one module whose nets all match."""
    return netlist(top=bit_module({}, {f"some_net_{at}": net(at + 2) for at in range(nets)}))
