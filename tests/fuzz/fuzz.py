#!/usr/bin/env python3
"""Feeds random sessions to the program: from a grammar of the language, from bytes, and from mutations of both.

usage: fuzz.py --tolvex PATH [--seconds S] [--seed N] [--keep DIR]     fuzz for S seconds of the program's CPU time
       fuzz.py --tolvex PATH --replay FILE...                          run kept sessions again

A session fails if the program does not end with status 0 or 1 (after an interrupt, where a computation is long), writes a
report of a checked build on standard error, or does not answer the probe statement at its end. A failing session is
shortened and kept.
"""
import argparse
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time

TROUBLE = re.compile(rb"leak audit|CHECK failed|Sanitizer|runtime error:|Tolvex error")
PROBE = b"\n" * 17 + b";\n&(p=_i)\n;\n&(p=_i)\n123456789*1000\n&q\n"
ANSWER = b"123456789000"
LIMIT = 60

NAMES = ["a", "b", "c", "u1", "longname_x", "x", "y", "z", "t"]
VARIABLES = ["x", "y", "z", "t"]
MODULI = ["2", "3", "5", "6", "7", "12", "101", "256", "65536", "32003", "65535", "65537", "2147483629", "2147483646"]
BUILTINS = ["Deg", "Codeg", "Denom", "Numer", "Lcoef", "Level", "Terms", "Numb", "Rat", "Isprime", "Prime", "Sqrt", "Height",
            "Vars", "Numcon", "Log", "Ncoef", "Ntcoef", "Zcoef", "Lterm", "Lmon", "Flcoef", "Var", "Char", "Fterms"]
TWO = ["GCD", "Bin", "Divides", "Equal", "Equals", "Remquot", "Monless", "Coef", "Nmcoef", "Deriv", "Powermod"]
SWITCHES = ["N", "E", "t", "U", "_l", "H", "V", "l", "e", "n", "_s", "_t", "W", "|", "Z", "m", "a", "d", "D", "u", "#", "_d",
            "_k", "_r", "L", "K", "X", "A", "B", "I", "O", "b", "c", "&", "C", "h", "j", "G", "_G", "T", "Y", "_Q", "longer"]


