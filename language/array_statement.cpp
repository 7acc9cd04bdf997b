#include "language/array_statement.h"

#include "language/array_elements.h"
#include "language/array_ops.h"
#include "language/tokens/look_ahead.h"
#include "poly/poly_vars.h"

#include <cstdio>
namespace tolvex {
// ---- storing -------------------------------------------------------------------------------------------

static bool statement_error(Err code, const char* symbol = nullptr) {
    error(code, symbol);
    return false;
}

static void store_in_slot(quolyptr slot, quoly value, ValueRelease& release) {
    if (*slot != nullptr) {
        quoly old = displace_value(slot);
        release(&old);
    }
    *slot = value;
}

/// Element k of v for the target: moved, or a copy of the scalar.
static quoly next_value(ArrOperand& v, int64_t k) {
    quoly value = nullptr;
    if (is_scalar(v)) {
        quoly_assign(v.n, &value);
    } else {
        value = elements_of(v)[k];
        elements_of(v)[k] = nullptr;
    }
    return value;
}

/// The elements of a dense array of the shape of v, or all of them if v is a scalar.
static void fill_dense(arrptr a, ArrOperand& v) {
    make_private(v);
    ValueRelease release;
    for (int32_t k = 0; k < a->sizearr; k++) store_in_slot(dense_slot(a, k), next_value(v, k), release);
}

/// The sparse array itself gets that chain, which is used up, instead of its own.
static void replace_chain(arrptr a, sparseptr chain) {
    release_elements(a);
    put_back_sparse(&chain, a->spar, a->rows);
}

/// Every place of a sparse array gets the scalar.
static bool sparse_set_scalar(arrptr a, const quolynode* value) {
    if (quoly_iszero(value)) {
        release_elements(a);
        return true;
    }
    if (a->sizearr > k_greatest_array) return statement_error(Err::sparse_too_large, tok_text(a->name));
    sparseptr chain = nullptr;
    sparse_init(&chain, a->rows);
    SparseWalk w = walk_sparse(chain, a->rows);
    while (colm_ptrptr link = next_row(w)) {
        for (int32_t c = 1; c <= columns_of(a); c++) {
            quoly copy = nullptr;
            quoly_assign(value, &copy);
            *link = newcolm(c, copy, nullptr);
            link = &(*link)->next;
        }
    }
    replace_chain(a, chain);
    return true;
}

/// True if the shape of the array may change at all.
static bool may_reshape(arrptr named, arrptr a) {
    if (is_alias(named)) return statement_error(Err::parameter_shape, tok_text(named->name));
    if (a->aliases > 0) return statement_error(Err::array_has_parameter, tok_text(a->name));
    return true;
}

/// The array takes shape and elements of the matrix v.
static bool remake(arrptr named, arrptr a, ArrOperand& v) {
    int64_t cols = columns_of(v);
    if (!may_reshape(named, a) || (!is_sparse(v) && !store_has_room(a, v.facts.rows, cols))) return false;
    make_private(v);
    if (a->ring == modulus)
        release_elements(a);
    else
        free_elements(a);
    settle_holders(a);
    sparseptr chain = v.spar;
    v.spar = nullptr;
    bool sparse = chain != nullptr;
    reshape_array(a, v.facts.rows, cols, a->linear && cols == 1, chain);
    if (sparse)
        v.facts = {};
    else
        fill_dense(a, v);
    return true;
}

/// A new array of that name. A scalar makes it 1 by 1.
static bool make_array(const tokentipe& name, ArrOperand& v) {
    make_private(v);
    if (is_sparse(v)) {
        sparse_create(name, v.facts.rows, columns_of(v), false, v.spar);
        v.spar = nullptr;
        v.facts = {};
        return true;
    }
    arrptr a =
        is_scalar(v) ? insertarr(name, 1, 1, false) : insertarr(name, v.facts.rows, columns_of(v), false);
    if (a == nullptr) return false;
    fill_dense(a, v);
    return true;
}

bool assign_whole(tokentipe& name, arrptr named, ArrOperand& v) {
    if (named == nullptr) return make_array(name, v);
    arrptr a = array_itself(named);
    if (is_scalar(v)) {
        if (a->ring != modulus) enter_ring(a);
        if (a->spar != nullptr) return sparse_set_scalar(a, v.n);
        fill_dense(a, v);
        return true;
    }
    if (a->sizearr != v.facts.arrsize || a->rows != v.facts.rows || a->ring != modulus) {
        if (a->spar != nullptr && !is_sparse(v)) {
            make_private(v);
            contract_to_sparse(v);
        }
        return remake(named, a, v);
    }
    make_private(v);
    if (a->spar != nullptr) {
        if (!is_sparse(v)) contract_to_sparse(v);
        replace_chain(a, v.spar);
        v.spar = nullptr;
        v.facts = {};
        return true;
    }
    if (!is_sparse(v)) {
        fill_dense(a, v);
        return true;
    }
    if (is_alias(named)) return statement_error(Err::dense_and_sparse, tok_text(name));
    return remake(named, a, v);
}

static bool is_vector(const arr_descr& d) { return d.rows == 1 || d.rows == d.arrsize; }

static bool assign_block(arrptr a, const Block& b, ArrOperand& v) {
    arr_descr shape = {b.rows * b.cols, static_cast<int32_t>(b.rows)};
    if (is_sparse(v)) return statement_error(Err::dense_and_sparse, tok_text(a->name));
    bool fits = is_scalar(v) || (v.facts.arrsize == shape.arrsize &&
                                 (v.facts.rows == shape.rows || (is_vector(v.facts) && is_vector(shape))));
    if (!fits) return statement_error(Err::block_size, tok_text(a->name));
    make_private(v);
    ValueRelease release;
    int64_t k = 0;
    for (int64_t c = b.first_col; c < b.first_col + b.cols; c++) {
        for (int64_t row = b.first_row; row < b.first_row + b.rows; row++) {
            quolyptr slot = dense_slot(a, static_cast<int32_t>(row + c * a->rows));
            store_in_slot(slot, next_value(v, k++), release);
        }
    }
    return true;
}

static bool assign_diagonal(tokentipe& name, arrptr named, ArrOperand& v) {
    arrptr a = named == nullptr ? nullptr : array_itself(named);
    if (is_sparse(v) || (a != nullptr && a->spar != nullptr))
        return statement_error(Err::sparse_not_allowed, tok_text(name));
    if (a != nullptr && refuse_array_of_other_ring(a, name)) return false;
    int64_t n = a == nullptr ? (is_scalar(v) ? 1 : v.facts.arrsize)
                             : (columns_of(a) < a->rows ? columns_of(a) : a->rows);
    if (!is_scalar(v) && (!is_vector(v.facts) || v.facts.arrsize != n))
        return statement_error(Err::block_size, tok_text(name));
    if (a == nullptr) {
        a = insertarr(name, n, n, false);
        if (a == nullptr) return false;
        for (int32_t k = 0; k < a->sizearr; k++) quoly_set(0, dense_slot(a, k));
    }
    make_private(v);
    ValueRelease release;
    for (int64_t i = 0; i < n; i++)
        store_in_slot(dense_slot(a, static_cast<int32_t>(i + i * a->rows)), next_value(v, i), release);
    return true;
}

// ---- targets -------------------------------------------------------------------------------------------

namespace {
/// What stands on the left of ":=", or begins an expression.
struct ArrTarget {
    tokentipe name;
    int32_t stamp;  // of the record found, negative for a parameter; 0: a new array
    bool diagonal, has_block;
    Block block;
};
}  // namespace

/// The record of the target, nil if it has gone (error 28) or is new. One that was new, and that the right
/// side has made meanwhile, is there.
static bool record_of(ArrTarget& t, arrptr* named) {
    fastestlookup(t.name, named);
    if (t.stamp == 0) return true;
    while (*named != nullptr && (*named)->time != t.stamp) *named = (*named)->next;
    return *named != nullptr || statement_error(Err::undefined_array, tok_text(t.name));
}

static void note_record(ArrTarget* t, arrptr named) {
    t->stamp = named == nullptr ? 0 : named->time;
    if (named != nullptr && named->name.address != -1) t->name = named->name;
}

/// The shape of the target, for the right side.
static arr_descr shape_of_target(const ArrTarget& t, arrptr named) {
    if (named == nullptr) return {};
    if (t.has_block) return {t.block.rows * t.block.cols, static_cast<int32_t>(t.block.rows)};
    const arrnode* a = array_itself(named);
    if (!t.diagonal) return {a->sizearr, a->rows};
    int64_t n = columns_of(a) < a->rows ? columns_of(a) : a->rows;
    return {n, static_cast<int32_t>(n)};
}

/// Whatever of an assignment takes long is done on the right side alone, with safe points: statements of a
/// command level may cancel the target or change its shape meanwhile. True if something has been done, so
/// that the target must be looked up again.
static bool prepare_right_side(const ArrTarget& t, arrptr named, ArrOperand& v) {
    constexpr int64_t k_many = 1000;
    const arrnode* a = named == nullptr ? nullptr : array_itself(named);
    if (is_scalar(v)) {
        if (a == nullptr || a->spar != nullptr || a->ring != modulus) return false;
        arr_descr shape = shape_of_target(t, named);
        if (shape.arrsize <= k_many) return false;
        spread_scalar(v, shape);
        return true;
    }
    if (!v.arr_free) {
        make_private(v);
        return true;
    }
    if (a == nullptr || a->spar == nullptr || is_sparse(v) || t.diagonal || t.has_block) return false;
    contract_to_sparse(v);
    return true;
}

/// The right side, ":=" having been read over, and the assignment.
static void arr_asstat(ArrReader& r, ArrTarget& t, ArrOperand& v) {
    arrptr named = nullptr;
    if (!record_of(t, &named)) return;
    r.known = shape_of_target(t, named);
    r.want_sparse = named != nullptr && array_itself(named)->spar != nullptr;
    arr_expre(r, v);
    do {
        if (!record_of(t, &named)) return;
    } while (prepare_right_side(t, named, v));
    if (t.diagonal)
        assign_diagonal(t.name, named, v);
    else if (!t.has_block)
        assign_whole(t.name, named, v);
    else if (array_itself(named)->spar != nullptr)
        statement_error(Err::sparse_block, tok_text(t.name));
    else if (!refuse_array_of_other_ring(array_itself(named), t.name))
        assign_block(array_itself(named), t.block, v);
}

/// True if the name or place in brackets is followed by ":="; the ":" and "=" are read over then.
static bool read_assignment_sign(ArrReader& r) {
    if (!at_char(':') || !sign_follows(r.inf, r.flag, '=')) return false;
    next_token(r.inf, r.flag);
    next_token(r.inf, r.flag);
    return true;
}

/// The ranges of a block of a dense array, "[" being the current token.
static bool read_target_block(ArrReader& r, arrptr named, ArrTarget* t) {
    const arrnode* a = array_itself(named);
    if (a->spar != nullptr) return statement_error(Err::sparse_block, tok_text(t->name));
    t->has_block = true;
    return read_block(r, {a->sizearr, a->rows}, &t->block);
}

/// A reference to an array behind a "[", up to and over its "]". False after an error.
static bool left_side(ArrReader& r, ArrTarget* t) {
    arrptr named = nullptr;
    if (at_char('%')) {
        named = read_array_place(r.inf, r.flag);
        if (named == nullptr) return false;
        t->name = named->name;
    } else {
        t->name = token;
        if (number_polys > 0 && its_a_polyname(token) != 0) return statement_error(Err::polyvar_as_name);
        fastestlookup(t->name, &named);
        next_token(r.inf, r.flag);
    }
    note_record(t, named);
    if (at_char('[')) {
        if (named == nullptr) return statement_error(Err::undefined_array, tok_text(t->name));
        if (!read_target_block(r, named, t)) return false;
    }
    return expect(r.inf, r.flag, ']', Err::close_bracket_expected);
}

/// The target as the first operand of an expression.
static bool load_target(ArrTarget& t, ArrOperand& v) {
    arrptr named = nullptr;
    if (t.stamp == 0) return statement_error(Err::undefined_array, tok_text(t.name));
    if (!record_of(t, &named) || refuse_array_of_other_ring(array_itself(named), t.name)) return false;
    borrow_array(v, array_itself(named));
    if (t.has_block) cut_block(v, t.block);
    return true;
}

// ---- statements ----------------------------------------------------------------------------------------

void fill_syst_array(const nameptr* flag, ArrOperand& v, quolyptr n) {
    if (is_scalar(v)) {
        *n = v.n;
        v.n = nullptr;
        return;
    }
    make_private(v);
    if (syst != nullptr && syst->sizearr > 0 && syst->ring == modulus) release_elements(syst);
    arrptr s = clear_syst();
    s->rows = v.facts.rows;
    s->sizearr = v.facts.arrsize;
    s->spar = v.spar;
    v.spar = nullptr;
    for (int64_t k = 0; s->spar == nullptr && k < s->sizearr; k++) {
        syst_stash[k] = elements_of(v)[k];
        elements_of(v)[k] = nullptr;
    }
    if (s->spar == nullptr) s->stop = static_cast<int32_t>(s->sizearr) - 1;
    v.facts = {};
    if (*flag == nullptr) syst_dump = 1;
}

void value_at_matrix(FILE* inf, quolyptr n, nameptr* flag) {
    ArrReader r = {inf, flag, {}, false};
    ArrOperand v;
    next_token(inf, flag);
    if (begin_operand(v)) {
        arr_fact(r, v);
        quoly_at_matrix(v, *n);
        if (syst_dump && *flag == nullptr)
            fputs("Warning. System array was changed before it could be displayed.\n", stdout);
        free_quoly(n);
        fill_syst_array(flag, v, n);
        end_operand(v);
    }
    set_zero(n);
}

/// An assignment to a constructor or to the system array.
static void refuse_assignment(ArrReader& r, ArrOperand& v, Err code) {
    if (at_char(':') && sign_follows(r.inf, r.flag, '=')) fail_operand(v, code);
}

/// Behind the "[" that begins a statement.
static void bracket_statement(ArrReader& r, ArrOperand& v, quolyptr n) {
    bool reference = at_char('%') || is_lower(tok_char(token));
    if (!reference) {
        bool system = at_char('<') && sign_follows(r.inf, r.flag, ']');
        bracket_body(r, v);
        expect(r.inf, r.flag, ']', Err::close_bracket_expected);
        refuse_assignment(r, v, system ? Err::system_array_not_deleted : Err::array_left_side);
        half_arr_expre(r, v);
        fill_syst_array(r.flag, v, n);
        return;
    }
    ArrTarget t = {};
    if (!left_side(r, &t)) return;
    if (read_assignment_sign(r)) {
        arr_asstat(r, t, v);
    } else if (load_target(t, v)) {
        half_arr_expre(r, v);
        fill_syst_array(r.flag, v, n);
    }
}

/// Behind the sign or name Diag that begins a statement: an assignment to a diagonal, or an expression.
static void diagonal_statement(ArrReader& r, ArrOperand& v, quolyptr n) {
    ArrTarget t = {};
    bool reference = at_char('[');
    if (reference) {
        next_token(r.inf, r.flag);
        reference = is_lower(tok_char(token)) || at_char('%');
        if (!reference) {
            bracket_body(r, v);
            expect(r.inf, r.flag, ']', Err::close_bracket_expected);
            half_arr_fact(r, v);
        } else if (!left_side(r, &t)) {
            return;
        } else if (read_assignment_sign(r)) {
            t.diagonal = true;
            if (t.has_block)
                error(Err::array_left_side);
            else
                arr_asstat(r, t, v);
            return;
        } else if (load_target(t, v)) {
            half_arr_fact(r, v);
        } else {
            return;
        }
    } else {
        arr_fact(r, v);
    }
    extract_diagonal(v);
    half_arr_expre(r, v);
    fill_syst_array(r.flag, v, n);
}

bool begins_array_statement() {
    return tok_is(token, "Trans") || tok_is(token, "Diag") || tok_is(token, "Adjoint") ||
           tok_is(token, "Altmult") || tok_is(token, "Altpower") || tok_is(token, "MPowermod");
}

void arr_parse(FILE* inf, quolyptr n, nameptr* flag) {
    ArrReader r = {inf, flag, {}, false};
    ArrOperand v;
    if (begin_operand(v)) {
        if (at_char('[')) {
            next_token(inf, flag);
            bracket_statement(r, v, n);
        } else if (at_char('~') || tok_is(token, "Diag")) {
            next_token(inf, flag);
            diagonal_statement(r, v, n);
        } else {
            arr_expre(r, v);
            fill_syst_array(flag, v, n);
        }
        end_operand(v);
    }
    if (*n == nullptr) quoly_set(0, n);
}

// ---- the array of arrays -------------------------------------------------------------------------------

/// The right side of `%[i] := `: [x] or %[j].
static void assign_place(FILE* inf, nameptr* flag, int64_t i) {
    arrptr a = nullptr;
    if (at_char('%')) {
        a = read_array_place(inf, flag);
        if (a == nullptr) return;
    } else {
        if (!expect(inf, flag, '[', Err::array_expected)) return;
        tokentipe name = token;
        if (at_char('<')) {
            error(Err::system_array_not_deleted);
            return;
        }
        if (at_char('%')) {
            a = read_array_place(inf, flag);
            if (a == nullptr) return;
        } else {
            if (!array_seek(name, &a)) return;
            next_token(inf, flag);
        }
        if (!expect(inf, flag, ']', Err::close_bracket_expected)) return;
    }
    set_arr_arr(i, array_itself(a));
}

/// `%[i][r,c]`, an expression or an assignment, the "[" of the element being the current token.
static void element_statement(FILE* inf, nameptr* flag, arrptr a, quolyptr n) {
    quolyptr qp = n;
    element_at_place(inf, flag, a, &qp, n);
    rest_of_statement(inf, &qp, n, flag);
    if (qp != n && qp != nullptr && *qp != nullptr) copy_value(qp, n);
}

void arr_arr_state(FILE* inf, quolyptr n, nameptr* flag) {
    next_token(inf, flag);
    int64_t i;
    if (!expect(inf, flag, '[', Err::array_of_arrays_bracket) ||
        !read_plain_integer(inf, flag, Err::array_of_arrays_index, &i) ||
        !expect(inf, flag, ']', Err::array_of_arrays_close)) {
        quoly_set(0, n);
        return;
    }
    ArrReader r = {inf, flag, {}, false};
    if (read_assignment_sign(r)) {
        assign_place(inf, flag, i);
    } else {
        arrptr a = get_arr_arr(i);
        ArrOperand v;
        if (a == nullptr) {
            error(Err::array_of_arrays_empty);
        } else if (at_char('[')) {
            element_statement(inf, flag, a, n);
        } else if (begin_operand(v)) {
            named_array(r, v, a, a->name);
            half_arr_expre(r, v);
            fill_syst_array(flag, v, n);
            end_operand(v);
        }
    }
    if (*n == nullptr) quoly_set(0, n);
}
}  // namespace tolvex
