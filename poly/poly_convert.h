#pragma once
/// poly/poly_convert.h: polynomials between ground rings.
///
/// Purpose    a change of ring and computations on images. In table fields integers of Z go modulo 2.
/// Invariant  results are in normal form: terms that become 0 go.
/// Ownership  in place, or a fresh result from an operand that is only read, as each says.
/// Raises     poll_interrupt where it is said.
#include "poly/poly.h"
namespace tolvex {
/// In place: words that were computed or read outside the modular ring become its residues, zero terms go.
void poly_reduce_words(polyptrr p);
void poly_change_from_mod(polyptrr p);            ///< the integer of the same value 0..modulus-1
void poly_change_from_mod_symmetric(polyptrr p);  ///< residues above half_modulus become negative
/// A fresh image modulo the modulus in force of a polynomial with chains; the operand is only read. Polls.
void poly_image(const polynode* p, polyptrr q);
/// The way back: fresh chains of the residues, which are only read; symmetric: those above half_modulus
/// become negative. Polls.
void poly_lift(const polynode* p, bool symmetric, polyptrr q);
}  // namespace tolvex
