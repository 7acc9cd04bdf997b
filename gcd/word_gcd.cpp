// The gcd through images: over a word field by evaluation and interpolation, over Z from images modulo
// primes. What comes out may be too large or foreign when points or primes are unlucky, never too small, so
// that dividing both operands is a full proof.
#include "gcd/word_gcd.h"

#include "gcd/num_content.h"
#include "gcd/word_brown.h"
#include "gcd/word_primes.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_spot_checks = 1000;          // below this modulus points prove nothing
constexpr int64_t k_univariate_limit = 1 << 24;  // longest array of one variable
constexpr uint32_t k_point_limit = 1048573;      // points over Z stay below this prime

/// Operands over Z and what is known of the gcd's image.
struct ModularEnv {
    WordGcdEnv* env;
    PackPlan plan;
    number lead_gcd;  // gcd of the leading numbers of the primitive parts: what the images are scaled to
    number content;   // gcd of the integer contents
    bool careful, with_points;
    PackDigits u, v;  // unless with_points
};
}  // namespace

static int32_t span_of(const PackMeasure& m, int32_t level) { return m.most[level] - m.least[level]; }

// Levels that the gcd is known to be free of (bound 0) are set to a point, one pair of smaller operands for
// all primes; what is found may be too large, as for any unlucky point. False: there is no such level.
static bool set_points(WordGcdEnv& env, uint32_t limit) {
    bool any = false;
    for (int32_t i = 0; i < env.levels; i++) {
        env.point[i] = 0;
        if (env.bound[i] > 0 || (span_of(env.um, i) == 0 && span_of(env.vm, i) == 0)) continue;
        env.point[i] = wf_random_unit(word_field_prime(limit));
        any = true;
    }
    return any;
}

// The box of both operands, each counted from its own lowest exponents. Its own lowest exponents are those of
// the common monomial, so that what is written out has it.
static bool plan_operands(const WordGcdEnv& env, PackPlan* plan) {
    int32_t low[k_levels], high[k_levels];
    for (int32_t i = 0; i < env.levels; i++) {
        low[i] = env.monomial[i];
        high[i] = low[i] + (env.point[i] != 0 ? 0 : maxx(span_of(env.um, i), span_of(env.vm, i)));
    }
    if (!pack_plan(low, high, env.levels, plan)) return false;
    for (int32_t k = 0; k < plan->count; k++)
        if (plan->radix[k] > k_univariate_limit) return false;
    return true;
}

// One operand as residues; with points set, terms that have become alike are added up.
static PackTerms operand_terms(const WordGcdEnv& env, const PackPlan& plan, const polynode* p,
                               const PackMeasure& m, const WordField& f, bool with_points) {
    if (!with_points) return pack_residues(p, plan, m.least, m.terms, f);
    return pack_values(p, plan, m.least, m.terms, f, env.point);
}

bool divides_both(const WordGcdEnv& env, poly g) {
    bool u_larger = env.um.terms >= env.vm.terms;
    poly q = nullptr;
    boolean failed = 0;
    gen_poly_divide(u_larger ? env.v : env.u, g, &q, env.pt, &failed);
    bool spare = env.raw && !(modularmode && modulus < k_spot_checks);
    if (!failed && spare) gcd_unproved = 1;
    if (!failed && !spare) gen_poly_divide(u_larger ? env.u : env.v, g, &q, env.pt, &failed);
    free_poly(&q);
    return !failed;
}

static poly tree_of_residues(const PackPlan& plan, PackTerms* g) {
    return pack_tree(plan, nullptr, g->index, g->count, leaf_of_residue, g);
}

