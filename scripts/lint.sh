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

# Sources of a target are looked at several together: most of the time goes into the headers that they share.
together=$(sed -nE 's,^ *"file": ".*/(build/lint/(src|analysis|platform|frontend|python|tools)/.*/Unity/.*)".*,\1,p' \
    build/lint/compile_commands.json)
alone=$(comm -23 \
    <(tracked {memory,src,analysis,platform,frontend,python/src,tools}/'*.cpp' | tr '\0' '\n' | sort) \
    <(xargs sed -n "s:^#include \"$root/\(.*\)\"\$:\1:p" <<<"$together" | sort -u))
printf '%s\n' "$together" "$alone" | xargs -P "$jobs" -n 1 clang-tidy-14 -p build/lint --quiet 2>&1 |
    { grep -vE '^[0-9]+ warnings? generated\.$' || true; }
