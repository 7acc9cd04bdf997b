#!/usr/bin/env python3
"""Interrupts at the places where a session waits or stands between two rings, each resumed.

usage: interrupt_places.py --tolvex PATH [--only REGEX] [--verbose]

Scripts of several lines (definitions, control statements, comments, texts, continued lines, questions) are typed with an
interrupt in front of each line in turn, over a pipe and a pseudo-terminal. At the level other definitions are typed. What
the program writes without the level must be the same byte for byte as without the interrupt. Then: the time line of
an interrupted statement, statements with modular arithmetic suspended, an output into a field that is given up, functions whose
arrays change meanwhile, computations of which there is one at a time, and computations that work modulo a prime inside.
"""
import argparse
import os
import re
import sys
import tempfile
import time

from interrupt_storm import Broken, Session, end, without_levels

SCRIPTS = {
    "function": ["Func F(x) =", "y := x + 1;", "", "y*2.", "F(4)"],
    "function with comments": ["Func F(x) = {first", "second", "third} x + 1;", "{fourth} x + 2.", "F(4)", "F(5)"],
    "empty lines, not too many": ["Func F(x) ="] + [""] * 12 + ["x + 1;"] + [""] * 12 + ["x + 2.", "F(1)"],
    "cancelled by empty lines": ["Func F(x) =", "x + 1;"] + [""] * 15 + ["2+3"],
    "loop": ["for i = 1 to 3 do", "!i;", "!(i*i)", "od", "5"],
    "choice closed by empty lines": ["if 1 = 1 then", "7"] + [""] * 12 + ["8"],
    "nested": ["Func G(x) =", "if x > 1 then", "for i = 1 to x do", "s := s + i", "od", "else", "s := 0", "fi;", "s.",
               "s := 0", "G(4)", "G(1)"],
    "continued lines": ["2 + `", "3 + `", "4", "5"],
    "text over two lines": ["!('ab", "cd', 5)", "6"],
    "questions": ["&D", "10", "&u", "2", "3"],
    "answer": ["?a", "17", "a"],
}
DELICATE = (b"\n*** You have interrupted at a delicate time. Tolvex had switched\n"
            b"    internally to arithmetic mod p. It has switched back for your \n"
            b"    convenience during this interrupt. Do not do any significant \n"
            b"    polynomial computations.  To abort, enter &@ followed by  &(p=_i:) .\n\n")
RUNNING = b"An expansion is already running; it cannot be entered again."
SORT_RUNNING = b"A sparse sort is already running."
VISITS = [
    ["2+3"],
    ["Func H(x) =", "", "x^2.", "H(5)", "for k = 1 to 2 do", "!k", "od", "&(t = 0)", "nope + 1"],
    ["if 1 = 2 then", "3", "fi", "!('de", "f')", "4 + `", "5"],
]


