#!/usr/bin/env bash
# install.sh BUILD PREFIX LIBDIR: installs BUILD into a fresh PREFIX, by way of another place: an installation can be moved.
set -euo pipefail
build=$1 prefix=$2 libdir=$3

rm -rf "$prefix" "$prefix.first"
cmake --install "$build" --prefix "$prefix.first" >/dev/null
mv "$prefix.first" "$prefix"

if grep -rl --include='*.cmake' --include='*.pc' -e "$build" -e "$prefix.first" "$prefix"; then
    echo "error: these files name the place where they were built" >&2
    exit 1
fi
for file in "$prefix/bin/netlistdb" "$prefix/$libdir"/libglabrenimgaf.so "$prefix/$libdir"/libglabrenimgaf-analysis.so \
    "$prefix/$libdir"/libverific.so; do
    readelf -d "$file" | awk -v file="$file" \
        '/\((RPATH|RUNPATH)\)/ && !/\[\$ORIGIN[^:]*\]/ { print "error: " file ": " $0; bad = 1 } END { exit bad }' >&2
done
