#!/usr/bin/env bash
# Line and branch coverage of the library sources (src/) by the whole test suite: a separate
# build in build/coverage with --coverage at -O1, every CTest test, then gcovr's summary.
# Installs gcovr (and the test packages) through apt-get when missing. Extra arguments go to
# gcovr, e.g. `scripts/coverage.sh --html-details build/coverage/index.html`.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
if ! command -v gcovr > /dev/null; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends gcovr
fi
jobs=$(nproc)
dir=build/coverage
launcher=()
command -v ccache > /dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)

cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Coverage -DVSP_BUILD_EXAMPLES=OFF -DVSP_BUILD_BENCH=OFF \
  -DCMAKE_C_FLAGS_COVERAGE="-O1 -g --coverage" -DCMAKE_CXX_FLAGS_COVERAGE="-O1 -g --coverage" \
  -DCMAKE_ASM_FLAGS_COVERAGE="-g" \
  -DCMAKE_EXE_LINKER_FLAGS_COVERAGE="--coverage" -DCMAKE_SHARED_LINKER_FLAGS_COVERAGE="--coverage" \
  "${launcher[@]}"
cmake --build "$dir" -j"$jobs"
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j"$jobs" --output-on-failure
# The per-file table goes to build/coverage/coverage.txt; the totals are printed.
gcovr --root . --filter 'src/' --exclude-unreachable-branches --exclude-throw-branches -j"$jobs" \
  --print-summary --output "$dir/coverage.txt" "$@" "$dir"
