"""How handles show themselves: at the prompt, in notebooks, and to tab completion."""

from __future__ import annotations

import html
from typing import Any, Union

from ._errors import ClosedError
from ._native import Bus, Clock, Instance, Module, Net, Search
from ._table import LEFT, Table, cell

#: Children of one instance that a tree shows, and its levels.
MOST_CHILDREN = 50
#: Children of one instance among which a tree looks for those with something in them.
MOST_LOOKED_AT = 5000
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
        rows = "".join(f"<tr><th {LEFT}>{cell(name)}</th><td {LEFT}>{cell(getattr(handle, name))}</td></tr>"
                       for name in names)
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
    count = len(instance.children)
    if count == 0 or level == MOST_LEVELS:
        return f"<div style='margin-left:2em'>{name}{' …' if count > 0 else ''}</div>"
    # What has something in it comes first: that is the hierarchy, and most of the rest are cells without a name.
    children = instance.children[:MOST_LOOKED_AT]
    cells = [child for child in children if len(child.children) == 0]
    inner = [child for child in children if len(child.children) > 0]
    shown = "".join(_level(child, level + 1) for child in inner[:MOST_CHILDREN])
    hidden = count - len(cells) - min(len(inner), MOST_CHILDREN)
    more = f"<div style='margin-left:2em'>{hidden} more</div>" if hidden > 0 else ""
    return _opening(name, shown + more + _cells(cells, level + 1), level == 0)


def _cells(cells: list[Instance], level: int) -> str:
    shown = "".join(_level(child, level) for child in cells[:MOST_CHILDREN])
    more = f"<div style='margin-left:2em'>{len(cells) - MOST_CHILDREN} more</div>" if len(cells) > MOST_CHILDREN else ""
    return _opening(f"{len(cells)} cell{'' if len(cells) == 1 else 's'}", shown + more, False) if cells else ""


def _opening(title: str, content: str, is_open: bool) -> str:
    state = " open" if is_open else ""
    return f"<details{state} style='margin-left:1em'><summary>{title}</summary>{content}</details>"


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
