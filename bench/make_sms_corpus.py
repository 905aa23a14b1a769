#!/usr/bin/python3
"""Writes the SMS corpus of the decoding benchmark (bench/data/sms_corpus.txt).

The PDUs are encoded by gammu (Debian's python3-gammu), not by this
library, so that the decoder is measured on input it did not shape itself.
They look like what a GSM modem lists with AT+CMGL=4 in PDU mode on the
appliance's SIMs: operators' balance and service notices (Cyrillic in UCS2,
Latin in the GSM 7-bit alphabet), one-time codes, alphanumeric senders, and
long messages in two to four parts with 8-bit and 16-bit concatenation
references.

File format: one SMS-DELIVER PDU per line in upper-case hexadecimal, with the
service-centre part in front; a blank line ends one "SIM store listing"
(a batch of 20 to 40 PDUs, parts of one message in the same batch but not
necessarily next to each other). Lines starting with "#" are comments.

The output is deterministic (fixed seed). Usage: make_sms_corpus.py [path]
"""

import binascii
import datetime
import os
import random
import sys

import gammu

SEED = 20210511
MESSAGES = 900

SMSCS = ["+79168999100", "+79037011111", "+79262000331", "+79043490000", "+79587000500"]
OPERATORS = ["MTS", "Beeline", "MegaFon", "Tele2", "Yota", "MTSBank", "Sber"]

LATIN = [
    "Balance {a} rub. Top up at mts.ru/pay",
    "Your code: {code}. Do not tell it to anyone.",
    "Payment of {a} RUB received. Balance {b} RUB.",
    "Vash balans {a} r. Bonus {n} min.",
    "Roaming: calls {n} RUB/min, SMS {m} RUB. Have a good trip!",
    "Missed call from +7916{digits} at {hh}:{mm}",
    "Dostupno {n} MB internet do {dd}.{mo}",
]
CYRILLIC = [
    "Ваш баланс {a} р.",
    "Баланс: {a} руб. Пополните счёт на mts.ru/pay",
    "Код подтверждения: {code}. Никому его не сообщайте.",
    "Платёж на сумму {a} руб. зачислен. Баланс {b} руб.",
    "Вам звонили с номера +7916{digits} в {hh}:{mm}",
    "Осталось {n} МБ интернета и {m} минут до {dd}.{mo}",
    "Минус {a} руб. за услугу «Гудок». Отключить: *111*29#",
]
LONG_LATIN = (
    "Dear subscriber, from {dd}.{mo} the tariff changes: calls to all numbers in the home "
    "region cost {n} RUB per minute, SMS {m} RUB, mobile internet {a} RUB per day with "
    "{n} GB included. To keep your current plan send STOP to {code}. Details at the "
    "operator's offices and on the site. Thank you for staying with us."
)
LONG_CYRILLIC = (
    "Уважаемый абонент! С {dd}.{mo} изменяются условия тарифа: звонки на все номера "
    "домашнего региона {n} руб./мин, SMS {m} руб., мобильный интернет {a} руб. в сутки "
    "с пакетом {n} ГБ. Чтобы сохранить прежний тариф, отправьте СТОП на номер {code}."
)


def fields(rnd):
    return {
        "a": "%d,%02d" % (rnd.randint(0, 2000), rnd.randint(0, 99)),
        "b": "%d.%02d" % (rnd.randint(0, 5000), rnd.randint(0, 99)),
        "code": "%06d" % rnd.randint(0, 999999),
        "n": rnd.randint(1, 500),
        "m": rnd.randint(1, 9),
        "digits": "%07d" % rnd.randint(0, 9999999),
        "hh": "%02d" % rnd.randint(0, 23),
        "mm": "%02d" % rnd.randint(0, 59),
        "dd": "%02d" % rnd.randint(1, 28),
        "mo": "%02d" % rnd.randint(1, 12),
    }


def encode(rnd, number, text, unicode, entry):
    info = {"Class": -1, "Unicode": unicode, "Entries": [{"ID": entry, "Buffer": text}]}
    when = datetime.datetime(2021, 1, 1) + datetime.timedelta(seconds=rnd.randint(0, 364 * 86400))
    smsc = rnd.choice(SMSCS)
    pdus = []
    for sms in gammu.EncodeSMS(info):
        sms["SMSC"] = {"Location": 0, "Number": smsc, "Validity": "NA"}
        sms["Number"] = number
        sms["Type"] = "Deliver"
        sms["DateTime"] = when
        sms["SMSCDateTime"] = when
        pdus.append(binascii.hexlify(gammu.EncodePDU(sms, "Deliver")).decode().upper())
    return pdus


def message(rnd):
    kind = rnd.random()
    number = "+7916%07d" % rnd.randint(0, 9999999)
    f = fields(rnd)
    if kind < 0.30:
        return encode(rnd, number, rnd.choice(LATIN).format(**f), False, "ConcatenatedTextLong")
    if kind < 0.55:
        sender = rnd.choice(OPERATORS) if rnd.random() < 0.7 else number
        return encode(rnd, sender, rnd.choice(CYRILLIC).format(**f), True, "ConcatenatedTextLong")
    if kind < 0.65:
        return encode(rnd, rnd.choice(OPERATORS), rnd.choice(LATIN).format(**f), False,
                      "ConcatenatedTextLong")
    if kind < 0.80:
        text = LONG_LATIN.format(**f)[: rnd.randint(170, 480)]
        return encode(rnd, number, text, False, "ConcatenatedTextLong")
    if kind < 0.92:
        text = LONG_CYRILLIC.format(**f)[: rnd.randint(80, 200)]
        return encode(rnd, rnd.choice(OPERATORS), text, True, "ConcatenatedTextLong16bit")
    text = LONG_CYRILLIC.format(**f)[: rnd.randint(75, 130)]
    return encode(rnd, number, text, True, "ConcatenatedTextLong")


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "data", "sms_corpus.txt")
    rnd = random.Random(SEED)
    batches = []
    batch = []
    for _ in range(MESSAGES):
        batch.extend(message(rnd))
        if len(batch) >= rnd.randint(20, 40):
            rnd.shuffle(batch)
            batches.append(batch)
            batch = []
    if batch:
        rnd.shuffle(batch)
        batches.append(batch)
    with open(path, "w") as out:
        out.write("# SMS-DELIVER PDUs encoded by gammu %s; see bench/make_sms_corpus.py\n"
                  % gammu.Version()[0])
        for b in batches:
            out.write("\n".join(b) + "\n\n")
    total = sum(len(b) for b in batches)
    sys.stderr.write("%d PDUs in %d batches written to %s\n" % (total, len(batches), path))


if __name__ == "__main__":
    main()
