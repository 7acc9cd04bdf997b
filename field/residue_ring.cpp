#include "field/residue_ring.h"

#include "numbers/residue.h"
#include "poly/dense_combine.h"
#include "poly/dense_divide.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
// ---- the field -------------------------------------------------------------------------------------------

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

// ---- products --------------------------------------------------------------------------------------------

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

void poly_product(const CoefficientField& k, const uint32_t* a, int32_t an, const uint32_t* b, int32_t bn,
                  uint32_t* c) {
    poll_interrupt();
    if (k.h == 0) {
        wf_mult(k.t.f, a, an, b, bn, c);
        return;
    }
    const int64_t slots = k.slots[k.h];
    const int32_t n = an + bn - 1;
    ScratchMark mark = scratch_mark();
    auto *x = spread_poly(k, a, an), *y = a == b && an == bn ? x : spread_poly(k, b, bn);
    auto* product = scratch_array<uint32_t>((n + 1) * slots);
    wf_mult(k.t.f, x, static_cast<int32_t>(an * slots), y, static_cast<int32_t>(bn * slots), product);
    for (int32_t i = 0; i < n; i++) gather_element(k, k.h, product + i * slots, c + i * k.size);
    scratch_release(mark);
}

// ---- division and common divisors ------------------------------------------------------------------------

int32_t poly_divide(const CoefficientField& k, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                    uint32_t* q) {
    if (k.h == 0) return wf_div_mod(k.t.f, a, da, b, db, 1, q);
    if (q != nullptr && da >= db) clear_elements(k, q, da - db + 1);
    for (int32_t e = da; e >= db; e--) {  // one row at a time
        poll_interrupt();
        if (q != nullptr) copy_elements(k, a + e * k.size, 1, q + (e - db) * k.size);
        tw_divide(k.t, k.h, a + (e - db) * k.size, db, b, db, nullptr);
    }
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

// ---- residues --------------------------------------------------------------------------------------------

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
    auto *product = new_elements(k, int64_t{2} * n), *multiple = new_elements(k, int64_t{2} * n);
    poly_product(k, a, n, b, n, product);
    if (n > 1) {  // the quotient from the highest coefficients
        poly_product(k, product + n * k.size, n - 1, r.series, n - 1, multiple);
        auto* q = new_elements(k, n - 1);
        copy_elements(k, multiple + (n - 2) * k.size, n - 1, q);
        poly_product(k, r.f, n, q, n - 1, multiple);
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

void power_of_x(const ResidueRing& r, uint32_t* out) {
    residue_x(r, out);
    for (int bit = 30 - __builtin_clz(r.k->p); bit >= 0; bit--) {
        residue_product(r, out, out, out);
        if (r.k->p >> bit & 1) shift_residue(r, out);
    }
    for (int32_t i = 1; i < r.k->degree; i++) residue_power(r, out, r.k->p, out);
}

void residue_frobenius(const ResidueRing& r, uint32_t* a) {
    for (int32_t i = 0; i < r.k->degree; i++) residue_power(r, a, r.k->p, a);
}

int32_t frobenius_products(const CoefficientField& k) {
    return k.degree * (30 - __builtin_clz(k.p) + __builtin_popcount(k.p));
}

// ---- composition -----------------------------------------------------------------------------------------

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

/// sum := the sum of g[i] row i, i < count.
static void combine_elements(const PowerTable& table, const uint32_t* g, int32_t count, uint32_t* sum) {
    const ResidueRing& r = *table.r;
    const CoefficientField& k = *r.k;
    ScratchMark mark = scratch_mark();
    auto* product = new_elements(k, r.n);
    clear_elements(k, sum, r.n);
    for (int32_t i = 0; i < count; i++) {
        if (tw_iszero(k.t, k.h, g + i * k.size)) continue;
        poly_product(k, table.row + i * r.n * k.size, r.n, g + i * k.size, 1, product);
        add_elements(k, sum, product, r.n, sum);
    }
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
        for (int32_t i = 0; i < blocks; i++)
            combine_elements(table, coef + i * count * k.size, count, part + i * words);
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
