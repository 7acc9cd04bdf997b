#!/usr/bin/env python3
"""Runs the example programs and compares what they write with tests/examples/<name>.out.

usage: run.py --tolvex PATH [--write] PROGRAMS...

A program is a file that a session loads; the rest of a line behind ";" is a comment there. Prompts and empty lines are
left out on both sides. With --write the outputs are stored (look at them before they are kept).
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))


def output(binary, program, limit):
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "tolstart.txt"), "w", encoding="ascii") as handle:
            handle.write("500\n")
        shutil.copy(program, directory)
        load = f"&(R = '{os.path.basename(program)}')\n&q\n"
        done = subprocess.run([binary], input=load.encode(), cwd=directory, capture_output=True, timeout=limit)
    text = done.stdout.decode("latin-1")
    trouble = done.stderr.decode("latin-1") + (f"status {done.returncode}\n" if done.returncode else "")
    session = text[text.index("(mbytes)"):].split("\n", 1)[1]
    kept = [re.sub(r"^>+", "", line).rstrip() for line in session.split("\n")]
    return "".join(line + "\n" for line in kept if line and line != " bye") + trouble


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--scale", type=float, default=1)
    parser.add_argument("programs", nargs="+")
    args = parser.parse_args()
    binary, bad = os.path.abspath(args.tolvex), 0
    for program in args.programs:
        name = os.path.splitext(os.path.basename(program))[0]
        stored = os.path.join(HERE, name + ".out")
        found = output(binary, program, 60 * args.scale)
        if args.write:
            with open(stored, "w", encoding="latin-1") as handle:
                handle.write(found)
            continue
        with open(stored, encoding="latin-1") as handle:
            expected = handle.read()
        if found != expected:
            bad += 1
            print(f"FAILED {name}\nexpected:\n{expected}\nactual:\n{found}")
    print(f"{len(args.programs) - bad} passed, {bad} failed")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
