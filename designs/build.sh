#!/bin/sh
# Makes the checked-in netlists from the RTL: soc_elaborated.json (user modules and
# word-level cells) and soc_postmap.json (flat, KVR cells), each with the figures
# that yosys itself counts (*.stat.json).
#
#   designs/build.sh [OUTPUT_DIRECTORY]        default: this directory
#
# The results depend on the sources and on the yosys release only.
set -eu
export LC_ALL=C

repository=$(cd "$(dirname "$0")/.." && pwd)
output=${1:-$repository/designs}
mkdir -p "$output"
output=$(cd "$output" && pwd)

for tool in yosys yosys-abc awk; do
    command -v "$tool" >/dev/null 2>&1 || {
        echo "build.sh: $tool is not installed (Debian packages: yosys, mawk)" >&2
        exit 1
    }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Source positions in the netlists are relative to the repository.
cd "$repository"

run() {
    name=$1
    script=$2
    if ! yosys -l "$work/$name.log" -q -p "$script" >/dev/null 2>"$work/$name.err"; then
        tail -n 5 "$work/$name.log" >&2
        echo "build.sh: yosys failed on the $name netlist" >&2
        exit 1
    fi
}

# `stat -json` mixes a plain-text instance tree and log lines into its figures; keep
# the lines that are JSON.
keep_json() {
    awk '/^{/ { on = 1 } on && /^ *["{}]/ { print } /^}/ { on = 0 }' "$1" >"$2"
}

run elaborated "
    read_verilog -sv designs/kvr/cells.v
    read_verilog -sv -icells -Idesigns/rtl $(echo designs/rtl/*.v)
    script designs/kvr/elaborate.ys
    write_json $output/soc_elaborated.json
    tee -o $work/elaborated.stat stat -json
"
keep_json "$work/elaborated.stat" "$output/soc_elaborated.stat.json"

run map "
    read_verilog -sv designs/kvr/cells.v
    read_verilog -sv -DKVR_MAP -Idesigns/rtl $(echo designs/rtl/*.v)
    script designs/kvr/map.ys
    write_rtlil $work/mapped.il
"

# Clocks keep their RTL names in front of the buffers; every cell names its type.
{
    echo "cd soc_top"
    awk -f designs/kvr/name_clocks.awk "$work/mapped.il"
    echo "cd .."
    sed -n 's/^module \(KVR_[A-Z0-9]*\).*/\1/p' designs/kvr/cells.v | while read -r cell; do
        echo "setattr -set KVR_ATTRIBUTE_CELL_NAME \"$cell\" t:$cell"
    done
} >"$work/finish.ys"

run postmap "
    read_rtlil $work/mapped.il
    script $work/finish.ys
    hierarchy -top soc_top -purge_lib
    write_json $output/soc_postmap.json
    tee -o $work/postmap.stat stat -json
"
keep_json "$work/postmap.stat" "$output/soc_postmap.stat.json"
