#!/usr/bin/env bash
# without_source_tree.sh SOURCE WORK COMPILER [LAUNCHER]
#
# What somebody does who only wants to use the library: builds and installs a copy of SOURCE, throws the copy and the
# build away, and builds and runs examples/consume with what is left.
set -euo pipefail
source_dir=$1 work=$2 compiler=$3 launcher=${4:-}
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
mkdir -p "$work/source"
cp "$here"/consume.sh "$here"/consume.expected "$work"
tar -C "$source_dir" --exclude=./.git --exclude=./build -cf - . | tar -C "$work/source" -xf -

cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" -DGLABRENIMGAF_BUILD_TESTS=OFF >/dev/null
cmake --build "$work/build" -- --quiet
cmake --install "$work/build" >/dev/null
rm -rf "$work/source" "$work/build"

for way in cmake pkg-config; do
    "$work/consume.sh" "$way" "$work/prefix" "$work/consume_$way" "$compiler" "$work/consume.expected"
done
cat "$work/consume_pkg-config/actual"
