#include "poly/packed.h"

#include "numbers/num_assign.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
#include "storage/polled_sort.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- reading ----

bool pack_plan(const int32_t* low, const int32_t* high, int32_t levels, PackPlan* plan) {
    plan->depth = levels;
    plan->count = 0;
    plan->box = 1;
    for (int32_t i = 0; i < levels; i++) {
        if (high[i] == low[i] && low[i] == 0) continue;
        int64_t radix = int64_t{high[i]} - low[i] + 1;
        if (radix > (int64_t{1} << 62) / plan->box) return false;
        plan->level[plan->count] = i;
        plan->low[plan->count] = low[i];
        plan->radix[plan->count] = radix;
        plan->box *= radix;
        plan->count++;
    }
    int64_t weight = 1;
    for (int32_t k = plan->count - 1; k >= 0; k--) {
        plan->weight[k] = weight;
        weight *= plan->radix[k];
    }
    return true;
}

namespace {
/// One walk that writes the terms of a tree.
struct PackReader {
    int64_t weight[k_levels];  // by level; 0 for levels out of use, which hold exponent 0 only
    int32_t low[k_levels];
    const WordField* field;  // nil: integers as words, or
    bool leaves;             // the numbers as they stand
    PackTerms out;
    int64_t below[k_levels];  // index of a leaf that ends above this level
};
}  // namespace

static int64_t word_of_number(const number* n) {
    if (n->size == 1) return n->head->value;
    return int64_t{n->head->value} * k_base + n->head->next->value;
}

[[gnu::always_inline]] static inline void put_term(PackReader& reader, int64_t index, const number* n) {
    if (reader.field == nullptr) {
        reader.out.index[reader.out.count] = index;
        if (reader.leaves)
            reader.out.leaf[reader.out.count++] = n;
        else
            reader.out.word[reader.out.count++] = word_of_number(n);
        return;
    }
    poll_every<k_terms_unpolled>(reader.out.count);
    uint32_t r = wf_of_number(*reader.field, n);
    if (r == 0) return;
    reader.out.index[reader.out.count] = index;
    reader.out.residue[reader.out.count++] = r;
}

static void read_terms(PackReader& reader, const polynode* p, int32_t level, int64_t index);

template <bool polled>
static void read_chain(PackReader& reader, const polynode* p, int32_t level, int64_t index) {
    int64_t weight = reader.weight[level];
    for (const polynode* t = p; t != nullptr; t = t->next) {
        int64_t here = index + weight * (t->exp - reader.low[level]);
        if (t->numb) {
            if constexpr (polled) poll_every<k_terms_unpolled>(reader.out.count);
            put_term(reader, here + reader.below[level + 1], t->ncoef);
            continue;
        }
        read_terms(reader, t->pcoef, level + 1, here);
        poll_interrupt();
    }
}

static void read_terms(PackReader& reader, const polynode* p, int32_t level, int64_t index) {
    if (is_number(p))
        put_term(reader, index + reader.below[level], p->ncoef);
    else if (may_be_long(p))
        read_chain<true>(reader, p, level, index);
    else
        read_chain<false>(reader, p, level, index);
}

// Exponents of levels that a leaf leaves out are 0, which stands at digit -low.
static void open_reader(PackReader& reader, const PackPlan& plan, const int32_t* low, int64_t terms) {
    int32_t levels = plan.count == 0 ? 0 : plan.level[plan.count - 1] + 1;
    // Levels outside the plan hold one exponent only, which counts as digit 0.
    for (int32_t i = 0; i <= plan.depth; i++) reader.weight[i] = 0, reader.low[i] = 0, reader.below[i] = 0;
    for (int32_t k = 0; k < plan.count; k++) {
        int32_t level = plan.level[k];
        reader.weight[level] = plan.weight[k];
        reader.low[level] = low != nullptr ? low[level] : plan.low[k];
    }
    for (int32_t i = levels - 1; i >= 0; i--)
        reader.below[i] = reader.below[i + 1] - reader.weight[i] * reader.low[i];
    reader.out.count = 0;
    reader.out.index = scratch_array<int64_t>(terms);
    if (reader.field != nullptr)
        reader.out.residue = scratch_array<uint32_t>(terms);
    else if (reader.leaves)
        reader.out.leaf = scratch_array<const number*>(terms);
    else
        reader.out.word = scratch_array<int64_t>(terms);
}

