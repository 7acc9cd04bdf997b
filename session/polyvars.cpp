#include "session/polyvars.h"

#include "field/field_modes.h"
#include "field/modding.h"
#include "gcd/gcd_stash.h"
#include "language/array_values.h"
#include "language/expre.h"
#include "language/language_modes.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/ring_switch.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "session/levels.h"
#include "session/loop.h"
#include "session/questions.h"
#include "session/ring_list.h"
#include "session/session_modes.h"
#include "storage/failure.h"

#include <cstdio>
#include <initializer_list>
namespace tolvex {
namespace {
/// One item of the list, read up to the token behind it.
struct PolyItem {
    tokentipe name;
    bool at_end;
    bool removal;
    quoly value;  // what replaces a removed variable; nil: nothing
};
}  // namespace

// ---- the names -----------------------------------------------------------------------------------------

/// Words of the language that an expression could not be told from a variable.
static bool is_reserved(const tokentipe& name) {
    static const char* const words[] = {"or",   "and", "not", "to",  "by",    "do",   "od",  "then",
                                        "else", "fi",  "if",  "for", "while", "from", "quit"};
    for (const char* word : words)
        if (tok_is_text(name, word)) return true;
    return false;
}

static bool is_lower_case_name(const tokentipe& name) {
    unsigned char c = tok_char(name);
    return is_lower(c) && !is_reserved(name);
}

/// Rewriting all values is not for a level above 1, nor while a value is half computed.
static bool list_may_change() {
    if (levelcount == 1 && eval_state.held == nullptr) return true;
    error(Err::not_now);
    return false;
}

// ---- declaring -----------------------------------------------------------------------------------------

/// Calls f for the values that stand in other rings, each in its own.
static void for_each_away(void (*f)(quolyptr value, void* context), void* context) {
    RingState now = ring_capture();
    for (away_value* entry = away_list; entry != nullptr; entry = entry->next) {
        force_ring(entry->ring);
        f(&entry->value, context);
    }
    each_array([&](arrptr a) {
        if (a->ring == now.modulus) return;
        force_ring(a->ring);
        for_each_element(a, f, context);
    });
    ring_assign(now);
}

static void add_level_in_front(quolyptr value, void*) { quoly_insert_level(*value, 1); }

static bool declare(PolyItem& item) {
    if (its_a_polyname(item.name) != 0) {
        printf(" Already had that value; no change in polynomial variables.\n");
        return true;
    }
    Err fault = Err{};
    arrptr a = nullptr;
    fastestlookup(item.name, &a);
    if (a != nullptr || find_var(item.name) != nullptr) {
        fault = Err::polyvar_name_taken;
    } else if (number_polys == k_max_polys) {
        fault = Err::too_many_polyvars;
    }
    if (fault != Err{}) {
        error(fault, tok_text(item.name));
        return false;
    }
    if (!item.at_end && !list_may_change()) return false;
    interrupts_held++;
    gcd_stash_outdated();
    insert_poly_name(item.name, item.at_end);
    reset_pseudo_poly();
    if (!item.at_end) {
        for_each_value(add_level_in_front, nullptr);
        for_each_away(add_level_in_front, nullptr);
    }
    interrupts_held--;
    return true;
}

// ---- removing ------------------------------------------------------------------------------------------

namespace {
/// The walk over all values when a variable goes.
struct Removal {
    int32_t level;
    const quolynode* value;
    bool found;        // some value contains the variable
    bool entries;      // the values are those of a sparse array
    int32_t warnings;  // written so far
};
}  // namespace

static void look_for_level(quolyptr value, void* context) {
    auto* r = static_cast<Removal*>(context);
    if (quoly_contains_level(*value, r->level)) r->found = true;
}

static void take_level_out(quolyptr value, void* context) {
    constexpr int32_t k_most_warnings = 40;
    auto* r = static_cast<Removal*>(context);
    if (r->value != nullptr && !quoly_put_number(value, r->level, r->value) &&
        r->warnings++ < k_most_warnings)
        fputs(r->entries
                  ? "Warning. A quoly denominator in a sparse array entry has become 0.  That entry has "
                    "been set to 1.\n"
                  : "Warning. A quoly denominator has become 0.  That value has been set to 1.\n",
              stdout);
    quoly_remove_level(*value, r->level);
}

/// Runs `act` in another ring, the number having gone there with it.
template <class Act> static void in_ring_of(Removal& r, int32_t ring, Act act) {
    const quolynode* value = r.value;
    quoly image = nullptr;
    if (value != nullptr) {
        quoly_assign(value, &image);
        carry_value(&image, modulus, ring);
    }
    RingState now = ring_capture();
    force_ring(ring);
    r.value = image;
    // Modding polynomials that stand in residues mean nothing there; who comes back is reduced then.
    const bool foreign = tower_ring > 0 && tower_ring != ring;
    if (foreign) suspend_modding();
    act();
    if (foreign) resume_modding();
    free_quoly(&image);
    ring_assign(now);
    r.value = value;
}

/// The same for arrays, and for values that stand in other rings.
static void take_level_out_of_arrays(Removal& r) {
    each_array([&](arrptr a) {
        r.entries = a->spar != nullptr;
        if (a->ring == modulus)
            for_each_element(a, take_level_out, &r);
        else
            in_ring_of(r, a->ring, [&] { for_each_element(a, take_level_out, &r); });
    });
    r.entries = false;
}

static void take_level_out_of_away(Removal& r) {
    for (away_value* entry = away_list; entry != nullptr; entry = entry->next)
        in_ring_of(r, entry->ring, [&] { take_level_out(&entry->value, &r); });
}

/// True if a modding polynomial contains the variable of that level: a level above it.
static bool stands_in_modding(int32_t level) {
    for (polypt v = polynames; v != nullptr && v->depth < level; v = v->next)
        for (const polynode* p : {v->p, v->rational_p})
            if (p != nullptr && poly_contains_level(p, level - v->depth + 1)) return true;
    return false;
}

/// It occurs in none of them.
static void take_level_out_of_modding(int32_t level) {
    for (polypt v = polynames; v != nullptr && v->depth < level; v = v->next)
        for (poly* p : {&v->p, &v->rational_p})
            if (*p != nullptr) remove_one(p, level - v->depth + 1);
}

static bool remove_variable(PolyItem& item) {
    int32_t level = 0;
    polypt variable = nullptr;
    if (!is_poly_name2(item.name, &level, &variable)) {
        error(Err::no_such_polyvar, tok_text(item.name));
        return false;
    }
    if (variable->p != nullptr) {
        error(Err::polyvar_modded, tok_text(item.name));
        return false;
    }
    if (!list_may_change()) return false;
    Removal r = {level, item.value, stands_in_modding(level), false, 0};
    if (item.value == nullptr) {
        for_each_value(look_for_level, &r);
        for_each_away(look_for_level, &r);
    }
    if (r.found) {
        error(Err::polyvar_value_not_number, tok_text(item.name));
        return false;
    }
    interrupts_held++;
    for_each_scalar(take_level_out, &r);
    take_level_out_of_arrays(r);
    take_level_out_of_away(r);
    gcd_stash_outdated();
    take_level_out_of_modding(level);
    delete_poly_name(level);
    reset_pseudo_poly();
    interrupts_held--;
    return true;
}

// ---- the list ------------------------------------------------------------------------------------------

/// Reads the number behind "-x ="; false after an error.
static bool read_value(FILE* inf, nameptr* flag, PolyItem* item) {
    next_token(inf, flag);
    old_expre(inf, &item->value, flag);
    if (item->value != nullptr && (item->value->numb || item->value->rat)) return true;
    free_quoly(&item->value);
    error(Err::polyvar_value_not_number, tok_text(item->name));
    return false;
}

/// Reads one item, the current token its first; then the token behind it, which must go on or end the list.
static bool read_item(FILE* inf, nameptr* flag, bool at_question, PolyItem* item) {
    if (tok_is(token, "-")) {
        item->removal = true;
        next_token(inf, flag);
    }
    if (!is_lower_case_name(token)) {
        error(Err::polyvar_bad_name);
        return false;
    }
    item->name = token;
    next_token(inf, flag);
    if (item->removal && tok_is(token, "=") && !read_value(inf, flag, item)) return false;
    bool ends = at_question ? at_terminator() : tok_is(token, ")");
    if (tok_is(token, ",") || ends) return true;
    free_quoly(&item->value);
    error(Err::polyvar_separator);
    return false;
}

bool attach_poly(FILE* inf, nameptr* flag, bool at_end, bool at_question) {
    for (;;) {
        PolyItem item = {{}, at_end, false, nullptr};
        if (!read_item(inf, flag, at_question, &item)) return false;
        bool done = item.removal ? remove_variable(item) : declare(item);
        free_quoly(&item.value);
        if (!done) return false;
        if (!tok_is(token, ",")) return true;
        next_token(inf, flag);
    }
}

void ask_polyvars() {
    QuestionMark mark = open_question(" Enter polynomial variable:\n");
    nameptr stream = nullptr;
    bool at_end = tok_is(token, ">");
    if (at_end) next_token(Input, &stream);
    attach_poly(Input, &stream, at_end, true);
    close_question(mark);
}
}  // namespace tolvex
