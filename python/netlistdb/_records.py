"""What the package returns besides handles: plain values."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Union

from ._native import Bus, Clock, Net


class Source(NamedTuple):
    """A place in the source text."""

    file: str
    line: int

    def __str__(self) -> str:
        return f"{self.file}:{self.line}"


class Port(NamedTuple):
    """A port of a module, one bit of it."""

    name: str
    direction: str  #: "input", "output" or "other"
    width: int


class Capture(NamedTuple):
    """A clock whose registers a net reaches."""

    clock: Clock
    roles: list[str]  #: how they use it: "data", "enable", "set-reset"


class Why(NamedTuple):
    """What proves which clocks reach a net; as text, an indented picture."""

    picture: str
    chains: dict[str, Any]  #: "clocks", "networks" and "ends", as `netlistdb clock-of --why --format json` has them

    def __str__(self) -> str:
        return self.picture

    def _repr_pretty_(self, printer: Any, cycle: bool) -> None:
        printer.text(self.picture)


class Crossing(NamedTuple):
    """Paths from registers of one clock to a register of another: of one bit, or of the bits of a vector alike."""

    severity: str  #: "safe", "warning" or "unsafe"
    kind: str  #: the class, "synchronized-bit" and so on
    launch: Optional[Clock]  #: None: a port of the top or a black box
    capture: Clock
    launched: str  #: the register where it begins; of vectors, the bits in short
    captured: str  #: the register that captures it
    launched_net: Optional[Net]  #: output of the first of the registers
    captured_net: Optional[Net]
    launched_cell: Optional[str]
    captured_cell: Optional[str]
    pin: str  #: where it enters the cell
    bits: int
    cells: int  #: on the shortest way
    stages: int  #: flip-flops of the synchronizer; 0: none
    is_kept: bool  #: an attribute keeps them together
    has_logic: bool
    has_several_sources: bool
    control: Optional[str]  #: the synchronized net that opens the way
    meets: Optional[str]  #: where it meets another synchronized bit
    waived: Optional[str]  #: the reason, when somebody took it for good
    source: Optional[Source]


class Finding(NamedTuple):
    """A reason against probing some bits of a net or bus."""

    reason: str  #: "constant", "absorbed", and so on
    bars: bool  #: these bits may not be probed; otherwise a warning
    bits: list[int]  #: their places, counted from the left
    sentence: str
    evidence: str
    instead: Optional[str]  #: full name of a net to probe in its place


class ProbeBit(NamedTuple):
    """One bit of a net or bus, as an analyser sees it."""

    ok: bool
    clock: Optional[Clock]  #: to sample it with
    edges: str  #: of that clock, on which the bit changes
    target: Optional[Net]  #: the net of the device to sample, when both forms are loaded
    is_inverted: bool  #: that net carries the inverse


class Probe(NamedTuple):
    """What there is to say about probing one net or bus."""

    item: Union[Net, Bus, None]
    verdict: str  #: "ok", "warning", "partly" or "no"
    findings: list[Finding]
    clock: Optional[Clock]  #: that most of its bits are sampled with
    bits: list[ProbeBit]  #: from the left

    @property
    def ok(self) -> bool:
        """Whether all of it may be probed."""
        return self.verdict in ("ok", "warning")

    @property
    def reasons(self) -> list[str]:
        """Why not, or what to think of."""
        return list(dict.fromkeys(finding.reason for finding in self.findings))


class Target(NamedTuple):
    """A net of the other form that carries the value of a net."""

    net: Net
    is_inverted: bool


class Match(NamedTuple):
    """What a net is in the other form."""

    grade: str  #: "exact", "register", "structural", "merged", "gone" or "unknown"
    reason: Optional[str]  #: why it is gone
    targets: list[Target]  #: those that fit best first
    cell: Optional[str]  #: path of the cell that absorbed it
    evidence: str

    @property
    def net(self) -> Optional[Net]:
        """The net that fits best, or None."""
        return self.targets[0].net if self.targets else None
