#!/usr/bin/env python3
"""Random sessions are saved, loaded in a new process and saved again: the two files must be equal, the second process must
read the file without an error, and both must display the same values, functions and settings.

usage: round_trip.py --tolvex PATH [--count N] [--seed S]
"""
import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402
from grammar import pick  # noqa: E402, the neighbour

SWITCHES = {"N": 1, "m": 2, "a": 9, "B": 1, "D": 30, "_l": 1, "t": 1, "V": 1, "W": 1, "_L": 1, "u": 5, "l": 1, "#": 200,
            "A": 2000, "E": 1, "H": 1, "K": 1, "X": 2000, "O": 1, "_d": 120, "_r": 50, "_s": 1, "_t": 1, "|": 1, "L": 9000,
            "e": 1, "n": 1, "&": 1, "U": 0}
PROMPTS = ["->", "ab", "' '", "'{}'", "[pr]"]
LEAST = {"X": 300, "A": 10, "#": 4, "_d": 40, "_r": 1, "L": 1}
MODULI = [2, 3, 7, 101, 32003, 65537, 2147483629, 12, 256, 65536]
NAMES = ["a", "b", "c", "dd", "long_name1", "u2", "v", "w"]
QUOTED = "'some text; {x}'"
VARIABLES = ["x", "y", "z", "t_1"]


