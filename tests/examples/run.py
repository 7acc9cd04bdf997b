#!/usr/bin/env python3
"""Runs the example programs and compares what they write with tests/examples/<name>.out.

usage: run.py --tolvex PATH [--write] PROGRAMS...

A program is a file that a session loads; the rest of a line behind ";" is a comment there. Prompts and empty lines are
left out on both sides. With --write the outputs are stored (look at them before they are kept).
"""
import os
import re
import shutil
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
import trials  # noqa: E402


def output(binary, program, limit):
    with trials.folder("example") as directory:
        shutil.copy(program, directory)
        load = f"&(R = '{os.path.basename(program)}')\n&q\n"
        done = trials.session(binary, load.encode(), directory, limit)
    text = done.stdout.decode("latin-1")
    trouble = done.stderr.decode("latin-1") + (f"status {done.returncode}\n" if done.returncode else "")
    session = text[text.index("(mbytes)"):].split("\n", 1)[1]
    kept = [re.sub(r"^>+", "", line).rstrip() for line in session.split("\n")]
    return "".join(line + "\n" for line in kept if line and line != " bye") + trouble


def main():
    args = trials.arguments("programs", write=False, scale=1.0)
    bad = 0
    for program in args.programs:
        name = os.path.splitext(os.path.basename(program))[0]
        stored = os.path.join(HERE, name + ".out")
        found = output(args.tolvex, program, 60 * args.scale)
        if args.write:
            with open(stored, "w", encoding="latin-1") as handle:
                handle.write(found)
            continue
        with open(stored, encoding="latin-1") as handle:
            expected = handle.read()
        if found != expected:
            bad += 1
            print(f"FAILED {name}\nexpected:\n{expected}\nactual:\n{found}")
    return trials.verdict(len(args.programs) - bad, bad)


if __name__ == "__main__":
    sys.exit(main())
