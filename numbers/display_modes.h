#pragma once
/// numbers/display_modes.h: how values are written.
#include "numbers/number.h"

#include <cstdint>
namespace tolvex {
inline boolean noisy = 1;  // display results                     writers: &N, ZZ2
inline boolean uglyprint = 0;         // compact form that any reader takes   writers: &U
inline boolean alt_form_display = 1;  // symmetric residues                   writers: &H, table fields
inline int16_t dispcutoff = 76;       // line length of output                writers: &_d
inline int32_t disp_size = 5;         // groups of 8 digits of a decimal      writers: &d, change_prec
inline number disp_cons = {};         // (10^8)^disp_size                     writers: calc_disp
inline int32_t warn_cnt = 0;          // overflow warnings of this statement  writers: main loop
}  // namespace tolvex
