#!/usr/bin/env python3
"""Feeds random sessions to the program: from a grammar of the whole language, from bytes, and from mutations of both.

usage: fuzz.py --tolvex PATH [--seconds S] [--seed N] [--keep DIR]     fuzz for S seconds of the program's CPU time
       fuzz.py --tolvex PATH --replay FILE...                          run kept sessions again

A session fails if the program does not end with status 0 or 1 (after an interrupt, where a computation is long), writes a
report of a checked build on standard error, or does not answer the probe statement at its end. A failing session is
shortened and kept; the files that it runs are kept beside it, as NAME.prog and NAME.spoilt.
"""
import argparse
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time

from grammar import VARIABLES, Grammar

# A field that is declared and is none is the user's own doing.
BROKEN = rb"Tolvex error(?!\. poly invertibility failure)"
TROUBLE = re.compile(rb"leak audit|CHECK failed|Sanitizer|runtime error:|" + BROKEN)
# Out of all levels and fields, then to the integers. The blanks are for a long prompt, whose length is taken off each line.
NAMES = [v.encode() for v in VARIABLES]
LEAVE = [b";\n", b"&@\n"] + [b"@(%s)\n" % v for v in NAMES]  # the value of a name would be a field's new modulus
LEAVE += 2 * [b"&(P=%s)\n" % v for v in NAMES] + 2 * [b"&(p=_i)\n", b";\n"]
PROBE = b"\n" * 17 + b"".join(b" " * 10 + line for line in LEAVE + [b"!(123456789*1000)\n", b"&q\n"])
ANSWER = b"123456789000"
LIMIT = 20
GRACE = 240  # for the checked build on a busy machine; how fast a level opens is measured elsewhere


def prepare(directory, files):
    """makes the folder of a session: the start-up file and the files given, no others"""
    for name in os.listdir(directory):
        os.remove(os.path.join(directory, name))
    for name, content in {**files, "tolstart.txt": b"500\n"}.items():
        with open(os.path.join(directory, name), "wb") as handle:
            handle.write(content)


def attempt(binary, text, files, directory):
    """('' or the reason of failure, detail, CPU seconds)"""
    prepare(directory, files)
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        process = subprocess.Popen([binary], stdin=subprocess.PIPE, cwd=directory, stdout=out, stderr=err)
        stopped = False
        try:
            process.communicate(text + PROBE, timeout=LIMIT)
        except subprocess.TimeoutExpired:
            # An honest long computation, such as the factorial of a large number, must still be stoppable.
            stopped = True
            process.send_signal(signal.SIGINT)
            try:
                process.wait(timeout=GRACE)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        out.seek(0)
        err.seek(0)
        stdout, stderr = out.read(), err.read()
    reason = ""
    if process.returncode not in (0, 1):
        reason = f"status {process.returncode}" + (" after an interrupt" if stopped else "")
    if TROUBLE.search(stderr) or re.search(BROKEN, stdout):
        reason = "report"
    # a literal, comment or definition that is still open takes the probe in
    swallowed = stdout.count(b"inside a literal.") + stdout.count(b"inside a comment.") > PROBE.count(b"\n") // 2
    swallowed = swallowed or b"End of file in the middle" in stdout
    silent = stopped or swallowed or any(re.search(rb"&[\x00-\x20]*[qQ]", part) for part in (text, *files.values()))
    if not reason and not silent and ANSWER not in re.sub(rb"[\s`]", b"", stdout):
        reason = "no answer to the probe"
    detail = (stderr[-3000:] + b"\n" + stdout[-500:]).decode("latin-1")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return reason, detail, spent


def shorten(binary, text, files, directory, reason):
    lines, step = text.split(b"\n"), 0
    size = max(1, len(lines) // 2)
    while size >= 1 and step < 80:
        k = 0
        while k < len(lines) and step < 80:
            shorter = lines[:k] + lines[k + size:]
            step += 1
            if shorter and attempt(binary, b"\n".join(shorter), files, directory)[0] == reason:
                lines = shorter
            else:
                k += size
        size //= 2
    return b"\n".join(lines)


def content(path):
    with open(path, "rb") as handle:
        return handle.read()


def companions(path):
    """the files kept beside a session"""
    beside = {name: os.path.splitext(path)[0] + "." + name for name in ("prog", "spoilt")}
    return {name: content(place) for name, place in beside.items() if os.path.exists(place)}


def keep(path, text, files):
    """writes the session, and those of its files that it names"""
    used = {name: file for name, file in files.items() if name.encode() in text}
    for place, what in [(path, text)] + [(os.path.splitext(path)[0] + "." + name, file) for name, file in used.items()]:
        with open(place, "wb") as handle:
            handle.write(what)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--seed", type=int, default=int.from_bytes(os.urandom(4), "big"))
    parser.add_argument("--keep", default=tempfile.gettempdir())
    parser.add_argument("--replay", nargs="+")
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    os.environ.setdefault("ASAN_OPTIONS", "detect_leaks=0")
    os.makedirs(args.keep, exist_ok=True)
    failed = passed = 0
    with tempfile.TemporaryDirectory() as directory:
        if args.replay:
            for path in args.replay:
                reason, detail, _ = attempt(binary, content(path), companions(path), directory)
                passed, failed = passed + (not reason), failed + bool(reason)
                if reason:
                    print(f"FAILED {path}: {reason}\n{detail}")
        else:
            print(f"seed {args.seed}", flush=True)
            spent, start, count = 0.0, time.time(), 0
            while spent < args.seconds:
                rng = random.Random(args.seed * 1000003 + count)
                grammar = Grammar(rng)
                text = grammar.noise() if rng.random() < 0.1 else grammar.session()
                files = grammar.files()
                reason, detail, cost = attempt(binary, text, files, directory)
                spent, count = spent + cost, count + 1
                passed, failed = passed + (not reason), failed + bool(reason)
                if reason:
                    text = shorten(binary, text, files, directory, reason)
                    path = os.path.join(args.keep, f"find-{args.seed}-{count}.in")
                    keep(path, text, files)
                    print(f"FAILED {path}: {reason}\n{detail}\n{text.decode('latin-1')}\n", flush=True)
            print(f"{count} sessions, {spent:.0f} s of CPU time in {time.time() - start:.0f} s")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
