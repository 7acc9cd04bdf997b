#include "field/tower_words.h"

#include "field/field_modes.h"
#include "numbers/residue.h"
#include "poly/leaf_number.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/scratch.h"

#include <cstdlib>
#include <cstring>
namespace tolvex {
// ---- the record ----------------------------------------------------------------------------------------

namespace {
/// A tower and the store of its modding polynomials.
struct TowerStore {
    TowerWords words;
    uint32_t* at;
};
TowerStore in_force = {}, candidate = {};
int32_t tower_of_ring = 0, tower_of_stamp = -1;  // what in_force was made for
bool tower_of_table = false;
}  // namespace

static size_t bytes_of(int64_t words) { return static_cast<size_t>(words) * sizeof(uint32_t); }
static void clear(uint32_t* a, int64_t words) { memset(a, 0, bytes_of(words)); }
static void copy(const uint32_t* from, int64_t words, uint32_t* to) { memmove(to, from, bytes_of(words)); }

int32_t tower_levels(LevelSource* list) {
    polypt all[k_levels];
    int32_t count = 0, height = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) all[count++] = v;
    for (; count > 0 && all[count - 1]->p != nullptr && all[count - 1]->field; count--)
        list[height++] = {all[count - 1]->p, all[count - 1]->expon, all[count - 1]};
    return height;
}

static bool tower_is_current() {
    return tower_of_ring == modulus && tower_of_stamp == tower_stamp && tower_of_table == (finf != 0);
}

/// The modding polynomial as an array without its leading term.
static void modder_words(TowerWords& t, int32_t h, const polynode* p, uint32_t* out) {
    const int64_t below = t.at[h - 1].size;
    clear(out, t.at[h].n * below);
    const boolean shape = lintmode;
    lintmode = tower_ring > 0;  // how the leaves of modding polynomials stand
    if (is_number(p)) {
        *out = wf_neg(t.f, wf_of_number(t.f, p->ncoef));
    } else {
        for (const polynode* c = p; c != nullptr; c = c->next) {
            if (c->exp == t.at[h].n) continue;
            if (c->numb) {
                out[c->exp * below] = wf_of_number(t.f, c->ncoef);
            } else {
                (void)tw_from_poly(t, h - 1, c->pcoef, out + c->exp * below);  // no negative exponents
            }
        }
    }
    lintmode = shape;
    t.at[h].binomial = true;
    for (int64_t i = below; i < t.at[h].n * below; i++)
        if (out[i] != 0) t.at[h].binomial = false;
}

/// No modding polynomial has a factor in common with its derivative, modulo a prime.
static bool is_separable(const TowerWords& t) {
    if (!mod_is_prime && !finf) return false;
    bool separable = true;
    ScratchMark mark = scratch_mark();
    for (int32_t h = 1; h <= t.height && separable; h++) {
        const int32_t n = t.at[h].n;
        const int64_t size = t.at[h - 1].size;
        auto *p = scratch_array<uint32_t>((n + 1) * size), *d = scratch_array<uint32_t>(n * size);
        copy(t.at[h].p, n * size, p);
        tw_set(t, h - 1, 1, p + n * size);
        for (int32_t e = 1; e <= n; e++) {
            const auto times = static_cast<uint32_t>(finf ? e & 1 : e % modulus);
            for (int64_t i = 0; i < size; i++) d[(e - 1) * size + i] = wf_mul(t.f, times, p[e * size + i]);
        }
        uint32_t* g = nullptr;
        separable = tw_poly_gcd(t, h - 1, p, n, d, n - 1, &g) == 0;
    }
    scratch_release(mark);
    return separable;
}

static void make_tower(TowerStore& store, const LevelSource* list, int32_t height) {
    TowerWords& t = store.words;
    t.f = word_field_ring();
    t.height = height;
    t.at[0] = {1, 1, nullptr, false};
    int64_t words = 0;
    for (int32_t h = 1; h <= height; h++) {
        t.at[h] = {list[h - 1].n, list[h - 1].n * t.at[h - 1].size, nullptr, false};
        words += t.at[h].size;
    }
    free(store.at);
    store.at = nullptr;
    store.at = static_cast<uint32_t*>(checked_malloc(bytes_of(words + 1)));
    uint32_t* at = store.at;
    for (int32_t h = 1; h <= height; h++) {
        t.at[h].p = at;
        modder_words(t, h, list[h - 1].p, at);
        at += t.at[h].size;
    }
}

