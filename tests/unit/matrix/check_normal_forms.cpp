// Hermite and Smith forms: their shape, their transformations, dense and sparse, by steps and by engines; the
// arithmetic modulo large numbers under them.
#include "matrix/big_ring.h"
#include "matrix/cyclic_lattice.h"
#include "matrix/hermite.h"
#include "matrix/hermite_modular.h"
#include "matrix/int_determinant.h"
#include "matrix/int_solve.h"
#include "matrix/rank_profile.h"
#include "matrix/smith.h"
#include "numbers/num_compare.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/reduction_support.h"
using namespace tolvex;
using namespace tolvex::test;

namespace {
constexpr bool k_all[k_aux_matrices] = {true, true, true, true}, k_none[k_aux_matrices] = {};

/// Small entries; every fourth time of low rank, every fourth time with common factors.
std::vector<int32_t> random_integers(Rng& rng, int32_t rows, int32_t cols) {
    std::vector<int32_t> a(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    auto word = [&](int32_t most) {
        return static_cast<int32_t>(rng() % (2 * static_cast<uint32_t>(most) + 1)) - most;
    };
    switch (rng() % 4) {
    case 0: {
        int32_t rank = static_cast<int32_t>(rng() % static_cast<uint32_t>(std::min(rows, cols))) + 1;
        std::vector<int32_t> x(static_cast<size_t>(rows * rank)), y(static_cast<size_t>(rank * cols));
        for (int32_t& e : x) e = word(3);
        for (int32_t& e : y) e = word(3);
        for (int32_t r = 0; r < rows; r++)
            for (int32_t c = 0; c < cols; c++)
                for (int32_t k = 0; k < rank; k++) a[r * cols + c] += x[r * rank + k] * y[k * cols + c];
        break;
    }
    case 1:
        for (int32_t& e : a) e = 6 * word(4);
        break;
    default:
        for (int32_t& e : a) e = rng() % 4 == 0 ? 0 : word(9);
    }
    return a;
}

LineMatrix matrix_of(const std::vector<int32_t>& a, int32_t rows, int32_t cols, bool sparse) {
    LineMatrix m = sparse ? new_sparse_matrix(rows, cols) : new_dense_matrix(rows, cols);
    for (int32_t r = 0; r < rows; r++)
        for (int32_t c = 0; c < cols; c++)
            if (a[r * cols + c] != 0) set_matrix_element(m, r, c, number_value(a[r * cols + c]));
    return m;
}

/// Elements of the forms here are compared as numbers.
bool less(const quolynode* a, const quolynode* b) { return bigger(b->ncoef, a->ncoef); }

void expect_hermite(const Reduction& r) {
    for (int32_t i = 0; i < r.m.rows; i++)
        for (int32_t c = 0; c < r.m.cols; c++) {
            const quolynode* x = matrix_element(r.m, i, c);
            if (c >= r.rank || (i < r.rank && c > i)) {
                EXPECT_TRUE(quoly_iszero(x)) << i << " " << c;
            }
            if (i >= r.rank || c > i || c >= r.rank) continue;
            const quolynode* pivot = matrix_element(r.m, i, i);
            EXPECT_TRUE(c == i ? less(quol_num_0, x) : !less(x, quol_num_0) && less(x, pivot))
                << i << " " << c;
        }
}

/// A residue as it stands, in a buffer with zeros above.
std::vector<limb> random_limbs(Rng& rng, int64_t n) {
    std::vector<limb> a(static_cast<size_t>(n));
    for (limb& x : a) x = rng() % 5 == 0 ? 0 : rng() % 5 == 0 ? ~limb{0} : rng() * (rng() | 1);
    if (a.back() == 0) a.back() = rng() % 2 == 0 ? 1 : ~limb{0};
    return a;
}

IntGrid random_grid(Rng& rng, int32_t rows, int32_t cols) {
    LineMatrix m = matrix_of(random_integers(rng, rows, cols), rows, cols, false);
    IntGrid g = grid_of(m);
    drop_matrix(&m);
    return g;
}
bool equal(const IntEntry& a, const IntEntry& b) {
    return limbs_compare(a.at, a.n, b.at, b.n) == 0 && (a.n == 0 || a.negative == b.negative);
}
void expect_equal_grids(const IntGrid& a, const IntGrid& b) {
    ASSERT_TRUE(a.rows == b.rows && a.cols == b.cols);
    for (int64_t k = 0; k < int64_t{a.rows} * a.cols; k++)
        EXPECT_TRUE(equal(a.at[k], b.at[k])) << "entry " << k;
}
}  // namespace

PROPERTY(products_modulo_large_numbers, 300) {
    ScratchMark mark = scratch_mark();
    auto n = static_cast<int64_t>(rng() % 6) + 1;
    std::vector<limb> m = random_limbs(rng, n);
    if (rng() % 8 == 0) std::fill(m.begin(), m.end() - 1, 0), m.back() = 1;  // a power of 2^64
    if (n == 1 && m[0] < 2) m[0] = 2;
    BigRing g = big_ring(m.data(), n);
    auto size = static_cast<size_t>(n);
    std::vector<limb> a(size), b(size), sum(size), expected(2 * size + 1);
    for (std::vector<limb>* x : {&a, &b, &sum}) {
        std::vector<limb> raw = random_limbs(rng, n + 2);
        ring_reduce(g, x->data(), raw.data(), n + 2, rng() % 2 == 0);
        EXPECT_LT(limbs_compare(x->data(), limbs_trim(x->data(), n), m.data(), n), 0);
    }
    limbs_mul(expected.data(), a.data(), n, b.data(), n);
    expected[2 * size] = limbs_add(expected.data(), expected.data(), 2 * n, sum.data(), n);
    limbs_divrem(nullptr, expected.data(), 2 * n + 1, m.data(), n);
    expected.resize(size);
    ring_addmul(g, sum.data(), a.data(), b.data());
    EXPECT_EQ(sum, expected);
    std::vector<limb> common(size), inverse(size), one(size, 0);
    one[0] = 1;
    int64_t common_n = gcd_of_limbs(common.data(), a.data(), n, m.data(), n);
    if (common_n == 1 && common[0] == 1) {
        inverse_of_limbs(inverse.data(), a.data(), m.data(), n);
        ring_mul(g, inverse.data(), inverse.data(), a.data());
        EXPECT_EQ(inverse, one);
    }
    scratch_release(mark);
}

PROPERTY(rank_carrying_minors, 60) {
    set_up_matrices();
    use_integers();
    ScratchMark mark = scratch_mark();
    int32_t rows = static_cast<int32_t>(rng() % 7) + 1, cols = static_cast<int32_t>(rng() % 7) + 1;
    IntGrid g = random_grid(rng, rows, cols);
    RankProfile p = rank_profile(g);
    if (p.rank > 0) {
        EXPECT_GT(entry_determinant(grid_part(g, p.row, p.rank, p.column, p.rank).at, p.rank).n, 0);
    }
    for (int32_t r = p.rank; r < rows && p.rank < cols; r++) {  // one more row and column: singular
        std::vector<int32_t> line(p.row, p.row + p.rank), column(p.column, p.column + p.rank + 1);
        line.push_back(p.row[r]);
        IntGrid minor = grid_part(g, line.data(), p.rank + 1, column.data(), p.rank + 1);
        EXPECT_EQ(entry_determinant(minor.at, p.rank + 1).n, 0);
    }
    scratch_release(mark);
}

PROPERTY(systems_with_integer_solutions, 40) {
    set_up_matrices();
    use_integers();
    ScratchMark mark = scratch_mark();
    int32_t n = static_cast<int32_t>(rng() % 6) + 1, cols = static_cast<int32_t>(rng() % 4) + 1;
    IntGrid m = random_grid(rng, n, n), x = random_grid(rng, n, cols);
    IntEntry det = entry_determinant(m.at, n);
    if (det.n != 0) expect_equal_grids(solve_integers(m, grid_product(m, x), {det.at, det.n, false}), x);
    for (int32_t r = 0; r < n; r++) {
        for (int32_t c = r; c < n; c++) m(r, c) = k_entry_zero;
        m(r, r) = word_entry(static_cast<uint32_t>(rng() % 9) + 1);
    }
    expect_equal_grids(solve_lower(m, grid_product(m, x)), x);
    scratch_release(mark);
}

using Reduce = void (*)(Reduction*, const ReductionOptions*);
/// A random matrix, reduced with all matrices of operations.
struct Reduced {
    Reduction r;
    Values start, end;
};
/// The same matrix comes to the same form without them, the other way.
Reduced reduce_two_ways(Rng& rng, int32_t rows, int32_t cols, Reduce way, Reduce other) {
    std::vector<int32_t> a = random_integers(rng, rows, cols);
    Reduced t = {};
    Reduction bare = {};
    t.r.m = matrix_of(a, rows, cols, rng() % 3 == 0);
    bare.m = matrix_of(a, rows, cols, rng() % 3 == 0);
    t.start = values_of(t.r.m);
    ReductionOptions options = {};
    begin_reduction(&t.r, k_all);
    way(&t.r, &options);
    expect_invariant(t.r, t.start);
    begin_reduction(&bare, k_none);
    other(&bare, &options);
    EXPECT_EQ(bare.rank, t.r.rank);
    t.end = values_of(t.r.m);
    Values without = values_of(bare.m);
    expect_equal(t.end, without);
    free_values(without);
    drop_reduction(&bare);
    return t;
}
void free_reduced(Reduced& t) {
    free_values(t.start);
    free_values(t.end);
    drop_reduction(&t.r);
}

/// Small ones by pivots, larger ones by the engine.
PROPERTY(hermite_forms, 60) {
    set_up_matrices();
    use_integers();
    auto side = [&] { return static_cast<int32_t>(rng() % (round % 4 == 0 ? 16 : 7)) + 1; };
    int32_t rows = side(), cols = side();
    Reduced t = reduce_two_ways(rng, rows, cols, intcolred, intcolred);
    expect_hermite(t.r);
    free_reduced(t);
}

/// The engine gives the form that the steps give when the rows come in the same order.
PROPERTY(both_ways_to_hermite_forms, 40) {
    set_up_matrices();
    use_integers();
    ScratchMark mark = scratch_mark();
    int32_t n = static_cast<int32_t>(rng() % 6) + 1;
    std::vector<int32_t> a = random_integers(rng, n, n);
    Reduction r = {};
    r.m = matrix_of(a, n, n, false);
    IntGrid g = grid_of(r.m);
    begin_reduction(&r, k_all);
    ReductionOptions options = {};
    intcolred(&r, &options);
    IntGrid h = grid_of(r.m), ordered = grid_product(grid_of(r.aux[k_alpha]), g);
    IntEntry det = entry_determinant(ordered.at, n);
    if (det.n != 0) {
        limb factor = rng() % 50 + 1;  // any multiple of the determinant will do
        IntEntry d = entry_product({det.at, det.n, false}, {&factor, 1, false});
        expect_equal_grids(modular_hermite(ordered, d), h);
        CyclicLattice l = cyclic_lattice(ordered);
        EXPECT_TRUE(equal(l.index, {det.at, det.n, false}));
        if (l.cyclic && entry_bits(l.index) > 1) expect_equal_grids(cyclic_hermite(l, n), h);
    }
    drop_reduction(&r);
    scratch_release(mark);
}

PROPERTY(smith_forms, 60) {
    set_up_matrices();
    use_integers();
    auto side = [&] { return static_cast<int32_t>(rng() % (round % 4 == 0 ? 14 : 6)) + 1; };
    int32_t rows = side(), cols = side();
    Reduced t = reduce_two_ways(rng, rows, cols, intnormal, rng() % 2 == 0 ? intnormal : modular_smith);
    for (int32_t k = 0; k < rows * cols; k++) {
        bool on_diagonal = k % rows == k / rows && k / rows < t.r.rank;
        EXPECT_EQ(less(quol_num_0, t.end[static_cast<size_t>(k)]), on_diagonal);
        EXPECT_EQ(quoly_iszero(t.end[static_cast<size_t>(k)]) != 0, !on_diagonal);
    }
    free_reduced(t);
}
