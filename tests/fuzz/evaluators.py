#!/usr/bin/env python3
"""Random function bodies run plainly, after Compile, in integer mode, and both ways together: same values, same errors.

usage: evaluators.py --tolvex PATH [--seed N] [--count N]

The bodies use what means the same in all of them: words that stay small, quotients by "\\" and remainders, and in
modular mode "/" as well. Sums, products and remainders of integers of all sizes are typed, and run as bodies, as right
sides, as elements, as arguments and in conditions, where stored lists have a way of their own for small values. A difference prints
the body and the answers. The seed is printed.
"""
import os
import random
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

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
            return f"{name}:{rng.choice('+-')}{rng.choice(['', '2', name, '(' + e(1) + ')'])}"
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
    with trials.folder("evaluators") as directory:
        done = trials.session(binary, "\n".join(lines + ["&q", ""]).encode(), directory, 120)
    text = done.stdout.decode("latin-1") + done.stderr.decode("latin-1")
    return text.split("MARK")[1:]


def essence(answer):
    """the values, and the texts of errors without names of functions and symbols"""
    lines = [line.lstrip("> ") for line in answer.split("\n")]
    # "/" and an operand that is missing are reported under numbers of their own in integer mode
    return [line for line in lines if re.match(r"-?\d+$|[A-Z].*\.$", line) and "Function was" not in line]


EDGES = [0, 1, 2, 3, 7, 2**28 - 1, 2**28, 2**28 + 1, 2**31 - 1, 2**31, 2**32, 2**56 - 1, 2**56, 2**62, 2**63 - 1, 2**63, 10**25]
OPERANDS = ["a", "b", "c", "el[1]", "q[2, 1]", "el[el[3]-1]"]
RARE = ["f", "p", "x", "nobody", "sp[1]", "el[a]", "q[b, 1]", "none[1]", "el[x]"]


def edge(rng):
    value = rng.choice(EDGES) if rng.random() < 0.4 else rng.randrange(0, 100)
    return value if rng.random() < 0.7 else -value


def integer_expression(rng, depth):
    if depth == 0 or rng.random() < 0.15:
        rare = rng.random() < 0.03
        return rng.choice(RARE if rare else OPERANDS) if rng.random() < 0.6 else str(abs(edge(rng)))
    left, right = integer_expression(rng, depth - 1), integer_expression(rng, depth - 1)
    return rng.choice([f"{left} + {right}", f"{left} - {right}", f"{left}*{right}", f"({left})|{right}", f"({left} - {right})",
                       f"-{left}", f"({left})*({right})", f"{left}|({right})", f"{left}*-3", f"({left})^2", f"{left} ({right})"])


def typed_and_stored(binary, rng, count):
    """differences between what is typed and what is run from a list"""
    bad = 0
    for setting in ("", "&|:", "&(p = 101):", "&(p = 10):"):
        lines = ["&(J = x):", setting, "Array el[3], q[2, 2], sp[2, 2] Sparse;", "el[1] := 5:", "el[2] := 6:", "el[3] := 2:", "q[2, 1] := -7:",
                 "sp[1, 1] := 3:", "f := 1/3:", "p := x + 1:", "u := 0:"]
        asked = []
        for k in range(count):
            e, g = integer_expression(rng, 3), integer_expression(rng, 2)
            lines += [f"{name} := {edge(rng)}:" for name in "abc"]
            sign = rng.choice(["=", "<", ">", "<=", ">=", "<>"])
            lines += ["!('MARK'):", e, "!('MARK'):", f"Func G{k} = {e}.", f"G{k}",
                      "!('MARK'):", f"Func H{k}(y) = y := {e}; y.", f"H{k}(7)",
                      "!('MARK'):", "Func I(y) = y.", f"Func J{k} = I({e}).", f"J{k}",
                      "!('MARK'):", f"Func K{k} = el[2] := {e}; el[2].", f"K{k}",
                      "!('MARK'):", f"if {e} {sign} {g} then 4 else 5 fi",
                      "!('MARK'):", f"u := ({e}):", f"v := ({g}):", f"if u {sign} v then 4 else 5 fi"]
            asked.append(e + f" {sign} " + g)
        found = [[r for r in essence(one) if r != "0"] for one in answers(binary, lines)]
        for k, what in enumerate(asked):
            one = found[7 * k:7 * k + 7]
            failed = any(not re.match(r"-?\d+$", r) for r in one[0] + one[6])
            if any(r != one[0] for r in one[1:5]) or (not failed and one[5] != one[6]):
                bad += 1
                print("DIFFERENT", setting, what, one)
    return bad


def main():
    args = trials.arguments(seed=trials.any_seed(), count=200)
    print("seed", args.seed)
    rng = random.Random(args.seed)
    binary, bad, errors = args.tolvex, 0, 0
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
    bad += typed_and_stored(binary, rng, args.count)
    print(f"{2 * args.count} bodies, {errors} with errors, {bad} different")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
