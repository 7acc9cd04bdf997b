// Between chains and limb arrays: 16 digits of 28 bits are 7 limbs.
#include "numbers/digit_source.h"
#include "numbers/limbs.h"
#include "storage/checked.h"
#include "storage/interrupt.h"

#include <bit>
namespace tolvex {
namespace {
uint64_t magnitude_of(int32_t digit) {
    int64_t v = digit;
    return static_cast<uint64_t>(v < 0 ? -v : v);
}

/// x, which owns no chain, becomes the lowest `size` digits of a[0..n), most significant first.
void write_digits(imptr x, const limb* a, int64_t n, int64_t size, bool negative) {
    DigitSource source;
    int64_t at = (size - 1) * k_digit_bits;  // bit position of the digit in hand
    numptr last = nullptr;
    const int32_t flip = negative ? -1 : 0;  // (v ^ flip) - flip is +-v
    for (int64_t i = 0; i < size; i++, at -= k_digit_bits) {
        int64_t word = at >> 6;
        int shift = static_cast<int>(at & 63);
        uint64_t d = a[word] >> shift;
        if (shift > 64 - k_digit_bits && word + 1 < n) d |= a[word + 1] << (64 - shift);
        numptr p = source.next();
        p->value = (static_cast<int32_t>(d & k_max_digit) ^ flip) - flip;
        if (last == nullptr) {
            x->head = p;
        } else {
            last->next = p;
        }
        last = p;
        source.pause_every(i, last);
    }
    source.finish(last);
    x->tail = last;
    x->size = static_cast<int32_t>(size);
}

/// Number of digits of a[0..n), a[n-1] not 0.
int64_t digits_of(const limb* a, int64_t n) {
    int64_t bits = 64 * n - std::countl_zero(a[n - 1]);
    return (bits + k_digit_bits - 1) / k_digit_bits;
}
}  // namespace

/// limbs_from_chain for more than one digit. A loop without safe points keeps its state in registers.
template <int64_t rhythm> static int64_t limbs_from_digits(limb* r, numptr p, int32_t size) {
    int64_t word = limbs_for(size) - 1;
    int64_t length = word + 1;
    int shift =
        static_cast<int>((static_cast<int64_t>(size) * k_digit_bits - 1 - (word << 6)) + 1) - k_digit_bits;
    uint64_t acc = 0;
    for_polled<rhythm>(size, [&](int64_t) {
        uint64_t d = magnitude_of(p->value);
        if (shift >= 0) {
            acc |= d << shift;
        } else {  // the digit straddles two limbs
            r[word--] = acc | d >> -shift;
            shift += 64;
            acc = d << shift;
        }
        shift -= k_digit_bits;
        p = p->next;
    });
    r[0] = acc;
    return limbs_trim(r, length);
}

[[gnu::noinline]] static int64_t limbs_from_long_chain(limb* r, numptr p, int32_t size) {
    return limbs_from_digits<k_digits_unpolled>(r, p, size);
}

int64_t limbs_from_chain(limb* r, numptr p, int32_t size) {
    if (size == 1) {
        r[0] = magnitude_of(p->value);
        return r[0] != 0;
    }
    if (__builtin_expect(size > k_digits_unpolled, 0)) return limbs_from_long_chain(r, p, size);
    return limbs_from_digits<k_no_safe_point>(r, p, size);
}

void chain_from_limbs(imptr x, const limb* a, int64_t n, bool negative) {
    x->size = 0;
    chain_replace(x, a, n, negative);
}

void chain_replace(imptr x, const limb* a, int64_t n, bool negative) {
    n = limbs_trim(a, n);
    if (n <= 2) {
        unsigned __int128 v = n == 0 ? 0 : a[0];
        if (n == 2) v |= static_cast<unsigned __int128>(a[1]) << 64;
        chain_set_wide(x, v, negative);
        return;
    }
    int64_t size = digits_of(a, n);
    CHECK(size <= INT32_MAX);
    special_free(x);  // its digits are the next ones on the free list
    write_digits(x, a, n, size, negative);
    CHECK(num_check(x));
}

void chain_set_int64(imptr x, int64_t v) {
    chain_set_wide(x, v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v), v < 0);
}

void chain_set_wide(imptr x, unsigned __int128 magnitude, bool negative) {
    if (magnitude <= k_max_digit && x->size == 1) {
        auto v = static_cast<int32_t>(magnitude);
        x->head->value = negative ? -v : v;
        return;
    }
    numptr head = nullptr, tail = nullptr;
    int32_t size = 0;
    do {  // from the tail up
        numptr d = newnum();
        auto v = static_cast<int32_t>(static_cast<uint32_t>(magnitude) & k_max_digit);
        d->value = negative ? -v : v;
        d->next = head;
        if (head == nullptr) tail = d;
        head = d;
        size++;
        magnitude >>= k_digit_bits;
    } while (magnitude != 0);
    special_free(x);
    x->head = head;
    x->tail = tail;
    x->size = size;
}
}  // namespace tolvex
