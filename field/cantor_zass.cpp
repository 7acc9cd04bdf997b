#include "field/cantor_zass.h"
namespace tolvex {
namespace {
constexpr int32_t k_most_tries = 200;  // only a ring that is no field needs as many

/// x^(q^i) and the sum of the first i powers of a residue.
struct TracePowers {
    uint32_t *x, *sum;
};
}  // namespace

/// i := i + j, the table being that of x^(q^j), `other` the sum for j; x only if it is wanted.
static void add_trace_powers(const PowerTable& table, const uint32_t* other, TracePowers* t, bool last) {
    const ResidueRing& r = *table.r;
    compose(table, t->sum, t->sum);
    add_elements(*r.k, t->sum, other, r.n, t->sum);
    if (!last) compose(table, t->x, t->x);
}

static void trace_by_doubling(const ResidueRing& r, const uint32_t* a, int32_t d, uint32_t* out) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    TracePowers t = {new_elements(k, r.n), new_elements(k, r.n)};
    auto* other = new_elements(k, r.n);
    PowerTable first, table;
    power_of_x(r, t.x);
    copy_elements(k, a, r.n, t.sum);
    open_powers(&first, &r, t.x, good_power_count(r, 2));
    for (int bit = 30 - __builtin_clz(static_cast<uint32_t>(d)); bit >= 0; bit--) {
        const bool odd = d >> bit & 1, last = bit == 0;
        ScratchMark round = scratch_mark();
        open_powers(&table, &r, t.x, good_power_count(r, 2));
        copy_elements(k, t.sum, r.n, other);
        add_trace_powers(table, other, &t, last);
        scratch_release(round);
        if (odd) add_trace_powers(first, a, &t, last);
    }
    copy_elements(k, t.sum, r.n, out);
    scratch_release(mark);
}

static void trace_by_powers(const ResidueRing& r, const uint32_t* a, int32_t d, uint32_t* out) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto *power = new_elements(k, r.n), *sum = new_elements(k, r.n);
    copy_elements(k, a, r.n, power);
    copy_elements(k, a, r.n, sum);
    for (int32_t i = 1; i < d; i++) {
        residue_frobenius(r, power);
        add_elements(k, sum, power, r.n, sum);
    }
    copy_elements(k, sum, r.n, out);
    scratch_release(mark);
}

void residue_trace(const ResidueRing& r, const uint32_t* a, int32_t d, uint32_t* out) {
    const int32_t rounds = 32 - __builtin_clz(static_cast<uint32_t>(d));
    const int64_t table = good_power_count(r, 2);
    if (int64_t{d} * frobenius_products(*r.k) < rounds * (3 * table + r.n / 30))
        trace_by_powers(r, a, d, out);
    else
        trace_by_doubling(r, a, d, out);
}

void odd_cantor_zass(const ResidueRing& r, const uint32_t* t, FactorRandom* random, uint32_t* out) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto *c = new_elements(k, 1), *power = new_elements(k, r.n), *norm = new_elements(k, r.n);
    random_elements(k, random, 1, c);
    if (t == nullptr && k.degree == 1) {
        linear_power(r, c, (k.p - 1) / 2, out);
    } else {
        if (t == nullptr)
            residue_x(r, power);
        else
            copy_elements(k, t, r.n, power);
        add_elements(k, power, c, 1, power);
        copy_elements(k, power, r.n, norm);
        for (int32_t i = 1; i < k.degree; i++) {  // to the prime field
            residue_power(r, power, k.p, power);
            residue_product(r, norm, power, norm);
        }
        residue_power(r, norm, (k.p - 1) / 2, out);
    }
    tw_set(k.t, k.h, 1, c);
    subtract_elements(k, out, c, 1, out);
    scratch_release(mark);
}

