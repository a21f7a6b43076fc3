#!/usr/bin/env bash
# Process start to first painted list: the window opens on a folder of
# 10,000 entries with --screenshot, which grabs the window as soon as the
# start folder's list is filled and exits. Whole runs are timed with
# hyperfine next to `ls -l` on the same folder. Without a display the runs
# go to a virtual one (xvfb-run). The limit is 0.5 s.
#
#   bench/window_startup.sh
#   FILES=100000 RUNS=5 bench/window_startup.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-$root/build/app/quorvane}
files=${FILES:-10000}
runs=${RUNS:-10}
corpus=${CORPUS:-/tmp/quorvane-bench-window-$files}

command -v hyperfine >/dev/null || { echo "window_startup: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "window_startup: build first ($quorvane not found)"; exit 2; }
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files "$files" --depth 0 --seed 1 "$corpus"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# No settings file: the defaults stand, and a screenshot run writes none.
cat >"$work/bench.sh" <<INNER
hyperfine -N --warmup 2 --runs $runs --export-json "$work/times.json" \\
  -n quorvane "$quorvane --ini $work/none/Quorvane.ini --screenshot $work/shot.png $corpus" \\
  -n ls-l "ls -l $corpus"
INNER
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
  bash "$work/bench.sh"
else
  xvfb-run -a -s "-screen 0 1280x900x24" bash "$work/bench.sh"
fi

python3 - "$work/times.json" "$corpus" <<'PY'
import json, os, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
q, ls = results["quorvane"], results["ls-l"]
entries = len(os.listdir(sys.argv[2]))
print(f"{entries} entries: quorvane start to painted list {q['mean']:.3f} s "
      f"(median {q['median']:.3f} s, max {q['max']:.3f} s; limit 0.500 s)")
print(f"ls -l {ls['mean']:.3f} s; ratio quorvane / ls -l = {q['mean'] / ls['mean']:.2f}")
PY
