"""Loading designs, and what is asked of a design as a whole."""

from __future__ import annotations

import os
import warnings
from collections.abc import Callable, Iterable, Iterator, Sequence
from types import TracebackType
from typing import Optional, Union

from . import _native
from ._errors import NetlistWarning, NotFoundError
from ._native import Bus, Clock, Instance, Net, Search
from ._records import Crossing, Match, Probe
from ._table import CLOCK_COLUMNS, Table, cell

StrPath = Union[str, "os.PathLike[str]"]
Item = Union[Instance, Net, Bus]
#: Called with what is being done, how much of it, and of how much; the last are 0 where that is not known.
Progress = Callable[[str, int, int], object]

KINDS = ("instance", "net", "bus")


def _paths(paths: Union[None, StrPath, Iterable[StrPath]]) -> list[str]:
    if paths is None:
        return []
    several = [paths] if isinstance(paths, (str, bytes, os.PathLike)) else paths
    return [_path(path) for path in several]


def _path(path: StrPath) -> str:
    text = os.fsdecode(path)
    if "\0" in text:
        raise ValueError(f"a file name holds a null character: {text!r}")
    return text


class Design:
    """A design, one form of it, until it is closed.

    A context manager: ``with netlistdb.load("soc.json") as d:`` closes it at the end. ``d[path]`` is the instance, net
    or bus of that full name.
    """

    def __init__(self, loaded: _native.Loaded, is_device: bool = False) -> None:
        self._loaded = loaded
        self._is_device = is_device

    @property
    def name(self) -> str:
        """The name of its file."""
        return self._loaded.name(self._is_device)

    @property
    def form(self) -> str:
        """"elaborated" or "post-map"."""
        return self._loaded.form(self._is_device)

    @property
    def top(self) -> Instance:
        """The top of the instance tree."""
        return self._loaded.top(self._is_device)

    @property
    def device(self) -> Optional[Design]:
        """The post-map form beside the elaborated one, when both were loaded. Closing one closes both."""
        return Design(self._loaded, True) if self._loaded.has_device and not self._is_device else None

    @property
    def notes(self) -> list[str]:
        """What is worth knowing about how it was read."""
        return self._loaded.notes

    @property
    def is_closed(self) -> bool:
        """Whether it has been closed."""
        return self._loaded.is_closed

    def close(self) -> None:
        """Frees the design. Every handle into it raises ClosedError from then on."""
        self._loaded.close()

    def __enter__(self) -> Design:
        return self

    def __exit__(self, kind: Optional[type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Design) and (self._loaded, self._is_device) == (other._loaded, other._is_device)

    def __hash__(self) -> int:
        return hash((self._loaded, self._is_device))

    def __repr__(self) -> str:
        if self.is_closed:
            return "<Design, closed>"
        return f"<Design {self.name}: {self.top.module.name}, {self.form}>"

    def __getitem__(self, path: str) -> Union[Item, list[Net]]:
        return self.top[path]

    def _repr_html_(self) -> str:
        return f"<p>{cell(repr(self))}</p>" if self.is_closed else self.top._repr_html_()

    def _ipython_key_completions_(self) -> list[str]:
        return self.top._ipython_key_completions_()

    def walk(self) -> Iterator[Instance]:
        """Goes through all instances, the top first and each before those in it."""
        return self.top.walk()

    def find(self, pattern: str, kind: Union[None, str, Iterable[str]] = None, *, regex: bool = False,
             plain: bool = False, ignore_case: bool = False, limit: Optional[int] = None,
             below: Union[None, str, Instance] = None) -> Search:
        """Finds instances, nets and buses by their full names, also by other names than their own, one by one.

        The pattern is a wildcard that matches the whole name: ``*`` and ``?`` stand for text within one level, ``**``
        for text across levels. With regex or plain, a regular expression or a text that lies anywhere in the name. kind is
        one or several of "instance", "net", "bus"; below is where the search begins. Closing the iterator ends it.
        """
        if regex and plain:
            raise ValueError("regex and plain exclude each other")
        kinds = KINDS if kind is None else (kind,) if isinstance(kind, str) else tuple(kind)
        start = self._instance(below)
        return _native.search(start, pattern, "regex" if regex else "plain" if plain else "glob", ignore_case,
                              list(kinds), limit)

    @property
    def clocks(self) -> Table[Clock]:
        """All clocks, in byte order of their names. Following them takes long the first time."""
        return Table(_native.clocks(self.top, None), CLOCK_COLUMNS)

    def clock(self, name: str) -> Clock:
        """The clock of that name, which may be one of its other names."""
        for clock in self.clocks:
            if name == clock.name or name in clock.aliases:
                return clock
        raise NotFoundError(f"{self.name}: no clock '{name}'")

    def crossings(self, rules: StrPath = "", *, by_bit: bool = False,
                  progress: Optional[Progress] = None) -> Table[Crossing]:
        """All paths from registers of one clock to registers of another, by class.

        :param rules: a file of clock groups and waivers; what it has in vain becomes a warning
        :param by_bit: one for each bit, where bits of one vector that are alike else stand together
        """
        rows, unused = _native.crossings(self.top, _path(rules), by_bit, progress)
        for line in unused:
            warnings.warn(line, NetlistWarning, stacklevel=2)
        return Table(rows, Crossing._fields)

    def probes(self, *, all: bool = False, below: Union[None, str, Instance] = None,
               progress: Optional[Progress] = None) -> Iterator[Probe]:
        """Goes through what the user declared, and says of each net and bus whether it may be probed.

        :param all: also what no user declared
        :param below: the instance where to begin
        """
        return _native.probes(self._instance(below), all, progress)

    def map(self, signal: Union[str, Net, Bus], progress: Optional[Progress] = None) -> Union[Match, list[Match]]:
        """What a net is in the other form; of a bus, what each of its bits is, from the left.

        :param signal: a net or bus of either form, or the full name of one in this form
        """
        found = self[signal] if isinstance(signal, str) else signal
        self._check_own(found, either_form=True)
        if isinstance(found, Net):
            return _native.match(found, progress)
        if isinstance(found, Instance):
            raise TypeError(f"'{found.path}' is an instance, not a net")
        return [_native.match(net, progress) for net in (found.bits if isinstance(found, Bus) else found)]

    def _instance(self, below: Union[None, str, Instance]) -> Instance:
        if below is None:
            return self.top
        found = self[below] if isinstance(below, str) else below
        if not isinstance(found, Instance):
            raise TypeError(f"{below!r} is no instance")
        self._check_own(found)
        return found

    def _check_own(self, found: Union[Item, list[Net]], either_form: bool = False) -> None:
        handles: Sequence[Item] = found if isinstance(found, list) else (found,)
        for handle in handles:
            if not self._loaded.holds(handle, None if either_form else self._is_device):
                raise ValueError(f"{handle!r} is not part of {self!r}")


def load(*sources: StrPath, elaborated: Union[None, StrPath, Iterable[StrPath]] = None,
         post_map: Optional[StrPath] = None, top: str = "", form: Optional[str] = None,
         cells: Union[None, StrPath, Iterable[StrPath]] = None, source_root: StrPath = "",
         include_dirs: Union[None, StrPath, Iterable[StrPath]] = None, defines: Iterable[str] = (),
         file_lists: Union[None, StrPath, Iterable[StrPath]] = None, max_instances: int = 50_000_000,
         progress: Optional[Progress] = None) -> Design:
    """Loads a design: a Yosys JSON netlist, a saved netlist (either may be compressed by gzip), or Verilog sources.

    With elaborated and post_map, both forms of one design: the Design is the elaborated form, its ``device`` the other.

    :param top: the top module; found out from the netlist when not given
    :param form: "elaborated" or "post-map" of a single netlist; found out from it when not given
    :param cells: tables of further device cells, or Verilog models
    :param source_root: where relative source paths in the netlist begin; the working directory when not given
    :param include_dirs: where included Verilog files are looked for
    :param defines: Verilog macros, NAME or NAME=VALUE
    :param file_lists: files that name Verilog sources and options
    :param max_instances: a design that unfolds to more is refused
    :param progress: called with what is being done, how much of it, and of how much
    :raises Error: with a message that names the file and the fault
    """
    if post_map is not None and (form is not None or (not sources and elaborated is None)):
        raise ValueError("post_map goes with elaborated, and without form")
    if sources and elaborated is not None:
        raise ValueError("the design is given twice")
    if not isinstance(top, str):
        raise TypeError("top is no str")
    files = _paths(sources) if sources else _paths(elaborated)
    loaded = _native.load(files, "" if post_map is None else _path(post_map), form, top, _paths(cells),
                          _path(source_root), _paths(include_dirs), list(defines), _paths(file_lists), max_instances,
                          progress)
    for note in loaded.notes:
        warnings.warn(note, NetlistWarning, stacklevel=2)
    return Design(loaded)
