"""Runs netlists in Icarus Verilog: one clock alternates at a time, and every net that changes is written down."""

import json
import os
import re
import subprocess

#: Longer than any combinational path, in which every assignment takes one unit of time.
HALF_PERIOD = 1000

TIME_LIMIT = 300


def run(command, **options):
    result = subprocess.run(command, capture_output=True, text=True, timeout=TIME_LIMIT, check=False, **options)
    if result.returncode != 0:
        raise RuntimeError(f"{command[0]}: {(result.stdout + result.stderr)[-2000:]}")
    return result.stdout


def verilog_of(netlist, scratch):
    """The netlist as Verilog: every assignment takes time, every register and memory starts with anything."""
    path = os.path.join(scratch, "netlist.v")
    run(["yosys", "-q", "-p", f"read_json {netlist}; delete =A:blackbox; techmap -map +/pmux2mux.v; write_verilog -noattr -norename {path}"])
    lines = ["`timescale 1ns / 1ps\n"]
    with open(path) as stream:
        for line in stream:
            # A loop without any delay would stop the clock of the simulator.
            lines.append(re.sub(r"^  assign ", "  assign #1 ", line))
            register = re.fullmatch(r"  (?:output )?reg (\[\S+\] )?(\\\S+ |[^\s\[;]+) ?(\[\S+\])?;\n", line)
            if register and register[3]:
                first, last = sorted(int(index) for index in register[3][1:-1].split(":"))
                lines.append(f"  initial begin : {unused_name(register[2])}\n    integer word;\n")
                lines.append(f"    for (word = {first}; word <= {last}; word = word + 1)\n")
                lines.append(f"      {register[2]} [word] = {{8{{$random}}}};\n  end\n")
            elif register:
                lines.append(f"  initial {register[2]} = {{8{{$random}}}};\n")
    with open(path, "w") as stream:
        stream.writelines(lines)
    return path


def unused_name(name):
    return "start_of_" + re.sub(r"\W", "_", name)


def ports_of(netlist, top):
    with open(netlist) as stream:
        ports = json.load(stream)["modules"][top]["ports"]
    return {name: (port["direction"], len(port["bits"]), port.get("upto", 0)) for name, port in ports.items()}


def escaped(name):
    return f"\\{name} "


def test_bench(top, ports, clocks, resets, rounds, cycles):
    """Verilog that alternates each of `clocks` for `cycles`, `rounds` times, after inputs and clocks ran wild for a
    while and fell still again. Clocks that are no port are variables of the test bench, for models of black boxes."""
    names = [name for name, (direction, _, _) in ports.items() if direction == "input"]
    data = [name for name in names if name not in clocks and name not in resets]
    text = ["`timescale 1ns / 1ps", "module bench;", "  integer round, cycle, step;", "  integer seed = `SEED;"]
    connections = []
    for name, (direction, width, _) in ports.items():
        shape = f"[{width - 1}:0] " if width > 1 else ""
        if direction == "input":
            text.append(f"  reg {shape}{escaped(name)}= 0;")
        elif direction == "inout":
            text.append(f"  wire {shape}{escaped(name)};")
            text.append(f"  reg {shape}{escaped('drive.' + name)}= 0;")
            for bit in range(width):
                select = f"[{bit}]" if width > 1 else ""
                text.append(f"  assign (weak1, weak0) {escaped(name)}{select} = {escaped('drive.' + name)}{select};")
        else:
            text.append(f"  wire {shape}{escaped(name)};")
        connections.append(f".{escaped(name)}({escaped(name)})")
    text += [f"  reg {escaped(clock)}= 0;" for clock in clocks if clock not in names]
    text.append(f"  {escaped(top)} dut ({', '.join(connections)});")
    text.append("  task scramble; begin")
    text += [f"    {escaped(name)} = {{8{{$random(seed)}}}};" for name in data]
    text += [f"    {escaped('drive.' + name)} = {{8{{$random(seed)}}}};" for name, p in ports.items() if p[0] == "inout"]
    text.append("  end endtask")
    text.append("  task every_clock; begin")
    for clock in clocks:
        text.append(f"    if ($random(seed) & 1) begin #{HALF_PERIOD} {escaped(clock)} = 1;")
        text.append(f"      #{HALF_PERIOD} {escaped(clock)} = 0; end")
    text.append(f"    #{HALF_PERIOD}; end endtask")
    text.append('  initial begin\n    $dumpfile(`DUMP);\n    $dumpvars(0, dut);\n    $dumpoff;')
    text.append(f"    for (round = 0; round < {rounds}; round = round + 1) begin")
    for clock in clocks:
        # Reset holds long enough for chains of flip-flops to let go of it again; the last rounds go without.
        text += [f"      if (round < {rounds // 2}) {escaped(name)} = {active};" for name, active in resets.items()]
        text.append("      repeat (10) begin scramble; every_clock; end")
        text += [f"      {escaped(name)} = {1 - active};" for name, active in resets.items()]
        text.append("      repeat (40) begin scramble; every_clock; end")
        # Inputs stand still; what they have started comes to rest.
        text.append("      repeat (20) every_clock;")
        text.append(f"      #{4 * HALF_PERIOD} $dumpon; #1;")
        text.append(f"      repeat ({cycles}) begin #{HALF_PERIOD} {escaped(clock)} = 1; #{HALF_PERIOD} {escaped(clock)} = 0; end")
        text.append(f"      #{4 * HALF_PERIOD} $dumpoff; #1;")
    text += ["    end", "    $finish;", "  end", "endmodule", ""]
    return "\n".join(text)


