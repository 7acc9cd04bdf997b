#include "language/functions.h"

#include "language/builtin_table.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/parse.h"
#include "language/stack_bound.h"
#include "language/tokens/token_list.h"
#include "poly/poly_vars.h"
#include "storage/audit.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// ---- the table -----------------------------------------------------------------------------------------

static funcptr* link_of_function(tokentipe& name) {
    if (name.address < 0 || name.address >= k_builtin_address)
        name.address = hash(name.name, k_function_buckets);
    return func_store.link_of(name);
}

static void free_function(funcptr* f) {
    funcptr gone = *f;
    *f = nullptr;
    while (gone->pars != nullptr) {
        paramptr p = gone->pars;
        gone->pars = p->next;
        pool_push<&paramnode::next>(param_garb, p);
    }
    free_bindings(&gone->bindings);
    free_form(&gone->rht);
    pool_push<&funcnode::next>(func_garb, gone);
}

static bool is_running(const funcnode* f) {
    for (const CallFrame* c = call_frames; c != nullptr; c = c->below)
        if (c->f == f) return true;
    return false;
}

static void unlink_function(funcptr* link) {
    funcptr f = *link;
    func_store.take_off(link);
    free_function(&f);
}

void delete_function(tokentipe& name) {
    funcptr* link = link_of_function(name);
    if (*link == nullptr)
        error(Err::no_function_to_delete, tok_text(name));
    else if (is_running(*link))
        error(Err::deletion_in_use, tok_text(name));
    else
        unlink_function(link);
}

/// Calls act for the link of each definition of that name but the newest; act returns where to go on.
template <class Act> static void for_older(funcptr newest, Act act) {
    for (funcptr* link = &newest->next; *link != nullptr;)
        link = same_name((*link)->name, newest->name) ? act(link) : &(*link)->next;
}

void delete_older_functions(tokentipe& name) {
    funcptr newest = *link_of_function(name);
    if (newest == nullptr) {
        error(Err::no_function_to_delete, tok_text(name));
        return;
    }
    bool running = false;
    for_older(newest, [&](funcptr* link) {
        running = running || is_running(*link);
        return &(*link)->next;
    });
    if (running) {
        error(Err::deletion_in_use, tok_text(name));
        return;
    }
    for_older(newest, [](funcptr* link) {
        unlink_function(link);
        return link;
    });
}

bool is_running_parameter(const tokentipe& name) {
    for (const CallFrame* c = call_frames; c != nullptr; c = c->below)
        for (const paramnode* p = c->f->pars; p != nullptr; p = p->next)
            if (same_name(p->let, name)) return true;
    return false;
}

// ---- definitions ---------------------------------------------------------------------------------------

static bool definition_error(Err code) {
    error(code);
    return false;
}

static bool is_repeated(const funcnode* f, const tokentipe& name) {
    for (const paramnode* p = f->pars; p != nullptr; p = p->next)
        if (same_name(p->let, name)) return true;
    return false;
}

/// One parameter, appended at *link.
static bool read_parameter(FILE* inf, nameptr* flag, funcptr f, paramptr* link) {
    bool result = at_char('^');
    if (result) next_token(inf, flag);
    if (!is_lower(tok_char(token))) return definition_error(Err::function_parameter);
    if (is_repeated(f, token)) return definition_error(Err::duplicate_parameter);
    paramptr p = pool_pop<&paramnode::next>(param_garb, nullptr);
    p->let = token;
    p->let.address = hash(token.name, k_variable_buckets);
    p->result = result;
    p->bound = nullptr;
    p->next = nullptr;
    *link = p;
    if (result) f->results++;
    next_token(inf, flag);
    if (at_char(',') || at_char(';') || at_char(')')) return true;
    return definition_error(Err::parameter_separator);
}

/// (p1, p2, ^p3; l1): "," and ";" mean the same.
static bool read_parameters(FILE* inf, nameptr* flag, funcptr f) {
    paramptr* link = &f->pars;
    do {
        next_token(inf, flag);
        if (!read_parameter(inf, flag, f, link)) return false;
        link = &(*link)->next;
    } while (!at_char(')'));
    next_token(inf, flag);
    return true;
}

