// Greatest common divisors of limb arrays: Lehmer's algorithm, above some hundred limbs by half-gcds of the
// top third (Moeller, "On Schoenhage's algorithm and subquadratic integer gcd computation", 2008).
#include "numbers/limb_lehmer.h"
#include "numbers/limbs.h"
#include "storage/interrupt.h"

#include <bit>
#include <utility>
namespace tolvex {
namespace {
using wide = unsigned __int128;

// From this many limbs on the half-gcd serves. Measured.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_long_gcd = 24;
#else
constexpr int64_t k_long_gcd = 320;
#endif

wide wide_gcd(wide u, wide v) {
    if (u == 0) return v;
    if (v == 0) return u;
    auto zeros = [](wide x) {
        auto low = static_cast<limb>(x);
        return low != 0 ? std::countr_zero(low) : 64 + std::countr_zero(static_cast<limb>(x >> 64));
    };
    int ku = zeros(u), kv = zeros(v);
    u >>= ku;
    v >>= kv;
    while (u != v) {
        if ((u >> 64) == 0 && (v >> 64) == 0)
            return static_cast<wide>(word_gcd(static_cast<limb>(u), static_cast<limb>(v)))
                   << (ku < kv ? ku : kv);
        if (u > v) {
            u -= v;
            u >>= zeros(u);
        } else {
            v -= u;
            v >>= zeros(v);
        }
    }
    return u << (ku < kv ? ku : kv);
}

wide two_limbs(const limb* a, int64_t n) {
    wide v = n > 0 ? a[0] : 0;
    return n > 1 ? v | static_cast<wide>(a[1]) << 64 : v;
}

int64_t store_wide(limb* r, wide v) {
    r[0] = static_cast<limb>(v);
    if (v >> 64 == 0) return 1;
    r[1] = static_cast<limb>(v >> 64);
    return 2;
}
/// One half-gcd on the top third of a[0..n), b[0..n), n = max(an, bn): true if it took something off.
bool long_step(limb* a, int64_t& an, limb* b, int64_t& bn) {
    int64_t n = an > bn ? an : bn, p = n / 3 * 2;
    if (an <= p || bn <= p) return false;
    ScratchMark mark = scratch_mark();
    CofactorMatrix m = new_matrix(n - p);
    half_gcd_top(a, an, b, bn, p, m);
    scratch_release(mark);
    return !m.identity;
}

int64_t gcd_loop(limb* r, limb* a, int64_t an, limb* b, int64_t bn, limb* tmp) {
    for (;;) {
        poll_interrupt();
        if (limbs_compare(a, an, b, bn) < 0) {
            std::swap(a, b);
            std::swap(an, bn);
        }
        if (bn == 0) {
            scratch_copy(r, a, static_cast<size_t>(an) * sizeof(limb));
            return an;
        }
        if (an <= 2) return store_wide(r, wide_gcd(two_limbs(a, an), two_limbs(b, bn)));
        if (bn == 1) {
            r[0] = word_gcd(limbs_mod_1(a, an, b[0]), b[0]);
            return 1;
        }
        if (bn >= k_long_gcd && long_step(a, an, b, bn)) continue;
        Cofactors m;
        if (an == bn) m = lehmer_cofactors(a, b, an);
        if (m.steps > 0) {
            apply_cofactors(m, a, b, an, tmp);
            an = limbs_trim(a, an);
            bn = limbs_trim(b, bn);
        } else {
            limbs_divrem(nullptr, a, an, b, bn);
            an = limbs_trim(a, bn);
        }
    }
}
}  // namespace

limb word_gcd(limb u, limb v) {
    if (u == 0) return v;
    if (v == 0) return u;
    if (u == 1 || v == 1) return 1;  // the usual case of coefficients
    if (u >> 8 > v) {                // far apart: one division saves many subtractions
        if ((u %= v) == 0) return v;
    } else if (v >> 8 > u) {
        if ((v %= u) == 0) return u;
    }
    int k = std::countr_zero(u | v);
    u >>= std::countr_zero(u);
    for (;;) {
        v >>= std::countr_zero(v);
        limb low = u < v ? u : v;
        v = u < v ? v - u : u - v;
        u = low;
        if (v == 0) return u << k;
    }
}

int64_t limbs_gcd(limb* r, limb* a, int64_t an, limb* b, int64_t bn) {
    ScratchMark mark = scratch_mark();
    // The pair shares its length in a half-gcd: both get the longer one, after a first division.
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    if (bn > 1 && an > bn) {
        limbs_divrem(nullptr, a, an, b, bn);
        an = limbs_trim(a, bn);
    }
    int64_t length = gcd_loop(r, a, an, b, bn, scratch_array<limb>(an > bn ? an : bn));
    scratch_release(mark);
    return length;
}
}  // namespace tolvex
