#!/usr/bin/env bash
# Installs what is missing, then holds every C++ file to .clang-format and the sources to .clang-tidy.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages packages-test.txt packages-lint.txt
cd "$root"

# tracked <pattern>...: the files that git tracks and that are still there, each ended by a NUL.
tracked() {
    git ls-files -z "$@" | while IFS= read -r -d '' file; do
        if [ -f "$file" ]; then printf '%s\0' "$file"; fi
    done
}
tracked '*.h' '*.cpp' | xargs -0 clang-format-14 --dry-run -Werror

# clang-tidy asks how each file is compiled, and reads the header that is made from the schema of saved netlists and what
# the Python module has compiled beforehand.
build_preset lint platform/verific/generated/saved_netlist.capnp.h \
    python/CMakeFiles/netlistdb_python.dir/cmake_pch.hxx.pch
tracked 'memory/*.cpp' 'src/*.cpp' 'analysis/*.cpp' 'platform/*.cpp' 'frontend/*.cpp' 'python/src/*.cpp' 'tools/*.cpp' |
    xargs -0 -P "$jobs" -n 4 clang-tidy-14 -p build/lint --quiet 2>&1 |
    { grep -vE '^[0-9]+ warnings? generated\.$' || true; }
