#!/usr/bin/env bash
# scripts/check_whitespace.sh file...
# Fails on blanks at the end of a line, on tabs, and on a last line without its end.
set -euo pipefail

status=0
for file in "$@"; do
  if grep -nHP '[ \t]+$|\t' "$file"; then status=1; fi
  if [[ -s $file && -n $(tail -c 1 "$file") ]]; then
    echo "$file: the last line has no end"
    status=1
  fi
done
exit "$status"
