#!/bin/sh
# Makes the netlists of the designs in this folder, in both forms.
#
#   designs/map/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
. "$(dirname "$0")/../netlists.sh"

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
    finish_script "$design" >"$work/finish.ys"
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
