#!/usr/bin/env python3
"""Interrupts long computations at random moments and resumes each of them.

usage: interrupt_storm.py --tolvex PATH [--count N] [--seed N] [--limit MS] [--only REGEX] [--no-limit] [--panics N] [--verbose]

Every computation is run once without interrupts. Then it is run again and again, over a pipe and over a
pseudo-terminal, with interrupts in the middle: each must open a command level within LIMIT milliseconds of the
program's own processor time; at the level something is computed, the operands may be replaced, a further interrupt
may come; `&_p` resumes. What the program writes, without the levels, must be the same byte for byte. At the end
levels are opened up to the ninth and left by a panic stop, and the variables must still be there.

A report of a checked build on standard error fails the run.
"""
import argparse
import fcntl
import os
import pty
import random
import re
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time

TROUBLE = re.compile(rb"leak audit|CHECK failed|Sanitizer|runtime error:|Tolvex error")
OPENED = b"*** New command level.\n"
RESUMED = b"*** Resuming earlier command level\n"
PATIENCE = 60


class Job:
    """Statements that prepare, and one long statement; it must not change variables."""

    def __init__(self, name, setup, statement, operands=()):
        self.name, self.setup, self.statement, self.operands = name, setup, statement, operands


POLYNOMIALS = ["&(J = x, y, z, t)", "f := (1 + x + y + z + t)^14:", "g := (1 + 2*x - 3*y + z - t)^14:",
               "h := (x - y + 5*z + 2*t - 7)^6:"]
BIG = "".join(str((7 * i * i + 3 * i + 1) % 10) for i in range(1500000))
LONG_SUM = " + ".join(f"{3 * i + 1}*x^{i % 60}*y^{i * 7 % 53}*z^{i * 5 % 31}" for i in range(6000))

