// Running stored statements: bodies, if, while, for, and the immediate control statement.

#include "language/array_elements.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/functions.h"
#include "language/integer_eval.h"
#include "language/parse.h"
#include "language/stack_bound.h"
#include "language/statements.h"
#include "language/symbols.h"
#include "matrix/matrix_modes.h"
#include "numbers/num_assign.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/poly_vars.h"
#include "storage/audit.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- loop headers --------------------------------------------------------------------------------------

/// A bound: a number of one digit. 0 if the error comes back.
static bool obtain_int(FILE* inf, nameptr* flag, Err code, int32_t* value) {
    if (integerflag && *flag != nullptr) {
        *value = old_iexpre(inf, flag);
    } else {
        Value v;
        read_expression(inf, &v, flag);
        const quolynode* q = value_of(&v);
        *value = k_max_digit + 1;
        if (q->numb && (lintmode || q->ncoef->size == 1))
            *value = lintmode ? q->ncoef->lint : q->ncoef->head->value;
        release(&v);
    }
    if (*value <= k_max_digit && *value >= -k_max_digit) return true;
    error(code);
    return false;
}

/// The variable of a loop, in place if it holds a number already. A residue remembers the word that it stands
/// for, since subscripts are ordinary integers.
static void write_loop_variable(LoopName& name, int64_t value) {
    int32_t word = modularmode ? residue_of_int(value) : static_cast<int32_t>(value);
    int32_t remembered = value > word ? static_cast<int32_t>(value) : 0;
    varptr p = name.node != nullptr ? var_at(name.node) : find_var(name.let);
    if (p != nullptr && p->val != nullptr && p->val->numb) {
        own_value(&p->val);
        setvalue(word, p->val->ncoef);
        p->val->arr_arg = 0;
        p->val->word = remembered;
        return;
    }
    quoly v = nullptr;
    quoly_set(word, &v);
    v->word = remembered;
    insert_var(name.let, v, &p);
}

static bool header_error(Err code) {
    error(code);
    return false;
}

/// The name and the sign behind it.
static bool read_loop_variable(FILE* inf, nameptr* flag, LoopHeader* h) {
    h->name = {token, *flag};
    if (!is_lower(tok_char(token))) return header_error(Err::loop_variable);
    if (number_polys > 0 && its_a_polyname(token) != 0) return header_error(Err::polyvar_as_name);
    next_token(inf, flag);
    bool colon = at_char(':');
    if (colon) next_token(inf, flag);
    if (!at_char('=') && (colon || (!tok_is(token, "from") && !tok_is(token, " from "))))
        return header_error(Err::loop_assignment);
    next_token(inf, flag);
    return true;
}

template <size_t size> static bool at_separator(const char (&word)[size]) {
    return tok_is(token, word) || at_char(',');
}

/// first to last by step. The bounds are ordinary integers also in modular arithmetic.
static bool read_range(FILE* inf, nameptr* flag, LoopHeader* h) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    bool good = obtain_int(inf, flag, Err::loop_first_value, &h->first);
    if (good && !at_separator(" to")) good = header_error(Err::loop_to_expected);
    restore_modular(was_modular);
    if (!good) return false;
    write_loop_variable(h->name, h->first);
    next_token(inf, flag);
    check_modular(&was_modular);
    good = obtain_int(inf, flag, Err::loop_last_value, &h->last);
    h->step = 1;
    if (good && at_separator(" by")) {
        next_token(inf, flag);
        good = obtain_int(inf, flag, Err::loop_step, &h->step);
    }
    restore_modular(was_modular);
    return good;
}

/// [a] r1, r2, ...: the columns of the entries of those rows.
static bool read_rows(FILE* inf, nameptr* flag, LoopHeader* h) {
    boolean was_modular = 0;
    check_modular(&was_modular);
    bool good = columns_of_rows(inf, flag, &h->columns, &h->count);
    restore_modular(was_modular);
    if (!good) return false;
    h->step = 1;
    h->first = h->count > 0 ? h->columns[0] : static_cast<int32_t>(maxx64(user_number(-1), -INT32_MAX));
    h->last = h->count > 0 ? h->columns[h->count - 1] : -2;
    write_loop_variable(h->name, h->first);
    return true;
}

bool set_up_for_loop(FILE* inf, nameptr* flag, LoopHeader* h) {
    h->columns = nullptr;
    h->count = 0;
    if (!read_loop_variable(inf, flag, h)) return false;
    return at_char('[') ? read_rows(inf, flag, h) : read_range(inf, flag, h);
}

LoopTurns turns_of(const LoopHeader& h) {
    if (h.columns != nullptr) return {0, h.count - 1, 1, 1, h.columns};
    if (h.step < 0) return {-int64_t{h.first}, -int64_t{h.last}, -int64_t{h.step}, -1, nullptr};
    return {h.first, h.last, h.step, 1, nullptr};
}

