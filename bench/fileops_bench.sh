#!/usr/bin/env bash
# `quorvane copy|move|backup` beside `cp -a`, `mv` and `rsync -a --dry-run`
# doing the same work on the same tree, in one hyperfine run each. Prints
# the wall-clock ratios (quorvane / tool; below 1.0 is faster) and the CPU
# time (user + system) of each side.
#
#   bench/fileops_bench.sh                          (300,000 files)
#   FILES=30000 WORK=/dev/shm/qv-fileops RUNS=5 bench/fileops_bench.sh
#   FLAT_FILES=10000: the size of the flat folder whose entries are moved
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-${BUILD:-$root/build}/app/quorvane}
work=${WORK:-/tmp/quorvane-bench-fileops}
files=${FILES:-279000}
runs=${RUNS:-5}

command -v hyperfine >/dev/null || { echo "fileops_bench: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "fileops_bench: build first ($quorvane not found)"; exit 2; }
corpus=$work/corpus
# Small real (not sparse) files: copies read and write every byte.
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files "$files" --folders $((files / 14)) --content mixed \
  --max-size 65536 --seed 1601 "$corpus"

export LC_ALL=C.UTF-8
json=$(mktemp)
trap 'rm -f "$json"' EXIT
ratio() {  # json, quorvane name, tool name
  python3 - "$@" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
q, t = r[sys.argv[2]]["mean"], r[sys.argv[3]]["mean"]
cq, ct = (r[n]["user"] + r[n]["system"] for n in sys.argv[2:4])
# Jobs of a few milliseconds are shown in milliseconds.
scale, unit = (1e3, "ms") if t < 1 else (1, "s")
print(f"{sys.argv[2]:>17} / {sys.argv[3]:<16} {q * scale:8.3f} {unit} / {t * scale:8.3f} {unit} = {q / t:5.2f}"
      f"   (CPU {cq * scale:.3f} {unit} / {ct * scale:.3f} {unit})")
PY
}

out=$work/out
hyperfine -r "$runs" --export-json "$json" --prepare "rm -rf $out; mkdir -p $out" \
  -n quorvane-copy "$quorvane copy --on-conflict skip $corpus $out" \
  -n cp-a "cp -a $corpus $out/" >/dev/null
ratio "$json" quorvane-copy cp-a

# Moves within one file system, from hard-linked copies made afresh for each
# run. What users move is a selection: the entries of a flat folder, named
# one by one (the shell expands the same list for both), into another folder.
# Beside it the move of one folder tree, a single rename on both sides, which
# measures little but the start of each program: timed without a shell,
# whose own start would be most of it.
flat=$work/flat
[[ -d $flat ]] || python3 "$here/make_corpus.py" --files "${FLAT_FILES:-10000}" --depth 0 --seed 1602 "$flat" >/dev/null
hyperfine -r "$runs" --export-json "$json" --prepare "rm -rf $work/m $out; mkdir -p $work/m $out; cp -al $flat $work/m/flat" \
  -n quorvane-move-sel "$quorvane move $work/m/flat/* $out" \
  -n mv-sel "mv $work/m/flat/* $out/" >/dev/null
ratio "$json" quorvane-move-sel mv-sel

hyperfine -N -r "$runs" --export-json "$json" \
  --prepare "bash -c 'rm -rf $work/m $out; mkdir -p $work/m $out; cp -al $corpus $work/m/tree'" \
  -n quorvane-move "$quorvane move $work/m/tree $out" \
  -n mv "mv $work/m/tree $out/" >/dev/null
ratio "$json" quorvane-move mv

# A backup with nothing to copy against rsync's look at the same two trees.
rm -rf "$work/bk" "$work"/Backup*.log
"$quorvane" backup "$corpus" "$work/bk" >/dev/null 2>&1
hyperfine -r "$runs" --export-json "$json" \
  -n quorvane-backup "$quorvane backup $corpus $work/bk" \
  -n rsync-dry-run "rsync -a --dry-run $corpus $work/bk/" >/dev/null
ratio "$json" quorvane-backup rsync-dry-run
rm -rf "$out" "$work/m" "$work"/Backup*.log
