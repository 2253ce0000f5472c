"""Makes the files of generated designs that benchmarks begin with."""

import os

from measure import run


def json_file(bench, data, shape, size):
    """The Yosys JSON of a generated design in folder data, made by the build in folder bench when it is not there."""
    path = os.path.join(data, f"{shape}_{size}.yosys.json")
    if not os.path.exists(path):
        run([os.path.join(bench, "generator", "netlist_generator"), shape, str(size), "--output", path])
    return path


def saved_file(bench, json, name):
    """The same design as a netlist that the build in folder bench saves; name tells builds apart."""
    path = json.removesuffix("yosys.json") + f"{name}.netlist"
    if not os.path.exists(path):
        run([os.path.join(bench, "bench_drive"), "save", json, path])
    return path
