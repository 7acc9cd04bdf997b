#!/usr/bin/env python3
"""Runs the sessions shown in the documentation: every block ```tolvex of a Markdown file is one session.

usage: run_examples.py --tolvex PATH FILES...

Lines that begin with '> ' are typed, the others are what the program writes; empty lines are left out on both sides.
"""
import os
import re
import sys

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path[:0] = [os.path.join(TESTS, "transcripts"), os.path.join(TESTS, "support")]
import run as transcripts  # noqa: E402
import trials  # noqa: E402


def sessions(path):
    with open(path, encoding="utf-8") as handle:
        text = handle.read()
    for block in re.finditer(r"^```tolvex\n(.*?)^```$", text, re.S | re.M):
        line = text.count("\n", 0, block.start()) + 1
        case = transcripts.Case(path, line, "example")
        session = case.sessions[0]
        for k, shown in enumerate(block.group(1).split("\n")):
            if shown.startswith("> "):
                session.sent.append(shown[2:].encode() + b"\n")
            elif shown:
                session.expect.append((line + k + 1, shown))
        yield case


def main():
    args = trials.arguments("files")
    passed = failed = 0
    for case in (case for path in args.files for case in sessions(path)):
        report = transcripts.run(case, args.tolvex, [], 10)
        passed, failed = passed + (not report), failed + bool(report)
        if report:
            print(f"FAILED {case.name}\n{report}")
    return trials.verdict(passed, failed)


if __name__ == "__main__":
    sys.exit(main())
