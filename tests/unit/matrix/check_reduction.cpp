// Reductions: alpha A beta is the matrix that is left, and the inverses are inverses, after steps at random
// and after every reduction, dense and sparse, in several rings.
#include "matrix/determinant.h"
#include "matrix/fraction_free.h"
#include "matrix/pivots.h"
#include "matrix/row_reduce.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "tests/support/random_poly.h"
#include "tests/unit/matrix/reduction_support.h"

#include <climits>
using namespace tolvex;
using namespace tolvex::test;

namespace {
int32_t in_ring(int32_t n) {
    if (finf) return n < 0 ? -n : n;
    if (!modularmode) return n;
    return n < 0 ? (modulus + n % modulus) % modulus : n % modulus;
}

LineMatrix random_matrix(Rng& rng, int32_t rows, int32_t cols, bool sparse) {
    LineMatrix m = sparse ? new_sparse_matrix(rows, cols) : new_dense_matrix(rows, cols);
    uint32_t zeros = 1 + static_cast<uint32_t>(rng() % 4);
    for (int32_t r = 0; r < rows; r++)
        for (int32_t c = 0; c < cols; c++)
            if (rng() % 5 >= zeros) {
                auto value = static_cast<int32_t>(rng() % 11) - 5;
                set_matrix_element(m, r, c, number_value(in_ring(value)));
            }
    return m;
}

using Reducer = void (*)(Reduction* r, const ReductionOptions* options);
constexpr bool k_all[k_aux_matrices] = {true, true, true, true};

void random_step(Rng& rng, Reduction& r) {
    auto below = [&](int32_t n) { return static_cast<int32_t>(rng() % static_cast<uint32_t>(n)); };
    bool rows = rng() % 2 == 0;
    int32_t n = rows ? r.m.rows : r.m.cols, i = below(n), j = below(n);
    auto value = static_cast<int32_t>(rng() % 7) - 3;
    quoly f = number_value(in_ring(value));
    switch (rng() % 4) {
    case 0:
        if (i != j) (rows ? reduction_add_row : reduction_add_column)(r, i, f, j);
        break;
    case 1:
        (rows ? reduction_exchange_rows : reduction_exchange_columns)(r, i, j);
        break;
    case 2:
        if (can_be_pivot(f)) (rows ? reduction_scale_row : reduction_scale_column)(r, i, f);
        break;
    default:
        (rows ? reduction_negate_row : reduction_negate_column)(r, i);
    }
    free_quoly(&f);
}

/// The ring of a round, every ring in turn.
void enter_ring_of(int round) {
    set_up_matrices();
    use_ring(all_rings[round / 2 % all_ring_count]);
}
bool composite() { return modularmode && !finf && !mod_is_prime; }

/// m with the same elements, and the operations that are asked for.
Reduction reduction_of(const Values& start, int32_t rows, int32_t cols, bool sparse, const bool want[4]) {
    Reduction r = {};
    r.m = sparse ? new_sparse_matrix(rows, cols) : new_dense_matrix(rows, cols);
    for (int32_t k = 0; k < rows * cols; k++) {
        quoly copy = nullptr;
        quoly_assign(start[static_cast<size_t>(k)], &copy);
        set_matrix_element(r.m, k % rows, k / rows, copy);
    }
    begin_reduction(&r, want);
    return r;
}
/// Reduces; false if an error has been raised, which must be that of a pivot over a composite modulus.
bool run(Reducer reduce, Reduction* r) {
    ReductionOptions options = {INT32_MAX, nullptr, false};
    bool raised = RAISES(reduce(r, &options));
    EXPECT_TRUE(!raised || (composite() && caught.code == 85)) << caught.code << ' ' << caught.text;
    if (!raised) settle_reduction(r);
    return !raised;
}

/// The reduced matrix has the shape that its reduction promises.
void expect_form(const Reduction& r, Reducer reduce) {
    for (int32_t i = 0; i < r.m.rows; i++)
        for (int32_t c = 0; c < r.m.cols; c++) {
            bool must_be_zero = reduce == rowreduce     ? i >= r.rank || c < i
                                : reduce == colreduce   ? c >= r.rank || c > i
                                : reduce == red_row_ech ? i >= r.rank
                                                        : i != c || i >= r.rank;
            quoly e = matrix_element(r.m, i, c);
            EXPECT_TRUE(!must_be_zero || quoly_iszero(e));
            EXPECT_TRUE(reduce != normalize || must_be_zero || quoly_equal(e, quol_num_1));
        }
}
}  // namespace