void even_cantor_zass(const ResidueRing& r, const uint32_t* t, FactorRandom* random, uint32_t* out) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto *c = new_elements(k, 1), *power = new_elements(k, r.n), *sum = new_elements(k, r.n);
    random_elements(k, random, 1, c);
    poly_product(k, t, r.n, c, 1, power);
    copy_elements(k, power, r.n, sum);
    for (int32_t i = 1; i < k.degree; i++) {
        residue_product(r, power, power, power);
        add_elements(k, sum, power, r.n, sum);
    }
    copy_elements(k, sum, r.n, out);
    scratch_release(mark);
}

// ---- splitting -----------------------------------------------------------------------------------------

namespace {
/// A product of factors of degree d and a residue that is in the field modulo each of them; nil: none yet.
struct Split {
    const uint32_t* c;
    int32_t degree;
    const uint32_t* t;
};
struct SplitEnv {
    const CoefficientField* k;
    int32_t d, multiplicity;
    FactorRandom* random;
    FactorList* list;
    bool failed;
};
}  // namespace

/// t := a residue that is in the field modulo each factor.
static void fresh_trace(SplitEnv& env, const ResidueRing& r, uint32_t* t) {
    if (env.d == 1) {
        residue_x(r, t);  // tells all factors apart
        return;
    }
    random_elements(*env.k, env.random, r.n, t);
    residue_trace(r, t, env.d, t);
}

/// g := a proper divisor of p.c; t := the residue that has told its factors from the others. Returns its
/// degree, 0: none is found.
static int32_t proper_divisor(SplitEnv& env, const Split& p, uint32_t* t, uint32_t* g) {
    const CoefficientField& k = *env.k;
    const int32_t n = p.degree;
    ScratchMark mark = scratch_mark();
    ResidueRing r;
    auto *u = new_elements(k, n), *copy = new_elements(k, n + 1);
    open_ring(&r, &k, p.c, n);
    if (p.t != nullptr)
        copy_elements(k, p.t, n, t);
    else
        fresh_trace(env, r, t);
    int32_t degree = 0;
    for (int32_t tries = 0; tries < k_most_tries && (degree <= 0 || degree == n); tries++) {
        if (poly_degree(k, t, n - 1) < 1) {  // the same element modulo all factors
            fresh_trace(env, r, t);
            continue;
        }
        if (k.p == 2)
            even_cantor_zass(r, t, env.random, u);
        else
            odd_cantor_zass(r, env.d == 1 ? nullptr : t, env.random, u);
        copy_elements(k, p.c, n + 1, copy);
        uint32_t* common = nullptr;
        degree = poly_gcd(k, u, n - 1, copy, n, &common);
        if (degree > 0 && degree < n) copy_elements(k, common, degree + 1, g);
    }
    scratch_release(mark);
    return degree > 0 && degree < n ? degree : 0;
}

static void split(SplitEnv& env, const Split& p) {
    const CoefficientField& k = *env.k;
    const int32_t n = p.degree;
    if (n == env.d) {
        append_1(env.list, k, p.c, n, n, env.multiplicity);
        return;
    }
    ScratchMark mark = scratch_mark();
    auto *g = new_elements(k, n + 1), *t = new_elements(k, n);
    const int32_t degree = proper_divisor(env, p, t, g);
    if (degree == 0) {
        env.failed = true;
        append_1(env.list, k, p.c, n, n, env.multiplicity);
        scratch_release(mark);
        return;
    }
    auto *rest = new_elements(k, n + 1), *cofactor = new_elements(k, n - degree + 1), *u = new_elements(k, n);
    copy_elements(k, p.c, n + 1, rest);
    poly_divide(k, rest, n, g, degree, cofactor);
    copy_elements(k, t, n, u);
    poly_divide(k, t, n - 1, g, degree, nullptr);
    poly_divide(k, u, n - 1, cofactor, n - degree, nullptr);
    split(env, {g, degree, t});
    split(env, {cofactor, n - degree, u});
    scratch_release(mark);
}

bool equal_degrees(const CoefficientField& k, const FactorPart& part, FactorRandom* random,
                   FactorList* list) {
    SplitEnv env = {&k, part.d, part.multiplicity, random, list, false};
    split(env, {part.c, part.degree, nullptr});
    return !env.failed;
}
}  // namespace tolvex
