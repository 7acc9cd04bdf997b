#pragma once
/// quoly/quoly_mass.h: sizes of values, by which pivots are chosen.
///
/// Ownership  operands are only read.
/// Modes      any.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
inline int32_t depthnum = 2;  // weight of the leading exponent of a numerator
inline int32_t massnum = 3;   // weight of a denominator against its numerator

/// Digits of a number; both parts of a rational number; poly_mass of the numerator plus massnum times that of
/// the denominator. Saturates at 2^31 - 1.
int32_t quoly_mass(const quolynode* n);
int32_t better_quoly_mass(const quolynode* n);  ///< the same with better_poly_mass
/// Terms of numerator and denominator, counted to the end; a number: 1.
int64_t numterms(const quolynode* n);
int64_t f_numterms(const quolynode* n);  ///< the same, an element of the field tower being one term
}  // namespace tolvex
