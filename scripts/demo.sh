#!/usr/bin/env bash
# Installs what is missing, builds the example hub daemon (Release, tests off) and runs it.
# Arguments go to the daemon, e.g. `scripts/demo.sh --events 1000 --devices 8`. The daemon
# logs at info level and above unless SMARTHOME_LOG_LEVEL says otherwise, and exits
# non-zero when its run fails.
#
#   scripts/demo.sh [daemon options]   build directory: build/demo (override with BUILD_DIR)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build/demo}"
jobs="${JOBS:-$(nproc)}"

"$root/scripts/setup-deps.sh" build

cmake -S "$root" -B "$build_dir" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release \
    -DSMARTHOME_BUILD_TESTS=OFF \
    -DSMARTHOME_BUILD_TOOLS=ON
cmake --build "$build_dir" -j "$jobs" --target smarthome-demo-daemon

export SMARTHOME_LOG_LEVEL="${SMARTHOME_LOG_LEVEL:-i}"
exec "$build_dir/tools/smarthome-demo-daemon" "$@"
