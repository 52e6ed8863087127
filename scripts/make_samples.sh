#!/usr/bin/env bash
# scripts/make_samples.sh
# Makes the JPEG of each photograph in samples/ from its bitmap, without metadata. Quality 92 keeps all that can be seen,
# in a seventh of the bytes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh

need_packages test
for picture in samples/*.bmp; do
  convert "$picture" -strip -quality 92 "${picture%.bmp}.jpg"
done