class Session:
    def __init__(self, rng):
        self.rng = rng
        self.variables = rng.sample(VARIABLES, rng.randrange(5))
        self.laurent = bool(self.variables) and rng.random() < 0.2
        self.modular = rng.random() < 0.4
        self.modulus = rng.choice(MODULI)

    def number(self):
        return str(self.rng.choice([self.rng.randrange(20), self.rng.randrange(10**6), self.rng.randrange(10**60)]))

    def polynomial(self, depth=2):
        if not self.variables or depth == 0:
            return self.number()
        terms = []
        for _ in range(self.rng.randrange(1, 5)):
            least = -3 if self.laurent else 0
            power = self.rng.randrange(least, 5)
            some = self.rng.sample(self.variables, self.rng.randrange(1, min(3, len(self.variables) + 1)))
            factor = "*".join([f"({self.polynomial(depth - 1)})"] + [f"{v}^({power})" for v in some])
            terms.append(self.rng.choice(["", "-"]) + factor)
        return "(" + " - ".join(terms) + ")"

    def value(self):
        return pick(self.rng, [
            (2, lambda: self.rng.choice(["", "-"]) + self.number()),
            # fractions of numbers; a denominator without inverse is an error, and the name gets 0
            (1, lambda: f"{self.rng.choice(['', '-'])}{self.number()}/{self.number()}"),
            (1, lambda: f"-{self.polynomial(1)}^{self.rng.randrange(4)}"),
            (1, lambda: f"{self.number()}^{self.rng.randrange(30)} - {self.number()}"),
            (2, self.polynomial),
            (1, lambda: f"{self.polynomial()}/({self.polynomial()}+1)"),
        ])

    def expression(self, depth=2):
        r = self.rng
        e = lambda: self.expression(depth - 1)
        return pick(self.rng, [
            (3, lambda: r.choice(NAMES + [self.number(), "k"])),
            (2, lambda: f"{e()} {r.choice('+-*')} {e()}"),
            (1, lambda: f"(-{e()})^{r.randrange(4)}"),
            (1, lambda: f"GCD({e()}, {e()})"),
            (1, lambda: r.choice([f"{e()}|7", f"$({e()})", f"Sigma<k = 1, 3>[{e()}]", f"Prod<k = 1, 2><a = k to 3 by 2>({e()})",
                             f"|{e()}|", f"_{r.choice(NAMES)}", f"*{r.choice(NAMES)}", f"{r.choice(NAMES)}#({e()}, 2)",
                             f"{r.choice(NAMES)}\"", f"{r.choice(NAMES)}!", "3.25", "'A'", "<", "<F", "&T", f"%[{e()}][1]",
                             f"F({e()})", "G", f"Coef({e()}, 1)", f"Divides({e()}, {e()}, ^v)", f"({e()})^-2"])),
            (1, lambda: r.choice([f"m[{e()}, {e()}]", f"vec[{e()}]", f"Deg[m]", f"{e()}//{e()}"])),
        ], below=9 if depth > 0 else 3)

    def condition(self):
        one = f"{self.expression(1)} {self.rng.choice(['<', '>', '=', '<=', '>=', '<>'])} {self.expression(1)}"
        if self.rng.random() < 0.3:
            one = f"[{one}] {self.rng.choice(['and', 'or'])} [{self.expression(1)} = 0]"
        return one

    def without_body(self):
        r = self.rng
        return r.choice([f"[m] := [m]*[m] + {self.expression(1)}", f"[m[1~2, {self.expression(1)}]] := [vec]",
                         f"m[{self.expression(1)}, 2] := {self.expression(1)}", "vec[1]:+", f"@({r.choice(NAMES)}, [vec])",
                         f"Return({self.expression(1)})", "&}", "?[m]", f"?{r.choice(NAMES)}", f"&(p = 7: {r.choice(NAMES)})",
                         "&p(a, [m])", "&(_d = 60)", "!('a text; {of} all kinds')", f"!!(&o, {self.expression(1)}, [m]:6)",
                         f"[vec] := [(1, {self.expression(1)}, -3)]", f"[m] := [[1, 2][{self.expression(1)}, x]]",
                         "Swap(a, ^b)", "[m] := Trans[m]", "%[1] := [m]", "Array loc[2], s2[3, 3] Sparse",
                         f"&_m({r.choice(NAMES)} := 3)"])

    def with_body(self, depth):
        r, e, condition, body = self.rng, self.expression, self.condition, self.body
        return r.choice([lambda: f"if {condition()} then {body(depth)} else {body(depth)} fi", lambda: f"if {condition()} then {body(depth)} fi",
                         lambda: f"for k = 1 to {e(1)} by 2 do {body(depth)} od",
                         lambda: f"for k from {e(1)} to {e(1)} do {body(depth)}; &> od", lambda: f"for k = [sp] {e(1)}, 2 do {body(depth)} od",
                         lambda: f"while {condition()} do {body(depth)} od", lambda: f"while not [{condition()}] do {body(depth)}; &] od"])()

    def statement(self, depth):
        r = self.rng
        return pick(r, [
            (2, lambda: f"{r.choice(NAMES)} := {self.expression()}"),
            (1, lambda: f"{r.choice(NAMES)}:{r.choice('+-')} {self.expression(1)}"),
            (1, self.expression),
            (4, self.without_body) if depth == 0 else (7, lambda: self.with_body(depth - 1)),
            (1, lambda: f"!('of {r.choice(NAMES)}', {self.expression(1)}:5)"),
        ])

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
        if r.random() < 0.15:
            return [f"[{name}] := {r.choice(['[[1, 2, 3][4, 5, 6]]', '[(7, -8)]', 'Trans[(1, 2, 3)]', QUOTED])}"]
        lines = [f"Array {name}[{rows}]" if kind == 0 else f"Array {name}[{rows}, {cols}]" + (" Sparse" if kind == 2 else "")]
        for _ in range(r.randrange(6)):
            i, j = r.randrange(rows), r.randrange(cols)
            lines.append(f"{name}[{i} + {self.origin}{'' if kind == 0 else f', {j} + {self.origin}'}] := {self.value()}")
        return lines

    def function(self):
        r = self.rng
        parameters = r.choice(["", "(k)", "(k, ^v)", "(a, b, k)", "(a; b, k)", "(^u, ^v)"])
        head = r.choice([""] * 4 + ["Integer; ", "Compile; ", "Compile*; ", "Integer; Compile; ", "Compile(c, dd, vec[1], [m]); ",
                                    "Compile*(c, x_unknown); "])
        return f"{r.choice(['Func', 'Function'])} {r.choice(['F', 'G', 'Long_Func', 'F'])}{parameters} = {head}{self.body(2)} ."

    def late_line(self):
        r = self.rng
        return pick(r, [
            (1, lambda: f"&(J = -{r.choice(self.variables or VARIABLES)} = {self.number()})"),
            (1, lambda: f"&(J {r.choice('=>')} {r.choice(VARIABLES + ['zz'])})"),
            (1, lambda: f"&(p = {r.choice(MODULI + ['_i'])})"),
            (1, lambda: "&(p = _i)"),
            (1, lambda: f"&(p = {r.choice(MODULI + ['_i'])}: {r.choice(NAMES)}, {r.choice(NAMES)}, [m])"),
            (1, lambda: f"@{r.choice(NAMES)}"),
            (1, lambda: "[m] := [m]*[m]:"),
            (1, lambda: f"{r.choice(NAMES)} := {self.value()}:"),
        ])

    def late_lines(self):
        """what happens to values that are there: variables come and go, rings change"""
        return [self.late_line() for _ in range(self.rng.randrange(4))]

    def settings(self):
        r = self.rng
        out = []
        self.origin = 1
        for letter in r.sample(sorted(SWITCHES), r.randrange(8)):
            if letter == "l" or (letter == "B" and self.modular):
                continue
            value = r.randrange(LEAST.get(letter, 0), SWITCHES[letter] + 1)
            out.append(f"&({letter} = {value})")
            if letter == "a":
                self.origin = value
                if r.random() < 0.3:
                    out.append("&a")
                    self.origin = 1 - value
        if r.random() < 0.15:
            prompt = r.choice(PROMPTS)
            if prompt == "[pr]":
                out += [f"Array pr[2]; ", f"[pr] := [({r.choice([39, 96, 62])}, 45)]", "&(M = [pr])", "@[pr]"]
            else:
                out.append(f"&(M = {prompt if prompt[0] == chr(39) else chr(39) + prompt + chr(39)})")
        return out

    def lines(self):
        r = self.rng
        out = [f"&(J {r.choice('=>')} {v})" for v in self.variables]
        if self.laurent:
            out.append("&(l = 1)")
        if self.modular:
            out.append(f"&(p = {self.modulus})")
        out += self.settings()
        for _ in range(r.randrange(4)):
            out.append(self.function())
        for _ in range(r.randrange(6)):
            out.append(f"{r.choice(NAMES)} := {self.value()}:")
        for name in r.sample(["m", "sp", "vec", "m"], r.randrange(4)):
            out += self.array(name)
        return out + self.late_lines()