static PackTerms run_reader(PackReader& reader, const polynode* p, const PackPlan& plan, const int32_t* low,
                            int64_t terms) {
    open_reader(reader, plan, low, terms);
    read_terms(reader, p, 0, 0);
    return reader.out;
}

PackTerms pack_residues(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms,
                        const WordField& f) {
    PackReader reader;
    reader.field = &f;
    return run_reader(reader, p, plan, low, terms);
}

PackTerms pack_words(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms) {
    PackReader reader;
    reader.field = nullptr;
    reader.leaves = false;
    return run_reader(reader, p, plan, low, terms);
}

PackTerms pack_leaves(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms) {
    PackReader reader;
    reader.field = nullptr;
    reader.leaves = true;
    return run_reader(reader, p, plan, low, terms);
}

PackDigits pack_digits(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms) {
    PackTerms leaves = pack_leaves(p, plan, low, terms);
    PackDigits out = {leaves.count, leaves.index, scratch_array<int64_t>(leaves.count + 1), nullptr,
                      scratch_array<bool>(leaves.count)};
    out.start[0] = 0;
    for (int64_t i = 0; i < out.count; i++) out.start[i + 1] = out.start[i] + leaves.leaf[i]->size;
    out.digit = scratch_array<uint32_t>(out.start[out.count]);
    for (int64_t i = 0; i < out.count; i++) {
        poll_every<k_terms_unpolled>(i);
        const numnode* d = leaves.leaf[i]->head;
        out.negative[i] = d->value < 0;
        for (int64_t at = out.start[i + 1]; d != nullptr; d = d->next)
            out.digit[--at] = static_cast<uint32_t>(out.negative[i] ? -d->value : d->value);
    }
    return out;
}

PackTerms residues_of_digits(const PackDigits& p, const WordField& f) {
    PackTerms out = {0, scratch_array<int64_t>(p.count), {scratch_array<uint32_t>(p.count)}};
    for (int64_t i = 0; i < p.count; i++) {
        poll_every<k_terms_unpolled>(i);
        auto n = static_cast<int32_t>(p.start[i + 1] - p.start[i]);
        uint32_t r = digits_mod_word(p.digit + p.start[i], n, f.p);
        if (r == 0) continue;
        out.index[out.count] = p.index[i];
        out.residue[out.count++] = p.negative[i] ? wf_neg(f, r) : r;
    }
    return out;
}

namespace {
/// A walk that evaluates some of the levels.
struct ValueReader {
    PackReader* reader;
    const WordField* f;
    const uint32_t* point;
    const int32_t* low;
};
struct IndexedResidue {
    int64_t index;
    uint32_t residue;
};
}  // namespace

static uint32_t point_factor(const ValueReader& v, int32_t level, int32_t exp, uint32_t factor) {
    if (v.point[level] == 0 || exp == v.low[level]) return factor;
    auto e = static_cast<uint64_t>(exp - v.low[level]);
    return wf_mul(*v.f, factor, wf_power(*v.f, v.point[level], e));
}

static void read_values(ValueReader& v, const polynode* p, int32_t level, int64_t index, uint32_t factor) {
    PackReader& reader = *v.reader;
    PackTerms& out = reader.out;
    for (const polynode* t = p; t != nullptr; t = t->next) {
        bool whole = t == p && is_number(p);  // a leaf that ends above this level
        uint32_t here = whole ? factor : point_factor(v, level, t->exp, factor);
        int64_t at = index;
        if (!whole && v.point[level] == 0) at += reader.weight[level] * (t->exp - reader.low[level]);
        if (!t->numb) {
            read_values(v, t->pcoef, level + 1, at, here);
            continue;
        }
        poll_every<k_terms_unpolled>(out.count);
        out.index[out.count] = at + reader.below[whole ? level : level + 1];
        out.residue[out.count++] = wf_mul(*v.f, here, wf_of_number(*v.f, t->ncoef));
    }
}

