#!/usr/bin/env bash
# Configures and builds the project in ./build (or $ZELMODEMS_BUILD_DIR).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
"$root/tools/install-deps.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE="${CMAKE_BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
cmake --build "$build" -j "$(nproc)"
