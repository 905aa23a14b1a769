#!/usr/bin/python3
"""Writes the seed corpora of the fuzz targets (fuzz/corpus/<target>/).

Seeds are small, well-formed or nearly well-formed inputs of each target's
input format (the first byte selects a mode, see each fuzz_*.cpp), taken from
what modems, operators and the configuration service really send, plus the
edge cases that the library's own tests name. The fuzzer grows its working
corpus from them; this script only (re)writes the committed seeds.

Usage: make_seeds.py [corpus folder]   (default: fuzz/corpus beside this file)
"""

import hashlib
import json
import os
import random
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


def sms_corpus_pdus(limit):
    pdus, seen_kinds = [], set()
    with open(os.path.join(ROOT, "bench", "data", "sms_corpus.txt")) as f:
        for line in f:
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            # One PDU of each shape: first octet, sender type, coding.
            sca = int(line[0:2], 16)
            body = line[2 + 2 * sca:]
            kind = (body[0:2], body[4:6], body[-0:0])
            if kind in seen_kinds and len(pdus) >= limit // 2:
                continue
            seen_kinds.add(kind)
            pdus.append(line)
            if len(pdus) >= limit:
                break
    return pdus


def sms_seeds():
    seeds = []
    for pdu in sms_corpus_pdus(24):
        seeds.append(b"\x00" + pdu.encode())
        seeds.append(b"\x01" + bytes.fromhex(pdu))
    # Edge cases: empty, zero service-centre length, a PDU that ends at its
    # coding octet, a national sender, an odd-length international sender, a
    # header with an element that is not a concatenation, a 16-bit reference,
    # a listing of two PDUs with spaces and line ends between the pairs.
    base = "07919761989901F0"
    seeds += [
        b"\x00",
        b"\x0000",
        b"\x00" + (base + "040B919761214365F70000").encode(),
        b"\x00" + (base + "040BA19761214365F700001250113121610003C8F40F").encode(),
        b"\x00" + (base + "0405917921F0000012501131216121" + "03C8F40F").encode(),
        b"\x00" + (base + "440B919761214365F7000012501131216121" + "0A05240301020305C8F40F").encode(),
        b"\x00" + (base + "440B919761214365F7000812501131216121" + "0C060804AB0C0201041F0440").encode(),
        b"\x00" + b"07 91 97 61 98 99 01 F0\r\n04 0B 91 97 61 21 43 65 F7 00 00 12 50 11 31 21 61 21 03 C8 F4 0F"
        + b"\xff" + (base + "0406D04DEA1400001250113121610014D6F01C0D1287D961F71C1493B16A3090DC05").encode(),
    ]
    return seeds


ATI_ANSWERS = [
    b"Manufacturer: huawei\r\nModel: E3372\r\nRevision: 22.315.01.00.00\r\n",
    b"Manufacturer: SIMCOM INCORPORATED\r\nModel: SIMCOM_SIM7600E-H\r\nRevision: LE20B04SIM7600M22\r\n",
    b"Manufacturer: ZTE INCORPORATED\r\nModel: MF626\r\nRevision: BD_P673A2V1.0.0B06\r\n",
    b"Cinterion\r\nMC52i\r\nREVISION 01.200",
    b"Manufacturer: Qualcomm Incorporated\r\nModel: HSPA Data Card\r\nRevision: 1.0\r\n",
    b"Generic V.92 Data/Fax Modem",
    b"ZTE",
    b"E3372\r\nModel: E3372\r\n",
    b"SIEMENS\r\nMC35i\r\nREVISION 02.00",
    b"SprutNet\r\nrevision 3",
    b"huawei E171 Revision 11.126",
    b"MC-52 Siemens",
    b"\r\n\r\n",
    b"ATI\r\r\nManufacturer: huawei\r\nModel: E3372\r\n",
]


def modemname_seeds():
    return [bytes([i % 5 | (0x80 if i % 3 == 0 else 0)]) + a for i, a in enumerate(ATI_ANSWERS)]


