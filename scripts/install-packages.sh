#!/bin/bash
# Installs what is missing of the given sections of packages.txt; with nothing missing it does nothing.
#
#   scripts/install-packages.sh SECTION...
set -euo pipefail
list="$(dirname "$0")/../packages.txt"

fail() {
    echo "error: $*" >&2
    exit 1
}

[ $# -gt 0 ] || fail "expected the sections of packages.txt to install, for example: $0 run test"

wanted=()
for section in "$@"; do
    grep -qxF "[$section]" "$list" || fail "packages.txt has no section [$section]."
    mapfile -t names < <(awk -v section="[$section]" '
        { sub(/#.*/, "") }
        /^\[/ { inside = ($1 == section); next }
        inside && NF { print $1 }' "$list")
    wanted+=("${names[@]}")
done

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    fail "this system has no apt-get, so its packages cannot be installed from here." \
        "Install what corresponds to these Debian packages, then call cmake as README.md says: ${wanted[*]}"
fi

missing=()
for name in "${wanted[@]}"; do
    # one line for each architecture of the package; none when it was never here
    status="$(dpkg-query -W -f='${db:Status-Status}\n' "$name" 2>/dev/null || true)"
    grep -qx installed <<<"$status" || missing+=("$name")
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "Packages ($*): all ${#wanted[@]} installed."
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "these packages are missing and installing them takes root or sudo:" \
        "${missing[*]}. As root: apt-get install ${missing[*]}"
    as_root=(sudo)
    [ -z "${CI:-}" ] || as_root=(sudo -n)   # nobody is there to type a password
fi

echo "Packages ($*): installing through ${as_root[*]:+${as_root[*]} }apt-get: ${missing[*]}"
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
