// Built-in functions that rearrange arrays: Reverse, STrans, Rname, Switchrow, Switchcol; Iszero, Killden,
// LCM.
#include "language/array_elements.h"
#include "language/array_operand.h"
#include "language/builtin_arrays.h"
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "matrix/matrix_modes.h"
#include "numbers/num_assign.h"
#include "poly/poly_basic.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"

#include <cstdio>
namespace tolvex {
// ---- arguments -----------------------------------------------------------------------------------------

bool read_command_1(BuiltinCall& call, ArrayArgument* x) {
    if (!expect(call.inf, call.flag, '[', Err::builtin_open_bracket)) return false;
    x->name = token;
    if (at_char('%')) {
        x->named = read_array_place(call.inf, call.flag);
        if (x->named == nullptr) return false;
        x->name = x->named->name;
    } else {
        if (!array_seek(x->name, &x->named)) return false;
        next_token(call.inf, call.flag);
    }
    x->a = array_itself(x->named);
    x->first = {x->a->name, x->a->time, 0};
    if (refuse_array_of_other_ring(x->a, x->name)) return false;
    x->block = at_char('[');
    arr_descr shape = {x->a->sizearr, x->a->rows};
    x->b = {0, x->a->rows, 0, columns_of(x->a)};
    ArrReader r = {call.inf, call.flag, shape, false};
    if (x->block && x->a->spar != nullptr) {
        error(Err::sparse_block);
        return false;
    }
    if (x->block && !read_block(r, shape, &x->b)) return false;
    return expect(call.inf, call.flag, ']', Err::close_bracket_expected);
}

bool read_command(BuiltinCall& call, ArrayArgument* x) {
    next_token(call.inf, call.flag);
    x->open = at_char('(');
    if (x->open) next_token(call.inf, call.flag);
    return read_command_1(call, x);
}

bool is_still_there(const ArrayArgument& x) {
    if (array_of(x.first) != x.a)
        error(Err::undefined_array, tok_text(x.name));
    else if (x.block && x.a->spar != nullptr)
        error(Err::sparse_block);
    else
        return true;
    return false;
}

void end_command(BuiltinCall& call, const ArrayArgument& x) {
    if (x.open) close_call(call);
}

void about_to_move(arrptr a) {
    settle_holders(a);
    if (a->spar != nullptr) about_to_change(a);
}

/// Element (r, c) of the part, both from 0, of a dense array.
static int32_t part_place(const ArrayArgument& x, int64_t r, int64_t c) {
    return static_cast<int32_t>(x.b.first_row + r + (x.b.first_col + c) * x.a->rows);
}

static void swap_slots(quolyptr x, quolyptr y) {
    quoly t = *x;
    *x = *y;
    *y = t;
}

// ---- Reverse, STrans -----------------------------------------------------------------------------------

static void reverse_dense(const arrnode* a) {
    auto last = static_cast<int32_t>(a->sizearr) - 1;
    for (int32_t k = 0; k < last - k; k++) swap_slots(dense_slot(a, k), dense_slot(a, last - k));
}

/// The row with its columns counted from the other side.
static colm_ptr reversed_row(colm_ptr row, int32_t cols) {
    colm_ptr back = nullptr;
    while (row != nullptr) {
        colm_ptr next = row->next;
        row->coord = cols + 1 - row->coord;
        row->next = back;
        back = row;
        row = next;
    }
    return back;
}

static void switch_sparse_rows(const arrnode* a, int32_t i, int32_t j) {
    colm_ptrptr x = sparse_row(a->spar, i), y = sparse_row(a->spar, j);
    colm_ptr t = *x;
    *x = *y;
    *y = t;
}

static void reverse_sparse(const arrnode* a) {
    auto cols = static_cast<int32_t>(columns_of(a));
    SparseWalk w = walk_sparse(a->spar, a->rows);
    while (colm_ptrptr row = next_row(w)) *row = reversed_row(*row, cols);
    for (int32_t r = 0; r < a->rows - 1 - r; r++) switch_sparse_rows(a, r, a->rows - 1 - r);
}

/// Reverse[a]: element k and the k-th from the end change places.
void builtin_Reverse(BuiltinCall& call) {
    ArrayArgument x;
    quoly_set(0, call.n);
    if (!read_command(call, &x)) return;
    end_command(call, x);
    if (x.block) {
        error(Err::sub_array_not_allowed);
        return;
    }
    about_to_move(x.a);
    x.a->spar != nullptr ? reverse_sparse(x.a) : reverse_dense(x.a);
}

/// STrans[a]: a sparse array becomes its transpose.
void builtin_STrans(BuiltinCall& call) {
    ArrayArgument x;
    quoly_set(0, call.n);
    if (!read_command(call, &x)) return;
    end_command(call, x);
    arrptr a = x.a;
    if (a->spar == nullptr) {
        error(Err::sparse_needed);
        return;
    }
    about_to_move(a);
    auto cols = static_cast<int32_t>(columns_of(a));
    trans_sparse(&a->spar, a->rows, cols);
    a->rows = cols;
    a->linear = 0;
    a->time = ++array_time;
}

// ---- Switchrow, Switchcol ------------------------------------------------------------------------------

static void switch_lines(const ArrayArgument& x, bool rows, int32_t i, int32_t j) {
    if (x.a->spar == nullptr) {
        int64_t length = rows ? x.b.cols : x.b.rows;
        for (int64_t k = 0; k < length; k++)
            rows ? swap_slots(dense_slot(x.a, part_place(x, i, k)), dense_slot(x.a, part_place(x, j, k)))
                 : swap_slots(dense_slot(x.a, part_place(x, k, i)), dense_slot(x.a, part_place(x, k, j)));
        return;
    }
    if (rows) {
        switch_sparse_rows(x.a, i, j);
        return;
    }
    sparse_switch_columns(x.a->spar, x.a->rows, 0, i + 1, j + 1);
}

/// Switchrow([a], i, j) and Switchcol([a], i, j).
void builtin_Switch(BuiltinCall& call) {
    constexpr int32_t k_rows_id = 93;  // ORDER BUILTIN_IDS
    bool rows = call.id == k_rows_id;
    ArrayArgument x;
    int64_t i = 0, j = 0;
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '(', Err::builtin_open_paren) || !read_command_1(call, &x)) return;
    bool read = expect(call.inf, call.flag, ',', Err::switch_comma) &&
                read_plain_integer(call.inf, call.flag, Err::number_expected, &i) &&
                expect(call.inf, call.flag, ',', Err::switch_comma) &&
                read_plain_integer(call.inf, call.flag, Err::number_expected, &j);
    if (!read) return;
    close_call(call);
    if (!is_still_there(x)) return;
    if (rows && x.a->linear) {
        error(Err::switch_rows_shape);
        return;
    }
    int64_t lines = rows ? x.b.rows : x.b.cols;
    i -= addresser;
    j -= addresser;
    if (i < 0 || j < 0 || i >= lines || j >= lines) {
        error(Err::switch_range);
        return;
    }
    if (i == j) return;
    about_to_move(x.a);
    switch_lines(x, rows, static_cast<int32_t>(i < j ? i : j), static_cast<int32_t>(i < j ? j : i));
}

