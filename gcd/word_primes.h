#pragma once
/// gcd/word_primes.h: a gcd over Z from its images modulo word primes.
///
/// Ownership  operands are only read; the result is fresh. Scratch memory taken by the first image that
///            succeeds stays until the caller releases it.
#include "gcd/word_gcd.h"
namespace tolvex {
/// One way to make images.
struct PrimeImages {
    WordGcdEnv* env;
    const PackPlan* plan;
    /// *g := the image modulo f.p, with the scaling that all images share; false: the prime or a point is
    /// bad.
    bool (*image)(void* source, const WordField& f, PackTerms* g);
    void* source;
    int64_t bits;          // beyond a product of primes of so many bits the images are foreign
    bool one_shot;         // when a settled candidate fails, further primes change nothing
    uint32_t first;        // the prime to begin with, 0: any
    const bool* hopeless;  // set by `image`: no prime will help; nil: never
};
/// *g := the primitive gcd, common monomial included; it has divided both operands.
bool gcd_from_primes(const PrimeImages& p, polyptrr g);
/// Bits that the gcd, scaled by a number of `digits` digits, does not reach: Gelfond's bound on the heights
/// of factors.
int64_t gcd_bits(const WordGcdEnv& env, const PackPlan& plan, int32_t digits);
}  // namespace tolvex
