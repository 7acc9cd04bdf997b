// Factorisation in flat arrays: the powers multiply back, and the number of different factors is that of
// Berlekamp's subalgebra, so each of them is irreducible.
#include "field/factor_words.h"
#include "field/irreducible.h"
#include "numbers/ring_switch.h"
#include "poly/dense_combine.h"
#include "poly/dense_divide.h"
#include "poly/dense_mult.h"
#include "tests/unit/field/tower_support.h"

#include <vector>
using namespace tolvex;
using namespace tolvex::test;
using Words = std::vector<uint32_t>;

namespace {
/// The whole tower of a setting as a field.
struct Field {
    ScratchMark mark = scratch_mark();
    CoefficientField k;
    Field() { open_field(&k, tower_words(), tower_words().height); }
    ~Field() { scratch_release(mark); }
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;
};
}  // namespace

static Words random_words(Rng& rng, const CoefficientField& k, int64_t n) {
    Words a(static_cast<size_t>(n * k.size));
    for (uint32_t& w : a) w = static_cast<uint32_t>(random_int(rng, 0, static_cast<int32_t>(k.t.f.p) - 1));
    return a;
}
static int32_t degree_of(const CoefficientField& k, const Words& a) {
    return static_cast<int32_t>(static_cast<int64_t>(a.size()) / k.size) - 1;
}
static Words random_monic(Rng& rng, const CoefficientField& k, int32_t degree) {
    Words a = random_words(rng, k, degree + 1);
    tw_set(k.t, k.h, 1, a.data() + degree * k.size);
    return a;
}
/// By the definition.
static Words product_of(const CoefficientField& k, const Words& a, const Words& b) {
    const int32_t da = degree_of(k, a), db = degree_of(k, b);
    Words c(static_cast<size_t>((da + db + 1) * k.size)), t(static_cast<size_t>(k.size));
    for (int32_t i = 0; i <= da; i++)
        for (int32_t j = 0; j <= db; j++) {
            tw_mul(k.t, k.h, a.data() + i * k.size, b.data() + j * k.size, t.data());
            uint32_t* at = c.data() + (i + j) * k.size;
            tw_add(k.t, k.h, at, t.data(), at);
        }
    return c;
}
/// a modulo the monic f, degree of f elements.
static Words rest_of(const CoefficientField& k, Words a, const Words& f) {
    const int32_t n = degree_of(k, f);
    tw_divide(k.t, k.h, a.data(), degree_of(k, a), f.data(), n, nullptr);
    a.resize(static_cast<size_t>(n * k.size));
    return a;
}
static Words power_modulo(const CoefficientField& k, const Words& a, uint64_t e, const Words& f) {
    Words r = a;
    for (int bit = 62 - __builtin_clzll(e); bit >= 0; bit--) {
        r = rest_of(k, product_of(k, r, r), f);
        if (e >> bit & 1) r = rest_of(k, product_of(k, r, a), f);
    }
    return r;
}
/// x^q modulo f.
static Words frobenius(const CoefficientField& k, const Words& f) {
    Words x(static_cast<size_t>((degree_of(k, f) + 1) * k.size));
    tw_set(k.t, k.h, 1, x.data() + k.size);
    x = rest_of(k, x, f);
    for (int32_t i = 0; i < k.degree; i++) x = power_modulo(k, x, k.p, f);
    return x;
}
/// The number of irreducible factors of the square-free f: the dimension of the residues with a^q = a.
static int32_t berlekamp_dimension(const CoefficientField& k, const Words& f) {
    const int32_t n = degree_of(k, f);
    std::vector<Words> row(static_cast<size_t>(n));
    Words h = frobenius(k, f), power(static_cast<size_t>(n * k.size)), one(static_cast<size_t>(k.size)),
          t(static_cast<size_t>(k.size));
    tw_set(k.t, k.h, 1, power.data());
    tw_set(k.t, k.h, 1, one.data());
    for (int32_t i = 0; i < n; i++) {
        row[static_cast<size_t>(i)] = power;
        uint32_t* d = row[static_cast<size_t>(i)].data() + i * k.size;
        tw_sub(k.t, k.h, d, one.data(), d);
        power = rest_of(k, product_of(k, power, h), f);
    }
    int32_t rank = 0;
    for (int32_t column = 0; column < n; column++) {
        auto at = [&](int32_t i) { return row[static_cast<size_t>(i)].data() + column * k.size; };
        int32_t pivot = rank;
        while (pivot < n && tw_iszero(k.t, k.h, at(pivot))) pivot++;
        if (pivot == n) continue;
        std::swap(row[static_cast<size_t>(rank)], row[static_cast<size_t>(pivot)]);
        EXPECT_TRUE(tw_inverse(k.t, k.h, at(rank), t.data()));
        Words& top = row[static_cast<size_t>(rank)];
        for (int32_t j = 0; j < n; j++)
            tw_mul(k.t, k.h, top.data() + j * k.size, t.data(), top.data() + j * k.size);
        for (int32_t i = rank + 1; i < n; i++) {
            Words c(at(i), at(i) + k.size);
            if (tw_iszero(k.t, k.h, c.data())) continue;
            for (int32_t j = column; j < n; j++)
                tw_submul(k.t, k.h, c.data(), top.data() + j * k.size,
                          row[static_cast<size_t>(i)].data() + j * k.size);
        }
        rank++;
    }
    return n - rank;
}

