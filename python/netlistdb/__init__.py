"""One navigable view of a synthesized FPGA design: instances, nets, buses, clocks, crossings and probes.

    import netlistdb

    with netlistdb.load("soc.json") as d:
        for net in d.find("**/fifo*", kind="net"):
            print(net.path, net.source)
"""

import atexit as _atexit
import os as _os

from . import _native, _show, plan
from ._design import Design, load
from ._errors import ClosedError, Error, NetlistWarning, NotFoundError
from ._native import Bus, Clock, Instance, Module, Net
from ._records import Capture, Crossing, Finding, Match, Port, Probe, ProbeBit, Source, Target, Why
from ._table import Table

__all__ = ["Bus", "Capture", "Clock", "ClosedError", "Crossing", "Design", "Error", "Finding", "Instance", "Match",
           "Module", "Net", "NetlistWarning", "NotFoundError", "Port", "Probe", "ProbeBit", "Source", "Table", "Target",
           "Why", "load", "plan"]

_show.install()


@_atexit.register
def _wait() -> None:
    """Lets work end that Ctrl-C left to itself: it uses what the end of the process takes away."""
    try:
        _native.wait()
    except KeyboardInterrupt:
        _os._exit(130)
