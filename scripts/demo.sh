#!/usr/bin/env bash
# Installs what building needs and is missing, builds the program, and shows it on the checked-in design.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages
build_preset program
netlistdb=$root/build/program/tools/netlistdb/netlistdb
cd "$root"
design=designs/soc_elaborated.json

# show LINES TEXT COMMAND: the first lines of the output of a command.
show() {
    local shown=$1 text=$2
    shift 2
    printf '\n# %s\n$ netlistdb %s\n' "$text" "$*"
    "$netlistdb" "$@" 2>&1 | awk -v shown="$shown" 'NR <= shown { print } END { if (NR > shown) print "..." }'
}
show 7 "What the design holds" info $design
show 5 "Where a handshake is, by any part of its name" search $design tx_ready
show 3 "Which clock drives it" clock-of $design 'g_uart[0].u_uart/tx_ready'
show 4 "How much each clock drives" clocks $design
show 5 "What a debugger may probe there" probes $design --from 'g_uart[0].u_uart/u_tx'
printf '\nThe program: %s\n' "$netlistdb"
echo "To install it: scripts/install.sh [PREFIX]; what else it does: docs/cli.md"
