// Sort and Synth: rows of arrays in order, and as sets.
#include "language/array_operand.h"
#include "language/builtin_arrays.h"
#include "language/builtin_table.h"
#include "matrix/matrix_modes.h"
#include "numbers/num_compare.h"
#include "poly/poly_shape.h"
#include "quoly/quoly_add.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- the order of values -------------------------------------------------------------------------------

int32_t compare_numbers(const number* x, const number* y) {
    if (lintmode) return (x->lint > y->lint) - (x->lint < y->lint);
    return bigger(x, y) ? 1 : bigger(y, x) ? -1 : 0;
}

namespace {
/// The terms of a polynomial one after another: the path from the first level to the number of a term.
struct TermWalk {
    const polynode* at[k_levels + 1];
    int32_t depth;  // at[0..depth], at[depth] is the number
};
}  // namespace

static void descend(TermWalk* w) {
    while (!w->at[w->depth]->numb) {
        w->at[w->depth + 1] = w->at[w->depth]->pcoef;
        w->depth++;
    }
}

static void first_term(TermWalk* w, const polynode* p) {
    w->at[0] = p;
    w->depth = 0;
    descend(w);
}

/// False after the last term.
static bool next_term(TermWalk* w) {
    while (w->at[w->depth]->next == nullptr)
        if (w->depth-- == 0) return false;
    w->at[w->depth] = w->at[w->depth]->next;
    descend(w);
    return true;
}

static int32_t compare_monomials(const TermWalk& x, const TermWalk& y) {
    for (int32_t level = 0; level <= x.depth || level <= y.depth; level++) {
        int32_t e = level <= x.depth ? x.at[level]->exp : 0, f = level <= y.depth ? y.at[level]->exp : 0;
        if (e != f) return e < f ? -1 : 1;
    }
    return 0;
}

/// First the monomials in turn, then the numbers in turn.
static int32_t compare_polys(const polynode* x, const polynode* y) {
    TermWalk v, w;
    int32_t numbers = 0;
    first_term(&v, x);
    first_term(&w, y);
    for (;;) {
        int32_t order = compare_monomials(v, w);
        if (order != 0) return order;
        if (numbers == 0) numbers = compare_numbers(v.at[v.depth]->ncoef, w.at[w.depth]->ncoef);
        bool more_x = next_term(&v), more_y = next_term(&w);
        if (!more_x && !more_y) return numbers;
        if (more_x != more_y) return more_x ? 1 : -1;
    }
}

/// Numbers come first, then polynomials, then rational functions.
static int32_t rank_of(const quolynode* q) { return q->numb || q->rat ? 0 : q->denom == nullptr ? 1 : 2; }

/// Rational numbers: the sign of the difference.
static int32_t compare_fractions(const quolynode* x, const quolynode* y) {
    quoly difference = nullptr;
    quoly_sub(const_cast<quoly>(x), const_cast<quoly>(y), &difference);
    const number* top = difference->numb ? difference->ncoef : difference->numer->ncoef;
    int32_t sign = chain_sign(top);
    free_quoly(&difference);
    return sign;
}

int32_t compare_values(const quolynode* x, const quolynode* y) {
    int32_t rank = rank_of(x);
    if (rank != rank_of(y)) return rank < rank_of(y) ? -1 : 1;
    if (rank == 0) return x->numb && y->numb ? compare_numbers(x->ncoef, y->ncoef) : compare_fractions(x, y);
    int32_t order = compare_polys(x->numer, y->numer);
    return order != 0 || rank == 1 ? order : compare_polys(x->denom, y->denom);
}

// ---- merging -------------------------------------------------------------------------------------------

namespace {
/// What is sorted: rows of a dense part, or rows of entries. Both are borrowed: at a level that an interrupt
/// opens meanwhile the array may change.
struct RowOrder {
    int32_t (*compare)(const RowOrder& order, int32_t i, int32_t j);
    const quoly* first;  // dense: the first element of the part, with the rows of the whole array
    int64_t rows, cols;
    colm_ptr* heads;  // of entries
};
}  // namespace

/// rows[0..n-1], the numbers 0 to n - 1 at first, come into order; equal ones keep theirs. n log n
/// comparisons.
static void merge_sort(const RowOrder& order, int32_t* rows, int32_t* spare, int32_t n) {
    for (int32_t i = 0; i < n; i++) rows[i] = i;
    for (int64_t width = 1; width < n; width *= 2) {
        for (int64_t from = 0; from < n; from += 2 * width) {
            int64_t i = from, middle = from + width < n ? from + width : n;
            int64_t j = middle, end = from + 2 * width < n ? from + 2 * width : n;
            for (int64_t k = from; k < end; k++) {
                poll_interrupt();
                bool left = j == end || (i < middle && order.compare(order, rows[i], rows[j]) <= 0);
                spare[k] = rows[left ? i++ : j++];
            }
        }
        memcpy(rows, spare, sizeof(int32_t) * static_cast<size_t>(n));
    }
}

