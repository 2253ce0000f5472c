"""What the elaborated model of a cell says about its pins: clocks, edges, clocked outputs, enables, sets, resets."""

import re

import models

FLIP_FLOPS = {"$dff", "$dffe", "$adff", "$adffe", "$aldff", "$aldffe", "$sdff", "$sdffe", "$sdffce", "$dffsr",
              "$dffsre"}
LATCHES = {"$dlatch", "$adlatch", "$dlatchsr"}
INVERTERS = {"$not", "$logic_not"}
CLOCK_NAME = re.compile(r"cl(oc)?k|^C$|^CK$|^G$", re.I)
# A model tells of such cells how they simulate, not which of their registers are in use.
UNCLOCKED = {"io", "lut", "carry", "constant", "logic", "pll", "oscillator", "clock-buffer", "clock-gate", "clock-mux",
             "clock-divider"}


def number(text):
    return int(text, 2) if set(text) <= {"0", "1"} and text else 0


class Body:
    """The model of a cell as a graph of bits."""

    def __init__(self, module):
        self.ports = module["ports"]
        self.pin_of = {}
        for name, port in self.ports.items():
            if port["direction"] != "output":
                for bit in port["bits"]:
                    self.pin_of.setdefault(bit, name)
        self.cells = [cell for cell in module["cells"].values()]
        self.driver = {}
        for cell in self.cells:
            for port, bits in cell["connections"].items():
                if cell["port_directions"][port] == "output":
                    for place, bit in enumerate(bits):
                        self.driver[bit] = (cell, port, place)

    def inputs_of(self, cell, names=None):
        for port, bits in cell["connections"].items():
            if cell["port_directions"][port] != "output" and (names is None or port in names):
                yield from bits

    def fan_in(self, bits):
        """(pins, clocked cells with the place of the bit) that the bits depend on without a clock between."""
        pins, registers, seen, line = [], [], set(), [bit for bit in bits if isinstance(bit, int)]
        while line:
            bit = line.pop(0)
            if bit in seen or not isinstance(bit, int):
                continue
            seen.add(bit)
            if bit in self.pin_of:
                if self.pin_of[bit] not in pins:
                    pins.append(self.pin_of[bit])
                continue
            if bit not in self.driver:
                continue
            cell, _, place = self.driver[bit]
            if cell["type"] in FLIP_FLOPS:
                registers.append((cell, cell["connections"]["CLK"][0], cell["parameters"]["CLK_POLARITY"]))
            elif cell["type"] == "$mem_v2":
                port = place // number(cell["parameters"]["WIDTH"])
                enables, edges = cell["parameters"]["RD_CLK_ENABLE"], cell["parameters"]["RD_CLK_POLARITY"]
                if enables[-1 - port] == "1":
                    registers.append((cell, cell["connections"]["RD_CLK"][port], edges[-1 - port]))
                else:
                    width = number(cell["parameters"]["ABITS"])
                    line += cell["connections"]["RD_ADDR"][port * width:(port + 1) * width]
            else:
                line += list(self.inputs_of(cell))
        return pins, registers

    def clock(self, bit, polarity):
        """(pin, edge) behind the clock of a register."""
        rising = polarity[-1] == "1"
        while bit in self.driver and self.driver[bit][0]["type"] in INVERTERS:
            rising = not rising
            bit = self.driver[bit][0]["connections"]["A"][self.driver[bit][2]]
        pins = [self.pin_of[bit]] if bit in self.pin_of else self.fan_in([bit])[0]
        named = [pin for pin in pins if CLOCK_NAME.search(pin)]
        pin = (named or pins or [None])[0]
        return pin, "rise" if rising else "fall"

    def writes(self):
        for cell in self.cells:
            if cell["type"] == "$mem_v2":
                for port, bit in enumerate(cell["connections"]["WR_CLK"]):
                    if cell["parameters"]["WR_CLK_ENABLE"][-1 - port] == "1":
                        yield bit, cell["parameters"]["WR_CLK_POLARITY"][-1 - port]
            elif cell["type"] in FLIP_FLOPS:
                yield cell["connections"]["CLK"][0], cell["parameters"]["CLK_POLARITY"]

    def controls(self):
        """Pins that enable, set and reset the registers."""
        roles = {"enable": [], "set": [], "reset": []}

        def add(role, bits, most=1):
            pins = self.fan_in(bits)[0]
            roles[role] += [pin for pin in pins if pin not in roles[role]] if len(pins) <= most else []

        for cell in self.cells:
            if cell["type"] not in FLIP_FLOPS | LATCHES:
                continue
            for port, role in (("EN", "enable"), ("SET", "set"), ("CLR", "reset")):
                if port in cell["connections"]:
                    add(role, cell["connections"][port], 2 if cell["type"] in LATCHES else 1)
            for port, value in (("ARST", "ARST_VALUE"), ("SRST", "SRST_VALUE")):
                if port in cell["connections"]:
                    add("set" if "1" in cell["parameters"][value] else "reset", cell["connections"][port])
        return roles

    def has(self, types):
        return any(cell["type"] in types for cell in self.cells)


