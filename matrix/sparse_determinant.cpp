#include "matrix/sparse_determinant.h"

#include "gcd/word_gcd.h"
#include "matrix/determinant.h"
#include "matrix/int_determinant.h"
#include "matrix/int_entries.h"
#include "matrix/matrix_modes.h"
#include "matrix/reduction.h"
#include "matrix/sparse_elim.h"
#include "matrix/sparse_minors.h"
#include "matrix/sparse_words.h"
#include "numbers/number_modes.h"
#include "numbers/ring_switch.h"
#include "poly/leaf_number.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_quot.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
#include <cstdio>
namespace tolvex {
namespace {
enum class Entries { words, integers, rationals, polynomials, functions };

Entries kind_of(const MatrixEntries& m) {
    bool polynomials = false, fractions = false, quotients = false;
    for (int64_t k = 0; k < entry_count(m); k++) {
        const quolynode* q = m.value[k];
        if (q->numb) continue;
        (q->rat ? fractions : q->denom != nullptr ? quotients : polynomials) = true;
    }
    if (quotients || (fractions && polynomials)) return Entries::functions;
    if (polynomials) return Entries::polynomials;
    return modularmode ? Entries::words : fractions ? Entries::rationals : Entries::integers;
}
}  // namespace

// ---- numbers -------------------------------------------------------------------------------------------

static void determinant_of_words(const MatrixEntries& m, quolyptr det) {
    int64_t count = entry_count(m);
    auto* words = scratch_array<uint32_t>(count);
    for (int64_t k = 0; k < count; k++) words[k] = static_cast<uint32_t>(m.value[k]->ncoef->lint);
    uint32_t value = sparse_word_determinant(word_field_ring(), ring_is_composite(), m.places, words);
    quoly_set(0, det);
    (*det)->ncoef->lint = static_cast<int32_t>(value);
}

namespace {
struct IntegerMatrix {
    const MatrixPattern* places;
    IntEntry* entry;
    uint32_t* residues;  // room for an image
};
}  // namespace

/// Twice the determinant stays below 2 to this power, by the lengths of the rows (or columns, which line_of
/// tells); -1: a line is empty, the determinant 0.
template <class LineOf> static int64_t bits_over_lines(const IntegerMatrix& m, LineOf line_of) {
    int32_t n = m.places->n;
    auto* largest = scratch_array<int64_t>(n);
    auto* count = scratch_array<uint64_t>(n);
    for (int32_t k = 0; k < n; k++) largest[k] = 0, count[k] = 0;
    for (int32_t r = 0; r < n; r++)
        for (int64_t k = m.places->start[r]; k < m.places->start[r + 1]; k++) {
            int32_t line = line_of(r, m.places->column[k]);
            largest[line] = std::max(largest[line], entry_bits(m.entry[k]));
            count[line]++;
        }
    int64_t bits = 0, counts = 0;
    for (int32_t k = 0; k < n; k++) {
        if (count[k] == 0) return -1;
        bits += largest[k];
        counts += std::bit_width(count[k]);
    }
    return bits + counts / 2 + 2;
}

static uint32_t image_of(const WordField& f, void* context) {
    auto* m = static_cast<IntegerMatrix*>(context);
    for (int64_t k = 0; k < m->places->start[m->places->n]; k++)
        m->residues[k] = entry_residue(f, m->entry[k]);
    return sparse_word_determinant(f, false, *m->places, m->residues);
}

/// The numerators of a row times what makes them integers, which is returned.
static IntEntry clear_row(const MatrixEntries& m, int32_t r, IntEntry* entry) {
    IntEntry multiple = k_entry_one;
    for (int64_t k = m.places.start[r]; k < m.places.start[r + 1]; k++)
        if (!m.value[k]->numb) multiple = entry_common_multiple(multiple, entry_denominator(m.value[k]));
    for (int64_t k = m.places.start[r]; k < m.places.start[r + 1]; k++)
        entry[k] = entry_product(entry_numerator(m.value[k]),
                                 entry_quotient(multiple, entry_denominator(m.value[k])));
    return multiple;
}

static void determinant_of_numbers(const MatrixEntries& m, quolyptr det) {
    int64_t count = entry_count(m);
    IntegerMatrix x = {&m.places, scratch_array<IntEntry>(count), scratch_array<uint32_t>(count)};
    IntEntry divisor = k_entry_one;
    for (int32_t r = 0; r < m.places.n; r++) {
        divisor = entry_product(divisor, clear_row(m, r, x.entry));
        poll_every<64>(r);
    }
    int64_t rows = bits_over_lines(x, [](int32_t r, int32_t) { return r; }),
            columns = bits_over_lines(x, [](int32_t, int32_t c) { return c; });
    number value = {}, below = {};
    if (rows < 0 || columns < 0)
        chain_set_int64(&value, 0);
    else
        integer_from_images(std::min(rows, columns), image_of, &x, &value);
    number_of_entry(divisor, &below);
    quotient_of_numbers(&value, &below, det);
}

// ---- polynomials and rational functions ----------------------------------------------------------------

/// The entries are lifted to the integers, and the determinant is reduced.
static void lifted_determinant(sparseptr spar, int32_t m, quolyptr det) {
    free_quoly(det);
    change_sparse(
        spar, m, [](quolyptr value, void*) { quoly_change_from_mod(value); }, nullptr);
    RingState ring = ring_save();
    ring_enter_integers();
    sparse_gauss_elim(spar, m, det);
    ring_restore(ring);
    quoly_change_to_mod(det);
}

static bool takes_minors(int32_t m, Entries kind) {
    constexpr int32_t k_minors_alone = 3, k_composite_minors = 8;
    int32_t cut = detcutoff < 0 ? k_minors_alone : detcutoff;
    if (kind >= Entries::polynomials && ring_is_composite() && gauss_cutoff != 1)
        cut = std::max(cut, k_composite_minors);
    return 1 < m && m <= cut;
}

/// By the method that fits; true if the divisor has been taken care of.
static bool determinant_of_functions(sparseptr spar, int32_t m, Entries kind,
                                     const DeterminantRequest& request, quolyptr det) {
    if (kind == Entries::polynomials && gauss_cutoff == 1) {
        sparse_gauss_Bareiss(spar, m, det);
    } else if (kind == Entries::polynomials && interpolation_is_on() &&
               sparse_lagrange(spar, m, request, det)) {
        return true;
    } else if (ring_is_composite()) {
        lifted_determinant(spar, m, det);
    } else {
        sparse_gauss_elim(spar, m, det);
    }
    return false;
}

/// What is modded out above the field may have zero divisors: the determinant is that of plain polynomials,
/// reduced once.
static bool determinant_above_field(sparseptr spar, int32_t m, Entries kind,
                                    const DeterminantRequest& request, quolyptr det) {
    boolean plain = plain_above_field;
    plain_above_field = 1;
    bool divided = determinant_of_functions(spar, m, kind, request, det);
    plain_above_field = plain;
    if (modout_above_field) (void)quoly_mod_out(det);
    return divided;
}

/// More rows than elimination takes. Interpolation, if it would come first, has a limit of its own and says
/// so.
static void refuse_rows(int32_t m, Entries kind) {
    constexpr int32_t k_most_interpolated_rows = 65535;
    if (m > k_most_interpolated_rows && kind == Entries::polynomials && gauss_cutoff != 1 &&
        interpolation_is_on())
        fputs("Warning. Too many columns (> 65535) for sparse LaGrange method.\n", stdout);
    error(Err::sparse_rows);
}

void sparse_determinant(sparseptr spar, int32_t m, const DeterminantRequest& request, quolyptr det) {
    ScratchMark mark = scratch_mark();
    MatrixEntries entries = sparse_entry_list(spar, m);
    Entries kind = kind_of(entries);
    bool divided = false;
    if (takes_minors(m, kind)) {
        sparse_minors_det(entries, det);
    } else if (m > k_most_pivot_rows) {
        quoly_set(0, det);
        refuse_rows(m, kind);
    } else if (kind == Entries::words) {
        determinant_of_words(entries, det);
    } else if (kind == Entries::integers || kind == Entries::rationals) {
        determinant_of_numbers(entries, det);
    } else {
        divided = determinant_above_field(spar, m, kind, request, det);
    }
    scratch_release(mark);
    if (!divided) divide_fct(det, request);
}
}  // namespace tolvex
