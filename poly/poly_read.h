#pragma once
/// poly/poly_read.h: polynomials from text and from files.
///
///   poly  := ["-"] term { ("+" | "-") term }
///   term  := coef | [coef] power { power }
///   coef  := digits | "(" poly ")"
///   power := variable [ "^" ( ["-"] digits | "(" ["-"] digits ")" ) ]
///
/// Purpose    both forms that the display writes, nested and list of monomials, read back. Levels rise
///            inside a term; a coefficient in parentheses lives in deeper levels than the first power
///            after it.
/// Ownership  *p is replaced when the value is complete; a partial value is given back before an error.
/// Modes      nomodpolyreadin: coefficients are read as words, out-of-range ones reduced at the end. In
///            modular mode a minus draws a warning: once a load, once a statement at the terminal.
/// Raises     159 coefficient not deeper than its power; 160 no polynomial variable; 161 exponent; 162,
///            165 a missing parenthesis; 163 order of the variables.
#include "poly/poly.h"

#include <cstdio>
namespace tolvex {
inline boolean minus_warned = 0;  // the warning has come in this statement    writers: levels, poly_readin

/// Reads one polynomial, whose first token is current, up to the first token that fits nothing, which stays
/// current. *depth: the level of what was read. n log n in the terms of a sum.
void poly_readin(FILE* inf, polyptrr p, nameptr* flag, int32_t* depth);

/// The numeric form on the file chdat: blank-separated decimal integers.
///   number := count digits (base 2^28, head first, signed)      chain := { e number | e 0 chain } 2147483647
/// A chain of one term with exponent 0 over a number is that number. Modular mode: leaves are reduced.
/// Raises     "chdat file is damaged."
void direct_poly_read(polyptrr p);
void direct_number_read(imptr n);

/// The spill form: raw 32-bit words. A leaf: negzero, the count of digits and the digits head first (in
/// lintmode 0 and the word); a term: its exponent, then its coefficient as a chain; a chain ends with
/// 2147483647.
void put_poly_disk(FILE* f, const polynode* p);
/// False, *p nil, if f ends too early or holds something else.
bool get_poly_disk(FILE* f, polyptrr p);
}  // namespace tolvex
