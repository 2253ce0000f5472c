#!/bin/sh
# Takes small modules of the RTL through every device flow of yosys, and writes the netlists to
# designs/families/MODULE_FLOW.json: what the reader's cell tables are tested with.
#
#   designs/build_families.sh [OUTPUT_DIRECTORY]        default: designs/families
#
# A run that takes longer than two minutes, or a module that a family cannot hold, is left out and said.
set -eu
export LC_ALL=C

repository=$(cd "$(dirname "$0")/.." && pwd)
output=${1:-$repository/designs/families}
mkdir -p "$output"
output=$(cd "$output" && pwd)
cd "$repository"

command -v yosys >/dev/null 2>&1 || {
    echo "build_families.sh: yosys is not installed (Debian package: yosys)" >&2
    exit 1
}

# run MODULE FLOW COMMAND
run() {
    if ! timeout 120 yosys -q -p "
            read_verilog -sv designs/kvr/cells.v
            read_verilog -sv -icells -Idesigns/rtl $(echo designs/rtl/*.v)
            hierarchy -top $1
            $3 -top $1
            hierarchy -top $1 -purge_lib
            setattr -unset src c:*
            write_json $output/$1_$2.json
        " >/dev/null 2>&1; then
        echo "build_families.sh: no $1_$2" >&2
        rm -f "$output/$1_$2.json"
        return
    fi
    # Without white space a netlist is half as large.
    python3 -c 'import json, sys
netlist = json.load(open(sys.argv[1]))
json.dump(netlist, open(sys.argv[1], "w"), separators=(",", ":"))' "$output/$1_$2.json"
}

for module in async_fifo ram_tdp uart_rx spi_master; do
    run $module ice40 "synth_ice40"
    run $module ecp5 "synth_ecp5"
    run $module nexus "synth_nexus"
    run $module machxo2 "synth_machxo2"
    run $module xilinx "synth_xilinx -flatten"
    run $module gowin "synth_gowin"
    run $module max10 "synth_intel -family max10"
    run $module cyclonev "synth_intel_alm -family cyclonev"
    run $module quicklogic "synth_quicklogic -family pp3"
    run $module anlogic "synth_anlogic"
    run $module gatemate "synth_gatemate"
done
run fir_filter ice40 "synth_ice40 -dsp"
run fir_filter ecp5 "synth_ecp5"
run fir_filter xilinx "synth_xilinx"
for flow in ice40 ecp5 xilinx gowin; do
    run cpu_core $flow "synth_$flow"
done
run cpu_core elaborated "proc; opt_clean; #"
