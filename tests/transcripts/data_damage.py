#!/usr/bin/env python3
"""Every file of the data directory missing, cut short, or with a wrong word: start-up names it and ends with status 1.

usage: data_damage.py --tolvex PATH [--scale F]

chdat is left open for its reader; only its absence is noticed.
"""
import os
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

FILES = ["chdat", "Qerrs", "pow228", "pprods", "primelist", "bprimes", "f256d", "f2t16d", "lrgpmes"]


def words(change):
    def damaged(content):
        parts = content.decode("latin-1").split()
        change(parts)
        return "\n".join(parts).encode("latin-1") + b"\n"
    return damaged


def put(place, text):
    return words(lambda parts: parts.__setitem__(int(place * (len(parts) - 1)), text))


DAMAGES = {
    "empty": lambda content: b"",
    "half of it": lambda content: content[:len(content) // 2],
    "a wrong first word": put(0, "-7"),
    "letters in the middle": put(0.5, "abc"),
    "a last word out of range": put(1, "99999999999"),
}


def complaint(home, limit):
    done = trials.session(os.path.join(home, "tolvex"), b"2+3\n", home, limit)
    lines = done.stdout.decode("latin-1").split("\n")
    return done.returncode, [line for line in lines if line.startswith("*** Tolvex error.")]


def main():
    args = trials.arguments(scale=1.0)
    binary, cases, failed = os.path.realpath(args.tolvex), 0, 0
    with tempfile.TemporaryDirectory(prefix="data-damage-") as home:
        shutil.copy(binary, os.path.join(home, "tolvex"))
        shutil.copytree(os.path.join(os.path.dirname(binary), "BACKWARD"), os.path.join(home, "BACKWARD"))
        for name in FILES:
            path = os.path.join(home, "BACKWARD", name)
            with open(path, "rb") as handle:
                whole = handle.read()
            for kind in ["missing"] + (list(DAMAGES) if name != "chdat" else []):
                if kind == "missing":
                    os.remove(path)
                else:
                    with open(path, "wb") as handle:
                        handle.write(DAMAGES[kind](whole))
                status, lines = complaint(home, 10 * args.scale)
                cases += 1
                # a wrong word in the message file may show in the count of its names
                named = [line for line in lines if name in line or (name == "Qerrs" and "number builtins" in line)]
                if status != 1 or not named:
                    failed += 1
                    print(f"FAILED {name}, {kind}: status {status}, {lines}")
            with open(path, "wb") as handle:
                handle.write(whole)
        status, lines = complaint(home, 10 * args.scale)
        if status != 0 or lines:
            failed += 1
            print(f"FAILED whole files: status {status}, {lines}")
    return trials.verdict(cases - failed, failed)


if __name__ == "__main__":
    sys.exit(main())
