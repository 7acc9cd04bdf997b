#include "matrix/inverse.h"

#include "matrix/denominators.h"
#include "matrix/determinant.h"
#include "matrix/int_adjoint.h"
#include "matrix/interpolated.h"
#include "matrix/matrix_modes.h"
#include "matrix/pivots.h"
#include "matrix/word_adjoint.h"
#include "numbers/num_divide.h"
#include "numbers/residue.h"
#include "poly/field_shape.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <numeric>
namespace tolvex {
/// How good a pivot is: 0 none, 1 usable, 2 a number.
static int32_t pivot_rank(const quolynode* q) {
    if (quoly_iszero(q)) return 0;
    if (!q->numb) return 1;
    return !modularmode || finf || mod_is_prime || std::gcd(q->ncoef->lint, modulus) == 1 ? 2 : 0;
}

/// A pivot of column k among the rows from k on goes to row k. False if there is none.
static bool bring_pivot(workptr a, workptr b, int32_t n, int32_t k) {
    int32_t best = -1, rank = 0;
    for (int32_t r = k; r < n && rank < 2; r++) {
        int32_t here = pivot_rank(a[r + int64_t{k} * n]);
        if (here <= rank) continue;
        rank = here;
        best = r;
    }
    if (best < 0) return false;
    exchange_rows(a, n, k, best);
    exchange_rows(b, n, k, best);
    return true;
}

/// Row k times f.
static void scale_row(workptr a, int32_t n, int32_t k, quoly f) {
    for (int64_t c = 0; c < n; c++)
        if (!quoly_iszero(a[k + c * n])) fast_quoly_mult(&a[k + c * n], f);
}

/// Row r minus f times row k.
static void reduce_row(workptr a, int32_t n, int32_t r, int32_t k, quoly f) {
    for (int64_t c = 0; c < n; c++) {
        if (quoly_iszero(a[k + c * n])) continue;
        quoly term = nullptr;
        quoly_mult(f, a[k + c * n], &term);
        best_quoly_sub(&a[r + c * n], term);
    }
}

bool invert_by_elimination(workptr a, workptr result, int32_t n) {
    for (int64_t k = 0; k < int64_t{n} * n; k++) quoly_set(k % (n + 1) == 0, &result[k]);
    for (int32_t k = 0; k < n; k++) {
        if (!bring_pivot(a, result, n, k)) return false;
        quoly f = nullptr;
        quoly_assign(a[k + int64_t{k} * n], &f);
        quoly_reciprocal(&f);
        scale_row(a, n, k, f);
        scale_row(result, n, k, f);
        for (int32_t r = 0; r < n; r++) {
            if (r == k || quoly_iszero(a[r + int64_t{k} * n])) continue;
            poll_interrupt();
            quoly_assign(a[r + int64_t{k} * n], &f);
            reduce_row(a, n, r, k, f);
            reduce_row(result, n, r, k, f);
        }
        free_quoly(&f);
    }
    return true;
}
// ---- words ---------------------------------------------------------------------------------------------

namespace {
enum class Entries { words, composite, numbers, polynomials, others };
}  // namespace

static Entries kind_of(const quoly* a, int64_t count) {
    bool numbers = true, plain = true;
    for (int64_t k = 0; k < count; k++) {
        numbers = numbers && (a[k]->numb || a[k]->rat);
        plain = plain && (a[k]->numb || !exists_field_element(a[k]->numer, 1)) &&
                (a[k]->numb || a[k]->denom == nullptr || !exists_field_element(a[k]->denom, 1));
        poll_every<1024>(k);
    }
    bool composite = modularmode && !finf && !mod_is_prime;
    if (numbers) return !modularmode ? Entries::numbers : composite ? Entries::composite : Entries::words;
    return plain && !composite && !modout_above_field ? Entries::polynomials : Entries::others;
}

static void give_word(uint32_t v, quolyptr q) {
    quoly_set(0, q);
    (*q)->ncoef->lint = static_cast<int32_t>(v);
}

/// result := the matrix that f makes of the words; its value, the determinant, is returned.
static uint32_t map_words(const quoly* a, quoly* result, int32_t n,
                          uint32_t (*f)(const WordField& field, uint32_t* a, int32_t n)) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{n} * n;
    auto* words = scratch_array<uint32_t>(count);  // column by column: the transpose, and so is the result
    for (int64_t k = 0; k < count; k++) words[k] = static_cast<uint32_t>(a[k]->ncoef->lint);
    uint32_t det = f(word_field_ring(), words, n);
    for (int64_t k = 0; k < count; k++) give_word(words[k], &result[k]);
    scratch_release(mark);
    return det;
}