JOBS = [
    Job("products of integers", ["a := 3^700000:", "b := 7^500000:"], "a*b*a - (b + 1)*a|1000000007", "ab"),
    Job("large product of integers", ["a := 3^30000000:", "b := a + 12345:"], "(a*b)|1000000007", "ab"),
    Job("quotient of integers", ["a := 3^3000000:", "b := 7^600000 + 1:"], "(a\\b)|1000000007 + a|b|1000000009", "ab"),
    Job("gcd of integers", ["a := 3^500000*(2^900000 - 1):", "b := 3^400000*(5^400000 + 2):"],
        "GCD(a, b)|1000000007", "ab"),
    Job("factorials", [], "300000!|1000000007"),
    Job("display of an integer", ["a := 3^4000000:"], "a", "a"),
    Job("output of an integer", ["a := 7^1500000:"], "!a", "a"),
    Job("reading of an integer", [], BIG + " + 1"),
    Job("primes", [], "Isprime(2147483629*2147483587) + Isprime(2^31 - 1)"),
    Job("root", ["a := (3^900000 + 1)^2:"], "Sqrt(a)|1000000007", "a"),
    Job("product of polynomials", POLYNOMIALS, "Terms(f*g*h - g*f) + Lcoef(f*g)", "fgh"),
    Job("power of a polynomial", POLYNOMIALS, "Terms((1 + x + y + z - t)^16) + Terms((x^2 - 3*y + 1)^90)", ""),
    Job("quotient of polynomials", POLYNOMIALS + ["p := f*g*h:"], "Terms(p/f) + Terms(p/(g*h))", "pfgh"),
    Job("division of polynomials", POLYNOMIALS + ["p := f*g:"], "Divides(h, p) + Terms(p|(h + 1)) + Terms(p\\h)", "ph"),
    Job("gcd of polynomials", POLYNOMIALS + ["p := f*h:", "q := g*h:"], "GCD(p, q) + GCD(p + 1, q*q)", "pqfg"),
    Job("rational functions", POLYNOMIALS, "Terms(Numer(1/h + x/(h + 1) + y/(h*(x - 1)))) + (h/(x - 1))*((x^2 - 1)/h)",
        "fgh"),
    Job("display of a polynomial", POLYNOMIALS + ["&(_s = 0)"], "f*g", "fg"),
    Job("output of a polynomial", POLYNOMIALS + ["&(_s = 0)", "p := f*(g + 1):"], "!p", "p"),
    Job("monomials", POLYNOMIALS + ["&(_s = 0)", "&(_l = 1)"], "!(f, g, f/h)", "fgh"),
    Job("reading of a polynomial", POLYNOMIALS, f"Terms(({LONG_SUM})*h)"),
    Job("substitution", POLYNOMIALS, "Terms(f#(x = y^2 + z, t = 3)) + f#(1, 2, 3, 4)", "f"),
    Job("one variable", ["&(J = x)", "p := (1 + x)^900:", "q := (3 - x + x^2)^500:"],
        "Deg(p*q*p) + Lcoef(q*q) + Deg(GCD(p*(x - 7), q*(x - 7)))", "pq"),
    Job("one variable modulo a prime", ["&(J = x)", "&(p = 32003)", "p := (1 + x)^9000*(x^2 + 3)^4000:",
                                        "q := (3 - x + x^2)^9000*(x^5 + x + 1)^1000:"],
        "Deg(p*q) + Deg(GCD(p*(x - 7)^5, q*(x - 7)^3)) + Deg(p|q)", "pq"),
    Job("modulo a large prime", ["&(J = x)", "&(p = 2147483629)", "p := (1 + 5*x)^9000:", "q := (3 - x)^7000 + x:"],
        "Deg(p*q) + Deg(GCD(p*(x - 7), q*(x - 7))) + Lcoef(q)", "pq"),
    Job("polynomials modulo a prime", ["&(p = 32003)"] + POLYNOMIALS + ["p := f*h:", "q := g*h:"],
        "Terms(f*g) + Terms(p/h) + GCD(p, q)", "pqfgh"),
    Job("polynomials modulo a small prime", ["&(p = 3)"] + POLYNOMIALS + ["p := (f + x)*h:", "q := (g + y)*h:"],
        "Terms(p*q) + GCD(p, q)", "pqfgh"),
    Job("polynomials modulo a composite", ["&(p = 30030)"] + POLYNOMIALS, "Terms(f*g) + Terms(g*h*h)", "fgh"),
    Job("polynomials over a table field", ["&(p = 65536)"] + POLYNOMIALS + ["p := (f + x)*h:", "q := (g + y)*h:"],
        "Terms(p*q) + Terms(GCD(p, q))", "pqfgh"),
    Job("factors modulo a prime", ["&(p = 2147483629)", "&(J = x)", "f := (x^700 + x^7 + x + 1)*(x^300 + x + 2)^2:"],
        "Factor(f, [s]) + Irred(x^600 + 5*x + 7)", "f"),
    Job("factors modulo 2", ["&(p = 2)", "&(J = x)", "f := (x^6000 + x^7 + x + 1)*(x^2047 + 1):"],
        "Factor(f, [s]) + Irred(x^5000 + x^7 + 1)", "f"),
    Job("factors over a table field", ["&(p = 65536)", "&(J = x)", "f := x^500 + 263*x^7 + x + 1:"], "Factor(f, [s]) + Irred(f)",
        "f"),
    Job("factors over a tower", ["&(p = 3)", "&(J = t)", "&(P = t^5 - t + 1, 1)", "&(J = x)", "f := x^200 + t*x^7 + x + t^2:"],
        "Factor(f, [s]) + Irred(f)", "f"),
    Job("loops", ["Func F(n) = s := 0; for i = 1 to n do for j = 1 to 20 do s := s + i^3*j od od; s.",
                  "Func W(n) = k := 0; while k < n do k :+ 1; if k|7 = 3 then k := k + 2 fi od; k."],
        "F(20000) + W(200000)"),
    Job("functions", ["Func F(n) = if n < 2 then n else F(n - 1) + F(n - 2) fi.",
                      "Func G(n, ^r) = r := r + n^50; if n > 0 then G(n - 1, r) else r fi.", "w := 0:"],
        "F(21) + G(400, w)|1000003"),
    Job("loop of products of polynomials", POLYNOMIALS + ["Func F(n) = s := 0; for i = 1 to n do s := s + h*(h + i) od; s."],
        "Terms(F(60))"),
    Job("loop that is typed", [], "for i = 1 to 4000 do !(i^150, i^90/7) od"),
    Job("matrices", ["[m] := [<i=1,80><j=1,80> i*j - 7^i]:"], "Sumall([m]*[m] + Trans[m])|1000003 + Trace([m]*[m])|997"),
    Job("sparse matrices", ["Array s[300,300] Sparse:", "[s] := [<i=1,300><j=1,10> i*j|11 - 5]:"],
        "Sumall([s]*Trans[s])"),
    Job("matrices of polynomials", ["&(J = x, y)", "[m] := [<i=1,12><j=1,12> (x + i)^3*(y - j)^2]:"],
        "Terms(Sumall([m]^3))"),
    Job("characteristic polynomials", ["&(J = x, y)", "[m] := [<i=1,260><j=1,260> (i^3*j*j + j^5 + i)|101 - 50]:",
                                       "[n] := [<i=1,14><j=1,14> (i + x)^2 + j*x]:"],
        "Sumall[[Coef(Chpoly([m]), y, 160)]]|1000003 + Terms(Chpoly([n]))"),
    Job("minimal polynomials", ["&(J = x)", "[m] := [<i=1,200><j=1,200> ((i*i*j + j^3*i + i)|97)|7 - 3]:"],
        "Deg(Minpoly([m]))"),
    Job("normal forms", ["[m] := [<i=1,90><j=1,90> (i*i*j + j^3*i + i^5)|101 - 50]:",
                         "Func S = [a] := [m]; k := Smith([a], [p], [q]); [b] := [m]; k + Hermite([b], , [u]) + "
                         "Iszero([p]*[m]*[q] - [a])."], "S"),
    Job("path search", ["[g] := [<i=1,16><j=1,16> 0]:", "for i = 1 to 15 do g[16,i] := 1; g[i,16] := 1 od",
                        "for k = 0 to 2 do for i = 1 to 5 do for j = 1 to 5 do g[5*k + i, 5*k + j] := 1 od od od"],
        "Hamilton([g], 100000)"),
    Job("reductions of integers", ["[m] := [<i=1,40><j=1,40> (i^3*j + 7*i*j^2 + 5*i)|23 - 11]:",
                                   "Func F = [a] := [m]; r := Rowreduce([a], [p], [q]); [b] := [m]; r := 100*r + "
                                   "Redrowech([b]); [c] := [m]; r := 100*r + FFLU([c], [p], [l], [u]); r + Sumall[c]|997."],
        "F"),
    Job("reductions of residues", ["&(p = 10007)", "[m] := [<i=1,500><j=1,500> i^3*j + 7*i*j^2 + i*j + 1]:",
                                   "Func F = [a] := [m]; r := Rowreduce([a], [p]); [b] := [m]; r + Normalize([b], [p], [q], [u])."],
        "F"),
    Job("reductions of polynomials", ["&(J = x, y)", "[m] := [<i=1,7><j=1,7> (i*x + j*y)^2 + (i*j^3)|7*x]:",
                                      "Func F = [a] := [m]; r := FFLUC([a], [p], [l]); [b] := [m]; r + Redrowech([b], [p])."],
        "F"),
    Job("sparse determinants", ["Array s[400,400] Sparse:", "Array t[30,30] Sparse:", "&(J = x, y)",
                                "for i = 1 to 400 do s[i,i] := 3; s[i,(7*i)|400 + 1] := i|9 + 1; s[i,(i*i)|400 + 1] := 5 od:",
                                "for i = 1 to 30 do t[i,i] := x + i; t[i,(7*i)|30 + 1] := y*i; t[i,(i*i)|30 + 1] := x*y - i od:"],
        "Det[s]|1000003 + Terms(Det[t])"),
    Job("expansion by minors", ["&(J = x)", "&(D = 12)", "Array s[12,12] Sparse:",
                                "for i = 1 to 12 do for j = 1 to 12 do s[i,j] := (i*j)|7*x + (i*i + j)|5 od od:"],
        "Terms(Det[s])"),
    Job("display of a matrix", ["[m] := [<i=1,300><j=1,300> i^7*j]:"], "!([m])"),
    Job("assignments of matrices", ["[m] := [<i=1,300><j=1,300> i*j]:", "Array s[300,300] Sparse:", "[t] := [m]:",
         "Func A = [t] := [m]; [t] := 7; [s] := [m]; [t] := [s] - [m]; [t] := 5^200; [s] := [t]; Sumall[s]."], "A|1000003"),
    Job("a long definition", [], "Func F(x) = " + "; ".join(f"x := x*{i} + 1" for i in range(30000)) + "."),
    Job("computed matrices", [], "Sumall[<i=1,300><j=1,300> i^5*j - i]"),
    Job("Laurent polynomials", ["&(l = 1)"] + POLYNOMIALS + ["p := f/x^3 + 1/y:"], "Terms(p*g) + Terms((p*g)/g)", "pg"),
]

