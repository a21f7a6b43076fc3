#!/usr/bin/env bash
# Installs what is missing, builds and starts Quorvane, optionally on FOLDER.
# With no display the window opens on a virtual display (xvfb-run), a
# screenshot is saved once the start folder's list is painted, and the
# program exits.
#   scripts/run.sh [FOLDER]
set -euo pipefail
cd "$(dirname "$0")/.."
folder=()
if (($#)); then
  [[ -d "$1" ]] || { echo "run.sh: not a folder: $1" >&2; exit 2; }
  folder=("$(realpath "$1")")
fi
bash scripts/setup.sh
bash scripts/build.sh
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
  exec ./build/app/quorvane ${folder:+--open "${folder[0]}"}
fi
shot="${QUORVANE_SCREENSHOT:-$PWD/quorvane-screenshot.png}"
echo "No display: starting Quorvane on a virtual display (xvfb-run) and saving a screenshot."
xvfb-run -a -s "-screen 0 1280x900x24" ./build/app/quorvane --screenshot "$shot" "${folder[@]}"
echo "Screenshot saved to $shot"
