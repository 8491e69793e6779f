#!/usr/bin/env bash
# Installs the Debian packages a step needs, if any is missing: "build" (compiler, CMake,
# pkg-config), "test" (adds GoogleTest, Google Benchmark and FFTW, which the benchmarks compare
# with). Uses sudo when not run as root.
set -euo pipefail
pkgs=(build-essential cmake pkg-config)
case "${1:-build}" in
  build) ;;
  test) pkgs+=(libgtest-dev libbenchmark-dev libfftw3-dev) ;;
  *) echo "usage: $0 build|test" >&2; exit 2 ;;
esac
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -q
  $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
