#!/usr/bin/env python3
"""Loads saved sessions of a given size and watches time and memory: a file is read at a steady rate, and what it takes is what its
values take, not more. What a second process saves again is the same, byte for byte.

usage: big_load.py --tolvex PATH [--megabytes M] [--rate R] [--kinds NAME...]

  --megabytes M   size of each file (default 100)
  --rate R        megabytes a second of processor time that a load must reach (default 20; 0: not looked at)

Each kind of session tells how many bytes its records need: 24 a polynomial term or sparse entry, 40 a value, 32 a number, 16 for
each 28 bits of it, 40 a token of a function. The peak of the process, less that of an empty session, may exceed them by a
quarter and 8 MB; where coefficients are long it may not exceed three times the file either.
"""
import os
import random
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

TERM, VALUE, NUMBER, DIGIT, VARIABLE, SLOT, TOKEN = 24, 40, 32, 16, 64, 8, 40
SMALL = NUMBER + DIGIT
LEAF = TERM + SMALL


class Kind:
    """One kind of session: `make` writes one item and tells how many bytes its records take."""

    def __init__(self, name, variables, make, three_times=False):
        self.name, self.variables, self.make, self.three_times = name, variables, make, three_times


def number(rng, digits):
    return "".join(rng.choices("123456789", k=digits))


