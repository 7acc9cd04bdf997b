// Built-in functions that show something, or work on storage.
#include "language/builtin_table.h"
#include "language/symbols.h"
#include "numbers/display_modes.h"
#include "poly/poly_display.h"
#include "quoly/quoly_display.h"

#include <cstdio>
#include <ctime>
namespace tolvex {
static void zero_after_name(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    quoly_set(0, call.n);
}

void builtin_Ignore(BuiltinCall& call) { zero_after_name(call); }

void builtin_Time(BuiltinCall& call) {
    time_t now = time(nullptr);
    fputs(asctime(localtime(&now)), stdout);
    zero_after_name(call);
}

void builtin_Bell(BuiltinCall& call) {
    putchar(7);
    zero_after_name(call);
}

/// Zap: the free lists are forgotten, as if the session were fresh; their records are not given out again.
void builtin_Zap(BuiltinCall& call) {
    numhead = nullptr;
    imhead = nullptr;
    polygarb = nullptr;
    quolygarb = nullptr;
    zero_after_name(call);
}

// ---- displays ------------------------------------------------------------------------------------------

static void end_line(bool open) {
    if (open) putchar('\n');
}

/// ZZ1 and ZZ2: the nodes of a value, one a line, with the names of the variables or with the numbers of
/// their levels. ZZ2 switches the display of results off, since it is meant for a session whose variables are
/// in disorder.
void builtin_ZZ1(BuiltinCall& call) {
    constexpr int32_t k_without_names = 107;  // ORDER BUILTIN_IDS
    polypt names = call.id == k_without_names ? nullptr : polynames;
    Value v;
    standard_read(call, &v);
    const quolynode* q = value_of(&v);
    if (q->numb) {
        end_line(quoly_display(stdout, 1, q));
    } else {
        crude_poly_disp(stdout, q->numer, 0, names);
        if (q->denom != nullptr) crude_poly_disp(stdout, q->denom, 0, names);
    }
    if (call.id == k_without_names) noisy = 0;
    drop_data(&v);
    quoly_set(0, call.n);
}

/// ZZ3: a value in the internal variable names, for when the table of variables is out of order.
void builtin_ZZ3(BuiltinCall& call) {
    constexpr int32_t k_internal_names = 78;
    Value v;
    standard_read(call, &v);
    if (number_polys > k_internal_names) {
        printf("*** Warning: too many variables (> 78). Can't do ZZ3.\n");
    } else if (number_polys == 0) {
        end_line(quoly_display(stdout, 1, value_of(&v)));
    } else {
        eval_state.user_line_sup = do_line_sup;
        eval_state.user_names = polynames;
        polynames = dodo;
        do_line_sup = 0;
        end_line(quoly_display(stdout, 1, value_of(&v)));
        polynames = eval_state.user_names;
        eval_state.user_names = nullptr;
        do_line_sup = eval_state.user_line_sup;
    }
    drop_data(&v);
    quoly_set(0, call.n);
}

// ---- exchange of values --------------------------------------------------------------------------------

namespace {
/// Two arguments that are changed where they are.
struct TwoPlaces {
    ResultPlace a, b;
    quolyptr at_a, at_b;  // nil: there is no such place
};
}  // namespace

/// False if one of them is no place.
static bool open_places(BuiltinCall& call, TwoPlaces* p) {
    open_call(call);
    read_result_place(call, &p->a);
    need_comma(call);
    read_result_place(call, &p->b);
    close_call(call);
    p->at_a = place_to_change(&p->a);
    p->at_b = p->at_a == nullptr ? nullptr : place_to_change(&p->b);
    if (p->at_b == nullptr) return false;
    own_value(p->at_a);
    own_value(p->at_b);
    return true;
}

static void close_places(const TwoPlaces& p) {
    close_place(p.a);
    close_place(p.b);
}

/// Swap(a, b): the values change places; nothing is copied.
void builtin_Swap(BuiltinCall& call) {
    TwoPlaces p;
    if (open_places(call, &p)) {
        quoly t = *p.at_a;
        *p.at_a = *p.at_b;
        *p.at_b = t;
        close_places(p);
    }
    quoly_set(0, call.n);
}

/// Move(a, b): a takes the value of b, which becomes 0.
void builtin_Move(BuiltinCall& call) {
    TwoPlaces p;
    if (open_places(call, &p)) {
        if (p.at_a != p.at_b) {
            free_quoly(p.at_a);
            *p.at_a = *p.at_b;
            *p.at_b = nullptr;
            quoly_set(0, p.at_b);
        }
        close_places(p);
    }
    quoly_set(0, call.n);
}
}  // namespace tolvex
