// Built-in functions between polynomials and arrays: Mons, Totdeg, Poly.
#include "language/array_elements.h"
#include "language/array_statement.h"
#include "language/builtin_arrays.h"
#include "language/builtin_table.h"
#include "matrix/matrix_modes.h"
#include "numbers/num_compare.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstdlib>
namespace tolvex {
// ---- Mons ----------------------------------------------------------------------------------------------

namespace {
/// The rows of the array that Mons makes.
struct TermRows {
    SparseWalk walk;
    const polynode* path[k_levels + 1];
    bool bare;  // without the numbers
};
}  // namespace

/// The term that the path leads to.
static poly term_of_path(const TermRows& t, int32_t depth) {
    poly p = nullptr;
    if (t.bare)
        poly_set(1, &p);
    else
        node_assign(t.path[depth], &p);
    for (int32_t level = depth - 1; level >= 0; level--) {
        poly outer = nullptr;
        if (t.path[level]->exp == 0 && is_number(p)) continue;
        new_term(&outer, t.path[level]->exp, p);
        p = outer;
    }
    return p;
}

static void dump_mons(TermRows* t, const polynode* p, int32_t depth) {
    for (; p != nullptr; p = p->next) {
        t->path[depth] = p;
        if (!p->numb) {
            dump_mons(t, p->pcoef, depth + 1);
            continue;
        }
        poll_interrupt();
        poly term = term_of_path(*t, depth);
        quoly value = nullptr;
        poly_to_quoly(&term, &value);
        colm_ptrptr row = next_row(t->walk);
        if (quoly_iszero(value))
            free_quoly(&value);
        else
            *row = newcolm(1, value, nullptr);
    }
}

/// Mons(p, [a]), Mons(p, [a], k): [a] becomes the column of the terms of p, sparse; the value is their
/// number.
void builtin_Mons(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    need_comma(call);
    tokentipe name = {};
    int64_t bare = 0;
    bool good = read_array_name(call, &name);
    if (good && next_argument(call))
        good = read_plain_integer(call.inf, call.flag, Err::number_expected, &bare);
    if (good) close_call(call);
    polynode leaf;
    const polynode* p = good ? polynomial_of(value_of(&v), &leaf, Err::rational_not_allowed) : nullptr;
    ArrOperand column;
    int64_t count = 0;
    if (p != nullptr && begin_operand(column)) {
        count = poly_terms(p);
        make_sparse_operand(column, count, 1, nullptr);
        TermRows t = {walk_sparse(column.spar, static_cast<int32_t>(count)), {}, bare == 1};
        dump_mons(&t, p, 0);
        arrptr a = nullptr;
        fastestlookup(name, &a);
        if (assign_whole(name, a, column) && fastestlookup(name, &a) >= 0 && a != nullptr)
            array_itself(a)->linear = 1;
        end_operand(column);
    }
    drop_data(&v);
    return_word(call, count);
}

// ---- Totdeg --------------------------------------------------------------------------------------------

namespace {
struct Weights {
    int64_t of[k_levels + 1];  // by depth from 0
};
}  // namespace

/// One weight for every variable in level order; missing ones are 0. False after error 227.
static bool read_weights(const arrnode* a, Weights* w) {
    for (int64_t& weight : w->of) weight = 0;
    for (int64_t k = 0; k < a->sizearr && k < k_levels; k++) {
        const quoly* slot = a->spar == nullptr ? value_slot(a, static_cast<int32_t>(k)) : place_slot(a, k);
        if (slot == nullptr) continue;
        if (!(*slot)->numb) {
            error(Err::number_expected);
            return false;
        }
        const number* x = (*slot)->ncoef;
        w->of[k] = lintmode ? x->lint : x->size == 1 ? x->head->value : int64_t{x->head->value} * k_base;
    }
    return true;
}

/// The terms below p whose weighted degree is `wanted`; nil if there is none.
static poly terms_of_degree(const polynode* p, int32_t depth, const Weights& w, int64_t wanted) {
    poly head = nullptr;
    poly* end = &head;
    for (; p != nullptr; p = p->next) {
        int64_t rest = wanted - w.of[depth] * p->exp;
        poly c = nullptr;
        if (!p->numb)
            c = terms_of_degree(p->pcoef, depth + 1, w, rest);
        else if (rest == 0)
            node_assign(p, &c);
        if (c == nullptr) continue;
        if (p->exp == 0 && is_number(c))
            *end = c;
        else
            new_term(end, p->exp, c);
        end = &(*end)->next;
    }
    return head;
}

/// Totdeg(p, [a], k): the terms of p of weighted degree k.
void builtin_Totdeg(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    ArrayArgument x;
    int64_t k = 0;
    Weights w;
    need_comma(call);
    bool good = read_command_1(call, &x) && expect(call.inf, call.flag, ',', Err::builtin_comma) &&
                read_plain_integer(call.inf, call.flag, Err::number_expected, &k);
    if (good) {
        close_call(call);
        good = is_still_there(x) && read_weights(x.a, &w);
    }
    const quolynode* q = value_of(&v);
    if (good && !q->numb && q->denom != nullptr)
        error(q->rat ? Err::rational_not_allowed : Err::rational_function_argument);
    if (good && q->numb && k == 0) {
        quoly_assign(q, call.n);
    } else if (good && !q->numb && q->denom == nullptr) {
        poly part = terms_of_degree(q->numer, 0, w, k);
        fix_top(&part);
        poly_to_quoly(&part, call.n);
    } else {
        quoly_set(0, call.n);
    }
    drop_data(&v);
}

// ---- Poly ----------------------------------------------------------------------------------------------

/// The value as a coefficient of the first variable: nil if that occurs in it.
static poly coefficient_of(const quolynode* q) {
    poly c = nullptr;
    if (q->numb) {
        scalar_to_poly(q->ncoef, &c);
        return c;
    }
    const polynode* p = q->numer;
    if (p->exp == 0 && p->next == nullptr && !p->numb) poly_assign(p->pcoef, &c);
    return c;
}

/// *sum += q x^k, x the first variable. q is used up.
static void add_product(quolyptr sum, quoly q, int32_t k) {
    quoly product = nullptr;
    poly power = nullptr;
    base_poly(&power, 1);
    poly_to_quoly(&power, &product);
    if (k > 0)
        quoly_compute_power(&product, k);
    else
        quoly_set(1, &product);
    fast_quoly_mult(&product, q);
    free_quoly(&q);
    best_quoly_add(sum, product);
}

namespace {
/// An element and its position in the array.
struct Coefficient {
    int64_t k;
    quoly value;
};
/// Copies of the elements that are not 0, by rising k: sums and products have safe points, and at a level the
/// array may change.
struct Coefficients {
    Coefficient* of;
    int64_t count;
    poly chain;  // the sum of those that are free of the first variable
};
}  // namespace

static void drop_coefficients(void* what) {
    auto* c = static_cast<Coefficients*>(what);
    for (int64_t i = 0; i < c->count; i++) free_quoly(&c->of[i].value);
    free_poly(&c->chain);
}

/// Error 196 for a denominator, 32 for a position that is no exponent.
static Err take_coefficient(Coefficients& c, int64_t k, const quolynode* q) {
    constexpr int64_t k_exponent_limit = 1 << 28;
    if (quoly_iszero(q)) return Err{};
    if (!q->numb && q->denom != nullptr) return Err::rational_not_allowed;
    if (k >= k_exponent_limit) return Err::exponent_too_long;
    c.of[c.count] = {k, nullptr};
    quoly_assign(q, &c.of[c.count++].value);
    return Err{};
}

static int by_position(const void* a, const void* b) {
    int64_t x = static_cast<const Coefficient*>(a)->k, y = static_cast<const Coefficient*>(b)->k;
    return (x > y) - (x < y);
}

/// Gathers them in scratch memory.
static Err gather_coefficients(const ArrayArgument& x, Coefficients& c) {
    Err fault = Err{};
    if (x.a->spar == nullptr) {
        c.of = scratch_array<Coefficient>(x.b.rows * x.b.cols);
        for (int64_t k = 0; fault == Err{} && k < x.b.rows * x.b.cols; k++) {
            int64_t place = x.b.first_row + k % x.b.rows + (x.b.first_col + k / x.b.rows) * x.a->rows;
            fault = take_coefficient(c, k, *value_slot(x.a, static_cast<int32_t>(place)));
        }
        return fault;
    }
    c.of = scratch_array<Coefficient>(sparse_entries(x.a->spar, x.a->rows));
    SparseWalk w = walk_sparse(x.a->spar, x.a->rows);
    while (colm_ptrptr row = next_row(w))
        for (const colnode* p = *row; fault == Err{} && p != nullptr; p = p->next)
            fault = take_coefficient(c, w.row + int64_t{p->coord - 1} * x.a->rows, p->val);
    qsort(c.of, static_cast<size_t>(c.count), sizeof *c.of, by_position);
    return fault;
}

/// *sum := the sum of the coefficients times the powers; they are used up.
static void add_up(Coefficients& c, quolyptr sum) {
    for (int64_t i = 0; i < c.count; i++) {
        poll_interrupt();
        quoly value = c.of[i].value;
        auto k = static_cast<int32_t>(c.of[i].k);
        c.of[i].value = nullptr;
        poly p = coefficient_of(value), term = nullptr;
        if (p == nullptr) {
            add_product(sum, value, k);
            continue;
        }
        free_quoly(&value);
        if (k == 0 && is_number(p))
            term = p;
        else
            new_term(&term, k, p);
        term->next = c.chain;
        c.chain = term;
    }
    if (c.chain == nullptr) return;
    fix_top(&c.chain);
    quoly part = nullptr;
    poly_to_quoly(&c.chain, &part);
    best_quoly_add(sum, part);
}

/// Poly[a]: the sum of a_k x^k, x the variable of level 1, k from 0. What is free of x becomes one chain.
void builtin_Poly(BuiltinCall& call) {
    ArrayArgument x;
    quoly_set(0, call.n);
    if (!read_command(call, &x)) return;
    end_command(call, x);
    if (number_polys == 0) {
        error(Err::no_polyvars);
        return;
    }
    ScratchMark mark = scratch_mark();
    Coefficients c = {nullptr, 0, nullptr};
    Unfinished u;
    begin_unfinished(u, drop_coefficients, &c);
    Err fault = gather_coefficients(x, c);
    if (fault == Err{}) add_up(c, call.n);
    end_unfinished(u);
    drop_coefficients(&c);
    scratch_release(mark);
    if (fault != Err{}) error(fault);
}
}  // namespace tolvex
