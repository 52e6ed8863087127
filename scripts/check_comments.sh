#!/usr/bin/env bash
# scripts/check_comments.sh [sources]
# Holds that every class, structure, enumeration and function a header offers has a comment (///). A comment speaks for all
# declarations below it up to the next empty line, so that a few plain getters can share one. None is asked for where
# something else says it: overriding functions, those that are = default or = delete, constructors and functions of containers
# without arguments, destructors.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck disable=SC2016 # the dollars are those of awk
find "${1:-src}" -name '*.h' | LC_ALL=C sort | xargs awk '
  function complain(what) {
    print FILENAME ":" begun ": " what " without a comment" > "/dev/stderr"
    failed = 1
  }
  # Names the scope that an opening brace begins: "n" namespace, "p" open to all, "h" hidden, "b" a body.
  function scope_of(text) {
    if (text ~ /^(inline )?namespace/ || text ~ /^extern "C"/) return "n"
    if (text ~ /^(template <.*> )?(struct|union) /) return "p"
    if (text ~ /^(template <.*> )?class /) return "h"
    return "b"
  }
  function judge(text, last) {
    gsub(/^ +| +$/, "", text)
    visible = scope[depth] == "n" || scope[depth] == "p"
    if (!visible || spoken) return
    if (text ~ /^(template <.*> )?(class|struct|union|enum)/) {
      if (last == "{") complain(text)
      return
    }
    if (text ~ /^(friend|using|typedef|static_assert|namespace|inline namespace|extern "C"|$)/) return
    if (text !~ /[A-Za-z0-9_>=+*\/<!~\]-]\(/ || text ~ /^[^(]* = / || text ~ /^[^(]*std::function</) return
    if (text ~ /(^|[ :])~|override|= (default|delete)$|^[A-Za-z]+\(\)( : .*)?$/) return
    if (text ~ /[ &](begin|end|size|empty|clear|front|back)\(\)( const)?$/) return
    complain(text)
  }
  FNR == 1 { depth = 0; scope[0] = "n"; statement = ""; spoken = 0; parens = 0 }
  /^ *\/\/\// { if (statement == "") spoken = 1; next }
  /^ *\/\// || /^#/ { next }
  /^ *$/ { if (depth == 0 || scope[depth] != "b") spoken = 0; next }
  /^ *(public|protected|private):/ {
    scope[depth] = $1 == "public:" && scope[depth - 1] != "h" ? "p" : "h"
    spoken = 0
    next
  }
  {
    line = $0
    own = line ~ /\/\/\/</
    sub(/ *\/\/.*/, "", line)
    gsub(/"([^"\\]|\\.)*"/, "\"\"", line)
    gsub(/\047(\\.|[^\047])\047/, "0", line)
    if (statement == "") begun = FNR
    held = spoken
    if (own) spoken = 1
    for (i = 1; i <= length(line); ++i) {
      c = substr(line, i, 1)
      if (c == "(") ++parens
      if (c == ")") --parens
      if (c == "{" && (scope[depth] == "b" || parens > 0 || statement ~ /[A-Za-z0-9_>] *$/ && statement !~ /\)|class|struct|enum|union|namespace|const *$|noexcept *$/)) {
        scope[++depth] = "b"   # a body inside a body, or an initialiser
        braces[depth] = 1
        statement = statement "{"
      } else if (c == "{") {
        judge(statement, "{")
        kept[depth] = spoken
        scope[depth + 1] = scope_of(gensub_spaces(statement))
        ++depth
        braces[depth] = 0
        if (scope[depth - 1] == "h" && scope[depth] == "p") scope[depth] = "h"
        if (scope[depth] != "b") { spoken = 0; held = 0 }
        statement = ""
      } else if (c == "}") {
        initialiser = braces[depth]
        was = scope[depth]
        --depth
        if (!initialiser) {
          spoken = kept[depth]
          held = spoken
          statement = ""
        }
      } else if (c == ";") {
        if (depth == 0 || scope[depth] != "b") judge(statement, ";")
        if (depth == 0 || scope[depth] != "b") statement = ""
      } else {
        statement = statement c
      }
    }
    if (statement ~ /^ *$/) statement = ""
    if (own) spoken = held
    if (statement != "") statement = statement " "
  }
  function gensub_spaces(text) {
    gsub(/^ +/, "", text)
    return text
  }
  END { exit failed }'
