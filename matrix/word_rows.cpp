// A product with a fixed factor takes its quotient from a word computed once (V. Shoup): both products and
// the remainder, below twice the modulus, are words.
#include "matrix/word_rows.h"

#include "storage/wide_vectors.h"

#include <algorithm>
namespace tolvex {
namespace {
/// The factor, and floor(factor 2^32 / modulus).
struct FixedFactor {
    uint32_t factor, quotient, modulus;
};
FixedFactor fixed_factor(const WordField& f, uint32_t factor) {
    return {factor, static_cast<uint32_t>((static_cast<uint64_t>(factor) << 32) / f.p), f.p};
}
inline uint32_t times(FixedFactor x, uint32_t y) {
    auto q = static_cast<uint32_t>((static_cast<uint64_t>(x.quotient) * y) >> 32);
    uint32_t r = x.factor * y - q * x.modulus;
    return std::min(r, r - x.modulus);
}
}  // namespace

// to[c] := to[c] + x from[c].
WIDE_VECTORS static void add_multiple(uint32_t* __restrict to, const uint32_t* __restrict from, FixedFactor x,
                                      int64_t count) {
    for (int64_t c = 0; c < count; c++) {
        uint32_t s = to[c] + times(x, from[c]);
        to[c] = std::min(s, s - x.modulus);
    }
}

WIDE_VECTORS static void multiply_row(uint32_t* row, FixedFactor x, int64_t count) {
    for (int64_t c = 0; c < count; c++) row[c] = times(x, row[c]);
}

WIDE_VECTORS static uint32_t least_rank(const uint32_t* row, uint32_t minus_one, int64_t count) {
    // two plain accumulations, which vectors take; one with a choice inside would go element by element
    uint32_t least = UINT32_MAX, found = 0;
    for (int64_t c = 0; c < count; c++) {
        least = std::min(least, row[c] - 1);
        found |= row[c] == minus_one ? ~uint32_t{0} : 0;
    }
    return least & ~found;
}

/// In GF(2^8) one row of the table of products serves all elements.
static void add_table_multiple(uint32_t* to, const uint32_t* from, uint32_t factor, int64_t count) {
    if (f256) {
        const int16_t* product = f256prod[factor & 255];
        for (int64_t c = 0; c < count; c++) to[c] ^= static_cast<uint32_t>(product[from[c] & 255]);
    } else {
        for (int64_t c = 0; c < count; c++) to[c] ^= static_cast<uint32_t>(table_mult(factor, from[c]));
    }
}

void add_row_multiple(const WordField& f, uint32_t* to, const uint32_t* from, uint32_t factor,
                      int64_t count) {
    f.table ? add_table_multiple(to, from, factor, count)
            : add_multiple(to, from, fixed_factor(f, factor), count);
}

void scale_row_by(const WordField& f, uint32_t* row, uint32_t factor, int64_t count) {
    if (!f.table) return multiply_row(row, fixed_factor(f, factor), count);
    for (int64_t c = 0; c < count; c++) row[c] = wf_mul(f, row[c], factor);
}

uint32_t least_pivot_rank(const WordField& f, const uint32_t* row, int64_t count) {
    return least_rank(row, f.table ? 1 : f.p - 1, count);
}
}  // namespace tolvex
