#!/usr/bin/env python3
"""Every error that the program can raise is raised by a transcript.

usage: error_numbers.py PROJECT

The numbers are those of storage/failure.h whose names occur in a source file of the program. A transcript meets number N
where it expects {msg N}, the text of that message, in a report. A number that no transcript meets is a fault unless it
stands in WAITING with the reason; so is one that waits but is met. Names that no source file uses yet are told.
"""
import glob
import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

FOLDERS = "storage language numbers poly gcd quoly field matrix session".split()

# Numbers that no transcript meets, and why.
WAITING = {
    71: "takes a list of more than a million values: big_input.py",
    309: "takes an interrupt in an expansion: tests/fault/interrupt_places.py",
    371: "takes an interrupt in a sort: tests/fault/interrupt_places.py",
}


def text_of(path):
    with open(path, encoding="utf-8", errors="replace") as f:
        return f.read()


def main():
    top = sys.argv[1]
    numbers = {name: int(number) for name, number in
               re.findall(r"^\s+(\w+) = (\d+),", text_of(os.path.join(top, "storage/failure.h")), re.MULTILINE)}
    used = set()
    for folder in FOLDERS:
        for path in glob.glob(os.path.join(top, folder, "**", "*.cpp"), recursive=True) + \
                glob.glob(os.path.join(top, folder, "**", "*.h"), recursive=True):
            used.update(re.findall(r"\bErr::(\w+)", text_of(path)))
    met = set()
    for path in glob.glob(os.path.join(top, "tests/transcripts/*/*.script")):
        met.update(int(n) for n in re.findall(r"\{msg (\d+)\}", text_of(path)))
    faults, unused = [], []
    for name, number in sorted(numbers.items(), key=lambda item: item[1]):
        if name not in used:
            unused.append(f"{number} {name}")
        elif number in met and number in WAITING:
            faults.append(f"{number} {name}: met by a transcript, and still waiting")
        elif number not in met and number not in WAITING:
            faults.append(f"{number} {name}: no transcript meets it")
    if unused:
        print("not raised by any source file:", ", ".join(unused))
    return trials.list_faults(faults, f"{len(numbers)} numbers, {len(met)} met by transcripts, {len(WAITING)} waiting")


if __name__ == "__main__":
    sys.exit(main())
