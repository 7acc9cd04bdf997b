#include "gcd/word_sparse.h"

#include "gcd/num_content.h"
#include "gcd/word_primes.h"
#include "gcd/word_sparse_env.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "poly/poly_basic.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_restarts = 6;
constexpr int64_t k_most_points = 4096;
constexpr int32_t k_spare_points = 2;  // that a recurrence must predict
}  // namespace

// ---- images ----

// Room for the sequences and their recurrences.
static void open_sequences(SparseEnv& s, Recurrence** r, int32_t most) {
    s.sequence = scratch_array<uint32_t>(int64_t{s.degree} * most);
    *r = scratch_array<Recurrence>(s.degree);
    for (int32_t k = 0; k < s.degree; k++) recurrence_open(*r + k, most / 2 + 1);
}

/// What a run over points has come to.
enum class Run { done, restart, hopeless };

// One more point: the coefficients of the image join the sequences. Degrees tell unlucky points.
static Run take_point(SparseEnv& s, const WordField& f, int32_t n, int32_t most, Recurrence* r,
                      bool* settled) {
    uint32_t* g;
    int32_t d = sparse_image(s, f, &g);
    if (d != s.degree) {
        if (d >= 0 && d < s.degree) s.degree = d;  // all points so far were unlucky
        return Run::restart;
    }
    *settled = true;
    for (int32_t k = 0; k < d; k++) {
        uint32_t* a = s.sequence + int64_t{k} * most;
        a[n] = wf_mul(f, g[k], s.monomial_value);
        if (r != nullptr) {
            if (!recurrence_add(f, r + k, a, n, most / 2)) return Run::hopeless;
            *settled = *settled && 2 * r[k].length + k_spare_points <= n + 1;
        }
    }
    sparse_advance(s, f);
    return Run::done;
}

// Points until every sequence obeys a recurrence that the last points confirm.
static Run run_points(SparseEnv& s, const WordField& f, int32_t most, Recurrence** r) {
    sparse_start(s, f);
    if (s.degree == INT32_MAX) {
        uint32_t* g;
        int32_t d = sparse_image(s, f, &g);
        if (d < 0) return Run::restart;
        s.degree = d;
    }
    open_sequences(s, r, most);
    for (int32_t n = 0; n < most; n++) {
        poll_interrupt();
        bool settled = true;
        Run step = take_point(s, f, n, most, *r, &settled);
        if (step != Run::done) return step;
        if (settled && n + 1 >= k_spare_points) return Run::done;
    }
    return Run::hopeless;
}

// ---- the terms ----

// The exponents of the term of t^k whose place in the box is e; false: no such term is possible.
static bool decode_term(const SparseEnv& s, int32_t k, int64_t e, int32_t* exponent) {
    int64_t rest = int64_t{k} - s.degree;
    for (int32_t i = 0; i < s.plan.count; i++) {
        exponent[i] = 0;
        rest += int64_t{s.weight[i]} * s.lead[i];
        if (s.place[i] == 0) continue;
        exponent[i] = static_cast<int32_t>(e / s.place[i] % s.radix[i]);
        rest -= int64_t{s.weight[i]} * exponent[i];
    }
    exponent[s.hub] = static_cast<int32_t>(s.weight[s.hub] < 0 ? -rest : rest);
    return true;
}