class Grammar:
    def __init__(self, rng):
        self.rng = rng

    def number(self):
        kind = self.rng.randrange(12)
        if kind < 6:
            return str(self.rng.randrange(12))
        if kind < 8:
            return str(self.rng.choice([2**28, 2**28 - 1, 2**31, 2**56, 10**8, 10**16]) + self.rng.randrange(-2, 3))
        if kind < 9:
            return str(self.rng.randrange(10 ** self.rng.randrange(1, 60)))
        if kind < 10:
            return f"{self.rng.randrange(30)}.{self.rng.randrange(1000)}"
        return "0" * self.rng.randrange(1, 20) + str(self.rng.randrange(100))

    def factor(self, depth):
        kind = self.rng.randrange(26)
        e = self.expression
        if depth <= 0 or kind < 6:
            return self.rng.choice([self.number, lambda: self.rng.choice(NAMES)])()
        if kind < 12:
            return f"({e(depth - 1)})"
        if kind < 15:
            return f"{self.factor(depth - 1)}^{self.rng.choice(['2', '3', '0', '1', '-1', '-2', '5', '(1+1)', '_7', '300000000'])}"
        if kind < 16:
            return f"-{self.factor(depth - 1)}"
        if kind < 17:
            return f"|{e(depth - 1)}|"
        if kind < 18:
            return self.rng.choice(["$", "_", "*", "<", "!", "'", ".", "%", "@", "?", "#"]) + self.factor(depth - 1)
        if kind < 20:
            return f"{self.rng.choice(BUILTINS)}({e(depth - 1)})"
        if kind < 21:
            return f"{self.rng.choice(TWO)}({e(depth - 1)}, {e(depth - 1)})"
        if kind < 22:
            return self.factor(depth - 1) + '"'
        if kind < 23:
            return str(self.rng.randrange(60)) + "!"
        if kind < 24:
            return f"{self.factor(depth - 1)}#({e(depth - 1)})"
        if kind < 25:
            return f"'{self.rng.choice('aZ ;0')}'"
        return self.rng.choice(["Modulus", "Modmode", "Numvars", "<", "True", "Rand", "Randint", "Nofunction(1)", "nope[1]"])

    def expression(self, depth):
        parts = [self.factor(depth)]
        for _ in range(self.rng.choice([0, 0, 1, 1, 2, 3])):
            parts.append(self.rng.choice(["+", "-", "*", "/", " ", "//", "\\", "|", " + ", "*"]))
            parts.append(self.factor(depth))
        return "".join(parts)

    def statement(self):
        kind = self.rng.randrange(40)
        e = self.expression
        depth = self.rng.randrange(1, 5)
        if kind < 14:
            return e(depth)
        if kind < 24:
            return f"{self.rng.choice(NAMES)} := {e(depth)}"
        if kind < 26:
            return f"{self.rng.choice(NAMES)}:{self.rng.choice('+-')}{self.rng.choice(['', '3', '(2)', 'a'])}"
        if kind < 29:
            sign = self.rng.choice(["=", ">"])
            return f"&(J {sign} {self.rng.choice(VARIABLES)})"
        if kind < 30:
            return f"&(J = -{self.rng.choice(VARIABLES)}{self.rng.choice(['', ' = 2', ' = 0', ' = 1/2'])})"
        if kind < 33:
            return f"&(p = {self.rng.choice(MODULI + ['_i', '_i', '_i', '1', '0', '-3', '2147483647'])})"
        if kind < 35:
            return f"&({self.rng.choice(SWITCHES)} = {self.rng.choice(['0', '1', '0', '1', '2', '5', '80', '400', '-1', 'a'])})"
        if kind < 36:
            return f"&{self.rng.choice(SWITCHES)}"
        if kind < 37:
            return self.rng.choice([f"&_m({e(2)})", f"@{self.rng.choice(NAMES + ['<F>', 'F', 'G'])}", f"&(p = 7: {self.rng.choice(NAMES)})"])
        if kind < 38:
            return self.control(3)
        if kind < 39:
            return f"!({e(2)}, 'text', {e(1)}:{self.rng.randrange(12)})"
        return f"&_n {e(2)}"

    def body(self, depth):
        return "; ".join(self.control(depth - 1) if depth > 0 and self.rng.random() < 0.2 else
                         f"{self.rng.choice(NAMES)} := {self.expression(1)}" if self.rng.random() < 0.6 else self.expression(1)
                         for _ in range(self.rng.randrange(1, 4)))

    def control(self, depth):
        e, kind = self.expression, self.rng.randrange(7)
        sign = self.rng.choice(["<", ">", "=", "<=", ">=", "<>"])
        if kind < 2:
            rest = self.rng.choice(["", f" else {self.body(depth)}"])
            return f"if {e(1)} {sign} {e(1)} then {self.body(depth)}{rest} fi"
        if kind < 4:
            return f"for {self.rng.choice(NAMES)} = {self.rng.randrange(3)} to {self.rng.randrange(6)} do {self.body(depth)} od"
        if kind < 5:
            return f"{self.rng.choice(['Sigma', 'Prod'])}<{self.rng.choice(NAMES)} = 1, {self.rng.randrange(6)}>[{e(1)}]"
        if kind < 6:
            name = self.rng.choice("FG")
            first = self.rng.choice(["", "", "Integer; ", "Compile; ", "Integer; Compile; ", f"{self.body(0)}; Compile(a, b); ",
                                     f"Compile*({self.rng.choice(NAMES)}); ", f"{self.body(0)}; Integer; "])
            inner = first + self.body(depth)
            return f"Func {name}({self.rng.choice(['a', 'a, b', '^a', 'a; c', ''])}) = {inner} ."
        return f"{self.rng.choice('FG')}({e(1)})"

    def session(self):
        lines = []
        for _ in range(self.rng.randrange(5, 60)):
            line = self.statement()
            if self.rng.random() < 0.12:
                line = self.spoil(line)
            lines.append(line + self.rng.choice(["", "", "", "", ";", ":", " ;", "`", "@", " {c}"]))
        return "\n".join(lines).encode("latin-1", "replace")

    def spoil(self, line):
        line = list(line)
        for _ in range(self.rng.randrange(1, 4)):
            place = self.rng.randrange(len(line) + 1)
            what = self.rng.randrange(3)
            if what == 0 and line:
                del line[min(place, len(line) - 1)]
            elif what == 1:
                line.insert(place, self.rng.choice("()[]{}:;=+-*/^!#\"'|<>,.&_@?%$\\`~ \t\r\x00\xa5\xc2abF1") )
            elif line:
                other = self.rng.randrange(len(line))
                line[other], line[min(place, len(line) - 1)] = line[min(place, len(line) - 1)], line[other]
        return "".join(line)

    def noise(self):
        return bytes(self.rng.randrange(256) if self.rng.random() < 0.3 else self.rng.choice(b"x1+*()[];:=&^/ \n")
                     for _ in range(self.rng.randrange(1, 400)))


