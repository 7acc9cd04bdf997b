#!/usr/bin/env python3
"""Checks the architecture from the sources: includes go downward, ports are used, jumps and heavy C++ stay where they may.

usage: check_layers.py ROOT
"""
import os
import re
import sys

# Lowest first. A folder includes itself and those before it.
ORDER = ["storage", "language/tokens", "numbers", "poly", "gcd", "quoly", "field", "matrix", "language", "session"]
# Upward calls: the header that declares them and the folder that defines them.
PORTS = {
    "storage/failure.h": ("session", ["error", "tolvex_error", "mem_error", "take_interrupt"]),
    "poly/ports.h": ("field", ["reduce_product", "tower_divide", "tower_div_rem"]),
    "gcd/field_hooks.h": ("field", ["tower_gcd", "tower_gcd_form", "tower_reduce", "tower_pth_root"]),
    "quoly/ports.h": ("field", ["tower_normal_fraction", "tower_lead_is_unit", "tower_integer_lead"]),
    "language/ports.h": ("session", ["run_command", "open_answer", "warning"]),
}
JUMPS = re.compile(r"\b(sig)?(setjmp|longjmp)\b")
HEAVY = re.compile(r"\bstd::(string|vector|function|map|unique_ptr|shared_ptr)\b|\bthrow\b|\btry\s*\{|\bnew\s+[A-Za-z_]")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def folder_of(path):
    for name in sorted(ORDER, key=len, reverse=True):
        if path.startswith(name + "/"):
            return name
    return None


def code_of(text):
    """the text without comments and string literals"""
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r'"(\\.|[^"\\\n])*"', '""', text)
    return re.sub(r"//[^\n]*", " ", text)


def main():
    root = sys.argv[1]
    faults, bases, sources = [], {}, {}
    for name in ORDER:
        directory = os.path.join(root, name)
        if not os.path.isdir(directory):
            continue
        for entry in sorted(os.listdir(directory)):
            if entry.endswith((".h", ".cpp")):
                path = f"{name}/{entry}"
                with open(os.path.join(root, path), encoding="utf-8") as handle:
                    sources[path] = handle.read()
                stem = entry.rsplit(".", 1)[0]
                if stem != "ports":
                    other = bases.setdefault(stem, name)
                    if other != name:
                        faults.append(f"{path}: {other} has a file of that base name too")
    graph = {}
    for path, text in sources.items():
        here = ORDER.index(folder_of(path))
        graph[path] = []
        for target in INCLUDE.findall(text):
            there = folder_of(target)
            if there is None or target not in sources:
                faults.append(f"{path}: includes {target}, which is no file of a layer")
                continue
            graph[path].append(target)
            if ORDER.index(there) > here:
                faults.append(f"{path}: includes {target}, a layer above")
        code = code_of(text)
        if folder_of(path) != "session" and JUMPS.search(code):
            faults.append(f"{path}: a jump outside session/")
        heavy = HEAVY.search(code)
        if heavy:
            faults.append(f"{path}: {heavy.group(0).strip()} in program code")
        if path.endswith(".h") and "#pragma once" not in text:
            faults.append(f"{path}: no #pragma once")
    faults += cycles(graph)
    for header, (definer, routines) in PORTS.items():
        declared = sources.get(header)
        if declared is None:
            faults.append(f"{header}: missing")
            continue
        for routine in routines:
            if not re.search(rf"\b{routine}\(", declared):
                faults.append(f"{header}: {routine} is not declared")
            users = [p for p, t in sources.items()
                     if p != header and folder_of(p) != definer and re.search(rf"\b{routine}\(", t)]
            if not users:
                faults.append(f"{header}: nobody uses {routine}")
            if not any(folder_of(p) == definer and re.search(rf"\b{routine}\([^;]*\)\s*\{{", t)
                       for p, t in sources.items()):
                faults.append(f"{header}: {definer} does not define {routine}")
    for fault in faults:
        print(fault)
    print(f"{len(sources)} files, {len(faults)} faults")
    return 1 if faults or not sources else 0


def cycles(graph):
    faults, state = [], {}

    def visit(path, trail):
        state[path] = 1
        for target in graph[path]:
            if state.get(target) == 1:
                faults.append("cycle: " + " -> ".join(trail[trail.index(target):] + [target] if target in trail
                                                     else [path, target]))
            elif target not in state:
                visit(target, trail + [target])
        state[path] = 2

    for path in graph:
        if path not in state:
            visit(path, [path])
    return faults


if __name__ == "__main__":
    sys.exit(main())
