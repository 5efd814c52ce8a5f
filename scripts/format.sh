#!/usr/bin/env bash
# Usage: format.sh [--check]
#
# Formats every C and C++ file that git knows of or would take; with --check says which are not
# formatted, and fails.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
patterns=('*.c' '*.cpp' '*.h' '*.hpp')
formatter=$(command -v clang-format-14 || command -v clang-format)

# A checkout may belong to somebody else than root, which git takes badly.
tracked() { git -c safe.directory='*' ls-files -z "$@" -- "${patterns[@]}"; }

if [ "${1:-}" = --check ]; then
    files=$(tracked | tr '\0' '\n' | wc -l)
    tracked | xargs -0 --no-run-if-empty "$formatter" --dry-run -Werror
    echo "$files files are formatted"
else
    tracked --cached --others --exclude-standard --deduplicate |
        xargs -0 --no-run-if-empty "$formatter" -i
fi
