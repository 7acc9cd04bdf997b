#include "field/residue_ring.h"

#include "numbers/residue.h"
#include "poly/dense_combine.h"
#include "poly/dense_divide.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
// ---- the field -----------------------------------------------------------------------------------------

void open_field(CoefficientField* k, const TowerWords& t, int32_t h) {
    k->t.f = t.f;
    k->t.height = h;
    k->t.separable = t.separable;
    k->h = h;
    k->size = t.at[h].size;
    k->p = t.f.table ? 2 : t.f.p;
    const int32_t ground = !t.f.table ? 1 : t.f.p == 256 ? 8 : 16;
    k->degree = static_cast<int32_t>(ground * k->size);
    k->t.at[0] = t.at[0];
    k->slots[0] = 1;
    for (int32_t i = 1; i <= h; i++) {
        auto* p = scratch_array<uint32_t>(t.at[i].size);
        memcpy(p, t.at[i].p, static_cast<size_t>(t.at[i].size) * sizeof(uint32_t));
        k->t.at[i] = t.at[i];
        k->t.at[i].p = p;
        k->slots[i] = (2 * t.at[i].n - 1) * k->slots[i - 1];
    }
}

int32_t poly_degree(const CoefficientField& k, const uint32_t* a, int32_t top) {
    return k.h == 0 ? wf_degree(a, top) : tw_degree(k.t, k.h, a, top);
}

void subtract_elements(const CoefficientField& k, const uint32_t* a, const uint32_t* b, int64_t n,
                       uint32_t* c) {
    row_sub(k.t.f, a, b, c, static_cast<int32_t>(n * k.size));
}

void add_elements(const CoefficientField& k, const uint32_t* a, const uint32_t* b, int64_t n, uint32_t* c) {
    row_add(k.t.f, a, b, c, static_cast<int32_t>(n * k.size));
}

void element_root(const CoefficientField& k, uint32_t* a) {
    for (int32_t i = 1; i < k.degree; i++) {
        poll_interrupt();
        tw_power(k.t, k.h, a, k.p, a);
    }
}

// ---- products ------------------------------------------------------------------------------------------

/// The element a of height h at its places in a product in one variable; the places between are 0.
static void spread_element(const CoefficientField& k, int32_t h, const uint32_t* a, uint32_t* out) {
    if (h == 0) {
        *out = *a;
        return;
    }
    for (int32_t i = 0; i < k.t.at[h].n; i++)
        spread_element(k, h - 1, a + i * k.t.at[h - 1].size, out + i * k.slots[h - 1]);
}

/// out := the element of height h whose unreduced coefficients stand in `in`.
static void gather_element(const CoefficientField& k, int32_t h, const uint32_t* in, uint32_t* out) {
    if (h == 0) {
        *out = *in;
        return;
    }
    const int32_t n = k.t.at[h].n;
    const int64_t below = k.t.at[h - 1].size;
    ScratchMark mark = scratch_mark();
    auto* chain = scratch_array<uint32_t>((2 * n - 1) * below);
    for (int32_t i = 0; i < 2 * n - 1; i++)
        gather_element(k, h - 1, in + i * k.slots[h - 1], chain + i * below);
    tw_reduce(k.t, h, chain, 2 * n - 2);
    memcpy(out, chain, static_cast<size_t>(k.t.at[h].size) * sizeof(uint32_t));
    scratch_release(mark);
}

/// A polynomial over a tower as one over the ground field.
static uint32_t* spread_poly(const CoefficientField& k, const uint32_t* a, int32_t n) {
    const int64_t slots = k.slots[k.h];
    auto* out = scratch_array<uint32_t>(n * slots);
    memset(out, 0, static_cast<size_t>(n * slots) * sizeof(uint32_t));
    for (int32_t i = 0; i < n; i++) spread_element(k, k.h, a + i * k.size, out + i * slots);
    return out;
}

