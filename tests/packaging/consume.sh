#!/usr/bin/env bash
# consume.sh cmake|pkg-config PREFIX WORK COMPILER EXPECTED
#
# Copies examples/consume out of the installation at PREFIX, builds it in WORK with nothing but that installation, runs
# it on a design saved by the installed program, and compares what it prints with the file EXPECTED.
set -euo pipefail
way=$1 prefix=$2 work=$3 compiler=$4 expected=$5

rm -rf "$work"
mkdir -p "$work"
cp -r "$prefix/share/glabrenimgaf/examples/consume/." "$work"
cd "$work"
"$prefix/bin/netlistdb" save "$prefix/share/glabrenimgaf/designs/soc_elaborated.json" soc.netlist

flags="-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror"
case $way in
cmake)
    cmake -S . -B build -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
        >/dev/null
    cmake --build build >/dev/null
    program=build/consume
    ;;
pkg-config)
    PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name glabrenimgaf.pc)") make -s CXX="$compiler" CXXFLAGS="$flags"
    program=./consume
    ;;
esac
"$program" soc.netlist >actual
diff -u "$expected" actual

# What it says of a file that is no netlist.
if "$program" main.cpp 2>error; then
    echo "error: a source file passed as a netlist" >&2
    exit 1
fi
diff -u - error <<<"consume: main.cpp: cannot be restored"
