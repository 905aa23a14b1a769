#!/usr/bin/env bash
# Proves that bare Debian 12 (bookworm) and Debian 13 (trixie, the current
# stable) machines run the README's two commands: for each release, builds a
# minimal Debian root (mmdebstrap --variant=minbase, from the apt sources
# this machine uses, with the release's name in them), clones the repository
# into it and runs the commands of the README's first code block there, one
# after the other, under chroot in a private mount namespace, so that no
# mount outlives the run. Each root is removed afterwards.
#
#   tools/check-fresh-machine.sh            the committed HEAD of this clone, both releases
#   tools/check-fresh-machine.sh --release trixie
#                                           one release only (bookworm or trixie)
#   tools/check-fresh-machine.sh --keep     keep the root for a look inside
#   tools/check-fresh-machine.sh --also "tools/make-packages.sh" --also ...
#                                           run more commands there afterwards
#
# Needs root. What the commands print goes to the log named at the end
# ($ZELMODEMS_FRESH_LOG, else a file in $TMPDIR); a failure ends with one
# line saying what failed, and the exit status is 1 (2 for a wrong call).
set -uo pipefail
repo="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
keep=0
also=()
releases=()
while [ $# -gt 0 ]; do
    case "$1" in
        --keep) keep=1 ;;
        --also) [ $# -ge 2 ] || { echo "check-fresh-machine: --also needs a command" >&2; exit 2; }
                also+=("$2"); shift ;;
        --release) [ $# -ge 2 ] && [[ "$2" =~ ^(bookworm|trixie)$ ]] \
                       || { echo "check-fresh-machine: --release takes bookworm or trixie" >&2; exit 2; }
                   releases+=("$2"); shift ;;
        -h|--help) sed -n '2,20p' "$0"; exit 0 ;;
        *) echo "check-fresh-machine: unknown argument '$1'" >&2; exit 2 ;;
    esac
    shift
done

log="${ZELMODEMS_FRESH_LOG:-${TMPDIR:-/tmp}/check-fresh-machine.log}"
: >"$log"
work=""

fail() {
    if [ -s "$log" ]; then
        echo "---- last lines of $log ----"
        tail -n 40 "$log"
        echo "----"
    fi
    echo "check-fresh-machine: FAILED: $*"
    cleanup
    exit 1
}

cleanup() {
    [ -n "$work" ] && [ -d "$work" ] || return 0
    if [ "$keep" -eq 1 ]; then
        echo "check-fresh-machine: the root stays in $work/root"
        return 0
    fi
    # The mounts lived in the namespace that ended with the run; refuse to
    # remove anything that is still mounted below the root.
    if awk -v w="$work/" 'index($2 "/", w) == 1 { found = 1 } END { exit !found }' /proc/mounts; then
        echo "check-fresh-machine: $work still has mounts; left in place" >&2
        return 0
    fi
    rm -rf --one-file-system "$work"
}
trap 'fail "interrupted"' INT TERM

[ "$(id -u)" -eq 0 ] || { echo "check-fresh-machine: needs root (chroot, mounts)" >&2; exit 2; }
"$repo/tools/install-deps.sh" --fresh-machine >>"$log" 2>&1 || fail "installing mmdebstrap on this machine"

# The README's commands: the lines of its first code block, comments cut off.
mapfile -t commands < <(awk '/^```/ { if (inside) exit; inside = 1; next }
    inside { sub(/[[:space:]]*#.*/, ""); if ($0 != "") print }' "$repo/README.md")
[ ${#commands[@]} -ge 2 ] || fail "README.md has no code block with the set-up commands"
commands+=("${also[@]}")

# The apt sources of this machine and the settings it reaches them with.
mirrors=()
[ -s /etc/apt/sources.list ] && grep -q '^[[:space:]]*deb' /etc/apt/sources.list && mirrors+=(/etc/apt/sources.list)
for f in /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    [ -f "$f" ] && mirrors+=("$f")
done
[ ${#mirrors[@]} -gt 0 ] || fail "this machine has no apt sources to build the root from"
aptopts=()
for f in /etc/apt/apt.conf.d/*; do
    [ -f "$f" ] && grep -q '^[[:space:]]*Acquire::' "$f" && aptopts+=(--aptopt="$f")
done

[ ${#releases[@]} -gt 0 ] || releases=(bookworm trixie)

# One shell in each root runs the commands in order and stops at the first
# that fails, naming it on its last line.
script=""
for c in "${commands[@]}"; do
    script+="echo \"== fresh machine: $c\"; $c || { echo \"FAILED-COMMAND: $c\"; exit 1; }; "
done

# One release: its root built, the commands run in it, the root removed.
check_release() {
    local release="$1" name
    name="Debian $([ "$release" = trixie ] && echo 13 || echo 12) ($release)"
    work="$(mktemp -d "${ZELMODEMS_FRESH_DIR:-/var/tmp}/zelmodems-fresh.XXXXXX")" || fail "no scratch folder"
    root="$work/root"
    # This machine's sources, naming the release instead of its own.
    local sources=()
    for f in "${mirrors[@]}"; do
        local copy="$work/$(basename "$f")"
        sed -E "s/\b(bookworm|trixie)(-updates|-security)?\b/${release}\2/g" "$f" >"$copy"
        sources+=("$copy")
    done
    echo "check-fresh-machine: building a bare $name root in $root"
    # mmdebstrap mounts /proc, /sys and /dev in the root while it installs; in a
    # private mount namespace of its own none of them can be left behind.
    unshare --mount --fork /bin/bash -c 'mount --make-rprivate / && exec "$@"' mmdebstrap \
        mmdebstrap --mode=root --variant=minbase "${aptopts[@]}" "$release" "$root" "${sources[@]}" \
        >>"$log" 2>&1 || fail "mmdebstrap could not build the $name root"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
    git clone --quiet "$repo" "$root/work/zelmodemslib" >>"$log" 2>&1 || fail "git clone into the root"

    echo "check-fresh-machine: running in the $name root: ${commands[*]}"
    local start=$SECONDS
    echo "== check-fresh-machine: $name" >>"$log"
    unshare --mount --fork /bin/bash -c '
        set -e
        root="$1"; script="$2"
        mount --make-rprivate /
        mount -t proc proc "$root/proc"
        mount --rbind /sys "$root/sys"
        mount --rbind /dev "$root/dev"
        chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
            LANG=C.UTF-8 /bin/bash -c "cd /work/zelmodemslib && $script"
    ' check-fresh-machine "$root" "$script" >>"$log" 2>&1
    local status=$?
    if [ "$status" -ne 0 ]; then
        local failed
        failed="$(sed -n 's/^FAILED-COMMAND: //p' "$log" | tail -n 1)"
        if [ -n "$failed" ]; then
            fail "'$failed' failed on a bare $name root (log: $log)"
        fi
        fail "could not run the commands in the $name root (status $status; log: $log)"
    fi
    echo "check-fresh-machine: passed in $((SECONDS - start)) s on a bare $name root (log: $log)"
    cleanup
    work=""
}

for release in "${releases[@]}"; do
    check_release "$release"
done
exit 0
