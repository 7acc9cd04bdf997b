#pragma once
/// poly/poly_display.h: polynomials to text that reads back to the same value.
///
/// Purpose    two forms. Nested: the recursive form as it stands, `(y + 1)x^2 - 3`. List of monomials
///            (monomial_list, more than one variable): `3x^2 y - x y + 7`. uglyprint writes either without
///            blanks and with "*", for any reader: `(y+1)*x^2-3`.
/// Invariant  *mylength counts the characters of the line, 0 right after a line break; a full line is
///            ended after a term. On the terminal a value stops after 150 lines (do_line_sup):
///            linesuppression, which the caller sets when a value begins, is cleared then, and nothing
///            more of that value is to be written.
/// Modes      monomial_list, alt_form_display, uglyprint, dispcutoff, do_line_sup, laurent.
/// Raises     internal faults on a malformed polynomial.
#include "poly/poly.h"

#include <cstdio>
namespace tolvex {
/// Prints p in the variables from q on. extra_space: a blank after a leading minus; maybe_just_number: p may
/// be a plain number. *lines: line breaks so far of this value. Time linear in the text.
void poly_display(FILE* outf, boolean outf_is_tty, const polynode* p, int32_t* mylength, polypt q,
                  boolean extra_space, boolean maybe_just_number, int32_t* lines);
/// Debugging dump, one node a line: two blanks a level, then the variable (or "level d"), "^" and the
/// exponent, or the number of a leaf, with "*" if it has a next. Never fails; stops at level 151.
void crude_poly_disp(FILE* outf, const polynode* p, int32_t depth, polypt q);
int32_t sizepoly(const polynode* p);  ///< bytes; saturates
}  // namespace tolvex
