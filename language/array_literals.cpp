#include "language/array_literals.h"

#include "language/array_elements.h"
#include "language/builtin_args.h"
#include "language/copy_tokens.h"
#include "language/statements.h"
#include "language/symbols.h"
#include "language/tokens/look_ahead.h"
#include "language/tokens/token_list.h"
#include "matrix/matrix_modes.h"
#include "numbers/ring_switch.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
// ---- lists ---------------------------------------------------------------------------------------------

void read_list_value(ArrReader& r, quolyptr value, bool in_rows) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = in_rows ? k_line_closes : 0;
    old_expre(r.inf, value, r.flag);
    eval_state.bar_closes = saved;
}

/// v, a private dense column, takes one more value, which is used up. False after error 71. A safe point now
/// and then.
static bool append_value(ArrOperand& v, quolyptr value) {
    constexpr int64_t k_unpolled = 256;
    if (v.facts.arrsize == k_greatest_array) {
        free_quoly(value);
        return fail_operand(v, Err::list_too_long);
    }
    elements_of(v)[v.facts.arrsize++] = *value;
    v.facts.rows = static_cast<int32_t>(v.facts.arrsize);
    *value = nullptr;
    poll_every<k_unpolled>(v.facts.arrsize);
    return true;
}

/// An empty private column, to which values are appended.
static void begin_list(ArrOperand& v) {
    free_quoly(&v.n);
    v.facts = {};
    v.arr_free = 1;
}

/// A finished matrix, sparse if asked.
static void finish_dense(const ArrReader& r, ArrOperand& v) {
    if (r.want_sparse && !is_scalar(v) && !is_sparse(v)) contract_to_sparse(v);
}

void column_literal(ArrReader& r, ArrOperand& v) {
    begin_list(v);
    do {
        next_token(r.inf, r.flag);
        quoly value = nullptr;
        read_list_value(r, &value, false);
        if (!append_value(v, &value)) return;
    } while (at_char(','));
    expect(r.inf, r.flag, ')', Err::close_paren_expected);
    finish_dense(r, v);
}

void string_factor(ArrReader& r, ArrOperand& v) {
    begin_list(v);
    for (;;) {
        boolean eoln = 0;
        dumbscanner(r.inf, &token, r.flag, &eoln);
        if (at_char('\'')) break;
        if (tok_is(token, k_end_token) || (*r.flag == nullptr && at_char(';') && at_end(r.inf))) {
            fail_operand(v, Err::end_of_file_inside);
            return;
        }
        int32_t code = text_character(token, *r.flag, eoln);
        quoly value = nullptr;
        quoly_set(modularmode ? residue_of_int(code) : code, &value);
        if (!append_value(v, &value)) return;
    }
    next_token(r.inf, r.flag);
    if (v.facts.arrsize == 0)
        fail_operand(v, Err::empty_string);
    else
        finish_dense(r, v);
}

// ---- rows ----------------------------------------------------------------------------------------------

/// v holds the elements row by row, `cols` a row: they are laid column by column.
static void lay_by_columns(ArrOperand& v, int64_t cols) {
    int64_t rows = v.facts.arrsize / cols;
    if (rows * cols != v.facts.arrsize) {
        fail_operand(v, Err::rows_differ);
        return;
    }
    ArrOperand result;
    if (!begin_operand(result)) return scalar_zero(v);
    make_dense(result, rows, cols);
    workptr from = elements_of(v), to = elements_of(result);
    for (int64_t row = 0; row < rows; row++) {
        for (int64_t c = 0; c < cols; c++) {
            to[row + c * rows] = from[row * cols + c];
            from[row * cols + c] = nullptr;
        }
    }
    swap_operands(v, result);
    end_operand(result);
}

/// True if the current token can begin an element behind a line end.
static bool begins_element() {
    unsigned char c = tok_char(token);
    return is_lower(c) || is_upper(c) || is_digit(c) || strchr("-(.$'<%&", c) != nullptr;
}