CUSD_REPLIES = [
    b'\r\nOK\r\n\r\n+CUSD: 0,"Balans 12,50 r.",15\r\n',
    b'\r\n+CUSD: 0,"04110430043B",72\r\n',
    b'\r\n+CUSD: 0,"04110430043B043",72\r\n',
    b'\r\n+CUSD: 2\r\n',
    b'AT+CUSD=1,"*100#",15\r\r\nOK\r\n\r\n+CUSD: 0,"Minus 3,5 rub.",15\r\n\r\nRING\r\n',
    b'\r\n+CUSD: 0,"Vash nomer +7 (912) 345-67-89",15\r\n',
    b'\r\n+CUSD: 1,"Balance: -15.20 rub",0\r\n+CMTI: "SM",3\r\n',
    b'\r\n+CUSD: 0,"\xd0\x91\xd0\xb0\xd0\xbb\xd0\xb0\xd0\xbd\xd1\x81 12 \xd1\x80.",15\r\n',
    b'\r\n+CUSD: 0,"not hex at all",72\r\n',
    b'\r\n+CME ERROR: Unexpected Data Value\r\n',
    b'+CUSD:0,"A",15+CUSD: 0,"B",15',
]


def cusd_seeds():
    return [bytes([d]) + r for d in range(6) for r in CUSD_REPLIES[d::3]] + \
        [bytes([2]) + r for r in CUSD_REPLIES]


BALANCE_TEXTS = [
    "Balans 12,50 r.", "Balance: -15.20", "minus 3,5", "-  12", "1,234.56", "no digits here",
    "Ваш баланс минус 47,11 руб.", "Остаток: 0,00 р. Дата 2021-05-11", "12.", ".5", "999999999999999999999999",
    "- 7", "--8", "Задолженность -300,5 р.",
]


def balance_seeds():
    return [t.encode() for t in BALANCE_TEXTS]


def settings_seeds():
    rnd = random.Random(7)
    return [bytes(rnd.randrange(256) for _ in range(n)) for n in (8, 32, 64, 128, 256, 512)]


