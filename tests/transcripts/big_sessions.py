#!/usr/bin/env python3
"""Sessions too big for a transcript: listings of more names than are sorted, many entries of one name, deep calls of every kind.

usage: big_sessions.py --tolvex PATH [--scale F]

The order of the tables is worked out here: buckets by the hash of the name, the newest entry of a bucket first.
"""
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
import trials  # noqa: E402

BUCKETS, FUNCTION_BUCKETS = 151, 71
TOO_DEEP = "Calls, parentheses or statements are nested too deeply."


def bucket_of(name, buckets):
    h = 0
    for c in name.encode():
        h = (h * 123 + c) % buckets
    return h


def table_order(names, buckets=BUCKETS):
    return [name for b in range(buckets) for name in reversed(names) if bucket_of(name, buckets) == b]


def names_of(letter, n):
    return [f"{letter}{i * 7919 % 99991}" for i in range(n)]


class Failure(Exception):
    pass


def check(good, what):
    if not good:
        raise Failure(what)


class Session:
    def __init__(self, binary, directory, limit):
        self.binary, self.directory, self.limit = binary, directory, limit

    def run(self, lines, files=()):
        """the answers, one a line that is sent; the last one is the farewell"""
        for name, content in files:
            with open(os.path.join(self.directory, name), "w", encoding="ascii") as handle:
                handle.write(content)
        done = trials.session(self.binary, ("\n".join(lines) + "\n&q\n").encode(), self.directory, self.limit)
        check(done.returncode == 0, f"exit status {done.returncode}")
        check(not trials.TROUBLE.search(done.stderr), done.stderr[:2000].decode("latin-1"))
        return re.split(r"^>", done.stdout.decode("latin-1"), flags=re.M)[1:]


def lines_of(answer):
    return [line for line in answer.split("\n") if line]


def variables(s):
    """1000 variables are sorted, 1001 stand in the order of the table; so do many more"""
    for n in (1000, 1001, 2000):
        names = names_of("v", n)
        answers = s.run(["&(R = 'f')", "&v:", "&v", names[5]],
                        [("f", "".join(f"{name} := {i};\n" for i, name in enumerate(names)))])
        order = sorted(names) if n <= 1000 else table_order(names)
        shown = answers[1].partition("arrays:")[0].split()
        check(shown == order, f"{n} names: {shown[:5]} ..., expected {order[:5]} ...")
        values = [line for line in lines_of(answers[2].partition("arrays:")[0])]
        check(values == [f" {name} := {names.index(name)}" for name in order], f"{n} values: {values[:5]}")
        check(lines_of(answers[3]) == [" 5"], answers[3])


def many_names(s):
    """tables that have spread: each name has its value, none is lost when others go"""
    n = 30000
    text = "".join(f"w{i} := {i};\n" for i in range(n)) + "".join(f"@w{i};\n" for i in range(0, n, 2))
    text += "".join(f"Array w{i}[2];\n[w{i}] := [({i}, 1)];\n" for i in range(n)) + "".join(f"@[w{i}];\n" for i in range(1, n, 3))
    text += "".join(f"Func F{i} = {i}.;\n" for i in range(n))
    answers = s.run(["&(R = 'f')", "Sigma<i = 1, 3>[w1 + w29999 + w15001]", "w2", "w29998[1] + w0[2]", "w29998", "w1[1]", "F0 + F29999",
                     "@[**]", "w29998[1]", "w1"], [("f", text)])
    check(lines_of(answers[1]) == [" 135003"], answers[1])
    check("has not been defined" in answers[2], answers[2])
    check(lines_of(answers[3]) == [f" {29998 + 1}"] if 29998 % 3 != 1 else True, answers[3])
    check("has not been defined" in answers[4], answers[4])
    check("*** Inappropriate symbol: w1" in answers[5], answers[5])
    check(lines_of(answers[6]) == [" 29999"], answers[6])
    check(lines_of(answers[7]) == [" 0"], answers[7])
    check("*** Inappropriate symbol: w29998" in answers[8], answers[8])
    check(lines_of(answers[9]) == [" 1"], answers[9])


def functions(s):
    for n in (1000, 1001):
        names = names_of("F", n)
        answers = s.run(["&(R = 'f')", "&f"], [("f", "".join(f"Func {name} = 1.;\n" for name in names))])
        order = sorted(names) if n <= 1000 else table_order(names, FUNCTION_BUCKETS)
        shown = answers[1].split()
        check(shown == order, f"{n} functions: {shown[:5]} ..., expected {order[:5]} ...")


