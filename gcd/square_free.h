#pragma once
/// gcd/square_free.h: square-free decomposition.
///
/// Purpose    the square-free factors of a polynomial with their multiplicities. In characteristic 0 by Yun,
///            "On square-free decomposition algorithms", 1976; in characteristic p by Musser's method with
///            p-th roots (Geddes, Czapor and Labahn, Algorithms for Computer Algebra, 8.3).
/// Invariant  a chain of nodes, each with the multiplicity in exp and the factor in pcoef, numb false; *count
///            grows by one a factor. The product of the powers is x up to a unit, or up to a number over Z.
///            Factors are square-free and coprime, monic in modular mode, primitive with positive leading
///            number over Z.
/// Modes      Z, a prime modulus, table fields; no negative exponents.
#include "poly/poly.h"
#include "storage/failure.h"
namespace tolvex {
/// x, kept, is primitive in the variable of pt. Errors 308, 352: a coefficient has no p-th root that can be
/// taken, the factors found so far stand in the list.
void square_free_factor(poly x, polyptrr sq, int32_t* count, polypt pt);
/// Characteristic 0; *x is kept.
void rat_sq_free_factor(polyptrr x, polyptrr sq, int32_t* count, polypt pt);
/// All levels: contents recursively, then one of the above. *x is changed: its content is divided out. first:
/// *count begins at 0.
void total_sq_free(polyptrr x, polyptrr sq, int32_t* count, boolean first, polypt pt);
/// *x := its root of degree p, the characteristic: of a number, a field element, or a polynomial in one
/// variable above the field. False: *why is 352, in table fields 308; *x is spoilt.
bool poly_pth_root(polyptrr x, Err* why);
void free_factor_list(polyptrr sq);
}  // namespace tolvex
