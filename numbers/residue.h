#pragma once
/// numbers/residue.h: arithmetic on residues 0..modulus-1 and in the table fields.
///
/// Purpose    the inner loop of all modular work. A product is reduced by a 64-bit reciprocal (Barrett),
///            never by a division instruction.
/// Raises     mod_inverse: "bad seca." for 0 (fatal), error 85 for a non-unit.
#include "numbers/gf_tables.h"
#include "numbers/number.h"

#include <cstdint>
namespace tolvex {
/// z mod modulus for z < 2^62; not in a table field.
inline uint32_t residue_reduce(uint64_t z) {
    auto q = static_cast<uint64_t>((static_cast<unsigned __int128>(z) * modulus_recip) >> 64);
    uint64_t r = z - q * static_cast<uint32_t>(modulus);
    return static_cast<uint32_t>(r >= static_cast<uint32_t>(modulus) ? r - static_cast<uint32_t>(modulus)
                                                                     : r);
}
/// x y in Z/modulus, not in a table field.
inline uint32_t residue_mult(uint32_t x, uint32_t y) { return residue_reduce(static_cast<uint64_t>(x) * y); }
/// x y in the ring in force: the general entry.
inline int32_t modmult(uint32_t x, uint32_t y) {
    if (__builtin_expect(finf, 0)) return table_mult(x, y);
    return static_cast<int32_t>(residue_mult(x, y));
}
inline int32_t mod_add(int32_t x, int32_t y, int32_t modul) {
    if (__builtin_expect(finf, 0)) return x ^ y;
    uint32_t s = static_cast<uint32_t>(x) + static_cast<uint32_t>(y);
    return static_cast<int32_t>(s >= static_cast<uint32_t>(modul) ? s - static_cast<uint32_t>(modul) : s);
}
inline int32_t mod_sub(int32_t x, int32_t y, int32_t modul) {
    if (__builtin_expect(finf, 0)) return x ^ y;
    int32_t d = x - y;
    return d < 0 ? d + modul : d;
}
/// -x
inline int32_t mod_neg(int32_t x) { return finf || x == 0 ? x : modulus - x; }
/// The number that a residue shows: symmetric under alt_form_display outside table fields.
int32_t shown_residue(int32_t v);
/// x y mod modul, or by table.
int32_t mod_mult(uint32_t x, uint32_t y, int32_t modul);
void mod_inverse(int32_t seca, int32_t* ans);
int32_t imod_inverse(int32_t seca);  ///< prints "bad2: ..." before error 85
void emod_inverse(int32_t seca, int32_t* ans);
/// The inverse, or 0 if there is none: the quiet form.
int32_t mod_inverse_or_0(int32_t seca);
void mod_number_power(int32_t base, int64_t expon, int32_t* ans);  ///< expon >= 0; 0 gives 1
/// Any integer as an element of the ring in force: reduced; in a table field the code n mod 256 (65536) of
/// |n|.
int32_t residue_of_int(int64_t n);
/// Binomial coefficients for a >= b >= 0. Error 279 if the value does not fit a word, or the memory; then 0.
int32_t mod_binom(int32_t a, int32_t b);          ///< in the ring in force; by Lucas' theorem modulo a prime
int32_t lint_binom(int32_t a, int32_t b);         ///< a word
void rat_binom(int32_t a, int32_t b, imptr ans);  ///< a chain; up to a = 152 from the table
}  // namespace tolvex
