#!/usr/bin/env python3
"""Checks the layout that clang-format leaves alone: width, the comment that a header begins with, rules between sections.

usage: check_layout.py ROOT
"""
import os
import re
import sys

FOLDERS = ["storage", "language", "numbers", "poly", "gcd", "quoly", "field", "matrix", "session", "tools", "tests", "bench"]
WIDTH = 110
LABELS = ["Purpose", "Invariant", "Ownership", "Modes", "Raises"]  # in this order
LABEL = re.compile(r"/// ([A-Z][a-z]+) {2,}\S")
CONTINUED = re.compile(r"/// {11,}\S")


def sources(root):
    for folder in FOLDERS:
        for place, _, names in os.walk(os.path.join(root, folder)):
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    path = os.path.join(place, name)
                    with open(path, encoding="utf-8") as handle:
                        yield os.path.relpath(path, root), handle.read().split("\n")


def head_faults(path, lines):
    """what is wrong with the comment at the top of a header of the program"""
    if lines[0] != "#pragma once":
        yield "no #pragma once in the first line"
    if not lines[1].startswith(f"/// {path}: "):
        yield "the comment does not begin with the name of the file"
    labels, open_label = [], False
    for line in lines[1:]:
        if not line.startswith("///"):
            break
        label = LABEL.match(line)
        if label:
            labels.append(label.group(1))
            open_label = True
        elif open_label and not CONTINUED.match(line):
            if line != "///":
                yield f"a line in no label: {line}"
            open_label = False
    if labels != [label for label in LABELS if label in labels]:
        yield f"labels in this order: {', '.join(labels)}"


def main():
    faults, count = [], 0
    for path, lines in sources(sys.argv[1]):
        count += 1
        faults += [f"{path}:{number}: {len(line)} columns" for number, line in enumerate(lines, 1) if len(line) > WIDTH]
        faults += [f"{path}:{number}: a rule without its heading" for number, line in enumerate(lines, 1)
                   if re.fullmatch(r"// -{10,}", line)]
        if path.endswith(".h") and not path.startswith(("tests/", "bench/")):
            faults += [f"{path}: {fault}" for fault in head_faults(path, lines)]
    for fault in faults:
        print(fault)
    print(f"{count} files, {len(faults)} faults")
    return 1 if faults or not count else 0


if __name__ == "__main__":
    sys.exit(main())
