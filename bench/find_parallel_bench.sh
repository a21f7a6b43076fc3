#!/usr/bin/env bash
# `quorvane find` at its defaults (contents read on every core) beside the
# parallel tools at theirs, in one hyperfine run: rg and fd use every core,
# bfs its own defaults. Both sides read every file (-uuu, -u). Prints the hit
# counts of both sides (they must agree) and the wall ratios (quorvane / tool;
# below 1.0 is faster). With COLD=1 (root) the page cache is dropped before
# every run of the text searches.
#
#   bench/find_parallel_bench.sh
#   RUNS=5 CORPUS=/dev/shm/quorvane-find FILES=100000 bench/find_parallel_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
quorvane=${QUORVANE:-$root/build/app/quorvane}
corpus=${CORPUS:-/tmp/quorvane-bench-find}
files=${FILES:-279000}
runs=${RUNS:-10}
fd=$(command -v fdfind || command -v fd || true)

for tool in hyperfine rg bfs; do
  command -v $tool >/dev/null || { echo "find_parallel_bench: $tool is missing (scripts/setup.sh --bench)"; exit 2; }
done
[[ -n $fd ]] || { echo "find_parallel_bench: fd is missing (scripts/setup.sh --bench)"; exit 2; }
[[ -x $quorvane ]] || { echo "find_parallel_bench: build first ($quorvane not found)"; exit 2; }
[[ -d $corpus ]] || python3 "$here/make_corpus.py" --files "$files" --folders $((files / 13)) --content mixed --seed 1601 "$corpus"

export LC_ALL=C.UTF-8
q="$quorvane find --in $corpus --subfolders --no-header"
echo "hit counts (quorvane / tool):"
count() { eval "$1" 2>/dev/null | wc -l; }
printf '  text         %s / %s\n' "$(count "$q --containing quorvane_needle --case")" "$(count "rg -l -uuu quorvane_needle $corpus")"
printf '  text, blind  %s / %s\n' "$(count "$q --containing 'herr müller'")" "$(count "rg -li -uuu 'herr müller' $corpus")"
printf '  *.txt        %s / %s / %s\n' "$(count "$q --named '*.txt'")" "$(count "$fd -u -g '*.txt' $corpus")" "$(count "bfs $corpus -iname '*.txt'")"
printf '  every entry  %s / %s\n' "$(($(count "$q") + 1))" "$(count "find $corpus -ls")"

json=$(mktemp)
trap 'rm -f "$json"' EXIT
prepare=()
# -N runs the preparation without a shell too: give it one.
[[ ${COLD:-0} == 1 ]] && prepare=(--prepare "sh -c 'sync; echo 3 > /proc/sys/vm/drop_caches'")
args=(
  -n quorvane-text "$q --containing quorvane_needle --case"
  -n rg-text "rg -l -uuu quorvane_needle $corpus"
  -n quorvane-itext "$q --containing 'herr müller'"
  -n rg-itext "rg -li -uuu 'herr müller' $corpus"
)
[[ ${COLD:-0} == 1 ]] || args+=(
  -n quorvane-named "$q --named '*.txt'"
  -n fd-named "$fd -u -g '*.txt' $corpus"
  -n bfs-named "bfs $corpus -iname '*.txt'"
  -n quorvane-all "$q"
  -n find-ls "find $corpus -ls"
)
warm=(--warmup 2)
[[ ${COLD:-0} == 1 ]] && warm=()
hyperfine -N "${warm[@]}" "${prepare[@]}" --runs "$runs" --export-json "$json" "${args[@]}" >/dev/null

python3 - "$json" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
def line(ours, tool, limit):
    if ours not in r or tool not in r:
        return
    q, t = r[ours], r[tool]
    wall = q["median"] / t["median"]
    print(f"{ours:15} {q['median'] * 1000:7.0f} ms  vs {tool:10} {t['median'] * 1000:7.0f} ms (medians)"
          f"  wall ratio {wall:.2f}  (goal {limit:.1f}){'  ok' if wall <= limit else '  OVER'}")
line("quorvane-text", "rg-text", 1.0)
line("quorvane-itext", "rg-itext", 1.0)
line("quorvane-named", "fd-named", 1.0)
line("quorvane-named", "bfs-named", 1.0)
line("quorvane-all", "find-ls", 0.7)
PY
