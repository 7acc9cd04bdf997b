#include "numbers/num_mult.h"

#include "numbers/limb_product.h"
#include "numbers/limbs.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/residue.h"
#include "storage/interrupt.h"

#include <bit>
#include <utility>
namespace tolvex {
namespace {
/// Above this bit length a power is refused instead of filling the memory.
constexpr int64_t k_power_bits = int64_t{1} << 35;

int32_t word_product(int32_t x, int32_t y) {
    return static_cast<int32_t>(static_cast<uint32_t>(x) * static_cast<uint32_t>(y));
}

limb word_magnitude(int64_t v) { return v < 0 ? 0 - static_cast<limb>(v) : static_cast<limb>(v); }

/// n := n^k for chains.
void chain_power(imptr n, int32_t k) {
    if (k == 0) {
        chain_set_int64(n, 1);
        return;
    }
    bool negative = n->head->value < 0 && (k & 1) != 0;
    if (n->size == 1 && n->head->value >= -1 && n->head->value <= 1) {
        n->head->value = negative ? -1 : n->head->value != 0;
        return;
    }
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size);
    auto power = static_cast<uint32_t>(k);
    if ((limbs_bits(a.at, a.n) - 1) > k_power_bits / k) {
        arena_end(arena);
        mem_error();
        chain_set_int64(n, 0);
        return;
    }
    limb* r = arena_take(arena, limbs_power_room(a.at, a.n, power));
    int64_t length = limbs_power(r, a.at, a.n, power);
    chain_replace(n, r, length, negative);
    arena_end(arena);
}

/// first ... last in modular mode: each factor is reduced, and a product 0 ends the work.
int32_t residue_range(int64_t first, int64_t last) {
    // In a table field the integers are 0 and 1; one of any two neighbours is 0.
    if (finf) return last < first || (first == last && (first & 1) != 0);
    int32_t r = 1;
    for (int64_t i = first; i <= last && r != 0; i++) {
        r = modmult(static_cast<uint32_t>(r), static_cast<uint32_t>(residue_of_int(i)));
        poll_interrupt();
    }
    return r;
}

/// ans := first ... last for chains, first <= last.
void chain_range(int64_t first, int64_t last, imptr ans) {
    if (first <= 0 && last >= 0) {
        chain_set_int64(ans, 0);
        return;
    }
    bool negative = first < 0 && ((last - first) & 1) == 0;
    limb low = word_magnitude(first), high = word_magnitude(last);
    if (low > high) std::swap(low, high);
    LimbArena arena;
    limb* r = arena_take(arena, limbs_range_room(low, high));
    chain_replace(ans, r, limbs_range_product(r, low, high), negative);
    arena_end(arena);
}
}  // namespace

void simp_mult(const number* n, imptr ans, int32_t m, numptrptr penult) {
    bool negative = (n->head->value < 0) != (m < 0);
    if (n->size <= 2) {
        __int128 v = static_cast<__int128>(chain_small_value(n)) * m;
        chain_set_wide(ans, static_cast<unsigned __int128>(v < 0 ? -v : v), v < 0);
    } else {
        LimbArena arena;
        Limbs a = arena_unpack(arena, n->head, n->size);
        auto w = static_cast<limb>(m < 0 ? -static_cast<int64_t>(m) : m);
        limb* r = arena_take(arena, a.n + 1);
        r[a.n] = limbs_mul_1(r, a.at, a.n, w);
        chain_replace(ans, r, a.n + 1, negative);
        arena_end(arena);
    }
    *penult = nullptr;
    if (ans->size == 1) return;
    numptr p = ans->head;
    while (p->next != ans->tail) p = p->next;
    *penult = p;
}

void multiply(const number* n, const number* m, imptr ans) {
    bool negative = (n->head->value < 0) != (m->head->value < 0);
    if (n->size < m->size) std::swap(n, m);
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size), b = arena_unpack(arena, m->head, m->size);
    if (b.n == 0) {
        chain_replace(ans, nullptr, 0, false);
    } else {
        limb* r = arena_take(arena, a.n + b.n);
        if (a.n < b.n) std::swap(a, b);
        limbs_mul_school(r, a.at, a.n, b.at, b.n);
        chain_replace(ans, r, a.n + b.n, negative);
    }
    arena_end(arena);
}

void number_power(imptr n, int32_t k) {
    CHECK(k >= 0);
    if (modularmode) {
        int32_t r = 1, base = n->lint;
        for (int i = std::bit_width(static_cast<uint32_t>(k)) - 1; i >= 0; i--) {
            r = modmult(static_cast<uint32_t>(r), static_cast<uint32_t>(r));
            if (k >> i & 1) r = modmult(static_cast<uint32_t>(r), static_cast<uint32_t>(base));
        }
        n->lint = r;
    } else if (lintmode) {
        int32_t r = 1, base = n->lint;
        for (int i = std::bit_width(static_cast<uint32_t>(k)) - 1; i >= 0; i--) {
            r = word_product(r, r);
            if (k >> i & 1) r = word_product(r, base);
        }
        n->lint = r;
    } else {
        chain_power(n, k);
    }
}

void multout(int32_t first, int32_t last, imptr ans) {
    if (modularmode) {
        ans->lint = residue_range(first, last);
    } else if (lintmode) {
        int32_t r = 1;
        for (int64_t i = first; i <= last && r != 0; i++) r = word_product(r, static_cast<int32_t>(i));
        ans->lint = r;
    } else if (last < first) {
        chain_set_int64(ans, 1);
    } else {
        chain_range(first, last, ans);
    }
}

void factorial(imptr n) {
    // The greatest argument whose factorial fits a word, and the greatest one of modular mode.
    constexpr int32_t k_word_limit = 12, k_modular_limit = 46340;
    bool out_of_range = lintmode ? n->lint < 0 : n->head->value < 0 || n->size > 1;
    if (modularmode && !finf && n->lint < modulus && n->lint > k_modular_limit) out_of_range = true;
    if (out_of_range) {
        error(Err::factorial_range);
        setvalue(0, n);
    } else if (modularmode && finf) {  // there, the integers are 0 and 1 only
        n->lint = n->lint < 2;
    } else if (modularmode && n->lint >= modulus) {
        n->lint = 0;
    } else if (lintmode && !modularmode && n->lint > k_word_limit) {
        error(Err::factorial_word_range);
        n->lint = 0;
    } else if (lintmode) {
        multout(1, n->lint, n);
    } else {
        auto v = static_cast<uint32_t>(n->head->value);
        LimbArena arena;
        limb* r = arena_take(arena, limbs_factorial_room(v));
        chain_replace(n, r, limbs_factorial(r, v), false);
        arena_end(arena);
    }
}

void int_mult(const number* n, const number* m, imptr q) {
    if (modularmode) {
        q->lint = modmult(static_cast<uint32_t>(n->lint), static_cast<uint32_t>(m->lint));
    } else if (lintmode) {
        q->lint = word_product(n->lint, m->lint);
    } else {
        fast_mult(n, m, q);
    }
}

boolean is_product_of(const number* num, int32_t n, int32_t m) {
    int64_t v = static_cast<int64_t>(n) * m;
    if (num->size > 3) return 0;
    __int128 w = 0;
    for (const numnode* p = num->head; p != nullptr; p = p->next) w = w * k_base + p->value;
    return w == v;
}
}  // namespace tolvex
