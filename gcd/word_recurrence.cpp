#include "gcd/word_recurrence.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
static void copy_words(uint32_t* to, const uint32_t* from, int64_t n) {
    memcpy(to, from, static_cast<size_t>(n) * sizeof(uint32_t));
}

// ---- the recurrence ----

void recurrence_open(Recurrence* r, int32_t most) {
    r->c = scratch_array<uint32_t>(most + 2);
    r->b = scratch_array<uint32_t>(most + 2);
    r->t = scratch_array<uint32_t>(most + 2);
    r->c[0] = r->b[0] = 1;
    r->length = r->b_length = 0;
    r->gap = 1;
    r->b_inverse = 1;
}

static uint32_t discrepancy(const WordField& f, const Recurrence& r, const uint32_t* a, int32_t n) {
    uint64_t sum = a[n];
    if (f.table) {
        for (int32_t i = 1; i <= r.length; i++)
            sum = wf_add(f, static_cast<uint32_t>(sum), wf_mul(f, r.c[i], a[n - i]));
        return static_cast<uint32_t>(sum);
    }
    for (int32_t i = 1; i <= r.length; i++) {
        sum += static_cast<uint64_t>(r.c[i]) * a[n - i];
        if (sum >> 63) sum = wf_reduce(f, sum);
    }
    return wf_reduce(f, sum);
}

bool recurrence_add(const WordField& f, Recurrence* r, const uint32_t* a, int32_t n, int32_t most) {
    uint32_t d = discrepancy(f, *r, a, n);
    if (d == 0) {
        r->gap++;
        return true;
    }
    // c - d / d_b z^gap b
    uint32_t factor = wf_neg(f, wf_mul(f, d, r->b_inverse));
    int32_t length = r->length, top = maxx(length, r->b_length + r->gap);
    bool longer = 2 * length <= n;
    if (longer) {
        if (n + 1 - length > most) return false;
        copy_words(r->t, r->c, length + 1);
    }
    for (int32_t i = length + 1; i <= top; i++) r->c[i] = 0;
    for (int32_t i = 0; i <= r->b_length; i++)
        r->c[i + r->gap] = wf_add(f, r->c[i + r->gap], wf_mul(f, factor, r->b[i]));
    if (!longer) {
        r->gap++;
        return true;
    }
    uint32_t* spare = r->b;
    r->b = r->t;
    r->t = spare;
    r->b_length = length;
    r->b_inverse = wf_inverse(f, d);
    r->gap = 1;
    for (int32_t i = top + 1; i <= n + 1 - length; i++) r->c[i] = 0;
    r->length = n + 1 - length;
    return true;
}

// ---- powers and logarithms ----

static constexpr int32_t k_order_tries = 64;

// A generator of the multiplicative group of the prime field, kept for the last prime asked for.
static uint32_t generator(const WordField& f) {
    static uint32_t last_prime = 0, last_generator = 0;
    if (f.p == last_prime) return last_generator;
    uint32_t factor[16], rest = f.p - 1;
    int32_t factors = 0;
    for (uint32_t q = 2; q * q <= rest && q < 65536; q++) {
        if (rest % q != 0) continue;
        factor[factors++] = q;
        while (rest % q == 0) rest /= q;
    }
    if (rest > 1) factor[factors++] = rest;
    for (uint32_t x = 2; x < f.p; x++) {
        bool whole = true;
        for (int32_t i = 0; i < factors && whole; i++) whole = wf_power(f, x, (f.p - 1) / factor[i]) != 1;
        if (!whole) continue;
        last_prime = f.p;
        last_generator = x;
        return x;
    }
    return 0;
}

// In a table field: an element whose first `limit` powers differ from 1.
static uint32_t table_base(const WordField& f, int64_t limit) {
    for (int32_t tries = 0; tries < k_order_tries; tries++) {
        uint32_t base = wf_random_unit(f), x = base;
        int64_t order = 1;
        for (; order < limit && x != 1; order++) x = wf_mul(f, x, base);
        if (order >= limit) return base;
    }
    return 0;
}

