#!/usr/bin/env bash
# scripts/check_icon.sh icon.svg
# Fails unless the icon can be drawn at the sizes of a menu and of a software centre, square and with a picture in it.
set -euo pipefail

picture=$(mktemp --suffix .png)
trap 'rm -f "$picture"' EXIT
for side in 16 48 256; do
  rsvg-convert --width "$side" --output "$picture" "$1"
  read -r size colours <<<"$(identify -format '%wx%h %k' "$picture")"
  if [[ $size != "${side}x$side" ]] || ((colours < 16)); then
    echo "$1 drawn $side pixels wide: size $size, $colours colours"
    exit 1
  fi
done
