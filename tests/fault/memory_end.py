#!/usr/bin/env python3
"""Statements for which the memory does not suffice: each ends with a message, and the session goes on with its values.
What the statement had stored until then is deleted first.

usage: memory_end.py --tolvex PATH [--megabytes N]

The address space of the program is limited to N megabytes. Not for instrumented builds, which reserve more than that.
"""
import argparse
import os
import resource
import subprocess
import sys
import tempfile

LOW = b"\n*** Warning.  You are low on heap space.  Will try freeing the gcd stash.\n"
OUT = b"\n*** Warning.  You are out of heap space.  Abort this computation.\n"
SETUP = ["&(J = x, y, z)", "a := 77:", "f := (1 + x + y + z)^10:", "[m] := [<i=1,10><j=1,10> i*j]:"]
TOO_BIG = ["g := (1 + x + y + z)^300:", "[k] := [<i=1,1000><j=1,1000> (i*x + j)^9]:",
           "Func F(n) = g := 1; for i = 1 to n do g := g*(x + i*y + z^i + z^(i^2)) od; 0.\nF(300)",
           "for i = 1 to 100 do [k] := [<i=1,1000><j=1,1000> (i*x + y + j)^5]; [l] := [k]*[k] od"]
ASKED = [("a + 1", b"\n 78\n"), ("Terms(f)", b"\n 286\n"), ("Sumall[m]", b"\n 3025\n"), ("f/f", b"\n 1\n"),
         ("Terms((x + y)^40)", b"\n 41\n")]


def run(binary, megabytes, lines):
    limit = megabytes << 20
    with tempfile.TemporaryDirectory() as directory:
        with open(directory + "/tolstart.txt", "w", encoding="ascii") as handle:
            handle.write("500\n")
        done = subprocess.run([binary], input=("\n".join(lines) + "\n&q\n").encode(), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, cwd=directory, timeout=600,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
    return done.stdout, done.returncode


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tolvex", required=True)
    parser.add_argument("--megabytes", type=int, default=200)
    args = parser.parse_args()
    args.tolvex = os.path.abspath(args.tolvex)
    faults = 0

    def check(good, what):
        nonlocal faults
        if not good:
            faults += 1
            print(what)

    for statement in TOO_BIG:
        output, status = run(args.tolvex, args.megabytes, SETUP + [statement, "@g"] + [line for line, _ in ASKED])
        check(OUT in output, f"{statement[:40]}: no end of the memory: {output[-400:]!r}")
        check(status == 0, f"{statement[:40]}: status {status}")
        end = output[output.rfind(OUT):]
        for line, answer in ASKED:
            check(answer in end, f"{statement[:40]}, then {line}: {output[-600:]!r}")
    # The stash of gcds is given up first; what is computed then goes on.
    stash = ["&C+", "h := (1 + x - 2*y + z)^13:", "for i = 1 to 12 do g := GCD(h*(x - i)^2, h*(y - i*z + 1)) od:"]
    output, status = run(args.tolvex, args.megabytes, SETUP + stash + [TOO_BIG[0]] + [line for line, _ in ASKED])
    check(LOW in output, f"the gcd stash: {output[-600:]!r}")
    check(status == 0 and ASKED[0][1] in output[output.find(LOW):], f"after the gcd stash: {status}, {output[-600:]!r}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
