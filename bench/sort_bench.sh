#!/usr/bin/env bash
# Sorting 1,000,000 list rows (name, grouped name, modified, extension),
# reversing, bytes per row, and `sort -f` on the same names, in one run.
# Needs the benchmark build: cmake -S . -B build-bench -DQUORVANE_BENCH=ON -DCMAKE_BUILD_TYPE=Release
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bench=${BENCH:-$root/build-bench/bench/list_sort_bench}
[[ -x $bench ]] || { echo "sort_bench: build $bench first (see the comment above)"; exit 2; }
out=$(mktemp)
trap 'rm -f "$out"' EXIT
"$bench" --benchmark_format=json "$@" > "$out"
python3 - "$out" <<'PY'
import json, sys
runs = {b["name"].split("/")[0]: b for b in json.load(open(sys.argv[1]))["benchmarks"]}
ms = lambda n: runs[n]["real_time"]
for n in ("BM_SortName", "BM_SortNameGrouped", "BM_SortModified", "BM_SortExt", "BM_Reverse"):
    if n in runs:
        print(f"{n:20} {ms(n):9.1f} ms wall, {runs[n]['cpu_time']:9.1f} ms cpu")
for n in ("BM_SortF_C", "BM_SortF_UTF8"):
    if n in runs and "BM_SortName" in runs:
        print(f"{n:20} {ms(n):9.1f} ms   -> list name sort / sort -f = {ms('BM_SortName') / ms(n):.2f}")
if "BM_BytesPerRow" in runs:
    b = runs["BM_BytesPerRow"]
    print(f"bytes per row: {b['held_per_row']:.0f} held, {b['rss_per_row']:.0f} by RSS growth (1,000,000 rows)")
PY
