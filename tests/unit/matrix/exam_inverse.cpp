// Inverses and adjoints: products with the matrix itself in every ring, adjoints against single cofactors.
#include "matrix/determinant.h"
#include "matrix/interpolated.h"
#include "matrix/inverse.h"
#include "matrix/word_adjoint.h"
#include "matrix/word_determinant.h"
#include "numbers/number_modes.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"

#include <numeric>
using namespace tolvex;
using namespace tolvex::test;

namespace {
quoly element_of_product(const Values& a, const Values& b, int32_t n, int32_t r, int32_t c) {
    quoly sum = number_value(0);
    for (int32_t i = 0; i < n; i++) {
        quoly term = nullptr;
        quoly_mult(a[r + i * n], b[i + c * n], &term);
        best_quoly_add(&sum, term);
    }
    return sum;
}
/// a b = value times the identity.
void expect_multiple_of_identity(const Values& a, const Values& b, int32_t n, const quolynode* value) {
    for (int32_t r = 0; r < n; r++)
        for (int32_t c = 0; c < n; c++) {
            quoly q = element_of_product(a, b, n, r, c);
            EXPECT_TRUE(quoly_equal(q, r == c ? value : quol_num_0)) << r << ", " << c << " of " << n;
            free_quoly(&q);
        }
}
/// Checks inverse and adjoint of a, and gives it back.
void expect_inverse_and_adjoint(Values a, int32_t n, bool units_only) {
    quoly det = nullptr;
    dense_determinant(a.data(), n, &det);
    Values copy = copy_of(a), result(a.size(), nullptr);
    adjoint_matrix(copy.data(), result.data(), n);
    expect_multiple_of_identity(result, a, n, det);
    expect_multiple_of_identity(a, result, n, det);
    free_values(copy);
    free_values(result);
    bool unit = !quoly_iszero(det);
    if (units_only) unit = std::gcd(det->ncoef->lint, modulus) == 1;
    copy = copy_of(a);
    EXPECT_EQ(invert_matrix(copy.data(), result.data(), n), unit);
    if (unit) expect_multiple_of_identity(result, a, n, quol_num_1);
    free_values(copy);
    free_values(result);
    free_quoly(&det);
    free_values(a);
}
}  // namespace

PROPERTY(inverses_of_numbers_in_every_ring, 120) {
    set_up_matrices();
    const Ring& ring = all_rings[round % all_ring_count];
    use_ring(ring);
    int32_t n = static_cast<int32_t>(rng() % 9) + 1;
    Coefs style = rng() % 2 == 0 ? Coefs::digit : Coefs::huge;
    Values a = elements(n, [&](int32_t) { return value_of_poly(random_poly(rng, 0, 1, 0, style)); });
    if (n > 1 && rng() % 3 == 0)  // two columns are the same
        for (int32_t r = 0; r < n; r++) quoly_assign(a[r], &a[r + n]);
    expect_inverse_and_adjoint(a, n, modularmode && !finf && !mod_is_prime);
    use_integers();
}

PROPERTY(inverses_of_fractions, 30) {
    set_up_matrices();
    use_integers();
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    expect_inverse_and_adjoint(elements(n,
                                        [&](int32_t) {
                                            quoly top = number_value(static_cast<int32_t>(rng() % 41) - 20),
                                                  below = number_value(static_cast<int32_t>(rng() % 30) + 1);
                                            fast_quoly_quot(&top, below, false);
                                            free_quoly(&below);
                                            return top;
                                        }),
                               n, false);
}

PROPERTY(inverses_of_polynomials, 60) {
    set_up_matrices();
    use_variables(2);
    static const int32_t rings[] = {0, 0, 32003, 101, 7, 2147483629, 256};
    int32_t ring = rings[rng() % std::size(rings)];
    use_ring(ring, ring == 256);
    int32_t n = static_cast<int32_t>(rng() % 4) + 1;
    Values a = elements(n, [&](int32_t) {
        return rng() % 3 == 0 ? number_value(0) : value_of_poly(random_poly(rng, 2, 3, 2));
    });
    if (n > 1 && rng() % 4 == 0)
        for (int32_t r = 0; r < n; r++) quoly_assign(a[r], &a[r + n]);
    expect_inverse_and_adjoint(a, n, false);
    use_variables(0);
    use_integers();
}

