// The trail of functions and statements that error reports and new levels show.

#include "language/evaluator.h"
#include "language/functions.h"
namespace tolvex {
static constexpr int32_t k_reported_calls = 5000;
static constexpr int32_t k_same_names = 9;  // consecutive frames of one function that are named
static constexpr int32_t k_names_a_line = 20;
static constexpr int32_t k_trail_columns = 68;

static bool is_word(unsigned char c) { return is_lower(c) || is_upper(c); }

/// Writes tokens up to `until`, which is not written; end marks as `end`. A blank only where two words would
/// become one.
static void print_tokens(const namenode* p, const namenode* until, const char* end, bool broken) {
    bool literal = false, after_word = false;
    int32_t column = 0;
    for (; p != nullptr && p != until; p = p->next) {
        const char* text = tok_is(p->let, k_end_token) ? end : tok_text(p->let);
        if (*text == '\'') literal = !literal;
        auto c = static_cast<unsigned char>(*text);
        if (after_word && !literal && (is_word(c) || is_digit(c) || c == '_'))
            column += fputs(" ", stdout) >= 0;
        fputs(text, stdout);
        column += static_cast<int32_t>(strlen(text));
        after_word = !literal && (is_word(c) || c == ' ');
        if (broken && column >= k_trail_columns) {
            putchar('\n');
            column = 0;
        }
    }
}

bool report_calls() {
    if (call_frames == nullptr) return false;
    fputs("*** The most recent function evaluations were:\n ", stdout);
    int32_t printed = 0, count = 0;
    bool open = true;
    for (const CallFrame* c = call_frames; c != nullptr && count < k_reported_calls;) {
        int32_t same = 0;
        const funcnode* f = c->f;
        for (; c != nullptr && c->f == f && count < k_reported_calls; c = c->below, count++) {
            if (++same > k_same_names) continue;
            printf("%s ", tok_text(f->name));
            if (++printed % k_names_a_line == 0) fputs("\n ", stdout);
        }
        open = same <= k_same_names;
        if (!open) printf(" ... %d more with this name. \n", same - k_same_names);
    }
    return open;
}

bool report_statements() {
    if (startexpr == nullptr && prev_expr == nullptr) return false;
    fputs("\n*** Function was interrupted at:\n", stdout);
    if (prev_expr != nullptr) {
        print_tokens(prev_expr, nullptr, ";", true);
        putchar('\n');
    }
    print_tokens(startexpr, currentchar, "", false);
    return true;
}
}  // namespace tolvex
