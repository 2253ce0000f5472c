#!/usr/bin/env bash
# install.sh [PREFIX]
#
# Installs what building needs and is missing, builds the program and the library, and installs both below PREFIX
# (/usr/local).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

[ $# -le 1 ] && [[ ${1:-} != -* ]] || { echo "usage: install.sh [PREFIX]" >&2; exit 2; }
prefix=$(realpath -m "${1:-/usr/local}")
nearest=$prefix
until [ -e "$nearest" ]; do nearest=$(dirname "$nearest"); done
[ -d "$nearest" ] && [ -w "$nearest" ] || { echo "error: $nearest cannot be written; name another PREFIX" >&2; exit 1; }

install_packages
build_preset program
cmake --install "$root/build/program" --prefix "$prefix" >/dev/null
"$prefix/bin/netlistdb" --version
echo "The program: $prefix/bin/netlistdb"
