// Determinants by values at points: against elimination in every ring, with divisors, roots and promises; the
// lattice, the assignment of degrees and the determinants side by side each against the plain way.
#include "matrix/assignment.h"
#include "matrix/bareiss.h"
#include "matrix/interpolated.h"
#include "matrix/interpolation.h"
#include "matrix/lane_determinant.h"
#include "matrix/lattice.h"
#include "matrix/word_determinant.h"
#include "numbers/number_modes.h"
#include "poly/poly_modes.h"
#include "quoly/quoly_mult.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/matrix_support.h"

#include <algorithm>
#include <numeric>
using namespace tolvex;
using namespace tolvex::test;

namespace {
quoly eliminated(const Values& a, int32_t n) {
    Values b = copy_of(a);
    quoly det = nullptr;
    bareiss_determinant(b.data(), n, 0, &det);
    free_values(b);
    return det;
}
constexpr InterpolationPlan k_plain = {nullptr, -1, -1, 1, 0, false, false, nullptr};

bool has_function(const Values& a) {
    return std::any_of(a.begin(), a.end(), [](const quolynode* q) { return !q->numb; });
}
/// Entries of which some are 0; one of them is no number.
Values random_matrix(Rng& rng, int32_t n, const Shape& shape) {
    for (;;) {
        Values a = elements(n, [&](int32_t) {
            return rng() % 4 == 0 ? number_value(0) : value_of_poly(random_poly(rng, shape));
        });
        if (has_function(a)) return a;
        free_values(a);
    }
}
}  // namespace

PROPERTY(interpolation_in_every_ring, 150) {
    set_up_matrices();
    const Ring& ring = all_rings[round % all_ring_count];
    use_variables(4);
    use_ring(ring);
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    Shape shape = {static_cast<int32_t>(rng() % 4) + 1, 4, n > 4 ? 2 : 4,
                   rng() % 3 == 0 ? Coefs::huge : Coefs::small};
    Values a = random_matrix(rng, n, shape);
    quoly x = number_value(5);
    Interpolated outcome = interpolate_determinant(a.data(), n, k_plain, &x);
    bool composite = ring.modulus != 0 && !ring.table_field && !mod_is_prime;
    if (outcome == Interpolated::done && !composite) {
        quoly y = eliminated(a, n);
        EXPECT_TRUE(quoly_equal(x, y)) << ring.name << " n " << n;
        free_quoly(&y);
    }
    if (ring.modulus == 0 || ring.modulus > 200) {
        EXPECT_EQ(outcome, Interpolated::done) << ring.name;
    }
    free_quoly(&x);
    free_values(a);
    use_variables(0);
    use_integers();
}

PROPERTY(interpolation_with_negative_exponents, 30) {
    set_up_matrices();
    use_variables(2);
    use_ring(rng() % 2 == 0 ? 0 : 32003);
    laurent = 1;
    Shape shape = {2, 3, 2, Coefs::small, -3};
    int32_t n = static_cast<int32_t>(rng() % 3) + 2;
    Values a = random_matrix(rng, n, shape);
    quoly x = nullptr, y = eliminated(a, n);
    EXPECT_EQ(interpolate_determinant(a.data(), n, k_plain, &x), Interpolated::done);
    EXPECT_TRUE(quoly_equal(x, y));
    for (quoly* q : {&x, &y}) free_quoly(q);
    free_values(a);
    laurent = 0;
    use_variables(0);
    use_integers();
}

/// More rows than stand side by side, and a modulus of 31 bits.
PROPERTY(interpolation_of_many_rows, 8) {
    static const int32_t rings[] = {0, 32003, 2147483629, 0};
    set_up_matrices();
    use_variables(1);
    use_ring(rings[round % 4]);
    int32_t n = 19 + static_cast<int32_t>(rng() % 4);
    Values a = random_matrix(rng, n, {1, 2, 1, Coefs::small});
    quoly x = nullptr, y = eliminated(a, n);
    EXPECT_EQ(interpolate_determinant(a.data(), n, k_plain, &x), Interpolated::done);
    EXPECT_TRUE(quoly_equal(x, y)) << n;
    for (quoly* q : {&x, &y}) free_quoly(q);
    free_values(a);
    use_variables(0);
    use_integers();
}

PROPERTY(divisors_of_determinants, 40) {
    set_up_matrices();
    use_variables(3);
    use_ring(rng() % 2 == 0 ? 0 : rng() % 2 == 0 ? 32003 : 2147483629);
    int32_t n = static_cast<int32_t>(rng() % 4) + 2;
    Values a = random_matrix(rng, n, {2, 3, 2, Coefs::small});
    poly fct = random_nonzero_poly(rng, 2, 3, 2);
    quoly divisor = value_of_poly(copy_of(fct)), whole = eliminated(a, n), other = nullptr;
    for (int32_t r = 0; r < n; r++)
        if (!quoly_iszero(a[r])) fast_quoly_mult(&a[r], divisor);  // the first column
    Err fault = {};
    DeterminantRequest request = {fct, -1, -1, -1, 0, &fault};
    bool modular = modularmode;
    bool done = modular ? mod_poly_determ(a.data(), n, request, false, &other)
                        : rat_poly_determ(a.data(), n, request, false, &other);
    ASSERT_TRUE(done);
    EXPECT_EQ(fault, Err{});
    EXPECT_TRUE(quoly_equal(other, whole));
    fast_quoly_mult(&whole, divisor);
    for (quoly* q : {&divisor, &whole, &other}) free_quoly(q);
    free_poly(&fct);
    free_values(a);
    use_variables(0);
    use_integers();
}

