#!/usr/bin/env python3
"""gammu, an independent AT client (Debian's gammu package), against
modemsim: what gammu reads of the simulated modem (identity, network,
stored messages, a USSD reply) must be what the simulator was scripted to
hold. Usage: gammu_against_modemsim.py MODEMSIM"""
import concurrent.futures
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

SENDER = "+79161234567"
TEXT = "Hello from the simulator"
USSD_CODE = "*100#"
USSD_REPLY = "Balance 12.50 rub"

# (make, what gammu must print for identify). The makes whose AT dialogue
# gammu knows apart (Huawei's own post-connect commands among them).
MAKES = {
    "huawei": {"Manufacturer": "Huawei", "Model": "E3372 (E3372)", "IMEI": "866123456789012",
               "SIM IMSI": "250026123456789", "Firmware": "22.315.01.00.00"},
    "zte": {"IMEI": "355123456789012", "SIM IMSI": "250201234567890"},
}


def fields(output):
    """'Name   : value' lines as a dict (the first of each name)."""
    found = {}
    for line in output.splitlines():
        m = re.match(r"^([A-Za-z][A-Za-z ]*?)\s*:\s*(.*)$", line)
        if m and m.group(1) not in found:
            found[m.group(1)] = m.group(2).strip()
    return found


def gammu(config, *args):
    result = subprocess.run(["gammu", "-c", config, *args], capture_output=True, text=True, timeout=60)
    if result.returncode != 0:
        raise AssertionError(f"gammu {' '.join(args)}: exit {result.returncode}\n{result.stdout}{result.stderr}")
    return result.stdout


def check(make, expected, modemsim, scratch):
    links = os.path.join(scratch, make)
    os.mkdir(links)
    sim = subprocess.Popen([modemsim, "--make", make, "--link-dir", links,
                            "--set", f"sms {SENDER} {TEXT}", "--set", f"ussd {USSD_CODE} {USSD_REPLY}"],
                           stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    try:
        device = os.path.join(links, "ttySIM0")
        for _ in range(100):
            if os.path.exists(device):
                break
            time.sleep(0.05)
        config = os.path.join(scratch, f"{make}.gammurc")
        with open(config, "w", encoding="utf-8") as f:
            f.write(f"[gammu]\ndevice = {device}\nconnection = at115200\n")

        identity = fields(gammu(config, "identify"))
        for name, value in expected.items():
            if identity.get(name) != value:
                raise AssertionError(f"{make}: identify gave {name} {identity.get(name)!r}, scripted {value!r}")

        network = gammu(config, "networkinfo")
        info = fields(network)
        if info.get("Network state") != "home network":
            raise AssertionError(f"{make}: networkinfo: {network}")
        if "LAC 1A2B" not in network or "MegaFon" not in network:
            raise AssertionError(f"{make}: networkinfo lacks the scripted area and network: {network}")

        messages = gammu(config, "getallsms")
        if SENDER not in messages or TEXT not in messages or "1 SMS parts in 1 SMS sequences" not in messages:
            raise AssertionError(f"{make}: getallsms: {messages}")

        ussd = fields(gammu(config, "getussd", USSD_CODE))
        if ussd.get("Service reply") != f'"{USSD_REPLY}"':
            raise AssertionError(f"{make}: getussd gave {ussd.get('Service reply')!r}")
    finally:
        sim.terminate()
        sim.wait(timeout=10)
    print(f"{make}: gammu read the identity, network, message and USSD reply as scripted")


def main():
    if shutil.which("gammu") is None:
        print("gammu is not installed (tools/install-deps.sh installs it)")
        return 1
    scratch = tempfile.mkdtemp(prefix="zml-gammu-")
    # gammu pauses seconds of its own at each connection: the makes run
    # side by side, each with its own simulator and configuration.
    try:
        with concurrent.futures.ThreadPoolExecutor(max_workers=len(MAKES)) as pool:
            runs = [pool.submit(check, make, expected, sys.argv[1], scratch) for make, expected in MAKES.items()]
            failures = [str(run.exception()) for run in runs if run.exception() is not None]
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
