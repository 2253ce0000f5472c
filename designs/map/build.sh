#!/bin/sh
# Makes the netlists of the designs in this folder, in both forms.
#
#   designs/map/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
set -eu
export LC_ALL=C

repository=$(cd "$(dirname "$0")/../.." && pwd)
output=${1:-$repository/designs/map/netlists}
mkdir -p "$output"
output=$(cd "$output" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Source positions in the netlists are relative to the repository.
cd "$repository"

run() {
    name=$1
    if ! timeout 300 yosys -l "$work/$name.log" -q -p "$2" >/dev/null 2>"$work/$name.err"; then
        tail -n 5 "$work/$name.log" >&2
        echo "build.sh: yosys failed on $name" >&2
        exit 1
    fi
}

# Without white space a netlist is half as large.
pack() {
    python3 -c 'import json, sys
netlist = json.load(open(sys.argv[1]))
json.dump(netlist, open(sys.argv[1], "w"), separators=(",", ":"))' "$1"
}

for design in processor filter machines buffers checksums counters; do
    run "${design}_elaborated" "
        read_verilog -sv designs/kvr/cells.v designs/map/$design.v
        $(sed "s/soc_top/$design/" designs/kvr/elaborate.ys)
        write_json $output/${design}_elaborated.json
    "
    pack "$output/${design}_elaborated.json"
    # State machines are encoded anew, and registers of the filter may move through logic.
    changes="s/soc_top/$design/; s/ -nofsm//"
    test $design = filter && changes="$changes; s/^abc -lut 6/abc -dff -lut 6/; s/^techmap -map designs.kvr.techmap_ff.v//"
    run "${design}_map" "
        read_verilog -sv designs/kvr/cells.v designs/map/$design.v
        $(sed "$changes" designs/kvr/map.ys)
        techmap -map designs/kvr/techmap_ff.v
        clean
        write_rtlil $work/$design.il
    "
    {
        echo "cd $design"
        awk -f designs/kvr/name_clocks.awk "$work/$design.il"
        echo "cd .."
        sed -n 's/^module \(KVR_[A-Z0-9]*\).*/\1/p' designs/kvr/cells.v | while read -r cell; do
            echo "setattr -set KVR_ATTRIBUTE_CELL_NAME \"$cell\" t:$cell"
        done
    } >"$work/finish.ys"
    run "${design}_postmap" "
        read_rtlil $work/$design.il
        script $work/finish.ys
        hierarchy -top $design -purge_lib
        setattr -unset src c:*
        write_json $output/${design}_postmap.json
    "
    pack "$output/${design}_postmap.json"
done

for flow in ice40 xilinx; do
    run "counters_$flow" "
        read_verilog -sv designs/map/counters.v
        synth_$flow -flatten -top counters
        hierarchy -top counters -purge_lib
        setattr -unset src c:*
        write_json $output/counters_$flow.json
    "
    pack "$output/counters_$flow.json"
done