TEST(Interpolation, DivisorsThatDoNotDivide) {
    set_up_matrices();
    use_variables(1);
    for (int32_t ring : {0, 32003, 2147483629}) {
        use_ring(ring);
        Values a = {value_of_poly(poly_of("x")), number_value(1), number_value(1),
                    value_of_poly(poly_of("x"))};
        poly fct = poly_of("x + 2");
        Err fault = {};
        DeterminantRequest request = {fct, -1, -1, -1, 0, &fault};
        quoly det = nullptr;
        ASSERT_TRUE(ring == 0 ? rat_poly_determ(a.data(), 2, request, false, &det)
                              : mod_poly_determ(a.data(), 2, request, false, &det));
        EXPECT_EQ(fault, Err::given_factor);
        free_quoly(&det);
        free_poly(&fct);
        free_values(a);
    }
    use_variables(0);
    use_integers();
}

/// Modulo every prime 2x + 2 divides x + 1; over Z it does not.
TEST(Interpolation, ContentsOfDivisorsCount) {
    set_up_matrices();
    use_variables(1);
    use_integers();
    Values a = {value_of_poly(poly_of("x + 1")), number_value(0), number_value(0),
                value_of_poly(poly_of("x"))};
    poly fct = poly_of("2*x + 2");
    Err fault = {};
    DeterminantRequest request = {fct, -1, -1, -1, 0, &fault};
    quoly det = nullptr;
    ASSERT_TRUE(rat_poly_determ(a.data(), 2, request, false, &det));
    EXPECT_EQ(fault, Err::given_factor);
    free_quoly(&det);
    free_poly(&fct);
    free_values(a);
    use_variables(0);
}

PROPERTY(roots_of_determinants, 30) {
    set_up_matrices();
    use_variables(2);
    use_ring(rng() % 2 == 0 ? 0 : 8388587);  // 3 modulo 4, and 2 modulo 3
    bool square = rng() % 2 == 0;
    poly r = random_nonzero_poly(rng, 2, 3, 2), s = random_nonzero_poly(rng, 2, 2, 1);
    quoly x = value_of_poly(r), y = value_of_poly(s), base = nullptr, root = nullptr;
    quoly_mult(x, y, &base);
    if (square) fast_quoly_mult(&base, base);  // the root of a square's square is told by its being a square
    Values a = elements(3, [](int32_t) { return number_value(0); });
    int32_t power = square ? 2 : 3;
    for (int32_t k = 0; k < 3; k++) quoly_assign(k < power ? base : quol_num_1, &a[k * 4]);
    InterpolationPlan plan = {nullptr, -1, -1, power, 0, true, true, nullptr};
    if (has_function(a)) {
        ASSERT_EQ(interpolate_determinant(a.data(), 3, plan, &root), Interpolated::done);
        EXPECT_TRUE(quoly_equal(root, base)) << power;
    }
    for (quoly* q : {&x, &y, &base, &root}) free_quoly(q);
    free_values(a);
    use_variables(0);
    use_integers();
}

TEST(Interpolation, BrokenPromisesAreNoticed) {
    set_up_matrices();
    use_variables(1);
    use_integers();
    Values a = {value_of_poly(poly_of("x^2 + x + 1")), number_value(0), number_value(0), number_value(1)};
    quoly det = nullptr;
    InterpolationPlan cube = {nullptr, -1, -1, 3, 0, true, true, nullptr};
    EXPECT_EQ(interpolate_determinant(a.data(), 2, cube, &det), Interpolated::broken_promise);
    InterpolationPlan line = {nullptr, 1, -1, 1, 0, true, true, nullptr};
    EXPECT_EQ(interpolate_determinant(a.data(), 2, line, &det), Interpolated::broken_promise);
    DeterminantRequest request = {.degree = 1};
    ASSERT_TRUE(rat_poly_determ(a.data(), 2, request, false, &det));
    EXPECT_TRUE(quoly_equal(det, a[0]));
    free_quoly(&det);
    free_values(a);
    use_variables(0);
}

/// A row of zeros: no point is looked at.
TEST(Interpolation, ZeroByTheEntries) {
    set_up_matrices();
    use_variables(1);
    use_integers();
    Values a = {value_of_poly(poly_of("x")), number_value(0), value_of_poly(poly_of("x + 1")),
                number_value(0)};
    quoly det = number_value(7);
    EXPECT_EQ(interpolate_determinant(a.data(), 2, k_plain, &det), Interpolated::done);
    EXPECT_TRUE(quoly_iszero(det));
    EXPECT_EQ(interpolation_work(a.data(), 2, false), 0);
    free_quoly(&det);
    free_values(a);
    use_variables(0);
}