PROPERTY(steps_keep_the_invariant, 200) {
    enter_ring_of(round);
    Reduction r = {};
    r.m = random_matrix(rng, 1 + static_cast<int32_t>(rng() % 5), 1 + static_cast<int32_t>(rng() % 5),
                        round % 2 == 1);
    Values start = values_of(r.m);
    begin_reduction(&r, k_all);
    for (int32_t k = 0; k < 12; k++) random_step(rng, r);
    expect_invariant(r, start);
    if (rng() % 2 == 0) {
        transpose_reduction(&r);
        for (int32_t k = 0; k < 6; k++) random_step(rng, r);
        transpose_reduction(&r);
    }
    settle_reduction(&r);
    expect_invariant(r, start);
    free_values(start);
    drop_reduction(&r);
    use_integers();
}

/// Elements of the ring, or polynomials, or quotients of them.
Values random_values(Rng& rng, int32_t count, int round) {
    uint64_t kind = composite() ? 0 : rng() % 4, zeros = 1 + rng() % 3;
    Values v;
    for (int32_t k = 0; k < count; k++) {
        quoly q = number_value(in_ring(static_cast<int32_t>(rng() % 11) - 5));
        if (rng() % 4 < zeros && round % 3 != 0) quoly_set(0, &q);
        if (kind >= 2 && !quoly_iszero(q) && rng() % 3 == 0) {
            poly p = random_nonzero_poly(rng, 2, 2, 2);
            quoly f = nullptr;
            poly_to_quoly(&p, &f);
            if (kind == 2)
                fast_quoly_mult(&q, f);
            else
                fast_quoly_quot(&q, f, 0);
            free_quoly(&f);
        }
        v.push_back(q);
    }
    return v;
}

PROPERTY(forms_and_transformations, 400) {
    enter_ring_of(round);
    use_variables(2);
    int32_t rows = random_int(rng, 1, 5), cols = random_int(rng, 1, 5), rank = -1;
    Values start = random_values(rng, rows * cols, round);
    for (Reducer reduce : {rowreduce, colreduce, red_row_ech, normalize}) {
        Reduction r = reduction_of(start, rows, cols, round % 2 == 1, k_all);
        if (run(reduce, &r)) {
            EXPECT_FALSE(r.failed);
            if (rank < 0) rank = r.rank;
            EXPECT_EQ(r.rank, rank);
            expect_form(r, reduce);
            expect_invariant(r, start);
        }
        drop_reduction(&r);
    }
    free_values(start);
    use_variables(0);
    use_integers();
}

/// The form is unique: with and without its operations, by fractions and without them.
PROPERTY(echelon_forms_are_unique, 300) {
    enter_ring_of(round);
    use_variables(2);
    constexpr bool alpha_alone[k_aux_matrices] = {true}, none[k_aux_matrices] = {};
    int32_t rows = random_int(rng, 1, 6), cols = random_int(rng, 1, 6);
    Values start = random_values(rng, rows * cols, round);
    Reduction r = reduction_of(start, rows, cols, round % 2 == 1, k_all);
    if (run(red_row_ech, &r)) {
        Values form = values_of(r.m);
        for (const bool* want : {alpha_alone, none}) {
            Reduction other = reduction_of(start, rows, cols, false, want);
            EXPECT_TRUE(run(red_row_ech, &other));
            EXPECT_EQ(other.rank, r.rank);
            Values same = values_of(other.m);
            expect_equal(same, form);
            if (want[k_alpha]) {
                Values alpha = values_of(other.aux[k_alpha]), image = product(alpha, start, rows, rows, cols);
                expect_equal(image, form);
                free_values(alpha);
                free_values(image);
            }
            free_values(same);
            drop_reduction(&other);
        }
        free_values(form);
    }
    drop_reduction(&r);
    free_values(start);
    use_variables(0);
    use_integers();
}