def run(binary, directory, text):
    # a prompt of several characters takes as many off each line, less one
    text = "".join(f"{'':9}{line}\n" for line in text.split("\n") if line)
    done = trials.session(binary, text.encode(), directory, 120)
    return done.returncode, done.stdout, done.stderr


SHOW = "&d\n5\n!('first mark')\n&v\n&f*\n&g\n!('last mark')\n"
PROMPT = re.compile(rb"^\d?(?:>-|>|->|ab|\{\}|'-|`-)")
# what a saved session does not keep: open files and what was spent; the size of decimals, which a change of ring sets, is 5
UNKEPT = re.compile(rb"Reading from file|Saving to file|Elapsed|table mass|^ *0?$")


def shown(output):
    """the lines between the marks, without prompts; a comment that was saved has a blank in front of its "}\""""
    lines = output.rpartition(b"first mark")[2].partition(b"last mark")[0].split(b"\n")
    return [line.replace(b" }", b"}") for line in (PROMPT.sub(b"", line) for line in lines) if not UNKEPT.search(line)]


def first_difference(one, other):
    for a, b in zip(one + [b""], other + [b""]):
        if a != b:
            return f"  {a.decode('latin-1')}\n  {b.decode('latin-1')}"
    return ""


def attempt(binary, directory, lines):
    """'' or what went wrong"""
    for name in ("one", "two"):
        if os.path.exists(os.path.join(directory, name)):
            os.remove(os.path.join(directory, name))
    save = "&(S = '{0}')\n&s\n&(S = '@')\n"
    outs = [run(binary, directory, "\n".join(lines) + "\n" + save.format("one") + SHOW + "&q\n"),
            run(binary, directory, "&(R = 'one')\n" + SHOW + save.format("two") + "&q\n")]
    for status, _, errors in outs:
        if status != 0 or trials.TROUBLE.search(errors):
            return f"status {status}: {errors[-2000:].decode('latin-1')}"
    if b"Inappropriate symbol" in outs[1][1]:
        return "an error while loading: " + outs[1][1][-1500:].decode("latin-1")
    if b"stands in another ring" not in outs[0][1]:
        difference = first_difference(shown(outs[0][1]), shown(outs[1][1]))
        if difference:
            return "first difference shown:\n" + difference
    texts = []
    for name in ("one", "two"):
        try:
            with open(os.path.join(directory, name), "rb") as handle:
                texts.append(handle.read())
        except FileNotFoundError:
            return f"no file {name}: " + outs[0][1][-1500:].decode("latin-1")
    if texts[0] != texts[1]:
        return "first difference saved:\n" + first_difference(*(t.split(b"\n") for t in texts))
    return ""


def main():
    args = trials.arguments(count=200, seed=trials.any_seed())

    def judged(directory, rng):
        lines = Session(rng).lines()
        report = attempt(args.tolvex, directory, lines)
        return report and "".join("\n  " + line for line in lines) + "\n" + report

    return trials.random_trials(args, "round", judged, "sessions came back", "did not")


if __name__ == "__main__":
    sys.exit(main())
