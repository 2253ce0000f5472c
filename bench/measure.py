"""Runs commands side by side and measures whole processes."""

import os
import statistics
import subprocess
import time
from dataclasses import dataclass, field


@dataclass
class Run:
    """One finished process."""

    wall: float  # seconds
    cpu: float  # seconds, user and system
    peak: float  # MiB, largest resident size
    values: dict = field(default_factory=dict)  # what the process printed as "name number" lines
    text: str = ""  # all that the process printed


def run(command, shell=False, stdin=None):
    """Runs one command to its end, with an open file as input; a failing one ends the program with its output."""
    read_end, write_end = os.pipe()
    start = time.monotonic()
    process = subprocess.Popen(command, shell=shell, stdin=stdin, stdout=write_end, stderr=subprocess.STDOUT)
    os.close(write_end)
    with os.fdopen(read_end, errors="replace") as stream:
        output = stream.read()
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        text = command if shell else " ".join(command)
        raise SystemExit(f"{text}: exit {process.returncode}\n{output[-2000:]}")
    values = {}
    for line in output.splitlines():
        words = line.split()
        if len(words) == 2:
            try:
                values[words[0]] = float(words[1])
            except ValueError:
                pass
    return Run(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024, values, output)


def alternate(commands, rounds, measure=run):
    """Runs each of several commands once a round, in turn, and answers the runs of each by name; measure runs one."""
    runs = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            runs[name].append(measure(command))
    return runs


def median(runs, value):
    """Median over runs of an attribute, or of a printed value."""
    return statistics.median(getattr(r, value) if hasattr(r, value) else r.values[value] for r in runs)


def peak(runs):
    """Largest peak over runs, in MiB."""
    return max(r.peak for r in runs)
