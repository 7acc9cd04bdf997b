#include "language/locations.h"

#include "language/array_elements.h"
#include "language/evaluator.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "numbers/decimal_io.h"
#include "numbers/num_assign.h"
#include "numbers/num_mult.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_quot.h"
namespace tolvex {
/// A location, nil for a 0 that is nowhere.
static void keep_location(quolyptr* qp, quolyptr own) {
    if (*qp != own) return;
    free_quoly(own);
    *qp = nullptr;
}

/// The element whose "[" is the current token.
static void element_location(FILE* inf, tokentipe& name, nameptr* flag, quolyptr* qp) {
    quoly own = nullptr;
    new_arretrieve(inf, name, flag, qp, &own);
    keep_location(qp, &own);
}

/// The variable whose name is the current token.
static void named_location(quolyptr* qp, FILE* inf, nameptr* flag) {
    *qp = nullptr;
    if (number_polys > 0 && its_a_polyname(token) != 0) {
        error(Err::polyvar_as_name);
        return;
    }
    tokentipe name = token;
    next_token(inf, flag);
    if (at_char('[')) {
        element_location(inf, name, flag, qp);
        return;
    }
    retrieve(name, qp, nullptr, inf, flag);
    if (*qp == nullptr)
        error(Err::undefined_variable, tok_text(name));
    else if (refuse_other_ring(*qp, name))
        *qp = nullptr;
}

void get_quoly_ptr(quolyptr* qp, FILE* inf, nameptr* flag) {
    *qp = nullptr;
    if (is_lower(tok_char(token))) {
        named_location(qp, inf, flag);
    } else if (at_char('<')) {
        next_token(inf, flag);
        quoly own = nullptr;
        if (at_char('['))
            system_element(inf, flag, qp, &own);
        else
            *qp = &prevnum;
        keep_location(qp, &own);
    } else if (at_char('%')) {
        quoly own = nullptr;
        element_of_place(inf, flag, qp, &own);
        keep_location(qp, &own);
    } else {
        error(Err::by_reference_needed);
    }
}

void get_decimal_part(quolyptr n, FILE* inf, nameptr* flag) {
    if (lintmode) {
        error(Err::not_in_word_mode);
        quoly_set(0, n);
        return;
    }
    next_token(inf, flag);
    if (!is_digit(tok_char(token))) {
        error(Err::no_digit_after_point);
        quoly_set(0, n);
        return;
    }
    int32_t digits = 0;
    init_quoly_node(n);
    new_readin(inf, (*n)->ncoef, flag, &digits);
    quoly power = nullptr;
    init_quoly_node(&power);
    num_assign(&number_10, power->ncoef);
    number_power(power->ncoef, digits);
    fast_quoly_quot(n, power, 0);
    free_quoly(&power);
}
}  // namespace tolvex