/// What follows an element: the rest of the row, a new row, the end. At a new row its first token is current.
enum class AfterElement { next, new_row, end, fault };
static AfterElement after_element(ArrReader& r, ArrOperand& v) {
    if (at_char(',')) {
        next_token(r.inf, r.flag);
        return AfterElement::next;
    }
    if (line_crossed && *r.flag == nullptr && begins_element()) return AfterElement::new_row;
    if (!at_char(']')) {
        fail_operand(v, Err::close_bracket_expected);
        return AfterElement::fault;
    }
    next_token(r.inf, r.flag);
    if (at_char(',')) next_token(r.inf, r.flag);
    if (!at_char('[')) return AfterElement::end;
    next_token(r.inf, r.flag);
    return AfterElement::new_row;
}

/// The rows behind their first element, which is used up.
static void rest_of_rows(ArrReader& r, ArrOperand& v, quolyptr first) {
    begin_list(v);
    int64_t cols = 0;
    quoly value = *first;
    *first = nullptr;
    for (;;) {
        if (!append_value(v, &value)) return;
        AfterElement after = after_element(r, v);
        if (after == AfterElement::fault) return;
        if (after != AfterElement::next && cols == 0) cols = v.facts.arrsize;
        if (after == AfterElement::end) break;
        read_list_value(r, &value, true);
    }
    lay_by_columns(v, cols);
    finish_dense(r, v);
}

// ---- sparse rows ---------------------------------------------------------------------------------------

/// A row or column number, counted from 0; false after the error.
static bool checked_number(const quolynode* q, Err not_a_number, int64_t* value) {
    int32_t word = q->numb ? big_quoly_convert_to_int(q) : 0;
    *value = int64_t{word} - addresser;
    if (q->numb) return true;
    error(not_a_number);
    return false;
}

/// [c, v] from its "[", into the row whose last entry is at *tail or nil.
static bool read_entry(ArrReader& r, colm_ptrptr* tail, int64_t cols) {
    if (!expect(r.inf, r.flag, '[', Err::sparse_list_form)) return false;
    int64_t col;
    if (!read_plain_integer(r.inf, r.flag, Err::sparse_list_column, &col)) return false;
    col += 1 - addresser;
    while (**tail != nullptr && (**tail)->next != nullptr) *tail = &(**tail)->next;
    int32_t last = **tail == nullptr ? 0 : (**tail)->coord;
    if (col < 1 || col > cols || col <= last) {
        error(Err::sparse_list_column);
        return false;
    }
    if (!expect(r.inf, r.flag, ',', Err::sparse_list_form)) return false;
    quoly value = nullptr;
    read_list_value(r, &value, false);
    colm_ptrptr link = **tail == nullptr ? *tail : &(**tail)->next;
    *link = newcolm(static_cast<int32_t>(col), value, nullptr);
    purge_sparse(link);
    return expect(r.inf, r.flag, ']', Err::sparse_list_form);
}

/// The entries of a row of that number, from the "[" of the first one up to and over the "]" of the row.
static bool read_sparse_row(ArrReader& r, ArrOperand& v, int64_t row) {
    if (row < 0 || row >= v.facts.rows) {
        error(Err::index_out_of_range);
        return false;
    }
    colm_ptrptr tail = sparse_row(v.spar, static_cast<int32_t>(row));
    for (;;) {
        if (!read_entry(r, &tail, columns_of(v))) return false;
        if (!at_char(',')) return expect(r.inf, r.flag, ']', Err::sparse_list_form);
        next_token(r.inf, r.flag);
    }
}

