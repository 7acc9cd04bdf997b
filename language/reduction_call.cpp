#include "language/reduction_call.h"

#include "language/array_operand.h"
#include "language/array_statement.h"
#include "language/builtin_arrays.h"
#include "poly/poly_vars.h"
#include "storage/memory.h"

#include <cstring>
namespace tolvex {
namespace {
/// A slot of the call; an empty name: it is left empty.
struct ResultName {
    tokentipe name;
};
struct ReductionCall {
    const ReductionForm* form;
    ArrayArgument array;
    ResultName results[k_most_reduction_slots];
    ReductionOptions options;
    Value number;
    Reduction r;
};
bool is_named(const ResultName& x) { return tok_char(x.name) != 0; }

bool refuse(Err code, const char* symbol = nullptr) {
    error(code, symbol);
    return false;
}
}  // namespace

// ---- reading -------------------------------------------------------------------------------------------

/// True if the name leads to the array `a` itself, or is the same as the other one.
static bool is_taken(tokentipe& name, const ReductionCall& c, int32_t before) {
    arrptr here = nullptr;
    fastestlookup(name, &here);
    if (here != nullptr && array_itself(here) == c.array.a) return true;
    for (int32_t k = 0; k < before; k++) {
        if (!is_named(c.results[k])) continue;
        tokentipe other = c.results[k].name;
        arrptr there = nullptr;
        fastestlookup(other, &there);
        bool same = tok_is_text(name, tok_text(other)) ||
                    (here != nullptr && there != nullptr && array_itself(here) == array_itself(there));
        if (same) return true;
    }
    return false;
}

static bool read_result_name(BuiltinCall& call, ReductionCall& c, int32_t k) {
    tokentipe name;
    if (!read_array_name(call, &name, Err::array_expected)) return false;
    if (is_taken(name, c, k)) return refuse(Err::array_expected, tok_text(name));
    c.results[k].name = name;
    return true;
}

/// What stands behind the slots: a word, or a value that is held until the end of the call.
static void read_trailing_number(BuiltinCall& call, ReductionCall& c) {
    if (c.form->number == TrailingNumber::count) {
        c.options.count = read_integer(call);
        return;
    }
    free_quoly(&c.number.own);
    old_expre(call.inf, &c.number.own, call.flag);
    c.options.number = c.number.own;
}

static bool read_slots(BuiltinCall& call, ReductionCall& c) {
    int32_t most = c.form->slots + (c.form->number != TrailingNumber::none ? 1 : 0);
    for (int32_t k = 0; at_char(','); k++) {
        if (k == most) return refuse(Err::call_close_paren);
        next_token(call.inf, call.flag);
        if (at_char(',') || at_char(')')) continue;
        if (k == c.form->slots && at_char('[')) return refuse(Err::call_close_paren);
        if (k < c.form->slots) {
            if (!read_result_name(call, c, k)) return false;
        } else {
            read_trailing_number(call, c);
        }
    }
    return expect(call.inf, call.flag, ')', Err::close_paren_expected);
}

static bool read_reduction_call(BuiltinCall& call, ReductionCall& c) {
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '(', Err::builtin_open_paren)) return false;
    c.options.consume = at_char('*');
    if (c.options.consume) next_token(call.inf, call.flag);
    if (!read_command_1(call, &c.array)) return false;
    if (c.array.block) return refuse(Err::sub_array_not_allowed);
    return read_slots(call, c);
}

// ---- the copy ------------------------------------------------------------------------------------------

static void drop_call(void* what) { drop_reduction(static_cast<Reduction*>(what)); }

/// The elements of the operand, a private matrix, move to the record.
static void take_matrix(Reduction* r, ArrOperand& v) {
    LineMatrix& m = r->m;
    m.rows = v.facts.rows;
    m.cols = static_cast<int32_t>(columns_of(v));
    if (is_sparse(v)) {
        m.spar = v.spar;
        v.spar = nullptr;
    } else {
        auto count = static_cast<size_t>(v.facts.arrsize);
        m.at = static_cast<quoly*>(checked_malloc(count * sizeof(quoly)));
        memcpy(static_cast<void*>(m.at), static_cast<const void*>(elements_of(v)), count * sizeof(quoly));
    }
    v.facts = {};
    v.arr_free = 0;
}

/// False after error 28 or 88.
static bool copy_array(ReductionCall& c) {
    ArrOperand v;
    if (!is_still_there(c.array) || !begin_operand(v)) return false;
    borrow_array(v, c.array.a);
    make_private(v);
    take_matrix(&c.r, v);
    end_operand(v);
    return true;
}