const TowerWords& tower_words() {
    if (tower_is_current()) return in_force.words;
    LevelSource list[k_levels];
    int32_t height = tower_levels(list);
    tower_of_stamp = -1;  // nothing is there if memory should fail
    make_tower(in_force, list, height);
    in_force.words.separable = is_separable(in_force.words);
    tower_of_ring = modulus;
    tower_of_table = finf != 0;
    tower_of_stamp = tower_stamp;
    return in_force.words;
}

const TowerWords& candidate_words(const polynode* f, int32_t below) {
    LevelSource list[k_levels + 1];
    (void)tower_levels(list);
    list[below] = {f, f->exp, nullptr};
    make_tower(candidate, list, below + 1);
    return candidate.words;
}

const TowerWords& lowest_levels(int32_t h) {
    LevelSource list[k_levels];
    (void)tower_levels(list);
    make_tower(candidate, list, h);
    return candidate.words;
}

// ---- sums and products ---------------------------------------------------------------------------------

void tw_add(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out) {
    for (int64_t i = 0; i < t.at[h].size; i++) out[i] = wf_add(t.f, a[i], b[i]);
}

void tw_sub(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out) {
    for (int64_t i = 0; i < t.at[h].size; i++) out[i] = wf_sub(t.f, a[i], b[i]);
}

bool tw_iszero(const TowerWords& t, int32_t h, const uint32_t* a) {
    for (int64_t i = 0; i < t.at[h].size; i++)
        if (a[i] != 0) return false;
    return true;
}

bool tw_is_one(const TowerWords& t, int32_t h, const uint32_t* a) {
    if (a[0] != 1) return false;
    for (int64_t i = 1; i < t.at[h].size; i++)
        if (a[i] != 0) return false;
    return true;
}

void tw_set(const TowerWords& t, int32_t h, uint32_t v, uint32_t* out) {
    clear(out, t.at[h].size);
    *out = v;
}

void tw_submul(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* acc) {
    if (h == 0) {
        *acc = wf_sub(t.f, *acc, wf_mul(t.f, *a, *b));
        return;
    }
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint32_t>(t.at[h].size);
    tw_mul(t, h, a, b, product);
    tw_sub(t, h, acc, product, acc);
    scratch_release(mark);
}

/// The product of two polynomials of degree below n over residues: sums of 64 bits, one reduction a
/// coefficient.
static void word_products(const WordField& f, int32_t n, const uint32_t* a, const uint32_t* b,
                          uint32_t* out) {
    for (int32_t k = 0; k <= 2 * n - 2; k++) {
        int32_t from = k < n ? 0 : k - n + 1, to = k < n ? k : n - 1;
        if (f.table) {
            uint32_t s = 0;
            for (int32_t i = from; i <= to; i++) s = wf_add(f, s, wf_mul(f, a[i], b[k - i]));
            out[k] = s;
            continue;
        }
        const uint64_t limit = 2 * (static_cast<uint64_t>(f.p) * f.p);
        uint64_t s = 0;
        for (int32_t i = from; i <= to; i++) {  // below 2 p^2 < 2^63 before each step
            s += static_cast<uint64_t>(a[i]) * b[k - i];
            s -= s >= limit ? limit : 0;
        }
        out[k] = wf_reduce(f, s);
    }
}

/// The product of two polynomials of degree below n over the height below, unreduced.
static void element_products(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b,
                             uint32_t* out) {
    const int32_t n = t.at[h].n;
    const int64_t size = t.at[h - 1].size;
    clear(out, (2 * n - 1) * size);
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint32_t>(size);
    for (int32_t i = 0; i < n; i++) {
        if (tw_iszero(t, h - 1, a + i * size)) continue;
        for (int32_t j = 0; j < n; j++) {
            if (tw_iszero(t, h - 1, b + j * size)) continue;
            tw_mul(t, h - 1, a + i * size, b + j * size, product);
            tw_add(t, h - 1, out + (i + j) * size, product, out + (i + j) * size);
        }
    }
    scratch_release(mark);
}

/// The same for the deepest level over residues.
static void reduce_words(const TowerWords& t, uint32_t* c, int32_t degree) {
    const TowerLevel& level = t.at[1];
    const int32_t used = level.binomial ? 1 : level.n;
    for (int32_t e = degree; e >= level.n; e--) {
        const uint64_t minus_top = wf_neg(t.f, c[e]);
        if (minus_top == 0) continue;
        uint32_t* at = c + (e - level.n);
        for (int32_t j = 0; j < used; j++) at[j] = wf_reduce(t.f, at[j] + minus_top * level.p[j]);
    }
}