/// Integers from six rows on are reduced through images modulo primes if nobody asks for the operations.
PROPERTY(echelon_forms_by_images, 60) {
    constexpr int32_t k_first_prime = (1 << 30) - 35;  // modulo which pivots are looked for
    enter_ring_of(0);
    constexpr bool alpha_alone[k_aux_matrices] = {true}, none[k_aux_matrices] = {};
    int32_t rows = random_int(rng, 6, 12), cols = random_int(rng, 6, 12), rank = random_int(rng, 0, rows);
    Values left, right;
    for (int32_t k = 0; k < rows * rank; k++) left.push_back(number_value(random_int(rng, -9, 9)));
    for (int32_t k = 0; k < rank * cols; k++) right.push_back(number_value(random_int(rng, -9, 9)));
    Values start = rank > 0 ? product(left, right, rows, rank, cols) : Values();
    while (rank == 0 && static_cast<int32_t>(start.size()) < rows * cols) start.push_back(number_value(0));
    quoly prime = number_value(k_first_prime);
    for (int32_t k = 0; round % 3 == 0 && k < rows; k++)
        fast_quoly_mult(&start[static_cast<size_t>(k)], prime);
    Reduction by_steps = reduction_of(start, rows, cols, false, alpha_alone),
              by_images = reduction_of(start, rows, cols, false, none);
    EXPECT_TRUE(run(red_row_ech, &by_steps));
    EXPECT_TRUE(run(red_row_ech, &by_images));
    EXPECT_EQ(by_images.rank, by_steps.rank);
    Values form = values_of(by_steps.m), same = values_of(by_images.m);
    expect_equal(same, form);
    for (Values* v : {&left, &right, &start, &form, &same}) free_values(*v);
    free_quoly(&prime);
    drop_reduction(&by_steps);
    drop_reduction(&by_images);
    use_integers();
}

/// Row i of L D^-1 U against row i of the permuted start.
void expect_product(const Reduction& r, const Values& start, const int32_t* row, const int32_t* column) {
    const LineMatrix &pivots = r.extra[0], &lower = r.extra[1];
    for (int32_t i = 0; i < r.m.rows; i++)
        for (int32_t c = 0; c < r.m.cols; c++) {
            quoly sum = number_value(0);
            for (int32_t k = 0; k < r.rank; k++) {
                quoly term = nullptr;
                quoly_mult(matrix_element(lower, i, k), matrix_element(r.m, k, c), &term);
                fast_quoly_quot(&term, matrix_element(pivots, k, 0), 0);
                if (k > 0) fast_quoly_quot(&term, matrix_element(pivots, k - 1, 0), 0);
                best_quoly_add(&sum, term);
            }
            EXPECT_TRUE(quoly_equal(sum, start[static_cast<size_t>(row[i] + column[c] * r.m.rows)]));
            free_quoly(&sum);
        }
}

PROPERTY(fraction_free_decompositions, 300) {
    enter_ring_of(round);
    use_variables(2);
    int32_t rows = random_int(rng, 1, 5), cols = random_int(rng, 1, 5);
    Values start = random_values(rng, rows * cols, round);
    for (quoly& q : start)
        if (!q->numb && q->denom != nullptr) quoly_set(1, &q);
    for (Reducer reduce : {fract_free_lu, fract_free_lu_columns}) {
        Reduction r = reduction_of(start, rows, cols, round % 2 == 1, k_all);
        int32_t row[5] = {0, 1, 2, 3, 4}, column[5] = {0, 1, 2, 3, 4};
        r.row_number = row;
        r.column_number = column;
        if (run(reduce, &r)) {
            expect_invariant(r, start);
            if (reduce == fract_free_lu_columns || r.rank == std::min(rows, cols))
                expect_product(r, start, row, column);
            for (int32_t k = 0; k < r.rank; k++)
                EXPECT_TRUE(quoly_equal(matrix_element(r.extra[0], k, 0), matrix_element(r.m, k, k)));
        }
        drop_reduction(&r);
    }
    free_values(start);
    use_variables(0);
    use_integers();
}

PROPERTY(pseudo_determinants, 200) {
    enter_ring_of(round);
    if (modularmode && modulus < 8) use_integers();  // the numbers of the rows are residues
    use_variables(2);
    int32_t rows = random_int(rng, 1, 6), cols = random_int(rng, 1, 6);
    Values start = random_values(rng, rows * cols, 1);
    constexpr bool none[k_aux_matrices] = {};
    Reduction r = reduction_of(start, rows, cols, true, none);
    if (run(pseudo_determinant, &r)) {
        Values minor;
        for (int32_t c = 0; c < r.rank; c++)
            for (int32_t i = 0; i < r.rank; i++) {
                int32_t row = word_of(matrix_element(r.extra[0], i, 0)) - 1,
                        column = word_of(matrix_element(r.extra[1], c, 0)) - 1;
                minor.push_back(start[static_cast<size_t>(row + column * rows)]);
            }
        quoly det = number_value(1), minus = nullptr;
        if (r.rank > 0) dense_determinant(minor.data(), r.rank, &det);
        quoly_makeneg(det, &minus);
        EXPECT_TRUE(!quoly_iszero(det) && (quoly_equal(det, r.value) || quoly_equal(minus, r.value)));
        free_quoly(&det);
        free_quoly(&minus);
    }
    drop_reduction(&r);
    free_values(start);
    use_variables(0);
    use_integers();
}