/// The value of the turn; behind the last column the one after it.
static int64_t value_of_turn(const LoopTurns& t) {
    if (t.columns == nullptr) return t.sign * t.index;
    return t.index <= t.last ? t.columns[t.index] : int64_t{t.columns[t.last]} + 1;
}

void next_turn(LoopTurns& t, LoopName& name) {
    t.index += t.step;
    if (t.index > k_max_digit) {
        error(Err::loop_index_range, tok_text(name.let));
        t.index = t.last + 1;
        return;
    }
    write_loop_variable(name, value_of_turn(t));
}

// ---- statements ----------------------------------------------------------------------------------------

/// What a loop does after a run of its body: true if it ends.
static bool leaves_loop() {
    if (exit_flag) return true;
    cycle_flag = 0;
    if (!leave_flag) return false;
    leave_flag = 0;
    return true;
}

/// The turns of a loop, its header being read from the token behind ":".
static void run_turns(FILE* inf, condexptr p, quolyptr n, nameptr cursor) {
    LoopHeader h;
    if (!set_up_for_loop(inf, &cursor, &h)) return;
    if (!tok_is(token, k_end_token)) {
        error(Err::loop_header_not_closed);
        return;
    }
    LoopTurns t = turns_of(h);
    while (t.index <= t.last) {
        poll_interrupt();
        eval_form(inf, p->form1, n);
        if (leaves_loop()) return;
        next_turn(t, h.name);
    }
}

static void run_for(FILE* inf, condexptr p, quolyptr n) {
    nameptr cursor;
    start_list(p->cond, &cursor);
    next_token(inf, &cursor);
    ScratchMark mark = scratch_mark();
    run_turns(inf, p, n, cursor);
    scratch_release(mark);
}

/// Reports name the statement under way and the one around it.
static void note_place(nameptr around, nameptr list) {
    prev_expr = around;
    startexpr = list;
}

static bool condition_of(FILE* inf, condexptr p, nameptr around) {
    note_place(around, p->cond);
    nameptr cursor;
    start_list(p->cond, &cursor);
    return bool_expre(inf, &cursor);
}

static void run_while(FILE* inf, condexptr p, nameptr around, quolyptr n) {
    while (condition_of(inf, p, around)) {
        poll_interrupt();
        eval_form(inf, p->form1, n);
        if (leaves_loop()) return;
    }
}

/// A statement in integer mode. Output, arrays and names in I are as everywhere; names in A, C and M begin no
/// assignment.
static void run_in_words(FILE* inf, quolyptr n, nameptr* cursor) {
    int32_t word = 0;
    switch (tok_char(token)) {
    case '!':
    case '"':
    case '[':
    case '~':
    case 'I':
        run_statement(inf, n, cursor);
        return;
    case 'A':
    case 'C':
    case 'M':
        word = old_iexpre(inf, cursor);
        break;
    default:
        if (!iexpre(inf, cursor, &word)) return;
    }
    value_of_word(word, n);
}

static void run_simple(FILE* inf, condexptr p, quolyptr n) {
    nameptr cursor;
    start_list(p->expr, &cursor);
    if (tok_is(token, "Compile")) {
        compile(inf, n, p, &cursor);
    } else if (tok_is(token, "Integer")) {
        integerflag = 1;
        next_token(inf, &cursor);
    } else if (integerflag) {
        run_in_words(inf, n, &cursor);
    } else {
        run_statement(inf, n, &cursor);
    }
    if (tok_is(token, k_end_token) || at_char(';') || at_char('@')) return;
    error(Err::statement_end);
    set_zero(n);
}

void getval(FILE* inf, condexptr p, quolyptr n) {
    nameptr around = startexpr;
    note_place(around, p->kind == StatementKind::simple ? p->expr : p->cond);
    if (stack_is_low()) {
        error(Err::nested_too_deeply);
        return;
    }
    switch (p->kind) {
    case StatementKind::simple:
        run_simple(inf, p, n);
        break;
    case StatementKind::choice:
        eval_form(inf, condition_of(inf, p, around) ? p->form1 : p->form2, n);
        break;
    case StatementKind::while_loop:
        run_while(inf, p, around, n);
        break;
    case StatementKind::for_loop:
        run_for(inf, p, n);
        break;
    }
}

void eval_form(FILE* inf, formptr f, quolyptr n) {
    nameptr around = startexpr;
    for (; f != nullptr; f = f->next) {
        startexpr = around;
        free_quoly(n);
        getval(inf, f->cptr, n);
        if (exit_flag || leave_flag || cycle_flag) return;
    }
}

StoredPlace set_statement_aside() {
    StoredPlace place = {
        startexpr,     prev_expr, currentchar, exit_flag, leave_flag, cycle_flag, definition_lines_aside(),
        last_attached, last_good, current_func};
    startexpr = prev_expr = currentchar = nullptr;
    last_attached = nullptr;
    last_good = nullptr;
    exit_flag = leave_flag = cycle_flag = 0;
    return place;
}

