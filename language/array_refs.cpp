// References to arrays in array expressions, their blocks, and the choice among the constructors.

#include "language/array_elements.h"
#include "language/array_literals.h"
#include "language/array_ops.h"
#include "language/tokens/look_ahead.h"
#include "matrix/matrix_modes.h"
#include "poly/poly_vars.h"
namespace tolvex {
// ---- blocks --------------------------------------------------------------------------------------------

namespace {
/// What a range is checked against, and its errors.
struct Side {
    int64_t size;
    Err first_error, last_error;
};
}  // namespace

static bool at_side_end() { return at_char(',') || at_char(']'); }

static bool read_bound(ArrReader& r, int64_t* bound) {
    if (!read_plain_integer(r.inf, r.flag, Err::index_not_number, bound)) return false;
    *bound -= addresser;
    return true;
}

/// a, a~b, a~, ~b, or nothing.
static bool read_side(ArrReader& r, const Side& side, int64_t* first, int64_t* count) {
    int64_t from = 0, to = side.size - 1;
    bool given = !at_char('~') && !at_side_end();
    if (given && !read_bound(r, &from)) return false;
    if (at_char('~')) {
        next_token(r.inf, r.flag);
        if (!at_side_end() && !read_bound(r, &to)) return false;
    } else if (given) {
        to = from;
    }
    Err fault = from < 0 || from >= side.size  ? side.first_error
                : to < from || to >= side.size ? side.last_error
                                               : Err{};
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    *first = from;
    *count = to - from + 1;
    return true;
}

bool read_block(ArrReader& r, const arr_descr& shape, Block* b) {
    int64_t cols = shape.arrsize / shape.rows;
    *b = {0, shape.rows, 0, cols};
    next_token(r.inf, r.flag);
    if (!read_side(r, {shape.rows, Err::block_first_row, Err::block_last_row}, &b->first_row, &b->rows))
        return false;
    if (at_char(',')) {
        next_token(r.inf, r.flag);
        if (!read_side(r, {cols, Err::block_first_column, Err::block_last_column}, &b->first_col, &b->cols))
            return false;
    }
    return expect(r.inf, r.flag, ']', Err::index_separator);
}

void cut_block(ArrOperand& v, const Block& b) {
    workptr arr = elements_of(v);
    int64_t k = 0;
    for (int64_t c = 0; c < b.cols; c++)
        for (int64_t row = 0; row < b.rows; row++)
            arr[k++] = arr[b.first_row + row + (b.first_col + c) * v.facts.rows];
    v.facts = {b.rows * b.cols, static_cast<int32_t>(b.rows)};
}

// ---- references ----------------------------------------------------------------------------------------

void named_array(ArrReader& r, ArrOperand& v, arrptr a, const tokentipe& name) {
    a = array_itself(a);
    if (refuse_array_of_other_ring(a, name)) return scalar_zero(v);
    borrow_array(v, a);
    if (!at_char('[')) return;
    Block b;
    if (is_sparse(v))
        fail_operand(v, Err::sparse_block);
    else if (read_block(r, v.facts, &b))
        cut_block(v, b);
    else
        scalar_zero(v);
}

static void name_in_brackets(ArrReader& r, ArrOperand& v) {
    tokentipe name = token;
    arrptr a = nullptr;
    if (!array_seek(name, &a)) return scalar_zero(v);
    next_token(r.inf, r.flag);
    named_array(r, v, a, name);
}

static void place_in_brackets(ArrReader& r, ArrOperand& v) {
    arrptr a = read_array_place(r.inf, r.flag);
    if (a == nullptr) return scalar_zero(v);
    named_array(r, v, a, a->name);
}

/// Behind "<": a copy of the system array.
static void copy_syst(ArrOperand& v) {
    if (at_char('[')) {
        fail_operand(v, Err::system_array_subscript);
    } else if (syst == nullptr || syst->sizearr == 0) {
        fail_operand(v, Err::system_array_undefined);
    } else if (refuse_array_of_other_ring(syst, syst->name)) {
        scalar_zero(v);
    } else {
        borrow_array(v, syst);
        make_private(v);
    }
}

/// Behind "<": the system array, or the headers of a computed matrix.
static void less_in_brackets(ArrReader& r, ArrOperand& v) {
    if (sign_follows(r.inf, r.flag, ']') || sign_follows(r.inf, r.flag, '[')) {
        next_token(r.inf, r.flag);
        copy_syst(v);
    } else {
        computed_matrix(r, v);
    }
}

/// A number or a polynomial variable: that multiple of the identity.
static void multiple_of_identity(ArrReader& r, ArrOperand& v) {
    quoly value = nullptr;
    read_list_value(r, &value, false);
    if (r.known.rows == 0)
        fail_operand(v, Err::rows_unknown);
    else
        diagonal_matrix(v, r.known.rows, value, r.want_sparse);
    free_quoly(&value);
}

static bool names_polynomial_variable() { return number_polys > 0 && its_a_polyname(token) != 0; }

void bracket_body(ArrReader& r, ArrOperand& v) {
    unsigned char c = tok_char(token);
    if (c == '%')
        place_in_brackets(r, v);
    else if (c == '(')
        column_literal(r, v);
    else if (c == '[')
        row_literal(r, v);
    else if (c == '<')
        less_in_brackets(r, v);
    else if (c == ']' && r.want_sparse && r.known.arrsize > 0)
        make_sparse_operand(v, r.known.rows, r.known.arrsize / r.known.rows, nullptr);
    else if (is_digit(c) || c == '-' || (is_lower(c) && names_polynomial_variable()))
        multiple_of_identity(r, v);
    else if (is_lower(c))
        name_in_brackets(r, v);
    else if (tok_is(token, "Rand") || tok_is(token, "RRand") || tok_is(token, "Randint"))
        random_matrix(r, v, !tok_is(token, "Rand"));
    else
        fail_operand(v, Err::array_expected);
}

void bracket_factor(ArrReader& r, ArrOperand& v) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    next_token(r.inf, r.flag);
    bracket_body(r, v);
    expect(r.inf, r.flag, ']', Err::close_bracket_expected);
    eval_state.bar_closes = saved;
}
}  // namespace tolvex
