// One pass over an operand at a random point gives its images in every variable at once: if w is the value of
// a term, adding w to entry e_j of array j for each variable x_j collects f with all other variables set, as
// a polynomial in x_j / point_j. The scaling changes no degree.
#include "gcd/word_gcd.h"
#include "numbers/primes.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_power_table = 4;
#else
constexpr int32_t k_power_table = 4096;
#endif
constexpr int32_t k_image_degree = 1 << 22;  // above it arrays by exponent do not pay

/// One pass. Levels that the other operand lacks are evaluated and have no image.
struct ImagePass {
    const WordField* f;
    const int32_t* least;       // exponents start here
    uint32_t* image[k_levels];  // nil: none wanted
    uint32_t* power[k_levels];  // of the point, up to k_power_table
    uint32_t point[k_levels];
};
}  // namespace

static inline uint32_t power_at(const ImagePass& p, int32_t level, int32_t e) {
    return e < k_power_table ? p.power[level][e] : wf_power(*p.f, p.point[level], static_cast<uint64_t>(e));
}

// Adds a leaf to the images of all levels below, where its exponent is 0.
static inline void add_below(const ImagePass& p, int32_t level, int32_t levels, uint32_t value) {
    for (; level < levels; level++)
        if (p.image[level] != nullptr) p.image[level][0] = wf_add(*p.f, p.image[level][0], value);
}

// The sum of the values of all terms of t, each times `factor`; images are filled on the way.
static uint32_t pass(const ImagePass& p, const polynode* t, int32_t level, int32_t levels, uint32_t factor) {
    if (is_number(t)) {
        uint32_t value = wf_mul(*p.f, factor, wf_of_number(*p.f, t->ncoef));
        add_below(p, level, levels, value);
        return value;
    }
    uint32_t sum = 0;
    for (; t != nullptr; t = t->next) {
        int32_t e = t->exp - p.least[level];
        uint32_t here = e == 0 ? factor : wf_mul(*p.f, factor, power_at(p, level, e)), value;
        if (t->numb) {
            value = wf_mul(*p.f, here, wf_of_number(*p.f, t->ncoef));
            add_below(p, level + 1, levels, value);
        } else {
            poll_interrupt();
            value = pass(p, t->pcoef, level + 1, levels, here);
        }
        if (p.image[level] != nullptr) p.image[level][e] = wf_add(*p.f, p.image[level][e], value);
        sum = wf_add(*p.f, sum, value);
    }
    return sum;
}

static int32_t span_of(const PackMeasure& m, int32_t level) {
    return level < m.levels ? m.most[level] - m.least[level] : 0;
}

// Points and power tables for both operands.
static void choose_point(const WordGcdEnv& env, ImagePass* p) {
    for (int32_t i = 0; i < env.levels; i++) {
        p->point[i] = wf_random_unit(*p->f);
        int32_t top = minn(maxx(span_of(env.um, i), span_of(env.vm, i)) + 1, k_power_table);
        p->power[i] = scratch_array<uint32_t>(top);
        p->power[i][0] = 1;
        for (int32_t e = 1; e < top; e++) p->power[i][e] = wf_mul(*p->f, p->power[i][e - 1], p->point[i]);
    }
}

static void make_images(const WordGcdEnv& env, ImagePass* p, const polynode* operand, const PackMeasure& m) {
    for (int32_t i = 0; i < m.levels; i++) {
        p->image[i] = nullptr;
        if (env.bound[i] == 0) continue;
        int64_t entries = int64_t{span_of(m, i)} + 1;
        p->image[i] = scratch_array<uint32_t>(entries);
        memset(p->image[i], 0, static_cast<size_t>(entries) * sizeof(uint32_t));
    }
    p->least = m.least;
    pass(*p, operand, 0, m.levels, 1);
}

static bool is_monomial(const polynode* p) {
    while (p->next == nullptr && !p->numb) p = p->pcoef;
    return p->next == nullptr;
}

// What divides p and is free of its main variable divides every coefficient: true if one of them is a
// monomial, so that it can only be one.
static bool has_monomial_coefficient(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->numb || is_monomial(p->pcoef)) return true;
    return false;
}

// One round of images; true if every bound is 0.
static bool one_point(WordGcdEnv& env, const WordField& f) {
    ScratchMark mark = scratch_mark();
    ImagePass* pu = scratch_array<ImagePass>(1);
    ImagePass* pv = scratch_array<ImagePass>(1);
    pu->f = &f;
    choose_point(env, pu);
    *pv = *pu;
    make_images(env, pu, env.u, env.um);
    make_images(env, pv, env.v, env.vm);
    bool all_zero = true;
    for (int32_t i = 0; i < env.levels; i++) {
        if (env.bound[i] == 0) continue;
        int32_t du = span_of(env.um, i), dv = span_of(env.vm, i);
        // The image of the gcd divides the gcd of the images, and keeps its degree where a leading
        // coefficient, which that of the gcd divides, does not vanish.
        if (pu->image[i][du] != 0 || pv->image[i][dv] != 0) {
            uint32_t* g;
            int32_t degree = wf_gcd(f, pu->image[i], du, pv->image[i], dv, &g);
            if (degree >= 0) env.bound[i] = minn(env.bound[i], degree);
        }
        all_zero = all_zero && env.bound[i] == 0;
        if (i == 0 && all_zero && (has_monomial_coefficient(env.u) || has_monomial_coefficient(env.v))) break;
    }
    if (all_zero) std::fill_n(env.bound, env.levels, 0);
    scratch_release(mark);
    return all_zero;
}

bool bound_by_images(WordGcdEnv& env) {
    bool all_zero = true;
    for (int32_t i = 0; i < env.levels; i++) {
        if (env.bound[i] > k_image_degree) return false;
        all_zero = all_zero && env.bound[i] == 0;
    }
    if (all_zero) return true;
    WordField f =
        modularmode ? word_field_ring() : word_field_prime(static_cast<uint32_t>(lrgpme[k_lrg_primes - 1]));
    return one_point(env, f);
}
}  // namespace tolvex
