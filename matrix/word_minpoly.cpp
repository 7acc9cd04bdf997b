#include "matrix/word_minpoly.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr int32_t k_lanes = 4;  // vectors that are checked together, element by element side by side
constexpr uint32_t k_small_field = 100;
constexpr int32_t k_checks = 3,
                  k_small_field_checks = 20;  // vectors to be annihilated before an answer is believed

struct Minpoly {
    const WordField& f;
    const WordMatrix& m;
    int32_t n;
    int32_t exact;  // products that a word of 64 bits can add to a residue
};
}  // namespace

// ---- products ------------------------------------------------------------------------------------------

// One row times `lanes` vectors that stand side by side.
template <int32_t lanes>
static inline void row_products(const int32_t* column, const uint32_t* value, int64_t count,
                                const uint32_t* x, uint64_t* sum) {
    for (int64_t k = 0; k < count; k++) {
        uint64_t v = value[k];
        const uint32_t* at = x + int64_t{column[k]} * lanes;
        for (int32_t i = 0; i < lanes; i++) sum[i] += v * at[i];
    }
}

template <int32_t lanes>
static inline void prime_rows(const Minpoly& e, const uint32_t* x, uint32_t* y, int32_t from, int32_t to) {
    const MatrixPattern& p = e.m.places;
    for (int32_t r = from; r < to; r++) {
        uint64_t sum[lanes] = {};
        for (int64_t k = p.start[r]; k < p.start[r + 1]; k += e.exact) {
            int64_t count = std::min<int64_t>(e.exact, p.start[r + 1] - k);
            for (uint64_t& s : sum) s = k == p.start[r] ? 0 : wf_reduce(e.f, s);
            row_products<lanes>(p.column + k, e.m.value + k, count, x, sum);
        }
        for (int32_t i = 0; i < lanes; i++) y[int64_t{r} * lanes + i] = wf_reduce(e.f, sum[i]);
    }
}
WIDE_VECTORS static void prime_rows_1(const Minpoly& e, const uint32_t* x, uint32_t* y, int32_t from,
                                      int32_t to) {
    prime_rows<1>(e, x, y, from, to);
}
WIDE_VECTORS static void prime_rows_4(const Minpoly& e, const uint32_t* x, uint32_t* y, int32_t from,
                                      int32_t to) {
    prime_rows<k_lanes>(e, x, y, from, to);
}

static void table_rows(const Minpoly& e, int32_t lanes, const uint32_t* x, uint32_t* y, int32_t from,
                       int32_t to) {
    const MatrixPattern& p = e.m.places;
    for (int32_t r = from; r < to; r++)
        for (int32_t i = 0; i < lanes; i++) {
            uint32_t sum = 0;
            for (int64_t k = p.start[r]; k < p.start[r + 1]; k++)
                sum ^= static_cast<uint32_t>(table_mult(e.m.value[k], x[int64_t{p.column[k]} * lanes + i]));
            y[int64_t{r} * lanes + i] = sum;
        }
}

/// y := A x for one vector or k_lanes of them.
static void apply(const Minpoly& e, int32_t lanes, const uint32_t* x, uint32_t* y) {
    constexpr int64_t k_places = 1 << 18;  // between safe points
    int32_t from = 0;
    while (from < e.n) {
        int32_t to = from + 1;
        while (to < e.n && e.m.places.start[to] - e.m.places.start[from] < k_places) to++;
        if (e.f.table)
            table_rows(e, lanes, x, y, from, to);
        else
            (lanes == 1 ? prime_rows_1 : prime_rows_4)(e, x, y, from, to);
        from = to;
        poll_interrupt();
    }
}

// ---- recurrences ---------------------------------------------------------------------------------------

/// The sum of a[k] b[-k] for k = 0..count-1.
static uint32_t convolution(const WordField& f, const uint32_t* a, const uint32_t* b, int32_t count) {
    if (f.table) {
        uint32_t sum = 0;
        for (int32_t k = 0; k < count; k++) sum ^= static_cast<uint32_t>(table_mult(a[k], b[-k]));
        return sum;
    }
    uint64_t sum = 0, limit = static_cast<uint64_t>(f.p) * f.p;
    for (int32_t k = 0; k < count; k++) {
        sum += static_cast<uint64_t>(a[k]) * b[-k];
        if (sum >= limit) sum -= limit;
    }
    return wf_reduce(f, sum);
}

/// a[k] := a[k] - factor b[k].
static void subtract_multiple(const WordField& f, uint32_t* a, const uint32_t* b, uint32_t factor,
                              int32_t count) {
    uint32_t minus = wf_neg(f, factor);
    for (int32_t k = 0; k < count; k++)
        a[k] = f.table ? a[k] ^ static_cast<uint32_t>(table_mult(factor, b[k]))
                       : wf_reduce(f, static_cast<uint64_t>(minus) * b[k] + a[k]);
}

int32_t least_recurrence(const WordField& f, const uint32_t* s, int32_t count, uint32_t* c) {
    ScratchMark mark = scratch_mark();
    int64_t room = int64_t{count} + 2;
    // connection polynomials, the constant term first: the one in force, the one before its length grew, a
    // copy
    auto *now = scratch_array<uint32_t>(room), *old = scratch_array<uint32_t>(room),
         *kept = scratch_array<uint32_t>(room);
    std::fill_n(now, room, 0);
    std::fill_n(old, room, 0);
    now[0] = old[0] = 1;
    int32_t length = 0, old_terms = 1, shift = 1;
    uint32_t old_miss = 1;
    for (int32_t i = 0; i < count; i++) {
        poll_every<64>(i);
        uint32_t miss = convolution(f, now, s + i, length + 1);
        if (miss == 0) {
            shift++;
            continue;
        }
        bool grows = 2 * length <= i;
        int32_t terms = length + 1;
        if (grows) std::copy_n(now, terms, kept);
        subtract_multiple(f, now + shift, old, wf_mul(f, miss, wf_inverse(f, old_miss)), old_terms);
        shift++;
        if (!grows) continue;
        std::swap(old, kept);
        old_terms = terms;
        old_miss = miss;
        length = i + 1 - length;
        shift = 1;
    }
    for (int32_t k = 0; k <= length; k++) c[length - k] = now[k];
    scratch_release(mark);
    return length;
}

