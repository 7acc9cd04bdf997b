#include "matrix/determinant.h"

#include "matrix/bareiss.h"
#include "matrix/denominators.h"
#include "matrix/growth.h"
#include "matrix/int_determinant.h"
#include "matrix/interpolated.h"
#include "matrix/matrix_modes.h"
#include "matrix/minors.h"
#include "matrix/word_determinant.h"
#include "numbers/ring_switch.h"
#include "poly/field_shape.h"
#include "poly/packed.h"
#include "poly/size_estimates.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
namespace tolvex {
namespace {
enum class Entries { words, integers, rationals, functions };

Entries kind_of(const quoly* a, int64_t count) {
    bool fractions = false;
    for (int64_t k = 0; k < count; k++) {
        if (!a[k]->numb && !a[k]->rat) return Entries::functions;
        if (!a[k]->numb) fractions = true;
    }
    return modularmode ? Entries::words : fractions ? Entries::rationals : Entries::integers;
}
}  // namespace

static bool ring_is_composite() { return modularmode && !finf && !mod_is_prime; }

// ---- numbers -------------------------------------------------------------------------------------------

static void determinant_of_words(const quoly* a, int32_t m, quolyptr det) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{m} * m;
    auto* words = scratch_array<uint32_t>(count);
    for (int64_t k = 0; k < count; k++) words[k] = static_cast<uint32_t>(a[k]->ncoef->lint);
    uint32_t value = ring_is_composite() ? euclid_determinant(static_cast<uint32_t>(modulus), words, m)
                                         : word_determinant(word_field_ring(), words, m);
    scratch_release(mark);
    quoly_set(0, det);
    (*det)->ncoef->lint = static_cast<int32_t>(value);
}

static void determinant_of_integers(const quoly* a, int32_t m, quolyptr det) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{m} * m;
    auto** entries = scratch_array<const number*>(count);
    for (int64_t k = 0; k < count; k++) entries[k] = a[k]->ncoef;
    number value = {};
    int_determinant(entries, m, &value);
    scratch_release(mark);
    scalar_to_quoly(&value, det);
    free_num(&value);
}

// ---- polynomials and rational functions ----------------------------------------------------------------

namespace {
/// A matrix of functions: copies of the elements, and what they are.
struct Functions {
    quoly* a;
    int32_t m;
    bool allpolys;  // as they were given
    bool tower;     // some use the field tower
};
enum class Engine { interpolation, minors, elimination };
}  // namespace

/// Rows from which minors finish an elimination.
static int32_t minors_from(int32_t m) {
    constexpr int32_t k_minors_alone = 5;
    if (detcutoff >= 0) return std::min(detcutoff, k_most_block_rows);
    if (m <= k_minors_alone) return m;
    return m == k_minors_alone + 1 ? m - 2 : 0;
}

static quoly* copy_elements(const quoly* a, int64_t count) {
    auto* copy = scratch_array<quoly>(count);
    for (int64_t k = 0; k < count; k++) {
        copy[k] = nullptr;
        quoly_assign(a[k], &copy[k]);
        poll_every<1024>(k);
    }
    return copy;
}

static void free_elements(quoly* a, int64_t count) {
    for (int64_t k = 0; k < count; k++) {
        poll_every<1024>(k);
        free_quoly(&a[k]);
    }
}

static void survey(Functions& f) {
    int64_t count = int64_t{f.m} * f.m;
    f.allpolys = true;
    f.tower = false;
    for (int64_t k = 0; k < count; k++) {
        const quolynode* q = f.a[k];
        if (q->numb) continue;
        f.allpolys = f.allpolys && q->denom == nullptr;
        f.tower = f.tower || exists_field_element(q->numer, 1) ||
                  (q->denom != nullptr && exists_field_element(q->denom, 1));
        poll_every<1024>(k);
    }
}

// ---- the work of an expansion --------------------------------------------------------------------------

double determinant_work(const quoly* a, int32_t m, int32_t n) {
    constexpr double k_term = 30, k_product = 300;
    constexpr int32_t k_most_rows = 24;
    if (m > k_most_rows) return 1e30;
    EntryMeasure e;
    measure_entries(a, int64_t{n} * n, &e);
    double work = 0, choices = 1;
    for (int32_t k = 1; k <= m; k++) {
        choices *= static_cast<double>(m - k + 1) / k;
        work += choices * k * e.filled * (k_product + k_term * e.entry_terms * minor_terms(e, k - 1));
    }
    return work;
}

/// About the nanoseconds of elimination without fractions, whose products are fast ones, where the entries
/// are polynomials in one variable.
static double elimination_work(const Functions& f) {
    constexpr double k_step = 140, k_digit_share = 0.5;
    int32_t only = -1;
    double degree = 0, digits = 0;
    for (int64_t k = 0; k < int64_t{f.m} * f.m; k++) {
        if (f.a[k]->numb) continue;
        PackMeasure here = {};
        pack_measure(f.a[k]->numer, &here);
        for (int32_t i = 0; i < here.levels; i++) {
            if (here.most[i] == 0 && here.least[i] == 0) continue;
            if (only >= 0 && only != i) return 1e30;
            only = i;
            degree = std::max(degree, static_cast<double>(here.most[i]) - here.least[i]);
        }
        if (!lintmode) digits = std::max(digits, static_cast<double>(here.digits));
        poll_interrupt();
    }
    double work = 0;
    for (int32_t k = 1; k < f.m; k++) {
        double size = k * degree + 2, left = f.m - k;
        work += 3 * left * left * size * std::log2(size) * k_step * (1 + k_digit_share * k * digits);
    }
    return work;
}