static quolyptr part_slot(const ArrayArgument& x, int64_t r, int64_t c) {
    return dense_slot(x.a, static_cast<int32_t>(x.b.first_row + r + (x.b.first_col + c) * x.a->rows));
}

static int32_t compare_dense_rows(const RowOrder& order, int32_t i, int32_t j) {
    for (int64_t c = 0; c < order.cols; c++) {
        const quoly* column = order.first + c * order.rows;
        int32_t by = compare_values(column[i], column[j]);
        if (by != 0) return by;
    }
    return 0;
}

/// Entry by entry: column, then value.
static int32_t compare_entries(const colnode* p, const colnode* q) {
    for (; p != nullptr && q != nullptr; p = p->next, q = q->next) {
        if (p->coord != q->coord) return p->coord < q->coord ? -1 : 1;
        int32_t by = compare_values(p->val, q->val);
        if (by != 0) return by;
    }
    return (p != nullptr) - (q != nullptr);
}

static int32_t compare_sparse_rows(const RowOrder& order, int32_t i, int32_t j) {
    return compare_entries(order.heads[i], order.heads[j]);
}

// ---- Sort ----------------------------------------------------------------------------------------------

static bool all_have_values(const ArrayArgument& x) {
    for (int64_t c = 0; c < x.b.cols; c++)
        for (int64_t r = 0; r < x.b.rows; r++)
            if (*part_slot(x, r, c) == nullptr) return false;
    return true;
}

static void sort_dense(const ArrayArgument& x) {
    ArrOperand v;
    if (!all_have_values(x)) {
        error(Err::sort_empty_element);
        return;
    }
    if (!begin_operand(v)) return;
    borrow_array(v, x.a);
    auto n = static_cast<int32_t>(x.b.rows);
    ScratchMark mark = scratch_mark();
    auto* rows = scratch_array<int32_t>(n);
    auto* spare = scratch_array<int32_t>(n);
    auto* column = scratch_array<quoly>(n);
    const quoly* first = elements_of(v) + x.b.first_row + x.b.first_col * v.facts.rows;
    merge_sort({compare_dense_rows, first, v.facts.rows, x.b.cols, nullptr}, rows, spare, n);
    end_operand(v);
    if (is_still_there(x) && x.a->spar == nullptr) {
        about_to_move(x.a);
        for (int64_t c = 0; c < x.b.cols; c++) {
            for (int32_t r = 0; r < n; r++) column[r] = *part_slot(x, rows[r], c);
            for (int32_t r = 0; r < n; r++) *part_slot(x, r, c) = column[r];
        }
    }
    scratch_release(mark);
}

/// heads := the rows of the chain. False after error 370, unless empty rows are allowed.
static bool collect_rows(sparseptr chain, int32_t rows, colm_ptr* heads, bool empty_too) {
    SparseWalk w = walk_sparse(chain, rows);
    while (colm_ptrptr row = next_row(w)) {
        if (*row == nullptr && !empty_too) {
            error(Err::empty_row);
            return false;
        }
        heads[w.row] = *row;
    }
    return true;
}

namespace {
/// Sparse rows in order. One sort at a time: what an interrupted one has begun is finished first.
struct SortedRows {
    colm_ptr* heads;
    int32_t* rows;
    int32_t count;
};
boolean using_spsort = 0;
}  // namespace

/// The rows of a borrowed sparse matrix, in scratch memory. False after error 370, 371 or 372.
static bool sort_rows_of(const ArrOperand& v, SortedRows* s) {
    constexpr int32_t k_most_rows = 10239999;
    Err fault = using_spsort                 ? Err::sort_running
                : v.facts.rows > k_most_rows ? Err::sort_too_many_rows
                                             : Err{};
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    s->count = v.facts.rows;
    s->heads = scratch_array<colm_ptr>(s->count);
    s->rows = scratch_array<int32_t>(s->count);
    auto* spare = scratch_array<int32_t>(s->count);
    if (!collect_rows(v.spar, s->count, s->heads, false)) return false;
    Unfinished u;
    begin_unfinished(
        u, [](void* running) { *static_cast<boolean*>(running) = 0; }, &using_spsort);
    using_spsort = 1;
    merge_sort({compare_sparse_rows, nullptr, 0, 0, s->heads}, s->rows, spare, s->count);
    using_spsort = 0;
    end_unfinished(u);
    return true;
}

static void sort_sparse(const ArrayArgument& x) {
    ArrOperand v;
    if (!begin_operand(v)) return;
    borrow_array(v, x.a);
    ScratchMark mark = scratch_mark();
    SortedRows s;
    bool sorted = sort_rows_of(v, &s);
    end_operand(v);
    if (sorted && is_still_there(x)) {
        about_to_move(x.a);
        collect_rows(x.a->spar, s.count, s.heads, true);
        SparseWalk w = walk_sparse(x.a->spar, s.count);
        while (colm_ptrptr row = next_row(w)) *row = s.heads[s.rows[w.row]];
    }
    scratch_release(mark);
}

