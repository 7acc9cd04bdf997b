#pragma once
/// poly/packed_form.h: polynomials as arrays of terms, each with its exponents packed into one key.
///
///   x^5 y^2 z   levels x, z of the product, fields   [ 5 - least x | 1 - least z ]   most significant first
///
/// Purpose    inside one operation a tree is read once into keys, and the result is written once from keys. A
///            product of terms is one addition of keys. Keys compare as the recursive form orders terms.
///            Source: M. Monagan, R. Pearce: Sparse polynomial arithmetic (packed monomials), ISSAC 2009.
/// Invariant  fields are wide enough for the operation's result: no carry passes between them. Exponents are
///            counted from the least one of the operand, so negative ones need nothing special.
/// Ownership  trees are only read; a TermBuilder owns what it has built until finish.
#include "poly/leaf_number.h"
#include "poly/pack_measure.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"

#include <cstdint>
namespace tolvex {
/// Terms from one safe point to the next where each term gets a new leaf.
inline constexpr int64_t k_slots_unpolled = int64_t{1} << 10;

/// One variable of the packed form: a level in which an operand has an exponent other than 0.
struct PackedLevel {
    int32_t real;              // level in the tree, from 1
    int32_t least_n, least_m;  // least exponents of the operands
    int32_t span_n, span_m;    // spans of their exponents
    int32_t shift, bits;       // place of the field in a key
};
struct PackedPlan {
    PackedLevel level[k_levels];
    int32_t count;  // levels of the plan
    int32_t bits;   // of a whole key
};
/// The plan for a product of two trees. False: some span does not fit a 31-bit field.
bool plan_product(const PackMeasure& n, const PackMeasure& m, PackedPlan* plan);

/// Walks the terms of p in order: sink(key, number) with key = start + sum of exponent times weight[level].
template <class Key, class Sink>
void walk_terms(const polynode* p, const Key* weight, Key start, int32_t level, Sink& sink) {
    for (; p != nullptr; p = p->next) {
        Key key = start + static_cast<Key>(static_cast<int64_t>(p->exp)) * weight[level];
        if (p->numb)
            sink(key, p->ncoef);
        else if (is_number(p->pcoef))
            sink(key, p->pcoef->ncoef);
        else
            walk_terms(p->pcoef, weight, key, level + 1, sink);
    }
}

/// The chain of the last level of a box, slots from `base` on; nil if nothing is there.
template <int64_t rhythm, class Box> poly box_leaves(const PackedLevel& l, const Box& box, int64_t base) {
    const int64_t span = static_cast<int64_t>(l.span_n) + l.span_m;
    const int32_t most = static_cast<int32_t>(span) + l.least_n + l.least_m;
    poly head = nullptr;
    polyptrr at = &head;
    for_polled<rhythm>(span + 1, [&](int64_t k) {
        if (box.zero(base + span - k)) return;
        poly c = box.leaf(base + span - k);
        if (c == nullptr) return;
        *at = chain_node(most - static_cast<int32_t>(k), c);
        at = &(*at)->next;
    });
    *at = nullptr;
    return head;
}

/// The chain of plan level i of a box, slots from `base`, without pads above it; nil if nothing is there.
template <class Box>
poly box_chain(const PackedPlan& plan, const int64_t* weight, const Box& box, int32_t i, int64_t base) {
    const PackedLevel& l = plan.level[i];
    if (i == plan.count - 1)
        return static_cast<int64_t>(l.span_n) + l.span_m < k_slots_unpolled
                   ? box_leaves<k_no_safe_point>(l, box, base)
                   : box_leaves<k_slots_unpolled>(l, box, base);
    const int64_t step = weight[i];
    const int32_t least = l.least_n + l.least_m;
    const int32_t pads = plan.level[i + 1].real - l.real - 1;
    poly head = nullptr;
    polyptrr at = &head;
    for (int64_t e = static_cast<int64_t>(l.span_n) + l.span_m; e >= 0; e--) {
        poll_interrupt();
        poly c = box_chain(plan, weight, box, i + 1, base + e * step);
        if (c == nullptr) continue;
        if (pads > 0) add_pad(&c, pads);
        *at = chain_node(static_cast<int32_t>(e + least), c);
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

/// The polynomial whose coefficient of a key is at that place of the box: box.zero(place) may only say no
/// when it is not 0, box.leaf(place) makes the leaf, nil for 0.
template <class Box> poly box_tree(const PackedPlan& plan, const int64_t* weight, const Box& box) {
    poly p = box_chain(plan, weight, box, 0, 0);
    if (p == nullptr) return zero_leaf();
    if (plan.level[0].real > 1) add_pad(&p, plan.level[0].real - 1);
    return p;
}

/// Writes a tree from terms that come in falling order of their keys. A term stays open at each level until a
/// key arrives that differs there; then its coefficient is complete and takes its normal form.
template <class Key> struct TermBuilder {
    const PackedPlan* plan;
    Key previous;
    poly pending;  // leaf of the term that came last; nil before the first
    poly head[k_levels];
    polyptrr tail[k_levels];
    int32_t open[k_levels];  // exponent of the open term
    int16_t level_of_bit[8 * sizeof(Key)];

    void start(const PackedPlan* p) {
        plan = p;
        pending = nullptr;
        head[0] = nullptr;
        tail[0] = &head[0];
        for (int32_t i = 0; i < plan->count; i++)
            for (int32_t b = 0; b < plan->level[i].bits; b++)
                level_of_bit[plan->level[i].shift + b] = static_cast<int16_t>(i);
    }
    static int32_t top_bit(Key k) {
        if constexpr (sizeof(Key) > 8) {
            auto high = static_cast<uint64_t>(k >> 64);
            if (high != 0) return 127 - __builtin_clzll(high);
        }
        return 63 - __builtin_clzll(static_cast<uint64_t>(k));
    }
    /// The chain of plan level i as a coefficient of the level above: pads for the levels between.
    poly padded(int32_t i, poly c) const {
        if (is_number(c)) return c;
        int32_t above = i > 0 ? plan->level[i - 1].real : 0;
        for (int32_t k = plan->level[i].real - above - 1; k > 0; k--) new_term(&c, 0, c);
        return c;
    }
    /// Completes the open terms of the levels from `from` on.
    void close(int32_t from) {
        poly c = pending;
        for (int32_t i = plan->count - 1; i >= from; i--) {
            *tail[i] = chain_node(open[i], c);
            tail[i] = &(*tail[i])->next;
            if (i > from) c = padded(i, head[i]);
        }
    }
    /// The next term, leaf not 0 and used up.
    void put(Key key, poly leaf) {
        int32_t from = 0;
        if (pending != nullptr) {
            from = level_of_bit[top_bit(key ^ previous)];
            close(from);
        }
        for (int32_t i = from; i < plan->count; i++) {
            const PackedLevel& l = plan->level[i];
            auto field =
                static_cast<uint32_t>(key >> l.shift) & static_cast<uint32_t>((uint64_t{1} << l.bits) - 1);
            open[i] = static_cast<int32_t>(field) + l.least_n + l.least_m;
            if (i > from) {
                head[i] = nullptr;
                tail[i] = &head[i];
            }
        }
        pending = leaf;
        previous = key;
    }
    /// The whole polynomial.
    poly finish() {
        if (pending == nullptr) return zero_leaf();
        if (plan->count == 0) return pending;
        close(0);
        return padded(0, head[0]);
    }
};
}  // namespace tolvex
