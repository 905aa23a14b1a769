#!/usr/bin/python3
"""Independent SMS peer for the PDU toolkit tests, built on Debian's python3-gammu.

Reads one JSON request from standard input and writes one JSON answer:

  {"submits": [[hex, ...], ...]}          # SMS-SUBMIT PDUs (with the SMSC part),
                                            # one list per message
  {"submits": [{"parts": [{"number", "text", "coding", "udh": {...}}],
                "text": <the message joined by gammu>}]}

  {"generate": {"seed": N, "count": M}}   # random messages that gammu encodes
  {"generated": [{"sender", "text", "class", "pdus": [hex, ...]}]}

Exit status 3 with a message on standard error when gammu cannot be imported.
"""

import binascii
import datetime
import json
import random
import sys

try:
    import gammu
except ImportError as exc:  # pragma: no cover - depends on the machine
    sys.stderr.write("python3-gammu is not available: %s\n" % exc)
    sys.exit(3)


def decode_submits(messages):
    answers = []
    for hexes in messages:
        decoded = [gammu.DecodePDU(binascii.unhexlify(h), True) for h in hexes]
        parts = []
        for d in decoded:
            udh = d["UDH"]
            parts.append({
                "number": d["Number"],
                "text": d["Text"],
                "coding": d["Coding"],
                "type": d["Type"],
                "class": d["Class"],
                "udh": {
                    "type": udh["Type"],
                    "id8": udh["ID8bit"],
                    "id16": udh["ID16bit"],
                    "part": udh["PartNumber"],
                    "all": udh["AllParts"],
                },
            })
        # gammu's own linking puts the parts in order and joins their text.
        joined = None
        linked = gammu.LinkSMS([[d] for d in decoded], False)
        if len(linked) == 1:
            info = gammu.DecodeSMS(linked[0], False)
            if info is not None:
                joined = "".join(e["Buffer"] or "" for e in info["Entries"])
            else:
                joined = "".join(p["Text"] for p in linked[0])
        answers.append({"parts": parts, "text": joined})
    return answers


# Characters of the random texts: the whole GSM 7-bit default alphabet but
# the escape, the extension table, and for UCS2 Cyrillic, CJK and
# characters beyond the BMP (surrogate pairs).
GSM_DEFAULT = ("@£$¥èéùìòÇ\nØøÅåΔ_ΦΓΛΩΠΨΣΘΞÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
               "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà")
GSM_EXTENSION = "^{}\\[~]|€"
WIDE = "абвгдеёжзийклмнопрстуфхцчшщъыьэюяАБВЯ你好世界😀🙂🚀𝄞"
SENDERS = ["MTS", "Beeline", "MegaFon", "InfoSMS", "Bank", "Tele2"]


def generate(request):
    rnd = random.Random(request["seed"])
    messages = []
    for _ in range(request["count"]):
        unicode = rnd.random() < 0.4
        length = rnd.choice([rnd.randint(1, 60), rnd.randint(61, 400)])
        if unicode:
            text = "".join(rnd.choice(WIDE + "abc 123") for _ in range(length))
        else:
            alphabet = GSM_DEFAULT * 3 + GSM_EXTENSION
            text = "".join(rnd.choice(alphabet) for _ in range(length))
        sender = rnd.choice(SENDERS) if rnd.random() < 0.3 else "+7916%07d" % rnd.randint(0, 9999999)
        klass = rnd.choice([-1, -1, 0, 1, 2, 3])
        entry = rnd.choice(["ConcatenatedTextLong", "ConcatenatedTextLong16bit"])
        info = {"Class": klass, "Unicode": unicode, "Entries": [{"ID": entry, "Buffer": text}]}
        when = datetime.datetime(2026, 1, 1) + datetime.timedelta(seconds=rnd.randint(0, 300 * 86400))
        pdus = []
        for sms in gammu.EncodeSMS(info):
            sms["SMSC"] = {"Location": 0, "Number": "+79168999100", "Validity": "NA"}
            sms["Number"] = sender
            sms["Type"] = "Deliver"
            sms["DateTime"] = when
            sms["SMSCDateTime"] = when
            pdus.append(binascii.hexlify(gammu.EncodePDU(sms, "Deliver")).decode().upper())
        messages.append({"sender": sender, "text": text, "class": klass, "pdus": pdus})
    return messages


def main():
    request = json.load(sys.stdin)
    answer = {
        "submits": decode_submits(request.get("submits", [])),
    }
    if "generate" in request:
        answer["generated"] = generate(request["generate"])
    # gammu hands UCS2 text over as UTF-16 code units, so a character beyond
    # the BMP arrives as two lone surrogates; escaped JSON carries them intact
    # whatever the encoding of the standard output.
    json.dump(answer, sys.stdout, ensure_ascii=True)


if __name__ == "__main__":
    main()
