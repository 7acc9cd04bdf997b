#pragma once
/// field/fold.h: reduction by modding polynomials, besides what every product asks for (poly/ports.h).
///
/// Ownership  *at is rewritten in place.
/// Modes      any. Field levels in modular mode go through flat arrays (field/tower_words.h), all else
///            through the records.
/// Raises     211: a negative exponent that cannot be reduced.
#include "poly/poly.h"
namespace tolvex {
/// The coefficients of the chain *at reduced at the levels from `below` on; vanished terms go, nil if all do.
void reduce_coefficients(polyptrr at, polypt below);
}  // namespace tolvex
