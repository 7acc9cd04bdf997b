#pragma once
/// matrix/int_entries.h: integers in scratch memory, from which matrices are reduced modulo many primes.
///
/// Ownership  magnitudes stand in scratch memory until the caller releases it; results may share those of
///            operands.
/// Modes      chains are read whatever the mode.
#include "numbers/limbs.h"
#include "poly/word_field.h"
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// Sign and magnitude.
struct IntEntry {
    const limb* at;
    int64_t n;  // 0: the number 0
    bool negative;
};
inline constexpr limb k_limb_one = 1;
inline constexpr IntEntry k_entry_one = {&k_limb_one, 1, false};
/// Images modulo primes below 2^23 are the fastest in floating point: this is the largest.
inline constexpr uint32_t k_first_image_prime = (1u << 23) - 15;
/// The next smaller prime of an odd number above 3.
uint32_t image_prime_below(uint32_t p);

/// A chain; nil: 0.
IntEntry int_entry(const number* v);
/// A residue.
IntEntry word_entry(uint32_t v);
/// The parts of a number or of a fraction of numbers.
IntEntry entry_numerator(const quolynode* q);
IntEntry entry_denominator(const quolynode* q);
IntEntry entry_product(const IntEntry& a, const IntEntry& b);
/// a / b, which is exact; positive numbers.
IntEntry entry_quotient(const IntEntry& a, const IntEntry& b);
/// Of positive numbers.
IntEntry entry_common_multiple(const IntEntry& a, const IntEntry& b);
/// |a| is below 2 to this power; 0 for 0.
int64_t entry_bits(const IntEntry& a);
/// The residue modulo f.p.
uint32_t entry_residue(const WordField& f, const IntEntry& a);
/// *x, which holds no chain, := the value.
void number_of_entry(const IntEntry& a, imptr x);
/// The same as a new value; outside lintmode.
quoly value_of_entry(const IntEntry& a);
}  // namespace tolvex
