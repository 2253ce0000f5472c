#!/bin/sh
# Writes the netlists of names.v, one for each flow. They are checked in; run this after changing names.v.
set -eu
cd "$(dirname "$0")"

# flow NAME SCRIPT: what yosys does between reading and writing.
flow() {
    timeout 300 yosys -q -p "read_verilog names.v; hierarchy -top names_top; $2; write_json netlists/$1.json"
}

mkdir -p netlists
flow proc "proc; opt_clean"
flow prep "prep"
flow prep_flatten "prep -flatten"
flow memory_nomap "proc; flatten; opt; memory -nomap; opt_clean"
flow splitnets "proc; flatten; opt_clean; splitnets -ports"
flow synth "synth -flatten"
flow ice40 "synth_ice40 -top names_top; hierarchy -purge_lib"
flow ice40_abc9 "synth_ice40 -top names_top -abc9; hierarchy -purge_lib"
flow ice40_noflatten "synth_ice40 -top names_top -noflatten; hierarchy -purge_lib"
flow ecp5 "synth_ecp5 -top names_top; hierarchy -purge_lib"
flow xilinx "synth_xilinx -top names_top -flatten; hierarchy -purge_lib"
flow gowin "synth_gowin -top names_top; hierarchy -purge_lib"
timeout 300 yosys -q -p "read_verilog -noautowire names.v; prep -top names_top -flatten; write_json netlists/noautowire.json"
timeout 300 nextpnr-ice40 --quiet --hx1k --package vq100 --pcf-allow-unconstrained \
    --json netlists/ice40.json --write netlists/ice40_routed.json