static Engine choose_engine(const Functions& f) {
    if (detcutoff >= 0 || gauss_cutoff == 1 || f.tower || f.m == 1) return Engine::elimination;
    double expansion = determinant_work(f.a, f.m, f.m), images = interpolation_work(f.a, f.m, false);
    if (images >= 0 && images < expansion)
        return elimination_work(f) < images ? Engine::elimination : Engine::interpolation;
    constexpr int32_t k_most_expanded = 12;
    return f.m <= k_most_expanded ? Engine::minors : Engine::elimination;
}

// ---- methods -------------------------------------------------------------------------------------------

/// Modulo a composite number elimination would meet divisors of 0: the determinant of the entries lifted to
/// the integers is reduced.
static void lifted_determinant(Functions& f, quolyptr det) {
    int64_t count = int64_t{f.m} * f.m;
    free_quoly(det);
    for (int64_t k = 0; k < count; k++) quoly_change_from_mod(&f.a[k]);
    RingState ring = ring_save();
    ring_enter_integers();
    bareiss_determinant(f.a, f.m, minors_from(f.m), det);
    ring_restore(ring);
    quoly_change_to_mod(det);
}

static void eliminate(Functions& f, quolyptr det) {
    if (verbose) {
        bool to_the_end = gauss_cutoff == 1 && f.allpolys;
        dumpitt(to_the_end ? "Gauss-Bareiss method, size " : "Standard G.E. method, rank ", f.m, true, false,
                false);
    }
    int32_t minors = gauss_cutoff == 1 && f.allpolys ? 0 : minors_from(f.m);
    if (ring_is_composite() && minors < f.m) return lifted_determinant(f, det);
    bareiss_determinant(f.a, f.m, minors, det);
}

/// The determinant of polynomials by the engine of least work.
static void compute(Functions& f, quolyptr det) {
    static const InterpolationPlan k_plain = {nullptr, -1, -1, 1, 0, false, false, nullptr};
    Engine engine = choose_engine(f);
    if (engine == Engine::interpolation &&
        interpolate_determinant(f.a, f.m, k_plain, det) == Interpolated::done)
        return;
    if (engine == Engine::minors)
        small_determ(f.a, f.m, f.m, det);
    else
        eliminate(f, det);
}

bool interpolation_is_on() { return rat_det_method_cut == 1 && detcutoff < 0; }

static int64_t size_in_bits(const number* x) {
    int32_t top = x->head->value;
    return int64_t{k_digit_bits} * (x->size - 1) +
           std::bit_width(static_cast<uint32_t>(top < 0 ? -top : top));
}

/// The sum of the sizes of the entries exceeds the limit.
static bool mass_exceeds_limit(const Functions& f) {
    constexpr int32_t k_most = 268435456;
    int64_t limit = lintmode ? mod_det_method_cut : std::min(rat_det_method_cut, k_most), sum = 0;
    for (int64_t k = 0; k < int64_t{f.m} * f.m && sum <= limit; k++) {
        const quolynode* q = f.a[k];
        if (!q->numb)
            sum += poly_mass(q->numer, 2, number_polys);
        else
            sum += lintmode ? 1 : (size_in_bits(q->ncoef) - 1) / 2;
    }
    return sum > limit;
}

/// The interpolation route by the switch. False: another method is to be taken.
static bool interpolate_by_switch(const Functions& f, const DeterminantRequest& request, quolyptr det) {
    constexpr int32_t k_least_rows = 4, k_always = 7;
    if (!interpolation_is_on() || !f.allpolys || f.m < k_least_rows) return false;
    if (f.m < k_always && !mass_exceeds_limit(f)) return false;
    if (verbose && request.degree2 >= 0)
        printf("Warning: second degree argument (fourth) is ignored when matrix is not sparse.\n");
    if (verbose && (request.power > 1 || request.power < -1))
        printf("Warning: power argument (fifth) is ignored when matrix is not sparse.\n");
    DeterminantRequest used = {.fct = request.fct, .degree = request.degree, .fault = request.fault};
    return modularmode ? mod_poly_determ(f.a, f.m, used, laurent, det)
                       : rat_poly_determ(f.a, f.m, used, laurent, det);
}

static void determinant_of_functions(const quoly* a, const DeterminantRequest& request, int32_t m,
                                     quolyptr det) {
    ScratchMark mark = scratch_mark();
    Functions f = {copy_elements(a, int64_t{m} * m), m, true, false};
    survey(f);
    // above the field what is modded out may have zero divisors: the determinant is that of plain
    // polynomials, reduced once
    boolean plain = plain_above_field;
    plain_above_field = 1;
    if (interpolate_by_switch(f, request, det)) {
        free_elements(f.a, int64_t{m} * m);
    } else {
        quoly divisor = nullptr;
        quoly_set(1, &divisor);
        if (!f.allpolys) clear_columns(f.a, m, &divisor);
        compute(f, det);
        free_elements(f.a, int64_t{m} * m);
        if (!quoly_equal(divisor, quol_num_1)) fast_quoly_quot(det, divisor, false);
        free_quoly(&divisor);
        plain_above_field = plain;
        if (modout_above_field) (void)quoly_mod_out(det);
        divide_fct(det, request);
    }
    plain_above_field = plain;
    if (modout_above_field) (void)quoly_mod_out(det);
    scratch_release(mark);
}

void dense_determinant(const quoly* a, int32_t m, const DeterminantRequest& request, quolyptr det) {
    Entries kind = kind_of(a, int64_t{m} * m);
    if (kind == Entries::functions) return determinant_of_functions(a, request, m, det);
    if (kind == Entries::words)
        determinant_of_words(a, m, det);
    else if (kind == Entries::integers)
        determinant_of_integers(a, m, det);
    else
        rational_determinant(a, m, det);
    divide_fct(det, request);
}
}  // namespace tolvex
