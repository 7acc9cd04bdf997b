// Sums and products over ranges: Sigma<i = a, b>[e], Prod<i = a, b>[e], with any number of headers.

#include "language/builtin_table.h"
#include "language/copy_tokens.h"
#include "language/integer_words.h"
#include "language/stack_bound.h"
#include "language/statements.h"
#include "language/tokens/token_list.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_mult.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- copying the construct from the stream -------------------------------------------------------------

static bool opens() { return at_char('[') || at_char('('); }
static bool closes() { return at_char(']') || at_char(')'); }

/// From the opening bracket up to its mate.
static bool copy_body(TokenCopy& c) {
    int32_t depth = 0;
    do {
        if (at_char('\'')) {
            if (!copy_literal(c)) {
                error(Err::end_of_file_inside);
                return false;
            }
            continue;
        }
        if (at_char(';')) {
            error(Err::sum_body_not_closed, ";");
            return false;
        }
        if (opens()) depth++;
        if (closes()) depth--;
        if (depth > 0)
            copy_token(c);
        else
            append_token(c);
    } while (depth > 0);
    return true;
}

static bool copy_construct(TokenCopy& c) {
    while (at_char('<'))
        if (!copy_header(c, false)) return false;
    if (!opens()) {
        error(Err::sum_body_expected);
        return false;
    }
    return copy_body(c);
}

// ---- evaluation ----------------------------------------------------------------------------------------

namespace {
struct RangeSum {
    bool product;
    bool words;  // integer mode
    FILE* inf;
    nameptr* flag;
};
}  // namespace

/// From the opening bracket, the current token, over the body that no turn has read to its mate.
static void skip_body(RangeSum& s) {
    const char closing = at_char('[') ? ']' : ')';
    int32_t depth = 0;
    bool literal = false;
    for (; !tok_is(token, k_end_token); next_token(s.inf, s.flag)) {
        if (at_char('\'')) literal = !literal;
        if (literal) continue;
        if (opens()) depth++;
        if (closes() && --depth == 0) break;
    }
    if (!at_char(closing)) error(Err::sum_body_not_closed);
}

/// What follows a header of an empty range: further headers, then the body.
static void skip_rest(RangeSum& s) {
    while (at_char('<')) {
        while (!at_char('>') && !tok_is(token, k_end_token)) next_token(s.inf, s.flag);
        if (at_char('>')) next_token(s.inf, s.flag);
    }
    if (opens())
        skip_body(s);
    else
        error(Err::sum_body_expected);
}

/// In integer mode sums and products wrap as all words do.
static void accumulate_words(const RangeSum& s, quolyptr n, quolyptr value) {
    int32_t sum = 0, turn = 0;
    word_of_value(*n, &sum);
    word_of_value(*value, &turn);
    value_of_word(s.product ? word_product(sum, turn) : word_sum(sum, turn), n);
    free_quoly(value);
}

static void accumulate(const RangeSum& s, quolyptr n, quolyptr value) {
    if (s.words) {
        accumulate_words(s, n, value);
    } else if (s.product) {
        fast_quoly_mult(n, *value);
        free_quoly(value);
    } else {
        best_quoly_add(n, *value);
        *value = nullptr;
    }
}

static void sum_mult_up(RangeSum& s, quolyptr n);

/// One turn: a further header, or the body in its brackets; the closing bracket is the current token
/// afterwards.
static bool one_turn(RangeSum& s, quolyptr value) {
    if (at_char('<')) {
        sum_mult_up(s, value);
        return closes();
    }
    if (!opens()) {
        error(Err::sum_body_expected);
        return false;
    }
    char closing = at_char('[') ? ']' : ')';
    next_token(s.inf, s.flag);
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    if (s.words)
        value_of_word(old_iexpre(s.inf, s.flag), value);
    else
        old_expre(s.inf, value, s.flag);
    eval_state.bar_closes = saved;
    if (at_char(closing)) return true;
    error(Err::sum_body_not_closed);
    return false;
}

/// The header after its "<", up to and over ">".
static bool read_header(RangeSum& s, LoopHeader* h) {
    next_token(s.inf, s.flag);
    if (!set_up_for_loop(s.inf, s.flag, h)) return false;
    if (!at_char('>')) {
        error(Err::sum_header_end);
        return false;
    }
    next_token(s.inf, s.flag);
    return true;
}

/// *n := the sum from the "<" at the current token; the closing bracket is the current token afterwards.
static void sum_over_range(RangeSum& s, quolyptr n) {
    quoly_set(s.product ? 1 : 0, n);
    LoopHeader h;
    if (stack_is_low()) {
        error(Err::nested_too_deeply);
        return;
    }
    if (!read_header(s, &h)) return;
    LoopTurns t = turns_of(h);
    if (t.index > t.last) {
        skip_rest(s);
        return;
    }
    nameptr body = *s.flag;
    held_operand here = {n, n, eval_state.held};
    eval_state.held = &here;
    for (;;) {
        poll_interrupt();
        quoly value = nullptr;
        bool good = one_turn(s, &value);
        if (value != nullptr) accumulate(s, n, &value);
        if (!good) break;
        next_turn(t, h.name);
        if (t.index > t.last) break;
        start_list(body, s.flag);
    }
    eval_state.held = here.below;
}

static void sum_mult_up(RangeSum& s, quolyptr n) {
    ScratchMark mark = scratch_mark();
    sum_over_range(s, n);
    scratch_release(mark);
}

/// Sigma and Prod: a construct from the stream is copied first.
void builtin_Sum(BuiltinCall& call) {
    constexpr int32_t k_product_id = 66;  // ORDER BUILTIN_IDS
    next_token(call.inf, call.flag);
    if (!at_char('<')) {
        error(Err::sum_header_expected);
        quoly_set(0, call.n);
        return;
    }
    RangeSum s = {call.id == k_product_id, integerflag && *call.flag != nullptr, call.inf, call.flag};
    if (*call.flag != nullptr) {
        sum_mult_up(s, call.n);
    } else {
        TokenCopy copy = {call.inf, call.flag, nullptr, nullptr};
        copy.link = &copy.first;
        Unfinished u;
        begin_unfinished(
            u, [](void* what) { freename(static_cast<nameptr*>(what)); }, &copy.first);
        bool copied = copy_construct(copy);
        tokentipe last = token;
        tok_set_end(token);
        append_token(copy);
        token = last;
        if (copied) {
            bind_list(copy.first);
            nameptr cursor;
            start_list(copy.first, &cursor);
            s.flag = &cursor;
            sum_mult_up(s, call.n);
            currentchar = nullptr;
        } else {
            quoly_set(0, call.n);
        }
        end_unfinished(u);
        freename(&copy.first);
        if (!copied) return;
    }
    if (closes()) next_token(call.inf, call.flag);
}
}  // namespace tolvex