def attempt(binary, text, directory):
    """('' or the reason of failure, CPU seconds)"""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        process = subprocess.Popen([binary], stdin=subprocess.PIPE, cwd=directory, stdout=out, stderr=err)
        stopped = False
        try:
            process.communicate(text + PROBE, timeout=LIMIT)
        except subprocess.TimeoutExpired:
            # An honest long computation, such as the factorial of a large number, must still be stoppable.
            stopped = True
            process.send_signal(signal.SIGINT)
            try:
                process.wait(timeout=LIMIT)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        out.seek(0)
        err.seek(0)
        stdout, stderr = out.read(), err.read()
    reason = ""
    if process.returncode not in (0, 1):
        reason = f"status {process.returncode}" + (" after an interrupt" if stopped else "")
    if TROUBLE.search(stderr) or b"*** Tolvex error" in stdout:
        reason = "report"
    # a literal or comment that is still open takes the probe in
    swallowed = stdout.count(b"inside a literal.") + stdout.count(b"inside a comment.") > PROBE.count(b"\n") // 2
    silent = stopped or swallowed or re.search(rb"&\s*[qQ]|N|M", text) is not None
    if not reason and not silent and ANSWER not in re.sub(rb"[\s`]", b"", stdout):
        reason = "no answer to the probe"
    detail = (stderr[-3000:] + b"\n" + stdout[-500:]).decode("latin-1")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return reason, detail, spent


def shorten(binary, text, directory, reason):
    lines, step = text.split(b"\n"), 0
    size = max(1, len(lines) // 2)
    while size >= 1 and step < 80:
        k = 0
        while k < len(lines) and step < 80:
            shorter = lines[:k] + lines[k + size:]
            step += 1
            if shorter and attempt(binary, b"\n".join(shorter), directory)[0] == reason:
                lines = shorter
            else:
                k += size
        size //= 2
    return b"\n".join(lines)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--seed", type=int, default=int.from_bytes(os.urandom(4), "big"))
    parser.add_argument("--keep", default=tempfile.gettempdir())
    parser.add_argument("--replay", nargs="+")
    args = parser.parse_args()
    binary = os.path.abspath(args.tolvex)
    os.environ.setdefault("ASAN_OPTIONS", "detect_leaks=0")
    failed = passed = 0
    with tempfile.TemporaryDirectory() as directory:
        with open(os.path.join(directory, "tolstart.txt"), "w", encoding="ascii") as handle:
            handle.write("500\n")
        if args.replay:
            for path in args.replay:
                with open(path, "rb") as handle:
                    reason, detail, _ = attempt(binary, handle.read(), directory)
                passed, failed = passed + (not reason), failed + bool(reason)
                if reason:
                    print(f"FAILED {path}: {reason}\n{detail}")
        else:
            print(f"seed {args.seed}", flush=True)
            spent, start, count = 0.0, time.time(), 0
            while spent < args.seconds:
                rng = random.Random(args.seed * 1000003 + count)
                grammar = Grammar(rng)
                text = grammar.noise() if rng.random() < 0.1 else grammar.session()
                reason, detail, cost = attempt(binary, text, directory)
                spent, count = spent + cost, count + 1
                if reason:
                    text = shorten(binary, text, directory, reason)
                    path = os.path.join(args.keep, f"find-{args.seed}-{count}.in")
                    with open(path, "wb") as handle:
                        handle.write(text)
                    failed += 1
                    print(f"FAILED {path}: {reason}\n{detail}\n{text.decode('latin-1')}\n", flush=True)
                else:
                    passed += 1
            print(f"{count} sessions, {spent:.0f} s of CPU time in {time.time() - start:.0f} s")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
