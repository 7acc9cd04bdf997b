// Exact division on flat arrays: Kronecker's substitution turns both operands into lists of (index,
// coefficient) in one box; a quotient term at the head of what is left takes its multiple of the divisor
// away. What is left stands in a dense array of the box, or, if the box is much larger than the operands, in
// a heap of products (Johnson, "Sparse polynomial arithmetic", 1974; Monagan and Pearce, "Polynomial division
// using dynamic arrays, heaps, and packed exponent vectors", 2007).
#include "numbers/primes.h"
#include "poly/div_internal.h"
#include "poly/packed.h"
#include "poly/packed_crt.h"
#include "poly/poly_modes.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
#include "storage/wide_vectors.h"

#include <cstring>
namespace tolvex {
namespace {
enum class Outcome { exact, not_exact, overflow };

#ifdef TOLVEX_SMALL_LIMITS
constexpr int64_t k_dense_floor = 8;  // boxes up to this many cells are always dense
#else
constexpr int64_t k_dense_floor = 1 << 14;
#endif
constexpr int64_t k_dense_cells = int64_t{1} << 24;
constexpr int64_t k_cells_per_term = 64;  // a cell is scanned in half a nanosecond, a heap step takes tens

/// One division: plan of the dividend's box, in which the divisor stands at digit 0 of its own lowest
/// exponents.
struct PackDivision {
    PackPlan plan;
    int32_t m_low[k_levels], q_low[k_levels];  // lowest exponents of divisor and quotient, by level
    int64_t q_most[k_levels];                  // greatest digit of the quotient, by place in the plan
    int64_t n_terms, m_terms;
    bool dense;
};

/// A quotient that grows; new arrays are taken from scratch memory as it does.
struct Quotient {
    PackTerms terms;
    int64_t capacity;
    bool words;
};
}  // namespace

static Quotient quotient_open(bool words) {
    Quotient q = {};
    q.words = words;
    q.capacity = 256;
    q.terms.index = scratch_array<int64_t>(q.capacity);
    if (words)
        q.terms.word = scratch_array<int64_t>(q.capacity);
    else
        q.terms.residue = scratch_array<uint32_t>(q.capacity);
    return q;
}

static void quotient_grow(Quotient& q) {
    Quotient wide = q;
    wide.capacity = 4 * q.capacity;
    auto n = static_cast<size_t>(q.terms.count);
    wide.terms.index = scratch_array<int64_t>(wide.capacity);
    memcpy(wide.terms.index, q.terms.index, n * sizeof(int64_t));
    if (q.words) {
        wide.terms.word = scratch_array<int64_t>(wide.capacity);
        memcpy(wide.terms.word, q.terms.word, n * sizeof(int64_t));
    } else {
        wide.terms.residue = scratch_array<uint32_t>(wide.capacity);
        memcpy(wide.terms.residue, q.terms.residue, n * sizeof(uint32_t));
    }
    q = wide;
}

static inline void quotient_put(Quotient& q, int64_t index, int64_t c) {
    if (q.terms.count == q.capacity) quotient_grow(q);
    q.terms.index[q.terms.count] = index;
    if (q.words)
        q.terms.word[q.terms.count++] = c;
    else
        q.terms.residue[q.terms.count++] = static_cast<uint32_t>(c);
}

// In an integral domain the degrees in each variable add up: an index whose digits exceed those of the
// quotient belongs to no exact division. It also keeps all products inside the box. `at` is not below `lead`.
static bool index_divides(const PackDivision& d, int64_t at, int64_t lead) {
    for (int32_t k = 0; k < d.plan.count; k++) {
        int64_t a = at / d.plan.weight[k] % d.plan.radix[k], b = lead / d.plan.weight[k] % d.plan.radix[k];
        if (a < b || a - b > d.q_most[k]) return false;
    }
    return true;
}

// ---- the dense array ----

namespace {
/// Terms of the divisor at neighbouring indices, the first term left out: their residues by rising index.
struct Run {
    int64_t at, length;
    const uint32_t* residue;
};
struct Runs {
    Run* run;
    int64_t count;
};
}  // namespace

static Runs divisor_runs(const PackTerms& m) {
    Runs r = {scratch_array<Run>(m.count), 0};
    auto* rising = scratch_array<uint32_t>(m.count);
    for (int64_t j = 0; j < m.count; j++) rising[m.count - 1 - j] = m.residue[j];
    for (int64_t j = 1; j < m.count; j++) {
        if (r.count == 0 || m.index[j] != r.run[r.count - 1].at - 1) r.run[r.count++] = {0, 0, nullptr};
        Run& last = r.run[r.count - 1];
        last = {m.index[j], last.length + 1, rising + (m.count - 1 - j)};
    }
    return r;
}

// base := base + factor m without the first term. Cells stay below 2^63: beyond it `multiple`, a multiple of
// the modulus little below 2^63, is taken away.
WIDE_VECTORS static void add_runs(uint64_t* base, const Runs& runs, uint32_t factor, uint64_t multiple) {
    for (int64_t i = 0; i < runs.count; i++) {
        const Run run = runs.run[i];
        uint64_t* __restrict x = base + run.at;
        const uint32_t* __restrict y = run.residue;
        for (int64_t k = 0; k < run.length; k++) {
            uint64_t s = x[k] + static_cast<uint64_t>(factor) * y[k];
            x[k] = s - (multiple & -(s >> 63));
        }
    }
}

// Residues are summed unreduced.
static Outcome dense_residues(const PackDivision& d, const WordField& f, const PackTerms& n,
                              const PackTerms& m, Quotient& q) {
    auto* cell = scratch_array<uint64_t>(d.plan.box);
    scratch_clear(cell, static_cast<size_t>(d.plan.box) * sizeof(uint64_t));
    for (int64_t i = 0; i < n.count; i++) cell[n.index[i]] = n.residue[i];
    Runs runs = divisor_runs(m);
    uint64_t multiple = (uint64_t{1} << 63) / f.p * f.p;
    uint32_t inverse = wf_inverse(f, m.residue[0]);
    int64_t lead = m.index[0];
    for (int64_t at = n.count > 0 ? n.index[0] : -1; at >= 0; at--) {
        if (cell[at] == 0) continue;
        uint32_t v = f.table ? static_cast<uint32_t>(cell[at]) : wf_reduce(f, cell[at]);
        if (v == 0) continue;
        if (at < lead || !index_divides(d, at, lead)) return Outcome::not_exact;
        poll_interrupt();
        uint32_t c = wf_mul(f, v, inverse);
        quotient_put(q, at - lead, c);
        uint64_t* base = cell + (at - lead);
        if (f.table)
            for (int64_t j = 1; j < m.count; j++) base[m.index[j]] ^= wf_mul(f, c, m.residue[j]);
        else
            add_runs(base, runs, f.p - c, multiple);
    }
    return Outcome::exact;
}

static uint64_t magnitude(int64_t v) { return v < 0 ? static_cast<uint64_t>(-v) : static_cast<uint64_t>(v); }

// The greatest quotient coefficient for which no cell can leave 62 bits: each cell is an entry of n less
// products of the entries of m, of which every cell meets each at most once.
static int64_t word_limit(const PackTerms& n, const PackTerms& m) {
    uint64_t most = 0, sum = 0;
    for (int64_t i = 0; i < n.count; i++)
        if (magnitude(n.word[i]) > most) most = magnitude(n.word[i]);
    for (int64_t j = 0; j < m.count; j++) {
        sum += magnitude(m.word[j]);
        if (sum > uint64_t{1} << 61) return 0;
    }
    return static_cast<int64_t>(((uint64_t{1} << 62) - most) / sum);
}

namespace {
/// The leading term of a divisor, and the greatest magnitude of a coefficient of the quotient.
struct WordLead {
    int64_t index, word, limit;
};
}  // namespace

/// The quotient gets the term by which v at that index goes.
static Outcome put_word_quotient(const PackDivision& d, const WordLead& lead, int64_t at, int64_t v,
                                 Quotient& q) {
    if (at < lead.index || v % lead.word != 0 || !index_divides(d, at, lead.index)) return Outcome::not_exact;
    int64_t c = v / lead.word;
    if (c > lead.limit || c < -lead.limit) return Outcome::overflow;
    poll_interrupt();
    quotient_put(q, at - lead.index, c);
    return Outcome::exact;
}

static Outcome dense_words(const PackDivision& d, const PackTerms& n, const PackTerms& m, Quotient& q) {
    auto* cell = scratch_array<int64_t>(d.plan.box);
    scratch_clear(cell, static_cast<size_t>(d.plan.box) * sizeof(int64_t));
    for (int64_t i = 0; i < n.count; i++) cell[n.index[i]] = n.word[i];
    WordLead lead = {m.index[0], m.word[0], word_limit(n, m)};
    for (int64_t at = n.index[0]; at >= 0; at--) {
        int64_t v = cell[at];
        if (v == 0) continue;
        Outcome step = put_word_quotient(d, lead, at, v, q);
        if (step != Outcome::exact) return step;
        int64_t c = q.terms.word[q.terms.count - 1];
        int64_t* base = cell + (at - lead.index);
        for (int64_t j = 1; j < m.count; j++) base[m.index[j]] -= c * m.word[j];
    }
    return Outcome::exact;
}

// ---- the heap ----

namespace {
/// A product of quotient term `quotient` and divisor term j; the row j waits with its next quotient term.
struct HeapEntry {
    int64_t index;
    int32_t j;
};
/// Rows of the divisor: row j multiplies term j with the quotient terms in their order. A row that has used
/// all quotient terms so far rests until the next one comes.
struct HeapDivision {
    HeapEntry* heap;
    int64_t size;
    int64_t* next;     // by row: the quotient term that comes next
    int32_t* resting;  // rows that wait for a quotient term
    int64_t rests;
};
}  // namespace

static void sift_up(HeapDivision& h, int64_t index, int32_t j) {
    int64_t at = h.size++;
    for (; at > 0 && h.heap[(at - 1) / 2].index < index; at = (at - 1) / 2) h.heap[at] = h.heap[(at - 1) / 2];
    h.heap[at] = {index, j};
}

static HeapEntry heap_pop(HeapDivision& h) {
    HeapEntry top = h.heap[0], last = h.heap[--h.size];
    int64_t at = 0;
    for (int64_t child = 1; child < h.size; child = 2 * at + 1) {
        if (child + 1 < h.size && h.heap[child + 1].index > h.heap[child].index) child++;
        if (h.heap[child].index <= last.index) break;
        h.heap[at] = h.heap[child];
        at = child;
    }
    if (h.size > 0) h.heap[at] = last;
    return top;
}

static HeapDivision heap_open(const PackTerms& m) {
    HeapDivision h = {};
    h.heap = scratch_array<HeapEntry>(m.count);
    h.next = scratch_array<int64_t>(m.count);
    h.resting = scratch_array<int32_t>(m.count);
    for (int64_t j = 1; j < m.count; j++) {
        h.next[j] = 0;
        h.resting[h.rests++] = static_cast<int32_t>(j);
    }
    return h;
}

// Puts the row back with its next product, or to rest.
static void heap_advance(HeapDivision& h, int32_t j, const PackTerms& m, const PackTerms& q) {
    int64_t i = h.next[j];
    if (i < q.count)
        sift_up(h, m.index[j] + q.index[i], j);
    else
        h.resting[h.rests++] = j;
}

// A fresh quotient term wakes the resting rows.
static void heap_wake(HeapDivision& h, const PackTerms& m, const PackTerms& q) {
    int64_t rests = h.rests;
    h.rests = 0;
    for (int64_t k = 0; k < rests; k++) heap_advance(h, h.resting[k], m, q);
}

static Outcome heap_residues(const PackDivision& d, const WordField& f, const PackTerms& n,
                             const PackTerms& m, Quotient& q) {
    HeapDivision h = heap_open(m);
    uint32_t inverse = wf_inverse(f, m.residue[0]);
    uint64_t square = static_cast<uint64_t>(f.p) * f.p;
    int64_t i = 0, lead = m.index[0];
    while (i < n.count || h.size > 0) {
        int64_t at = i < n.count ? n.index[i] : -1;
        if (h.size > 0 && h.heap[0].index > at) at = h.heap[0].index;
        uint32_t from_n = i < n.count && n.index[i] == at ? n.residue[i++] : 0;
        uint64_t sum = 0;  // of the products, below p^2
        while (h.size > 0 && h.heap[0].index == at) {
            HeapEntry e = heap_pop(h);
            uint32_t a = q.terms.residue[h.next[e.j]++], b = m.residue[e.j];
            if (f.table) {
                sum ^= wf_mul(f, a, b);
            } else {
                sum += static_cast<uint64_t>(a) * b;
                if (sum >= square) sum -= square;
            }
            heap_advance(h, e.j, m, q.terms);
        }
        uint32_t v = wf_sub(f, from_n, f.table ? static_cast<uint32_t>(sum) : wf_reduce(f, sum));
        if (v == 0) continue;
        if (at < lead || !index_divides(d, at, lead)) return Outcome::not_exact;
        poll_interrupt();
        quotient_put(q, at - lead, wf_mul(f, v, inverse));
        heap_wake(h, m, q.terms);
    }
    return Outcome::exact;
}

static Outcome heap_words(const PackDivision& d, const PackTerms& n, const PackTerms& m, Quotient& q) {
    HeapDivision h = heap_open(m);
    WordLead lead = {m.index[0], m.word[0], word_limit(n, m)};
    int64_t i = 0;
    while (i < n.count || h.size > 0) {
        int64_t at = i < n.count ? n.index[i] : -1;
        if (h.size > 0 && h.heap[0].index > at) at = h.heap[0].index;
        int64_t v = i < n.count && n.index[i] == at ? n.word[i++] : 0;
        while (h.size > 0 && h.heap[0].index == at) {
            HeapEntry e = heap_pop(h);
            v -= q.terms.word[h.next[e.j]++] * m.word[e.j];
            heap_advance(h, e.j, m, q.terms);
        }
        if (v == 0) continue;
        Outcome step = put_word_quotient(d, lead, at, v, q);
        if (step != Outcome::exact) return step;
        heap_wake(h, m, q.terms);
    }
    return Outcome::exact;
}

static Outcome run_residues(const PackDivision& d, const WordField& f, const PackTerms& n, const PackTerms& m,
                            Quotient& q) {
    return d.dense ? dense_residues(d, f, n, m, q) : heap_residues(d, f, n, m, q);
}

// ---- long integers ----

// Bits that every coefficient of an exact quotient over Z has at most: heights of factors multiply to at most
// e^s times the height of the product, s the sum of the degrees in all variables (Gelfond).
static int64_t quotient_bits(const PackDivision& d, int64_t n_bits) {
    int64_t sum = 0;
    for (int32_t k = 0; k < d.plan.count; k++) sum += d.plan.radix[k];
    return n_bits + sum + sum / 2 + 2;
}

// Images modulo word primes. Each gives n = q m modulo its prime, so n = q m over Z as soon as the product of
// the primes exceeds |q m - n|.
static Outcome divide_long(const PackDivision& d, const polynode* n, const polynode* m, int32_t n_digits,
                           int32_t m_digits, CrtTerms* q) {
    int64_t n_bits = int64_t{n_digits} * k_digit_bits;
    int64_t m_bits =
        int64_t{m_digits} * k_digit_bits + 64 - __builtin_clzll(static_cast<uint64_t>(d.m_terms));
    int64_t bound = quotient_bits(d, n_bits), q_bits = -1;
    *q = crt_open(static_cast<int32_t>(n_bits / 30 + 4));
    PackDigits n_read = pack_digits(n, d.plan, nullptr, d.n_terms),
               m_read = pack_digits(m, d.plan, d.m_low, d.m_terms);
    for (int32_t i = k_lrg_primes - 1; i >= 0; i--) {
        ScratchMark mark = scratch_mark();
        WordField f = word_field_prime(static_cast<uint32_t>(lrgpme[i]));
        PackTerms n2 = residues_of_digits(n_read, f), m2 = residues_of_digits(m_read, f);
        if (m2.count != d.m_terms) {  // a coefficient of the divisor vanishes: another prime
            scratch_release(mark);
            continue;
        }
        Quotient image = quotient_open(false);
        if (run_residues(d, f, n2, m2, image) != Outcome::exact) return Outcome::not_exact;
        bool grown;
        bool settled = crt_add(q, image.terms, f, &grown);
        if (!grown) scratch_release(mark);
        int64_t product = crt_product_bits(*q);
        if (!settled && product <= n_bits) continue;
        if (!settled || q_bits < 0) q_bits = crt_bits(*q);  // a prime that settles changes no value
        int64_t most = maxx64(q_bits + m_bits, n_bits) + 2;
        if (most <= product) return Outcome::exact;
        if (product > bound + m_bits + 2) return Outcome::not_exact;
    }
    return Outcome::overflow;
}

// ---- the entry ----

// Extent of both operands level by level; false, *no: the degrees already say that m does not divide n.
static bool plan_division(const PackMeasure& n, const PackMeasure& m, PackDivision* d, bool* no) {
    int32_t levels = maxx(n.levels, m.levels), low[k_levels], high[k_levels];
    *no = false;
    for (int32_t i = 0; i < levels; i++) {
        low[i] = i < n.levels ? n.least[i] : 0;
        high[i] = i < n.levels ? n.most[i] : 0;
        int32_t m_low = i < m.levels ? m.least[i] : 0, m_high = i < m.levels ? m.most[i] : 0;
        if (m_low > low[i] || high[i] - low[i] < m_high - m_low) *no = true;
        d->m_low[i] = m_low;
        d->q_low[i] = low[i] - m_low;
    }
    if (*no) return false;
    if (!pack_plan(low, high, levels, &d->plan)) return false;
    for (int32_t k = 0; k < d->plan.count; k++) {
        int32_t i = d->plan.level[k];
        int32_t m_span = i < m.levels ? m.most[i] - m.least[i] : 0;
        d->q_most[k] = d->plan.radix[k] - 1 - m_span;
    }
    d->n_terms = n.terms;
    d->m_terms = m.terms;
    d->dense = d->plan.box <= k_dense_floor ||
               (d->plan.box <= k_dense_cells && d->plan.box / k_cells_per_term <= n.terms + m.terms);
    return true;
}

static Packed divide_in_field(const PackDivision& d, const polynode* n, const polynode* m, polyptrr q) {
    WordField f = word_field_ring();
    PackTerms n2 = pack_residues(n, d.plan, nullptr, d.n_terms, f);
    PackTerms m2 = pack_residues(m, d.plan, d.m_low, d.m_terms, f);
    Quotient quotient = quotient_open(false);
    if (run_residues(d, f, n2, m2, quotient) != Outcome::exact) return Packed::no;
    *q = pack_tree(d.plan, d.q_low, quotient.terms.index, quotient.terms.count, leaf_of_residue,
                   &quotient.terms);
    return Packed::yes;
}

static Packed divide_integers(const PackDivision& d, const polynode* n, const polynode* m, int32_t n_digits,
                              int32_t m_digits, polyptrr q) {
    if (n_digits <= k_word_digits && m_digits <= k_word_digits) {
        PackTerms n2 = pack_words(n, d.plan, nullptr, d.n_terms);
        PackTerms m2 = pack_words(m, d.plan, d.m_low, d.m_terms);
        Quotient quotient = quotient_open(true);
        Outcome outcome = d.dense ? dense_words(d, n2, m2, quotient) : heap_words(d, n2, m2, quotient);
        if (outcome == Outcome::not_exact) return Packed::no;
        if (outcome == Outcome::exact) {
            *q = pack_tree(d.plan, d.q_low, quotient.terms.index, quotient.terms.count, leaf_of_word,
                           &quotient.terms);
            return Packed::yes;
        }
    }
    CrtTerms terms;
    switch (divide_long(d, n, m, n_digits, m_digits, &terms)) {
    case Outcome::not_exact:
        return Packed::no;
    case Outcome::overflow:
        return Packed::declined;
    case Outcome::exact:
        break;
    }
    *q = pack_tree(d.plan, d.q_low, terms.index, terms.count, leaf_of_crt, &terms);
    return Packed::yes;
}

Packed divide_packed(const polynode* n, const polynode* m, polyptrr q) {
    if (lintmode && !(modularmode && (mod_is_prime || finf))) return Packed::declined;
    PackMeasure n_extent, m_extent;
    pack_measure(n, &n_extent);
    pack_measure(m, &m_extent);
    if (m_extent.terms < 2) return Packed::declined;  // a monomial divides term by term
    PackDivision d;
    bool no;
    if (!plan_division(n_extent, m_extent, &d, &no)) return no ? Packed::no : Packed::declined;
    ScratchMark mark = scratch_mark();
    Packed verdict = modularmode ? divide_in_field(d, n, m, q)
                                 : divide_integers(d, n, m, n_extent.digits, m_extent.digits, q);
    scratch_release(mark);
    return verdict;
}
}  // namespace tolvex
