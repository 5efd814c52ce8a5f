#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: check-exported-symbols.sh <libvur_dl.so> <libkolt.so>
#
# Fails when a library exports a symbol outside its families, or when libvur_dl needs a library
# other than libkolt and the C and C++ runtimes.
set -euo pipefail

vur_dl=$1
kolt=$2
failures=0

fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

exported_names() {
    nm --dynamic --defined-only --format=posix "$1" | cut -d' ' -f1
}

check_families() {
    local library=$1 pattern=$2 count strangers
    count=$(exported_names "$library" | wc -l)
    strangers=$(exported_names "$library" | grep -Ev "^($pattern)" || true)
    if [ "$count" -eq 0 ]; then
        fail "$(basename "$library") exports nothing"
    fi
    if [ -n "$strangers" ]; then
        fail "$(basename "$library") exports symbols outside its families:"
        sed 's/^/    /' <<<"$strangers"
    fi
    echo "$(basename "$library"): $count exported symbols"
}

check_needed() {
    local library=$1 pattern=$2 needed name
    needed=$(readelf --dynamic --wide "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    for name in $needed; do
        if ! grep -Eqx "$pattern" <<<"$name"; then
            fail "$(basename "$library") needs $name"
        fi
    done
    echo "$(basename "$library") needs:" $needed
}

check_families "$vur_dl" 'VUR_DL_|LogMessageWriteThread_|gVUR_DL_'
check_families "$kolt" 'KOLT_|DDS_'
check_needed "$vur_dl" \
    'libkolt\.so\.[0-9]+|libstdc\+\+\.so\.6|libgcc_s\.so\.1|libm\.so\.6|libc\.so\.6|ld-linux.*'

if ! readelf --dynamic --wide "$vur_dl" | grep -q '(NEEDED).*\[libkolt\.so\.'; then
    fail "$(basename "$vur_dl") does not need libkolt"
fi

exit $((failures > 0))