class Places:
    def __init__(self, args):
        self.args = args
        self.directory = tempfile.mkdtemp(prefix="places")
        with open(os.path.join(self.directory, "tolstart.txt"), "w") as f:
            f.write("500\n")

    def start(self, terminal, setup=()):
        session = Session(self.args.tolvex, terminal, self.directory)
        session.wait(lambda: session.at_prompt(0))
        for line in setup:
            session.say(line)
        return session

    def visit(self, session, lines):
        session.interrupt()
        for line in lines:
            session.send(line)
        session.say("271828")  # all of it has been done
        session.resume()

    def typed(self, terminal, lines, at=None, visit=()):
        session = self.start(terminal)
        start = len(session.out) - 2  # from the prompt on
        for i, line in enumerate(lines):
            if i == at:
                self.visit(session, visit)
            session.send(line)
        session.send("31337")
        session.wait(lambda: re.search(rb" 31337\n\n[^\n]*>$", bytes(session.out[start:])))
        text = bytes(session.out[start:])
        end(session)
        return text

    def alike(self, text, expected):
        """A level begins the record of what has been typed anew: reports show the rest."""
        report = re.compile(rb"(at this point:\n)[^>]*")
        return report.sub(rb"\1", without_levels(text)) == report.sub(rb"\1", expected)

    def lines(self):
        for terminal in (False, True):
            for name, lines in SCRIPTS.items():
                expected = self.typed(terminal, lines)
                places = range(len(lines)) if len(lines) < 12 else (1, 2, 7, 14, 16, len(lines) - 1)
                for at in places:
                    for visit in VISITS[:1] if at % 2 else VISITS[1:]:
                        text = self.typed(terminal, lines, at, visit)
                        if not self.alike(text, expected):
                            raise Broken(f"{name}, interrupted in front of line {at}: {text!r} instead of {expected!r}")
                if self.args.verbose:
                    print(f"{'terminal' if terminal else 'pipe':9}{name}", flush=True)

    def time_line(self):
        """Neither the work nor the waiting of a level counts for the statement below."""
        statement = "Terms(f*(f + 1))"
        setup = ["&(J = x, y, z, t)", "f := (1 + x - 2*y + z + t)^17:", "&(t = 1)"]
        seconds = re.compile(rb"CPU time: ([\d.]+)\n")
        session = self.start(False, setup)
        own = float(seconds.search(session.say(statement)).group(1))
        session.send(statement)
        time.sleep(0.3 * own)
        session.interrupt()
        at_level = sum(float(seconds.search(session.say(statement)).group(1)) for _ in range(4))
        time.sleep(6)
        start = len(session.out)
        session.resume()
        session.wait(lambda: session.at_prompt(start) and b"Elapsed" in session.out[start:])
        text = bytes(session.out[start:])
        end(session)
        found = seconds.search(text)
        if found is None or float(found.group(1)) > own + 0.5 * at_level + 0.05:
            raise Broken(f"the time line below a level: {text!r}; alone {own}, at the level {at_level}")

    def suspended(self):
        """A level that is opened where modular arithmetic is suspended works in the ring of the user."""
        session = self.start(False, ["&(p = 7)", "&(H = 0)"])
        session.say("Func F(n) = s := 0; for i = 1 to n do s := s + i od; s.")
        statement = "&_m(F(200000))"
        expected = session.say(statement)
        for _ in range(5):
            start = len(session.out)
            session.send(statement)
            session.interrupt()
            text = session.say("3*5")
            if b"\n 1\n" not in text:
                raise Broken(f"3*5 modulo 7 at a level: {text!r}")
            session.resume()
            session.wait(lambda: session.at_prompt(start) and without_levels(bytes(session.out[start:])).endswith(b"\n>"))
            if without_levels(bytes(session.out[start:])) != expected:
                raise Broken(f"{statement}: {bytes(session.out[start:])!r} instead of {expected!r}")
        end(session)

    def worked_example(self):
        """The sum of the manual: looked at, changed, resumed ("Interrupt, look, change, go on")."""
        session = self.start(True, ["Func S(n) = t := 0; for i = 1 to n do t := t + c*i^2 od; t."])
        session.say("c := 1")
        session.send("S(1000000)")
        time.sleep(0.05)
        session.interrupt()
        i, t = (int(re.search(rb"\n (\d+)\n", session.say(name)).group(1)) for name in "it")
        if t not in (i * (i + 1) * (2 * i + 1) // 6, (i - 1) * i * (2 * i - 1) // 6):
            raise Broken(f"an interrupted sum: i is {i}, t is {t}")
        session.say("c := 0")
        start = len(session.out)
        session.resume()
        session.wait(lambda: re.search(rb"level\n\n \d+\n\n>$", bytes(session.out[start:])))
        result = int(re.search(rb"\n (\d+)\n", bytes(session.out[start:])).group(1))
        if result not in (t, t + i * i):
            raise Broken(f"the sum after a change: {result}, i was {i}, t was {t}")
        end(session)

    def given_up_field(self):
        """An output into a field is given up in the middle; the next ones are right."""
        session = self.start(False, ["a := 3^3000000:", "b := 3^100:"])
        for _ in range(3):
            session.send("!(a:5)")
            session.interrupt()
            session.say("!(b:60, 'x')")
            session.level = 1
            session.say("&@")
        text = session.say("!(b:50, 'x')")
        if b"515377520732011331036461129765621272702107522001  x" not in text:
            raise Broken(f"after outputs that were given up: {text!r}")
        end(session)

    def interrupted(self, setup, statement):
        """a session at a level that was opened inside the statement"""
        for wait in (0.03, 0.01, 0.003, 0.001):
            session = self.start(False, setup)
            start = len(session.out)
            session.send(statement)
            time.sleep(wait)
            session.interrupt()
            if not re.search(rb"\n \d+\n", bytes(session.out[start:])):  # its value is not there yet
                return session
            end(session)
        raise Broken(f"{statement} is over too soon to be interrupted")

    def arrays_in_use(self):
        """What happens at a level to the arrays that a function is working on does no harm."""
        setup = ["&(J = x, y)", "Func Q(k) = (k*7919|2003)/(3^400 + k).", "[e] := [<i=1,2000><j=1,2> Q(i + j)]:",
                 "Array s[2000,3] Sparse:", "[s] := [<i=1,2000><j=1,3> Q(i*j)]:", "[u] := [<i=1,10><j=1,8> 1/(x^i - j*y)]:",
                 "[v] := [<i=1,1000><j=1,1> (x + i*y)^40]:"]
        changes = {"e": ["e[1,1] := 5:", "[e] := [[7,8]]:", "[e[1~2,]] := 3:", "Sparse[e]:", "Rname[e] := '[ee]':", "Reverse[e]:",
                         "@[e]"],
                   "s": ["s[1,1] := 5:", "[s] := [[1, [1, 7]], [2, [2, 8]]]:", "STrans[s]:", "s[3,1] := 0:", "Reverse[s]:", "Sort[s]",
                         "@[s]"],
                   "u": ["u[1,1] := 5:", "[u] := [[7,8]]:", "Sparse[u]:", "Killden[u]:", "@[u]:"],
                   "v": ["v[1] := 5:", "[v] := [[7,8]]:", "Sparse[v]:", "@[v]:"]}
        for statement in ("Sort[e]", "Sort[s]", "Synth([s], [s], 1)", "Terms(LCM[u])", "Terms(Poly[v])"):
            array = re.search(r"[esuv]", statement[statement.index("["):]).group()
            for change in changes[array]:
                session = self.interrupted(setup, statement)
                start = len(session.out)
                session.send(change)
                session.wait(lambda: re.search(rb"\n2?>$", bytes(session.out[start:])))
                text = bytes(session.out[start:])
                refused = not text.endswith(b"2>")  # an error goes back to level 1
                if change.startswith(("@", "Sort")) and statement.startswith(("Sort", "Synth")) and not refused:
                    raise Broken(f"{statement}, interrupted, lets {change} pass: {text!r}")
                start = len(session.out)
                if refused:
                    session.level = 1
                else:
                    session.resume()
                    session.wait(lambda: session.at_prompt(start))
                for line in ("!([e]):", "!([s]):", "[w] := [[3,1][1,2]]:", "Sort[w]:"):
                    session.say(line)
                if b"\n 1\n" not in session.say("w[1,1]"):
                    raise Broken(f"after {statement} with {change}: {bytes(session.out[-500:])!r}")
                end(session)

    def one_at_a_time(self):
        """At a level within a computation no determinant and no function of a matrix is worked out, and the one below goes on. A
        second expansion and a second sort of sparse rows are errors, and the next ones are right."""
        setup = ["[c] := [<i=1,22><j=1,22> 0]:", "for i = 0, 2 do for j = 1, 7 do for k = 1, 7 do c[7*i+j,7*i+k] := 1 od od od:",
                 "for i = 1, 21 do c[i,22] := 1; c[22,i] := 1 od:", "Array t[14,14] Sparse:", "&(J = x)",
                 "[t] := [<i=1,14><j=1,14> ((i+7)^j|101)*x + (j^(i+3)|103)]:", "&(D = 20)", "[m] := [<i=1,9><j=1,9> i^j + x]:"]
        refused = {"Hamilton[c]": b"determinant", "Det[t]": b"determinant", "Chpoly([m], x)": b"matrix functions"}
        for statement in ("Hamilton[c]", "Det[t]"):
            alone = self.start(False, setup)
            expected = alone.say(statement)
            end(alone)
            session = self.interrupted(setup, statement)
            for question, what in refused.items():
                if question == statement:
                    continue
                before = session.cpu()
                text = session.say(question)
                if b"*** no %s at this level of interrupt\n" % what not in text or b"\n 0\n" not in text:
                    raise Broken(f"{question} within {statement}: {text!r}")
                if (session.cpu() - before) / 1e6 > 100 * self.patience():
                    raise Broken(f"{question} within {statement} is worked out, and thrown away")
            session.resume()
            session.wait(lambda: without_levels(bytes(session.out)).endswith(expected))
            end(session)
        rows = ["Func Q(k) = ((k*7919|2003) + 1)/(3^400 + k).", "Array s[5000,3] Sparse:", "[s] := [<i=1,5000><j=1,3> Q(i*j)]:"]
        for before, statement, message in ((setup, "Hamilton[c]", RUNNING), (rows, "Sort[s]", SORT_RUNNING)):
            session = self.interrupted(before, statement)
            session.level = 1
            text = session.say(statement)
            if message not in text:
                raise Broken(f"{statement} within itself: {text!r}")
            if message in session.say(statement):
                raise Broken(f"{statement} after a second one within itself")
            end(session)

    def patience(self):
        return 20 if len(os.environ.get("ASAN_OPTIONS", "")) > 0 else 1

    def change_of_ring(self):
        """Until a change of the ground ring is complete nothing has changed: a level sees all values in the ring before, what
        it stores goes along, and a panic stop leaves them as they were."""
        setup = ["&(J = y, x)", "&(P = y^3 - 1000003, 1)", "Func Q(k) = (k*7919|2003)^9 - 2^61.", "e := x^2/(3*x - 7):", "old := 5^30:",
                 "[m] := [<i=1,400><j=1,500> Q(i + j)]:", "[p] := [<i=1,300><j=1,100> (i*x - j)^3*y^2]:",
                 "[q] := [<i=1,40><j=1,100> (x + i)/(x - j*y)]:", "Array s[2000,20] Sparse:", "[s] := [<i=1,2000><j=1,20> Q(i*j)/(i + j*32003)]:",
                 "[gone] := [<i=1,100><j=1,100> i*x]:"]
        if len(os.environ.get("ASAN_OPTIONS", "")) > 0:  # an instrumented build
            setup = [line.replace("<j=1,500>", "<j=1,60>").replace("2000", "500") for line in setup]
        asked = ["e", "old", "!([<i=1,7><j=1,7> m[50*i,j]])", "!([<i=1,5><j=1,5> p[i,j]])", "!([<i=1,3><j=1,3> q[i,j]])",
                 "!([<i=1,20><j=1,5> s[i,j]])", "y^3"]
        there, back, part = "&(p = 32003)", "&(p = _i)", "&(p = 65521: e, [m], [s])"
        reference = self.start(False, setup)
        before = [reference.say(line) for line in asked]
        for line in ("old := 7:", "@[gone]", there):
            reference.say(line)
        modular = [reference.say(line) for line in asked]
        reference.say(back)
        after = [reference.say(line) for line in asked]
        text = reference.say(part)
        partly = [reference.say(line) for line in asked if line in ("e",) or "m[" in line or "s[" in line]
        end(reference)
        inside = told = 0
        for k in range(12):
            session = self.start(k % 2 == 1, setup)
            panic = k % 4 == 3
            for statement, values, result in ((there, before, modular), (back, modular, after)):
                start = len(session.out)
                session.send(statement)
                time.sleep(0.002 + 0.004 * k)
                session.interrupt()
                within = not re.search(rb"Now in modular|\n 0\n>", bytes(session.out[start:]).split(b"*** New command level")[0])
                inside += within
                told += DELICATE in session.out[start:]
                if within:
                    if [session.say(line).replace(b"2>", b">") for line in asked] != values:
                        raise Broken(f"at a level within {statement}: {bytes(session.out[-3000:])!r}")
                if panic and within:
                    session.level = 1
                    session.say("&@")
                    if [session.say(line) for line in asked] != values:
                        raise Broken(f"after a panic stop within {statement}: {bytes(session.out[-3000:])!r}")
                    start = len(session.out)
                    session.send(statement)
                    session.interrupt()
                if statement == there:
                    session.say("old := 7:")
                    session.say("@[gone]")
                session.resume()
                session.wait(lambda: session.at_prompt(start) and without_levels(bytes(session.out[start:])).endswith(b"\n 0\n>"))
                got = [session.say(line) for line in asked]
                if got != result:
                    raise Broken(f"{statement}, interrupted: {got!r} instead of {result!r}")
            start = len(session.out)
            session.send(part)
            session.interrupt()
            session.say("&e:")
            session.level = 3
            session.send("&(p = 7: [p])")  # refused, and it does not change what is listed
            session.wait(lambda: session.out.endswith(b"3>"))
            session.resume()
            session.wait(lambda: session.at_prompt(start))
            session.resume()
            session.wait(lambda: session.at_prompt(start))
            got = [session.say(line) for line in asked if line in ("e",) or "m[" in line or "s[" in line]
            if got != partly or b"belongs to another ground ring" not in session.say("p[1,1]"):
                raise Broken(f"{part}, interrupted: {got!r} instead of {partly!r}")
            end(session)
        if self.args.verbose:
            print(f"{inside} of 24 interrupts within a change of ring, {told} at a delicate time")
        if inside == 0 or told == 0:
            raise Broken("no interrupt came within a change of ring, or none was told of the delicate time")

    def other_ring(self):
        """Where a gcd works modulo a prime the level says so, and has the ring of the user."""
        setup = ["&(J = x, y, z)", "f := (x + 2*y - z + 3)^9:", "p := f*(x - y + 5*z)^9:", "q := f*(x + y + z - 1)^9:"]
        told = 0
        session = self.start(False, setup)
        expected = session.say("GCD(p, q) - f")
        for _ in range(20):
            start = len(session.out)
            session.send("GCD(p, q) - f")
            session.interrupt()
            opened = bytes(session.out[start:])
            if b"delicate time" in opened:
                told += 1
                if DELICATE not in opened:
                    raise Broken(f"the report of a delicate time: {opened!r}")
            if b" 1099511627776\n" not in session.say("2^40"):
                raise Broken(f"the ring of a level in a gcd: {bytes(session.out[start:])!r}")
            session.resume()
            session.wait(lambda: session.at_prompt(start) and without_levels(bytes(session.out[start:])).endswith(b"\n>"))
            got = without_levels(bytes(session.out[start:]))
            if got != expected and not got.endswith(expected):
                raise Broken(f"GCD: {got!r} instead of {expected!r}")
        end(session)
        if self.args.verbose:
            print(f"{told} of 20 interrupts of gcds between two rings")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--verbose", action="store_true")
    parser.add_argument("--only", default="", help="a regular expression for the names of the parts")
    args = parser.parse_args()
    args.tolvex = os.path.abspath(args.tolvex)
    places = Places(args)
    try:
        for step in (places.lines, places.time_line, places.suspended, places.worked_example, places.given_up_field, places.arrays_in_use,
                     places.one_at_a_time, places.change_of_ring, places.other_ring):
            if not re.search(args.only, step.__name__):
                continue
            step()
            if args.verbose:
                print(f"{step.__name__}: right", flush=True)
    except Broken as what:
        print(what)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
