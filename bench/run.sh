#!/usr/bin/env bash
# Builds the benchmarks optimised (build-bench/, the "bench" preset), runs
# them one after the other and prints the table of figures, with the machine
# it ran on, in the Markdown form that bench/README.md records.
#
#   bench/run.sh            full run (a few minutes)
#   bench/run.sh --quick    short run: fewer iterations, small searches
#   bench/run.sh --no-build run what is built already
#   bench/run.sh bench_sms  only the named benchmarks
#
# Other programs running at the same time change the figures; the ratios,
# measured side by side in one run, change less than the absolute values.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BENCH_DIR:-$root/build-bench}"
jobs="${ZELMODEMS_BENCH_JOBS:-2}"

quick=()
build_it=1
selected=()
for arg in "$@"; do
    case "$arg" in
        --quick) quick=(--quick) ;;
        --no-build) build_it=0 ;;
        -h|--help) sed -n '2,13p' "$0"; exit 0 ;;
        *) selected+=("$arg") ;;
    esac
done
if [ ${#selected[@]} -eq 0 ]; then
    selected=(bench_at bench_live bench_finder bench_sms bench_codec)
fi

if [ "$build_it" -eq 1 ]; then
    "$root/tools/install-deps.sh"
    cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DZELMODEMS_BUILD_BENCH=ON \
        -DZELMODEMS_BUILD_TESTS=OFF -DZELMODEMS_BUILD_TOOLS=ON >/dev/null
    cmake --build "$build" -j "$jobs" --target bench_all >/dev/null
fi

rows="$(mktemp)"
trap 'rm -f "$rows"' EXIT
status=0
for b in "${selected[@]}"; do
    exe="$build/bench/$b"
    if [ ! -x "$exe" ]; then
        echo "($b is not built; skipped)" >&2
        continue
    fi
    echo "running $b ${quick[*]:-}" >&2
    if ! QT_QPA_PLATFORM=offscreen QT5EXT_LOCK_DIR="${QT5EXT_LOCK_DIR:-/tmp}" \
            "$exe" "${quick[@]}" | tee -a "$rows" | { grep -v '^ROW' >&2 || true; }; then
        echo "$b failed" >&2
        status=1
    fi
done

# Serial port lock files: QSerialPort writes and syncs one on every open. An
# appliance keeps /run/lock (/var/lock) on tmpfs; where this machine keeps it
# on a disk, discovery is run once more with a private tmpfs there (root and
# unshare needed; nothing outside the benchmark's own mount namespace changes).
lockdir="$(readlink -f /var/lock 2>/dev/null || echo /var/lock)"
if [[ " ${selected[*]} " == *" bench_finder "* ]] && [ -x "$build/bench/bench_finder" ] \
        && [ "$(stat -f -c %T "$lockdir" 2>/dev/null)" != "tmpfs" ] && [ "$(id -u)" -eq 0 ] \
        && command -v unshare >/dev/null \
        && unshare -m --propagation private true 2>/dev/null; then
    echo "running bench_finder with $lockdir on a private tmpfs" >&2
    if ! QT_QPA_PLATFORM=offscreen QT5EXT_LOCK_DIR="${QT5EXT_LOCK_DIR:-/tmp}" \
            unshare -m --propagation private sh -c 'mount -t tmpfs tmpfs "$1" && shift && exec "$@"' \
            sh "$lockdir" "$build/bench/bench_finder" "${quick[@]}" | tee -a "$rows" \
            | { grep -v '^ROW' >&2 || true; }; then
        echo "bench_finder on tmpfs failed" >&2
        status=1
    fi
fi

cpu="$(lscpu 2>/dev/null | sed -n 's/^Model name:[[:space:]]*//p' | head -n1)"
cores="$(nproc)"
mem="$(free -g 2>/dev/null | awk '/^Mem:/ {print $2 " GiB"}')"
os="$(. /etc/os-release 2>/dev/null && echo "$PRETTY_NAME")"
qt="$(pkg-config --modversion Qt5Core 2>/dev/null || echo '?')"
cxx="$(c++ --version 2>/dev/null | head -n1)"
load="$(cut -d' ' -f1-3 /proc/loadavg)"

echo
echo "Machine: ${cpu:-unknown CPU}, $cores cores, ${mem:-?} RAM; ${os:-Linux} $(uname -r);"
echo "Qt $qt, $cxx, Release build; load average before the table: $load;"
echo "$(date -u '+%Y-%m-%d %H:%M UTC')${quick:+, quick mode}."
echo
echo "| Section | Measure | ZelModemsLib | Peer or limit | Peer or limit value | Ratio | Target | Verdict |"
echo "|---|---|---|---|---|---|---|---|"
awk -F'\t' '$1 == "ROW" {
    printf "| %s | %s | %s | %s | %s | %s | %s | %s |\n", $2, $3, $4, $5, $6, $7, $8, $9
}' "$rows"
exit "$status"
