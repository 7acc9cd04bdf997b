// Built-in functions of whole arrays: Array, Sparse, Cols, Deg[a], Sumall, Trace, and array expressions as
// factors.

#include "language/array_elements.h"
#include "language/array_ops.h"
#include "language/array_statement.h"
#include "language/builtin_table.h"
#include "language/ports.h"
#include "numbers/num_assign.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "storage/interrupt.h"
namespace tolvex {
// ---- creation ------------------------------------------------------------------------------------------

/// x[r, c] or x[n], then perhaps Sparse. False after an error.
static bool create_one(BuiltinCall& call) {
    tokentipe name = token;
    Err fault = !is_lower(tok_char(name))                       ? Err::array_expected
                : number_polys > 0 && its_a_polyname(name) != 0 ? Err::polyvar_as_name
                                                                : Err{};
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '[', Err::builtin_open_bracket)) return false;
    Subscripts s;
    if (!evalcoords(call.inf, call.flag, ']', ',', &s)) return false;
    if (!s.two) s.j = 1;
    if (!tok_is(token, "Sparse")) return insertarr(name, s.i, s.j, !s.two) != nullptr;
    next_token(call.inf, call.flag);
    return sparse_create(name, s.i, s.j, !s.two, nullptr) != nullptr;
}

/// Array x[r, c], y[n] Sparse, ...
void builtin_Array(BuiltinCall& call) {
    do next_token(call.inf, call.flag);
    while (create_one(call) && at_char(','));
    quoly_set(0, call.n);
}

/// The array behind a "[", up to and over the "]"; nil after an error.
static arrptr named_argument(BuiltinCall& call, Err close) {
    arrptr a = nullptr;
    if (at_char('<')) {
        error(Err::system_array_not_deleted);
        return nullptr;
    }
    if (at_char('%')) {
        a = read_array_place(call.inf, call.flag);
    } else {
        tokentipe name = token;
        if (array_seek(name, &a)) next_token(call.inf, call.flag);
    }
    if (a != nullptr && !expect(call.inf, call.flag, ']', close)) return nullptr;
    return a;
}

/// Sparse[x], Sparse([x]): the array becomes sparse.
void builtin_Sparse(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    bool open = at_char('(');
    if (open) next_token(call.inf, call.flag);
    quoly_set(0, call.n);
    if (!expect(call.inf, call.flag, '[', Err::builtin_open_bracket)) return;
    arrptr named = named_argument(call, Err::close_bracket_expected);
    if (named == nullptr || (open && !expect(call.inf, call.flag, ')', Err::close_paren_expected))) return;
    arrptr a = array_itself(named);
    if (a->spar != nullptr || refuse_array_of_other_ring(a, named->name)) return;
    if (is_alias(named)) {
        error(Err::array_parameter_fixed, tok_text(named->name));
        return;
    }
    if (a->aliases > 0) warning(Err::sparse_while_parameter, tok_text(a->name));
    convert_to_sparse(a);
}

// ---- shape ---------------------------------------------------------------------------------------------

static void return_size(BuiltinCall& call, int64_t size) {
    free_quoly(call.n);
    init_quoly_node(call.n);
    setvalue_any(modularmode ? residue_of_int(size) : size, (*call.n)->ncoef);
}

void degree_of_array(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    const arrnode* a = named_argument(call, Err::deg_close);
    return_size(call, a == nullptr ? 0 : array_itself(const_cast<arrptr>(a))->sizearr);
}

/// Cols[a]: the number of columns.
void builtin_Cols(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    arrptr a = nullptr;
    if (expect(call.inf, call.flag, '[', Err::cols_bracket)) a = named_argument(call, Err::cols_close);
    return_size(call, a == nullptr ? 0 : columns_of(array_itself(a)));
}

// ---- values --------------------------------------------------------------------------------------------

/// One factor as an operand. False after error 88.
static bool read_operand(BuiltinCall& call, ArrOperand& v) {
    next_token(call.inf, call.flag);
    if (!begin_operand(v)) return false;
    ArrReader r = {call.inf, call.flag, {}, false};
    arr_fact(r, v);
    return true;
}

/// Above an interrupt the value is 0.
static void refuse_at_interrupt(BuiltinCall& call) {
    quolyptr at = call.n;
    refused_at_interrupt("matrix functions", &at, call.n);
}

/// Sumall[m]: the sum of all elements.
void builtin_Sumall(BuiltinCall& call) {
    quoly_set(0, call.n);
    ArrOperand v;
    if (read_operand(call, v)) {
        if (is_scalar(v)) error(Err::empty_array);
        if (is_sparse(v)) {
            SparseWalk w = walk_sparse(v.spar, v.facts.rows);
            while (colm_ptrptr t = next_row(w)) {
                poll_interrupt();
                for (const colnode* p = *t; p != nullptr; p = p->next) fast_quoly_add(call.n, p->val);
            }
        }
        for (int64_t k = 0; !is_sparse(v) && k < v.facts.arrsize; k++) {
            poll_every<1024>(k);
            fast_quoly_add(call.n, elements_of(v)[k]);
        }
        end_operand(v);
    }
    refuse_at_interrupt(call);
}

/// Trace[m]: the sum of the diagonal of a square matrix.
void builtin_Trace(BuiltinCall& call) {
    quoly_set(0, call.n);
    ArrOperand v;
    if (read_operand(call, v)) {
        bool square = !is_scalar(v) && is_square(v);
        if (!square) error(Err::trace_not_square);
        for (int64_t i = 0; square && i < v.facts.rows; i++) {
            auto k = static_cast<int32_t>(i) + 1;
            fast_quoly_add(call.n,
                           is_sparse(v) ? spar_retrieve(v.spar, k, k) : elements_of(v)[i + i * v.facts.rows]);
        }
        end_operand(v);
    }
    refuse_at_interrupt(call);
}

/// Trans, Diag and their kin in the place of a factor: the matrix goes to the system array, the value is 0.
void builtin_ArrayExpression(BuiltinCall& call) { arr_parse(call.inf, call.n, call.flag); }
}  // namespace tolvex