bool power_base_open(const WordField& f, int64_t limit, bool halving, PowerBase* base) {
    *base = {};
    base->limit = limit;
    if (limit > f.p - 1) return false;
    if (f.table) {
        base->base = table_base(f, limit);
        return base->base != 0;
    }
    int32_t bits = 1;
    while ((int64_t{1} << bits) < limit) bits++;
    if (!halving || bits > __builtin_ctz(f.p - 1)) {
        base->base = generator(f);
        return base->base != 0;
    }
    base->bits = bits;
    base->base = wf_power(f, generator(f), (f.p - 1) >> bits);
    return true;
}

static inline int64_t slot_of(const PowerBase& base, uint32_t value) {
    return static_cast<int64_t>((value * 0x9E3779B97F4A7C15u) >> 40) & base.mask;
}

// Small powers in a table with open addressing. (Shanks: baby steps, giant steps.)
static void make_table(const WordField& f, PowerBase* base) {
    int64_t steps = 16;
    while (steps * steps < 4 * base->limit) steps *= 2;
    base->steps = steps;
    base->mask = 4 * steps - 1;
    base->slot_value = scratch_array<uint32_t>(4 * steps);
    base->slot_log = scratch_array<int32_t>(4 * steps);
    memset(base->slot_value, 0, static_cast<size_t>(4 * steps) * sizeof(uint32_t));
    uint32_t x = 1;
    for (int32_t e = 0; e < steps; e++) {
        int64_t slot = slot_of(*base, x);
        while (base->slot_value[slot] != 0 && base->slot_value[slot] != x) slot = (slot + 1) & base->mask;
        if (base->slot_value[slot] == 0) {
            base->slot_value[slot] = x;
            base->slot_log[slot] = e;
        }
        x = wf_mul(f, x, base->base);
    }
    base->giant = wf_inverse(f, x);
}

int64_t power_log(const WordField& f, PowerBase* base, uint32_t x) {
    if (base->slot_value == nullptr) make_table(f, base);
    for (int64_t start = 0; start < base->limit; start += base->steps) {
        int64_t slot = slot_of(*base, x);
        while (base->slot_value[slot] != 0 && base->slot_value[slot] != x) slot = (slot + 1) & base->mask;
        if (base->slot_value[slot] == x) {
            int64_t e = start + base->slot_log[slot];
            return e < base->limit ? e : -1;
        }
        x = wf_mul(f, x, base->giant);
    }
    return -1;
}

// ---- roots ----

// q(z^2) = +- p(z) p(-z), monic.
static void graeffe(const WordField& f, const uint32_t* p, int32_t t, uint32_t* q) {
    for (int32_t k = 0; k <= t; k++) {
        uint32_t sum = 0;
        for (int32_t i = maxx(0, 2 * k - t); i <= k; i++) {
            uint32_t product = wf_mul(f, p[i], p[2 * k - i]);
            if (i != k) product = wf_add(f, product, product);
            sum = i % 2 == 0 ? wf_add(f, sum, product) : wf_sub(f, sum, product);
        }
        q[k] = t % 2 == 0 ? sum : wf_neg(f, sum);
    }
}

