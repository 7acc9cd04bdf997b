#include "numbers/residue.h"

#include "numbers/display_modes.h"
#include "storage/failure.h"

#include <cstdio>
namespace tolvex {
int32_t shown_residue(int32_t v) { return alt_form_display && !finf && v > half_modulus ? v - modulus : v; }

int32_t mod_mult(uint32_t x, uint32_t y, int32_t modul) {
    if (finf) return table_mult(x, y);
    if (modul == modulus) return static_cast<int32_t>(residue_mult(x, y));
    return static_cast<int32_t>(static_cast<uint64_t>(x) * y % static_cast<uint32_t>(modul));
}

namespace {
/// gcd(m, a) with *inverse the cofactor of a, in 0..m-1: the extended Euclidean algorithm on (m, a), 0 < a <
/// m. The cofactors alternate in sign and never exceed m, so magnitudes suffice.
uint32_t inverse_by_euclid(uint32_t m, uint32_t a, uint32_t* inverse) {
    uint32_t r0 = m, r1 = a, t0 = 0, t1 = 1;
    bool negative = false;  // sign of the cofactor t1 of r1
    while (r1 != 0) {
        uint32_t q = r0 / r1, r = r0 - q * r1, t = t0 + q * t1;
        r0 = r1;
        r1 = r;
        t0 = t1;
        t1 = t;
        negative = !negative;
    }
    *inverse = negative ? t0 : m - t0;  // after the last step r0 has the other sign than r1
    return r0;
}

/// The gcd of seca and the modulus; *inverse is the inverse if that is 1.
uint32_t try_inverse(int32_t seca, int32_t* inverse) {
    if (seca == 0) tolvex_error("bad seca.");
    if (finf) {
        *inverse = f2t16inv[seca];
        return 1;
    }
    uint32_t value = 0;
    auto m = static_cast<uint32_t>(modulus);
    auto a = static_cast<uint32_t>(seca) < m && seca > 0 ? static_cast<uint32_t>(seca)
                                                         : static_cast<uint32_t>(residue_of_int(seca));
    uint32_t g = a == 0 ? m : inverse_by_euclid(m, a, &value);
    *inverse = g == 1 ? static_cast<int32_t>(value) : 0;
    return g;
}
}  // namespace

void mod_inverse(int32_t seca, int32_t* ans) {
    if (try_inverse(seca, ans) != 1) error(Err::not_invertible);
}

int32_t imod_inverse(int32_t seca) {
    int32_t ans = 0;
    uint32_t g = try_inverse(seca, &ans);
    if (g != 1) {
        printf("bad2: %2d\n", static_cast<int32_t>(g));
        error(Err::not_invertible);
    }
    return ans;
}

void emod_inverse(int32_t seca, int32_t* ans) { mod_inverse(seca, ans); }

int32_t mod_inverse_or_0(int32_t seca) {
    int32_t ans = 0;
    if (seca != 0) try_inverse(seca, &ans);
    return ans;
}

void mod_number_power(int32_t base, int64_t expon, int32_t* ans) {
    if (f2t16 && base != 0) {  // powers are products of logarithms
        auto e = static_cast<uint64_t>(expon % 65535) * f2t16log[base] % 65535;
        *ans = f2t16exp[e];
        return;
    }
    int32_t result = 1;
    for (auto square = static_cast<uint32_t>(base);;) {
        if (expon & 1) result = modmult(static_cast<uint32_t>(result), square);
        expon >>= 1;
        if (expon == 0) break;
        square = static_cast<uint32_t>(modmult(square, square));
    }
    *ans = result;
}

int32_t residue_of_int(int64_t n) {
    uint64_t magnitude = n < 0 ? 0 - static_cast<uint64_t>(n) : static_cast<uint64_t>(n);
    if (finf) return static_cast<int32_t>(magnitude & (f256 ? 255 : 65535));
    if (modulus < 1) return static_cast<int32_t>(n);
    auto r = static_cast<int32_t>(magnitude % static_cast<uint32_t>(modulus));
    return n < 0 && r != 0 ? modulus - r : r;
}
}  // namespace tolvex
