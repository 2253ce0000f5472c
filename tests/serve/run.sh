#!/usr/bin/env bash
# run.sh DIRECTORY: installs the clients in DIRECTORY, unless they are there already, and asks the server with them.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
mkdir -p "$1"
cd "$1"
if ! cmp -s "$here/package-lock.json" installed.json; then
    rm -f installed.json
    cp "$here/package.json" "$here/package-lock.json" .
    timeout 300 "${NPM:-npm}" ci --no-audit --no-fund --no-update-notifier --loglevel=error
    cp package-lock.json installed.json
fi
cp "$here/client.test.mjs" .
timeout 300 "${NODE:-node}" --test client.test.mjs
