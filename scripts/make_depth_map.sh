#!/usr/bin/env bash
# scripts/make_depth_map.sh
# Makes samples/cat-depth.png, with which the tutorial shows what a depth map does. It is nobody's estimate but a made one: a
# head with a nose before a wall, then blurred and bent as estimates are. Near is bright.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh

need_packages test
# In pixels of samples/cat.jpg: the outline of the cat, a dome over its face, and its nose.
outline='404,0 394,15 380,35 368,52 358,72 364,95 364,122 358,150 350,178 342,205 330,235 318,265 306,299 0,299 0,132
  20,118 32,98 36,70 34,45 38,20 42,0'
face='0.25*exp(-(((i-235)/140)^2+((j-150)/140)^2))'
nose='0.25*exp(-(((i-264)/70)^2+((j-236)/70)^2))'
convert -size 451x300 xc:black -fill white -draw "polygon $outline" -set colorspace Gray \
  -fx "0.1+u*(0.35+$face+$nose)" -blur 0x5 -evaluate Pow 1.5 -resize 226x150! \
  -strip -define png:color-type=0 -define png:bit-depth=16 samples/cat-depth.png
