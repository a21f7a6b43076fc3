#!/usr/bin/env bash
# `quorvane find` beside the standard tools doing the same walk, all in one
# hyperfine run over a seeded corpus of about 300,000 entries (21,000
# folders, files with text or bytes). Prints the wall-clock and CPU ratios
# (quorvane / tool; below 1.0 is faster), then the stop latency after Escape
# and the memory per hit of a find of 1,000,000 rows.
#
#   bench/find_bench.sh
#   RUNS=5 CORPUS=/dev/shm/quorvane-find bench/find_bench.sh
#   BUILD=build bench/find_bench.sh      (the C++ benches need -DQUORVANE_BENCH=ON)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
build=${BUILD:-$root/build}
quorvane=${QUORVANE:-$build/app/quorvane}
corpus=${CORPUS:-/tmp/quorvane-bench-find}
runs=${RUNS:-10}
fd=$(command -v fdfind || command -v fd || true)

command -v hyperfine >/dev/null || { echo "find_bench: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "find_bench: build first ($quorvane not found)"; exit 2; }
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files 279000 --folders 21000 --content mixed --seed 1601 "$corpus"

export LC_ALL=C.UTF-8
json=$(mktemp)
trap 'rm -f "$json"' EXIT
q="$quorvane find --in $corpus --subfolders --no-header"
# The marker lines read "Herr MÜLLER"; the case-blind searches ask for "herr müller".
args=(
  -n quorvane-named "$q --named '*.txt'"
  -n find-named "find $corpus -name '*.txt'"
  -n bfs-named "bfs $corpus -name '*.txt'"
  -n quorvane-all "$q"
  -n find-ls "find $corpus -ls"
  -n quorvane-text "$q --containing quorvane_needle --case"
  -n grep-text "grep -rl quorvane_needle $corpus"
  -n rg-text "rg -l -j1 -uuu quorvane_needle $corpus"
  -n quorvane-itext "$q --containing 'herr müller'"
  -n grep-itext "grep -rli 'herr müller' $corpus"
  -n rg-itext "rg -li -j1 -uuu 'herr müller' $corpus"
)
[[ -n $fd ]] && args+=(-n fd-named "$fd -j1 -u -g '*.txt' $corpus")
hyperfine -N --warmup 2 --runs "$runs" --export-json "$json" "${args[@]}" >/dev/null

python3 - "$json" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
def line(ours, tool, limit=None):
    if ours not in r or tool not in r:
        return
    q, t = r[ours], r[tool]
    wall = q["median"] / t["median"]
    cpu = (q["user"] + q["system"]) / (t["user"] + t["system"])
    verdict = "" if limit is None else ("  ok" if wall <= limit else "  OVER")
    print(f"{ours:15} {q['median'] * 1000:7.0f} ms  vs {tool:10} {t['median'] * 1000:7.0f} ms (medians)"
          f"  wall ratio {wall:.2f}  cpu ratio {cpu:.2f}{verdict}")
line("quorvane-named", "find-named", 1.0)
line("quorvane-named", "bfs-named")
line("quorvane-named", "fd-named")
line("quorvane-all", "find-ls", 1.0)
line("quorvane-text", "grep-text", 1.0)
line("quorvane-text", "rg-text")
line("quorvane-itext", "grep-itext", 1.0)
line("quorvane-itext", "rg-itext")
PY

if [[ -x $build/bench/find_abort_bench ]]; then
  echo
  "$build/bench/find_abort_bench" "$corpus" "$(dirname "$corpus")"
  echo
  "$build/bench/find_memory_bench" "$corpus" 1000000
else
  echo "find_bench: configure with -DQUORVANE_BENCH=ON for the Escape and memory figures"
fi
