#!/usr/bin/env python3
"""Every built-in function that the program has, and every word of its statement readers, has a page docs/functions/NAME.md with its
form, errors, cost, method and an example (which run_examples.py runs); every page belongs to a function that there is.

usage: function_pages.py PROJECT
"""
import glob
import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

NO_EXAMPLE = {"Bell", "Time"}  # what they write is a sound, and the time
PARTS = ["**Errors:**", "**Cost:**", "**Method:**"]
WORDS = {"Compile": "language/control.cpp", "Integer": "language/control.cpp", "Adjoint": None, "Altmult": None,
         "Altpower": None, "MPowermod": None}  # words of statement readers; None: of array expressions


def text_of(path):
    with open(path, encoding="utf-8") as handle:
        return handle.read()


def names(top):
    """the functions that the program can run"""
    table = re.search(r"k_builtin_names = \{(.*?)\};", text_of(os.path.join(top, "tools/make_data.cpp")), re.S).group(1)
    rows = [name.rstrip("*") for name in re.findall(r'"([^"]*)"', table)]
    dispatch = text_of(os.path.join(top, "language/builtin_table.cpp"))
    found = {rows[int(i)] for i in re.findall(r"\bof\[(\d+)\]", dispatch)}
    arrays = "".join(text_of(path) for path in glob.glob(os.path.join(top, "language/array_*.cpp")))
    for word, place in WORDS.items():
        source = arrays if place is None else text_of(os.path.join(top, place))
        if f'"{word}"' in source:
            found.add(word)
    return found


def faults_of(path, name):
    text = text_of(path)
    lines = [line for line in text.split("\n") if line]
    if lines[0] != f"# {name}":
        yield f"{path}: the title is not '# {name}'"
    form = lines[1] if len(lines) > 1 else ""
    if not re.match(rf"`[^`]*\b{name}\b.*`$", form):
        yield f"{path}: no form `{name}...` under the title"
    if len(lines) < 3 or lines[2].startswith(("-", "`")):
        yield f"{path}: no result"
    for part in PARTS:
        if part not in text:
            yield f"{path}: no {part}"
    example = re.search(r"^```tolvex\n(.*?)^```$", text, re.S | re.M)
    if example is None:
        if name not in NO_EXAMPLE:
            yield f"{path}: no example"
    elif name not in example.group(1):
        yield f"{path}: the example does not use {name}"


def main():
    top = sys.argv[1]
    faults = []
    pages = {os.path.basename(path)[:-3]: path for path in glob.glob(os.path.join(top, "docs/functions/*.md"))}
    there = names(top)
    for name in sorted(there):
        if name in pages:
            faults.extend(faults_of(pages[name], name))
        else:
            faults.append(f"{name}: no page docs/functions/{name}.md")
    faults.extend(f"{pages[name]}: the program has no {name}" for name in sorted(set(pages) - there))
    return trials.list_faults(faults, f"{len(there)} functions, {len(pages)} pages")


if __name__ == "__main__":
    sys.exit(main())
