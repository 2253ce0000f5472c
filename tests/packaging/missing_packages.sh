#!/usr/bin/env bash
# missing_packages.sh SOURCE WORK: what the scripts do and say where packages are missing, with programs in place of those
# that would ask or change this machine.
set -euo pipefail
source_dir=$1 work=$2

rm -rf "$work"
mkdir -p "$work/scripts" "$work/bin"
cp "$source_dir/scripts/common.sh" "$work/scripts/"
printf '# comment\nhere\nmissing-one\n' >"$work/scripts/packages.txt"
printf 'missing-two\n' >"$work/scripts/packages-more.txt"
for program in bash cat dirname grep id nproc; do
    ln -s "$(command -v "$program")" "$work/bin/$program"
done
stub() {
    printf '#!/bin/bash\n%s\n' "$2" >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}
stub dpkg-query '[ "${!#}" = here ] && echo "install ok installed"'
stub apt-get "echo \"\$*\" >>'$work/calls'"
stub env 'shift; exec "$@"'

# install UID [LIST...]
install() {
    rm -f "$work/bin/id" "$work/calls"
    stub id "echo $1"
    PATH=$work/bin bash -c 'source "$0/scripts/common.sh"; shift; install_packages "$@"' "$work" "$@"
}

diff -u - <(install 0 packages-more.txt) <<<"Installing: missing-one missing-two"
diff -u - "$work/calls" <<'END'
update -qq
install -y -qq --no-install-recommends missing-one missing-two
END

if install 1000 packages-more.txt >"$work/out" 2>"$work/err"; then
    echo "error: packages were missing, and nobody could install them" >&2
    exit 1
fi
diff -u - "$work/err" <<'END'
error: packages are missing, and only root can install them:
apt-get install --no-install-recommends missing-one missing-two
END
[ ! -s "$work/out" ] && [ ! -e "$work/calls" ]

# No package stands in two lists that are installed together.
cd "$source_dir/scripts"
for list in packages-*.txt; do
    twice=$(grep -hvE '^\s*(#|$)' packages.txt packages-test.txt $([ "$list" = packages-test.txt ] || echo "$list") | sort | uniq -d)
    [ -z "$twice" ] || { echo "error: twice in packages.txt, packages-test.txt and $list:" $twice >&2; exit 1; }
done