/// c := the elements from..to-1 of a b; an, bn >= 1.
static void product_part(const CoefficientField& k, const uint32_t* a, int32_t an, const uint32_t* b,
                         int32_t bn, int32_t from, int32_t to, uint32_t* c) {
    poll_interrupt();
    const int64_t slots = k.slots[k.h];
    ScratchMark mark = scratch_mark();
    auto *x = spread_poly(k, a, an), *y = a == b && an == bn ? x : spread_poly(k, b, bn);
    auto* product = scratch_array<uint32_t>((an + bn) * slots);
    wf_mult(k.t.f, x, static_cast<int32_t>(an * slots), y, static_cast<int32_t>(bn * slots), product);
    for (int32_t i = from; i < to; i++) gather_element(k, k.h, product + i * slots, c + (i - from) * k.size);
    scratch_release(mark);
}

void poly_product(const CoefficientField& k, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                  uint32_t* c) {
    if (k.h > 0) {
        product_part(k, a, an, b, bn, 0, an + bn - 1, c);
        return;
    }
    poll_interrupt();
    wf_mult(k.t.f, a, an, b, bn, c);
}

// ---- division and common divisors ----------------------------------------------------------------------

int32_t poly_divide(const CoefficientField& k, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                    uint32_t* q) {
    if (k.h == 0) return wf_div_mod(k.t.f, a, da, b, db, 1, q);
    if (q != nullptr && da >= db) clear_elements(k, q, da - db + 1);
    ScratchMark mark = scratch_mark();
    auto* multiple = new_elements(k, std::max(db, 1));
    for (int32_t e = da; e >= db; e--) {
        uint32_t* top = a + e * k.size;
        if (tw_iszero(k.t, k.h, top)) continue;
        if (q != nullptr) copy_elements(k, top, 1, q + (e - db) * k.size);
        if (db > 0) {
            uint32_t* low = a + (e - db) * k.size;
            poly_product(k, b, db, top, 1, multiple);
            subtract_elements(k, low, multiple, db, low);
        }
        clear_elements(k, top, 1);
    }
    scratch_release(mark);
    return poly_degree(k, a, std::min(da, db - 1));
}

int32_t poly_gcd(const CoefficientField& k, uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g) {
    if (k.h == 0) return wf_gcd(k.t.f, a, da, b, db, g);
    da = poly_degree(k, a, da);
    db = poly_degree(k, b, db);
    while (db > 0) {
        if (!tw_make_monic(k.t, k.h, b, db)) return -2;
        int32_t rest = poly_divide(k, a, da, b, db, nullptr);
        std::swap(a, b);
        da = db;
        db = rest;
    }
    *g = db == 0 ? b : a;
    const int32_t degree = db == 0 ? 0 : da;
    return degree < 0 || tw_make_monic(k.t, k.h, *g, degree) ? degree : -2;
}

// ---- residues ------------------------------------------------------------------------------------------

/// The inverse power series of the reversed f by Newton's iteration, highest coefficient first.
static void open_series(ResidueRing* r) {
    const CoefficientField& k = *r->k;
    const int32_t n = r->n - 1;
    r->series = new_elements(k, n);
    if (n == 0) return;
    ScratchMark mark = scratch_mark();
    auto *h = new_elements(k, n), *g = new_elements(k, n), *product = new_elements(k, int64_t{2} * n),
         *correction = new_elements(k, int64_t{2} * n);
    for (int32_t i = 0; i < n; i++) copy_elements(k, r->f + (r->n - i) * k.size, 1, h + i * k.size);
    tw_set(k.t, k.h, 1, g);
    for (int32_t have = 1; have < n;) {
        const int32_t next = std::min(2 * have, n), fresh = next - have;
        poly_product(k, h, next, g, have, product);  // 1 + x^have (...)
        poly_product(k, product + have * k.size, fresh, g, fresh, correction);
        clear_elements(k, g + have * k.size, fresh);
        subtract_elements(k, g + have * k.size, correction, fresh, g + have * k.size);
        have = next;
    }
    for (int32_t i = 0; i < n; i++) copy_elements(k, g + i * k.size, 1, r->series + (n - 1 - i) * k.size);
    scratch_release(mark);
}

