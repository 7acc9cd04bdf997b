"""Random sessions in the whole language of the terminal: expressions, statements, control, functions with Compile and
Integer, arrays dense and sparse and their expressions, ground rings and variables, switches and commands, files that are
saved and run. Used by fuzz.py."""

NAMES = ["a", "b", "c", "u1", "longname_x", "x", "y", "z", "t"]
ARRAYS = ["m", "n", "s", "v", "a", "w"]
VARIABLES = ["x", "y", "z", "t"]
FILES = ["prog", "spoilt", "one", "two", "missing", "."]
MODULI = ["2", "3", "5", "6", "7", "12", "101", "256", "65536", "32003", "65535", "65537", "2147483629", "2147483646"]
ONE = ["Deg", "Codeg", "Denom", "Numer", "Lcoef", "Level", "Terms", "Numb", "Rat", "Isprime", "Prime", "Sqrt", "Height",
       "Vars", "Numcon", "Log", "Ncoef", "Ntcoef", "Zcoef", "Lterm", "Lmon", "Flcoef", "Var", "Char", "Fterms", "Content",
       "Sqfree", "Irred", "Pth", "Bell", "Raise", "Lower", "Rcoef", "Rname", "Reverse", "Totdeg", "Poly", "Killden", "Zap"]
TWO = ["GCD", "Bin", "Divides", "Equal", "Equals", "Remquot", "Monless", "Coef", "Nmcoef", "Mcoef", "Mcoefs", "Deriv",
       "Powermod", "LCM", "Egcd", "Odiv", "Sdiv", "Swap", "Move", "Ord", "Raise", "Lower", "Split", "Splice", "Poly"]
OF_ARRAY = ["Deg", "Cols", "Sumall", "Trace", "Sort", "Sparse", "STrans", "Iszero", "Vars", "Mons", "Killden", "Height", "Deriv",
            "Det", "Det", "Det^", "Det_+", "Detmin", "Chpoly", "Minpoly", "Hamilton"]
REDUCTIONS = ["Rowreduce", "Colreduce", "Redrowech", "FFLU", "FFLUC", "Normalize", "Pseudet", "Hermite", "Smith", "MSmith", "Minors"]
TO_ARRAY = ["Trans", "Diag", "Adjoint", '"', "~", "$", "-", "|", "Reverse", "Rcoef"]
SWITCHES = ["N", "E", "t", "U", "_l", "H", "V", "l", "e", "n", "_s", "_t", "W", "|", "Z", "m", "a", "d", "D", "u", "#", "_d",
            "_k", "_r", "L", "_L", "K", "X", "A", "B", "I", "O", "b", "c", "&", "C", "h", "j", "G", "_G", "T", "Y", "_Q", "v",
            "v:", "f", "f*", "f,F", "f<F", "g", "longer", "M", "w", "i", "k", "_j", "z", "0", "3", "7", "9"]
SPOILERS = "()[]{}:;=+-*/^!#\"'|<>,.&_@?%$\\`~ \t\r\x00\xa5\xc2abF1"


def pick(rng, choices, below=None):
    """what one of the routines gives: choices are pairs (weight, routine), of which the first `below` of all weight count"""
    at = rng.randrange(below or sum(weight for weight, _ in choices))
    for weight, routine in choices:
        if at < weight:
            return routine()
        at -= weight
    raise ValueError("less weight than wanted")


