#include "gcd/word_lane.h"

#include "gcd/num_content.h"
#include "gcd/word_gcd.h"
#include "gcd/word_sparse.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/residue.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
namespace tolvex {
static constexpr int64_t k_most_images = 1 << 17;
static constexpr int64_t k_most_images_at_last = 1 << 24;  // where only the remainder sequence is left
static constexpr int64_t k_few_images = 24;
static constexpr double k_sparse = 0.03;  // of the box that sparse operands fill at most

static int32_t span_of(const PackMeasure& m, int32_t level) {
    return level < m.levels ? m.most[level] - m.least[level] : 0;
}

void open_operands(WordGcdEnv& env, poly u, poly v, polypt pt) {
    env.u = u;
    env.v = v;
    env.pt = pt;
    env.raw = false;
    pack_measure(env.u, &env.um);
    pack_measure(env.v, &env.vm);
    env.levels = maxx(env.um.levels, env.vm.levels);
    for (int32_t i = env.um.levels; i < env.levels; i++) env.um.least[i] = env.um.most[i] = 0;
    for (int32_t i = env.vm.levels; i < env.levels; i++) env.vm.least[i] = env.vm.most[i] = 0;
    for (int32_t i = 0; i < env.levels; i++) {
        bool shared = i < env.um.levels && i < env.vm.levels;
        env.bound[i] = shared ? minn(span_of(env.um, i), span_of(env.vm, i)) : 0;
        env.monomial[i] = shared ? minn(env.um.least[i], env.vm.least[i]) : 0;
    }
}

// The common monomial times the common integer content: all there is when nothing else is common.
static poly common_monomial(const WordGcdEnv& env) {
    poly g = nullptr;
    poly_set(1, &g);
    common_content(env.u, env.v, g->ncoef);
    for (int32_t i = env.levels - 1; i >= 0; i--)
        if (env.monomial[i] != 0 || !is_number(g)) {
            poly t;
            new_term(&t, env.monomial[i], g);
            g = t;
        }
    return g;
}

// Every degree of the gcd may be that of `small`: if so it is its primitive part, and one division tells.
static bool try_divisor(const WordGcdEnv& env, poly small, const PackMeasure& m, poly large, polyptrr g) {
    for (int32_t i = 0; i < env.levels; i++)
        if (env.bound[i] != span_of(m, i) || env.monomial[i] != (i < m.levels ? m.least[i] : 0)) return false;
    poly candidate = primitive_copy(small), q = nullptr;
    boolean failed = 0;
    gen_poly_divide(large, candidate, &q, env.pt, &failed);
    free_poly(&q);
    if (failed) {
        free_poly(&candidate);
        return false;
    }
    number c = {};
    common_content(env.u, env.v, &c);
    if (!lintmode && !is_longint(&c, 1)) num_poly_mult(&candidate, &c);
    special_free(&c);
    *g = candidate;
    return true;
}

// Evaluation and interpolation take an image for each combination of points of all levels but the first.
static int64_t image_count(const WordGcdEnv& env, int64_t most) {
    int64_t images = 1;
    bool first = true;
    for (int32_t i = 0; i < env.levels && images <= most; i++) {
        if (env.bound[i] == 0) continue;
        if (!first) images *= int64_t{env.bound[i]} + 2;
        first = false;
    }
    return images;
}

// The smaller operand fills little of its box.
static bool is_sparse(const WordGcdEnv& env) {
    double box = 1;
    const PackMeasure& m = env.um.terms < env.vm.terms ? env.um : env.vm;
    for (int32_t i = 0; i < m.levels; i++) box *= span_of(m, i) + 1;
    return static_cast<double>(m.terms) < k_sparse * box;
}

// Sparse operands by their terms, with no more points than the other way would take images; dense ones by
// their box; at last by terms whatever it takes.
static bool gcd_by_images(WordGcdEnv& env, int64_t most_images, polyptrr g) {
    int64_t images = image_count(env, most_images);
    bool by_terms = images > k_few_images && is_sparse(env);
    if (by_terms && gcd_of_few_terms(env, images, g)) return true;
    if (images <= most_images && (modularmode ? gcd_over_field(env, g) : gcd_over_integers(env, g)))
        return true;
    return !by_terms && gcd_of_few_terms(env, INT32_MAX, g);
}

static void hand_over(poly g, polyptrr r) {
    gcd_normal_form(&g);
    free_poly(r);
    *r = g;
}

// Operands in one variable.
static bool gcd_of_level(WordGcdEnv& env, polyptrr g) {
    int32_t level = only_level(env);
    if (level < 0) return false;
    if (!modularmode && maxx(env.um.digits, env.vm.digits) > k_word_digits) return false;
    return univariate_gcd(env, level, g);
}

static bool gcd_of_words(poly u, poly v, polyptrr r, polypt pt, bool raw, int64_t most_images) {
    if (is_number(u) || is_number(v) || ring_is_composite() || (lintmode && !modularmode)) return false;
    WordGcdEnv env;
    open_operands(env, u, v, pt);
    env.raw = raw;
    poly g = nullptr;
    if (env.um.terms == 1 || env.vm.terms == 1)
        g = common_monomial(env);
    else if (!gcd_of_level(env, &g)) {
        if (bound_by_images(env))
            g = common_monomial(env);
        else if (!try_divisor(env, v, env.vm, u, &g) && !try_divisor(env, u, env.um, v, &g) &&
                 !gcd_of_values(env, &g) && !gcd_by_images(env, most_images, &g))
            return false;
    }
    hand_over(g, r);
    return true;
}

bool word_gcd(poly u, poly v, polyptrr r, polypt pt, bool raw) {
    return gcd_of_words(u, v, r, pt, raw, k_most_images);
}

bool points_are_few() {
    constexpr int32_t k_few_elements = 1024;
    return modularmode && field_depth == 0 && (finf ? f256 != 0 : mod_is_prime && modulus < k_few_elements);
}

bool gcd_over_enlarged_field(poly u, poly v, polyptrr r, polypt pt) {
    return gcd_of_words(u, v, r, pt, false, k_most_images_at_last);
}

// Zero divisors: what is found for sure. Reduction by less than the whole common factor is still right.
bool composite_gcd(poly u, poly v, polyptrr r, polypt pt) {
    WordGcdEnv env;
    open_operands(env, u, v, pt);
    poly g = nullptr;
    bool whole = true;
    if (env.um.terms == 1 || env.vm.terms == 1)
        g = common_monomial(env);
    else if (!gcd_by_units(env, &g) && !try_divisor(env, v, env.vm, u, &g) &&
             !try_divisor(env, u, env.um, v, &g)) {
        g = common_monomial(env);
        whole = false;
    }
    hand_over(g, r);
    return whole;
}
}  // namespace tolvex
