#!/usr/bin/env bash
# scripts/check_links.sh
# Fails on a link in a Markdown file that leads to a missing file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

status=0
while IFS=: read -r file link; do
  target=$(dirname "$file")/${link%%#*}
  if [[ ! -e $target ]]; then
    echo "$file: $link"
    status=1
  fi
done < <(grep -oP '\]\(\K(?!https?:|#)[^)]+' ./*.md docs/*.md samples/*.md)
exit "$status"
