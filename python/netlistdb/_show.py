"""How handles show themselves: at the prompt, in notebooks, and to tab completion."""

from __future__ import annotations

import html
from typing import Any, Union

from ._errors import ClosedError
from ._native import Bus, Clock, Instance, Module, Net, Search
from ._table import Table, cell

#: Children of one instance that a tree shows, and its levels.
MOST_CHILDREN = 50
MOST_LEVELS = 3

Handle = Union[Instance, Net, Bus, Clock, Module]
FOUND_COLUMNS = ("kind", "path", "width", "source")


def represent(handle: Handle) -> str:
    """What the prompt shows of a handle."""
    kind = type(handle).__name__
    try:
        if isinstance(handle, Instance):
            return f"<Instance {handle.path or '(top)'}: {handle.module.name}>"
        if isinstance(handle, Net):
            return f"<Net {handle.path}>"
        if isinstance(handle, Bus):
            return f"<Bus {handle.path}[{handle.left}:{handle.right}]>"
        return f"<{kind} {handle.name}>"
    except ClosedError:
        return f"<{kind} of a closed design>"


def facts(handle: Handle, names: tuple[str, ...]) -> str:
    """A table of a handle's properties, one a row."""
    try:
        rows = "".join(f"<tr><th>{cell(name)}</th><td>{cell(getattr(handle, name))}</td></tr>" for name in names)
    except ClosedError:
        return f"<p>{html.escape(represent(handle))}</p>"
    return f"<table>{rows}</table>"


def tree(instance: Instance) -> str:
    """An instance and what is in it, as lists that open."""
    try:
        return _level(instance, 0)
    except ClosedError:
        return f"<p>{html.escape(represent(instance))}</p>"


def _level(instance: Instance, level: int) -> str:
    name = f"{cell(instance.name or '(top)')} <i>{cell(instance.module.name)}</i>"
    children = instance.children
    if len(children) == 0 or level == MOST_LEVELS:
        return f"<div>{name}{' …' if len(children) > 0 else ''}</div>"
    shown = "".join(_level(child, level + 1) for child in children[:MOST_CHILDREN])
    more = f"<div>{len(children) - MOST_CHILDREN} more</div>" if len(children) > MOST_CHILDREN else ""
    state = " open" if level == 0 else ""
    return f"<details{state} style='margin-left:1em'><summary>{name}</summary>{shown}{more}</details>"


def names_in(instance: Instance) -> list[str]:
    """What may stand in the brackets behind an instance."""
    return ([child.name for child in instance.children] + [bus.name for bus in instance.buses] +
            [net.name for net in instance.nets])


class Found:
    """A row of a table of what a search has found."""

    def __init__(self, item: Any) -> None:
        self.kind = type(item).__name__.lower()
        self.path = item.path
        self.width = getattr(item, "width", None)
        self.source = item.source


def install() -> None:
    """Gives the handles these members: how things look is written here, what they are is not."""
    # No clocks: following them may take long, and nobody asked.
    columns = {Instance: (), Net: ("path", "aliases", "width", "source"), Bus: ("path", "aliases", "width", "source"),
               Module: ("name", "library", "source"),
               Clock: ("name", "root", "edges", "registers", "parents", "aliases")}
    for kind, names in columns.items():
        kind.__repr__ = represent  # type: ignore
        if kind is not Instance:
            kind._repr_html_ = lambda self, names=names: facts(self, names)  # type: ignore
    Instance._repr_html_ = tree  # type: ignore
    Instance._ipython_key_completions_ = names_in  # type: ignore
    Search.table = lambda self: Table((Found(item) for item in self), FOUND_COLUMNS)  # type: ignore
