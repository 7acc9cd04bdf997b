#include "poly/packed_form.h"
#include "poly/packed_kronecker.h"
#include "poly/packed_rings.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_shape.h"
#include "storage/interrupt.h"
#include "storage/polled_sort.h"

#include <algorithm>
namespace tolvex {
namespace {
/// A box of accumulators, one for every exponent vector, is used while it has at most so many slots for each
/// product of terms (filling and reading a slot costs a fraction of a product that meets a hash table).
constexpr int64_t k_slots_a_product = 4;
constexpr int64_t k_box_bytes = int64_t{1} << 28;
#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_bucket_products = 16, k_products_a_term = 0, k_bucket_bytes = 4096;
constexpr int64_t k_tile_n = 3, k_tile_m = 5;
#else
constexpr int64_t k_bucket_products = 8192;           // a bucket's table stays in the second-level cache
constexpr int64_t k_products_a_term = 4;              // of n in a bucket: each bucket visits all of them
constexpr int64_t k_bucket_bytes = int64_t{1} << 26;  // for the slots of a bucket
constexpr int64_t k_tile_n = 32, k_tile_m = 512;      // terms of a tile: its slots stay close together
#endif
constexpr int64_t k_rows_unpolled = 64;  // terms of n that meet theirs in a bucket between safe points

/// One product: the shapes of both operands and the terms in order, without their keys.
struct Product {
    PackedPlan plan;
    PackMeasure n, m;
    const number **n_numbers, **m_numbers;
    bool square;

