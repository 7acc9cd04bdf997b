#include "matrix/int_determinant.h"

#include "matrix/int_entries.h"
#include "matrix/word_determinant.h"
#include "poly/leaf_number.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <bit>
#include <cstring>
namespace tolvex {
namespace {
struct IntMatrix {
    IntEntry* entries;  // n times n of them
    int32_t n;
};
/// A value x modulo the product of the primes so far, 0 <= x < product.
struct Crt {
    limb *x, *product;
    int64_t xn, productn;
};
}  // namespace

// ---- the bound -----------------------------------------------------------------------------------------

/// Over lines of entries `step` apart: the bits of the largest one and half those of the number of entries
/// that are not 0, one line with the next; -1: a line is 0.
static int64_t bits_over_lines(const IntMatrix& m, int64_t line_step, int64_t step) {
    int64_t largest = 0, counts = 0;
    for (int64_t line = 0; line < m.n; line++) {
        int64_t most = 0;
        uint64_t count = 0;
        for (int64_t k = 0; k < m.n; k++) {
            int64_t bits = entry_bits(m.entries[line * line_step + k * step]);
            most = std::max(most, bits);
            count += bits > 0;
        }
        if (count == 0) return -1;
        largest += most;
        counts += std::bit_width(count);
    }
    return largest + counts / 2 + 2;
}

/// Twice the determinant stays below 2 to this power (Hadamard: the product of the lengths of the rows, or of
/// the columns); -1: it is 0.
static int64_t determinant_bits(const IntMatrix& m) {
    int64_t rows = bits_over_lines(m, m.n, 1), columns = bits_over_lines(m, 1, m.n);
    return rows < 0 || columns < 0 ? -1 : std::min(rows, columns);
}

// ---- images --------------------------------------------------------------------------------------------

static uint32_t image_of(const WordField& f, const IntMatrix& m, uint32_t* residues) {
    int64_t count = int64_t{m.n} * m.n;
    for (int64_t k = 0; k < count; k++) residues[k] = entry_residue(f, m.entries[k]);
    return word_determinant(f, residues, m.n);
}

/// x becomes the value that is x modulo the product and r modulo the new prime (Newton's form).
static void take_image(Crt& crt, const WordField& f, uint32_t r) {
    auto x = static_cast<uint32_t>(limbs_mod_1(crt.x, crt.xn, f.p));
    auto product = static_cast<uint32_t>(limbs_mod_1(crt.product, crt.productn, f.p));
    uint32_t t = wf_mul(f, wf_sub(f, r, x), wf_inverse(f, product));
    std::fill(crt.x + crt.xn, crt.x + crt.productn, 0);
    crt.x[crt.productn] = limbs_addmul_1(crt.x, crt.product, crt.productn, t);
    crt.xn = limbs_trim(crt.x, crt.productn + 1);
    crt.product[crt.productn] = limbs_mul_1(crt.product, crt.product, crt.productn, f.p);
    crt.productn = limbs_trim(crt.product, crt.productn + 1);
}

/// *det := x, or x - product where that is nearer to 0.
static void symmetric_value(Crt& crt, imptr det) {
    limb* rest = scratch_array<limb>(crt.productn);
    std::fill(crt.x + crt.xn, crt.x + crt.productn, 0);
    memcpy(rest, crt.product, static_cast<size_t>(crt.productn) * sizeof(limb));
    limbs_sub(rest, rest, crt.productn, crt.x, crt.productn);
    int64_t n = limbs_trim(rest, crt.productn);
    bool negative = limbs_compare(rest, n, crt.x, crt.xn) < 0;
    if (negative)
        chain_from_limbs(det, rest, n, true);
    else
        chain_from_limbs(det, crt.x, crt.xn, false);
}

void integer_from_images(int64_t bits, uint32_t (*image)(const WordField& f, void* context), void* context,
                         imptr det) {
    ScratchMark mark = scratch_mark();
    int64_t room = bits / 64 + 3;
    Crt crt = {scratch_array<limb>(room), scratch_array<limb>(room), 0, 1};
    crt.product[0] = 1;
    uint32_t p = k_first_image_prime;
    for (; entry_bits({crt.product, crt.productn, false}) <= bits; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        take_image(crt, f, image(f, context));
        poll_interrupt();
    }
    symmetric_value(crt, det);
    scratch_release(mark);
}

namespace {
/// A matrix, and room for its image.
struct DenseImages {
    const IntMatrix* m;
    uint32_t* residues;
};
}  // namespace

/// The determinant of at least one row.
static void determinant_of(const IntMatrix& m, imptr det) {
    int64_t bits = determinant_bits(m);
    if (bits < 0) {
        chain_set_int64(det, 0);
        return;
    }
    DenseImages images = {&m, scratch_array<uint32_t>(int64_t{m.n} * m.n)};
    auto image = [](const WordField& f, void* context) {
        auto* x = static_cast<DenseImages*>(context);
        return image_of(f, *x->m, x->residues);
    };
    integer_from_images(bits, image, &images, det);
}

void int_determinant(const number* const* entries, int32_t n, imptr det) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{n} * n;
    IntMatrix m = {scratch_array<IntEntry>(count), n};
    for (int64_t k = 0; k < count; k++) m.entries[k] = int_entry(entries[k]);
    determinant_of(m, det);
    scratch_release(mark);
}

IntEntry entry_determinant(const IntEntry* entries, int32_t n) {
    number value = {};
    ScratchMark mark = scratch_mark();
    IntMatrix m = {scratch_array<IntEntry>(int64_t{n} * n), n};
    std::copy_n(entries, int64_t{n} * n, m.entries);
    determinant_of(m, &value);
    scratch_release(mark);
    IntEntry det = int_entry(&value);
    special_free(&value);
    return det;
}

// ---- rational entries ----------------------------------------------------------------------------------

/// The n entries of a line times the least common multiple of their denominators, which is returned.
static IntEntry clear_line(const quoly* line, int32_t n, IntEntry* out) {
    IntEntry multiple = k_entry_one;
    for (int32_t k = 0; k < n; k++)
        if (line[k] != nullptr && !line[k]->numb)
            multiple = entry_common_multiple(multiple, entry_denominator(line[k]));
    for (int32_t k = 0; k < n; k++) {
        if (line[k] == nullptr) {
            out[k] = {nullptr, 0, false};
            continue;
        }
        out[k] =
            entry_product(entry_numerator(line[k]), entry_quotient(multiple, entry_denominator(line[k])));
    }
    return multiple;
}

void quotient_of_numbers(imptr above, imptr below, quolyptr q) {
    quoly divided_by = nullptr;
    scalar_to_quoly(above, q);
    scalar_to_quoly(below, &divided_by);
    free_num(above);
    free_num(below);
    if (!quoly_equal(divided_by, quol_num_1)) fast_quoly_quot(q, divided_by, false);
    free_quoly(&divided_by);
}

void rational_determinant(const quoly* entries, int32_t n, quolyptr det) {
    ScratchMark mark = scratch_mark();
    IntMatrix m = {scratch_array<IntEntry>(int64_t{n} * n), n};
    IntEntry divisor = k_entry_one;
    for (int64_t line = 0; line < n; line++) {
        divisor = entry_product(divisor, clear_line(entries + line * n, n, m.entries + line * n));
        poll_interrupt();
    }
    number value = {}, below = {};
    determinant_of(m, &value);
    chain_from_limbs(&below, divisor.at, divisor.n, false);
    scratch_release(mark);
    quotient_of_numbers(&value, &below, det);
}
}  // namespace tolvex
