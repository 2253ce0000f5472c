#!/bin/sh
# Runs the testbenches with Icarus Verilog (Debian package iverilog); fails when one
# does not report PASS. Testbenches are named tb_<what>.v.
#
#   sim/run.sh             the RTL
#   sim/run.sh --postmap   tb_soc on the mapped netlist (needs yosys; takes a minute or two)
set -eu

here=$(cd "$(dirname "$0")" && pwd)
command -v iverilog >/dev/null 2>&1 || {
    echo "run.sh: iverilog is not installed (Debian package: iverilog)" >&2
    exit 1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

if [ "${1:-}" = --postmap ]; then
    yosys -q -p "read_json $here/../soc_postmap.json; delete =A:blackbox
                 write_verilog -noattr $work/soc_postmap.v"
    iverilog -g2012 -DSIMULATION -DPOSTMAP -s tb_soc -o "$work/tb_soc" "$here/tb_soc.v" \
        "$work/soc_postmap.v" "$here/kvr_models.v" "$here/../rtl/analog_pll.v"
    vvp -n "$work/tb_soc" | tee "$work/tb_soc.log"
    grep -q "^PASS tb_soc" "$work/tb_soc.log"
    exit
fi

for bench in "$here"/tb_*.v; do
    name=$(basename "$bench" .v)
    iverilog -g2012 -DSIMULATION -I"$here/../rtl" -s "$name" -o "$work/$name" \
        "$bench" "$here"/../rtl/*.v
    vvp -n "$work/$name" | tee "$work/$name.log"
    grep -q "^PASS $name" "$work/$name.log" || status=1
done
exit $status
