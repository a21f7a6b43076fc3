#!/usr/bin/env bash
# `quorvane version` beside exiftool over 400 small DLLs with version
# resources (built with the mingw-w64 tool chain), in one hyperfine run;
# then a 500 MB PE (sparse past its real end) against a small one: the
# reader only touches headers and the resource tree, so the times match.
#
#   bench/version_bench.sh
#   RUNS=5 CORPUS=/dev/shm/quorvane-version bench/version_bench.sh
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
build=${BUILD:-$root/build}
quorvane=${QUORVANE:-$build/app/quorvane}
corpus=${CORPUS:-/tmp/quorvane-bench-version}
runs=${RUNS:-10}

for tool in hyperfine exiftool x86_64-w64-mingw32-windres x86_64-w64-mingw32-gcc; do
  command -v $tool >/dev/null || { echo "version_bench: $tool is missing (scripts/setup.sh --bench)"; exit 2; }
done
[[ -x $quorvane ]] || { echo "version_bench: build first ($quorvane not found)"; exit 2; }

if [[ ! -f $corpus/big.dll ]]; then
  mkdir -p "$corpus/dlls" "$corpus/src"
  echo 'int f(void) { return 1; }' > "$corpus/src/f.c"
  for v in 1 2 3 4; do
    cat > "$corpus/src/v$v.rc" <<RC
1 VERSIONINFO
FILEVERSION $v,0,0,$((v * 7))
PRODUCTVERSION $v,0,0,0
FILEOS 0x40004
FILETYPE 2
BEGIN
  BLOCK "StringFileInfo"
  BEGIN
    BLOCK "040904B0"
    BEGIN
      VALUE "CompanyName", "Bench Company $v"
      VALUE "FileDescription", "Benchmark library $v"
      VALUE "FileVersion", "$v.0.0.$((v * 7))"
      VALUE "ProductVersion", "$v.0"
    END
  END
  BLOCK "VarFileInfo"
  BEGIN
    VALUE "Translation", 0x409, 1200
  END
END
RC
    x86_64-w64-mingw32-windres "$corpus/src/v$v.rc" -O coff -o "$corpus/src/v$v.o"
    x86_64-w64-mingw32-gcc -shared -s -o "$corpus/src/v$v.dll" "$corpus/src/f.c" "$corpus/src/v$v.o"
  done
  for i in $(seq 0 399); do cp "$corpus/src/v$((i % 4 + 1)).dll" "$corpus/dlls/lib$i.dll"; done
  cp "$corpus/src/v1.dll" "$corpus/small.dll"
  cp "$corpus/src/v1.dll" "$corpus/big.dll"
  truncate -s 500M "$corpus/big.dll"
fi

export LC_ALL=C.UTF-8
json=$(mktemp)
trap 'rm -f "$json"' EXIT
hyperfine -N --warmup 1 --runs "$runs" --export-json "$json" \
  -n quorvane-400 "$quorvane version $(echo "$corpus"/dlls/*.dll)" \
  -n exiftool-400 "exiftool -FileVersion -ProductVersion -CompanyName $(echo "$corpus"/dlls/*.dll)" \
  -n quorvane-small "$quorvane version $corpus/small.dll" \
  -n quorvane-500MB "$quorvane version $corpus/big.dll" >/dev/null

python3 - "$json" <<'PY'
import json, sys
r = {x["command"]: x for x in json.load(open(sys.argv[1]))["results"]}
def line(ours, other, limit, what):
    q, t = r[ours], r[other]
    ratio = q["median"] / t["median"]
    verdict = "  ok" if ratio <= limit else "  OVER"
    print(f"{ours:15} {q['median'] * 1000:8.1f} ms  vs {other:15} {t['median'] * 1000:8.1f} ms (medians)"
          f"  ratio {ratio:.3f} (limit {limit}: {what}){verdict}")
line("quorvane-400", "exiftool-400", 0.1, "faster than exiftool")
line("quorvane-500MB", "quorvane-small", 1.5, "flat in the file size")
PY
