#!/usr/bin/env bash
# Builds the library, installs it into build/stage, then builds the demo against the installed
# library with pkg-config, as a user would, and runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh build
jobs=$(nproc)
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DVSP_BUILD_TESTS=OFF -DCMAKE_INSTALL_LIBDIR=lib
cmake --build build/release -j"$jobs"
rm -rf build/stage
cmake --install build/release --prefix "$PWD/build/stage"
export PKG_CONFIG_PATH="$PWD/build/stage/lib/pkgconfig"
cc -std=c99 -O2 examples/demo.c $(pkg-config --cflags --libs vsp) -lm -Wl,-rpath,"$PWD/build/stage/lib" -o build/stage/vsp_demo
build/stage/vsp_demo
