#include "matrix/determinant.h"

#include "matrix/bareiss.h"
#include "matrix/int_determinant.h"
#include "matrix/matrix_modes.h"
#include "matrix/minors.h"
#include "matrix/word_determinant.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
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

bool ring_is_composite() { return modularmode && !finf && !mod_is_prime; }
}  // namespace

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

/// Rows from which minors take over.
static int32_t minors_from(int32_t m) {
    constexpr int32_t k_minors_alone = 5, k_composite_minors = 8;
    if (ring_is_composite() && m <= k_composite_minors) return m;
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

/// Modulo a composite number elimination would meet divisors of 0: the determinant of the entries lifted to
/// the integers is reduced.
static void lifted_determinant(quoly* a, int32_t m, quolyptr det) {
    int64_t count = int64_t{m} * m;
    free_quoly(det);
    for (int64_t k = 0; k < count; k++) quoly_change_from_mod(&a[k]);
    RingState ring = ring_save();
    ring_enter_integers();
    bareiss_determinant(a, m, minors_from(m), det);
    free_elements(a, count);
    ring_restore(ring);
    quoly_change_to_mod(det);
}

static void determinant_of_functions(const quoly* a, int32_t m, quolyptr det) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{m} * m;
    quoly* copy = copy_elements(a, count);
    int32_t minors = minors_from(m);
    if (ring_is_composite() && minors < m) {
        lifted_determinant(copy, m, det);
    } else {
        bareiss_determinant(copy, m, minors, det);
        free_elements(copy, count);
    }
    scratch_release(mark);
}

void dense_determinant(const quoly* a, int32_t m, quolyptr det) {
    switch (kind_of(a, int64_t{m} * m)) {
    case Entries::words:
        return determinant_of_words(a, m, det);
    case Entries::integers:
        return determinant_of_integers(a, m, det);
    case Entries::rationals:
        return rational_determinant(a, m, det);
    case Entries::functions:
        return determinant_of_functions(a, m, det);
    }
}
}  // namespace tolvex
