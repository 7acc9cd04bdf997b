#!/usr/bin/env python3
"""Saved sessions are damaged and loaded: bytes flipped, lines lost, doubled or exchanged, the end cut off, other bytes in between.
The load ends, by itself or with an error; what the session held before is there, and the session ends when it is told to.

usage: damaged_files.py --tolvex PATH [--count N] [--seed S] [--scale F]
"""
import argparse
import importlib.util
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
SPEC = importlib.util.spec_from_file_location("round_trip", os.path.join(HERE, "round_trip.py"))
round_trip = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(round_trip)

PIECES = [b"\x00", b"\xff", b"\xc2\xa5", b";", b"'", b"{", b"}", b"(", b")", b"[", b"]", b"&", b"&(", b"@", b".", b":=", b"^", b"#",
          b"99999999999999999999", b"&_n ", b"Func ", b"Array ", b" fi", b" od", b" Sparse", b"\r\n", b"\n\n", b"`", b"/0", b"-"]


def damage(rng, content):
    content = bytearray(content)
    for _ in range(rng.choice([1, 1, 1, 2, 5, 30])):
        kind = rng.randrange(7)
        at = rng.randrange(len(content) + 1)
        lines = bytes(content).split(b"\n")
        line = rng.randrange(len(lines))
        if kind == 0 and content:
            content[at - 1] = rng.randrange(256)
        elif kind == 1:
            content[at:at] = rng.choice(PIECES)
        elif kind == 2:
            del content[at:at + rng.randrange(1, 20)]
        elif kind == 3:
            del content[at:]
        elif kind == 4:
            del lines[line]
            content = bytearray(b"\n".join(lines))
        elif kind == 5:
            lines.insert(rng.randrange(len(lines)), lines[line])
            content = bytearray(b"\n".join(lines))
        else:
            other = rng.randrange(len(content) + 1)
            content[at:at] = content[other:other + rng.randrange(1, 200)]
    return bytes(content)


def attempt(binary, directory, rng, limit):
    """'' or what went wrong; the file"""
    lines = round_trip.Session(rng).lines()
    path = os.path.join(directory, "whole")
    if os.path.exists(path):
        os.remove(path)
    round_trip.run(binary, directory, "\n".join(lines) + "\n&(S = 'whole')\n&s\n&q\n")
    with open(path, "rb") as handle:
        content = damage(rng, handle.read())
    if b"&q" in content or b"&Q" in content:
        return "", content  # the session may end there
    with open(os.path.join(directory, "damaged"), "wb") as handle:
        handle.write(content)
    # blanks in front: a prompt of several characters takes as many off each line, less one
    text = "".join(f"{'':9}{line}\n" for line in ["kept := 1", "Func Kept = 1.", "&(R = 'damaged')", "&@",
                                                   "!('<', kept, Kept, '>')", "&q"])
    try:
        done = subprocess.run([binary], cwd=directory, input=text.encode(), capture_output=True, timeout=limit)
    except subprocess.TimeoutExpired:
        return f"no end within {limit:g} s", content
    if done.returncode != 0 or round_trip.TROUBLE.search(done.stderr):
        return f"status {done.returncode}: {done.stderr[-2000:].decode('latin-1')}", content
    answer = done.stdout[done.stdout.index(b"initializing"):]
    if b"Tolvex error" in answer:
        return "an internal error: " + answer[-1000:].decode("latin-1"), content
    if not re.search(rb"< 1 1>.*bye\n$", answer, re.S):
        return "what was there is lost: " + answer[-1000:].decode("latin-1"), content
    return "", content


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    parser.add_argument("--scale", type=float, default=1.0)
    parser.add_argument("--keep", help="a directory for the files that failed")
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    print(f"seed {args.seed}")
    failed = 0
    directory = tempfile.mkdtemp(prefix="damaged-")
    try:
        with open(os.path.join(directory, "tolstart.txt"), "w") as handle:
            handle.write("500\n")
        for k in range(args.count):
            report, content = attempt(binary, directory, random.Random(f"{args.seed}:{k}"), 20 * args.scale)
            if report:
                failed += 1
                print(f"FAILED file {k}: {report}", flush=True)
                if args.keep:
                    with open(os.path.join(args.keep, f"damaged-{args.seed}-{k}"), "wb") as handle:
                        handle.write(content)
        print(f"{args.count - failed} files left the session whole, {failed} did not")
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