// ---- projections ---------------------------------------------------------------------------------------

static uint32_t random_element(const WordField& f) { return wf_random_below(f.p); }

/// The recurrence of u A^i w for the vector w, which is overwritten; `weights` by coordinate.
static int32_t project(const Minpoly& e, uint32_t* w, const uint32_t* weights, uint32_t* c) {
    ScratchMark mark = scratch_mark();
    int32_t count = 2 * e.n + 1;
    auto *s = scratch_array<uint32_t>(count), *next = scratch_array<uint32_t>(e.n);
    auto* recurrence = scratch_array<uint32_t>(int64_t{count} + 1);
    for (int32_t i = 0; i < count; i++) {
        s[i] = convolution(e.f, weights, w + e.n - 1, e.n);  // weights stand in reverse order
        if (i + 1 == count) break;
        apply(e, 1, w, next);
        std::swap(w, next);
    }
    int32_t d = least_recurrence(e.f, s, count, recurrence);
    std::copy_n(recurrence, d + 1, c);
    scratch_release(mark);
    return d;
}

/// The first sequence: a random vector, of which a few coordinates are added up.
static int32_t first_projection(const Minpoly& e, int32_t samples, uint32_t* c) {
    ScratchMark mark = scratch_mark();
    auto *w = scratch_array<uint32_t>(e.n), *weights = scratch_array<uint32_t>(e.n);
    std::fill_n(weights, e.n, 0);
    for (int32_t k = 0; k < samples; k++) weights[wf_random_below(static_cast<uint32_t>(e.n))] = 1;
    for (int32_t k = 0; k < e.n; k++) w[k] = random_element(e.f);
    int32_t d = project(e, w, weights, c);
    scratch_release(mark);
    return d;
}

// ---- checks --------------------------------------------------------------------------------------------

/// v := m(A) w for k_lanes random vectors w, by Horner's rule. The first lane that is not 0, -1: all are.
static int32_t lane_left(const Minpoly& e, const uint32_t* c, int32_t d, uint32_t* v) {
    ScratchMark mark = scratch_mark();
    int64_t room = int64_t{e.n} * k_lanes;
    auto *w = scratch_array<uint32_t>(room), *next = scratch_array<uint32_t>(room), *at = v;
    for (int64_t k = 0; k < room; k++) v[k] = w[k] = random_element(e.f);
    for (int32_t i = d - 1; i >= 0; i--) {
        apply(e, k_lanes, at, next);
        if (c[i] != 0) subtract_multiple(e.f, next, w, wf_neg(e.f, c[i]), static_cast<int32_t>(room));
        std::swap(at, next);
    }
    if (at != v) std::copy_n(at, room, v);
    scratch_release(mark);
    for (int64_t k = 0; k < room; k++)
        if (v[k] != 0) return static_cast<int32_t>(k % k_lanes);
    return -1;
}

/// c := c times the recurrence of a random projection of lane `lane` of v.
static int32_t take_missing(const Minpoly& e, const uint32_t* v, int32_t lane, uint32_t* c, int32_t d) {
    ScratchMark mark = scratch_mark();
    auto *w = scratch_array<uint32_t>(e.n), *weights = scratch_array<uint32_t>(e.n);
    auto *factor = scratch_array<uint32_t>(int64_t{e.n} + 1), *old = scratch_array<uint32_t>(int64_t{d} + 1);
    for (int32_t k = 0; k < e.n; k++) {
        w[k] = v[int64_t{k} * k_lanes + lane];
        weights[k] = random_element(e.f);
    }
    int32_t degree = project(e, w, weights, factor);
    std::copy_n(c, d + 1, old);
    std::fill_n(c, d + degree + 1, 0);
    for (int32_t k = 0; k <= degree; k++) subtract_multiple(e.f, c + k, old, wf_neg(e.f, factor[k]), d + 1);
    scratch_release(mark);
    return d + degree;
}

int32_t word_minpoly(const WordField& f, const WordMatrix& m, const MinpolyHint& hint, uint32_t* c) {
    uint64_t largest = static_cast<uint64_t>(f.p - 1) * (f.p - 1), room = ~uint64_t{0} - f.p;
    Minpoly e = {f, m, m.places.n, static_cast<int32_t>(std::min<uint64_t>(room / largest, 1 << 20))};
    int32_t d = first_projection(e, hint.samples, c);
    if (d == hint.degree) return d;
    ScratchMark mark = scratch_mark();
    auto* v = scratch_array<uint32_t>(int64_t{e.n} * k_lanes);
    int32_t wanted = f.p < k_small_field ? k_small_field_checks : k_checks;
    for (int32_t good = 0; good < wanted;) {
        int32_t lane = lane_left(e, c, d, v);
        good = lane < 0 ? good + k_lanes : 0;
        if (lane >= 0) d = take_missing(e, v, lane, c, d);
    }
    scratch_release(mark);
    return d;
}
}  // namespace tolvex
