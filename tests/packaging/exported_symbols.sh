#!/usr/bin/env bash
# exported_symbols.sh LIBRARY EXPECTED: compares what LIBRARY exports with the list in the file EXPECTED. Constructors
# and destructors count once, in whatever variants the compiler makes them.
set -euo pipefail
library=$1 expected=$2
actual=$(basename "$expected" .txt).actual

nm -DC --defined-only "$library" | cut -d ' ' -f 3- |
    sed -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
        -e 's/std::__cxx11::basic_regex<char, std::__cxx11::regex_traits<char> >/std::regex/g' -e 's/\[abi:cxx11\]//' |
    LC_ALL=C sort -u >"$actual"
diff -u "$expected" "$actual" || {
    echo "error: the exported symbols changed; if they are meant to, copy $PWD/$actual over $expected" >&2
    exit 1
}
