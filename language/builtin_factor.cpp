// Built-in functions of factors: square-free and irreducible ones, and of p-th roots.
#include "field/factor.h"
#include "gcd/field_hooks.h"
#include "gcd/gcd_modes.h"
#include "gcd/square_free.h"
#include "gcd/word_gcd.h"
#include "language/array_operand.h"
#include "language/array_statement.h"
#include "language/builtin_parts.h"
#include "language/builtin_table.h"
#include "numbers/num_assign.h"
#include "numbers/num_mult.h"
#include "poly/div_general.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"
namespace tolvex {
// ---- rows of factors -----------------------------------------------------------------------------------

/// The rows by rising multiplicity, those of one multiplicity as they came.
static void sort_by_multiplicity(polyptrr list) {
    poly sorted = nullptr;
    while (*list != nullptr) {
        poly f = *list;
        *list = f->next;
        polyptrr at = &sorted;
        while (*at != nullptr && (*at)->exp <= f->exp) at = &(*at)->next;
        f->next = *at;
        *at = f;
    }
    *list = sorted;
}

/// c := the number by which p differs from the product of the powers: that of the leading numbers.
static void constant_factor(poly p, const polynode* list, imptr c) {
    number product = {}, power = {};
    setvalue(1, &product);
    for (; list != nullptr; list = list->next) {
        num_assign(leading_coef(list->pcoef)->ncoef, &power);
        number_power(&power, list->exp);
        int_mult(&product, &power, &product);
    }
    quot(leading_coef(p)->ncoef, &product, c);
    free_num(&product);
    free_num(&power);
}

/// The same over a field tower, where the factor is a field element.
static void constant_element(poly p, const polynode* list, quolyptr c) {
    poly copy = nullptr;
    poly_assign(p, &copy);
    poly_to_quoly(&copy, c);
    for (; list != nullptr; list = list->next) {
        quoly power = nullptr;
        poly_assign(list->pcoef, &copy);
        poly_to_quoly(&copy, &power);
        quoly_compute_power(&power, list->exp);
        fast_quoly_quot(c, power, 0);
        free_quoly(&power);
    }
}

/// The array `name` becomes the matrix of the rows factor, multiplicity: the constant, unless it is 1 and not
/// alone, and the list, both used up. Returns the number of rows.
static int32_t store_rows(tokentipe& name, quolyptr constant, polyptrr list) {
    const bool with_constant = *list == nullptr || !quoly_equal(*constant, quol_num_1);
    const int32_t rows = (with_constant ? 1 : 0) + (*list == nullptr ? 0 : poly_length(*list));
    ArrOperand matrix;
    if (!begin_operand(matrix)) return rows;
    if (make_dense(matrix, rows, 2)) {
        int32_t row = 0;
        if (with_constant) {
            elements_of(matrix)[0] = *constant;
            *constant = nullptr;
            quoly_set(1, &elements_of(matrix)[rows]);
            row++;
        }
        for (; row < rows; row++) {
            poly f = *list;
            *list = f->next;
            poly_to_quoly(&f->pcoef, &elements_of(matrix)[row]);
            quoly_set(modularmode ? residue_of_int(f->exp) : f->exp, &elements_of(matrix)[row + rows]);
            free_node(f);
        }
        arrptr a = nullptr;
        fastestlookup(name, &a);
        assign_whole(name, a, matrix);
    }
    end_operand(matrix);
    return rows;
}

/// The array argument of Sqfree and Factor, and the level, 0 if there is none.
struct FactorArguments {
    Value v;
    tokentipe name;
    int32_t level;
};

/// Reads over all of them. False after an error.
static bool read_factor_arguments(BuiltinCall& call, FactorArguments* x, bool with_level) {
    open_call(call);
    get_the_data(call, &x->v);
    need_comma(call);
    x->name = {};
    x->level = 0;
    if (!read_array_name(call, &x->name)) return false;
    if (with_level && next_argument(call)) x->level = read_integer(call);
    close_call(call);
    return true;
}

/// Finite fields alone; false after error 301.
static bool need_finite_field() {
    if (modularmode && !ring_is_composite()) return true;
    error(Err::prime_modulus_needed);
    return false;
}

/// The constant with which p is the product of the powers on the list.
static void constant_of(poly p, const polynode* list, quolyptr c) {
    if (exists_field_element(p, 1)) {
        constant_element(p, list, c);
    } else {
        quoly_set(1, c);
        constant_factor(p, list, (*c)->ncoef);
    }
}

static void square_free_list(poly p, polyptrr list) {
    poly x = nullptr;
    int32_t count = 0;
    poly_assign(p, &x);
    gcd_counters_reset();  // in a body too it is a computation of its own
    total_sq_free(&x, list, &count, 1, polynames);
    free_poly(&x);
}

/// Sqfree(p, [a]): [a] becomes the square-free factors of p with their multiplicities; the value is their
/// number. Factor(p, [a], k): the irreducible factors over the field of the k deepest levels.
static void factor_rows(BuiltinCall& call, bool irreducible) {
    FactorArguments x;
    bool good = read_factor_arguments(call, &x, irreducible);
    if (good && irreducible) good = need_finite_field();
    if (good && ring_is_composite()) {
        error(Err::prime_modulus_needed);
        good = false;
    }
    polynode leaf;
    poly list = nullptr;
    quoly constant = nullptr;
    poly p = good ? plain_polynomial(value_of(&x.v), &leaf) : nullptr;
    int32_t rows = 0;
    Err why = Err::prime_modulus_needed;
    if (p != nullptr && irreducible && !is_number(p) && !factor_poly(p, x.level, &list, &why)) {
        free_factor_list(&list);
        error(why);
        p = nullptr;
    }
    if (p != nullptr) {
        if (!irreducible) square_free_list(p, &list);
        sort_by_multiplicity(&list);
        constant_of(p, list, &constant);
        rows = store_rows(x.name, &constant, &list);
    }
    free_factor_list(&list);
    free_quoly(&constant);
    drop_data(&x.v);
    return_word(call, rows);
}

void builtin_Sqfree(BuiltinCall& call) { factor_rows(call, false); }

void builtin_Factor(BuiltinCall& call) { factor_rows(call, true); }

/// Irred(p), Irred(p, k): is p irreducible over the field of the k deepest levels?
void builtin_Irred(BuiltinCall& call) {
    open_call(call);
    Value v;
    get_the_data(call, &v);
    const int32_t level = next_argument(call) ? read_integer(call) : 0;
    close_call(call);
    polynode leaf;
    poly p = need_finite_field() ? plain_polynomial(value_of(&v), &leaf) : nullptr;
    int32_t value = 0;
    if (p != nullptr && !is_number(p)) {
        FactorTask task;
        Err why = Err::prime_modulus_needed;
        if (cant_factor(p, level, &task, &why) || (value = irreducible_poly(task)) == 0) error(why);
    }
    drop_data(&v);
    return_word(call, value);
}

// ---- p-th roots ----------------------------------------------------------------------------------------

/// Pth(e): the root of degree p, the characteristic.
void builtin_Pth(BuiltinCall& call) {
    Value v;
    standard_read(call, &v);
    polynode leaf;
    poly root = nullptr;
    Err why = Err::pth_root_needs_field;
    poly p =
        need_finite_field() ? polynomial_of(value_of(&v), &leaf, Err::rational_function_argument) : nullptr;
    bool found = p != nullptr;
    if (found) {
        poly_assign(p, &root);
        found = poly_pth_root(&root, &why);
    }
    if (!found) poly_set(0, &root);
    if (!found && p != nullptr) error(why);
    drop_data(&v);
    return_poly(call, &root);
}
}  // namespace tolvex
