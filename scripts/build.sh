#!/usr/bin/env bash
# Configures and builds into build/ (or build-asan/ with --sanitize).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build
extra=()
if [[ "${1:-}" == "--sanitize" ]]; then
  dir=build-asan
  extra+=(-DQUORVANE_SANITIZE=ON)
  shift
fi
if [[ ! -f "$dir/build.ninja" ]]; then
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${extra[@]}" "$@" >/dev/null
fi
ninja -C "$dir"
