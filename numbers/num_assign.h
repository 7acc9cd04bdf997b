#pragma once
/// numbers/num_assign.h: assignment of numbers.
///
/// Ownership  the old chain of the destination is given back after the new one is built: source and
///            destination may be one record.
#include "numbers/number.h"
namespace tolvex {
void setvalue(int32_t n, imptr x);      ///< x := n in the mode in force; -2^31 stays one raw digit
void setvalue_any(int64_t n, imptr x);  ///< x := n, any n; lintmode: its low 32 bits
void special_set(int32_t n, imptr x);   ///< one digit n, whatever the mode
void special_set_2(int32_t n, int32_t m, imptr x);  ///< the chain n * m, whatever the mode
void num_assign(const number* n, imptr x);          ///< a copy in the mode in force
/// The same with safe points: n stays in place, and nobody else reaches x, while statements run.
void num_assign_polled(const number* n, imptr x);
void spec_num_assign(const number* n, imptr x);         ///< a copy of the chain, whatever the mode
void fast_num_assign(numptr p, int32_t size, imptr x);  ///< the `size` digits from p
/// The same in a new record; nil when the digit at p is 0.
void faster_num_assign(numptr p, int32_t size, imptrptr x);
}  // namespace tolvex