void resume_stored_place(const StoredPlace& place) {
    startexpr = place.startexpr;
    prev_expr = place.prev_expr;
    currentchar = place.currentchar;
    exit_flag = place.exit_flag;
    leave_flag = place.leave_flag;
    cycle_flag = place.cycle_flag;
    resume_definition_lines(place.lines);
    last_attached = place.last_attached;
    last_good = place.last_good;
    current_func = place.current_func;
}

// ---- the immediate control statement -------------------------------------------------------------------

namespace {
/// A control statement that has been typed. A newer one replaces it as the last one also while it runs.
struct typed_statement {
    condexptr p;
    typed_statement* next;
    int32_t running;
};
}  // namespace
static typed_statement* typed_garb = nullptr;
static typed_statement* typed_statements = nullptr;  // the last one first; behind it only such as still run

/// Gives back those that neither run nor are the last.
static void sweep_typed_statements() {
    if (typed_statements == nullptr) return;
    for (typed_statement** link = &typed_statements->next; *link != nullptr;) {
        typed_statement* t = *link;
        if (t->running > 0) {
            link = &t->next;
            continue;
        }
        *link = t->next;
        free_statement(&t->p);
        pool_push<&typed_statement::next>(typed_garb, t);
    }
}

void forget_running_statements() {
    for (typed_statement* t = typed_statements; t != nullptr; t = t->next) t->running = 0;
    sweep_typed_statements();
}

/// Runs the last control statement; the statement around it goes on with its own token and flags.
static void run_typed(FILE* inf, quolyptr n) {
    typed_statement* t = typed_statements;
    tokentipe after = token;
    nameptr outer_start = startexpr, outer_prev = prev_expr, outer_current = currentchar;
    boolean outer_bar = eval_state.bar_closes;
    startexpr = prev_expr = nullptr;
    eval_state.bar_closes = 0;
    t->running++;
    free_quoly(n);
    getval(inf, t->p, n);
    t->running--;
    if (*n == nullptr) quoly_set(0, n);
    integerflag = exit_flag = cycle_flag = leave_flag = 0;
    startexpr = outer_start;
    prev_expr = outer_prev;
    currentchar = outer_current;
    eval_state.bar_closes = outer_bar;
    token = after;
    sweep_typed_statements();
}

void call_sys_func(const tokentipe& word, FILE* inf, quolyptr n, nameptr* flag) {
    if (*flag != nullptr) {
        error(Err::control_in_wrong_place, tok_text(word));
        set_zero(n);
        return;
    }
    BodyReader r = {inf, flag, true, false, false, {}};
    tok_set(current_func, "<F");
    last_attached = nullptr;
    last_good = nullptr;
    enter_definition();
    condexptr p = nullptr;
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { free_statement(static_cast<condexptr*>(what)); }, &p);
    bool read = read_control_statement(r, word, &p);
    end_unfinished(u);
    leave_definition();
    if (!read) {
        tok_set(token, ";");  // the rest of the line went with the statement
        set_zero(n);
        return;
    }
    if (!r.closed) next_token(inf, flag);
    typed_statement* t = pool_pop<&typed_statement::next>(typed_garb, nullptr);
    *t = {p, typed_statements, 0};
    typed_statements = t;
    sweep_typed_statements();
    run_typed(inf, n);
}

const condnode* last_control_statement() {
    return typed_statements != nullptr ? typed_statements->p : nullptr;
}

void run_sys_func(FILE* inf, quolyptr n, nameptr* flag) {
    if (*flag != nullptr || typed_statements == nullptr) {
        error(*flag != nullptr ? Err::control_in_wrong_place : Err::no_stored_statement);
        set_zero(n);
        return;
    }
    next_token(inf, flag);
    run_typed(inf, n);
}

// ---- the leak audit of the checked build ---------------------------------------------------------------

#ifdef TOLVEX_CHECKED
static void reach_list(const namenode* p) {
    for (; p != nullptr; p = p->next) audit_reach<namenode>();
}

static void reach_statement(const condnode* p);

void audit_reach_form(const formnode* f) {
    for (; f != nullptr; f = f->next) {
        audit_reach<formnode>();
        for (const comnode* c = f->comms; c != nullptr; c = c->next) {
            audit_reach<comnode>();
            reach_list(c->q);
        }
        reach_statement(f->cptr);
    }
}

static void reach_statement(const condnode* p) {
    if (p == nullptr) return;
    audit_reach<condnode>();
    reach_list(p->cond);
    reach_list(p->expr);
    audit_reach_form(p->form1);
    audit_reach_form(p->form2);
}

static void reach_typed() {
    for (const typed_statement* t = typed_statements; t != nullptr; t = t->next) {
        audit_reach<typed_statement>();
        reach_statement(t->p);
    }
}
#endif

void init_statements() {
    init_functions();
#ifdef TOLVEX_CHECKED
    audit_pool<comnode>("comnode");
    audit_pool<formnode>("formnode");
    audit_pool<condnode>("condnode");
    audit_pool<typed_statement>("typed_statement");
    audit_roots(reach_typed);
#endif
}
}  // namespace tolvex
