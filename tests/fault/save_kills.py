#!/usr/bin/env python3
"""Kills sessions at random moments while they save over an existing file: the path must hold the whole old or the whole new
session every time.

usage: save_kills.py --tolvex PATH [--count N] [--seed S]
"""
import os
import random
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

BUILD = b"""&(J = x)
Func F(n) = for i = 1 to 400 do p := (x + i)^9*(x - i)^9; q := q + p*x^i od; q.
q := 1
F(1):
r := 20000!:
s := 1/30000!:
"""
SAVE = b"&(S = 'session')\n&s\n&(S = '@')\n&q\n"
READY = b"123456789"


def start(binary, directory):
    """a session whose values are built"""
    process = subprocess.Popen([binary], stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=directory)
    process.stdin.write(BUILD + b"123456000 + 789\n")
    process.stdin.flush()
    seen = b""
    while READY not in seen:
        piece = os.read(process.stdout.fileno(), 65536)
        if not piece:
            sys.exit(f"the session ended early: {seen[-500:]!r}")
        seen += piece
    return process


def save(process):
    process.stdin.write(SAVE)
    process.stdin.flush()


def content(directory):
    with open(os.path.join(directory, "session"), "rb") as handle:
        return handle.read()


def main():
    args = trials.arguments(count=500, seed=trials.any_seed())
    binary = args.tolvex
    rng = random.Random(args.seed)
    print(f"seed {args.seed}")
    with trials.folder("kills") as directory:
        path = os.path.join(directory, "session")
        process = start(binary, directory)
        began = time.monotonic()
        save(process)
        process.communicate()
        span = time.monotonic() - began
        new, old = content(directory), b"x := 1;\n" * 50000
        if len(new) < 100000 or not new.endswith(b"&x;\n"):
            sys.exit("the undisturbed session has not been saved")
        counts = {"old": 0, "new": 0}
        for _ in range(args.count):
            with open(path, "wb") as handle:
                handle.write(old)
            process = start(binary, directory)
            save(process)
            time.sleep(rng.uniform(0, 1.1 * span))
            process.send_signal(signal.SIGKILL)
            process.communicate()
            found = content(directory)
            if found not in (old, new):
                print(f"FAILED: {len(found)} bytes, neither the old {len(old)} nor the new {len(new)}")
                return 1
            counts["old" if found == old else "new"] += 1
            for name in os.listdir(directory):
                if name.startswith("session."):
                    os.remove(os.path.join(directory, name))
        print(f"{args.count} kills within {1.1 * span:.3f} s: {counts['old']} old, {counts['new']} new, "
              f"{len(new)} bytes")
        return 0


if __name__ == "__main__":
    sys.exit(main())
