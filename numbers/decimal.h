#pragma once
/// numbers/decimal.h: between chains in base 2^28 and decimal digits.
///
/// Purpose    three decimal forms: text without leading zeros; limb arrays, the binary side of both
///            conversions; and decimal chains, which are number records whose digits are in base 10^8, so
///            that a node is 8 characters.
/// Ownership  all work memory is scratch, given back before return; the powers of ten stay for the session.
/// Raises     nothing. Long conversions poll for interrupts.
#include "numbers/limbs.h"
#include "numbers/number.h"
namespace tolvex {
/// n2 := decimal chain of the chain n. n2 may be n. Cost and method as limbs_to_text.
void make_base_10(const number* n, imptr n2);
/// n2 := decimal chain of the bare chain of `size` digits from p to t, which is only read.
void verybig_base_10(numptr p, numptr t, int32_t size, imptr n2);
/// x, whose old chain is given back whatever the mode, becomes the decimal chain of digits[0..count), count
/// >= 1. Leading zeros are dropped.
void decimal_chain_from_text(imptr x, const char* digits, int64_t count, bool negative);

/// Room for the digits of n limbs.
inline int64_t text_room(int64_t n) { return n * 20 + 20; }
/// Writes a[0..n), which is overwritten, in decimal and returns the count of digits: "0" for 0. Divide and
/// conquer over the powers 10^(19 2^k) (Knuth 2, 4.4): the cost of a division of this size, times its
/// logarithm.
int64_t limbs_to_text(char* out, limb* a, int64_t n);
/// Room for the value of `count` digits.
inline int64_t limbs_for_digits(int64_t count) { return count * 3322 / 64000 + 2; }
/// r := the value of digits[0..count), count >= 1; returns its true length, 0 for 0. Divide and conquer as
/// above.
int64_t limbs_from_text(limb* r, const char* digits, int64_t count);
}  // namespace tolvex
