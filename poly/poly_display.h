#pragma once
/// poly/poly_display.h: polynomials to text that reads back to the same value.
///
/// Modes      monomial_list, alt_form_display, uglyprint, dispcutoff, do_line_sup, laurent.
#include "poly/poly.h"

#include <cstdio>
namespace tolvex {
/// Prints p in the variables from q on. lines: line breaks so far of this value.
void poly_display(FILE* outf, boolean outf_is_tty, const polynode* p, int32_t* mylength, polypt q,
                  boolean extra_space, boolean maybe_just_number, int32_t* lines);
void crude_poly_disp(FILE* outf, const polynode* p, int32_t depth,
                     polypt q);       ///< debugging dump; never fails
int32_t sizepoly(const polynode* p);  ///< bytes; saturates
}  // namespace tolvex
