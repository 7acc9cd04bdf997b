#pragma once
/// field/irreducible.h: is a modding polynomial irreducible over the tower below it?
#include "field/tower_words.h"
namespace tolvex {
/// True if the modding polynomial of height h is irreducible over the tower below, which is a finite field:
/// Ben-Or's test (1981), x^(q^i) - x for i = 1 .. n/2. False as well if the tower below proves to be no
/// field. Polls between powers: t is a record that stays (candidate_words), or is fetched again by the
/// caller.
bool tw_irreducible(const TowerWords& t, int32_t h);
}  // namespace tolvex