/// All rows, the number of the first being q; the "[" of its first entry is the current token.
static bool read_sparse_rows(ArrReader& r, ArrOperand& v, const quolynode* q) {
    int64_t row;
    if (!checked_number(q, Err::sparse_list_row, &row)) return false;
    for (;;) {
        if (!read_sparse_row(r, v, row)) return false;
        if (at_char(',')) next_token(r.inf, r.flag);
        if (!at_char('[')) return true;
        next_token(r.inf, r.flag);
        if (!read_plain_integer(r.inf, r.flag, Err::sparse_list_row, &row)) return false;
        row -= addresser;
        if (!expect(r.inf, r.flag, ',', Err::sparse_list_form)) return false;
    }
}

/// With want_sparse: the first element may be the number of a row, an ordinary integer.
static void row_or_sparse_literal(ArrReader& r, ArrOperand& v) {
    boolean was_modular = 0;
    if (modularmode) check_modular(&was_modular);
    quoly first = nullptr;
    read_list_value(r, &first, true);
    if (was_modular) restore_modular(was_modular);
    bool sparse = at_char(',') && sign_follows(r.inf, r.flag, '[');
    if (sparse) {
        next_token(r.inf, r.flag);
        arr_descr shape = r.known;
        make_sparse_operand(v, shape.rows, shape.arrsize / shape.rows, nullptr);
        if (!read_sparse_rows(r, v, first)) scalar_zero(v);
        free_quoly(&first);
        return;
    }
    if (was_modular) reduce_words(&first);
    rest_of_rows(r, v, &first);
}

void row_literal(ArrReader& r, ArrOperand& v) {
    next_token(r.inf, r.flag);
    if (r.want_sparse && r.known.arrsize > 0) {
        row_or_sparse_literal(r, v);
        return;
    }
    quoly first = nullptr;
    read_list_value(r, &first, true);
    rest_of_rows(r, v, &first);
}

// ---- computed matrices ---------------------------------------------------------------------------------

namespace {
/// The turns of one loop of a computed matrix.
struct MatrixLoop {
    LoopHeader header;
    int64_t count;
};
}  // namespace

/// A header from its "<" up to and over ">", from a list. False after an error.
static bool read_matrix_loop(nameptr* cursor, FILE* inf, MatrixLoop* loop) {
    next_token(inf, cursor);
    if (!set_up_for_loop(inf, cursor, &loop->header)) return false;
    const LoopHeader& h = loop->header;
    Err fault = h.step < 1                               ? Err::step_too_small
                : h.first < addresser                    ? Err::first_index_low
                : h.last < addresser || h.last < h.first ? Err::last_index_low
                                                         : Err{};
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    loop->count = h.columns != nullptr ? h.count : (int64_t{h.last} - h.first) / h.step + 1;
    return expect(inf, cursor, '>', Err::sum_header_end);
}

namespace {
struct ComputedMatrix {
    FILE* inf;
    MatrixLoop loop[2];  // rows, columns
    int32_t loops;
    nameptr body;
};
}  // namespace

/// One value of the body.
static void body_value(const ComputedMatrix& m, quolyptr value) {
    nameptr cursor;
    start_list(m.body, &cursor);
    old_expre(m.inf, value, &cursor);
    if (!tok_is(token, k_end_token)) error(Err::close_bracket_expected);
}

/// Goes on to the next value of a loop; false if the body has put something else into the variable than a
/// number.
static bool next_value(LoopTurns& t, LoopName& name) {
    varptr p = find_var(name.let);
    if (p != nullptr && p->val != nullptr && !p->val->numb) {
        error(Err::index_not_integer, tok_text(name.let));
        return false;
    }
    next_turn(t, name);
    return true;
}