static Words words_of(const CoefficientField& k, const FactorPart& part) {
    return Words(part.c, part.c + (part.degree + 1) * k.size);
}

/// All that a factorisation of f promises.
static void expect_factors(const CoefficientField& k, const Words& f) {
    const int32_t n = degree_of(k, f);
    FactorList list, again;
    open_list(&list, k, n);
    open_list(&again, k, n);
    ASSERT_TRUE(factor_words(k, f.data(), n, &list));
    Words product(static_cast<size_t>(k.size)), radical(static_cast<size_t>(k.size));
    tw_set(k.t, k.h, 1, product.data());
    tw_set(k.t, k.h, 1, radical.data());
    int32_t least = n;
    for (int32_t i = 0; i < list.count; i++) {
        const FactorPart& part = list.part[i];
        least = std::min(least, part.degree);
        EXPECT_EQ(part.degree, part.d);
        EXPECT_TRUE(tw_is_one(k.t, k.h, part.c + part.degree * k.size));
        radical = product_of(k, radical, words_of(k, part));
        for (int32_t m = 0; m < part.multiplicity; m++) product = product_of(k, product, words_of(k, part));
        if (i == 0) continue;
        const FactorPart& before = list.part[i - 1];
        EXPECT_LE(before.multiplicity, part.multiplicity);
        if (before.multiplicity == part.multiplicity) {
            EXPECT_LE(before.degree, part.degree);
        }
        EXPECT_NE(words_of(k, before), words_of(k, part));
    }
    EXPECT_EQ(product, f);
    EXPECT_EQ(berlekamp_dimension(k, radical), list.count);
    Words copy = f;
    EXPECT_EQ(least_degree(k, copy.data(), n), least);
    EXPECT_EQ(has_repeated_factor(k, f.data(), n), radical.size() < f.size() ? 1 : 0);
    ASSERT_TRUE(factor_words(k, f.data(), n, &again));
    ASSERT_EQ(again.count, list.count);
    for (int32_t i = 0; i < list.count; i++) EXPECT_EQ(words_of(k, again.part[i]), words_of(k, list.part[i]));
}

/// A product of random polynomials with multiplicities.
static Words random_product(Rng& rng, const CoefficientField& k, int32_t parts, int32_t degree) {
    Words f = random_monic(rng, k, 1);
    for (int32_t i = 0; i < parts; i++) {
        const Words g = random_monic(rng, k, random_int(rng, 1, degree));
        const int32_t most = k.p < 7 ? static_cast<int32_t>(k.p) + 1 : 3;
        for (int32_t m = random_int(rng, -1, most); m >= 0; m--) f = product_of(k, f, g);
    }
    return f;
}

