#!/bin/sh
# Makes the netlists of both texts in this folder, elaborated and mapped to iCE40.
#
#   designs/plans/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
set -eu
export LC_ALL=C

repository=$(cd "$(dirname "$0")/../.." && pwd)
output=${1:-$repository/designs/plans/netlists}
mkdir -p "$output"
output=$(cd "$output" && pwd)
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Source positions in the netlists are relative to the repository.
cd "$repository"

run() {
    if ! timeout 120 yosys -l "$log" -q -p "$1" >/dev/null 2>&1; then
        tail -n 5 "$log" >&2
        echo "build.sh: yosys failed" >&2
        exit 1
    fi
}

# Without white space a netlist is half as large.
pack() {
    python3 -c 'import json, sys
netlist = json.load(open(sys.argv[1]))
json.dump(netlist, open(sys.argv[1], "w"), separators=(",", ":"))' "$1"
}

for text in before after; do
    run "
        read_verilog -sv designs/plans/$text.v
        $(sed 's/soc_top/receiver/' designs/kvr/elaborate.ys)
        write_json $output/${text}_elaborated.json
    "
    run "
        read_verilog -sv designs/plans/$text.v
        synth_ice40 -flatten -top receiver
        hierarchy -top receiver -purge_lib
        setattr -unset src c:*
        write_json $output/${text}_postmap.json
    "
    pack "$output/${text}_elaborated.json"
    pack "$output/${text}_postmap.json"
done