def long_number(digits):
    return NUMBER + DIGIT * (int(digits * 3.3219281) // 28 + 1)


def small_polynomials(rng, i):
    text = f"p{i} := &_n {number(rng, 3)}x^2 y + {number(rng, 2)}x z - {number(rng, 4)}y^3 + {number(rng, 1)};\n"
    return text, VARIABLE + VALUE + 6 * TERM + 4 * LEAF


def one_variable(rng, i):
    n = 5000
    terms = " + ".join(f"{number(rng, 2)}x^{e}" for e in range(n, 1, -1))
    return f"p{i} := &_n {terms};\n", n * (TERM + LEAF)


def long_coefficients(rng, i):
    n = 20
    terms = " + ".join(f"{number(rng, 1000)}x^{e}" for e in range(n, 1, -1))
    return f"p{i} := &_n {terms};\n", n * (2 * TERM + long_number(1000))


def integers(rng, i):
    return f"n{i} := {number(rng, 7)};\n", VARIABLE + VALUE + SMALL


def long_integers(rng, i):
    return f"n{i} := {number(rng, 50000)};\n", VARIABLE + VALUE + long_number(50000)


def fractions(rng, i):
    text = f"r{i} := ({number(rng, 3)}x^2 + {number(rng, 2)}x - {number(rng, 4)}y^3)/(x^3 + {number(rng, 3)}y + 1);\n"
    return text, VARIABLE + VALUE + 8 * TERM + 6 * LEAF


def dense_arrays(rng, i):
    rows = "\n".join("[" + ", ".join(number(rng, 20) for _ in range(40)) + "]" for _ in range(40))
    return f"Array m{i}[40, 40];\n[m{i}] := [{rows}];\n", 1600 * (SLOT + VALUE + long_number(20))


def arrays_of_polynomials(rng, i):
    rows = "\n".join("[" + ", ".join(f"{number(rng, 16)}x + {number(rng, 16)}y - 1" for _ in range(20)) + "]" for _ in range(20))
    return f"Array m{i}[20, 20];\n[m{i}] := [{rows}];\n", 400 * (SLOT + VALUE + 6 * TERM + 2 * long_number(16) + SMALL)


def sparse_arrays(rng, i):
    rows, entries = 2000, 10
    body = ",\n".join(f"[{r}, " + ", ".join(f"[{c}, {number(rng, 6)}]" for c in sorted(rng.sample(range(1, 2001), entries))) + "]"
                      for r in range(1, rows + 1))
    return (f"Array s{i}[{rows}, 2000] Sparse;\n[s{i}] := [{body}];\n",
            rows * SLOT + rows * entries * (TERM + VALUE + SMALL))


def functions(rng, i):
    text = (f" Function F{i}(a,b,^c) =  \n    a := b + 1; \n    for i = 1 to b do \n       if i > 3 then \n          c := c + i*a \n"
            "       else \n          c := 0 \n       fi\n    od; \n    c.;\n\n")
    return text, 42 * TOKEN + 700


KINDS = [
    Kind("small_polynomials", "xyz", small_polynomials), Kind("one_variable", "x", one_variable),
    Kind("long_coefficients", "x", long_coefficients, True), Kind("integers", "", integers),
    Kind("long_integers", "", long_integers, True), Kind("fractions", "xy", fractions), Kind("dense_arrays", "", dense_arrays),
    Kind("arrays_of_polynomials", "xy", arrays_of_polynomials), Kind("sparse_arrays", "", sparse_arrays),
    Kind("functions", "", functions),
]


def write_session(path, kind, size, rng):
    """a file of that size; the bytes that its records take"""
    need, written, i = 0, 0, 0
    with open(path, "w") as handle:
        for v in reversed(kind.variables):  # each goes in front
            handle.write(f"&(J = {v});\n")
        while written < size:
            text, bytes_needed = kind.make(rng, i)
            handle.write(text)
            written += len(text)
            need += bytes_needed
            i += 1
        handle.write("&x;\n")
    return need


def run(binary, directory, commands):
    """processor seconds and peak in bytes of a session that has run the commands"""
    process = subprocess.Popen([binary], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=directory)
    process.stdin.write(commands.encode() + b"123456000 + 789\n")
    process.stdin.flush()
    output = b""
    while b"123456789" not in output:
        piece = os.read(process.stdout.fileno(), 65536)
        output += piece
        if not piece or b"***" in output:
            process.kill()
            sys.exit(f"{output[-600:]!r}")
    # the counters of the process itself: those that a parent is told begin with the parent's own
    with open(f"/proc/{process.pid}/status") as handle:
        peak = next(int(line.split()[1]) * 1024 for line in handle if line.startswith("VmHWM"))
    with open(f"/proc/{process.pid}/stat") as handle:
        fields = handle.read().rsplit(")", 1)[1].split()
    process.stdin.write(b"")
    process.communicate()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK"), peak


def same_content(one, other):
    with open(one, "rb") as a, open(other, "rb") as b:
        while True:
            left, right = a.read(1 << 20), b.read(1 << 20)
            if left != right:
                return False
            if not left:
                return True


def check(binary, directory, kind, megabytes, rate, rng):
    """faults of one kind"""
    made, saved, again = (os.path.join(directory, name) for name in ("made", "saved", "again"))
    need = write_session(made, kind, megabytes * 1e6, rng)
    run(binary, directory, "&(R = 'made')\n&(S = 'saved')\n&s\n")
    empty_seconds, empty_peak = run(binary, directory, "")
    seconds, peak = run(binary, directory, "&(R = 'saved')\n")
    run(binary, directory, "&(R = 'saved')\n&(S = 'again')\n&s\n")
    size = os.path.getsize(saved)
    speed = size / 1e6 / max(seconds - empty_seconds, 1e-3)
    taken = peak - empty_peak
    faults = []
    if not same_content(saved, again):
        faults.append("what is saved again differs")
    if rate and speed < rate:
        faults.append(f"slower than {rate} MB/s")
    if taken > 1.25 * need + 8e6:
        faults.append("more than the records need")
    if kind.three_times and taken > 3 * size + 8e6:
        faults.append("more than three times the file")
    print(f"{kind.name:22} {size / 1e6:7.1f} MB  {speed:6.1f} MB/s  memory {taken / 1e6:7.1f} MB, records {need / 1e6:7.1f} MB, "
          f"{taken / size:5.2f} times the file  {'; '.join(faults) or 'good'}", flush=True)
    return faults


def main():
    args = trials.arguments(megabytes=100.0, rate=20.0, kinds=[])
    chosen = [kind for kind in KINDS if args.kinds is None or kind.name in args.kinds]
    faults = []
    with trials.folder("load", megabytes=8000) as directory:
        for kind in chosen:
            faults += check(args.tolvex, directory, kind, args.megabytes, args.rate, random.Random(1))
    return trials.list_faults(faults, f"{len(chosen)} kinds")


if __name__ == "__main__":
    sys.exit(main())
