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
#include "storage/polled_sort.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_restarts = 6;
constexpr int64_t k_most_points = 4096;
constexpr int32_t k_group_box = 1 << 20;  // exponents packed into one logarithm
constexpr uint32_t k_least_field = 1024;  // of elements
constexpr int32_t k_spare_points = 2;     // that a recurrence must predict
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

// Enters the exponents of one group, packed in e, into a row.
static bool put_group(const SparseEnv& s, int32_t group, int64_t e, int32_t* exponent) {
    if (e < 0 || e >= s.box) return false;
    for (int32_t i = 0; i < s.plan.count; i++)
        if (s.place[i] != 0 && s.group[i] == group)
            exponent[i] = static_cast<int32_t>(e / s.place[i] % s.radix[i]);
    return true;
}

// The exponent of the hub follows from the degree in t.
static void put_hub(const SparseEnv& s, int32_t k, int32_t* exponent) {
    int64_t rest = int64_t{k} - s.degree;
    for (int32_t i = 0; i < s.plan.count; i++) {
        rest += int64_t{s.weight[i]} * s.lead[i];
        if (s.place[i] == 0)
            exponent[i] = 0;
        else
            rest -= int64_t{s.weight[i]} * exponent[i];
    }
    exponent[s.hub] = static_cast<int32_t>(s.weight[s.hub] < 0 ? -rest : rest);
}

// Lays out the terms by the lengths of the recurrences, the leading term last.
static void open_terms(SparseEnv& s, const Recurrence* r) {
    s.longest = 0;
    s.terms = 0;
    s.first = scratch_array<int64_t>(int64_t{s.degree} + 2);
    for (int32_t k = 0; k < s.degree; k++) {
        s.first[k] = s.terms;
        s.terms += r[k].length;
        s.longest = maxx(s.longest, r[k].length);
    }
    s.first[s.degree] = s.terms++;
    s.first[s.degree + 1] = s.terms;
    s.exponent = scratch_array<int32_t>(s.terms * s.plan.count);
    memcpy(s.exponent + (s.terms - 1) * s.plan.count, s.lead,
           static_cast<size_t>(s.plan.count) * sizeof(int32_t));
}

// The roots of all recurrences, and where there is one group their logarithms, which are its exponents.
static bool find_roots(SparseEnv& s, const WordField& f, PowerBase* base, const Recurrence* r,
                       uint32_t* root) {
    int32_t n = s.plan.count;
    auto* e = scratch_array<int64_t>(int64_t{s.longest} + 1);
    auto* p = scratch_array<uint32_t>(int64_t{s.longest} + 1);
    bool halving = base->bits != 0 && s.groups == 1;
    for (int32_t k = 0; k < s.degree; k++) {
        int32_t t = r[k].length;
        int64_t from = s.first[k];
        if (t == 0) continue;
        for (int32_t i = 0; i <= t; i++) p[t - i] = r[k].c[i];
        if (p[0] == 0) return false;
        if (halving ? !power_roots(f, *base, p, t, e) : !field_roots(f, *base, p, t, root + from))
            return false;
        for (int32_t i = 0; i < t && s.groups == 1; i++) {
            if (!halving) e[i] = power_log(f, base, root[from + i]);
            if (!put_group(s, 0, e[i], s.exponent + (from + i) * n)) return false;
        }
    }
    return true;
}

// The values of all terms at the first point, from the sequences. False: two of a coefficient coincide.
static bool term_values(const SparseEnv& s, const WordField& f, int32_t most, const uint32_t* root,
                        uint32_t* value) {
    for (int32_t k = 0; k < s.degree; k++) {
        int64_t from = s.first[k];
        auto t = static_cast<int32_t>(s.first[k + 1] - from);
        if (t > 0 && !exponential_sum(f, root + from, s.sequence + int64_t{k} * most, t, value + from))
            return false;
    }
    value[s.terms - 1] = 1;
    return true;
}

// As many points as the longest coefficient has terms, their number being known.
static bool short_run(SparseEnv& s, const WordField& f) {
    sparse_start(s, f);
    int32_t most = maxx(s.longest, 1);
    s.sequence = scratch_array<uint32_t>(int64_t{s.degree} * most);
    for (int32_t n = 0; n < most; n++) {
        poll_interrupt();
        bool settled;
        if (take_point(s, f, n, most, nullptr, &settled) != Run::done) return false;
    }
    return true;
}

