#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors, and runs every test.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

step() { printf '\n== %s (after %d s)\n' "$1" "$SECONDS"; }

step "Packages"
install_packages packages-test.txt packages-browser.txt
# Other releases of Node.js bring an npm of their own, which Debian's conflicts with.
command -v npm >/dev/null || install_packages packages-npm.txt

step "Clang, address and undefined-behaviour sanitizers: every test but packaging, simulation and texts, and a fixed run of each fuzzer"
build_preset asan
ctest --preset asan -j "$jobs"

step "GCC, thread sanitizer: the tests with threads"
build_preset tsan search_cancel_test memory_test name_block_threads_test
ctest --preset tsan -j "$jobs" -L threads

step "GCC, optimised: every test, packages, and the build against a commercial layout"
build_preset release
ctest --preset release -j "$jobs"

printf '\nAll tests passed after %d s\n' "$SECONDS"
