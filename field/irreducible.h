#pragma once
/// field/irreducible.h: is a modding polynomial irreducible over the tower below it?
///
/// Purpose    a declared field is tested when it is declared.
/// Ownership  the tower is only read.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "field/tower_words.h"
namespace tolvex {
/// True if the modding polynomial of height h is irreducible over the tower below, which is a finite field.
/// False as well if the tower below proves to be no field. Polls; what happens to t meanwhile does not
/// matter.
bool tw_irreducible(const TowerWords& t, int32_t h);
}  // namespace tolvex
