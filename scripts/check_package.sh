#!/usr/bin/env bash
# scripts/check_package.sh <build tree>
# Builds the Debian package in the build tree and fails on an error that lintian finds in it.
set -euo pipefail

directory=$1/package_test
rm -rf "$directory"
cpack --config "$1/CPackConfig.cmake" -B "$directory"
lintian --fail-on error "$directory"/*.deb
