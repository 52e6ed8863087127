#!/usr/bin/env bash
# scripts/afternoon.sh [release|sanitize] [seed] [actions]: a long run of the whole program under random actions, on a
# virtual display. With release the memory is measured at a new grid after every thousand actions, too.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh
source scripts/display.sh

preset=${1:-release}
export RELIEVO_MONKEY_SEED=${2:-1} RELIEVO_MONKEY_ACTIONS=${3:-100000}
if [[ $preset == release ]]; then export RELIEVO_MONKEY_NEW_GRIDS=1000; fi
# The same options as ctest gives the tests.
export LSAN_OPTIONS=suppressions=$PWD/tests/support/leaks.supp:print_suppressions=0 UBSAN_OPTIONS=print_stacktrace=1

need_packages test
build "$preset" monkey_test -DRELIEVO_BUILD_TESTS:BOOL=ON

run_on_displays 1 "build/$preset/tests/monkey_test"
