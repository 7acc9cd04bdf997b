// Minors: the sub-matrix of a sparse array that lists of rows and columns tell.

#include "language/array_elements.h"
#include "language/array_statement.h"
#include "language/builtin_arrays.h"
#include "language/builtin_table.h"
#include "matrix/matrix_modes.h"
#include "numbers/shape_num.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
namespace {
/// Numbers of rows or columns, from 0, in rising order; in scratch memory.
struct LineList {
    int32_t* at;
    int32_t count;
};
/// The call while it is read: Minors(*[s], [r], [c], [new]).
struct MinorsCall {
    ArrayArgument s;
    bool consume;  // "*": the entries leave [s]
    LineList rows, columns;
    tokentipe result;
};
bool refuse(Err code, const char* symbol = nullptr) {
    error(code, symbol);
    return false;
}
}  // namespace

// ---- reading -------------------------------------------------------------------------------------------

/// Element k of a list, in linear order.
static const quolynode* list_element(const arrnode* a, int32_t k) {
    if (a->spar == nullptr) return *value_slot(a, k);
    return spar_retrieve(a->spar, row_of_place(a, k) + 1, column_of_place(a, k));
}

/// The numbers of the array, each below `lines`. False after error 330, 331 or 332.
static bool take_numbers(const ArrayArgument& x, int64_t lines, LineList* list) {
    auto count = static_cast<int32_t>(x.a->sizearr);
    list->at = scratch_array<int32_t>(count);
    list->count = count;
    for (int32_t k = 0; k < count; k++) {
        const quolynode* q = list_element(x.a, k);
        if (!q->numb) return refuse(Err::minor_number, tok_text(x.name));
        int64_t number = int64_t{convert_to_int(q->ncoef)} - addresser;
        if (number < 0 || number >= lines) return refuse(Err::minor_range, tok_text(x.name));
        if (k > 0 && number <= list->at[k - 1]) return refuse(Err::minor_order, tok_text(x.name));
        list->at[k] = static_cast<int32_t>(number);
    }
    return true;
}

/// ", [r]": error `missing` if there is no list.
static bool read_list(BuiltinCall& call, int64_t lines, Err missing, LineList* list) {
    ArrayArgument x;
    if (!at_char(',')) return refuse(missing);
    next_token(call.inf, call.flag);
    if (!at_char('[')) return refuse(missing);
    return read_command_1(call, &x) && (!x.block || refuse(Err::sub_array_not_allowed)) &&
           take_numbers(x, lines, list);
}

static bool read_minors_call(BuiltinCall& call, MinorsCall* m) {
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '(', Err::builtin_open_paren)) return false;
    m->consume = at_char('*');
    if (m->consume) next_token(call.inf, call.flag);
    if (!read_command_1(call, &m->s)) return false;
    const arrnode* a = m->s.a;
    if (a->spar == nullptr) return refuse(Err::sparse_needed, tok_text(m->s.name));
    if (!read_list(call, a->rows, Err::minor_row_list, &m->rows) ||
        !read_list(call, columns_of(a), Err::minor_column_list, &m->columns) ||
        !expect(call.inf, call.flag, ',', Err::builtin_comma) || !read_array_name(call, &m->result))
        return false;
    arrptr named = nullptr;
    fastestlookup(m->result, &named);
    if (named != nullptr && array_itself(named) == a) return refuse(Err::array_expected, tok_text(m->result));
    return expect(call.inf, call.flag, ')', Err::close_paren_expected);
}

// ---- the sub-matrix ------------------------------------------------------------------------------------

/// Calls f for the links of the entries of the row that stand in the columns, with their places in the list.
/// f returns the link to go on from.
template <class Visit> static void entries_of_row(colm_ptrptr t, const LineList& columns, Visit f) {
    for (int32_t c = 0; c < columns.count && *t != nullptr; c++) {
        t = get_sparse_colm(t, columns.at[c] + 1);
        if (stands_at(t, columns.at[c] + 1)) t = f(t, c);
    }
}

/// The empty chain takes copies of the entries; returns their number.
static int64_t copy_entries(sparseptr from, const MinorsCall& m, sparseptr chain) {
    int64_t count = 0;
    SparseWalk to = walk_sparse(chain, m.rows.count);
    for (int32_t r = 0; r < m.rows.count; r++) {
        poll_interrupt();
        colm_ptrptr link = next_row(to);
        entries_of_row(sparse_row(from, m.rows.at[r]), m.columns, [&](colm_ptrptr t, int32_t c) {
            quoly value = nullptr;
            quoly_assign((*t)->val, &value);
            *link = newcolm(c + 1, value, nullptr);
            link = &(*link)->next;
            count++;
            return &(*t)->next;
        });
    }
    return count;
}

/// The entries leave [s].
static void remove_entries(const MinorsCall& m) {
    about_to_move(m.s.a);
    for (int32_t r = 0; r < m.rows.count; r++)
        entries_of_row(sparse_row(m.s.a->spar, m.rows.at[r]), m.columns, [](colm_ptrptr t, int32_t) {
            free_value(&(*t)->val);
            free_colm(t);
            return t;
        });
}

static void note_large(const MinorsCall& m) {
    constexpr int32_t k_many = 1000000;
    if (m.rows.count > k_many) printf(" Warning. more than %0d rows.\n", k_many);
    if (m.columns.count > k_many) printf(" Warning. more than %0d cols.\n", k_many);
    if (m.rows.count > k_many || m.columns.count > k_many) printf("    This may cause problems later.\n");
}

/// Stores the sub-matrix; returns the number of its entries.
static int64_t store_minor(MinorsCall& m) {
    ArrOperand source, minor;
    if (!is_still_there(m.s) || !begin_operand(source)) return 0;
    borrow_array(source, m.s.a);
    int64_t count = 0;
    bool stored = false;
    if (begin_operand(minor)) {
        make_sparse_operand(minor, m.rows.count, m.columns.count, nullptr);
        count = copy_entries(source.spar, m, minor.spar);
        arrptr named = nullptr;
        fastestlookup(m.result, &named);
        stored = assign_whole(m.result, named, minor);
        end_operand(minor);
    }
    end_operand(source);
    if (stored && m.consume && is_still_there(m.s)) remove_entries(m);
    return stored ? count : 0;
}

/// Minors([s], [r], [c], [new]), Minors(*[s], [r], [c], [new]): [new] := the sub-matrix of [s] in the rows
/// [r] and the columns [c]; the value is the number of its entries.
void builtin_Minors(BuiltinCall& call) {
    ScratchMark mark = scratch_mark();
    MinorsCall m = {};
    int64_t count = 0;
    if (read_minors_call(call, &m)) {
        note_large(m);
        count = store_minor(m);
    }
    scratch_release(mark);
    return_word(call, count);
}
}  // namespace tolvex
