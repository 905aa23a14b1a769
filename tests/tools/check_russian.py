#!/usr/bin/env python3
"""The Russian catalogues hold no line that mixes languages: every text has
a translation, and no translation keeps an English word outside names,
codes and units (command and option names, AT commands, make and network
names, abbreviations such as SIM or LTE). With --lines, the lines read on
standard input (the tool's Russian output) are checked the same way.
With --sources, the texts lupdate finds in the given source folders must
all be in the catalogues, translated.
Usage: check_russian.py [--sources LUPDATE DIR...] CATALOGUE.ts...
       check_russian.py --lines [VALUE...]   (VALUE: words of the modems' own data)"""
import glob
import os
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

# Lower-case Latin words that are names: the tool's commands and
# subcommands, programs, makes, units.
NAMES = {
    "zelmodems", "modemsim", "find", "info", "signal", "status", "sim", "cells", "operator", "balance", "ussd",
    "own-number", "sms", "list", "delete", "take", "send", "pdu", "encode", "explain", "wvdialconf", "watch",
    "demo", "unlock", "change-pin", "wvdial", "pppd", "minicom", "udev", "systemd", "bash", "huawei", "simcom",
    "zte", "cinterion", "hspa", "unknown", "dBm", "dB", "ms", "Ec", "No", "Siemens", "Cinterion", "Huawei",
    "Quectel", "Qt", "Linux", "Debian", "gammu", "usb", "tty", "auto", "ucs2", "gsm7", "8bit", "home", "man",
    "internet", "pts", "dev", "tmp", "var", "lock", "etc", "sudo", "killall", "apt", "install",
    # The appliance's field and key names, as its logs and JSON spell them.
    "mcc", "mnc", "rssi", "ber", "Toolkit",
}


def english_words(text):
    """Latin words in `text` that are not names, codes or units."""
    # Placeholders, options, AT commands and their answers, paths and
    # quoted command lines are names by their form.
    text = re.sub(r"%\w|%n", " ", text)
    text = re.sub(r"<\w+>|\bCtrl-[A-Z]\b", " ", text)
    text = re.sub(r"--[\w-]+", " ", text)
    text = re.sub(r"(?:AT)?[+^$&][A-Za-z][\w=?,\"*#-]*", " ", text)
    text = re.sub(r"/[\w./*-]+", " ", text)
    text = re.sub(r"\bzelmodems(?: [\w-]+)+", " ", text)
    found = []
    for word in re.findall(r"\b[0-9]*[A-Za-z][A-Za-z0-9_-]*", text):
        if word in NAMES or word.lower() in NAMES:
            continue
        if word.upper() == word or any(ch.isdigit() for ch in word):
            continue    # codes and abbreviations: SIM, PIN, LTE, E3372, 2G
        if re.fullmatch(r"[A-Z][a-z]+[A-Z]\w*", word):
            continue    # names in camel case: MegaFon
        found.append(word)
    return found


def check_catalogue(path):
    problems = []
    root = ET.parse(path).getroot()
    for context in root.iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            source = message.findtext("source") or ""
            translation = message.find("translation")
            kind = translation.get("type") if translation is not None else None
            if kind in ("obsolete", "vanished"):
                continue
            texts = [t.text or "" for t in translation.iter("numerusform")] if translation is not None else []
            if translation is not None and not texts:
                texts = [translation.text or ""]
            if not any(texts) or kind == "unfinished":
                problems.append(f"{path}: {name}: no translation for {source!r}")
                continue
            for text in texts:
                for line in text.split("\n"):
                    words = english_words(line)
                    if words:
                        problems.append(f"{path}: {name}: English {words} in {line!r}")
    return problems


def translated_texts(paths):
    """(context, source) of every translated message: Qt looks a text up
    in its class's context, so a text moved to another class needs its
    translation there."""
    texts = set()
    for path in paths:
        for context in ET.parse(path).getroot().iter("context"):
            name = context.findtext("name")
            for message in context.iter("message"):
                translation = message.find("translation")
                if translation is not None and translation.get("type") not in ("unfinished", "obsolete", "vanished"):
                    texts.add((name, message.findtext("source") or ""))
    return texts


def untranslated(lupdate, folders, catalogues):
    """Texts in the sources (as lupdate reads them) that no catalogue translates in their context."""
    files = [f for folder in folders for f in sorted(glob.glob(os.path.join(folder, "*.cpp"))
                                                      + glob.glob(os.path.join(folder, "*.h")))]
    with tempfile.TemporaryDirectory() as scratch:
        found = os.path.join(scratch, "found.ts")
        subprocess.run([lupdate, "-silent", *files, "-ts", found], check=True, capture_output=True)
        known = translated_texts(catalogues)
        return [f"not in the catalogues: {name}: {message.findtext('source')!r}"
                for context in ET.parse(found).getroot().iter("context")
                for name in [context.findtext("name")]
                for message in context.iter("message")
                if (name, message.findtext("source") or "") not in known]


def main():
    args = sys.argv[1:]
    if args[:1] == ["--lines"]:
        NAMES.update(args[1:])
        problems = [f"English {english_words(line)} in {line!r}" for line in sys.stdin.read().splitlines()
                    if english_words(line)]
    else:
        folders = []
        lupdate = None
        if args and args[0] == "--sources":
            lupdate = args[1]
            args = args[2:]
            while args and not args[0].endswith(".ts"):
                folders.append(args.pop(0))
        problems = [p for path in args for p in check_catalogue(path)]
        if lupdate:
            problems += untranslated(lupdate, folders, args)
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
