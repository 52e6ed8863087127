#!/usr/bin/env bash
# scripts/format.sh [--check] [file...]
# Formats the given sources (all of them without names) in place; with --check it only reports what it would change.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mode=(-i)
if [[ ${1:-} == --check ]]; then
  mode=(--dry-run --Werror)
  shift
fi

files=("$@")
if ((${#files[@]} == 0)); then
  mapfile -d '' -t files < <(find src tests bench -type f \( -name '*.h' -o -name '*.cpp' \) -print0 | sort -z)
fi
exec clang-format-14 --style=file "${mode[@]}" "${files[@]}"
