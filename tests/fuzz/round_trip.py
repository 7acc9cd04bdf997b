#!/usr/bin/env python3
"""Random sessions are saved, loaded in a new process and saved again: the two files must be equal, and the second process must
read the file without an error.

usage: round_trip.py --tolvex PATH [--count N] [--seed S]
"""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

SWITCHES = {"N": 1, "m": 2, "a": 1, "B": 1, "D": 30, "_l": 1, "t": 1, "V": 1, "W": 1, "_L": 1, "u": 5, "l": 1, "#": 200,
            "A": 2000, "E": 1, "H": 1, "K": 1, "X": 2000, "O": 1, "_d": 120, "_r": 50, "_s": 1, "_t": 1, "|": 1, "L": 9000}
LEAST = {"X": 300, "A": 10, "#": 4, "_d": 40, "_r": 1, "L": 1}
MODULI = [2, 3, 7, 101, 32003, 65537, 2147483629, 12, 256, 65536]
NAMES = ["a", "b", "c", "dd", "long_name1", "u2", "v", "w"]
VARIABLES = ["x", "y", "z", "t_1"]
TROUBLE = re.compile(rb"leak audit|CHECK failed|Sanitizer|runtime error:")


class Session:
    def __init__(self, rng):
        self.rng = rng
        self.variables = rng.sample(VARIABLES, rng.randrange(5))
        self.laurent = bool(self.variables) and rng.random() < 0.2
        self.modular = rng.random() < 0.4

    def number(self):
        return str(self.rng.choice([self.rng.randrange(20), self.rng.randrange(10**6), self.rng.randrange(10**60)]))

    def polynomial(self, depth=2):
        if not self.variables or depth == 0:
            return self.number()
        terms = []
        for _ in range(self.rng.randrange(1, 5)):
            least = -3 if self.laurent else 0
            power = self.rng.randrange(least, 5)
            factor = "*".join([f"({self.polynomial(depth - 1)})"] + [f"{v}^({power})" for v in self.rng.sample(self.variables, 1)])
            terms.append(factor)
        return "(" + " - ".join(terms) + ")"

    def value(self):
        kind = self.rng.randrange(5)
        if kind < 2:
            return self.rng.choice(["", "-"]) + self.number()
        if kind < 4:
            return self.polynomial()
        return f"{self.polynomial()}/({self.polynomial()}+1)"

    def expression(self, depth=2):
        r = self.rng
        kind = r.randrange(9) if depth > 0 else 0
        e = lambda: self.expression(depth - 1)
        if kind < 3:
            return r.choice(NAMES + [self.number(), "k"])
        if kind < 5:
            return f"{e()} {r.choice('+-*')} {e()}"
        if kind < 6:
            return f"(-{e()})^{r.randrange(4)}"
        if kind < 7:
            return f"GCD({e()}, {e()})"
        if kind < 8:
            return r.choice(["'some; text {x} '", f"{e()}|7", f"$({e()})", f"Sigma<k = 1, 3>[{e()}]"])
        return f"m[{e()}, {e()}]"

    def condition(self):
        one = f"{self.expression(1)} {self.rng.choice(['<', '>', '=', '<=', '>=', '<>'])} {self.expression(1)}"
        if self.rng.random() < 0.3:
            one = f"[{one}] {self.rng.choice(['and', 'or'])} [{self.expression(1)} = 0]"
        return one

    def statement(self, depth):
        r = self.rng
        kind = r.randrange(8 if depth > 0 else 4)
        if kind < 2:
            return f"{r.choice(NAMES)} := {self.expression()}"
        if kind < 3:
            return f"{r.choice(NAMES)}:{r.choice('+-')} {self.expression(1)}"
        if kind < 4:
            return self.expression()
        if kind < 5:
            return f"if {self.condition()} then {self.body(depth - 1)} else {self.body(depth - 1)} fi"
        if kind < 6:
            return f"for k = 1 to {self.expression(1)} by 2 do {self.body(depth - 1)} od"
        if kind < 7:
            return f"while {self.condition()} do {self.body(depth - 1)} od"
        return f"!('of {r.choice(NAMES)}', {self.expression(1)}:5)"

    def body(self, depth):
        out = []
        for _ in range(self.rng.randrange(1, 4)):
            comment = "{a comment %d} " % self.rng.randrange(9) if self.rng.random() < 0.1 else ""
            out.append(comment + self.statement(depth))
        return "; ".join(out)

    def array(self, name):
        r = self.rng
        rows, cols = r.randrange(1, 5), r.randrange(1, 5)
        kind = r.randrange(3)
        lines = [f"Array {name}[{rows}]" if kind == 0 else f"Array {name}[{rows}, {cols}]" + (" Sparse" if kind == 2 else "")]
        for _ in range(r.randrange(6)):
            i, j = r.randrange(rows), r.randrange(cols)
            lines.append(f"{name}[{i} + {self.origin}{'' if kind == 0 else f', {j} + {self.origin}'}] := {self.value()}")
        return lines

    def lines(self):
        r = self.rng
        out = [f"&(J = {v})" for v in self.variables]
        if self.laurent:
            out.append("&(l = 1)")
        if self.modular:
            out.append(f"&(p = {r.choice(MODULI)})")
        for letter in r.sample(sorted(SWITCHES), r.randrange(6)):
            if letter != "l":
                out.append(f"&({letter} = {r.randrange(LEAST.get(letter, 0), SWITCHES[letter] + 1)})")
        self.origin = 1
        for letter in out:
            if letter.startswith("&(a = "):
                self.origin = int(letter[6:-1])
        for name in r.sample(["F", "G", "Long_Func", "F"], r.randrange(4)):
            parameters = r.choice(["", "(k)", "(k, ^v)", "(a, b, k)"])
            out.append(f"Func {name}{parameters} = {self.body(2)} .")
        for _ in range(r.randrange(6)):
            out.append(f"{r.choice(NAMES)} := {self.value()}:")
        for name in r.sample(["m", "sp", "vec", "m"], r.randrange(4)):
            out += self.array(name)
        return out


