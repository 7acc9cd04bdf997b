#include "matrix/int_entries.h"

#include "numbers/primes.h"
#include "quoly/quoly_basic.h"

#include <algorithm>
#include <bit>
#include <cstring>
namespace tolvex {
uint32_t image_prime_below(uint32_t p) {
    do p -= 2;
    while (!is_prime(static_cast<int32_t>(p)));
    return p;
}

IntEntry int_entry(const number* v) {
    if (v == nullptr || v->head->value == 0) return {nullptr, 0, false};
    limb* at = scratch_array<limb>(limbs_for(v->size));
    int64_t n = limbs_from_chain(at, v->head, v->size);
    return {at, n, v->head->value < 0};
}

IntEntry word_entry(uint32_t v) {
    limb* at = scratch_array<limb>(1);
    *at = v;
    return {at, v != 0, false};
}

IntEntry entry_numerator(const quolynode* q) { return int_entry(q->numb ? q->ncoef : q->numer->ncoef); }
IntEntry entry_denominator(const quolynode* q) { return q->numb ? k_entry_one : int_entry(q->denom->ncoef); }

static bool is_one(const IntEntry& a) { return a.n == 1 && a.at[0] == 1; }

IntEntry entry_product(const IntEntry& a, const IntEntry& b) {
    if (a.n == 0 || b.n == 0) return {nullptr, 0, false};
    bool negative = a.negative != b.negative;
    if (is_one(a)) return {b.at, b.n, negative};
    if (is_one(b)) return {a.at, a.n, negative};
    limb* r = scratch_array<limb>(a.n + b.n);
    limbs_mul(r, a.at, a.n, b.at, b.n);
    return {r, limbs_trim(r, a.n + b.n), negative};
}

static limb* copy_of(const IntEntry& a) {
    limb* r = scratch_array<limb>(a.n + 1);
    memcpy(r, a.at, static_cast<size_t>(a.n) * sizeof(limb));
    r[a.n] = 0;
    return r;
}

IntEntry entry_quotient(const IntEntry& a, const IntEntry& b) {
    if (is_one(b)) return a;
    limb* q = scratch_array<limb>(a.n - b.n + 1);
    limb* rest = copy_of(a);
    limbs_divrem(q, rest, a.n, b.at, b.n);
    return {q, limbs_trim(q, a.n - b.n + 1), false};
}

IntEntry entry_common_multiple(const IntEntry& a, const IntEntry& b) {
    if (is_one(b)) return a;
    limb *x = copy_of(a), *y = copy_of(b), *g = scratch_array<limb>(std::min(a.n, b.n));
    int64_t n = limbs_gcd(g, x, a.n, y, b.n);
    return entry_product(a, entry_quotient(b, {g, n, false}));
}

int64_t entry_bits(const IntEntry& a) {
    return a.n == 0 ? 0 : 64 * (a.n - 1) + std::bit_width(a.at[a.n - 1]);
}

uint32_t entry_residue(const WordField& f, const IntEntry& a) {
    if (a.n == 0) return 0;
    uint32_t r = a.n == 1 ? wf_reduce(f, a.at[0]) : static_cast<uint32_t>(limbs_mod_1(a.at, a.n, f.p));
    return a.negative ? wf_neg(f, r) : r;
}

void number_of_entry(const IntEntry& a, imptr x) {
    if (a.n == 0)
        chain_set_int64(x, 0);
    else
        chain_from_limbs(x, a.at, a.n, a.negative);
}

quoly value_of_entry(const IntEntry& a) {
    number n = {};
    number_of_entry(a, &n);
    quoly q = nullptr;
    scalar_to_quoly(&n, &q);
    free_num(&n);
    return q;
}
}  // namespace tolvex
