// Det and its relatives: the determinant, and the forms that count or find elements.

#include "language/array_ops.h"
#include "language/builtin_arrays.h"
#include "language/builtin_table.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "matrix/determinant.h"
#include "matrix/matrix_modes.h"
#include "matrix/sparse_determinant.h"
#include "numbers/num_assign.h"
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <cstdio>
#include <numeric>
namespace tolvex {
namespace {
constexpr int32_t k_not_given = -1;

/// What stands behind the matrix of Det.
struct DetArguments {
    Value fct;  // a divisor of the determinant of its own, held; own nil: none
    int32_t degree, degree2, power;
    int32_t numprimes;  // of SDet, 0: all that are needed
    bool bad;           // an error came back
};
}  // namespace

// ---- arguments of the determinant ----------------------------------------------------------------------

static void refuse(DetArguments* args, Err code) {
    args->bad = true;
    error(code);
}

/// A number or a polynomial other than 0, in the ring in force.
static void read_divisor(BuiltinCall& call, DetArguments* args) {
    boolean modular;
    check_modular(&modular);
    old_expre(call.inf, &args->fct.own, call.flag);
    restore_modular(modular);
    if (modular) quoly_reduce_words(&args->fct.own);
    const quolynode* q = args->fct.own;
    bool negative = modularmode && !q->numb && has_negative_exponent(q->numer);
    if (!negative && q->denom == nullptr && !quoly_iszero(q)) return;
    free_quoly(&args->fct.own);
    if (negative)
        refuse(args, Err::negative_powers);
    else
        warning(k_warn_det_factor, nullptr);
}

static void read_degree(BuiltinCall& call, DetArguments* args) {
    args->degree = read_integer(call);
    if (args->degree >= 1) return;
    args->degree = k_not_given;
    warning(k_warn_det_degree, nullptr);
}

/// Half of a good even power counts, so that 2 has no effect.
static void read_power(BuiltinCall& call, DetArguments* args) {
    args->power = read_integer(call);
    if (args->power >= -1 && args->power <= 1) return refuse(args, Err::det_power);
    if (args->power < 0 || args->power % 2 != 0) return;
    if ((args->power & (args->power - 1)) != 0) {
        warning(k_warn_det_even_power, nullptr);
        args->power = k_not_given;
    } else if (args->power > 2) {
        args->power /= 2;
    } else {
        if (verbose) printf(" Warning. Setting power = 2 has no effect.\n");
        args->power = k_not_given;
    }
}

/// Up to four further arguments, each of which may be missing between its commas; integers in them are not
/// reduced.
static void read_det_arguments(BuiltinCall& call, DetArguments* args) {
    constexpr int32_t k_most = 4;
    for (int32_t k = 0; at_char(',') && !args->bad; k++) {
        if (k == k_most) return refuse(args, Err::call_close_paren);
        next_token(call.inf, call.flag);
        if (at_char(',') || at_char(')')) continue;
        if (k == 0) {
            read_divisor(call, args);
        } else if (k == 1) {
            read_degree(call, args);
        } else if (k == 2) {
            args->degree2 = read_integer(call);
            if (verbose && args->degree2 < 2)
                printf(" Warning. specified second degree, %d, is unrealistic.\n", args->degree2);
        } else {
            read_power(call, args);
        }
    }
}

// ---- the determinant -----------------------------------------------------------------------------------

/// The divisor as a polynomial of its own; nil: none.
static poly divisor_of(const DetArguments& args) {
    const quolynode* q = args.fct.own;
    poly fct = nullptr;
    if (q == nullptr) return nullptr;
    if (!q->numb) {
        poly_assign(q->numer, &fct);
        return fct;
    }
    newpoly(&fct);
    init_poly_node(fct);
    num_assign(q->ncoef, fct->ncoef);
    return fct;
}

/// A power is of use over the integers and over a prime modulus that it suits; else a warning.
static void check_power(int32_t power) {
    if (power >= -1 && power <= 1) return;
    int32_t size = power < 0 ? -power : power;
    if (!lintmode) return;
    if (!modularmode)
        warning(k_warn_det_power_ring, nullptr);
    else if (size % 2 != 0 && std::gcd(size, modulus - 1) != 1)
        warning(k_warn_det_odd_power, nullptr);
    else if (size % 2 == 0 && (modulus % 4 != 3 || (size & (size - 1)) != 0))
        warning(k_warn_det_even_power, nullptr);
}

/// After a jump no expansion by minors is under way.
static void forget_expansion(void*) { sp_total_cnt = 0; }

static void determinant_of_sparse(ArrOperand& v, const DeterminantRequest& request, quolyptr n) {
    check_power(request.power);
    make_private(v);
    Unfinished u;
    bool first = sp_total_cnt == 0;
    if (first) begin_unfinished(u, forget_expansion, nullptr);
    sparse_determinant(v.spar, v.facts.rows, request, n);
    if (first) end_unfinished(u);
}

static void determinant_of_operand(BuiltinCall& call, ArrOperand& v, const DetArguments& args) {
    if (is_scalar(v) || !is_square(v)) {
        error(Err::matrix_not_square);
        return;
    }
    if (interrupt_levels > 0 && sp_total_cnt == 0) return;  // its value would be thrown away
    poly fct = divisor_of(args);
    Err fault = {};
    DeterminantRequest request = {fct, args.degree, args.degree2, args.power, args.numprimes, &fault, outpuf};
    int32_t m = v.facts.rows;
    if (is_sparse(v))
        determinant_of_sparse(v, request, call.n);
    else
        dense_determinant(elements_of(v), m, request, call.n);
    free_poly(&fct);
    if (fault != Err{}) error(fault);
}

/// v := an expression; the arguments behind it, up to the closing parenthesis.
static void read_matrix_and_arguments(BuiltinCall& call, ArrOperand& v, DetArguments* args) {
    ArrReader r = {call.inf, call.flag, {}, false};
    arr_expre(r, v);
    if (args->numprimes > 0 && !is_sparse(v)) return refuse(args, Err::sparse_needed);
    read_det_arguments(call, args);
    if (!args->bad) expect(call.inf, call.flag, ')', Err::close_paren_expected);
}

/// v := one factor, or in parentheses an expression and the arguments behind it.
static void read_matrix(BuiltinCall& call, ArrOperand& v, DetArguments* args) {
    ArrReader r = {call.inf, call.flag, {}, false};
    if (!at_char('(')) return arr_fact(r, v);
    next_token(call.inf, call.flag);
    read_matrix_and_arguments(call, v, args);
}

/// numprimes: of SDet, whose matrix and arguments are what follows; 0: Det.
static void determinant_form(BuiltinCall& call, int32_t numprimes) {
    ArrOperand v;
    if (!begin_operand(v)) return;
    DetArguments args = {{}, k_not_given, k_not_given, k_not_given, numprimes, false};
    args.fct.hold.at = args.fct.hold.own = &args.fct.own;
    hold(&args.fct);
    if (numprimes > 0)
        read_matrix_and_arguments(call, v, &args);
    else
        read_matrix(call, v, &args);
    if (!args.bad) determinant_of_operand(call, v, args);
    drop_data(&args.fct);
    end_operand(v);
}

// ---- elements ------------------------------------------------------------------------------------------

static bool is_a_number(const quolynode* q) { return q->numb || q->rat; }

/// Calls f for the stored elements with their positions, from 0, column by column.
template <class Visit> static void visit_elements(const ArrOperand& v, Visit f) {
    if (!is_sparse(v)) {
        for (int64_t k = 0; k < v.facts.arrsize; k++) {
            poll_every<1024>(k);
            f(k, elements_of(v)[k]);
        }
        return;
    }
    SparseWalk w = walk_sparse(v.spar, v.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        poll_interrupt();
        for (const colnode* p = *t; p != nullptr; p = p->next)
            f(w.row + int64_t{p->coord - 1} * v.facts.rows, p->val);
    }
}

/// The position of the first element that a sparse matrix does not store, -1: it stores all. At most one more
/// look-up than there are entries.
static int64_t first_absent(const ArrOperand& v) {
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_every<1024>(k);
        auto row = static_cast<int32_t>(k % v.facts.rows), column = static_cast<int32_t>(k / v.facts.rows);
        if (quoly_iszero(spar_retrieve(v.spar, row + 1, column + 1))) return k;
    }
    return -1;
}

