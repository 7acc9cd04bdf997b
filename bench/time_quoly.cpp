// Timings of rational numbers and rational functions, and of their text.
#include "numbers/number_modes.h"
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_display.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/support.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
using namespace tolvex;

static void set_up(int32_t p, int32_t vars) {
    test::set_up_once();
    init_quoly_constants();
    ring_enter_integers();
    while (number_polys > 0) delete_poly_name(1);
    const char* names[] = {"x", "y", "z"};
    for (int32_t i = 0; i < vars; i++) {
        tokentipe t = {};
        tok_set(t, names[i]);
        insert_poly_name(t, 1);
    }
    pseudo_polynames = polynames;
    if (p != 0) ring_enter_prime(p);
}

static quoly variable(int32_t level) {
    poly x = nullptr;
    base_poly(&x, level);
    quoly q = nullptr;
    poly_to_quoly(&x, &q);
    return q;
}

static quoly constant(int32_t n) {
    quoly q = nullptr;
    quoly_set(n, &q);
    return q;
}

/// 1/(x + i y + j)
static quoly reciprocal_of_form(int32_t i, int32_t j) {
    quoly s = variable(1);
    if (i != 0) {
        quoly y = variable(2), c = constant(i);
        fast_quoly_mult(&y, c);
        best_quoly_add(&s, y);
        free_quoly(&c);
    }
    best_quoly_add(&s, constant(j));
    quoly_reciprocal(&s);
    return s;
}

static void small_rational_sum(benchmark::State& state) {
    set_up(0, 0);
    quoly a = constant(2), b = constant(3), r = nullptr;
    quoly_reciprocal(&a);
    quoly_reciprocal(&b);
    for (auto _ : state) quoly_add(a, b, &r);
    free_quoly(&a), free_quoly(&b), free_quoly(&r);
}
BENCHMARK(small_rational_sum);

static void small_rational_product(benchmark::State& state) {
    set_up(0, 0);
    quoly a = constant(3), b = constant(7), r = nullptr;
    quoly_reciprocal(&a);
    quoly_quot(b, a, &b, 0);
    quoly_reciprocal(&b);
    for (auto _ : state) quoly_mult(a, b, &r);
    free_quoly(&a), free_quoly(&b), free_quoly(&r);
}
BENCHMARK(small_rational_product);

static void integer_sum(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(0)), 0);
    quoly a = constant(12345), b = constant(54321), r = nullptr;
    for (auto _ : state) quoly_add(a, b, &r);
    free_quoly(&a), free_quoly(&b), free_quoly(&r);
}
BENCHMARK(integer_sum)->Arg(0)->Arg(65537);

/// The harmonic number H_n.
static void harmonic_number(benchmark::State& state) {
    set_up(0, 0);
    for (auto _ : state) {
        quoly sum = constant(0);
        for (int32_t i = 1; i <= state.range(0); i++) {
            quoly t = constant(i);
            quoly_reciprocal(&t);
            best_quoly_add(&sum, t);
        }
        free_quoly(&sum);
    }
}
BENCHMARK(harmonic_number)->Arg(20)->Arg(1000);

/// sum of 1/(x + i), i = 1 .. n
static void sum_in_one_variable(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(1)), 1);
    for (auto _ : state) {
        quoly sum = constant(0);
        for (int32_t i = 1; i <= state.range(0); i++) best_quoly_add(&sum, reciprocal_of_form(0, i));
        free_quoly(&sum);
    }
}
BENCHMARK(sum_in_one_variable)
    ->Args({40, 0})
    ->Args({100, 0})
    ->Args({40, 65537})
    ->Unit(benchmark::kMillisecond);

/// sum of 1/(x + i y + j) over a grid
static void sum_in_two_variables(benchmark::State& state) {
    set_up(static_cast<int32_t>(state.range(2)), 2);
    for (auto _ : state) {
        quoly sum = constant(0);
        for (int32_t i = 1; i <= state.range(0); i++)
            for (int32_t j = 1; j <= state.range(1); j++) best_quoly_add(&sum, reciprocal_of_form(i, j));
        free_quoly(&sum);
    }
}
BENCHMARK(sum_in_two_variables)
    ->Args({3, 4, 0})
    ->Args({4, 5, 0})
    ->Args({4, 5, 65537})
    ->Unit(benchmark::kMillisecond);

/// The text of (x + y + 1)^n, which has (n+1)(n+2)/2 terms.
static void display_of_power(benchmark::State& state) {
    set_up(0, 2);
    quoly q = variable(1);
    best_quoly_add(&q, variable(2));
    best_quoly_add(&q, constant(1));
    quoly_compute_power(&q, static_cast<int32_t>(state.range(0)));
    int64_t bytes = 0;
    for (auto _ : state) {
        char* data = nullptr;
        size_t size = 0;
        FILE* f = open_memstream(&data, &size);
        quoly_display(f, 0, q);
        fclose(f);
        bytes += static_cast<int64_t>(size);
        free(data);
    }
    state.SetBytesProcessed(bytes);
    free_quoly(&q);
}
BENCHMARK(display_of_power)->Arg(20)->Arg(100);

BENCHMARK_MAIN();
