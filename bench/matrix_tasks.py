"""Matrices for bench/compare: determinants, ranks, decompositions. The seed fixes every problem."""
import random

PRIME = 1000003


def table(rng, rows, cols, size):
    return [[rng.randint(-size, size) for _ in range(cols)] for _ in range(rows)]


def sparse_rows(rng, n, per_row, entry):
    """[(row, {column: entry})]; every row and column has an entry"""
    order = list(range(n))
    rng.shuffle(order)
    return [{c: entry() for c in {order[r]} | set(rng.sample(range(n), per_row - 1))} for r in range(n)]


def modulus_lines(modulus):
    return [f"&(p = {modulus})"] if modulus else []


def tolvex_dense(name, rows):
    return f"[{name}] := [" + "".join("[" + ",".join(map(str, row)) + "]" for row in rows) + "]:"


def tolvex_sparse(name, n, rows):
    lists = (f"[{r + 1}," + ",".join(f"[{c + 1},{v}]" for c, v in sorted(row.items())) + "]" for r, row in enumerate(rows))
    return [f"Array {name}[{n},{n}] Sparse", f"[{name}] := [" + ",".join(lists) + "]:"]


def gp_dense(rows, unit=""):
    return "m=[" + ";".join(",".join(map(str, row)) for row in rows) + "]" + unit + ";"


def gp_sparse(n, rows, unit=""):
    return [f"m=matrix({n},{n});"] + [f"m[{r + 1},{c + 1}]={v};" for r, row in enumerate(rows) for c, v in row.items()] + \
        [f"m=m{unit};"]


def sparse_determinants(make):
    for n, per_row, modulus in ((200, 5, 10007), (500, 5, 10007), (2000, 3, 10007), (100, 4, 0), (200, 5, 0), (500, 5, 0)):
        rng = random.Random(n + per_row + modulus)
        rows = sparse_rows(rng, n, per_row, lambda: rng.choice([-1, 1]) * rng.randint(1, 9))
        label = f"mod {modulus}" if modulus else "Z"
        prime = modulus or PRIME
        unit = f"*Mod(1,{modulus})" if modulus else ""
        value = f"lift(d)%{prime}" if modulus else f"d%{prime}"
        yield make("sparse determinants", f"{n} rows, {per_row} a row {label}",
                   (modulus_lines(modulus) + tolvex_sparse("s", n, rows), "d := Det[s]",
                    "d" if modulus else f"d | {PRIME}"),
                   (gp_sparse(n, rows, unit), "d=matdet(m)", value), check=({}, prime))


