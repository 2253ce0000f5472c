"""Plans: text files for version control that say what is to be probed, and find it again in the next build."""

from __future__ import annotations

import os
import warnings
from collections.abc import Iterable
from typing import NamedTuple, Optional, Union

from . import _native
from ._design import Design, Progress, StrPath, _path
from ._errors import NetlistWarning
from ._native import Bus, Net
from ._table import Table


class PlanClock(NamedTuple):
    """A clock that a probe changes with."""

    name: str
    edges: str  #: "rise", "fall", "both" or empty

    def __str__(self) -> str:
        return f"{self.name} {self.edges}".rstrip()


class PlanBit(NamedTuple):
    """One bit of a probe."""

    name: str  #: full name in the RTL
    grade: Optional[str]  #: None without a post-map netlist
    reason: Optional[str]  #: why it is gone
    device: Optional[str]  #: full name of the post-map net that carries the value
    is_inverted: bool  #: that net carries the inverse


class PlanProbe(NamedTuple):
    """A net or bus that is to be probed."""

    name: str
    clocks: list[PlanClock]
    bits: list[PlanBit]


class PlanFinding(NamedTuple):
    """One thing that became of a probe."""

    verdict: str  #: "kept", "renamed", "clock-changed", "split" or "lost"
    text: str


class CheckedBit(NamedTuple):
    """A bit of a plan in another build."""

    was: str
    net: Optional[str]
    device_was: Optional[str]
    device: Optional[str]
    is_inverted: bool
    grade: Optional[str]
    why: str


class Checked(NamedTuple):
    """What became of a probe in another build."""

    name: str
    findings: list[PlanFinding]  #: the gravest first, and at least one
    clocks: list[PlanClock]
    bits: list[CheckedBit]
    width: int  #: of what the name stands for in this build; 0: nothing

    @property
    def verdict(self) -> str:
        """The gravest finding."""
        return self.findings[0].verdict

    @property
    def text(self) -> str:
        """What it was and what it is."""
        return "; ".join(finding.text for finding in self.findings if finding.text)


def read(plan: StrPath) -> Table[PlanProbe]:
    """The probes of a plan."""
    return Table(_native.plan_read(_file(plan)), ("name", "clocks", "bits"))


def add(plan: StrPath, design: Design, signals: Union[str, Net, Bus, Iterable[Union[str, Net, Bus]]],
        progress: Optional[Progress] = None) -> Table[PlanProbe]:
    """Adds nets and buses to a plan, which is made when it is not there; returns what is new.

    With a design that has its device, the plan has the nets of the device that carry them.
    """
    several = [signals] if isinstance(signals, (str, Net, Bus)) else list(signals)
    for signal in several:
        if not isinstance(signal, str):
            design._check_own(signal)
    paths = [signal if isinstance(signal, str) else signal.path for signal in several]
    added, known = _native.plan_add(design.top, _file(plan), paths, progress)
    for path in known:
        warnings.warn(f"{plan}: '{path}' is there already; update() brings it up to date", NetlistWarning, stacklevel=2)
    return Table(added, ("name", "clocks", "bits"))


def check(plan: StrPath, design: Design, progress: Optional[Progress] = None) -> Table[Checked]:
    """Says of each probe what became of it in a design: kept, renamed, clock-changed, split or lost."""
    return Table(_native.plan_check(design.top, _file(plan), False, progress), ("name", "verdict", "text", "clocks"))


def update(plan: StrPath, design: Design, progress: Optional[Progress] = None) -> Table[Checked]:
    """The same, and writes what is found into the plan."""
    return Table(_native.plan_check(design.top, _file(plan), True, progress), ("name", "verdict", "text", "clocks"))


def export(plan: StrPath, to: str, output: StrPath) -> None:
    """Writes the probes of a plan for other tools, as "csv", "json" or "tcl"."""
    _native.plan_export(_file(plan), to, _file(output))


def _file(path: StrPath) -> str:
    text = _path(path)
    if text in ("", "-"):
        raise ValueError(f"{os.fspath(path)!r} is no file")
    return text
