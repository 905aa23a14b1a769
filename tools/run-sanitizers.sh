#!/usr/bin/env bash
# Builds the project with the sanitizers and runs the tests under them:
#   asan  AddressSanitizer + UndefinedBehaviorSanitizer, the whole test suite
#         (build-asan/, the "asan" preset);
#   tsan  ThreadSanitizer, the discovery, loader, live modem, settings and fault tests
#         (build-tsan/, the "tsan" preset; QMutex made visible to the
#         sanitizer by a preloaded shim, Qt-internal hand-offs suppressed:
#         cmake/sanitizers/).
#
#   tools/run-sanitizers.sh            both
#   tools/run-sanitizers.sh asan       one of them
#   tools/run-sanitizers.sh tsan -R finder    extra arguments go to ctest
#
# A finding fails the run (halt_on_error / abort_on_error in the presets).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
jobs="${ZELMODEMS_JOBS:-2}"

kinds=()
while [ $# -gt 0 ]; do
    case "$1" in
        asan|tsan) kinds+=("$1"); shift ;;
        -h|--help) sed -n '2,15p' "$0"; exit 0 ;;
        *) break ;;
    esac
done
[ ${#kinds[@]} -eq 0 ] && kinds=(asan tsan)

"$root/tools/install-deps.sh"
cd "$root"
status=0
for kind in "${kinds[@]}"; do
    echo "== $kind: configure and build" >&2
    cmake --preset "$kind" >/dev/null
    cmake --build --preset "$kind" -j "$jobs" >/dev/null
    echo "== $kind: tests" >&2
    # Lock files of the serial ports tested go to a scratch folder.
    lockdir="$(mktemp -d)"
    # As in CI's ordinary run (ZELMODEMS_TEST_RETRY=1), a failed test gets a
    # second run, since the sanitizers slow the modem dialogues towards their
    # time-outs; each test that needed it is named. A finding that does not
    # come back is still printed with the first run's output.
    if ! QT5EXT_LOCK_DIR="$lockdir" ctest --preset "$kind" "$@"; then
        if [ "${ZELMODEMS_TEST_RETRY:-0}" = 1 ]; then
            echo "run-sanitizers: $kind: these tests failed their first attempt and run once more:" >&2
            sed 's/^/run-sanitizers:   /' "build-$kind/Testing/Temporary/LastTestsFailed.log" >&2 || true
            QT5EXT_LOCK_DIR="$lockdir" ctest --preset "$kind" --rerun-failed "$@" || status=1
        else
            status=1
        fi
    fi
    rm -rf "$lockdir"
done
exit "$status"
