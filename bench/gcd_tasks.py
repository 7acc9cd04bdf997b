"""Greatest common divisors and rational functions for bench/compare.

A polynomial is a dictionary from exponent tuples to integers; a task is either a planted gcd, given by its factors, or
the text of a rational expression that all systems read alike. The seed fixes every problem.
"""
import itertools
import random

NAMES = ["x", "y", "z", "t", "u", "v", "w", "r", "s", "q"]


class Gcd:
    """u = a h, v = b h; a and b are coprime, so h is the answer. Each of a, b, h is a product of (polynomial, power)."""

    def __init__(self, name, variables, a, b, h, rings="zsl"):
        self.name, self.variables, self.a, self.b, self.h, self.rings = name, variables, a, b, h, rings


class Rational:
    """An expression; the answer is checked at a point."""

    def __init__(self, name, variables, text, rings="zs"):
        self.name, self.variables, self.text, self.rings = name, variables, text, rings


def dense(rng, variables, degree, size):
    """All monomials of total degree up to `degree`."""
    p = {}
    for e in itertools.product(range(degree + 1), repeat=variables):
        if sum(e) <= degree:
            p[e] = rng.choice([-1, 1]) * rng.randint(1, size)
    return p


def sparse(rng, variables, degree, terms, size):
    p = {(0,) * variables: rng.randint(1, size)}
    while len(p) < terms:
        p[tuple(rng.randint(0, degree) for _ in range(variables))] = rng.choice([-1, 1]) * rng.randint(1, size)
    return p


def linear(coefficients, constant):
    n = len(coefficients)
    p = {tuple(int(i == j) for j in range(n)): c for i, c in enumerate(coefficients) if c}
    if constant:
        p[(0,) * n] = constant
    return p


def monomials(n, *terms):
    return {tuple(e) + (0,) * (n - len(e)): c for c, e in terms}


def dense_tasks():
    for variables, degrees in ((1, (20, 200, 2000)), (2, (4, 10, 25)), (3, (2, 5, 9)), (4, (2, 3, 5))):
        for d in degrees:
            rng = random.Random(100 * variables + d)
            a, b, h = (dense(rng, variables, d, 99) for _ in range(3))
            yield Gcd(f"dense {variables} variables degree {d}", variables, [(a, 1)], [(b, 1)], [(h, 1)])


def sparse_tasks():
    for degree, terms in ((3, 5), (5, 10), (10, 20), (20, 50), (5, 100)):
        rng = random.Random(degree + terms)
        a, b, h = (sparse(rng, 6, degree, terms, 99) for _ in range(3))
        yield Gcd(f"sparse 6 variables degree {degree} terms {terms}", 6, [(a, 1)], [(b, 1)], [(h, 1)])


