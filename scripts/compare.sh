#!/usr/bin/env bash
# Installs what is missing, builds, runs netlistdb beside yosys, OpenSTA and grep, and writes docs/benchmarks.md.
# Options: --small, --rounds N, --older BUILD (see bench/compare.py --help).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages packages-test.txt packages-compare.txt
build_preset release netlistdb netlist_generator bench_{drive,read_json,restore,import,walk,search,clocks,clockmap,crossings,memory}
exec python3 -B "$root/bench/compare.py" "$root/build/release" "$@"
