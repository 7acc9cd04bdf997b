#include "gcd/word_brown.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
namespace {
/// A polynomial in the last variable y, index = exponent.
struct Dense {
    uint32_t* c;
    int32_t degree;  // -1: zero
};

/// A polynomial as rows: row i holds the coefficient, a polynomial in y, of the key key[i] of the other
/// variables.
struct Rows {
    int64_t count;
    int64_t* key;
    int64_t* start;  // terms start[i]..start[i+1]-1
    PackTerms terms;
    int32_t degree;  // in y
};

/// The interpolated polynomial so far: row i is c[i * width .. + points - 1].
struct Interpolant {
    int64_t count;
    int64_t* key;
    uint32_t* c;
    int32_t width, points;
    Dense modulus;  // product of (y - point)
};

/// One level of the recursion.
struct Level {
    int64_t radix;  // digits of y
    Rows a, b;
    Dense content, lead;  // gcds of the contents, of the leading coefficients
    int32_t bound;        // degree in y of the polynomial that is interpolated
    uint32_t* power;      // of the point in use
    Interpolant h;
};
}  // namespace

static Dense dense_room(int64_t entries) { return {scratch_array<uint32_t>(entries), -1}; }

static void load_row(const Rows& r, int64_t i, int64_t radix, Dense* d) {
    int64_t base = r.key[i] * radix;
    d->degree = static_cast<int32_t>(r.terms.index[r.start[i]] - base);
    memset(d->c, 0, static_cast<size_t>(d->degree + 1) * sizeof(uint32_t));
    for (int64_t t = r.start[i]; t < r.start[i + 1]; t++) d->c[r.terms.index[t] - base] = r.terms.residue[t];
}

static Rows make_rows(const PackTerms& terms, int64_t radix) {
    Rows r = {};
    r.terms = terms;
    r.key = scratch_array<int64_t>(terms.count);
    r.start = scratch_array<int64_t>(terms.count + 1);
    int64_t last_key = -1;
    for (int64_t t = 0; t < terms.count; t++) {
        int64_t key = terms.index[t] / radix;
        if (key != last_key) {
            r.key[r.count] = last_key = key;
            r.start[r.count++] = t;
            r.degree = maxx(r.degree, static_cast<int32_t>(terms.index[t] - key * radix));
        }
    }
    r.start[r.count] = terms.count;
    return r;
}

// g := gcd(g, x); both are overwritten.
static void fold_gcd(const WordField& f, Dense* g, Dense* x) {
    uint32_t* result;
    int32_t degree = wf_gcd(f, g->c, g->degree, x->c, x->degree, &result);
    if (result != g->c) {  // the two arrays change hands
        uint32_t* t = g->c;
        g->c = result;
        x->c = t;
    }
    g->degree = degree;
}

// The monic content of the rows, a polynomial in y.
static Dense rows_content(const WordField& f, const Rows& r, int64_t radix) {
    Dense g = dense_room(radix), x = dense_room(radix);
    load_row(r, r.count - 1, radix, &g);
    for (int64_t i = 0; i < r.count && g.degree > 0; i++) {
        load_row(r, i, radix, &x);
        fold_gcd(f, &g, &x);
    }
    if (g.degree == 0) g.c[0] = 1;
    return g;
}

// The rows divided by a content of positive degree.
static Rows divide_rows(const WordField& f, const Rows& r, int64_t radix, const Dense& content) {
    PackTerms out;
    out.count = 0;
    out.index = scratch_array<int64_t>(r.count * (r.degree - content.degree + 1));
    out.residue = scratch_array<uint32_t>(r.count * (r.degree - content.degree + 1));
    Dense x = dense_room(radix), q = dense_room(radix);
    for (int64_t i = 0; i < r.count; i++) {
        load_row(r, i, radix, &x);
        wf_divide(f, x.c, x.degree, content.c, content.degree, q.c);
        for (int32_t e = x.degree - content.degree; e >= 0; e--) {
            if (q.c[e] == 0) continue;
            out.index[out.count] = r.key[i] * radix + e;
            out.residue[out.count++] = q.c[e];
        }
    }
    return make_rows(out, radix);
}

