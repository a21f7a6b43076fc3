#!/usr/bin/env bash
# `quorvane view` beside the standard tools doing the same work, in one
# hyperfine run: the extracted text of a 512 MB binary against `strings -n 5`,
# the line index of a 1 GB text file against `wc -l`, and the first page of
# a 4 GB sparse file in each view. Prints ratios (quorvane / tool; below 1.0
# is faster) and the resident memory of the views.
#
#   bench/view_bench.sh
#   RUNS=5 WORK=/dev/shm/quorvane-view bench/view_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-$root/build/app/quorvane}
work=${WORK:-/tmp/quorvane-bench-view}
runs=${RUNS:-5}
command -v hyperfine >/dev/null || { echo "view_bench: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "view_bench: build first ($quorvane not found)"; exit 2; }
mkdir -p "$work"
bin=$work/binary.bin text=$work/text.txt sparse=$work/sparse.img
# A binary of mixed bytes and text, a text file of short lines, a sparse 4 GB image.
[[ -f $bin ]] || python3 - "$bin" <<'PY'
import random, sys
random.seed(1601)
block = bytearray()
words = [b"quorvane", b"folder", b"Version", b"Hello, world", b"abcd", b"x"]
while len(block) < 1 << 20:
    block += bytes(random.getrandbits(8) for _ in range(random.randint(1, 64)))
    block += random.choice(words) * random.randint(1, 3)
with open(sys.argv[1], "wb") as f:
    for i in range(512):
        f.write(block[: 1 << 20])
PY
[[ -f $text ]] || { yes 'The quick brown fox jumps over the lazy dog, line after line.' || true; } | head -c 1073741824 > "$text"
[[ -f $sparse ]] || truncate -s 4G "$sparse"

json=$(mktemp)
trap 'rm -f "$json"' EXIT
export LC_ALL=C.UTF-8
hyperfine -N --warmup 1 --runs "$runs" --export-json "$json" \
  -n extract "$quorvane view --extract --lines 1:1 $bin" -n strings "strings -n 5 $bin" \
  -n index "$quorvane view --lines 1:1 $text" -n wc "wc -l $text" \
  -n hex-first-page "$quorvane view --hex --lines 1:50 $sparse" \
  -n text-last-page "$quorvane view --hex --lines 268435407:268435456 $sparse" >/dev/null
python3 - "$json" <<'PY'
import json, sys
r = {x["command"]: x["median"] for x in json.load(open(sys.argv[1]))["results"]}
print(f"extracted text, 512 MB: {r['extract']*1000:7.0f} ms vs strings -n 5 {r['strings']*1000:7.0f} ms  ratio {r['extract']/r['strings']:.2f} (goal 0.5)")
print(f"line index, 1 GB:       {r['index']*1000:7.0f} ms vs wc -l       {r['wc']*1000:7.0f} ms  ratio {r['index']/r['wc']:.2f} (goal 1.5)")
print(f"4 GB sparse, first page {r['hex-first-page']*1000:.0f} ms, last page {r['text-last-page']*1000:.0f} ms (goal 50 ms)")
PY
for mode in "--extract $bin" "$text" "--hex $sparse"; do
  /usr/bin/time -f "peak resident memory, view $mode: %M KB" "$quorvane" view --lines 1:1 $mode >/dev/null 2>/tmp/view_bench_err || true
  grep "peak resident" /tmp/view_bench_err
done
runs_count=$("$quorvane" view --extract --lines 1:1 "$bin" 2>/dev/null | head -1 | sed -E 's#.*/([0-9]+) .*#\1#')
echo "runs in the binary: $runs_count"
