#pragma once
/// field/cantor_zass.h: a random residue that tells factors of one degree apart. For the files of
/// factorisation.
///
/// Purpose    the trace of a random residue lies in the field modulo each factor; a power of it, or its
///            trace to the field of two elements, is then one of two values, which a gcd separates.
#include "field/factor_words.h"
namespace tolvex {
/// out := the sum of a^(q^i), 0 <= i < d. By powers of Frobenius, or by doubling and compositions.
void residue_trace(const ResidueRing& r, const uint32_t* a, int32_t d, uint32_t* out);
/// Odd characteristic: out := (t + c)^((q - 1) / 2) - 1 for a random element c; t may be nil, that is x.
void odd_cantor_zass(const ResidueRing& r, const uint32_t* t, FactorRandom* random, uint32_t* out);
/// Characteristic 2: out := the trace of c t to the field of two elements for a random element c.
void even_cantor_zass(const ResidueRing& r, const uint32_t* t, FactorRandom* random, uint32_t* out);
}  // namespace tolvex
