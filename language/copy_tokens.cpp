#include "language/copy_tokens.h"

#include "language/tokens/token_list.h"
namespace tolvex {
void append_token(TokenCopy& c) {
    newname(c.link);
    (*c.link)->let = token;
    c.link = &(*c.link)->next;
}

void copy_token(TokenCopy& c) {
    append_token(c);
    next_token(c.inf, c.flag);
}

bool copy_literal(TokenCopy& c) {
    append_token(c);
    do {
        boolean eoln = 0;
        if (at_end(c.inf)) return false;
        dumbscanner(c.inf, &token, c.flag, &eoln);
        append_token(c);
    } while (!at_char('\''));
    next_token(c.inf, c.flag);
    return true;
}

bool copy_header(TokenCopy& c, bool in_brackets) {
    int32_t depth = 0;
    while (!at_char('>')) {
        if (at_char(';') || tok_is(token, k_end_token)) {
            error(Err::sum_header_not_closed, ";");
            return false;
        }
        if (at_char('[') || at_char('(')) depth++;
        if ((at_char(']') || at_char(')')) && --depth < 0 && in_brackets) {
            error(Err::sum_header_end);
            return false;
        }
        if (tok_is(token, "to")) tok_set(token, " to");
        if (tok_is(token, "by")) tok_set(token, " by");
        copy_token(c);
    }
    copy_token(c);
    return true;
}
}  // namespace tolvex
