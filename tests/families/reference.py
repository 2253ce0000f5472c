"""Which clock drives each register output of a netlist, from its JSON alone.

What the cells are is written down here from the families' public manuals, apart from the tables that the program is
built with: type, clock pin, outputs. A clock is followed back through buffers of pads and clocks to the net that the
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
]
# Sequential in the eyes of the program, but none of its outputs is a register: it reads at once.
READ_AT_ONCE = re.compile(r"(TRELLIS_)?DPR16X4C?|RAM\d+(M|X\d+[DS])\w*|RAM16SDP\d|RAM16S\d|MISTRAL_MLAB|"
                          r"EG_LOGIC_DRAM16X4")
# (type, input, output) of what passes a clock on.
BUFFERS = [
    (r"SB_GB", "USER_SIGNAL_TO_GLOBAL_BUFFER", "GLOBAL_BUFFER_OUTPUT"),
    (r"BUFG|IBUF|CC_BUFG", "I", "O"),
    (r"CC_IBUF", "I", "Y"),
    (r"FACADE_IO", "PAD", "O"),
    (r"DCCA", "CLKI", "CLKO"),
    (r"MISTRAL_CLKBUF", "A", "Q"),
    (r"MISTRAL_IB", "PAD", "O"),
    (r"gclkbuff", "A", "Z"),
    (r"inpad|ckpad", "P", "Q"),
    (r"fiftyfivenm_io_ibuf|cyclonev_io_ibuf", "i", "o"),
    (r"\$_BUF_", "A", "Y"),
]


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


class Netlist:
    """The top module of a netlist."""

    def __init__(self, path):
        with open(path) as stream:
            modules = json.load(stream)["modules"]
        self.top = next(module for module in modules.values() if int(str(module["attributes"].get("top", "0")), 2))
        self.source = {}
        for cell in self.top["cells"].values():
            for kind, taken, given in BUFFERS:
                if re.fullmatch(kind, cell["type"]) and taken in cell["connections"]:
                    for bit in cell["connections"].get(given, []):
                        self.source[bit] = cell["connections"][taken][0]
        self.names = defaultdict(set)
        for name, net in self.top["netnames"].items():
            for place, bit in enumerate(net["bits"]):
                wide = len(net["bits"]) > 1 or net.get("offset", 0)
                index = net.get("offset", 0) + (len(net["bits"]) - 1 - place if net.get("upto") else place)
                self.names[f"{name}[{index}]" if wide else name].add(bit)

    def root(self, bit):
        while bit in self.source:
            bit = self.source[bit]
        return bit

    def register_outputs(self):
        """From the bit of each register output to the bit of its clock, followed back through buffers."""
        found = {}
        for cell in self.top["cells"].values():
            for port, bits in cell["connections"].items():
                if cell["port_directions"].get(port) != "output":
                    continue
                if cell["type"] == "$mem_v2":
                    found.update(self.memory_outputs(cell))
                    continue
                pin = clock_pin(cell, port)
                if pin is None:
                    continue
                clock = cell["connections"][pin][0]
                found.update((bit, self.root(clock)) for bit in bits if isinstance(bit, int) and isinstance(clock, int))
        return found

    def memory_outputs(self, cell):
        """Of a whole memory: each read port has its own clock, or none."""
        width = int(cell["parameters"]["WIDTH"], 2)
        for port, clocked in enumerate(reversed(cell["parameters"]["RD_CLK_ENABLE"])):
            clock = cell["connections"]["RD_CLK"][port]
            if clocked == "1" and isinstance(clock, int):
                for bit in cell["connections"]["RD_DATA"][port * width:(port + 1) * width]:
                    yield bit, self.root(clock)

    def bit(self, name):
        """The bit that the program calls @p name."""
        nameless = re.fullmatch(r"\$bit\$(\d+)", name)
        if nameless:
            return int(nameless.group(1))
        bits = self.names.get(name, set())
        return next(iter(bits)) if len(bits) == 1 else None