def pin_list(names, module):
    """The names in one text; `#` stands for a number when every port of that pattern is among them."""
    shown = []
    for name in names:
        pattern = re.sub(r"\d+$", "#", name)
        like = [port for port in module["ports"] if re.sub(r"\d+$", "#", port) == pattern]
        text = pattern if len(like) > 1 and set(like) <= set(names) else name
        if text not in shown:
            shown.append(text)
    return " ".join(shown)


def inversion_of(module, pin):
    """Parameter that inverts @p pin, from the attributes of the model."""
    attributes = module["netnames"].get(pin, {}).get("attributes", {})
    return attributes.get("invertible_pin")


def sinks(module):
    return [name for name, port in module["ports"].items() if port["direction"] != "output" and
            module["netnames"].get(name, {}).get("attributes", {}).get("clkbuf_sink")]


def outputs(module):
    return [name for name, port in module["ports"].items() if port["direction"] == "output"]


def clock_entry(module, pin, edge, clocked):
    entry = {"pin": pin, "edge": edge, "outputs": pin_list(clocked, module)}
    inverter = inversion_of(module, pin)
    if inverter:
        entry["inverted"] = {inverter: 1}
    return entry


def from_body(name, module, body):
    """An output of a memory that its address reaches without a clock reads at once; what it reads was written by a
    clock, but nothing says when."""
    graph = Body(body)
    named = models.kind_by_name(name)
    clocks, order, reads = {}, [], []
    for port in outputs(body):
        pins, registers = graph.fan_in(body["ports"][port]["bits"])
        if named == "memory" and pins:
            reads += [pin for pin in pins if pin not in reads]
            continue
        for _, bit, polarity in registers:
            pin, edge = graph.clock(bit, polarity)
            if pin is None:
                continue
            if pin not in clocks:
                clocks[pin] = ([], set())
                order.append(pin)
            clocks[pin][1].add(edge)
            if port not in clocks[pin][0]:
                clocks[pin][0].append(port)
    for bit, polarity in graph.writes():
        pin, edge = graph.clock(bit, polarity)
        if pin is not None and pin not in clocks:
            clocks[pin] = ([], {edge})
            order.append(pin)
    kind = named
    if graph.has({"$mem_v2"}) and kind not in ("shift-register", "dsp"):
        kind = "memory"
    elif clocks and kind in (None, "logic", "latch"):
        kind = "flip-flop" if len(outputs(body)) <= 2 else "hard-block"
    elif not clocks and graph.has(LATCHES):
        kind = "latch"
    cell = {"kind": kind or "logic"}
    if clocks and cell["kind"] not in UNCLOCKED:
        cell["clocks"] = [clock_entry(module, pin, "both" if len(clocks[pin][1]) > 1 else min(clocks[pin][1]),
                                      clocks[pin][0]) for pin in order]
        if reads:
            cell["read"] = pin_list(reads, module)
    if cell["kind"] in ("flip-flop", "latch"):
        cell.update({role: pin_list(pins, module) for role, pins in graph.controls().items() if pins})
    return cell


def from_ports(name, module):
    """What the ports alone say: clocks of a memory share the letter of their side with the outputs."""
    kind = models.kind_by_name(name) or "hard-block"
    cell = {"kind": kind}
    clocks = sinks(module)
    if kind in UNCLOCKED or not clocks:
        return cell
    entries = []
    for pin in clocks:
        clocked = []
        if kind in ("memory", "dsp", "ddr", "shift-register"):
            side = re.fullmatch(r"CLK(?:ARD|BWR)?(?:CLK)?([AB])?|CLK(A|B)(?:RD|WR)CLK", pin)
            letter = (side.group(1) or side.group(2)) if side else None
            clocked = [out for out in outputs(module) if len(clocks) == 1 or
                       (letter and re.match(r"DO(UT|P|PADOP|ADO)?_?" + letter, out))]
        entries.append(clock_entry(module, pin, "rise", clocked))
    cell["clocks"] = entries
    return cell


def buffer_pins(module):
    """Input and output of a cell that hands one of its inputs on as a clock."""
    attributes = {name: module["netnames"].get(name, {}).get("attributes", {}) for name in module["ports"]}
    ins = [name for name, port in module["ports"].items() if port["direction"] != "output"]
    data = [name for name in ins if not re.search(r"CE|EN|CLR|RST|GATE|STOP|SEL|^S$|DYN", name, re.I)]
    outs = [name for name in outputs(module) if attributes[name].get("clkbuf_driver")] or outputs(module)
    return (data or ins or [None])[0], outs


def describe(library, name, module, body):
    has_body = body is not None and body["cells"]
    cell = from_body(name, module, body) if has_body else from_ports(name, module)
    if cell["kind"] in ("clock-buffer", "clock-gate"):
        source, outs = buffer_pins(module)
        if source:
            cell["input"] = source
            cell["outputs"] = pin_list(outs, module)
    cell["by"] = "model" if has_body else "ports"
    return cell
