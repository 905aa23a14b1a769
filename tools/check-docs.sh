#!/usr/bin/env bash
# Builds the API reference from the public headers with Doxygen and fails on
# any warning (a broken reference, an unknown command or tag in a comment).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${ZELMODEMS_BUILD_DIR:-$root/build}"
"$root/tools/install-deps.sh" --docs
cmake -S "$root" -B "$build" >/dev/null
cmake --build "$build" --target docs
log="$build/docs/warnings.log"
if [ -s "$log" ]; then
    cat "$log" >&2
    echo "check-docs: $(wc -l <"$log") Doxygen warning(s) in the public headers" >&2
    exit 1
fi
echo "check-docs: the reference is in ${build#"$root"/}/docs/html/index.html, without warnings"
