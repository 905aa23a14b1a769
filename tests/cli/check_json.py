#!/usr/bin/env python3
"""Checks the JSON zelmodems printed (standard input: one document, or one
document a line as `watch --json` prints) against the tool's JSON Schema.
Exit 0 when every document follows it; otherwise each problem on its own
line with the path to the value, and exit 1."""
import json
import os
import sys

import jsonschema


def documents(text):
    try:
        return [json.loads(text)]
    except json.JSONDecodeError:
        return [json.loads(line) for line in text.splitlines() if line.strip()]


def main():
    with open(sys.argv[1], encoding="utf-8") as f:
        schema = json.load(f)
    text = sys.stdin.read()
    try:
        docs = documents(text)
    except json.JSONDecodeError as error:
        print(f"not JSON: {error}")
        return 1
    spool = os.environ.get("ZML_JSON_SPOOL")
    if spool:
        with open(os.path.join(spool, f"{os.getpid()}.json"), "w", encoding="utf-8") as f:
            json.dump(docs, f, ensure_ascii=False)
    validator = jsonschema.Draft202012Validator(schema)
    problems = []
    for doc in docs:
        for error in validator.iter_errors(doc):
            where = "/".join(str(p) for p in error.absolute_path) or "(top)"
            problems.append(f"{where}: {error.message}")
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
