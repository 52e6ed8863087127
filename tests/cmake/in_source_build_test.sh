#!/usr/bin/env bash
# A build tree among the sources is refused in so many words, also by way of a symbolic link.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
mkdir "$copy/sources"
cp -r CMakeLists.txt cmake "$copy/sources"
ln -s sources "$copy/link"

for build in sources link; do
  if cmake -S "$copy/sources" -B "$copy/$build" >"$copy/log" 2>&1; then
    echo "cmake built in $build" >&2
    exit 1
  fi
  if ! grep -q 'relievo is not built among its sources' "$copy/log"; then
    cat "$copy/log" >&2
    exit 1
  fi
  rm -rf "$copy/sources/CMakeCache.txt" "$copy/sources/CMakeFiles"
done
