// Determinants: of words against plain elimination, of numbers against products of known ones, of functions
// by expansion against elimination and against values at points.
#include "matrix/bareiss.h"
#include "matrix/determinant.h"
#include "matrix/minors.h"
#include "matrix/word_determinant.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
using Words = std::vector<uint32_t>;

/// Elimination by the book, over a prime.
uint32_t plain_determinant(const WordField& f, Words a, int32_t n) {
    uint32_t det = 1;
    for (int32_t k = 0; k < n; k++) {
        int32_t r = k;
        while (r < n && a[r * n + k] == 0) r++;
        if (r == n) return 0;
        if (r != k) {
            for (int32_t c = 0; c < n; c++) std::swap(a[r * n + c], a[k * n + c]);
            det = wf_neg(f, det);
        }
        det = wf_mul(f, det, a[k * n + k]);
        uint32_t inverse = wf_inverse(f, a[k * n + k]);
        for (r = k + 1; r < n; r++) {
            uint32_t factor = wf_mul(f, a[r * n + k], inverse);
            for (int32_t c = k; c < n; c++)
                a[r * n + c] = wf_sub(f, a[r * n + c], wf_mul(f, factor, a[k * n + c]));
        }
    }
    return det;
}

/// Sizes around the blocks of the elimination, and small ones.
int32_t random_size(Rng& rng) {
    static const int32_t edges[] = {1,  2,  3,  4,  5,  7,  8,  9,   31,  32,
                                    33, 63, 64, 65, 66, 72, 96, 127, 128, 130};
    return edges[rng() % std::size(edges)];
}

Words random_words(Rng& rng, int32_t n, uint32_t p) {
    Words a(static_cast<size_t>(n) * static_cast<size_t>(n));
    bool sparse = rng() % 4 == 0;
    for (uint32_t& x : a) x = sparse && rng() % 3 != 0 ? 0 : static_cast<uint32_t>(rng() % p);
    if (n > 1 && rng() % 8 == 0) std::copy_n(a.begin() + n, n, a.begin());  // singular
    return a;
}

quoly determinant_of(const Values& a, int32_t n) {
    quoly det = nullptr;
    dense_determinant(a.data(), n, &det);
    return det;
}
/// a b, by columns.
Values product_of(const Values& a, const Values& b, int32_t n) {
    return elements(n, [&](int32_t k) {
        quoly sum = number_value(0);
        for (int32_t i = 0; i < n; i++) {
            quoly term = nullptr;
            quoly_mult(a[k % n + i * n], b[i + k / n * n], &term);
            best_quoly_add(&sum, term);
        }
        return sum;
    });
}
/// Checks det(a b) = det a det b, and gives all back.
void expect_multiplicative(Values a, Values b, int32_t n) {
    Values ab = product_of(a, b, n);
    quoly x = determinant_of(a, n), y = determinant_of(b, n), z = determinant_of(ab, n);
    fast_quoly_mult(&x, y);
    EXPECT_TRUE(quoly_equal(x, z));
    for (quoly* q : {&x, &y, &z}) free_quoly(q);
    free_values(a);
    free_values(b);
    free_values(ab);
}
}  // namespace

PROPERTY(words_modulo_primes, 120) {
    static const uint32_t primes[] = {2, 3, 5, 101, 32003, 8388593, 8388617, 16777259, 2147483629};
    uint32_t p = primes[rng() % std::size(primes)];
    WordField f = word_field_prime(p);
    int32_t n = random_size(rng);
    Words a = random_words(rng, n, p);
    uint32_t expected = plain_determinant(f, a, n);
    EXPECT_EQ(word_determinant(f, a.data(), n), expected) << "n " << n << " p " << p;
}

PROPERTY(words_modulo_composite_numbers, 60) {
    static const uint32_t factors[][2] = {{2, 3},       {3, 5},          {7, 11},
                                          {101, 32003}, {2, 1073741789}, {46309, 46337}};
    const uint32_t* pq = factors[rng() % std::size(factors)];
    uint32_t m = pq[0] * pq[1];
    int32_t n = static_cast<int32_t>(rng() % 9) + 1;
    Words a = random_words(rng, n, m), copy = a;
    uint32_t det = euclid_determinant(m, copy.data(), n);
    EXPECT_LT(det, m);
    for (int i = 0; i < 2; i++) {
        WordField f = word_field_prime(pq[i]);
        Words image = a;
        for (uint32_t& x : image) x %= pq[i];
        EXPECT_EQ(det % pq[i], plain_determinant(f, image, n)) << "n " << n << " m " << m;
    }
}

