#include "numbers/num_divide.h"

#include "numbers/limbs.h"
namespace tolvex {
namespace {
/// Signs of the two results of a division of magnitudes.
struct Signs {
    bool quotient, remainder;
};

/// A dividend in the form of a bare chain piece.
struct Piece {
    numptr p;
    int32_t size;
};

/// Both results of |n| / |d|, with the signs given; q, r may be nil or own the chains of n, d. d is not 0.
void divide_magnitudes(Piece n, Piece d, imptr q, imptr r, Signs negative) {
    LimbArena arena;
    Limbs a = arena_unpack(arena, n.p, n.size), b = arena_unpack(arena, d.p, d.size);
    if (limbs_compare(a.at, a.n, b.at, b.n) < 0) {
        if (q != nullptr) chain_replace(q, nullptr, 0, false);
        if (r != nullptr) chain_replace(r, a.at, a.n, negative.remainder);
    } else {
        int64_t qn = a.n - b.n + 1;
        limb* quotient = q != nullptr ? arena_take(arena, a.n) : nullptr;
        limbs_divrem(quotient, a.at, a.n, b.at, b.n);
        if (q != nullptr) chain_replace(q, quotient, qn, negative.quotient);
        if (r != nullptr) chain_replace(r, a.at, b.n, negative.remainder);
    }
    arena_end(arena);
}

int64_t small_piece(Piece n) {
    int64_t v = n.p->value;
    return n.size == 1 ? v : v * k_base + n.p->next->value;
}

void signed_wide(imptr x, int64_t magnitude, bool negative) {
    if (x != nullptr) chain_set_int64(x, negative ? -magnitude : magnitude);
}

/// The same with the one- and two-digit operands first.
void divide_pieces(Piece n, Piece d, imptr q, imptr r, Signs negative) {
    if (n.size <= 2 && d.size <= 2) {
        int64_t a = small_piece(n), b = small_piece(d);
        if (a < 0) a = -a;
        if (b < 0) b = -b;
        int64_t quotient = a / b;
        signed_wide(q, quotient, negative.quotient);
        signed_wide(r, a - quotient * b, negative.remainder);
        return;
    }
    divide_magnitudes(n, d, q, r, negative);
}
}  // namespace

void divide(const number* n, const number* d, imptr quot, imptr rem) {
    if (d->head->value == 0) return;
    // The remainder takes the sign of the quotient: n = quot d + rem holds only for positive d.
    bool negative = (n->head->value < 0) != (d->head->value < 0);
    divide_pieces({n->head, n->size}, {d->head, d->size}, quot, rem, {negative, negative});
}

void pos_divide(const number* n, const number* d, imptr quot, imptr rem) {
    CHECK(n->head->value >= 0 && d->head->value > 0);
    divide_pieces({n->head, n->size}, {d->head, d->size}, quot, rem, {false, false});
}

void pos_divide_noq(numptr nhead, int32_t nsize, numptr dhead, int32_t dsize, imptr rem) {
    CHECK(nhead->value >= 0 && dhead->value > 0);
    divide_pieces({nhead, nsize}, {dhead, dsize}, nullptr, rem, {false, false});
}

void simp_divide(numptr p, int32_t size, const number* d, imptr quot, imptr rem) {
    CHECK(d->head->value > 0);
    divide_pieces({p, size}, {d->head, d->size}, quot, rem, {false, false});
    CHECK(quot->size == 1);
    quot->lint = quot->head->value;
}

void trunc_divide(const number* n, const number* d, imptr q, imptr r) {
    if (d->head->value == 0) return;
    bool n_negative = n->head->value < 0;
    bool negative = n_negative != (d->head->value < 0);
    divide_pieces({n->head, n->size}, {d->head, d->size}, q, r, {negative, n_negative});
}

void divide_exact(imptr n, const number* d) { trunc_divide(n, d, n, nullptr); }

int32_t quotient_of(const number* n, int32_t m) {
    CHECK(m != 0);
    if (n->size <= 2) return static_cast<int32_t>(chain_small_value(n) / m);
    // Up to 63 bits in all: the quotient fits a word by contract, so the dividend has at most three digits.
    CHECK(n->size == 3);
    __int128 v = 0;
    for (const numnode* p = n->head; p != nullptr; p = p->next) v = v * k_base + p->value;
    return static_cast<int32_t>(v / m);
}

// |n| mod m plus 0 or m. Horner's rule with a 64-bit reciprocal.
static uint64_t chain_horner(const number* n, uint32_t m) {
    bool negative = n->head->value < 0;
    uint64_t recip = UINT64_MAX / m, r = 0;
    for (const numnode* p = n->head; p != nullptr; p = p->next) {
        uint64_t z = (r << k_digit_bits) + static_cast<uint64_t>(negative ? -p->value : p->value);
        r = z - static_cast<uint64_t>((static_cast<unsigned __int128>(z) * recip) >> 64) * m;
    }
    return r;
}

namespace {
/// base^k modulo m, k = 1, 2, ...: of the modulus that was used last, for images take many numbers modulo one
/// prime.
constexpr int32_t k_powers = 31;  // so many products below 2^59 and one word more have a sum below 2^64
struct DigitPowers {
    uint32_t m = 0;
    uint32_t power[k_powers + 1];
} digit_powers;
}  // namespace

static const uint32_t* powers_modulo(uint32_t m) {
    DigitPowers& t = digit_powers;
    if (t.m == m) return t.power;
    t.m = m;
    t.power[0] = 1 % m;
    for (int32_t k = 1; k <= k_powers; k++)
        t.power[k] = static_cast<uint32_t>((static_cast<uint64_t>(t.power[k - 1]) << k_digit_bits) % m);
    return t.power;
}

// |n| mod m for m below 2^31: blocks of k_powers digits, whose products with the powers do not wait for each
// other.
static uint64_t chain_by_powers(const number* n, uint32_t m) {
    const uint32_t* power = powers_modulo(m);
    bool negative = n->head->value < 0;
    uint64_t r = 0;
    int32_t left = n->size;
    const numnode* p = n->head;
    while (left > 0) {
        int32_t block = (left - 1) % k_powers + 1;
        uint64_t sum = r * power[block];
        for (int32_t k = block - 1; k >= 0; k--, p = p->next)
            sum += static_cast<uint64_t>(negative ? -p->value : p->value) * power[k];
        r = sum % m;
        left -= block;
    }
    return r;
}

uint32_t digits_mod_word(const uint32_t* d, int32_t n, uint32_t m) {
    const uint32_t* power = powers_modulo(m);
    uint64_t r = 0;
    for (int32_t left = n; left > 0;) {
        int32_t block = (left - 1) % k_powers + 1;
        uint64_t sum = r * power[block];
        left -= block;
        for (int32_t k = 0; k < block; k++) sum += static_cast<uint64_t>(d[left + k]) * power[k];
        r = sum % m;
    }
    return static_cast<uint32_t>(r);
}

uint32_t chain_mod_word(const number* n, uint32_t m) {
    CHECK(m >= 1);
    bool negative = n->head->value < 0;
    uint64_t r;
    if (n->size <= 2) {
        int64_t v = chain_small_value(n);
        r = static_cast<uint64_t>(v < 0 ? -v : v) % m;
    } else {
        r = m >> 31 == 0 ? chain_by_powers(n, m) : chain_horner(n, m) % m;
    }
    return static_cast<uint32_t>(negative && r != 0 ? m - r : r);
}

int32_t modout(const number* n) {
    auto r = static_cast<int32_t>(chain_mod_word(n, static_cast<uint32_t>(modulus)));
    lintmode = 1;
    return r;
}

void fast_modout(imptr n, const number* pseudodet) {
    int32_t keep = pseudodet->size - 1;
    if (keep <= 0) {
        chain_set_int64(n, 0);
        return;
    }
    int32_t drop = n->size > keep ? n->size - keep : 0;
    numptr p = n->head, last = nullptr;
    while (p != n->tail && (drop > 0 || (last != nullptr && p->value == 0))) {
        last = p;
        p = p->next;
        if (drop > 0) drop--;
    }
    if (last == nullptr) return;
    for (numptr old = n->head; old != p; old = old->next) n->size--;
    free_chain(n->head, last);
    n->head = p;
}
}  // namespace tolvex
