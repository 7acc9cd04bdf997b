#pragma once
/// gcd/word_brown.h: gcds over a word field by evaluation and interpolation.
///
/// Purpose    the gcd of flat polynomials in several variables: the last variable is set to points, the
///            images are interpolated; the contents met on the way are polynomials in one variable.
///            (Brown, "On Euclid's algorithm and the computation of polynomial greatest common divisors",
///            1971.)
/// Invariant  results err only towards a polynomial that is too large or foreign: a result 1 is proved,
///            any other is proved by dividing both operands.
/// Ownership  results live in scratch memory of the caller's mark.
#include "poly/packed.h"
namespace tolvex {
struct BrownEnv {
    WordField f;
    const int64_t* radix;  // by place of the plan
    bool careful;    // as many points as the degree bound asks for, no stop when an image changes nothing
    bool one_quiet;  // one image that changes nothing ends an interpolation; otherwise it takes two in a row
    bool failed;     // the field has too few points
};
/// The monic gcd of a and b in the first `places` variables, neither 0. Nothing when env.failed comes out
/// true.
PackTerms brown_gcd(BrownEnv& env, const PackTerms& a, const PackTerms& b, int32_t places);
}  // namespace tolvex