// Level i holds the polynomial of the 2^i-th powers of the roots. At the last level all are 1; an exponent
// known modulo 2^j has two extensions modulo 2^(j+1), and evaluation one level up tells which are roots.
static bool roots_by_halves(const WordField& f, const PowerBase& base, const uint32_t* p, int32_t t,
                            int64_t* e) {
    auto* level = scratch_array<uint32_t>(int64_t{base.bits} * (t + 1));
    auto* power = scratch_array<uint32_t>(base.bits);  // base^(2^i)
    auto* next = scratch_array<int64_t>(2 * t);
    copy_words(level, p, t + 1);
    power[0] = base.base;
    for (int32_t i = 1; i < base.bits; i++) {
        graeffe(f, level + int64_t{i - 1} * (t + 1), t, level + int64_t{i} * (t + 1));
        power[i] = wf_mul(f, power[i - 1], power[i - 1]);
    }
    int32_t count = 1;
    e[0] = 0;
    for (int32_t i = base.bits - 1; i >= 0; i--) {
        poll_interrupt();
        const uint32_t* q = level + int64_t{i} * (t + 1);
        int64_t half = int64_t{1} << (base.bits - 1 - i);
        int32_t found = 0;
        for (int32_t j = 0; j < count && found <= t; j++) {
            uint32_t x = wf_power(f, power[i], static_cast<uint64_t>(e[j]));
            if (wf_value(f, q, t, x) == 0) next[found++] = e[j];
            if (wf_value(f, q, t, wf_neg(f, x)) == 0) next[found++] = e[j] + half;
        }
        if (found > t) return false;
        memcpy(e, next, static_cast<size_t>(found) * sizeof(int64_t));
        count = found;
    }
    return count == t;
}

// x := x y mod p, degrees below t.
static void mulmod(const WordField& f, uint32_t* x, const uint32_t* y, const uint32_t* p, int32_t t,
                   uint32_t* room) {
    memset(room, 0, static_cast<size_t>(2 * t) * sizeof(uint32_t));
    for (int32_t k = 0; k <= 2 * t - 2; k++) {
        uint64_t sum = 0;
        int32_t first = maxx(0, k - t + 1), last = minn(k, t - 1);
        if (f.table) {
            for (int32_t i = first; i <= last; i++) room[k] = wf_add(f, room[k], wf_mul(f, x[i], y[k - i]));
            continue;
        }
        for (int32_t i = first; i <= last; i++) {
            sum += static_cast<uint64_t>(x[i]) * y[k - i];
            if (sum >> 63) sum = wf_reduce(f, sum);
        }
        room[k] = wf_reduce(f, sum);
    }
    wf_mod(f, room, 2 * t - 2, p, t, 1);
    copy_words(x, room, t);
}

// x := a polynomial below the degree t that takes two values on the field, each on about half of it, less one
// of them; t >= 2, z and room are scratch. Odd order: (z + random)^((order - 1) / 2) - 1. Even order: the
// trace of random z, the sum of its squares, fourth powers, ...
static void halve_field(const WordField& f, const uint32_t* p, int32_t t, uint32_t* x, uint32_t* z,
                        uint32_t* room) {
    memset(z, 0, static_cast<size_t>(t) * sizeof(uint32_t));
    memset(x, 0, static_cast<size_t>(t) * sizeof(uint32_t));
    if (f.p % 2 == 0) {
        x[1] = z[1] = wf_random_unit(f);
        for (uint32_t order = f.p / 2; order > 1; order /= 2) {
            mulmod(f, z, z, p, t, room);
            for (int32_t i = 0; i < t; i++) x[i] = wf_add(f, x[i], z[i]);
        }
        return;
    }
    uint32_t exponent = (f.p - 1) / 2;
    z[0] = wf_random_unit(f);
    z[1] = x[0] = 1;
    for (int32_t bit = 31 - __builtin_clz(exponent); bit >= 0; bit--) {
        mulmod(f, x, x, p, t, room);
        if (exponent >> bit & 1) mulmod(f, x, z, p, t, room);
    }
    x[0] = wf_sub(f, x[0], 1);
}

