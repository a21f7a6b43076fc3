#!/usr/bin/env bash
# Installs what is missing, builds and starts Quorvane. With no display the
# window opens on a virtual display and a screenshot is saved instead.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
  exec ./build/app/quorvane "$@"
fi
shot="${QUORVANE_SCREENSHOT:-$PWD/quorvane-screenshot.png}"
echo "No display: starting Quorvane on a virtual display (xvfb-run) and saving a screenshot."
xvfb-run -a -s "-screen 0 1280x900x24" ./build/app/quorvane --screenshot "$shot" "$@"
echo "Screenshot saved to $shot"
