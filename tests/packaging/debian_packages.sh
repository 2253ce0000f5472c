#!/usr/bin/env bash
# debian_packages.sh SOURCE BUILD WORK LIBDIR VERSION: makes the Debian packages of BUILD, compares what is in them with
# the list beside this script, checks what they depend on, and runs the program out of the unpacked packages.
set -euo pipefail
source_dir=$1 build=$2 work=$3 libdir=$4 version=$5
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
mkdir -p "$work"
cd "$work"
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work" >cpack.log 2>&1 || { cat cpack.log >&2; exit 1; }

for package in libglabrenimgaf0 libglabrenimgaf-dev netlistdb python3-netlistdb; do
    file=$(echo "${package}_${version}"-*.deb)
    echo "$package"
    dpkg-deb -c "$file" | awk '$1 !~ /^d/ { print "    " substr($6, 2) }' |
        sed -e "/\/python3\//!s,/usr/$libdir/,/usr/LIBDIR/," -e "s,$version,VERSION," -e 's,Targets-[a-z]*\.cmake,Targets-CONFIG.cmake,' \
            -e 's,\.cpython-[^/]*\.so,.so,' |
        LC_ALL=C sort
    dpkg-deb -x "$file" root
done >actual
diff -u "$here/debian_packages.txt" actual

# depends PACKAGE WORD...: fails unless PACKAGE depends on each WORD.
depends() {
    local field word
    field=$(dpkg-deb -f "$1_${version}"-*.deb Depends)
    for word in "${@:2}"; do
        [[ $field == *"$word"* ]] || { echo "error: $1 depends on '$field', without $word" >&2; exit 1; }
    done
}
depends libglabrenimgaf0 libc6 libssl3 libcapnp
depends libglabrenimgaf-dev "libglabrenimgaf0 (= $version-"
depends python3-netlistdb "libglabrenimgaf0 (= $version-" "python3 (>= 3" libfmt libsimdjson
depends netlistdb "libglabrenimgaf0 (= $version-" libfmt libsimdjson

# Where a loader looks is the loader's matter, addresses are random, tables of functions cannot be overwritten, and copies
# of unknown length are checked.
hardened() {
    local file=$1 told
    told=$(readelf -W --file-header --program-headers --dynamic --dyn-syms "$file")
    ! grep -E '\((RPATH|RUNPATH)\)' <<<"$told" || { echo "error: $file says where libraries are" >&2; exit 1; }
    for wanted in 'BIND_NOW|FLAGS_1.* NOW' GNU_RELRO 'Type: +DYN' __stack_chk_fail "${@:2}"; do
        grep -qE "$wanted" <<<"$told" || { echo "error: $file shows no $wanted" >&2; exit 1; }
    done
}
hardened root/usr/bin/netlistdb _chk@
hardened "root/usr/$libdir/libglabrenimgaf.so.0"
hardened "root/usr/$libdir/libglabrenimgaf-analysis.so.0"
hardened "root/usr/$libdir/libverific.so.1"
hardened root/usr/lib/python3/dist-packages/netlistdb/_native.*.so

lintian --fail-on error ./*.deb >lintian.log 2>&1 || { cat lintian.log >&2; exit 1; }

LD_LIBRARY_PATH=root/usr/$libdir root/usr/bin/netlistdb info "$source_dir/designs/soc_elaborated.json" >/dev/null
PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=root/usr/lib/python3/dist-packages LD_LIBRARY_PATH=root/usr/$libdir \
    /usr/bin/python3 -W ignore -c '
import sys, netlistdb
with netlistdb.load(sys.argv[1]) as design:
    print(design.top.module.name, len(design.clocks))' "$source_dir/designs/soc_elaborated.json" >/dev/null
