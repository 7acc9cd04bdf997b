#pragma once
/// language/compile.h: the statement Compile, and the names it binds to their storage.
///
/// Purpose    after Compile the nodes of a function's body that name a parameter or a listed variable
///            lead to the variable without a search.
///
///   namenode.bound -> binding.var -> varnode.val         one binding a name, shared by all its nodes
///
/// Invariant  binding.var is the variable that the name stands for, or nil: then the name is looked up. A
///            variable that goes clears the bindings on its list; a parameter is bound for the time of
///            its call, and the call below has its binding back afterwards. So no node ever leads to
///            storage given back.
/// Ownership  a function owns its bindings.
/// Raises     19, 28 unknown name; 229 not a statement of the body; 230 to 234 the list; 242, 246, 247, 267.
#include "language/array_elements.h"
#include "language/symbols.h"
namespace tolvex {
struct condnode;
struct funcnode;
struct binding {
    tokentipe key;  // the name; of an element the text x[k]
    varptr var;
    ElementTarget element;  // x[k]: the element that it was when Compile ran
    boolean parameter;
    binding* same;  // the next binding on the list of the variable
    binding* next;  // the next one of the function
};
inline binding* binding_garb = nullptr;

/// The variable that a compiled node leads to; nil: none is bound.
inline varptr bound_var(const namenode* node) { return node->bound->var; }
/// The variable that the name at this node of a stored list stands for, nil if there is none.
inline varptr var_at(nameptr node) {
    if (node->compiled && node->tipe == one && node->bound->var != nullptr) return node->bound->var;
    return find_var(node->let);
}

/// True at the name of an element x[k] that is bound; binding.element is the element.
inline bool is_bound_element(const namenode* node) { return node->compiled && node->tipe == two; }
/// The node of its "]".
inline nameptr end_of_bound_element(nameptr node) {
    while (!tok_is(node->let, "]")) node = node->next;
    return node;
}

/// Runs the statement Compile, which is p, and with it the rest of the body of the running function.
void compile(FILE* inf, quolyptr n, const condnode* p, nameptr* flag);
/// The bindings of a function that is being given back.
void free_bindings(binding** first);
/// A variable goes: the bindings that lead to it are cleared.
void unbind(varptr v);
/// The binding of a parameter leads to the variable of the call that begins.
inline void bind_to_parameter(binding* b, varptr v) {
    v->own = b;
    v->outer = b->var;
    b->var = v;
}
/// A call ends: the binding of its parameter v leads to what it led to before.
void end_parameter_binding(varptr v);
#ifdef TOLVEX_CHECKED
void audit_reach_bindings(const binding* b);
#endif
}  // namespace tolvex
