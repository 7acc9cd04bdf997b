#include "matrix/interpolated.h"

#include "matrix/int_entries.h"
#include "matrix/poly_matrix.h"
#include "numbers/num_divide.h"
#include "numbers/primes.h"
#include "poly/packed_crt.h"
#include "poly/poly_basic.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cmath>
namespace tolvex {
namespace {
constexpr int64_t k_most_points = int64_t{1} << 22;
constexpr int32_t k_most_degree = 35022;             // in one variable
constexpr int64_t k_most_digits = int64_t{1} << 28;  // words of all coefficients together
constexpr int32_t k_probes = 3;
constexpr InterpolationPlan k_plain = {nullptr, -1, -1, 1, 0, false, false, nullptr};

/// One determinant under way.
struct Work {
    const quoly* a;
    const InterpolationPlan* plan;
    PolyMatrix m;
    Lattice l;
    bool adjoint;       // all elements of the adjoint are wanted
    PackPlan out;       // the result's exponents
    int64_t* index;     // of the terms of the lattice, falling
    int64_t* position;  // where in the lattice each of them stands
    PackTerms image;
};
}  // namespace

static bool over_integers() { return !modularmode || (!finf && !mod_is_prime); }

// ---- support -------------------------------------------------------------------------------------------

/// The degrees that have been promised bound the variables of the first two levels that the matrix has.
static void take_promised_degrees(Work& w) {
    const int32_t promised[2] = {w.plan->degree, w.plan->degree2};
    int32_t first = INT32_MAX;
    for (int32_t v = 0; v < w.m.vars; v++) first = std::min(first, w.m.level[v]);
    for (int32_t v = 0; v < w.m.vars; v++) {
        int32_t k = w.m.level[v] - first;
        if (k < 2 && promised[k] >= 0) w.m.degree[v] = std::min(w.m.degree[v], promised[k]);
    }
}

static int64_t results(const Work& w) { return w.adjoint ? int64_t{w.m.n} * w.m.n : 1; }

namespace {
/// The exponents of the lattice from the greatest term down, levels in their own order.
struct TermOrder {
    int32_t variable[k_lattice_vars];  // by level, first level first
    int32_t exp[k_lattice_vars];       // by variable
    int32_t left;                      // of the total degree
};
}  // namespace

/// The greatest exponents that are left from the level k on.
static void fill_exponents(const Lattice& l, TermOrder& o, int32_t k) {
    for (; k < l.vars; k++) {
        int32_t v = o.variable[k];
        o.exp[v] = std::min(l.degree[v], o.left);
        o.left -= o.exp[v];
    }
}

/// The next smaller term; false after the last.
static bool next_exponents(const Lattice& l, TermOrder& o) {
    for (int32_t k = l.vars - 1; k >= 0; k--) {
        int32_t& e = o.exp[o.variable[k]];
        if (e > 0) {
            e--;
            o.left++;
            fill_exponents(l, o, k + 1);
            return true;
        }
    }
    return false;
}

/// index and position, by the places of exponents in the lattice: sum[i (total + 1) + b] points of the
/// variables from i on have budgets up to b.
static void list_terms(Work& w, const int64_t* weight) {
    const Lattice& l = w.l;
    ScratchMark mark = scratch_mark();
    int64_t width = int64_t{l.total} + 1;
    auto* sum = scratch_array<int64_t>(width * (l.vars + 1));
    for (int64_t i = 0; i <= l.vars; i++)
        for (int64_t b = 0; b < width; b++)
            sum[i * width + b] = l.size[i * width + b] + (b > 0 ? sum[i * width + b - 1] : 0);
    TermOrder o = {};
    o.left = l.total;
    for (int32_t v = 0; v < l.vars; v++) o.variable[v] = v;
    std::sort(o.variable, o.variable + l.vars,
              [&w](int32_t x, int32_t y) { return w.m.level[x] < w.m.level[y]; });
    fill_exponents(l, o, 0);
    int64_t count = 0;
    do {
        int64_t budget = l.total, place = 0, index = 0;
        for (int32_t v = 0; v < l.vars; v++) {
            const int64_t* below = sum + (v + 1) * width;
            place += below[budget] - below[budget - o.exp[v]];
            index += o.exp[v] * weight[v];
            budget -= o.exp[v];
        }
        w.index[count] = index;
        w.position[count++] = place;
        poll_every<4096>(count);
    } while (next_exponents(l, o));
    scratch_release(mark);
}

/// out, index and position: the lattice in the order of terms.
static bool arrange_terms(Work& w) {
    const PolyMatrix& m = w.m;
    int32_t low[k_levels], high[k_levels];
    int64_t weight[k_lattice_vars] = {};
    for (int32_t i = 0; i < m.levels; i++) low[i] = high[i] = m.low[i] * (w.adjoint ? m.n - 1 : m.n);
    for (int32_t v = 0; v < m.vars; v++) high[m.level[v]] += w.l.degree[v];
    if (!pack_plan(low, high, m.levels, &w.out) || w.out.box > (int64_t{1} << 61) / results(w)) return false;
    for (int32_t v = 0; v < m.vars; v++)
        for (int32_t k = 0; k < w.out.count; k++)
            if (w.out.level[k] == m.level[v]) weight[v] = w.out.weight[k];
    w.index = scratch_array<int64_t>(w.l.count);
    w.position = scratch_array<int64_t>(w.l.count);
    int64_t terms = results(w) * w.l.count;
    w.image = {0, scratch_array<int64_t>(terms), {scratch_array<uint32_t>(terms)}};
    list_terms(w, weight);
    return true;
}

/// Matrix, lattice and order of terms. w.m.zero: the determinant is 0.
static bool prepare(Work& w, int32_t n) {
    PolyPurpose purpose = w.adjoint          ? PolyPurpose::adjoint
                          : w.plan->root > 1 ? PolyPurpose::root
                                             : PolyPurpose::determinant;
    if (!make_poly_matrix(&w.m, w.a, n, w.plan->divisor, purpose)) return false;
    if (w.adjoint)
        return make_lattice(&w.l, w.m.minor_degree, w.m.vars, w.m.minor_total, k_most_points / results(w));
    take_promised_degrees(w);
    int32_t degree[k_lattice_vars];
    for (int32_t v = 0; v < w.m.vars; v++) degree[v] = w.m.degree[v] / w.plan->root;
    return make_lattice(&w.l, degree, w.m.vars, w.m.total / w.plan->root, k_most_points);
}

// ---- the size of coefficients --------------------------------------------------------------------------

/// log2 of the sum of magnitudes of an entry's numbers, rounded up a little; -1: an entry 0.
static double log_norm(const number* const* leaf, int64_t count) {
    double most = -1;
    for (int64_t t = 0; t < count; t++) {
        if (lintmode) {
            most = std::max(most, std::log2(1.0 + leaf[t]->lint));
            continue;
        }
        double top = std::abs(static_cast<double>(leaf[t]->head->value)) + 1;
        most = std::max(most, std::log2(top) + double{k_digit_bits} * (leaf[t]->size - 1));
    }
    if (most < 0 || most > 900) return most + std::log2(static_cast<double>(count));
    double sum = 0;
    for (int64_t t = 0; t < count; t++) {
        double v = 0;
        if (lintmode)
            v = leaf[t]->lint;
        else
            for (const numnode* d = leaf[t]->head; d != nullptr; d = d->next)
                v = v * k_base + std::abs(d->value);
        sum += v;
    }
    return std::log2(sum) + 1e-9;
}

/// log2 of a product over lines of the roots of the sums of squares.
static double hadamard_bits(const double* norm, int32_t n, int64_t line_step, int64_t step) {
    double bits = 0;
    for (int64_t line = 0; line < n; line++) {
        double most = -1, sum = 0;
        for (int64_t k = 0; k < n; k++) most = std::max(most, norm[line * line_step + k * step]);
        if (most < 0) continue;  // a line of zeros: minors without it
        for (int64_t k = 0; k < n; k++) {
            double v = norm[line * line_step + k * step];
            if (v >= 0) sum += std::exp2(2 * (v - most));
        }
        bits += most + 0.5 * std::log2(sum) + 1e-9;
    }
    return bits;
}

/// Twice each coefficient of the polynomial that is interpolated stays below 2 to this power. A divided
/// determinant or a root may have greater coefficients than the determinant, by Gelfond's bound on factors.
static double coefficient_bits(const Work& w) {
    const PolyMatrix& m = w.m;
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{m.n} * m.n;
    auto* norm = scratch_array<double>(count);
    std::fill_n(norm, count, -1.0);
    int64_t t = 0;
    for (int64_t e = 0; e < m.entries; e++) {
        int64_t terms = m.first[e + 1] - m.first[e];
        if (m.place[e] < count) norm[m.place[e]] = log_norm(m.leaf + t, terms);
        t += terms;
    }
    double bits = std::min(hadamard_bits(norm, m.n, m.n, 1), hadamard_bits(norm, m.n, 1, m.n)) + 2;
    scratch_release(mark);
    if (m.divided || w.plan->root > 1)
        for (int32_t v = 0; v < m.vars; v++) bits += m.degree[v] + 1.0;
    return bits;
}

// ---- images --------------------------------------------------------------------------------------------

/// The exponent that takes roots in the field, the inverse of w.plan->root modulo the order of the group of
/// units, or of squares; 0: there is none.
static uint64_t root_exponent(int32_t root, uint32_t p) {
    if (root == 1) return 1;
    int64_t order = root % 2 != 0 ? int64_t{p} - 1 : (int64_t{p} - 1) / 2;
    if (root % 2 == 0 && p % 4 != 3) return 0;
    for (int64_t k = 0; k < root; k++)  // (k order + 1) / root
        if ((k * order + 1) % root == 0) return static_cast<uint64_t>((k * order + 1) / root);
    return 0;
}

/// w.image := the determinant over f; of elements of the adjoint, one box of exponents after the other.
static bool image_over(Work& w, PolyImages& i, const WordField& f) {
    if (i.root_exponent == 0 || !interpolate_image(&i, f)) return false;
    w.image.count = 0;
    int64_t count = results(w);
    for (int64_t e = 0; e < count; e++)
        for (int64_t k = 0; k < w.l.count; k++) {
            uint32_t v = i.value[e * w.l.count + w.position[k]];
            if (v == 0) continue;
            w.image.index[w.image.count] = (count - 1 - e) * w.out.box + w.index[k];
            w.image.residue[w.image.count++] = v;
        }
    return true;
}

/// The value of w.image at the point of a probe.
static uint32_t image_value(const Work& w, const PolyImages& probe) {
    uint32_t sum = 0;
    for (int64_t t = 0; t < w.image.count; t++) {
        uint32_t v = w.image.residue[t];
        for (int32_t k = 0; k < w.out.count; k++) {
            int32_t at = 0;
            while (at < w.m.vars && w.m.level[at] != w.out.level[k]) at++;
            if (at == w.m.vars) continue;
            auto e = static_cast<uint64_t>(w.image.index[t] / w.out.weight[k] % w.out.radix[k]);
            v = wf_mul(probe.f, v, wf_power(probe.f, probe.point[at][0], e));
        }
        sum = wf_add(probe.f, sum, v);
        poll_every<1024>(t);
    }
    return sum;
}

/// w.image against the determinant itself at other points.
static bool probe_image(Work& w, const WordField& f) {
    ScratchMark mark = scratch_mark();
    int32_t none[k_lattice_vars] = {};
    Lattice l;
    make_lattice(&l, none, w.m.vars, 0, 2);
    PolyImages probe;
    open_images(&probe, &w.m, &l, false);
    bool good = true;
    for (int32_t k = 0; good && k < k_probes; k++) {
        if (!interpolate_image(&probe, f)) break;
        uint32_t value = image_value(w, probe);
        good = wf_power(f, value, static_cast<uint64_t>(w.plan->root)) == probe.value[0];
    }
    scratch_release(mark);
    return good;
}

static void give_determinant(quolyptr det, poly p) {
    free_quoly(det);
    poly_to_quoly(&p, det);
}

static Interpolated over_field(Work& w, quolyptr det) {
    WordField f = word_field_ring();
    PolyImages i;
    open_images(&i, &w.m, &w.l, false);
    i.root_exponent = f.table ? w.plan->root == 1 : root_exponent(w.plan->root, f.p);
    if (!image_over(w, i, f)) return Interpolated::declined;
    if (w.plan->probe && !probe_image(w, f)) return Interpolated::broken_promise;
    give_determinant(det, pack_tree(w.out, nullptr, w.image.index, w.image.count, leaf_of_residue, &w.image));
    return Interpolated::done;
}

// ---- primes --------------------------------------------------------------------------------------------

/// The primes that are combined where their number is fixed: of 16 bits.
static uint32_t listed_prime(int32_t k, int32_t rows) {
    constexpr int32_t k_short_rows = 50, k_skipped = 5;
    if (rows >= k_short_rows) return k < k_big_primes ? static_cast<uint32_t>(big_prime[k]) : 0;
    return k + k_skipped < k_primes ? static_cast<uint32_t>(prime[k + k_skipped].lint) : 0;
}

/// w.image := the combined coefficients modulo m.
static void reduce_terms(Work& w, CrtTerms& t, uint32_t m) {
    w.image.count = 0;
    for (int64_t k = 0; k < t.count; k++) {
        number v = {};
        leaf_of_crt(&t, k, &v);
        uint32_t r = chain_mod_word(&v, m);
        special_free(&v);
        if (r == 0) continue;
        w.image.index[w.image.count] = t.index[k];
        w.image.residue[w.image.count++] = r;
    }
}

/// Terms that some images had and the value has not.
static void drop_zeros(CrtTerms& t) {
    int64_t out = 0;
    for (int64_t k = 0; k < t.count; k++) {
        bool zero = std::all_of(t.digit + k * t.capacity, t.digit + k * t.capacity + t.primes,
                                [](uint32_t d) { return d == 0; });
        if (zero) continue;
        t.index[out] = t.index[k];
        std::copy_n(t.digit + k * t.capacity, t.primes, t.digit + out++ * t.capacity);
    }
    t.count = out;
}

static void give_combined(Work& w, CrtTerms& t, quolyptr det) {
    drop_zeros(t);
    if (!modularmode)
        return give_determinant(det, pack_tree(w.out, nullptr, t.index, t.count, leaf_of_crt, &t));
    reduce_terms(w, t, static_cast<uint32_t>(modulus));
    give_determinant(det, pack_tree(w.out, nullptr, w.image.index, w.image.count, leaf_of_residue, &w.image));
}

static Interpolated over_primes(Work& w, quolyptr det) {
    double bits = coefficient_bits(w), have = 0;
    auto needed = static_cast<int64_t>(bits / 22.9) + 2;
    if (needed * w.l.count > k_most_digits) return Interpolated::declined;
    PolyImages i;
    open_images(&i, &w.m, &w.l, false);
    CrtTerms t = crt_open(static_cast<int32_t>(std::max<int64_t>(needed, w.plan->images + 1)));
    int32_t fixed = w.plan->images, quiet = 0, taken = 0;
    uint32_t p = k_first_image_prime;
    for (int32_t k = 0; fixed > 0 ? taken < fixed : have <= bits; k++) {
        if (fixed > 0) p = listed_prime(k, w.m.n);
        if (p < 3) return Interpolated::declined;
        WordField f = word_field_prime(p);
        i.root_exponent = root_exponent(w.plan->root, p);
        if (fixed == 0) p = image_prime_below(p);
        if (i.root_exponent == 0) continue;
        if (!image_over(w, i, f)) return Interpolated::declined;
        if (w.plan->probe && fixed > 0 && !probe_image(w, f)) return Interpolated::broken_promise;
        bool grown;
        quiet = crt_add(&t, w.image, f, &grown) ? quiet + 1 : 0;
        have += std::log2(f.p);
        taken++;
        // one image 0 after another says less than a coefficient that stays
        if (w.plan->one_confirms && quiet >= (t.count > 0 ? 1 : 2)) break;
    }
    if (w.plan->probe &&
        fixed == 0) {  // modulo another prime: what divides modulo one need not divide over Z
        reduce_terms(w, t, p);
        if (!probe_image(w, word_field_prime(p))) return Interpolated::broken_promise;
    }
    give_combined(w, t, det);
    return Interpolated::done;
}

// ---- the whole -----------------------------------------------------------------------------------------

/// True over Z.
static bool field_is_large_enough(const Work& w) {
    if (over_integers()) return true;
    for (int32_t v = 0; v < w.m.vars; v++)
        if (w.l.degree[v] >= modulus) return false;
    return true;
}

/// The variable of the first level.
static int32_t first_variable(const PolyMatrix& m) {
    int32_t first = 0;
    for (int32_t v = 1; v < m.vars; v++)
        if (m.level[v] < m.level[first]) first = v;
    return first;
}

/// The degree in it goes to the progress line.
static void show_degree(const Work& w) {
    int32_t first = first_variable(w.m);
    if (w.plan->head != nullptr) dumpitt(w.plan->head, w.m.zero ? 2 : w.l.degree[first], true, false, false);
}

static Interpolated interpolate(Work& w, int32_t n, quolyptr det) {
    if (!prepare(w, n)) {
        if (!w.m.zero) return Interpolated::declined;
        quoly_set(0, det);
        return Interpolated::done;
    }
    show_degree(w);
    if (!arrange_terms(w)) return Interpolated::declined;
    if (over_integers()) return over_primes(w, det);
    if (field_is_large_enough(w)) return over_field(w, det);
    return finf ? Interpolated::declined : over_primes(w, det);
}

Interpolated interpolate_determinant(const quoly* a, int32_t n, const InterpolationPlan& plan, quolyptr det) {
    ScratchMark mark = scratch_mark();
    Work w = {};
    w.a = a;
    w.plan = &plan;
    Interpolated outcome = interpolate(w, n, det);
    scratch_release(mark);
    return outcome;
}

// ---- adjoints ------------------------------------------------------------------------------------------

namespace {
/// The terms of one element among those of all.
struct Part {
    void* terms;
    int64_t from;
};
}  // namespace

static void leaf_of_part(void* source, int64_t i, imptr leaf) {
    const Part& p = *static_cast<Part*>(source);
    (lintmode ? leaf_of_residue : leaf_of_crt)(p.terms, p.from + i, leaf);
}

/// adj[row + column n] := the elements, whose terms are those of w.image, or of t.
static void give_elements(Work& w, CrtTerms* t, quoly* adj) {
    int64_t count = results(w), total = t != nullptr ? t->count : w.image.count, n = w.m.n;
    int64_t *index = t != nullptr ? t->index : w.image.index, at = 0;
    Part part = {t != nullptr ? static_cast<void*>(t) : &w.image, 0};
    for (int64_t e = 0; e < count; e++) {
        part.from = at;
        int64_t base = (count - 1 - e) * w.out.box;
        for (; at < total && index[at] >= base; at++) index[at] -= base;
        poly p = pack_tree(w.out, nullptr, index + part.from, at - part.from, leaf_of_part, &part);
        poly_to_quoly(&p, &adj[e / n + e % n * n]);
        poll_interrupt();
    }
}

static bool adjoint_over_field(Work& w, quoly* adj) {
    PolyImages i;
    open_images(&i, &w.m, &w.l, true);
    if (!image_over(w, i, word_field_ring())) return false;
    give_elements(w, nullptr, adj);
    return true;
}

static bool adjoint_over_primes(Work& w, quoly* adj) {
    double bits = coefficient_bits(w), have = 0;
    auto needed = static_cast<int64_t>(bits / 22.9) + 2;
    if (needed * w.l.count * results(w) > k_most_digits) return false;
    PolyImages i;
    open_images(&i, &w.m, &w.l, true);
    CrtTerms t = crt_open(static_cast<int32_t>(needed));
    for (uint32_t p = k_first_image_prime; have <= bits; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        if (!image_over(w, i, f)) return false;
        bool grown;
        crt_add(&t, w.image, f, &grown);
        have += std::log2(p);
    }
    drop_zeros(t);
    give_elements(w, &t, adj);
    return true;
}

bool interpolate_adjoint(const quoly* a, int32_t n, quoly* adj) {
    if (modularmode && !finf && !mod_is_prime) return false;
    ScratchMark mark = scratch_mark();
    Work w = {};
    w.a = a;
    w.adjoint = true;
    w.plan = &k_plain;
    bool done = prepare(w, n) && field_is_large_enough(w) && arrange_terms(w) &&
                (modularmode ? adjoint_over_field(w, adj) : adjoint_over_primes(w, adj));
    scratch_release(mark);
    return done;
}

bool first_degree(const quoly* a, int32_t n, int32_t* level, int32_t* degree) {
    ScratchMark mark = scratch_mark();
    PolyMatrix m;
    bool good = make_poly_matrix(&m, a, n, nullptr, PolyPurpose::root);
    if (good) {
        *level = m.level[first_variable(m)];
        *degree = m.degree[first_variable(m)];
    }
    scratch_release(mark);
    return good;
}

// ---- estimates -----------------------------------------------------------------------------------------

double interpolation_work(const quoly* a, int32_t n, bool adjoint) {
    constexpr double k_term = 4, k_product = 0.6, k_adjoint_product = 5, k_element = 8, k_step = 8;
    ScratchMark mark = scratch_mark();
    Work w = {};
    w.a = a;
    w.adjoint = adjoint;
    w.plan = &k_plain;
    double work = -1;
    if (prepare(w, n)) {
        bool images_over_z = over_integers() || !field_is_large_enough(w);
        double images = images_over_z ? coefficient_bits(w) / 22.9 + 1 : 1, side = n, steps = 0;
        for (int32_t v = 0; v < w.m.vars; v++) steps += w.l.degree[v];
        double one = adjoint ? side * side * side * k_adjoint_product : side * side * side / 3 * k_product;
        double a_point = one + side * side * k_element + static_cast<double>(results(w)) * steps * k_step +
                         static_cast<double>(w.m.stage[w.m.vars - 1].count) * k_term;
        work = images * static_cast<double>(w.l.count) * a_point;
        if (finf && !field_is_large_enough(w)) work = -1;
    } else if (w.m.zero) {
        work = 0;
    }
    scratch_release(mark);
    return work;
}
}  // namespace tolvex
