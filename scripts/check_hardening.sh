#!/usr/bin/env bash
# scripts/check_hardening.sh <program>...
# Fails unless each program may lie anywhere in memory, resolves its symbols before it begins and locks their
# tables, has a stack that is not executable, and was compiled with guarded stacks and checked buffers.
set -euo pipefail

failed=0
# expect <program> <what> <pattern> <text>
expect() {
  grep -Eq "$3" <<<"$4" && return
  echo "$1: no $2" >&2
  failed=1
}

for program in "$@"; do
  expect "$program" "position independence" 'Type: +DYN' "$(readelf -hW "$program")"
  dynamic=$(readelf -dW "$program")
  expect "$program" "position independence of a program" 'FLAGS_1.*PIE' "$dynamic"
  expect "$program" "binding at the start" 'FLAGS_1.*NOW|BIND_NOW' "$dynamic"
  segments=$(readelf -lW "$program")
  expect "$program" "read-only relocations" 'GNU_RELRO' "$segments"
  expect "$program" "stack without code" 'GNU_STACK.* RW ' "$segments"
  symbols=$(readelf -W --dyn-syms "$program")
  expect "$program" "guarded stack" '__stack_chk_fail' "$symbols"
  expect "$program" "checked buffer" '__[a-z]+_chk' "$symbols"
done
exit "$failed"
