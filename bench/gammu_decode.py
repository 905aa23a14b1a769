#!/usr/bin/python3
"""The peer side of the SMS benchmark: Debian's python3-gammu decoding and
joining the same corpus that bench_sms gives Sms::decode and Sms::join.

Usage: gammu_decode.py <corpus> <seconds per measure>

Prints one JSON object:
  decode_ns      per PDU: hexadecimal text to a decoded message
                 (bytes.fromhex + gammu.DecodePDU), as Sms::decode takes the
                 modem's hexadecimal text
  call_ns        per PDU: the same loop calling a trivial function instead of
                 DecodePDU (the interpreter's share of decode_ns)
  join_ns        per PDU: one SIM store listing (a batch) linked into whole
                 messages with gammu.LinkSMS and their texts joined with
                 gammu.DecodeSMS
  pdus, batches, failures, messages
"""

import binascii
import json
import sys
import time

import gammu


def read_corpus(path):
    batches, batch = [], []
    with open(path) as f:
        for line in f:
            line = line.strip()
            if line.startswith("#"):
                continue
            if not line:
                if batch:
                    batches.append(batch)
                    batch = []
                continue
            batch.append(line)
    if batch:
        batches.append(batch)
    return batches


def timed(function, seconds):
    """Runs function() repeatedly for about `seconds`; returns (runs, ns)."""
    function()  # warm up
    runs = 0
    start = time.perf_counter_ns()
    end = start + int(seconds * 1e9)
    now = start
    while now < end:
        function()
        runs += 1
        now = time.perf_counter_ns()
    return runs, now - start


def main():
    corpus, seconds = sys.argv[1], float(sys.argv[2])
    batches = read_corpus(corpus)
    pdus = [p for b in batches for p in b]

    failures = 0

    def decode_all():
        nonlocal failures
        failures = 0
        decode = gammu.DecodePDU
        fromhex = bytes.fromhex
        for p in pdus:
            try:
                decode(fromhex(p), True)
            except gammu.GSMError:
                failures += 1

    def trivial(data, smsc):
        return data

    def call_all():
        fromhex = bytes.fromhex
        for p in pdus:
            trivial(fromhex(p), True)

    decoded = [[gammu.DecodePDU(binascii.unhexlify(p), True) for p in b] for b in batches]
    messages = 0

    def join_all():
        nonlocal messages
        messages = 0
        for b in decoded:
            for linked in gammu.LinkSMS([[d] for d in b], False):
                info = gammu.DecodeSMS(linked, False)
                if info is not None:
                    "".join(e["Buffer"] or "" for e in info["Entries"])
                else:
                    "".join(part["Text"] for part in linked)
                messages += 1

    runs, ns = timed(decode_all, seconds)
    decode_ns = ns / runs / len(pdus)
    runs, ns = timed(call_all, seconds / 2)
    call_ns = ns / runs / len(pdus)
    runs, ns = timed(join_all, seconds)
    join_ns = ns / runs / len(pdus)

    json.dump({
        "decode_ns": decode_ns,
        "call_ns": call_ns,
        "join_ns": join_ns,
        "pdus": len(pdus),
        "batches": len(batches),
        "failures": failures,
        "messages": messages,
        "gammu": gammu.Version()[0],
    }, sys.stdout)
    sys.stdout.write("\n")


if __name__ == "__main__":
    main()
