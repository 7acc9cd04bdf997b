"""Factorisation over finite fields for bench/compare. The seed fixes every problem; the answer is the number of factors."""
import random


def text(coefficients):
    return "+".join(f"{c}*x^{e}" for e, c in enumerate(coefficients) if c)


def product(a, b, p):
    r = [0] * (len(a) + len(b) - 1)
    for i, u in enumerate(a):
        for j, v in enumerate(b):
            r[i + j] = (r[i + j] + u * v) % p
    return r


def problems():
    """name, prime, coefficients from the constant on; all are monic"""
    for p in (32003, 2147483629):  # counts and times are residues in the loops that are timed
        rng = random.Random(p)
        for n in (30, 100, 500, 1000):
            yield f"random, degree {n}, modulo {p}", p, [rng.randrange(p) for _ in range(n)] + [1]
        for n in (420, 1000):
            yield f"x^{n} - 1 modulo {p}", p, [p - 1] + [0] * (n - 1) + [1]
        for n in (50, 400):
            f = [1]
            for root in rng.sample(range(1, p), n):
                f = product(f, [p - root, 1], p)
            yield f"{n} linear factors modulo {p}", p, f


def tasks(make):
    """`make` is the class Task of bench/compare."""
    for name, p, f in problems():
        yield make("factorisation", name,
                   ([f"&(p = {p})", "&(J = x)", f"f := {text(f)}:"], "Factor(f, [s])", "Factor(f, [s])"),
                   ([f"f={text(f)}", "F=0"], f"F=factormod(f,{p})", f"centerlift(Mod(#F~,{p}))"),
                   ([f"ring r={p},x,dp", f"poly f={text(f)}", "list l"], "l=factorize(f)",
                    "poly(size(l[1])-1)"))
