#include "poly/packed_kronecker.h"

#include "poly/dense_mult.h"
#include "poly/packed_rings.h"
#include "storage/interrupt.h"

#include <algorithm>
#include <cmath>
namespace tolvex {
static int32_t bit_length(uint64_t v) { return v == 0 ? 0 : 64 - __builtin_clzll(v); }

// ---- the value at a power of two -----------------------------------------------------------------------

int64_t kronecker_bits(const PackedOperand& p) {
    int64_t bits = 0;
    for (int64_t i = 0; i < p.terms; i++) {
        const number* x = p.numbers[i];
        int32_t head = x->head->value;
        int64_t b = static_cast<int64_t>(x->size - 1) * k_digit_bits +
                    bit_length(static_cast<uint64_t>(head < 0 ? -head : head));
        if (b > bits) bits = b;
    }
    return bits;
}

limb* kronecker_value(const PackedOperand& p, int64_t width, bool* negative) {
    const int64_t length = p.extent() * width;
    auto* plus = scratch_array<limb>(length);
    ScratchMark mark = scratch_mark();
    auto* minus = scratch_array<limb>(length);
    scratch_clear(plus, static_cast<size_t>(length) * sizeof(limb));
    scratch_clear(minus, static_cast<size_t>(length) * sizeof(limb));
    auto* magnitude = scratch_array<limb>(limbs_for(p.digits));
    for (int64_t i = 0; i < p.terms; i++) {
        const number* x = p.numbers[i];
        int64_t n = limbs_from_chain(magnitude, x->head, x->size);
        limb* to = (x->head->value < 0 ? minus : plus) + static_cast<int64_t>(p.keys[i]) * width;
        memcpy(to, magnitude, static_cast<size_t>(n) * sizeof(limb));
        poll_interrupt();
    }
    int64_t plus_length = limbs_trim(plus, length), minus_length = limbs_trim(minus, length);
    *negative = limbs_compare(plus, plus_length, minus, minus_length) < 0;
    if (*negative) {
        limbs_sub(minus, minus, minus_length, plus, plus_length);
        scratch_copy(plus, minus, static_cast<size_t>(length) * sizeof(limb));
    } else if (minus_length > 0) {
        limbs_sub(plus, plus, plus_length, minus, minus_length);
    }
    scratch_release(mark);
    return plus;
}

void kronecker_restore(limb* r, int64_t places, int64_t width) {
    limb carry = 0;
    for (int64_t i = 0; i < places; i++, r += width) {
        for (int64_t k = 0; carry != 0 && k < width; k++) carry = (r[k] += carry) < carry;
        carry |= r[width - 1] >> 63;
        poll_every<k_terms_unpolled>(i);
    }
}

// ---- products ------------------------------------------------------------------------------------------

namespace {
/// Limbs of one place: the sum of all products that may meet there, and a sign.
int64_t place_limbs(int64_t n_bits, int64_t m_bits, int64_t meeting) {
    return (n_bits + m_bits + bit_length(static_cast<uint64_t>(meeting)) + 1 + 63) / 64;
}

int32_t* residue_array(const PackedOperand& p) {
    auto* a = scratch_array<int32_t>(p.extent());
    scratch_clear(a, static_cast<size_t>(p.extent()) * sizeof(int32_t));
    for (int64_t i = 0; i < p.terms; i++) {
        a[p.keys[i]] = p.numbers[i]->lint;
        poll_every<k_terms_unpolled>(i);
    }
    return a;
}

/// Reads the places of an array of residues.
struct ResidueBox {
    const int32_t* value;
    bool zero(int64_t slot) const { return value[slot] == 0; }
    poly leaf(int64_t slot) const { return leaf_of_residue(static_cast<uint32_t>(value[slot])); }
};

poly integer_product(const PackedPlan& plan, const int64_t* weight, int64_t slots, const PackedOperand& n,
                     const PackedOperand& m) {
    const int64_t width = place_limbs(kronecker_bits(n), kronecker_bits(m), std::min(n.terms, m.terms));
    const int64_t places = std::max(slots, n.extent() + m.extent());
    bool n_negative, m_negative;
    limb* a = kronecker_value(n, width, &n_negative);
    limb* b = a;
    m_negative = n_negative;
    if (n.keys != m.keys) b = kronecker_value(m, width, &m_negative);
    int64_t a_length = limbs_trim(a, n.extent() * width), b_length = limbs_trim(b, m.extent() * width);
    LimbRing box = {};
    box.width = width;
    box.acc = scratch_array<limb>(places * width);
    box.magnitude = scratch_array<limb>(width);
    if (a_length >= b_length)
        limbs_mul(box.acc, a, a_length, b, b_length);
    else
        limbs_mul(box.acc, b, b_length, a, a_length);
    int64_t used = a_length + b_length;
    scratch_clear(box.acc + used, static_cast<size_t>(places * width - used) * sizeof(limb));
    kronecker_restore(box.acc, places, width);
    poly p = box_tree(plan, weight, box);
    if (n_negative != m_negative) poly_inplace(p);
    return p;
}
}  // namespace

bool kronecker_pays(const PackedOperand& n, const PackedOperand& m) {
    // Nanoseconds, measured: a transform a place, a product of two terms (bench/time_poly_mult).
#ifdef TOLVEX_SMALL_LIMITS
    constexpr double k_residue_place = 1, k_limb_place = 1, k_table_step = 0.1;
#else
    constexpr double k_residue_place = 120, k_limb_place = 160, k_table_step = 3;
#endif
    const double products = static_cast<double>(n.terms) * static_cast<double>(m.terms);
    const double n_extent = static_cast<double>(n.extent()), m_extent = static_cast<double>(m.extent());
    const double places = n_extent + m_extent;
    if (places > 1e9) return false;
    if (finf) {  // arrays of a table field are multiplied by Karatsuba's method
        double shorter = std::min(n_extent, m_extent);
        return products > k_table_step * std::pow(shorter, 0.585) * places;
    }
    if (modularmode) return products > k_residue_place * places;
    const auto n_limbs = static_cast<double>(limbs_for(n.digits)),
               m_limbs = static_cast<double>(limbs_for(m.digits));
    const double product_cost = n_limbs * m_limbs > 1 ? 10 + n_limbs * m_limbs : 1;
    return products * product_cost > k_limb_place * places * (n_limbs + m_limbs);
}

poly kronecker_product(const PackedPlan& plan, const int64_t* weight, int64_t slots, const PackedOperand& n,
                       const PackedOperand& m) {
    if (!modularmode) return integer_product(plan, weight, slots, n, m);
    const int32_t* a = residue_array(n);
    const int32_t* b = n.keys == m.keys ? a : residue_array(m);
    const int64_t entries = n.extent() + m.extent() - 1;  // the largest vector of exponents need not occur
    auto* c = scratch_array<int32_t>(std::max(slots, entries));
    if (slots > entries) scratch_clear(c + entries, static_cast<size_t>(slots - entries) * sizeof(int32_t));
    dense_mult(a, static_cast<int32_t>(n.extent()), b, static_cast<int32_t>(m.extent()), c);
    return box_tree(plan, weight, ResidueBox{c});
}
}  // namespace tolvex
