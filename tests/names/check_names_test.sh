#!/usr/bin/env bash
# The check of names tells what is named otherwise, and leaves the rest alone.
set -euo pipefail
# shellcheck source=tests/support/header_checks.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/header_checks.sh" check_names.sh

expect told Bare.h <<<$'class Bare {\n public:\n  int Count() const;\n};'
expect told CMissing.h <<<$'class COther {\n};'
expect told Subject.h <<<$'class COther {\n};'
for member in 'double m_Height' 'int m_fCount' 'std::size_t m_iCount' 'bool m_Ready' 'CTree* m_Tree' 'std::vector<double> m_fHeights' \
  'std::unique_ptr<CTree> m_Tree = nullptr' 'const char* m_sName' 'float m_iWidth = 1.0F'; do
  expect told CThing.h <<<"struct CThing {"$'\n'"  $member;"$'\n};'
done
for member in 'double m_fHeight' 'std::size_t m_uCount = 0' 'CTree* m_pTree' 'std::vector<double> m_afHeights' 'CTree m_Tree' 'double x'; do
  expect clean CThing.h <<<"struct CThing {"$'\n'"  $member;"$'\n};'
done
expect clean Thing.h <<<$'class CThing {\n};'
expect clean ThingHost.h <<<$'class ThingHost {\n public:\n  virtual ~ThingHost() = default;\n  virtual void Show() = 0;\n};'
expect clean Subject.h <<<$'class COne {\n};\n\nclass CTwo {\n};'
expect clean Subject.h <<<$'struct COne {\n};\nCOne Made(int from);'
finish
