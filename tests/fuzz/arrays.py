#!/usr/bin/env python3
"""Random statements with matrices against a model in plain lists of fractions: the displays must agree.

usage: arrays.py --tolvex PATH [--seed N] [--count N]

Each session makes arrays, dense and sparse, works on them, and shows all of them at the end; what is shown of a sparse
array is read back as a literal and must be the same array. The seed of a session that differs is printed with its text.
"""
import os
import random
import re
import sys
from fractions import Fraction

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

NAMES = ["a", "b", "c", "d", "s", "t"]


def text_of(q):
    return str(q.numerator) if q.denominator == 1 else f"{q.numerator}/{q.denominator}"


def dense_text(m):
    lines = []
    for row in m:
        fields = [text_of(q) for q in row]
        lines.append(" " + "".join(f.ljust(max(4, len(f) + 1)) for f in fields[:-1]) + fields[-1])
    return lines


def sparse_text(m):
    lines = []
    for r, row in enumerate(m, 1):
        entries = [f"[{c}, {text_of(q)}]" for c, q in enumerate(row, 1) if q]
        if entries:
            lines.append(f" [{r}, " + ", ".join(entries) + "]")
    return lines or [" []"]


def product(x, y):
    return [[sum((x[i][k] * y[k][j] for k in range(len(y))), Fraction(0)) for j in range(len(y[0]))] for i in range(len(x))]


class Session:
    def __init__(self, rng):
        self.rng, self.lines, self.arrays = rng, [], {}  # name: [sparse, rows]

    def number(self):
        n = Fraction(self.rng.choice([0, 0, 1, -1, 2, 3, -7, 40, 100000]), self.rng.choice([1, 1, 1, 2, 3]))
        return n

    def fresh(self, rows, cols):
        return [[self.number() for _ in range(cols)] for _ in range(rows)]

    def operand(self, rows=None, cols=None, square=False):
        """text, value, sparse of a matrix with that shape; a literal if no array has it"""
        fits = [n for n, (_, m) in self.arrays.items()
                if rows in (None, len(m)) and cols in (None, len(m[0])) and (not square or len(m) == len(m[0]))]
        if fits and self.rng.random() < 0.85:
            name = self.rng.choice(fits)
            return f"[{name}]", self.arrays[name][1], self.arrays[name][0]
        r = rows or (cols if square else None) or self.rng.randrange(1, 4)
        c = cols or (r if square else self.rng.randrange(1, 4))
        m = self.fresh(r, c)
        return "[" + "".join("[" + ", ".join(map(text_of, row)) + "]" for row in m) + "]", m, False

    def expression(self, thin_target):
        """for a sparse target what is written out is sparse, and sparse matrices are not put side by side"""
        rng = self.rng
        text, m, sparse = self.operand()
        kind = rng.randrange(9)
        if kind == 0:
            other, n, thin = self.operand(len(m), len(m[0]))
            sign = rng.choice([1, -1])
            value = [[x + sign * y for x, y in zip(p, q)] for p, q in zip(m, n)]
            return f"{text} {'+' if sign > 0 else '-'} {other}", value, sparse and thin
        if kind == 1:
            other, n, thin = self.operand(rows=len(m[0]))
            return f"{text}*{other}", product(m, n), sparse and thin
        if kind == 2:
            k = self.number()
            return f"{text}*({text_of(k)})", [[x * k for x in row] for row in m], sparse
        if kind == 3:
            k = self.number()
            return f"({text_of(k)}) - {text}", [[k - x for x in row] for row in m], False
        if kind == 4:
            return f"Trans{text}", [list(col) for col in zip(*m)], sparse
        if kind == 5:
            text, m, sparse = self.operand(square=True)
            return f"{text}^3", product(product(m, m), m), sparse
        if kind == 6:
            return f"-{text}", [[-x for x in row] for row in m], sparse
        if kind == 7 and not sparse and not thin_target:
            other, n, thin = self.operand(rows=len(m))
            if not thin:
                return f"{text}_{other}", [p + q for p, q in zip(m, n)], False
        return f"|{text}|", [[abs(x) for x in row] for row in m], sparse

    def step(self):
        rng = self.rng
        name = rng.choice(NAMES)
        known = self.arrays.get(name)
        kind = rng.randrange(8)
        if known is None or kind < 3:
            text, value, sparse = self.expression(known is not None and known[0])
            if known is not None and known[0]:
                sparse = True  # a sparse array stays sparse
            self.lines.append(f"[{name}] := {text}:")
            self.arrays[name] = [sparse, [list(row) for row in value]]
            return
        m = known[1]
        r, c = rng.randrange(len(m)), rng.randrange(len(m[0]))
        k = self.number()
        if kind < 5:
            m[r][c] = k
            place = f"{r + 1},{c + 1}" if rng.random() < 0.6 else str(r + c * len(m) + 1)
            self.lines.append(f"{name}[{place}] := {text_of(k)}:")
        elif kind == 5 and not known[0]:
            for row in m[r:]:
                for j in range(c, len(row)):
                    row[j] = k
            self.lines.append(f"[{name}[{r + 1}~,{c + 1}~]] := {text_of(k)}:")
        elif kind == 6:
            self.lines.append(f"Sparse[{name}]:")
            known[0] = True
        else:
            self.lines.append(f"@[{name}]:")
            del self.arrays[name]

    def show(self):
        expected = []
        for name, (sparse, m) in sorted(self.arrays.items()):
            self.lines.append(f"!([{name}]):")
            shown = sparse_text(m) if sparse else dense_text(m)
            expected += shown
            if sparse:
                back = "[" + ", ".join(line.strip() for line in shown) + "]" if any(map(any, m)) else "[]"
                self.lines += [f"Array back[{len(m)},{len(m[0])}] Sparse:", f"[back] := {back}:", "!([back]):", "@[back]:"]
                expected += shown
        return expected


def run(tolvex, lines, directory):
    done = trials.session(tolvex, ("\n".join(lines + ["&q"]) + "\n").encode(), directory, 120)
    text = (done.stdout + done.stderr).decode("utf-8", "replace")
    out = [re.sub(r"^(\d?>)+", "", line) for line in text.split("\n")]
    first = next((i for i, line in enumerate(out) if line.startswith(" Amount of RAM")), 0)
    return [line for line in out[first + 1:] if line.strip() and line != " bye"]


def main():
    args = trials.arguments(seed=int(os.environ.get("TOLVEX_SEED", "1")), count=100)
    print(f"seed {args.seed}")
    with trials.folder("arrays") as directory:
        for i in range(args.count):
            session = Session(random.Random(args.seed * 1000003 + i))
            session.lines.append("&(_d = 10000):")
            for _ in range(session.rng.randrange(5, 30)):
                session.step()
            expected = session.show()
            shown = [line for line in run(args.tolvex, session.lines, directory) if not line.startswith(" Columns")]
            if shown[-len(expected):] != expected:
                print(f"session {i} of seed {args.seed}:", *session.lines, "expected:", *expected, "shown:", *shown, sep="\n")
                sys.exit(1)
    print(f"{args.count} sessions agree")


if __name__ == "__main__":
    main()
