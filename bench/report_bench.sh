#!/usr/bin/env bash
# Folder reports beside the standard tools, with hyperfine, in one run:
#   the classic dump (`quorvane report dump --recurse`) beside `ls -lR`,
#   the tree (`quorvane report tree --recurse`) beside `tree -d`,
#   the dump with file versions of 400 DLLs beside `exiftool` over them
#   (the DLLs of bench/version_bench.sh, built there when missing).
# Output goes to /dev/null for all; prints wall-clock and CPU ratios
# (quorvane / tool; below 1.0 is faster) and the peak memory of the dump.
#
#   bench/report_bench.sh                        300,000 entries in /tmp
#   FILES=93000 FOLDERS=7000 RUNS=3 bench/report_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-$root/build/app/quorvane}
files=${FILES:-279000}
folders=${FOLDERS:-21000}
corpus=${CORPUS:-/tmp/quorvane-bench-report}
dlls=${DLLS:-/tmp/quorvane-bench-version}
runs=${RUNS:-5}

for tool in hyperfine tree exiftool; do
  command -v $tool >/dev/null || { echo "report_bench: $tool is missing (scripts/setup.sh --bench)"; exit 2; }
done
[[ -x $quorvane ]] || { echo "report_bench: build first ($quorvane not found)"; exit 2; }
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files "$files" --folders "$folders" --seed 1 "$corpus"
[[ -d $dlls/dlls ]] || RUNS=1 CORPUS=$dlls "$here/version_bench.sh" >/dev/null

export LC_ALL=C.UTF-8
json=$(mktemp)
trap 'rm -f "$json"' EXIT
hyperfine -N --warmup 1 --runs "$runs" --export-json "$json" \
  -n ls-lR "ls -lR $corpus" \
  -n quorvane-dump "$quorvane report dump --recurse $corpus" \
  -n tree-d "tree -d $corpus" \
  -n quorvane-tree "$quorvane report tree --recurse $corpus" \
  -n exiftool "exiftool -FileVersion -ProductVersion $dlls/dlls" \
  -n quorvane-versions "$quorvane report dump --versions $dlls/dlls" >/dev/null

peak=$( { /usr/bin/time -f %M "$quorvane" report dump --recurse "$corpus" >/dev/null; } 2>&1 | tail -1)
python3 - "$json" "$corpus" "$peak" <<'PY'
import json, os, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
entries = sum(len(d) + len(f) for _, d, f in os.walk(sys.argv[2]))
print(f"{entries:,} entries in {sys.argv[2]}; machine shared with other jobs, so read the ratios, not the times")
for ours, theirs in (("quorvane-dump", "ls-lR"), ("quorvane-tree", "tree-d"), ("quorvane-versions", "exiftool")):
    q, t = results[ours], results[theirs]
    cpu_q, cpu_t = q["user"] + q["system"], t["user"] + t["system"]
    print(f"{ours:18} {q['median'] * 1000:7.0f} ms, {theirs:8} {t['median'] * 1000:7.0f} ms (medians) "
          f"-> wall ratio {q['median'] / t['median']:.2f}, cpu ratio {cpu_q / cpu_t:.2f}")
print(f"peak memory of the dump: {int(sys.argv[3]) / 1024:.0f} MB")
PY