    int64_t products() const { return n.terms * m.terms; }
    /// Bytes of one slot, about: long integers have slots of the length of their products.
    int64_t slot_bytes() const {
        int64_t digits = static_cast<int64_t>(n.digits) + m.digits;
        return digits <= 2 ? 8 : digits <= 4 ? 16 : 8 * (limbs_for(n.digits) + limbs_for(m.digits) + 1);
    }
    /// Products of terms that one bucket collects.
    int64_t bucket_products() const {
        int64_t wanted = std::max(k_bucket_products, k_products_a_term * n.terms);
        return std::max<int64_t>(16, std::min(wanted, k_bucket_bytes / slot_bytes()));
    }
    int64_t meeting() const { return n.terms < m.terms ? n.terms : m.terms; }  // products in one slot at most
};

/// The keys of an operand's terms under the given weights, counted from its least exponents. Few terms need
/// no safe points.
template <class Key, bool of_n, bool polled>
void walk_operand(const Product& e, const polynode* p, const Key* weight_of_plan, Key* keys,
                  const number** numbers) {
    Key weight[k_levels + 1] = {};
    Key start = 0;
    for (int32_t i = 0; i < e.plan.count; i++) {
        const PackedLevel& l = e.plan.level[i];
        weight[l.real] = weight_of_plan[i];
        start -= static_cast<Key>(static_cast<int64_t>(of_n ? l.least_n : l.least_m)) * weight_of_plan[i];
    }
    int64_t at = 0;
    auto sink = [&](Key key, const number* c) {
        if constexpr (polled) poll_every<k_terms_unpolled>(at);
        keys[at] = key;
        numbers[at++] = c;
    };
    walk_terms(p, weight, start, 1, sink);
}

template <class Key, bool of_n>
void fill_terms(const Product& e, const polynode* p, const Key* weight_of_plan, Key* keys,
                const number** numbers) {
    if ((of_n ? e.n : e.m).terms < k_terms_unpolled)
        walk_operand<Key, of_n, false>(e, p, weight_of_plan, keys, numbers);
    else
        walk_operand<Key, of_n, true>(e, p, weight_of_plan, keys, numbers);
}

/// The operands' terms with keys of one kind.
template <class Key> struct Keys { Key *n, *m; };

template <class Key>
Keys<Key> fill_keys(Product& e, const polynode* n, const polynode* m, const Key* weight) {
    Keys<Key> keys;
    keys.n = scratch_array<Key>(e.n.terms);
    e.n_numbers = scratch_array<const number*>(e.n.terms);
    fill_terms<Key, true>(e, n, weight, keys.n, e.n_numbers);
    if (e.square) {
        keys.m = keys.n;
        e.m_numbers = e.n_numbers;
        return keys;
    }
    keys.m = scratch_array<Key>(e.m.terms);
    e.m_numbers = scratch_array<const number*>(e.m.terms);
    fill_terms<Key, false>(e, m, weight, keys.m, e.m_numbers);
    return keys;
}

// ---- the coefficients ----------------------------------------------------------------------------------

uint32_t* residues_of(const number* const* numbers, int64_t count) {
    auto* r = scratch_array<uint32_t>(count);
    for_polled<k_terms_unpolled>(count, [=](int64_t i) { r[i] = static_cast<uint32_t>(numbers[i]->lint); });
    return r;
}

/// Words of 62 bits, with what bounds their products: the largest magnitude and the sum of magnitudes.
struct WordNumbers {
    int64_t* value;
    double largest, sum;
};

/// False if some number is too long.
bool words_of(const number* const* numbers, int64_t count, WordNumbers* w) {
    constexpr int32_t k_head_of_three = 64;  // 28 + 28 + 6 bits
    auto* value = scratch_array<int64_t>(count);
    double largest = 0, sum = 0;
    for (int64_t i = 0; i < count;) {
        for (const int64_t stop = std::min(count, i + k_terms_unpolled); i < stop; i++) {
            const number* x = numbers[i];
            int32_t head = x->head->value;
            if (x->size > 3 || (x->size == 3 && (head >= k_head_of_three || head <= -k_head_of_three)))
                return false;
            int64_t v = value[i] = chain_word(x);
            double magnitude = static_cast<double>(v < 0 ? -v : v);
            if (magnitude > largest) largest = magnitude;
            sum += magnitude;
        }
        if (i < count) poll_interrupt();
    }
    *w = {value, largest, sum};
    return true;
}

/// The limbs of all numbers behind one another; *longest: limbs of the longest.
LimbNumbers limbs_of(const number* const* numbers, int64_t count, int64_t* longest) {
    int64_t total = 0;
    for (int64_t i = 0; i < count; i++) total += limbs_for(numbers[i]->size);
    auto* limbs = scratch_array<limb>(total);
    auto* start = scratch_array<int64_t>(count);
    auto* length = scratch_array<int32_t>(count);
    int64_t at = 0;
    constexpr int64_t k_long_number = 64;  // limbs
    int64_t most = 0;
    for_polled<k_slots_unpolled>(count, [&](int64_t i) {
        const number* x = numbers[i];
        int64_t l = limbs_from_chain(limbs + at, x->head, x->size);
        start[i] = at;
        length[i] = static_cast<int32_t>(x->head->value < 0 ? -l : l);
        at += l;
        if (l > most) most = l;
        if (l >= k_long_number) poll_interrupt();
    });
    *longest = most;
    return {limbs, start, length};
}

/// Calls work(ring) with the cheapest ring whose slots hold every sum of products.
template <class Work> void with_long_integers(const Product& e, const Work& work) {
    LimbRing ring = {};
    int64_t n_longest, m_longest;
    ring.n = limbs_of(e.n_numbers, e.n.terms, &n_longest);
    m_longest = n_longest;
    ring.m = e.square ? ring.n : limbs_of(e.m_numbers, e.m.terms, &m_longest);
    ring.width = n_longest + m_longest + 1;  // the top limb holds the count of meeting products and the sign
    ring.product = scratch_array<limb>(n_longest + m_longest);
    ring.magnitude = scratch_array<limb>(ring.width);
    work(ring);
}

template <class Work> void with_integers(const Product& e, const Work& work) {
    WordNumbers n, m;
    bool words = words_of(e.n_numbers, e.n.terms, &n);
    if (words && e.square)
        m = n;
    else if (words)
        words = words_of(e.m_numbers, e.m.terms, &m);
    if (!words) {
        with_long_integers(e, work);
        return;
    }
    double bound = std::min(n.largest * m.sum, n.sum * m.largest);
    if (bound < 4.6e18) {  // 2^62, rounding of the sums allowed for
        WordRing<int64_t> ring = {{}, n.value, m.value};
        work(ring);
    } else if (bound < 8.5e37) {  // 2^126
        WordRing<__int128> ring = {{}, n.value, m.value};
        work(ring);
    } else {
        with_long_integers(e, work);
    }
}

template <class Work> void with_ring(const Product& e, const Work& work) {
    if (!modularmode) {
        with_integers(e, work);
        return;
    }
    uint32_t* n = residues_of(e.n_numbers, e.n.terms);
    uint32_t* m = e.square ? n : residues_of(e.m_numbers, e.m.terms);
    auto modul = static_cast<uint64_t>(modulus);
    auto square = static_cast<unsigned __int128>(modul) * modul;
    if (finf) {
        TableRing ring = {{}, n, m};
        work(ring);
    } else if (square * static_cast<uint64_t>(e.meeting()) >> 64 == 0) {
        ResidueRing<false> ring = {{}, n, m, modul, 0};
        work(ring);
    } else {
        ResidueRing<true> ring = {{}, n, m, modul, modul * modul};
        work(ring);
    }
}

// ---- the box -------------------------------------------------------------------------------------------

/// All products of a tile of terms; of a square only the terms beyond the diagonal, doubled, and the
/// diagonal.
template <class Ring>
void multiply_tile(const Product& e, const Keys<uint64_t>& keys, Ring& ring, int64_t i0, int64_t j0) {
    int64_t i1 = std::min(i0 + k_tile_n, e.n.terms), j1 = std::min(j0 + k_tile_m, e.m.terms);
    int64_t i = i0;
    for (; !e.square && i + 1 < i1; i += 2) {  // two terms at a time: each term of m is read once for both
        const auto key = static_cast<int64_t>(keys.n[i]), next_key = static_cast<int64_t>(keys.n[i + 1]);
        poll_interrupt();
        auto a = ring.left(i), b = ring.left(i + 1);
        for (int64_t j = j0; j < j1; j++) {
            const auto at = static_cast<int64_t>(keys.m[j]);
            ring.add(key + at, a, j);
            ring.add(next_key + at, b, j);
        }
    }
    for (; i < i1; i++) {
        const auto key = static_cast<int64_t>(keys.n[i]);
        if (!e.square) {
            auto a = ring.left(i);
            for (int64_t j = j0; j < j1; j++) ring.add(key + static_cast<int64_t>(keys.m[j]), a, j);
            continue;
        }
        if (i >= j0 && i < j1) ring.add(2 * key, ring.left(i), i);
        auto a = ring.left_twice(i);
        for (int64_t j = std::max(j0, i + 1); j < j1; j++)
            ring.add(key + static_cast<int64_t>(keys.m[j]), a, j);
    }
}

template <class Ring>
poly multiply_in_box(const Product& e, const Keys<uint64_t>& keys, const int64_t* weight, int64_t slots,
                     Ring& ring) {
    ring.reserve(0, slots);
    ring.open_all(slots);
    for (int64_t i = 0; i < e.n.terms; i += k_tile_n) {
        for (int64_t j = e.square ? i / k_tile_m * k_tile_m : 0; j < e.m.terms; j += k_tile_m) {
            multiply_tile(e, keys, ring, i, j);
            poll_interrupt();
        }
    }
    return box_tree(e.plan, weight, ring);
}

/// Slots of the box and the weights of its levels; -1 if there are too many slots to count.
int64_t plan_box(const PackedPlan& plan, int64_t* weight) {
    int64_t slots = 1;
    for (int32_t i = plan.count - 1; i >= 0; i--) {
        weight[i] = slots;
        if (__builtin_mul_overflow(
                slots, static_cast<int64_t>(plan.level[i].span_n) + plan.level[i].span_m + 1, &slots))
            return -1;
    }
    return slots;
}

// ---- the buckets ---------------------------------------------------------------------------------------

/// A hash table from keys to slots of a ring; slots are handed out in order of arrival.
template <class Key> struct KeyTable {
    static constexpr Key k_empty = ~Key{0};  // keys leave the top bit free
    Key* keys;
    uint32_t* slots;
    int64_t capacity;  // a power of two
    int32_t bits;

    static uint64_t folded(Key k) {
        if constexpr (sizeof(Key) > 8)
            return static_cast<uint64_t>(k) ^ static_cast<uint64_t>(k >> 64) * 0x9E3779B97F4A7C55u;
        else
            return k;
    }
    int64_t place(Key k) const {
        return static_cast<int64_t>((folded(k) * 0x9E3779B97F4A7C15u) >> (64 - bits));  // Fibonacci hashing
    }
    void make(int32_t b) {
        bits = b;
        capacity = int64_t{1} << b;
        keys = scratch_array<Key>(capacity);
        slots = scratch_array<uint32_t>(capacity);
        clear();
    }
    void clear() { scratch_fill(keys, 0xFF, static_cast<size_t>(capacity) * sizeof(Key)); }
};

/// One entry of a bucket on its way to the result.
template <class Key> struct Entry {
    Key key;
    uint32_t slot;
    uint32_t place;  // in the table
};

/// The products of terms in falling order of their keys, a range of keys ("bucket") at a time. Since both
/// operands are sorted, the partners of term i whose key falls into a bucket are neighbours: next[i] walks
/// through them. (The idea of M. Monagan and R. Pearce's blocked multiplication, with a table for the heap.)
template <class Key, class Ring> struct BucketProduct {
    const Product& e;
    const Keys<Key>& keys;
    Ring& ring;
    TermBuilder<Key>& builder;
    KeyTable<Key> table;
    Entry<Key>* entries;  // of the bucket
    int64_t used, room;   // slots in use, and how many there are
    int64_t* next;        // by term of n: the first partner not yet met
    int64_t first;        // terms of n before this one have met all partners

    void make_room(int64_t count) {
        ring.reserve(used, count);
        Entry<Key>* fresh = grown(entries, used, count);
        entries = fresh;
        room = count;
    }

    /// The table has filled beyond one half.
    void grow() {
        KeyTable<Key> old = table;
        table.make(old.bits + 1);
        for (int64_t i = 0; i < used; i++) {
            int64_t at = table.place(entries[i].key);
            while (table.keys[at] != KeyTable<Key>::k_empty) at = (at + 1) & (table.capacity - 1);
            table.keys[at] = entries[i].key;
            table.slots[at] = static_cast<uint32_t>(i);
            entries[i].place = static_cast<uint32_t>(at);
        }
        make_room(table.capacity / 2);
    }

    int64_t slot_of(Key key) {
        int64_t at = table.place(key);
        for (;;) {
            Key there = table.keys[at];
            if (there == key) return table.slots[at];
            if (there == KeyTable<Key>::k_empty) break;
            at = (at + 1) & (table.capacity - 1);
        }
        if (used == room) {
            grow();
            return slot_of(key);
        }
        int64_t slot = used++;
        table.keys[at] = key;
        table.slots[at] = static_cast<uint32_t>(slot);
        entries[slot] = {key, static_cast<uint32_t>(slot), static_cast<uint32_t>(at)};
        ring.open(slot);
        return slot;
    }

    /// All products with keys of at least `low` that are still to be met.
    void collect(Key low) {
        const int64_t m_terms = e.m.terms;
        while (first < e.n.terms && next[first] == m_terms) first++;
        for (int64_t i = first; i < e.n.terms; i++) {
            const Key key = keys.n[i];
            int64_t j = next[i];
            poll_every<k_rows_unpolled>(i);
            if (e.square && j == i) {  // the diagonal comes first: partners are terms i, i + 1, ...
                if (key + key < low) break;
                ring.add(slot_of(key + key), ring.left(i), i);
                j++;
            } else if (j < m_terms && key + keys.m[e.square ? i : 0] < low) {
                break;
            }
            auto a = e.square ? ring.left_twice(i) : ring.left(i);
            for (; j < m_terms && key + keys.m[j] >= low; j++) ring.add(slot_of(key + keys.m[j]), a, j);
            next[i] = j;
        }
    }

    /// Writes the bucket and empties the table.
    void flush() {
        if (used * 8 < table.capacity) {
            for (int64_t i = 0; i < used; i++) table.keys[entries[i].place] = KeyTable<Key>::k_empty;
        } else {
            table.clear();
        }
        polled_sort(entries, used, [](const Entry<Key>& a, const Entry<Key>& b) { return a.key > b.key; });
        for_polled<k_slots_unpolled>(used, [this](int64_t i) {
            poly c = ring.leaf(entries[i].slot);
            if (c != nullptr) builder.put(entries[i].key, c);
        });
        used = 0;
    }
};

/// Lower bounds of the buckets, falling, the last one 0: quantiles of a sample of all sums of keys.
template <class Key> Key* bucket_bounds(const Product& e, const Keys<Key>& keys, int64_t* count) {
    constexpr int64_t k_samples_a_bucket = 16;
    int64_t buckets = e.products() / e.bucket_products() + 1;
    Key* bounds = scratch_array<Key>(buckets);
    *count = buckets;
    ScratchMark mark = scratch_mark();
    int64_t samples = (buckets - 1) * k_samples_a_bucket;
    Key* sums = scratch_array<Key>(samples);
    uint64_t state = 0x2545F4914F6CDD1Du;  // Knuth's linear congruential generator: any spread will do
    auto draw = [&state](int64_t below) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<int64_t>((static_cast<unsigned __int128>(state) * static_cast<uint64_t>(below)) >>
                                    64);
    };
    for (int64_t i = 0; i < samples; i++) sums[i] = keys.n[draw(e.n.terms)] + keys.m[draw(e.m.terms)];
    polled_sort(sums, samples, [](Key a, Key b) { return a < b; });
    for (int64_t i = 0; i < buckets - 1; i++) bounds[i] = sums[samples - (i + 1) * k_samples_a_bucket];
    bounds[buckets - 1] = 0;
    scratch_release(mark);
    return bounds;
}

template <class Key, class Ring>
poly multiply_in_buckets(const Product& e, const Keys<Key>& keys, Ring& ring) {
    int64_t buckets;
    Key* bounds = bucket_bounds(e, keys, &buckets);
    auto* builder = scratch_array<TermBuilder<Key>>(1);
    builder->start(&e.plan);
    BucketProduct<Key, Ring> work = {e, keys, ring, *builder, {}, nullptr, 0, 0, nullptr, 0};
    int32_t bits = 4;
    while ((int64_t{1} << bits) < 4 * std::min(e.products(), e.bucket_products())) bits++;
    work.table.make(bits);
    work.make_room(work.table.capacity / 2);
    work.next = scratch_array<int64_t>(e.n.terms);
    for (int64_t i = 0; i < e.n.terms; i++) work.next[i] = e.square ? i : 0;
    for (int64_t b = 0; b < buckets; b++) {
        work.collect(bounds[b]);
        work.flush();
    }
    return builder->finish();
}

template <class Key> poly sparse_product(Product& e, const polynode* n, const polynode* m) {
    Key weight[k_levels];
    for (int32_t i = 0; i < e.plan.count; i++) weight[i] = Key{1} << e.plan.level[i].shift;
    Keys<Key> keys = fill_keys(e, n, m, weight);
    poly result = nullptr;
    with_ring(e, [&](auto& ring) { result = multiply_in_buckets(e, keys, ring); });
    return result;
}

poly box_product(Product& e, const polynode* n, const polynode* m, const int64_t* weight, int64_t slots) {
    uint64_t key_weight[k_levels];
    for (int32_t i = 0; i < e.plan.count; i++) key_weight[i] = static_cast<uint64_t>(weight[i]);
    Keys<uint64_t> keys = fill_keys(e, n, m, key_weight);
    PackedOperand left = {keys.n, e.n_numbers, e.n.terms, e.n.digits},
                  right = {keys.m, e.m_numbers, e.m.terms, e.m.digits};
    if (kronecker_pays(left, right)) return kronecker_product(e.plan, weight, slots, left, right);
    poly result = nullptr;
    with_ring(e, [&](auto& ring) { result = multiply_in_box(e, keys, weight, slots, ring); });
    return result;
}
}  // namespace

bool packed_poly_mult(poly n, poly m, polyptrr p) {
    if (is_number(n) || is_number(m) || (lintmode && !modularmode)) return false;
    Product e;
    pack_measure(n, &e.n);
    e.square = n == m;
    if (e.square)
        e.m = e.n;
    else
        pack_measure(m, &e.m);
    if (e.n.terms > e.m.terms) {  // the inner loop runs over the longer operand
        std::swap(n, m);
        std::swap(e.n, e.m);
    }
    if (!plan_product(e.n, e.m, &e.plan)) return false;
    int64_t weight[k_levels];
    int64_t slots = plan_box(e.plan, weight);
    bool box =
        slots > 0 && slots / k_slots_a_product <= e.products() && slots <= k_box_bytes / e.slot_bytes();
    if (!box && e.plan.bits > 127) return false;
    ScratchMark mark = scratch_mark();
    poly fresh = box                 ? box_product(e, n, m, weight, slots)
                 : e.plan.bits <= 63 ? sparse_product<uint64_t>(e, n, m)
                                     : sparse_product<unsigned __int128>(e, n, m);
    scratch_release(mark);
    free_poly(p);
    *p = fresh;
    return true;
}
}  // namespace tolvex