// Finds the terms of all coefficients from their recurrences, which settles the shape of all further images.
static bool find_terms(SparseEnv& s, const WordField& f, PowerBase* base, const Recurrence* r) {
    int64_t total = 1;
    s.longest = 0;
    for (int32_t k = 0; k < s.degree; k++) {
        total += r[k].length;
        s.longest = maxx(s.longest, r[k].length);
    }
    s.terms = 0;
    s.first = scratch_array<int64_t>(int64_t{s.degree} + 2);
    s.exponent = scratch_array<int32_t>(total * s.plan.count);
    auto* e = scratch_array<int64_t>(int64_t{s.longest} + 1);
    auto* p = scratch_array<uint32_t>(int64_t{s.longest} + 1);
    for (int32_t k = 0; k < s.degree; k++) {
        s.first[k] = s.terms;
        int32_t t = r[k].length;
        if (t == 0) continue;
        for (int32_t i = 0; i <= t; i++) p[t - i] = r[k].c[i];
        if (p[0] == 0 || !power_roots(f, base, p, t, e)) return false;
        for (int32_t i = 0; i < t; i++) {
            if (e[i] >= s.box) return false;
            decode_term(s, k, e[i], s.exponent + s.terms++ * s.plan.count);
        }
    }
    s.first[s.degree] = s.terms;
    for (int32_t i = 0; i < s.plan.count; i++) s.exponent[s.terms * s.plan.count + i] = s.lead[i];
    s.first[s.degree + 1] = ++s.terms;
    return true;
}

// The indexes of the terms, lowest exponents taken out, and the order in which they fall. False: more than
// any divisor has.
static bool order_terms(SparseEnv& s) {
    int32_t n = s.plan.count;
    int32_t low[k_levels];
    for (int32_t i = 0; i < n; i++) {
        int32_t most = INT32_MIN;
        low[i] = INT32_MAX;
        for (int64_t j = 0; j < s.terms; j++) {
            low[i] = minn(low[i], s.exponent[j * n + i]);
            most = maxx(most, s.exponent[j * n + i]);
        }
        if (int64_t{most} - low[i] > s.env->bound[s.plan.level[i]]) return false;
    }
    auto* at = scratch_array<int64_t>(s.terms);
    s.order = scratch_array<int64_t>(s.terms);
    s.index = scratch_array<int64_t>(s.terms);
    for (int64_t j = 0; j < s.terms; j++) {
        at[j] = 0;
        for (int32_t i = 0; i < n; i++) at[j] += s.plan.weight[i] * (s.exponent[j * n + i] - low[i]);
        s.order[j] = j;
    }
    std::sort(s.order, s.order + s.terms, [at](int64_t a, int64_t b) { return at[a] > at[b]; });
    for (int64_t j = 0; j < s.terms; j++) s.index[j] = at[s.order[j]];
    return true;
}

// The coefficients of all terms from the sequences; false: two terms of one coefficient coincide at the
// point.
static bool solve_terms(SparseEnv& s, const WordField& f, int32_t most, PackTerms* g) {
    int32_t n = s.plan.count;
    auto* root = scratch_array<uint32_t>(int64_t{s.longest} + 1);
    auto *value = scratch_array<uint32_t>(s.terms), *start = scratch_array<uint32_t>(s.terms);
    for (int32_t k = 0; k < s.degree; k++) {
        int64_t from = s.first[k];
        auto t = static_cast<int32_t>(s.first[k + 1] - from);
        if (t == 0) continue;
        for (int32_t j = 0; j < t; j++)
            sparse_monomial(s, f, s.exponent + (from + j) * n, &start[from + j], &root[j]);
        if (!exponential_sum(f, root, s.sequence + int64_t{k} * most, t, value + from)) return false;
    }
    value[s.terms - 1] = start[s.terms - 1] = 1;
    g->count = 0;
    g->index = scratch_array<int64_t>(s.terms);
    g->residue = scratch_array<uint32_t>(s.terms);
    for (int64_t j = 0; j < s.terms; j++) {
        int64_t from = s.order[j];
        if (value[from] == 0) continue;
        g->index[g->count] = s.index[j];
        g->residue[g->count++] = wf_mul(f, value[from], wf_inverse(f, start[from]));
    }
    return true;
}

// The first image: terms and coefficients.
static bool discover(SparseEnv& s, const WordField& f, PackTerms* g) {
    PowerBase base;
    if (!power_base_open(f, s.box, &base)) return false;
    auto most = static_cast<int32_t>(s.most_points);
    for (int32_t tries = 0; tries < k_restarts; tries++) {
        sparse_box_point(s, f, base.base);
        Recurrence* r;
        Run run = run_points(s, f, most, &r);
        if (run == Run::hopeless) break;
        if (run == Run::restart) continue;
        if (find_terms(s, f, &base, r) && order_terms(s) && solve_terms(s, f, most, g)) {
            s.known = true;
            return true;
        }
    }
    s.hopeless = true;
    return false;
}

