#!/bin/bash
# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
# clang-tidy over all of src, in the batches that are compiled: the toolkit's headers, which every file
# includes, are most of what a check takes.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/tidy

cmake --preset dev -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
    -DCMAKE_UNITY_BUILD=ON -DTOVEK_TESTS=OFF -DTOVEK_BENCH=OFF \
    >/dev/null
# What the build generates must be there to be included.
[ -d src/platform/wayland ] && cmake --build "$build" --target tovek_wayland_protocols >/dev/null

mapfile -t batches < <(find "$build/src" -path '*/Unity/*.cxx' ! -path '*resources*' | sort)
[ ${#batches[@]} -gt 0 ] || { echo "nothing to check in $build" >&2; exit 1; }
# Files with options of their own are compiled by themselves.
mapfile -t alone < <(sed -n "s|^ *\"file\": \"\($PWD/src/.*\.cpp\)\".*|\1|p" "$build/compile_commands.json" | sort -u)
printf '%s\n' "${batches[@]}" "${alone[@]}" \
    | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet --checks=-bugprone-suspicious-include
echo "clang-tidy: ${#batches[@]} batches and ${#alone[@]} files checked"
