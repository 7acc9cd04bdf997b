#include "numbers/primes.h"

#include "storage/interrupt.h"

#include <initializer_list>
namespace tolvex {
int16_t small_prime[k_small_primes];
int32_t med_prime[k_med_primes], big_prime[k_big_primes], lrgpme[k_lrg_primes];
number prime[k_primes], num_prod[k_num_prods];
int32_t invs_prod[k_invs_prods];
int32_t global_list[k_global_list];

namespace {
using u128 = unsigned __int128;

/// Residues modulo an odd n < 2^63 in Montgomery form: x stands for x 2^-64 mod n (Montgomery 1985).
struct Montgomery {
    uint64_t n;
    uint64_t minus_inverse;  // -1/n mod 2^64
    uint64_t one;            // 2^64 mod n

    explicit Montgomery(uint64_t modulus_) : n(modulus_), minus_inverse(0), one(0) {
        uint64_t inverse = n;  // right to 3 bits; each Newton step doubles that
        for (int i = 0; i < 5; i++) inverse *= 2 - n * inverse;
        minus_inverse = 0 - inverse;
        one = (0 - n) % n;
    }
    uint64_t reduce(u128 z) const {
        uint64_t q = static_cast<uint64_t>(z) * minus_inverse;
        auto r = static_cast<uint64_t>((z + static_cast<u128>(q) * n) >> 64);
        return r >= n ? r - n : r;
    }
    uint64_t mult(uint64_t x, uint64_t y) const { return reduce(static_cast<u128>(x) * y); }
    uint64_t into(uint64_t x) const {  // x 2^64 mod n
        return static_cast<uint64_t>((static_cast<u128>(x % n) << 64) % n);
    }
    uint64_t power(uint64_t base, uint64_t exponent) const {
        uint64_t result = one;
        for (; exponent != 0; exponent >>= 1) {
            if (exponent & 1) result = mult(result, base);
            base = mult(base, base);
        }
        return result;
    }
};

/// One round of Miller-Rabin: false proves that the odd n is composite.
bool strong_probable_prime(const Montgomery& ring, uint64_t base) {
    uint64_t n = ring.n, odd = n - 1;
    int twos = __builtin_ctzll(odd);
    odd >>= twos;
    uint64_t b = ring.into(base);
    if (b == 0) return true;
    uint64_t minus_one = n - ring.one;
    uint64_t x = ring.power(b, odd);
    if (x == ring.one || x == minus_one) return true;
    for (int i = 1; i < twos; i++) {
        x = ring.mult(x, x);
        if (x == minus_one) return true;
    }
    return false;
}

/// Deterministic: three bases decide below 4759123141 (Jaeschke 1993), seven below 2^64 (Sinclair 2011).
bool odd_is_prime(uint64_t n) {
    Montgomery ring(n);
    if (n < 4759123141) {
        for (uint64_t base : {2u, 7u, 61u})
            if (!strong_probable_prime(ring, base)) return false;
        return true;
    }
    for (uint64_t base : {2u, 325u, 9375u, 28178u, 450775u, 9780504u, 1795265022u})
        if (!strong_probable_prime(ring, base)) return false;
    return true;
}

uint64_t gcd_of_words(uint64_t a, uint64_t b) {
    while (b != 0) {
        uint64_t r = a % b;
        a = b;
        b = r;
    }
    return a;
}

uint64_t difference(uint64_t a, uint64_t b) { return a > b ? a - b : b - a; }

/// A proper factor of the odd composite n: Pollard's rho in Brent's form (BIT 20, 1980) with products of 128
/// differences between two gcds. A failed cycle is tried again with the next constant.
uint64_t proper_factor(uint64_t n) {
    constexpr uint64_t k_batch = 128;
    Montgomery ring(n);
    for (uint64_t c = 1;; c++) {
        uint64_t y = ring.one, x = y, saved = y, product = ring.one, g = 1;
        for (uint64_t length = 1; g == 1; length *= 2) {
            x = y;
            for (uint64_t i = 0; i < length; i++) y = (ring.mult(y, y) + c) % n;
            for (uint64_t done = 0; done < length && g == 1; done += k_batch) {
                poll_interrupt();
                saved = y;
                for (uint64_t i = 0; i < k_batch && i < length - done; i++) {
                    y = (ring.mult(y, y) + c) % n;
                    product = ring.mult(product, difference(x, y));
                }
                g = gcd_of_words(product, n);
            }
        }
        if (g == n) {  // several factors met inside one batch: again, one step at a time
            g = 1;
            while (g == 1) {
                saved = (ring.mult(saved, saved) + c) % n;
                g = gcd_of_words(difference(x, saved), n);
            }
        }
        if (g != n) return g;
    }
}

/// Trial division by 2, 3 and 6k +- 1 up to `bound`: the smallest factor of n not above it, 0 if there is
/// none.
uint64_t small_factor(uint64_t n, uint64_t bound) {
    if (n % 2 == 0) return 2;
    if (n % 3 == 0) return 3;
    for (uint64_t d = 5; d <= bound && d * d <= n; d += 6) {
        if (n % d == 0) return d;
        if (n % (d + 2) == 0) return d + 2;
    }
    return 0;
}

constexpr uint64_t k_trial_bound = 4096;

/// The smallest prime factor of n >= 2.
uint64_t smallest_factor(uint64_t n) {
    uint64_t d = small_factor(n, k_trial_bound);
    if (d != 0) return d;
    if (n <= k_trial_bound * k_trial_bound || odd_is_prime(n)) return n;
    uint64_t factor = proper_factor(n);
    uint64_t a = smallest_factor(factor), b = smallest_factor(n / factor);
    return a < b ? a : b;
}
}  // namespace

boolean is_prime(int32_t n) {
    if (n < 2) return 0;
    if (n < 4) return 1;
    if (n % 2 == 0 || n % 3 == 0) return 0;
    if (n < 25) return 1;
    for (int32_t d : {5, 7, 11, 13, 17, 19, 23})
        if (n % d == 0) return n == d;
    return odd_is_prime(static_cast<uint32_t>(n));
}

int64_t long_is_prime(int64_t n) {
    if (n < 2) return 0;
    auto d = static_cast<int64_t>(smallest_factor(static_cast<uint64_t>(n)));
    return d == n ? 1 : d;
}

int64_t longg_is_prime(int32_t top, int32_t mid, int32_t low) {
    return long_is_prime((static_cast<int64_t>(top) << 56) + (static_cast<int64_t>(mid) << 28) + low);
}

int32_t nextprime(int32_t n) {
    if (n < 2) return 3;
    int64_t candidate = n % 2 == 0 ? static_cast<int64_t>(n) + 1 : static_cast<int64_t>(n) + 2;
    for (; candidate <= INT32_MAX; candidate += 2)
        if (is_prime(static_cast<int32_t>(candidate))) return static_cast<int32_t>(candidate);
    return 0;
}

int32_t prime_factors(int64_t n, int64_t* list) {
    int32_t count = 0;
    while (n > 1) {
        auto p = static_cast<int64_t>(smallest_factor(static_cast<uint64_t>(n)));
        list[count++] = p;
        while (n % p == 0) n /= p;
    }
    return count;
}

void set_prime_quotients(int64_t* list, int32_t count, int64_t n) {
    for (int32_t i = 0; i < count; i++) list[i] = n / list[i];
}
}  // namespace tolvex
