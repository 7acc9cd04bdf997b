#include "language/array_ops.h"

#include "matrix/inverse.h"
#include "matrix/products.h"
#include "numbers/ring_switch.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- element by element --------------------------------------------------------------------------------

namespace {
/// An operation on two values: into a third, or on the first in place. Both keep the second.
struct ElementOperation {
    void (*fresh)(quoly n, quoly m, quolyptr p);
    void (*in_place)(quolyptr n, quoly m);
};
}  // namespace

static void fresh_quotient(quoly n, quoly m, quolyptr p) { quoly_quot(n, m, p, 0); }
static void quotient_in_place(quolyptr n, quoly m) { fast_quoly_quot(n, m, 0); }
static void fresh_remainder(quoly n, quoly m, quolyptr p) { quoly_mod_or_div(n, m, p, '|'); }
static void remainder_in_place(quolyptr n, quoly m) { quoly_mod_or_div(*n, m, n, '|'); }
static void fresh_division(quoly n, quoly m, quolyptr p) { quoly_mod_or_div(n, m, p, '\\'); }
static void division_in_place(quolyptr n, quoly m) { quoly_mod_or_div(*n, m, n, '\\'); }

static constexpr ElementOperation k_sum = {quoly_add, fast_quoly_add};
static constexpr ElementOperation k_difference = {quoly_sub, fast_quoly_sub};
static constexpr ElementOperation k_product = {quoly_mult, fast_quoly_mult};
static constexpr ElementOperation k_quotient = {fresh_quotient, quotient_in_place};
static constexpr ElementOperation k_remainder = {fresh_remainder, remainder_in_place};
static constexpr ElementOperation k_division = {fresh_division, division_in_place};

static const ElementOperation& operation_of(char sign) {
    switch (sign) {
    case '+':
        return k_sum;
    case '-':
        return k_difference;
    case '*':
        return k_product;
    case '/':
        return k_quotient;
    case '|':
        return k_remainder;
    default:
        return k_division;
    }
}

/// left := left op right, dense, right being a matrix of the same shape or a scalar.
static void dense_operation(ArrOperand& left, const ArrOperand& right, const ElementOperation& op) {
    int64_t n = left.facts.arrsize;
    bool same = is_scalar(right);
    if (left.arr_free) {
        for (int64_t k = 0; k < n; k++) {
            poll_interrupt();
            op.in_place(&elements_of(left)[k], same ? right.n : elements_of(right)[k]);
        }
        return;
    }
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(left);
    make_dense(result, left.facts.rows, columns_of(left));
    for (int64_t k = 0; k < n; k++) {
        poll_interrupt();
        op.fresh(elements_of(left)[k], same ? right.n : elements_of(right)[k], &elements_of(result)[k]);
    }
    swap_operands(left, result);
    end_operand(result);
}

/// left, a scalar, := left op right, a dense matrix.
static void scalar_with_dense(ArrOperand& left, ArrOperand& right, const ElementOperation& op) {
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(left);
    make_dense(result, right.facts.rows, columns_of(right));
    for (int64_t k = 0; k < right.facts.arrsize; k++) {
        poll_interrupt();
        op.fresh(left.n, elements_of(right)[k], &elements_of(result)[k]);
    }
    swap_operands(left, result);
    end_operand(result);
}

void change_elements(ArrOperand& v, void (*f)(quolyptr value, void* context), void* context) {
    make_private(v);
    if (is_sparse(v)) {
        change_sparse(v.spar, v.facts.rows, f, context);
        return;
    }
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_interrupt();
        f(&elements_of(v)[k], context);
    }
}

static void negate_value(quolyptr value, void*) { quoly_inplace(*value); }

void negate_operand(ArrOperand& v) {
    if (is_scalar(v))
        quoly_inplace(v.n);
    else
        change_elements(v, negate_value, nullptr);
}

// ---- sums ----------------------------------------------------------------------------------------------

