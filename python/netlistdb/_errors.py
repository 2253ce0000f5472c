"""What goes wrong."""


class Error(Exception):
    """A design that cannot be read, a question that makes no sense. The message is one line."""


class ClosedError(Error):
    """The design of a handle has been closed."""


class NotFoundError(Error, KeyError):
    """A path that names nothing. The message has the nearest names."""

    # KeyError shows its argument as a program would write it.
    __str__ = Exception.__str__


class NetlistWarning(UserWarning):
    """Something that is worth knowing about a design that was read."""
