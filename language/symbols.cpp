#include "language/symbols.h"

#include "language/array_values.h"
#include "language/builtin_table.h"
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/language_modes.h"
#include "language/other_rings.h"
#include "language/stack_bound.h"
#include "language/statements.h"
#include "language/tokens/look_ahead.h"
#include "quoly/quoly_audit.h"
#include "quoly/quoly_basic.h"
#include "storage/audit.h"
#include "storage/failure.h"
namespace tolvex {
/// The link that points to the variable of that name; it points to nil if there is none.
static inline varptr* link_of(tokentipe& name) {
    if (is_upper(tok_char(name))) {  // in a stored list it has the address of a function
        tokentipe own = name;
        own.address = hash(own.name, k_variable_buckets);
        return sca_store.link_of(own);
    }
    if (name.address == -1) name.address = hash(name.name, k_variable_buckets);
    return sca_store.link_of(name);
}

varptr find_var(tokentipe& name) { return *link_of(name); }

static bool is_array_parameter(const varnode* p) {
    return p != nullptr && p->val != nullptr && p->val->numb && p->val->arr_arg;
}

void retrieve(tokentipe& name, quolyptr* qp, quolyptr n, FILE* inf, nameptr* flag) {
    varptr p = find_var(name);
    *qp = p == nullptr ? nullptr : &p->val;
    if (!is_array_parameter(p) || (at_char(':') && sign_follows(inf, flag, '='))) return;
    printf("Warning. %s is an array parameter used as a scalar.\n  Value 0 used for %s.\n", tok_text(name),
           tok_text(name));
    quoly_set(0, n);
    *qp = n;
}

bool spec_retrieve(tokentipe& name, quolyptr n) {
    varptr p = find_var(name);
    if (p == nullptr) error(Err::undefined_variable, tok_text(name));
    if (is_array_parameter(p))
        printf("Warning. %s is an array parameter.\n  Value 0 used for %s.\n", tok_text(name),
               tok_text(name));
    if (p == nullptr || p->val == nullptr) {
        quoly_set(0, n);
    } else {
        quoly_assign(p->val, n);
        (*n)->word = p->val->word;
    }
    return p != nullptr;
}

void insert_var(tokentipe& name, quoly value, varptr* p) {
    varptr* link = link_of(name);
    if (*link != nullptr) {
        *p = *link;
        free_value(&(*p)->val);
    } else {
        *p = pool_pop<&varnode::next>(var_garb, nullptr);
        (*p)->let = name;
        (*p)->bound = (*p)->own = nullptr;
        sca_store.push(*p);
    }
    if (value != nullptr && value->numb) value->arr_arg = 0;
    (*p)->val = value;
}

bool delete_var(tokentipe& name) {
    varptr* link = link_of(name);
    varptr p = *link;
    if (p == nullptr) return false;
    sca_store.take_off(link);
    if (p->bound != nullptr) unbind(p);
    free_value(&p->val);
    pool_push<&varnode::next>(var_garb, p);
    return true;
}

/// The outermost evaluator that holds *loc gets it; the others, which end before it does, look there.
/// False if nobody holds it.
static bool bequeath(quolyptr loc) {
    held_operand* heir = nullptr;
    for (held_operand* h = eval_state.held; h != nullptr; h = h->below)
        if (h->at == loc && h->own != loc) heir = h;
    if (heir == nullptr) return false;
    *heir->own = *loc;
    for (held_operand* h = eval_state.held; h != nullptr; h = h->below)
        if (h->at == loc) h->at = heir->own;
    return true;
}

/// Operands of array expressions may share the value: it is kept aside. Who holds the location gets a copy.
static void leave_to_borrowers(quolyptr loc) {
    quoly copy = nullptr;
    if (eval_state.held != nullptr) quoly_assign(*loc, &copy);
    bury(loc);
    *loc = copy;
}

quoly displace_value(quolyptr loc) {
    if (away_list != nullptr) drop_away(loc);
    if (borrowed_operands > 0 && *loc != nullptr) leave_to_borrowers(loc);
    quoly old = *loc;
    if (eval_state.held != nullptr && old != nullptr && bequeath(loc)) old = nullptr;
    *loc = nullptr;
    return old;
}

void free_value(quolyptr loc) {
    quoly old = displace_value(loc);
    free_quoly(&old);
}

void own_value(quolyptr loc) {
    if (*loc == nullptr) return;
    (*loc)->word = 0;
    if (borrowed_operands > 0) {
        quoly copy = nullptr;
        quoly_assign(*loc, &copy);
        bury(loc);
        *loc = copy;
    }
    if (eval_state.held == nullptr) return;
    quoly old = *loc;
    if (!bequeath(loc)) return;
    *loc = nullptr;
    quoly_assign(old, loc);
}

void for_each_scalar(void (*f)(quolyptr value, void* context), void* context) {
    for (varptr bucket : sca_store)
        for (varptr p = bucket; p != nullptr; p = p->next)
            if (p->val != nullptr) f(&p->val, context);
    if (prevnum != nullptr) f(&prevnum, context);
}

void for_each_value(void (*f)(quolyptr value, void* context), void* context) {
    for_each_scalar(f, context);
    for_each_array_value(f, context);
}

#ifdef TOLVEX_CHECKED
// The roots of this table for the leak audit of the checked build.
static void reach_values() {
    for (varptr bucket : sca_store) {
        for (varptr p = bucket; p != nullptr; p = p->next) {
            audit_reach<varnode>();
            audit_reach_quoly(p->val);
        }
    }
    audit_reach_away();
    audit_reach_quoly(prevnum);
    audit_reach_quoly(sysnum);
}
#endif

void init_symbols() {
    sca_store.clear();
    init_stack_bound();
    init_builtins();
#ifdef TOLVEX_CHECKED
    audit_value_pools();
    audit_pool<varnode>("varnode");
    audit_roots(reach_values);
#endif
    init_arrays();
    init_statements();
}
}  // namespace tolvex
