#include "poly/packed_crt.h"

#include "numbers/limbs.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
CrtTerms crt_open(int32_t capacity) {
    CrtTerms t = {};
    t.capacity = capacity;
    t.prime = scratch_array<uint32_t>(capacity);
    return t;
}

// How many indexes the two falling lists have together.
static int64_t union_count(const CrtTerms& t, const PackTerms& image) {
    int64_t i = 0, j = 0, n = 0;
    while (i < t.count && j < image.count) {
        int64_t a = t.index[i], b = image.index[j];
        i += a >= b;
        j += b >= a;
        n++;
    }
    return n + (t.count - i) + (image.count - j);
}

// Room for another support or more primes: old digits are copied, new terms have been 0 so far.
static void regrow(CrtTerms* t, const PackTerms& image, int64_t count, int32_t capacity) {
    auto* index = scratch_array<int64_t>(count);
    auto* digit = scratch_array<uint32_t>(count * capacity);
    int64_t i = 0, j = 0;
    for (int64_t n = 0; n < count; n++) {
        poll_every<4096>(n);
        bool old = i < t->count && (j >= image.count || t->index[i] >= image.index[j]);
        index[n] = old ? t->index[i] : image.index[j];
        uint32_t* d = digit + n * capacity;
        for (int32_t k = 0; k < t->primes; k++) d[k] = old ? t->digit[i * t->capacity + k] : 0;
        if (j < image.count && image.index[j] == index[n]) j++;
        if (old) i++;
    }
    if (capacity > t->capacity) {
        auto* prime = scratch_array<uint32_t>(capacity);
        memcpy(prime, t->prime, static_cast<size_t>(t->primes) * sizeof(uint32_t));
        t->prime = prime;
    }
    t->count = count;
    t->index = index;
    t->digit = digit;
    t->capacity = capacity;
}

// The symmetric value is negative: above (product - 1) / 2, whose mixed digits are (p_i - 1) / 2.
static bool is_negative(const CrtTerms& t, const uint32_t* d, int32_t primes) {
    for (int32_t k = primes - 1; k >= 0; k--) {
        uint32_t half = (t.prime[k] - 1) / 2;
        if (d[k] != half) return d[k] > half;
    }
    return false;
}

// The sum of d[k] weight[k]: products below 2^62.
static uint32_t mixed_value(const WordField& f, const uint32_t* d, const uint32_t* weight, int32_t n) {
    uint64_t sum = 0;
    int32_t k = 0;
    for (; k + 3 <= n; k += 3) {
        sum += static_cast<uint64_t>(d[k]) * weight[k] + static_cast<uint64_t>(d[k + 1]) * weight[k + 1] +
               static_cast<uint64_t>(d[k + 2]) * weight[k + 2];
        sum = wf_reduce(f, sum);
    }
    for (; k < n; k++) sum += static_cast<uint64_t>(d[k]) * weight[k];
    return wf_reduce(f, sum);
}

bool crt_add(CrtTerms* t, const PackTerms& image, const WordField& f, bool* grown) {
    int64_t count = union_count(*t, image);
    *grown = false;
    if (count != t->count || t->primes == t->capacity) {
        int32_t capacity = t->primes == t->capacity ? 2 * t->capacity : t->capacity;
        regrow(t, image, count, capacity);
        *grown = true;
    }
    int32_t primes = t->primes;
    ScratchMark mark = scratch_mark();
    auto* weight = scratch_array<uint32_t>(primes + 1);  // of digit k: the product of the primes before it
    weight[0] = 1;
    for (int32_t k = 0; k < primes; k++) weight[k + 1] = wf_mul(f, weight[k], t->prime[k] % f.p);
    uint32_t inverse = wf_inverse(f, weight[primes]);
    bool settled = primes > 0;
    int64_t j = 0;
    for (int64_t i = 0; i < count; i++) {
        poll_every<4096>(i);
        uint32_t* d = t->digit + i * t->capacity;
        uint32_t residue = 0;
        if (j < image.count && image.index[j] == t->index[i]) residue = image.residue[j++];
        uint32_t value = mixed_value(f, d, weight, primes);
        uint32_t fresh = wf_mul(f, wf_sub(f, residue, value), inverse);
        d[primes] = fresh;
        settled = settled && fresh == (is_negative(*t, d, primes) ? f.p - 1 : 0);
    }
    scratch_release(mark);
    t->prime[primes] = f.p;
    t->primes = primes + 1;
    return settled;
}

// r[0..n) := r w + a; returns the new length.
static int64_t times_plus(limb* r, int64_t n, uint32_t w, uint32_t a) {
    unsigned __int128 carry = a;
    for (int64_t i = 0; i < n; i++) {
        carry += static_cast<unsigned __int128>(r[i]) * w;
        r[i] = static_cast<limb>(carry);
        carry >>= 64;
    }
    if (carry != 0) r[n++] = static_cast<limb>(carry);
    return n;
}

// The magnitude of term i in limbs; returns their count.
static int64_t crt_limbs(const CrtTerms& t, int64_t i, limb* r, bool* negative) {
    poll_interrupt();
    const uint32_t* d = t.digit + i * t.capacity;
    int32_t k = t.primes - 1;
    *negative = is_negative(t, d, t.primes);
    // A negative value has the complement digits p - 1 - d, less one in all: |v| = product - value.
    int64_t n = 0;
    for (; k >= 0; k--) n = times_plus(r, n, t.prime[k], *negative ? t.prime[k] - 1 - d[k] : d[k]);
    if (*negative) {
        if (n == 0) r[n++] = 0;
        int64_t j = 0;
        while (j < n && ++r[j] == 0) j++;
        if (j == n) r[n++] = 1;
    }
    return limbs_trim(r, n);
}

void leaf_of_crt(void* terms, int64_t i, imptr leaf) {
    const CrtTerms& t = *static_cast<CrtTerms*>(terms);
    ScratchMark mark = scratch_mark();
    limb* r = scratch_array<limb>(t.primes / 2 + 3);
    bool negative;
    int64_t n = crt_limbs(t, i, r, &negative);
    chain_from_limbs(leaf, r, n, negative);
    scratch_release(mark);
}

int64_t crt_bits(const CrtTerms& t) {
    ScratchMark mark = scratch_mark();
    limb* r = scratch_array<limb>(t.primes / 2 + 3);
    int64_t most = 0;
    for (int64_t i = 0; i < t.count; i++) {
        bool negative;
        int64_t n = crt_limbs(t, i, r, &negative);
        if (n > 0) most = maxx64(most, n * 64 - __builtin_clzll(r[n - 1]));
    }
    scratch_release(mark);
    return most;
}

int64_t crt_product_bits(const CrtTerms& t) {
    int64_t bits = 0;
    for (int32_t k = 0; k < t.primes; k++) bits += 31 - __builtin_clz(t.prime[k]);
    return bits;
}
}  // namespace tolvex
