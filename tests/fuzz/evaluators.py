#!/usr/bin/env python3
"""Random function bodies run plainly, after Compile, in integer mode, and both ways together: same values, same errors.

usage: evaluators.py --tolvex PATH [--seed N] [--count N]

The bodies use what means the same in all of them: words that stay small, quotients by "\\" and remainders, and in
modular mode "/" as well. A difference prints the body and the answers. The seed is printed.
"""
import argparse
import os
import random
import re
import subprocess
import sys
import tempfile
import time

NAMES = ["a", "b", "c", "loc"]
WAYS = {"Plain": "", "Bound": "Compile; ", "Words": "Integer; ", "Both": "Integer; Compile; "}


class Bodies:
    def __init__(self, rng, modular):
        self.rng, self.modular, self.loops = rng, modular, 0

    def expression(self, depth):
        rng = self.rng
        if depth == 0 or rng.random() < 0.2:
            return rng.choice(NAMES + [str(rng.randrange(0, 12))] * 3)
        e = self.expression
        forms = [
            lambda: f"{e(depth - 1)} + {e(depth - 1)}",
            lambda: f"({e(depth - 1)} - {e(depth - 1)})",
            lambda: f"({e(depth - 1)})*{rng.choice(NAMES + ['3', '7'])}",
            lambda: f"-({e(depth - 1)})",
            lambda: f"({e(depth - 1)})\\({e(depth - 1)})",
            lambda: f"(({e(depth - 1)})|({e(depth - 1)}))",
            lambda: f"|{e(depth - 1)}|",
            lambda: f"({rng.choice(NAMES)}|5)^{rng.randrange(0, 5)}",
            lambda: f"Sigma<k = {rng.randrange(0, 3)}, {rng.randrange(0, 5)}>[k*({e(depth - 1)})]",
            lambda: f"Helper({e(depth - 1)}, {rng.choice(NAMES)})",
        ]
        if self.modular:
            forms += [lambda: f"({e(depth - 1)})/({e(depth - 1)})"]
        else:
            forms += [lambda: f"GCD({e(depth - 1)}, {e(depth - 1)})", lambda: f"Bin({rng.randrange(12)}, {rng.randrange(9)})",
                      lambda: f"_({e(depth - 1)})"]
        return rng.choice(forms)()

    def condition(self):
        e, rng = self.expression, self.rng
        one = f"{e(1)} {rng.choice(['<', '>', '=', '<=', '>=', '<>'])} {e(1)}"
        if rng.random() < 0.3:
            return f"[{one}] {rng.choice(['and', 'or'])} not {e(1)} > {e(1)}"
        return one

    def statement(self, depth):
        rng, e = self.rng, self.expression
        kind = rng.randrange(7 if depth else 3)
        name = rng.choice(NAMES)
        if kind == 0:
            return f"{name} := ({e(2)})|{rng.choice(['1000', '97', '(c + 1)'])}"
        if kind == 1:
            return f"{name}:{rng.choice('+-')}{rng.choice(['', '2', name, '(' + e(1) + ')|9'])}".replace("|9", "")
        if kind == 2:
            return e(2)
        if kind == 3:
            return f"if {self.condition()} then {self.body(depth - 1)} else {self.body(depth - 1)} fi"
        if kind == 4:
            return f"if {self.condition()} then {self.body(depth - 1)} fi"
        self.loops += 1
        index = f"i{self.loops}"
        step = rng.choice(["", " by 2", " by -1"])
        return f"for {index} = {rng.randrange(0, 4)} to {rng.randrange(0, 5)}{step} do {self.body(depth - 1)} od"

    def body(self, depth):
        return "; ".join(self.statement(depth) for _ in range(self.rng.randrange(1, 4)))


def answers(binary, lines):
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "tolstart.txt"), "w", encoding="ascii") as handle:
            handle.write("500\n")
        done = subprocess.run([binary], input="\n".join(lines + ["&q", ""]).encode(), cwd=directory, capture_output=True,
                              timeout=120)
    text = done.stdout.decode("latin-1") + done.stderr.decode("latin-1")
    return text.split("MARK")[1:]


def essence(answer):
    """the values, and the texts of errors without names of functions and symbols"""
    lines = [line.lstrip("> ") for line in answer.split("\n")]
    # "/" and an operand that is missing are reported under numbers of their own in integer mode
    return [line for line in lines if re.match(r"-?\d+$|[A-Z].*\.$", line) and "Function was" not in line]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("--count", type=int, default=200)
    args = parser.parse_args()
    print("seed", args.seed)
    rng = random.Random(args.seed)
    binary, bad, errors = os.path.abspath(args.tolvex), 0, 0
    for modulus in (None, 101):
        lines = ["&(_d = 0):"] if modulus is None else [f"&(p = {modulus}):"]
        lines += ["Func Helper(u, v) = u - 2*v."]
        bodies = []
        for k in range(args.count):
            maker = Bodies(rng, modulus is not None)
            body = maker.body(2)
            call = f"({rng.randrange(-9, 10)}, {rng.randrange(-9, 10)}, {rng.randrange(-9, 10)})"
            bodies.append(body + "  at " + call)
            for way, words in WAYS.items():
                extra = "".join(f", i{i + 1}" for i in range(maker.loops))
                lines += [f"Func {way}(a, b, c; loc, k{extra}) = {words}loc := 1; {body}; (((a|200)*200 + (b|200))*200 + (c|200))*200 + (loc|200).",
                          "!('MARK'):", f"{way}{call}"]
        found = answers(binary, lines)
        if len(found) != len(bodies) * len(WAYS):
            print("answers are missing:", len(found))
            return 1
        for k, body in enumerate(bodies):
            results = [essence(found[k * len(WAYS) + w]) for w in range(len(WAYS))]
            results = [[r for r in one if r != "0"] for one in results]  # the definition that follows shows 0
            errors += any(not re.match(r"-?\d+$", r) for r in results[0])
            if any(r != results[0] for r in results):
                bad += 1
                print("DIFFERENT modulus", modulus, "\n ", body, *[f"\n  {w}: {r}" for w, r in zip(WAYS, results)])
    print(f"{2 * args.count} bodies, {errors} with errors, {bad} different")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
