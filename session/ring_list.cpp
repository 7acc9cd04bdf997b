#include "session/ring_list.h"

#include "language/array_values.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_convert.h"
#include "storage/failure.h"
namespace tolvex {
namespace {
/// What the next change converts: a location, or an array itself. It is only compared, never followed: the variable
/// may be gone.
struct listed_value {
    listed_value* next;
    const void* what;
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

static void add_to_list(const void* what) {
    listed_value* l = pool_pop<&listed_value::next>(list_garb, nullptr);
    *l = {list, what};
    list = l;
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
    add_to_list(array_itself(a));
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
        add_to_list(&p->val);
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

namespace {
struct Change {
    int32_t from, to;
};
}  // namespace

static void carry_or_put_away(quolyptr value, void* context) {
    const auto* change = static_cast<const Change*>(context);
    if (!is_listed(value)) {
        put_away(value, change->from);
    } else if (change->to > 0) {
        quoly_change_to_mod(value);
    } else {
        quoly_change_from_mod(value);
    }
}

/// A new value that was never finished: 0, in the ring before.
static void drop_unfinished(int32_t from) {
    boolean shape = lintmode;
    lintmode = from > 0;
    for (const away_value* entry = away_list; entry != nullptr; entry = entry->next) free_quoly(entry->at);
    lintmode = shape;
}

static void element_to_mod(quolyptr value, void*) { quoly_change_to_mod(value); }
static void element_from_mod(quolyptr value, void*) { quoly_change_from_mod(value); }

/// The array itself goes to the ring `to`. Whether an entry has become 0 is seen in the shape that it has then.
static void carry_array(arrptr a, int32_t to) {
    RingState now = ring_capture();
    if (a->ring > 0) {
        force_ring(a->ring);
        modularmode = lintmode = 0;
        for_each_element(a, element_from_mod, nullptr);
    }
    if (to > 0) {
        force_ring(to == 256 || to == 65536 ? 2 : to);
        for_each_element(a, element_to_mod, nullptr);
    }
    ring_assign(now);
    a->ring = to;
}

void carry_values(int32_t from, int32_t to) {
    Change change = {from, to};
    drop_unfinished(from);
    away_value* before = away_list;  // what is put away now comes in front
    for_each_scalar(carry_or_put_away, &change);
    each_array([=](arrptr a) {
        if (a->ring != to && is_listed(a)) carry_array(a, to);
    });
    away_value** link = &away_list;
    while (*link != before) link = &(*link)->next;
    while (*link != nullptr) {
        away_value* entry = *link;
        if (entry->ring != to && !is_listed(entry->at)) {
            link = &entry->next;
            continue;
        }
        carry_value(&entry->value, entry->ring, to);
        bring_back(link);
    }
}
}  // namespace tolvex
