#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]
#
# Installs what is missing, builds the fuzz targets, and runs each for so many seconds (60), as many side by side as the
# machine has processors. What is found of interest stays in build/fuzz/corpus/ for the next run. A target that finds a
# defect ends at once; its message and the input are shown, and the exit status is 1.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

duration=${1:-60}
[[ $duration =~ ^[1-9][0-9]*$ ]] || { echo "usage: fuzz.sh [SECONDS [TARGET...]]" >&2; exit 2; }
targets=("${@:2}")
if [ ${#targets[@]} -eq 0 ]; then
    targets=(saved_netlist search_pattern yosys_json)
fi
fuzzers=$root/build/asan/tests/fuzz
results=$root/build/fuzz

install_packages packages-test.txt
build_preset asan "${targets[@]/%/_fuzzer}"

# run_target <name>: status 0 when nothing was found.
run_target() {
    local name=$1 corpus=$results/corpus/$1 findings=$results/findings/$1 log=$results/$1.log options
    local seeds=("$root/tests/fuzz/corpus/$name")
    if [ -d "$root/tests/fuzz/regressions/$name" ]; then seeds+=("$root/tests/fuzz/regressions/$name"); fi
    mkdir -p "$corpus" "$findings"
    mapfile -t options <"$fuzzers/${name}_fuzzer.options"
    if "$fuzzers/${name}_fuzzer" "${options[@]}" -max_total_time="$duration" -print_final_stats=1 \
        -artifact_prefix="$findings/" "$corpus" "${seeds[@]}" >"$log" 2>&1; then
        printf '%s: nothing found in %s inputs; %s of interest kept\n' "$name" \
            "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
            "$(find "$corpus" -type f | wc -l)"
        return 0
    fi
    printf '%s: FOUND A DEFECT; the whole message is in %s\n' "$name" "$log"
    grep -E '^(==[0-9]+==ERROR|SUMMARY|.*runtime error:)' "$log" | head -n 5 || true
    local input
    input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    if [ -n "$input" ]; then
        printf 'input: %s\n' "$input"
        od -A x -t x1z "$input" | head -n 32
    fi
    return 1
}

running=0
status=0
for name in "${targets[@]}"; do
    if [ "$running" -ge "$jobs" ]; then
        wait -n || status=1
        running=$((running - 1))
    fi
    run_target "$name" &
    running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
    wait -n || status=1
    running=$((running - 1))
done
exit "$status"