AT_LEVELS = ["2 + 3", "7^4000|1000003", "300!|1000003", "x1 := 3^20000", "!(3^3000)", "3^50000*5^50000|997", "nope + 1",
             "1/0", "2^3000\\3^100", "w2:+5"]
WITH_VARIABLES = ["(x + y)^12*(x - z)^9", "Terms((1 + x + y + z + t)^6*(x - y + t)^6)", "GCD(x^2 - y^2, (x - y)^3)",
                  "(x + y)^8/(x^2 - y^2)", "w1 := (x + 2*t)^30"]


class Session:
    """The program over a pipe or a pseudo-terminal."""

    def __init__(self, binary, terminal, directory):
        self.errors = tempfile.TemporaryFile()
        self.master = None
        if terminal:
            self.master, slave = pty.openpty()
            mode = termios.tcgetattr(slave)
            mode[1] &= ~termios.OPOST
            mode[3] &= ~(termios.ECHO | termios.ICANON)  # lines longer than the line editor takes
            termios.tcsetattr(slave, termios.TCSANOW, mode)
            self.process = subprocess.Popen([binary], stdin=slave, stdout=slave, stderr=self.errors, cwd=directory,
                                            start_new_session=True)
            self.reader = self.writer = self.master
            self.far_end = slave
        else:
            self.process = subprocess.Popen([binary], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self.errors,
                                            cwd=directory, start_new_session=True)
            self.reader, self.writer = self.process.stdout.fileno(), self.process.stdin.fileno()
            self.far_end = os.open(f"/proc/{self.process.pid}/fd/0", os.O_RDONLY | os.O_NONBLOCK)
        os.set_blocking(self.reader, False)
        os.set_blocking(self.writer, False)
        self.out = bytearray()
        self.level = 1

    def pump(self, seconds):
        """Takes what the program has written; waits for it at most so long."""
        ready, _, _ = select.select([self.reader], [], [], seconds)
        if not ready:
            return False
        try:
            data = os.read(self.reader, 1 << 16)
        except BlockingIOError:
            return False
        except OSError:
            data = b""
        if not data:
            raise Broken("the program ended")
        self.out += data
        return True

    def send(self, text):
        data = memoryview(text.encode() + b"\n")
        while data:
            try:
                data = data[os.write(self.writer, data):]
            except BlockingIOError:
                self.pump(0.01)
        # An interrupt that comes before the program has taken the line finds it at its prompt. What is written to a
        # pseudo-terminal takes a moment to get to its other end.
        if self.master is not None:
            time.sleep(0.01)
        self.wait(lambda: fcntl.ioctl(self.far_end, termios.FIONREAD, b"\0" * 4) == b"\0" * 4, pause=0.0005)

    def at_prompt(self, start):
        """The output from `start` on ends with the prompt of the present level."""
        mark = b"%d>" % self.level if self.level > 1 else b">"
        tail = bytes(self.out[max(start, len(self.out) - 4):])
        # Names of running functions stand in front of the prompt when no statement of them was under way.
        return tail == mark or tail.endswith(b"\n" + mark) or (self.level > 1 and tail.endswith(b" " + mark))

    def wait(self, what, seconds=PATIENCE, pause=0.5):
        end = time.monotonic() + seconds
        while not what():
            if time.monotonic() > end:
                raise Broken(f"no answer at level {self.level} after {bytes(self.out[-300:])!r}")
            self.pump(pause)

    def cpu(self):
        """Nanoseconds on a processor."""
        with open(f"/proc/{self.process.pid}/schedstat") as f:
            return int(f.read().split()[0])

    def say(self, text):
        """Sends a line and waits for the prompt."""
        start = len(self.out)
        self.send(text)
        self.wait(lambda: self.at_prompt(start) and len(self.out) > start)
        return bytes(self.out[start:])

    def interrupt(self):
        """Opens a level; the processor time it took in milliseconds."""
        start = len(self.out)
        before = self.cpu()
        self.process.send_signal(signal.SIGINT)
        self.level += 1
        end = time.monotonic() + PATIENCE
        while OPENED not in self.out[max(0, start - len(OPENED)):] or not self.at_prompt(start):
            if time.monotonic() > end:
                raise Broken(f"the interrupt opened no level {self.level}: {bytes(self.out[start - 100:])[-400:]!r}")
            self.pump(0.5)
        return (self.cpu() - before) / 1e6

    def resume(self):
        start = len(self.out)
        self.send("&_p")
        self.level -= 1
        self.wait(lambda: RESUMED in self.out[start:])

    def close(self):
        try:
            self.process.kill()
        except ProcessLookupError:
            pass
        self.process.wait()
        for stream in (self.process.stdin, self.process.stdout):
            if stream is not None:
                stream.close()
        os.close(self.far_end)
        if self.master is not None:
            os.close(self.master)
        self.errors.seek(0)
        text = self.errors.read()
        self.errors.close()
        return text


