#pragma once
/// numbers/random_num.h: random words.
///
/// Purpose    the random values that users see. Random choices inside methods come from generators of their
///            own.
#include "numbers/number.h"
namespace tolvex {
int32_t rand_word();                           ///< 0..2147483647, from random()
int32_t rand_below(int32_t n);                 ///< 0..n-1
void randomize(boolean clocked, imptr numer);  ///< the random numerator of Rand (0) and Randint (1)
}  // namespace tolvex