static const int32_t k_rings[] = {2, 3, 5, 7, 101, 32003, 65521, 2147483629, 256, 65536};

static bool is_table(int32_t ring) { return ring == 256 || ring == 65536; }

/// Levels 1 to `levels` become a field of small degrees.
static void make_field(Rng& rng, int32_t levels) {
    for (int32_t level = levels; level >= 1; level--) do {
            mod_out(level, random_modder(rng, level, random_int(rng, 2, 3), Coefs::small));
        } while (!level_is_field(variable(level)));
}

PROPERTY(factors_over_words, 300) {
    const int32_t ring = k_rings[round % 10];
    TowerSetting setting(1, ring, is_table(ring));
    Field field;
    expect_factors(field.k, random_product(rng, field.k, random_int(rng, 1, 5), random_int(rng, 1, 8)));
}

PROPERTY(factors_of_random_polynomials, 60) {
    const int32_t ring = k_rings[round % 10];
    TowerSetting setting(1, ring, is_table(ring));
    Field field;
    expect_factors(field.k, random_monic(rng, field.k, random_int(rng, 20, 90)));
}

PROPERTY(factors_over_towers, 120) {
    const int32_t ring = k_rings[round % 10], levels = random_int(rng, 1, 2);
    TowerSetting setting(levels, ring, is_table(ring));
    make_field(rng, levels);
    Field field;
    expect_factors(field.k, random_product(rng, field.k, random_int(rng, 1, 3), random_int(rng, 1, 5)));
}

/// Many factors of one degree: those of x^(q^d - 1) - 1.
TEST(Factor, all_polynomials_of_small_degree) {
    struct Case {
        int32_t ring, d;
    };
    for (Case c : {Case{2, 6}, {3, 4}, {5, 3}, {7, 2}, {101, 1}, {256, 1}}) {
        TowerSetting setting(1, c.ring, c.ring == 256);
        Field field;
        int32_t n = 1;
        for (int32_t i = 0; i < c.d; i++) n *= c.ring;
        Words f(static_cast<size_t>(n));
        f[static_cast<size_t>(n) - 1] = 1;
        f[0] = wf_neg(field.k.t.f, 1);
        FactorList list;
        open_list(&list, field.k, n);
        ASSERT_TRUE(factor_words(field.k, f.data(), n - 1, &list));
        int32_t degrees = 0;
        for (int32_t i = 0; i < list.count; i++) {
            degrees += list.part[i].degree;
            EXPECT_EQ(c.d % list.part[i].degree, 0);
            EXPECT_EQ(list.part[i].multiplicity, 1);
            Words g = words_of(field.k, list.part[i]);
            EXPECT_EQ(least_degree(field.k, g.data(), list.part[i].degree), list.part[i].degree);
        }
        EXPECT_EQ(degrees, n - 1);
    }
}

/// Where the tower is no field a factorisation says so, or is right.
PROPERTY(factors_over_rings_that_are_no_fields, 60) {
    TowerSetting setting(1, 7);
    mod_out(1, "x^2 - 2");  // (x - 3)(x + 3)
    Field field;
    const Words f = random_product(rng, field.k, 2, 4);
    const int32_t n = degree_of(field.k, f);
    FactorList list;
    open_list(&list, field.k, n);
    if (factor_words(field.k, f.data(), n, &list)) return;
    Words product = {1, 0};
    for (int32_t i = 0; i < list.count; i++)
        for (int32_t m = 0; m < list.part[i].multiplicity; m++)
            product = product_of(field.k, product, words_of(field.k, list.part[i]));
    EXPECT_EQ(product, f);
}

// ---- what it stands on ---------------------------------------------------------------------------------