/// The entries of the sparse right operand are added to the dense left one.
static void add_one_sparse(ArrOperand& left, const ArrOperand& right, bool minus) {
    make_private(left);
    const ElementOperation& op = minus ? k_difference : k_sum;
    SparseWalk w = walk_sparse(right.spar, right.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        poll_interrupt();
        for (const colnode* p = *t; p != nullptr; p = p->next)
            op.in_place(&elements_of(left)[w.row + int64_t{p->coord - 1} * left.facts.rows], p->val);
    }
}

static void add_matrices(ArrOperand& left, ArrOperand& right, bool minus) {
    if (!same_shape(left, right)) {
        fail_operand(left, Err::shapes_differ);
    } else if (is_sparse(left) && is_sparse(right)) {
        make_private(left);
        make_private(right);
        add_sparses(left.spar, &right.spar, left.facts.rows, minus);
        right.facts = {};
    } else if (is_sparse(right)) {
        add_one_sparse(left, right, minus);
    } else if (is_sparse(left)) {
        if (minus) negate_operand(right);
        add_one_sparse(right, left, false);
        swap_operands(left, right);
    } else {
        dense_operation(left, right, minus ? k_difference : k_sum);
    }
}

void add_operands(ArrOperand& left, ArrOperand& right, bool minus) {
    if (is_scalar(left) && is_scalar(right)) {
        minus ? fast_quoly_sub(&left.n, right.n) : fast_quoly_add(&left.n, right.n);
    } else if (is_scalar(right)) {
        if (expand_to_dense(left)) dense_operation(left, right, minus ? k_difference : k_sum);
    } else if (!is_scalar(left)) {
        add_matrices(left, right, minus);
    } else if (!expand_to_dense(right)) {
        scalar_zero(left);
    } else {
        scalar_with_dense(left, right, minus ? k_difference : k_sum);
    }
}

// ---- products ------------------------------------------------------------------------------------------

/// result, which is empty, := the matrix product of two matrices. Sparse only if both are.
static void product_into(ArrOperand& result, ArrOperand& a, ArrOperand& b) {
    int64_t cols = columns_of(b);
    int32_t rows = a.facts.rows, inner = b.facts.rows;
    if (is_sparse(a) && is_sparse(b)) {
        make_sparse_operand(result, rows, cols, nullptr);
        sparse_mult(a.spar, b.spar, rows, inner, result.spar);
    } else if (!expand_to_dense(a) || !expand_to_dense(b)) {
        scalar_zero(result);
    } else if (make_dense(result, rows, cols)) {
        matrix_mult(elements_of(a), elements_of(b), rows, inner, static_cast<int32_t>(cols),
                    elements_of(result));
    }
}

/// left := left right; the two may be the same.
static void multiply_matrices(ArrOperand& left, ArrOperand& right) {
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(left);
    product_into(result, left, right);
    swap_operands(left, result);
    end_operand(result);
}

/// True if 1, ..., n are units of the ring in force.
static bool counts_are_units(int32_t n) {
    if (!lintmode) return true;
    if (finf) return n < 2;
    for (int32_t k = 2; k <= n; k++) {
        if (modulus % k == 0) return false;
        if (int64_t{k} * k > modulus) return modulus > n;
    }
    return true;
}

using MatrixMap = bool (*)(workptr a, workptr result, int32_t n);

/// result := what the map makes of v, 44 if that fails. Where modular arithmetic is suspended the map works
/// in the ring all the same.
static Err map_in_ring(ArrOperand& v, ArrOperand& result, MatrixMap map) {
    bool resumed = ring_resume();
    Err fault = Err{};
    if (resumed)
        for (int64_t k = 0; k < v.facts.arrsize && fault == Err{}; k++) {
            fault = quoly_reduce_words(&elements_of(v)[k]);
            poll_every<1024>(k);
        }
    bool good = map(elements_of(v), elements_of(result), v.facts.rows);
    ring_suspend(resumed);
    return fault == Err{} && !good ? Err::singular_matrix : fault;
}