// ---- Rname ---------------------------------------------------------------------------------------------

/// '[b]', the opening quote being the current token; up to and over the closing one. False after an error.
static bool read_quoted_name(BuiltinCall& call, tokentipe* name) {
    char text[k_namelength + 4] = "";
    size_t length = 0;
    for (;;) {
        boolean line_end = 0;
        bool ended = *call.flag == nullptr && at_end(call.inf);
        dumbscanner(call.inf, &token, call.flag, &line_end);
        if (ended || line_end || tok_is(token, k_end_token)) {
            error(Err::array_expected);
            return false;
        }
        if (at_char('\'')) break;
        if (at_char(' ')) continue;
        if (length + 1 < sizeof text) text[length++] = static_cast<char>(tok_char(token));
        text[length] = 0;
    }
    bool good = length > 2 && text[0] == '[' && text[length - 1] == ']' &&
                is_lower(static_cast<unsigned char>(text[1])) && length <= k_namelength + 2;
    for (size_t k = 1; good && k < length - 1; k++) {
        auto c = static_cast<unsigned char>(text[k]);
        good = is_lower(c) || is_upper(c) || is_digit(c) || c == '_';
    }
    if (!good) error(Err::array_expected);
    next_token(call.inf, call.flag);
    if (good) text[length - 1] = 0;
    tok_set(*name, text + (good ? 1 : 0));
    return good;
}

