#!/bin/sh
# Makes the netlists of the designs in this folder, in both forms.
#
#   designs/clocks/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
set -eu
export LC_ALL=C

repository=$(cd "$(dirname "$0")/../.." && pwd)
output=${1:-$repository/designs/clocks/netlists}
mkdir -p "$output"
output=$(cd "$output" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Source positions in the netlists are relative to the repository.
cd "$repository"

run() {
    name=$1
    if ! timeout 120 yosys -l "$work/$name.log" -q -p "$2" >/dev/null 2>"$work/$name.err"; then
        tail -n 5 "$work/$name.log" >&2
        echo "build.sh: yosys failed on $name" >&2
        exit 1
    fi
}

for design in trees bridges stores levels; do
    run "${design}_elaborated" "
        read_verilog -sv designs/kvr/cells.v designs/clocks/$design.v
        $(sed "s/soc_top/$design/" designs/kvr/elaborate.ys)
        write_json $output/${design}_elaborated.json
    "
    # Latches become loops before anything looks at them.
    run "${design}_map" "
        read_verilog -sv designs/kvr/cells.v designs/clocks/$design.v
        $(sed "s/soc_top/$design/; s|^proc\$|proc; techmap -map designs/clocks/latches.v|" designs/kvr/map.ys)
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
        write_json $output/${design}_postmap.json
    "
done