/// v, a square matrix, := what the map makes of it; 44 if that fails.
static void map_dense(ArrOperand& v, MatrixMap map) {
    ArrOperand result;
    if (first_available > k_work_arrays) {
        fail_operand(v, Err::no_work_array_inverse);
        return;
    }
    if (!begin_operand(result)) return;
    make_private(v);
    make_dense(result, v.facts.rows, v.facts.rows);
    Err fault = map_in_ring(v, result, map);
    swap_operands(v, result);
    end_operand(result);
    if (fault != Err{}) fail_operand(v, fault);
}

/// v := its inverse. Error 44; 36 for a sparse matrix of more rows than the modulus allows.
static void invert_operand(ArrOperand& v) {
    bool sparse = is_sparse(v);
    if (sparse && !counts_are_units(v.facts.rows)) {
        fail_operand(v, Err::rows_below_modulus);
        return;
    }
    if (!expand_to_dense(v)) return;
    map_dense(v, invert_matrix);
    if (sparse && !is_scalar(v)) contract_to_sparse(v);
}

static bool take_adjoint(workptr a, workptr result, int32_t n) {
    adjoint_matrix(a, result, n);
    return true;
}

void adjoint_operand(ArrOperand& v) {
    Err fault = is_scalar(v)    ? Err::matrix_needed
                : is_sparse(v)  ? Err::sparse_not_allowed
                : !is_square(v) ? Err::matrix_not_square
                                : Err{};
    if (fault != Err{})
        fail_operand(v, fault);
    else
        map_dense(v, take_adjoint);
}

/// Element by element: left is a matrix of the shape of right.
static void by_element(ArrOperand& left, ArrOperand& right, char sign) {
    if (!same_shape(left, right))
        fail_operand(left, Err::shapes_differ);
    else if (is_sparse(left) || is_sparse(right))
        fail_operand(left, Err::sparse_not_defined);
    else
        dense_operation(left, right, operation_of(sign));
}

static bool inner_agrees(const ArrOperand& left, const ArrOperand& right) {
    return columns_of(left) == right.facts.rows;
}

static void matrix_with_matrix(ArrOperand& left, ArrOperand& right, char sign) {
    if (sign == '*' && inner_agrees(left, right)) {
        multiply_matrices(left, right);
    } else if (sign == '/' && is_square(right) && inner_agrees(left, right)) {
        invert_operand(right);
        if (is_scalar(right))
            scalar_zero(left);
        else
            multiply_matrices(left, right);
    } else {
        by_element(left, right, sign);
    }
}

/// One operation with the same second operand on every entry.
struct EntryOperation {
    const ElementOperation* op;
    quoly operand;
};

static void change_entry(quolyptr value, void* context) {
    const auto* e = static_cast<const EntryOperation*>(context);
    e->op->in_place(value, e->operand);
}

static void matrix_with_scalar(ArrOperand& left, const ArrOperand& right, char sign) {
    const ElementOperation& op = operation_of(sign);
    if (!is_sparse(left)) {
        dense_operation(left, right, op);
        return;
    }
    EntryOperation e = {&op, right.n};
    change_elements(left, change_entry, &e);
}

static void scalar_with_matrix(ArrOperand& left, ArrOperand& right, char sign) {
    if (sign == '*') {
        matrix_with_scalar(right, left, sign);
        swap_operands(left, right);
    } else if (sign == '/' && is_square(right)) {
        invert_operand(right);
        if (!is_scalar(right)) matrix_with_scalar(right, left, '*');
        swap_operands(left, right);
    } else if (is_sparse(right)) {
        fail_operand(left, Err::sparse_not_allowed);
    } else {
        scalar_with_dense(left, right, operation_of(sign));
    }
}

// ---- columns side by side ------------------------------------------------------------------------------

