#pragma once
/// matrix/hermite.h: Hermite normal forms of matrices of integers, by column operations.
///
///   H = alpha A beta    p1  0  0  0     pivots positive, zeros to the right of each, entries to its left
///                       *   p2 0  0     in 0..pivot - 1; the columns behind the rank are 0; alpha orders
///                       *   *  0  0     the rows
///
/// Purpose    up to 12 rows and columns the steps of the elimination are those of the stated pivot rule,
///            which fixes the order of the rows. Above, the first independent rows come first, as they stand,
///            and H is computed modulo a multiple of the determinant; beta solves a system of equations.
///            Source: P. Domich, R. Kannan, L. Trotter, "Hermite normal form computation using modulo
///            determinant arithmetic", Math. Oper. Res. 12 (1987).
/// Raises     poll_interrupt: of the engine only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
/// The reduction of a record whose elements are integers; options are not used. Error 254 for other elements.
void intcolred(Reduction* r, const ReductionOptions* options);
/// True if all elements are integers; else error 254.
bool integers_alone(Reduction& r);

/// The form by the engine, in scratch memory of the caller.
struct HermiteForm {
    int32_t rank;
    int32_t* order;  // row i of H comes from row order[i] of A
    IntGrid h;
    IntGrid beta;  // if asked for: A with its rows in that order times beta is h
    IntGrid betinv;
};
HermiteForm hermite_form(const IntGrid& a, bool with_beta);
}  // namespace tolvex
