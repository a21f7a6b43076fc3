#!/usr/bin/env bash
# Process start to first painted list: starts the window on a folder of
# 10,000 entries with --screenshot (which exits once the filled list has been
# grabbed) and times whole runs with hyperfine, next to `ls -l` on the same
# folder. Without a display the runs go to a virtual one (xvfb-run).
# Usage: bench/window_startup.sh [ENTRIES] [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
entries="${1:-10000}"
runs="${2:-10}"
exe="$PWD/build/app/quorvane"
[[ -x "$exe" ]] || { echo "build first: scripts/build.sh" >&2; exit 1; }
command -v hyperfine >/dev/null || { echo "needs hyperfine: scripts/setup.sh --bench" >&2; exit 1; }

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
corpus="$work/corpus"
mkdir -p "$corpus"
# Seeded names: a tenth folders, the rest files of mixed extensions and sizes.
awk -v n="$entries" -v dir="$corpus" 'BEGIN {
  srand(20240607);
  split("txt dat log cpp h png jpg pdf zip md json xml", ext, " ");
  for (i = 0; i < n; i++) {
    name = sprintf("%s/item%05d_%x", dir, i, int(rand() * 1e6));
    if (i % 10 == 0) print "D " name; else print "F " name "." ext[1 + int(rand() * 12)] " " int(rand() * 65536);
  }
}' | while read -r kind path size; do
  if [[ $kind == D ]]; then mkdir "$path"; else head -c "$size" /dev/zero >"$path"; fi
done
echo "corpus: $(ls -A "$corpus" | wc -l) entries in $corpus"

ini="$work/none/Quorvane.ini"  # absent: defaults, and a screenshot run writes none
shot="$work/shot.png"
run_cmd="$exe --ini $ini --screenshot $shot $corpus"
cat >"$work/bench.sh" <<INNER
hyperfine --style basic --warmup 2 --runs $runs --export-json "$work/times.json" \\
  -n quorvane "$run_cmd" -n "ls -l" "ls -l $corpus >/dev/null"
INNER
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
  bash "$work/bench.sh"
else
  xvfb-run -a -s "-screen 0 1280x900x24" bash "$work/bench.sh"
fi
awk 'BEGIN { RS = "\"command\""; }
  NR > 1 { match($0, /"mean": *[0-9.e-]+/); m = substr($0, RSTART, RLENGTH); sub(/.*: */, "", m);
           match($0, /^: *"[^"]*"/); c = substr($0, RSTART, RLENGTH); sub(/^: *"/, "", c); sub(/"$/, "", c);
           mean[NR - 1] = m; name[NR - 1] = c }
  END { printf "mean %s: %.3f s (limit 0.500 s)\n", name[1], mean[1];
        printf "mean %s: %.3f s; ratio quorvane / ls -l = %.1f\n", name[2], mean[2], mean[1] / mean[2] }' "$work/times.json"
