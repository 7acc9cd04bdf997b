#pragma once
/// poly/poly_convert.h: polynomials between ground rings.
#include "poly/poly.h"
namespace tolvex {
/// Lasting change, in place: every leaf a residue, zero terms removed. Called with lintmode already set by
/// the caller as numbers/ring_switch.h says; chains are given back.
void poly_change_to_mod(polyptrr p);
/// In place: words that were computed or read outside the modular ring become its residues, zero terms go.
void poly_reduce_words(polyptrr p);
void poly_change_from_mod(polyptrr p);            ///< the integer of the same value 0..modulus-1
void poly_change_from_mod_symmetric(polyptrr p);  ///< residues above half_modulus become negative
/// A fresh image modulo the modulus in force of a polynomial with chains; the operand is only read.
void poly_image(const polynode* p, polyptrr q);
/// Table fields: integers of Z go modulo 2.
}  // namespace tolvex