/// Rname[a] := '[b]': the array gets another name.
void builtin_Rname(BuiltinCall& call) {
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '[', Err::rename_open)) return;
    tokentipe old = token, fresh;
    arrptr a = nullptr;
    if (!array_seek(old, &a)) return;
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, ']', Err::rename_close) ||
        !expect(call.inf, call.flag, ':', Err::rename_colon) ||
        !expect(call.inf, call.flag, '=', Err::equals_expected))
        return;
    if (!at_char('\'')) {
        error(Err::rename_quote);
        return;
    }
    if (!read_quoted_name(call, &fresh)) return;
    if (number_polys > 0 && its_a_polyname(fresh) != 0) {
        error(Err::polyvar_as_name, tok_text(fresh));
    } else if (is_alias(a)) {
        error(Err::array_parameter_renamed, tok_text(old));
    } else {
        unlink_array(a);
        a->name = fresh;
        a->name.address = hash(fresh.name, k_variable_buckets);
        link_array(a);
    }
}

// ---- values of all elements ----------------------------------------------------------------------------

/// Calls f for every element of a dense part, for every entry of a sparse array.
template <class Visit> static void for_part(const ArrayArgument& x, Visit f) {
    if (x.a->spar != nullptr) {
        SparseWalk w = walk_sparse(x.a->spar, x.a->rows);
        while (colm_ptrptr row = next_row(w))
            for (colm_ptr p = *row; p != nullptr; p = p->next) f(&p->val);
        return;
    }
    for (int64_t c = 0; c < x.b.cols; c++)
        for (int64_t r = 0; r < x.b.rows; r++) f(value_slot(x.a, part_place(x, r, c)));
}

void kill_denominators(BuiltinCall& call) {
    ArrayArgument x;
    x.open = false;
    quoly_set(0, call.n);
    if (!read_command_1(call, &x)) return;
    about_to_move(x.a);
    for_part(x, [](quolyptr slot) {
        if ((*slot)->numb || (*slot)->denom == nullptr) return;
        quoly whole = nullptr;
        quoly_assign(*slot, &whole);
        free_poly(&whole->denom);
        whole->rat = 0;
        settle(whole);
        free_value(slot);
        *slot = whole;
    });
}

/// *l := the least common multiple of *l and d, which is used up.
static void multiply_in(quolyptr l, quoly d) {
    quoly g = nullptr;
    gcd_of_values(*l, d, &g);
    fast_quoly_quot(&d, g, 0);
    fast_quoly_mult(l, d);
    free_quoly(&d);
    free_quoly(&g);
}

static void push_denominator(quolyptr chain, const quolynode* q) {
    if (q->numb || q->denom == nullptr) return;
    poly p = nullptr;
    quoly d = nullptr;
    poly_assign(q->denom, &p);
    poly_to_quoly(&p, &d);
    d->next = *chain;
    *chain = d;
}

static quoly pop_value(quolyptr chain) {
    quoly first = *chain;
    *chain = first->next;
    first->next = nullptr;
    return first;
}

static void drop_values(void* chain) {
    auto* values = static_cast<quolyptr>(chain);
    while (*values != nullptr) {
        quoly first = pop_value(values);
        free_quoly(&first);
    }
}

/// LCM[a]: the least common multiple of all denominators.
void builtin_LCM(BuiltinCall& call) {
    ArrayArgument x;
    quoly_set(1, call.n);
    if (!read_command(call, &x)) return;
    end_command(call, x);
    if (lintmode) {
        if (*call.flag == nullptr) fputs(" Warning.  LCM called in longint/modular mode.\n", stdout);
        return;
    }
    quoly denominators = nullptr;  // copies: at a level that an interrupt opens the array may change
    for_part(x, [&](quolyptr slot) { push_denominator(&denominators, *slot); });
    Unfinished u;
    begin_unfinished(u, drop_values, &denominators);
    while (denominators != nullptr) {
        poll_interrupt();
        multiply_in(call.n, pop_value(&denominators));
    }
    end_unfinished(u);
}

static bool is_zero_operand(const ArrOperand& v) {
    if (is_sparse(v)) return sparse_iszero(v.spar, v.facts.rows);
    for (int64_t k = 0; k < v.facts.arrsize; k++)
        if (!quoly_iszero(elements_of(v)[k])) return false;
    return true;
}

/// Iszero[m]: 1 if all elements of the matrix are 0.
void builtin_Iszero(BuiltinCall& call) {
    ArrOperand v;
    bool zero = false;
    next_token(call.inf, call.flag);
    if (begin_operand(v)) {
        ArrReader r = {call.inf, call.flag, {}, false};
        arr_fact(r, v);
        if (is_scalar(v))
            error(Err::array_argument);
        else
            zero = is_zero_operand(v);
        end_operand(v);
    }
    return_word(call, zero);
}
}  // namespace tolvex
