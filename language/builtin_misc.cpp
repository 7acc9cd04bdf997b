// Built-in functions that show something, or work on storage.
#include "language/builtin_table.h"
#include "language/locations.h"
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

/// The variable that an argument `x` or `^x` names.
static quolyptr storage_argument(BuiltinCall& call) {
    if (at_char('^')) next_token(call.inf, call.flag);
    quolyptr at = nullptr;
    new_get_quoly_ptr(&at, call.inf, call.flag);
    return at;
}

static void two_places(BuiltinCall& call, quolyptr* a, quolyptr* b) {
    open_call(call);
    *a = storage_argument(call);
    need_comma(call);
    *b = storage_argument(call);
    close_call(call);
    if (*a != nullptr && *b != nullptr) {
        own_value(*a);
        own_value(*b);
    }
}

/// Swap(a, b): the values change places; nothing is copied.
void builtin_Swap(BuiltinCall& call) {
    quolyptr a = nullptr, b = nullptr;
    two_places(call, &a, &b);
    if (a != nullptr && b != nullptr) {
        quoly t = *a;
        *a = *b;
        *b = t;
    }
    quoly_set(0, call.n);
}

/// Move(a, b): a takes the value of b, which becomes 0.
void builtin_Move(BuiltinCall& call) {
    quolyptr a = nullptr, b = nullptr;
    two_places(call, &a, &b);
    if (a != nullptr && b != nullptr && a != b) {
        free_quoly(a);
        *a = *b;
        *b = nullptr;
        quoly_set(0, b);
    }
    quoly_set(0, call.n);
}
}  // namespace tolvex
