#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors, and runs every test.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

step() { printf '\n== %s (after %d s)\n' "$1" "$SECONDS"; }

step "Packages"
install_packages

step "GCC, address and undefined-behaviour sanitizers: every test but packaging"
build_preset asan
ctest --preset asan -j "$jobs"

step "GCC, thread sanitizer: the tests with threads"
build_preset tsan search_cancel_test
ctest --preset tsan -j "$jobs" -L threads

step "Clang: every test but packaging"
build_preset clang
ctest --preset clang -j "$jobs" -LE packaging

step "GCC, optimised: the program, packages, and the build against a commercial layout"
build_preset release netlistdb glabrenimgaf yosys_reader bench_drive netlist_generator
ctest --preset release -j "$jobs" -L 'e2e|packaging'

printf '\nAll tests passed after %d s\n' "$SECONDS"
