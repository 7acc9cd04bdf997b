// The half-gcd of Knuth and Schoenhage in the form of K. Thull and C. Yap, "A unified approach to HGCD
// algorithms for polynomials and integers" (1990): the upper halves of the operands determine the first half
// of the quotients.
#include "poly/dense_divide.h"
#include "poly/dense_internal.h"
#include "poly/dense_kernels.h"
#include "poly/dense_mult.h"
#include "poly/dense_ntt.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
#include <utility>
namespace tolvex {
namespace {
// Degree of x up to which parthg is the plain Euclid, and of the cofactors from which the transforms of their
// entries are shared between products.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_plain_degree = 4;
constexpr int32_t k_shared_degree = 3;
#else
constexpr int32_t k_plain_degree = 180;
constexpr int32_t k_shared_degree = 120;
#endif
}  // namespace

static void set_entries(DensePoly* p, const uint32_t* c, int32_t n) {
    if (n > 0) memcpy(p->c, c, static_cast<size_t>(n) * sizeof(uint32_t));
    p->degree = n - 1;
}

// a b written to room, which has deg a + deg b + 1 entries; the degree is the true one.
static DensePoly product(const WordField& f, const DensePoly& a, const DensePoly& b, uint32_t* room) {
    if (a.degree < 0 || b.degree < 0) return {room, -1};
    wf_mult(f, a.c, a.degree + 1, b.c, b.degree + 1, room);
    return {room, wf_degree(room, a.degree + b.degree)};
}

// x := x + y; x has room for both.
static void add_to(const WordField& f, DensePoly* x, const DensePoly& y) {
    int32_t both = (x->degree < y.degree ? x->degree : y.degree) + 1;
    row_add(f, x->c, y.c, x->c, both);
    for (; both <= y.degree; both++) x->c[both] = y.c[both];
    x->degree = wf_degree(x->c, x->degree > y.degree ? x->degree : y.degree);
}

// x := x - y; x has room for both.
static void subtract_from(const WordField& f, DensePoly* x, const DensePoly& y) {
    int32_t both = (x->degree < y.degree ? x->degree : y.degree) + 1;
    row_sub(f, x->c, y.c, x->c, both);
    for (; both <= y.degree; both++) x->c[both] = wf_neg(f, y.c[both]);
    x->degree = wf_degree(x->c, x->degree > y.degree ? x->degree : y.degree);
}

static void set_identity(CofactorMatrix* matrix) {
    for (int i = 0; i < 2; i++) {
        matrix->entry[i][1 - i].degree = -1;
        matrix->entry[i][i].degree = 0;
        matrix->entry[i][i].c[0] = 1;
    }
}

static CofactorMatrix new_matrix(int32_t entries) {
    CofactorMatrix matrix;
    for (auto& row : matrix.entry)
        for (DensePoly& e : row) e = {scratch_array<uint32_t>(entries), -1};
    return matrix;
}

// The matrix after a step with quotient q: (0 1; 1 -q) M. room: for the product.
static void multiply_by_step(const WordField& f, CofactorMatrix* matrix, const DensePoly& q, uint32_t* room) {
    for (int j = 0; j < 2; j++) {
        DensePoly t = product(f, q, matrix->entry[1][j], room);
        subtract_from(f, &matrix->entry[0][j], t);
        std::swap(matrix->entry[0][j], matrix->entry[1][j]);
    }
}

// The cofactors after a quotient of degree 1, which is almost every step: no product is formed.
static void multiply_by_linear_step(const WordField& f, CofactorMatrix* matrix, uint32_t q1, uint32_t q0) {
    for (int j = 0; j < 2; j++) {
        DensePoly *x = &matrix->entry[0][j], *y = &matrix->entry[1][j];
        if (y->degree >= 0) {
            int32_t n = y->degree + 1;
            while (x->degree < n) x->c[++x->degree] = 0;
            row_submul_2(f, x->c, y->c, n, q1, q0);
            x->c[n] = wf_sub(f, x->c[n], wf_mul(f, q1, y->c[n - 1]));
            x->degree = wf_degree(x->c, x->degree);
        }
        std::swap(*x, *y);
    }
}

// One division step on operands and matrix.
static bool step(const WordField& f, DensePoly* x, DensePoly* y, CofactorMatrix* matrix) {
    uint32_t inverse = unit_inverse(f, y->c[y->degree]);
    if (inverse == 0) return false;
    ScratchMark mark = scratch_mark();
    DensePoly q = {scratch_array<uint32_t>(x->degree - y->degree + 1), x->degree - y->degree};
    x->degree = wf_div_mod(f, x->c, x->degree, y->c, y->degree, inverse, q.c);
    std::swap(*x, *y);
    if (q.degree == 1) {
        multiply_by_linear_step(f, matrix, q.c[1], q.c[0]);
    } else {
        int32_t most = matrix->entry[1][0].degree > matrix->entry[1][1].degree ? matrix->entry[1][0].degree
                                                                               : matrix->entry[1][1].degree;
        multiply_by_step(f, matrix, q, scratch_array<uint32_t>(most + q.degree + 1));
    }
    scratch_release(mark);
    return true;
}

bool euclid_onevar(const WordField& f, DensePoly* x, DensePoly* y, int32_t m, CofactorMatrix* matrix) {
    set_identity(matrix);
    while (y->degree > m)
        if (!step(f, x, y, matrix)) return false;
    return true;
}

// The whole array of a top that stands from its entry k on: entries below k come from the product of the
// matrix with the low parts, and what that product has from k on is added to the top.
static DensePoly join_parts(const WordField& f, DensePoly low_product, int32_t k, DensePoly top) {
    DensePoly high = {low_product.c + k, low_product.degree - k};
    if (high.degree >= 0) add_to(f, &top, high);
    uint32_t* c = top.c - k;
    int32_t below = low_product.degree < k ? low_product.degree + 1 : k;
    if (below > 0) memcpy(c, low_product.c, static_cast<size_t>(below) * sizeof(uint32_t));
    if (below < k) memset(c + below, 0, static_cast<size_t>(k - below) * sizeof(uint32_t));
    return {c, top.degree >= 0 ? top.degree + k : wf_degree(c, k - 1)};
}

static int32_t most_degree(const CofactorMatrix& matrix) {
    int32_t most = -1;
    for (const auto& row : matrix.entry)
        for (const DensePoly& e : row) most = e.degree > most ? e.degree : most;
    return most;
}

// sum[i] := matrix (x, y)^T, in arrays of n entries each: plain products.
static void apply_matrix(const WordField& f, const CofactorMatrix& matrix, const DensePoly& x,
                         const DensePoly& y, DensePoly (&sum)[2], int32_t n) {
    ScratchMark mark = scratch_mark();
    auto* room = scratch_array<uint32_t>(n);
    for (int i = 0; i < 2; i++) {
        sum[i] = product(f, matrix.entry[i][0], x, sum[i].c);
        add_to(f, &sum[i], product(f, matrix.entry[i][1], y, room));
    }
    scratch_release(mark);
}

// The same for the columns of *r too, which becomes matrix *r: all by one round of transforms.
static void apply_matrix_to_all(const WordField& f, const CofactorMatrix& matrix, const DensePoly& x,
                                const DensePoly& y, DensePoly (&sum)[2], CofactorMatrix* r, int32_t n) {
    ScratchMark mark = scratch_mark();
    NttOperand a[2][2], b[2][k_ntt_columns] = {{{x.c, x.degree + 1}}, {{y.c, y.degree + 1}}};
    uint32_t* c[2][k_ntt_columns] = {{sum[0].c}, {sum[1].c}};
    int32_t columns = 1;
    for (int i = 0; i < 2; i++)
        for (int k = 0; k < 2; k++) a[i][k] = {matrix.entry[i][k].c, matrix.entry[i][k].degree + 1};
    if (r != nullptr) {
        for (; columns < k_ntt_columns; columns++)
            for (int k = 0; k < 2; k++) {
                const DensePoly& e = r->entry[k][columns - 1];
                b[k][columns] = {e.c, e.degree + 1};
                c[k][columns] = scratch_array<uint32_t>(n);
            }
    }
    ntt_matrix_mult(f, a, b, columns, c, n);
    for (int i = 0; i < 2; i++) {
        sum[i].degree = wf_degree(sum[i].c, n - 1);
        for (int32_t j = 1; j < columns; j++)
            set_entries(&r->entry[i][j - 1], c[i][j], wf_degree(c[i][j], n - 1) + 1);
    }
    scratch_release(mark);
}

// *r := s *r, for short entries.
static void multiply_matrices(const WordField& f, const CofactorMatrix& s, CofactorMatrix* r) {
    ScratchMark mark = scratch_mark();
    int32_t n = most_degree(s) + most_degree(*r) + 1;
    DensePoly sum[2];
    for (DensePoly& e : sum) e.c = scratch_array<uint32_t>(n);
    for (int j = 0; j < 2; j++) {
        apply_matrix(f, s, r->entry[0][j], r->entry[1][j], sum, n);
        for (int i = 0; i < 2; i++) set_entries(&r->entry[i][j], sum[i].c, sum[i].degree + 1);
    }
    scratch_release(mark);
}

// The half-gcd of the tops, x div t^k and y div t^k, in place, and its matrix applied to the whole of x and
// y. What the parts have in common cancels: the new pair fits into the arrays of the old one. With `before`,
// the matrix of the steps so far, that becomes the matrix of all steps.
static bool reduce_by_tops(const WordField& f, DensePoly* x, DensePoly* y, int32_t k, CofactorMatrix* matrix,
                           CofactorMatrix* before) {
    DensePoly x_top = {x->c + k, x->degree - k}, y_top = {y->c + k, y->degree - k};
    if (!parthg(f, &x_top, &y_top, matrix)) return false;
    DensePoly x_low = {x->c, wf_degree(x->c, k - 1)}, y_low = {y->c, wf_degree(y->c, k - 1)};
    int32_t most = most_degree(*matrix), other = before != nullptr ? most_degree(*before) : -1;
    int32_t n = most + (other + 1 > k ? other + 1 : k);
    ScratchMark mark = scratch_mark();
    DensePoly sum[2] = {{scratch_array<uint32_t>(n), -1}, {scratch_array<uint32_t>(n), -1}};
    if (!f.table && most >= k_shared_degree && k > k_shared_degree) {
        apply_matrix_to_all(f, *matrix, x_low, y_low, sum, before, n);
    } else {
        apply_matrix(f, *matrix, x_low, y_low, sum, n);
        if (before != nullptr) multiply_matrices(f, *matrix, before);
    }
    *x = join_parts(f, sum[0], k, x_top);
    *y = join_parts(f, sum[1], k, y_top);
    scratch_release(mark);
    return true;
}

bool parthg(const WordField& f, DensePoly* x, DensePoly* y, CofactorMatrix* matrix) {
    int32_t n = x->degree, m = n / 2;
    if (y->degree <= m) {
        set_identity(matrix);
        return true;
    }
    if (n <= k_plain_degree) return euclid_onevar(f, x, y, m, matrix);
    poll_interrupt();
    if (!reduce_by_tops(f, x, y, m, matrix, nullptr)) return false;
    if (y->degree <= m) return true;
    if (!step(f, x, y, matrix)) return false;
    if (y->degree <= m) return true;
    int32_t k = 2 * m - x->degree;
    CHECK(k > 0);
    ScratchMark mark = scratch_mark();
    CofactorMatrix second = new_matrix((x->degree - k + 1) / 2 + 2);
    bool done = reduce_by_tops(f, x, y, k, &second, matrix);
    scratch_release(mark);
    return done;
}

bool fullhg(const WordField& f, DensePoly* x, DensePoly* y) {
    int32_t m = x->degree / 2;
    if (y->degree <= m) return true;
    ScratchMark mark = scratch_mark();
    CofactorMatrix matrix = new_matrix((x->degree - m + 1) / 2 + 2);
    bool done = reduce_by_tops(f, x, y, m, &matrix, nullptr);
    if (done && y->degree > m) done = divide_y_into_x(f, x, y);
    if (done && y->degree > m) done = reduce_by_tops(f, x, y, 2 * m - x->degree, &matrix, nullptr);
    scratch_release(mark);
    return done;
}

bool hgcd(const WordField& f, DensePoly x, DensePoly y, int32_t plain, DensePoly* g) {
    if (x.degree < y.degree) std::swap(x, y);
    while (int64_t{x.degree} + y.degree > plain && y.degree >= 0) {
        poll_interrupt();
        if (!fullhg(f, &x, &y)) return false;
        if (y.degree >= 0 && !divide_y_into_x(f, &x, &y)) return false;
    }
    return simple_onevar_gcd(f, x, y, g);
}
}  // namespace tolvex
