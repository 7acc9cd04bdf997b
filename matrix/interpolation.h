#pragma once
/// matrix/interpolation.h: the interpolation route of determinants, as the switch &(L = 1) asks for it.
///
/// Purpose    what stands in front of matrix/interpolated.h: which matrices the route takes, its progress
///            lines and warnings, what the arguments of Det promise. Where a promise fails the determinant is
///            computed without it, so that the value is right whatever was promised, roots excepted: these
///            are what was asked for.
/// Ownership  matrices and divisors are only read.
/// Raises     poll_interrupt. Errors are left to the caller, who has memory to give back first:
///            *request.fault := 304 no point is free of zeros of the divisor; 305 the divisor does not
///            divide; 263 images are to be written and there is no file. The value is 0 then.
#include "matrix/sparse.h"
#include "storage/failure.h"

#include <cstdint>
#include <cstdio>
namespace tolvex {
/// What has been asked of a determinant beside its matrix.
struct DeterminantRequest {
    const polynode* fct = nullptr;      // a polynomial other than 0 that it is divided by
    int32_t degree = -1, degree2 = -1;  // bounds in its first two variables, divisor included; -1: none
    int32_t power = -1;     // k > 1: it is a k-th power, the base is wanted; -k < -1: a polynomial
                            // in k-th powers of the variables, which are to be replaced
    int32_t numprimes = 0;  // over Z so many primes decide, 0: as many as are needed
    Err* fault = nullptr;   // nil only without fct and lagrange_stash
    FILE* stash = nullptr;  // where lagrange_stash sends the images of sparse matrices; nil: no file is open
};
/// *q := the determinant of the m by m matrix a, column by column, divided by request.fct: modulo a prime or
/// in a table field, and over Z. Power is ignored. check_laurent: negative exponents are looked for. False:
/// no result, *q as it was.
bool mod_poly_determ(const quoly* a, int32_t m, const DeterminantRequest& request, bool check_laurent,
                     quolyptr q);
bool rat_poly_determ(const quoly* a, int32_t m, const DeterminantRequest& request, bool check_laurent,
                     quolyptr q);
/// The same for a sparse matrix over either ground ring; power counts.
bool sparse_lagrange(sparseptr spar, int32_t m, const DeterminantRequest& request, quolyptr q);
/// *n := *n / request.fct, if there is one.
void divide_fct(quolyptr n, const DeterminantRequest& request);
}  // namespace tolvex
