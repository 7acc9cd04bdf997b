#include "language/substitute.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "poly/poly_basic.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_eval.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- evaluation ----------------------------------------------------------------------------------------

void total_eval(const quolynode* q, quolyptr n, const quoly* value, int32_t levels) {
    int32_t replaced = 0, target = 0;
    for (int32_t level = 1; level <= levels; level++)
        if (value[level] != nullptr) replaced++, target = level;
    if (replaced == 1)
        horner_quoly_eval(q, n, value[target], target);
    else
        spec_quoly_eval(q, n, value, levels);
}

// ---- reading the replacements --------------------------------------------------------------------------

namespace {
/// The replacements while they are read.
struct Places {
    quoly value[k_levels];
    int32_t next;  // the level of the next place
    bool named, plain;
};
}  // namespace

static void store_place(Places* places, int32_t level, quoly value) {
    free_quoly(&places->value[level]);
    places->value[level] = value;
}

/// A value for the next place, of which *value may be the first factor already.
static void plain_place(FILE* inf, Places* places, quoly value, nameptr* flag) {
    if (value != nullptr)
        half_expre(inf, &value, flag);
    else
        old_expre(inf, &value, flag);
    if (places->named) error(Err::builtin_comma);
    places->plain = true;
    if (places->next > number_polys) {
        error(Err::variable_argument);
        free_quoly(&value);
        return;
    }
    store_place(places, places->next, value);
}

/// One place of a list: nothing, "x = e", or an expression.
static void read_place(FILE* inf, Places* places, nameptr* flag) {
    places->next++;
    if (at_char(',') || at_char(')')) {
        if (places->next > number_polys) error(Err::variable_argument);
        return;
    }
    int32_t level = is_lower(tok_char(token)) ? its_a_polyname(token) : 0;
    if (level == 0) {
        plain_place(inf, places, nullptr, flag);
        return;
    }
    next_token(inf, flag);
    quoly value = nullptr;
    if (!at_char('=')) {
        poly p = nullptr;
        base_poly(&p, level);
        poly_to_quoly(&p, &value);
        plain_place(inf, places, value, flag);
        return;
    }
    if (places->plain) error(Err::builtin_comma);
    places->named = true;
    next_token(inf, flag);
    old_expre(inf, &value, flag);
    store_place(places, level, value);
}

static void read_list(FILE* inf, Places* places, nameptr* flag) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    do {
        next_token(inf, flag);
        read_place(inf, places, flag);
    } while (at_char(','));
    expect(inf, flag, ')', Err::close_paren_expected);
    eval_state.bar_closes = saved;
}

void with_replacements(FILE* inf, nameptr* flag, void (*use)(const quoly* value, void* context),
                       void* context) {
    ScratchMark mark = scratch_mark();
    auto* places = scratch_array<Places>(1);
    *places = {};
    next_token(inf, flag);
    if (at_char('(')) {
        read_list(inf, places, flag);
    } else if (at_char('[')) {
        next_token(inf, flag);
        error(Err::array_expected);
    } else {
        quoly value = nullptr;
        old_fact(inf, &value, flag);
        if (number_polys == 0) {
            error(Err::variable_argument);
            free_quoly(&value);
        } else {
            store_place(places, 1, value);
        }
    }
    use(places->value, context);
    for (int32_t level = 1; level <= number_polys; level++) free_quoly(&places->value[level]);
    scratch_release(mark);
}

static void evaluate_in_place(const quoly* value, void* context) {
    auto* n = static_cast<quolyptr>(context);
    total_eval(*n, n, value, number_polys);
}

void get_evalquoly(FILE* inf, quolyptr n, nameptr* flag) {
    held_operand here = {n, n, eval_state.held};
    eval_state.held = &here;
    with_replacements(inf, flag, evaluate_in_place, n);
    eval_state.held = here.below;
}
}  // namespace tolvex
