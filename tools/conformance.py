#!/usr/bin/env python3
"""Runs conformance suites against a build, leaving out the cases that wait for commands that are not built yet.

usage: conformance.py --tolvex PATH --suites DIR --later FILE

DIR holds run_math with math/*.case and run_transcripts with transcripts/*.script. FILE names what is left out, one a
line: 'math TOPIC' a whole file, 'math TOPIC lines N-M' the cases of those lines, 'transcripts TOPIC' a whole file,
'transcripts TOPIC: TITLE' one case; then ' # ' and the reason. A line that names nothing in the suites is a fault, so that
the list can only shrink.
"""
import argparse
import glob
import os
import re
import subprocess
import sys
import tempfile


def read_later(path):
    whole, titles, ranges = set(), [], []
    with open(path, encoding="utf-8") as handle:
        for line in handle:
            line = line.split(" # ")[0].strip()
            if not line or line.startswith("#"):
                continue
            kind, rest = line.split(" ", 1)
            lines = re.fullmatch(r"(\S+) lines (\d+)-(\d+)", rest)
            if lines:
                ranges.append((lines.group(1), int(lines.group(2)), int(lines.group(3))))
            elif ": " in rest:
                titles.append(tuple(rest.split(": ", 1)))
            else:
                whole.add((kind, rest))
    return whole, titles, ranges


def without_lines(path, topic, ranges, directory):
    """a copy of a case file without the cases ('in:' lines and what follows) of the given line ranges"""
    mine = [(a, b) for name, a, b in ranges if topic.startswith(name)]
    if not mine:
        return path, 0
    with open(path, encoding="utf-8") as handle:
        lines = handle.read().split("\n")
    left, dropped, skipping = [], 0, False
    for number, text in enumerate(lines, 1):
        if text.startswith("in:"):
            skipping = any(a <= number <= b for a, b in mine)
            dropped += skipping
        elif not re.match(r"(out|form|sign|unit|nonzero):", text):
            skipping = False
        if not skipping:
            left.append(text)
    copy = os.path.join(directory, os.path.basename(path))
    with open(copy, "w", encoding="utf-8") as handle:
        handle.write("\n".join(left))
    return copy, dropped


def run(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    out = done.stdout.decode("utf-8", "replace")
    found = re.search(r"^(\d+) passed, (\d+) failed$", out, re.M)
    if not found:
        print(out[-4000:])
        sys.exit(f"{command[0]} gave no result")
    if int(found.group(2)):
        print("\n".join(line[:300] for line in out.split("\n")[:200]))
    return int(found.group(1)), int(found.group(2))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--suites", required=True)
    parser.add_argument("--later", required=True)
    args = parser.parse_args()
    whole, titles, ranges = read_later(args.later)
    passed = failed = left_out = 0
    faults = []

    def files(kind, ending):
        for path in sorted(glob.glob(os.path.join(args.suites, kind, "*" + ending))):
            topic = os.path.basename(path)[:-len(ending)]
            hits = {name for k, name in whole if k == kind and topic.startswith(name)}
            used.update((kind, name) for name in hits)
            if not hits:
                yield topic, path

    used = set()
    with tempfile.TemporaryDirectory() as directory:
        for topic, path in files("math", ".case"):
            path, dropped = without_lines(path, topic, ranges, directory)
            good, bad = run([os.path.join(args.suites, "run_math"), "--tolvex", args.tolvex, path])
            passed, failed, left_out = passed + good, failed + bad, left_out + dropped
            print(f"math {topic}: {good} passed, {bad} failed, {dropped} for later", flush=True)
        for topic, path in files("transcripts", ".script"):
            with open(path, encoding="utf-8") as handle:
                known = [line[2:].strip() for line in handle if line.startswith("# ")]
            later = [title for name, title in titles if topic.startswith(name)]
            faults += [f"{topic}: no case '{title}'" for title in later if title not in known]
            only = r"^(?!\S+:\d+ (?:" + "|".join(map(re.escape, later)) + ")$)" if later else "."
            good, bad = run([os.path.join(args.suites, "run_transcripts"), "--tolvex", args.tolvex, "--only", only, path])
            passed, failed, left_out = passed + good, failed + bad, left_out + len(later)
            print(f"transcripts {topic}: {good} passed, {bad} failed, {len(later)} for later", flush=True)
    faults += [f"{kind} {name}: no such file" for kind, name in whole - used]
    for fault in faults:
        print(f"list of later cases: {fault}")
    print(f"{passed} passed, {failed + len(faults)} failed, {left_out} skipped")
    return 1 if failed or faults or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
