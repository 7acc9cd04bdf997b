#include "numbers/decimal.h"

#include "storage/interrupt.h"
#include "storage/memory.h"

#include <array>
#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_chunk_digits = 19;  // decimal digits of the largest power of ten in a limb
constexpr limb k_chunk = 10000000000000000000u;
constexpr uint32_t k_group = 100000000;
constexpr int32_t k_group_digits = 8;

/// 5^(19 2^k): with 19 2^k factors of 2 put aside, the power 10^(19 2^k), by which numbers are split.
struct Power {
    limb* at;
    int64_t n;
};
constexpr int32_t k_powers = 40;
Power powers[k_powers];
int32_t powers_known = 0;

/// Digits below the split by powers[k], and its factors of 2.
int64_t power_digits(int32_t k) { return static_cast<int64_t>(k_chunk_digits) << k; }

void keep_power(const limb* a, int64_t n) {
    auto* kept = static_cast<limb*>(checked_malloc(static_cast<size_t>(n) * sizeof(limb)));
    memcpy(kept, a, static_cast<size_t>(n) * sizeof(limb));
    powers[powers_known++] = {kept, n};
}

/// Makes powers[0..k] known.
void need_power(int32_t k) {
    constexpr limb k_5_19 = 19073486328125u;
    if (powers_known == 0) keep_power(&k_5_19, 1);
    while (powers_known <= k) {
        poll_interrupt();
        int32_t known = powers_known;
        Power last = powers[known - 1];
        ScratchMark mark = scratch_mark();
        limb* square = scratch_array<limb>(2 * last.n);
        limbs_mul(square, last.at, last.n, last.at, last.n);
        // a command level that an interrupt of the product opened may have got as far itself
        if (powers_known == known) keep_power(square, limbs_trim(square, 2 * last.n));
        scratch_release(mark);
    }
}

// ---- binary to decimal ---------------------------------------------------------------------------------

constexpr std::array<char, 200> make_pairs() {
    std::array<char, 200> pairs{};
    for (size_t i = 0; i < 100; i++) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}
constexpr std::array<char, 200> k_pairs = make_pairs();

void write_8_digits(char* out, uint32_t v) {
    uint32_t high = v / 10000, low = v % 10000;
    memcpy(out, &k_pairs[2 * (high / 100)], 2);
    memcpy(out + 2, &k_pairs[2 * (high % 100)], 2);
    memcpy(out + 4, &k_pairs[2 * (low / 100)], 2);
    memcpy(out + 6, &k_pairs[2 * (low % 100)], 2);
}

void write_chunk(char* out, limb v) {
    limb high = v / k_group;
    write_8_digits(out + 11, static_cast<uint32_t>(v - high * k_group));
    v = high / k_group;
    write_8_digits(out + 3, static_cast<uint32_t>(high - v * k_group));
    out[2] = static_cast<char>('0' + v % 10);
    memcpy(out, &k_pairs[2 * (v / 10)], 2);
}

constexpr int32_t k_leaf = 4;  // up to 16 chunks are split off one by one

/// Writes exactly 19 2^k digits of a[0..n) < 10^(19 2^k), n trimmed; a is overwritten.
void write_block(char* out, limb* a, int64_t n, int32_t k) {
    if (k <= k_leaf) {
        for (int64_t at = power_digits(k) - k_chunk_digits; at >= 0; at -= k_chunk_digits) {
            write_chunk(out + at, n == 0 ? 0 : n == 1 ? a[0] % k_chunk : limbs_divrem_1(a, n, k_chunk));
            if (n == 1) a[0] /= k_chunk;
            n = limbs_trim(a, n);
        }
        return;
    }
    if (k > 2 * k_leaf) poll_interrupt();
    k--;
    Power divisor = powers[k];
    int64_t digits = power_digits(k), word = digits / 64;
    int shift = static_cast<int>(digits % 64);
    // a = high 2^digits + low; high = q 5^digits + r; so a = q 10^digits + (r 2^digits + low)
    ScratchMark mark = scratch_mark();
    int64_t high_n = n > word ? n - word : 0;
    limb* high = scratch_array<limb>(high_n);
    limbs_shift_right(high, a + word, high_n, shift);
    high_n = limbs_trim(high, high_n);
    if (limbs_compare(high, high_n, divisor.at, divisor.n) < 0) {  // q = 0
        memset(out, '0', static_cast<size_t>(digits));
    } else {
        int64_t q_n = high_n - divisor.n + 1;
        limb* q = scratch_array<limb>(q_n);
        limbs_divrem(q, high, high_n, divisor.at, divisor.n);
        int64_t r_n = limbs_trim(high, divisor.n);
        limb low = a[word] & ((limb{1} << shift) - 1);
        limb carry = limbs_shift_left(a + word, high, r_n, shift);
        n = word + r_n;
        if (carry != 0) a[n++] = carry;
        if (r_n > 0) {
            a[word] |= low;
        } else {
            a[n++] = low;
        }
        n = limbs_trim(a, n);
        write_block(out, q, limbs_trim(q, q_n), k);
    }
    scratch_release(mark);
    write_block(out + digits, a, n, k);
}

int64_t word_to_text(char* out, limb v) {
    char digits[20];
    int32_t count = 0;
    do {
        digits[count++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0);
    for (int32_t i = 0; i < count; i++) out[i] = digits[count - 1 - i];
    return count;
}
}  // namespace

