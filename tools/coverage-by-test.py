#!/usr/bin/env python3
"""Which lines of the code each test runs, one test function at a time.

Builds the project with gcc's --coverage in its own folder (build-coverage/
unless --build says otherwise), runs every Qt Test function alone (and each
fuzz replay whole), and reads back the lines of src/, platform/ and tools/
that ran. Then it reports, for each test function, its length and the lines
of code that no other test runs, and the smallest set of test functions that
still runs every line the whole suite runs: the ones outside it add no line
of their own, which is where to look for checks that other tests already
make. Coverage says what ran, not what was checked; a function that runs
nothing of its own may still be the only one that looks at a result, so read
it before taking it out, and measure with ../shared/tools/mutants.py after.

    tools/coverage-by-test.py [--build DIR] [--json FILE] [--skip-run] [TEST...]
"""
import argparse, collections, concurrent.futures, glob, json, os, re, subprocess, sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CODE_DIRS = ("src/", "platform/", "tools/")


def configure_and_build(build):
    flags = "--coverage -O0"
    subprocess.check_call(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Debug",
                           "-DCMAKE_CXX_FLAGS=" + flags, "-DCMAKE_EXE_LINKER_FLAGS=--coverage",
                           "-DCMAKE_SHARED_LINKER_FLAGS=--coverage"], stdout=subprocess.DEVNULL)
    subprocess.check_call(["cmake", "--build", build, "-j", str(os.cpu_count() or 1)],
                          stdout=subprocess.DEVNULL)


def lines_run(build):
    """The code lines the .gcda files of the build say ran (and clears them)."""
    def one(gcda):
        out = subprocess.run(["gcov", "--json-format", "--stdout", "-o", os.path.dirname(gcda), gcda],
                             capture_output=True, text=True, cwd=build).stdout
        found = set()
        for line in out.splitlines():
            if not line.startswith("{"):
                continue
            for f in json.loads(line)["files"]:
                rel = os.path.relpath(f["file"], ROOT)
                if rel.startswith(CODE_DIRS):
                    found.update("%s:%d" % (rel, l["line_number"]) for l in f["lines"] if l["count"] > 0)
        return found
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        found = set().union(*pool.map(one, counts(build)))
    clear_counts(build)
    return found


def counts(build):
    return glob.glob(os.path.join(build, "**", "*.gcda"), recursive=True)


def clear_counts(build):
    for f in counts(build):
        os.remove(f)


def run_tests(build, only):
    tests = json.loads(subprocess.check_output(["ctest", "--test-dir", build, "--show-only=json-v1"]))["tests"]
    clear_counts(build)   # what earlier runs left
    result = {}
    for test in tests:
        name, command = test["name"], test["command"]
        if (only and name not in only) or not command or not os.path.basename(command[0]).startswith(("tst_", "fuzz_")):
            continue
        env, cwd = dict(os.environ), build
        for prop in test.get("properties", []):
            if prop["name"] == "ENVIRONMENT":
                env.update(e.split("=", 1) for e in prop["value"])
            elif prop["name"] == "WORKING_DIRECTORY":
                cwd = prop["value"]
        functions = [None]
        if name.startswith("tst_"):
            listed = subprocess.run([command[0], "-functions"], capture_output=True, text=True, env=env, cwd=cwd)
            functions = [l.strip()[:-2] for l in listed.stdout.splitlines() if l.strip().endswith("()")]
        for function in functions:
            key = name + ("::" + function if function else "")
            run = subprocess.run(command + ([function] if function else []), capture_output=True, env=env, cwd=cwd)
            result[key] = {"rc": run.returncode, "lines": sorted(lines_run(build))}
            print("%-60s %s %5d" % (key, "ok  " if run.returncode == 0 else "FAIL", len(result[key]["lines"])),
                  file=sys.stderr)
    return result


def test_function_lengths():
    """Lines of each test function (with its _data function and the comment above it)."""
    lengths = collections.Counter()
    for path in glob.glob(os.path.join(ROOT, "tests", "**", "tst_*.cpp"), recursive=True):
        text = open(path, encoding="utf-8").read().split("\n")
        exe = os.path.basename(path)[:-4]
        i = 0
        while i < len(text):
            m = re.match(r"^(\s*)void\s+(?:\w+::)?(\w+)\(\)\s*$", text[i])
            if m and i + 1 < len(text) and text[i + 1].strip() == "{":
                end = i + 1
                while end < len(text) and text[end] != m.group(1) + "}":
                    end += 1
                start = i
                while start > 0 and text[start - 1].strip().startswith("//"):
                    start -= 1
                name = re.sub(r"_data$", "", m.group(2))
                lengths[exe + "::" + name] += end - start + 1
                i = end
            i += 1
    return lengths


def report(result):
    lengths = test_function_lengths()
    sets = {k: set(v["lines"]) for k, v in result.items()}
    count = collections.Counter(l for s in sets.values() for l in s)
    print("%d lines of code run by the suite; %d test functions and replays" % (len(count), len(sets)))
    print("\n%-60s %6s %6s" % ("test", "lines", "own"))
    for key in sorted(sets, key=lambda k: (sum(count[l] == 1 for l in sets[k]), -lengths.get(k, 0))):
        print("%-60s %6d %6d" % (key, lengths.get(key, 0), sum(count[l] == 1 for l in sets[key])))
    # Greedy: take out the longest test function whose every line some
    # other remaining test also runs, until none is left.
    kept, out = set(sets), []
    while True:
        spare = [k for k in kept if "::" in k and all(count[l] > 1 for l in sets[k])]
        if not spare:
            break
        k = max(spare, key=lambda k: (lengths.get(k, 0), k))
        kept.discard(k)
        out.append(k)
        for l in sets[k]:
            count[l] -= 1
    print("\nRun nothing that the rest does not (%d test lines):" % sum(lengths.get(k, 0) for k in out))
    for k in out:
        print("  %-58s %6d" % (k, lengths.get(k, 0)))


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--build", default=os.path.join(ROOT, "build-coverage"))
    ap.add_argument("--json", help="keep the lines each test ran in this file (read back with --skip-run)")
    ap.add_argument("--skip-run", action="store_true", help="report from --json without building or running")
    ap.add_argument("tests", nargs="*", help="ctest names to run (default: all)")
    a = ap.parse_args()
    if a.skip_run:
        result = json.load(open(a.json))
    else:
        configure_and_build(a.build)
        result = run_tests(a.build, set(a.tests))
        if a.json:
            json.dump(result, open(a.json, "w"))
    report(result)


if __name__ == "__main__":
    main()
