"""Which clock drives each register output of a netlist, from its JSON alone.

What the cells are is written down here from the families' public manuals, apart from the tables that the program is
built with: type, clock pin, outputs. A clock is followed back through inverters and buffers of pads and clocks to the net that the
user knows.
"""

import json
import re
from collections import defaultdict

ALL = ".*"
# (type, parameters that must hold, clock pin, outputs); the first row that fits decides for an output.
REGISTERS = [
    (r"SB_DFFN?E?(SR|R|SS|S)?", {}, "C", "Q"),
    (r"SB_RAM40_4K(NR|NW|NRNW)?", {}, "RCLKN?", "RDATA"),
    (r"SB_MAC16", {}, "CLK", "O"),
    (r"TRELLIS_FF|FACADE_FF|OXIDE_FF|MISTRAL_FF|CC_DFF", {}, "CLK", "Q"),
    (r"FD1[PS]3[A-J]X", {}, "CK", "Q"),
    (r"DP16KD|DP8KC|DP16K(_MODE)?", {}, "CLKA", r"DOA\d*"),
    (r"DP16KD|DP8KC|DP16K(_MODE)?", {}, "CLKB", r"DOB\d*"),
    (r"PDP16K(_MODE)?|PDPW16KD|PDPW8KC", {}, "CLKR", r"DO\d*"),
    (r"PDPSC16K(_MODE)?", {}, "CLK", r"DO\d*"),
    (r"MULT18X18D", {"REG_OUTPUT_CLK": "CLK0"}, "CLK0", r"P\d+|SIGNEDP"),
    (r"FD[CPRS]E(_1)?", {}, "C", "Q"),
    (r"SRL(16E|C16E|C32E)", {}, "CLK", r"Q(15|31)?"),
    (r"RAMB(18|36)E1", {"RAM_MODE": "SDP"}, "CLKARDCLK", "DO[AB]DO|DOP[AB]DOP"),
    (r"RAMB(18|36)E1", {"RAM_MODE": "TDP"}, "CLKARDCLK", "DOADO|DOPADOP"),
    (r"RAMB(18|36)E1", {"RAM_MODE": "TDP"}, "CLKBWRCLK", "DOBDO|DOPBDOP"),
    (r"DSP48E1", {"PREG": 1}, "CLK", "P"),
    (r"DSP48E1", {"MREG": 1}, "CLK", "P"),
    (r"DSP48E1", {"AREG": 1}, "CLK", "P"),
    (r"DSP48E1", {"BREG": 1}, "CLK", "P"),
    (r"DFFN?[CPRS]?E?", {}, "CLK", "Q"),
    (r"SP(X9)?", {}, "CLK", "DO"),
    (r"SDP(X9)?B?", {}, "CLKB", "DO"),
    (r"DP(X9)?B?", {}, "CLKA", "DOA"),
    (r"DP(X9)?B?", {}, "CLKB", "DOB"),
    (r"dffeas", {}, "clk", "q"),
    (r"altsyncram", {"address_reg_b": "CLOCK0"}, "clock0", "q_[ab]"),
    (r"altsyncram", {}, "clock0", "q_a"),
    (r"altsyncram", {}, "clock1", "q_b"),
    (r"MISTRAL_M10K", {}, "CLK1", "B1DATA"),
    (r"dff(e?p?c?)", {}, "CLK", "Q"),
    (r"AL_MAP_SEQ", {}, "clk", "q"),
    (r"EG_PHY_BRAM(32K)?", {"MODE": "DP8K"}, "clka", "doa"),
    (r"EG_PHY_BRAM(32K)?", {"MODE": "DP16K"}, "clka", "doa"),
    (r"EG_PHY_BRAM(32K)?", {"MODE": "PDPW8K"}, "clkb", "do[ab]"),
    (r"EG_PHY_BRAM(32K)?", {}, "clkb", "dob"),
    (r"CC_BRAM_[24]0K", {"RAM_MODE": "SDP"}, "B_CLK", "[AB]_DO"),
    (r"CC_BRAM_[24]0K", {}, "A_CLK", "A_DO"),
    (r"CC_BRAM_[24]0K", {}, "B_CLK", "B_DO"),
    (r"\$s?a?dffs?r?c?e?", {}, "CLK", "Q"),
    (r"\$_S?A?L?DFFC?E?S?R?E?_[PN01]+_", {}, "C", "Q"),
    (r"KVR_(FF|SRL\d+)", {}, "C", "Q"),
    (r"KVR_(MULT|DSP48)", {}, "CLK", "P"),
    (r"KVR_RAM512X18", {}, "R_CLK", "R_DATA"),
    (r"KVR_DPRAM512X8", {}, "CLK_A", r"DOUT\d_A"),
    (r"KVR_DPRAM512X8", {}, "CLK_B", r"DOUT\d_B"),
    (r"ICESTORM_LC", {"DFF_ENABLE": 1}, "CLK", "O"),
]
# Sequential in the eyes of the program, but none of its outputs is a register: it reads at once.
READ_AT_ONCE = re.compile(r"(TRELLIS_)?DPR16X4C?|RAM\d+(M|X\d+[DS])\w*|RAM16SDP\d|RAM16S\d|MISTRAL_MLAB|"
                          r"EG_LOGIC_DRAM16X4")