class Grammar:
    def __init__(self, rng):
        self.rng = rng

    def one_of(self, *choices):
        """the text that one of the routines makes"""
        return self.rng.choice(choices)()

    def name(self):
        return self.rng.choice(NAMES)

    # Expressions

    def number(self):
        r = self.rng
        return pick(r, [
            (6, lambda: str(r.randrange(12))),
            (2, lambda: str(r.choice([2**28, 2**28 - 1, 2**31, 2**56, 10**8, 10**16]) + r.randrange(-2, 3))),
            (1, lambda: str(r.randrange(10 ** r.randrange(1, 60)))),
            (1, lambda: f"{r.randrange(30)}.{r.randrange(1000)}"),
            (2, lambda: "0" * r.randrange(1, 20) + str(r.randrange(100))),
        ])

    def element(self):
        """an element of an array, or a value that a subscript selects"""
        r = self.rng
        subscripts = [str(r.randrange(6)) if r.random() < 0.7 else self.expression(1) for _ in range(r.choice([1, 1, 2, 2, 2, 3]))]
        return r.choice([r.choice(ARRAYS), r.choice(ARRAYS), f"%[{r.randrange(4)}]", "<"]) + "[" + ", ".join(subscripts) + "]"

    def factor(self, depth):
        r, e = self.rng, self.expression
        return pick(r, [
            (6, lambda: r.choice([self.number, self.name])()),
            (6, lambda: f"({e(depth - 1)})"),
            (3, lambda: f"{self.factor(depth - 1)}^{r.choice(['2', '3', '0', '1', '-1', '-2', '5', '(1+1)', '_7', '300000000'])}"),
            (1, lambda: f"-{self.factor(depth - 1)}"),
            (1, lambda: f"|{e(depth - 1)}|"),
            (1, lambda: r.choice(["$", "_", "*", "<", "!", "'", ".", "%", "@", "?", "#"]) + self.factor(depth - 1)),
            (2, lambda: f"{r.choice(ONE)}({e(depth - 1)})"),
            (1, lambda: f"{r.choice(TWO)}({e(depth - 1)}, {e(depth - 1)}{r.choice(['', '', '', f', {e(0)}', f', {e(0)}, {e(0)}'])})"),
            (1, lambda: self.factor(depth - 1) + '"'),
            (1, lambda: str(r.randrange(60)) + "!"),
            (1, lambda: f"{self.factor(depth - 1)}#{r.choice(['({})', '(x={})', '({}, 2)', '(y={}, x=1)']).format(e(depth - 1))}"),
            (1, lambda: f"'{r.choice('aZ ;0')}'"),
            (2, self.element),
            (1, lambda: f"{r.choice(OF_ARRAY)}{r.choice(['{}', '({})'])}".format(self.matrix(depth - 1))),
            (1, lambda: self.of_matrix(depth - 1)),
            (2, lambda: r.choice(["Modulus", "Modmode", "Numvars", "<", "True", "Rand", "Randint", "Time", "Nofunction(1)", "nope[1]",
                         f"{r.choice('FG')}({e(0)})", f"F([{r.choice(ARRAYS)}])"])),
        ], below=31 if depth > 0 else 6)

    def of_matrix(self, depth):
        """values of matrices with further arguments"""
        r, e, m = self.rng, self.expression, self.matrix
        return r.choice([
            lambda: f"Det({m(depth)}, {r.choice(['', e(0)])}, {r.choice(['', '4', '9'])}, {r.choice(['', '3'])}, {r.choice('234')})",
            lambda: f"SDet({r.randrange(9)}, [{r.choice(ARRAYS)}]{r.choice(['', ', ' + e(0)])})",
            lambda: f"Det#({m(0)} {r.choice('=<>')} {e(0)})",
            lambda: f"Chpoly({m(depth)}, {self.name()})",
            lambda: f"Minpoly({m(depth)}, {r.randrange(5)}{r.choice(['', ', 1000'])})",
            lambda: f"Hamilton({m(0)}, {r.choice(['1', '50', e(0)])})",
            lambda: f"{r.choice(['Factor', 'Sqfree'])}({e(depth)}, [{r.choice(ARRAYS)}]{r.choice(['', ', 1', ', 0', ', 2'])})",
            self.reduction,
        ])()

    def reduction(self):
        r = self.rng
        arrays = [r.choice(["", "*"]) + f"[{r.choice(ARRAYS)}]"]
        arrays += [r.choice(["", f"[{r.choice(ARRAYS)}]"]) for _ in range(r.choice([0, 0, 1, 2, 3, 4, 5, 7]))]
        return f"{r.choice(REDUCTIONS)}({', '.join(arrays)}{r.choice(['', '', '', ', 2'])})"

    def expression(self, depth):
        parts = [self.factor(depth)]
        for _ in range(self.rng.choice([0, 0, 1, 1, 2, 3])):
            parts.append(self.rng.choice(["+", "-", "*", "/", " ", "//", "\\", "|", " + ", "*"]))
            parts.append(self.factor(depth))
        return "".join(parts)

    def condition(self):
        r = self.rng
        sign = r.choice(["<", ">", "=", "<=", ">=", "<>"])
        one = f"{self.expression(1)} {sign} {self.expression(1)}"
        if r.random() < 0.2:
            one = f"[{one}] {r.choice(['and', 'or'])} {r.choice(['', 'not '])}[{self.expression(0)} = 0]"
        return one

    # Arrays

    def block(self):
        side = lambda: self.rng.choice(["", "1", "2", "1~2", "2~", "~2", "3~1", self.expression(0)])
        return f"[{self.rng.choice(ARRAYS)}[{side()},{side()}]]"

    def rows(self, depth):
        cols = self.rng.randrange(1, 4)
        rows = (", ".join(self.expression(depth) for _ in range(cols)) for _ in range(self.rng.randrange(1, 4)))
        return "[" + "".join(f"[{row}]" for row in rows) + "]"

    def sparse_row(self):
        pairs = ", ".join(f"[{c}, {self.expression(0)}]" for c in sorted(self.rng.sample(range(1, 6), 2)))
        return f"[[{self.rng.randrange(1, 4)}, {pairs}]]"

    def literal(self, depth):
        r, e = self.rng, self.expression
        return pick(r, [
            (3, lambda: self.rows(depth)),
            (1, lambda: "[(" + ", ".join(e(depth) for _ in range(r.randrange(1, 5))) + ")]"),
            (1, lambda: f"[<i={r.randrange(3)},{r.randrange(4)}><j=1,{r.randrange(4)}> {e(depth)}]"),
            (1, lambda: "[<i=1,{0}><j=1,{0}> {1}]".format(r.randrange(4, 14), r.choice(["(7i+3j)^3|11", "1/(i+j)", "(x+i)^2*j|5", e(1)]))),
            (1, self.sparse_row),
            (2, lambda: r.choice(["'text'", f"[{e(0)}]", "[Rand]", "[]", "[x]"])),
        ])

    def operation(self, depth):
        r = self.rng
        right = self.matrix(depth - 1) if r.random() < 0.7 else self.factor(1)
        return f"{self.matrix(depth - 1)} {r.choice('+-*/_|') if r.random() < 0.95 else '^'} {right}"

    def matrix(self, depth):
        r = self.rng
        return pick(r, [
            (4, lambda: f"[{r.choice(ARRAYS)}]"),
            (1, lambda: self.literal(0)),
            (1, lambda: self.literal(1)),
            (1, self.block),
            (1, lambda: f"{self.matrix(depth - 1)}^{r.choice(['2', '3', '0', '-1', '(1+1)', 'a'])}"),
            (1, lambda: r.choice(TO_ARRAY) + self.matrix(depth - 1) + r.choice(["", "", "|"])),
            (1, lambda: r.choice([f"Altmult({self.matrix(0)}, {self.matrix(0)})", f"Altpower({self.matrix(0)}, {r.randrange(4)})",
                             f"MPowermod({self.matrix(0)}, {r.randrange(9)}, {self.expression(0)})", f"({self.expression(1)})#{self.matrix(0)}",
                             f"{self.matrix(0)}#{r.choice(['2', '(x=1)', '(y=x)'])}", f"[%[{r.randrange(4)}]]", "[<]"])),
            (2, lambda: self.operation(depth)),
        ], below=12 if depth > 0 else 5)

    def creation(self, array):
        r, e = self.rng, self.expression
        shape = r.choice(["3", "2,2", "3,2", "1,4", "2,3", e(1), f"{e(0)}, {e(0)}", "0", "-1,2", "3,3,3"])
        return f"Array {array}[{shape}]{r.choice(['', '', ' Sparse', ', ' + r.choice(ARRAYS) + '[2,2]'])}"

    def array_statement(self):
        r, e, array = self.rng, self.expression, self.rng.choice(ARRAYS)
        return pick(r, [
            (3, lambda: self.creation(array)),
            (4, lambda: f"{self.element()} := {e(2)}"),
            (1, lambda: f"{self.element()}:{r.choice('+-')}{r.choice(['', '2', 'a'])}"),
            (5, lambda: f"[{array}] := {self.matrix(2)}"),
            (2, lambda: f"{self.block()} := {r.choice([self.matrix(1), e(1)])}"),
            (1, lambda: self.matrix(2)),
            (1, lambda: f"!([{array}]{r.choice(['', ':8', ':char', ':0'])})"),
            (1, lambda: r.choice([f"@[{array}]", f"@[*{array}]", f"@<[{array}]>", "@[**]", f"@[{array}, {array}]", f"@[%[{r.randrange(4)}]]"])),
            (2, self.reduction),
            (1, lambda: r.choice([f"Sparse[{array}]", f"Sort[{array}]", f"Switchrow([{array}], {r.randrange(4)}, {r.randrange(4)})",
                             f"Switchcol([{array}], {r.randrange(4)}, {r.randrange(4)})", f"STrans[{array}]",
                             f"Synth([{array}], [{r.choice(ARRAYS)}], {r.randrange(9)})", f"Swap([{array}], [{r.choice(ARRAYS)}])",
                             f"Move([{array}], [{r.choice(ARRAYS)}])"])),
            (1, lambda: f"%[{r.choice(['0', '1', '2', '399999', '400000', '-1'])}] := {r.choice([self.matrix(1), e(1)])}"),
            (1, lambda: f"for i = [{array}] {r.randrange(4)}, {r.randrange(4)} do {self.body(0)} od"),
            (1, lambda: f"Diag[{array}] := {self.matrix(1)}"),
        ])

    # Statements

    def ring_statement(self):
        r = self.rng
        return pick(r, [
            (5, lambda: f"&(J {r.choice(['=', '>'])} {r.choice(VARIABLES)})"),
            (2, lambda: f"&(J = -{r.choice(VARIABLES)}{r.choice(['', ' = 2', ' = 0', ' = 1/2'])})"),
            (4, lambda: f"&(p = {r.choice(MODULI + ['_i', '_i', '_i', '1', '0', '-3', '2147483647'])})"),
            (2, self.field),
            (1, lambda: r.choice([f"&(p = 7: {self.name()})", f"&p({self.name()}, [{r.choice(ARRAYS)}])", f"&_m({self.expression(2)})"])),
        ])

    def field(self):
        """a modding polynomial of the first variable, or none"""
        r, v = self.rng, self.rng.choice(VARIABLES)
        modder = r.choice([f"{v}^2 - 2", f"{v}^2 + {v}", f"{v}^3 + {v} + 1", f"{v}^4", f"{v}^2 - 1/3", v, self.expression(1),
                           f"{v}^{r.randrange(2, 6)} + ({r.randrange(-15, 16)}){v} + {r.randrange(-15, 16)}"])
        return r.choice([f"&(P = {modder}{r.choice(['', ', 1', ', 1', ', 1, 3', ', 2'])})", f"&(P = {modder}, 1)", f"&(P = -{v})", "&P"])

    def ring_walk(self):
        """values over a field that go through several ground rings"""
        r = self.rng
        lines = [f"&(J > {', '.join(r.sample(VARIABLES, 3))})", self.field()]
        for _ in range(r.randrange(4, 14)):
            v, w = r.sample(VARIABLES, 2)
            lines.append(pick(r, [
                (3, lambda: f"&(p = {r.choice(MODULI + ['_i', '_i', '_i'])})"),
                (2, self.field),
                (1, lambda: f"&(J > {v})"),
                (4, lambda: f"a := ({v} + {r.randrange(9)}{w})^{r.randrange(9)}/({v} + {r.randrange(9)}{w} + {r.randrange(9)})"),
                (2, lambda: f"GCD({v}^{r.randrange(9)} - a, ({v} + {w})*a)"),
                (1, lambda: f"[m] := [[{v}, a]['{w}', 1/({v} + {w})]]".replace("'", "")),
            ]))
        return lines

    def nested(self):
        """a statement where a value is wanted: while modular arithmetic is suspended, as an answer"""
        r = self.rng
        inner = r.choice([self.ring_statement, self.field, self.command, lambda: self.simple(1)])()
        return r.choice([f"&_m({inner})", f"&{r.choice(SWITCHES)}\n{inner}", f"a[{inner}]", f"x^({inner})",
                         f"for i = 1 to ({inner}) do a od", f"3*Det[<i=1,2><j=1,2> {inner}]"])

    def command(self):
        r = self.rng
        return pick(r, [
            (4, lambda: f"&({r.choice(SWITCHES)} = {r.choice(['0', '1', '0', '1', '2', '5', '80', '400', '-1', 'a', '10000000000'])})"),
            (4, lambda: f"&{r.choice(SWITCHES)}"),
        ])

    def file_statement(self):
        name = self.rng.choice(FILES)
        return self.rng.choice([f"&(R = '{name}')", f"&(R = '{name}')", f"&(S = '{self.rng.choice(['one', 'two'])}')", "&s", "&(S = '@')",
                                "&r", "&x", "!(&o, a, 'text')", f"!(&o, [{self.rng.choice(ARRAYS)}])"])

    def simple(self, depth):
        r = self.rng
        return pick(r, [
            (4, lambda: self.expression(depth)),
            (4, lambda: f"{self.name()} := {self.expression(depth)}"),
            (2, lambda: f"{self.name()}:{r.choice('+-')}{r.choice(['', '3', '(2)', 'a'])}"),
            (2, self.array_statement),
        ])

    def body(self, depth):
        r = self.rng
        out = []
        for _ in range(r.randrange(1, 4)):
            if depth > 0 and r.random() < 0.2:
                out.append(self.control(depth - 1))
            else:
                out.append(r.choice([self.simple(1)] * 9 + ["Return a", "&>", "&]", "&}", f"@{self.name()}", "&(p = 7)", "{note}"]))
        return "; ".join(out)

    def definition(self, depth):
        r = self.rng
        first = r.choice(["", "", "Integer; ", "Compile; ", "Integer; Compile; ", f"{self.body(0)}; Compile(a, b); ",
                          f"Compile*({self.name()}); ", f"{self.body(0)}; Integer; "])
        parameters = r.choice(["a", "a, b", "^a", "a; c", "", "m", "^m, ^n", "a, a"])
        return f"Func {r.choice('FG')}({parameters}) = {first}{self.body(depth)} ."

    def control(self, depth):
        r, e = self.rng, self.expression
        return pick(r, [
            (2, lambda: f"if {self.condition()} then {self.body(depth)}{r.choice(['', f' else {self.body(depth)}'])} fi"),
            (1, lambda: f"while {self.condition()} do {self.body(depth)}; &> od"),
            (1, lambda: f"for {self.name()} = {r.randrange(3)} to {r.randrange(6)}{r.choice(['', ' by 2'])} do {self.body(depth)} od"),
            (1, lambda: f"{r.choice(['Sigma', 'Prod'])}<{self.name()} = 1, {r.randrange(6)}>[{e(1)}]"),
            (1, lambda: self.definition(depth)),
            (1, lambda: f"{r.choice('FG')}({r.choice([e(1), self.name(), self.matrix(0), self.element(), e(0) + ', ' + self.name()])})"),
        ])

    def statement(self):
        r, depth = self.rng, self.rng.randrange(1, 5)
        return pick(r, [
            (12, lambda: self.expression(depth)),
            (10, lambda: f"{self.name()} := {self.expression(depth)}"),
            (2, lambda: f"{self.name()}:{r.choice('+-')}{r.choice(['', '3', '(2)', 'a'])}"),
            (6, self.ring_statement),
            (4, self.command),
            (1, lambda: f"@{r.choice(NAMES + ['<F>', 'F', 'G', '*F', '<a>'])}"),
            (5, lambda: self.control(3)),
            (1, lambda: r.choice([f"!({self.expression(2)}, 'text', {self.expression(1)}:{r.randrange(12)})", f"?{self.name()}\n3", f"?[{r.choice(ARRAYS)}]\n1,2"])),
            (1, lambda: f"&_n {self.expression(2)}"),
            (4, self.file_statement),
            (1, lambda: r.choice(["&_P", "&_p", "&@", "F(1)\n&_P"])),
            (13, self.array_statement),
            (2, self.nested),
        ])

    def program(self):
        """a file of statements, now and then with a fault; `&M` in one that runs itself would ask for all that is typed"""
        lines = []
        for _ in range(self.rng.randrange(1, 25)):
            line = self.statement().replace("&M", "&(M = 'more')")
            if self.rng.random() < 0.04:
                line = self.spoil(line)
            lines.append(line + self.rng.choice([";", ";", ";", "; a remark", ""]))
        return "\n".join(lines).encode("latin-1", "replace")

    def prologue(self):
        """a ring and arrays, so that what follows has something to work on"""
        r = self.rng
        lines = [r.choice(["", "&(J > x)", "&(J > x, y)", "&(J > x, y, z)"]), r.choice(["", "", f"&(p = {r.choice(MODULI)})", self.field()])]
        for array in ARRAYS:
            n = r.choice([1, 2, 2, 3, 3, 4, 5, 8, 13])
            element = r.choice(["(7i+3j)^3|11", "i-j", "i+j|3", "1/(i+j)", "(x+i)^2*j|5", "x*i+y*j", self.expression(1)])
            lines.append(f"[{array}] := [<i=1,{n}><j=1,{r.choice([n, n, n, n + 1, 2])}> {element}]")
            if r.random() < 0.4:
                lines.append(f"Sparse[{array}]")
        return lines

    def session(self):
        lines = self.prologue() if self.rng.random() < 0.4 else []
        if self.rng.random() < 0.15:
            lines = self.ring_walk()
        for _ in range(self.rng.randrange(5, 60)):
            line = self.statement()
            if self.rng.random() < 0.12:
                line = self.spoil(line)
            lines.append(line + self.rng.choice(["", "", "", "", ";", ":", " ;", "`", "@", " {c}"]))
        return "\n".join(lines).encode("latin-1", "replace")

    # Faults

    def spoil(self, line):
        line = list(line)
        for _ in range(self.rng.randrange(1, 4)):
            place = self.rng.randrange(len(line) + 1)
            what = self.rng.randrange(3)
            if what == 0 and line:
                del line[min(place, len(line) - 1)]
            elif what == 1:
                line.insert(place, self.rng.choice(SPOILERS))
            elif line:
                other = self.rng.randrange(len(line))
                line[other], line[min(place, len(line) - 1)] = line[min(place, len(line) - 1)], line[other]
        return "".join(line)

    def noise(self):
        return bytes(self.rng.randrange(256) if self.rng.random() < 0.3 else self.rng.choice(b"x1+*()[];:=&^/ \n")
                     for _ in range(self.rng.randrange(1, 400)))

    def files(self):
        """the files that lie in the folder when the session starts: name -> content"""
        prog = self.program()
        spoilt = bytearray(self.program() or b" ")
        for _ in range(self.rng.randrange(1, 6)):
            spoilt[self.rng.randrange(len(spoilt))] = self.rng.randrange(256)
        return {"prog": prog, "spoilt": bytes(spoilt) if self.rng.random() < 0.8 else self.noise()}
