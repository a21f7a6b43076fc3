#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
# --sanitize: the same with address and undefined-behaviour sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
dir=build
[[ "${1:-}" == "--sanitize" ]] && dir=build-asan
bash scripts/build.sh "$@"
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$dir" --output-on-failure -j "$(nproc)"
