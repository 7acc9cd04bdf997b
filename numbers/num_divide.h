#pragma once
/// numbers/num_divide.h: division of chains with remainder.
///
/// Ownership  operands are kept; results replace what they held, and may be operands where it is said.
/// Modes      chains, whatever the mode says.
/// Raises     nothing: divisors are tested by the callers.
#include "numbers/number.h"
namespace tolvex {
/// Signed; the remainder takes the sign of the quotient (n = quot d + rem only for d > 0). d = 0: nothing
/// happens. quot or rem may be an operand; nil: not wanted.
void divide(const number* n, const number* d, imptr quot, imptr rem);
void pos_divide(const number* n, const number* d, imptr quot, imptr rem);  ///< n >= 0, d > 0
void pos_divide_noq(numptr nhead, int32_t nsize, numptr dhead, int32_t dsize, imptr rem);
/// One-digit quotient; sets quot->lint.
void simp_divide(numptr p, int32_t size, const number* d, imptr quot, imptr rem);
/// n := n / d, exact (the caller knows), any signs; truncated towards 0 otherwise.
void divide_exact(imptr n, const number* d);
/// q := n / d truncated towards 0, r := n - q d. Chains. Either may be nil or an operand.
void trunc_divide(const number* n, const number* d, imptr q, imptr r);
int32_t quotient_of(const number* n, int32_t m);  ///< n / m that fits a word, chains whatever the mode
int32_t modout(const number* n);  ///< the chain n mod modulus, 0..modulus-1; lintmode is 1 after it
void fast_modout(imptr n, const number* pseudodet);
/// n mod m for a chain of any sign, 0..m-1; m at least 1. No mode is touched.
uint32_t chain_mod_word(const number* n, uint32_t m);
/// d[0..n) modulo m < 2^31, digits without sign, the lowest first: for numbers that are reduced modulo many
/// words.
uint32_t digits_mod_word(const uint32_t* d, int32_t n, uint32_t m);
}  // namespace tolvex
