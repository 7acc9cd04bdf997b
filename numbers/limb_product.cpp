#include "numbers/limb_product.h"

#include "storage/interrupt.h"

#include <bit>
#include <cstring>
#include <utility>
namespace tolvex {
namespace {
/// Factors below this count are multiplied one after the other.
constexpr int64_t k_leaf = 24;

void copy_limbs(limb* r, const limb* a, int64_t n) {
    scratch_copy(r, a, static_cast<size_t>(n) * sizeof(limb));
}

/// r := a * b, returns the length.
int64_t product(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    limbs_mul(r, a, an, b, bn);
    return limbs_trim(r, an + bn);
}

/// Collects factors below 2^32 into as few words as a running product allows.
struct WordList {
    limb* w;
    int64_t n = 0;
    limb open = 1;  // the word being filled
};
void add_factor(WordList& list, limb factor) {
    if (list.open >> 32 != 0) {
        list.w[list.n++] = list.open;
        list.open = 1;
    }
    list.open *= factor;
}
void close_list(WordList& list) { list.w[list.n++] = list.open; }

/// sieve[i] is 1 when 2 i + 1 is composite, for odd numbers up to n; sieve[0] stands for 1.
unsigned char* odd_sieve(uint32_t n) {
    int64_t count = static_cast<int64_t>(n) / 2 + 1;
    auto* sieve = scratch_array<unsigned char>(count);
    memset(sieve, 0, static_cast<size_t>(count));
    sieve[0] = 1;
    for (int64_t p = 3; p * p <= n; p += 2) {
        if (sieve[p / 2]) continue;
        poll_interrupt();
        for (int64_t i = p * p / 2; i < count; i += p) sieve[i] = 1;
    }
    return sieve;
}

/// The odd part of n! / ((n/2)!)^2: a prime p stands in it as often as the quotients n / p, n / p^2, ... are
/// odd. Returns the length.
int64_t odd_swing(limb* r, uint32_t n, const unsigned char* sieve) {
    ScratchMark mark = scratch_mark();
    WordList list = {scratch_array<limb>(n / 2 + 2)};
    for (uint32_t p = 3; p <= n; p += 2) {
        if (sieve[p / 2]) continue;
        for (uint32_t q = n / p; q != 0; q /= p)
            if (q & 1) add_factor(list, p);
    }
    close_list(list);
    int64_t length = limbs_word_product(r, list.w, list.n);
    scratch_release(mark);
    return length;
}

/// The odd part of n!.
int64_t odd_factorial(limb* r, uint32_t n, const unsigned char* sieve) {
    if (n <= 20) {
        limb f = 1;
        for (limb i = 2; i <= n; i++) f *= i >> std::countr_zero(i);
        r[0] = f;
        return 1;
    }
    ScratchMark mark = scratch_mark();
    auto* half = scratch_array<limb>(limbs_factorial_room(n / 2));
    int64_t hn = odd_factorial(half, n / 2, sieve);
    auto* square = scratch_array<limb>(2 * hn);
    int64_t sn = product(square, half, hn, half, hn);
    auto* swing = scratch_array<limb>(n / 2 + 2);
    int64_t wn = odd_swing(swing, n, sieve);
    auto* whole = scratch_array<limb>(sn + wn);
    int64_t length = product(whole, square, sn, swing, wn);
    copy_limbs(r, whole, length);
    scratch_release(mark);
    return length;
}

/// a[0..n) := a * 2^k in place; returns the new length. There is room.
int64_t shift_up(limb* a, int64_t n, int64_t k) {
    int64_t whole = k / 64;
    limb out = limbs_shift_left(a + whole, a, n, static_cast<int>(k % 64));
    scratch_clear(a, static_cast<size_t>(whole) * sizeof(limb));
    n += whole;
    if (out != 0) a[n++] = out;
    return n;
}
}  // namespace

int64_t limbs_word_product(limb* r, const limb* w, int64_t n) {
    if (n <= k_leaf) {
        int64_t length = 1;
        r[0] = w[0];
        for (int64_t i = 1; i < n; i++) {
            limb top = limbs_mul_1(r, r, length, w[i]);
            if (top != 0) r[length++] = top;
        }
        return length;
    }
    poll_interrupt();
    ScratchMark mark = scratch_mark();
    int64_t h = n / 2;
    auto* a = scratch_array<limb>(n);
    limb* b = a + h;
    int64_t an = limbs_word_product(a, w, h), bn = limbs_word_product(b, w + h, n - h);
    int64_t length = limbs_trim(a, an) == 0 || limbs_trim(b, bn) == 0 ? 0 : product(r, a, an, b, bn);
    scratch_release(mark);
    return length;
}

int64_t limbs_range_product(limb* r, limb first, limb last) {
    ScratchMark mark = scratch_mark();
    WordList list = {scratch_array<limb>(limbs_range_room(first, last))};
    for (limb i = first; i <= last; i++) add_factor(list, i);
    close_list(list);
    int64_t length = limbs_word_product(r, list.w, list.n);
    scratch_release(mark);
    return length;
}

int64_t limbs_bits(const limb* a, int64_t n) { return 64 * n - std::countl_zero(a[n - 1]); }

int64_t limbs_power(limb* r, const limb* a, int64_t n, uint32_t k) {
    ScratchMark mark = scratch_mark();
    int64_t room = limbs_power_room(a, n, k);
    int64_t zero_limbs = 0;
    while (a[zero_limbs] == 0) zero_limbs++;
    int zero_bits = std::countr_zero(a[zero_limbs]);
    int64_t twos = (64 * zero_limbs + zero_bits) * k;
    int64_t on = n - zero_limbs;
    auto* odd = scratch_array<limb>(on);
    limbs_shift_right(odd, a + zero_limbs, on, zero_bits);
    on = limbs_trim(odd, on);

    auto *at = scratch_array<limb>(room + n), *other = scratch_array<limb>(room + n);
    copy_limbs(at, odd, on);
    int64_t length = on;
    for (int i = std::bit_width(k) - 2; i >= 0; i--) {
        poll_interrupt();
        length = product(other, at, length, at, length);
        std::swap(at, other);
        if ((k >> i & 1) == 0) continue;
        length = product(other, at, length, odd, on);
        std::swap(at, other);
    }
    copy_limbs(r, at, length);
    length = shift_up(r, length, twos);
    scratch_release(mark);
    return length;
}

int64_t limbs_factorial_room(uint32_t n) { return static_cast<int64_t>(n) * std::bit_width(n) / 64 + 2; }

int64_t limbs_factorial(limb* r, uint32_t n) {
    ScratchMark mark = scratch_mark();
    int64_t length = odd_factorial(r, n, odd_sieve(n));
    length = shift_up(r, length, static_cast<int64_t>(n) - std::popcount(n));
    scratch_release(mark);
    return length;
}
}  // namespace tolvex
