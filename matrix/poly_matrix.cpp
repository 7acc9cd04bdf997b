#include "matrix/poly_matrix.h"

#include "matrix/assignment.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <numeric>
namespace tolvex {
namespace {
constexpr int64_t k_widest = int64_t{1} << 30;      // exponents of a determinant
constexpr int64_t k_most_terms = int64_t{1} << 18;  // of an entry: they are sorted without a safe point

/// What the entries are read into first.
struct Reading {
    PolyMatrix* m;
    const quoly* a;
    const polynode* divisor;
    bool whole, adjoint;
    PackMeasure* measure;  // by entry
    int32_t high[k_levels];
    PackPlan plan;
    PackTerms* packed;            // by entry
    int64_t degree_of[k_levels];  // by level of the plan: of the determinant
    int64_t minor_degree_of[k_levels];
    int32_t order[k_lattice_vars];   // variable -> level of the plan
    int64_t weight[k_lattice_vars];  // of the variables, in keys
};
}  // namespace

// ---- degrees -------------------------------------------------------------------------------------------

static const polynode* poly_of_entry(const Reading& r, int64_t e) {
    const PolyMatrix& m = *r.m;
    if (m.place[e] == int64_t{m.n} * m.n) return r.divisor;
    const quolynode* q = r.a[m.place[e] / m.n + m.place[e] % m.n * m.n];
    return q->numb ? nullptr : q->numer;
}

static bool is_zero(const quolynode* q) {
    return q->numb && (lintmode ? q->ncoef->lint == 0 : q->ncoef->head->value == 0);
}

static void list_entries(Reading& r) {
    PolyMatrix& m = *r.m;
    int64_t count = int64_t{m.n} * m.n;
    m.place = scratch_array<int64_t>(count + 1);
    m.entries = 0;
    for (int64_t k = 0; k < count; k++)
        if (!is_zero(r.a[k / m.n + k % m.n * m.n])) m.place[m.entries++] = k;
    m.divided = r.divisor != nullptr;
    if (m.divided) m.place[m.entries++] = count;
}

/// The exponents that occur. False: too wide for indexes.
static bool survey(Reading& r) {
    PolyMatrix& m = *r.m;
    r.measure = scratch_array<PackMeasure>(m.entries);
    m.levels = 0;
    for (int64_t e = 0; e < m.entries; e++) {
        PackMeasure& measure = r.measure[e];
        measure.levels = 0;
        measure.terms = 1;
        if (const polynode* p = poly_of_entry(r, e)) pack_measure(p, &measure);
        if (measure.terms > k_most_terms) return false;
        m.levels = std::max(m.levels, measure.levels);
        poll_interrupt();
    }
    for (int32_t i = 0; i < m.levels; i++) {
        m.low[i] = INT32_MAX;
        r.high[i] = INT32_MIN;
        for (int64_t e = 0; e < m.entries; e++) {
            bool has = i < r.measure[e].levels;
            m.low[i] = std::min(m.low[i], has ? r.measure[e].least[i] : 0);
            r.high[i] = std::max(r.high[i], has ? r.measure[e].most[i] : 0);
        }
        if (r.whole && m.low[i] < 0) return false;
        if (r.whole) m.low[i] = 0;
        if (int64_t{r.high[i]} - m.low[i] >= k_widest / m.n || -int64_t{m.low[i]} >= k_widest / m.n)
            return false;
    }
    return pack_plan(m.low, r.high, m.levels, &r.plan) && r.plan.count >= 1 && r.plan.count <= k_lattice_vars;
}

static void read_terms(Reading& r) {
    PolyMatrix& m = *r.m;
    r.packed = scratch_array<PackTerms>(m.entries);
    m.terms = 0;
    for (int64_t e = 0; e < m.entries; e++) {
        if (const polynode* p = poly_of_entry(r, e)) {
            r.packed[e] = pack_leaves(p, r.plan, nullptr, r.measure[e].terms);
        } else {
            r.packed[e] = {1, scratch_array<int64_t>(1), {.leaf = scratch_array<const number*>(1)}};
            r.packed[e].index[0] = 0;
            for (int32_t k = 0; k < r.plan.count; k++)
                r.packed[e].index[0] -= r.plan.low[k] * r.plan.weight[k];
            r.packed[e].leaf[0] = r.a[m.place[e] / m.n + m.place[e] % m.n * m.n]->ncoef;
        }
        m.terms += r.packed[e].count;
    }
}

static int64_t digit_of(const PackPlan& plan, int32_t k, int64_t index) {
    return index / plan.weight[k] % plan.radix[k];
}

/// The degree of minors of n - 1 rows, at most: the greatest of each row, or column, but for the least of
/// these.
static int64_t minor_degree(const int64_t* degree, int64_t n) {
    int64_t bound = INT64_MAX;
    for (int64_t step : {int64_t{1}, n}) {
        int64_t sum = 0, least = INT64_MAX;
        for (int64_t line = 0; line < n; line++) {
            int64_t most = 0;
            for (int64_t k = 0; k < n; k++) most = std::max(most, degree[line * (n + 1 - step) + k * step]);
            sum += most;
            least = std::min(least, most);
        }
        bound = std::min(bound, sum - least);
    }
    return bound;
}

/// The degrees of all entries, then of the determinant. False: it is 0, or of lower degree than the divisor.
static bool bound_degrees(Reading& r) {
    PolyMatrix& m = *r.m;
    int64_t count = int64_t{m.n} * m.n;
    ScratchMark mark = scratch_mark();
    auto* degree = scratch_array<int64_t>(count + 1);
    bool good = true;
    for (int32_t k = 0; good && k <= r.plan.count; k++) {  // the last turn: total degrees
        std::fill_n(degree, count + 1, k_no_degree);
        for (int64_t e = 0; e < m.entries; e++)
            for (int64_t t = 0; t < r.packed[e].count; t++) {
                int64_t index = r.packed[e].index[t], d = 0;
                if (k < r.plan.count)
                    d = digit_of(r.plan, k, index);
                else
                    for (int32_t i = 0; i < k; i++) d += digit_of(r.plan, i, index);
                degree[m.place[e]] = std::max(degree[m.place[e]], d);
            }
        (k < r.plan.count ? r.minor_degree_of[k] : m.minor_total) = minor_degree(degree, m.n);
        int64_t d = greatest_assignment(degree, m.n);
        m.zero = d == k_no_degree;
        if (m.zero) d = 0;
        good = (!m.zero || r.adjoint) && (!m.divided || d >= degree[count]);
        if (!good) break;
        if (m.divided) d -= degree[count];
        good = d < k_widest;
        (k < r.plan.count ? r.degree_of[k] : m.total) = d;
    }
    scratch_release(mark);
    return good;
}

// ---- stages --------------------------------------------------------------------------------------------

namespace {
/// A term on its way through the stages.
struct KeyedTerm {
    int64_t key;
    const number* leaf;
};
}  // namespace

static void order_variables(Reading& r) {
    PolyMatrix& m = *r.m;
    m.vars = r.plan.count;
    std::iota(r.order, r.order + m.vars, 0);
    std::stable_sort(r.order, r.order + m.vars,
                     [&r](int32_t x, int32_t y) { return r.degree_of[x] < r.degree_of[y]; });
    int64_t weight = 1;
    for (int32_t v = m.vars - 1; v >= 0; v--) {
        m.level[v] = r.plan.level[r.order[v]];
        m.degree[v] = static_cast<int32_t>(r.degree_of[r.order[v]]);
        m.minor_degree[v] = static_cast<int32_t>(r.minor_degree_of[r.order[v]]);
        r.weight[v] = weight;
        weight *= r.plan.radix[r.order[v]];
    }
}

/// keys[0..terms) := the keys of all terms, falling in each entry; the entries begin at m.start.
static void key_terms(Reading& r, int64_t* keys) {
    PolyMatrix& m = *r.m;
    m.leaf = scratch_array<const number*>(m.terms);
    m.start = scratch_array<int64_t>(m.entries + 1);
    m.first = scratch_array<int64_t>(m.entries + 1);
    ScratchMark mark = scratch_mark();
    auto* keyed = scratch_array<KeyedTerm>(m.terms);
    int64_t at = 0;
    for (int64_t e = 0; e < m.entries; e++) {
        m.start[e] = at;
        for (int64_t t = 0; t < r.packed[e].count; t++, at++) {
            keyed[at] = {0, r.packed[e].leaf[t]};
            for (int32_t v = 0; v < m.vars; v++)
                keyed[at].key += digit_of(r.plan, r.order[v], r.packed[e].index[t]) * r.weight[v];
        }
        std::sort(keyed + m.start[e], keyed + at,
                  [](const KeyedTerm& x, const KeyedTerm& y) { return x.key > y.key; });
        poll_interrupt();
    }
    m.start[m.entries] = at;
    std::copy_n(m.start, m.entries + 1, m.first);
    for (int64_t t = 0; t < m.terms; t++) {
        keys[t] = keyed[t].key;
        m.leaf[t] = keyed[t].leaf;
    }
    scratch_release(mark);
}

/// Stage v from the keys of its terms, which become those of the next one; m.start moves along.
static void make_stage(Reading& r, int32_t v, int64_t* keys) {
    PolyMatrix& m = *r.m;
    PolyStage& s = m.stage[v];
    bool last = v == m.vars - 1;
    s.count = m.start[m.entries];
    s.exp = scratch_array<int32_t>(s.count);
    s.target = last ? nullptr : scratch_array<int64_t>(s.count);
    s.most = 0;
    for (int64_t t = 0; t < s.count; t++) {
        s.exp[t] = static_cast<int32_t>(keys[t] / r.weight[v]);
        s.most = std::max(s.most, s.exp[t]);
        keys[t] %= r.weight[v];
    }
    if (last) return;
    ScratchMark mark = scratch_mark();
    auto* sorted = scratch_array<int64_t>(s.count);
    int64_t out = 0;
    for (int64_t e = 0; e < m.entries; e++) {
        int64_t from = m.start[e], to = m.start[e + 1];
        std::copy(keys + from, keys + to, sorted + out);
        std::sort(sorted + out, sorted + out + (to - from), std::greater<>());
        int64_t end = std::unique(sorted + out, sorted + out + (to - from)) - sorted;
        for (int64_t t = from; t < to; t++)
            s.target[t] = std::lower_bound(sorted + out, sorted + end, keys[t], std::greater<>()) - sorted;
        m.start[e] = out;
        out = end;
        poll_interrupt();
    }
    m.start[m.entries] = out;
    std::copy(sorted, sorted + out, keys);
    scratch_release(mark);
}

bool make_poly_matrix(PolyMatrix* m, const quoly* a, int32_t n, const polynode* divisor,
                      PolyPurpose purpose) {
    *m = {};
    m->n = n;
    Reading r = {};
    r.m = m;
    r.a = a;
    r.divisor = divisor;
    r.whole = purpose == PolyPurpose::root || divisor != nullptr;
    r.adjoint = purpose == PolyPurpose::adjoint;
    list_entries(r);
    if (!survey(r)) return false;
    read_terms(r);
    if (!bound_degrees(r)) return false;
    order_variables(r);
    auto* keys = scratch_array<int64_t>(m->terms);
    key_terms(r, keys);
    for (int32_t v = 0; v < m->vars; v++) make_stage(r, v, keys);
    return true;
}
}  // namespace tolvex
