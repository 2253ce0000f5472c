"""Parts of the page of benchmarks: machine, versions, tables."""

import datetime
import os
import platform
import subprocess

from contest import shown


def first_line(*command):
    """What a program prints first."""
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()[0]


def field_of(path, name):
    """Value of the first "name : value" line of a file."""
    with open(path, encoding="utf-8") as stream:
        for line in stream:
            key, _, value = line.partition(":")
            if key.strip() == name:
                return value.strip()
    return "unknown"


def package(name):
    return subprocess.run(["dpkg-query", "-W", "-f=${Version}", name], check=True, capture_output=True,
                          text=True).stdout


def machine():
    memory = int(field_of("/proc/meminfo", "MemTotal").split()[0]) / (1 << 20)
    with open("/etc/os-release", encoding="utf-8") as stream:
        names = dict(line.strip().split("=", 1) for line in stream if "=" in line)
    rows = [("date", datetime.date.today().isoformat()),
            ("processor", f"{field_of('/proc/cpuinfo', 'model name')}, {os.cpu_count()} processors visible"),
            ("memory", f"{memory:.1f} GiB"),
            ("system", f"{names['PRETTY_NAME'].strip(chr(34))}, Linux {platform.release()}"),
            ("load when it began", f"{os.getloadavg()[0]:.2f} (1 minute)"),
            ("netlistdb", f"{first_line('netlistdb', '--version')}, release build, {first_line('c++', '--version')}"),
            ("yosys", first_line("yosys", "-V")),
            ("OpenSTA", f"{first_line('sta', '-version')}, package opensta {package('opensta')}"),
            ("grep", first_line("grep", "--version"))]
    return table(("what", "value"), rows)


def table(titles, rows):
    lines = ["| " + " | ".join(titles) + " |", "|" + "---|" * len(titles)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def seconds(value):
    return f"{value:.3f}" if value < 1 else f"{value:.2f}"


def ratio(value):
    return f"{value:.2f}" if value < 10 else f"{value:.0f}"


def contest_table(measured):
    """Medians and peaks, and each divided by those of the first row."""
    first = measured[0]
    return table(("program", "median, s", "peak, MiB", "time / first row", "peak / first row"),
                 [(m.name, seconds(m.seconds), f"{m.peak:.0f}", ratio(m.seconds / first.seconds),
                   ratio(m.peak / first.peak)) for m in measured])


def commands(contestants):
    return "```sh\n" + "\n".join(shown(contestant) for contestant in contestants) + "\n```\n"


def checked(measured):
    """One sentence about the counts that were compared."""
    shared = {}
    for one in measured:
        for what, value in one.counts.items():
            shared.setdefault((what, value), []).append(one.name)
    parts = [f"{what} {value:,} ({'all' if len(names) == len(measured) else ', '.join(names)})"
             for (what, value), names in shared.items()]
    return "Checked in every round: " + "; ".join(parts) + ".\n"
