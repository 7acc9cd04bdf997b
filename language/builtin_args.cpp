#include "language/builtin_args.h"

#include "language/array_values.h"
#include "language/locations.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "numbers/num_assign.h"
#include "numbers/residue.h"
#include "poly/poly_shape.h"
#include "poly/poly_vars.h"
namespace tolvex {
void open_call(BuiltinCall& call, Err missing) {
    next_token(call.inf, call.flag);
    expect(call.inf, call.flag, '(', missing);
}

void close_call(BuiltinCall& call) { expect(call.inf, call.flag, ')', Err::close_paren_expected); }

bool next_argument(BuiltinCall& call) {
    if (!at_char(',')) return false;
    next_token(call.inf, call.flag);
    return true;
}

void need_comma(BuiltinCall& call) { expect(call.inf, call.flag, ',', Err::builtin_comma); }

void get_the_data(BuiltinCall& call, Value* v) {
    if (!at_char('^')) {
        read_expression(call.inf, v, call.flag);
    } else {
        next_token(call.inf, call.flag);
        v->own = nullptr;
        v->hold.own = &v->own;
        get_quoly_ptr(&v->hold.at, call.inf, call.flag);
        if (v->hold.at == nullptr || *v->hold.at == nullptr) {
            quoly_set(0, &v->own);
            v->hold.at = &v->own;
        }
    }
    hold(v);
}

void open_with_two(BuiltinCall& call, Value* a, Value* b) {
    open_call(call);
    get_the_data(call, a);
    need_comma(call);
    get_the_data(call, b);
}

void drop_data(Value* v) {
    let_go(v);
    release(v);
}

void take_argument(BuiltinCall& call, Value* v) {
    let_go(v);
    take_value(v, call.n);
}

void standard_read(BuiltinCall& call, Value* v) {
    open_call(call);
    get_the_data(call, v);
    close_call(call);
}

int32_t read_integer(BuiltinCall& call, Err not_a_number) {
    return read_plain_word(call.inf, call.flag, not_a_number, true);
}

void read_result_place(BuiltinCall& call, ResultPlace* place) {
    *place = {};
    if (at_char('^')) next_token(call.inf, call.flag);
    if (!is_lower(tok_char(token))) {
        error(Err::by_reference_needed);
        return;
    }
    if (number_polys > 0 && its_a_polyname(token) != 0) {
        error(Err::polyvar_as_name);
        return;
    }
    tokentipe name = token;
    next_token(call.inf, call.flag);
    arrptr a = nullptr;
    if (at_char('[')) {
        place->is_element =
            array_seek(name, &a) && read_target(call.inf, call.flag, a, name, &place->element);
        if (place->is_element) place->name = name;
    } else if (find_var(name) == nullptr) {
        error(Err::undefined_variable, tok_text(name));
    } else {
        place->name = name;
    }
}

quolyptr place_to_read(ResultPlace* place) {
    if (tok_char(place->name) == 0) return nullptr;
    if (!place->is_element) {
        varptr p = find_var(place->name);
        return p == nullptr || refuse_other_ring(&p->val, place->name) ? nullptr : &p->val;
    }
    const arrnode* a = array_of(place->element);
    if (a == nullptr || refuse_array_of_other_ring(a, place->name)) return nullptr;
    quolyptr at = place_slot(a, place->element.index);
    if (at != nullptr && *at == nullptr) quoly_set(0, at);
    return at == nullptr ? &quol_num_0 : at;
}

quolyptr place_to_change(ResultPlace* place) {
    if (tok_char(place->name) == 0) return nullptr;
    return place->is_element ? location_to_change(place->element) : place_to_read(place);
}

void close_place(const ResultPlace& place) {
    if (place.is_element) purge_element(place.element);
}

void set_quotient(ResultPlace* place, quolyptr value) {
    if (tok_char(place->name) == 0) {
        free_quoly(value);
        return;
    }
    if (place->is_element) {
        store_element(place->element, value);
        return;
    }
    varptr p = nullptr;
    insert_var(place->name, *value, &p);
    *value = nullptr;
}

void return_word(BuiltinCall& call, int64_t value) {
    free_quoly(call.n);
    init_quoly_node(call.n);
    if (modularmode) value = residue_of_int(value);
    setvalue_any(value, (*call.n)->ncoef);
}

void return_poly(BuiltinCall& call, polyptrr p) {
    free_quoly(call.n);
    poly_to_quoly(p, call.n);
}

bool read_array_name(BuiltinCall& call, tokentipe* name, Err polynomial_name) {
    if (!expect(call.inf, call.flag, '[', Err::builtin_open_bracket)) return false;
    *name = token;
    name->address = hash(name->name, k_variable_buckets);
    bool lower = is_lower(tok_char(*name));
    bool good = lower && (number_polys == 0 || its_a_polyname(*name) == 0);
    if (!good) error(lower ? polynomial_name : Err::array_expected);
    next_token(call.inf, call.flag);
    return good && expect(call.inf, call.flag, ']', Err::close_bracket_expected);
}

poly polynomial_of(const quolynode* q, polynode* leaf, Err fraction) {
    if (q->numb) {
        *leaf = {0, 1, nullptr, {q->ncoef}};
        return leaf;
    }
    if (q->denom == nullptr) return q->numer;
    error(fraction);
    return nullptr;
}

poly plain_polynomial(const quolynode* q, polynode* leaf) {
    poly p = polynomial_of(q, leaf, Err::rational_function_argument);
    if (p == nullptr || !has_negative_exponent(p)) return p;
    error(Err::negative_powers);
    return nullptr;
}
}  // namespace tolvex
