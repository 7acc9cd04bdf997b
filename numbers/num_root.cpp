#include "numbers/num_root.h"

#include "numbers/limbs.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/residue.h"
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cmath>
namespace tolvex {
namespace {
/// floor of the square root of a word: the floating-point root, put right.
uint64_t word_sqrt(uint64_t v) {
    auto r = static_cast<uint64_t>(std::sqrt(static_cast<double>(v)));
    while (r > 0 && r > v / r) r--;
    while ((r + 1) <= v / (r + 1)) r++;
    return r;
}

// Tonelli and Shanks: what depends on the modulus alone, kept from call to call.
int32_t sqrt_mod = 0;  // the modulus these belong to
int32_t sqrt_m = 0;    // odd part of p - 1
int32_t sqrt_s = 0;    // p - 1 = m 2^s
int32_t sqrt_c = 0;    // z^m for a non-residue z: of order 2^s

int32_t square(int32_t x) { return modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(x)); }
int32_t times(int32_t x, int32_t y) { return modmult(static_cast<uint32_t>(x), static_cast<uint32_t>(y)); }
int32_t power(int32_t x, int32_t k) {
    int32_t r;
    mod_number_power(x, k, &r);
    return r;
}

/// Fills the cache for the modulus in force.
void prepare_roots() {
    if (sqrt_mod == modulus) return;
    int32_t m = modulus - 1, s = 0;
    while ((m & 1) == 0) {
        m >>= 1;
        s++;
    }
    int32_t z = 2;
    while (power(z, (modulus - 1) / 2) == 1) z++;
    sqrt_m = m;
    sqrt_s = s;
    sqrt_c = power(z, m);
    sqrt_mod = modulus;
}
}  // namespace

void int_sqrt(const number* n, imptr n2, [[maybe_unused]] boolean flag) {
    CHECK(n->head->value >= 0);
    if (n->size <= 2) {
        chain_set_int64(n2, static_cast<int64_t>(word_sqrt(static_cast<uint64_t>(chain_small_value(n)))));
        return;
    }
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size);
    limb* s = arena_take(arena, (a.n + 1) / 2);
    limbs_sqrt(s, a.at, a.n);
    chain_replace(n2, s, (a.n + 1) / 2, false);
    arena_end(arena);
}

boolean its_a_square(int32_t n) { return power(n, (modulus - 1) / 2) == 1; }

int32_t modular_sqrt(int32_t n) {
    if (n == 0) return 0;
    if (modulus == 2) return n;
    if (modulus % 4 == 3) {
        // r = n^((p+1)/4); r r = n n^((p-1)/2), which is n unless there is no root.
        int32_t r = power(n, (modulus - 3) / 4 + 1);
        return square(r) == n ? r : 0;
    }
    if (!its_a_square(n)) return 0;
    prepare_roots();
    // Invariant: r r = n t, and the order of t divides 2^(i + 1) before the step for i.
    int32_t t = power(n, sqrt_m), r = power(n, (sqrt_m - 1) / 2 + 1), c = sqrt_c;
    for (int32_t i = sqrt_s - 2; i >= 0; i--) {
        int32_t u = t;
        for (int32_t j = 0; j < i; j++) u = square(u);
        if (u != 1) {
            r = times(r, c);
            t = times(t, square(c));
        }
        c = square(c);
    }
    return r;
}

void square_root(imptr n) {
    if (modularmode && finf) {
        bool in_range = n->lint >= 0 && n->lint < modulus;
        if (!in_range) error(Err::sqrt_bad_argument);
        n->lint = !in_range ? 0 : f256 ? f256sqr[n->lint] : f2t16sqr[n->lint];
    } else if (modularmode) {
        if (!mod_is_prime || modulus == 2) {
            error(Err::sqrt_needs_prime);
            n->lint = 0;
            return;
        }
        n->lint = modular_sqrt(n->lint);
    } else if (lintmode) {
        if (n->lint < 0) {
            error(Err::sqrt_bad_argument);
            n->lint = 0;
            return;
        }
        n->lint = static_cast<int32_t>(word_sqrt(static_cast<uint64_t>(n->lint)));
    } else {
        if (n->head->value < 0) {
            error(Err::sqrt_bad_argument);
            chain_set_int64(n, 0);
            return;
        }
        int_sqrt(n, n, 1);
    }
}
}  // namespace tolvex