class Broken(Exception):
    pass


def end(session):
    """the session has ended without a word of the checked build, or Broken is raised"""
    text = session.close()
    if TROUBLE.search(text) or TROUBLE.search(bytes(session.out)):
        raise Broken("the checked build reports:\n" + text.decode("latin-1")[:4000])


def without_levels(text):
    """The output with what stands between the opening and the leaving of a level taken out."""
    kept, depth, at = bytearray(), 0, 0
    for found in re.finditer(rb"\n?\*\*\* New command level\.\n|\*\*\* Resuming earlier command level\n", text):
        if found.group().endswith(OPENED):
            if depth == 0:
                kept += text[at:found.start()]
            depth += 1
        else:
            depth -= 1
            if depth == 0:
                at = found.end()
                if kept.endswith((b"\n>", b" := ")) and text[at:at + 1] == b">":
                    at += 1  # an interrupt of the prompt: it is written again
    if depth == 0:
        kept += text[at:]
    return bytes(kept)


class Storm:
    def __init__(self, args):
        self.args, self.rng = args, random.Random(args.seed)
        self.worst, self.taken, self.slow, self.times = 0.0, 0, [], []
        self.directory = tempfile.mkdtemp(prefix="storm")
        with open(os.path.join(self.directory, "tolstart.txt"), "w") as f:
            f.write("500\n")

    def start(self, job, terminal):
        session = Session(self.args.tolvex, terminal, self.directory)
        session.wait(lambda: session.at_prompt(0))
        for line in job.setup:
            session.say(line)
        return session

    def note(self, job, ms):
        self.taken += 1
        self.times.append(ms)
        if ms > self.worst:
            self.worst = ms
        if ms > self.args.limit:
            self.slow.append((ms, job.name))

    def visit(self, session, job, depth=0):
        """Looks around at a level, and leaves it."""
        for _ in range(self.rng.randrange(3)):
            lines = AT_LEVELS + (WITH_VARIABLES if "&(J = x, y, z, t)" in job.setup else [])
            if "&(p = 30030)" in job.setup:  # errors 85 there would give the computation up
                lines = [line for line in lines if "GCD" not in line and "/(x^2" not in line]
            session.say(self.rng.choice(lines))
        if job.operands and self.rng.random() < 0.4:
            name = self.rng.choice(job.operands)
            session.say(f"saved{name} := {name}:")
            session.say(f"{name} := {self.rng.randrange(99)}:" if self.rng.random() < 0.7 else f"@{name}")
            self.replaced.add(name)
        if depth < 3 and self.rng.random() < 0.25:
            self.note(job, session.interrupt())  # at the prompt of a level, or in the statement below
            self.visit(session, job, depth + 1)
        if depth < 3 and self.rng.random() < 0.3:
            session.send("3^300000*7^300000|1000003")
            time.sleep(self.rng.random() * 0.02)
            self.note(job, session.interrupt())
            session.resume()
            session.wait(lambda: session.at_prompt(0))
        session.resume()

    def reference(self, job, terminal):
        session = self.start(job, terminal)
        start = time.monotonic()
        text = session.say(job.statement)
        seconds = time.monotonic() - start
        end(session)
        if b"***" in text:
            raise Broken(f"{job.name}: {text[:300]!r}")
        return text, seconds

    def one_run(self, job, terminal, expected, seconds, count):
        """Interrupts one run of the job up to `count` times; how many it took."""
        session = self.start(job, terminal)
        self.replaced = set()
        start, done = len(session.out), 0
        session.send(job.statement)
        # operands are replaced only while the statement runs on what it read: the last reading is early
        while done < count:
            pause = time.monotonic() + self.rng.random() * seconds * 1.3 / (count + 1)
            while time.monotonic() < pause:
                session.pump(0.002)
            if session.at_prompt(start) and without_levels(bytes(session.out[start:])) == expected:
                break
            done += 1
            self.note(job, session.interrupt())
            self.visit(session, self.steady(job))
        session.wait(lambda: session.at_prompt(start) and without_levels(bytes(session.out[start:])).endswith(b"\n>"))
        got = without_levels(bytes(session.out[start:]))
        end(session)
        if got != expected:
            at = next((i for i, (a, b) in enumerate(zip(got, expected)) if a != b), min(len(got), len(expected)))
            raise Broken(f"{job.name}: differs at byte {at}: {got[max(0, at - 60):at + 60]!r} instead of "
                         f"{expected[max(0, at - 60):at + 60]!r}")
        return done

    def steady(self, job):
        """Operands are replaced only in statements that read each of them once."""
        single = [n for n in job.operands if len(re.findall(rf"(?<![A-Za-z0-9_]){n}(?![A-Za-z0-9_])", job.statement)) == 1]
        return Job(job.name, job.setup, job.statement, single if len(single) == len(job.operands) == 1 else ())

    def computations(self):
        jobs = [j for j in JOBS if re.search(self.args.only, j.name)]
        if not jobs:
            return
        share = max(1, self.args.count // (2 * len(jobs)))
        for terminal in (False, True):
            for job in jobs:
                expected, seconds = self.reference(job, terminal)
                done = 0
                before = self.worst
                self.worst = 0
                begin = time.monotonic()
                for _ in range(share):
                    done += self.one_run(job, terminal, expected, seconds, min(8, share - done))
                    if done >= share:
                        break
                if self.args.verbose:
                    print(f"{'terminal' if terminal else 'pipe':9}{job.name:36}{seconds:7.2f} s {done:5} interrupts, "
                          f"slowest {self.worst:7.1f} ms, {time.monotonic() - begin:6.1f} s", flush=True)
                self.worst = max(before, self.worst)

    def panics(self):
        """Up to the ninth level and beyond, again and again; nothing is lost."""
        job = Job("panic stops", POLYNOMIALS + ["&(J > w)", "a := 3^70000:"], "")
        for terminal in (False, True):
            session = self.start(job, terminal)
            for k in range(self.args.panics // 2):
                while session.level < 9:
                    if self.rng.random() < 0.5:
                        session.send("Terms(f*g*h*(w + 1))")
                        time.sleep(self.rng.random() * 0.01)
                    self.note(job, session.interrupt())
                if k % 2 == 0:
                    session.level = 1
                    text = session.say("&@")
                else:
                    start = len(session.out)
                    session.process.send_signal(signal.SIGINT)
                    session.level = 1
                    session.wait(lambda: session.out[start:].endswith(b"\n\n>"))
                    text = bytes(session.out[start:])
                    if b"*** Highest legal command level is 9.\n" not in text:
                        raise Broken(f"the tenth level: {text!r}")
                if b"*** Panic stop.\n" not in text:
                    raise Broken(f"panic stop: {text!r}")
            for line, answer in (("Terms(f) + Terms(g) + Terms(h)", b" 6330\n"), ("a|1000003", None), ("2 + 3", b" 5\n")):
                text = session.say(line)
                if answer is not None and answer not in text:
                    raise Broken(f"after the panic stops: {line} gives {text!r}")
            end(session)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--limit", type=float, default=50)
    parser.add_argument("--only", default="")
    parser.add_argument("--panics", type=int, default=10)
    parser.add_argument("--verbose", action="store_true")
    args = parser.parse_args()
    args.tolvex = os.path.abspath(args.tolvex)
    storm = Storm(args)
    try:
        storm.computations()
        if not args.only or "panic" in args.only:
            storm.panics()
    except Broken as what:
        print(f"seed {args.seed}: {what}")
        return 1
    times = sorted(storm.times)
    shares = ", ".join(f"{p} % {times[min(len(times) - 1, len(times) * p // 100)]:.1f}" for p in (50, 90, 99) if times)
    print(f"{storm.taken} interrupts; milliseconds to the level: {shares}, slowest {storm.worst:.1f}")
    for ms, name in sorted(storm.slow, reverse=True)[:20]:
        print(f"  {ms:8.1f} ms: {name}")
    return 1 if storm.slow else 0


if __name__ == "__main__":
    sys.exit(main())
