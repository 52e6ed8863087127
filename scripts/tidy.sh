#!/usr/bin/env bash
# scripts/tidy.sh [source...]
# Runs clang-tidy over the given .cpp files, one by one and with every check of .clang-tidy.
#
# Without names it looks at the whole tree as the preset clang compiles it, several sources of a library or of a test
# together: their headers, which take nearly all of the time, are then looked at only once for all of them. It leaves out what
# depends on the sources being apart: the static analyzer and two more see nothing but the file named on the command line,
# and one takes what any function of a neighbour may throw for an escape out of `main`.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# sources_of tree: what the tree compiles, each once.
sources_of() { sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$1/compile_commands.json" | LC_ALL=C sort -u; }

files=("$@")
tree=build/debug
checks=
if ((${#files[@]} == 0)); then
  tree=build/clang
  checks="-clang-analyzer-*,-bugprone-exception-escape,-misc-unused-using-decls,-bugprone-suspicious-include"
  cmake --preset clang >/dev/null
  cp tests/.clang-tidy "$tree/tests"
  mapfile -t files < <(sources_of "$tree")
elif [[ ! -f $tree/compile_commands.json ]]; then
  cmake --preset debug >/dev/null
fi
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p "$tree" --checks="$checks"
