#!/usr/bin/env bash
# headers_alone.sh PREFIX COMPILER: compiles every installed public header alone, with all warnings and with no other
# directory to look in, in particular none with headers of the netlist database.
set -euo pipefail
prefix=$1
export compiler=$2
cd "$prefix/include"

check() {
    echo "#include <$1>" | "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fsyntax-only \
        -I . -x c++ - || { echo "error: $1 does not compile alone with $compiler" >&2; return 1; }
}
export -f check
printf '%s\0' netlistdb/*.h netlistdb/analysis/*.h | xargs -0 -n 1 -P 2 bash -c 'check "$0"'
