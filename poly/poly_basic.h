#pragma once
/// poly/poly_basic.h: making, copying, negating polynomials.
///
/// Ownership  copies build a new tree, then free the old target: source and target may be one variable.
#include "poly/poly.h"
namespace tolvex {
void poly_set(int32_t num, polyptrr p);  ///< p := the leaf num (in modular mode the caller gives a residue)
void scalar_to_poly(const number* n, polyptrr p);  ///< p := the leaf n, a copy
void poly_to_scalar(const polynode* p, imptr n);   ///< n := the number of a leaf, a copy
void base_poly(polyptrr p, int32_t depth);         ///< p := the variable of level depth
void remove_dummy(polyptrr u);  ///< u is one term of exp 0 over a number: becomes the number
/// Restores the form at the top of a chain whose terms are right but may be empty (nil becomes the leaf 0),
/// or one or last term of exp 0 over a number (becomes a leaf).
void fix_top(polyptrr u);
void poly_assign(const polynode* p, polyptrr q);  ///< q := p, a copy of the whole tree
/// The same with safe points: p stays in place while statements run.
void poly_assign_polled(const polynode* p, polyptrr q);
void node_assign(const polynode* p, polyptrr q);       ///< the single node with its coefficient, next nil
void mini_copy(polyptrr p, polyptrr q);                ///< moves: the new head takes over everything
void spec_poly_assign(const polynode* p, polyptrr q);  ///< chains are copied whatever the mode
void poly_makeneg(const polynode* p, polyptrr q);      ///< q := -p, a copy
void poly_inplace(poly p);                             ///< negates p in place
void poly_abs(poly p);                    ///< leading number positive (nothing to do in modular mode)
void add_pad(polyptrr p, int32_t depth);  ///< depth pads on top; a number is left alone
}  // namespace tolvex
