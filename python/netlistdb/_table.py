"""Lists that notebooks show as tables."""

from __future__ import annotations

import html
from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING, Any, TypeVar

from ._native import Bus, Clock, Instance, Module, Net

if TYPE_CHECKING:
    import pandas

Row = TypeVar("Row")

CLOCK_COLUMNS = ("name", "root", "edges", "registers", "parents", "aliases")
#: Rows that a notebook shows; a table says how many there are besides.
MOST_ROWS = 100
#: Notebooks have texts at the right of their columns otherwise.
LEFT = "style='text-align:left'"


class Table(list[Row]):
    """A list with columns: attributes of its elements."""

    def __init__(self, rows: Iterable[Row] = (), columns: Sequence[str] = ()) -> None:
        super().__init__(rows)
        self.columns = tuple(columns)

    def to_pandas(self) -> pandas.DataFrame:
        """The same as a DataFrame, handles by their names. Needs pandas."""
        return to_pandas(self, self.columns)

    def _repr_html_(self) -> str:
        return to_html(self, self.columns)


def plain(value: object) -> object:
    """A value as a table has it: of a handle the name, of several the names."""
    if isinstance(value, Clock):
        return value.name
    if isinstance(value, (Instance, Net, Bus)):
        return value.path
    if isinstance(value, Module):
        return value.name
    if isinstance(value, (list, tuple)) and not hasattr(value, "_fields"):
        return ", ".join(str(plain(each)) for each in value)
    return str(value) if isinstance(value, tuple) else value


def to_pandas(rows: Iterable[object], columns: Sequence[str]) -> pandas.DataFrame:
    """Rows as a DataFrame."""
    try:
        import pandas
    except ImportError as error:
        raise ImportError("to_pandas() needs pandas (Debian package python3-pandas)") from error
    return pandas.DataFrame([[plain(getattr(row, column)) for column in columns] for row in rows],
                            columns=list(columns))


def cell(value: object) -> str:
    """A value as HTML. Names hold any character, surrogates for bytes that are no UTF-8 as well."""
    shown = "" if value is None else str(plain(value))
    return html.escape(shown.encode("utf-8", "replace").decode("utf-8"))


def _field(value: object) -> str:
    is_number = isinstance(value, (int, float)) and not isinstance(value, bool)
    return f"<td{'' if is_number else ' ' + LEFT}>{cell(value)}</td>"


def to_html(rows: Sequence[Any], columns: Sequence[str]) -> str:
    """The first rows as an HTML table."""
    head = "".join(f"<th {LEFT}>{cell(column)}</th>" for column in columns)
    body = "".join("<tr>" + "".join(_field(getattr(row, column)) for column in columns) + "</tr>"
                   for row in rows[:MOST_ROWS])
    more = f"<p>{len(rows) - MOST_ROWS} more</p>" if len(rows) > MOST_ROWS else ""
    return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>{more}"
