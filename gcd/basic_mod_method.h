#pragma once
/// gcd/basic_mod_method.h: the choice of a word prime for an image of two polynomials over Z.
///
/// Purpose    shared by all computations that begin with one image.
/// Ownership  operands are only read.
#include "poly/poly.h"
namespace tolvex {
/// Position, counted from 1, of an entry of prme[0..prmesize) that divides neither leading number; above
/// prmesize if there is none. The scan goes upwards from prmesize - buffer - (0..rand_mod-1), clipped to the
/// table: an unlucky prime does not come again every time.
int32_t select_prime(poly x, poly y, int32_t buffer, int32_t rand_mod, int32_t prmesize, const number* prme);
}  // namespace tolvex
