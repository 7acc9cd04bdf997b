// Random identities of the dense engine in every modular ring: products against the plain double loop,
// division by n = q m + r, gcds against constructed common factors.
#include "numbers/primes.h"
#include "poly/dense_basic.h"
#include "poly/dense_divide.h"
#include "poly/dense_gcd.h"
#include "poly/dense_internal.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "tests/support/random_poly.h"

#include <initializer_list>
#include <vector>
namespace tolvex::test {
namespace {
using Dense = std::vector<int32_t>;
const Ring modular_rings[] = {{2, false, "Z/2"},
                              {3, false, "Z/3"},
                              {4, false, "Z/4"},
                              {6, false, "Z/6"},
                              {257, false, "Z/257"},
                              {32003, false, "Z/32003"},
                              {65535, false, "Z/65535"},
                              {65536, false, "Z/65536"},
                              {65537, false, "Z/65537"},
                              {16777213, false, "Z/16777213"},
                              {2147483629, false, "Z/2147483629"},
                              {2147483646, false, "Z/2147483646"},
                              {256, true, "GF(2^8)"},
                              {65536, true, "GF(2^16)"}};
constexpr int ring_count = sizeof modular_rings / sizeof modular_rings[0];

const Ring& ring_of_round(int round) {
    const Ring& r = modular_rings[round % ring_count];
    use_ring(r);
    return r;
}
bool is_field(const Ring& r) { return r.table_field || is_prime(r.modulus); }

// Any residues, at times extreme ones: all 0, all of the greatest, few that are not 0.
Dense random_dense(Rng& rng, int32_t n) {
    Dense x(static_cast<size_t>(n));
    int style = random_int(rng, 0, 7);
    for (auto& v : x) {
        v = random_int(rng, 0, modulus - 1);
        if (style == 0) v = modulus - 1;
        if (style == 1 && random_int(rng, 0, 3) != 0) v = 0;
    }
    return x;
}
Dense random_with_unit_lead(Rng& rng, int32_t n) {
    Dense x = random_dense(rng, n);
    while (mod_inverse_or_0(x.back()) == 0) x.back() = random_int(rng, 1, modulus - 1);
    return x;
}
Dense plain_product(const Dense& a, const Dense& b) {
    Dense c(a.size() + b.size() - 1, 0);
    for (size_t i = 0; i < a.size(); i++)
        for (size_t j = 0; j < b.size(); j++)
            c[i + j] =
                mod_add(c[i + j], mod_mult(static_cast<uint32_t>(a[i]), static_cast<uint32_t>(b[j]), modulus),
                        modulus);
    return c;
}
Dense product(const Dense& a, const Dense& b) {
    Dense c(a.size() + b.size() - 1, -1);
    dense_mult(a.data(), static_cast<int32_t>(a.size()), b.data(), static_cast<int32_t>(b.size()), c.data());
    return c;
}
int32_t degree(const Dense& x) { return dense_degree(x.data(), static_cast<int32_t>(x.size()) - 1); }
void trim(Dense& x) { x.resize(static_cast<size_t>(degree(x) + 1)); }
int32_t size(const Dense& x) { return static_cast<int32_t>(x.size()); }
}  // namespace

PROPERTY(dense_products_of_all_small_sizes, 14) {
    const Ring& r = ring_of_round(round);
    for (int32_t an = 1; an <= 40; an++)
        for (int32_t bn = 1; bn <= an; bn += 1 + an / 8) {
            Dense a = random_dense(rng, an), b = random_dense(rng, bn);
            ASSERT_EQ(product(a, b), plain_product(a, b)) << r.name << " " << an << " " << bn;
            ASSERT_EQ(product(b, a), plain_product(a, b)) << r.name << " " << bn << " " << an;
        }
    use_integers();
}

PROPERTY(dense_products_of_random_sizes, 140) {
    const Ring& r = ring_of_round(round);
    int32_t an = random_int(rng, 1, 900), bn = random_int(rng, 1, random_int(rng, 1, 900));
    Dense a = random_dense(rng, an), b = random_dense(rng, bn);
    ASSERT_EQ(product(a, b), plain_product(a, b)) << r.name << " " << an << " " << bn;
    ASSERT_EQ(product(a, a), plain_product(a, a)) << r.name << " " << an;
    use_integers();
}

// Too big for the double loop: the value at a point of both sides, and a difference of products that must be
// 0.
PROPERTY(dense_products_of_big_sizes, 28) {
    const Ring& r = ring_of_round(round);
    int32_t an = random_int(rng, 1000, 9000), bn = random_int(rng, 300, 9000), cn = random_int(rng, 1, an);
    Dense a = random_dense(rng, an), b = random_dense(rng, bn);
    Dense whole = product(a, b);
    Dense low(a.begin(), a.begin() + cn), high(a.begin() + cn, a.end());
    Dense sum = product(low, b);
    sum.resize(whole.size(), 0);
    if (!high.empty()) {
        Dense h = product(high, b);
        for (size_t i = 0; i < h.size(); i++)
            sum[i + static_cast<size_t>(cn)] = mod_add(sum[i + static_cast<size_t>(cn)], h[i], modulus);
    }
    ASSERT_EQ(whole, sum) << r.name << " " << an << " " << bn << " " << cn;
    for (int i = 0; i < 20; i++) {  // some entries by hand
        int32_t k = random_int(rng, 0, an + bn - 2), s = 0;
        for (int32_t j = k < bn ? 0 : k - bn + 1; j <= k && j < an; j++)
            s = mod_add(s,
                        mod_mult(static_cast<uint32_t>(a[static_cast<size_t>(j)]),
                                 static_cast<uint32_t>(b[static_cast<size_t>(k - j)]), modulus),
                        modulus);
        ASSERT_EQ(whole[static_cast<size_t>(k)], s) << r.name << " " << an << " " << bn << " entry " << k;
    }
    use_integers();
}

PROPERTY(slices_are_placed_at_their_exponents, 140) {
    ring_of_round(round);
    Dense a = random_with_unit_lead(rng, random_int(rng, 1, 200)),
          b = random_with_unit_lead(rng, random_int(rng, 1, 200));
    int32_t xa = random_int(rng, 0, size(a) - 1), ya = random_int(rng, 0, size(b) - 1);
    Dense c(a.size() + b.size() - 1, -1), expected(c.size(), 0);
    fast_array_onevar_mult(a.data(), b.data(), c.data(), xa, size(a) - 1, ya, size(b) - 1);
    Dense p = plain_product(Dense(a.begin() + xa, a.end()), Dense(b.begin() + ya, b.end()));
    std::copy(p.begin(), p.end(), expected.begin() + xa + ya);
    EXPECT_EQ(c, expected);
    Dense s(c.size(), 0);
    onevar_mult(a.data(), b.data(), s.data(), xa, size(a) - 1, ya, size(b) - 1);
    EXPECT_EQ(s, expected);
    use_integers();
}

PROPERTY(division_gives_quotient_and_remainder, 280) {
    const Ring& r = ring_of_round(round);
    int32_t limit = round % 10 == 0 ? 3000 : 150;
    Dense n = random_dense(rng, random_int(rng, 1, limit)),
          m = random_with_unit_lead(rng, random_int(rng, 1, limit));
    Dense rest = n, q(n.size() >= m.size() ? n.size() - m.size() + 1 : 0, -1);
    int32_t rest_degree = size(n) - 1, q_degree = -5;
    boolean zero = 0;
    onevar_array_div_mod(rest.data(), m.data(), q.data(), &rest_degree, size(m) - 1, &q_degree, &zero);
    Dense only = n;
    int32_t only_degree = size(n) - 1;
    boolean only_zero = 0;
    onevar_array_mod(only.data(), m.data(), &only_degree, size(m) - 1, &only_zero);
    EXPECT_EQ(only_degree, rest_degree);
    EXPECT_EQ(zero, rest_degree < 0);
    EXPECT_EQ(only_zero, zero);
    ASSERT_EQ(rest, only);
    if (n.size() >= m.size()) {
        EXPECT_LT(rest_degree, size(m) - 1);
        EXPECT_EQ(q_degree, degree(q));
        Dense back = product(q, m);
        ASSERT_EQ(back.size(), n.size());
        int32_t d = 0;
        onevar_add(back.data(), rest.data(), back.data(), 0, size(back) - 1, 0, rest_degree, &d);
        ASSERT_EQ(back, n) << r.name;
        EXPECT_EQ(d, degree(n));
    } else {
        EXPECT_EQ(q_degree, -1);
        EXPECT_EQ(rest, n);
    }
    use_integers();
}

PROPERTY(gcd_of_multiples_of_a_common_factor, 210) {
    const Ring& r = ring_of_round(round);
    int32_t limit = round % 20 == 0 ? 1500 : 120;
    Dense g = random_with_unit_lead(rng, random_int(rng, 1, limit));
    Dense x = product(random_with_unit_lead(rng, random_int(rng, 1, limit)), g),
          y = product(random_with_unit_lead(rng, random_int(rng, 1, limit)), g);
    Dense x_used = x, y_used = y;
    int32_t* result = nullptr;
    int32_t d = -5;
    bool done = dense_gcd(x_used.data(), size(x) - 1, y_used.data(), size(y) - 1, &result, &d);
    EXPECT_TRUE(done || !is_field(r)) << r.name;
    if (!done) return use_integers();
    ASSERT_GE(d, size(g) - 1);
    EXPECT_EQ(result[d], 1);
    Dense h(result, result + d + 1);
    for (const Dense* n :
         std::initializer_list<const Dense*>{&x, &y, &h}) {  // h divides x and y; g divides h
        Dense rest = *n;
        const Dense& by = n == &h ? g : h;
        int32_t rest_degree = size(rest) - 1;
        boolean zero = 0;
        onevar_array_mod(rest.data(), by.data(), &rest_degree, size(by) - 1, &zero);
        ASSERT_TRUE(zero) << r.name;
    }
    use_integers();
}

namespace {
std::vector<uint32_t> entries(const Dense& x, size_t room) {
    std::vector<uint32_t> r(x.begin(), x.end());
    r.resize(room, 77);
    return r;
}
struct HalfGcd {
    std::vector<uint32_t> x, y, room[4];
    DensePoly a, b;
    CofactorMatrix matrix;
    HalfGcd(const Dense& u, const Dense& v) : x(entries(u, u.size())), y(entries(v, v.size())) {
        a = {x.data(), size(u) - 1};
        b = {y.data(), size(v) - 1};
        for (size_t i = 0; i < 4; i++) {
            room[i].resize(u.size() / 2 + 2);
            matrix.entry[i / 2][i % 2] = {room[i].data(), -1};
        }
    }
};
Dense of(const DensePoly& p) { return Dense(p.c, p.c + p.degree + 1); }
}  // namespace

// The pair and the matrix of the fast half-gcd against those of the plain Euclid, and M (x, y) = the pair.
PROPERTY(half_gcd_matrices_are_those_of_euclid, 112) {
    const Ring& r = ring_of_round(round);
    if (!is_field(r)) return use_integers();
    WordField f = word_field_ring();
    int32_t n = random_int(rng, 2, round % 4 == 0 ? 3000 : 500);
    Dense u = random_with_unit_lead(rng, n), v = random_with_unit_lead(rng, random_int(rng, n / 2, n));
    if (round % 3 == 0) {  // a common factor: the sequence ends early
        Dense g = random_with_unit_lead(rng, random_int(rng, 1, n));
        u = product(u, g), v = product(v, g);
    }
    HalfGcd fast(u, v), plain(u, v), whole(u, v);
    ASSERT_TRUE(parthg(f, &fast.a, &fast.b, &fast.matrix));
    ASSERT_TRUE(euclid_onevar(f, &plain.a, &plain.b, (size(u) - 1) / 2, &plain.matrix));
    ASSERT_TRUE(fullhg(f, &whole.a, &whole.b));
    ASSERT_EQ(of(fast.a), of(plain.a)) << r.name;
    ASSERT_EQ(of(fast.b), of(plain.b)) << r.name;
    ASSERT_EQ(of(whole.a), of(plain.a)) << r.name;
    ASSERT_EQ(of(whole.b), of(plain.b)) << r.name;
    EXPECT_GT(fast.a.degree, (size(u) - 1) / 2 - (size(u) == 1));
    EXPECT_LE(fast.b.degree, (size(u) - 1) / 2);
    for (int i = 0; i < 2; i++) {
        Dense sum(u.size() + u.size(), 0);
        for (int j = 0; j < 2; j++) {
            Dense e = of(fast.matrix.entry[i][j]);
            ASSERT_EQ(e, of(plain.matrix.entry[i][j])) << r.name;
            if (e.empty()) continue;
            Dense t = product(e, j == 0 ? u : v);
            for (size_t k = 0; k < t.size(); k++) sum[k] = mod_add(sum[k], t[k], modulus);
        }
        trim(sum);
        ASSERT_EQ(sum, of(i == 0 ? fast.a : fast.b)) << r.name;
    }
    use_integers();
}

// Long operands with a known common factor, through the half-gcd.
PROPERTY(long_gcds, 28) {
    const Ring& r = ring_of_round(round);
    if (!is_field(r)) return use_integers();
    Dense g = random_with_unit_lead(rng, random_int(rng, 1, 1500));
    Dense x = product(random_with_unit_lead(rng, random_int(rng, 1000, 2500)), g),
          y = product(random_with_unit_lead(rng, random_int(rng, 100, 2500)), g);
    WordField f = word_field_ring();
    std::vector<uint32_t> a(x.begin(), x.end()), b(y.begin(), y.end()), a2 = a, b2 = b, a3 = a, b3 = b;
    uint32_t* fast = nullptr;
    int32_t degree_fast = -5;
    ASSERT_TRUE(wf_dense_gcd(f, a.data(), size(x) - 1, b.data(), size(y) - 1, &fast, &degree_fast));
    DensePoly plain = {}, by_halves = {};
    ASSERT_TRUE(hgcd(f, {a3.data(), size(x) - 1}, {b3.data(), size(y) - 1}, round % 2 * 300, &by_halves));
    ASSERT_TRUE(simple_onevar_gcd(f, {a2.data(), size(x) - 1}, {b2.data(), size(y) - 1}, &plain));
    ASSERT_EQ(by_halves.degree, plain.degree) << r.name;
    row_scale(f, by_halves.c, plain.degree + 1, unit_inverse(f, by_halves.c[plain.degree]));
    row_scale(f, plain.c, plain.degree + 1, unit_inverse(f, plain.c[plain.degree]));
    ASSERT_EQ(degree_fast, plain.degree) << r.name;
    ASSERT_TRUE(std::equal(fast, fast + degree_fast + 1, plain.c)) << r.name;
    ASSERT_TRUE(std::equal(fast, fast + degree_fast + 1, by_halves.c)) << r.name;
    use_integers();
}

PROPERTY(arrays_and_sparse_forms, 140) {
    ring_of_round(round);
    Dense x = random_dense(rng, random_int(rng, 1, 60));
    trim(x);
    poly p = nullptr;
    array_to_poly(x.data(), size(x) - 1, &p);
    EXPECT_TRUE(poly_check(p, 1));
    Dense back(x.empty() ? 1 : x.size(), -1);
    fill_poly_array(p, back.data());
    if (x.empty()) x.push_back(0);
    EXPECT_EQ(back, x);
    free_poly(&p);
    use_integers();
}

PROPERTY(sums_and_differences_of_slices, 140) {
    ring_of_round(round);
    Dense a = random_dense(rng, random_int(rng, 1, 40)), b = random_dense(rng, random_int(rng, 1, 40));
    int32_t xa = random_int(rng, 0, size(a) - 1), ya = random_int(rng, 0, size(b) - 1);
    int32_t xb = random_int(rng, xa - 1, size(a) - 1), yb = random_int(rng, ya - 1, size(b) - 1);
    size_t n = static_cast<size_t>(xb - xa > yb - ya ? xb - xa + 1 : yb - ya + 1);
    Dense sum(n, 0), difference(n, 0);
    for (size_t i = 0; i < n; i++) {
        int32_t u = xa + static_cast<int32_t>(i) <= xb ? a[static_cast<size_t>(xa) + i] : 0;
        int32_t v = ya + static_cast<int32_t>(i) <= yb ? b[static_cast<size_t>(ya) + i] : 0;
        sum[i] = mod_add(u, v, modulus);
        difference[i] = mod_sub(u, v, modulus);
    }
    Dense c(n, -1);
    int32_t d = -5;
    onevar_add(a.data(), b.data(), c.data(), xa, xb, ya, yb, &d);
    EXPECT_EQ(c, sum);
    EXPECT_EQ(d, degree(sum));
    onevar_sub(a.data(), b.data(), c.data(), xa, xb, ya, yb, &d);
    EXPECT_EQ(c, difference);
    EXPECT_EQ(d, degree(difference));
    use_integers();
}
}  // namespace tolvex::test