PROPERTY(numbers_in_every_ring, 80) {
    set_up_matrices();
    const Ring& ring = all_rings[round % all_ring_count];
    use_ring(ring);
    int32_t n = static_cast<int32_t>(rng() % 8) + 1;
    Coefs style = rng() % 2 == 0 ? Coefs::digit : Coefs::huge;
    auto number_element = [&](int32_t) { return value_of_poly(random_poly(rng, 0, 1, 0, style)); };
    expect_multiplicative(elements(n, number_element), elements(n, number_element), n);
    use_integers();
}

PROPERTY(rational_numbers, 30) {
    set_up_matrices();
    use_integers();
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    auto fraction = [&](int32_t) {
        quoly top = number_value(static_cast<int32_t>(rng() % 41) - 20),
              below = number_value(static_cast<int32_t>(rng() % 30) + 1);
        fast_quoly_quot(&top, below, false);
        free_quoly(&below);
        return top;
    };
    expect_multiplicative(elements(n, fraction), elements(n, fraction), n);
}

PROPERTY(polynomials_in_every_ring, 60) {
    set_up_matrices();
    use_variables(2);
    const Ring& ring = all_rings[round % all_ring_count];
    use_ring(ring);
    int32_t n = static_cast<int32_t>(rng() % 4) + 1;
    auto polynomial = [&](int32_t) { return value_of_poly(random_poly(rng, 2, 3, 2)); };
    expect_multiplicative(elements(n, polynomial), elements(n, polynomial), n);
    use_variables(0);
    use_integers();
}

PROPERTY(minors_agree_with_elimination, 40) {
    set_up_matrices();
    use_variables(2);
    use_ring(rng() % 2 == 0 ? 0 : 32003);
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    Values a = elements(n, [&](int32_t) {
        return rng() % 3 == 0 ? number_value(0) : value_of_poly(random_poly(rng, 2, 3, 2));
    });
    quoly expanded = nullptr, eliminated = nullptr, finished = nullptr;
    small_determ(a.data(), n, n, &expanded);
    Values b = elements(n, [&](int32_t k) {
        quoly q = nullptr;
        quoly_assign(a[k], &q);
        return q;
    });
    Values c = elements(n, [&](int32_t k) {
        quoly q = nullptr;
        quoly_assign(a[k], &q);
        return q;
    });
    bareiss_determinant(b.data(), n, 0, &eliminated);
    bareiss_determinant(c.data(), n, 3, &finished);
    EXPECT_TRUE(quoly_equal(expanded, eliminated));
    EXPECT_TRUE(quoly_equal(expanded, finished));
    for (quoly* q : {&expanded, &eliminated, &finished}) free_quoly(q);
    free_values(a);
    free_values(b);
    free_values(c);
    use_variables(0);
    use_integers();
}

PROPERTY(rational_functions, 20) {
    set_up_matrices();
    use_variables(2);
    use_ring(rng() % 2 == 0 ? 0 : 101);
    int32_t n = static_cast<int32_t>(rng() % 3) + 1;
    auto fraction = [&](int32_t) {
        quoly top = value_of_poly(random_poly(rng, 1, 3, 2)),
              below = value_of_poly(random_nonzero_poly(rng, 1, 2, 2));
        fast_quoly_quot(&top, below, false);
        free_quoly(&below);
        return top;
    };
    expect_multiplicative(elements(n, fraction), elements(n, fraction), n);
    use_variables(0);
    use_integers();
}

TEST(Determinant, ModuliAboveTheMinorsAreLifted) {
    set_up_matrices();
    use_variables(2);
    use_ring(6);
    constexpr int32_t n = 9;
    Rng rng(run_seed());
    auto polynomial = [&](int32_t) { return value_of_poly(random_poly(rng, 1, 2, 1)); };
    expect_multiplicative(elements(n, polynomial), elements(n, polynomial), n);
    use_variables(0);
    use_integers();
}
