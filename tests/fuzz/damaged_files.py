#!/usr/bin/env python3
"""Saved sessions are damaged and loaded: bytes flipped, lines lost, doubled or exchanged, the end cut off, other bytes in between.
The load ends, by itself or with an error; what the session held before is there, and the session ends when it is told to.

usage: damaged_files.py --tolvex PATH [--count N] [--seed S] [--scale F]
"""
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402
import round_trip  # noqa: E402, the neighbour

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
        done = trials.session(binary, text.encode(), directory, limit)
    except subprocess.TimeoutExpired:
        return f"no end within {limit:g} s of processor time", content
    if done.returncode != 0 or trials.TROUBLE.search(done.stderr):
        return f"status {done.returncode}: {done.stderr[-2000:].decode('latin-1')}", content
    answer = done.stdout[done.stdout.index(b"initializing"):]
    if b"Tolvex error" in answer:
        return "an internal error: " + answer[-1000:].decode("latin-1"), content
    if not re.search(rb"< 1 1>.*bye\n$", answer, re.S):
        return "what was there is lost: " + answer[-1000:].decode("latin-1"), content
    return "", content


def main():
    args = trials.arguments(count=300, seed=trials.any_seed(), scale=1.0, keep=str)

    def judged(directory, rng):
        report, content = attempt(args.tolvex, directory, rng, 20 * args.scale)
        if report and args.keep:
            trials.write_files(args.keep, {f"damaged-{args.seed}-{len(os.listdir(args.keep))}": content})
        return report

    return trials.random_trials(args, "damaged", judged, "files left the session whole", "did not")


if __name__ == "__main__":
    sys.exit(main())
