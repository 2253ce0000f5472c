"""Runs the elaborated and the post-map form of a design in Icarus Verilog with the same random stimulus, and compares
the waveforms of nets that the program calls the same. Values are taken once a cycle, before the clocks rise."""

import itertools
import json
import os
import re
import subprocess

from netlist_simulation import escaped, extended, ports_of, run

HALF_PERIOD = 100
REPOSITORY = os.environ["REPOSITORY"]
PROGRAM = os.environ["NETLISTDB"]
DESIGNS = os.path.join(REPOSITORY, "designs")
HERE = os.path.dirname(os.path.abspath(__file__))
YOSYS = "/usr/share/yosys"
KVR_MODELS = [os.path.join(DESIGNS, "sim", "kvr_models.v"), os.path.join(HERE, "generic_cells.v")]
MODELS = {
    "ice40": [os.path.join(YOSYS, "ice40", "cells_sim.v")],
    "xilinx": [os.path.join(YOSYS, "xilinx", "cells_sim.v")],
}


class Design:
    def __init__(self, name, elaborated, post_map, clocks, resets, extra=()):
        self.name = name
        self.elaborated = os.path.join(DESIGNS, elaborated)
        self.post_map = os.path.join(DESIGNS, post_map)
        self.clocks = clocks
        self.resets = resets
        self.extra = list(extra)
        self.top = json_top(self.elaborated)


def json_top(netlist):
    with open(netlist) as stream:
        modules = json.load(stream)["modules"]
    return next(name for name, module in modules.items() if module["attributes"].get("top"))


def designs():
    pll = os.path.join(HERE, "analog_pll.v")
    yield Design("soc", "soc_elaborated.json", "soc_postmap.json", ["clk_sys_i", "clk_adc_i", "host_sclk_i", "pll"],
                 {"rst_ni": 0}, [pll])
    for name, resets in (("processor", {"rst_ni": 0}), ("filter", {"rst_i": 1}), ("machines", {"rst_i": 1}),
                         ("buffers", {"rst_i": 1}), ("checksums", {"rst_i": 1}), ("counters", {"rst_ni": 0})):
        for flow in ("postmap", "ice40", "xilinx"):
            post_map = f"map/netlists/{name}_{flow}.json"
            if os.path.exists(os.path.join(DESIGNS, post_map)):
                yield Design(f"{name}, {flow}", f"map/netlists/{name}_elaborated.json", post_map, ["clk_i"], resets)


def verilog_of(netlist, path):
    """Registers and memories start as the netlist says, others as x."""
    run(["yosys", "-q", "-p", f"read_json {netlist}; delete =A:blackbox; delete =A:whitebox; "
         f"techmap -map +/pmux2mux.v; write_verilog -noattr -norename {path}"])


def test_bench(top, ports, clocks, resets, cycles):
    inputs = sorted(name for name, (direction, _, _) in ports.items() if direction == "input")
    data = [name for name in inputs if name not in clocks and name not in resets]
    both = sorted(name for name, (direction, _, _) in ports.items() if direction == "inout")
    text = ["`timescale 1ns / 1ps", "module bench;", "  integer cycle;", "  integer seed = 1;", "  integer tick = 0;"]
    for name, (direction, width, _) in ports.items():
        shape = f"[{width - 1}:0] " if width > 1 else ""
        text.append(f"  {'reg' if direction == 'input' else 'wire'} {shape}{escaped(name)}{'= 0' if direction == 'input' else ''};")
        if direction == "inout":
            text.append(f"  reg {shape}{escaped('drive.' + name)}= 0;")
            text += [f"  assign (weak1, weak0) {escaped(name)}{f'[{bit}]' if width > 1 else ''} = "
                     f"{escaped('drive.' + name)}{f'[{bit}]' if width > 1 else ''};" for bit in range(width)]
    text += [f"  reg {escaped(clock)}= 0;" for clock in clocks if clock not in inputs]
    text.append(f"  {escaped(top)} dut ({', '.join(f'.{escaped(name)}({escaped(name)})' for name in ports)});")
    text.append('  initial begin\n    $dumpfile(`DUMP);\n    $dumpvars(0, bench);')
    text += [f"    {escaped(name)} = {active};" for name, active in resets.items()]
    text.append(f"    for (cycle = 0; cycle < {cycles}; cycle = cycle + 1) begin")
    # A one-bit input keeps still for a while now and then.
    for name in data:
        text.append(f"      if ({ports[name][1]} > 1 || ($random(seed) & 3)) {escaped(name)} = {{16{{$random(seed)}}}};")
    text += [f"      {escaped('drive.' + name)} = {{16{{$random(seed)}}}};" for name in both]
    text += [f"      if (cycle == 12) {escaped(name)} = {1 - active};" for name, active in resets.items()]
    text.append(f"      #{HALF_PERIOD} tick = cycle + 1;")
    for number, clock in enumerate(clocks):
        chance = "" if number == 0 else "if ($random(seed) & 1) "
        text.append(f"      #1 {chance}{escaped(clock)} = 1;")
    text.append(f"      #{HALF_PERIOD};")
    text += [f"      #1 {escaped(clock)} = 0;" for clock in clocks]
    text += [f"      #{HALF_PERIOD};", "    end", "    $finish;", "  end", "endmodule", ""]
    return "\n".join(text)