/// The elements of v, or the scalar again and again, go to `to`; v gives them up if they are private.
static void move_columns(ArrOperand& v, int64_t count, workptr to) {
    for (int64_t k = 0; k < count; k++) {
        if (is_scalar(v)) {
            quoly_assign(v.n, &to[k]);
        } else if (v.arr_free) {
            to[k] = elements_of(v)[k];
            elements_of(v)[k] = nullptr;
        } else {
            quoly_assign(elements_of(v)[k], &to[k]);
        }
    }
}

/// left := left and right side by side; a scalar is a column of that value.
static void concatenate(ArrOperand& left, ArrOperand& right) {
    if (is_sparse(left) || is_sparse(right)) {
        fail_operand(left, Err::sparse_not_allowed);
        return;
    }
    if (is_scalar(left) && is_scalar(right)) {
        fail_operand(left, Err::join_of_scalars);
        return;
    }
    int32_t rows = is_scalar(left) ? right.facts.rows : left.facts.rows;
    if (!is_scalar(right) && right.facts.rows != rows) {
        fail_operand(left, Err::shapes_differ);
        return;
    }
    int64_t first = is_scalar(left) ? rows : left.facts.arrsize;
    int64_t second = is_scalar(right) ? rows : right.facts.arrsize;
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(left);
    if (make_dense(result, rows, (first + second) / rows)) {
        move_columns(left, first, elements_of(result));
        move_columns(right, second, elements_of(result) + first);
    }
    swap_operands(left, result);
    end_operand(result);
}

void combine_operands(ArrOperand& left, ArrOperand& right, char sign) {
    if (sign == '_')
        concatenate(left, right);
    else if (is_scalar(left) && is_scalar(right))
        operation_of(sign).in_place(&left.n, right.n);
    else if (is_scalar(right))
        matrix_with_scalar(left, right, sign);
    else if (is_scalar(left))
        scalar_with_matrix(left, right, sign);
    else
        matrix_with_matrix(left, right, sign);
}

// ---- shapes --------------------------------------------------------------------------------------------

void transpose_operand(ArrOperand& v) {
    if (is_scalar(v)) {
        fail_operand(v, Err::matrix_needed);
        return;
    }
    int32_t rows = v.facts.rows;
    auto cols = static_cast<int32_t>(columns_of(v));
    make_private(v);
    if (is_sparse(v)) {
        trans_sparse(&v.spar, rows, cols);
        v.facts.rows = cols;
        return;
    }
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(v);
    make_dense(result, cols, rows);
    workptr from = elements_of(v), to = elements_of(result);
    for (int64_t r = 0, k = 0; r < rows; r++)
        for (int64_t c = 0; c < cols; c++, k++) {
            to[k] = from[r + c * rows];
            from[r + c * rows] = nullptr;
        }
    swap_operands(v, result);
    end_operand(result);
}

void extract_diagonal(ArrOperand& v) {
    if (is_scalar(v)) {
        fail_operand(v, Err::diag_needs_array);
        return;
    }
    int32_t rows = v.facts.rows;
    auto n = static_cast<int32_t>(columns_of(v) < rows ? columns_of(v) : rows);
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(v);
    if (!make_dense(result, n, 1)) {
        swap_operands(v, result);
        end_operand(result);
        return;
    }
    workptr to = elements_of(result);
    if (is_sparse(v)) {
        SparseWalk w = walk_sparse(v.spar, n);
        while (colm_ptrptr t = next_row(w)) {
            colm_ptrptr link = get_sparse_colm(t, w.row + 1);
            quoly_assign(stands_at(link, w.row + 1) ? (*link)->val : quol_num_0, &to[w.row]);
        }
    } else {
        for (int64_t i = 0; i < n; i++) quoly_assign(elements_of(v)[i + i * rows], &to[i]);
    }
    swap_operands(v, result);
    end_operand(result);
}

