#!/usr/bin/env bash
# Checks what `cmake --install` gives a caller of the library: the installed
# files and the SONAME, then the programs of examples/consumer built only
# from the installed files, once through find_package(ZelModemsLib) and once
# through pkg-config, and run without LD_LIBRARY_PATH.
#
#   tools/check-install.sh [BUILD_DIR]
#
# BUILD_DIR (default build/) must be built. Nothing is installed on the
# machine: the prefix is a scratch folder.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$(cd "${1:-$root/build}" && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
cache() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
cmake -DBUILD_DIR="$build" -DPROJECT_DIR="$root/examples/consumer" -DWORK_DIR="$scratch/work" \
      -DCXX="$(cache CMAKE_CXX_COMPILER)" -DVERSION="$(cache CMAKE_PROJECT_VERSION)" \
      -P "$root/tools/check-install.cmake"
echo "check-install: passed"
