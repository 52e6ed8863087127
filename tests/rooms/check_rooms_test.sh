#!/usr/bin/env bash
# The check of the rooms tells what is wrong: made sources against made tables.
# shellcheck disable=SC2016 # backticks are those of the tables
set -euo pipefail
check=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/scripts/check_rooms.sh
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/src/up" "$scratch/src/down"
printf '#include "down/a.h"\n#include "up/b.h"\n' >"$scratch/src/up/b.cpp"
printf '#include <up/not_ours.h>\n' >"$scratch/src/down/a.h"
status=0

# table up-row down-row: what the rows allow.
table() { printf '## Rooms\n| `up` | x | %s |\n| `down` | `up` | %s |\n## Next\n| `other` | y | |\n' "$1" "$2" >"$scratch/table.md"; }
run() { "$check" "$scratch/table.md" "$scratch/src" 2>&1; }
expect_clean() {
  if ! run >/dev/null; then echo "$1: refused"; status=1; fi
}
expect_told() {
  local out
  if out=$(run); then echo "$1: not told"; status=1; return; fi
  if [[ $out != *"$2"* ]]; then printf '%s: told as %s\n' "$1" "$out"; status=1; fi
}

table '`down`' ''
expect_clean "an arrow down"
table '`up` and below' ''
expect_told "a row that names itself" "stands above it"
table '`down/a.h`' ''
expect_clean "a single header"
table '`down/c.h`' ''
expect_told "another header" "b.cpp may not include down/a.h"
table '' ''
expect_told "an arrow without a row" "b.cpp may not include down/a.h"
table '`down`' '`up`'
expect_told "a row that names a room above it" "names up, which stands above it"
table '`down`, `nowhere`' ''
expect_told "a row that names no room" "nowhere, which has no row"
table '`down`' ''
mkdir "$scratch/src/cellar"
touch "$scratch/src/cellar/c.h"
expect_told "a room without a row" "lies in a room without a row"
rm -r "$scratch/src/cellar" "$scratch/src/down"
expect_told "a row without a room" "the room down is empty"
exit "$status"
