#!/bin/bash
# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
# clang-tidy over the rule files: tidy.sh BUILD_FOLDER SECONDS. The files changed last come first;
# what the time does not reach is named, not passed over in silence.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
budget=$2

# The rules are the files of one target; the compiler's data base knows where each is built.
rule_files()
{
    awk '/^ *"command":/ { isRule = /\/tovek_rules\.dir\// }
         /^ *"file":/ && isRule && /\/src\// && !/autogen/ { gsub(/^ *"file": "|",?$/, ""); print }' \
        "$build/compile_commands.json" | sort -u
}
mapfile -t files < <(
    rule_files | while read -r file; do
        echo "$(git -c safe.directory='*' log -1 --format=%ct -- "$file") $file"
    done | sort -rn | cut -d ' ' -f 2-
)

[ ${#files[@]} -gt 0 ] || { echo "no rule files in $build" >&2; exit 1; }
checked=0
for ((at = 0; at < ${#files[@]}; at += $(nproc))); do
    if [ "$SECONDS" -ge "$budget" ]; then
        echo "time is up; not checked: ${files[*]:at}"
        break
    fi
    batch=("${files[@]:at:$(nproc)}")
    printf '%s\n' "${batch[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet
    checked=$((checked + ${#batch[@]}))
done
echo "clang-tidy: $checked of ${#files[@]} rule files checked"
