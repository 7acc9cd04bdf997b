#include "matrix/int_solve.h"

#include "matrix/word_rows.h"
#include "poly/packed_crt.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr uint32_t k_first_prime = 2147483629;  // the largest below 2^31 - 1

struct WordSystem {
    const WordField& f;
    uint32_t* words;  // m and right side by side, row by row
    int32_t n, cols;
    uint32_t* row(int32_t r) const { return words + int64_t{r} * (n + cols); }
};
}  // namespace

/// The right side becomes the solution, *det the determinant. False: m is singular modulo the prime.
static bool solve_words(const WordSystem& s, uint32_t* det) {
    int32_t width = s.n + s.cols;
    *det = 1;
    for (int32_t k = 0; k < s.n; k++) {
        poll_interrupt();
        int32_t r = k;
        while (r < s.n && s.row(r)[k] == 0) r++;
        if (r == s.n) return false;
        *det = wf_mul(s.f, *det, r == k ? s.row(r)[k] : wf_neg(s.f, s.row(r)[k]));
        if (r != k) std::swap_ranges(s.row(r) + k, s.row(r) + width, s.row(k) + k);
        scale_row_by(s.f, s.row(k) + k, wf_inverse(s.f, s.row(k)[k]), width - k);
        for (r = 0; r < s.n; r++) {
            uint32_t entry = s.row(r)[k];
            if (r != k && entry != 0)
                add_row_multiple(s.f, s.row(r) + k, s.row(k) + k, wf_neg(s.f, entry), width - k);
        }
    }
    return true;
}

/// All entries of the solution stay below 2 to this power (Cramer, Hadamard; by columns of m).
static int64_t solution_bits(const IntGrid& m, const IntGrid& right, const IntEntry& det) {
    IntGrid columns = transposed(m), sides = transposed(right);
    return row_length_bits(columns, m.rows - 1) + row_length_bits(sides, 1) - entry_bits(det) + 3;
}

/// What has been found modulo f.p as terms: entry k of the solution has the index count - 1 - k; with
/// `cramer` it is multiplied by the determinant, which stands in front.
static void solution_terms(const WordSystem& s, bool cramer, uint32_t det, PackTerms* t) {
    int64_t count = int64_t{s.n} * s.cols;
    t->count = 0;
    if (cramer) {
        t->index[0] = count;
        t->residue[t->count++] = det;
    }
    for (int64_t k = 0; k < count; k++) {
        uint32_t x = s.row(static_cast<int32_t>(k / s.cols))[s.n + k % s.cols];
        if (x == 0) continue;
        t->index[t->count] = count - 1 - k;
        t->residue[t->count++] = cramer ? wf_mul(s.f, x, det) : x;
    }
}

/// These terms modulo primes whose product exceeds 2^(bits + 1). Primes that divide the determinant are left
/// out.
static CrtTerms solution_images(const IntGrid& m, const IntGrid& right, int64_t bits, bool cramer) {
    CrtTerms crt = crt_open(static_cast<int32_t>(bits / 30) + 2);
    int64_t count = int64_t{m.rows} * right.cols + 1;
    auto* words = scratch_array<uint32_t>(int64_t{m.rows} * (m.rows + right.cols));
    PackTerms terms = {0, scratch_array<int64_t>(count), {scratch_array<uint32_t>(count)}};
    for (uint32_t p = k_first_prime; crt_product_bits(crt) <= bits + 1; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        WordSystem s = {f, words, m.rows, right.cols};
        for (int32_t r = 0; r < m.rows; r++) {
            for (int32_t c = 0; c < m.rows; c++) s.row(r)[c] = entry_residue(f, m(r, c));
            for (int32_t c = 0; c < right.cols; c++) s.row(r)[m.rows + c] = entry_residue(f, right(r, c));
        }
        uint32_t det;
        if (!solve_words(s, &det)) continue;
        solution_terms(s, cramer, det, &terms);
        bool grown;
        crt_add(&crt, terms, f, &grown);
    }
    return crt;
}

static IntEntry entry_of_term(CrtTerms* crt, int64_t i) {
    number value = {};
    leaf_of_crt(crt, i, &value);
    IntEntry e = int_entry(&value);
    special_free(&value);
    return e;
}

/// The solution from its terms, of which the first `from` are something else.
static IntGrid grid_of_terms(CrtTerms* crt, int64_t from, int32_t rows, int32_t cols) {
    IntGrid x = zero_grid(rows, cols);
    int64_t count = int64_t{rows} * cols;
    for (int64_t i = from; i < crt->count; i++) {
        x.at[count - 1 - crt->index[i]] = entry_of_term(crt, i);
        poll_every<64>(i);
    }
    return x;
}

IntGrid solve_integers(const IntGrid& m, const IntGrid& right, const IntEntry& det) {
    CrtTerms crt = solution_images(m, right, solution_bits(m, right, det), false);
    return grid_of_terms(&crt, 0, m.rows, right.cols);
}

/// All columns, of which those with the longest bound the determinants of Cramer's rule.
static int64_t numerator_bits(const IntGrid& m, const IntGrid& right) {
    IntGrid columns = zero_grid(m.cols + right.cols, m.rows);
    for (int32_t r = 0; r < m.rows; r++) {
        for (int32_t c = 0; c < m.cols; c++) columns(c, r) = m(r, c);
        for (int32_t c = 0; c < right.cols; c++) columns(m.cols + c, r) = right(r, c);
    }
    return row_length_bits(columns, m.rows) + 1;
}

IntGrid cramer_numerators(const IntGrid& m, const IntGrid& right, IntEntry* det) {
    CrtTerms crt = solution_images(m, right, numerator_bits(m, right), true);
    *det = entry_of_term(&crt, 0);
    return grid_of_terms(&crt, 1, m.rows, right.cols);
}

IntGrid solve_lower(const IntGrid& m, const IntGrid& right) {
    IntGrid x = zero_grid(m.rows, right.cols);
    int64_t longest = 1, bits = grid_bits(m), right_bits = grid_bits(right);  // longest: of x so far
    for (int32_t r = 0; r < m.rows; r++) {
        IntSum sum = new_sum(bits + 1, std::max(longest, right_bits), int64_t{r} + 1);
        for (int32_t c = 0; c < right.cols; c++) {
            poll_interrupt();
            clear_sum(sum);
            add_to_sum(sum, right(r, c), k_entry_one, false);
            for (int32_t k = 0; k < r; k++) add_to_sum(sum, m(r, k), x(k, c), true);
            x(r, c) = exact_entry_quotient(value_of_sum(sum), m(r, r));
            longest = std::max(longest, entry_bits(x(r, c)));
        }
    }
    return x;
}
}  // namespace tolvex