def mnctable_seeds():
    with open(os.path.join(ROOT, "src", "settings", "mnc", "mnctable.json"), "rb") as f:
        table = f.read()
    entries = json.loads(table.decode())
    seeds = [b"\x01" + table, b"\x01" + table[: len(table) // 2], b"\x01[]", b"\x01{}", b"\x01",
             b"\x01" + json.dumps(entries[:2] + [{"mcc": 250, "mnc": 0, "name": ""}]).encode(),
             b"\x01" + json.dumps([{"mcc": 2147483647, "mnc": 99, "name": "x"}]).encode()]
    rnd = random.Random(11)
    seeds += [b"\x00" + bytes(rnd.randrange(256) for _ in range(n)) for n in (16, 64, 200)]
    return seeds


def clientstate_seeds():
    state = {"serviceMode": 2, "connectionState": 3, "balance": 12.5, "balanceText": "Balans 12,50 r.",
             "mcc": "250", "mnc": "02", "lac": "1A2B", "cid": "00C3D4E5", "signalLevel": -71,
             "modemInfo": {"name": "megafon", "portName": "ttyUSB2", "baudrate": 460800,
                           "phones": ["*99#"], "newPppd": True}}
    text = json.dumps(state, ensure_ascii=False).encode()
    return [b"\x01" + text, b"\x00" + text, b"\x01{}", b"\x01[1,2]", b"\x01not json",
            b"\x01" + json.dumps({"balanceText": "a\u0000b\u0000", "serviceMode": "1"}).encode(),
            b"\x01" + json.dumps({"modemInfo": [1], "balance": "nan"}).encode()]


def pdu_seeds():
    report = ("00" "06" "2A" "0B919761214365F7" "12501131216121" "12501131216221" "00")
    submit = "0011000B919761214365F70000AA05E8329BFD06"
    seeds = [
        b"\x00" + report.encode(), b"\x10" + report[2:].encode(), b"\x00" + b"zz",
        b"\x01" + bytes.fromhex(report), b"\x11" + bytes.fromhex(report[2:]),
        b"\x02" + bytes.fromhex("050003cc0201"), b"\x02" + bytes.fromhex("0608040102030424"),
        b"\x02" + bytes.fromhex("0A05040B8423F0000301"), b"\x02" + bytes.fromhex("03250101"), b"\x02\x00",
        b"\x03" + bytes.fromhex(submit), b"\x13" + bytes.fromhex(submit[2:]),
        b"\x04" + bytes.fromhex("C8329BFD06"), b"\x24" + bytes.fromhex("90B0986C46ABD96EB81C"),
        b"\x05" + "Hello {world} [€] ~".encode(), b"\x05" + "Привет".encode(), b"\x05" + "@£$¥èéùìòÇ".encode(),
        b"\x06+7 (916) 123-45-67", b"\x46*100#", b"\x86abc",
        b"\x07" + b"\x00\x00\x00\x00\x00\x00\x00\x00" + b"+79161234567\\Hello",
        b"\x07" + b"\x03\x01\x00\x10\x00\x05\x01\x00" + b"89161234567\\" + "Длинное сообщение ".encode() * 6,
    ]
    return seeds


def shortmessage_seeds():
    # The SMS-DELIVER seeds in every form, plus a stored SMS-SUBMIT, a status
    # report, national language shift tables, ports and an 8-bit part.
    seeds = []
    for seed in sms_seeds():
        seeds.append(seed)
        seeds.append(bytes([seed[0] | 2]) + seed[1:])
    more = [
        "002100098136397339F70008224F60597D4F60597D4F60597D4F60597D",
        "07914356060013F1065A098136397339F7219011700463802190117004638030",
        "004001F1000011101021436500" "0C" "06240101250101" "0B0C1C1D",
        "0040" "0191F1" "0004" "11101021436500" "0A" "060504000B0000" "C0FFEE",
        "07911356131313F64004850120390011609232239180A006080400100201D7327BFD6EB340E232",
    ]
    for pdu in more:
        seeds.append(b"\x00" + pdu.encode())
        seeds.append(b"\x01" + bytes.fromhex(pdu))
    return seeds


def modem_answers_seeds():
    # Selector (low nibble: the query; 0x80: ERROR instead of OK) and the
    # modem's answer, as real modems give it; then the inputs of the known
    # faults: an rssi that would overflow, an index past int, a listing of
    # headers without PDU lines.
    pdu = sms_corpus_pdus(2)[0]
    answers = [
        (0, b"\r\n866123456789012\r\n"),
        (1, b"\r\n250026123456789\r\n"),
        (2, b"\r\n+CSQ: 20,99\r\n"),
        (2, b"\r\n+CSQ: 2000000000,99\r\n"),
        (3, b"\r\n250026123456789\r\n"),
        (4, b'\r\n+COPS: 0,0,"MegaFon",2\r\n'),
        (5, b'\r\n+CREG: 2,1,"1A2B","00C3D4E5"\r\n'),
        (6, b"\r\n^SMONC: 250,02,1A2B,C3D4,12,42,-68,250,02,1A2C,0F01,10,25,-88\r\n"),
        (7, b'\r\n+CGREG: 2,1,"1A2B","C3D4"\r\n'),
        (8, b"\r\n^SCID: 89701020304050607080\r\n"),
        (9, b"\r\n+CMGL: 1,1,,30\r\n" + pdu.encode() + b"\r\n"),
        (10, b"\r\n+CMGR: 1,,30\r\n" + pdu.encode() + b"\r\n"),
        (11, b"\r\n+CMGL: 1,1,,30\r\n" + pdu.encode() + b"\r\n"),
        (11, b"\r\n+CMGL: 99999999999,1,,30\r\n" + pdu.encode() + b"\r\n"),
        (11, b"+CMGL: 1,0,,20\r\n" * 6000),
        (0x82, b"\r\n+CME ERROR: 10\r\n"),
    ]
    return [bytes([sel]) + answer for sel, answer in answers]


def answer_parsers_seeds():
    # The same answers read without the line; the Siemens cells with the
    # answers of ^MONI and ^MONP after 0xFF bytes, a ZTE ICCID (0x18).
    siemens = (b"\r\n^SMONC: 250,02,1A2B,C3D4,12,42,-68,250,02,1A2C,0F01,10,25,-88\r\n\xff"
               b"\r\n  42  1A2B  -68  ...\r\n\xff\r\n chann rs  dBm\r\n  25  10  -88\r\n")
    # The 100 KB listing is left to fuzz_modem_answers: here it would make
    # every other input wait behind its mutations; the fuzzer grows inputs
    # to 256 KB on its own.
    small = [seed for seed in modem_answers_seeds() if len(seed) < 4096]
    return small + [bytes([6]) + siemens, bytes([0x18]) + b"\r\n+CRSM: 144,0,98071020304050607080\r\n"]


def lockfile_seeds():
    # Lock files as serial programs write them, young and old, forced or not.
    contents = [b"", b"      1234\n", b"4194305\nminicom\nhost\n", b"\x01\x00\x40\x00", b"garbage",
                b"1\n", b"-5\n", b"99999999999999999999\n"]
    return [bytes([flags]) + c for c in contents for flags in (0, 1, 2)]


def sending_seeds():
    # Mode 0: the answer to PDU mode; 1: the network's answer to the PDU
    # (4: a long message); 2: the answer to the USSD request; 3: the text the
    # input checks read.
    answers = [
        (0, b""), (0, b"\r\n+CMS ERROR: 302"), (0, b"RING\r\n+CLIP: \"+79160000000\",145"),
        (1, b"\r\n+CMGS: 42"), (5, b"\r\n+CMGS: 42"), (1, b"\r\n+CMS ERROR: 38\r\nERROR"),
        (1, b"\r\n+CMGS: 99999999999"), (1, b"\r\nRING\r\n+CMTI: \"SM\",3\r\n+CMGS: 7"),
        (2, b'\r\n+CUSD: 0,"Balans 7 r.",15'), (2, b'\r\n+CUSD: 1,"1. Tarif\r\n2. Balans",15'),
        (2, b'\r\n+CUSD: 0,"open quote'), (2, b"\r\n+CME ERROR: Unexpected Data Value"),
        (3, b"+79161234567"), (3, b"+79161234567;+CMGD=1,4"), (3, "*100#\u202e".encode()),
        (3, b"hello\x1aAT+CFUN=0\r"),
    ]
    return [bytes([sel]) + answer for sel, answer in answers]


def store_grouping_seeds():
    # Parts (mode < 0x80: sender = mode % 3, status from mode >> 2; then
    # reference, count, part) and raw PDUs (0x80 and up, bytes to a
    # backslash). The two long messages of one sender under one reference,
    # stored A1 B1 A2 B2; a whole one; a lone half; a status report.
    report = bytes.fromhex("07919761989901F0062A0B919761214365F7621142907524216211429075242146")
    return [
        bytes([0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2, 2, 0, 1, 2, 2]),
        bytes([4, 2, 2, 1, 4, 2, 2, 2, 1, 3, 2, 1]),
        bytes([0x84]) + report.replace(b"\\", b"\\\\") + b"\\" + bytes([2, 0, 1, 1]),
    ]


def sim_loaders_seeds():
    # A recording (mode 0) and a script (mode 1) as the programs write them.
    recording = (b'{"zelmodemsRecording":1,"port":"ttyUSB2","device":"/dev/ttyUSB2"}\n'
                 b'{"ms":1,"dir":">","speed":115200,"hex":"41540D","text":"AT\\\\x0d"}\n'
                 b'{"ms":3,"dir":"<","speed":115200,"hex":"0D0A4F4B0D0A","text":""}\n'
                 b'{"ms":9,"event":"gone"}\n')
    script = b"# field report\nsignal 99,99\nussd-status *100# 4\nsms +79161234567 Hello\nvanish-after 3\n"
    return [bytes([0]) + recording, bytes([1]) + script, bytes([0]) + b"not json\n", bytes([1]) + b"signal strong\n"]


TARGETS = {
    "fuzz_sms_decode": sms_seeds,
    "fuzz_modemname": modemname_seeds,
    "fuzz_cusd": cusd_seeds,
    "fuzz_balance": balance_seeds,
    "fuzz_settings": settings_seeds,
    "fuzz_mnctable": mnctable_seeds,
    "fuzz_clientstate": clientstate_seeds,
    "fuzz_pdu": pdu_seeds,
    "fuzz_shortmessage": shortmessage_seeds,
    "fuzz_modem_answers": modem_answers_seeds,
    "fuzz_answer_parsers": answer_parsers_seeds,
    "fuzz_lockfile": lockfile_seeds,
    "fuzz_sending": sending_seeds,
    "fuzz_store_grouping": store_grouping_seeds,
    "fuzz_sim_loaders": sim_loaders_seeds,
}


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "corpus")
    for target, make in TARGETS.items():
        folder = os.path.join(out, target)
        os.makedirs(folder, exist_ok=True)
        for name in os.listdir(folder):
            if name.startswith("seed-"):
                os.remove(os.path.join(folder, name))
        for seed in make():
            name = "seed-" + hashlib.sha1(seed).hexdigest()[:16]
            with open(os.path.join(folder, name), "wb") as f:
                f.write(seed)
    sys.stderr.write("seeds written to %s\n" % out)


if __name__ == "__main__":
    main()
