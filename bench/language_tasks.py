"""The evaluators themselves for bench/compare: loops, calls and updates, as functions of the two interpreters.

Each program is timed plainly and with the statements that the language offers for speed, Compile and Integer.
"""

MILLION = 10 ** 6

# name, set-up lines, plain body, body with Compile and Integer, operation, value; the same for gp
INCREMENTS = ("1e6 increments", "(n; s, i)", "for i = 1 to n do s:+ od; s", "Integer", "F(10^6)",
              "f(n)={my(s=0);for(i=1,n,s++);s}")
SUMS = ("1e6 sums s := s + i", "(n; s, i)", "for i = 1 to n do s := s + i|100 od; s", "Integer", "F(10^6)",
        "f(n)={my(s=0);for(i=1,n,s=s+i%100);s}")
PRODUCTS = ("1e6 modular products", "(n; s, i)", "s := 1; for i = 1 to n do s := s*7|1000003 od; s", "Integer", "F(10^6)",
            "f(n)={my(s=1);for(i=1,n,s=s*7%1000003);s}")
FIBONACCI = ("fib(23) by recursion", "(n)", "if n < 2 then n else F(n - 1) + F(n - 2) fi", "Integer", "F(23)",
             "f(n)={if(n<2,n,f(n-1)+f(n-2))}")
COLLATZ = ("Collatz steps up to 3000", "(n; i, k, c)",
           "for i = 1 to n do k := i; while k > 1 do if k|2 = 0 then k := k\\2 else k := 3*k + 1 fi; c:+ od od; c", "Integer",
           "F(3000)",
           "f(n)={my(k,c=0);for(i=1,n,k=i;while(k>1,if(k%2==0,k=k\\2,k=3*k+1);c++));c}")
SIEVE = ("sieve to 1e5 in an array", "(n; i, j, c)",
         "for i = 2 to n do f[i] := 1 od; for i = 2 to 316 do if f[i] = 1 then for j = i*i to n by i do f[j] := 0 od fi od; "
         "c := 0; for i = 2 to n do c := c + f[i] od; c", "Integer", "F(10^5)",
         "f(n)={my(v=vector(n,i,1),c=0);for(i=2,316,if(v[i]==1,forstep(j=i*i,n,i,v[j]=0)));for(i=2,n,c+=v[i]);c}")
POLYNOMIAL = ("2000 polynomial updates", "(n; p, i)", "p := 1; for i = 1 to n do p := p + i*x^i od; p#2|1000003", "Compile",
              "F(2000)", "f(n)={my(p=1);for(i=1,n,p=p+i*x^i);subst(p,x,2)%1000003}")


def tasks(make):
    """`make` is the class Task of bench/compare."""
    for name, parameters, body, fast, operation, gp in (INCREMENTS, SUMS, PRODUCTS, FIBONACCI, COLLATZ, SIEVE, POLYNOMIAL):
        argument = operation[2:-1].replace("10^6", str(MILLION)).replace("10^5", str(MILLION // 10))
        peer = ([gp], f"c=f({argument})", "c")
        statements = "Integer; Compile; " if fast == "Integer" else "Compile; "
        ring = ["&(J = x):"] if "x^" in body else []
        array = [f"Array f[{MILLION // 10}]"] if "f[" in body else []
        for group, front in (("language", ""), ("language, compiled", statements)):
            yield make(group, name, (ring + array + [f"Func F{parameters} = {front}{body}."], f"c := {operation}", "c"), peer)
