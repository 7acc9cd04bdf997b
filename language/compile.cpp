// The statement Compile: names of a body are bound to their variables.

#include "language/compile.h"

#include "language/evaluator.h"
#include "language/functions.h"
#include "language/integer_eval.h"
#include "poly/poly_vars.h"
#include "storage/audit.h"

#include <cstdio>
namespace tolvex {
static constexpr int32_t k_most_bindings = 100;

// ---- bindings and variables ----------------------------------------------------------------------------

/// The variable goes on the list of nobody any more.
static void unchain(binding* b) {
    if (b->var == nullptr) return;
    for (binding** link = &b->var->bound; *link != nullptr; link = &(*link)->same) {
        if (*link != b) continue;
        *link = b->same;
        break;
    }
    b->var = nullptr;
}

void unbind(varptr v) {
    for (binding* b = v->bound; b != nullptr; b = b->same) b->var = nullptr;
    v->bound = nullptr;
}

void end_parameter_binding(varptr v) {
    v->own->var = v->outer;
    v->own = nullptr;
}

void free_bindings(binding** first) {
    while (*first != nullptr) {
        binding* gone = *first;
        *first = gone->next;
        if (!gone->parameter) unchain(gone);
        pool_push<&binding::next>(binding_garb, gone);
    }
}

// ---- the table of one statement ------------------------------------------------------------------------

namespace {
/// The names that a statement Compile binds, sorted by their keys; and where it reads.
struct Compilation {
    FILE* inf;
    nameptr* flag;
    binding* names[k_most_bindings];
    int32_t count;
};
}  // namespace

static int compare_keys(const tokentipe& a, const tokentipe& b) { return strcmp(tok_text(a), tok_text(b)); }

/// The place of the key: the first binding that is not before it.
static int32_t place_of(const Compilation& c, const tokentipe& key) {
    int32_t low = 0, high = c.count;
    while (low < high) {
        int32_t middle = (low + high) / 2;
        if (compare_keys(c.names[middle]->key, key) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

static binding* find_key(const Compilation& c, const tokentipe& key) {
    int32_t place = place_of(c, key);
    return place < c.count && compare_keys(c.names[place]->key, key) == 0 ? c.names[place] : nullptr;
}

static bool compile_error(Err code, const tokentipe& name) {
    error(code, tok_text(name));
    return false;
}

static bool enter(Compilation& c, const tokentipe& key, varptr var, bool parameter,
                  const ElementTarget& element = {}) {
    if (c.count == k_most_bindings) return compile_error(Err::compile_too_many, key);
    int32_t place = place_of(c, key);
    if (place < c.count && compare_keys(c.names[place]->key, key) == 0)
        return compile_error(Err::compile_twice, key);
    auto* b = pool_pop<&binding::next>(binding_garb, nullptr);
    *b = {key, var, element, parameter, nullptr, nullptr};
    memmove(&c.names[place + 1], &c.names[place], sizeof(binding*) * static_cast<size_t>(c.count - place));
    c.names[place] = b;
    c.count++;
    return true;
}

static void drop(Compilation& c) {
    for (int32_t i = 0; i < c.count; i++) pool_push<&binding::next>(binding_garb, c.names[i]);
    c.count = 0;
}

// ---- reading the statement -----------------------------------------------------------------------------

/// True if the parameter stands for an array in the running call.
static bool is_array_parameter(const paramnode* p) {
    tokentipe name = p->let;
    varptr v = find_var(name);
    return v != nullptr && v->val != nullptr && v->val->numb && v->val->arr_arg;
}

static bool is_sparse_parameter(const paramnode* p) {
    tokentipe name = p->let;
    arrptr a = nullptr;
    if (!is_array_parameter(p)) return false;
    fastestlookup(name, &a);
    return a != nullptr && array_itself(a)->spar != nullptr;
}

/// The key of a whole array: no scalar has it. Such a name stays looked up by its text, whose hash is stored.
static tokentipe array_key(tokentipe name) {
    name.name[0] = static_cast<unsigned char>(name.name[0] - 'a' + 'A');
    return name;
}

static bool no_sparse_parameters(const funcnode* f) {
    for (const paramnode* p = f->pars; p != nullptr; p = p->next)
        if (is_sparse_parameter(p)) return compile_error(Err::compile_sparse_parameter, p->let);
    return true;
}

static bool enter_parameters(Compilation& c, const funcnode* f) {
    if (!no_sparse_parameters(f)) return false;
    for (const paramnode* p = f->pars; p != nullptr; p = p->next)
        if (!enter(c, is_array_parameter(p) ? array_key(p->let) : p->let, nullptr, true)) return false;
    return true;
}

/// [x]: a whole array.
static bool read_array_item(Compilation& c) {
    next_token(c.inf, c.flag);
    tokentipe name = token;
    arrptr a = nullptr;
    if (!is_lower(tok_char(name))) return compile_error(Err::compile_item, name);
    if (!array_seek(name, &a)) return false;
    if (array_itself(a)->spar != nullptr) return compile_error(Err::sparse_not_allowed, name);
    next_token(c.inf, c.flag);
    if (!at_char(']')) return compile_error(Err::close_bracket_expected, token);
    next_token(c.inf, c.flag);
    return enter(c, array_key(name), nullptr, false);
}

/// The subscript k of x[k]: digits, or a scalar with a numeric value. *key is extended by its text.
static bool read_element_subscript(Compilation& c, char* key, int64_t* k) {
    bool name = is_lower(tok_char(token));
    const tokentipe first = token;
    strcat(key, tok_text(token));
    if (name) {
        varptr p = find_var(token);
        int32_t word = 0;
        if (p == nullptr || p->val == nullptr || !word_of_value(p->val, &word))
            return compile_error(Err::compile_subscript, first);
        *k = word;
        next_token(c.inf, c.flag);
        return true;
    }
    if (!is_digit(tok_char(token))) return compile_error(Err::compile_subscript, first);
    *k = tok_char(token) - '0';
    for (next_token(c.inf, c.flag); is_digit(tok_char(token)); next_token(c.inf, c.flag)) {
        *k = 10 * *k + (tok_char(token) - '0');
        if (strlen(key) > k_namelength) return compile_error(Err::compile_subscript, first);
        strcat(key, tok_text(token));
    }
    return true;
}

/// x[k], the "[" being the current token: the element that it is now.
static bool read_element_item(Compilation& c, tokentipe& name) {
    char key[3 * sizeof(nametype)];
    arrptr a = nullptr;
    int64_t k = 0, index = 0;
    snprintf(key, sizeof key, "%s[", tok_text(name));
    if (!array_seek(name, &a)) return false;
    a = array_itself(a);
    next_token(c.inf, c.flag);
    if (!read_element_subscript(c, key, &k)) return false;
    if (!at_char(']')) return compile_error(Err::compile_element_bracket, token);
    if (!find_place(a, k, 0, false, name, &index)) return false;
    quolyptr at = place_slot(a, index);
    if (at == nullptr || *at == nullptr) return compile_error(Err::element_missing, name);
    next_token(c.inf, c.flag);
    strcat(key, "]");
    if (strlen(key) > k_namelength) return true;  // longer texts are not bound
    tokentipe text;
    tok_set(text, key);
    return enter(c, text, nullptr, false, {a->name, a->time, index});
}

/// One item of the list: a scalar, an element or an array that exists.
static bool read_item(Compilation& c) {
    tokentipe name = token;
    if (at_char('[')) return read_array_item(c);
    if (!is_lower(tok_char(name)) || its_a_polyname(name) != 0) return compile_error(Err::compile_item, name);
    next_token(c.inf, c.flag);
    if (at_char('[')) return read_element_item(c, name);
    varptr p = find_var(name);
    if (p == nullptr) return compile_error(Err::undefined_variable, name);
    return enter(c, name, p, false);
}

/// (item, item, ...)
static bool read_items(Compilation& c) {
    do {
        next_token(c.inf, c.flag);
        if (!read_item(c)) return false;
    } while (at_char(','));
    if (!at_char(')')) return compile_error(Err::compile_list, token);
    next_token(c.inf, c.flag);
    return true;
}

// ---- marking the body ----------------------------------------------------------------------------------

/// The text x[k] of an element at the node, of one token or several digits between the brackets, as a key;
/// empty if it is something else.
static tokentipe element_key(const namenode* p) {
    char text[3 * sizeof(nametype)] = "";
    tokentipe key = {};
    for (int32_t i = 0; p != nullptr && strlen(text) <= k_namelength; p = p->next, i++) {
        unsigned char c = tok_char(p->let);
        bool subscript = is_digit(c) || (is_lower(c) && i == 2);
        strcat(text, tok_text(p->let));
        if (i > 2 && c == ']') {
            if (strlen(text) <= k_namelength) tok_set(key, text);
            break;
        }
        if (i > 1 && !subscript) break;
    }
    return key;
}

static void bind_node(nameptr p, binding* b, classtype tipe) {
    if (b == nullptr) return;
    p->compiled = 1;
    p->tipe = tipe;
    p->bound = b;
}

/// Binds the nodes of a list whose text is a key. Characters between quotes name nothing.
static void do_tok_list(const Compilation& c, nameptr p) {
    bool quoted = false;
    for (; p != nullptr; p = p->next) {
        if (tok_is(p->let, "'")) quoted = !quoted;
        if (quoted || !is_lower(tok_char(p->let))) continue;
        bool element = p->next != nullptr && tok_is(p->next->let, "[");
        bind_node(p, find_key(c, element ? element_key(p) : p->let), element ? two : one);
    }
}

static void do_form(const Compilation& c, const formnode* f) {
    for (; f != nullptr; f = f->next) {
        do_tok_list(c, f->cptr->cond);
        do_tok_list(c, f->cptr->expr);
        do_form(c, f->cptr->form1);
        do_form(c, f->cptr->form2);
    }
}

/// The calls from now on bind the parameter when they begin.
static void note_in_parameter(funcptr f, binding* b) {
    for (paramptr p = f->pars; p != nullptr; p = p->next)
        if (same_name(p->let, b->key)) p->bound = b;
}

/// The bindings become those of the function; variables learn which lead to them.
static void install(Compilation& c, funcptr f) {
    for (int32_t i = c.count - 1; i >= 0; i--) {
        binding* b = c.names[i];
        b->next = f->bindings;
        f->bindings = b;
        if (b->parameter) note_in_parameter(f, b);
        if (b->var == nullptr) continue;
        b->same = b->var->bound;
        b->var->bound = b;
    }
}

static bool says_integer(const condnode* p) {
    return p->kind == StatementKind::simple && tok_is(p->expr->let, "Integer") &&
           tok_is(p->expr->next->let, k_end_token);
}

/// The first run: the list is read, the statements behind this one are bound.
static bool first_run(FILE* inf, funcptr f, const condnode* p, nameptr* flag) {
    Compilation c = {inf, flag, {}, 0};
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { drop(*static_cast<Compilation*>(what)); }, &c);
    next_token(inf, flag);
    boolean parameters = !at_char('*');
    if (!parameters) next_token(inf, flag);
    bool good = !parameters || enter_parameters(c, f);
    if (good && at_char('(')) good = read_items(c);
    if (good && !tok_is(token, k_end_token)) good = compile_error(Err::statement_end, token);
    const formnode* here = f->rht;
    while (here != nullptr && here->cptr != p) here = here->next;
    if (good && here == nullptr) good = compile_error(Err::compile_not_in_body, token);
    end_unfinished(u);
    if (!good) {
        drop(c);
        return false;
    }
    f->do_params = parameters;
    f->comp = here->next;
    f->compiled_by = p;
    f->only_compiled = 1;
    for (const formnode* s = f->rht; s != here; s = s->next)
        says_integer(s->cptr) ? f->in_words = 1 : f->only_compiled = 0;
    install(c, f);
    do_form(c, f->comp);
    return true;
}

// ---- running -------------------------------------------------------------------------------------------

/// The parameters of the running call are bound; what the bindings led to is kept for its end.
static void bind_parameters(const funcnode* f) {
    for (binding* b = f->bindings; b != nullptr; b = b->next) {
        if (!b->parameter) continue;
        varptr v = find_var(b->key);
        if (v != nullptr && v->own == nullptr) bind_to_parameter(b, v);
    }
}

void compile(FILE* inf, quolyptr n, const condnode* p, nameptr* flag) {
    if (call_frames == nullptr) {
        error(Err::compile_outside, "Compile");
        set_zero(n);
        return;
    }
    funcptr f = call_frames->f;
    if (f->compiled_by != nullptr && f->compiled_by != p) {  // a second one in the part that is bound already
        tok_set_end(token);
        return;
    }
    if (f->compiled_by == nullptr && !first_run(inf, f, p, flag)) {
        set_zero(n);
        tok_set_end(token);
        return;
    }
    if (f->do_params && !no_sparse_parameters(f)) {
        set_zero(n);
        return;
    }
    if (f->do_params) bind_parameters(f);
    eval_form(inf, f->comp, n);
    if (*n == nullptr) quoly_set(0, n);
    if (!leave_flag && !cycle_flag) exit_flag = 1;  // the rest of the body has been run
    tok_set_end(token);
}

#ifdef TOLVEX_CHECKED
void audit_reach_bindings(const binding* b) {
    for (; b != nullptr; b = b->next) audit_reach<binding>();
}
#endif
}  // namespace tolvex
