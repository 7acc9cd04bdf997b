#include "language/rubout.h"

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

/// "[": no array exists, so all of them are deleted, and none can be.
static void delete_array(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    bool every = at_char('*');
    if (every) next_token(inf, flag);
    if (at_char('<')) {
        error(Err::system_array_not_deleted);
    } else if (every && at_char('*')) {
        next_token(inf, flag);
        expect(inf, flag, ']', Err::close_bracket_expected);
    } else {
        error(Err::undefined_array);
    }
}

/// "<": the older definitions of a function, or all arrays of a name but the last.
static void delete_older(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    if (at_char('[')) {
        delete_array(inf, flag);
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