// Arithmetic modulo a composite: the reciprocal serves any modulus, inverses are asked for.
bool gcd_by_units(WordGcdEnv& env, polyptrr g) {
    PackPlan plan;
    for (int32_t i = 0; i < env.levels; i++) env.point[i] = 0;
    if (!plan_operands(env, &plan) || plan.count != 1) return false;
    ScratchMark mark = scratch_mark();
    WordField ring = word_field_ring();
    PackTerms t[2] = {pack_residues(env.u, plan, env.um.least, env.um.terms, ring),
                      pack_residues(env.v, plan, env.vm.least, env.vm.terms, ring)};
    uint32_t* a[2];
    int32_t degree[2];
    for (int side = 0; side < 2; side++) {
        a[side] = scratch_array<uint32_t>(plan.box);
        memset(a[side], 0, static_cast<size_t>(plan.box) * sizeof(uint32_t));
        for (int64_t i = 0; i < t[side].count; i++) a[side][t[side].index[i]] = t[side].residue[i];
        degree[side] = static_cast<int32_t>(t[side].index[0]);
    }
    int big = degree[0] >= degree[1] ? 0 : 1;
    bool units = true;
    while (units && degree[1 - big] >= 0) {
        poll_interrupt();
        const uint32_t* y = a[1 - big];
        int32_t dy = degree[1 - big], inverse = mod_inverse_or_0(static_cast<int32_t>(y[dy]));
        units = inverse != 0;
        if (units) degree[big] = wf_mod(ring, a[big], degree[big], y, dy, static_cast<uint32_t>(inverse));
        big = 1 - big;
    }
    if (units) {
        PackTerms out = {0, scratch_array<int64_t>(plan.box), {scratch_array<uint32_t>(plan.box)}};
        for (int32_t e = degree[big]; e >= 0; e--) {
            if (a[big][e] == 0) continue;
            out.index[out.count] = e;
            out.residue[out.count++] = a[big][e];
        }
        *g = tree_of_residues(plan, &out);
    }
    scratch_release(mark);
    return units;
}

// From the enlarged field back to the ring in force; false: a coefficient lies outside, so the points were
// unlucky.
static bool restrict_terms(const WordField& f, PackTerms& g) {
    for (int64_t i = 0; i < g.count; i++)
        if (!wf_restrict(f, g.residue[i], &g.residue[i])) return false;
    return true;
}

// An image changes nothing by chance once in as many images as the field has elements. Where few images are
// wanted, one quiet image is enough: another attempt now and then costs less than another point at each
// level.
static bool one_quiet_image(const WordGcdEnv& env, const WordField& f) {
    constexpr int64_t k_elements_an_image = 8;
    int64_t images = k_elements_an_image;
    bool first = true;
    for (int32_t i = 0; i < env.levels && images < f.p; i++) {
        if (env.bound[i] == 0) continue;
        if (!first) images *= int64_t{env.bound[i]} + 2;
        first = false;
    }
    return images < f.p;
}

// One attempt over the field in force.
static bool field_attempt(WordGcdEnv& env, const WordField& f, bool with_points, bool careful, polyptrr g) {
    PackPlan plan;
    if (!plan_operands(env, &plan)) return false;
    BrownEnv brown = {};
    brown.f = plan.count == 1 && !with_points ? word_field_ring() : f;
    brown.radix = plan.radix;
    brown.careful = careful;
    brown.one_quiet = one_quiet_image(env, brown.f);
    PackTerms u = operand_terms(env, plan, env.u, env.um, brown.f, with_points);
    PackTerms v = operand_terms(env, plan, env.v, env.vm, brown.f, with_points);
    if (u.count == 0 || v.count == 0) return false;
    PackTerms terms = brown_gcd(brown, u, v, plan.count);
    if (brown.failed || !restrict_terms(brown.f, terms)) return false;
    *g = tree_of_residues(plan, &terms);
    if ((plan.count == 1 && !with_points) || is_number(*g) || divides_both(env, *g)) return true;
    free_poly(g);
    return false;
}

// The field in force where it has many more elements than the degrees ask for points: its products cost a
// fraction.
static WordField field_of_first_round(const WordGcdEnv& env) {
    constexpr int32_t k_spare_points = 16;
    int32_t most = 0;
    for (int32_t i = 0; i < env.levels; i++)
        most = maxx(most, maxx(span_of(env.um, i), span_of(env.vm, i)) + 1);
    return most < modulus / k_spare_points ? word_field_ring() : word_field_enlarged();
}

bool gcd_over_field(WordGcdEnv& env, polyptrr g) {
    ScratchMark mark = scratch_mark();
    bool found = false;
    for (int32_t round = 0; round < 4 && !found; round++) {
        WordField f = round == 0 ? field_of_first_round(env) : word_field_enlarged();
        bool with_points = set_points(env, f.p);
        if (round >= 2)
            for (int32_t i = 0; i < env.levels; i++) env.point[i] = 0;
        found = field_attempt(env, f, with_points && round<2, round> 0, g);
        scratch_release(mark);
    }
    return found;
}

