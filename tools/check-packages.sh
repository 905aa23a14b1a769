#!/usr/bin/env bash
# Checks the Debian packages of the library, its development files, the
# simulator and the tools: control fields, dependencies, contents, one owner
# per file, and the packaged tool running from a scratch root with only the
# packaged libraries.
#
#   tools/check-packages.sh [BUILD_DIR [PACKAGES_DIR]]
#
# Without PACKAGES_DIR the packages are made from BUILD_DIR (default build/)
# with CPack into a scratch folder. The last line says what failed.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$(cd "${1:-$root/build}" && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "check-packages: FAILED: $*"; failures=$((failures + 1)); }

cache() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
version="$(cache CMAKE_PROJECT_VERSION)"
major="${version%%.*}"
system_platform="$(cache ZELMODEMS_SYSTEM_PLATFORM)"
runtime="libzelmodemslib$major" simulator="libzelmodemssim$major"
devel="libzelmodemslib-dev" tools="zelmodems-tools"

packages="${2:-}"
if [ -z "$packages" ]; then
    packages="$scratch/packages"
    (cd "$build" && cpack -G DEB --config CPackConfig.cmake -B "$packages" >"$scratch/cpack.log" 2>&1) \
        || { cat "$scratch/cpack.log"; echo "check-packages: FAILED: cpack"; exit 1; }
fi
arch="$(dpkg --print-architecture)"
deb() { echo "$packages/${1}_${version}_${arch}.deb"; }
for p in "$runtime" "$simulator" "$devel" "$tools"; do
    [ -f "$(deb "$p")" ] || { echo "check-packages: FAILED: $(deb "$p") is missing"; exit 1; }
    # Regular files and links as "path" or "path -> target", without the leading ".".
    dpkg-deb -c "$(deb "$p")" | awk '$1 !~ /^d/ { $1=$2=$3=$4=$5=""; sub(/^ +\./, ""); print }' \
        >"$scratch/$p.files"
done
field() { dpkg-deb -f "$(deb "$1")" "$2"; }

# Control fields; a dependency with a version must match exactly, and every
# other package named is one this machine has.
check_control() {
    local p="$1" section="$2"; shift 2
    [ "$(field "$p" Package)" = "$p" ] || fail "$p: Package field"
    [ "$(field "$p" Version)" = "$version" ] || fail "$p: Version is not $version"
    [ "$(field "$p" Section)" = "$section" ] || fail "$p: Section is not $section"
    [ -n "$(field "$p" Maintainer)" ] && [ -n "$(field "$p" Description)" ] || fail "$p: no Maintainer or Description"
    local depends; depends="$(field "$p" Depends | tr ',' '\n' | sed 's/^ *//; s/ *$//')"
    for d in "$@"; do
        case "$d" in
            *"("*) grep -qxF "$d" <<<"$depends" || fail "$p: Depends lacks $d" ;;
            *) cut -d' ' -f1 <<<"$depends" | grep -qxF "$d" || fail "$p: Depends lacks $d" ;;
        esac
    done
    for name in $(sed 's/[ |(].*//' <<<"$depends"); do
        [ "$name" = "$runtime" ] || [ "$name" = "$simulator" ] || dpkg-query -W "$name" >/dev/null 2>&1 \
            || fail "$p: depends on $name, which is no installed package"
    done
}
check_control "$runtime" libs libqt5core5a libqt5serialport5 libudev1 libstdc++6 libc6
check_control "$simulator" libs libqt5core5a libstdc++6
check_control "$devel" libdevel "$runtime (= $version)" "$simulator (= $version)" qtbase5-dev libqt5serialport5-dev
check_control "$tools" utils "$runtime (= $version)" "$simulator (= $version)" libqt5core5a
# Packages built against the library get a dependency on it.
dpkg-deb --info "$(deb "$runtime")" shlibs | grep -qxF "libzelmodemslib $major $runtime (>= $version)" \
    || fail "$runtime: shlibs does not declare the library"