void tw_reduce(const TowerWords& t, int32_t h, uint32_t* c, int32_t degree) {
    if (h == 1 && !t.f.table) {
        reduce_words(t, c, degree);
        return;
    }
    const TowerLevel& level = t.at[h];
    const int64_t size = t.at[h - 1].size;
    const int32_t used = level.binomial ? 1 : level.n;
    for (int32_t e = degree; e >= level.n; e--) {
        const uint32_t* top = c + e * size;
        if (tw_iszero(t, h - 1, top)) continue;
        for (int32_t j = 0; j < used; j++) {
            const uint32_t* p = level.p + j * size;
            if (!tw_iszero(t, h - 1, p)) tw_submul(t, h - 1, top, p, c + (e - level.n + j) * size);
        }
    }
}

void tw_mul(const TowerWords& t, int32_t h, const uint32_t* a, const uint32_t* b, uint32_t* out) {
    if (h == 0) {
        *out = wf_mul(t.f, *a, *b);
        return;
    }
    const int32_t n = t.at[h].n;
    ScratchMark mark = scratch_mark();
    auto* product = scratch_array<uint32_t>((2 * n - 1) * t.at[h - 1].size);
    if (h == 1) {
        word_products(t.f, n, a, b, product);
    } else {
        element_products(t, h, a, b, product);
    }
    tw_reduce(t, h, product, 2 * n - 2);
    copy(product, t.at[h].size, out);
    scratch_release(mark);
}

void tw_shift(const TowerWords& t, int32_t h, uint32_t* a) {
    const TowerLevel& level = t.at[h];
    const int64_t size = t.at[h - 1].size;
    ScratchMark mark = scratch_mark();
    auto* shifted = scratch_array<uint32_t>((level.n + 1) * size);
    clear(shifted, size);
    copy(a, level.size, shifted + size);
    tw_reduce(t, h, shifted, level.n);
    copy(shifted, level.size, a);
    scratch_release(mark);
}

void tw_power(const TowerWords& t, int32_t h, const uint32_t* a, uint64_t e, uint32_t* out) {
    ScratchMark mark = scratch_mark();
    auto *base = scratch_array<uint32_t>(t.at[h].size), *power = scratch_array<uint32_t>(t.at[h].size);
    copy(a, t.at[h].size, base);
    tw_set(t, h, 1, power);
    for (; e != 0; e >>= 1) {
        if (e & 1) tw_mul(t, h, power, base, power);
        if (e > 1) tw_mul(t, h, base, base, base);
    }
    copy(power, t.at[h].size, out);
    scratch_release(mark);
}

// ---- polynomials over an element height ----------------------------------------------------------------

int32_t tw_degree(const TowerWords& t, int32_t h, const uint32_t* a, int32_t top) {
    while (top >= 0 && tw_iszero(t, h, a + top * t.at[h].size)) top--;
    return top;
}

int32_t tw_divide(const TowerWords& t, int32_t h, uint32_t* a, int32_t da, const uint32_t* b, int32_t db,
                  uint32_t* q) {
    const int64_t size = t.at[h].size;
    if (q != nullptr && da >= db) clear(q, (da - db + 1) * size);
    for (int32_t e = da; e >= db; e--) {
        const uint32_t* top = a + e * size;
        if (tw_iszero(t, h, top)) continue;
        for (int32_t j = 0; j < db; j++) tw_submul(t, h, top, b + j * size, a + (e - db + j) * size);
        if (q != nullptr) copy(top, size, q + (e - db) * size);
        clear(a + e * size, size);
    }
    return tw_degree(t, h, a, db - 1 < da ? db - 1 : da);
}

bool tw_make_monic(const TowerWords& t, int32_t h, uint32_t* a, int32_t da) {
    const int64_t size = t.at[h].size;
    if (tw_is_one(t, h, a + da * size)) return true;
    ScratchMark mark = scratch_mark();
    auto* inverse = scratch_array<uint32_t>(size);
    bool unit = tw_inverse(t, h, a + da * size, inverse);
    if (unit)
        for (int32_t i = 0; i <= da; i++) tw_mul(t, h, a + i * size, inverse, a + i * size);
    scratch_release(mark);
    return unit;
}

