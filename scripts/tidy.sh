#!/usr/bin/env bash
# scripts/tidy.sh [source...]
# Runs clang-tidy over the given .cpp files (all of them without names) with the flags of the debug build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[[ -f build/debug/compile_commands.json ]] || cmake --preset debug >/dev/null

files=("$@")
if ((${#files[@]} == 0)); then
  mapfile -d '' -t files < <(find src tests bench -type f -name '*.cpp' -print0 | sort -z)
fi
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p build/debug