# Contents: "package path-suffix [link-target]".
so="libzelmodemslib.so"
contents=(
    "$runtime /$so.$version" "$runtime /$so.$major $so.$version"
    "$runtime /share/qt5ext/translations/zelmodemslib_ru.qm"
    "$devel /$so $so.$major" "$devel /include/zelmodemslib/atmodem.h"
    "$devel /include/zelmodemslib/zelmodemslib_export.h" "$devel /include/zelmodemslib/simmodem.h"
    "$devel /cmake/ZelModemsLib/ZelModemsLibConfig.cmake" "$devel /cmake/ZelModemsLib/ZelModemsLibConfigVersion.cmake"
    "$devel /cmake/ZelModemsLib/ZelModemsLibSimulatorTargets.cmake" "$devel /pkgconfig/zelmodemslib.pc"
    "$simulator /libzelmodemssim.so.$major libzelmodemssim.so.$version"
    "$tools /bin/zelmodems" "$tools /bin/modemsim" "$tools /man1/zelmodems.1" "$tools /man1/modemsim.1"
    "$tools /zelmodems/zelmodems-output.schema.json"
    "$tools /completions/zelmodems" "$tools /completions/modemsim"
)
[ "$system_platform" = ON ] || contents+=("$runtime /libqt5ext.so.1 libqt5ext.so.1.0.0"
                                          "$runtime /libzelbus.so.1 libzelbus.so.1.0.0")
for p in "$runtime" "$simulator" "$devel" "$tools"; do contents+=("$p /share/doc/$p/copyright"); done
for entry in "${contents[@]}"; do
    read -r p suffix target <<<"$entry"
    line="$(grep -E "^[^ ]*$(sed 's/[.]/\\./g' <<<"$suffix")( -> |$)" "$scratch/$p.files" | head -1)"
    [ -n "$line" ] || { fail "$p lacks $suffix"; continue; }
    [ "$(sed -n 's/.* -> //p' <<<"$line")" = "$target" ] || fail "$p: $suffix should be ${target:-a regular file}"
done

# dpkg refuses two packages that own the same file; the runtime carries no
# development files, the tools nothing of the library.
dups="$(cat "$scratch"/*.files | sed 's/ -> .*//' | sort | uniq -d)"
[ -z "$dups" ] || fail "files in two packages: $dups"
grep -E '/include/|\.so( |$)' "$scratch/$runtime.files" && fail "$runtime carries development files"
grep -vE '/bin/|/share/doc/|/share/man/man1/|/share/bash-completion/completions/|/share/zelmodems/|/zelmodems_ru\.qm' \
    "$scratch/$tools.files" && fail "$tools carries files that are not its own"

# The packaged tool from a scratch root, with only the packaged libraries.
for p in "$runtime" "$simulator" "$devel" "$tools"; do dpkg -x "$(deb "$p")" "$scratch/root"; done
libdir="$scratch/root$(dirname "$(grep -m1 "/$so.$major " "$scratch/$runtime.files" | cut -d' ' -f1)")"
tool="$scratch/root$(grep -m1 '/bin/zelmodems$' "$scratch/$tools.files")"
packaged() { timeout 60 env -u QT5EXT_TRANSLATIONS_DIR LD_LIBRARY_PATH="$libdir" LC_ALL=C.UTF-8 "$tool" "$@"; }
[ "$(packaged --version)" = "zelmodems $version" ] || fail "packaged zelmodems --version"
[ "$(packaged pdu encode +79161234567 Hello)" = "$(printf 'AT+CMGS=18\n0001000B919761214365F7000005C8329BFD06')" ] \
    || fail "packaged zelmodems pdu encode"
steps="$(packaged demo --json | python3 -c 'import json,sys; print(len(json.load(sys.stdin)["steps"]))' 2>/dev/null)"
[ "$steps" = 8 ] || fail "packaged zelmodems demo: ${steps:-no} steps instead of 8"
# The pkg-config file finds its prefix from where it lies.
if command -v pkg-config >/dev/null; then
    pc="$scratch/root$(grep -m1 '/zelmodemslib\.pc$' "$scratch/$devel.files")"
    libs="$(PKG_CONFIG_PATH="$(dirname "$pc")" pkg-config --libs zelmodemslib)"
    [[ "$libs" == *-lzelmodemslib* && ( "$libs" == *"-L$libdir"* || "$libs" == *"-L$(realpath "$libdir")"* ) ]] \
        || fail "pkg-config --libs from the unpacked files: $libs"
fi

if [ "$failures" -gt 0 ]; then
    echo "check-packages: $failures check(s) failed"
    exit 1
fi
echo "check-packages: the four packages of $version are sound"