void open_ring(ResidueRing* r, const CoefficientField* k, const uint32_t* f, int32_t n) {
    r->k = k;
    r->n = n;
    r->f = f;
    r->series = nullptr;
    if (k->h == 0)
        open_modulus(&r->words, k->t.f, f, n);
    else
        open_series(r);
}

void residue_product(const ResidueRing& r, const uint32_t* a, const uint32_t* b, uint32_t* out) {
    const CoefficientField& k = *r.k;
    if (k.h == 0) {
        poll_interrupt();
        mult_modulo(r.words, a, b, out);
        return;
    }
    const int32_t n = r.n;
    ScratchMark mark = scratch_mark();
    auto *product = new_elements(k, int64_t{2} * n), *multiple = new_elements(k, n);
    poly_product(k, a, n, b, n, product);
    if (n > 1) {  // the quotient from the highest coefficients
        auto* q = new_elements(k, n - 1);
        product_part(k, product + n * k.size, n - 1, r.series, n - 1, n - 2, 2 * n - 3, q);
        product_part(k, r.f, n, q, n - 1, 0, n, multiple);
        subtract_elements(k, product, multiple, n, out);
    } else {
        tw_mul(k.t, k.h, a, b, out);
    }
    scratch_release(mark);
}

void residue_power(const ResidueRing& r, const uint32_t* a, uint64_t e, uint32_t* out) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto *base = new_elements(k, r.n), *power = new_elements(k, r.n);
    copy_elements(k, a, r.n, base);
    copy_elements(k, a, r.n, power);
    for (int bit = 62 - __builtin_clzll(e); bit >= 0; bit--) {
        residue_product(r, power, power, power);
        if (e >> bit & 1) residue_product(r, power, base, power);
    }
    copy_elements(k, power, r.n, out);
    scratch_release(mark);
}

void residue_x(const ResidueRing& r, uint32_t* out) {
    const CoefficientField& k = *r.k;
    clear_elements(k, out, r.n);
    if (r.n > 1)
        tw_set(k.t, k.h, 1, out + k.size);
    else
        subtract_elements(k, out, r.f, 1, out);
}

/// a := a x.
static void shift_residue(const ResidueRing& r, uint32_t* a) {
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto* top = new_elements(k, 1);
    copy_elements(k, a + (r.n - 1) * k.size, 1, top);
    copy_elements(k, a, r.n - 1, a + k.size);
    clear_elements(k, a, 1);
    if (k.h == 0)
        row_submul(k.t.f, a, r.f, r.n, *top);
    else
        for (int32_t i = 0; i < r.n; i++) tw_submul(k.t, k.h, top, r.f + i * k.size, a + i * k.size);
    scratch_release(mark);
}

void linear_power(const ResidueRing& r, const uint32_t* c, uint64_t e, uint32_t* out) {
    const CoefficientField& k = *r.k;
    const bool monomial = tw_iszero(k.t, k.h, c);
    ScratchMark mark = scratch_mark();
    auto* multiple = new_elements(k, r.n);
    residue_x(r, out);
    add_elements(k, out, c, 1, out);
    for (int bit = 62 - __builtin_clzll(e); bit >= 0; bit--) {
        residue_product(r, out, out, out);
        if (!(e >> bit & 1)) continue;
        if (!monomial) poly_product(k, out, r.n, c, 1, multiple);
        shift_residue(r, out);
        if (!monomial) add_elements(k, out, multiple, r.n, out);
    }
    scratch_release(mark);
}

void power_of_x(const ResidueRing& r, uint32_t* out) {
    ScratchMark mark = scratch_mark();
    auto* zero = new_elements(*r.k, 1);
    clear_elements(*r.k, zero, 1);
    linear_power(r, zero, r.k->p, out);
    scratch_release(mark);
    for (int32_t i = 1; i < r.k->degree; i++) residue_power(r, out, r.k->p, out);
}

void residue_frobenius(const ResidueRing& r, uint32_t* a) {
    for (int32_t i = 0; i < r.k->degree; i++) residue_power(r, a, r.k->p, a);
}

int32_t frobenius_products(const CoefficientField& k) {
    return k.degree * (30 - __builtin_clz(k.p) + __builtin_popcount(k.p));
}

