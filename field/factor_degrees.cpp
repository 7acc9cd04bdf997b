// Products of the factors of each degree: x^(q^d) - x is the product of all irreducible polynomials whose
// degree divides d. Either one power after the other, or in giant steps: x^(q^i) for i < b, then x^(q^(j b))
// for each j, and the product of their differences has the factors of the degrees (j - 1) b + 1 .. j b.
#include "field/factor_words.h"
#include "storage/interrupt.h"

#include <algorithm>
namespace tolvex {
namespace {
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_giant_degree = 6;
#else
constexpr int32_t k_giant_degree = 24;  // from here giant steps pay, if powers take some products
#endif
constexpr int32_t k_block = 16;                     // powers to one gcd, at most
constexpr int32_t k_group = 8;                      // giant steps to one gcd, at most
constexpr int64_t k_most_words = int64_t{1} << 26;  // of the stored powers

/// What is left to do.
struct DegreeSearch {
    const CoefficientField* k;
    uint32_t* f;  // what is left, monic
    int32_t n;    // its degree
    int32_t multiplicity;
    FactorList* list;  // nil: only the least degree is wanted
    int32_t least;     // the least degree of a factor found, 0: none yet
    bool failed;       // the tower is no field
    bool done() const { return n == 0 || failed || (list == nullptr && least != 0); }
};
/// The factors of degree d divide upper - lower.
struct Difference {
    const uint32_t *upper, *lower;
    int32_t d;
};
/// A ring modulo a multiple of what is left, with its modulus.
struct SearchRing {
    ResidueRing r;
    uint32_t* f;
};
}  // namespace

static void open_search_ring(const DegreeSearch& s, SearchRing* ring) {
    ring->f = new_elements(*s.k, s.n + 1);
    copy_elements(*s.k, s.f, s.n + 1, ring->f);
    open_ring(&ring->r, s.k, ring->f, s.n);
}

/// g divides what is left: it goes to the list.
static void take_factors(DegreeSearch& s, const uint32_t* g, int32_t degree, int32_t d) {
    const CoefficientField& k = *s.k;
    if (s.least == 0) s.least = d;
    if (s.list == nullptr) return;
    append_1(s.list, k, g, degree, d, s.multiplicity);
    if (degree < s.n) {
        ScratchMark mark = scratch_mark();
        auto* q = new_elements(k, s.n - degree + 1);
        poly_divide(k, s.f, s.n, g, degree, q);
        copy_elements(k, q, s.n - degree + 1, s.f);
        scratch_release(mark);
    }
    s.n -= degree;
}

/// What is left is irreducible.
static void take_rest(DegreeSearch& s) {
    if (s.n > 0 && !s.done()) take_factors(s, s.f, s.n, s.n);
}

/// g := the gcd of the residue a of n elements and b, both kept; g has degree + 1 elements of room. Returns
/// its degree.
static int32_t common_divisor(DegreeSearch& s, const uint32_t* a, int32_t n, const uint32_t* b,
                              int32_t degree, uint32_t* g) {
    const CoefficientField& k = *s.k;
    ScratchMark mark = scratch_mark();
    auto *x = new_elements(k, n), *y = new_elements(k, degree + 1);
    copy_elements(k, a, n, x);
    copy_elements(k, b, degree + 1, y);
    uint32_t* common = nullptr;
    int32_t found = poly_gcd(k, x, n - 1, y, degree, &common);
    if (found < 0) {
        s.failed = true;
        found = 0;
    } else {
        copy_elements(k, common, found + 1, g);
    }
    scratch_release(mark);
    return found;
}

/// g, of degree dg, has factors of the degrees of the differences, which rise, and no others. n: elements of
/// those.
static void take_each_degree(DegreeSearch& s, uint32_t* g, int32_t dg, const Difference* difference,
                             int32_t count, int32_t n) {
    const CoefficientField& k = *s.k;
    ScratchMark mark = scratch_mark();
    auto *e = new_elements(k, n), *common = new_elements(k, dg + 1), *q = new_elements(k, dg + 1);
    for (int32_t i = 0; i < count && dg > 0 && !s.done(); i++) {
        const int32_t d = difference[i].d;
        if (dg < 2 * d) {  // one factor
            take_factors(s, g, dg, dg);
            dg = 0;
            break;
        }
        subtract_elements(k, difference[i].upper, difference[i].lower, n, e);
        const int32_t rest = poly_degree(k, e, poly_divide(k, e, n - 1, g, dg, nullptr));
        const int32_t found = rest < 0 ? dg : common_divisor(s, e, rest + 1, g, dg, common);
        if (found <= 0) continue;
        if (rest < 0) copy_elements(k, g, dg + 1, common);
        take_factors(s, common, found, d);
        poly_divide(k, g, dg, common, found, q);
        dg -= found;
        copy_elements(k, q, dg + 1, g);
    }
    if (dg > 0 && !s.done()) s.failed = true;
    scratch_release(mark);
}

// ---- one power after the other -------------------------------------------------------------------------

/// The degrees from d + 1 to d + count; h := x^(q^(d + count)), from x^(q^d).
static void search_block(DegreeSearch& s, const SearchRing& ring, int32_t d, int32_t count, uint32_t* h) {
    const CoefficientField& k = *s.k;
    const int32_t n = ring.r.n;
    ScratchMark mark = scratch_mark();
    Difference difference[k_block];
    auto *x = new_elements(k, n), *product = new_elements(k, n), *e = new_elements(k, n);
    residue_x(ring.r, x);
    for (int32_t i = 0; i < count; i++) {
        if (d + i == 0)
            power_of_x(ring.r, h);
        else
            residue_frobenius(ring.r, h);
        auto* power = new_elements(k, n);
        copy_elements(k, h, n, power);
        difference[i] = {power, x, d + i + 1};
        subtract_elements(k, power, x, n, e);
        if (i == 0)
            copy_elements(k, e, n, product);
        else
            residue_product(ring.r, product, e, product);
    }
    auto* g = new_elements(k, s.n + 1);
    const int32_t dg = common_divisor(s, product, n, s.f, s.n, g);
    if (dg > 0) take_each_degree(s, g, dg, difference, count, n);
    scratch_release(mark);
}

static void search_by_powers(DegreeSearch& s) {
    const CoefficientField& k = *s.k;
    SearchRing ring;
    auto* h = new_elements(k, s.n);
    open_search_ring(s, &ring);
    int32_t block = 1;
    for (int32_t d = 0; !s.done() && 2 * (d + 1) <= s.n;) {
        const int32_t count = std::min(block, s.n / 2 - d);
        search_block(s, ring, d, count, h);
        d += count;
        block = std::min(block + 1, k_block);
        if (!s.done() && s.n < ring.r.n - ring.r.n / 8) {
            poly_divide(k, h, ring.r.n - 1, s.f, s.n, nullptr);
            open_search_ring(s, &ring);
        }
    }
    take_rest(s);
}

// ---- giant steps ---------------------------------------------------------------------------------------

namespace {
/// The stored powers and the giant steps on the way.
struct GiantSteps {
    SearchRing ring;
    int32_t b;                       // small steps to a giant one
    uint32_t* small;                 // x^(q^i), 0 <= i <= b
    PowerTable table;                // powers of x^(q^b)
    int32_t steps;                   // giant steps taken
    int32_t waiting;                 // of these without a gcd
    uint32_t* power[k_group];        // these, x^(q^(j b))
    uint32_t* differences[k_group];  // the products of their differences from the small ones
    const uint32_t* small_power(int32_t i) const { return small + int64_t{i} * ring.r.n * ring.r.k->size; }
};
}  // namespace

/// What a composition takes, in products: the part that is quadratic is cheap but for tables and towers.
static double composition_products(const ResidueRing& r, int32_t count) {
    const double quadratic = r.k->h > 0 ? 8 : r.k->t.f.table ? 30 : 250;
    return static_cast<double>(r.n) / count + r.n / quadratic;
}

static int32_t small_steps(const DegreeSearch& s, const ResidueRing& r) {
    const double giant = composition_products(r, good_power_count(r, 16));
    const double small = std::min<double>(frobenius_products(*s.k), giant);
    const double degrees = s.n / 2;
    const int64_t most = std::max<int64_t>(2, k_most_words / (s.n * s.k->size));
    int32_t b = 1;
    while (static_cast<double>(b) * b * small < degrees * giant) b++;
    return static_cast<int32_t>(std::min<int64_t>(std::max(b, 2), most));
}

/// h = x^q.
static void take_small_steps(GiantSteps& g, const uint32_t* h) {
    const ResidueRing& r = g.ring.r;
    const CoefficientField& k = *r.k;
    const int64_t words = r.n * k.size;
    g.small = scratch_array<uint32_t>((g.b + 1) * words);
    residue_x(r, g.small);
    copy_elements(k, h, r.n, g.small + words);
    ScratchMark mark = scratch_mark();
    const int32_t count = good_power_count(r, g.b);
    const bool by_powers = frobenius_products(k) < composition_products(r, count) + double{1} * count / g.b;
    PowerTable table;
    if (!by_powers) open_powers(&table, &r, h, count);
    for (int32_t i = 2; i <= g.b; i++) {
        uint32_t* to = g.small + i * words;
        copy_elements(k, to - words, r.n, to);
        if (by_powers)
            residue_frobenius(r, to);
        else
            compose(table, to, to);
    }
    scratch_release(mark);
}

/// The powers of x^(q^b) for the giant steps that may still come.
static void open_giant_table(const DegreeSearch& s, GiantSteps& g) {
    const int32_t left = std::max(1, s.n / 2 / g.b - g.steps);
    open_powers(&g.table, &g.ring.r, g.small_power(g.b), good_power_count(g.ring.r, left));
}

/// The next giant step and the product of its differences.
static void take_giant_step(const DegreeSearch& s, GiantSteps& g, uint32_t* h) {
    const ResidueRing& r = g.ring.r;
    const CoefficientField& k = *r.k;
    g.steps++;
    if (g.steps == 1) {
        copy_elements(k, g.small_power(g.b), r.n, h);
    } else {
        if (g.table.count == 0) open_giant_table(s, g);
        compose(g.table, h, h);
    }
    copy_elements(k, h, r.n, g.power[g.waiting]);
    uint32_t* product = g.differences[g.waiting++];
    ScratchMark mark = scratch_mark();
    auto* e = new_elements(k, r.n);
    subtract_elements(k, h, g.small_power(0), r.n, product);
    for (int32_t i = 1; i < g.b; i++) {
        subtract_elements(k, h, g.small_power(i), r.n, e);
        residue_product(r, product, e, product);
    }
    scratch_release(mark);
}

/// The factors that the waiting giant steps have found.
static void take_group(DegreeSearch& s, GiantSteps& g) {
    const ResidueRing& r = g.ring.r;
    const CoefficientField& k = *s.k;
    ScratchMark mark = scratch_mark();
    auto *all = new_elements(k, r.n), *common = new_elements(k, s.n + 1), *part = new_elements(k, s.n + 1),
         *q = new_elements(k, s.n + 1);
    auto* difference = scratch_array<Difference>(g.b);
    copy_elements(k, g.differences[0], r.n, all);
    for (int32_t i = 1; i < g.waiting; i++) residue_product(r, all, g.differences[i], all);
    int32_t dc = common_divisor(s, all, r.n, s.f, s.n, common);
    for (int32_t i = 0; i < g.waiting && dc > 0 && !s.done(); i++) {
        const int32_t dp = common_divisor(s, g.differences[i], r.n, common, dc, part);
        if (dp <= 0) continue;
        const int32_t highest = (g.steps - g.waiting + i + 1) * g.b;
        for (int32_t j = 0; j < g.b; j++)
            difference[j] = {g.power[i], g.small_power(g.b - 1 - j), highest - (g.b - 1 - j)};
        poly_divide(k, common, dc, part, dp, q);
        dc -= dp;
        copy_elements(k, q, dc + 1, common);
        take_each_degree(s, part, dp, difference, g.b, r.n);
    }
    g.waiting = 0;
    scratch_release(mark);
}

static void open_group(GiantSteps& g) {
    for (int32_t i = 0; i < k_group; i++) {
        g.power[i] = new_elements(*g.ring.r.k, g.ring.r.n);
        g.differences[i] = new_elements(*g.ring.r.k, g.ring.r.n);
    }
}

/// Everything modulo what is left, after the degree has fallen.
static void shrink(const DegreeSearch& s, GiantSteps& g, uint32_t* h) {
    const CoefficientField& k = *s.k;
    const int32_t before = g.ring.r.n;
    open_search_ring(s, &g.ring);
    ScratchMark mark = scratch_mark();
    auto* power = new_elements(k, before);
    for (int32_t i = 0; i <= g.b; i++) {
        copy_elements(k, g.small + i * before * k.size, before, power);
        poly_divide(k, power, before - 1, g.ring.f, s.n, nullptr);
        copy_elements(k, power, s.n, g.small + i * s.n * k.size);
    }
    poly_divide(k, h, before - 1, g.ring.f, s.n, nullptr);
    g.table.count = 0;
    scratch_release(mark);
}

static void search_in_giant_steps(DegreeSearch& s) {
    GiantSteps g = {};
    auto* h = new_elements(*s.k, s.n);
    open_search_ring(s, &g.ring);
    search_block(s, g.ring, 0, 1, h);  // factors of degree 1 can be many
    if (!s.done() && s.n < g.ring.r.n) {
        poly_divide(*s.k, h, g.ring.r.n - 1, s.f, s.n, nullptr);
        open_search_ring(s, &g.ring);
    }
    if (!s.done() && s.n >= 4) {
        g.b = small_steps(s, g.ring.r);
        take_small_steps(g, h);
        open_group(g);
    }
    int32_t group = 1;
    while (!s.done() && 2 * (maxx(g.steps * g.b, 1) + 1) <= s.n) {
        take_giant_step(s, g, h);
        const bool last = 2 * (g.steps * g.b + 1) > s.n;
        if (g.waiting < group && !last) continue;
        take_group(s, g);
        group = std::min(2 * group, k_group);
        if (!s.done() && s.n < g.ring.r.n / 4 * 3 && 2 * (g.steps * g.b + 1) <= s.n) shrink(s, g, h);
    }
    take_rest(s);
}

// ---- entries -------------------------------------------------------------------------------------------

static void search(DegreeSearch& s) {
    ScratchMark mark = scratch_mark();
    if (s.n == 1)
        take_rest(s);
    else if (s.n < k_giant_degree || frobenius_products(*s.k) <= 2)
        search_by_powers(s);
    else
        search_in_giant_steps(s);
    scratch_release(mark);
}

bool distinct_degrees(const CoefficientField& k, uint32_t* f, int32_t n, int32_t multiplicity,
                      FactorList* list) {
    DegreeSearch s = {&k, f, n, multiplicity, list, 0, false};
    search(s);
    if (s.failed && s.n > 0) append_1(list, k, s.f, s.n, s.n, multiplicity);
    return !s.failed;
}

int32_t least_degree(const CoefficientField& k, uint32_t* f, int32_t n) {
    if (k.h == 0 && k.p == 2 && !k.t.f.table) return least_degree_bits(f, n);
    DegreeSearch s = {&k, f, n, 1, nullptr, 0, false};
    search(s);
    return s.failed ? 0 : s.least;
}
}  // namespace tolvex
