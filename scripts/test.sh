#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite,
# first in the normal build, then under address and undefined-behaviour
# sanitizers. --quick: the normal build only; --sanitize: the sanitizer one only.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
builds=(normal sanitize)
case "${1:-}" in
  --quick) builds=(normal) ;;
  --sanitize) builds=(sanitize) ;;
  "") ;;
  *) echo "usage: scripts/test.sh [--quick|--sanitize]" >&2; exit 2 ;;
esac
export QT_QPA_PLATFORM=offscreen
start=$SECONDS
for b in "${builds[@]}"; do
  if [[ $b == sanitize ]]; then
    dir=build-asan
    bash scripts/build.sh --sanitize
  else
    dir=build
    bash scripts/build.sh
  fi
  echo "== tests ($b build)"
  ctest --test-dir "$dir" --output-on-failure -j "$(nproc)"
done
echo "test.sh: ${builds[*]} done in $((SECONDS - start)) s"