// Divides p, monic with t different roots in the field, by its gcd with such a polynomial, and both parts
// again. (Cantor and Zassenhaus, 1981; Berlekamp, 1970, for the trace.) The roots are written to *root.
static bool split_roots(const WordField& f, const uint32_t* p, int32_t t, uint32_t** root) {
    if (t == 0) return true;
    if (t == 1) {
        *(*root)++ = wf_neg(f, p[0]);
        return true;
    }
    poll_interrupt();
    ScratchMark mark = scratch_mark();
    auto *x = scratch_array<uint32_t>(t + 1), *z = scratch_array<uint32_t>(t + 1),
         *copy = scratch_array<uint32_t>(t + 1), *room = scratch_array<uint32_t>(2 * t + 2),
         *quotient = scratch_array<uint32_t>(t + 1);
    bool done = false;
    for (int32_t tries = 0; tries < k_order_tries && !done; tries++) {
        halve_field(f, p, t, x, z, room);
        copy_words(copy, p, t + 1);
        uint32_t* g;
        int32_t d = wf_gcd(f, copy, t, x, wf_degree(x, t - 1), &g);
        if (d <= 0 || d == t) continue;
        copy_words(z, g, d + 1);
        copy_words(copy, p, t + 1);
        if (wf_divide(f, copy, t, z, d, quotient) >= 0) break;
        done = split_roots(f, z, d, root) && split_roots(f, quotient, t - d, root);
        break;
    }
    scratch_release(mark);
    return done;
}

bool power_roots(const WordField& f, const PowerBase& base, const uint32_t* p, int32_t t, int64_t* e) {
    ScratchMark mark = scratch_mark();
    bool found = roots_by_halves(f, base, p, t, e);
    scratch_release(mark);
    return found;
}

bool field_roots(const WordField& f, const PowerBase& base, const uint32_t* p, int32_t t, uint32_t* root) {
    if (t == 1) {
        root[0] = wf_neg(f, p[0]);
        return true;
    }
    ScratchMark mark = scratch_mark();
    bool found;
    if (base.bits != 0) {
        auto* e = scratch_array<int64_t>(t);
        found = power_roots(f, base, p, t, e);
        for (int32_t i = 0; i < t && found; i++)
            root[i] = wf_power(f, base.base, static_cast<uint64_t>(e[i]));
    } else {
        uint32_t* end = root;
        found = split_roots(f, p, t, &end) && end - root == t;
        for (int32_t i = 1; i < t && found; i++)  // a multiple root comes out as often as it occurs
            for (int32_t j = 0; j < i && found; j++) found = root[i] != root[j];
    }
    scratch_release(mark);
    return found;
}

// ---- coefficients ----

// The transposed system of Vandermonde: with P = product of (z - r_i) and Q_i = P / (z - r_i), the
// coefficients q of Q_i give sum of q_j a_j = c_i Q_i(r_i).
bool exponential_sum(const WordField& f, const uint32_t* r, const uint32_t* a, int32_t t, uint32_t* c) {
    ScratchMark mark = scratch_mark();
    auto* p = scratch_array<uint32_t>(t + 1);
    p[0] = 1;
    for (int32_t n = 0; n < t; n++) {
        p[n + 1] = p[n];
        for (int32_t k = n; k > 0; k--) p[k] = wf_sub(f, p[k - 1], wf_mul(f, r[n], p[k]));
        p[0] = wf_neg(f, wf_mul(f, r[n], p[0]));
    }
    bool distinct = true;
    for (int32_t i = 0; i < t && distinct; i++) {
        // Horner's scheme gives the coefficients of Q_i from the top, its value at r_i on the way.
        uint32_t q = 1, value = 0, sum = 0;
        for (int32_t k = t - 1; k >= 0; k--) {
            value = wf_add(f, wf_mul(f, value, r[i]), q);
            sum = wf_add(f, sum, wf_mul(f, q, a[k]));
            q = wf_add(f, wf_mul(f, q, r[i]), p[k]);
        }
        distinct = value != 0;
        if (distinct) c[i] = wf_mul(f, sum, wf_inverse(f, value));
    }
    scratch_release(mark);
    return distinct;
}
}  // namespace tolvex