namespace {
/// The extreme element so far.
struct Extreme {
    bool largest, positive;  // what is looked for: the largest; else the smallest, of those above 0 alone
    int64_t position;        // -1: none yet
    const quolynode* value;
};
}  // namespace

static void consider(Extreme* e, int64_t position, const quolynode* value) {
    if (e->positive && compare_values(value, quol_num_0) <= 0) return;
    int32_t order = e->position < 0 ? -1 : compare_values(value, e->value);
    if (e->position >= 0 && e->largest) order = -order;
    if (order > 0 || (order == 0 && position > e->position)) return;
    e->position = position;
    e->value = value;
}

/// Its position, from 0; -1: there is none, or error 119.
static int64_t extreme_position(const ArrOperand& v, bool largest, bool positive) {
    Extreme e = {largest, positive, -1, nullptr};
    bool numbers = true;
    visit_elements(v, [&](int64_t position, const quolynode* value) {
        numbers = numbers && is_a_number(value);
        if (numbers) consider(&e, position, value);
    });
    if (!numbers) {
        error(Err::elements_not_numbers);
        return -1;
    }
    int64_t absent = is_sparse(v) && !positive ? first_absent(v) : -1;
    if (absent >= 0) consider(&e, absent, quol_num_0);
    return e.position;
}

