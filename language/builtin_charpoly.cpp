// Chpoly: characteristic polynomials.

#include "language/array_expre.h"
#include "language/builtin_table.h"
#include "language/matrix_argument.h"
#include "matrix/charpoly.h"
#include "matrix/matrix_modes.h"
#include "numbers/primes.h"
#include "quoly/quoly_convert.h"
#include "storage/progress.h"
namespace tolvex {
// ---- the matrix of an argument -------------------------------------------------------------------------

bool read_matrix_argument(BuiltinCall& call, ArrOperand& v, bool* open) {
    next_token(call.inf, call.flag);
    *open = at_char('(');
    if (*open) next_token(call.inf, call.flag);
    if (!begin_operand(v)) return false;
    ArrReader r = {call.inf, call.flag, {}, false};
    if (*open)
        arr_expre(r, v);
    else
        arr_fact(r, v);
    if (!is_scalar(v)) return true;
    end_operand(v);
    error(Err::builtin_open_bracket);
    return false;
}

bool close_matrix_argument(BuiltinCall& call, bool open) {
    return !open || expect(call.inf, call.flag, ')', Err::close_paren_expected);
}

void finish_matrix_value(BuiltinCall& call) {
    quolyptr at = call.n;
    refused_at_interrupt("matrix functions", &at, call.n);
}

// ---- Chpoly --------------------------------------------------------------------------------------------

/// The quotients by 1..n of the recurrence of sparse matrices exist.
static bool units_up_to(int32_t n) {
    if (!modularmode) return true;
    if (finf) return n < 2;
    int64_t factor = long_is_prime(modulus);
    return n < (factor == 1 ? modulus : factor);
}

/// The values of the variables that are modded out obey their polynomials.
static void obey_modding(quolyptr n) {
    if (pseudo_polynames != nullptr) quoly_mod_out(n);
}

static void show_head(const ArrOperand& v) {
    constexpr int32_t k_small = 3, k_large = 1000;
    int32_t n = v.facts.rows;
    if (is_sparse(v))
        dumpitt("Counting to ", n, 1, 1, 0);
    else if (n > k_small && n <= k_large)
        dumpitt("Lagrange interpolation, degree ", n, 1, 1, 0);
    else
        return;
    decr_dumpitt(1, 1, verbose);
}

static void characteristic_of(BuiltinCall& call, ArrOperand& v, int32_t level) {
    int32_t n = v.facts.rows;
    if (is_sparse(v) && !units_up_to(n)) {
        error(Err::rows_below_modulus);
        return;
    }
    if (verbose) show_head(v);
    if (is_sparse(v))
        sparse_chpoly(v.spar, n, level, call.n);
    else
        characteristic_polynomial(elements_of(v), n, level, call.n);
    obey_modding(call.n);
}

/// Chpoly([a]), Chpoly([a], x): det(x I - [a]).
void builtin_Chpoly(BuiltinCall& call) {
    quoly_set(0, call.n);
    ArrOperand v;
    bool open = false;
    if (!read_matrix_argument(call, v, &open)) return;
    Err fault = number_polys == 0 ? Err::no_polyvars : !is_square(v) ? Err::matrix_not_square : Err{};
    int32_t level = 1;
    if (fault == Err{} && open && at_char(',')) {
        next_token(call.inf, call.flag);
        level = read_level(call, Err::variable_not_declared);
    }
    if (fault != Err{})
        error(fault);
    else if (level > 0 && close_matrix_argument(call, open))
        characteristic_of(call, v, level);
    end_operand(v);
    finish_matrix_value(call);
}
}  // namespace tolvex
