#!/usr/bin/env bash
# Installs what is missing, builds, and shows the program on the checked-in design in both of its forms.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages
build_preset release netlistdb
netlistdb=$root/build/release/tools/netlistdb/netlistdb
cd "$root"

show() {
    printf '\n$ netlistdb %s\n' "$*"
    "$netlistdb" "$@"
}
for form in elaborated postmap; do
    design=$(ls designs/*_"$form".json)
    show tree "$design" --depth 2
    show info "$design"
done
