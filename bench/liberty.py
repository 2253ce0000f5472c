"""A small Liberty library of the device cells in a generated design, for programs that read nothing else."""

import json

BUFFERS = ("KVR_IBUF", "KVR_OBUF", "KVR_GBUFCE")
CLOCK_PINS = ("C", "CLK", "W_CLK", "R_CLK")
HEAD = """library (kvr) {
  delay_model : table_lookup;
  time_unit : "1ns";
  voltage_unit : "1V";
  current_unit : "1mA";
  pulling_resistance_unit : "1kohm";
  capacitive_load_unit (1, pf);
  nom_process : 1;
  nom_voltage : 1;
  nom_temperature : 25;
  input_threshold_pct_rise : 50;
  input_threshold_pct_fall : 50;
  output_threshold_pct_rise : 50;
  output_threshold_pct_fall : 50;
  slew_lower_threshold_pct_rise : 10;
  slew_lower_threshold_pct_fall : 10;
  slew_upper_threshold_pct_rise : 90;
  slew_upper_threshold_pct_fall : 90;
"""


def delay(related, kind=None):
    """A timing arc of constant delay from a pin."""
    tables = ("cell_rise", "cell_fall", "rise_transition", "fall_transition")
    return arc(related, kind, tables)


def setup(clock):
    """A constant setup check against a clock."""
    return arc(clock, "setup_rising", ("rise_constraint", "fall_constraint"))


def arc(related, kind, tables):
    values = " ".join(f'{table} (scalar) {{ values ("0.1"); }}' for table in tables)
    timing_type = f" timing_type : {kind};" if kind else ""
    return f'      timing () {{ related_pin : "{related}";{timing_type} {values} }}\n'


def arcs_of_output(name, pin, inputs, clocks):
    if name == "KVR_GBUFCE":
        return delay("I")
    if name.startswith("KVR_RAMD"):  # written by its clock, read without one
        return delay("R_ADDR")
    if clocks:
        own = [clock for clock in clocks if clock[0] == pin[0]] or clocks
        return delay(own[0], "rising_edge")
    return "".join(delay(related) for related in inputs)


def function_of(name):
    if name == "KVR_FF":
        return "IQ"
    if name in BUFFERS:
        return "I"
    return {"KVR_VCC": "1", "KVR_GND": "0"}.get(name)


def cell(name, ports):
    """One cell; ports by name, each with direction and width."""
    inputs = [pin for pin, (direction, _) in ports.items() if direction == "input"]
    clocks = [pin for pin in inputs if pin in CLOCK_PINS]
    text = f"  cell ({name}) {{\n"
    if name == "KVR_FF":
        text += '    ff (IQ, IQN) { clocked_on : "C"; next_state : "D"; }\n'
    for pin, (direction, width) in ports.items():
        text += f"    pin ({pin}) {{\n" if width == 1 else f"    bus ({pin}) {{\n      bus_type : bus{width};\n"
        text += f"      direction : {direction};\n"
        if direction == "output":
            if function_of(name) is not None:
                text += f'      function : "{function_of(name)}";\n'
            text += arcs_of_output(name, pin, inputs, clocks)
        else:
            text += "      capacitance : 0.01;\n"
            if pin in clocks:
                text += "      clock : true;\n"
            elif clocks:
                text += setup(next((clock for clock in clocks if clock[0] == pin[0]), clocks[0]))
        text += "    }\n"
    return text + "  }\n"


def write(json_path, liberty_path):
    """Writes the library of all cells that a generated Yosys JSON file (a small one will do) declares."""
    with open(json_path, encoding="utf-8") as stream:
        modules = json.load(stream)["modules"]
    cells = {name: {pin: (port["direction"], len(port["bits"])) for pin, port in module["ports"].items()}
             for name, module in modules.items() if name.startswith("KVR_")}
    widths = sorted({width for ports in cells.values() for _, width in ports.values() if width > 1})
    with open(liberty_path, "w", encoding="utf-8") as out:
        out.write(HEAD)
        for width in widths:
            out.write(f"  type (bus{width}) {{ base_type : array; data_type : bit; bit_width : {width}; "
                      f"bit_from : {width - 1}; bit_to : 0; }}\n")
        for name, ports in cells.items():
            out.write(cell(name, ports))
        out.write("}\n")
