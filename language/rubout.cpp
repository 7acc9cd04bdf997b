#include "language/rubout.h"

#include "language/array_values.h"
#include "language/evaluator.h"
#include "language/functions.h"
#include "language/symbols.h"
#include "poly/poly_vars.h"
namespace tolvex {
static void delete_scalar(FILE* inf, nameptr* flag) {
    if (number_polys > 0 && its_a_polyname(token) != 0) {
        error(Err::polyvar_as_name);
        return;
    }
    tokentipe name = token;
    if (is_running_parameter(name)) {
        error(Err::deletion_in_use);
        return;
    }
    next_token(inf, flag);
    if (!delete_var(name)) error(Err::undefined_variable, tok_text(name));
}

static bool is_named(const arrnode* a, const void* name) {
    return same_name(a->name, *static_cast<const tokentipe*>(name));
}

/// `[*x]`: all arrays of the name.
static void delete_all_of_name(FILE* inf, nameptr* flag) {
    tokentipe name = token;
    arrptr a = nullptr;
    if (!is_lower(tok_char(name)))
        error(Err::undefined_array, tok_text(name));
    else if (array_seek(name, &a) && (a = cancel_arrays(is_named, &name)) != nullptr)
        may_cancel(a, name);
    if (a == nullptr) next_token(inf, flag);
}

/// `[**]`: every array. What cannot be cancelled stops it.
static void delete_all_arrays(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    arrptr kept = cancel_arrays([](const arrnode*, const void*) { return true; }, nullptr);
    if (kept != nullptr) may_cancel(kept, kept->name);
}

/// `[x]`, `[*x]`, `[**]`.
static void delete_array(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    if (at_char('<')) {
        error(Err::system_array_not_deleted);
        return;
    }
    if (!at_char('*')) {
        tokentipe name = token;
        if (!removearray(false, name)) return;
        next_token(inf, flag);
    } else {
        next_token(inf, flag);
        at_char('*') ? delete_all_arrays(inf, flag) : delete_all_of_name(inf, flag);
    }
    expect(inf, flag, ']', Err::close_bracket_expected);
}

/// The next older array of the same name.
static arrptr older_array(arrptr a) {
    arrptr older = a->next;
    while (older != nullptr && !same_name(older->name, a->name)) older = older->next;
    return older;
}

/// `<[x]>`: all arrays of the name but the newest.
static void delete_older_arrays(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    tokentipe name = token;
    arrptr newest = nullptr;
    if (at_char('<')) {
        error(Err::system_array_not_deleted);
        return;
    }
    if (!array_seek(name, &newest)) return;
    for (arrptr a = older_array(newest); a != nullptr; a = older_array(a))
        if (!may_cancel(a, name)) return;
    cancel_arrays([](const arrnode* a,
                     const void* n) { return a != n && is_named(a, &static_cast<const arrnode*>(n)->name); },
                  newest);
    next_token(inf, flag);
    if (expect(inf, flag, ']', Err::close_bracket_expected))
        expect(inf, flag, '>', Err::greater_expected_after_name);
}

/// "<": the older definitions of a function, or all arrays of a name but the newest.
static void delete_older(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    if (at_char('[')) {
        delete_older_arrays(inf, flag);
        return;
    }
    if (!is_upper(tok_char(token))) {
        error(Err::delete_older_form);
        return;
    }
    tokentipe name = token;
    next_token(inf, flag);
    if (!at_char('>')) {
        error(Err::greater_expected_after_name);
        return;
    }
    next_token(inf, flag);
    delete_older_functions(name);
}

/// The newest definition of a function.
static void delete_definition(FILE* inf, nameptr* flag) {
    tokentipe name = token;
    next_token(inf, flag);
    delete_function(name);
}

/// One item of a deletion.
static void single_rubout(FILE* inf, nameptr* flag) {
    unsigned char c = tok_char(token);
    if (is_lower(c))
        delete_scalar(inf, flag);
    else if (is_upper(c))
        delete_definition(inf, flag);
    else if (c == '[')
        delete_array(inf, flag);
    else if (c == '<')
        delete_older(inf, flag);
    else
        error(Err::delete_form);
}

void rubout(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    if (!at_char('(')) {
        single_rubout(inf, flag);
        return;
    }
    do {
        next_token(inf, flag);
        single_rubout(inf, flag);
    } while (at_char(','));
    expect(inf, flag, ')', Err::delete_list);
}
}  // namespace tolvex
