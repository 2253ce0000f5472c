# Sourced by the build.sh of each folder here that has designs of its own, with the arguments of that script.
#
# Sets `output`, the folder for the netlists, and `work`, a folder that goes away at the end, and changes to the
# repository: source positions in the netlists are relative to it.
set -eu
export LC_ALL=C

folder=$(cd "$(dirname "$0")" && pwd)
output=${1:-$folder/netlists}
mkdir -p "$output"
output=$(cd "$output" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$folder/../.."

# run NAME COMMANDS: runs yosys, and shows the end of its log when it fails.
run() {
    if ! timeout 300 yosys -l "$work/$1.log" -q -p "$2" >/dev/null 2>"$work/$1.err"; then
        tail -n 5 "$work/$1.log" >&2
        echo "build.sh: yosys failed on $1" >&2
        exit 1
    fi
}

# pack FILE: without white space a netlist is half as large.
pack() {
    python3 -c 'import json, sys
netlist = json.load(open(sys.argv[1]))
json.dump(netlist, open(sys.argv[1], "w"), separators=(",", ":"))' "$1"
}

# finish_script DESIGN: commands that name clock pins and cells in $work/DESIGN.il as the device's tools do.
finish_script() {
    echo "cd $1"
    awk -f designs/kvr/name_clocks.awk "$work/$1.il"
    echo "cd .."
    sed -n 's/^module \(KVR_[A-Z0-9]*\).*/\1/p' designs/kvr/cells.v | while read -r cell; do
        echo "setattr -set KVR_ATTRIBUTE_CELL_NAME \"$cell\" t:$cell"
    done
}
