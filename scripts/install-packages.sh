#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: install-packages.sh <group>...
#
# Installs the packages of the named groups in packages.txt that are missing. Silent and without
# root or network when there are none.
set -euo pipefail

list="$(dirname "${BASH_SOURCE[0]}")/packages.txt"

wanted() {
    local package group
    while read -r package group; do
        case "$package" in '' | '#'*) continue ;; esac
        if [[ " $* " == *" $group "* ]]; then
            echo "$package"
        fi
    done <"$list"
}

is_installed() {
    [ "$(dpkg-query --show --showformat '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

if [ $# -eq 0 ]; then
    echo "usage: $0 <group>..." >&2
    exit 2
fi

if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system: install the counterparts of these packages yourself:" >&2
    wanted "$@" | sed 's/^/    /' >&2
    echo "(continuing as if they were there)" >&2
    exit 0
fi

missing=()
for package in $(wanted "$@"); do
    is_installed "$package" || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null; then
        as_root=(sudo)
    else
        echo "These packages are missing, and installing them takes root:" >&2
        echo "    apt-get install ${missing[*]}" >&2
        exit 1
    fi
fi

echo "== Installing ${#missing[@]} Debian packages: ${missing[*]}"
"${as_root[@]}" apt-get update -q </dev/null
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}" </dev/null