int32_t tw_poly_gcd(const TowerWords& t, int32_t h, uint32_t* a, int32_t da, uint32_t* b, int32_t db,
                    uint32_t** g) {
    da = tw_degree(t, h, a, da);
    db = tw_degree(t, h, b, db);
    while (db >= 0) {
        if (!tw_make_monic(t, h, b, db)) return -2;
        if (db == 0) {
            *g = b;
            return 0;
        }
        int32_t dr = tw_divide(t, h, a, da, b, db, nullptr);
        uint32_t* rest = a;
        a = b;
        b = rest;
        da = db;
        db = dr;
    }
    *g = a;
    return da < 0 || tw_make_monic(t, h, a, da) ? da : -2;
}

int32_t tw_gcd(uint32_t* a, int32_t da, uint32_t* b, int32_t db, uint32_t** g) {
    const TowerWords& t = tower_words();
    const int32_t h = t.height;
    const int64_t size = t.at[h].size;
    da = tw_degree(t, h, a, da);
    db = tw_degree(t, h, b, db);
    while (db >= 0) {
        if (!tw_make_monic(t, h, b, db)) return -2;
        if (db == 0) break;
        for (int32_t e = da; e >= db; e--) {  // one row of the remainder at a time
            poll_interrupt();
            (void)tower_words();
            tw_divide(t, h, a + (e - db) * size, db, b, db, nullptr);
        }
        int32_t dr = tw_degree(t, h, a, db - 1 < da ? db - 1 : da);
        uint32_t* rest = a;
        a = b;
        b = rest;
        da = db;
        db = dr;
    }
    *g = db == 0 ? b : a;
    if (db == 0) return 0;
    return da < 0 || tw_make_monic(t, h, a, da) ? da : -2;
}

// ---- inverses ------------------------------------------------------------------------------------------

static bool word_inverse(uint32_t a, uint32_t* out) {
    if (a == 0) return false;
    *out = static_cast<uint32_t>(mod_inverse_or_0(static_cast<int32_t>(a)));
    return *out != 0;
}

namespace {
/// One row of the half-extended algorithm: r = s a modulo the modding polynomial.
struct EuclidRow {
    uint32_t *r, *s;
    int32_t dr, ds;
};
}  // namespace

/// row := row divided by its leading element.
static bool scale_row(const TowerWords& t, int32_t h, EuclidRow& row) {
    const int64_t size = t.at[h].size;
    ScratchMark mark = scratch_mark();
    auto* inverse = scratch_array<uint32_t>(size);
    bool unit = tw_inverse(t, h, row.r + row.dr * size, inverse);
    if (unit) {
        for (int32_t i = 0; i <= row.dr; i++) tw_mul(t, h, row.r + i * size, inverse, row.r + i * size);
        for (int32_t i = 0; i <= row.ds; i++) tw_mul(t, h, row.s + i * size, inverse, row.s + i * size);
    }
    scratch_release(mark);
    return unit;
}

/// upper := upper - q lower, q their quotient; lower is monic.
static void step_row(const TowerWords& t, int32_t h, EuclidRow& upper, const EuclidRow& lower) {
    const int64_t size = t.at[h].size;
    const int32_t dq = upper.dr - lower.dr;
    ScratchMark mark = scratch_mark();
    auto* q = scratch_array<uint32_t>((dq + 1) * size);
    upper.dr = tw_divide(t, h, upper.r, upper.dr, lower.r, lower.dr, q);
    for (int32_t i = 0; i <= dq; i++)
        for (int32_t j = 0; j <= lower.ds; j++)
            tw_submul(t, h, q + i * size, lower.s + j * size, upper.s + (i + j) * size);
    upper.ds = tw_degree(t, h, upper.s, upper.ds > dq + lower.ds ? upper.ds : dq + lower.ds);
    scratch_release(mark);
}

bool tw_inverse(const TowerWords& t, int32_t h, const uint32_t* a, uint32_t* out) {
    if (h == 0) return word_inverse(*a, out);
    const TowerLevel& level = t.at[h];
    const int64_t size = t.at[h - 1].size, room = (level.n + 1) * size;
    ScratchMark mark = scratch_mark();
    auto* store = scratch_array<uint32_t>(4 * room);
    clear(store, 4 * room);
    EuclidRow upper = {store, store + room, level.n, -1}, lower = {store + 2 * room, store + 3 * room, 0, 0};
    copy(level.p, level.size, upper.r);
    upper.r[level.n * size] = 1;
    copy(a, level.size, lower.r);
    lower.s[0] = 1;
    lower.dr = tw_degree(t, h - 1, a, level.n - 1);
    bool unit = true;
    while (lower.dr >= 0) {
        unit = scale_row(t, h - 1, lower);
        if (!unit || lower.dr == 0) break;
        step_row(t, h - 1, upper, lower);
        EuclidRow rest = upper;
        upper = lower;
        lower = rest;
    }
    unit = unit && lower.dr == 0;
    if (unit) copy(lower.s, level.size, out);
    scratch_release(mark);
    return unit;
}