void diagonal_matrix(ArrOperand& v, int64_t rows, const quolynode* value, bool sparse) {
    if (!sparse) {
        if (!make_dense(v, rows, rows)) return;
        for (int64_t k = 0; k < v.facts.arrsize; k++) quoly_set(0, &elements_of(v)[k]);
        for (int64_t i = 0; i < rows; i++) quoly_assign(value, &elements_of(v)[i + i * rows]);
        return;
    }
    make_sparse_operand(v, rows, rows, nullptr);
    if (quoly_iszero(value)) return;
    SparseWalk w = walk_sparse(v.spar, v.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        quoly copy = nullptr;
        quoly_assign(value, &copy);
        *t = newcolm(w.row + 1, copy, nullptr);
    }
}

// ---- powers and polynomials ----------------------------------------------------------------------------

/// The exponent as a word: its sign and magnitude. False if it does not fit.
static bool word_exponent(const number* e, int64_t* word) {
    *word = lintmode ? e->lint : e->size == 1 ? e->head->value : 0;
    return lintmode || e->size == 1;
}

/// v := v^e for e >= 1, by squaring from the top bit.
static void power_by_squaring(ArrOperand& v, int64_t e) {
    if (e == 1) return;
    ArrOperand base;
    if (!begin_operand(base)) return scalar_zero(v);
    swap_operands(v, base);
    int32_t bit = 62 - __builtin_clzll(static_cast<uint64_t>(e));
    product_into(v, base, base);
    if ((e >> bit) & 1) multiply_matrices(v, base);
    while (--bit >= 0 && !is_scalar(v)) {
        poll_interrupt();
        multiply_matrices(v, v);
        if ((e >> bit) & 1) multiply_matrices(v, base);
    }
    end_operand(base);
}

/// v := v^k for a square matrix.
static void integer_power(ArrOperand& v, int64_t k) {
    if (k == 0) {
        int32_t rows = v.facts.rows;
        bool sparse = is_sparse(v);
        clear_operand(v);
        diagonal_matrix(v, rows, quol_num_1, sparse);
        return;
    }
    if (k < 0) invert_operand(v);
    if (!is_scalar(v)) power_by_squaring(v, k < 0 ? -k : k);
}

void matrix_power(ArrOperand& v, const number* e) {
    int64_t k;
    if (is_scalar(v))
        raise_to_power(&v.n, e);
    else if (!is_square(v))
        fail_operand(v, Err::power_not_square);
    else if (!word_exponent(e, &k))
        fail_operand(v, Err::exponent_too_long);
    else
        integer_power(v, k);
}

static void reduce_element(quolyptr value, void* context) {
    remainder_in_place(value, static_cast<quoly>(context));
}

/// The polynomial at the level of its outermost variable.
static const polynode* without_pads(const polynode* p) {
    while (p->exp == 0 && p->next == nullptr && !p->numb) p = p->pcoef;
    return p;
}

static bool all_without_denominators(const ArrOperand& v) {
    for (int64_t k = 0; k < v.facts.arrsize; k++)
        if (elements_of(v)[k]->denom != nullptr) return false;
    return true;
}

/// Why elements of v cannot be reduced modulo the polynomial.
static Err powermod_fault(const ArrOperand& v, const polynode* m) {
    const polynode* top = without_pads(m);
    if (top->exp <= 0) return Err::modulus_degree;
    if (!modularmode) return Err::powermod_outside_modular;
    if (!poly_eq_1(top->pcoef)) return Err::matrix_modulus_not_monic;
    if (has_negative_exponent(m)) return Err::negative_powers;
    if (exists_field_element(m, 1)) return Err::matrix_modulus_in_field;
    return all_without_denominators(v) ? Err{} : Err::matrix_of_polynomials;
}

