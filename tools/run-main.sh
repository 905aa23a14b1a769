#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: the zelmodems
# tool's demo against simulated modems, or the given zelmodems command
# (for example: tools/run-main.sh find /dev/ttyUSB0 /dev/ttyUSB1).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
"$root/tools/build.sh"
if [ $# -eq 0 ]; then
    set -- demo
fi
export QT5EXT_TRANSLATIONS_DIR="$build/translations"
exec "$build/tools/zelmodems/zelmodems" "$@"