// The leading number is 1 or -1, as that of most denominators is.
static bool leads_with_unit(const polynode* p) {
    while (!p->numb) p = p->pcoef;
    boolean minus = 0;
    return equal_to_pm1(p->ncoef, &minus) != 0;
}

void common_content(const polynode* u, const polynode* v, imptr c) {
    if (!lintmode && (leads_with_unit(u) || leads_with_unit(v))) {
        setvalue(1, c);
        return;
    }
    find_gcdcoefs(u, c);
    if (lintmode || is_longint(c, 1)) return;
    number other = {};
    find_gcdcoefs(v, &other);
    binary_gcd(c, &other, c);
    special_free(&other);
}

poly primitive_copy(const polynode* p) {
    poly q = nullptr;
    poly_assign(p, &q);
    if (lintmode) return q;
    number c = {};
    find_gcdcoefs(p, &c);
    if (!is_longint(&c, 1)) num_poly_quot(&q, &c, 0);
    special_free(&c);
    poly_abs(q);
    return q;
}

// The leading number of p divided by the integer content of p.
static void primitive_lead(poly p, imptr lead) {
    number content = {};
    find_gcdcoefs(p, &content);
    num_assign(leading_coef(p)->ncoef, lead);
    if (!is_longint(&content, 1)) divide_exact(lead, &content);
    special_free(&content);
}

static void open_modular(ModularEnv& m) {
    number lead = {};
    primitive_lead(m.env->u, &m.lead_gcd);
    primitive_lead(m.env->v, &lead);
    binary_gcd(&m.lead_gcd, &lead, &m.lead_gcd);
    special_free(&lead);
    common_content(m.env->u, m.env->v, &m.content);
}

// The image of the gcd modulo f.p, scaled; false: the prime or a point is bad.
static bool image_modulo(void* source, const WordField& f, PackTerms* g) {
    ModularEnv& m = *static_cast<ModularEnv*>(source);
    const WordGcdEnv& env = *m.env;
    if (wf_of_number(f, leading_coef(env.u)->ncoef) == 0 || wf_of_number(f, leading_coef(env.v)->ncoef) == 0)
        return false;
    PackTerms u =
        m.with_points ? operand_terms(env, m.plan, env.u, env.um, f, true) : residues_of_digits(m.u, f);
    PackTerms v =
        m.with_points ? operand_terms(env, m.plan, env.v, env.vm, f, true) : residues_of_digits(m.v, f);
    if (u.count == 0 || v.count == 0) return false;
    BrownEnv brown = {f, m.plan.radix, m.careful, one_quiet_image(env, f), false};
    *g = brown_gcd(brown, u, v, m.plan.count);
    if (brown.failed) return false;
    uint32_t scale = wf_of_number(f, &m.lead_gcd);
    for (int64_t i = 0; i < g->count; i++) g->residue[i] = wf_mul(f, g->residue[i], scale);
    return true;
}

bool gcd_over_integers(WordGcdEnv& env, polyptrr g) {
    ModularEnv m = {};
    m.env = &env;
    ScratchMark mark = scratch_mark();
    open_modular(m);
    bool found = false;
    for (int32_t round = 0; round < 4 && !found; round++) {
        m.with_points = set_points(env, k_point_limit) && round < 2;
        m.careful = round > 0;
        if (round >= 2)
            for (int32_t i = 0; i < env.levels; i++) env.point[i] = 0;
        if (plan_operands(env, &m.plan)) {
            if (!m.with_points) {
                m.u = pack_digits(env.u, m.plan, env.um.least, env.um.terms);
                m.v = pack_digits(env.v, m.plan, env.vm.least, env.vm.terms);
            }
            // Points do not enter the bound: beyond it the images are those of a polynomial that is too
            // large.
            PrimeImages images = {
                &env,          &m.plan, image_modulo, &m, gcd_bits(env, m.plan, m.lead_gcd.size),
                m.with_points, 0,       nullptr};
            found = gcd_from_primes(images, g);
        }
        scratch_release(mark);
    }
    if (found && !is_longint(&m.content, 1)) num_poly_mult(g, &m.content);
    special_free(&m.lead_gcd);
    special_free(&m.content);
    return found;
}
}  // namespace tolvex
