#!/usr/bin/env bash
# The check of comments tells what has none, and leaves alone what needs none.
set -euo pipefail
check=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)/scripts/check_comments.sh
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0

# expect told|clean what < header
expect() {
  local verdict=clean
  cat >"$scratch/a.h"
  "$check" "$scratch" >"$scratch/log" 2>&1 || verdict=told
  if [[ $verdict != "$1" ]]; then
    printf '%s: expected "%s", was "%s"\n' "$2" "$1" "$verdict"
    cat "$scratch/log"
    status=1
  fi
}

expect told 'a function' <<<'int Count();'
expect told 'a function over two lines' <<<$'int Count(int a,\n          int b);'
expect told 'a template' <<<$'template <typename T>\nT Twice(T value) { return 2 * value; }'
expect told 'a class' <<<'class CBare {};'
expect told 'a structure' <<<$'namespace Place {\nstruct CBare {\n  int m_iA = 0;\n};\n}'
expect told 'an enumeration' <<<'enum class Bare { One };'
expect told 'an operator' <<<'bool operator<(const CA& a, const CA& b);'
expect told 'a public function' <<<$'/// A.\nclass CA {\n public:\n  int Count() const { return 1; }\n};'
expect told 'a function of a commented structure' <<<$'/// A.\nstruct CA {\n  int Count() const { return 1; }\n};'
expect told 'a function after an empty line' <<<$'/// One.\nint One();\n\nint Two();'
expect told 'a comment that is none of the interface' <<<$'// One.\nint One();'

expect clean 'comments' <<<$'/// A.\nclass CA {\n public:\n  /// One.\n  int One();\n};\n\n/// B.\nenum class B { One };'
expect clean 'a group' <<<$'/// One and two.\nint One();\nint Two();'
expect clean 'a group with a body' <<<$'/// One and two.\nint One() {\n  if (true) {\n    return 1;\n  }\n}\nint Two();'
expect clean 'a comment behind' <<<'int One();  ///< one'
expect clean 'what is hidden' <<<$'/// A.\nclass CA {\n  struct CB {\n    int Two();\n  };\n private:\n  int One();\n};'
expect clean 'what says it itself' <<<$'/// A.\nclass CA : public CB {\n public:\n  CA() = default;\n  ~CA();\n\n  int One() override;\n  iterator begin() { return 0; }\n};'
expect clean 'variables and declarations of types' <<<$'class CA;\nenum class B : int;\nusing C = int;\nextern int g_iD;\ninline constexpr double kE = F(1);'
expect clean 'braces and brackets in texts' <<<$'/// One.\ninline const char* One() { return "}("; }\nconstexpr char kTwo = \'{\';'
exit $status
