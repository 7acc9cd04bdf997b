#include "numbers/limb_ntt.h"

#include "numbers/float_transform.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/wide_vectors.h"

#include <bit>
namespace tolvex {
namespace {
using wide = unsigned __int128;
constexpr int32_t k_most_primes = k_float_primes;
/// A digit is low + 2^k_half_bits high, both exact in floating point.
constexpr int k_half_bits = 48;
constexpr limb k_half_mask = (limb{1} << k_half_bits) - 1;
constexpr int64_t k_run = 1024;  // coefficients put together at a time: they stay in the first cache
constexpr int64_t k_stretch = int64_t{1} << 16;  // coefficients between safe points

/// What one product needs to know.
struct Plan {
    int32_t primes;
    int bits;        // of a digit
    int64_t an, bn;  // digits of the operands
    FloatLength length;
};
/// The digits of an operand in two arrays; `high` is nil if they are short.
struct Digits {
    double *low, *high;
    int64_t n;
};
}  // namespace

static int64_t digits_needed(int64_t limbs, int bits) { return (64 * limbs + bits - 1) / bits; }

static Plan plan_with(int32_t primes, int64_t an, int64_t bn) {
    int64_t shorter = an < bn ? an : bn;
    Plan p;
    p.primes = primes;
    // A coefficient is a sum of at most digits(shorter) products of 2 `bits` bits, and 4 times that has to
    // fit. 32 bits a digit at the least, so that twice the limbs is a bound for the digits.
    p.bits = (float_bits(primes) - 2 - static_cast<int>(std::bit_width(static_cast<limb>(2 * shorter)))) / 2;
    CHECK(p.bits >= 32);
    if (p.bits > 2 * k_half_bits) p.bits = 2 * k_half_bits;
    p.an = digits_needed(an, p.bits);
    p.bn = digits_needed(bn, p.bits);
    p.length = float_length(p.an + p.bn - 1);
    return p;
}

static Plan plan_for(int64_t an, int64_t bn) {
    Plan best = plan_with(2, an, bn);
    for (int32_t primes = 3; primes <= k_most_primes; primes++) {
        Plan p = plan_with(primes, an, bn);
        if (primes * p.length.n() < best.primes * best.length.n()) best = p;
    }
    return best;
}

// Bits at..at+count of a[0..n), count < 64; above the array they are 0.
static inline limb bits_at(const limb* a, int64_t n, int64_t at, int count) {
    int64_t i = at / 64;
    int s = static_cast<int>(at % 64);
    limb w = i < n ? a[i] >> s : 0;
    if (s > 64 - count && i + 1 < n) w |= a[i + 1] << (64 - s);
    return w & ((limb{1} << count) - 1);
}

static Digits cut_digits(const limb* a, int64_t n, int64_t count, const Plan& plan) {
    Digits d = {scratch_array<double>(count), nullptr, count};
    int low_bits = plan.bits < k_half_bits ? plan.bits : k_half_bits, high_bits = plan.bits - low_bits;
    if (high_bits > 0) d.high = scratch_array<double>(count);
    for (int64_t from = 0; from < count; from += k_stretch) {
        const int64_t stop = count - from < k_stretch ? count : from + k_stretch;
        for (int64_t i = from, at = from * plan.bits; i < stop; i++, at += plan.bits) {
            d.low[i] = static_cast<double>(static_cast<int64_t>(bits_at(a, n, at, low_bits)));
            if (high_bits > 0)
                d.high[i] =
                    static_cast<double>(static_cast<int64_t>(bits_at(a, n, at + low_bits, high_bits)));
        }
        poll_interrupt();
    }
    return d;
}

WIDE_VECTORS static void join_halves(double* __restrict x, const double* __restrict low,
                                     const double* __restrict high, int64_t n, FloatFactor weight, double p) {
    for (int64_t i = 0; i < n; i++) x[i] = low[i] + float_times(high[i], weight, p);
}

// x := the values of the polynomial of the digits.
static void digit_values(double* x, const Digits& d, FloatLength length, int32_t prime) {
    FloatModulus f = float_modulus(k_float_prime[prime]);
    FloatFactor weight = float_factor(int64_t{1} << k_half_bits, f);
    if (d.high == nullptr) {
        scratch_copy(x, d.low, static_cast<size_t>(d.n) * sizeof(double));
    } else {
        for (int64_t from = 0; from < d.n; from += k_stretch) {
            int64_t n = d.n - from < k_stretch ? d.n - from : k_stretch;
            join_halves(x + from, d.low + from, d.high + from, n, weight, f.m);
            poll_interrupt();
        }
    }
    scratch_clear(x + d.n, static_cast<size_t>(length.n() - d.n) * sizeof(double));
    float_values(x, length, prime);
}

namespace {
/// 1/p_i modulo p_j, and p_0 ... p_(i-1) in limbs.
struct MixedRadix {
    FloatFactor inverse[k_most_primes][k_most_primes];
    limb weight[k_most_primes][k_most_primes];
};
/// Bits written one after the other into r[0..n); what lies above is dropped.
struct BitWriter {
    limb* r;
    int64_t n, at;
    limb word;
    int have;
};
}  // namespace

static MixedRadix mixed_radix(int32_t primes) {
    MixedRadix m = {};
    m.weight[0][0] = 1;
    for (int32_t j = 1; j < primes; j++) {
        for (int32_t i = 0; i < j; i++)
            m.inverse[i][j] = float_factor(float_inverse(k_float_prime[i], k_float_prime[j]),
                                           float_modulus(k_float_prime[j]));
        limb carry = 0;
        for (int32_t i = 0; i < k_most_primes; i++) {
            wide t = static_cast<wide>(m.weight[j - 1][i]) * static_cast<limb>(k_float_prime[j - 1]) + carry;
            m.weight[j][i] = static_cast<limb>(t);
            carry = static_cast<limb>(t >> 64);
        }
    }
    return m;
}

WIDE_VECTORS static void divide_difference(double* __restrict x, const double* __restrict y, int64_t n,
                                           FloatFactor inverse, double p) {
    for (int64_t k = 0; k < n; k++) x[k] = float_times(x[k] - y[k], inverse, p);
}

// 0 < count < 64. Whether a limb is full cannot be foreseen, so that nothing branches on it.
static inline void write_bits(BitWriter& w, limb bits, int count) {
    w.word |= bits << w.have;
    if (w.at < w.n) w.r[w.at] = w.word;
    bool full = w.have + count >= 64;
    w.word = full ? (bits >> 1) >> (63 - w.have) : w.word;
    w.at += full;
    w.have = (w.have + count) & 63;
}

// The lowest `bits` of acc, which is shifted down by as many.
template <int32_t primes> static inline void take_bits(BitWriter& w, limb (&acc)[primes], int bits) {
    write_bits(w, acc[0] & ((limb{1} << bits) - 1), bits);
    for (int i = 0; i + 1 < primes; i++) acc[i] = acc[i] >> bits | acc[i + 1] << (64 - bits);
    acc[primes - 1] >>= bits;
}

// acc += t weight, where the weight has `count` limbs.
template <int32_t primes>
static inline void add_multiple(limb (&acc)[primes], limb t, const limb* weight, int32_t count) {
    wide carry = 0;
    for (int32_t i = 0; i < primes; i++) {
        if (i < count) carry += static_cast<wide>(t) * weight[i];
        carry += acc[i];
        acc[i] = static_cast<limb>(carry);
        carry >>= 64;
    }
}

// One coefficient, which is not negative: its digits in the mixed radix are made so from the first one on.
template <int32_t primes>
static inline void add_coefficient(limb (&acc)[primes], double* const* x, int64_t k, const MixedRadix& m) {
    int64_t borrow = 0;
    for (int32_t j = 0; j < primes; j++) {
        int64_t t = static_cast<int64_t>(x[j][k]) - borrow;
        borrow = j + 1 < primes ? static_cast<int64_t>(t < 0) : 0;
        t += k_float_prime[j] & -borrow;
        add_multiple(acc, static_cast<limb>(t), m.weight[j], j == 0 ? 1 : j);
    }
}

// Sums of coefficients and what is carried over stay below 2^(64 primes). With two primes a digit is one
// piece.
template <int32_t primes> static void write_coefficients(BitWriter w, double* const* x, const Plan& plan) {
    MixedRadix m = mixed_radix(primes);
    limb acc[primes] = {};
    int high_bits = primes == 2 ? 0 : plan.bits / 2, low_bits = plan.bits - high_bits;
    int64_t count = plan.an + plan.bn - 1;
    for (int64_t from = 0; from < count; from += k_run) {
        int64_t to = count - from < k_run ? count : from + k_run;
        for (int32_t j = 1; j < primes; j++)
            for (int32_t i = 0; i < j; i++)
                divide_difference(x[j] + from, x[i] + from, to - from, m.inverse[i][j],
                                  static_cast<double>(k_float_prime[j]));
        for (int64_t k = from; k < to; k++) {
            add_coefficient<primes>(acc, x, k, m);
            take_bits<primes>(w, acc, low_bits);
            if (primes > 2) take_bits<primes>(w, acc, high_bits);
        }
        poll_interrupt();
    }
    while (w.at < w.n) take_bits<primes>(w, acc, k_half_bits);
}

// r[0..n) := sum of c_k 2^(bits k), where c_k has the residues x[j][k].
static void put_together(limb* r, int64_t n, double* const* x, const Plan& plan) {
    constexpr void (*write[])(BitWriter, double* const*, const Plan&) = {
        write_coefficients<2>, write_coefficients<3>, write_coefficients<4>};
    write[plan.primes - 2]({r, n, 0, 0, 0}, x, plan);
}

void limbs_mul_transform(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    ScratchMark mark = scratch_mark();
    Plan plan = plan_for(an, bn);
    bool square = a == b && an == bn;
    Digits da = cut_digits(a, an, plan.an, plan), db = square ? da : cut_digits(b, bn, plan.bn, plan);
    double *x[k_most_primes], *y = square ? nullptr : scratch_array<double>(plan.length.n());
    for (int32_t i = 0; i < plan.primes; i++) {
        x[i] = scratch_array<double>(plan.length.n());
        digit_values(x[i], da, plan.length, i);
        if (!square) digit_values(y, db, plan.length, i);
        float_products(x[i], square ? x[i] : y, plan.length, i);
        float_coefficients(x[i], plan.length, i);
    }
    put_together(r, an + bn, x, plan);
    scratch_release(mark);
}
}  // namespace tolvex
