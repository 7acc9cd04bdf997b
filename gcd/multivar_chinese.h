#pragma once
/// gcd/multivar_chinese.h: gcds in several variables over a field of words by evaluation and interpolation of
/// the main variable. Private to gcd/ and to tests.
///
///   x^2 y + 3x + 5 y   transposed:   y · row 0, row 1      row 0: x^2 + 5      row 1: 3x
///
/// Purpose    values at many points are taken from the transposed form: a tree in the levels below the
///            main one, whose leaves stand for polynomials in the main variable, each a short array.
/// Invariant  the top two levels may be renamed freely: a gcd depends on positions alone. What lacks
///            level 2 is therefore handed to polygcd one level down, and no variable record is ever
///            changed.
/// Ownership  arrays live in scratch memory of the caller's mark; trees belong to the caller.
#include "poly/poly.h"
#include "poly/word_field.h"
namespace tolvex {
struct MainRows {
    poly tree;  // one level below the operand; a leaf holds the number of its row in lint
    int32_t rows;
    int32_t degree;     // of the operand in the main variable
    int32_t* start;     // row i has the terms start[i]..start[i+1]-1
    int32_t* exp;       // of the main variable, falling
    uint32_t* residue;  // coefficient
};
/// The transposed form of p, kept.
MainRows main_rows(poly p);
/// A fresh p with the main variable set to point, one level down.
poly main_rows_at(const WordField& f, const MainRows& rows, uint32_t point);
/// The polynomial of degree below n in a new main variable whose values at the n distinct points are the
/// images, which stand one level down; they are kept.
poly interpolate_main(const WordField& f, poly* image, const uint32_t* point, int32_t n);
/// The value at c of the Newton form a[0] + a[1] (x - point[0]) + ... with n coefficients.
uint32_t mod_Chinese(const WordField& f, const uint32_t* a, const uint32_t* point, int32_t n, uint32_t c);

/// Exchanges the top two levels of *p.
void swap_levels_1_2(polyptrr p);
/// The coefficient of the highest power xdeg >= 1 of the level-2 variable, with that level taken out: it
/// stands one level down. Fresh.
poly leading_coef_level_two(poly x, int32_t xdeg);
/// One interpolation on operands with gcd(content_2) = 1; xdeg, ydeg >= 1 their degrees in level 2, expo a
/// bound of the degree of the gcd in the main variable. False: bad luck, or too few points.
bool sub_mod_multivar_Chinese(poly x, poly y, polyptrr r, int32_t expo, int32_t xdeg, int32_t ydeg,
                              polypt pt);
}  // namespace tolvex
