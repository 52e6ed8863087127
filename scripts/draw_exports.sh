#!/usr/bin/env bash
# scripts/draw_exports.sh
# Makes the pictures of exported files in docs/tutorial/: another program, f3d, draws what relievo-batch has written of
# samples/coffee.grid, as docs/tutorial.md tells it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh
source scripts/display.sh

need_packages test
want_package f3d "which draws the exported files"
command -v f3d >/dev/null || die "f3d was not found"
build release relievo-batch -DRELIEVO_BUILD_BATCH:BOOL=ON

results=$(mktemp -d)
trap 'stop_all; rm -rf "$results"' EXIT
end_by_signals
start_display
export LIBGL_ALWAYS_SOFTWARE=1

# draw file up position focus picture [convert option...]: an exported file as f3d shows it from a place.
draw() {
  local file=$1 up=$2 position=$3 focus=$4 picture=$5
  shift 5
  local axis=0,1,0
  if [[ $up == Z ]]; then axis=0,0,1; fi
  f3d --dry-run --quiet --resolution 900,640 --fxaa --bg-color 0.2,0.2,0.22 --up "+$up" --camera-view-angle 30 \
    --camera-position "$position" --camera-focal-point "$focus" --camera-view-up "$axis" \
    --output "$results/drawn.png" "$file"
  convert "$results/drawn.png" "$@" -colors 256 -strip "docs/tutorial/$picture"
}

build/release/relievo-batch samples/coffee.grid --image samples/coffee.jpg --quiet --high-res \
  --tears under --export "$results/cup.glb"
build/release/relievo-batch samples/coffee.grid --quiet --high-res --export "$results/cup.stl" --base 5
# Its lamp leaves textures darker than they are.
draw "$results/cup.glb" Y -0.6,2.2,1.5 0.03,0.05,0.1 10-glb.png -level 0,62%
draw "$results/cup.stl" Z -95,-215,195 3,-8,-10 10-solid.png -level 0,85% +dither
