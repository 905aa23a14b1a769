#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
"$root/tools/build.sh"
cd "$build"
# Most tests wait on simulated modems rather than on the CPU, so more run
# at once than there are cores.
ctest --output-on-failure -j "$(( $(nproc) * 2 ))" "$@"
