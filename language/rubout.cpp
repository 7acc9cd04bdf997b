#include "language/rubout.h"

#include "language/evaluator.h"
#include "language/symbols.h"
#include "poly/poly_vars.h"
namespace tolvex {
static void delete_scalar(FILE* inf, nameptr* flag) {
    if (number_polys > 0 && its_a_polyname(token) != 0) {
        error(Err::polyvar_as_name);
        return;
    }
    tokentipe name = token;
    next_token(inf, flag);
    if (!delete_var(name)) error(Err::undefined_variable, tok_text(name));
}

/// One item of a deletion: variables exist, functions and arrays do not.
static void single_rubout(FILE* inf, nameptr* flag) {
    unsigned char c = tok_char(token);
    if (is_lower(c)) {
        delete_scalar(inf, flag);
    } else if (is_upper(c)) {
        error(Err::no_function_to_delete);
    } else if (c == '[') {
        next_token(inf, flag);
        error(Err::undefined_array);
    } else {
        error(Err::delete_form);
    }
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