int64_t limbs_to_text(char* out, limb* a, int64_t n) {
    n = limbs_trim(a, n);
    if (n <= 1) return word_to_text(out, n == 0 ? 0 : a[0]);
    int32_t k = 0;  // 10^(19 2^k) has more than 63 2^k bits, and 64 n are enough
    while ((int64_t{63} << k) < 64 * n) k++;
    if (k > k_leaf) need_power(k - 1);
    ScratchMark mark = scratch_mark();
    auto* block = scratch_array<char>(power_digits(k));
    write_block(block, a, n, k);
    const char* first = block;
    while (*first == '0') first++;
    int64_t count = power_digits(k) - (first - block);
    memcpy(out, first, static_cast<size_t>(count));
    scratch_release(mark);
    return count;
}

// ---- decimal to binary ---------------------------------------------------------------------------------

namespace {
limb read_chunk(const char* digits, int64_t count) {
    limb v = 0;
    for (int64_t i = 0; i < count; i++) v = 10 * v + static_cast<limb>(digits[i] - '0');
    return v;
}

/// Horner's rule over chunks; the first one takes what is left over.
int64_t read_by_chunks(limb* r, const char* digits, int64_t count) {
    int64_t first = count % k_chunk_digits;
    r[0] = read_chunk(digits, first);
    int64_t n = r[0] != 0;
    for (int64_t at = first; at < count; at += k_chunk_digits) {
        limb add = read_chunk(digits + at, k_chunk_digits);
        limb carry = limbs_mul_1(r, r, n, k_chunk);
        if (carry != 0) r[n++] = carry;
        if (n == 0) {
            r[0] = add;
            n = add != 0;
        } else if (limbs_add(r, r, n, &add, 1) != 0) {
            r[n++] = 1;
        }
    }
    return n;
}

/// r := high 10^(19 2^k) + low; r has room for the digits of both. high and low are trimmed.
int64_t join(limb* r, const limb* high, int64_t high_n, const limb* low, int64_t low_n, int32_t k) {
    if (high_n == 0) {
        memcpy(r, low, static_cast<size_t>(low_n) * sizeof(limb));
        return low_n;
    }
    Power power = powers[k];
    int64_t word = power_digits(k) / 64;
    int shift = static_cast<int>(power_digits(k) % 64);
    ScratchMark mark = scratch_mark();
    limb* product = scratch_array<limb>(high_n + power.n);
    limbs_mul(product, high, high_n, power.at, power.n);
    int64_t n = limbs_trim(product, high_n + power.n);
    memset(r, 0, static_cast<size_t>(word) * sizeof(limb));
    limb carry = limbs_shift_left(r + word, product, n, shift);
    scratch_release(mark);
    n += word;
    if (carry != 0) r[n++] = carry;
    if (limbs_add(r, r, n, low, low_n) != 0) r[n++] = 1;  // as at a power of 2^64
    return n;
}

int64_t read_block(limb* r, const char* digits, int64_t count) {
    constexpr int64_t k_leaf_digits = 24 * k_chunk_digits;
    if (count <= k_leaf_digits) return read_by_chunks(r, digits, count);
    int32_t k = 0;
    while (power_digits(k + 1) < count) k++;
    if (k > 2 * k_leaf) poll_interrupt();
    int64_t low_digits = power_digits(k), high_digits = count - low_digits;
    ScratchMark mark = scratch_mark();
    limb* high = scratch_array<limb>(limbs_for_digits(high_digits));
    limb* low = scratch_array<limb>(limbs_for_digits(low_digits));
    int64_t high_n = read_block(high, digits, high_digits);
    int64_t low_n = read_block(low, digits + high_digits, low_digits);
    int64_t n = join(r, high, high_n, low, low_n, k);
    scratch_release(mark);
    return n;
}
}  // namespace

int64_t limbs_from_text(limb* r, const char* digits, int64_t count) {
    int32_t k = 0;
    while (power_digits(k + 1) < count) k++;
    need_power(k);
    return read_block(r, digits, count);
}

// ---- decimal chains ------------------------------------------------------------------------------------

void decimal_chain_from_text(imptr x, const char* digits, int64_t count, bool negative) {
    while (count > 1 && *digits == '0') {
        digits++;
        count--;
    }
    special_free(x);
    int64_t length = count % k_group_digits;
    if (length == 0) length = k_group_digits;
    for (int64_t at = 0; at < count; at += length, length = k_group_digits) {
        auto v = static_cast<int32_t>(read_chunk(digits + at, at == 0 ? length : k_group_digits));
        numptr p = newnum();
        p->value = negative ? -v : v;
        p->next = nullptr;
        if (x->size == 0)
            x->head = p;
        else
            x->tail->next = p;
        x->tail = p;
        x->size++;
    }
}

void verybig_base_10(numptr p, numptr, int32_t size, imptr n2) {
    bool negative = p->value < 0;
    ScratchMark mark = scratch_mark();
    limb* a = scratch_array<limb>(limbs_for(size));
    int64_t n = limbs_from_chain(a, p, size);
    auto* text = scratch_array<char>(text_room(n));
    int64_t count = limbs_to_text(text, a, n);
    decimal_chain_from_text(n2, text, count, negative);
    scratch_release(mark);
}

void make_base_10(const number* n, imptr n2) { verybig_base_10(n->head, n->tail, n->size, n2); }
}  // namespace tolvex