static LineMatrix* matrix_of_slot(Reduction& r, ReductionSlot slot) {
    auto k = static_cast<int32_t>(slot);
    return k < k_aux_matrices ? &r.aux[k] : &r.extra[k - k_aux_matrices];
}

static void begin_matrices(ReductionCall& c) {
    bool want[k_aux_matrices] = {};
    for (int32_t k = 0; k < c.form->slots; k++)
        if (is_named(c.results[k]) && c.form->slot[k] < ReductionSlot::first_extra)
            want[static_cast<int32_t>(c.form->slot[k])] = true;
    begin_reduction(&c.r, want);
}

// ---- storing -------------------------------------------------------------------------------------------

/// True if the array takes a matrix of that shape; else the error that its assignment would raise.
static bool can_take(tokentipe& name, const LineMatrix& m) {
    arrptr named = nullptr;
    fastestlookup(name, &named);
    if (named == nullptr)
        return m.spar != nullptr || !oversize(m.rows, m.cols) || refuse(Err::array_too_large);
    const arrnode* a = array_itself(named);
    bool same_kind = a->spar != nullptr || m.spar == nullptr;
    bool stays = a->rows == m.rows && columns_of(a) == m.cols && a->ring == modulus && same_kind;
    if (stays) return true;
    if (is_alias(named)) return refuse(Err::parameter_shape, tok_text(name));
    if (a->aliases > 0) return refuse(Err::array_has_parameter, tok_text(name));
    return a->spar != nullptr || m.spar != nullptr || store_has_room(a, m.rows, m.cols);
}

/// The matrix moves to the array `named`, nil: a new one.
static bool store_matrix(tokentipe& name, arrptr named, LineMatrix* m) {
    ArrOperand v;
    if (!begin_operand(v)) return false;
    if (m->spar != nullptr) {
        sparseptr chain = m->spar;
        m->spar = nullptr;
        make_sparse_operand(v, m->rows, m->cols, chain);
    } else if (make_dense(v, m->rows, m->cols)) {
        for (int64_t k = 0; k < v.facts.arrsize; k++) {
            elements_of(v)[k] = m->at[k];
            m->at[k] = nullptr;
        }
    }
    bool good = assign_whole(name, named, v);
    end_operand(v);
    return good;
}

static void store_results(ReductionCall& c) {
    settle_reduction(&c.r);
    if (!c.form->keeps_array && !is_still_there(c.array)) return;
    for (int32_t k = 0; k < c.form->slots; k++) {
        const LineMatrix* m = matrix_of_slot(c.r, c.form->slot[k]);
        if (is_named(c.results[k]) && is_present(*m) && !can_take(c.results[k].name, *m)) return;
    }
    if (!c.form->keeps_array && !store_matrix(c.array.name, c.array.named, &c.r.m)) return;
    for (int32_t k = 0; k < c.form->slots; k++) {
        LineMatrix* m = matrix_of_slot(c.r, c.form->slot[k]);
        if (!is_named(c.results[k]) || !is_present(*m)) continue;
        arrptr named = nullptr;
        fastestlookup(c.results[k].name, &named);
        if (!store_matrix(c.results[k].name, named, m)) return;
    }
}

// ---- the call ------------------------------------------------------------------------------------------

static void reduce_and_store(BuiltinCall& call, ReductionCall& c) {
    Unfinished u;
    begin_unfinished(u, drop_call, &c.r);
    if (copy_array(c)) {
        begin_matrices(c);
        c.form->reduce(&c.r, &c.options);
        if (!c.r.failed) store_results(c);
    }
    int32_t rank = c.r.failed ? 0 : c.r.rank;
    if (c.r.value != nullptr && !c.r.failed) {
        free_quoly(call.n);
        *call.n = c.r.value;
        c.r.value = nullptr;
    } else {
        return_word(call, rank);
    }
    end_unfinished(u);
    drop_reduction(&c.r);
}

void reduction_call(BuiltinCall& call, const ReductionForm& form) {
    ReductionCall c = {};
    c.form = &form;
    c.options = {INT32_MAX, nullptr, false};
    c.number.hold.at = c.number.hold.own = &c.number.own;
    quoly_set(0, call.n);
    hold(&c.number);
    if (read_reduction_call(call, c)) {
        if (form.integers_only && modularmode)
            error(Err::not_in_word_mode);
        else
            reduce_and_store(call, c);
    }
    drop_data(&c.number);
}
}  // namespace tolvex
