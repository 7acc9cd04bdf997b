#include "session/ring_list.h"

#include "language/other_rings.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_convert.h"
#include "storage/failure.h"
namespace tolvex {
namespace {
/// A location that the next change converts. It is only compared, never followed: the variable may be gone.
struct listed_value {
    listed_value* next;
    const quoly* at;
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

static bool is_listed(const quoly* at) {
    if (everything) return true;
    for (const listed_value* l = list; l != nullptr; l = l->next)
        if (l->at == at) return true;
    return false;
}

/// "x" or "[a]"; false after an error.
static bool read_item(FILE* inf, nameptr* flag) {
    bool array = tok_is(token, "[");
    if (array) next_token(inf, flag);
    unsigned char c = tok_char(token);
    bool is_name = c >= 'a' && c <= 'z';
    varptr p = is_name && !array ? find_var(token) : nullptr;
    if (!is_name) {
        error(Err::close_paren_expected);
    } else if (array) {
        error(Err::undefined_array, tok_text(token));
    } else if (p == nullptr) {
        error(Err::undefined_variable, tok_text(token));
    } else {
        listed_value* l = pool_pop<&listed_value::next>(list_garb, nullptr);
        *l = {list, &p->val};
        list = l;
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

void carry_values(int32_t from, int32_t to) {
    Change change = {from, to};
    drop_unfinished(from);
    away_value* before = away_list;  // what is put away now comes in front
    for_each_value(carry_or_put_away, &change);
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
