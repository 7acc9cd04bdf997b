#pragma once
/// poly/packed_crt.h: integers from their images modulo word primes, for all terms of a polynomial at once.
///
/// Purpose    Garner's mixed radix: value = d_0 + p_0 (d_1 + p_1 (d_2 + ...)), digits extended prime by
///            prime; the symmetric value is the answer. (Knuth, TAOCP 2, 4.3.2.)
/// Invariant  primes are distinct odd primes below 2^31.
/// Ownership  arrays live in scratch memory; crt_add tells when it took new ones, so that the caller does not
///            release them.
#include "poly/packed.h"
namespace tolvex {
struct CrtTerms {
    int64_t count;
    int64_t* index;   // falling
    uint32_t* digit;  // capacity digits a term, the first `primes` in use
    uint32_t* prime;
    int32_t primes, capacity;
};
/// Room for `capacity` primes; no terms.
CrtTerms crt_open(int32_t capacity);
/// Brings in the image modulo f.p. *grown: new arrays were taken from scratch memory. True if no symmetric
/// value changed.
bool crt_add(CrtTerms* t, const PackTerms& image, const WordField& f, bool* grown);
/// Makes term i (source: CrtTerms) as a chain.
void leaf_of_crt(void* terms, int64_t i, imptr leaf);
/// Bits that bound all magnitudes: each is below 2^result.
int64_t crt_bits(const CrtTerms& t);
/// The sum of the bit lengths, rounded down, of the primes taken in: their product is at least 2^result.
int64_t crt_product_bits(const CrtTerms& t);
}  // namespace tolvex
