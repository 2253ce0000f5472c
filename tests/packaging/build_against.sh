#!/usr/bin/env bash
# build_against.sh SOURCE OBJECTS WORK COMPILER [LAUNCHER]
#
# Lays out the object files of the embedded netlist database, listed in the file OBJECTS, and its headers as a commercial
# installation is laid out, configures SOURCE against that, and builds and tests the libraries; with WHOLE=1 in the
# environment the program as well. The libraries that the embedded database itself needs ride along in a linker script.
set -euo pipefail
source_dir=$1 objects=$2 work=$3 compiler=$4 launcher=${5:-}
installation=$work/installation build=$work/build

for module in containers util database; do
    mkdir -p "$installation/$module"
    cp -p "$source_dir/platform/verific/$module"/*.h "$installation/$module/"
    rm -f "$installation/$module/$module"-*.a
done
grep '/containers/' "$objects" | xargs ar qcs "$installation/containers/containers-linux.a"
grep '/util/' "$objects" | xargs ar qcs "$installation/util/util-linux.a"
grep -vE '/(containers|util)/' "$objects" | xargs ar qcs "$installation/database/database-objects.a"
echo "INPUT ( $installation/database/database-objects.a -lcapnp -lkj -lxxhash )" \
    >"$installation/database/database-linux.a"

# Neither optimised nor with debug information: this build is about whether it fits together.
cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS="-O0 -g0" \
    -DCMAKE_UNITY_BUILD=ON \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" -DVERIFIC_ROOT="$installation" >/dev/null
# What meets the netlist database: the reader, the imports, both traces and the analyses.
programs=(database_test clock_unit_test guide_snippets)
cmake --build "$build" --target yosys_reader ${WHOLE:+netlistdb} "${programs[@]}" -- --quiet
ctest --test-dir "$build" --output-on-failure -j "$(nproc)" --no-tests=error \
    -R "^($(IFS='|'; echo "${programs[*]}")${WHOLE:+|e2e_(info|clocks|probes|save|search)})$"
