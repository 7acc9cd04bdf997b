// Characteristic and minimal polynomials: values at points against determinants, the polynomial at its
// matrix, powers of sequences against their recurrences, components against reachability.
#include "matrix/berkowitz.h"
#include "matrix/charpoly.h"
#include "matrix/components.h"
#include "matrix/determinant.h"
#include "matrix/minpoly.h"
#include "matrix/word_charpoly.h"
#include "matrix/word_determinant.h"
#include "matrix/word_minpoly.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
using Words = std::vector<uint32_t>;
constexpr uint32_t k_primes[] = {2, 3, 5, 101, 32003, 8388593, 67108859, 67108879, 2147483629};

Words random_square(Rng& rng, int32_t n, uint32_t p, bool sparse) {
    Words a(static_cast<size_t>(n) * static_cast<size_t>(n));
    for (uint32_t& x : a) x = sparse && rng() % 3 != 0 ? 0 : static_cast<uint32_t>(rng() % p);
    return a;
}

/// det(x - a) at x = point.
uint32_t value_at(const WordField& f, const Words& a, int32_t n, uint32_t point) {
    Words shifted = a;
    for (uint32_t& x : shifted) x = wf_neg(f, x);
    for (int32_t k = 0; k < n; k++) shifted[k * n + k] = wf_add(f, shifted[k * n + k], point);
    return word_determinant(f, shifted.data(), n);
}

struct FlatMatrix {
    std::vector<int64_t> start;
    std::vector<int32_t> column;
    Words value;
    WordMatrix view(int32_t n) const { return {{n, start.data(), column.data()}, value.data()}; }
};
FlatMatrix flat(const Words& a, int32_t n) {
    FlatMatrix m;
    for (int32_t r = 0; r < n; r++) {
        m.start.push_back(static_cast<int64_t>(m.column.size()));
        for (int32_t c = 0; c < n; c++)
            if (a[r * n + c] != 0) {
                m.column.push_back(c);
                m.value.push_back(a[r * n + c]);
            }
    }
    m.start.push_back(static_cast<int64_t>(m.column.size()));
    return m;
}

Words product(const WordField& f, const Words& a, const Words& b, int32_t n) {
    Words c(a.size(), 0);
    for (int32_t i = 0; i < n; i++)
        for (int32_t k = 0; k < n; k++)
            for (int32_t j = 0; j < n; j++)
                c[i * n + j] = wf_add(f, c[i * n + j], wf_mul(f, a[i * n + k], b[k * n + j]));
    return c;
}

/// The degree of the least relation among 1, A, A^2, ... by elimination of their flat forms.
int32_t least_relation(const WordField& f, const Words& a, int32_t n) {
    std::vector<Words> rows;
    Words power(a.size(), 0);
    for (int32_t k = 0; k < n; k++) power[k * n + k] = 1;
    for (int32_t d = 0;; d++) {
        Words x = power;
        for (const Words& row : rows) {
            size_t lead = 0;
            while (row[lead] == 0) lead++;
            uint32_t q = wf_neg(f, wf_mul(f, x[lead], wf_inverse(f, row[lead])));
            for (size_t i = 0; q != 0 && i < x.size(); i++) x[i] = wf_add(f, x[i], wf_mul(f, q, row[i]));
        }
        bool zero = true;
        for (uint32_t e : x) zero = zero && e == 0;
        if (zero) return d;
        rows.push_back(x);
        power = product(f, power, a, n);
    }
}
}  // namespace

PROPERTY(charpoly_of_words_at_points, 120) {
    uint32_t p = k_primes[rng() % std::size(k_primes)];
    WordField f = word_field_prime(p);
    int32_t n = static_cast<int32_t>(rng() % 24) + 1;
    Words a = random_square(rng, n, p, rng() % 2 == 0), c(static_cast<size_t>(n) + 1);
    word_charpoly(f, a.data(), n, c.data());
    EXPECT_EQ(c[n], 1U);
    for (int i = 0; i < 3; i++) {
        auto point = static_cast<uint32_t>(rng() % p);
        EXPECT_EQ(wf_value(f, c.data(), n, point), value_at(f, a, n, point)) << "n " << n << " p " << p;
    }
}

PROPERTY(minpoly_of_words, 60) {
    uint32_t p = k_primes[rng() % std::size(k_primes)];
    WordField f = word_field_prime(p);
    int32_t n = static_cast<int32_t>(rng() % 8) + 2;
    Words a = random_square(rng, n, p, rng() % 2 == 0), c(static_cast<size_t>(n) + 1);
    if (rng() % 3 == 0)  // like blocks
        for (int32_t r = 0; r < n; r++)
            for (int32_t k = 0; k < n; k++)
                a[r * n + k] = r / 2 == k / 2 ? static_cast<uint32_t>((r % 2 * 2 + k % 2) % p) : 0;
    FlatMatrix m = flat(a, n);
    ScratchMark mark = scratch_mark();
    int32_t d = word_minpoly(f, m.view(n), {2, -1}, c.data());
    scratch_release(mark);
    EXPECT_EQ(c[d], 1U);
    EXPECT_EQ(d, least_relation(f, a, n)) << "n " << n << " p " << p;
    Words sum(a.size(), 0);  // Horner
    for (int32_t k = d; k >= 0; k--) {
        sum = product(f, sum, a, n);
        for (int32_t i = 0; i < n; i++) sum[i * n + i] = wf_add(f, sum[i * n + i], c[k]);
    }
    EXPECT_EQ(sum, Words(a.size(), 0));
}

