#!/bin/sh
# Makes the netlists of the designs in this folder, in both forms.
#
#   designs/clocks/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
. "$(dirname "$0")/../netlists.sh"

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
    finish_script "$design" >"$work/finish.ys"
    run "${design}_postmap" "
        read_rtlil $work/$design.il
        script $work/finish.ys
        hierarchy -top $design -purge_lib
        write_json $output/${design}_postmap.json
    "
done
