#!/usr/bin/env python3
"""Looks for computations that reach no safe point for long.

usage: poll_gaps.py --tolvex PATH [--only REGEX] [--least MS] [--seconds S] [--calls N] [FILE ...]

PATH is a program built with -DTOLVEX_POLL_GAPS=ON. The computations of the storm of interrupts (interrupt_storm.py)
are run, or instead the FILEs, each typed into a session of its own. For each place the longest gap is printed, with the
calls that were under way; the status is 1 if there is any above MS milliseconds of processor time.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile

from interrupt_storm import JOBS

GAP = re.compile(r"poll gap ([\d.]+) ms:(.*)")


def names_of(binary, addresses):
    """Function and line of each return address, inlined callers included."""
    if not addresses:
        return []
    before = [f"{int(a, 16) - 1:x}" for a in addresses]  # inside the call
    text = subprocess.run(["addr2line", "-f", "-C", "-i", "-s", "-e", binary, *before], capture_output=True, text=True).stdout
    lines = text.splitlines()
    pairs = zip(lines[::2], lines[1::2])
    return [f"{f.replace('tolvex::', '').split('(')[0]} {where.split(' ')[0]}" for f, where in pairs if f != "??"]


def run(binary, directory, text, seconds):
    with tempfile.TemporaryFile() as errors:
        try:
            subprocess.run([binary], input=text.encode(), stdout=subprocess.DEVNULL, stderr=errors, cwd=directory,
                           timeout=seconds)
        except subprocess.TimeoutExpired:
            pass  # what has been seen until then counts
        errors.seek(0)
        return errors.read().decode("latin-1")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--only", default="")
    parser.add_argument("--least", type=float, default=20)
    parser.add_argument("--seconds", type=float, default=300, help="the most that one input may take")
    parser.add_argument("--calls", type=int, default=9)
    parser.add_argument("files", nargs="*")
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    inputs = []
    if args.files:
        for name in args.files:
            with open(name) as f:
                inputs.append((name, f.read()))
    else:
        inputs = [(job.name, "\n".join([*job.setup, job.statement, ""])) for job in JOBS]
    worst = {}
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "tolstart.txt"), "w") as f:
            f.write("500\n")
        for name, text in inputs:
            if not re.search(args.only, name):
                continue
            for ms, addresses in GAP.findall(run(binary, directory, text, args.seconds)):
                names = names_of(binary, addresses.split())
                key = tuple(n.split()[0] for n in names[:3])
                if float(ms) > worst.get(key, (0,))[0]:
                    worst[key] = (float(ms), name, names)
    found = sorted((w for w in worst.values() if w[0] > args.least), reverse=True)
    for ms, name, names in found:
        print(f"{ms:8.1f} ms  {name}\n    " + " < ".join(names[:args.calls]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
