#!/usr/bin/env bash
# Guards the binary interface of libzelmodemslib.so.5: programs built against
# an earlier 5.x must keep working with a newer one. Compares the interface
# of the built library (build/, or $ZELMODEMS_BUILD_DIR), as its installed
# public headers describe it, with the baseline abi/libzelmodemslib.so.5.abi
# (libabigail's abidw/abidiff).
#
#   tools/check-abi.sh            compare; removed or changed functions,
#                                 variables or types fail, additions pass
#   tools/check-abi.sh --update   record the built library as the baseline
#                                 (on purpose, after a compatible addition)
#
# Exit status: 0 compatible, 1 incompatible, 2 could not compare.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
baseline="$root/abi/libzelmodemslib.so.5.abi"
update=0
case "${1:-}" in
    --update) update=1 ;;
    -h|--help) sed -n '2,14p' "$0"; exit 0 ;;
    "") ;;
    *) echo "check-abi: unknown argument '$1'" >&2; exit 2 ;;
esac

"$root/tools/install-deps.sh" --abi
"$root/tools/build.sh" >/dev/null

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
for component in runtime development; do
    cmake --install "$build" --prefix "$scratch/prefix" --component "$component" >/dev/null
done
lib="$(find "$scratch/prefix" -name 'libzelmodemslib.so.*.*.*' -type f | head -n 1)"
[ -n "$lib" ] || { echo "check-abi: the build installs no libzelmodemslib.so" >&2; exit 2; }

# Only the types that the public headers declare count; the library's
# internal types may change freely.
abidw --no-corpus-path --drop-private-types --headers-dir "$scratch/prefix/include/zelmodemslib" \
      --out-file "$scratch/current.abi" "$lib"

if [ "$update" -eq 1 ]; then
    mkdir -p "$(dirname "$baseline")"
    cp "$scratch/current.abi" "$baseline"
    echo "check-abi: baseline recorded in ${baseline#"$root"/}"
    exit 0
fi
[ -f "$baseline" ] || { echo "check-abi: no baseline; record one with --update" >&2; exit 2; }

status=0
abidiff "$baseline" "$scratch/current.abi" >"$scratch/report" 2>&1 || status=$?
# abidiff's status is a bit set: 1 error, 2 usage error, 4 a change,
# 8 an incompatible change.
if [ $((status & 3)) -ne 0 ]; then
    cat "$scratch/report" >&2
    echo "check-abi: abidiff could not compare (status $status)" >&2
    exit 2
fi
if [ "$status" -eq 0 ]; then
    echo "check-abi: the interface is the baseline's"
    exit 0
fi
cat "$scratch/report"
# A change to an existing function, variable or type (its layout, its
# parameters) can break a program built before it, as a removal does, even
# where abidiff calls it only a change.
if [ $((status & 8)) -ne 0 ] || grep -Eq '(^|[^0-9])[1-9][0-9]* (Removed|Changed)' "$scratch/report"; then
    echo "check-abi: INCOMPATIBLE: the change above breaks programs built against libzelmodemslib.so.5"
    exit 1
fi
echo "check-abi: compatible additions; record them with tools/check-abi.sh --update"
exit 0