PROPERTY(inverses_of_functions, 20) {
    set_up_matrices();
    use_variables(2);
    use_ring(rng() % 2 == 0 ? 0 : 101);
    int32_t n = static_cast<int32_t>(rng() % 3) + 1;
    expect_inverse_and_adjoint(elements(n,
                                        [&](int32_t) {
                                            quoly top = value_of_poly(random_poly(rng, 1, 3, 2)),
                                                  below = value_of_poly(random_nonzero_poly(rng, 1, 2, 2));
                                            fast_quoly_quot(&top, below, false);
                                            free_quoly(&below);
                                            return top;
                                        }),
                               n, false);
    use_variables(0);
    use_integers();
}

/// The elements by values at points are the cofactors one by one.
PROPERTY(adjoints_by_interpolation, 40) {
    set_up_matrices();
    use_variables(3);
    static const int32_t rings[] = {0, 32003, 2147483629, 65536};
    int32_t ring = rings[rng() % std::size(rings)];
    use_ring(ring, ring == 65536);
    int32_t n = static_cast<int32_t>(rng() % 4) + 2;
    Values a = elements(n, [&](int32_t) {
        return rng() % 4 == 0 ? number_value(0) : value_of_poly(random_poly(rng, 3, 4, 3));
    });
    a[0] = (free_quoly(&a[0]), value_of_poly(poly_of("x + 1")));
    Values result(a.size(), nullptr);
    ASSERT_TRUE(interpolate_adjoint(a.data(), n, result.data()));
    for (int32_t r = 0; r < n; r++)
        for (int32_t c = 0; c < n; c++) {
            Values minor;
            for (int32_t k = 0; k < n * n; k++)
                if (k % n != r && k / n != c) minor.push_back(a[static_cast<size_t>(k)]);
            quoly det = nullptr;
            dense_determinant(minor.data(), n - 1, &det);
            if ((r + c) % 2 != 0) quoly_inplace(det);
            EXPECT_TRUE(quoly_equal(det, result[static_cast<size_t>(c + r * n)]))
                << r << ", " << c << " of " << n;
            free_quoly(&det);
        }
    free_values(result);
    free_values(a);
    use_variables(0);
    use_integers();
}

PROPERTY(adjoints_of_words, 80) {
    set_up_matrices();
    static const uint32_t primes[] = {2, 3, 5, 101, 32003, 8388593, 8388617, 2147483629};
    WordField f = word_field_prime(primes[rng() % std::size(primes)]);
    int32_t n = static_cast<int32_t>(rng() % 140) + 1;
    if (rng() % 2 == 0) n = n % 5 + 1;
    size_t size = static_cast<size_t>(n) * static_cast<size_t>(n);
    std::vector<uint32_t> a(size), adj, product(size, 0), copy;
    for (uint32_t& x : a) x = static_cast<uint32_t>(rng() % f.p);
    for (uint32_t equal = static_cast<uint32_t>(rng() % 3); equal > 0 && n > 3; equal--)
        std::copy_n(a.begin(), n, a.begin() + static_cast<ptrdiff_t>(equal) * n);
    adj = copy = a;
    uint32_t det = word_adjoint(f, adj.data(), n);
    EXPECT_EQ(det, word_determinant(f, copy.data(), n));
    for (int32_t r = 0; r < n; r++)
        for (int32_t i = 0; i < n; i++)
            for (int32_t c = 0; c < n; c++) {
                uint32_t& at = product[static_cast<size_t>(r * n + c)];
                at = wf_add(
                    f, at, wf_mul(f, a[static_cast<size_t>(r * n + i)], adj[static_cast<size_t>(i * n + c)]));
            }
    for (int32_t k = 0; k < n * n; k++)
        ASSERT_EQ(product[static_cast<size_t>(k)], k % (n + 1) == 0 ? det : 0);
}

TEST(Inverse, SwitchedToElimination) {
    set_up_matrices();
    use_integers();
    mod_matrix_ok = 0;
    Rng rng(run_seed());
    for (int32_t n = 1; n < 6; n++)
        expect_inverse_and_adjoint(
            elements(n, [&](int32_t) { return number_value(static_cast<int32_t>(rng() % 19) - 9); }), n,
            false);
    mod_matrix_ok = 1;
}
