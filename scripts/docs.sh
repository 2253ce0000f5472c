#!/usr/bin/env bash
# Installs what is missing and writes the API reference to build/docs/html, with warnings as errors.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_packages packages-docs.txt
cd "$root"
GLABRENIMGAF_VERSION=$(sed -n 's/^project(glabrenimgaf VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
export GLABRENIMGAF_VERSION
mkdir -p build/docs
doxygen docs/Doxyfile
echo "$root/build/docs/html/index.html"
