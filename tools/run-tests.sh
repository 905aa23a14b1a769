#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
"$root/tools/build.sh"
cd "$build"
# Most tests wait on simulated modems rather than on the CPU, so more run
# at once than there are cores. The modem tests talk through real
# pseudo-terminals with the driver's own time-outs; a test that fails is run
# once more, so that a machine too loaded to answer in time is told apart
# from a fault (ctest lists every test that needed the second run).
ctest --output-on-failure -j "$(( $(nproc) * 2 ))" --repeat until-pass:2 "$@"
