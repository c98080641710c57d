#!/usr/bin/env bash
# Installs what is missing, configures, builds and runs every test (except the ones
# labelled "long") with ctest. Exits non-zero on any failure.
#
#   scripts/test.sh            build directory: build/test (override with BUILD_DIR)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build/test}"
jobs="${JOBS:-$(nproc)}"

"$root/scripts/setup-deps.sh" build test

cmake -S "$root" -B "$build_dir" -G Ninja \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSMARTHOME_WERROR=ON \
    -DSMARTHOME_BUILD_TESTS=ON
cmake --build "$build_dir" -j "$jobs"
cd "$build_dir"
ctest --output-on-failure -j "$jobs" -LE long "$@"
