#!/usr/bin/env bash
# from_memory.sh PREFIX WORK COMPILER: builds and runs from_memory/ beside this script against the installation at
# PREFIX, and a program that finds the netlist database with pkg-config.
set -euo pipefail
prefix=$1 work=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
cmake -S "$here/from_memory" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work" >/dev/null
"$work/from_memory" "$prefix/share/glabrenimgaf/designs/soc_elaborated.json"

cd "$work"
export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name glabrenimgaf-verific.pc)")
cat >restored.cpp <<'TEXT'
#include <DataBase.h>
#include <netlistdb/DesignDatabase.h>
int main()
{
    kvr::netlistdb::DesignDatabase database(false);
    return Verific::Libset::Global() == nullptr ? 1 : 0;
}
TEXT
read -ra flags < <(pkg-config --cflags --libs glabrenimgaf-verific)
"$compiler" -std=c++17 restored.cpp -o restored "${flags[@]}" \
    -Wl,-rpath,"$(pkg-config --variable=libdir glabrenimgaf-verific)"
./restored
