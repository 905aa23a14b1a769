#!/usr/bin/env bash
# Builds the fuzz targets (clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer; build-fuzz/, the "fuzz" preset) and runs each
# for a while on a working copy of its seed corpus.
#
#   tools/run-fuzz.sh --short          CI: 30 s per target, two at a time
#   tools/run-fuzz.sh                  10 minutes per target
#   tools/run-fuzz.sh --time 3600 fuzz_sms_decode   one target, an hour
#   tools/run-fuzz.sh --jobs 1 ...     one target at a time
#   tools/run-fuzz.sh --runs 10000000 fuzz_lockfile   a number of executions
#
# Inputs of up to 256 KB. Inputs that crash, leak, take more than 2 s (a
# cost that grows faster than the input shows up as such), grow past 2 GB or
# trip a check are written to
# build-fuzz/artifacts/<target>/ and the script exits with status 1. Keep
# each as fuzz/regressions/<target>/<what-it-shows> once its cause is fixed:
# the ordinary test suite replays them (fuzz_<target>_replay).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_FUZZ_DIR:-$root/build-fuzz}"
seconds=600
runs=-1
jobs=2
targets=()
while [ $# -gt 0 ]; do
    case "$1" in
        --short) seconds=30 ;;
        --time) seconds="$2"; shift ;;
        --jobs) jobs="$2"; shift ;;
        --runs) runs="$2"; seconds=0; shift ;;
        -h|--help) sed -n '2,16p' "$0"; exit 0 ;;
        *) targets+=("$1") ;;
    esac
    shift
done

"$root/tools/install-deps.sh" --fuzz
if ! command -v clang++ >/dev/null; then
    echo "run-fuzz: clang++ is missing (Debian: clang libclang-rt-dev)" >&2
    exit 2
fi
# The "fuzz" preset holds the compiler and the sanitizer flags.
(cd "$root" && cmake --preset fuzz -B "$build" >/dev/null)
cmake --build "$build" -j "$jobs" --target fuzz_all >/dev/null

if [ ${#targets[@]} -eq 0 ]; then
    for exe in "$build"/fuzz/fuzz_*; do
        [ -x "$exe" ] && [ -f "$exe" ] && targets+=("$(basename "$exe")")
    done
fi

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:allocator_may_return_null=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$root/fuzz/lsan.supp:print_suppressions=0}"
export QT_QPA_PLATFORM=offscreen

run_one() {
    local target="$1" work="$build/work/$1" artifacts="$build/artifacts/$1"
    mkdir -p "$work" "$artifacts"
    local seeds=("$root/fuzz/corpus/$target")
    [ -d "$root/fuzz/regressions/$target" ] && seeds+=("$root/fuzz/regressions/$target")
    local log="$build/work/$target.log"
    local status=0 start=$SECONDS
    "$build/fuzz/$target" -max_total_time="$seconds" -runs="$runs" -timeout=2 -report_slow_units=1 -rss_limit_mb=2048 \
        -max_len=262144 -print_final_stats=1 -artifact_prefix="$artifacts/" \
        "$work" "${seeds[@]}" >"$log" 2>&1 || status=$?
    local executed
    executed="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n1)"
    if [ "$status" -eq 0 ]; then
        printf '%-20s ok     %10s runs in %ss\n' "$target" "${executed:-?}" "$((SECONDS - start))"
    else
        printf '%-20s FOUND  %10s runs; see %s and %s\n' "$target" "${executed:-?}" "$artifacts" "$log"
        grep -E 'ERROR|runtime error|check failed|qFatal' "$log" | head -n 5 | sed 's/^/    /'
    fi
    return "$status"
}

status=0
pids=()
names=()
for target in "${targets[@]}"; do
    run_one "$target" &
    pids+=("$!")
    names+=("$target")
    if [ ${#pids[@]} -ge "$jobs" ]; then
        wait "${pids[0]}" || status=1
        pids=("${pids[@]:1}")
        names=("${names[@]:1}")
    fi
done
for pid in "${pids[@]}"; do
    wait "$pid" || status=1
done
exit "$status"
