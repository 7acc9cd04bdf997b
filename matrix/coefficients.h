#pragma once
/// matrix/coefficients.h: polynomials in one variable from computed coefficients. Private to matrix/.
///
/// Ownership  polynomials and numbers are new; terms of images stand in scratch memory of the caller.
#include "poly/leaf_number.h"
#include "poly/packed_crt.h"
#include "poly/poly_basic.h"
#include "storage/scratch.h"

#include <cstdint>
namespace tolvex {
/// The polynomial in the variable of `level` with the coefficients number_of(k) of x^k, nil for 0, asked for
/// k = n..0.
template <class Maker> inline poly poly_of_coefficients(int32_t n, int32_t level, Maker number_of) {
    poly top = nullptr;
    polyptrr link = &top;
    for (int32_t k = n; k >= 0; k--) {
        imptr c = number_of(k);
        if (c == nullptr) continue;
        *link = chain_node(k, leaf_of(c));
        link = &(*link)->next;
    }
    add_pad(&top, level - 1);
    return top;
}
/// The same from residues or codes of the ring in force.
poly poly_of_words(const uint32_t* c, int32_t n, int32_t level);
/// The same from the symmetric values of images.
poly poly_of_crt(CrtTerms& t, int32_t n, int32_t level);
/// The coefficients c[0..n] of an image as crt_add takes them.
PackTerms image_terms(const uint32_t* c, int32_t n);
}  // namespace tolvex