# (type, input, output) of what passes a clock on.
BUFFERS = [
    (r"SB_GB", "USER_SIGNAL_TO_GLOBAL_BUFFER", "GLOBAL_BUFFER_OUTPUT"),
    (r"BUFG|IBUF|IB|CC_BUFG|KVR_GBUFCE|KVR_IBUF", "I", "O"),
    (r"SB_IO", "PACKAGE_PIN", "D_IN_0"),
    (r"CC_IBUF", "I", "Y"),
    (r"FACADE_IO", "PAD", "O"),
    (r"DCCA", "CLKI", "CLKO"),
    (r"MISTRAL_CLKBUF", "A", "Q"),
    (r"MISTRAL_IB", "PAD", "O"),
    (r"gclkbuff", "A", "Z"),
    (r"inpad|ckpad", "P", "Q"),
    (r"fiftyfivenm_io_ibuf|cyclonev_io_ibuf", "i", "o"),
    (r"\$_BUF_", "A", "Y"),
    # Inverters: the same clock with the other edge.
    (r"\$_NOT_|\$not", "A", "Y"),
    (r"INV", "A", "Z"),
    (r"INV", "I", "O"),
    (r"MISTRAL_NOT", "A", "Q"),
]
# (type, input, output) of look-up tables of one input; with INIT 01 they invert.
INVERTERS = [(r"AL_MAP_LUT1", "a", "o"), (r"LUT1", "I0", "O"), (r"KVR_LUT1", "I0", "O"), (r"LUT1", "I0", "F")]


def number(value):
    text = str(value)
    return int(text, 2) if re.fullmatch("[01]{2,}", text) else int(text) if text.isdigit() else None


def same(value, wanted):
    return number(value) == wanted if isinstance(wanted, int) else str(value).strip() == wanted


def clock_pin(cell, output):
    for kind, parameters, pin, outputs in REGISTERS:
        if re.fullmatch(kind, cell["type"]) and re.fullmatch(outputs, output) and all(
                name in cell["parameters"] and same(cell["parameters"][name], wanted)
                for name, wanted in parameters.items()):
            return next((name for name in cell["connections"] if re.fullmatch(pin, name)), None)
    return None


def is_set(value):
    return int(str(value), 2) != 0


