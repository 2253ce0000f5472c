"""Where the cell models of each family lie, and what the names of cells say about them."""

import re
from pathlib import Path

SHARE = Path("/usr/share/yosys")


class Library:
    """The models of one family: @p files hold cells with bodies and include @p included, @p port_files hold black
    boxes. @p skip: pattern of names that are no cells."""

    def __init__(self, name, family, files, port_files=(), included=(), skip=None):
        self.name = name
        self.family = family
        self.files = [SHARE / path for path in files]
        self.port_files = [SHARE / path for path in port_files]
        self.included = [SHARE / path for path in included]
        self.skip = skip

    @property
    def include_folders(self):
        return sorted({path.parent for path in self.files + self.port_files})

    def names_with_bodies(self):
        return {name for path in self.files + self.included
                for name in re.findall(r"^\s*(?:\(\*.*\*\)\s*)?module\s+(\w+)", path.read_text(), re.M)}


LIBRARIES = [
    Library("ice40", "iCE40", ["ice40/cells_sim.v"]),
    Library("ecp5", "ECP5", ["ecp5/cells_sim.v"], ["ecp5/cells_bb.v"], included=["ecp5/cells_ff.vh"]),
    Library("nexus", "Nexus", ["nexus/cells_sim.v"], ["nexus/cells_xtra.v"]),
    Library("machxo2", "MachXO2", ["machxo2/cells_sim.v"]),
    Library("xilinx", "Xilinx", ["xilinx/cells_sim.v"], ["xilinx/cells_xtra.v"]),
    Library("gowin", "Gowin", ["gowin/cells_sim.v"], skip="__APICULA.*"),
    Library("intel", "Intel",
            ["intel/cyclone10lp/cells_sim.v", "intel/cycloneiv/cells_sim.v", "intel/cycloneive/cells_sim.v",
             "intel/max10/cells_sim.v", "intel_alm/common/alm_sim.v", "intel_alm/common/dff_sim.v",
             "intel_alm/common/dsp_sim.v", "intel_alm/common/mem_sim.v", "intel_alm/common/misc_sim.v",
             "intel_alm/cyclonev/cells_sim.v"],
            ["intel/common/altpll_bb.v", "intel/common/m9k_bb.v", "intel_alm/common/megafunction_bb.v"]),
    Library("quicklogic", "QuickLogic",
            ["quicklogic/cells_sim.v", "quicklogic/lut_sim.v", "quicklogic/pp3_cells_sim.v"]),
    Library("anlogic", "Anlogic", ["anlogic/cells_sim.v"], ["anlogic/eagle_bb.v"]),
    Library("gatemate", "GateMate", ["gatemate/cells_sim.v"], ["gatemate/cells_bb.v"]),
]

# The first pattern that is found in a name says what the cell is, unless its body says more.
KINDS = [(kind, re.compile(pattern, re.I)) for kind, pattern in [
    ("constant", r"^(VCC|GND|VLO|VHI|logic_[01])$"),
    ("pll", r"PLL|DCM|MMCM|PMCD|DDRDLL|DLLDEL"),
    ("oscillator", r"^(SB_[HL]F)?OSC|oscillator|EG_PHY_OSC|CCLK"),
    ("clock-mux", r"BUFGMUX|BUFGCTRL|^DCS|DCMA|REFMUX|FBMUX|ECLKBRIDGE"),
    ("clock-divider", r"CLKDIV|BUFGCE_DIV|^BUFR$|SEQ_DIV"),
    ("clock-gate", r"^BUF[GH](CE)|BUFMRCE|^DCC|clkena|ECLKSYNC"),
    ("clock-buffer", r"^BUF(G|H|IO|MR|_MR)|BUFIO|gclkbuff|CLKBUF|_BUFG$|^SB_GB$|GCLK|IOCLK"),
    ("shift-register", r"SRL|CFGLUT"),
    ("memory", r"RAM|EBR|DP16K|PDP\w*16K|SP16K|\dK_MODE|DP8KC|^(X?SDP|SP|DP|SPX9|SDPX9|DPX9)$|M10K|MLAB|FIFO|mlab|"
               r"DPR16|DPSC512K|SP512K|PDPSC512K"),
    ("carry", r"CARRY|CCU2|^ALU$|ADDF|MUXCY|XORCY|ORCY|MULT_AND|ADDER|ALU2B|ARITH"),
    ("dsp", r"DSP|MULT(?!I)|MUL\d|ALU54|PREADD|^ACC54|ALUREG|REG18|M18X36|_mac$|MAC16"),
    ("ddr", r"DDR|SERDES|^[OT]SHX|altddio"),
    ("lut", r"LUT|^ROM\d|_L2T|lcell_comb|_ALM$"),
    ("latch", r"^LD[CP]|DLT"),
    ("io", r"^[IO]?O?BUF|BUF[TDE]?S?(_|$)|_I?O?BUF|TBUF|IO(_|$|BUF|18|33|_OD|_I3C)|[io]buf|^(IB|OB|BB|OBZ|ILVDS|OLVDS)|"
           r"pad$|PAD$|_[IO]B$|MISTRAL_IO|DELAY|INPAD|OUTPAD|KEEPER|PULL"),
    ("logic", r"MUX|^INV$|inv$|buff$|_NOT$|MX[248]$|^AND|^OR2|L6MUX|PFUMX|WIDEFN|EG_LOGIC_BUF$|mux"),
]]


def kind_by_name(name):
    return next((kind for kind, pattern in KINDS if pattern.search(name)), None)


def head(family):
    return {"format": "netlistdb-cells", "version": 1, "family": family}