// Falling indexes, alike ones added, zeros dropped.
static void collect(PackTerms* terms, const WordField& f) {
    auto* pair = scratch_array<IndexedResidue>(terms->count);
    for (int64_t i = 0; i < terms->count; i++) {
        pair[i] = {terms->index[i], terms->residue[i]};
        poll_every<k_terms_unpolled>(i);
    }
    polled_sort(pair, terms->count,
                [](const IndexedResidue& a, const IndexedResidue& b) { return a.index > b.index; });
    int64_t n = 0;
    for (int64_t i = 0; i < terms->count;) {
        int64_t index = pair[i].index;
        uint32_t sum = 0;
        for (; i < terms->count && pair[i].index == index; i++) sum = wf_add(f, sum, pair[i].residue);
        if (sum == 0) continue;
        terms->index[n] = index;
        terms->residue[n++] = sum;
    }
    terms->count = n;
}

PackTerms pack_values(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms,
                      const WordField& f, const uint32_t* point) {
    PackReader reader;
    reader.field = &f;
    open_reader(reader, plan, low, terms);
    ValueReader v = {&reader, &f, point, low};
    read_values(v, p, 0, 0, 1);
    collect(&reader.out, f);
    return reader.out;
}

// ---- writing ----

namespace {
struct PackWriter {
    const PackPlan* plan;
    const int32_t* low;
    const int64_t* index;
    LeafMaker leaf;
    void* source;
};
}  // namespace

// The terms from..to-1, which agree in the levels before k, as a polynomial of the level that follows
// `above`.
static poly write_terms(const PackWriter& w, int64_t from, int64_t to, int32_t k, int32_t above) {
    const PackPlan& plan = *w.plan;
    if (k == plan.count) {
        poly leaf;
        newpoly(&leaf);
        init_poly_node(leaf);
        w.leaf(w.source, from, leaf->ncoef);
        return leaf;
    }
    int32_t level = plan.level[k];
    int32_t low = w.low != nullptr ? w.low[level] : plan.low[k];
    int64_t weight = plan.weight[k], radix = plan.radix[k];
    poll_interrupt();
    poly head = nullptr;
    polyptrr tail = &head;
    while (from < to) {
        int64_t prefix = w.index[from] / weight, end = from + 1;
        int64_t least = prefix * weight;  // indexes of this term's group are at least that
        while (end < to && w.index[end] >= least) end++;
        poly c = write_terms(w, from, end, k + 1, level);
        int32_t exp = static_cast<int32_t>(prefix % radix) + low;
        if (exp == 0 && is_number(c)) {
            *tail = c;
            tail = &c->next;
        } else {
            new_term(tail, exp, c);
            tail = &(*tail)->next;
        }
        from = end;
    }
    if (!is_number(head)) add_pad(&head, level - above - 1);
    return head;
}

poly pack_tree(const PackPlan& plan, const int32_t* low, const int64_t* index, int64_t count, LeafMaker leaf,
               void* source) {
    if (count == 0) {
        poly zero = nullptr;
        poly_set(0, &zero);
        return zero;
    }
    PackWriter w = {&plan, low, index, leaf, source};
    return write_terms(w, 0, count, 0, -1);
}

void leaf_of_residue(void* terms, int64_t i, imptr leaf) {
    leaf->lint = static_cast<int32_t>(static_cast<PackTerms*>(terms)->residue[i]);
}

void leaf_of_word(void* terms, int64_t i, imptr leaf) {
    int64_t v = static_cast<PackTerms*>(terms)->word[i];
    if (v > -k_base && v < k_base) {
        num_make_digit(leaf, static_cast<int32_t>(v));
        return;
    }
    bool negative = v < 0;
    auto magnitude = static_cast<uint64_t>(negative ? -v : v);
    leaf->head = leaf->tail = nullptr;
    leaf->size = 0;
    for (; magnitude != 0; magnitude >>= k_digit_bits) {
        numptr d = newnum();
        auto digit = static_cast<int32_t>(magnitude & k_max_digit);
        d->value = negative ? -digit : digit;
        d->next = leaf->head;
        if (leaf->tail == nullptr) leaf->tail = d;
        leaf->head = d;
        leaf->size++;
    }
}
}  // namespace tolvex
