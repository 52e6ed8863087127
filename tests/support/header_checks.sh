# shellcheck shell=bash
# source header_checks.sh <script in scripts/>
# What the tests of the checks of headers share: a folder of their own, `expect`, and `finish`.

check=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/scripts/$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0

# expect told|clean <header> [what] < text: whether the check complains of a header of that name and text.
expect() {
  local verdict=clean
  cat >"$scratch/$2"
  "$check" "$scratch" >"$scratch/log" 2>&1 || verdict=told
  if [[ $verdict != "$1" ]]; then
    printf '%s: expected "%s", was "%s"\n' "${3:-$2}" "$1" "$verdict"
    cat "$scratch/log"
    status=1
  fi
  rm "$scratch/$2"
}

# finish: ends the test, with 1 where anything was not as expected.
finish() { exit "$status"; }
