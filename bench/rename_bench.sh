#!/usr/bin/env bash
# `quorvane rename --how upper` beside a shell loop of `mv -n` that makes the
# same upper-case names, on the same 10,000 files in one folder (made afresh
# before every run). Prints the wall-clock ratio (quorvane / loop; below 1.0
# is faster). The undo log goes to the work folder, not to your settings.
#
#   bench/rename_bench.sh
#   FILES=50000 WORK=/dev/shm/qv-rename RUNS=10 bench/rename_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-${BUILD:-$root/build}/app/quorvane}
work=${WORK:-/tmp/quorvane-bench-rename}
files=${FILES:-10000}
runs=${RUNS:-5}

command -v hyperfine >/dev/null || { echo "rename_bench: hyperfine is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "rename_bench: build first ($quorvane not found)"; exit 2; }
mkdir -p "$work"
make_folder="rm -rf $work/d $work/RenameSpecial.log; mkdir $work/d; cd $work/d && seq -f 'file %05g of batch.txt' $files | xargs -d '\n' touch"

export LC_ALL=C.UTF-8
json=$(mktemp)
trap 'rm -f "$json"' EXIT
hyperfine -S bash -r "$runs" --export-json "$json" --prepare "$make_folder" \
  -n quorvane-rename "cd $work/d && $quorvane --ini $work/q.ini rename --how upper * >/dev/null 2>&1" \
  -n mv-n-loop "cd $work/d && for f in *; do mv -n -- \"\$f\" \"\${f^^}\"; done" \
  >/dev/null
python3 - "$json" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
q, t = r["quorvane-rename"]["mean"], r["mv-n-loop"]["mean"]
print(f"quorvane-rename / mv-n-loop  {q:8.3f} s / {t:8.3f} s = {q / t:5.2f}")
PY
rm -rf "$work/d" "$work/RenameSpecial.log"
