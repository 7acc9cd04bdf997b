#include "language/parse.h"

#include "language/array_statement.h"
#include "language/evaluator.h"
#include "language/ports.h"
#include "language/rubout.h"
#include "language/small_words.h"
#include "language/stack_bound.h"
#include "language/write_out.h"
namespace tolvex {
// ---- one routine a kind of statement -------------------------------------------------------------------

static void empty_statement(FILE*, quolyptr, nameptr*) { tok_set(token, "@"); }

static void command_statement(FILE* inf, quolyptr n, nameptr* flag) { run_command(inf, n, flag); }

static void delete_statement(FILE* inf, quolyptr n, nameptr* flag) {
    rubout(inf, flag);
    quoly_set(0, n);
}

/// True if the name at the node is assigned to: ":" is what follows it.
static bool assignment_follows(const namenode* node) {
    return node->next != nullptr && tok_char(node->next->let) == ':';
}

/// An expression or an assignment. A value that lives in a variable is copied, since it becomes the previous
/// value.
static void value_statement(FILE* inf, quolyptr n, nameptr* flag) {
    int64_t small = 0;
    if (*flag != nullptr && !assignment_follows(*flag) && small_expression(flag, &small)) {
        value_of_long(small, n);
        return;
    }
    quolyptr qp = n;
    expre(inf, &qp, n, flag);
    if (qp != n && qp != nullptr && *qp != nullptr)
        copy_value(qp, n);
    else if (*n == nullptr)
        quoly_set(0, n);
}

/// A name that begins with a letter of array functions.
static void named_statement(FILE* inf, quolyptr n, nameptr* flag) {
    begins_array_statement() ? arr_parse(inf, n, flag) : value_statement(inf, n, flag);
}

using StatementReader = void (*)(FILE* inf, quolyptr n, nameptr* flag);

struct StatementTable {
    StatementReader of[256] = {};
    constexpr StatementTable() {
        for (auto& f : of) f = value_statement;
        of[';'] = empty_statement;
        of['&'] = command_statement;
        of['!'] = write_out;
        of['?'] = read_in;
        of['@'] = delete_statement;
        of['['] = of['"'] = of['~'] = arr_parse;
        of['T'] = of['D'] = of['A'] = of['M'] = named_statement;
        of['%'] = arr_arr_state;
    }
};
static constexpr StatementTable statements;

// Statements nest without an expression between them: "&_m(&_m(...".
void parse(FILE* inf, quolyptr n, nameptr* flag) {
    if (stack_is_low()) {
        error(Err::nested_too_deeply);
        return;
    }
    statements.of[tok_char(token)](inf, n, flag);
}

// A statement between the bars of an outer one is a world of its own; what the outer one holds stays held.
void run_statement(FILE* inf, quolyptr n, nameptr* flag) {
    boolean saved = eval_state.bar_closes;
    eval_state.bar_closes = 0;
    free_quoly(n);
    parse(inf, n, flag);
    eval_state.bar_closes = saved;
}
}  // namespace tolvex
