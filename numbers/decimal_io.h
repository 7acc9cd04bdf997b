#pragma once
/// numbers/decimal_io.h: numbers as text.
///
/// Modes      dispcutoff, uglyprint, alt_form_display, disp_size (numbers/display_modes.h).
/// Raises     new_readin: warning of overflow in lintmode. get_decimal_part: errors 235, 341 (language
///            layer).
#include "language/tokens/token.h"
#include "numbers/display_modes.h"
#include "numbers/number.h"

#include <cstdio>
namespace tolvex {
/// Prints the chain y. flag: the first group without padding; zeros_flag: digits of a fraction; base10_flag:
/// y is a decimal chain; indent_flag: first group padded with blanks; extra_space: a blank after "-".
void showint(FILE* outf, const number* y, boolean flag, boolean zeros_flag, boolean base10_flag,
             boolean indent_flag, boolean extra_space, boolean outf_is_tty, int32_t* mylength);
/// Prints a number in the mode in force.
void display(FILE* outf, boolean outf_is_tty, boolean flag, const number* a, int32_t* mylength,
             boolean extra_space);
/// Reads a run of digits, the first being the current token, into the decimal chain n; the next token is
/// current after it. *outcount: digits read.
void readin(FILE* inf, imptr n, nameptr* flag, int32_t* outcount);
/// The same into a value of the ring in force.
void new_readin(FILE* inf, imptr n, nameptr* flag, int32_t* outcount);
/// Writes numer/denom truncated to disp_size groups: sign, integer part (omitted when 0), ".", digits.
void decimal_tail(FILE* outf, const number* numer, const number* denom, int32_t* mylength);
/// disp_size := size (below 0: 0; above 999: a warning), disp_cons := (10^8)^disp_size outside lintmode.
void set_disp_size(int32_t size);
}  // namespace tolvex
