// Gathering the tokens of one statement, or of one condition, into a list.

#include "language/builtin_table.h"
#include "language/evaluator.h"
#include "language/statements.h"
#include "language/tokens/token_list.h"
#include "numbers/number.h"
#include "storage/interrupt.h"
namespace tolvex {
/// The number that begins at p, if it fits one digit of a long number.
static void bind_literal(nameptr p) {
    int64_t word = 0;
    nameptr last = p;
    for (nameptr q = p; q != nullptr && is_digit(tok_char(q->let)); q = q->next) {
        word = 10 * word + (tok_char(q->let) - '0');
        if (word > k_max_digit) return;
        last = q;
    }
    p->tipe = word_literal;
    p->word = static_cast<int32_t>(word);
    p->last = last;
}

void bind_list(nameptr first) {
    bool quoted = false, comment = false, digit = false;
    for (nameptr p = first; p != nullptr; p = p->next) {
        unsigned char c = tok_char(p->let);
        if (c == '\'' && !comment) quoted = !quoted;
        if (!quoted && (c == '{' || c == '}')) comment = c == '{';
        bool after_digit = digit;
        digit = !quoted && !comment && is_digit(c);
        if (quoted || comment) continue;
        if (digit && !after_digit) bind_literal(p);
        if (is_lower(c)) p->let.address = hash(p->let.name, k_variable_buckets);
        if (!is_upper(c)) continue;
        int32_t id = builtin_id(p->let);
        p->let.address =
            id >= 0 ? static_cast<int16_t>(k_builtin_address + id) : hash(p->let.name, k_function_buckets);
    }
}

namespace {
/// The list under construction and what the reader is inside of.
struct Gathering {
    BodyReader& r;
    Closer end;
    bool header;  // of a `for`: "to" and "by" are separators
    nameptr first, last;
    bool literal, comment, cut_off;
    bool after_definition_word;  // the token before was Func or Function
    bool after_digit;
    int32_t definitions;  // definitions open inside this statement
    int32_t structures;   // control statements open inside this statement
    enum { no_sum, sum_word, sum_header } sum;
};
}  // namespace

static bool is_definition_word() { return tok_is(token, "Func") || tok_is(token, "Function"); }

bool at_closer(Closer end) {
    switch (end) {
    case Closer::period:
        return at_char('.');
    case Closer::od:
        return tok_is(token, "od");
    case Closer::fi:
        return tok_is(token, "fi");
    case Closer::else_or_fi:
        return tok_is(token, "else") || tok_is(token, "fi");
    case Closer::then_word:
        return tok_is(token, "then");
    case Closer::do_word:
        return tok_is(token, "do");
    }
    return false;
}

bool input_has_ended(const BodyReader& r) {
    if (*r.flag != nullptr) return tok_is(token, k_end_token);
    return at_char(';') && (leftover[0] == 0 || leftover[0] == ' ') && at_end(r.inf);
}

/// The words of a header are separators there and names everywhere else.
static void store_separator(Gathering& g, nameptr node) {
    if (!g.header && g.sum != Gathering::sum_header) return;
    if (tok_is(token, "to")) tok_set(node->let, " to");
    if (tok_is(token, "by")) tok_set(node->let, " by");
}

/// Appends the current token.
static void append(Gathering& g) {
    nameptr node = nullptr;
    newname(&node);
    node->let = token;
    node->let.address = -1;
    if (!g.literal && !g.comment) store_separator(g, node);
    (g.last != nullptr ? g.last->next : g.first) = node;
    g.last = node;
}

/// What the current token, which is going to be appended, opens or closes.
static void note_nesting(Gathering& g) {
    if (g.comment) return;
    if (at_char('\'')) g.literal = !g.literal;
    if (g.literal) return;
    if (at_char('{')) {
        g.comment = true;
        return;
    }
    if (g.after_definition_word && is_upper(tok_char(token))) g.definitions++;
    g.after_definition_word = is_definition_word();
    if (tok_is(token, "if") || tok_is(token, "do")) g.structures++;
    if ((tok_is(token, "fi") || tok_is(token, "od")) && g.structures > 0) g.structures--;
    if (tok_is(token, "Sigma") || tok_is(token, "Prod") || (g.sum == Gathering::sum_header && at_char('>')))
        g.sum = Gathering::sum_word;
    else if (g.sum == Gathering::sum_word)
        g.sum = at_char('<') ? Gathering::sum_header : Gathering::no_sum;
}

/// The next token. In literals and comments every character counts.
static void advance(Gathering& g) {
    if (!g.literal && !g.comment) {
        if (leftover[0] == ' ' && *g.r.flag == nullptr) g.last->space = 1;
        next_token(g.r.inf, g.r.flag);
        return;
    }
    boolean eoln = 0;
    bool ended = *g.r.flag == nullptr ? at_end(g.r.inf) : false;
    dumbscanner(g.r.inf, &token, g.r.flag, &eoln);
    if (eoln && g.literal) fputs(" Warning. End of line encountered inside a literal.\n", stdout);
    g.cut_off = ended || tok_is(token, k_end_token);
}

/// The "." behind a digit: a decimal point if a digit follows, else the end of a definition. Its node is
/// appended in the first case and for a definition inside this statement. True if it ends the statement.
static bool period_behind_digit(Gathering& g) {
    bool outermost = g.definitions == 0;
    nameptr before = g.last;  // the digit
    append(g);
    advance(g);
    if (is_digit(tok_char(token))) return false;
    if (!outermost) {
        g.definitions--;
        return false;
    }
    // the period is the closer: it does not belong to the list
    freename(&before->next);
    g.last = before;
    g.r.after = token;
    g.r.token_ahead = true;
    tok_set(token, ".");
    return true;
}

/// True if the statement or condition ends in front of the current token.
static bool ends_here(Gathering& g) {
    if (tok_is(token, k_end_token)) return true;
    if (g.literal || g.comment || g.definitions > 0) return false;
    if (at_char(';') || at_char('{')) return true;
    if (at_closer(g.end) && g.structures == 0) return true;
    bool closing_word = tok_is(token, "od") || tok_is(token, "fi") || tok_is(token, "else");
    return closing_word && g.structures == 0;
}

/// One token of the list, and on to the next. False: the statement ends here.
static bool gather_one(Gathering& g) {
    if (g.comment && at_char('}')) {
        append(g);
        g.comment = false;
        advance(g);
        return true;
    }
    bool period = at_char('.') && !g.literal && !g.comment && (g.definitions > 0 || g.end == Closer::period);
    if (period && g.after_digit) {
        g.after_digit = false;
        return !period_behind_digit(g);
    }
    if (ends_here(g)) return false;
    if (period && g.definitions > 0) g.definitions--;
    note_nesting(g);
    g.after_digit = !g.literal && !g.comment && is_digit(tok_char(token));
    append(g);
    advance(g);
    return true;
}

bool attach(BodyReader& r, nameptr* q, Closer end, bool loop_header) {
    Gathering g = {r,     end,   loop_header, nullptr, nullptr,          false, false, false,
                   false, false, 0,           0,       Gathering::no_sum};
    tokentipe here = token;
    if (loop_header) {
        tok_set(token, ":");
        append(g);
        token = here;
    }
    nameptr marked = g.last;
    for (int64_t k = 0; !g.cut_off && gather_one(g); k++) {
        poll_every<1024>(k);
        if (*r.flag == nullptr && g.definitions > 0 && at_char(';') && at_end(r.inf) && !line_end_given)
            g.cut_off = true;
    }
    bool empty = g.last == marked;
    here = token;
    tok_set_end(token);
    append(g);
    token = here;
    *q = g.first;
    if (g.cut_off || empty) {
        freename(q);
        error(g.cut_off ? Err::end_of_file_inside : Err::statement_expected);
        return false;
    }
    bind_list(*q);
    last_attached = *q;
    return true;
}
}  // namespace tolvex