PROPERTY(recurrences_of_sequences, 100) {
    uint32_t p = k_primes[rng() % std::size(k_primes)];
    WordField f = word_field_prime(p);
    auto d = static_cast<int32_t>(rng() % 12);
    Words m, s;
    for (int32_t k = 0; k < d; k++) m.push_back(static_cast<uint32_t>(rng() % p));
    for (int32_t i = 0; i < 2 * d + 3; i++) {
        uint32_t next = i < d ? static_cast<uint32_t>(rng() % p) : 0;
        for (int32_t k = 0; i >= d && k < d; k++) next = wf_sub(f, next, wf_mul(f, m[k], s[i - d + k]));
        s.push_back(next);
    }
    Words c(s.size() + 1);
    auto count = static_cast<int32_t>(s.size());
    int32_t found = least_recurrence(f, s.data(), count, c.data());
    ASSERT_LE(found, d);
    EXPECT_EQ(c[found], 1U);
    for (int32_t i = 0; i + found < count; i++) {
        uint32_t sum = 0;
        for (int32_t k = 0; k <= found; k++) sum = wf_add(f, sum, wf_mul(f, c[k], s[i + k]));
        EXPECT_EQ(sum, 0U);
    }
}

PROPERTY(components_and_reachability, 100) {
    int32_t n = static_cast<int32_t>(rng() % 12) + 1;
    Words a = random_square(rng, n, 2, true);
    FlatMatrix m = flat(a, n);
    std::vector<std::vector<bool>> reach(n, std::vector<bool>(n, false));
    for (int32_t i = 0; i < n; i++)
        for (int32_t j = 0; j < n; j++) reach[i][j] = i == j || a[i * n + j] != 0;
    for (int32_t k = 0; k < n; k++)
        for (int32_t i = 0; i < n; i++)
            for (int32_t j = 0; j < n; j++)
                if (reach[i][k] && reach[k][j]) reach[i][j] = true;
    ScratchMark mark = scratch_mark();
    Components c = strong_components(m.view(n).places);
    std::vector<int32_t> component(n, -1);
    for (int32_t k = 0; k < c.count; k++)
        for (int32_t i = c.first[k]; i < c.first[k + 1]; i++) component[c.row[i]] = k;
    for (int32_t i = 0; i < n; i++)
        for (int32_t j = 0; j < n; j++) {
            EXPECT_EQ(component[i] == component[j], reach[i][j] && reach[j][i]);
            if (reach[i][j]) {
                EXPECT_GE(component[i], component[j]);
            }
        }
    scratch_release(mark);
}

/// In every ring: the characteristic polynomial at a number is the determinant there.
PROPERTY(charpoly_in_every_ring, 60) {
    set_up_matrices();
    pick_ring(round);
    int32_t n = static_cast<int32_t>(rng() % 5) + 1, level = 1;
    std::vector<quoly> a;
    for (int32_t k = 0; k < n * n; k++) {
        poly p = random_poly(rng, rng() % 2 == 0 ? 0 : 2, 3, 2, Coefs::digit);
        poly_insert_level(&p, level);
        quoly q = nullptr;
        poly_to_quoly(&p, &q);
        a.push_back(q);
    }
    quoly f = nullptr, det = nullptr, x = nullptr;
    ScratchMark mark = scratch_mark();
    characteristic_polynomial(dense_entries(a.data(), n), level, &f);
    scratch_release(mark);
    poly variable = nullptr;
    base_poly(&variable, level);
    poly_to_quoly(&variable, &x);
    for (int32_t k = 0; k < n * n; k++) {
        quoly_inplace(a[k]);
        if (k % (n + 1) == 0) fast_quoly_add(&a[k], x);
    }
    dense_determinant(a.data(), n, &det);
    EXPECT_TRUE(quoly_equal(f, det));
    for (quoly& q : a) free_quoly(&q);
    for (quoly* q : {&f, &det, &x}) free_quoly(q);
    use_integers();
}

/// From five rows on the values at points may be less work; the method without divisions must agree.
PROPERTY(charpoly_of_polynomials_by_two_methods, 24) {
    set_up_matrices();
    pick_ring(round);
    int32_t n = static_cast<int32_t>(rng() % 3) + 5, level = 1;
    std::vector<quoly> a;
    std::vector<poly> entry;
    for (int32_t k = 0; k < n * n; k++) {
        poly p = random_poly(rng, 1, 2, 2, Coefs::digit);
        poly_insert_level(&p, level);
        entry.push_back(nullptr);
        if (!poly_iszero(p)) poly_assign(p, &entry.back());
        a.push_back(value_of_poly(p));
    }
    quoly f = nullptr, sum = nullptr;
    ScratchMark mark = scratch_mark();
    characteristic_polynomial(dense_entries(a.data(), n), level, &f);
    scratch_release(mark);
    std::vector<poly> c(static_cast<size_t>(n) + 1);
    // element k of a stands at row k mod n: the transpose has the same polynomial
    berkowitz_charpoly(entry.data(), n, c.data());
    poly x = nullptr;
    base_poly(&x, level);
    quoly_set(0, &sum);
    for (int32_t k = n; k >= 0; k--) {  // Horner
        poly copy = nullptr;
        poly_assign(x, &copy);
        quoly variable = value_of_poly(copy);
        fast_quoly_mult(&sum, variable);
        free_quoly(&variable);
        best_quoly_add(&sum, value_of_poly(c[k]));
    }
    EXPECT_TRUE(quoly_equal(f, sum));
    free_poly(&x);
    for (poly& p : entry) free_poly(&p);
    free_values(a);
    for (quoly* q : {&f, &sum}) free_quoly(q);
    use_integers();
}
