#pragma once
/// gcd/content.h: contents of polynomials, in their three forms.
///
/// Purpose    the gcd of the coefficients in a variable. The two smallest coefficients meet first: the
///            running gcd starts small, and most chains end early at 1.
///            Cost: one gcd a coefficient; the search for small ones is bounded by the work counters of
///            gcd_modes.h.
/// Invariant  a content is positive over Z and monic in modular mode.
/// Ownership  results are fresh; *r is replaced. A save flag that is false lets the routine use its operand
///            up: what is left is given back by its owner.
/// Raises     fatal: " *** pp numb in content", " 0 exp head node in general_content", on malformed operands.
#include "poly/poly.h"
namespace tolvex {
/// *r := gcd of the coefficients of q in the variable pt, standing one level below pt.
void content(poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean qsave);
/// gcd of p, a polynomial of exp 0 in pt, and the coefficients of q; one level below pt.
void aux_content(poly p, poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean psave,
                 boolean qsave);
/// gcd of the coefficients of both; one level below pt.
void dual_content(poly p, poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean psave,
                  boolean qsave);
/// Content with respect to the variables below relative level depth (1: the top level of p): the gcd of the
/// coefficients of p as a polynomial in those variables, at p's own level. When *wantr is false on entry and
/// there is a single coefficient: *r := 1 and *wantr := true, p is its own content up to a monomial.
void general_content(poly p, int16_t depth, polyptrr r, polypt pt, boolean* wantr, boolean wantcons);
/// Content in the variable of relative level lev (1: that of pt): a fresh polynomial at the level of p, in
/// the other variables, with a dummy for lev.
poly content_in_level(poly p, int32_t lev, polypt pt);
/// The same in the level-2 variable.
inline poly content_2(poly x, polypt pt) { return content_in_level(x, 2, pt); }
}  // namespace tolvex
