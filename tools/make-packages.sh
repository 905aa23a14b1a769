#!/usr/bin/env bash
# Builds the Debian packages: libzelmodemslib5 (runtime), libzelmodemslib-dev
# (development files) and zelmodems-tools (zelmodems, modemsim), installing
# below /usr. Configures a build of its own in build-packages/ (or
# $ZELMODEMS_PACKAGE_BUILD_DIR), checks the packages with tools/check-packages.sh,
# and leaves them in that folder's packages/.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_PACKAGE_BUILD_DIR:-$root/build-packages}"
"$root/tools/install-deps.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
      -DZELMODEMS_BUILD_TESTS=OFF "$@" >/dev/null
cmake --build "$build" -j "$(nproc)"
rm -f "$build"/packages/*.deb
(cd "$build" && cpack -G DEB)
"$root/tools/check-packages.sh" "$build" "$build/packages"
ls -l "$build"/packages/*.deb
