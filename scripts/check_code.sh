#!/usr/bin/env bash
# scripts/check_code.sh
# What machines say of the whole tree without running it: shellcheck, and clang-tidy, which reports the warnings of another
# compiler, too, as the preset clang asks for them. So nothing needs to be built.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh

need_packages ci
say "shellcheck"
find run test .ci bench scripts tests packaging -type f -exec grep -lE '^(#!.*sh$|# shellcheck shell=)' {} + \
  | LC_ALL=C sort | xargs shellcheck -x
say "clang-tidy"
exec scripts/tidy.sh