// Several groups: with the point multiplied by powers of the base in the levels of one group, the recurrences
// stay as they are and the value of a term is multiplied by base^e, where e packs its exponents there.
static bool find_groups(SparseEnv& s, const WordField& f, PowerBase* base, int32_t most,
                        const uint32_t* root) {
    auto *value = scratch_array<uint32_t>(s.terms), *shifted = scratch_array<uint32_t>(s.terms);
    auto* kept = scratch_array<uint32_t>(s.plan.count);
    memcpy(kept, s.point, static_cast<size_t>(s.plan.count) * sizeof(uint32_t));
    if (!term_values(s, f, most, root, value)) return false;
    for (int32_t g = 0; g < s.groups; g++) {
        sparse_shift_point(s, f, g, base->base);
        if (!short_run(s, f) || !term_values(s, f, maxx(s.longest, 1), root, shifted)) return false;
        memcpy(s.point, kept, static_cast<size_t>(s.plan.count) * sizeof(uint32_t));
        for (int64_t j = 0; j + 1 < s.terms; j++) {
            if (value[j] == 0 || shifted[j] == 0) return false;
            int64_t e = power_log(f, base, wf_mul(f, shifted[j], wf_inverse(f, value[j])));
            if (!put_group(s, g, e, s.exponent + j * s.plan.count)) return false;
        }
    }
    sparse_shift_point(s, f, -1, base->base);  // the tables again
    return true;
}

// Finds the terms of all coefficients from their recurrences, which settles the shape of all further images.
static bool find_terms(SparseEnv& s, const WordField& f, PowerBase* base, const Recurrence* r, int32_t most) {
    open_terms(s, r);
    auto* root = scratch_array<uint32_t>(s.terms);
    if (!find_roots(s, f, base, r, root)) return false;
    uint32_t* sequence = s.sequence;
    if (s.groups > 1 && !find_groups(s, f, base, most, root)) return false;
    s.sequence = sequence;
    for (int32_t k = 0; k < s.degree; k++)
        for (int64_t j = s.first[k]; j < s.first[k + 1]; j++) put_hub(s, k, s.exponent + j * s.plan.count);
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
    polled_sort(s.order, s.terms, [at](int64_t a, int64_t b) { return at[a] > at[b]; });
    for (int64_t j = 0; j < s.terms; j++) s.index[j] = at[s.order[j]];
    return true;
}

// The coefficients of all terms from the sequences; false: two terms of one coefficient coincide at the
// point.
static bool solve_terms(SparseEnv& s, const WordField& f, int32_t most, PackTerms* g) {
    auto *root = scratch_array<uint32_t>(s.terms), *value = scratch_array<uint32_t>(s.terms),
         *start = scratch_array<uint32_t>(s.terms);
    for (int64_t j = 0; j < s.terms; j++)
        sparse_monomial(s, f, s.exponent + j * s.plan.count, &start[j], &root[j]);
    if (!term_values(s, f, most, root, value)) return false;
    start[s.terms - 1] = 1;
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
    if (!power_base_open(f, s.box, s.groups == 1, &base)) return false;
    auto most = static_cast<int32_t>(s.most_points);
    for (int32_t tries = 0; tries < k_restarts; tries++) {
        sparse_box_point(s, f, base.base);
        Recurrence* r;
        Run run = run_points(s, f, most, &r);
        if (run == Run::hopeless) break;
        if (run == Run::restart) continue;
        if (find_terms(s, f, &base, r, most) && order_terms(s) && solve_terms(s, f, most, g)) {
            s.known = true;
            return true;
        }
    }
    s.hopeless = true;
    return false;
}

// A further image: the terms are known.
static bool repeat(SparseEnv& s, const WordField& f, PackTerms* g) {
    int32_t degree = s.degree;
    sparse_free_point(s, f);
    if (short_run(s, f)) return solve_terms(s, f, maxx(s.longest, 1), g);
    s.hopeless = s.hopeless || s.degree != degree;  // the first image was unlucky
    return false;
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

static bool few_terms_over_field(SparseEnv& s, const WordField& f, polyptrr g) {
    PackTerms terms;
    if (!image_modulo(&s, f, &terms)) return false;
    for (int64_t i = 0; i < terms.count; i++)
        if (!wf_restrict(f, terms.residue[i], &terms.residue[i])) return false;
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
    ScratchMark mark = scratch_mark();
    WordField f = modularmode ? word_field_enlarged() : word_field_prime(k_halving_prime);
    if (f.p < k_least_field) return false;
    auto* s = scratch_array<SparseEnv>(1);
    memset(s, 0, sizeof(SparseEnv));
    s->env = &env;
    s->most_points = most < k_most_points ? most : k_most_points;
    bool found =
        sparse_open(*s, modularmode ? minn(k_group_box, static_cast<int32_t>(f.p - 1)) : k_halving_box) &&
        (modularmode ? few_terms_over_field(*s, f, g) : few_terms_over_integers(*s, g));
    scratch_release(mark);
    return found;
}
}  // namespace tolvex
