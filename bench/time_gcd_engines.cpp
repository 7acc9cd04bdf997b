// The engines of polygcd alone: images modulo many primes, and interpolation of the main variable, on dense
// operands with a planted factor of their own shape.
#include "gcd/engines.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "tests/support/random_poly.h"

#include <benchmark/benchmark.h>
using namespace tolvex;
using namespace tolvex::test;

namespace {
/// Every exponent up to `degree` in each of `levels` variables; coefficients of `digits` base-2^28 digits.
poly dense_box(Rng& rng, int32_t levels, int32_t degree, int32_t digits) {
    int32_t terms = 1;
    for (int32_t i = 0; i < levels; i++) terms *= degree + 1;
    poly p = poly_of("0");
    for (int32_t i = 0; i < terms; i++) {
        int32_t e[6] = {}, rest = i, none[6] = {};
        for (int32_t k = 0; k < levels; k++) e[k] = rest % (degree + 1), rest /= degree + 1;
        poly t = term_poly(random_int(rng, 1, k_max_digit), e, levels);
        for (int32_t d = 1; d < digits; d++) {
            poly c = term_poly(random_int(rng, 1, k_max_digit), none, levels);
            poly_mult(t, c, &t, polynames);
            free_poly(&c);
        }
        best_poly_add(p, t, &p);
    }
    return p;
}

struct Planted {
    poly u, v;
    Planted(benchmark::State& state, int32_t digits, int32_t modulus) {
        set_up_once();
        use_variables(6);
        use_ring(modulus);
        Rng rng(1);
        auto levels = static_cast<int32_t>(state.range(0)), degree = static_cast<int32_t>(state.range(1));
        poly c = dense_box(rng, levels, degree, digits);
        u = dense_box(rng, levels, degree, digits);
        v = dense_box(rng, levels, degree, digits);
        poly_mult(u, c, &u, polynames);
        poly_mult(v, c, &v, polynames);
        free_poly(&c);
    }
    ~Planted() {
        free_poly(&u), free_poly(&v);
        use_integers();
    }
};

void many_primes(benchmark::State& state) {
    Planted p(state, static_cast<int32_t>(state.range(2)), 0);
    poly g = nullptr;
    boolean success = 0;
    for (auto _ : state) {
        basic_mod_method(p.u, p.v, &g, &success, polynames);
        if (!success) state.SkipWithError("no gcd");
    }
    free_poly(&g);
}

void interpolation(benchmark::State& state) {
    Planted p(state, 1, static_cast<int32_t>(state.range(2)));
    poly g = nullptr;
    for (auto _ : state)
        if (!mod_multivar_Chinese(p.u, p.v, &g, p.u->exp / 2, polynames)) state.SkipWithError("no gcd");
    free_poly(&g);
}

void lifting(benchmark::State& state) {
    Planted p(state, static_cast<int32_t>(state.range(2)), 0);
    poly g = nullptr;
    boolean success = 0;
    for (auto _ : state) {
        basic_hensel(p.u, p.v, &g, &success, polynames);
        if (!success) state.SkipWithError("no gcd");
    }
    free_poly(&g);
}
}  // namespace
BENCHMARK(many_primes)
    ->Args({1, 100, 4})
    ->Args({2, 10, 3})
    ->Args({3, 5, 2})
    ->ArgNames({"levels", "degree", "digits"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(interpolation)
    ->Args({2, 20, 32003})
    ->Args({3, 8, 32003})
    ->Args({4, 4, 32003})
    ->Args({3, 8, 2147483629})
    ->ArgNames({"levels", "degree", "modulus"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(lifting)
    ->Args({1, 100, 4})
    ->ArgNames({"levels", "degree", "digits"})
    ->Unit(benchmark::kMillisecond);