def run(binary, directory, text):
    done = subprocess.run([binary], cwd=directory, input=text.encode(), capture_output=True, timeout=120)
    return done.returncode, done.stdout, done.stderr


def attempt(binary, directory, lines):
    """'' or what went wrong"""
    for name in ("one", "two"):
        if os.path.exists(os.path.join(directory, name)):
            os.remove(os.path.join(directory, name))
    save = "&(S = '{0}')\n&s\n&(S = '@')\n&q\n"
    outs = [run(binary, directory, "\n".join(lines) + "\n" + save.format("one")),
            run(binary, directory, "&(R = 'one')\n" + save.format("two"))]
    for status, _, errors in outs:
        if status != 0 or TROUBLE.search(errors):
            return f"status {status}: {errors[-2000:].decode('latin-1')}"
    if b"Inappropriate symbol" in outs[1][1]:
        return "an error while loading: " + outs[1][1][-1500:].decode("latin-1")
    texts = []
    for name in ("one", "two"):
        try:
            with open(os.path.join(directory, name), "rb") as handle:
                texts.append(handle.read())
        except FileNotFoundError:
            return f"no file {name}: " + outs[0][1][-1500:].decode("latin-1")
    if texts[0] != texts[1]:
        one, two = (t.decode("latin-1").split("\n") for t in texts)
        for a, b in zip(one + [""], two + [""]):
            if a != b:
                return f"first difference:\n  {a}\n  {b}"
    return ""


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    print(f"seed {args.seed}")
    failed = 0
    directory = tempfile.mkdtemp(prefix="round-")
    try:
        with open(os.path.join(directory, "tolstart.txt"), "w") as handle:
            handle.write("500\n")
        for k in range(args.count):
            lines = Session(random.Random(f"{args.seed}:{k}")).lines()
            report = attempt(binary, directory, lines)
            if report:
                failed += 1
                print(f"FAILED session {k}\n" + "\n".join("  " + line for line in lines) + f"\n{report}")
        print(f"{args.count - failed} sessions came back, {failed} did not")
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