// ---- conversion ----------------------------------------------------------------------------------------

/// acc := acc times the variable to the power gap >= 0.
static void times_variable(const TowerWords& t, int32_t h, uint32_t* acc, int64_t gap) {
    if (gap == 0 || tw_iszero(t, h, acc)) return;
    if (gap <= 2 * int64_t{t.at[h].n}) {
        while (gap-- > 0) tw_shift(t, h, acc);
        return;
    }
    ScratchMark mark = scratch_mark();
    auto* x = scratch_array<uint32_t>(t.at[h].size);
    tw_set(t, h, 0, x);
    x[t.at[h - 1].size] = 1;  // n >= 2
    tw_power(t, h, x, static_cast<uint64_t>(gap), x);
    tw_mul(t, h, acc, x, acc);
    scratch_release(mark);
}

/// acc := acc divided by the power e of the variable.
static bool divide_by_variable(const TowerWords& t, int32_t h, uint32_t* acc, int64_t e) {
    ScratchMark mark = scratch_mark();
    auto* x = scratch_array<uint32_t>(t.at[h].size);
    tw_set(t, h, 0, x);
    x[t.at[h - 1].size] = 1;
    bool unit = tw_inverse(t, h, x, x);
    if (unit) {
        tw_power(t, h, x, static_cast<uint64_t>(e), x);
        tw_mul(t, h, acc, x, acc);
    }
    scratch_release(mark);
    return unit;
}

static bool coefficient_words(const TowerWords& t, int32_t h, const polynode* c, uint32_t* out) {
    if (!c->numb) return tw_from_poly(t, h, c->pcoef, out);
    tw_set(t, h, wf_of_number(t.f, c->ncoef), out);
    return true;
}

bool tw_from_poly(const TowerWords& t, int32_t h, const polynode* c, uint32_t* out) {
    if (is_number(c)) {
        tw_set(t, h, wf_of_number(t.f, c->ncoef), out);
        return true;
    }
    const int64_t size = t.at[h - 1].size;
    clear(out, t.at[h].size);
    const polynode* last = c;
    while (last->next != nullptr) last = last->next;
    if (c->exp < t.at[h].n && last->exp >= 0) {  // reduced as it stands
        for (; c != nullptr; c = c->next) {
            if (!c->numb) poll_interrupt();
            if (!coefficient_words(t, h - 1, c, out + c->exp * size)) return false;
        }
        return true;
    }
    bool good = true;
    ScratchMark mark = scratch_mark();
    auto* coefficient = scratch_array<uint32_t>(size);
    for (; c != nullptr && good; c = c->next) {
        poll_interrupt();
        good = coefficient_words(t, h - 1, c, coefficient);
        if (good) tw_add(t, h - 1, out, coefficient, out);
        times_variable(t, h, out, c->next != nullptr ? int64_t{c->exp} - c->next->exp : maxx(c->exp, 0));
    }
    if (good && last->exp < 0) good = divide_by_variable(t, h, out, -int64_t{last->exp});
    scratch_release(mark);
    return good;
}

poly tw_to_poly(const TowerWords& t, int32_t h, const uint32_t* a) {
    poly head = nullptr;
    polyptrr tail = &head;
    const int64_t size = h > 0 ? t.at[h - 1].size : 1;
    for (int32_t e = h > 0 ? t.at[h].n - 1 : 0; e >= 0; e--) {
        if (h == 0 ? *a == 0 : tw_iszero(t, h - 1, a + e * size)) continue;
        poly c;
        if (h <= 1) {
            imptr number;
            newimag(&number);
            number->lint = static_cast<int32_t>(a[e]);
            c = leaf_of(number);
        } else {
            c = tw_to_poly(t, h - 1, a + e * size);
        }
        if (e == 0 && is_number(c)) {
            *tail = c;
        } else {
            new_term(tail, e, c);
        }
        tail = &(*tail)->next;
    }
    return head != nullptr ? head : zero_leaf();
}
}  // namespace tolvex
