#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Usage: check-layers.sh
#
# Fails when a file of the product includes a header of a layer above its own (layers.txt), when a
# library of somebody else's is included outside the one folder that may, or when a file lies in no
# layer.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

git -c safe.directory='*' ls-files -z --cached --others --exclude-standard --deduplicate -- \
    'include/*.h' 'kolt/*.h' 'kolt/*.c' 'kolt/*.cpp' 'kolt/*.hpp' 'srcC/*.cpp' 'srcC/*.hpp' \
    'tools/*.cpp' 'tools/*.hpp' 'examples/*.c' 'examples/*.cpp' |
    xargs -0 awk '
        function fail(text) { printf "%s:%d: %s\n", FILENAME, FNR, text; failures++ }

        # The layer of a file: that of its folder, or the one that a public header is assigned to.
        function layer_of(path) {
            if (path in public_header) return public_header[path]
            sub("/[^/]*$", "", path)
            return path
        }

        # Where an included name lies: below an include folder, or beside the including files.
        function resolve(name) {
            if (name in public_header) return name
            if (name ~ /^(kolt|vur_dl)\//) return name
            if (FILENAME ~ /^kolt\/src\//) return "kolt/src/" name
            if (FILENAME ~ /^srcC\// && name ~ /\//) return "srcC/" name
            if (FILENAME ~ /^tools\//) return "tools/distlog/" name
            return layer_of(FILENAME) "/" name
        }

        FILENAME == "scripts/layers.txt" {
            if ($1 ~ /:$/) {
                sub(":", "", $1)
                rank[$1] = ++ranks
                for (i = 2; i <= NF; i++) public_header[$i] = $1
            }
            next
        }

        FNR == 1 {
            files++
            own = FILENAME
            sub("^(kolt/)?(include|internal)/", "", own)
            layer = layer_of(own)
            if (!(layer in rank)) fail("is in no layer")
        }

        /^[ \t]*#[ \t]*include[ \t]*("|<(kolt|kolt_internal|vur_dl)\/)/ {
            split($0, part, /["<>]/)
            target = layer_of(resolve(part[2]))
            if (!(target in rank)) fail("includes " part[2] ", which is in no layer")
            else if (rank[target] < rank[layer])
                fail(layer " must not include " part[2] ", which belongs to " target " above it")
        }

        /^[ \t]*#[ \t]*include[ \t]*[<"]dds(\/|\.h)/ && FILENAME !~ /^kolt\/src\/engine\// {
            fail("the engine is included outside kolt/src/engine")
        }
        /^[ \t]*#[ \t]*include[ \t]*[<"]expat/ && FILENAME !~ /^kolt\/src\/xml\// {
            fail("expat is included outside kolt/src/xml")
        }

        /kolt_internal\// && FILENAME ~ /^examples\// {
            fail("an example includes what is not installed")
        }

        END {
            if (files == 0) { print "no files were read"; failures++ }
            printf "%d files, %d against the layers\n", files, failures
            exit failures > 0
        }' scripts/layers.txt