// The sum of the terms first..end-1, of exponents e that are counted from `base`, with power[e]. Products are
// below 2^62: two fit on top of a reduced sum.
static uint32_t row_value(const WordField& f, const PackTerms& terms, int64_t first, int64_t end,
                          int64_t base, const uint32_t* power) {
    uint32_t value = 0;
    if (f.table) {
        for (int64_t t = first; t < end; t++)
            value = wf_add(f, value, wf_mul(f, terms.residue[t], power[terms.index[t] - base]));
        return value;
    }
    uint64_t even = 0, odd = 0;
    int64_t t = first;
    for (; t + 1 < end; t += 2) {
        even += static_cast<uint64_t>(terms.residue[t]) * power[terms.index[t] - base];
        odd += static_cast<uint64_t>(terms.residue[t + 1]) * power[terms.index[t + 1] - base];
        even = even >> 63 ? wf_reduce(f, even) : even;
        odd = odd >> 63 ? wf_reduce(f, odd) : odd;
    }
    if (t < end) even += static_cast<uint64_t>(terms.residue[t]) * power[terms.index[t] - base];
    return wf_add(f, wf_reduce(f, even), wf_reduce(f, odd));
}

// The image at the point whose powers are given.
static PackTerms rows_value(const WordField& f, const Rows& r, int64_t radix, const uint32_t* power) {
    PackTerms out;
    out.count = 0;
    out.index = scratch_array<int64_t>(r.count);
    out.residue = scratch_array<uint32_t>(r.count);
    for (int64_t i = 0; i < r.count; i++) {
        int64_t base = r.key[i] * radix;
        uint32_t value = row_value(f, r.terms, r.start[i], r.start[i + 1], base, power);
        if (value == 0) continue;
        out.index[out.count] = r.key[i];
        out.residue[out.count++] = value;
    }
    return out;
}

static void set_powers(const WordField& f, uint32_t* power, int64_t entries, uint32_t point) {
    power[0] = 1;
    for (int64_t i = 1; i < entries; i++) power[i] = wf_mul(f, power[i - 1], point);
}

static PackTerms one_variable(BrownEnv& env, const PackTerms& a, const PackTerms& b) {
    Dense x = dense_room(a.index[0] + 1), y = dense_room(b.index[0] + 1);
    x.degree = static_cast<int32_t>(a.index[0]);
    y.degree = static_cast<int32_t>(b.index[0]);
    memset(x.c, 0, static_cast<size_t>(x.degree + 1) * sizeof(uint32_t));
    memset(y.c, 0, static_cast<size_t>(y.degree + 1) * sizeof(uint32_t));
    for (int64_t i = 0; i < a.count; i++) x.c[a.index[i]] = a.residue[i];
    for (int64_t i = 0; i < b.count; i++) y.c[b.index[i]] = b.residue[i];
    fold_gcd(env.f, &x, &y);
    PackTerms g;
    g.count = 0;
    g.index = scratch_array<int64_t>(x.degree + 1);
    g.residue = scratch_array<uint32_t>(x.degree + 1);
    for (int32_t e = x.degree; e >= 0; e--) {
        if (x.c[e] == 0) continue;
        g.index[g.count] = e;
        g.residue[g.count++] = x.c[e];
    }
    if (x.degree == 0) g.residue[0] = 1;
    return g;
}

// ---- interpolation ----

static void interpolant_restart(Interpolant* h, const PackTerms& image, int32_t width) {
    h->count = image.count;
    h->width = width;
    h->points = 0;
    h->key = scratch_array<int64_t>(image.count);
    h->c = scratch_array<uint32_t>(image.count * width);
    memcpy(h->key, image.index, static_cast<size_t>(image.count) * sizeof(int64_t));
    memset(h->c, 0, static_cast<size_t>(image.count * width) * sizeof(uint32_t));
    h->modulus.degree = 0;
    h->modulus.c[0] = 1;
}

// Rows for terms that have been 0 at all points so far. False: there are none.
static bool interpolant_widen(Interpolant* h, const PackTerms& image) {
    int64_t i = 0, missing = 0;
    for (int64_t j = 0; j < image.count; j++) {
        while (i < h->count && h->key[i] > image.index[j]) i++;
        if (i == h->count || h->key[i] != image.index[j]) missing++;
    }
    if (missing == 0) return false;
    Interpolant old = *h;
    auto row = static_cast<size_t>(h->width);
    h->count += missing;
    h->key = scratch_array<int64_t>(h->count);
    h->c = scratch_array<uint32_t>(h->count * h->width);
    int64_t j = 0;
    i = 0;
    for (int64_t n = 0; n < h->count; n++) {
        bool known = i < old.count && (j >= image.count || old.key[i] >= image.index[j]);
        h->key[n] = known ? old.key[i] : image.index[j];
        uint32_t* to = h->c + n * h->width;
        if (known)
            memcpy(to, old.c + i * old.width, row * sizeof(uint32_t));
        else
            memset(to, 0, row * sizeof(uint32_t));
        if (j < image.count && image.index[j] == h->key[n]) j++;
        if (known) i++;
    }
    return true;
}

