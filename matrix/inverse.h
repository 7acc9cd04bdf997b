#pragma once
/// matrix/inverse.h: inverses and adjoints of square matrices.
///
///   residues, table fields     elimination of words                          matrix/word_adjoint.h
///   integers, fractions        adjoint from images, over the determinant     matrix/int_adjoint.h
///   polynomials, functions     adjoint from values at points or from minors  matrix/interpolated.h, minors.h
///   field towers, quotients    elimination over the field of fractions
///
/// Ownership  the elements of the operand are changed; they stay the caller's.
/// Modes      mod_matrix_ok (&I) off: integers by elimination over the fractions. The value is the same.
#include "matrix/work.h"
namespace tolvex {
/// result, whose slots are nil, := the inverse of a, n by n, column by column. False: a is singular, or has
/// no inverse over the modulus; slots of result may hold values all the same.
bool invert_matrix(workptr a, workptr result, int32_t n);
/// result, whose slots are nil, := the adjoint, the transpose of the matrix of cofactors; of singular
/// matrices too.
void adjoint_matrix(workptr a, workptr result, int32_t n);
/// The inverse by elimination over the field of fractions, a unit pivot from the open block, numbers first.
/// Time n^3 products.
bool invert_by_elimination(workptr a, workptr result, int32_t n);
}  // namespace tolvex
