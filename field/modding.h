#pragma once
/// field/modding.h: variables that are modded out, and the field tower that the deepest of them make.
///
/// Purpose    what the commands of the session change: the modding polynomial of a variable, and all that is
///            derived from the list of variables.
/// Invariant  p is monic, of degree expon at least 2, its coefficients reduced; the levels field_depth and
///            deeper are those with `field` set; in rational mode p stands in chains, in modular mode in
///            residues of tower_ring.
/// Ownership  a level owns its polynomial. Values are the session's to convert.
#include "poly/poly.h"
namespace tolvex {
/// field_depth, pseudo_polynames, modout_above_field and `field` of all levels from the list of variables as
/// it stands; without a field the auxiliary lists are emptied. To be called whenever a level comes, goes or
/// moves.
void reset_pseudo_poly();
/// The form in which modding polynomials are kept, those of images too: t^n + a with a number a becomes the
/// number -a. A number is kept as it is.
void shorten_modding(polyptrr f);
/// The modding polynomial of v becomes f, used up, monic, of its own level; what was there is given back. The
/// auxiliary lists are the caller's.
void install_modding(polypt v, polyptrr f, bool field);
void remove_modding(polypt v);
/// Modding polynomials go to the modular ring in force (after the values), or back to chains (before them).
/// Coming back, polynomials that differ from those before empty the auxiliary lists.
void modding_to_mod();
void modding_from_mod();
/// In modular mode, while values are worked out for the ring of integers: modding_lift puts the chains that
/// the polynomials are going to be in force, modding_exchange exchanges them with the residues, and once
/// more.
void modding_lift();
void modding_exchange();
inline int32_t modding_lifted = 0;  // the ring of the residues while the chains are in force; else 0
/// True if the level of v is irreducible over the tower below it in the modular ring in force. Polls.
bool level_is_field(polypt v);
/// *whole := the modding polynomial of v, t^n + a included; fresh.
void whole_modding(const polydata* v, polyptrr whole);
/// While a new modding polynomial for a level is read, those of that level and above are not in force.
void suspend_modding();
void resume_modding();
}  // namespace tolvex
