// Functions and stored statements as source text.
#include "session/listing.h"

#include "language/language_modes.h"
#include "language/statements.h"
#include "session/listing_sort.h"
#include "session/loop.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
// ---- token lists ---------------------------------------------------------------------------------------

namespace {
/// A list being written: what the rule of blanks looks at.
struct TokenLine {
    ListingSink out;
    bool condition;    // "and" and "or" have blanks around them
    bool deletion;     // the list begins with "@": "<" and ">" are brackets there
    int32_t brackets;  // open "["
    bool begun;        // something has been written
    bool wants_blank;  // one stands in front of whatever comes next
    bool name_before;  // the token before was a name: a letter, digit or "_" would lengthen it
    bool operator_before;
    bool comparison_before;
};
}  // namespace

static void put(TokenLine& w, char c) {
    if (w.wants_blank && w.begun) putc_unlocked(' ', w.out.file);
    putc_unlocked(c, w.out.file);
    w.begun = true;
    w.wants_blank = false;
}

static void doblanks(const ListingSink& out, int32_t k) {
    for (; k > 0; k--) putc_unlocked(' ', out.file);
}

/// The end of a line that the statement goes beyond.
static void line_end(const ListingSink& out) {
    if (out.to_terminal)
        fprintf(out.file, " %c\n", continuation);
    else
        fputs(" \n", out.file);
}

static bool is_name(const tokentipe& t) {
    unsigned char c = tok_char(t) == ' ' ? t.name[1] : tok_char(t);  // " to" and " by" of a header
    return is_lower(c) || is_upper(c);
}

static bool is_comparison(const tokentipe& t) {
    unsigned char c = tok_char(t);
    return t.name[1] == 0 && (c == '<' || c == '=' || c == '>' || c == 173 || c == 178 || c == 179);
}

static bool is_operator(const tokentipe& t) {
    return t.name[1] == 0 && tok_char(t) != 0 && strchr("+-*/\\|^#(,[:<=>!&?@", tok_char(t)) != nullptr;
}

/// A literal or an embedded comment, from its first mark to its last one, as it stands. Returns its last
/// node.
static const namenode* write_verbatim(TokenLine& w, const namenode* p) {
    char end = tok_char(p->let) == '{' ? '}' : '\'';
    put(w, static_cast<char>(tok_char(p->let)));
    while (p->next != nullptr && !tok_is(p->next->let, k_end_token)) {
        p = p->next;
        char c = static_cast<char>(tok_char(p->let));
        put(w, c == k_line_end ? '\n' : c);
        if (c == end) break;
    }
    return p;
}

/// The text; " to" and " by" bring their blank with them.
static void write_text(TokenLine& w, const tokentipe& t) {
    const char* c = tok_text(t);
    if (*c == ' ') {
        w.wants_blank = true;
        c++;
    }
    for (; *c != 0; c++) put(w, *c);
}

/// One token that is no literal; returns the last node used up.
static const namenode* write_token(TokenLine& w, const namenode* p) {
    const tokentipe& t = p->let;
    bool outside = w.brackets == 0, name = is_name(t);
    bool comparison = is_comparison(t) && outside && !w.deletion;
    bool assignment = tok_is(t, ":") && p->next != nullptr && tok_is(p->next->let, "=");
    bool sum = (tok_is(t, "+") || tok_is(t, "-")) && outside && !w.operator_before;
    bool word = w.condition && (tok_is(t, "and") || tok_is(t, "or"));
    unsigned char c = tok_char(t);
    bool joins = name || (c >= '0' && c <= '9') || c == '_' || c == ' ';
    if (assignment || sum || word || (comparison && !w.comparison_before) || (w.name_before && joins))
        w.wants_blank = true;
    write_text(w, t);
    if (assignment) {
        p = p->next;
        put(w, '=');
    }
    if (tok_is(t, "[")) w.brackets++;
    if (tok_is(t, "]") && w.brackets > 0) w.brackets--;
    bool after_comparison = comparison && !(p->next != nullptr && is_comparison(p->next->let));
    if (assignment || sum || word || after_comparison || p->space || (tok_is(t, ",") && outside))
        w.wants_blank = true;
    w.name_before = name;
    w.operator_before = assignment || is_operator(t);
    w.comparison_before = comparison;
    return p;
}