/// One row of the matrix, number i. False after error 336.
static bool compute_row(ComputedMatrix& m, ArrOperand& v, int64_t i) {
    LoopTurns t = m.loops == 2 ? turns_of(m.loop[1].header) : LoopTurns{0, 0, 1, 1, nullptr};
    if (m.loops == 2) {
        t.index -= t.step;
        next_turn(t, m.loop[1].header.name);
    }
    colm_ptrptr tail = is_sparse(v) ? sparse_row(v.spar, static_cast<int32_t>(i)) : nullptr;
    for (int64_t j = 0;; j++) {
        poll_interrupt();
        quoly value = nullptr;
        body_value(m, &value);
        if (tail == nullptr) {
            elements_of(v)[i + j * v.facts.rows] = value;
        } else if (quoly_iszero(value)) {
            free_quoly(&value);
        } else {
            *tail = newcolm(static_cast<int32_t>(j) + 1, value, nullptr);
            tail = &(*tail)->next;
        }
        if (t.index + t.step > t.last) return true;
        if (!next_value(t, m.loop[1].header.name)) return false;
    }
}

static bool compute_all(ComputedMatrix& m, ArrOperand& v) {
    LoopTurns t = turns_of(m.loop[0].header);
    t.index -= t.step;
    for (int64_t i = 0; i < m.loop[0].count; i++)
        if (!next_value(t, m.loop[0].header.name) || !compute_row(m, v, i)) return false;
    return true;
}

/// Headers and body from the list.
static void run_computed(ArrReader& r, ArrOperand& v, nameptr list) {
    ComputedMatrix m = {r.inf, {}, 0, nullptr};
    nameptr cursor;
    ScratchMark mark = scratch_mark();
    start_list(list, &cursor);
    do {
        if (!read_matrix_loop(&cursor, r.inf, &m.loop[m.loops++])) {
            scratch_release(mark);
            return scalar_zero(v);
        }
    } while (m.loops < 2 && at_char('<'));
    m.body = cursor;
    int64_t cols = m.loops == 2 ? m.loop[1].count : 1;
    if (r.want_sparse) make_sparse_operand(v, m.loop[0].count, cols, nullptr);
    if ((r.want_sparse || make_dense(v, m.loop[0].count, cols)) && !compute_all(m, v)) scalar_zero(v);
    scratch_release(mark);
}

/// The headers and the body up to the "]" that closes the matrix, which is the current token afterwards.
/// False after error 24, 78, 81 or 103.
static bool copy_matrix(TokenCopy& c) {
    while (at_char('<'))
        if (!copy_header(c, true)) return false;
    int32_t depth = 0;
    while (depth > 0 || !at_char(']')) {
        if (at_char('\'')) {
            if (copy_literal(c)) continue;
            error(Err::end_of_file_inside);
            return false;
        }
        if (at_char(';') || tok_is(token, k_end_token)) {
            error(Err::close_bracket_expected);
            return false;
        }
        if (at_char('[') || at_char('(')) depth++;
        if (at_char(']') || at_char(')')) depth--;
        copy_token(c);
    }
    return true;
}

void computed_matrix(ArrReader& r, ArrOperand& v) {
    TokenCopy copy = {r.inf, r.flag, nullptr, nullptr};
    copy.link = &copy.first;
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { freename(static_cast<nameptr*>(what)); }, &copy.first);
    bool copied = copy_matrix(copy);
    tokentipe last = token;
    nameptr place = currentchar;
    tok_set_end(token);
    append_token(copy);
    bind_list(copy.first);
    if (copied)
        run_computed(r, v, copy.first);
    else
        scalar_zero(v);
    token = last;
    currentchar = place;
    end_unfinished(u);
    freename(&copy.first);
}

// ---- random matrices -----------------------------------------------------------------------------------

void random_matrix(ArrReader& r, ArrOperand& v, bool clocked) {
    next_token(r.inf, r.flag);
    if (r.known.arrsize == 0) {
        fail_operand(v, Err::random_shape_unknown);
        return;
    }
    if (r.want_sparse && r.known.arrsize > k_greatest_array) {
        fail_operand(v, Err::sparse_too_large);
        return;
    }
    if (!make_dense(v, r.known.rows, r.known.arrsize / r.known.rows)) return;
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_every<1024>(k);
        random_value(clocked, &elements_of(v)[k]);
    }
    finish_dense(r, v);
}
}  // namespace tolvex
