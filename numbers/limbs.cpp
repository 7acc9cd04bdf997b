// Linear-time kernels on limb arrays. Carries run in a 128-bit accumulator, which compilers turn into one
// widening multiplication and two additions with carry a limb.
#include "numbers/limbs.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#endif
namespace tolvex {
namespace {
using wide = unsigned __int128;

// The plain form of the three products; the fallback, and the tail of the unrolled form.
inline limb addmul_plain(limb* r, const limb* a, int64_t n, limb w, limb carry) {
    for (int64_t i = 0; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + r[i] + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    return carry;
}

inline limb submul_plain(limb* r, const limb* a, int64_t n, limb w, limb borrow) {
    for (int64_t i = 0; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + borrow;
        auto low = static_cast<limb>(t);
        borrow = static_cast<limb>(t >> 64) + (r[i] < low);
        r[i] -= low;
    }
    return borrow;
}

inline limb mul_plain(limb* r, const limb* a, int64_t n, limb w, limb carry) {
    for (int64_t i = 0; i < n; i++) {
        wide t = static_cast<wide>(a[i]) * w + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    return carry;
}

#if defined(__x86_64__) && defined(__GNUC__)
// Processors with mulx, adcx and adox add on two carry chains at once, which no compiler makes of the plain
// form: blocks of limbs in machine code, about twice as fast. H and L alternate as high word of one product
// and carry into the next.
bool two_carry_chains() {
    unsigned a, b, c, d;
    constexpr unsigned k_bmi2 = 1u << 8, k_adx = 1u << 19;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & k_bmi2) != 0 && (b & k_adx) != 0;
}
const bool fast_carries = two_carry_chains();

#define MUL_STEP(at, in, out) "mulx " #at "(%[a]), %[l], %[" out "]\n\tadcx %[" in "], %[l]\n\t"
#define ADD_STEP(at, in, out) MUL_STEP(at, in, out) "adox " #at "(%[r]), %[l]\n\tmov %[l], " #at "(%[r])\n\t"
// r - x is the complement of (complement of r) + x.
#define SUB_STEP(at, in, out)                                                                                \
    MUL_STEP(at, in, out)                                                                                    \
    "mov " #at "(%[r]), %[t]\n\tnot %[t]\n\tadox %[t], %[l]\n\tnot %[l]\n\tmov %[l], " #at "(%[r])\n\t"
#define PUT_STEP(at, in, out) MUL_STEP(at, in, out) "mov %[l], " #at "(%[r])\n\t"
#define TWO(step, x, y) step(x, "c", "h") step(y, "h", "c")
#define FOUR(step) TWO(step, 0, 8) TWO(step, 16, 24)
#define EIGHT(step) FOUR(step) TWO(step, 32, 40) TWO(step, 48, 56)
// The exclusive or clears both carries; the last two instructions fold them into the carry word.
#define BLOCK(steps)                                                                                         \
    asm volatile("xor %k[z], %k[z]\n\t" steps "adcx %[z], %[c]\n\tadox %[z], %[c]"                           \
                 : [c] "+&r"(carry), [h] "=&r"(h), [l] "=&r"(l), [t] "=&r"(t), [z] "=&r"(z)                  \
                 : [a] "r"(a), [r] "r"(r), "d"(w)                                                            \
                 : "memory", "cc")
#define UNROLLED(step, plain)                                                                                \
    limb carry = 0, h, l, t, z;                                                                              \
    for (; n >= 8; n -= 8, a += 8, r += 8) BLOCK(EIGHT(step));                                               \
    if (n >= 4) {                                                                                            \
        BLOCK(FOUR(step));                                                                                   \
        n -= 4, a += 4, r += 4;                                                                              \
    }                                                                                                        \
    return plain(r, a, n, w, carry)

limb addmul_unrolled(limb* r, const limb* a, int64_t n, limb w) { UNROLLED(ADD_STEP, addmul_plain); }
limb submul_unrolled(limb* r, const limb* a, int64_t n, limb w) { UNROLLED(SUB_STEP, submul_plain); }
limb mul_unrolled(limb* r, const limb* a, int64_t n, limb w) { UNROLLED(PUT_STEP, mul_plain); }

// Sums and differences in blocks of eight with the carry in the flag, which every x86-64 has.
#define LINE(op, at) "mov " #at "(%[a]), %[l]\n\t" op " " #at "(%[b]), %[l]\n\tmov %[l], " #at "(%[r])\n\t"
#define EIGHT_LINES(op)                                                                                      \
    LINE(op, 0) LINE(op, 8) LINE(op, 16) LINE(op, 24) LINE(op, 32) LINE(op, 40) LINE(op, 48) LINE(op, 56)
#define CARRY_BLOCKS(op)                                                                                     \
    limb carry = 0, l;                                                                                       \
    for (; i + 8 <= n; i += 8, a += 8, b += 8, r += 8)                                                       \
        asm volatile("neg %[c]\n\t" EIGHT_LINES(op) "sbb %[c], %[c]\n\tneg %[c]"                             \
                     : [c] "+&r"(carry), [l] "=&r"(l)                                                        \
                     : [a] "r"(a), [b] "r"(b), [r] "r"(r)                                                    \
                     : "memory", "cc");                                                                      \
    return carry

limb add_blocks(limb* r, const limb* a, const limb* b, int64_t n, int64_t& i) { CARRY_BLOCKS("adc"); }
limb sub_blocks(limb* r, const limb* a, const limb* b, int64_t n, int64_t& i) { CARRY_BLOCKS("sbb"); }
#undef CARRY_BLOCKS
#undef EIGHT_LINES
#undef LINE
#undef UNROLLED
#undef BLOCK
#undef EIGHT
#undef FOUR
#undef TWO
#undef PUT_STEP
#undef SUB_STEP
#undef ADD_STEP
#undef MUL_STEP
#else
constexpr bool fast_carries = false;
limb addmul_unrolled(limb* r, const limb* a, int64_t n, limb w) { return addmul_plain(r, a, n, w, 0); }
limb submul_unrolled(limb* r, const limb* a, int64_t n, limb w) { return submul_plain(r, a, n, w, 0); }
limb mul_unrolled(limb* r, const limb* a, int64_t n, limb w) { return mul_plain(r, a, n, w, 0); }
limb add_blocks(limb*, const limb*, const limb*, int64_t, int64_t&) { return 0; }
limb sub_blocks(limb*, const limb*, const limb*, int64_t, int64_t&) { return 0; }
#endif
}  // namespace

limb limbs_addmul_1(limb* r, const limb* a, int64_t n, limb w) {
    return fast_carries ? addmul_unrolled(r, a, n, w) : addmul_plain(r, a, n, w, 0);
}

limb limbs_submul_1(limb* r, const limb* a, int64_t n, limb w) {
    return fast_carries ? submul_unrolled(r, a, n, w) : submul_plain(r, a, n, w, 0);
}

limb limbs_mul_1(limb* r, const limb* a, int64_t n, limb w) {
    return fast_carries ? mul_unrolled(r, a, n, w) : mul_plain(r, a, n, w, 0);
}

limb limbs_add(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    int64_t i = 0;
    limb carry = add_blocks(r, a, b, bn, i);
    for (; i < bn; i++) {
        wide t = static_cast<wide>(a[i]) + b[i] + carry;
        r[i] = static_cast<limb>(t);
        carry = static_cast<limb>(t >> 64);
    }
    for (; i < an && carry != 0; i++) {
        r[i] = a[i] + 1;
        carry = r[i] == 0;
    }
    if (r != a)
        for (; i < an; i++) r[i] = a[i];
    return carry;
}

limb limbs_sub(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    int64_t i = 0;
    limb borrow = sub_blocks(r, a, b, bn, i);
    for (; i < bn; i++) {
        wide t = static_cast<wide>(a[i]) - b[i] - borrow;
        r[i] = static_cast<limb>(t);
        borrow = static_cast<limb>(t >> 64) & 1;
    }
    for (; i < an && borrow != 0; i++) {
        borrow = a[i] == 0;
        r[i] = a[i] - 1;
    }
    if (r != a)
        for (; i < an; i++) r[i] = a[i];
    return borrow;
}

int limbs_compare(const limb* a, int64_t an, const limb* b, int64_t bn) {
    if (an != bn) return an > bn ? 1 : -1;
    for (int64_t i = an - 1; i >= 0; i--)
        if (a[i] != b[i]) return a[i] > b[i] ? 1 : -1;
    return 0;
}

limb limbs_shift_left(limb* r, const limb* a, int64_t n, int s) {
    if (s == 0) {
        for (int64_t i = n - 1; i >= 0; i--) r[i] = a[i];
        return 0;
    }
    limb out = n > 0 ? a[n - 1] >> (64 - s) : 0;
    for (int64_t i = n - 1; i > 0; i--) r[i] = a[i] << s | a[i - 1] >> (64 - s);
    if (n > 0) r[0] = a[0] << s;
    return out;
}

void limbs_shift_right(limb* r, const limb* a, int64_t n, int s) {
    if (s == 0) {
        for (int64_t i = 0; i < n; i++) r[i] = a[i];
        return;
    }
    for (int64_t i = 0; i + 1 < n; i++) r[i] = a[i] >> s | a[i + 1] << (64 - s);
    if (n > 0) r[n - 1] = a[n - 1] >> s;
}
}  // namespace tolvex
