#!/usr/bin/env bash
# Installs what is missing, runs the tests on a build that counts, and prints the line coverage of the library and of the
# embedded netlist database, with the lines that no test reaches. CONTRIBUTING.md says why those are left.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages packages-test.txt packages-coverage.txt
build_preset coverage
find "$root/build/coverage" -name '*.gcda' -delete
ctest --preset coverage -j "$jobs" -LE packaging >"$root/build/coverage/tests.log" ||
    { cat "$root/build/coverage/tests.log"; exit 1; }
gcovr --root "$root" --object-directory "$root/build/coverage" --exclude-throw-branches --exclude-unreachable-branches \
    --filter "$root/src/" --filter "$root/platform/" --filter "$root/include/"
