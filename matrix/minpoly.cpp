#include "matrix/minpoly.h"

#include "matrix/coefficients.h"
#include "matrix/int_entries.h"
#include "matrix/word_minpoly.h"
#include "numbers/primes.h"
#include "quoly/quoly_basic.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <cmath>
namespace tolvex {
namespace {
constexpr uint32_t k_first_prime = (1u << 30) - 35;  // the largest below 2^30: sixteen products make one word
constexpr int32_t k_most_primes = 598;               // of the table, whose product bounds what is tried

/// The images over the integers.
struct IntMinpoly {
    const MatrixEntries& m;
    const IntEntry* entries;
    const MinpolyRequest& request;
    double log_r;     // largest sum of a row
    uint32_t* words;  // the entries modulo the prime
    uint32_t* c;      // an image
    uint32_t prime;
    CrtTerms crt;
    int32_t degree;  // of the images that have been put together, -1: none yet
};
}  // namespace

// ---- the bound -----------------------------------------------------------------------------------------

static double log_of_entry(const IntEntry& e) {
    if (e.n == 0) return 0;
    double top = static_cast<double>(e.at[e.n - 1]) + 1;
    return std::log2(top) + 64.0 * static_cast<double>(e.n - 1);
}

double log_of_number(const number* v) {
    ScratchMark mark = scratch_mark();
    double log = log_of_entry(int_entry(v));
    scratch_release(mark);
    return log;
}

/// log2 of the largest sum of absolute values over a row, rounded up a little; 0 for a matrix of zeros.
static double largest_row_sum(const MatrixEntries& m, const IntEntry* entries) {
    double most = 0;
    for (int32_t r = 0; r < m.places.n; r++) {
        poll_every<64>(r);
        int64_t from = m.places.start[r], to = m.places.start[r + 1];
        double top = 0, sum = 0;
        for (int64_t k = from; k < to; k++) top = std::max(top, log_of_entry(entries[k]));
        for (int64_t k = from; k < to; k++) sum += std::exp2(log_of_entry(entries[k]) - top);
        if (from < to) most = std::max(most, top + std::log2(sum) + 1e-9);
    }
    return most;
}

double gershgorn(double log_r, int32_t d) {
    double most = 0, log_binomial = 0;
    for (int32_t k = 1; k <= d; k++) {
        log_binomial += std::log2(static_cast<double>(d - k + 1) / k);
        most = std::max(most, k * log_r + log_binomial);
    }
    return most + 1e-6 * d;
}

/// The product of the primes has to exceed 2 to this power.
static double bits_wanted(const IntMinpoly& e) {
    double bits = e.request.bound_bits >= 0 ? e.request.bound_bits : gershgorn(e.log_r, e.degree);
    return bits + 2;
}

// ---- images --------------------------------------------------------------------------------------------

/// The minimal polynomial modulo the next prime, which is checked in full if its degree is not `expected`;
/// returns its degree.
static int32_t next_image(IntMinpoly& e, int32_t expected, WordField* f) {
    *f = word_field_prime(e.prime);
    e.prime = image_prime_below(e.prime);
    for (int64_t k = 0; k < entry_count(e.m); k++) e.words[k] = entry_residue(*f, e.entries[k]);
    return word_minpoly(*f, {e.m.places, e.words}, {e.request.samples, expected}, e.c);
}

static void take_image(IntMinpoly& e, const WordField& f, int32_t degree) {
    if (degree > e.degree) {
        e.degree = degree;
        e.crt = crt_open(16);
    }
    bool grown;
    crt_add(&e.crt, image_terms(e.c, degree), f, &grown);
}

/// Images of the largest degree until the bound is reached. False: that takes too many.
static bool gather_images(IntMinpoly& e) {
    double most = log_of_number(&num_prod[k_most_primes - 1]);
    while (e.degree < 0 || static_cast<double>(crt_product_bits(e.crt)) <= bits_wanted(e)) {
        if (e.degree >= 0 && bits_wanted(e) > most) return false;
        WordField f;
        int32_t degree = next_image(e, e.degree, &f);
        if (degree >= e.degree) take_image(e, f, degree);
        poll_interrupt();
    }
    return true;
}

/// One more image, checked in full, is that of p.
static bool confirmed(IntMinpoly& e, poly p, bool* larger) {
    WordField f;
    int32_t degree;
    do degree = next_image(e, -1, &f);
    while (degree < e.degree);
    *larger = degree > e.degree;
    if (*larger) {
        take_image(e, f, degree);
        return false;
    }
    for (int32_t i = 1; i < e.request.level; i++) p = p->pcoef;
    for (int32_t k = degree; k >= 0; k--) {
        uint32_t residue = 0;
        if (p != nullptr && p->exp == k) {
            const polynode* leaf = p->numb ? p : p->pcoef;
            residue = entry_residue(f, int_entry(leaf->ncoef));
            p = p->next;
        }
        if (residue != e.c[k]) return false;
    }
    return true;
}

// ---- rings ---------------------------------------------------------------------------------------------

static bool minpoly_of_integers(const MatrixEntries& m, const MinpolyRequest& request, quolyptr result) {
    ScratchMark mark = scratch_mark();
    int64_t count = entry_count(m);
    auto* entries = scratch_array<IntEntry>(count);
    for (int64_t k = 0; k < count; k++) {
        poll_every<1024>(k);
        entries[k] = int_entry(m.value[k]->ncoef);
    }
    IntMinpoly e = {m,
                    entries,
                    request,
                    largest_row_sum(m, entries),
                    scratch_array<uint32_t>(count),
                    scratch_array<uint32_t>(int64_t{m.places.n} + 1),
                    k_first_prime,
                    {},
                    -1};
    bool good = false, larger = true;
    while (larger && gather_images(e)) {
        poly p = poly_of_crt(e.crt, e.degree, request.level);
        good = confirmed(e, p, &larger);
        if (good)
            poly_to_quoly(&p, result);
        else
            free_poly(&p);
    }
    scratch_release(mark);
    return good;
}

static void minpoly_of_words(const MatrixEntries& m, const MinpolyRequest& request, quolyptr result) {
    ScratchMark mark = scratch_mark();
    int64_t count = entry_count(m);
    auto* words = scratch_array<uint32_t>(count);
    for (int64_t k = 0; k < count; k++) words[k] = static_cast<uint32_t>(m.value[k]->ncoef->lint);
    auto* c = scratch_array<uint32_t>(int64_t{m.places.n} + 1);
    int32_t d = word_minpoly(word_field_ring(), {m.places, words}, {request.samples, -1}, c);
    poly p = poly_of_words(c, d, request.level);
    scratch_release(mark);
    poly_to_quoly(&p, result);
}

bool minimal_polynomial(const MatrixEntries& m, const MinpolyRequest& request, quolyptr result) {
    if (!modularmode) return minpoly_of_integers(m, request, result);
    minpoly_of_words(m, request, result);
    return true;
}
}  // namespace tolvex
