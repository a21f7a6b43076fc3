#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and (with --bench) the
# benchmarks or (with --fuzz) the libFuzzer harnesses need. Idempotent and
# non-interactive; quick when all is there.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6svg6 libicu-dev
  qt6-image-formats-plugins qt6-svg-dev libwmf-dev
  libgl-dev
  qt6-multimedia-dev libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-libav
  gstreamer1.0-tools timgm6mb-soundfont
  fonts-dejavu-core adwaita-icon-theme
  xvfb xauth
  binutils-mingw-w64 gcc-mingw-w64
)
bench_packages=(libbenchmark-dev hyperfine fd-find ripgrep bfs findutils grep)
bench_packages+=(libimage-exiftool-perl rsync)
bench_packages+=(tree)
bench_packages+=(imagemagick)
fuzz_packages=(clang libclang-rt-14-dev)

for arg in "$@"; do
  case "$arg" in
    --bench) packages+=("${bench_packages[@]}") ;;
    --fuzz) packages+=("${fuzz_packages[@]}") ;;
  esac
done

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=()
  [[ $(id -u) -ne 0 ]] && sudo_cmd=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo_cmd[@]}" apt-get update -qq
  "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
