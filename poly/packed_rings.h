#pragma once
/// poly/packed_rings.h: the coefficients of packed terms, one record a kind of ring.
///
/// Purpose    a ring holds the coefficients of both operands in arrays, and a row of accumulators ("slots")
///            into which products are added; a slot is reduced only when it is written to a leaf.
/// Invariant  at most min(terms of n, terms of m) products meet in one slot; each ring's range is checked for
///            that many before it is chosen.
/// Ownership  all arrays are scratch of the operation.
/// Modes      the mode in force when the ring was filled.
///
/// Every ring has: Left left(i), left_twice(i): coefficient i of n, doubled for squares; open(slot): the slot
/// is 0; add(slot, left, j): slot += left * coefficient j of m; leaf(slot): a new leaf, nil for 0;
/// reserve(count).
#include "numbers/limbs.h"
#include "poly/leaf_number.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
/// A number record for the integer v; nil for 0.
inline poly leaf_of_int128(__int128 v) {
    if (v == 0) return nullptr;
    bool negative = v < 0;
    auto u = static_cast<unsigned __int128>(v);
    if (negative) u = -u;
    imptr c;
    newimag(&c);
    numptr lower = nullptr, tail = nullptr;
    int32_t size = 0;
    while (u != 0) {
        numptr d = newnum();
        auto digit = static_cast<int32_t>(static_cast<uint64_t>(u) & k_max_digit);
        d->value = negative ? -digit : digit;
        d->next = lower;
        if (lower == nullptr) tail = d;
        lower = d;
        u >>= k_digit_bits;
        size++;
    }
    c->head = lower;
    c->tail = tail;
    c->size = size;
    return leaf_of(c);
}
/// The chain x of at most two digits, or three that fit, as a word.
inline int64_t chain_word(const number* x) {
    int64_t v = 0;
    for (numptr d = x->head; d != nullptr; d = d->next) v = v * k_base + d->value;
    return v;
}

/// A larger array that begins with the `used` elements of the old one.
template <class T> inline T* grown(const T* old, int64_t used, int64_t count) {
    T* fresh = scratch_array<T>(count);
    if (used > 0) scratch_copy(fresh, old, static_cast<size_t>(used) * sizeof(T));
    return fresh;
}

/// The accumulators of a ring, one a slot.
template <class Acc> struct Slots {
    Acc* acc = nullptr;
    int64_t capacity = 0;

    /// More of them: the first `used` keep their values and places.
    void reserve(int64_t used, int64_t count) {
        acc = grown(acc, used, count);
        capacity = count;
    }
    void open(int64_t slot) { acc[slot] = 0; }
    void open_all(int64_t count) { scratch_clear(acc, static_cast<size_t>(count) * sizeof(Acc)); }
    /// Before reduction: the leaf decides.
    bool zero(int64_t slot) const { return acc[slot] == 0; }
};

/// Integers whose products and sums fit Acc: int64_t or __int128.
template <class Acc> struct WordRing : Slots<Acc> {
    using Left = int64_t;
    const int64_t *n, *m;
    using Slots<Acc>::acc;

    Left left(int64_t i) const { return n[i]; }
    Left left_twice(int64_t i) const { return 2 * n[i]; }
    void add(int64_t slot, Left a, int64_t j) { acc[slot] += static_cast<Acc>(a) * m[j]; }
    poly leaf(int64_t slot) const {
        Acc v = acc[slot];
        if (v == 0) return nullptr;
        if (v > -(Acc{1} << 55) && v < (Acc{1} << 55)) {
            imptr c;
            newimag(&c);
            leaf_set_chain(c, static_cast<int64_t>(v));
            return leaf_of(c);
        }
        return leaf_of_int128(v);
    }
};

/// A leaf for a residue; nil for 0.
inline poly leaf_of_residue(uint32_t v) {
    if (v == 0) return nullptr;
    imptr c;
    newimag(&c);
    c->lint = static_cast<int32_t>(v);
    return leaf_of(c);
}

/// Residues. With `wide` the sum of all products might not fit 64 bits: a slot is then kept below the square
/// of the modulus by one conditional subtraction.
template <bool wide> struct ResidueRing : Slots<uint64_t> {
    using Left = uint64_t;
    const uint32_t *n, *m;
    uint64_t modul, square;  // the modulus and its square

    Left left(int64_t i) const { return n[i]; }
    Left left_twice(int64_t i) const { return (uint64_t{n[i]} << 1) % modul; }
    void add(int64_t slot, Left a, int64_t j) {
        uint64_t s = acc[slot] + a * m[j];
        if constexpr (wide) {
            uint64_t t = s - square;
            s = t < s ? t : s;  // wraps to a large value when s is the smaller one
        }
        acc[slot] = s;
    }
    poly leaf(int64_t slot) const { return leaf_of_residue(static_cast<uint32_t>(acc[slot] % modul)); }
};

/// The table fields: sums are exclusive or.
struct TableRing : Slots<uint32_t> {
    using Left = uint32_t;
    const uint32_t *n, *m;

    Left left(int64_t i) const { return n[i]; }
    Left left_twice(int64_t) const { return 0; }  // characteristic 2
    void add(int64_t slot, Left a, int64_t j) { acc[slot] ^= static_cast<uint32_t>(table_mult(a, m[j])); }
    poly leaf(int64_t slot) const { return leaf_of_residue(acc[slot]); }
};

/// Long integers: magnitudes in limbs, slots of `width` limbs in two's complement.
struct LimbNumbers {
    const limb* limbs;
    const int64_t* start;   // of coefficient i
    const int32_t* length;  // in limbs; negative for a negative number
};
struct LimbRing : Slots<limb> {
    struct Left {
        const limb* a;
        int32_t length;
        bool negative, twice;
    };
    LimbNumbers n, m;
    int64_t width;
    limb* product;  // room for one product
    limb* magnitude;

    void reserve(int64_t used, int64_t count) {
        Slots::reserve(used * width, count * width);
        capacity = count;
    }
    void open(int64_t slot) { open_slots(slot, 1); }
    void open_all(int64_t count) { open_slots(0, count); }
    Left left(int64_t i) const {
        int32_t length = n.length[i];
        return {n.limbs + n.start[i], length < 0 ? -length : length, length < 0, false};
    }
    Left left_twice(int64_t i) const {
        Left x = left(i);
        x.twice = true;
        return x;
    }
    void add(int64_t slot, const Left& a, int64_t j);
    bool zero(int64_t slot) const;
    poly leaf(int64_t slot) const;

  private:
    void open_slots(int64_t slot, int64_t count) {
        scratch_clear(acc + slot * width, static_cast<size_t>(count * width) * sizeof(limb));
    }
};
}  // namespace tolvex