/// A list up to its end mark.
static void listchars(const ListingSink& out, const namenode* p, bool in_cond) {
    TokenLine w = {out, in_cond, p != nullptr && tok_is(p->let, "@"), 0, false, false, false, true, false};
    for (; p != nullptr && !tok_is(p->let, k_end_token); p = p->next) {
        if (tok_is(p->let, "'") || tok_is(p->let, "{")) {
            p = write_verbatim(w, p);
            w.name_before = w.operator_before = w.comparison_before = false;
            w.wants_blank = p->space;
        } else {
            p = write_token(w, p);
        }
    }
}

// ---- statements ----------------------------------------------------------------------------------------

/// A comment on a line of its own. In a file a blank stands in front of "}", one however often it is saved.
static void list_comment(const ListingSink& out, const comnode* comment, int32_t indent) {
    char last = 0;
    putc_unlocked('{', out.file);
    for (const namenode* p = comment->q; p != nullptr; p = p->next) {
        last = static_cast<char>(tok_char(p->let));
        putc_unlocked(last == k_line_end ? '\n' : last, out.file);
    }
    if (out.to_terminal) {
        putc_unlocked('}', out.file);
        line_end(out);
    } else {
        fputs(last == ' ' ? "}\n" : " }\n", out.file);
    }
    doblanks(out, indent);
}

/// A body in its place inside a control statement.
static void list_part(const ListingSink& out, const formnode* body, int32_t indent) {
    line_end(out);
    doblanks(out, indent + 3);
    listform(out, body, indent + 3);
    line_end(out);
    doblanks(out, indent);
}

static void list_structure(const ListingSink& out, const condnode* s, int32_t indent) {
    bool header = s->kind == StatementKind::for_loop;
    fputs(s->kind == StatementKind::choice ? "if " : header ? "for " : "while ", out.file);
    listchars(out, header ? s->cond->next : s->cond, true);
    fputs(s->aloop ? " do" : " then", out.file);
    list_part(out, s->form1, indent);
    if (s->aloop) {
        fputs("od", out.file);
        return;
    }
    if (s->form2 != nullptr) {
        fputs("else", out.file);
        list_part(out, s->form2, indent);
    }
    fputs("fi", out.file);
}

static void list_statement(const ListingSink& out, const condnode* s, int32_t indent) {
    if (s->kind == StatementKind::simple)
        listchars(out, s->expr, false);
    else
        list_structure(out, s, indent);
}

/// A statement of a body, its comments in front of it.
static void list_formed(const ListingSink& out, const formnode* f, int32_t indent) {
    for (const comnode* c = f->comms; c != nullptr; c = c->next) list_comment(out, c, indent);
    list_statement(out, f->cptr, indent);
}

void listform(const ListingSink& out, const formnode* body, int32_t indent) {
    for (const formnode* f = body; f != nullptr; f = f->next) {
        list_formed(out, f, indent);
        if (f->next == nullptr) break;
        putc_unlocked(';', out.file);
        line_end(out);
        doblanks(out, indent);
    }
}

// ---- functions -----------------------------------------------------------------------------------------

void listpars(const ListingSink& out, const paramnode* pars) {
    for (const paramnode* p = pars; p != nullptr; p = p->next)
        fprintf(out.file, "%s%s%s", p == pars ? "" : ",", p->result ? "^" : "", tok_text(p->let));
}

static void write_name(const ListingSink& out, const char* name, const paramnode* pars) {
    fputs(name, out.file);
    if (pars == nullptr) return;
    putc_unlocked('(', out.file);
    listpars(out, pars);
    putc_unlocked(')', out.file);
}

static constexpr int32_t k_body_indent = 4;

static void begin_in_full(const ListingSink& out, const char* name, const paramnode* pars) {
    fputs("\n Function ", out.file);
    write_name(out, name, pars);
    fputs(" = ", out.file);
    line_end(out);
    doblanks(out, k_body_indent);
}

void big_write_p(const ListingSink& out, const char* name, const paramnode* pars, const formnode* body) {
    begin_in_full(out, name, pars);
    listform(out, body, k_body_indent);
    fputs(".", out.file);
}

static void simple_write_p(const ListingSink& out, const funcnode* f) {
    putc_unlocked('\n', out.file);
    write_name(out, tok_text(f->name), f->pars);
    putc_unlocked('\n', out.file);
}

