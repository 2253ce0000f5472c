# Shared by the scripts beside this file; sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

# install_packages [list...]: installs what is missing of packages.txt and of further lists beside it. Says nothing and
# needs no network when all are there.
install_packages() {
    local wanted missing
    mapfile -t wanted < <(cd "$root/scripts" && grep -hvE '^\s*(#|$)' packages.txt "$@")
    missing=()
    for package in "${wanted[@]}"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "error: packages are missing, and only root can install them:" >&2
            echo "apt-get install --no-install-recommends ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        >/dev/null
}

# build_preset <preset> [target...]: configures once, builds what changed.
build_preset() {
    local preset=$1
    shift
    [ -f "$root/build/$preset/build.ninja" ] || cmake -S "$root" --preset "$preset" >/dev/null
    cmake --build "$root/build/$preset" -j "$jobs" ${1:+--target "$@"} -- --quiet
}