/// x^7 + x modulo 7 has eight terms' room but seven points: the way over the integers.
TEST(Interpolation, FieldsWithTooFewElements) {
    set_up_matrices();
    use_variables(1);
    use_ring(7);
    Values a = {value_of_poly(poly_of("x^9 + 3*x")), number_value(2), value_of_poly(poly_of("x + 5")),
                value_of_poly(poly_of("x^4 + 6"))};
    quoly x = nullptr, y = eliminated(a, 2);
    EXPECT_EQ(interpolate_determinant(a.data(), 2, k_plain, &x), Interpolated::done);
    EXPECT_TRUE(quoly_equal(x, y));
    for (quoly* q : {&x, &y}) free_quoly(q);
    free_values(a);
    use_variables(0);
    use_integers();
}

PROPERTY(assignments_against_all_permutations, 60) {
    set_up_matrices();
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    std::vector<int64_t> degree(static_cast<size_t>(n * n));
    for (int64_t& d : degree) d = rng() % 3 == 0 ? k_no_degree : static_cast<int64_t>(rng() % 20);
    std::vector<int32_t> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    int64_t best = k_no_degree;
    do {
        int64_t sum = 0;
        for (int32_t r = 0; r < n && sum != k_no_degree; r++) {
            int64_t d = degree[static_cast<size_t>(r * n + order[r])];
            sum = d == k_no_degree ? k_no_degree : sum + d;
        }
        best = std::max(best, sum);
    } while (std::next_permutation(order.begin(), order.end()));
    EXPECT_EQ(greatest_assignment(degree.data(), n), best);
}

PROPERTY(determinants_side_by_side, 40) {
    static const uint32_t primes[] = {2, 3, 5, 101, 32003, 8388593, 8388617, 2147483629};
    set_up_matrices();
    WordField f = word_field_prime(primes[rng() % std::size(primes)]);
    int32_t n = static_cast<int32_t>(rng() % k_most_lane_rows) + 1;
    size_t size = static_cast<size_t>(n * n);
    std::vector<double> lanes(size * k_lanes);
    std::vector<std::vector<uint32_t>> plain(k_lanes, std::vector<uint32_t>(size));
    for (int32_t l = 0; l < k_lanes; l++)
        for (size_t k = 0; k < size; k++) {
            plain[l][k] = static_cast<uint32_t>(rng() % f.p);
            lanes[k * k_lanes + static_cast<size_t>(l)] = lane_residue(f, plain[l][k]);
        }
    uint32_t det[k_lanes], zeros = lane_determinants(f, lanes.data(), n, det);
    for (int32_t l = 0; l < k_lanes; l++) {
        if ((zeros >> l) & 1) continue;
        EXPECT_EQ(det[l], word_determinant(f, plain[l].data(), n)) << "n " << n << " p " << f.p;
    }
    if (f.p > 100000) {
        EXPECT_EQ(zeros, 0u);
    }
}

/// Every coefficient comes back from the values, in fields of both kinds.
PROPERTY(lattices_give_their_coefficients, 60) {
    set_up_matrices();
    use_ring(round % 3 == 0 ? 256 : 32003, round % 3 == 0);
    WordField f = word_field_ring();
    int32_t vars = static_cast<int32_t>(rng() % 3) + 1;
    int32_t degree[3];
    for (int32_t& d : degree) d = static_cast<int32_t>(rng() % 6);
    ScratchMark mark = scratch_mark();
    Lattice l;
    ASSERT_TRUE(make_lattice(&l, degree, vars, static_cast<int64_t>(rng() % 12), 100000));
    uint32_t points[3][8];
    const uint32_t* point[3];
    for (int32_t v = 0; v < vars; v++) {
        uint32_t start = static_cast<uint32_t>(rng() % f.p);
        for (uint32_t a = 0; a < 8; a++) points[v][a] = (start + a) % f.p;
        point[v] = points[v];
    }
    std::vector<std::vector<int32_t>> exps;
    for (int32_t i = 0; i <= degree[0]; i++)
        for (int32_t j = 0; j <= (vars > 1 ? degree[1] : 0); j++)
            for (int32_t k = 0; k <= (vars > 2 ? degree[2] : 0); k++)
                if (i + j + k <= l.total) exps.push_back({i, j, k});
    ASSERT_EQ(static_cast<int64_t>(exps.size()), l.count);
    std::vector<uint32_t> coef(exps.size()), value(exps.size(), 0);
    for (uint32_t& c : coef) c = static_cast<uint32_t>(rng() % f.p);
    for (size_t at = 0; at < exps.size(); at++)
        for (size_t t = 0; t < exps.size(); t++) {
            uint32_t term = coef[t];
            for (int32_t v = 0; v < vars; v++)
                term = wf_mul(f, term,
                              wf_power(f, points[v][exps[at][static_cast<size_t>(v)]],
                                       static_cast<uint64_t>(exps[t][static_cast<size_t>(v)])));
            value[at] = wf_add(f, value[at], term);
        }
    lattice_interpolate(l, f, point, value.data());
    EXPECT_EQ(value, coef);
    scratch_release(mark);
    use_integers();
}