def reductions(make):
    for n, modulus in ((200, 10007), (200, 2147483629), (500, 10007)):
        rng = random.Random(n + modulus)
        rows = [[rng.randrange(modulus) for _ in range(n)] for _ in range(n)]
        rows[n // 2] = [(a + b) % modulus for a, b in zip(rows[0], rows[1])]
        yield make("reductions", f"rank {n} rows mod {modulus}",
                   (modulus_lines(modulus) + [tolvex_dense("a", rows)], "[b] := [a]; r := Rowreduce([b])", "r"),
                   ([gp_dense(rows, f"*Mod(1,{modulus})")], "r=matrank(m)", "r"))
    for n in (30, 60):
        rng = random.Random(n)
        rows = table(rng, n, n, 9)
        yield make("reductions", f"elimination without fractions {n} rows Z",
                   ([tolvex_dense("a", rows)], "[b] := [a]; r := FFLU([b])", f"b[{n},{n}]^2 | {PRIME}"),
                   ([gp_dense(rows)], "d=matdet(m,1)", f"d^2%{PRIME}"))
    for n in (20, 40):
        rng = random.Random(n)
        rows = table(rng, n, n + 5, 9)
        yield make("reductions", f"reduced echelon form {n} by {n + 5} Q",
                   ([tolvex_dense("a", rows)], "[b] := [a]; r := Redrowech([b])", "r"),
                   ([gp_dense([row[:n] for row in rows]), gp_dense([row[n:] for row in rows]).replace("m=", "w=")],
                    "z=matsolve(m,w)", f"matsize(z)[1]"))


def minors(make):
    names = ["x", "y", "z"]
    for n, variables in ((10, 1), (14, 1), (8, 3)):
        rng = random.Random(n)

        def entry():
            return f"{rng.randint(1, 9)}*{rng.choice(names[:variables])}+{rng.randint(1, 9)}"
        rows = [[entry() for _ in range(n)] for _ in range(n)]
        sparse = [{c: v for c, v in enumerate(row)} for row in rows]
        point = {"x": 3, "y": 5, "z": 7}
        at = "d"
        for name in names[:variables]:
            at = f"subst({at},{name},{point[name]})"
        matrix = ",".join(",".join(row) for row in rows)
        ring = f"ring r=0,({','.join(names[:variables])}),dp"
        at_point = ",".join(str(point[name]) for name in names[:variables])
        yield make("expansion by minors", f"{n} rows, {variables} variables Z",
                   ([f"&(J > {','.join(names[:variables])})", f"&(D = {n})"] + tolvex_sparse("s", n, sparse),
                    "d := Det[s]", "d"),
                   ([gp_dense(rows)], "d=matdet(m)", f"{at}%{PRIME}"),
                   ([ring, f"matrix m[{n}][{n}]={matrix}", "poly d"], "d=det(m)",
                    f"ring values=0,a,dp; map at=r,{at_point}; bigint(leadcoef(at(d))) mod {PRIME}"),
                   check=(point, PRIME))


def polynomial(rng, names, degree, terms, size=9):
    """a sum of `terms` random monomials of total degree up to `degree`; terms 0: every monomial of degree 1"""
    if terms == 0:
        monomials = ["1"] + list(names)
    else:
        monomials = []
        for _ in range(terms):
            left, factors = degree, []
            for name in rng.sample(names, len(names)):
                e = rng.randint(0, left)
                left -= e
                factors += [f"{name}^{e}"] if e else []
            monomials.append("*".join(factors) or "1")
    return "+".join(f"{rng.randint(1, size)}*{m}" for m in monomials)


# name, rows, variables, degree, terms of an entry, modulus
DETERMINANTS = (("linear", 8, 6, 1, 0, 0), ("linear", 8, 6, 1, 0, 32003), ("degree 5", 10, 1, 5, 6, 0),
                ("degree 5", 10, 1, 5, 6, 32003), ("degree 2", 6, 3, 2, 4, 0), ("degree 3", 6, 3, 3, 6, 0),
                ("degree 3", 6, 3, 3, 6, 32003), ("linear", 20, 1, 1, 0, 0), ("linear", 12, 2, 1, 0, 0),
                ("sparse linear", 10, 9, 1, 2, 0), ("degree 2", 4, 4, 2, 5, 0))


def polynomial_determinants(make):
    names = ["x", "y", "z", "t", "u", "v", "w", "r", "s"]
    for kind, n, variables, degree, terms, modulus in DETERMINANTS:
        rng = random.Random(n * variables + degree + modulus)
        used, values = names[:variables], [3, 5, 7, 11, 13, 17, 19, 23, 29]
        rows = [[polynomial(rng, used, degree, terms) for _ in range(n)] for _ in range(n)]
        point, prime = dict(zip(used, values)), modulus or PRIME
        at = "d"
        for name in used:
            at = f"subst({at},{name},{point[name]})"
        at_point = ",".join(str(point[name]) for name in used)
        ring = f"ring R={modulus},({','.join(used)}),dp"
        matrix = ",".join(",".join(row) for row in rows)
        value = "at(d)" if modulus else f"bigint(leadcoef(at(d))) mod {PRIME}"
        yield make("determinants of polynomials", f"{n} rows {kind}, {variables} variables " +
                   (f"mod {modulus}" if modulus else "Z"),
                   ([f"&(J > {','.join(used)})"] + modulus_lines(modulus) + [tolvex_dense("m", rows)], "d := Det[m]", "d"),
                   ([gp_dense(rows, f"*Mod(1,{modulus})" if modulus else "")], "d=matdet(m)",
                    f"lift({at})%{prime}" if modulus else f"{at}%{prime}"),
                   ([ring, f"matrix m[{n}][{n}]={matrix}", "poly d"], "d=det(m)",
                    f"ring values={modulus},a,dp; map at=R,{at_point}; {value}"), check=(point, prime))


def inverses(make):
    for n, modulus in ((20, 0), (60, 0), (120, 0), (200, 10007), (500, 10007)):
        rng = random.Random(n + modulus)
        rows = table(rng, n, n, 9)
        label = f"mod {modulus}" if modulus else "Z"
        prime = modulus or PRIME
        unit = f"*Mod(1,{modulus})" if modulus else ""
        det = "" if modulus else "*matdet(m)"
        yield make("inverses", f"{n} rows {label}",
                   (modulus_lines(modulus) + [tolvex_dense("a", rows)], "[b] := 1/[a]",
                    "b[2,3]" if modulus else f"b[2,3]*Det[a] | {PRIME}"),
                   ([gp_dense(rows, unit)], "b=1/m", f"lift(b[2,3]{det})%{prime}" if modulus else f"(b[2,3]{det})%{prime}"),
                   check=({}, prime))
    for n, variables, degree, terms in ((12, 1, 2, 3), (5, 2, 2, 3)):
        rng = random.Random(n)
        used = ["x", "y"][:variables]
        rows = [[polynomial(rng, used, degree, terms) for _ in range(n)] for _ in range(n)]
        at = "w"
        for name, value in zip(used, (3, 5)):
            at = f"subst({at},{name},{value})"
        yield make("inverses", f"{n} rows, {variables} variables degree {degree} Z",
                   ([f"&(J > {','.join(used)})", tolvex_dense("a", rows)], "[b] := 1/[a]", "b[2,3]*Det[a]"),
                   ([gp_dense(rows)], "b=1/m", f"w=b[2,3]*matdet(m);{at}%{PRIME}"),
                   check=(dict(zip(used, (3, 5))), PRIME))


def adjoints(make):
    names = ["x", "y", "z", "t"]
    for n, variables, degree, terms in ((8, 3, 1, 0), (6, 2, 2, 3), (8, 4, 1, 2)):
        rng = random.Random(n * variables)
        used = names[:variables]
        rows = [[polynomial(rng, used, degree, terms) for _ in range(n)] for _ in range(n)]
        point = dict(zip(used, (3, 5, 7, 11)))
        at = "b[2,3]"
        for name in used:
            at = f"subst({at},{name},{point[name]})"
        yield make("adjoints", f"{n} rows, {variables} variables degree {degree} Z",
                   ([f"&(J > {','.join(used)})", tolvex_dense("a", rows)], "[b] := Adjoint[a]", "b[2,3]"),
                   ([gp_dense(rows)], "b=matadjoint(m)", f"{at}%{PRIME}"), check=(point, PRIME))


def characteristic_polynomials(make):
    for n, modulus in ((60, 0), (100, 0), (200, 10007), (300, 2147483629)):
        rng = random.Random(n + modulus)
        rows = table(rng, n, n, 9) if not modulus else [[rng.randrange(modulus) for _ in range(n)] for _ in range(n)]
        unit = f"*Mod(1,{modulus})" if modulus else ""
        setup = ["&(J = x)"] + modulus_lines(modulus) + [tolvex_dense("a", rows)]
        value = "lift(subst(f,x,3))" if modulus else f"subst(f,x,3)%{PRIME}"
        yield make("characteristic polynomials", f"{n} rows " + (f"mod {modulus}" if modulus else "Z"),
                   (setup, "f := Chpoly[a]", "f#(x = 3)" if modulus else f"(f#(x = 3)) | {PRIME}"),
                   ([gp_dense(rows, unit)], "f=charpoly(m)", value), check=({}, modulus or PRIME))
    for n, names in ((20, "y"), (10, "yz"), (7, "yzu")):
        rng = random.Random(n)
        rows = [["+".join(f"{rng.randint(1, 9)}*{v}" for v in names) + f"+{rng.randint(1, 9)}" for _ in range(n)]
                for _ in range(n)]
        point = {"x": 3, "y": 5, "z": 7, "u": 11}
        at = "f"
        for name in "x" + names:
            at = f"subst({at},{name},{point[name]})"
        yield make("characteristic polynomials", f"{n} rows, linear in {len(names)} variables Z",
                   ([f"&(J > x,{','.join(names)})", tolvex_dense("a", rows)], "f := Chpoly[a]", "f"),
                   (["x;y;z;u;", gp_dense(rows)], "f=charpoly(m)", f"{at}%{PRIME}"),
                   check=({k: v for k, v in point.items() if k == "x" or k in names}, PRIME))
    for n, modulus in ((30, 0), (100, 10007)):
        rng = random.Random(n + modulus + 1)
        rows = [[rng.randint(-4, 4) if rng.random() < 0.2 else 0 for _ in range(n)] for _ in range(n)]
        if modulus:
            rows = [[v % modulus for v in row] for row in rows]
        unit = f"*Mod(1,{modulus})" if modulus else ""
        value = "lift(subst(f,x,3))" if modulus else f"subst(f,x,3)%{PRIME}"
        yield make("minimal polynomials", f"{n} rows " + (f"mod {modulus}" if modulus else "Z"),
                   (["&(J = x)"] + modulus_lines(modulus) + [tolvex_dense("a", rows)], "f := Minpoly[a]",
                    "f#(x = 3)" if modulus else f"(f#(x = 3)) | {PRIME}"),
                   ([gp_dense(rows, unit)], "f=minpoly(m)", value), check=({}, modulus or PRIME))


def normal_forms(make):
    for n in (30, 60, 100):
        rng = random.Random(n)
        rows = table(rng, n, n, 9)
        setup, last = [tolvex_dense("a", rows)], f"b[{n},{n}] | {PRIME}"
        yield make("normal forms", f"Hermite form {n} rows",
                   (setup, "[b] := [a]; r := Hermite([b])", "Prod<i = 1, %d>[b[i,i]] | %d" % (n, PRIME)),
                   ([gp_dense(rows)], "h=mathnf(m)", f"matdet(h)%{PRIME}"), check=({}, PRIME))
        yield make("normal forms", f"Smith form {n} rows",
                   (setup, "[b] := [a]; r := Smith([b])", last),
                   ([gp_dense(rows)], "s=matsnf(m)", f"s[1]%{PRIME}"), check=({}, PRIME))
        if n <= 60:
            yield make("normal forms", f"Smith form with transformations {n} rows",
                       (setup, "[b] := [a]; r := Smith([b], [p], [q])", last),
                       ([gp_dense(rows)], "s=matsnf(m,1)", f"s[3][1,1]%{PRIME}"), check=({}, PRIME))


def tasks(make):
    """`make` is the class Task of bench/compare."""
    for family in (sparse_determinants, reductions, minors, polynomial_determinants, inverses, adjoints,
                   characteristic_polynomials, normal_forms):
        yield from family(make)
