#pragma once
/// language/array_operand.h: matrices on their way through the array expression evaluator.
///
/// Purpose    an operand is a scalar, a dense matrix in a work array, or a sparse chain; private, or
///            borrowed from a named array.
/// Invariant  operands begin and end nested, as their work arrays do. A borrowed element is never
///            changed. facts .arrsize 0: a scalar, in n; else n is nil. spar nil: dense.
/// Ownership  a private operand owns its elements; after a jump they are given back through drop_unfinished.
/// Raises     88 begin_operand.
#include "language/array_values.h"
#include "language/language_modes.h"
#include "language/statements.h"
#include "storage/failure.h"
namespace tolvex {
struct ArrOperand {
    int32_t work;  // number of its work array
    arr_descr facts;
    boolean arr_free;  // private
    sparseptr spar;
    quoly n;
    arrptr lender;  // the array that the elements are borrowed from, nil: none
    Unfinished unfinished;
    held_operand hold;  // as long as an operand is under way the ring stays
};

inline workptr elements_of(const ArrOperand& v) { return workhead[v.work - 1]; }
inline bool is_scalar(const ArrOperand& v) { return v.facts.arrsize == 0; }
inline bool is_sparse(const ArrOperand& v) { return v.spar != nullptr; }
inline int64_t columns_of(const ArrOperand& v) { return v.facts.arrsize / v.facts.rows; }
inline bool is_square(const ArrOperand& v) { return int64_t{v.facts.rows} * v.facts.rows == v.facts.arrsize; }
inline bool same_shape(const ArrOperand& a, const ArrOperand& b) {
    return a.facts.arrsize == b.facts.arrsize && a.facts.rows == b.facts.rows;
}

/// Claims a work array: v is a scalar without a value. False after error 88: v has not begun.
bool begin_operand(ArrOperand& v);
void end_operand(ArrOperand& v);
/// v becomes a scalar without a value; what it owned is given back.
void clear_operand(ArrOperand& v);
/// The two change their contents, in constant time.
void swap_operands(ArrOperand& a, ArrOperand& b);
/// v := the scalar 0.
void scalar_zero(ArrOperand& v);
/// Raises the error; when that comes back v is the scalar 0. Returns false.
bool fail_operand(ArrOperand& v, Err code, const char* symbol = nullptr);

/// v, which is empty, becomes a private dense matrix whose elements are nil. Error 43 if it is too large.
bool make_dense(ArrOperand& v, int64_t rows, int64_t cols);
/// v, which is empty, becomes a private sparse matrix; chain nil: without entries.
void make_sparse_operand(ArrOperand& v, int64_t rows, int64_t cols, sparseptr chain);
/// v, which is empty, borrows the elements of the array itself; dense elements that are nil become 0, with
/// the warning of note_uninitialized.
void borrow_array(ArrOperand& v, arrptr a);
/// copy, which is empty, becomes a private copy of a matrix.
void copy_operand(const ArrOperand& v, ArrOperand& copy);
/// The scalar v becomes a private dense matrix of copies of its value.
void spread_scalar(ArrOperand& v, arr_descr shape);
/// A borrowed matrix is copied.
void make_private(ArrOperand& v);
/// A sparse matrix becomes dense: error 250 (false) if it is too large.
bool expand_to_dense(ArrOperand& v);
/// A private dense matrix becomes sparse.
void contract_to_sparse(ArrOperand& v);
}  // namespace tolvex
