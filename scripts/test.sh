#!/usr/bin/env bash
# Builds and runs every test: a Release build (with the benchmarks compiled, not run), then a
# build with AddressSanitizer and UndefinedBehaviorSanitizer; last, a CMake project and a
# pkg-config build that use the installed library.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
jobs=$(nproc)

echo "== Release build and tests"
cmake -S . -B build/test-release -DCMAKE_BUILD_TYPE=Release -DVSP_BUILD_BENCH=ON -DCMAKE_INSTALL_LIBDIR=lib
cmake --build build/test-release -j"$jobs"
ctest --test-dir build/test-release -j"$jobs" --output-on-failure

echo "== AddressSanitizer and UndefinedBehaviorSanitizer build and tests"
cmake -S . -B build/test-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVSP_SANITIZE=ON
cmake --build build/test-sanitize -j"$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build/test-sanitize -j"$jobs" --output-on-failure

echo "== The installed library, used through find_package and pkg-config"
rm -rf build/test-stage build/test-consumer
cmake --install build/test-release --prefix "$PWD/build/test-stage"
cmake -S tests/package -B build/test-consumer -DCMAKE_PREFIX_PATH="$PWD/build/test-stage"
cmake --build build/test-consumer
build/test-consumer/vsp_consumer
PKG_CONFIG_PATH="$PWD/build/test-stage/lib/pkgconfig" \
  cc -std=c99 examples/demo.c $(PKG_CONFIG_PATH="$PWD/build/test-stage/lib/pkgconfig" pkg-config --cflags --libs vsp) -lm \
  -Wl,-rpath,"$PWD/build/test-stage/lib" -o build/test-consumer/vsp_demo_pc
build/test-consumer/vsp_demo_pc > /dev/null
echo "All tests passed."
