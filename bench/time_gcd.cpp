// Greatest common divisors and exact quotients: coprime pairs as sums of rational functions make them,
// planted factors, dense powers.
#include "gcd/polygcd.h"
#include "poly/div_general.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "tests/support/random_poly.h"

#include <benchmark/benchmark.h>
using namespace tolvex;
using namespace tolvex::test;

namespace {
void set_up(int32_t modulus) {
    set_up_once();
    use_variables(6);
    use_ring(modulus);
}

/// (f (f + 1)) / f with f = (1 + x + y + z + t)^k
void simplex_quotient(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(1)));
    poly f = poly_of("1 + x + y + z + t"), one = poly_of("1"), g = nullptr, h = nullptr, q = nullptr;
    compute_power(&f, static_cast<int32_t>(state.range(0)), polynames);
    poly_add(f, one, &g);
    poly_mult(f, g, &h, polynames);
    for (auto _ : state) {
        boolean failed = 0;
        gen_poly_divide(h, f, &q, polynames, &failed);
        if (failed || !poly_terms(q)) state.SkipWithError("wrong quotient");
    }
    free_poly(&f), free_poly(&g), free_poly(&h), free_poly(&one), free_poly(&q);
    use_integers();
}

/// A product of k forms x + i y + j against one that is none of them.
void coprime_forms(benchmark::State& state) {
    set_up(0);
    poly product = poly_of("1"), form = nullptr, g = nullptr;
    for (int64_t i = 0; i < state.range(0); i++) {
        const int32_t ex[] = {1, 0}, ey[] = {0, 1}, e1[] = {0, 0};
        form = term_poly(1, ex, 2);
        if (state.range(1) != 0 && i % 5 != 0) best_poly_add(form, term_poly(i % 5, ey, 2), &form);
        best_poly_add(form, term_poly(i / 5 + i + 1, e1, 2), &form);
        if (i + 1 < state.range(0)) {
            poly_mult(product, form, &product, polynames);
            free_poly(&form);
        }
    }
    for (auto _ : state) Lpolygcd(product, form, &g, 0, polynames);
    free_poly(&product), free_poly(&form), free_poly(&g);
}

/// Dense operands in `levels` variables of degree d each with a planted factor of the same shape.
void planted(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(2)));
    Rng rng(1);
    auto levels = static_cast<int32_t>(state.range(0)), degree = static_cast<int32_t>(state.range(1));
    int32_t terms = 1;
    for (int32_t i = 0; i < levels; i++) terms *= degree + 1;
    poly f[3];
    for (poly& p : f) {
        p = poly_of("0");
        for (int32_t i = 0; i < terms; i++) {
            int32_t e[6] = {}, rest = i;
            for (int32_t k = 0; k < levels; k++) e[k] = rest % (degree + 1), rest /= degree + 1;
            best_poly_add(p, term_poly(random_int(rng, 1, 1000), e, levels), &p);
        }
    }
    poly g = nullptr;
    poly_mult(f[0], f[2], &f[0], polynames);
    poly_mult(f[1], f[2], &f[1], polynames);
    for (auto _ : state) Lpolygcd(f[0], f[1], &g, 0, polynames);
    free_poly(&f[0]), free_poly(&f[1]), free_poly(&f[2]), free_poly(&g);
    use_integers();
}

/// Sparse operands in six variables with a planted factor: `terms` terms each, exponents up to `degree`.
void planted_sparse(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(2)));
    Rng rng(2);
    auto terms = static_cast<int32_t>(state.range(0)), degree = static_cast<int32_t>(state.range(1));
    poly f[3];
    for (poly& p : f) {
        p = poly_of("1");
        for (int32_t i = 1; i < terms; i++) {
            int32_t e[6];
            for (int32_t& x : e) x = random_int(rng, 0, degree);
            best_poly_add(p, term_poly(random_int(rng, 1, 99), e, 6), &p);
        }
    }
    poly g = nullptr;
    poly_mult(f[0], f[2], &f[0], polynames);
    poly_mult(f[1], f[2], &f[1], polynames);
    for (auto _ : state) Lpolygcd(f[0], f[1], &g, 0, polynames);
    if (poly_terms(g) != poly_terms(f[2])) state.SkipWithError("wrong gcd");
    free_poly(&f[0]), free_poly(&f[1]), free_poly(&f[2]), free_poly(&g);
    use_integers();
}
}  // namespace
BENCHMARK(simplex_quotient)->ArgsProduct({{6, 10, 14}, {0, 32003}})->Unit(benchmark::kMillisecond);
BENCHMARK(coprime_forms)->ArgsProduct({{2, 10, 20, 40}, {0, 1}})->Unit(benchmark::kMicrosecond);
BENCHMARK(planted)
    ->ArgsProduct({{1}, {10, 100, 500}, {0, 32003}})
    ->ArgsProduct({{2}, {3, 10, 20}, {0, 32003, 2}})
    ->ArgsProduct({{3}, {2, 5}, {0, 32003, 2}})
    ->ArgsProduct({{4}, {2}, {0, 32003}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(planted_sparse)
    ->ArgsProduct({{5, 20, 100}, {5, 20}, {0, 32003, 2147483629}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