/// Sort[a]: the rows in ascending order.
void builtin_Sort(BuiltinCall& call) {
    ArrayArgument x;
    quoly_set(0, call.n);
    if (!read_command(call, &x)) return;
    end_command(call, x);
    x.a->spar != nullptr ? sort_sparse(x) : sort_dense(x);
}

// ---- Synth ---------------------------------------------------------------------------------------------

namespace {
enum SetKind : int32_t { k_both, k_either, k_all };
}  // namespace

/// out := the rows of the combination, in order; their number.
static int32_t combine_rows(const SortedRows& x, const SortedRows& y, SetKind kind, colm_ptr* out) {
    int32_t i = 0, j = 0, n = 0;
    while (i < x.count || j < y.count) {
        poll_interrupt();
        colm_ptr p = i < x.count ? x.heads[x.rows[i]] : nullptr,
                 q = j < y.count ? y.heads[y.rows[j]] : nullptr;
        int32_t by = p == nullptr ? 1 : q == nullptr ? -1 : compare_entries(p, q);
        colm_ptr row = by <= 0 ? p : q;
        bool both = by == 0;
        i += by <= 0;
        j += by > 0 || (both && kind != k_all);
        bool repeated = kind != k_all && n > 0 && compare_entries(out[n - 1], row) == 0;
        if (!repeated && (both || kind != k_both)) out[n++] = row;
    }
    return n;
}

static colm_ptr copy_row(const colnode* p) {
    colm_ptr head = nullptr;
    colm_ptrptr end = &head;
    for (; p != nullptr; p = p->next, end = &(*end)->next) {
        quoly value = nullptr;
        quoly_assign(p->val, &value);
        *end = newcolm(p->coord, value, nullptr);
    }
    return head;
}

/// A chain of copies of the rows; of one empty row if there is none.
static sparseptr chain_of_rows(colm_ptr* out, int32_t n) {
    sparseptr chain = nullptr;
    sparse_init(&chain, n > 0 ? n : 1);
    SparseWalk w = walk_sparse(chain, n);
    while (colm_ptrptr row = next_row(w)) *row = copy_row(out[w.row]);
    return chain;
}

/// *chain := the rows of the combination of two borrowed matrices; their number, -1 after an error.
static int32_t combine(const ArrOperand& a, const ArrOperand& b, SetKind kind, sparseptr* chain) {
    ScratchMark mark = scratch_mark();
    SortedRows s, t;
    int32_t n = -1;
    if (sort_rows_of(a, &s) && sort_rows_of(b, &t)) {
        auto* out = scratch_array<colm_ptr>(int64_t{s.count} + t.count);
        n = combine_rows(s, t, kind, out);
        *chain = chain_of_rows(out, n);
    }
    scratch_release(mark);
    return n;
}

/// What Synth refuses.
static Err fault_of(const ArrayArgument& x, const ArrayArgument& y, int64_t k) {
    if (x.a->spar == nullptr || y.a->spar == nullptr) return Err::sparse_needed;
    if (k < 0 || k > 2) return Err::synth_kind;
    return columns_of(x.a) != columns_of(y.a) ? Err::shapes_differ : Err{};
}

static void synthesize(BuiltinCall& call, const ArrayArgument& x, const ArrayArgument& y, SetKind kind) {
    ArrOperand a, b;
    sparseptr chain = nullptr;
    int32_t n = -1;
    if (!begin_operand(a)) return;
    if (begin_operand(b)) {
        borrow_array(a, x.a);
        borrow_array(b, y.a);
        n = combine(a, b, kind, &chain);
        end_operand(b);
    }
    end_operand(a);
    if (n < 0) return;
    if (!is_still_there(x)) {
        free_sparse(&chain, n > 0 ? n : 1, 1);
        return;
    }
    int64_t cols = columns_of(x.a);
    about_to_move(x.a);
    release_elements(x.a);
    reshape_array(x.a, n > 0 ? n : 1, cols, cols == 1 && x.a->linear, chain);
    return_word(call, n);
}

/// Synth([a], [b], k): [a] becomes the rows of both (k = 0), of either (1), or all rows of both (2).
void builtin_Synth(BuiltinCall& call) {
    ArrayArgument x, y;
    int64_t k = 0;
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    bool read = expect(call.inf, call.flag, '(', Err::builtin_open_paren) && read_command_1(call, &x) &&
                expect(call.inf, call.flag, ',', Err::builtin_comma) && read_command_1(call, &y) &&
                expect(call.inf, call.flag, ',', Err::builtin_comma) &&
                read_plain_integer(call.inf, call.flag, Err::number_expected, &k);
    if (!read) return;
    close_call(call);
    if (!is_still_there(x) || !is_still_there(y)) return;
    if (Err fault = fault_of(x, y, k); fault != Err{})
        error(fault);
    else
        synthesize(call, x, y, static_cast<SetKind>(k));
}
}  // namespace tolvex
