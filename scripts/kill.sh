#!/usr/bin/env bash
# scripts/kill.sh [times]: the program, killed in the middle of edits and of writing down unsaved work, on a virtual display.
# After each time a whole state must be left that is no older than the one before.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh
source scripts/display.sh

export RELIEVO_KILLS=${1:-200}
need_packages test
build release run_test -DRELIEVO_BUILD_TESTS:BOOL=ON

run_on_displays 1 build/release/tests/run_test --gtest_filter='RecoveryRunTest.Killed*'
