#!/usr/bin/env bash
# Every #include of a project header in the source tree points down the layer
# order, or within its own folder:
#   async <- model <- grading <- {watermark, preview} <- engine <- controller
#   <- {cli, ui} <- app
# Folders on one level do not include each other. Prints each offending
# file:line with the include, and fails if there is any.
set -euo pipefail
cd "$1"
find . -name '*.h' -o -name '*.cpp' | sort | xargs awk '
BEGIN {
    rank["async"] = 0; rank["model"] = 1; rank["grading"] = 2; rank["watermark"] = 3
    rank["preview"] = 3; rank["engine"] = 4; rank["controller"] = 5; rank["cli"] = 6
    rank["ui"] = 6; rank["app"] = 7
}
/^[ \t]*#[ \t]*include[ \t]*"[a-z_]+\// {
    target = $0
    sub(/^[^"]*"/, "", target); sub(/\/.*/, "", target)
    own = FILENAME
    sub(/^\.\//, "", own); sub(/\/.*/, "", own)
    if (target == own) next
    if (!(own in rank) || !(target in rank) || rank[target] >= rank[own]) {
        sub(/^\.\//, "", FILENAME)
        printf "%s:%d: %s points up or across the layers (%s includes %s)\n", FILENAME, FNR, $0, own, target
        bad = 1
    }
}
END { exit bad }'