class Netlist:
    """A netlist with the instances of all modules unfolded. Nets that ports connect are one net."""

    def __init__(self, path):
        with open(path) as stream:
            self.modules = json.load(stream)["modules"]
        self.cells = []
        self.names = defaultdict(set)
        self.source = {}
        self.parents = {}
        top = next(module for module in self.modules.values() if is_set(module["attributes"].get("top", "0")))
        # The bits of the top keep their numbers; those of other instances have the path in front.
        self.unfold(top, "", lambda bit: bit)
        self.names = {name: {self.joined(bit) for bit in bits} for name, bits in self.names.items()}
        for cell in self.cells:
            cell["connections"] = {port: [self.joined(bit) for bit in bits]
                                   for port, bits in cell["connections"].items()}
        for cell in self.cells:
            for kind, taken, given in BUFFERS:
                if re.fullmatch(kind, cell["type"]) and taken in cell["connections"]:
                    for bit in cell["connections"].get(given, []):
                        self.source[bit] = cell["connections"][taken][0]
            for kind, taken, given in INVERTERS:
                if re.fullmatch(kind, cell["type"]) and taken in cell["connections"] and number(
                        cell["parameters"].get("INIT")) in (1, 2) and str(cell["parameters"]["INIT"])[-2:] in ("01", "10"):
                    for bit in cell["connections"].get(given, []):
                        self.source[bit] = cell["connections"][taken][0]

    def unfold(self, module, path, number):
        for name, net in [*module["netnames"].items(), *module["ports"].items()]:
            # A bit of a vector that was split keeps the offset, and has it in its name.
            offset = net.get("offset", 0)
            wide = len(net["bits"]) > 1 or (offset and not name.endswith(f"[{offset}]"))
            for place, bit in enumerate(net["bits"]):
                index = offset + (len(net["bits"]) - 1 - place if net.get("upto") else place)
                self.names[path + (f"{name}[{index}]" if wide else name)].add(number(bit))
        for name, cell in module["cells"].items():
            connections = {port: [number(bit) for bit in bits] for port, bits in cell["connections"].items()}
            inside = self.modules.get(cell["type"])
            if inside is None or any(is_set(inside["attributes"].get(box, "0")) for box in ("blackbox", "whitebox")):
                self.cells.append(dict(cell, connections=connections))
                continue
            below = f"{path}{name}/"
            numbered = (lambda below: lambda bit: (below, bit) if isinstance(bit, int) else bit)(below)
            self.unfold(inside, below, numbered)
            for port, bits in connections.items():
                for outer, inner in zip(bits, inside["ports"][port]["bits"]):
                    self.join(outer, numbered(inner))

    def joined(self, bit):
        while bit in self.parents:
            bit = self.parents[bit]
        return bit

    def join(self, outer, inner):
        outer, inner = self.joined(outer), self.joined(inner)
        if outer != inner:
            # A constant stays one.
            if isinstance(inner, str):
                outer, inner = inner, outer
            self.parents[inner] = outer

    def root(self, bit):
        seen = set()
        while bit in self.source and bit not in seen:
            seen.add(bit)
            bit = self.source[bit]
        return bit

    def register_outputs(self):
        """From the bit of each register output to the bit of its clock, followed back through buffers. A net that two
        registers drive may have either of their clocks."""
        found = defaultdict(set)
        for cell in self.cells:
            for port, bits in cell["connections"].items():
                if cell["port_directions"].get(port) != "output":
                    continue
                if cell["type"] == "$mem_v2":
                    for bit, clock in self.memory_outputs(cell):
                        found[bit].add(clock)
                    continue
                pin = clock_pin(cell, port)
                if pin is None:
                    continue
                clock = cell["connections"][pin][0]
                if not isinstance(clock, str):
                    for bit in bits:
                        if not isinstance(bit, str):
                            found[bit].add(self.root(clock))
        return found

    def reached_by_clocks(self):
        """The bits that a register drives, directly or through cells without a clock."""
        reached = set(self.register_outputs())
        fanout = defaultdict(set)
        for cell in self.cells:
            inputs, outputs = set(), set()
            for port, bits in cell["connections"].items():
                bits = {bit for bit in bits if not isinstance(bit, str)}
                (outputs if cell["port_directions"].get(port) == "output" else inputs).update(bits)
            for bit in inputs:
                fanout[bit] |= outputs
        waiting = list(reached)
        for bit in waiting:
            new = fanout[bit] - reached
            reached |= new
            waiting += new
        return reached

    def memory_outputs(self, cell):
        """Of a whole memory: each read port has its own clock, or none."""
        width = int(cell["parameters"]["WIDTH"], 2)
        for port, clocked in enumerate(reversed(cell["parameters"]["RD_CLK_ENABLE"])):
            clock = cell["connections"]["RD_CLK"][port]
            if clocked == "1" and not isinstance(clock, str):
                for bit in cell["connections"]["RD_DATA"][port * width:(port + 1) * width]:
                    yield bit, self.root(clock)

    def bit(self, name):
        """The bit that the program calls @p name."""
        nameless = re.fullmatch(r"(.*/)?\$bit\$(\d+)", name)
        if nameless:
            number = int(nameless.group(2))
            return self.joined((nameless.group(1), number) if nameless.group(1) else number)
        bits = self.names.get(name, set())
        return next(iter(bits)) if len(bits) == 1 else None