class Waveforms:
    """Values of every net, cycle by cycle, as two numbers: the cycles in which it was 1, and those in which it was x."""

    def __init__(self, dump, cycles):
        self.cycles = cycles
        codes = {}
        scopes = []
        changes = {}
        last = {}
        pending = {}
        tick_code = None
        cycle = 0
        with open(dump) as stream:
            for line in stream:
                first = line[0]
                if first == "$":
                    words = line.split()
                    if words[0] == "$scope":
                        scopes.append(words[2].removeprefix("\\"))
                    elif words[0] == "$upscope":
                        scopes.pop()
                    elif words[0] == "$var":
                        name = words[4].removeprefix("\\")
                        if scopes[1:] == [] and name == "tick":
                            tick_code = words[3]
                        if scopes[1:2] == ["dut"] and words[1] not in ("parameter", "integer"):
                            shape = re.fullmatch(r"\[(-?\d+)(?::(-?\d+))?\]", words[5]) if words[5] != "$end" else None
                            bounds = shape and (int(shape[1]), int(shape[2] or shape[1]))
                            codes.setdefault(words[3], []).append((scopes[2:], name, bounds, int(words[2])))
                            changes[words[3]] = []
                elif first in "01xz":
                    pending[line[1:-1]] = first
                elif first == "b":
                    value, code = line[1:].split()
                    if code == tick_code:
                        # What the cycle has come to.
                        for each, settled in pending.items():
                            if each in changes and last.get(each) != settled:
                                changes[each].append((cycle, settled))
                                last[each] = settled
                        pending.clear()
                        cycle += 1
                    else:
                        pending[code] = value
        self.names = {}
        for code, keys in codes.items():
            for scope, name, bounds, width in keys:
                for place in range(width):
                    path = "/".join((*scope, name))
                    if bounds is not None:
                        left, right = bounds
                        path += f"[{right + place if left >= right else right - place}]"
                    self.names[path] = (changes[code], place, width)
        self.known = {}

    def of(self, name):
        """The waveform of a net, or None: (ones, unknown)."""
        if name not in self.known:
            found = self.names.get(name)
            self.known[name] = None if found is None else self.bits(*found)
        return self.known[name]

    def bits(self, changes, place, width):
        ones = 0
        unknown = 0
        old = None
        since = 0
        for cycle, value in (*changes, (self.cycles, None)):
            if cycle > since and old != "0":
                span = ((1 << (cycle - since)) - 1) << since
                if old == "1":
                    ones |= span
                else:
                    unknown |= span
            since = cycle
            old = extended(value, width)[-1 - place] if value is not None else None
        return ones, unknown


def without_delays(models, scratch):
    """Look-up tables that take time lose changes when their inputs change one behind the other."""
    paths = []
    for number, model in enumerate(models):
        with open(model) as stream:
            text = stream.read()
        paths.append(os.path.join(scratch, f"model_{number}.v"))
        with open(paths[-1], "w") as stream:
            stream.write(re.sub(r"assign #0\.1 ", "assign ", text))
    return paths


def simulate(netlist, design, models, scratch, cycles):
    source = os.path.join(scratch, "netlist.v")
    verilog_of(netlist, source)
    bench = os.path.join(scratch, "bench.v")
    with open(bench, "w") as stream:
        stream.write(test_bench(design.top, ports_of(design.elaborated, design.top), design.clocks, design.resets, cycles))
    dump = os.path.join(scratch, "dump.vcd")
    compiled = os.path.join(scratch, "bench.vvp")
    run(["iverilog", "-g2012", "-DNO_ICE40_DEFAULT_ASSIGNMENTS", f'-DDUMP="{dump}"', "-s", "bench", "-o", compiled,
         *without_delays(models, scratch), source, bench])
    run(["vvp", "-n", compiled])
    waveforms = Waveforms(dump, cycles)
    os.remove(dump)
    return waveforms


def without_names(netlist, path):
    """The netlist with every name but those of ports replaced by n1, n2, and so on."""
    with open(netlist) as stream:
        document = json.load(stream)
    module = document["modules"][json_top(netlist)]
    numbers = itertools.count(1)
    renamed = {}
    for name, net in module["netnames"].items():
        net["attributes"] = {}
        renamed[name if name in module["ports"] else f"n{next(numbers)}"] = net
    module["netnames"] = renamed
    for cell in module["cells"].values():
        cell["attributes"] = {key: value for key, value in cell["attributes"].items() if key.startswith("KVR_")}
    module["cells"] = {f"n{next(numbers)}": cell for cell in module["cells"].values()}
    with open(path, "w") as stream:
        json.dump(document, stream)


def mapping(elaborated, post_map):
    result = subprocess.run([PROGRAM, "map", elaborated, post_map, "--format", "json"], capture_output=True, text=True,
                            timeout=300, check=False)
    if result.returncode not in (0, 1):
        raise RuntimeError(result.stderr)
    return json.loads(result.stdout)["results"]


def registers_of(netlist, top):
    """Full names of the bits that registers drive, in the words of the program."""
    with open(netlist) as stream:
        modules = json.load(stream)["modules"]
    found = set()

    def walk(module, path):
        driven = set()
        for name, cell in modules[module]["cells"].items():
            if cell["type"] in modules and "blackbox" not in modules[cell["type"]]["attributes"]:
                walk(cell["type"], path + name + "/")
            elif re.match(r"\$(a|al|s)?dff", cell["type"]):
                driven.update(cell["connections"]["Q"])
        for name, net in modules[module]["netnames"].items():
            low = net.get("offset", 0)
            width = len(net["bits"])
            for place, bit in enumerate(net["bits"]):
                if bit in driven:
                    index = low + (width - 1 - place if net.get("upto") else place)
                    single = width == 1 and not low
                    found.add(path + name + ("" if single else f"[{index}]"))

    walk(top, "")
    return found
