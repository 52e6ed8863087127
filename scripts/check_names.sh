#!/usr/bin/env bash
# scripts/check_names.sh [sources]
# Holds what clang-tidy cannot know about names (CONTRIBUTING.md, Style):
# - a class or structure is CName; without the C only Vector3 and a seam, a class of functions for others to override;
# - CName.h defines CName; a header with nothing but one class or structure CName is CName.h or Name.h;
# - a member has the letter of its type: f, i, u, b, c, p, and a before the letter of what a container holds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck disable=SC2016 # the dollars are those of awk
find "${1:-src}" -name '*.h' | LC_ALL=C sort | xargs awk '
  function complain(text) {
    print file ":" FNR ": " text > "/dev/stderr"
    failed = 1
  }
  function letter_of(type) {
    sub(/^(static |inline |mutable |const |constexpr )+/, "", type)
    if (type ~ /\*( const)?$/ || type ~ /^std::(unique|shared)_ptr</) return "p"
    if (type ~ /^std::(vector|array|list|span|deque)</) return "a"
    if (type ~ /^(double|float)$/) return "f"
    if (type ~ /^(int|long|std::int[0-9]+_t|std::ptrdiff_t)$/) return "i"
    if (type ~ /^(unsigned|std::uint[0-9]+_t|std::size_t)$/) return "u"
    if (type == "bool") return "b"
    if (type == "char") return "c"
    return ""
  }
  # The names of one header against its classes.
  function close_file(    stem) {
    if (file == "") return
    stem = file
    sub(/.*\//, "", stem)
    sub(/\.h$/, "", stem)
    if (stem ~ /^C[A-Z]/ && !(stem in defined)) complain("there is no " stem " in it")
    if (classes == 1 && functions == 0 && stem != only && "C" stem != only) complain("should bear the name of " only)
    for (name in bare) if (!(name in seam)) complain(name " is no seam and should be C" name)
  }
  FNR == 1 {
    close_file()
    file = FILENAME
    classes = functions = 0
    current = ""
    split("", defined)
    split("", bare)
    split("", seam)
  }
  /^(template <.*> )?(class|struct|enum class) [A-Za-z0-9_]+.*(\{|,$)/ && !/;$/ {
    match($0, /(class|struct) [A-Za-z0-9_]+/)
    current = substr($0, RSTART, RLENGTH)
    sub(/.* /, "", current)
    defined[current] = 1
    if ($0 !~ /^enum/) {
      if (++classes == 1) only = current
      if (current !~ /^C[A-Z]/ && current != "Vector3") bare[current] = 1
    } else {
      ++functions
    }
  }
  /^[A-Za-z].*[A-Za-z0-9_]\(/ { ++functions }
  /^(inline |constexpr |extern |using |namespace [A-Z])/ { ++functions }
  /^  virtual .*\) (const )?(= 0;|\{)/ { seam[current] = 1 }
  /^ +[A-Za-z].* [*&]?m_[A-Za-z0-9]+( = .*|\{.*)?;/ && !/\(.*m_/ && !/return/ {
    text = $0
    sub(/ *\/\/.*/, "", text)
    match(text, /m_[A-Za-z0-9]+/)
    name = substr(text, RSTART, RLENGTH)
    type = substr(text, 1, RSTART - 1)
    gsub(/^ +| +$/, "", type)
    letter = letter_of(type)
    # As the log of a loaded grid calls it.
    if (name == "m_pfWaveCoefGrid") next
    if (letter != "" && name !~ "^m_" letter) complain(name " (" type ") should begin with m_" letter)
  }
  END {
    close_file()
    exit failed
  }'