def coprime_tasks():
    one = {(0, 0): 1}
    yield Gcd("coprime forms x+y+1, x+2y+3", 2, [(linear([1, 1], 1), 1)], [(linear([1, 2], 3), 1)], [(one, 1)])
    for variables, degree, terms in ((2, 5, 10), (2, 20, 200), (3, 5, 20), (4, 4, 50), (6, 5, 20), (6, 5, 500)):
        rng = random.Random(variables * terms)
        a, b = (sparse(rng, variables, degree, terms, 99) for _ in range(2))
        yield Gcd(f"coprime {variables} variables terms {terms}", variables, [(a, 1)], [(b, 1)],
                  [({(0,) * variables: 1}, 1)])
    for forms in (10, 40):
        a = [(linear([1, i % 5], i // 5 + i + 1), 1) for i in range(forms)]
        yield Gcd(f"coprime {forms} forms and one", 2, a, [(linear([1, 1], 1000), 1)], [(one, 1)])


def number_tasks():
    huge = 10**100
    for variables, degree in ((1, 30), (2, 6), (3, 3)):
        rng = random.Random(variables)
        a, b, h = (dense(rng, variables, degree, huge) for _ in range(3))
        yield Gcd(f"100 digits {variables} variables degree {degree}", variables, [(a, 1)], [(b, 1)], [(h, 1)], "z")
    rng = random.Random(9)
    a, b, h = (sparse(rng, 4, 4, 8, huge) for _ in range(3))
    yield Gcd("100 digits 4 variables sparse", 4, [(a, 1)], [(b, 1)], [(h, 1)], "z")


def high_degree_tasks():
    for variables, degree, terms in ((1, 2000, 5), (2, 200, 5), (2, 1000, 4), (3, 100, 5), (4, 50, 6)):
        rng = random.Random(variables + degree)
        a, b, h = (sparse(rng, variables, degree, terms, 99) for _ in range(3))
        yield Gcd(f"high degree {degree} in {variables} variables", variables, [(a, 1)], [(b, 1)], [(h, 1)])


def content_tasks():
    n = 4
    yz = monomials(n, (1, (0, 2, 1)), (3, (0, 0, 1)), (5, (0, 1)))
    xt = monomials(n, (2, (1, 0, 0, 1)), (1, (0, 0, 0, 2)), (7, ()))
    zt = monomials(n, (1, (0, 0, 1, 1)), (1, (0, 0, 0, 1)), (2, ()))
    main = monomials(n, (1, (3, 1)), (1, (1, 2, 1, 1)), (4, (0, 0, 0, 1)))
    a = monomials(n, (1, (2,)), (1, (0, 1, 2)), (3, (0, 0, 0, 1)))
    b = monomials(n, (1, (1, 1)), (2, (0, 0, 2)), (5, ()))
    yield Gcd("contents alone", n, [(a, 1)], [(b, 1)], [(yz, 1), (zt, 1)])
    yield Gcd("contents and a factor", n, [(a, 1), (xt, 1)], [(b, 1)], [(yz, 2), (zt, 1), (main, 1)])
    yield Gcd("contents to a power", n, [(a, 1)], [(b, 2)], [(yz, 3), (zt, 3), (xt, 2)])
    yield Gcd("integer and monomial contents", n, [(a, 1), (monomials(n, (12, (2, 3, 1, 4))), 1)],
              [(b, 1), (monomials(n, (35, (0,))), 1)], [(main, 2), (monomials(n, (6, (1, 2, 0, 3))), 1)], "z")


def textbook_tasks():
    """Planted factors in v variables beside the main one, after the test sets of Wang and of Zippel."""
    for v in (2, 4, 6, 9):
        n = v + 1
        x = [1] + [0] * v
        low = [0] + [1] * v
        d, f, g = linear([1] * n, 1), linear([1] + [-1] * v, -2), linear([1] * n, 2)
        yield Gcd(f"linear factors, {n} variables", n, [(f, 1)], [(g, 1)], [(d, 1)])
        yield Gcd(f"squares of linear factors, {n} variables", n, [(f, 2)], [(g, 2)], [(d, 2)])
        power = {tuple(v + 1 if i == j else 0 for j in range(n)): 1 for i in range(n)}
        d, f, g = dict(power), dict(power), dict(power)
        d[(0,) * n], f[(0,) * n], g[(0,) * n] = 1, -2, 2
        yield Gcd(f"powers of the variables, {n} variables", n, [(f, 1)], [(g, 1)], [(d, 1)])
        # non-monic: x times the product of the others
        d = {(1,) * n: 1, tuple(low): 1, tuple(x): -1, (0,) * n: 2}
        f = {(2,) + (1,) * v: 1, tuple(x): 3, tuple(low): -1, (0,) * n: 5}
        g = {(1,) + (2,) + (1,) * (v - 1): 1, tuple(x): -1, (0,) * n: 7}
        yield Gcd(f"products of the variables, {n} variables", n, [(f, 1)], [(g, 1)], [(d, 1)])
    for n, terms, degree in ((3, 8, 4), (5, 10, 3), (8, 12, 2), (10, 10, 2)):
        rng = random.Random(n)
        a, b, h = (sparse(rng, n, degree, terms, 30) for _ in range(3))
        yield Gcd(f"random sparse, {n} variables", n, [(a, 1)], [(b, 1)], [(h, 1)])


def rational_tasks():
    def forms(rows, columns, power=1):
        tail = "" if power == 1 else f"^{power}"
        return [f"1/(x+{i}*y+{j}){tail}" for i in range(1, rows + 1) for j in range(1, columns + 1)]

    for rows, columns in ((2, 3), (3, 5), (4, 8), (5, 10)):
        yield Rational(f"grid {rows} x {columns}", 2, "+".join(forms(rows, columns)))
    yield Rational("grid of squares 2 x 4", 2, "+".join(forms(2, 4, 2)))
    yield Rational("grid in three variables", 3,
                   "+".join(f"z/(x+{i}*y+{j}*z)" for i in range(1, 4) for j in range(1, 4)))
    for depth in (5, 10, 20, 40):
        text = "x"
        for i in range(depth, 0, -1):
            text = f"x+{i}/({text})"
        yield Rational(f"continued fraction {depth}", 1, text)
    for depth in (5, 10, 20):
        text = "x"
        for i in range(depth):
            text = f"{'xyz'[i % 3]}+1/({text})"
        yield Rational(f"continued fraction {depth} in three variables", 3, text)
    for n in (10, 40, 100):
        yield Rational(f"telescoping sum {n}", 1, "+".join(f"1/((x+{i})*(x+{i + 1}))" for i in range(n)))
    for n in (10, 30):
        yield Rational(f"telescoping sum {n} in two variables", 2,
                       "+".join(f"y/((x+{i}*y)*(x+{i + 1}*y))" for i in range(n)))
    for n in (10, 40):
        yield Rational(f"telescoping product {n}", 2,
                       "*".join(f"((x+{i}*y+1)/(x+{i + 1}*y+1))" for i in range(n)))
    yield Rational("products that cancel", 3,
                   "((x^2-y^2)^5/(x+z)^6)*((x+z)^4*(x+y)/(x-y)^3)*((x*z-y)^3/(x+y)^6)*((x+z)^2/(x*z-y)^2)")
    yield Rational("dense fractions added", 3,
                   "(x+y+z+1)^4/((x-y+2*z+3)^3*(x+y-z)^2)+(x-y-z-1)^4/((x-y+2*z+3)^2*(2*x+y+z)^3)")


RINGS = {"z": (0, "Z"), "s": (32003, "mod 32003"), "l": (2147483629, "mod 2^31-19")}


def text_of(p, names):
    terms = []
    for exponents, c in sorted(p.items(), reverse=True):
        terms.append("*".join([str(c)] + [f"{n}^{e}" if e > 1 else n for n, e in zip(names, exponents) if e]))
    return "+".join(terms).replace("+-", "-")


def product_of(factors, names):
    return "*".join(f"({text_of(p, names)})" + (f"^{e}" if e > 1 else "") for p, e in factors)


def gcd_task(make, group, task, modulus, label):
    """The quotient by the planted factor must be a unit."""
    names = NAMES[:task.variables]
    a, b, h = (product_of(f, names) for f in (task.a, task.b, task.h))
    order = ", ".join(names)
    tolvex = [f"&(J > {order})"] + ([f"&(p = {modulus})"] if modulus else [])
    tolvex += [f"a := {a}:", f"b := {b}:", f"h := {h}:", "a := a h:", "b := b h:"]
    unit = f"*Mod(1,{modulus})" if modulus else ""
    gp = [f"a=({a}){unit};", f"b=({b}){unit};", f"h=({h}){unit};", "a=a*h;", "b=b*h;"]
    singular = [f"ring R={modulus},({','.join(names)}),dp", f"poly a={a}", f"poly b={b}", f"poly h={h}", "a=a*h",
                "b=b*h", "poly g"]
    return make("gcd " + group, f"{task.name} {label}", (tolvex, "g := GCD(a, b)", "g/h"),
                (gp, "g=gcd(a,b)", "lift(g/h)" if modulus else "g/h"),
                (singular, "g=gcd(a,b)", "g/h*(g*leadcoef(h)==h*leadcoef(g))"), check="unit")


def rational_task(make, task, modulus, label):
    names = NAMES[:task.variables]
    point = dict(zip(names, (3, 5, 7)))
    prime = modulus or 1000003
    tolvex = [f"&(J > {', '.join(names)})"] + ([f"&(p = {modulus})"] if modulus else [])
    at = "h"
    for n in names:
        at = f"subst({at},{n},Mod({point[n]},{prime}))"
    text = task.text.replace("1/", f"Mod(1,{modulus})/") if modulus else task.text
    return make("rational functions", f"{task.name} {label}", (tolvex, f"h := {task.text}", "h"),
                ([], f"h={text}", f"lift({at})"),
                ([f"ring R=({modulus},{','.join(names)}),eps,dp", "number h"], f"h={task.text}", "1"),
                check=(point, prime))


def tasks(make):
    """All of them, as make(group, name, tolvex, gp, singular, check) gives them."""
    for family in (dense_tasks, sparse_tasks, coprime_tasks, number_tasks, high_degree_tasks, content_tasks,
                   textbook_tasks):
        for task in family():
            for ring in task.rings:
                yield gcd_task(make, family.__name__[:-len("_tasks")].replace("_", " "), task, *RINGS[ring])
    for task in rational_tasks():
        for ring in task.rings:
            yield rational_task(make, task, *RINGS[ring])
