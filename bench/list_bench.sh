#!/usr/bin/env bash
# `quorvane list` beside `ls -l --time-style=full-iso` on one folder of many
# files (sorted by name, and by modification time with `ls -t`), with hyperfine.
# Prints the wall-clock and CPU ratios (quorvane / ls; below 1.0 is faster).
#
#   bench/list_bench.sh                     100,000 files in /tmp
#   FILES=20000 RUNS=5 bench/list_bench.sh
#   QUORVANE=build/app/quorvane CORPUS=/some/folder bench/list_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-$root/build/app/quorvane}
files=${FILES:-100000}
corpus=${CORPUS:-/tmp/quorvane-bench-list-$files}
runs=${RUNS:-10}

command -v hyperfine >/dev/null || { echo "list_bench: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "list_bench: build first ($quorvane not found)"; exit 2; }
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files "$files" --depth 0 --seed 1 "$corpus"

json=$(mktemp)
trap 'rm -f "$json"' EXIT
hyperfine -N --warmup 2 --runs "$runs" --export-json "$json" \
  -n ls-name "ls -l --time-style=full-iso $corpus" \
  -n quorvane-name "$quorvane list $corpus" \
  -n ls-mtime "ls -lt --time-style=full-iso $corpus" \
  -n quorvane-mtime "$quorvane list --sort Modified $corpus"

python3 - "$json" "$corpus" <<'PY'
import json, os, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
print(f"\n{len(os.listdir(sys.argv[2]))} entries in {sys.argv[2]}; LANG={os.environ.get('LANG', '')}")
for what in ("name", "mtime"):
    q, l = results["quorvane-" + what], results["ls-" + what]
    cpu_q, cpu_l = q["user"] + q["system"], l["user"] + l["system"]
    print(f"sort by {what:5}: quorvane {q['median'] * 1000:6.0f} ms, ls {l['median'] * 1000:6.0f} ms (medians) "
          f"-> wall ratio {q['median'] / l['median']:.2f}, cpu ratio {cpu_q / cpu_l:.2f}")
PY
