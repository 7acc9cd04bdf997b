#include "session/ring_list.h"

#include "field/modding.h"
#include "gcd/gcd_modes.h"
#include "language/array_values.h"
#include "language/evaluator.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "session/value_images.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
/// What the next change converts, by its name: a level that opens meanwhile may delete it, or make it anew.
struct listed_value {
    listed_value* next;
    tokentipe name;
    bool array;
    const void* what;  // its location, or the array itself; only compared, never followed
};
listed_value* list = nullptr;
listed_value* list_garb = nullptr;
bool everything = true;
}  // namespace

static void begin_list() {
    while (list != nullptr) {
        listed_value* gone = list;
        list = gone->next;
        pool_push<&listed_value::next>(list_garb, gone);
    }
    everything = false;
}

void list_everything() {
    begin_list();
    everything = true;
}

static bool is_listed(const void* what) {
    if (everything) return true;
    for (const listed_value* l = list; l != nullptr; l = l->next)
        if (l->what == what) return true;
    return false;
}

static void add_to_list(const tokentipe& name, bool array, const void* what) {
    listed_value* l = pool_pop<&listed_value::next>(list_garb, nullptr);
    *l = {list, name, array, what};
    list = l;
}

static void look_up_list() {
    for (listed_value* l = list; l != nullptr; l = l->next) {
        if (l->array) {
            arrptr a = nullptr;
            fastestlookup(l->name, &a);
            l->what = a == nullptr ? nullptr : array_itself(a);
        } else {
            varptr v = find_var(l->name);
            l->what = v == nullptr ? nullptr : &v->val;
        }
    }
}

/// "[a]", the name being the current token; false after an error.
static bool read_array_item(FILE* inf, nameptr* flag) {
    arrptr a = nullptr;
    tokentipe name = token;
    if (!array_seek(name, &a)) return false;
    next_token(inf, flag);
    if (!tok_is(token, "]")) {
        error(Err::close_bracket_expected);
        return false;
    }
    next_token(inf, flag);
    add_to_list(name, true, array_itself(a));
    return true;
}

/// "x" or "[a]"; false after an error.
static bool read_item(FILE* inf, nameptr* flag) {
    bool array = tok_is(token, "[");
    if (array) next_token(inf, flag);
    unsigned char c = tok_char(token);
    bool is_name = is_lower(c);
    if (is_name && array) return read_array_item(inf, flag);
    varptr p = is_name ? find_var(token) : nullptr;
    if (!is_name) {
        error(Err::close_paren_expected);
    } else if (p == nullptr) {
        error(Err::undefined_variable, tok_text(token));
    } else {
        add_to_list(token, false, &p->val);
        next_token(inf, flag);
        return true;
    }
    return false;
}

bool read_ring_list(FILE* inf, nameptr* flag, bool empty) {
    begin_list();
    if (empty && tok_is(token, ")")) return true;
    for (;;) {
        if (!read_item(inf, flag)) return false;
        if (tok_is(token, ")")) return true;
        if (!tok_is(token, ",")) {
            error(Err::close_paren_expected);
            return false;
        }
        next_token(inf, flag);
    }
}

void force_ring(int32_t ring) {
    f256 = ring == 256;
    f2t16 = ring == 65536;
    finf = f256 || f2t16;
    modularmode = lintmode = ring > 0;
    set_modulus(ring);
    mod_is_prime = finf || (ring > 0 && is_prime(ring));
}

void carry_value(quolyptr value, int32_t from, int32_t to) {
    if (from == to) return;
    RingState now = ring_capture();
    if (from > 0) {
        force_ring(from);
        quoly_change_from_mod(value);
    }
    if (to > 0) {
        force_ring(to == 256 || to == 65536 ? 2 : to);
        quoly_change_to_mod(value);
    }
    ring_assign(now);
}

// ---- the walk over what is converted -------------------------------------------------------------------

/// Calls visit(location, ring of the value) for the scalars; stops when it says false.
template <class Visit> static bool walk_scalars(int32_t from, Visit visit) {
    for (varptr bucket : sca_store)
        for (varptr p = bucket; p != nullptr; p = p->next)
            if (p->val != nullptr && is_listed(&p->val) && !visit(&p->val, from)) return false;
    return true;
}

template <class Visit> static bool walk_elements(arrptr a, Visit visit) {
    if (a->spar != nullptr) {
        SparseWalk w = walk_sparse(a->spar, a->rows);
        while (colm_ptrptr row = next_row(w))
            for (colm_ptr p = *row; p != nullptr; p = p->next)
                if (!visit(&p->val, a->ring)) return false;
        return true;
    }
    for (int32_t k = 0; k < a->sizearr; k++) {
        quolyptr slot = dense_slot(a, k);
        if (*slot != nullptr && !visit(slot, a->ring)) return false;
    }
    return true;
}