void matpowermod(ArrOperand& v, const number* e, quoly m) {
    int64_t k;
    if (Err fault = powermod_fault(v, m->numer); fault != Err{}) {
        fail_operand(v, fault);
        return;
    }
    if (!word_exponent(e, &k)) {
        fail_operand(v, Err::exponent_too_long);
        return;
    }
    if (k <= 0) integer_power(v, k == 0 ? 0 : -1);
    if (k < 0) k = -k;
    ArrOperand base;
    if (k == 0 || is_scalar(v) || !begin_operand(base)) return;
    change_elements(v, reduce_element, m);
    swap_operands(v, base);
    diagonal_matrix(v, base.facts.rows, quol_num_1, false);
    for (int32_t bit = 63 - __builtin_clzll(static_cast<uint64_t>(k)); bit >= 0 && !is_scalar(v); bit--) {
        poll_interrupt();
        multiply_matrices(v, v);
        change_elements(v, reduce_element, m);
        if (((k >> bit) & 1) == 0) continue;
        multiply_matrices(v, base);
        change_elements(v, reduce_element, m);
    }
    end_operand(base);
}

/// *n := the coefficient of the term t of a polynomial whose variable stands at `level`.
static void coefficient_value(const polynode* t, int32_t level, quolyptr n) {
    poly c = nullptr;
    t->numb ? node_assign(t, &c) : poly_assign(t->pcoef, &c);
    if (!t->numb) add_pad(&c, level);
    free_quoly(n);
    poly_to_quoly(&c, n);
}

/// v := v + c times the identity.
static void add_to_diag(ArrOperand& v, const quolynode* c) {
    ArrOperand diagonal;
    if (is_scalar(v)) return;
    if (!begin_operand(diagonal)) return scalar_zero(v);
    diagonal_matrix(diagonal, v.facts.rows, c, is_sparse(v));
    add_matrices(v, diagonal, false);
    end_operand(diagonal);
}

/// v := v m^k, k >= 1.
static void times_power_of(ArrOperand& v, ArrOperand& m, int64_t k) {
    if (k == 0 || is_scalar(v)) return;
    if (k == 1) {
        multiply_matrices(v, m);
        return;
    }
    ArrOperand power;
    if (!begin_operand(power)) return scalar_zero(v);
    copy_operand(m, power);
    integer_power(power, k);
    if (is_scalar(power))
        scalar_zero(v);
    else
        multiply_matrices(v, power);
    end_operand(power);
}

/// Horner's rule over the terms from p, whose variable stands at `level`; v is the matrix, then the value.
static void horner_at_matrix(ArrOperand& v, const polynode* p, int32_t level) {
    ArrOperand matrix;
    if (!begin_operand(matrix)) return scalar_zero(v);
    swap_operands(v, matrix);
    quoly c = nullptr;
    coefficient_value(p, level, &c);
    diagonal_matrix(v, matrix.facts.rows, c, is_sparse(matrix));
    for (; p->next != nullptr; p = p->next) {
        times_power_of(v, matrix, int64_t{p->exp} - p->next->exp);
        coefficient_value(p->next, level, &c);
        add_to_diag(v, c);
    }
    times_power_of(v, matrix, p->exp);
    free_quoly(&c);
    end_operand(matrix);
}

void quoly_at_matrix(ArrOperand& v, const quolynode* p) {
    if (is_scalar(v) || !is_square(v)) {
        fail_operand(v, Err::matrix_argument_not_square);
        return;
    }
    if (!p->numb && p->denom != nullptr) {
        fail_operand(v, Err::rational_function_argument);
        return;
    }
    if (p->numb) {
        int32_t rows = v.facts.rows;
        bool sparse = is_sparse(v);
        clear_operand(v);
        diagonal_matrix(v, rows, p, sparse);
        return;
    }
    const polynode* q = p->numer;
    int32_t level = 1;
    for (; q->exp == 0 && q->next == nullptr; q = q->pcoef) level++;
    horner_at_matrix(v, q, level);
}
}  // namespace tolvex