/// The definition of that name at this place among those of the name, 0 the newest; nil if there is none.
static const funcnode* nth_function(tokentipe name, int32_t place) {
    name.address = hash(name.name, k_function_buckets);
    const funcnode* f = *func_store.chain_of(name);
    for (; f != nullptr; f = f->next)
        if (same_name(f->name, name) && place-- == 0) return f;
    return nullptr;
}

/// Calls act for every definition. A level that an interrupt opens between two of them may change the table:
/// each is looked up again by its name and its place.
static void for_each_function(bool saved, void (*act)(const ListingSink& out, const funcnode* f),
                              const ListingSink& out) {
    ScratchMark mark = scratch_mark();
    int64_t count = 0;
    for (funcptr bucket : func_store)
        for (funcptr f = bucket; f != nullptr; f = f->next) count++;
    auto* entries = scratch_array<ListedName>(maxx64(count, 1));
    int64_t n = 0;
    for (funcptr bucket : func_store)
        for (funcptr f = bucket; f != nullptr; f = f->next) entries[n++] = {f->name, 0, 0};
    sort_names(entries, n, saved ? NameOrder::oldest_first : display_order(n));
    for (int64_t i = 0; i < n; i++) {
        poll_interrupt();
        const funcnode* f = nth_function(entries[i].name, entries[i].place);
        if (f != nullptr) act(out, f);
    }
    scratch_release(mark);
}

void save_functions(FILE* file) {
    for_each_function(true,
                      [](const ListingSink& out, const funcnode* f) {
                          big_write_p(out, tok_text(f->name), f->pars, f->rht);
                          fputs(";\n", out.file);
                      },
                      {file, false});
}

static void list_all_in_full(const ListingSink& out) {
    for_each_function(
        false,
        [](const ListingSink& sink, const funcnode* f) {
            big_write_p(sink, tok_text(f->name), f->pars, f->rht);
            putc_unlocked('\n', sink.file);
        },
        out);
}

/// The last control statement that was typed.
static void list_control_statement(const ListingSink& out) {
    const condnode* s = last_control_statement();
    if (s == nullptr) {
        error(Err::no_stored_statement);
        return;
    }
    begin_in_full(out, "<F", nullptr);
    list_statement(out, s, k_body_indent);
    fputs(".\n", out.file);
}

/// `,F` and `<F`: the mark is the current token.
static void list_one(FILE* inf, nameptr* flag, const ListingSink& out) {
    bool angle = tok_is(token, "<");
    next_token(inf, flag);
    if (angle && tok_is(token, "F")) {
        list_control_statement(out);
    } else if (const funcnode* f = nth_function(token, 0)) {
        big_write_p(out, tok_text(f->name), f->pars, f->rht);
        putc_unlocked('\n', out.file);
    } else {
        fprintf(out.file, "%s has not been defined.\n", tok_text(token));
    }
    next_token(inf, flag);
}

void report_definition(Err code) {
    ListingSink out = {stdout, true};
    bool lines = code == Err::too_many_empty_lines;
    bool told = lines || code == Err::end_of_file_inside || code == Err::statement_separator ||
                code == Err::not_terminated;
    if (func_def_count == 0 || !told) return;
    fputs(lines ? "Here is the last line read:\n" : "Here is the last line successfully read:\n", stdout);
    if (!lines) {
        listchars(out, last_attached, false);
    } else if (last_good != nullptr) {
        list_formed(out, last_good, k_body_indent);
    }
    printf("\n*** Definition of %s cancelled.\n", tok_text(current_func));
}

static void skip_to_terminator(FILE* inf, nameptr* flag) {
    while (!at_terminator()) next_token(inf, flag);
}

void listfuncs(FILE* inf, nameptr* flag) {
    ListingSink out = {stdout, true};
    next_token(inf, flag);
    if (tok_is(token, "*")) {
        list_all_in_full(out);
        next_token(inf, flag);
    } else if (tok_is(token, ",") || tok_is(token, "<")) {
        list_one(inf, flag, out);
    } else if (at_terminator()) {
        for_each_function(false, simple_write_p, out);
    } else {
        fprintf(out.file, "%s is not a legal function name.\n", tok_text(token));
        skip_to_terminator(inf, flag);
    }
    if (!at_terminator()) {
        error(Err::not_terminated);
        return;
    }
    tok_set(token, "@");
}
}  // namespace tolvex