/// Calls visit(array) for the arrays that are not in the ring `to` yet.
template <class Visit> static bool walk_arrays(int32_t to, Visit visit) {
    auto goes = [=](const arrnode* a) { return !is_alias(a) && a->ring != to && is_listed(a); };
    for (arrptr bucket : arr_store)
        for (arrptr a = bucket; a != nullptr; a = a->next)
            if (goes(a) && !visit(a)) return false;
    return syst == nullptr || !goes(syst) || visit(syst);
}

/// The values that stand in other rings and are converted.
template <class Visit> static bool walk_away(int32_t to, Visit visit) {
    for (away_value* entry = away_list; entry != nullptr; entry = entry->next)
        if (entry->ring != to && is_listed(entry->at) && !visit(&entry->value, entry->ring)) return false;
    return true;
}

// ---- images --------------------------------------------------------------------------------------------

namespace {
/// From one ring to another: the states that the steps of a conversion want.
struct Route {
    int32_t from, to;
    RingState leaving, entering;
};
}  // namespace

static Route route_between(int32_t from, int32_t to) {
    Route r = {};
    r.from = from;
    r.to = to;
    const RingState now = ring_capture();
    force_ring(from);
    modularmode = lintmode = 0;
    r.leaving = ring_capture();
    ring_assign(now);
    force_ring(to == 256 || to == 65536 ? 2 : to);
    r.entering = ring_capture();
    ring_assign(now);
    return r;
}

/// The image of *q, which stays in place.
static quoly image_by(const quolynode* q, const Route& route) {
    if (route.from <= 0) {
        ring_assign(route.entering);
        return quoly_image_to_mod(q);
    }
    ring_assign(route.leaving);
    quoly image = quoly_image_from_mod(q);
    if (route.to > 0) {
        ring_assign(route.entering);
        quoly_change_to_mod(&image);
    }
    return image;
}

/// A value of the ring in force may be replaced by a level: it is held then. Others nobody can touch.
static quoly image_of(quolyptr at, const Route& route, bool own) {
    if ((*at)->numb || !own) return image_by(*at, route);
    Value source;
    source.own = nullptr;
    source.hold = {at, &source.own, nullptr};
    hold(&source);
    quoly image = image_by(value_of(&source), route);
    let_go(&source);
    lintmode = route.from > 0;
    release(&source);
    return image;
}

/// A new value that was never finished: 0, in the ring before.
static void drop_unfinished(int32_t from) {
    boolean shape = lintmode;
    lintmode = from > 0;
    for (const away_value* entry = away_list; entry != nullptr; entry = entry->next) free_quoly(entry->at);
    lintmode = shape;
}

/// One walk over the values; false if a level has been opened.
static bool make_images(int32_t from, int32_t to) {
    begin_images(to > 0);
    look_up_list();
    drop_unfinished(from);
    Route route = route_between(from, to);
    auto visit = [&](quolyptr at, int32_t ring) {
        if (ring != route.from) route = route_between(ring, to);
        quoly image = image_of(at, route, ring == from);
        keep_image(&image);
        poll_interrupt();
        return !images_outdated();
    };
    return walk_scalars(from, visit) && walk_arrays(to, [&](arrptr a) { return walk_elements(a, visit); }) &&
           walk_away(to, visit) && !images_outdated();
}

void prepare_values(int32_t from, int32_t to) {
    const RingState saved = ring_save(), inside = ring_capture();
    const GcdCounters counters = gcd_counters_save();
    lookupgcd = -1000;  // gcds of images are none of the ring in force
    if (from > 0) modding_lift();
    while (!make_images(from, to)) ring_assign(inside);
    if (from > 0) modding_exchange();
    gcd_counters_restore(counters);
    ring_restore(saved);
}

// ---- the exchange --------------------------------------------------------------------------------------

static void exchange_element(quolyptr value, void*) { exchange_image(value); }

/// What is not converted is put away in its ring, and what is there in the new ring comes back.
static void sort_away(int32_t from, int32_t to) {
    away_value* before = away_list;  // what is put away now comes in front
    for (varptr bucket : sca_store)
        for (varptr p = bucket; p != nullptr; p = p->next)
            if (p->val != nullptr && !is_listed(&p->val)) put_away(&p->val, from);
    away_value** link = &away_list;
    while (*link != before) link = &(*link)->next;
    while (*link != nullptr) {
        away_value* entry = *link;
        if (entry->ring == to || is_listed(entry->at)) {
            bring_back(link);
        } else {
            link = &entry->next;
        }
    }
}

void exchange_values(int32_t from, int32_t to) {
    const boolean shape = lintmode;
    lintmode = to > 0;  // whether an entry has become 0 is seen in the shape that it has then
    rewind_images();
    auto exchange = [](quolyptr at, int32_t) {
        exchange_image(at);
        return true;
    };
    walk_scalars(from, exchange);
    walk_arrays(to, [=](arrptr a) {
        for_each_element(a, exchange_element, nullptr);
        a->ring = to;
        return true;
    });
    walk_away(to, exchange);
    lintmode = shape;
    images_exchanged();
    sort_away(from, to);
}
}  // namespace tolvex