static bool read_definition(BodyReader& r, funcptr f) {
    next_token(r.inf, r.flag);
    bool parameters = at_char('(');
    if (parameters && !read_parameters(r.inf, r.flag, f)) return false;
    if (!at_char('=')) return definition_error(parameters ? Err::definition_equals : Err::definition_form);
    next_token(r.inf, r.flag);
    return right_side(r, &f->rht, Closer::period);
}

void funcdef(FILE* inf, nameptr* flag) {
    current_func = token;
    last_attached = nullptr;
    last_good = nullptr;
    funcptr f = pool_pop<&funcnode::next>(func_garb, nullptr);
    *f = {};
    f->name = token;
    f->name.address = hash(token.name, k_function_buckets);
    BodyReader r = {inf, flag, false, false, false, {}};
    enter_definition();
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { free_function(static_cast<funcptr*>(what)); }, &f);
    bool read = read_definition(r, f);
    end_unfinished(u);
    leave_definition();
    if (!read) {
        free_function(&f);
        tok_set(token, ";");  // the rest of the line went with the definition
        return;
    }
    func_store.push(f);
    if (r.token_ahead)
        token = r.after;
    else
        next_token(inf, flag);
}

/// Func, Function.
void builtin_Func(BuiltinCall& call) {
    next_token(call.inf, call.flag);
    if (is_upper(tok_char(token)))
        funcdef(call.inf, call.flag);
    else
        error(Err::function_name);
    quoly_set(0, call.n);
}

// ---- arguments -----------------------------------------------------------------------------------------

namespace {
/// A call while its arguments are read.
struct Call {
    FILE* inf;
    nameptr* flag;
    funcptr f;
    varptr first;           // the variables of the parameters read so far, in order, not in the table yet
    varptr* link;           // where the next one goes
    ResultTarget* targets;  // see CallFrame
    arrptr* arrays;         // their aliases are not in the table yet
    int32_t place;
    bool has_tables;  // scratch memory is in use from the mark on
    ScratchMark mark;
};
}  // namespace

/// x or ^x for a parameter by reference: the value is copied, the name is kept.
static void read_by_reference(Call& c, quolyptr value) {
    quoly_set(0, value);
    if (at_char('^')) next_token(c.inf, c.flag);
    if (!is_lower(tok_char(token)) || (number_polys > 0 && its_a_polyname(token) != 0)) {
        error(Err::by_reference_needed);
        return;
    }
    tokentipe name = token;
    next_token(c.inf, c.flag);
    if (at_char('[')) {
        ElementTarget* element = &c.targets[c.place].element;
        if (!read_element_argument(c.inf, c.flag, name, element, value)) *element = {};
        return;
    }
    if (spec_retrieve(name, value)) c.targets[c.place].name = name;
}

/// A cleared table with a place for each parameter, in scratch memory. Most calls need none.
template <class R> static R* table_of_places(Call& c) {
    if (!c.has_tables) c.mark = scratch_mark();
    c.has_tables = true;
    int32_t count = 0;
    for (const paramnode* p = c.f->pars; p != nullptr; p = p->next) count++;
    auto* table = scratch_array<R>(count);
    memset(static_cast<void*>(table), 0, sizeof(R) * static_cast<size_t>(count));
    return table;
}

/// [a] as an argument; as a scalar the parameter is the number 0.
static void bind_array(Call& c, const paramnode* p, quolyptr value) {
    arrptr alias = read_array_argument(c.inf, c.flag, p->let);
    if (c.arrays == nullptr) c.arrays = table_of_places<arrptr>(c);
    c.arrays[c.place] = alias;
    quoly_set(0, value);
}

/// The next parameter with its value; nil: there is no argument for it.
static void bind(Call& c, const paramnode* p, bool given) {
    quoly value = nullptr;
    if (p->result && !given)
        error(Err::by_reference_missing, tok_text(p->let));
    else if (p->result)
        read_by_reference(c, &value);
    else if (given && at_char('['))
        bind_array(c, p, &value);
    else if (given)
        old_expre(c.inf, &value, c.flag);
    if (value == nullptr) quoly_set(0, &value);
    if (value->numb) value->arr_arg = c.arrays != nullptr && c.arrays[c.place] != nullptr;
    varptr v = pool_pop<&varnode::next>(var_garb, nullptr);
    v->let = p->let;
    v->bound = v->own = nullptr;
    v->val = value;
    v->next = nullptr;
    *c.link = v;
    c.link = &v->next;
    c.place++;
}

