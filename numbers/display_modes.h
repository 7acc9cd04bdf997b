#pragma once
/// numbers/display_modes.h: how values are written.
///
/// Purpose    read by the display routines of numbers, poly and quoly alone.
#include "numbers/number.h"

#include <cstdint>
namespace tolvex {
inline boolean noisy = 1;      // display results                     writers: &N, ZZ2
inline boolean uglyprint = 0;  // compact form that any reader takes  writers: &U; session/mod_out for a while
inline boolean alt_form_display = 1;  // symmetric residues                  writers: &H, table fields, saving
inline int16_t dispcutoff = 76;       // line length of output               writers: &_d; arrays for a while
inline int32_t disp_size = 5;  // groups of 8 digits of a decimal writers: set_disp_size (&d, changes of ring)
inline number disp_cons = {};  // (10^8)^disp_size                    writers: set_disp_size
inline int32_t warn_cnt = 0;   // overflow warnings of this statement writers: showint, session/loop
}  // namespace tolvex
