#!/usr/bin/env bash
# The check of comments tells what has none, and leaves alone what needs none.
set -euo pipefail
# shellcheck source=tests/support/header_checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/header_checks.sh" check_comments.sh

expect told a.h 'a function' <<<'int Count();'
expect told a.h 'a function over two lines' <<<$'int Count(int a,\n          int b);'
expect told a.h 'a template' <<<$'template <typename T>\nT Twice(T value) { return 2 * value; }'
expect told a.h 'a class' <<<'class CBare {};'
expect told a.h 'a structure' <<<$'namespace Place {\nstruct CBare {\n  int m_iA = 0;\n};\n}'
expect told a.h 'an enumeration' <<<'enum class Bare { One };'
expect told a.h 'an operator' <<<'bool operator<(const CA& a, const CA& b);'
expect told a.h 'a public function' <<<$'/// A.\nclass CA {\n public:\n  int Count() const { return 1; }\n};'
expect told a.h 'a function of a commented structure' <<<$'/// A.\nstruct CA {\n  int Count() const { return 1; }\n};'
expect told a.h 'a function after an empty line' <<<$'/// One.\nint One();\n\nint Two();'
expect told a.h 'a comment that is none of the interface' <<<$'// One.\nint One();'

expect clean a.h 'comments' <<<$'/// A.\nclass CA {\n public:\n  /// One.\n  int One();\n};\n\n/// B.\nenum class B { One };'
expect clean a.h 'a group' <<<$'/// One and two.\nint One();\nint Two();'
expect clean a.h 'a group with a body' <<<$'/// One and two.\nint One() {\n  if (true) {\n    return 1;\n  }\n}\nint Two();'
expect clean a.h 'a comment behind' <<<'int One();  ///< one'
expect clean a.h 'what is hidden' <<<$'/// A.\nclass CA {\n  struct CB {\n    int Two();\n  };\n private:\n  int One();\n};'
expect clean a.h 'what says it itself' <<<$'/// A.\nclass CA : public CB {\n public:\n  CA() = default;\n  ~CA();\n\n  int One() override;\n  iterator begin() { return 0; }\n};'
expect clean a.h 'variables and declarations of types' <<<$'class CA;\nenum class B : int;\nusing C = int;\nextern int g_iD;\ninline constexpr double kE = F(1);'
expect clean a.h 'braces and brackets in texts' <<<$'/// One.\ninline const char* One() { return "}("; }\nconstexpr char kTwo = \'{\';'
finish
