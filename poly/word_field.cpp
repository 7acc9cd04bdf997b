#include "poly/word_field.h"

#include "poly/dense_gcd.h"
#include "poly/dense_internal.h"
#include "storage/interrupt.h"
namespace tolvex {
static constexpr int32_t k_vector_degree = 60;  // from here the vectorised loops and the half-gcd pay

// Logarithms in table fields, else extended Euclid.
uint32_t unit_inverse(const WordField& f, uint32_t a) {
    if (f.ext != nullptr) return a == 1 ? 1 : f.ext->order - (a - 1) + 1;
    if (f.table) return f2t16inv[a];
    int64_t r0 = f.p, r1 = a, s0 = 0, s1 = 1;
    while (r1 != 0) {
        int64_t q = r0 / r1, r = r0 - q * r1, s = s0 - q * s1;
        r0 = r1, r1 = r;
        s0 = s1, s1 = s;
    }
    if (r0 != 1) return 0;
    return static_cast<uint32_t>(s0 < 0 ? s0 + f.p : s0);
}

uint32_t wf_inverse(const WordField& f, uint32_t a) { return unit_inverse(f, a); }

// xorshift64* (Vigna, "An experimental exploration of Marsaglia's xorshift generators", 2016).
uint32_t wf_random_below(uint32_t n) {
    static uint64_t state = 0x9E3779B97F4A7C15u;
    state ^= state >> 12;
    state ^= state << 25;
    state ^= state >> 27;
    uint64_t word = (state * 0x2545F4914F6CDD1Du) >> 33;
    return static_cast<uint32_t>(word % n);
}

uint32_t wf_random_unit(const WordField& f) { return 1 + wf_random_below(f.p - 1); }

int32_t wf_degree(const uint32_t* a, int32_t top) {
    while (top >= 0 && a[top] == 0) top--;
    return top;
}

// Takes two quotient terms at once: the common case of Euclid, degrees one apart, then costs one reduction an
// entry, for the two products are summed unreduced (each below 2^62).
static void two_steps(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                      uint32_t lead_inverse) {
    uint32_t q1 = wf_mul(f, a[da], lead_inverse);
    uint32_t next = da >= 1 ? a[da - 1] : 0;
    if (db >= 1) next = wf_sub(f, next, wf_mul(f, q1, b[db - 1]));
    uint32_t q0 = wf_mul(f, next, lead_inverse);
    uint64_t n1 = wf_neg(f, q1), n0 = wf_neg(f, q0);
    uint32_t* low = a + (da - db - 1);
    a[da] = 0;
    for (int32_t i = db; i >= 1; i--) low[i] = wf_reduce(f, low[i] + n0 * b[i] + n1 * b[i - 1]);
    low[0] = wf_reduce(f, low[0] + n0 * b[0]);
}

static void one_step(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                     uint32_t lead_inverse) {
    uint32_t q = wf_mul(f, a[da], lead_inverse);
    uint32_t* low = a + (da - db);
    if (f.table) {
        for (int32_t i = 0; i <= db; i++) low[i] = wf_sub(f, low[i], wf_mul(f, q, b[i]));
        return;
    }
    uint64_t n = wf_neg(f, q);
    for (int32_t i = 0; i <= db; i++) low[i] = wf_reduce(f, low[i] + n * b[i]);
}

int32_t wf_mod(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
               uint32_t lead_inverse) {
    while (da >= db) {
        if (da > db && !f.table)
            two_steps(f, a, da, b, db, lead_inverse);
        else
            one_step(f, a, da, b, db, lead_inverse);
        da = wf_degree(a, da);
    }
    return da;
}

int32_t wf_gcd(const WordField& f, uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g) {
    da = wf_degree(a, da);
    db = wf_degree(b, db);
    if (da >= 0 && db > k_vector_degree && f.ext == nullptr) {
        int32_t degree;
        wf_dense_gcd(f, a, da, b, db, g, &degree);
        return degree;
    }
    if (da < db) {
        uint32_t* t = a;
        a = b;
        b = t;
        int32_t d = da;
        da = db;
        db = d;
    }
    while (db > 0) {
        poll_interrupt();
        int32_t r = wf_mod(f, a, da, b, db, wf_inverse(f, b[db]));
        uint32_t* t = a;
        a = b;
        b = t;
        da = db;
        db = r;
    }
    if (db == 0) {  // a remainder that is not 0: coprime
        b[0] = 1;
        *g = b;
        return 0;
    }
    *g = a;
    if (da < 0 || a[da] == 1) return da;
    uint32_t inverse = wf_inverse(f, a[da]);
    for (int32_t i = 0; i <= da; i++) a[i] = wf_mul(f, a[i], inverse);
    return da;
}

int32_t wf_divide(const WordField& f, uint32_t* a, int32_t da, const uint32_t* b, int32_t db, uint32_t* q) {
    uint32_t lead_inverse = wf_inverse(f, b[db]);
    for (int32_t i = 0; i <= da - db; i++) q[i] = 0;
    for (int32_t e = da; e >= db; e--) {
        if (a[e] == 0) continue;
        q[e - db] = wf_mul(f, a[e], lead_inverse);
        one_step(f, a, e, b, db, lead_inverse);
    }
    return wf_degree(a, minn(da, db - 1));
}

uint32_t wf_value(const WordField& f, const uint32_t* a, int32_t da, uint32_t x) {
    uint32_t v = 0;
    for (int32_t i = da; i >= 0; i--) v = wf_add(f, wf_mul(f, v, x), a[i]);
    return v;
}
}  // namespace tolvex
