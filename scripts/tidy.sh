#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: tidy.sh <build folder>
#
# Runs clang-tidy over every C and C++ file of ours that the configured build compiles, and prints
# what it finds; fails when that is anything. Wants a build with clang, whose warnings are among the
# findings.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$1
jobs=$(nproc)

files=$(sed -n 's|^ *"file": "'"$PWD"'/\(.*\)".*|\1|p' "$build/compile_commands.json" |
    grep -E '^(kolt|srcC|tools|examples|bench|tests)/' | sort -u)
if [ -z "$files" ]; then
    echo "no files of ours in $build/compile_commands.json" >&2
    exit 1
fi

# Suppressed warnings of system headers are counted on standard error; findings are on standard output.
if ! xargs -P "$jobs" -n 1 clang-tidy-14 -quiet -p "$build" <<<"$files" 2>"$build/tidy.log"; then
    grep -E '^error|Error' "$build/tidy.log" >&2 || true
    exit 1
fi
echo "$(wc -l <<<"$files") files are tidy"