def arrays(s):
    """more than 1000 arrays: the first 20 of each bucket, 1500 in all"""
    for n in (1000, 1001, 4000):
        names = names_of("a", n)
        answers = s.run(["&(R = 'f')", "&v:"], [("f", "".join(f"Array {name}[3];\n" for name in names))])
        shown = lines_of(answers[1].partition("arrays:")[2])
        if n <= 1000:
            check(shown == [f" [{name}] has 3 elements." for name in sorted(names)], f"{n} arrays: {shown[:5]}")
            continue
        expected, described = [], 0
        for b in range(BUCKETS):
            here = [name for name in reversed(names) if bucket_of(name, BUCKETS) == b]
            some = here[:min(20, 1500 - described)]
            expected += [f" [{name}] has 3 elements." for name in some]
            described += len(some)
            if len(here) > len(some) and described < 1500:
                expected.append(f" ... {len(here) - len(some)} more.")
        if described == 1500:
            expected.append("   ....")
        expected += [f" There are {n} arrays.", f"   {n - described} were not described here."]
        check(shown == expected, f"{n} arrays: {shown[-3:]}, expected {expected[-3:]}")


def one_name(s):
    """ten variables and nine arrays of one name are shown"""
    lines = ["Func F(n, k) = if n = 0 then &v else F(n - 1, [k]) fi.", "n := 77", "Array k[2]"]
    lines += ["Array k[5]"] * 14 + ["F(13, [k])", "n"]
    answers = s.run(lines)
    shown = lines_of(answers[-3].partition("arrays:")[0])
    check(" ... 5 more with this name. " in shown, shown)
    check([line for line in shown if line.startswith(" n")] == [f" n := {i}" for i in range(10)], shown)
    shown = lines_of(answers[-3].partition("arrays:")[2])
    check(shown.count(" [k] has 5 elements, array parameter.") == 9, shown)
    check(f" ... {14 + 14 + 1 - 9} more with this name." in shown, shown)
    check(lines_of(answers[-2]) == [" 77"], answers[-2])


def deep_calls(s):
    """a hundred thousand calls are refused, whatever calls; what stood before stands again"""
    lines = ["z := 5", "Array g[2]", "g[1] := 4"]
    kinds = [("Func P(n) = if n = 0 then 3 else P(n - 1) fi.", "P({0})", " 3"),
             ("Func I(n) = Integer; if n = 0 then 3 else I(n - 1) fi.", "I({0})", " 3"),
             ("Func C(n; v) = Compile; if n = 0 then 3 else C(n - 1) fi.", "C({0})", " 3"),
             ("Func A(n, m) = if n = 0 then m[1] else A(n - 1, [m]) fi.", "A({0}, [g])", " 4"),
             ("Func R(n, ^v) = if n = 0 then v else R(n - 1, ^v) fi.", "R({0}, ^z)", " 5"),
             ("Func E(n, ^v) = if n = 0 then v else E(n - 1, ^v) fi.", "E({0}, ^g[1])", " 4"),
             ("Func S(n) = if n = 0 then 3 else Sigma<i = 1, 1>[S(n - 1)] fi.", "S({0})", " 3"),
             ("Func W(n) = while n > 0 do Return(W(n - 1)) od; 3.", "W({0})", " 3"),
             ("Func M(n; j) = [h] := [<i = 1, 1> 1 + 0*n]; if n = 0 then 3 else M(n - 1) fi.", "M({0})", " 3"),
             ("Func T(n) = if n = 0 then 3 else |T(n - 1)| fi.", "T({0})", " 3"),
             ("Func V(n) = if n > 0 then if V(n - 1) = 3 then 3 fi else 3 fi.",
              "V({0})", " 3")]
    for definition, call, value in kinds:
        lines += [definition, call.format(3), call.format(100000), call.format(3), "z + g[1]"]
    answers = s.run(lines)[3:]
    for i, (definition, call, value) in enumerate(kinds):
        own = answers[5 * i:5 * i + 5]
        check(lines_of(own[1]) == [value], f"{call.format(3)}: {own[1]}")
        check(TOO_DEEP in own[2], f"{call.format(100000)}: {own[2][:300]}")
        check(lines_of(own[3]) == [value], f"{call.format(3)} again: {own[3]}")
        check(lines_of(own[4]) == [" 9"], f"after {call}: {own[4]}")


CASES = [variables, many_names, functions, arrays, one_name, deep_calls]


def main():
    args = trials.arguments(scale=1.0)
    failed = 0
    with trials.folder("big-sessions") as directory:
        session = Session(args.tolvex, directory, 60 * args.scale)
        for case in CASES:
            try:
                case(session)
            except (Failure, subprocess.TimeoutExpired, IndexError) as report:
                failed += 1
                print(f"FAILED {case.__name__}: {report!s:.600}")
    return trials.verdict(len(CASES) - failed, failed)


if __name__ == "__main__":
    sys.exit(main())
