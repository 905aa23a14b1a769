#!/usr/bin/env bash
# Installs the Debian packages the project needs to build, test and run,
# when any of them is missing. Safe to run again: it does nothing then.
#   tools/install-deps.sh          build, tests, sanitizer runs
#   tools/install-deps.sh --fuzz   and clang with libFuzzer for the fuzz targets
#   tools/install-deps.sh --fresh-machine
#                                  and what tools/check-fresh-machine.sh needs
#   tools/install-deps.sh --abi    and libabigail for tools/check-abi.sh
#   tools/install-deps.sh --docs   and Doxygen for tools/check-docs.sh
set -euo pipefail

packages=(
    cmake g++ make pkg-config
    qtbase5-dev libqt5serialport5-dev qttools5-dev qttools5-dev-tools
    zlib1g-dev
    # Serial devices plugged in and out (the modem watcher).
    libudev-dev
    # Independent SMS decoder used as a peer by the tests and benchmarks.
    python3 python3-gammu
    # The JSON Schema of the tool's output, checked against every JSON
    # output the tests produce.
    python3-jsonschema
    # gammu, an independent AT client, run against the modem simulator.
    gammu
    # The dialer's configuration tool, run by the wvdialconf runner's tests.
    wvdial
    # Packaging checks.
    dpkg-dev file
    # script(1), which gives the tool a terminal in the tests of its
    # interactive prompts (in bsdutils or bsdextrautils, by release).
    bsdutils bsdextrautils
)
for option in "$@"; do
    case "$option" in
        --fuzz) packages+=(clang libclang-rt-dev) ;;
        --fresh-machine) packages+=(mmdebstrap git) ;;
        --abi) packages+=(abigail-tools) ;;
        --docs) packages+=(doxygen) ;;
        *) echo "install-deps: unknown option '$option'" >&2; exit 2 ;;
    esac
done

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