// Newton's step at the point: h += (image - h(point)) / modulus(point) * modulus. True if anything changed.
static bool interpolant_add(const WordField& f, Interpolant* h, const PackTerms& image, uint32_t scale,
                            uint32_t point) {
    Dense& m = h->modulus;
    uint32_t inverse = wf_inverse(f, wf_value(f, m.c, m.degree, point));
    bool changed = false;
    int64_t j = 0;
    for (int64_t i = 0; i < h->count; i++) {
        uint32_t* row = h->c + i * h->width;
        uint32_t wanted = 0;
        if (j < image.count && image.index[j] == h->key[i]) wanted = wf_mul(f, image.residue[j++], scale);
        uint32_t gap = wf_sub(f, wanted, wf_value(f, row, h->points - 1, point));
        if (gap == 0) continue;
        changed = true;
        gap = wf_mul(f, gap, inverse);
        for (int32_t e = 0; e <= m.degree; e++) row[e] = wf_add(f, row[e], wf_mul(f, gap, m.c[e]));
    }
    h->points++;
    uint32_t minus = wf_neg(f, point);
    m.c[m.degree + 1] = 0;
    for (int32_t e = m.degree; e >= 0; e--) {
        m.c[e + 1] = wf_add(f, m.c[e + 1], m.c[e]);
        m.c[e] = wf_mul(f, m.c[e], minus);
    }
    m.degree++;
    return changed;
}

// ---- one level ----

static void level_open(BrownEnv& env, Level& l, const PackTerms& a, const PackTerms& b, int64_t radix) {
    const WordField& f = env.f;
    l.radix = radix;
    l.a = make_rows(a, radix);
    l.b = make_rows(b, radix);
    l.content = rows_content(f, l.a, radix);
    Dense other = rows_content(f, l.b, radix);
    if (l.content.degree > 0) l.a = divide_rows(f, l.a, radix, l.content);
    if (other.degree > 0) l.b = divide_rows(f, l.b, radix, other);
    fold_gcd(f, &l.content, &other);
    l.lead = dense_room(radix);
    Dense x = dense_room(radix);
    load_row(l.a, 0, radix, &l.lead);
    load_row(l.b, 0, radix, &x);
    fold_gcd(f, &l.lead, &x);
    l.bound = minn(l.a.degree, l.b.degree) + l.lead.degree;
    l.power = scratch_array<uint32_t>(radix);
    l.h.modulus = dense_room(l.bound + 2);
}

// The terms of one row of the answer: the coefficient times the content, highest power first.
static void put_row(const WordField& f, const Level& l, int64_t key, const Dense& c, uint32_t* product,
                    PackTerms* out) {
    int32_t degree = c.degree + l.content.degree;
    memset(product, 0, static_cast<size_t>(degree + 1) * sizeof(uint32_t));
    for (int32_t i = 0; i <= c.degree; i++)
        for (int32_t j = 0; j <= l.content.degree; j++)
            product[i + j] = wf_add(f, product[i + j], wf_mul(f, c.c[i], l.content.c[j]));
    for (int32_t e = degree; e >= 0; e--) {
        if (product[e] == 0) continue;
        out->index[out->count] = key * l.radix + e;
        out->residue[out->count++] = product[e];
    }
}

static void make_monic(const WordField& f, PackTerms* g) {
    if (g->residue[0] == 1) return;
    uint32_t inverse = wf_inverse(f, g->residue[0]);
    for (int64_t i = 0; i < g->count; i++) g->residue[i] = wf_mul(f, g->residue[i], inverse);
}

