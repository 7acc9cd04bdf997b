#pragma once
/// numbers/num_sign.h: sign of numbers, in every mode (in modular mode -n is modulus - n; in a table field
/// n).
///
/// Ownership  x and m are replaced by copies; the others work in place.
#include "numbers/number.h"
namespace tolvex {
void in_place_neg(imptr num);                ///< num := -num
void makeneg(const number* num, imptr x);    ///< x := -num, a copy
void abs_value(imptr n);                     ///< in place; nothing to do in modular mode
void abs_val_num(const number* n, imptr m);  ///< m := |n|, a copy
}  // namespace tolvex
