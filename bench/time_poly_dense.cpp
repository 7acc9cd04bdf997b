// The dense one-variable engine: products, gcds and divisions of random operands of equal degree, as arrays
// and with the way from and to the sparse form.
#include "poly/dense_basic.h"
#include "poly/dense_divide.h"
#include "poly/dense_gcd.h"
#include "poly/dense_mult.h"
#include "poly/div_field.h"
#include "tests/support/random_poly.h"

#include <benchmark/benchmark.h>
#include <vector>
using namespace tolvex;
using namespace tolvex::test;

namespace {
using Dense = std::vector<int32_t>;
Dense random_entries(Rng& rng, int32_t degree) {
    Dense x(static_cast<size_t>(degree) + 1);
    for (auto& v : x) v = random_int(rng, 1, modulus - 1);
    return x;
}

struct Operands {
    Rng rng{run_seed()};
    int32_t degree;
    Dense a, b;
    explicit Operands(const benchmark::State& state) : degree(static_cast<int32_t>(state.range(0))) {
        set_up_once();
        auto m = static_cast<int32_t>(state.range(1));
        use_ring(m, m == 256 || m == 65536);
        use_variables(1);
        a = random_entries(rng, degree);
        b = random_entries(rng, degree);
    }
    ~Operands() { use_integers(); }
};

void array_product(benchmark::State& state) {
    Operands o(state);
    Dense c(o.a.size() + o.b.size() - 1);
    for (auto _ : state) {
        dense_mult(o.a.data(), o.degree + 1, o.b.data(), o.degree + 1, c.data());
        benchmark::DoNotOptimize(c.data());
    }
}

void array_gcd(benchmark::State& state) {
    Operands o(state);
    for (auto _ : state) {
        Dense x = o.a, y = o.b;
        int32_t *g = nullptr, d = 0;
        dense_gcd(x.data(), o.degree, y.data(), o.degree, &g, &d);
        benchmark::DoNotOptimize(g);
    }
}

// Twice the degree by the degree.
void array_division(benchmark::State& state) {
    Operands o(state);
    Dense n = random_entries(o.rng, 2 * o.degree), q(o.a.size());
    for (auto _ : state) {
        Dense x = n;
        int32_t x_degree = 2 * o.degree, q_degree = 0;
        boolean zero = 0;
        onevar_array_div_mod(x.data(), o.a.data(), q.data(), &x_degree, o.degree, &q_degree, &zero);
        benchmark::DoNotOptimize(q.data());
    }
}

void sparse_form_product(benchmark::State& state) {
    Operands o(state);
    poly a = nullptr, b = nullptr, p = nullptr;
    array_to_poly(o.a.data(), o.degree, &a);
    array_to_poly(o.b.data(), o.degree, &b);
    Dense x(o.a.size()), y(o.b.size()), z(x.size() + y.size() - 1);
    for (auto _ : state) {
        fill_poly_array(a, x.data());
        fill_poly_array(b, y.data());
        dense_mult(x.data(), o.degree + 1, y.data(), o.degree + 1, z.data());
        array_to_poly(z.data(), 2 * o.degree, &p);
    }
    for (poly* f : {&a, &b, &p}) free_poly(f);
}

void sparse_form_division(benchmark::State& state) {
    Operands o(state);
    Dense top = random_entries(o.rng, 2 * o.degree);
    poly n = nullptr, m = nullptr, q = nullptr, r = nullptr;
    array_to_poly(top.data(), 2 * o.degree, &n);
    array_to_poly(o.a.data(), o.degree, &m);
    for (auto _ : state) basic_poly_divide(n, m, &q, &r, 1);
    for (poly* f : {&n, &m, &q, &r}) free_poly(f);
}

void degrees_and_moduli(benchmark::internal::Benchmark* b) {
    b->ArgNames({"degree", "modulus"})
        ->ArgsProduct({{100, 200, 300, 1000, 10000}, {32003, 2147483629}})
        ->Args({1000, 65536});
}
}  // namespace

BENCHMARK(array_product)->Apply(degrees_and_moduli)->Unit(benchmark::kMicrosecond);
BENCHMARK(array_gcd)
    ->Apply(degrees_and_moduli)
    ->ArgsProduct({{1500, 2000, 2500, 3000, 30000}, {32003, 2147483629}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(array_division)->Apply(degrees_and_moduli)->Unit(benchmark::kMicrosecond);
BENCHMARK(sparse_form_product)->Apply(degrees_and_moduli)->Unit(benchmark::kMicrosecond);
BENCHMARK(sparse_form_division)->Apply(degrees_and_moduli)->Unit(benchmark::kMicrosecond);
