#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: pkg-config.sh <C compiler> <prefix> <library folder below it> <source> <work folder>
#
# Builds and runs one C source with the flags that pkg-config gives for vur_dl.
set -euo pipefail

compiler=$1 prefix=$2 libdir=$3 source=$4 work=$5

mkdir -p "$work"
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
pkg-config --print-requires vur_dl | grep -q '^kolt'
read -r -a flags <<<"$(pkg-config --cflags --libs vur_dl)"

"$compiler" -std=c11 -Wall -Wextra -Wpedantic -Werror "$source" -o "$work/consumer" \
    "${flags[@]}" "-Wl,-rpath,$prefix/$libdir"
"$work/consumer"
