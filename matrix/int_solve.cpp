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

/// The right side becomes the solution. False: m is singular modulo the prime.
static bool solve_words(const WordSystem& s) {
    int32_t width = s.n + s.cols;
    for (int32_t k = 0; k < s.n; k++) {
        poll_interrupt();
        int32_t r = k;
        while (r < s.n && s.row(r)[k] == 0) r++;
        if (r == s.n) return false;
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

/// The solution modulo f.p as terms, entry k as index count - 1 - k.
static PackTerms solution_terms(const WordSystem& s) {
    int64_t count = int64_t{s.n} * s.cols;
    PackTerms t = {0, scratch_array<int64_t>(count), {scratch_array<uint32_t>(count)}};
    for (int64_t k = 0; k < count; k++) {
        uint32_t x = s.row(static_cast<int32_t>(k / s.cols))[s.n + k % s.cols];
        if (x == 0) continue;
        t.index[t.count] = count - 1 - k;
        t.residue[t.count++] = x;
    }
    return t;
}

IntGrid solve_integers(const IntGrid& m, const IntGrid& right, const IntEntry& det) {
    int64_t bits = solution_bits(m, right, det), count = int64_t{m.rows} * right.cols;
    IntGrid x = zero_grid(m.rows, right.cols);
    CrtTerms crt = crt_open(static_cast<int32_t>(bits / 30) + 2);
    auto* words = scratch_array<uint32_t>(int64_t{m.rows} * (m.rows + right.cols));
    for (uint32_t p = k_first_prime; crt_product_bits(crt) <= bits + 1; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        WordSystem s = {f, words, m.rows, right.cols};
        for (int32_t r = 0; r < m.rows; r++) {
            for (int32_t c = 0; c < m.rows; c++) s.row(r)[c] = entry_residue(f, m(r, c));
            for (int32_t c = 0; c < right.cols; c++) s.row(r)[m.rows + c] = entry_residue(f, right(r, c));
        }
        bool grown;
        if (solve_words(s)) crt_add(&crt, solution_terms(s), f, &grown);
    }
    for (int64_t i = 0; i < crt.count; i++) {
        number value = {};
        leaf_of_crt(&crt, i, &value);
        x.at[count - 1 - crt.index[i]] = int_entry(&value);
        special_free(&value);
    }
    return x;
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
