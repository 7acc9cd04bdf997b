#pragma once
/// field/factor.h: factorisation of polynomials over finite fields.
///
/// Purpose    polynomials in one variable over the field that the k deepest levels of the tower make, 0 < k,
///            over the ground field if there is no tower; k = 0 is the whole tower. The main variable is that
///            of the polynomial itself; should it be modded out, that does not count meanwhile.
/// Invariant  a chain of nodes as in gcd/square_free.h: multiplicity in exp, factor in pcoef, at level 1.
///            Factors are monic.
/// Ownership  operands are kept, results are fresh.
/// Modes      modular: a prime modulus or a table field.
/// Raises     poll_interrupt. A refusal is told by its number, and is the caller's to raise.
#include "poly/poly.h"
#include "storage/failure.h"
namespace tolvex {
/// What is factored over which field.
struct FactorTask {
    polypt main;        // the main variable
    const polynode* p;  // the polynomial at its level
    int32_t h;          // levels of the tower that are coefficients
};
/// True if p, not a number and without negative exponents, cannot be factored over the k deepest levels: *why
/// is 300, the tower has not so many; 299, the main variable lies in the field, or a level between that is no
/// field is modded out; 298, a second variable occurs; 32, the degree is too high for arrays. *task is
/// complete if not, or but for 298.
bool cant_factor(const polynode* p, int32_t k, FactorTask* task, Err* why);
/// The irreducible factors of p, appended to *list by rising multiplicity, degree and coefficients. Several
/// variables, k = 0: the square-free factors over all levels; those in one variable are split, the others
/// left as they are. False: *why is one of cant_factor, 298 only if nothing can be split; or 301, the tower
/// is no field; *list may hold what was found so far. Errors 308, 352 as total_sq_free.
bool factor_poly(poly p, int32_t k, polyptrr list, Err* why);
/// 1: irreducible; d div s for a square-free one of degree d with least factor degree s; -1: a repeated
/// factor. 0: the tower is no field. No numbers.
int32_t irreducible_poly(const FactorTask& task);
}  // namespace tolvex
