#!/usr/bin/env bash
# scripts/check_man_pages.sh page...
# Fails on a man page that the formatter warns about, and shows its warnings.
set -euo pipefail

status=0
for page in "$@"; do
  warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null) || status=1
  if [[ -n $warnings ]]; then
    printf '%s:\n%s\n' "$page" "$warnings"
    status=1
  fi
done
exit "$status"
