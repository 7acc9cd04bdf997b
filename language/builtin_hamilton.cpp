// Hamilton: paths that visit every vertex of a directed graph once.

#include "language/array_expre.h"
#include "language/builtin_table.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "matrix/hamilton.h"
#include "storage/scratch.h"
namespace tolvex {
/// Behind the matrix: a limit, or nothing. False after an error.
static bool read_limit(BuiltinCall& call, int32_t* limit) {
    if (!at_char(',')) return true;
    next_token(call.inf, call.flag);
    if (!at_char(')')) *limit = maxx(read_integer(call), 1);
    if (!at_char(',')) return true;
    error(Err::call_close_paren);
    return false;
}

/// The edges of the graph, in scratch memory.
static const bool* edges_of(const ArrOperand& v) {
    int32_t n = v.facts.rows;
    auto* edge = scratch_array<bool>(v.facts.arrsize);
    for (int32_t i = 0; i < n; i++)
        for (int32_t j = 0; j < n; j++) edge[i * n + j] = quoly_equal(elements_of(v)[i + j * n], quol_num_1);
    return edge;
}

static void search(BuiltinCall& call, const ArrOperand& v, int32_t limit) {
    if (path_search_running) {
        error(Err::expansion_running);
        return;
    }
    if (interrupt_levels > 0) return;  // its value would be thrown away
    path_search_running = 1;
    Unfinished u;  // a statement that is given up ends the search
    begin_unfinished(
        u, [](void* running) { *static_cast<boolean*>(running) = 0; }, &path_search_running);
    ScratchMark mark = scratch_mark();
    bool found = hamilton_path_driver(edges_of(v), v.facts.rows, limit);
    scratch_release(mark);
    end_unfinished(u);
    path_search_running = 0;
    free_quoly(call.n);
    quoly_set(found, call.n);
}

/// Hamilton[g], Hamilton([g], limit): 1 if there is such a path.
void builtin_Hamilton(BuiltinCall& call) {
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    bool open = at_char('(');
    if (open) next_token(call.inf, call.flag);
    ArrOperand v;
    if (!begin_operand(v)) return;
    ArrReader r = {call.inf, call.flag, {}, false};
    open ? arr_expre(r, v) : arr_fact(r, v);
    int32_t limit = INT32_MAX;
    if (!open || (read_limit(call, &limit) && expect(call.inf, call.flag, ')', Err::close_paren_expected))) {
        if (is_scalar(v) || is_sparse(v) || !is_square(v) || v.facts.rows > k_most_vertices)
            error(Err::graph_matrix);
        else
            search(call, v, limit);
    }
    end_operand(v);
    quolyptr at = call.n;
    refused_at_interrupt("determinant", &at, call.n);
}
}  // namespace tolvex