/// A factor that must be a matrix. False after error 40 or 88.
static bool read_matrix_factor(BuiltinCall& call, ArrOperand& v) {
    if (!begin_operand(v)) return false;
    ArrReader r = {call.inf, call.flag, {}, false};
    arr_fact(r, v);
    if (!is_scalar(v)) return true;
    error(Err::array_expected);
    end_operand(v);
    return false;
}

/// Det^[m], Det_[m], Det_+[m]: the sign, or its "+", is the current token, or the matrix for Detmin.
static void extreme_form(BuiltinCall& call, bool largest) {
    bool positive = !largest && at_char('+');
    if (positive) next_token(call.inf, call.flag);
    ArrOperand v;
    if (!read_matrix_factor(call, v)) return;
    int64_t position = extreme_position(v, largest, positive);
    end_operand(v);
    return_word(call, position + addresser);
}

/// True if x stands in the relation to y; other values than numbers can only be equal. False after error 120.
static bool relation_holds(unsigned char sign, const quolynode* x, const quolynode* y, bool* bad) {
    if (sign == '=') return quoly_equal(x, y);
    *bad = *bad || !is_a_number(x) || !is_a_number(y);
    if (*bad) return false;
    int32_t order = compare_values(x, y);
    return sign == '<' ? order < 0 : order > 0;
}

/// Det#([m] = e): how many elements stand in the relation to the value e.
static void counting_form(BuiltinCall& call) {
    if (!expect(call.inf, call.flag, '(', Err::det_count_paren)) return;
    ArrOperand v;
    if (!read_matrix_factor(call, v)) return;
    unsigned char sign = tok_char(token);
    Err fault = is_sparse(v)                                ? Err::sparse_not_allowed
                : sign != '=' && sign != '<' && sign != '>' ? Err::det_count_sign
                                                            : Err{};
    if (fault != Err{}) {
        end_operand(v);
        error(fault);
        return;
    }
    next_token(call.inf, call.flag);
    Value value;
    get_the_data(call, &value);
    int64_t count = 0;
    bool bad = false;
    visit_elements(v, [&](int64_t, const quolynode* element) {
        count += relation_holds(sign, element, value_of(&value), &bad);
    });
    drop_data(&value);
    end_operand(v);
    if (bad) error(Err::compare_not_numbers);
    expect(call.inf, call.flag, ')', Err::det_count_close);
    return_word(call, count);
}

// ---- the names -----------------------------------------------------------------------------------------

/// Above an interrupt the value is 0.
static void refuse_determinant(BuiltinCall& call) {
    quolyptr at = call.n;
    refused_at_interrupt("determinant", &at, call.n);
}

/// Det[m], Det([m], fct, degree, degree2, power), Det#([m] = e), Det^[m], Det_[m], Det_+[m].
void builtin_Det(BuiltinCall& call) {
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    unsigned char form = tok_char(token);
    if (form == '#' || form == '^' || form == '_') next_token(call.inf, call.flag);
    if (form == '#')
        counting_form(call);
    else if (form == '^' || form == '_')
        extreme_form(call, form == '^');
    else
        determinant_form(call, 0);
    refuse_determinant(call);
}

/// SDet(k, [m], fct, degree, degree2, power), [m] sparse: on the route of interpolation k primes decide.
void builtin_SDet(BuiltinCall& call) {
    constexpr int32_t k_least = 2;
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    if (!expect(call.inf, call.flag, '(', Err::builtin_open_paren)) return;
    int32_t numprimes = read_integer(call);
    Err fault = numprimes < k_least ? Err::prime_count : modularmode ? Err::not_in_word_mode : Err{};
    if (fault != Err{}) {
        error(fault);
        return;
    }
    if (!expect(call.inf, call.flag, ',', Err::builtin_comma)) return;
    determinant_form(call, numprimes);
    refuse_determinant(call);
}

/// Detmin[m] is Det_[m].
void builtin_Detmin(BuiltinCall& call) {
    quoly_set(0, call.n);
    next_token(call.inf, call.flag);
    extreme_form(call, false);
    refuse_determinant(call);
}
}  // namespace tolvex
