#!/usr/bin/env bash
# `quorvane image` beside `identify -ping` (ImageMagick) over 10,000 small
# pictures of six kinds in one folder, in one hyperfine run; then a
# 50-megapixel JPEG decoded fitted to 800 x 600: time and peak resident
# memory beside the same for a 1-megapixel JPEG.
#
#   bench/image_bench.sh
#   RUNS=5 COUNT=2000 CORPUS=/dev/shm/quorvane-image bench/image_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
build=${BUILD:-$root/build}
quorvane=${QUORVANE:-$build/app/quorvane}
corpus=${CORPUS:-/tmp/quorvane-bench-image}
runs=${RUNS:-5}
count=${COUNT:-10000}

for tool in hyperfine identify convert /usr/bin/time; do
  command -v $tool >/dev/null || { echo "image_bench: $tool is missing (scripts/setup.sh --bench)"; exit 2; }
done
[[ -x $quorvane ]] || { echo "image_bench: build first ($quorvane not found)"; exit 2; }

if [[ ! -f $corpus/done-$count ]]; then
  rm -rf "$corpus"
  mkdir -p "$corpus/pictures" "$corpus/seed"
  cd "$corpus/seed"
  convert -size 64x48 plasma:fractal -seed 7 a.bmp
  convert a.bmp a.gif
  convert a.bmp -quality 85 a.jpg
  convert a.bmp a.png
  convert -size 32x32 xc:red -define icon:auto-resize=32,16 a.ico
  convert a.bmp -compress RLE -colors 200 -type Palette BMP3:a.rle
  kinds=(bmp gif jpg png ico rle)
  for ((i = 0; i < count; i++)); do
    k=${kinds[i % 6]}
    cp "a.$k" "$corpus/pictures/p$(printf %05d $i).$k"
  done
  convert -size 8660x5773 plasma:fractal -seed 3 -quality 90 "$corpus/big50.jpg"
  convert -size 1200x850 plasma:fractal -seed 3 -quality 90 "$corpus/small1.jpg"
  touch "$corpus/done-$count"
fi
cd "$corpus"

echo "== facts of $count pictures (one run each: one process over the folder)"
hyperfine --warmup 1 --runs "$runs" --export-json facts.json \
  "$quorvane image pictures >/dev/null" \
  "identify -ping pictures/* >/dev/null"
python3 - <<'PY'
import json
r = json.load(open("facts.json"))["results"]
q, i = r[0]["mean"], r[1]["mean"]
print(f"quorvane image {q:.3f} s, identify -ping {i:.3f} s, ratio {q / i:.2f}")
PY

echo "== a 50-megapixel JPEG fitted to 800 x 600 (decoded at the shown size)"
hyperfine -N --warmup 1 --runs "$runs" \
  "$quorvane image --decode --fit 800x600 small1.jpg" \
  "$quorvane image --decode --fit 800x600 big50.jpg"
for f in small1.jpg big50.jpg; do
  /usr/bin/time -f "$f: peak RSS %M KB" "$quorvane" image --decode --fit 800x600 "$f" >/dev/null
done
