// Chpoly, Minpoly: characteristic and minimal polynomials.

#include "language/array_expre.h"
#include "language/builtin_table.h"
#include "language/language_modes.h"
#include "language/matrix_argument.h"
#include "matrix/charpoly.h"
#include "matrix/matrix_modes.h"
#include "matrix/minpoly.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_convert.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <cstdio>
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

/// In scratch memory.
static MatrixEntries entries_of(const ArrOperand& v) {
    return is_sparse(v) ? sparse_entry_list(v.spar, v.facts.rows)
                        : dense_entries(elements_of(v), v.facts.rows);
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
    ScratchMark mark = scratch_mark();
    characteristic_polynomial(entries_of(v), level, call.n);
    scratch_release(mark);
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
    else if (level > 0 && close_matrix_argument(call, open) && interrupt_levels == 0)
        characteristic_of(call, v, level);
    end_operand(v);
    finish_matrix_value(call);
}

// ---- Minpoly -------------------------------------------------------------------------------------------

/// What stands behind the matrix; the "," is the current token. False after an error.
static bool read_minpoly_arguments(BuiltinCall& call, MinpolyRequest* request) {
    constexpr int32_t k_most_samples = 4;
    next_token(call.inf, call.flag);
    if (!at_char(',')) {
        int32_t k = read_integer(call);
        if (k < 1 || k >= k_most_samples) {
            error(Err::minpoly_samples);
            return false;
        }
        request->samples = k + 1;
    }
    if (!at_char(',')) return true;
    next_token(call.inf, call.flag);
    boolean modular;
    check_modular(&modular);
    Value bound;
    get_the_data(call, &bound);
    const quolynode* q = value_of(&bound);
    bool number = q->numb;
    if (number && !lintmode) request->bound_bits = log_of_number(q->ncoef);
    drop_data(&bound);
    restore_modular(modular);
    if (!number) error(Err::number_expected);
    return number;
}

static Err minpoly_fault(const ArrOperand& v) {
    constexpr int32_t k_least_rows = 8;
    if (!is_square(v)) return Err::minpoly_not_square;
    if (v.facts.rows < k_least_rows) return Err::minpoly_rows;
    if (modularmode && !finf && !mod_is_prime) return Err::not_in_word_mode;
    return number_polys == 0 ? Err::no_polyvars : Err{};
}

static void minimal_of(BuiltinCall& call, const ArrOperand& v, const MinpolyRequest& request) {
    constexpr int32_t k_shown_rows = 1000;
    ScratchMark mark = scratch_mark();
    MatrixEntries m = entries_of(v);
    bool numbers = true;
    for (int64_t k = 0; k < entry_count(m); k++) numbers = numbers && m.value[k]->numb;
    bool found = false;
    if (numbers) {
        bool shown = verbose && m.places.n > k_shown_rows;
        if (shown) dumpitt("Modular Minpoly. counting to ", 2 * int64_t{m.places.n} + 1, 1, 1, 0);
        free_quoly(call.n);
        found = minimal_polynomial(m, request, call.n);
        if (shown) decr_dumpitt(1, 1, verbose);
    }
    scratch_release(mark);
    if (found) return obey_modding(call.n);
    if (*call.n == nullptr) quoly_set(0, call.n);
    if (numbers)
        fputs(" *** Warning: Minpoly failed. Integers in answer are too large\n", stdout);
    else
        error(Err::integers_needed);
}

/// Minpoly([a]), Minpoly([a], k), Minpoly([a], k, bound): the minimal polynomial.
void builtin_Minpoly(BuiltinCall& call) {
    quoly_set(0, call.n);
    ArrOperand v;
    bool open = false;
    if (!read_matrix_argument(call, v, &open)) return;
    MinpolyRequest request = {1, 2, -1};
    bool good = !open || !at_char(',') || read_minpoly_arguments(call, &request);
    if (good && close_matrix_argument(call, open)) {
        Err fault = minpoly_fault(v);
        if (fault != Err{})
            error(fault);
        else if (interrupt_levels == 0)
            minimal_of(call, v, request);
    }
    end_operand(v);
    finish_matrix_value(call);
}
}  // namespace tolvex
