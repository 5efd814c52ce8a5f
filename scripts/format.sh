#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: format.sh [--check]
#
# Formats every C and C++ file that git knows of or would take; with --check says which are not
# formatted, or miss what every file has and no formatter adds, and fails.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
patterns=('*.c' '*.cpp' '*.h' '*.hpp')
formatter=$(command -v clang-format-14 || command -v clang-format)

# A checkout may belong to somebody else than root, which git takes badly.
tracked() { git -c safe.directory='*' ls-files -z "$@" -- "${patterns[@]}"; }

# refuse <what is wrong> <grep options and pattern>...: fails when a file that is read from standard
# input, NUL between names, matches.
refuse() {
    local problem=$1 found
    shift
    found=$(xargs -0 --no-run-if-empty grep "$@" || true)
    if [ -n "$found" ]; then
        echo "$problem:" >&2
        sed 's/^/    /' <<<"$found" >&2
        return 1
    fi
}

if [ "${1:-}" = --check ]; then
    failed=0
    files=$(tracked | tr '\0' '\n' | wc -l)
    tracked | xargs -0 --no-run-if-empty "$formatter" --dry-run -Werror || failed=1
    tracked | refuse "without the license line" -L 'SPDX-License-Identifier: Apache-2.0' ||
        failed=1
    tracked | grep -z '\.h' | refuse "headers without #pragma once" -L '^#pragma once$' || failed=1
    # The public headers are C, where the types have no std::.
    tracked | grep -zE '\.(cpp|hpp)$' | refuse "integer types without std::" \
        -nE '^[^/"]*(^|[^:_a-zA-Z0-9"])(u?int(8|16|32|64|ptr)_t|size_t|ptrdiff_t)\b' || failed=1
    [ "$failed" -eq 0 ] || exit 1
    echo "$files files are formatted"
else
    tracked --cached --others --exclude-standard --deduplicate |
        xargs -0 --no-run-if-empty "$formatter" -i
fi