// ---- numbers -------------------------------------------------------------------------------------------

static void take_number(void* context, int64_t k, imptr value) {
    auto* result = static_cast<quoly*>(context);
    if (!modularmode) {
        scalar_to_quoly(value, &result[k]);
        free_num(value);
        return;
    }
    uint32_t v = chain_mod_word(value, static_cast<uint32_t>(modulus));
    special_free(value);
    give_word(v, &result[k]);
}

/// result := the adjoint of integers, or of residues modulo any number.
static void adjoint_of_numbers(const quoly* a, quoly* result, int32_t n) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{n} * n;
    auto* entries = scratch_array<IntEntry>(count);
    for (int64_t k = 0; k < count; k++)
        entries[k] =
            modularmode ? word_entry(static_cast<uint32_t>(a[k]->ncoef->lint)) : int_entry(a[k]->ncoef);
    int_adjoint(entries, n, take_number, result);
    scratch_release(mark);
}

/// Modulo a composite number: the adjoint times the inverse of the determinant, if that is a unit.
static bool invert_composite(const quoly* a, quoly* result, int32_t n) {
    quoly det = nullptr;
    dense_determinant(a, n, &det);
    int32_t inverse = mod_inverse_or_0(det->ncoef->lint);
    free_quoly(&det);
    if (inverse == 0) return false;
    adjoint_of_numbers(a, result, n);
    for (int64_t k = 0; k < int64_t{n} * n; k++)
        result[k]->ncoef->lint =
            mod_mult(static_cast<uint32_t>(result[k]->ncoef->lint), static_cast<uint32_t>(inverse), modulus);
    return true;
}

// ---- adjoints of functions -----------------------------------------------------------------------------

/// result(column, row) := the cofactor of (row, column).
static void adjoint_by_cofactors(const quoly* a, quoly* result, int32_t n) {
    ScratchMark mark = scratch_mark();
    auto* minor = scratch_array<quoly>(int64_t{n} * n);
    for (int32_t c = 0; c < n; c++)
        for (int32_t r = 0; r < n; r++) {
            int64_t at = 0;
            for (int64_t k = 0; k < int64_t{n} * n; k++)
                if (k % n != r && k / n != c) minor[at++] = a[k];
            quolyptr value = &result[c + int64_t{r} * n];
            if (n == 1)
                quoly_set(1, value);
            else
                dense_determinant(minor, n - 1, value);
            if ((r + c) % 2 != 0) quoly_inplace(*value);
        }
    scratch_release(mark);
}

/// Of numbers and polynomials over a domain.
static void adjoint_of_polynomials(const quoly* a, quoly* result, int32_t n) {
    double images = interpolation_work(a, n, true), one = determinant_work(a, n - 1, n);
    if (images >= 0 && images < one * n * n && interpolate_adjoint(a, n, result)) return;
    adjoint_by_cofactors(a, result, n);
}

static bool all_numbers(const quoly* a, int64_t count) {
    for (int64_t k = 0; k < count; k++)
        if (!a[k]->numb) return false;
    return true;
}

static void adjoint_of_cleared(const quoly* a, quoly* result, int32_t n) {
    if (!all_numbers(a, int64_t{n} * n))
        adjoint_of_polynomials(a, result, n);
    else if (!modularmode)
        adjoint_of_numbers(a, result, n);
    else
        map_words(a, result, n, word_adjoint);
}

