#!/bin/bash
# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
# clang-tidy over all of src. Eight files are read as one: the toolkit's headers, which each of them
# includes, are most of what a check takes.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/tidy

cmake --preset dev -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=8 -DTOVEK_TESTS=OFF -DTOVEK_BENCH=OFF \
    >/dev/null
# What the build generates must be there to be included.
[ -d src/platform/wayland ] && cmake --build "$build" --target tovek_wayland_protocols >/dev/null

mapfile -t batches < <(find "$build/src" -path '*/Unity/*.cxx' ! -path '*resources*' | sort)
[ ${#batches[@]} -gt 0 ] || { echo "nothing to check in $build" >&2; exit 1; }
printf '%s\n' "${batches[@]}" \
    | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet --checks=-bugprone-suspicious-include
echo "clang-tidy: ${#batches[@]} batches checked"