PROPERTY(products_of_residues, 60) {
    const int32_t ring = k_rings[round % 10], levels = random_int(rng, 0, 2);
    TowerSetting setting(maxx(levels, 1), ring, is_table(ring));
    if (levels > 0) make_field(rng, levels);
    Field field;
    const CoefficientField& k = field.k;
    const int32_t n = random_int(rng, 1, levels > 0 ? 12 : 40);
    const Words f = random_monic(rng, k, n), a = random_words(rng, k, n), b = random_words(rng, k, n);
    ResidueRing r;
    open_ring(&r, &k, f.data(), n);
    Words c(a.size());
    residue_product(r, a.data(), b.data(), c.data());
    EXPECT_EQ(c, rest_of(k, product_of(k, a, b), f));
    residue_power(r, a.data(), 11, c.data());
    EXPECT_EQ(c, power_modulo(k, a, 11, f));
    power_of_x(r, c.data());
    EXPECT_EQ(c, frobenius(k, f));
    PowerTable table;
    open_powers(&table, &r, b.data(), random_int(rng, 1, n));
    compose(table, a.data(), c.data());
    Words value(a.size());
    for (int32_t i = n - 1; i >= 0; i--) {  // Horner
        value = rest_of(k, product_of(k, value, b), f);
        tw_add(k.t, k.h, value.data(), a.data() + i * k.size, value.data());
    }
    EXPECT_EQ(c, value);
}

/// Lengths of transforms and their limits.
TEST(Factor, products_modulo_long_polynomials) {
    Rng rng(run_seed());
    for (int32_t ring : {2, 3, 32003, 2147483629, 256, 65536})
        for (int32_t n : {63, 64, 65, 199, 200, 255, 256, 257, 384, 385, 511, 512, 513, 700}) {
            TowerSetting setting(1, ring, is_table(ring));
            Field field;
            const Words f = random_monic(rng, field.k, n), a = random_words(rng, field.k, n),
                        b = random_words(rng, field.k, n);
            DenseModulus m;
            open_modulus(&m, field.k.t.f, f.data(), n);
            for (const Words& y : {b, a}) {
                Words product(a.size() * 2), c(a.size());
                wf_mult(field.k.t.f, a.data(), n, y.data(), n, product.data());
                wf_div_mod(field.k.t.f, product.data(), 2 * n - 2, f.data(), n, 1, nullptr);
                product.resize(a.size());
                mult_modulo(m, a.data(), &y == &b ? b.data() : y.data(), c.data());
                EXPECT_EQ(c, product) << "modulus " << ring << " degree " << n;
            }
            Words c(a.size()), s = a, product(a.size() * 2);
            mult_modulo(m, s.data(), s.data(), s.data());
            wf_mult(field.k.t.f, a.data(), n, a.data(), n, product.data());
            reduce_modulo(m, product.data(), 2 * n - 1, c.data());
            EXPECT_EQ(c, s);
            product = b;
            product.push_back(1);
            reduce_modulo(m, product.data(), n + 1, c.data());
            wf_div_mod(field.k.t.f, product.data(), n, f.data(), n, 1, nullptr);
            product.resize(a.size());
            EXPECT_EQ(product, c);
        }
}

PROPERTY(combinations_of_rows, 60) {
    const int32_t ring = k_rings[round % 10];
    TowerSetting setting(1, ring, is_table(ring));
    Field field;
    const WordField& f = field.k.t.f;
    const int32_t rows = random_int(rng, 1, 5), count = random_int(rng, 1, 150), n = random_int(rng, 1, 200);
    Words coef = random_words(rng, field.k, rows * count), row = random_words(rng, field.k, count * n),
          out(static_cast<size_t>(rows * n));
    if (round % 3 == 0 && !f.table)  // the greatest sums
        for (uint32_t& w : coef) w = f.p / 2;
    if (round % 3 == 0 && !f.table)
        for (uint32_t& w : row) w = f.p / 2;
    combine_rows(f, coef.data(), rows, count, row.data(), n, out.data());
    for (int32_t i = 0; i < rows; i++)
        for (int32_t j = 0; j < n; j++) {
            uint32_t sum = 0;
            for (int32_t k = 0; k < count; k++)
                sum = wf_add(
                    f, sum,
                    wf_mul(f, coef[static_cast<size_t>(i * count + k)], row[static_cast<size_t>(k * n + j)]));
            ASSERT_EQ(out[static_cast<size_t>(i * n + j)], sum);
        }
}
