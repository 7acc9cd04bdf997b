#pragma once
/// poly/poly_read.h: polynomials from text.
///
/// Raises     159 to 163, 165. The partial value is freed before.
#include "poly/poly.h"
namespace tolvex {
/// Reads one polynomial up to the first token that fits nothing, which stays current. *depth: its level.
void poly_readin(FILE* inf, polyptrr p, nameptr* flag, int32_t* depth);
void direct_poly_read(polyptrr p);  ///< numeric form, from chdat
void direct_number_read(imptr n);
void put_poly_disk(FILE* f, const polynode* p);
void get_poly_disk(FILE* f, polyptrr p);
}  // namespace tolvex