/// What must follow an argument. True if another one follows.
static bool after_argument(Call& c, const paramnode* p) {
    if (at_char(')')) return false;
    if (p->next == nullptr || !at_char(',')) {
        error(p->next == nullptr ? Err::call_close_paren : Err::call_separator);
        return false;
    }
    next_token(c.inf, c.flag);
    return true;
}

/// Reads the arguments; the token behind the call is the current one then.
static void read_arguments(Call& c) {
    next_token(c.inf, c.flag);
    bool open = c.f->pars != nullptr && at_char('(');
    bool given = open;
    if (open) {
        next_token(c.inf, c.flag);
        given = !at_char(')');
    }
    for (const paramnode* p = c.f->pars; p != nullptr; p = p->next) {
        if (number_polys > 0 && its_a_polyname(p->let) != 0) error(Err::polyvar_as_name, tok_text(p->let));
        bind(c, p, given);
        given = given && after_argument(c, p);
    }
    if (open && at_char(')')) next_token(c.inf, c.flag);
}

/// Gives back variables and aliases that are not in the tables.
static void free_parameters(Call& c) {
    for (int32_t i = 0; c.arrays != nullptr && i < c.place; i++)
        if (c.arrays[i] != nullptr) free_alias(c.arrays[i]);
    while (c.first != nullptr) {
        varptr gone = c.first;
        c.first = gone->next;
        free_quoly(&gone->val);
        pool_push<&varnode::next>(var_garb, gone);
    }
}

// ---- calls ---------------------------------------------------------------------------------------------

/// The variables go to the heads of their buckets, where they hide others of the same name; what is compiled
/// leads to them.
static void push_parameters(const Call& c) {
    varptr first = c.first;
    const paramnode* p = c.f->pars;
    for (int32_t place = 0; first != nullptr; place++, p = p->next) {
        if (c.arrays != nullptr && c.arrays[place] != nullptr) link_array(c.arrays[place]);
        varptr v = first;
        first = v->next;
        if (p->bound != nullptr) bind_to_parameter(p->bound, v);
        sca_store.push(v);
    }
}

/// Takes the parameters of a call off the table, in order.
static varptr unlink_parameters(const funcnode* f) {
    varptr first = nullptr;
    varptr* tail = &first;
    for (const paramnode* p = f->pars; p != nullptr; p = p->next) {
        varptr* link = sca_store.link_of(p->let);
        varptr v = *link;
        sca_store.take_off(link);
        v->next = nullptr;
        *tail = v;
        tail = &v->next;
    }
    return first;
}

/// The value of a parameter by reference goes to its variable or element. False if that has gone.
static bool give_back(ResultTarget& to, quolyptr value) {
    if (is_element(to)) return give_back_element(to.element, value);
    if (tok_char(to.name) == 0) return true;
    varptr target = find_var(to.name);
    if (target == nullptr) return false;
    free_value(&target->val);
    target->val = *value;
    *value = nullptr;
    return true;
}

namespace {
/// What the end of a call has to report.
struct LostParameter {
    const paramnode* p;  // nil: nothing
    Err code;
};
}  // namespace

/// Ends the innermost call: its frame is off, its parameters are given back. The answer is a parameter by
/// reference whose variable or array has gone, or an array parameter whose name the body has given to a new
/// array.
static LostParameter remove_args(CallFrame* frame) {
    LostParameter lost = {nullptr, Err{}};
    varptr v = unlink_parameters(frame->f);
    call_frames = frame->below;
    statcount--;
    int32_t place = 0;
    for (const paramnode* p = frame->f->pars; p != nullptr; p = p->next, place++) {
        bool good = !p->result || give_back(frame->targets[place], &v->val);
        if (frame->arrays != nullptr && frame->arrays[place] != nullptr)
            good = remove_alias(frame->arrays[place]);
        if (!good)
            lost = {p, p->result && !is_element(frame->targets[place]) ? Err::target_gone
                                                                       : Err::array_parameter_missing};
        if (v->own != nullptr) end_parameter_binding(v);
        if (v->bound != nullptr) unbind(v);
        free_value(&v->val);
        varptr gone = v;
        v = v->next;
        pool_push<&varnode::next>(var_garb, gone);
    }
    return lost;
}

