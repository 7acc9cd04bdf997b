// Products of polynomials: dense powers, sparse random operands, over Z and modulo 32003.
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_shape.h"
#include "tests/support/random_poly.h"

#include <benchmark/benchmark.h>
using namespace tolvex;
using namespace tolvex::test;

namespace {
/// (1 + x + y + z + t)^k
poly simplex_power(int32_t k) {
    poly f = poly_of("1 + x + y + z + t");
    compute_power(&f, k, nullptr);
    return f;
}

/// f g again and again; the operands are used up.
void time_product(benchmark::State& state, poly f, poly g) {
    for (auto _ : state) {
        poly h = nullptr;
        poly_mult(f, g, &h, nullptr);
        state.PauseTiming();
        free_poly(&h);
        state.ResumeTiming();
    }
    free_poly(&f), free_poly(&g);
    use_integers();
}

void simplex_product(benchmark::State& state) {
    set_up_once();
    use_ring(static_cast<int32_t>(state.range(1)));
    poly f = simplex_power(static_cast<int32_t>(state.range(0))), one = poly_of("1"), g = nullptr;
    poly_add(f, one, &g);
    free_poly(&one);
    time_product(state, f, g);
}

void simplex_power_of(benchmark::State& state) {
    set_up_once();
    use_ring(static_cast<int32_t>(state.range(1)));
    for (auto _ : state) {
        poly f = simplex_power(static_cast<int32_t>(state.range(0)));
        state.PauseTiming();
        free_poly(&f);
        state.ResumeTiming();
    }
    use_integers();
}

/// Exponents 0..40 in six variables, exactly as the comparison scripts make them.
poly sparse_operand(uint64_t seed, int32_t terms) {
    Rng rng(seed);
    poly sum = poly_of("0");
    for (int32_t i = 0; i < terms; i++) {
        int32_t e[6];
        for (int32_t& x : e) x = random_int(rng, 0, 40);
        best_poly_add(sum, term_poly(random_int(rng, 1, 30000), e, 6), &sum);
    }
    return sum;
}

void sparse_product(benchmark::State& state) {
    set_up_once();
    use_ring(static_cast<int32_t>(state.range(1)));
    auto terms = static_cast<int32_t>(state.range(0));
    poly f = sparse_operand(1, terms), g = sparse_operand(2, terms);
    time_product(state, f, g);
}

/// One level, all exponents 0..n, coefficients of one digit.
void dense_product(benchmark::State& state) {
    set_up_once();
    use_ring(static_cast<int32_t>(state.range(1)));
    Rng rng(3);
    auto degree = static_cast<int32_t>(state.range(0));
    poly f = dense_poly(rng, degree, Coefs::digit), g = dense_poly(rng, degree, Coefs::digit);
    time_product(state, f, g);
}

/// Small products: the list method (0) against the packed one (1), terms by terms.
void small_product(benchmark::State& state) {
    set_up_once();
    use_ring(static_cast<int32_t>(state.range(2)));
    Rng rng(7);
    auto terms = static_cast<int32_t>(state.range(0));
    poly f = random_nonzero_poly(rng, 3, terms, 6), g = random_nonzero_poly(rng, 3, terms, 6), h = nullptr;
    for (auto _ : state) {
        if (state.range(1))
            packed_poly_mult(f, g, &h);
        else
            simple_standard(f, g, poly_length(f), poly_length(g), &h);
        free_poly(&h);
    }
    free_poly(&f), free_poly(&g);
    use_integers();
}
}  // namespace
BENCHMARK(simplex_product)->ArgsProduct({{6, 10, 14}, {0, 32003, 2147483629}})->Unit(benchmark::kMillisecond);
BENCHMARK(simplex_power_of)->ArgsProduct({{14, 20}, {0, 32003}})->Unit(benchmark::kMillisecond);
BENCHMARK(sparse_product)
    ->ArgsProduct({{100, 500, 1500}, {0, 32003, 2147483629}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(dense_product)
    ->ArgsProduct({{30, 100, 300, 1000, 3000, 10000, 30000}, {0, 2, 32003, 2147483629}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(small_product)->ArgsProduct({{2, 3, 4, 5, 6, 8, 10, 12, 16, 20}, {0, 1}, {0, 32003}});
BENCHMARK_MAIN();
