// Reading of bodies: the grammar of stored statements.

#include "language/evaluator.h"
#include "language/stack_bound.h"
#include "language/statements.h"
#include "language/tokens/token_list.h"
namespace tolvex {
// The lines without a token after which an open statement ends by itself.
static constexpr int32_t k_lines_that_close = 12;   // an immediate control statement, which then runs
static constexpr int32_t k_lines_that_cancel = 15;  // a definition

static void newform(formptr* f) {
    *f = pool_pop<&formnode::next>(formhead, nullptr);
    (*f)->cptr = nullptr;
    (*f)->comms = nullptr;
    (*f)->next = nullptr;
}

static void newcond(condexptr* p) {
    *p = pool_pop<&condnode::next>(condhead, nullptr);
    (*p)->cond = (*p)->expr = nullptr;
    (*p)->form1 = (*p)->form2 = nullptr;
    (*p)->next = nullptr;
    (*p)->kind = StatementKind::simple;
    (*p)->aloop = 0;
}

static void free_comments(comptr* c) {
    while (*c != nullptr) {
        comptr gone = *c;
        *c = gone->next;
        freename(&gone->q);
        pool_push<&comnode::next>(comhead, gone);
    }
}

void free_statement(condexptr* p) {
    condexptr gone = *p;
    *p = nullptr;
    if (gone == nullptr) return;
    last_attached = nullptr;
    freename(&gone->cond);
    freename(&gone->expr);
    free_form(&gone->form1);
    free_form(&gone->form2);
    pool_push<&condnode::next>(condhead, gone);
}

void free_form(formptr* f) {
    last_good = nullptr;
    while (*f != nullptr) {
        formptr gone = *f;
        *f = gone->next;
        free_statement(&gone->cptr);
        free_comments(&gone->comms);
        pool_push<&formnode::next>(formhead, gone);
    }
}

void drop_unfinished() {
    for (Unfinished* u = unfinished; u != nullptr; u = u->below) u->drop(u->what);
    unfinished = nullptr;
}

// ---- one statement -------------------------------------------------------------------------------------

/// { text }: the characters between the braces, appended to the comments of the statement.
static bool read_comment(BodyReader& r, comptr* comms) {
    while (*comms != nullptr) comms = &(*comms)->next;
    *comms = pool_pop<&comnode::next>(comhead, nullptr);
    (*comms)->next = nullptr;
    nameptr* link = &(*comms)->q;
    *link = nullptr;
    for (;;) {
        boolean eoln = 0;
        bool ended = *r.flag == nullptr && at_end(r.inf);
        dumbscanner(r.inf, &token, r.flag, &eoln);
        if (ended || tok_is(token, k_end_token)) {
            error(Err::end_of_file_inside);
            return false;
        }
        if (at_char('}')) break;
        if (eoln) fputs(" Warning. End of line encountered inside a comment.\n", stdout);
        newname(link);
        (*link)->let = token;
        link = &(*link)->next;
    }
    next_token(r.inf, r.flag);
    return true;
}

/// The condition or header up to its closing word, which is read over.
static bool read_condition(BodyReader& r, condexptr p) {
    bool header = p->kind == StatementKind::for_loop;
    Closer end = p->aloop ? Closer::do_word : Closer::then_word;
    if (!attach(r, &p->cond, end, header)) return false;
    if (!at_closer(end)) {
        error(input_has_ended(r) ? Err::end_of_file_inside
              : header           ? Err::loop_header_not_closed
                                 : Err::condition_not_closed);
        return false;
    }
    next_token(r.inf, r.flag);
    return true;
}

/// The parts of a control statement up to the closing word of the last one.
static bool read_parts(BodyReader& r, condexptr p) {
    if (!read_condition(r, p)) return false;
    if (!right_side(r, &p->form1, p->aloop ? Closer::od : Closer::else_or_fi)) return false;
    if (r.closed || !tok_is(token, "else")) return true;
    if (p->aloop) {
        error(Err::else_after_loop);
        return false;
    }
    next_token(r.inf, r.flag);
    return right_side(r, &p->form2, Closer::fi);
}

static bool is_control_word() {
    return tok_is(token, "if") || tok_is(token, "for") || tok_is(token, "while");
}

bool read_control_statement(BodyReader& r, const tokentipe& word, condexptr* p) {
    newcond(p);
    (*p)->kind = tok_is(word, "if")    ? StatementKind::choice
                 : tok_is(word, "for") ? StatementKind::for_loop
                                       : StatementKind::while_loop;
    (*p)->aloop = (*p)->kind != StatementKind::choice;
    bool done = false;
    if (stack_is_low())
        error(Err::nested_too_deeply);
    else
        done = read_parts(r, *p);
    if (!done) free_statement(p);
    return done;
}

/// One statement with the comments in front of it.
static bool basic_form(BodyReader& r, formptr f, Closer end) {
    while (at_char('{'))
        if (!read_comment(r, &f->comms)) return false;
    if (tok_is(token, "else") || tok_is(token, "fi") || tok_is(token, "od")) {
        error(Err::closing_word_misplaced);
        return false;
    }
    if (is_control_word()) {
        tokentipe word = token;
        next_token(r.inf, r.flag);
        if (!read_control_statement(r, word, &f->cptr)) return false;
        if (!r.closed) next_token(r.inf, r.flag);
        return true;
    }
    newcond(&f->cptr);
    return attach(r, &f->cptr->expr, end, false);
}

/// An empty statement in an immediate control statement: the value 0. The ";" stays.
static void zero_statement(formptr f) {
    newcond(&f->cptr);
    nameptr* link = &f->cptr->expr;
    newname(link);
    tok_set((*link)->let, "0");
    link = &(*link)->next;
    newname(link);
    tok_set((*link)->let, k_end_token);
}

// ---- bodies --------------------------------------------------------------------------------------------

namespace {
enum class Step { statement, finished, failed };
}

static Step fail(Err code) {
    error(code);
    return Step::failed;
}

/// The current token is ";": what the end of the input and empty lines do to what is open.
static Step look_for_end(BodyReader& r, Closer end) {
    if (input_has_ended(r)) {
        if (!r.immediate || end == Closer::period) return fail(Err::end_of_file_inside);
        r.closed = true;
    } else if (tt_flag && semicount >= k_lines_that_close && r.immediate) {
        r.closed = true;
    } else if (tt_flag && semicount >= k_lines_that_cancel) {
        return fail(Err::too_many_empty_lines);
    }
    return r.closed ? Step::finished : Step::statement;
}

/// In front of a statement: over empty ones, which only an immediate control statement keeps.
static Step find_statement(BodyReader& r, Closer end) {
    while (at_char(';') || tok_is(token, k_end_token)) {
        Step s = look_for_end(r, end);
        if (s != Step::statement) return s;
        if (r.immediate) return Step::statement;
        next_token(r.inf, r.flag);
    }
    return Step::statement;
}

/// Behind a statement: to the next one, or to the end of the body.
static Step after_statement(BodyReader& r, Closer end) {
    if (r.closed || at_closer(end)) return Step::finished;
    if (end == Closer::od && tok_is(token, "else")) return Step::finished;  // the caller reports it
    if (!at_char(';')) {
        if (input_has_ended(r)) return fail(Err::end_of_file_inside);
        return fail(at_char('{') ? Err::comment_misplaced : Err::statement_separator);
    }
    Step s = look_for_end(r, end);
    if (s != Step::statement) return s;
    next_token(r.inf, r.flag);
    if (!r.immediate) s = find_statement(r, end);
    return s == Step::statement && at_closer(end) ? Step::finished : s;
}

/// One statement more at *link.
static Step read_statement(BodyReader& r, formptr* link, Closer end) {
    newform(link);
    if (r.immediate && at_char(';'))
        zero_statement(*link);
    else if (!basic_form(r, *link, end))
        return Step::failed;
    if (at_char(';')) last_good = *link;
    return after_statement(r, end);
}

bool right_side(BodyReader& r, formptr* f, Closer end) {
    *f = nullptr;
    formptr* link = f;
    Step s = find_statement(r, end);
    if (s == Step::statement && at_closer(end))
        s = fail(end == Closer::period ? Err::statement_expected : Err::closing_word_misplaced);
    while (s == Step::statement) {
        s = read_statement(r, link, end);
        link = &(*link)->next;
    }
    if (s == Step::failed) free_form(f);
    return s == Step::finished;
}
}  // namespace tolvex