void pop_calls() {
    drop_unfinished();
    while (call_frames != nullptr) remove_args(call_frames);
}

/// True if all that the statements up to Compile would do is known.
static bool begins_compiled(const CallFrame& frame) {
    return frame.f->compiled_by != nullptr && frame.f->only_compiled && frame.arrays == nullptr;
}

/// The body of such a function from behind Compile on; reports find it in that statement.
static void run_compiled(FILE* inf, const funcnode* f, quolyptr n) {
    startexpr = f->compiled_by->expr;
    integerflag = f->in_words;
    eval_form(inf, f->comp, n);
}

/// Runs the body; the statement around the call goes on with its own places and flags.
static void run_body(FILE* inf, funcptr f, quolyptr n) {
    nameptr outer_start = startexpr, outer_prev = prev_expr, outer_current = currentchar;
    boolean outer_integer = integerflag, outer_exit = exit_flag, outer_bar = eval_state.bar_closes;
    startexpr = prev_expr = nullptr;
    integerflag = exit_flag = 0;
    eval_state.bar_closes = 0;
    uninit = 0;
    begins_compiled(*call_frames) ? run_compiled(inf, f, n) : eval_form(inf, f->rht, n);
    if (*n == nullptr) quoly_set(0, n);
    exit_flag = outer_exit;
    leave_flag = cycle_flag = 0;
    integerflag = outer_integer;
    startexpr = outer_start;
    prev_expr = outer_prev;
    currentchar = outer_current;
    eval_state.bar_closes = outer_bar;
}

void evaluate(FILE* inf, tokentipe& name, quolyptr n, nameptr* flag) {
    funcptr f = *link_of_function(name);
    if (f == nullptr) {
        error(Err::unknown_function, tok_text(name));
        return;
    }
    poll_interrupt();
    Call c = {inf, flag, f, nullptr, nullptr, nullptr, nullptr, 0, false, {}};
    c.link = &c.first;
    if (f->results > 0) c.targets = table_of_places<ResultTarget>(c);
    // arguments that have been read are values half computed: while one is open, the ring stays
    held_operand here = {n, n, eval_state.held};
    eval_state.held = &here;
    Unfinished u;
    begin_unfinished(
        u, [](void* what) { free_parameters(*static_cast<Call*>(what)); }, &c);
    read_arguments(c);
    end_unfinished(u);
    const nameptr behind = *flag;  // the token behind the call stands there, or is kept
    tokentipe after;
    if (behind == nullptr) after = token;
    eval_state.held = here.below;
    CallFrame frame = {f, c.targets, c.arrays, call_frames};
    call_frames = &frame;
    statcount++;
    push_parameters(c);
    free_quoly(n);
    run_body(inf, f, n);
    LostParameter lost = remove_args(&frame);
    syst_dump = 0;
    if (c.has_tables) scratch_release(c.mark);
    token = behind != nullptr ? behind->let : after;
    if (lost.p != nullptr) error(lost.code, tok_text(lost.p->let));
}

/// Return(e): the value of the function.
void builtin_Return(BuiltinCall& call) {
    open_call(call);
    if (at_char('^'))
        error(Err::location_not_wanted);
    else
        old_expre(call.inf, call.n, call.flag);
    close_call(call);
    if (*call.n == nullptr) quoly_set(0, call.n);
    if (*call.flag != nullptr && statcount > 0)
        exit_flag = 1;
    else
        fputs(" *** Warning. 'Return' ignored.\n", stdout);
}

// ---- the leak audit of the checked build ---------------------------------------------------------------

#ifdef TOLVEX_CHECKED
static void reach_functions() {
    for (const funcnode* bucket : func_store) {
        for (const funcnode* f = bucket; f != nullptr; f = f->next) {
            audit_reach<funcnode>();
            for (const paramnode* p = f->pars; p != nullptr; p = p->next) audit_reach<paramnode>();
            audit_reach_form(f->rht);
            audit_reach_bindings(f->bindings);
        }
    }
}
#endif

void init_functions() {
    func_store.clear();
#ifdef TOLVEX_CHECKED
    audit_pool<funcnode>("funcnode");
    audit_pool<paramnode>("paramnode");
    audit_pool<binding>("binding");
    audit_roots(reach_functions);
#endif
}
}  // namespace tolvex
