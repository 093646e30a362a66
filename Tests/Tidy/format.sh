#!/usr/bin/env bash
# usage: format.sh ROOT. Fails when clang-format would change a source; it changes nothing itself.
set -euo pipefail
cd "$1"
folders=()
for folder in Async Desktop Util Core UI App Platform Tests Bench; do
    [ -d "$folder" ] && folders+=("$folder")
done
find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -r clang-format-19 --dry-run -Werror