def changes(dump, clocks):
    """For every net, as (path of scopes and name, bit or None), the set of clocks with which it changed."""
    variables = {}
    scopes = []
    changed = {}
    values = {}
    phase = -1
    baseline = False
    with open(dump) as stream:
        for line in stream:
            words = line.split()
            if not words:
                continue
            first = words[0]
            if first == "$scope":
                scopes.append(words[2].removeprefix("\\"))
            elif first == "$upscope":
                scopes.pop()
            elif first == "$var":
                name = words[4].removeprefix("\\")
                shape = re.fullmatch(r"\[(-?\d+)(?::(-?\d+))?\]", words[5]) if words[5] != "$end" else None
                key = (tuple(scopes[2:]), name, shape and (int(shape[1]), int(shape[2] or shape[1])), int(words[2]))
                variables.setdefault(words[3], []).append(key)
            elif first == "$dumpon":
                baseline = True
                phase += 1
            elif first == "$dumpoff":
                baseline = None
            elif first == "$end":
                if baseline is not False:
                    baseline = False if baseline else None
            elif first[0] in "01xzXZ" and baseline is not None:
                note(changed, values, first[1:], first[0], None if baseline else clocks[phase % len(clocks)])
            elif first[0] in "bB" and baseline is not None:
                note(changed, values, words[1], first[1:], None if baseline else clocks[phase % len(clocks)])
    return by_name(variables, changed)


def note(changed, values, code, value, clock):
    old = values.get(code)
    values[code] = value
    if clock is None or old is None or old == value:
        return
    width = max(len(old), len(value))
    old, value = extended(old, width), extended(value, width)
    for place in range(width):
        if old[-1 - place] != value[-1 - place]:
            changed.setdefault((code, place), set()).add(clock)


def extended(value, width):
    return ("0" if value[0] == "1" else value[0]) * (width - len(value)) + value


def by_name(variables, changed):
    result = {}
    for code, keys in variables.items():
        for scope, name, shape, width in keys:
            for place in range(width):
                bit = None
                if shape is not None:
                    left, right = shape
                    bit = right + place if left >= right else right - place
                result[("/".join((*scope, name)), bit)] = changed.get((code, place), set())
    return result


def simulate(netlist, top, clocks, resets, models, scratch, seed, rounds=6, cycles=24, defines=()):
    """Nets with the clocks that they changed with. `clocks` maps the name of each in the test bench to anything."""
    source = verilog_of(netlist, scratch)
    bench = os.path.join(scratch, "bench.v")
    with open(bench, "w") as stream:
        stream.write(test_bench(top, ports_of(netlist, top), list(clocks), resets, rounds, cycles))
    dump = os.path.join(scratch, "dump.vcd")
    compiled = os.path.join(scratch, "bench.vvp")
    run(["iverilog", "-g2012", "-DRANDOM_STATE", f"-DSEED={seed}", f'-DDUMP="{dump}"', *defines, "-s", "bench", "-o",
         compiled, *models, source, bench])
    run(["vvp", "-n", compiled])
    return changes(dump, list(clocks))
