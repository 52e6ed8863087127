#!/usr/bin/env bash
# scripts/tidy.sh [source...]
# Runs clang-tidy over the given .cpp files, one by one and with every check of .clang-tidy.
#
# Without names it looks at the whole tree as the preset clang compiles it, several sources of a library or of a test
# together: their headers, which take nearly all of the time, are then looked at only once for all of them. It leaves out what
# depends on the sources being apart: the static analyzer and two more see nothing but the file named on the command line,
# and one takes what any function of a neighbour may throw for an escape out of `main`.
#
# Tests it reads two dozen at a time at first (cmake/TidyGroups.cmake). Where that leaves anything to say, be it only that two
# of them share a name, it reads them again as they are compiled, and what it says then counts.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# sources_of tree: what the tree compiles, each once.
sources_of() { sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$1/compile_commands.json" | LC_ALL=C sort -u; }

# members_of file...: the sources that the files include.
members_of() { sed -n 's/^#include "\(\/.*\.cpp\)"$/\1/p' "$@"; }

# each command...: the command for each name of the input, as many at once as there are processors.
each() { xargs -r -0 -n 1 -P "$(nproc)" "$@"; }

# clean_members tree checks: what stands in those of the large groups that clang-tidy has nothing to say of.
clean_members() {
  local group
  # shellcheck disable=SC2016 # the inner shell's
  printf '%s\0' "$1"/tests/tidy_*.cpp \
    | each bash -c 'if clang-tidy-14 --quiet -p "$1" --checks="$2" "$3" >/dev/null 2>&1; then printf "%s\n" "$3"; fi' - "$1" "$2" \
    | while read -r group; do members_of "$group"; done
}

# without_clean tree checks: what the tree compiles, but for what the large groups have shown to be clean.
without_clean() {
  local file clean
  clean=$(clean_members "$1" "$2" | LC_ALL=C sort -u)
  sources_of "$1" | grep -v '/tidy_[a-z]*_[0-9]*\.cpp$' | while read -r file; do
    if [[ $file != */Unity/* ]] || [[ -n $(comm -23 <(members_of "$file" | LC_ALL=C sort) <(printf '%s\n' "$clean")) ]]; then
      printf '%s\n' "$file"
    fi
  done
}

files=("$@")
tree=build/debug
checks=
if ((${#files[@]} == 0)); then
  tree=build/clang
  checks="-clang-analyzer-*,-bugprone-exception-escape,-misc-unused-using-decls,-bugprone-suspicious-include"
  cmake --preset clang >/dev/null
  cp tests/.clang-tidy "$tree/tests"
  mapfile -t files < <(without_clean "$tree" "$checks")
  if ((${#files[@]} == 0)); then
    printf 'tidy.sh: %s names no sources\n' "$tree" >&2
    exit 1
  fi
elif [[ ! -f $tree/compile_commands.json ]]; then
  cmake --preset debug >/dev/null
fi
printf '%s\0' "${files[@]}" | each clang-tidy-14 --quiet -p "$tree" --checks="$checks"
