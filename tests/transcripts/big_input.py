#!/usr/bin/env python3
"""Input that is too big to stand in a transcript: deep nesting, long names and lines, bytes of every kind.

usage: big_input.py --tolvex PATH [--scale F]

Each case sends one line between `z := 5:` and `z`, and checks what it writes and that z keeps its value.
"""
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

TOO_DEEP = b"nested too deeply"
UNDEFINED = b"has not been defined"
ENDED = b"should have ended before this symbol"
NO_FACTOR = b"cannot start with this symbol"

MILLION = 1000000
CASES = [
    # 10000 parentheses are a value; what the stack does not bear is an error, whatever nests
    ("10000 parentheses", b"(" * 10000 + b"7" + b")" * 10000, b"\n 7\n"),
    ("a million parentheses", b"(" * MILLION + b"7" + b")" * MILLION, TOO_DEEP),
    ("a million open parentheses", b"(" * MILLION, TOO_DEEP),
    ("a million signs", b"-" * MILLION + b"1", TOO_DEEP),
    ("a million bars", b"|" * MILLION, TOO_DEEP),
    ("a million integer parts", b"$" * MILLION + b"1", TOO_DEEP),
    ("a million suspensions", b"_" * MILLION + b"1", TOO_DEEP),
    ("a million outputs", b"!" * MILLION + b"1", TOO_DEEP),
    ("nested output lists", b"!(" * MILLION, TOO_DEEP),
    ("nested calls", b"GCD(" * MILLION, TOO_DEEP),
    ("nested exponents", b"2^(" * MILLION, TOO_DEEP),
    ("nested suspended statements", b"&_m(" * MILLION, TOO_DEEP),
    ("nested switches", b"&(u=" * MILLION, TOO_DEEP),
    # names
    ("a variable of 1000 characters", b"a" * 1000, UNDEFINED),
    ("a new variable of 1000 characters", b"a" * 1000 + b":=3", UNDEFINED),
    ("a function of 1000 characters", b"A" * 1000 + b"(3)", b"no function of this name"),
    ("a command of 1000 characters", b"&" + b"J" * 1000, b"Only one letter"),
    ("a name of ten million characters", b"q" * 10 * MILLION, UNDEFINED),
    # lines of ten million characters
    ("a sum of five million terms", b"1+" * (5 * MILLION) + b"1", b"\n 5000001\n"),
    ("ten million blanks", b"1" + b" " * 10 * MILLION + b"+1", b"\n 2\n"),
    ("a text of ten million characters", b"!('" + b"q" * 10 * MILLION + b"')", b"q" * 255 + b"\n"),
    ("a number of two million digits", b"(" + b"9" * (2 * MILLION) + b"+1)|1000003", b"\n %d\n" % (
        pow(10, 2 * MILLION, 1000003))),
    # arrays
    ("a list of a million and one values", b"[v] := [(" + b"1," * MILLION + b"1)]", b"at most 1000000 values"),
    ("a string of a million and one characters", b"[v] := '" + b"a" * (MILLION + 1) + b"'", b"at most 1000000 values"),
    ("nested subscripts", b"z[" * MILLION, TOO_DEEP),
    ("nested parentheses of matrices", b"[v] := " + b"(" * MILLION, TOO_DEEP),
    ("a million transposes", b"[v] := " + b'"' * MILLION + b"[(1,2)]", TOO_DEEP),
    ("nested computed matrices", b"[v] := " + b"[<i=1,2> Sumall" * 100000, b"*** Inappropriate symbol"),
    # bytes
    ("NUL is a blank", b"z\x00+\x001", b"\n 6\n"),
    ("NUL ends a name", b"z\x003", ENDED),
]
CASES += [(f"byte {code}", b"z" + bytes([code]) + b"1", ENDED) for code in (1, 7, 27, 127, 128, 165, 195, 255)]
CASES += [(f"byte {code} first", bytes([code]), NO_FACTOR) for code in (1, 7, 27, 127, 128, 165, 195, 255)]


def run(binary, directory, line, limit):
    """'' when the session answers as it should, else what went wrong"""
    text, expected = line
    try:
        done = trials.session(binary, b"z := 5:\n" + text + b"\nz\n&q\n", directory, limit)
    except subprocess.TimeoutExpired:
        return f"no end within {limit:g} s of processor time"
    if done.returncode != 0:
        return f"exit status {done.returncode}"
    if trials.TROUBLE.search(done.stderr):
        return done.stderr[:2000].decode("latin-1")
    answer = done.stdout[done.stdout.index(b"\n>"):]
    if expected not in answer:
        return f"the answer does not hold {expected[:60]}: {answer[:300]}"
    if not answer.endswith(b"\n 5\n\n>\n bye\n"):
        return f"the value of z is lost: {answer[-200:]}"
    return ""


def main():
    args = trials.arguments(scale=1.0)
    failed = 0
    with trials.folder("big-input") as directory:
        for name, *line in CASES:
            report = run(args.tolvex, directory, line, 20 * args.scale)
            if report:
                failed += 1
                print(f"FAILED {name}\n  {report}")
    return trials.verdict(len(CASES) - failed, failed)


if __name__ == "__main__":
    sys.exit(main())