// A further image: the terms are known, so that as many points as the longest coefficient has terms will do.
static bool repeat(SparseEnv& s, const WordField& f, PackTerms* g) {
    sparse_free_point(s, f);
    sparse_start(s, f);
    int32_t most = maxx(s.longest, 1);
    s.sequence = scratch_array<uint32_t>(int64_t{s.degree} * most);
    int32_t degree = s.degree;
    for (int32_t n = 0; n < most; n++) {
        poll_interrupt();
        bool settled;
        if (take_point(s, f, n, most, nullptr, &settled) != Run::done) {
            s.hopeless = s.hopeless || s.degree != degree;  // the first image was unlucky
            return false;
        }
    }
    return solve_terms(s, f, most, g);
}

// ---- rings ----

static bool image_modulo(void* source, const WordField& f, PackTerms* g) {
    SparseEnv& s = *static_cast<SparseEnv*>(source);
    if (s.hopeless) return false;
    uint32_t scale = lintmode ? 1 : wf_of_number(f, &s.lead_gcd);
    if (scale == 0) return false;
    sparse_load(s, f);
    if (!(s.known ? repeat(s, f, g) : discover(s, f, g))) return false;
    for (int64_t i = 0; i < g->count && scale != 1; i++) g->residue[i] = wf_mul(f, g->residue[i], scale);
    return true;
}

static bool few_terms_over_field(SparseEnv& s, polyptrr g) {
    PackTerms terms;
    if (!image_modulo(&s, word_field_ring(), &terms)) return false;
    *g = pack_tree(s.plan, nullptr, terms.index, terms.count, leaf_of_residue, &terms);
    if (divides_both(*s.env, *g)) return true;
    free_poly(g);
    return false;
}

// The gcd of the numbers of the leading coefficient in t, which that of the gcd divides.
static void lead_content(const SparseEnv& s, int side, imptr lead) {
    const SparseOperand& o = s.op[side];
    num_assign(o.leaf[o.start[o.degree]], lead);
    for (int64_t i = o.start[o.degree] + 1; i < o.start[o.degree + 1] && !is_longint(lead, 1); i++)
        binary_gcd(lead, o.leaf[i], lead);
    number content = {};
    find_gcdcoefs(side == 0 ? s.env->u : s.env->v, &content);
    if (!is_longint(&content, 1)) divide_exact(lead, &content);
    special_free(&content);
}

static bool few_terms_over_integers(SparseEnv& s, polyptrr g) {
    number other = {}, content = {};
    lead_content(s, 0, &s.lead_gcd);
    lead_content(s, 1, &other);
    binary_gcd(&s.lead_gcd, &other, &s.lead_gcd);
    special_free(&other);
    PrimeImages images = {s.env, &s.plan,         image_modulo, &s, gcd_bits(*s.env, s.plan, s.lead_gcd.size),
                          true,  k_halving_prime, &s.hopeless};
    bool found = gcd_from_primes(images, g);
    if (found) {
        common_content(s.env->u, s.env->v, &content);
        if (!is_longint(&content, 1)) num_poly_mult(g, &content);
        special_free(&content);
    }
    special_free(&s.lead_gcd);
    return found;
}

bool gcd_of_few_terms(WordGcdEnv& env, int64_t most, polyptrr g) {
    if (modularmode && (finf || modulus < k_least_modulus)) return false;
    ScratchMark mark = scratch_mark();
    auto* s = scratch_array<SparseEnv>(1);
    memset(s, 0, sizeof(SparseEnv));
    s->env = &env;
    s->most_points = most < k_most_points ? most : k_most_points;
    bool found = sparse_open(*s, modularmode ? modulus - 1 : k_halving_box) &&
                 (modularmode ? few_terms_over_field(*s, g) : few_terms_over_integers(*s, g));
    scratch_release(mark);
    return found;
}
}  // namespace tolvex