// ---- composition ---------------------------------------------------------------------------------------

void open_powers(PowerTable* table, const ResidueRing* r, const uint32_t* h, int32_t count) {
    const CoefficientField& k = *r->k;
    const int64_t words = r->n * k.size;
    *table = {r, count, scratch_array<uint32_t>((count + 1) * words)};
    clear_elements(k, table->row, r->n);
    tw_set(k.t, k.h, 1, table->row);
    copy_elements(k, h, r->n, table->row + words);
    for (int32_t i = 2; i <= count; i++) {
        uint32_t* row = table->row + i * words;
        if (i % 2 == 0)  // a square takes less
            residue_product(*r, table->row + i / 2 * words, table->row + i / 2 * words, row);
        else
            residue_product(*r, row - words, h, row);
    }
}

/// sum[j] := the sum of coef[j][i] row i, i < table.count, for 0 <= j < blocks. Sums are taken before
/// products are reduced.
static void combine_elements(const PowerTable& table, const uint32_t* coef, int32_t blocks, uint32_t* sum) {
    const ResidueRing& r = *table.r;
    const CoefficientField& k = *r.k;
    const int64_t slots = k.slots[k.h], words = (r.n + 1) * slots;
    ScratchMark mark = scratch_mark();
    auto *product = scratch_array<uint32_t>(words), *sums = scratch_array<uint32_t>(blocks * words);
    memset(sums, 0, static_cast<size_t>(blocks * words) * sizeof(uint32_t));
    product[words - 1] = 0;
    for (int32_t i = 0; i < table.count; i++) {
        poll_interrupt();
        ScratchMark round = scratch_mark();
        const uint32_t* row = spread_poly(k, table.row + i * r.n * k.size, r.n);
        for (int32_t j = 0; j < blocks; j++) {
            const uint32_t* c = coef + (int64_t{j} * table.count + i) * k.size;
            if (tw_iszero(k.t, k.h, c)) continue;
            ScratchMark term = scratch_mark();
            wf_mult(k.t.f, row, static_cast<int32_t>(r.n * slots), spread_poly(k, c, 1),
                    static_cast<int32_t>(slots), product);
            row_add(k.t.f, sums + j * words, product, sums + j * words, static_cast<int32_t>(words));
            scratch_release(term);
        }
        scratch_release(round);
    }
    for (int32_t j = 0; j < blocks; j++)
        for (int32_t i = 0; i < r.n; i++)
            gather_element(k, k.h, sums + j * words + i * slots, sum + (int64_t{j} * r.n + i) * k.size);
    scratch_release(mark);
}

void compose(const PowerTable& table, const uint32_t* g, uint32_t* out) {
    const ResidueRing& r = *table.r;
    const CoefficientField& k = *r.k;
    const int32_t count = table.count, blocks = (r.n + count - 1) / count;
    const int64_t words = r.n * k.size;
    ScratchMark mark = scratch_mark();
    auto *coef = new_elements(k, int64_t{blocks} * count), *part = scratch_array<uint32_t>(blocks * words);
    copy_elements(k, g, r.n, coef);
    clear_elements(k, coef + words, int64_t{blocks} * count - r.n);
    if (k.h == 0)
        combine_rows(k.t.f, coef, blocks, count, table.row, r.n, part);
    else
        combine_elements(table, coef, blocks, part);
    uint32_t* sum = part + (blocks - 1) * words;
    for (int32_t i = blocks - 2; i >= 0; i--) {
        residue_product(r, sum, table.row + count * words, sum);
        add_elements(k, sum, part + i * words, r.n, sum);
    }
    copy_elements(k, sum, r.n, out);
    scratch_release(mark);
}

int32_t good_power_count(const ResidueRing& r, int32_t compositions) {
    constexpr int64_t k_most_words = int64_t{1} << 25;
    int64_t count = 1;
    while (count * count < int64_t{r.n} * compositions && count < r.n) count++;
    count = std::min(count, std::max<int64_t>(1, k_most_words / (r.n * r.k->size)));
    return static_cast<int32_t>(count);
}
}  // namespace tolvex
