#!/bin/sh
# Makes the netlists of both texts in this folder, elaborated and mapped to iCE40.
#
#   designs/plans/build.sh [OUTPUT_DIRECTORY]        default: netlists/ beside this file
#
# The results depend on the sources and on the yosys release only.
. "$(dirname "$0")/../netlists.sh"

for text in before after; do
    run "${text}_elaborated" "
        read_verilog -sv designs/plans/$text.v
        $(sed 's/soc_top/receiver/' designs/kvr/elaborate.ys)
        write_json $output/${text}_elaborated.json
    "
    run "${text}_postmap" "
        read_verilog -sv designs/plans/$text.v
        synth_ice40 -flatten -top receiver
        hierarchy -top receiver -purge_lib
        setattr -unset src c:*
        write_json $output/${text}_postmap.json
    "
    pack "$output/${text}_elaborated.json"
    pack "$output/${text}_postmap.json"
done
