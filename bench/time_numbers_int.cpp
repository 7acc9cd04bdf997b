// Times of the integer routines by decimal length: short operands as coefficients are, long ones where the
// methods change. The entry point of the program stands in time_numbers_decimal.cpp.
#include "numbers/limb_ntt.h"
#include "numbers/limbs.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/num_root.h"
#include "tests/support/support.h"

#include <benchmark/benchmark.h>
#include <vector>
using namespace tolvex;

namespace {
/// A random chain of about `decimals` decimal digits.
number random_chain(test::Rng& rng, int64_t decimals) {
    number x = {};
    auto bits = static_cast<int64_t>(static_cast<double>(decimals) * 3.321928);
    std::vector<limb> a(static_cast<size_t>(bits / 64 + 1));
    for (auto& w : a) w = rng();
    a.back() = (a.back() & ((limb{1} << bits % 64) - 1)) | limb{1} << bits % 64;
    chain_replace(&x, a.data(), static_cast<int64_t>(a.size()), false);
    return x;
}

/// Three operands and their product, for one timing.
struct Operands {
    number a, b, c, ab = {}, q = {}, r = {};
    explicit Operands(int64_t decimals) {
        test::set_up_once();
        test::Rng rng(test::run_seed());
        a = random_chain(rng, decimals);
        b = random_chain(rng, decimals);
        c = random_chain(rng, decimals);
        fast_mult(&a, &b, &ab);
    }
    ~Operands() {
        for (imptr x : {&a, &b, &c, &ab, &q, &r}) special_free(x);
    }
};

void sum(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) medsum(o.a.size, o.b.size, o.a.head, o.b.head, &o.r);
}
void product(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) fast_mult(&o.a, &o.b, &o.r);
}
void square(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) fast_mult(&o.a, &o.a, &o.r);
}
void quotient(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) divide(&o.ab, &o.c, &o.q, &o.r);
}
void greatest_common_divisor(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) binary_gcd(&o.a, &o.b, &o.r);
}
void cofactors(benchmark::State& state) {
    Operands o(state.range(0));
    number bc = {}, u = {}, v = {};
    fast_mult(&o.b, &o.c, &bc);
    boolean one;
    for (auto _ : state) extgcd(&o.ab, &bc, &o.r, &u, &v, &one);
    special_free(&bc);
    special_free(&u);
    special_free(&v);
}
void square_root_of(benchmark::State& state) {
    Operands o(state.range(0));
    for (auto _ : state) int_sqrt(&o.ab, &o.r, 1);
}
void factorial_of(benchmark::State& state) {
    test::set_up_once();
    number n = {};
    for (auto _ : state) {
        setvalue(static_cast<int32_t>(state.range(0)), &n);
        factorial(&n);
    }
    special_free(&n);
}

/// Limb products alone, by limbs: the crossings of the methods.
template <void (*Multiply)(limb*, const limb*, int64_t, const limb*, int64_t)>
void limb_product(benchmark::State& state) {
    test::set_up_once();
    test::Rng rng(test::run_seed());
    int64_t n = state.range(0);
    std::vector<limb> a(static_cast<size_t>(n)), b(a), r(2 * a.size());
    for (auto& w : a) w = rng();
    for (auto& w : b) w = rng();
    for (auto _ : state) Multiply(r.data(), a.data(), n, b.data(), n);
}

void decimal_lengths(benchmark::internal::Benchmark* b) {
    for (int64_t d : {7, 14, 28, 100, 1000, 10000, 100000}) b->Arg(d);
}
void limb_lengths(benchmark::internal::Benchmark* b) {
    for (int64_t n : {26, 36, 52, 100, 200, 520, 800, 1200, 1600, 2100, 2700, 3400, 4200, 5200}) b->Arg(n);
}
}  // namespace

BENCHMARK(sum)->Apply(decimal_lengths);
BENCHMARK(product)->Apply(decimal_lengths);
BENCHMARK(square)->Apply(decimal_lengths);
BENCHMARK(quotient)->Apply(decimal_lengths);
BENCHMARK(greatest_common_divisor)->Apply(decimal_lengths);
BENCHMARK(cofactors)->Apply(decimal_lengths);
BENCHMARK(square_root_of)->Apply(decimal_lengths);
BENCHMARK(factorial_of)->Arg(20)->Arg(1000)->Arg(20000);
BENCHMARK(limb_product<limbs_mul>)->Apply(limb_lengths);
BENCHMARK(limb_product<limbs_mul_school>)->Arg(26)->Arg(36)->Arg(52)->Arg(100);
BENCHMARK(limb_product<limbs_mul_transform>)
    ->Arg(100)
    ->Arg(200)
    ->Arg(300)
    ->Arg(400)
    ->Arg(520)
    ->Arg(800)
    ->Arg(1200)
    ->Arg(1600)
    ->Arg(2100)
    ->Arg(2700)
    ->Arg(3400)
    ->Arg(4200)
    ->Arg(5200);
