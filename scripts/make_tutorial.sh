#!/usr/bin/env bash
# scripts/make_tutorial.sh
# Makes the models in samples/ and the pictures in docs/tutorial/: the built program is used with mouse and keyboard
# on a virtual display, as docs/tutorial.md tells it. Takes some minutes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh
source scripts/display.sh

need_packages test
build release make_tutorial -DRELIEVO_BUILD_TESTS:BOOL=ON

results=$(mktemp -d)
trap 'stop_all; rm -rf "$results"' EXIT
end_by_signals
start_display

say "making the first cup"
build/release/tests/make_tutorial first "$results"
say "making the lip of a cup in two ways"
build/release/tests/make_tutorial along "$results"
for model in coffee cat; do
  say "making the $model"
  build/release/tests/make_tutorial "$model" "$results"
  cp "$results/$model.grid" "samples/$model.grid"
done
say "making the cat of a depth map"
build/release/tests/make_tutorial depth "$results"

mkdir -p docs/tutorial
for picture in "$results"/*.bmp; do
  # 256 colours keep the repository small and can hardly be told from the full number.
  convert "$picture" -colors 256 -strip "docs/tutorial/$(basename "${picture%.bmp}").png"
done
