#!/usr/bin/env python3
"""Runs the sessions shown in the documentation: every block ```tolvex of a Markdown file is one session.

usage: run_examples.py --tolvex PATH FILES...

Lines that begin with '> ' are typed, the others are what the program writes; empty lines are left out on both sides.
"""
import argparse
import importlib.machinery
import importlib.util
import os
import re
import sys

RUN = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "transcripts", "run.py")
LOADER = importlib.machinery.SourceFileLoader("transcript_run", RUN)
transcripts = importlib.util.module_from_spec(importlib.util.spec_from_loader("transcript_run", LOADER))
LOADER.exec_module(transcripts)


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
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("files", nargs="+")
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    passed = failed = 0
    for case in (case for path in args.files for case in sessions(path)):
        report = transcripts.run(case, binary, [], 10)
        passed, failed = passed + (not report), failed + bool(report)
        if report:
            print(f"FAILED {case.name}\n{report}")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