// The interpolant without its content in y, times the content of the operands.
static PackTerms level_answer(BrownEnv& env, const Level& l) {
    const WordField& f = env.f;
    const Interpolant& h = l.h;
    Dense g = dense_room(h.width), x = dense_room(h.width), q = dense_room(h.width);
    for (int64_t i = 0; i < h.count && g.degree != 0; i++) {
        const uint32_t* row = h.c + i * h.width;
        x.degree = wf_degree(row, h.points - 1);
        if (x.degree < 0) continue;
        memcpy(x.c, row, static_cast<size_t>(x.degree + 1) * sizeof(uint32_t));
        fold_gcd(f, &g, &x);
    }
    int64_t room = h.points + l.content.degree + 1;
    PackTerms out;
    out.count = 0;
    out.index = scratch_array<int64_t>(h.count * room);
    out.residue = scratch_array<uint32_t>(h.count * room);
    auto* product = scratch_array<uint32_t>(room);
    for (int64_t i = 0; i < h.count; i++) {
        const uint32_t* row = h.c + i * h.width;
        x.degree = wf_degree(row, h.points - 1);
        if (x.degree < 0) continue;
        memcpy(x.c, row, static_cast<size_t>(x.degree + 1) * sizeof(uint32_t));
        if (g.degree > 0) {
            int32_t degree = x.degree - g.degree;
            wf_divide(f, x.c, x.degree, g.c, g.degree, q.c);
            memcpy(x.c, q.c, static_cast<size_t>(degree + 1) * sizeof(uint32_t));
            x.degree = degree;
        }
        if (x.degree + l.content.degree >= l.radix) {  // foreign: no divisor is that high
            env.failed = true;
            return out;
        }
        put_row(f, l, h.key[i], x, product, &out);
    }
    make_monic(f, &out);
    return out;
}

// The gcd is free of the other variables.
static PackTerms content_alone(const Level& l) {
    PackTerms out;
    out.count = 0;
    out.index = scratch_array<int64_t>(l.content.degree + 1);
    out.residue = scratch_array<uint32_t>(l.content.degree + 1);
    for (int32_t e = l.content.degree; e >= 0; e--) {
        if (l.content.c[e] == 0) continue;
        out.index[out.count] = e;
        out.residue[out.count++] = l.content.c[e];
    }
    return out;
}

static inline uint32_t next_point(const WordField& f, uint32_t point) {
    return point + 1 == f.p ? 0 : point + 1;
}

// One image; false: the point is bad. A leading coefficient that vanishes would let the image gcd fall below
// the image of the gcd.
static bool level_image(BrownEnv& env, Level& l, uint32_t point, int32_t places, PackTerms* g) {
    set_powers(env.f, l.power, l.radix, point);
    PackTerms a = rows_value(env.f, l.a, l.radix, l.power);
    if (a.count == 0 || a.index[0] != l.a.key[0]) return false;
    PackTerms b = rows_value(env.f, l.b, l.radix, l.power);
    if (b.count == 0 || b.index[0] != l.b.key[0]) return false;
    *g = brown_gcd(env, a, b, places - 1);
    return true;
}

PackTerms brown_gcd(BrownEnv& env, const PackTerms& a, const PackTerms& b, int32_t places) {
    if (places == 1) return one_variable(env, a, b);
    const WordField& f = env.f;
    Level l = {};
    level_open(env, l, a, b, env.radix[places - 1]);
    uint32_t point = wf_random_unit(f);
    int64_t tries = 4 * (l.bound + l.radix) + 64;
    if (tries > f.p) tries = f.p;
    int32_t settled = env.careful ? INT32_MAX : env.one_quiet ? 1 : 2, quiet = 0;
    for (; tries > 0; tries--, point = next_point(f, point)) {
        poll_interrupt();
        ScratchMark mark = scratch_mark();
        PackTerms g;
        if (!level_image(env, l, point, places, &g)) {
            scratch_release(mark);
            continue;
        }
        if (env.failed) return g;
        if (g.count == 1 && g.index[0] == 0) return content_alone(l);
        bool first = l.h.points == 0 || g.index[0] < l.h.key[0];
        if (!first && g.index[0] > l.h.key[0]) {  // unlucky
            scratch_release(mark);
            continue;
        }
        bool kept = first || interpolant_widen(&l.h, g);  // arrays taken above the mark stay
        if (first) interpolant_restart(&l.h, g, l.bound + 1);
        bool changed = interpolant_add(f, &l.h, g, wf_value(f, l.lead.c, l.lead.degree, point), point);
        if (!kept) scratch_release(mark);
        quiet = changed ? 0 : quiet + 1;
        if (l.h.points > l.bound || quiet >= settled) return level_answer(env, l);
    }
    env.failed = true;
    return {};
}
}  // namespace tolvex