// ---- denominators --------------------------------------------------------------------------------------

/// The determinant from the first column and its cofactors.
static void expand_first_column(const quoly* a, const quoly* adj, int32_t n, quolyptr det) {
    quoly_set(0, det);
    for (int64_t r = 0; r < n; r++) {
        if (quoly_iszero(a[r]) || quoly_iszero(adj[r * n])) continue;
        quoly term = nullptr;
        quoly_mult(a[r], adj[r * n], &term);
        best_quoly_add(det, term);
    }
}

/// a is (b with columns divided by the multiples): its adjoint has rows multiplied by these and divided by
/// the product of all, its inverse the same rows divided by the determinant of b. False: that is 0.
static bool adjoint_or_inverse(workptr a, workptr result, int32_t n, bool inverse) {
    ScratchMark mark = scratch_mark();
    auto* multiple = scratch_array<quoly>(n);
    quoly below = nullptr;
    quoly_set(1, &below);
    for (int32_t c = 0; c < n; c++) {
        multiple[c] = nullptr;
        clear_line(a + int64_t{c} * n, n, &multiple[c]);
        if (!inverse) fast_quoly_mult(&below, multiple[c]);
        poll_interrupt();
    }
    adjoint_of_cleared(a, result, n);
    if (inverse) expand_first_column(a, result, n, &below);
    bool good = !quoly_iszero(below);
    bool same = quoly_equal(below, quol_num_1);  // an adjoint, and no denominators
    for (int64_t k = 0; good && (inverse || !same) && k < int64_t{n} * n; k++) {
        if (quoly_iszero(result[k])) continue;
        if (!quoly_equal(multiple[k % n], quol_num_1)) fast_quoly_mult(&result[k], multiple[k % n]);
        fast_quoly_quot(&result[k], below, false);
        poll_interrupt();
    }
    for (int32_t c = 0; c < n; c++) free_quoly(&multiple[c]);
    free_quoly(&below);
    scratch_release(mark);
    return good;
}

// ---- the whole -----------------------------------------------------------------------------------------

/// True for integers whose determinant is 0, before any image is made.
static bool singular_integers(const quoly* a, int32_t n) {
    if (!all_numbers(a, int64_t{n} * n)) return false;
    quoly det = nullptr;
    dense_determinant(a, n, &det);
    bool zero = quoly_iszero(det);
    free_quoly(&det);
    return zero;
}

/// What verbose mode says of an adjoint that takes images; up to 3 rows it takes none.
static void announce_adjoint(const quoly* a, int32_t n) {
    if (verbose && n > 3 && all_numbers(a, int64_t{n} * n))
        dumpitt("All integers; adjoint-CRT Method, side ", n, true, false, false);
}

bool invert_matrix(workptr a, workptr result, int32_t n) {
    switch (kind_of(a, int64_t{n} * n)) {
    case Entries::words:
        return map_words(a, result, n, word_inverse) != 0;
    case Entries::composite:
        return invert_composite(a, result, n);
    case Entries::numbers:
        if (!mod_matrix_ok) return invert_by_elimination(a, result, n);
        announce_adjoint(a, n);
        return !singular_integers(a, n) && adjoint_or_inverse(a, result, n, true);
    case Entries::polynomials:
        return adjoint_or_inverse(a, result, n, true);
    case Entries::others:
        return invert_by_elimination(a, result, n);
    }
    return false;
}

void adjoint_matrix(workptr a, workptr result, int32_t n) {
    switch (kind_of(a, int64_t{n} * n)) {
    case Entries::words:
        map_words(a, result, n, word_adjoint);
        return;
    case Entries::composite:
        adjoint_of_numbers(a, result, n);
        return;
    case Entries::numbers:
    case Entries::polynomials:
        adjoint_or_inverse(a, result, n, false);
        return;
    case Entries::others:
        adjoint_by_cofactors(a, result, n);
        return;
    }
}
}  // namespace tolvex
